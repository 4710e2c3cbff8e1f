// The edges, the bounds and the validity of rings: single cases, and random rings compared with
// what the header defines and with the literal rules.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/sphere_point.h>

#include "tests/support/literal_sphere_area.h"
#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

using Points = std::vector<AnglePointC>;

AreaFrame FrameOf(const Points& points) {
  AreaFrame frame;
  EXPECT_TRUE(BuildFrame(points, frame));
  return frame;
}

bool IsValidRing(const Points& points) { return IsRingValid(points, FrameOf(points).edges); }

literal::SphereArea LiteralArea(const Points& points) {
  literal::SphereArea area;
  for (const AnglePointC& p : points) area.AddPoint(p.Hz, p.V);
  return area;
}

TEST(AreaFrame, NeedsTwoPoints) {
  AreaFrame frame;
  Points edges{{7.0, 7.0}};
  double hzOrigin = 7.0;
  for (const Points& points : {Points{}, Points{{1.0, 1.0}}}) {
    EXPECT_FALSE(BuildEdges(points, edges, hzOrigin));
    EXPECT_FALSE(BuildFrame(points, frame));
  }
  EXPECT_EQ(edges, (Points{{7.0, 7.0}})) << "a failure does not change them";
  EXPECT_EQ(hzOrigin, 7.0);
}

TEST(AreaFrame, ARectangleHasFourStraightEdges) {
  const AreaFrame frame = FrameOf({{1.0, 0.5}, {3.0, 1.5}});
  EXPECT_EQ(frame.edges, (Points{{0.0, 0.5},
                                 {0.0, 1.5},
                                 {0.0, 1.5},
                                 {2.0, 1.5},
                                 {2.0, 1.5},
                                 {2.0, 0.5},
                                 {2.0, 0.5},
                                 {0.0, 0.5}}));
  EXPECT_EQ(frame.GetEdgeCount(), 4u);
  EXPECT_EQ(frame.GetStart(1), (AnglePointC{0.0, 1.5}));
  EXPECT_EQ(frame.GetEnd(1), (AnglePointC{2.0, 1.5}));
  EXPECT_EQ(frame.hzOrigin, 1.0);
  EXPECT_EQ(frame.hzMin, 1.0);
  EXPECT_EQ(frame.hzMax, 3.0);
  EXPECT_EQ(frame.vMin, 0.5);
  EXPECT_EQ(frame.vMax, 1.5) << "the edges are not arcs, which would bulge";
  EXPECT_FALSE(frame.isPolygon);
  EXPECT_FALSE(frame.enclosesZenith);
}

// The second corner is east of the first, across Hz 0 if its Hz is smaller.
TEST(AreaFrame, ARectangleLeadsEastFromItsFirstCorner) {
  const AreaFrame frame = FrameOf({{6.0, 1.5}, {0.5, 0.25}});
  EXPECT_EQ(frame.hzOrigin, 6.0);
  EXPECT_EQ(frame.hzMin, 6.0);
  EXPECT_NEAR(frame.hzMax, 0.5 + TWO_PI, 1e-15);
  EXPECT_EQ(frame.vMin, 0.25);
  EXPECT_EQ(frame.vMax, 1.5);
  EXPECT_EQ(FrameOf({{2.0, 1.0}, {2.0, 1.5}}).hzMax, 2.0) << "not a full turn";
}

// Each edge turns by less than half a turn, so that the closing one ends where the first begins,
// or full turns from there.
TEST(AreaFrame, HzIsContinuousAlongTheEdges) {
  RingGenerator random(1);
  int wraps = 0;
  for (int i = 0; i < 2'000; ++i) {
    const Points points = random.Ring(30, false);
    if (points.size() < 3) continue;
    const std::size_t n = points.size();
    const AreaFrame frame = FrameOf(points);
    ASSERT_EQ(frame.GetEdgeCount(), n);
    double smallest = 1.0;
    for (std::size_t k = 0; k < n; ++k) {
      const AnglePointC& start = frame.GetStart(k);
      const AnglePointC& end = frame.GetEnd(k);
      ASSERT_EQ(start.V, points[k].V);
      ASSERT_EQ(end.V, points[(k + 1) % n].V);
      if (k + 1 < n) {
        ASSERT_EQ(end, frame.GetStart(k + 1));
      }
      smallest = std::min({smallest, start.Hz, end.Hz});
      const double turned = end.Hz - start.Hz;
      const double given = points[(k + 1) % n].Hz - points[k].Hz;
      ASSERT_LE(std::fabs(turned), PI + 1e-14);
      ASSERT_NEAR(std::remainder(turned - given, TWO_PI), 0.0, 1e-13);
      ASSERT_NEAR(std::remainder(start.Hz + frame.hzOrigin - points[k].Hz, TWO_PI), 0.0, 1e-13);
      wraps += std::fabs(given) > PI;
    }
    ASSERT_EQ(smallest, 0.0);
    ASSERT_GE(frame.hzOrigin, 0.0);
    ASSERT_LT(frame.hzOrigin, TWO_PI);
  }
  EXPECT_GT(wraps, 500);
}

