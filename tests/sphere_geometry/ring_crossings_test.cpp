// Whether a ring crosses itself: compares the sweeps with the plain comparison of all pairs of
// edges.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <benchmarks/hostile_rings.h>
#include <boost/multiprecision/cpp_bin_float.hpp>
#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/edge_sweep.h>
#include <surveydata/sphere_geometry/ring_crossings.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/literal_sphere_area.h"
#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

using Corners = std::vector<AnglePointC>;
using EdgePair = std::pair<std::size_t, std::size_t>;

SphereAreaC ToArea(const Corners& ring) {
  SphereAreaC area;
  area.AddPoints(ring);
  return area;
}

std::vector<AnglePointC> EdgesOf(const Corners& ring) {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  ToArea(ring).BuildEdgeList(edges, hzOrigin);
  return edges;
}

bool IsValidByTheLiteralRules(const Corners& ring) {
  literal::SphereArea rules;
  for (const AnglePointC& p : ring) rules.AddPoint(p.Hz, p.V);
  return rules.IsValid();
}

bool AreNeighbours(std::size_t first, std::size_t second, std::size_t count) {
  return second - first < 2 || (first == 0 && second + 1 == count);
}

bool DoEdgesCross(const std::vector<AnglePointC>& edges, std::size_t first, std::size_t second) {
  if (AreNeighbours(first, second, edges.size() / 2)) return false;
  const auto arc = [&](std::size_t i) {
    return ArcEdgeC(SpherePointC(edges[2 * i]), SpherePointC(edges[2 * i + 1]));
  };
  AnglePointC crossing;
  return FindPlanarCrossing(edges[2 * first], edges[2 * first + 1], edges[2 * second],
                            edges[2 * second + 1], crossing) &&
         FindSphericalCrossing(arc(first), arc(second), crossing);
}

bool HasCrossingPair(const std::vector<AnglePointC>& edges) {
  for (std::size_t first = 0; 2 * first < edges.size(); ++first) {
    for (std::size_t second = first + 2; 2 * second < edges.size(); ++second) {
      if (DoEdgesCross(edges, first, second)) return true;
    }
  }
  return false;
}

SweepResult Sweep(const std::vector<AnglePointC>& edges) {
  return SweepInOrder(edges, [&edges](std::size_t first, std::size_t second) {
    return DoEdgesCross(edges, first, second);
  });
}

std::string Describe(const Corners& ring) {
  std::string text;
  for (const AnglePointC& p : ring) {
    char line[100];
    std::snprintf(line, sizeof(line), "{%a, %a}, ", p.Hz, p.V);
    text += line;
  }
  return text;
}

class HostileRingGenerator : public RingGenerator {
 public:
  using RingGenerator::RingGenerator;

  double Pick(std::initializer_list<double> values) { return values.begin()[Below(values.size())]; }

  // One of the shapes of the benchmark, combs at any angle.
  Corners Shape(std::size_t n) {
    const std::uint64_t kind = Below(std::size(HostileRings::kAll) + 1);
    const std::vector<Direction> corners = kind == std::size(HostileRings::kAll)
                                               ? HostileRings::Comb(n, AnyAngle())
                                               : HostileRings::kAll[kind].make(n);
    Corners ring;
    for (const Direction& d : corners) ring.push_back({d.hz, d.v});
    return ring;
  }

  // A simple ring that is thin everywhere, at any angle: two chains above each other, whose
  // distances, steps and edges are near the margins, or not.
  Corners ThinRing(std::size_t n) {
    const double angle = AnyAngle();
    Corners ring;
    Corners back;
    double x = 60.0 * Uniform(-0.3, 0.0);
    double y = 0.0;
    const auto add = [&](Corners& to, double height) {
      const Direction d = HostileRings::At(x, height, angle);
      to.push_back({d.hz, d.v});
    };
    for (std::size_t i = 0; i < n / 2; ++i) {
      add(ring, y);
      if (Below(8) != 0) add(back, y + Small() + (Below(3) == 0 ? Uniform(0.0, 3.0) : 0.0));
      x += Below(3) == 0 ? Uniform(0.0, 2.0) : Small() * static_cast<double>(Below(4) != 0);
      y += (Below(3) == 0 ? Uniform(-3.0, 3.0) : Small()) * (Below(2) == 0 ? 1.0 : -1.0);
    }
    ring.insert(ring.end(), back.rbegin(), back.rend());
    return ring;
  }

