// Distances from arcs, meridians and circles of latitude, compared with arithmetic of 50 digits.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <vector>

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/boundary_distance.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>

#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

using Exact = boost::multiprecision::cpp_bin_float_50;

constexpr double kAccuracy = 1e-12;

struct ExactVector {
  Exact x, y, z;
};

ExactVector ToVector(Exact hz, Exact v) { return {sin(v) * cos(hz), sin(v) * sin(hz), cos(v)}; }
ExactVector ToVector(const AnglePointC& p) { return ToVector(p.Hz, p.V); }
Exact Dot(const ExactVector& a, const ExactVector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
ExactVector Cross(const ExactVector& a, const ExactVector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Exact Length(const ExactVector& a) { return sqrt(Dot(a, a)); }
Exact Angle(const ExactVector& a, const ExactVector& b) {
  return atan2(Length(Cross(a, b)), Dot(a, b));
}

Exact ExactDistanceToArc(const ExactVector& p, const ExactVector& a, const ExactVector& b) {
  const ExactVector normal = Cross(a, b);
  if (Dot(Cross(normal, a), p) > 0 && Dot(Cross(b, normal), p) > 0) {
    return abs(atan2(Dot(normal, p), Length(Cross(normal, p))));
  }
  return std::min(Angle(p, a), Angle(p, b));
}

class PointsC {
 public:
  AnglePointC Any() {
    return {Pick({0.0, PI, 1.0, HALF_PI, random_.Uniform(0.0, TWO_PI)}) + Off(),
            std::clamp(Pick({0.0, PI, HALF_PI, 1.0, random_.Uniform(0.0, PI)}) + Off(), 0.0, PI)};
  }
  // Near the point, near its antipode, on the same meridian or circle of latitude, or anywhere.
  AnglePointC Beside(const AnglePointC& p) {
    const AnglePointC any = Any();
    switch (random_.Below(6)) {
      case 0:
        return {p.Hz + Off(), std::clamp(p.V + Off(), 0.0, PI)};
      case 1:
        return {p.Hz < PI ? p.Hz + PI + Off() : p.Hz - PI + Off(),
                std::clamp(PI - p.V + Off(), 0.0, PI)};
      case 2:
        return {p.Hz, any.V};
      case 3:
        return {any.Hz, p.V};
      default:
        return any;
    }
  }
  double Pick(std::initializer_list<double> values) {
    return values.begin()[random_.Below(values.size())];
  }
  double Off() {
    return random_.Uniform(-1.0, 1.0) * Pick({0.0, 0.0, 1e-15, 1e-10, 1e-9, 1e-8, 1e-6, 1e-3});
  }

 private:
  RingGenerator random_{7};
};

TEST(BoundaryDistance, ToPointsAndArcsIsExactTo12Digits) {
  PointsC points;
  double worst = 0.0;
  double worstToPoint = 0.0;
  int beside = 0;
  int nearAntipodal = 0;
  constexpr int kCases = 6000;
  for (int i = 0; i < kCases; ++i) {
    AnglePointC a = points.Any();
    AnglePointC b = points.Beside(a);
    AnglePointC p = points.Beside(i % 2 == 0 ? a : b);
    if (i % 3 == 0) p = {(a.Hz + b.Hz) / 2.0 + points.Off(), (a.V + b.V) / 2.0 + points.Off()};
    if (i % 7 == 0) {  // a ring with many windings, or ends that are turns apart
      const double turns = points.Pick({-2000.0, -100.0, 3.0, 2000.0});
      b.Hz += turns;
      if (i % 14 == 0) a.Hz += turns;
    }
    SCOPED_TRACE(testing::Message()
                 << std::hexfloat << "direction " << p.Hz << ", " << p.V << " arc from " << a.Hz
                 << ", " << a.V << " to " << b.Hz << ", " << b.V);
    const ExactVector exactP = ToVector(p);
    const Exact toA = Angle(exactP, ToVector(a));
    // The difference of the Hz is rounded by half a unit in the last place.
    const double roundedHz = std::fabs(p.Hz - a.Hz) * 0x1p-53;
    const double toPointOff = std::fabs(static_cast<double>(DistanceToPoint(p, a) - toA));
    ASSERT_LT(toPointOff, 1e-14 + roundedHz);
    if (i % 7 != 0) worstToPoint = std::max(worstToPoint, toPointOff);

    const Exact toEnds = std::min(toA, Angle(exactP, ToVector(b)));
    const bool isArc = GreatCircleArcC(SpherePointC(a), SpherePointC(b)).IsValid();
    const Exact expected = isArc ? ExactDistanceToArc(exactP, ToVector(a), ToVector(b)) : toEnds;
    const double off = std::fabs(static_cast<double>(DistanceToArc(p, a, b) - expected));
    ASSERT_LT(off, kAccuracy);
    worst = std::max(worst, off);
    beside += isArc && expected < toEnds;
    nearAntipodal += isArc && Angle(ToVector(a), ToVector(b)) > 3.14159;
  }
  EXPECT_GT(beside, kCases / 20);
  EXPECT_GT(nearAntipodal, kCases / 50);
  std::printf("at most %.3g rad off for arcs, %.3g for points\n", worst, worstToPoint);
}

TEST(BoundaryDistance, ToMeridiansAndParallelsIsExactTo12Digits) {
  PointsC points;
  for (int i = 0; i < 3000; ++i) {
    const AnglePointC a = points.Any();
    const AnglePointC b = points.Beside(a);
    const AnglePointC p = points.Beside(i % 2 == 0 ? a : b);
    const double vLow = std::min(a.V, b.V);
    const double vHigh = std::max(a.V, b.V);
    const double hzLow = std::min(a.Hz, b.Hz);
    const double hzHigh = std::max(a.Hz, b.Hz);
    SCOPED_TRACE(testing::Message()
                 << std::hexfloat << "direction " << p.Hz << ", " << p.V << " between " << hzLow
                 << ", " << vLow << " and " << hzHigh << ", " << vHigh);
    // A meridian is an arc, or two arcs if it is long.
    const ExactVector exactP = ToVector(p);
    const Exact middle = (Exact(vLow) + vHigh) / 2;
    const ExactVector top = ToVector(a.Hz, vLow);
    const ExactVector half = ToVector(a.Hz, middle);
    const ExactVector bottom = ToVector(a.Hz, vHigh);
    const Exact meridian =
        std::min(ExactDistanceToArc(exactP, top, half), ExactDistanceToArc(exactP, half, bottom));
    ASSERT_NEAR(DistanceToMeridian(p, a.Hz, a.V, b.V), static_cast<double>(meridian), kAccuracy);

    // On a circle of latitude the distance grows with the difference of Hz.
    Exact turn = 10;
    const Exact full = 2 * boost::math::constants::pi<Exact>();
    for (const double hz : {hzLow, hzHigh}) {
      const Exact away = abs(Exact(p.Hz) - hz);
      turn = std::min({turn, away, abs(full - away)});
    }
    const Exact inTurn = Exact(p.Hz) - hzLow;
    for (int k = -2; k <= 2; ++k) {
      if (inTurn + k * full >= 0 && inTurn + k * full <= Exact(hzHigh) - hzLow) turn = 0;
    }
    const Exact parallel = Angle(ToVector(turn, p.V), ToVector(Exact(0), a.V));
    ASSERT_NEAR(DistanceToParallel(p, a.V, hzLow, hzHigh), static_cast<double>(parallel),
                kAccuracy);
  }
}

NearestEdge Nearest(const std::vector<AnglePointC>& points, const AnglePointC& direction) {
  AreaFrame frame;
  EXPECT_TRUE(BuildFrame(points, frame));
  return FindNearestEdge(frame, direction);
}

TEST(BoundaryDistance, NamesTheNearestEdge) {
  const std::vector<AnglePointC> rectangle{{6.0, 1.0}, {0.2, 2.0}};  // across Hz 0
  EXPECT_EQ(Nearest(rectangle, {5.9, 1.5}).edge, 0u);
  EXPECT_EQ(Nearest(rectangle, {6.25, 1.9}).edge, 1u);
  EXPECT_NEAR(Nearest(rectangle, {6.25, 1.95}).distance, 0.05, 1e-15);
  EXPECT_EQ(Nearest(rectangle, {0.25, 1.5}).edge, 2u);
  EXPECT_EQ(Nearest(rectangle, {0.0, 0.3}).edge, 3u);
  EXPECT_NEAR(Nearest(rectangle, {0.0, 0.3}).distance, 0.7, 1e-15);

  const std::vector<AnglePointC> octant{{0.0, HALF_PI}, {HALF_PI, HALF_PI}, {HALF_PI, 0.0}};
  EXPECT_EQ(Nearest(octant, {0.3, HALF_PI - 0.01}).edge, 0u);
  EXPECT_NEAR(Nearest(octant, {0.3, HALF_PI - 0.01}).distance, 0.01, 1e-15);
  EXPECT_EQ(Nearest(octant, {HALF_PI + 0.01, 1.0}).edge, 1u);
  // The closing edge counts: it runs along Hz 0.
  EXPECT_EQ(Nearest(octant, {0.01, 1.0}).edge, 2u);
  // The second face of the same direction.
  EXPECT_NEAR(Nearest(octant, {0.01 + PI, TWO_PI - 1.0}).distance,
              Nearest(octant, {0.01, 1.0}).distance, 1e-15);
}

TEST(BoundaryDistance, IsFiniteForAnyHz) {
  for (const double hz : {1e5, 1e20, 1e308}) {
    const double distance = Nearest({{hz, 1.0}, {-hz, 1.5}, {0.5, 2.0}}, {0.5, 1.0}).distance;
    EXPECT_GE(distance, 0.0);
    EXPECT_LE(distance, PI);
  }
}

TEST(BoundaryDistance, SkipsEdgesThatAreOutOfRange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const NearestEdge none = Nearest({{0.0, -1.0}, {1.0, -1.0}, {0.5, nan}}, {0.5, 1.0});
  EXPECT_EQ(none.edge, static_cast<std::size_t>(-1));
  EXPECT_EQ(none.distance, std::numeric_limits<double>::max());
  const NearestEdge some = Nearest({{0.0, 1.0}, {1.0, 1.0}, {0.5, -1.0}}, {0.5, 1.2});
  EXPECT_EQ(some.edge, 0u);
}

}  // namespace
}  // namespace GMAT
