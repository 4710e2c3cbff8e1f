// The curves of edges in the plane of Hz and t = tan(latitude): single cases, and the curves of
// random rings compared with the rules.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/ring_curves.h>

#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

using Points = std::vector<AnglePointC>;

CosSin Exactly(double hz) { return {std::cos(hz), std::sin(hz)}; }

AreaFrame FrameOf(const Points& points) {
  AreaFrame frame;
  EXPECT_TRUE(BuildFrame(points, frame));
  return frame;
}

// A ring whose points are all in range, in the order in which the generator makes them.
Points RingInRange(RingGenerator& random) {
  while (true) {
    Points points = random.Ring(20, false);
    if (points.size() > 2 && std::all_of(points.begin(), points.end(), [](const AnglePointC& p) {
          return InRange(p.Hz, 0.0, TWO_PI) && InRange(p.V, 0.0, PI);
        })) {
      return points;
    }
  }
}

// The V at which the rules find the crossing of an edge with a meridian.
bool FindV(const AreaFrame& frame, std::size_t edge, double hz, double& v) {
  const ArcEdgeC arc{SpherePointC(frame.GetStart(edge)), SpherePointC(frame.GetEnd(edge))};
  return arc.CrossesMeridian(hz, std::cos(hz), std::sin(hz), 0.0, PI, v);
}

TEST(RingCurves, CornersAreThoseOfTheFrame) {
  RingGenerator random(1);
  for (int i = 0; i < 300; ++i) {
    const AreaFrame frame = FrameOf(RingInRange(random));
    const RingCurves ring = BuildRingCurves(frame);
    const std::size_t n = frame.GetEdgeCount();
    ASSERT_EQ(ring.corners.size(), n);
    ASSERT_EQ(ring.curves.size(), n);
    for (std::size_t k = 0; k < n; ++k) {
      const RingCorner& corner = ring.GetStart(k);
      ASSERT_EQ(&corner, &ring.corners[k]);
      ASSERT_EQ(&ring.GetEnd(k), &ring.corners[(k + 1) % n]);
      ASSERT_EQ(ring.curves[k].edge, k);
      ASSERT_EQ(corner.hz, NormalizeAngle(frame.GetStart(k).Hz));
      ASSERT_EQ(corner.v, frame.GetStart(k).V);
      if (corner.v < 1e-6 || corner.v > PI - 1e-6) continue;  // Hz is that of a small vector
      ASSERT_NEAR(corner.at.cosine, std::cos(corner.hz), 4e-15);
      ASSERT_NEAR(corner.at.sine, std::sin(corner.hz), 4e-15);
      const double t = std::cos(corner.v) / std::sin(corner.v);
      ASSERT_NEAR(corner.tangent, t, 1e-15 * (1.0 + t * t));
    }
  }
}

TEST(RingCurves, AnEdgeLeadsFromWestToEastAcrossLessThanHalfATurn) {
  const struct {
    double start, end;
    bool isEastward, wraps;
  } cases[] = {
      {1.0, 2.0, true, false},      {2.0, 1.0, false, false},      {6.0, 1.0, true, true},
      {1.0, 6.0, false, true},      {0.0, 3.0, true, false},       {3.0, 0.0, false, false},
      {1.0, 1.0 + PI, true, false}, {1.0 + PI, 1.0, false, false}, {0.5, 0.5, true, false},
      {0.5, 0.6 + PI, false, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.start);
    SCOPED_TRACE(c.end);
    RingCurves ring;
    ring.corners = {{c.start, Exactly(c.start), 1.0, 0.7}, {c.end, Exactly(c.end), 2.0, 0.4}};
    const RingEdge edge = ring.Orient(0);
    EXPECT_EQ(&edge.west, &ring.corners[c.isEastward ? 0 : 1]);
    EXPECT_EQ(&edge.east, &ring.corners[c.isEastward ? 1 : 0]);
    EXPECT_EQ(edge.wraps, c.wraps);
  }
}

