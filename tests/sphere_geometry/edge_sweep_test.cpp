// The sweep line compared with the plain comparison of all pairs of edges; and the distance between
// edges within which it has to test them, with arithmetic of 100 digits.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <set>
#include <utility>
#include <vector>

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/edge_sweep.h>
#include <surveydata/sphere_geometry/ring_crossings.h>

#include "tests/support/hostile_ring_generator.h"
#include "tests/support/number_of_cases.h"

namespace GMAT {
namespace {

using EdgePair = std::pair<std::size_t, std::size_t>;

TEST(EdgeSweep, FindsACrossingWhereAPairHasOne) {
  HostileRingGenerator random(2);
  std::size_t counts[3] = {};
  constexpr std::size_t kRings = TestSupport::NumberOfCases(20'000);
  for (std::size_t i = 0; i < kRings; ++i) {
    const Corners ring = random.Any(8 + random.Below(i % 50 == 0 ? 600 : 60));
    const std::vector<AnglePointC> edges = EdgesOf(ring);
    const bool expected = HasCrossingPair(edges);
    const SweepResult result = Sweep(edges);
    ++counts[static_cast<std::size_t>(result)];
    if (result != SweepResult::kUndecided) {
      ASSERT_EQ(result == SweepResult::kCrossing, expected) << Describe(ring);
    }
    ASSERT_EQ(CrossesItself(edges), expected) << Describe(ring);
  }
  EXPECT_GT(counts[static_cast<std::size_t>(SweepResult::kCrossing)], kRings / 5);
  EXPECT_GT(counts[static_cast<std::size_t>(SweepResult::kNoCrossing)], kRings / 5);
  EXPECT_GT(counts[static_cast<std::size_t>(SweepResult::kUndecided)], 0u);
  EXPECT_LT(counts[static_cast<std::size_t>(SweepResult::kUndecided)], kRings / 10);
}

using Exact = boost::multiprecision::cpp_bin_float_100;

Exact DistanceToSegment(const AnglePointC& p, const AnglePointC& a, const AnglePointC& b) {
  const Exact x = Exact(b.Hz) - a.Hz;
  const Exact y = Exact(b.V) - a.V;
  const Exact px = Exact(p.Hz) - a.Hz;
  const Exact py = Exact(p.V) - a.V;
  const Exact length2 = x * x + y * y;
  Exact t = length2 > 0 ? (px * x + py * y) / length2 : Exact(0);
  t = t < 0 ? Exact(0) : t > 1 ? Exact(1) : t;
  return sqrt((px - t * x) * (px - t * x) + (py - t * y) * (py - t * y));
}

int Side(const AnglePointC& a, const AnglePointC& b, const AnglePointC& p) {
  const Exact cross =
      (Exact(b.Hz) - a.Hz) * (Exact(p.V) - a.V) - (Exact(b.V) - a.V) * (Exact(p.Hz) - a.Hz);
  return cross.sign();
}

Exact Distance(const AnglePointC& a1, const AnglePointC& a2, const AnglePointC& b1,
               const AnglePointC& b2) {
  if (Side(a1, a2, b1) * Side(a1, a2, b2) < 0 && Side(b1, b2, a1) * Side(b1, b2, a2) < 0) return 0;
  return std::min({DistanceToSegment(a1, b1, b2), DistanceToSegment(a2, b1, b2),
                   DistanceToSegment(b1, a1, a2), DistanceToSegment(b2, a1, a2)});
}

bool AreBoxesNear(const std::vector<AnglePointC>& edges, std::size_t first, std::size_t second) {
  const auto areNear = [&](double AnglePointC::*axis) {
    const auto [low1, high1] = std::minmax(edges[2 * first].*axis, edges[2 * first + 1].*axis);
    const auto [low2, high2] = std::minmax(edges[2 * second].*axis, edges[2 * second + 1].*axis);
    return low1 <= high2 + 2e-9 && low2 <= high1 + 2e-9;
  };
  return areNear(&AnglePointC::Hz) && areNear(&AnglePointC::V);
}

// A corner on a vertical edge that ends between the corner and an edge above.
TEST(EdgeSweep, VerticalEdgesDoNotHideOthers) {
  const Corners ring{{1.0, 1.5 + 6e-10}, {3.0, 1.5 + 6e-10}, {3.0, 0.5}, {2.0, 0.5}, {2.0, 1.5},
                     {2.1, 0.6},         {2.0, 1.5 - 5e-10}, {1.9, 0.6}, {1.0, 0.9}};
  const std::vector<AnglePointC> edges = EdgesOf(ring);
  std::set<EdgePair> asked;
  EXPECT_EQ(SweepInOrder(edges,
                         [&](std::size_t first, std::size_t second) {
                           asked.emplace(first, second);
                           return false;
                         }),
            SweepResult::kNoCrossing);
  EXPECT_TRUE(asked.contains({0, 5}));
  EXPECT_TRUE(asked.contains({0, 6}));
}

// Edges that separate two others on the sweep line: tiny, steep and vertical ones.
TEST(EdgeSweep, TestsAllPairsThatAreNear) {
  HostileRingGenerator random(3);
  std::size_t near = 0;
  std::size_t decided = 0;
  constexpr int kRings = TestSupport::NumberOfCases(1500);
  for (int i = 0; i < kRings; ++i) {
    const Corners ring = random.ThinRing(6 + random.Below(30));
    const std::vector<AnglePointC> edges = EdgesOf(ring);
    const std::size_t count = edges.size() / 2;
    std::set<EdgePair> asked;
    const SweepResult result = SweepInOrder(edges, [&](std::size_t first, std::size_t second) {
      EXPECT_LE(first, second);
      asked.emplace(first, second);
      return false;
    });
    if (result != SweepResult::kNoCrossing) continue;
    ++decided;
    for (std::size_t first = 0; first < count; ++first) {
      for (std::size_t second = first + 2; second < count; ++second) {
        if (AreNeighbours(first, second, count) || !AreBoxesNear(edges, first, second)) continue;
        const auto distance = static_cast<double>(Distance(
            edges[2 * first], edges[2 * first + 1], edges[2 * second], edges[2 * second + 1]));
        if (distance > kCrossingReach) continue;
        ++near;
        ASSERT_TRUE(asked.contains({first, second}))
            << first << " and " << second << " of " << Describe(ring);
      }
    }
  }
  EXPECT_GT(decided, kRings / 2);
  EXPECT_GT(near, TestSupport::NumberOfCases(5000u));
}

TEST(EdgeSweep, TestsFewOthers) {
  for (const HostileRings::Named& kind : HostileRings::kAll) {
    for (const std::size_t n : {std::size_t{100}, std::size_t{1000}, std::size_t{10'000}}) {
      SphereAreaC area;
      for (const Direction& d : kind.make(n)) area.AddPoint(d.hz, d.v);
      ASSERT_EQ(area.GetPointCount(), n);
      std::vector<AnglePointC> edges;
      double hzOrigin = 0.0;
      area.BuildEdgeList(edges, hzOrigin);
      std::size_t asked = 0;
      const SweepResult result = SweepInOrder(edges, [&](std::size_t, std::size_t) {
        ++asked;
        return false;
      });
      EXPECT_EQ(result, SweepResult::kNoCrossing) << kind.name << " of " << n;
      EXPECT_LT(asked, 10u) << kind.name << " of " << n;
      EXPECT_TRUE(area.IsValid()) << kind.name << " of " << n;
    }
  }
}

// The edges of a pair whose crossing the plane reports, as the bound of the sweep assumes.
TEST(EdgeSweep, ACrossingInThePlaneMeansThatTheEdgesAreWithinReach) {
  HostileRingGenerator random(5);
  Exact farthest = 0;
  Exact farthestOfTiny = 0;
  std::size_t reported = 0;
  constexpr int kPairs = TestSupport::NumberOfCases(200'000);
  for (int i = 0; i < kPairs; ++i) {
    // Lines that cross, at any angle down to nearly none, a little before or after their ends.
    const double angle = random.Pick({0.0, HALF_PI, PI / 4.0, random.Uniform(0.0, TWO_PI)});
    const double between = random.Uniform(-1.0, 1.0) * random.Pick({1.0, 1e-3, 1e-6, 1e-9, 1e-12});
    const double hz = random.Pick({0.0, 1.0, 12.0, 2000.0}) + random.Uniform(0.0, 0.1);
    const double v = 1.0 + random.Uniform(0.0, 0.1);
    const auto at = [&](double along, double direction) {
      return AnglePointC{hz + along * std::cos(direction), v + along * std::sin(direction)};
    };
    const auto past = [&] {
      return random.Below(2) == 0 ? random.Uniform(-1e-10, 4e-10)
                                  : random.Uniform(1.8e-10, 2.4e-10);
    };
    const auto length = [&] { return random.Pick({1.0, 1e-3, 1e-9, 1e-10}); };
    AnglePointC a1 = at(-past(), angle);
    AnglePointC a2 = at(-length(), angle);
    AnglePointC b1 = at(past(), angle + between);
    AnglePointC b2 = at(length(), angle + between);
    const bool isTiny = random.Below(2) == 0;
    if (isTiny) {  // products that underflow
      const double size = random.Pick({1e-310, 1e-315, 1e-317, 1e-318});
      const auto tiny = [&] { return size * random.Uniform(-1.0, 1.0); };
      const double shift = random.Uniform(-1.0, 1.0) * 1e-9;
      const double half = random.Pick({1e-4, 1e-5, 1e-6, 1e-7, 1e-8});
      a1 = {tiny(), tiny()};
      a2 = {tiny(), tiny()};
      b1 = {shift - half * std::cos(angle), -half * std::sin(angle)};
      b2 = {shift + half * std::cos(angle), half * std::sin(angle)};
    }
    AnglePointC crossing;
    if (!FindPlanarCrossing(a1, a2, b1, b2, crossing)) continue;
    ++reported;
    const Exact distance = Distance(a1, a2, b1, b2);
    Exact& most = isTiny ? farthestOfTiny : farthest;
    most = std::max(most, distance);
    ASSERT_LE(distance, kCrossingReach) << Describe({a1, a2, b1, b2});
  }
  EXPECT_GT(reported, kPairs / 10);
  std::printf("%zu crossings of edges at most %.3g apart, %.3g where products underflow\n",
              reported, static_cast<double>(farthest), static_cast<double>(farthestOfTiny));
  EXPECT_GT(farthest, 2.5e-10);  // the cases come close to the bound
}

// Edges that are left out take no part, and the others are decided as without them.
TEST(EdgeSweep, IgnoresTheEdgesThatAreLeftOut) {
  HostileRingGenerator random(6);
  std::size_t changed = 0;
  for (int i = 0; i < 1'000; ++i) {
    const std::vector<AnglePointC> edges = EdgesOf(random.Any(8 + random.Below(30)));
    const std::size_t count = edges.size() / 2;
    std::vector<bool> leftOut(count);
    for (std::size_t edge = 0; edge < count; ++edge) leftOut[edge] = random.Below(4) == 0;
    bool expected = false;
    for (std::size_t first = 0; first < count; ++first) {
      for (std::size_t second = first + 2; second < count; ++second) {
        expected |= !leftOut[first] && !leftOut[second] && DoEdgesCross(edges, first, second);
      }
    }
    const SweepResult result = SweepInOrder(
        edges,
        [&](std::size_t first, std::size_t second) {
          EXPECT_FALSE(leftOut[first] || leftOut[second]);
          return DoEdgesCross(edges, first, second);
        },
        leftOut);
    if (result != SweepResult::kUndecided) {
      ASSERT_EQ(result == SweepResult::kCrossing, expected) << i;
    }
    changed += expected != HasCrossingPair(edges);
  }
  EXPECT_GT(changed, 20u);
}

// Angles up to 2048 are on the grid of the sweep.
TEST(EdgeSweep, AFrameThatIsTooWideIsUndecided) {
  const auto sweep = [](double hz, double v) {
    const AnglePointC a{0.0, 0.0};
    const AnglePointC b{hz, 1.0};
    const AnglePointC c{1.0, v};
    return SweepInOrder({a, b, b, c, c, a}, [](std::size_t, std::size_t) { return false; });
  };
  const double wider = std::nextafter(kWidestFrame, 3000.0);
  EXPECT_EQ(sweep(kWidestFrame, 2.0), SweepResult::kNoCrossing);
  EXPECT_EQ(sweep(wider, 2.0), SweepResult::kUndecided);
  EXPECT_EQ(sweep(-wider, 2.0), SweepResult::kUndecided);
  EXPECT_EQ(sweep(2.0, kWidestFrame), SweepResult::kNoCrossing);
  EXPECT_EQ(sweep(2.0, wider), SweepResult::kUndecided);
  // The last end, too.
  EXPECT_EQ(SweepInOrder({{0.0, 0.0}, {1.0, 1.0}, {1.0, 1.0}, {wider, 1.0}},
                         [](std::size_t, std::size_t) { return false; }),
            SweepResult::kUndecided);
}

}  // namespace
}  // namespace GMAT