  // Corners on a few lines along Hz and V: vertical and collinear edges, touching corners.
  Corners LatticeRing(std::size_t n) {
    const double step = Pick({0.1, 0.1, 1e-3, 1e-9, 5e-10, 2e-10, 1e-12});
    const std::uint64_t lines = 2 + Below(6);
    Corners ring;
    while (ring.size() < n) {
      ring.push_back({1.0 + step * static_cast<double>(Below(lines)),
                      1.5 + 0.1 * static_cast<double>(Below(lines))});
      if (ring.size() > 1 && ring.back() == ring[ring.size() - 2]) ring.pop_back();
    }
    return ring;
  }

  // Plants crossings, edges that nearly touch, repeated corners, vertical edges, other turns.
  void Harm(Corners& ring) {
    const std::size_t i = Below(ring.size());
    const std::size_t k = Below(ring.size());
    const AnglePointC& a = ring[k];
    const AnglePointC& b = ring[(k + 1) % ring.size()];
    const double t = Uniform(0.0, 1.0);
    const auto away = [this] {
      const double sizes[] = {0.0, 1e-16, 1e-12, 1e-11, 1e-10, 2e-10, 4e-10, 5.8e-10, 1e-9, 3e-9};
      return Uniform(-1.0, 1.0) * sizes[Below(std::size(sizes))];
    };
    switch (Below(7)) {
      case 0:
        std::swap(ring[i], ring[k]);
        break;
      case 1:
      case 2:
        ring[i] = {a.Hz + t * (b.Hz - a.Hz) + away(), a.V + t * (b.V - a.V) + away()};
        break;
      case 3:
        ring[i] = {a.Hz + away(), a.V + away()};
        break;
      case 4:
        ring[i].Hz = a.Hz + away();
        break;
      case 5:
        ring[i].V = a.V + away();
        break;
      default:
        ring.insert(ring.begin() + static_cast<std::ptrdiff_t>(i), {a.Hz + away(), a.V + away()});
    }
  }

  // Moves corners across Hz 0 and out of range.
  void Turn(Corners& ring) {
    const double by = Uniform(-2.0, 2.0);
    for (AnglePointC& p : ring) p.Hz = NormalizeAngle(p.Hz + by);
  }

  Corners Any(std::size_t n) {
    const std::uint64_t kind = Below(8);
    Corners ring = kind < 4 ? Shape(n) : kind < 7 ? ThinRing(n) : LatticeRing(n);
    while (Below(2) == 0) Harm(ring);
    if (Below(4) == 0) Turn(ring);
    return ring;
  }

 private:
  double AnyAngle() {
    return Pick({0.0, 90.0, 45.0, -45.0, 1e-8, 89.99999, Uniform(0.0, 360.0), Uniform(0.0, 360.0)});
  }
  // Degrees: from 1e-11 to 1e-8 rad.
  double Small() {
    return Pick({1e-11, 1e-10, 2e-10, 4e-10, 7e-10, 1e-9, 1.5e-9, 3e-9, 1e-8}) * Uniform(0.3, 1.0) /
           HostileRings::kDegree;
  }
};

TEST(RingCrossings, ValidityOfHostileRingsIsThatOfTheLiteralRules) {
  HostileRingGenerator random(1);
  std::size_t valid = 0;
  constexpr std::size_t kRings = 4000;
  for (std::size_t i = 0; i < kRings; ++i) {
    Corners ring = random.Any(8 + random.Below(33));
    if (random.Below(50) == 0) {
      (random.Below(2) == 0 ? ring[0].Hz : ring[1].V) =
          random.Pick({std::numeric_limits<double>::quiet_NaN(), 7.0, -1.0, 1e300,
                       std::numeric_limits<double>::infinity()});
    }
    const bool expected = IsValidByTheLiteralRules(ring);
    ASSERT_EQ(ToArea(ring).IsValid(), expected) << Describe(ring);
    valid += expected;
  }
  EXPECT_GT(valid, kRings / 5);
  EXPECT_LT(valid, kRings * 4 / 5);
}