TEST(RingCurves, OnlyTheEndsOfSteepEdgesMatter) {
  const double tilt = 1.5e-9;  // sines of the plane's distance from the poles
  const struct {
    const char* what;
    AnglePointC a, b;
    ArcCurve::Kind kind;
    bool isPoleEdge, isClosed;
  } cases[] = {
      {"anywhere", {1.0, 1.0}, {2.0, 1.2}, ArcCurve::kArc, false, true},
      {"along a meridian", {1.0, 1.0}, {1.0, 1.2}, ArcCurve::kSteep, false, true},
      {"nearly so", {1.0, HALF_PI}, {1.0 + 0.9e-9, HALF_PI - 1.0}, ArcCurve::kSteep, false, true},
      {"less so", {1.0, HALF_PI}, {1.0 + 2.0 * tilt, HALF_PI - 1.0}, ArcCurve::kArc, false, true},
      {"to the zenith", {1.0, 1.0}, {2.0, 0.0}, ArcCurve::kPole, true, true},
      {"from the zenith", {1.0, 0.0}, {2.0, 1.0}, ArcCurve::kPole, true, true},
      {"over the zenith", {1.0, 0.5}, {1.0 + PI, 0.6}, ArcCurve::kPole, true, true},
      {"at the zenith", {1.0, 0.0}, {2.0, 0.0}, ArcCurve::kPole, false, true},
      {"to the nadir", {1.0, 2.0}, {2.0, PI}, ArcCurve::kPole, true, false},
      {"over the nadir", {1.0, 2.5}, {1.0 + PI, 2.6}, ArcCurve::kPole, true, false},
      {"at the nadir", {1.0, PI}, {2.0, PI}, ArcCurve::kSteep, false, false},
      {"equal ends", {1.0, 1.0}, {1.0 + 5e-11, 1.0}, ArcCurve::kSteep, false, true},
      {"antipodal ends", {1.0, 1.0}, {1.0 + PI, PI - 1.0}, ArcCurve::kSteep, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    AreaFrame frame;
    frame.isPolygon = true;
    frame.edges = {c.a, c.b};
    const RingCurves ring = BuildRingCurves(frame);
    ASSERT_EQ(ring.curves.size(), 1u);
    EXPECT_EQ(ring.curves[0].kind, c.kind);
    EXPECT_EQ(ring.poleEdges.size(), c.isPoleEdge ? 1u : 0u);
    EXPECT_EQ(ring.isClosed, c.isClosed);
  }
}

// Between its ends t differs from that of the rules by at most the error. `error` is about 40 u of
// |a| + |b|; V is rounded, too.
TEST(RingCurves, ACurveIsWhereTheRulesFindTheEdge) {
  RingGenerator random(2);
  int compared = 0;
  int wraps = 0;
  for (int i = 0; i < 1'500; ++i) {
    const AreaFrame frame = FrameOf(RingInRange(random));
    const RingCurves ring = BuildRingCurves(frame);
    for (const ArcCurve& curve : ring.curves) {
      if (curve.kind == ArcCurve::kPole) continue;
      const RingEdge edge = ring.Orient(curve.edge);
      ASSERT_EQ(curve.low, edge.west.hz);
      ASSERT_EQ(curve.high, edge.east.hz + (edge.wraps ? TWO_PI : 0.0));
      ASSERT_LE(curve.low, curve.high);
      ASSERT_LE(curve.high - curve.low, PI + 1e-14);
      if (curve.kind != ArcCurve::kArc || !(curve.high - curve.low > 1e-8)) continue;
      wraps += edge.wraps;
      ASSERT_GE(curve.error, kCurveError * (std::fabs(curve.a) + std::fabs(curve.b)));
      ASSERT_LE(curve.error, 1.000001 * kCurveError * (std::fabs(curve.a) + std::fabs(curve.b)));
      for (const double part : {0.01, 0.37, 0.5, 0.99}) {
        const double hz = NormalizeAngle(curve.low + part * (curve.high - curve.low));
        double v = 0.0;
        ASSERT_TRUE(FindV(frame, curve.edge, hz, v)) << i;
        const double t = std::cos(v) / std::sin(v);
        ASSERT_NEAR(curve.At(Exactly(hz)), t,
                    static_cast<double>(curve.error) + 4e-16 * (1.0 + t * t))
            << i;
        ASSERT_NEAR(curve.At(QuickCosSin(hz)), t,
                    static_cast<double>(curve.error) + 4e-16 * (1.0 + t * t))
            << i;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 10'000);
  EXPECT_GT(wraps, 100);
}

// Between two Hz at most `kShortSpan` apart.
TEST(RingCurves, ARangeHoldsItsPartOfTheCurve) {
  RingGenerator random(3);
  double used = 0.0;
  for (int i = 0; i < 2'000; ++i) {
    ArcCurve curve;
    curve.a = random.Uniform(-2.0, 2.0);
    curve.b = random.Uniform(-2.0, 2.0);
    curve.error = 1e-15F;
    const double low = random.Uniform(0.0, TWO_PI);
    const double span = random.Below(2) == 0 ? kShortSpan : random.Uniform(0.0, kShortSpan);
    const double t1 = curve.At(Exactly(low));
    const double t2 = curve.At(Exactly(low + span));
    const TangentRange range = RangeBetween(curve, t1, t2, span);
    const double bulge = BulgeOf(t1, t2, span);
    EXPECT_GE(Swing(curve.a, curve.b), std::max(std::fabs(t1), std::fabs(t2)) - 1e-15);
    // Wider than the values at the ends by the bulge, the error and the margin of listing.
    const double most = std::max(std::fabs(t1), std::fabs(t2));
    const double wider =
        bulge + static_cast<double>(curve.error) + kListingMargin * (1.0 + most * most);
    ASSERT_NEAR(range.high, std::max(t1, t2) + wider, 1e-14);
    ASSERT_NEAR(range.low, std::min(t1, t2) - wider, 1e-14);
    for (int s = 0; s <= 20; ++s) {
      const double t = curve.At(Exactly(low + span * s / 20.0));
      ASSERT_LE(t, std::max(t1, t2) + bulge + 1e-14);
      ASSERT_GE(t, std::min(t1, t2) - bulge - 1e-14);
      if (bulge > 0.0) used = std::max(used, (t - std::max(t1, t2)) / bulge);
    }
  }
  EXPECT_GT(used, 0.9) << "the bound is not much larger than needed";
}

AreaFrame FrameWithBounds(double vMin, double vMax, bool enclosesZenith) {
  AreaFrame frame;
  frame.vMin = vMin;
  frame.vMax = vMax;
  frame.enclosesZenith = enclosesZenith;
  return frame;
}

TangentRange At(double v) { return {1.0 / std::tan(v), 1.0 / std::tan(v)}; }

// Around the zenith the bounds may be in either order.
TEST(LineEnds, AllCrossingsCountSlightlyBeyondTheEnds) {
  for (const bool enclosesZenith : {false, true}) {
    for (const auto& [vMin, vMax] : {std::pair{0.7, 2.0}, {2.0, 0.7}}) {
      const LineEndsC line(FrameWithBounds(vMin, vMax, enclosesZenith));
      EXPECT_TRUE(line.AllCount(At(1.0)));
      EXPECT_TRUE(line.AllCount(At(0.7 - 0.9e-8)));
      EXPECT_FALSE(line.AllCount(At(0.7 - 1.1e-8)));
      EXPECT_TRUE(line.AllCount(At(2.0 + 0.9e-8)));
      EXPECT_FALSE(line.AllCount(At(2.0 + 1.1e-8)));
      EXPECT_FALSE(line.AllCount({At(1.0).low, At(0.6).low})) << "a part is above";
      EXPECT_FALSE(line.AllCount({At(2.1).low, At(1.0).low})) << "a part is below";
    }
  }
  const LineEndsC whole(FrameWithBounds(0.0, PI, false));
  EXPECT_TRUE(whole.AllCount({-1e300, 1e300}));
}

TEST(LineEnds, NoCrossingCountsWellBeyondTheEndsAroundTheZenith) {
  for (const auto& [vMin, vMax] : {std::pair{0.7, 2.0}, {2.0, 0.7}}) {
    const LineEndsC line(FrameWithBounds(vMin, vMax, true));
    EXPECT_FALSE(line.NoneCounts(At(1.0)));
    EXPECT_FALSE(line.NoneCounts(At(0.7 - 0.9e-7)));
    EXPECT_TRUE(line.NoneCounts(At(0.7 - 1.1e-7)));
    EXPECT_FALSE(line.NoneCounts(At(2.0 + 0.9e-7)));
    EXPECT_TRUE(line.NoneCounts(At(2.0 + 1.1e-7)));
    EXPECT_FALSE(line.NoneCounts({At(2.1).low, At(1.0).low})) << "a part counts";
    EXPECT_FALSE(line.NoneCounts({At(1.0).low, At(0.6).low})) << "a part counts";
    const LineEndsC other(FrameWithBounds(vMin, vMax, false));
    EXPECT_FALSE(other.NoneCounts(At(0.1)));
    EXPECT_FALSE(other.NoneCounts(At(3.0)));
  }
}

// For every Hz of an edge the line is crossed where the rules count it.
TEST(LineEnds, AllCrossingsOfAnEdgeCountOnlyIfThoseOfEachMeridianDo) {
  RingGenerator random(4);
  int all = 0;
  int missed = 0;
  int wide = 0;
  for (int i = 0; i < 3'000; ++i) {
    AreaFrame frame;
    frame.isPolygon = true;
    const double hz = random.Uniform(0.0, 6.0);
    const double span =
        random.Below(2) == 0 ? random.Uniform(0.05, kShortSpan) : random.Uniform(kShortSpan, 3.0);
    frame.edges = {{hz, random.Uniform(0.3, 2.8)}, {hz + span, random.Uniform(0.3, 2.8)}};
    if (random.Below(2) == 0) std::swap(frame.edges[0], frame.edges[1]);
    // Bounds that are often those of the ends, from which the arc bulges.
    const auto [low, high] = std::minmax(frame.edges[0].V, frame.edges[1].V);
    frame.vMin = random.Below(3) == 0 ? low : low - random.Uniform(0.0, 0.4);
    frame.vMax = random.Below(3) == 0 ? high : high + random.Uniform(0.0, 0.4);
    // A second edge back, so that there are two corners.
    frame.edges.push_back(frame.edges[1]);
    frame.edges.push_back(frame.edges[0]);
    const RingCurves ring = BuildRingCurves(frame);
    if (ring.curves[0].kind != ArcCurve::kArc) continue;
    const LineEndsC line(frame);
    const bool allCount = line.AllCount(ring.curves[0], ring.Orient(0));
    bool doAllCount = true;
    for (int s = 0; s <= 50; ++s) {
      const double h = NormalizeAngle(hz + span * s / 50.0);
      double v = 0.0;
      const ArcEdgeC arc{SpherePointC(frame.edges[0]), SpherePointC(frame.edges[1])};
      doAllCount &= arc.CrossesMeridian(h, std::cos(h), std::sin(h), frame.vMin, frame.vMax, v);
    }
    if (allCount) {
      ASSERT_TRUE(doAllCount) << i;
      ++all;
      wide += span > kShortSpan;
    }
    missed += doAllCount && !allCount;
  }
  EXPECT_GT(all, 500);
  EXPECT_GT(wide, 100);
  EXPECT_LT(missed, 10) << "nearly always it is known";
}

}  // namespace
}  // namespace GMAT