TEST(AreaFrame, AnEdgeOfHalfATurnKeepsItsDirection) {
  const auto secondHz = [](double hz1, double hz2) {
    const AreaFrame frame = FrameOf({{hz1, 1.0}, {hz2, 1.1}, {hz2, 1.5}});
    return frame.GetEnd(0).Hz - frame.GetStart(0).Hz;
  };
  EXPECT_EQ(secondHz(0.0, PI), PI);
  EXPECT_EQ(secondHz(PI, 0.0), -PI);
  EXPECT_LT(secondHz(0.0, std::nextafter(PI, 4.0)), 0.0);
  EXPECT_GT(secondHz(std::nextafter(PI, 4.0), 0.0), 0.0);
}

// The highest and the lowest V of the corners and of the arcs between them. Edges narrower than a
// quarter turn, for which the rules take no other vertex into account.
TEST(AreaFrame, BoundsAreThoseOfTheArcs) {
  RingGenerator random(2);
  int bulging = 0;
  for (int i = 0; i < 1'000; ++i) {
    const std::size_t n = 5 + random.Below(8);
    const double hz = random.Uniform(0.0, TWO_PI);
    const double width = random.Uniform(0.05, 0.7);
    const double height = random.Uniform(0.1, 1.4);
    Points points;
    for (std::size_t k = 0; k < n; ++k) {
      const double angle = TWO_PI * static_cast<double>(k) / static_cast<double>(n);
      points.push_back({NormalizeAngle(hz + width * std::cos(angle)),
                        HALF_PI + height * std::sin(angle) * random.Uniform(0.5, 1.0)});
    }
    const AreaFrame frame = FrameOf(points);
    double cornersMin = PI;
    double vMin = PI;
    double vMax = 0.0;
    double hzMax = 0.0;
    for (std::size_t k = 0; k < n; ++k) {
      const AnglePointC& a = frame.GetStart(k);
      const AnglePointC& b = frame.GetEnd(k);
      cornersMin = std::min(cornersMin, a.V);
      hzMax = std::max(hzMax, a.Hz);
      const cVec3 u = SpherePointC(a).GetUnit();
      const cVec3 w = SpherePointC(b).GetUnit();
      constexpr int kSteps = 100;
      for (int s = 0; s <= kSteps; ++s) {
        const double f = static_cast<double>(s) / kSteps;
        const double x = (1.0 - f) * u.X() + f * w.X();
        const double y = (1.0 - f) * u.Y() + f * w.Y();
        const double z = (1.0 - f) * u.Z() + f * w.Z();
        const double v = std::atan2(std::sqrt(x * x + y * y), z);
        vMin = std::min(vMin, v);
        vMax = std::max(vMax, v);
      }
    }
    // At a vertex V changes by half of the square of the step, and the vertex is off by 2.2e-8.
    ASSERT_NEAR(frame.vMin, vMin, 1e-4);
    ASSERT_LE(frame.vMin, vMin + 1e-7);
    ASSERT_NEAR(frame.vMax, vMax, 1e-4);
    ASSERT_GE(frame.vMax, vMax - 1e-7);
    ASSERT_EQ(frame.hzMin, frame.hzOrigin);
    ASSERT_EQ(frame.hzMax, hzMax + frame.hzOrigin);
    ASSERT_FALSE(frame.enclosesZenith);
    ASSERT_TRUE(frame.isPolygon);
    bulging += frame.vMin < cornersMin - 1e-3;
  }
  EXPECT_GT(bulging, 30);
}

TEST(AreaFrame, ARingAroundTheZenithHasAFullTurn) {
  for (const double turns : {1.0, -1.0, 2.0, -3.0}) {
    SCOPED_TRACE(turns);
    Points points;
    for (int k = 0; k < 20; ++k) {
      points.push_back({NormalizeAngle(2.0 + turns * TWO_PI * k / 20.0), 1.0 + 0.01 * (k % 2)});
    }
    const AreaFrame frame = FrameOf(points);
    EXPECT_TRUE(frame.enclosesZenith);
    EXPECT_EQ(frame.hzMin, points[0].Hz + 1e-6);
    EXPECT_EQ(frame.hzMax, frame.hzMin + TWO_PI);
    EXPECT_EQ(frame.vMax, V_LIMIT);
    EXPECT_LE(frame.vMin, 1.0);
    points.resize(9);  // 0.4 turns and back again, or more
    EXPECT_EQ(FrameOf(points).enclosesZenith, std::fabs(turns) > 1.0);
  }
}

