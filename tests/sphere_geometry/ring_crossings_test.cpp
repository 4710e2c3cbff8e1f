// Whether a ring crosses itself: compares the sweeps with the plain comparison of all pairs of
// edges.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/ring_crossings.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/hostile_ring_generator.h"
#include "tests/support/literal_sphere_area.h"

namespace GMAT {
namespace {

bool IsValidByTheLiteralRules(const Corners& ring) {
  literal::SphereArea rules;
  for (const AnglePointC& p : ring) rules.AddPoint(p.Hz, p.V);
  return rules.IsValid();
}

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