TEST(RingCrossings, SweepInOrderFindsACrossingWhereAPairHasOne) {
  HostileRingGenerator random(2);
  std::size_t counts[3] = {};
  constexpr std::size_t kRings = 20'000;
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
TEST(RingCrossings, VerticalEdgesDoNotHideOthers) {
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
TEST(RingCrossings, SweepInOrderTestsAllPairsThatAreNear) {
  HostileRingGenerator random(3);
  std::size_t near = 0;
  std::size_t decided = 0;
  constexpr int kRings = 1500;
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
  EXPECT_GT(near, 5000u);
}

TEST(RingCrossings, SweepInOrderTestsFewOthers) {
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

TEST(RingCrossings, OneCrossingInALargeRingIsFound) {
  HostileRingGenerator random(4);
  for (int i = 0; i < 30; ++i) {
    Corners ring = random.Shape(1000);
    ASSERT_TRUE(ToArea(ring).IsValid());
    const std::size_t at = random.Below(ring.size() - 8);
    std::swap(ring[at], ring[at + 2 + random.Below(6)]);
    const std::vector<AnglePointC> edges = EdgesOf(ring);
    ASSERT_EQ(ToArea(ring).IsValid(), !HasCrossingPair(edges));
  }
}

// The edges of a pair whose crossing the plane reports, as the bound of the sweep assumes.
TEST(RingCrossings, ACrossingInThePlaneMeansThatTheEdgesAreWithinReach) {
  HostileRingGenerator random(5);
  Exact farthest = 0;
  Exact farthestOfTiny = 0;
  std::size_t reported = 0;
  constexpr int kPairs = 200'000;
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

// The chord of a long edge and its arc: between them lies the tip of a tooth.
Corners RingWithChordsThatCross() {
  return {{0.5, PI / 4.0},        {1.9, PI / 4.0}, {1.9, 1.5}, {1.25, 1.4},
          {1.2, PI / 4.0 - 0.02}, {1.15, 1.4},     {0.5, 1.5}};
}

TEST(RingCrossings, ChordsMaySwapWhereArcsDoNot) {
  const Corners ring = RingWithChordsThatCross();
  EXPECT_EQ(Sweep(EdgesOf(ring)), SweepResult::kUndecided);
  EXPECT_TRUE(ToArea(ring).IsValid());
  EXPECT_TRUE(IsValidByTheLiteralRules(ring));
}

// Crossings after the point at which the order of the edges is lost are still found.
TEST(RingCrossings, CrossingsAreFoundAfterChordsThatSwapped) {
  for (const bool isCrossed : {false, true}) {
    Corners ring = RingWithChordsThatCross();
    Corners teeth;
    for (int i = 0; i < 400; ++i) {
      teeth.push_back({i % 4 == 0 || i % 4 == 3 ? 2.0 : 3.0, 0.8 + 0.0015 * i});
    }
    if (isCrossed) std::swap(teeth[200], teeth[205]);
    ring.insert(ring.begin() + 2, teeth.begin(), teeth.end());
    const std::vector<AnglePointC> edges = EdgesOf(ring);
    EXPECT_EQ(Sweep(edges), SweepResult::kUndecided);
    EXPECT_EQ(HasCrossingPair(edges), isCrossed);
    EXPECT_EQ(CrossesItself(edges), isCrossed);
    EXPECT_EQ(ToArea(ring).IsValid(), !isCrossed);
  }
}

// All pairs of edges that cross, or some of them if there are more than requested.
TEST(RingCrossings, FindsTheEdgesThatCross) {
  HostileRingGenerator random(5);
  std::size_t many = 0;
  std::size_t few = 0;
  for (std::size_t i = 0; i < 4'000; ++i) {
    const Corners ring = random.Any(8 + random.Below(60));
    const std::vector<AnglePointC> edges = EdgesOf(ring);
    using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;
    Pairs expected;
    for (std::size_t first = 0; 2 * first < edges.size(); ++first) {
      for (std::size_t second = first + 2; 2 * second < edges.size(); ++second) {
        if (DoEdgesCross(edges, first, second)) expected.emplace_back(first, second);
      }
    }
    constexpr std::size_t kMost = 8;
    Pairs found;
    for (const EdgeCrossing& crossing : FindEdgeCrossings(edges, kMost)) {
      found.emplace_back(crossing.first, crossing.second);
      AnglePointC at;
      EXPECT_TRUE(FindSphericalCrossing(ArcEdgeC(SpherePointC(edges[2 * crossing.first]),
                                                 SpherePointC(edges[2 * crossing.first + 1])),
                                        ArcEdgeC(SpherePointC(edges[2 * crossing.second]),
                                                 SpherePointC(edges[2 * crossing.second + 1])),
                                        at));
      EXPECT_EQ(crossing.at, at);
    }
    if (expected.size() <= kMost) {
      few += !expected.empty();
      ASSERT_EQ(found, expected) << Describe(ring);
    } else {
      ++many;
      ASSERT_EQ(found.size(), kMost) << Describe(ring);
      ASSERT_TRUE(std::includes(expected.begin(), expected.end(), found.begin(), found.end()))
          << Describe(ring);
    }
  }
  EXPECT_GT(many, 100u);
  EXPECT_GT(few, 100u);
}

// In a comb, for which boxes are useless, with two teeth that cross others.
TEST(RingCrossings, FindsTheEdgesThatCrossAmongManySideBySide) {
  Corners ring;
  constexpr int kTeeth = 2000;
  for (int i = 0; i < 2 * kTeeth; ++i) {
    const double along = 1.0 + i * 1e-4;
    const double across = i % 4 == 0 || i % 4 == 3 ? -0.5 : 0.5;
    ring.push_back({along + across, 1.0 + along - across});
  }
  ring.push_back({0.4, 2.6});
  std::swap(ring[700].Hz, ring[704].Hz);
  std::swap(ring[700].V, ring[704].V);
  std::swap(ring[3001], ring[3006]);
  const std::vector<AnglePointC> edges = EdgesOf(ring);
  std::size_t expected = 0;
  for (std::size_t first = 0; 2 * first < edges.size(); ++first) {
    for (std::size_t second = first + 2; 2 * second < edges.size(); ++second) {
      expected += DoEdgesCross(edges, first, second);
    }
  }
  EXPECT_GT(expected, 2u);
  EXPECT_LT(expected, 100u);
  EXPECT_EQ(FindEdgeCrossings(edges, 1000).size(), expected);
}

// Corners that wind around the axis hundreds of times and back: a frame of 2400 rad.
TEST(RingCrossings, WideFramesAreDecidedByBoxes) {
  for (const bool isCrossed : {false, true}) {
    Corners ring;
    constexpr int kCorners = 1500;
    for (int i = 0; i < 2 * kCorners; ++i) {
      const int k = i < kCorners ? i : 2 * kCorners - 1 - i;
      ring.push_back({NormalizeAngle(1.571 * k + 0.01), (i < kCorners ? 0.8 : 0.9) + 1e-4 * k});
    }
    if (isCrossed) ring[1000].V = 1.5;
    const std::vector<AnglePointC> edges = EdgesOf(ring);
    EXPECT_GT(edges[2 * (kCorners - 1)].Hz, kWidestFrame);
    EXPECT_EQ(Sweep(edges), SweepResult::kUndecided);
    const bool expected = HasCrossingPair(edges);
    EXPECT_EQ(expected, isCrossed);
    EXPECT_EQ(CrossesItself(edges), expected);
  }
}

}  // namespace
}  // namespace GMAT