TEST(AreaFrame, BoundsAreNotClamped) {
  const AreaFrame frame = FrameOf({{1.0, 1.0}, {1.2, 3.0}, {1.4, 1.0}});
  EXPECT_EQ(frame.vMax, 3.0);
  EXPECT_GT(frame.vMax, V_LIMIT);
}

// Rings of all kinds, bit for bit.
TEST(AreaFrame, BoundsAndValidityAreThoseOfTheLiteralRules) {
  RingGenerator random(3);
  int valid = 0;
  int around = 0;
  constexpr int kRings = 4'000;
  for (int i = 0; i < kRings; ++i) {
    Points points = random.Ring(20, false);
    for (AnglePointC& p : points) ToFirstFace(p);
    const literal::SphereArea area = LiteralArea(points);
    literal::Extents expected;
    const bool isUsable = area.GetExtents(expected, true);
    const AreaFrame frame = FrameOf(points);
    ASSERT_EQ(frame.hzMin, expected.hzMin) << i;
    ASSERT_EQ(frame.hzMax, expected.hzMax) << i;
    ASSERT_EQ(frame.vMin, expected.vMin) << i;
    ASSERT_EQ(frame.vMax, expected.vMax) << i;
    ASSERT_EQ(frame.enclosesZenith, expected.enclosesZenith) << i;
    ASSERT_EQ(IsRingValid(points, frame.edges), area.IsValid()) << i;
    ASSERT_EQ(frame.enclosesZenith || area.IsValid(), isUsable) << i;
    valid += area.IsValid();
    around += frame.enclosesZenith;
  }
  EXPECT_GT(valid, kRings / 5);
  EXPECT_LT(valid, kRings * 9 / 10);
  EXPECT_GT(around, kRings / 20);
}

TEST(RingValidity, PointsAreInRangeToTenDigits) {
  const auto isValid = [](double hz, double v) {
    return IsValidRing({{hz, v}, {2.0, 1.2}, {2.0, 2.0}});
  };
  EXPECT_TRUE(isValid(1.0, 1.0));
  EXPECT_TRUE(isValid(0.0, 1.0));
  EXPECT_TRUE(isValid(-4e-11, 1.0));
  EXPECT_FALSE(isValid(-2e-10, 1.0));
  EXPECT_TRUE(isValid(TWO_PI + 4e-11, 1.0));
  EXPECT_FALSE(isValid(TWO_PI + 2e-10, 1.0));
  EXPECT_TRUE(isValid(1.0, -4e-11));
  EXPECT_FALSE(isValid(1.0, -2e-10));
  EXPECT_TRUE(isValid(1.0, PI + 4e-11));
  EXPECT_FALSE(isValid(1.0, PI + 2e-10));
  EXPECT_FALSE(isValid(std::numeric_limits<double>::quiet_NaN(), 1.0));
  EXPECT_FALSE(isValid(1.0, std::numeric_limits<double>::infinity()));
}

TEST(RingValidity, NoTwoPointsAreExactlyEqual) {
  EXPECT_TRUE(IsValidRing({{1.0, 1.0}, {1.0, 1.5}}));
  EXPECT_TRUE(IsValidRing({{1.0, 1.0}, {2.0, 1.0}}));
  EXPECT_FALSE(IsValidRing({{1.0, 1.0}, {1.0, 1.0}}));
  EXPECT_FALSE(IsValidRing({{0.0, 1.0}, {-0.0, 1.0}}));
  const Points ring{{0.0, 1.0}, {1.0, 0.8}, {2.0, 1.0}, {1.5, 1.4}, {0.5, 1.4}};
  EXPECT_TRUE(IsValidRing(ring));
  for (std::size_t k = 0; k <= ring.size(); ++k) {
    Points twice = ring;
    twice.insert(twice.begin() + static_cast<std::ptrdiff_t>(k), {-0.0, 1.0});
    EXPECT_FALSE(IsValidRing(twice)) << k;
    twice[k].Hz = 2e-9;
    EXPECT_TRUE(IsValidRing(twice)) << "points may be near each other";
  }
}

TEST(RingValidity, NoTwoEdgesCross) {
  Points ring{{1.0, 1.0}, {2.0, 1.0}, {2.0, 1.5}, {1.0, 1.5}};
  EXPECT_TRUE(IsValidRing(ring));
  std::swap(ring[2], ring[3]);
  EXPECT_FALSE(IsValidRing(ring)) << "a bow-tie";
  // A corner that touches an edge crosses it.
  EXPECT_FALSE(
      IsValidRing({{1.0, HALF_PI}, {3.0, HALF_PI}, {3.0, 2.0}, {2.0, HALF_PI}, {1.0, 2.0}}));
  EXPECT_TRUE(
      IsValidRing({{1.0, HALF_PI}, {3.0, HALF_PI}, {3.0, 2.0}, {2.0, HALF_PI + 1e-9}, {1.0, 2.0}}));
}

}  // namespace
}  // namespace GMAT
