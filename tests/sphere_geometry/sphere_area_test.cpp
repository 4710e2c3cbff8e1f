#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/object_model/layout.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

SphereAreaC Area(const std::vector<AnglePointC>& points) {
  SphereAreaC area;
  area.AddPoints(points);
  return area;
}

struct Extents {
  double hzMin = -1.0;
  double hzMax = -2.0;
  double vMin = -3.0;
  double vMax = -4.0;
  bool enclosesZenith = false;
  bool result = false;
};

Extents Measure(const SphereAreaC& area, bool noClamp = false) {
  Extents e;
  e.result = area.GetExtents(e.hzMin, e.hzMax, e.vMin, e.vMax, e.enclosesZenith, noClamp);
  return e;
}

std::vector<AnglePointC> RingAtV(double v, int n, double start = 0.0) {
  std::vector<AnglePointC> ring;
  for (int i = 0; i < n; ++i) ring.push_back({NormalizeAngle(start + TWO_PI * i / n), v});
  return ring;
}

const std::vector<AnglePointC> kQuad = {{1.0, 1.0}, {2.0, 1.0}, {2.0, 1.5}, {1.0, 1.5}};

static_assert(API::kHasSize<SphereAreaC, 72>);

TEST(SphereArea, PointsAreAddedCountedAndRemoved) {
  SphereAreaC area;
  EXPECT_EQ(area.GetPointCount(), 0u);
  area.RemoveLastPoint();
  EXPECT_EQ(area.GetPointCount(), 0u);
  EXPECT_TRUE(area.AddPoint(1.0, 0.5));
  EXPECT_TRUE(area.AddPoints({{2.0, 0.6}, {3.0, 3.5}}));
  ASSERT_EQ(area.GetPointCount(), 3u);
  EXPECT_EQ(area.GetPoints()[2], (AnglePointC{NormalizeAngle(3.0 + PI), TWO_PI - 3.5}));
  area.RemoveLastPoint();
  EXPECT_EQ(area.GetPointCount(), 2u);
  area.Clear();
  EXPECT_EQ(area.GetPointCount(), 0u);
}

TEST(SphereArea, ADirectionBeyondTheNadirIsStoredInTheFirstFace) {
  SphereAreaC area;
  area.AddPoint(1.0, 3.5);
  EXPECT_EQ(area.GetPoints()[0], (AnglePointC{1.0 + PI, TWO_PI - 3.5}));
}

TEST(SphereArea, CopiesAreIndependent) {
  SphereAreaC area = Area(kQuad);
  const SphereAreaC copy = area;
  area.Clear();
  EXPECT_EQ(copy.GetPointCount(), 4u);
}

TEST(SphereArea, FewerThanTwoPointsAnswerFalseAndLeaveTheBounds) {
  for (const std::size_t n : {0u, 1u}) {
    SCOPED_TRACE(n);
    const SphereAreaC area = Area(std::vector<AnglePointC>(n, {1.0, 1.0}));
    EXPECT_FALSE(area.IsValid());
    EXPECT_FALSE(area.Contains(1.0, 1.0));
    const Extents e = Measure(area);
    EXPECT_FALSE(e.result);
    EXPECT_EQ(e.hzMin, -1.0);
    EXPECT_EQ(e.hzMax, -2.0);
    EXPECT_EQ(e.vMin, -3.0);
    EXPECT_EQ(e.vMax, -4.0);
    EXPECT_EQ(area.DistanceToBoundary(1.0, 1.0), std::numeric_limits<double>::max());
    std::vector<AnglePointC> out(1);
    EXPECT_FALSE(area.SearchLine({1.0, 1.0}, true, out));
    EXPECT_EQ(out.size(), 1u) << "a search that fails early leaves the output unchanged";
  }
}

TEST(SphereArea, RectangleBounds) {
  Extents e = Measure(Area({{0.1, 0.5}, {6.0, 1.0}}));
  EXPECT_TRUE(e.result);
  EXPECT_EQ(e.hzMin, 0.1);
  EXPECT_EQ(e.hzMax, 6.0 - 0.1 + 0.1);
  EXPECT_EQ(e.vMin, 0.5);
  EXPECT_EQ(e.vMax, 1.0);
  EXPECT_FALSE(e.enclosesZenith);
  // With the corners swapped in Hz it crosses the seam.
  e = Measure(Area({{6.0, 0.5}, {0.1, 1.0}}));
  EXPECT_TRUE(e.result);
  EXPECT_EQ(e.hzMin, 6.0);
  EXPECT_EQ(e.hzMax, 6.0 + (0.1 + TWO_PI - 6.0));
}

TEST(SphereArea, ARectangleWithoutWidthDoesNotGoAround) {
  const Extents e = Measure(Area({{1.0, 0.5}, {1.0, 1.0}}));
  EXPECT_EQ(e.hzMin, 1.0);
  EXPECT_EQ(e.hzMax, 1.0);
}

TEST(SphereArea, TheEdgesOfARectangleBeginAtItsLeftSide) {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  ASSERT_TRUE(Area({{1.0, 0.5}, {3.0, 1.5}}).BuildEdgeList(edges, hzOrigin));
  const std::vector<AnglePointC> expected = {{0.0, 0.5}, {0.0, 1.5}, {0.0, 1.5}, {2.0, 1.5},
                                             {2.0, 1.5}, {2.0, 0.5}, {2.0, 0.5}, {0.0, 0.5}};
  EXPECT_EQ(edges, expected);
  EXPECT_EQ(hzOrigin, 1.0);
  // The value that the caller passes is added to the second corner, unless the rectangle crosses
  // the seam.
  hzOrigin = 0.25;
  ASSERT_TRUE(Area({{1.0, 0.5}, {3.0, 1.5}}).BuildEdgeList(edges, hzOrigin));
  EXPECT_EQ(edges[3].Hz, 2.25);
  hzOrigin = 0.25;
  ASSERT_TRUE(Area({{6.0, 0.5}, {0.5, 1.5}}).BuildEdgeList(edges, hzOrigin));
  EXPECT_EQ(edges[3].Hz, 0.5 + TWO_PI - 6.0);
  EXPECT_EQ(hzOrigin, 6.0);
}

TEST(SphereArea, TheEdgeThatClosesARectangleIsAtTheFirstV) {
  const SphereAreaC area = Area({{0.0, 1.0}, {2.0, 1.5}});
  EXPECT_NEAR(area.DistanceToBoundary(1.0, 1.4), 0.1, 1e-15);
  EXPECT_NEAR(area.DistanceToBoundary(1.0, 1.1), 0.4, 1e-15) << "not 0.1";
  const double outside = 0.9 * CONTAINS_TOLERANCE / 2.0;
  EXPECT_TRUE(area.Contains(1.0, 1.5 + outside));
  EXPECT_TRUE(area.Contains(2.0 + outside, 1.2));
  EXPECT_FALSE(area.Contains(1.0, 1.0 - outside));
}

TEST(SphereArea, RectangleContainsWhatLiesBetweenItsCorners) {
  const SphereAreaC area = Area({{1.0, 0.5}, {2.0, 1.0}});
  EXPECT_TRUE(area.Contains(1.5, 0.75));
  EXPECT_TRUE(area.Contains(1.5 - TWO_PI, 0.75));
  EXPECT_TRUE(area.Contains(1.5 + 10 * TWO_PI, 0.75));
  EXPECT_FALSE(area.Contains(1.5 + 20 * TWO_PI, 0.75)) << "beyond 100 rad";
  EXPECT_FALSE(area.Contains(0.5, 0.75));
  EXPECT_FALSE(area.Contains(2.5, 0.75));
  EXPECT_FALSE(area.Contains(1.5, 0.4));
  EXPECT_FALSE(area.Contains(1.5, 1.1));
  const SphereAreaC overSeam = Area({{6.0, 0.5}, {0.3, 1.0}});
  EXPECT_TRUE(overSeam.Contains(0.0, 0.75));
  EXPECT_TRUE(overSeam.Contains(TWO_PI, 0.75));
  EXPECT_TRUE(overSeam.Contains(6.1, 0.75));
  EXPECT_TRUE(overSeam.Contains(0.2, 0.75));
  EXPECT_FALSE(overSeam.Contains(3.0, 0.75));
}

TEST(SphereArea, EveryPointMustLieInRangeToTenDigits) {
  const struct {
    AnglePointC p;
    bool valid;
  } cases[] = {
      {{0.0, 0.5}, true},         {{TWO_PI, 0.5}, true},         {{-4e-11, 0.5}, true},
      {{-1e-9, 0.5}, false},      {{TWO_PI + 1e-9, 0.5}, false}, {{7.0, 0.5}, false},
      {{0.0, -4e-11}, true},      {{0.0, -1e-9}, false},         {{0.0, PI}, true},
      {{kNaN, 0.5}, false},       {{0.0, kNaN}, false},          {{kInfinity, 0.5}, false},
      {{0.0, -kInfinity}, false}, {{1e300, 0.5}, false},
  };
  for (const auto& [p, valid] : cases) {
    SCOPED_TRACE(testing::Message() << p.Hz << ", " << p.V);
    EXPECT_EQ(Area({p, {1.0, 1.0}}).IsValid(), valid);
  }
}

TEST(SphereArea, NoTwoPointsMayBeExactlyEqual) {
  EXPECT_FALSE(Area({{1.0, 1.0}, {1.0, 1.0}}).IsValid());
  EXPECT_FALSE(Area({{0.0, 1.0}, {-0.0, 1.0}}).IsValid());
  EXPECT_TRUE(Area({{1.0, 1.0}, {std::nextafter(1.0, 2.0), 1.0}}).IsValid());
  EXPECT_FALSE(Area({{1.0, 1.0}, {2.0, 1.0}, {1.5, 1.5}, {1.0, 1.0}}).IsValid());
  EXPECT_TRUE(Area({{1.0, 1.0}, {1.0, 2.0}}).IsValid()) << "a rectangle without width";
}

TEST(SphereArea, ABowTieIsNotValid) {
  EXPECT_TRUE(Area(kQuad).IsValid());
  EXPECT_FALSE(Area({kQuad[0], kQuad[2], kQuad[1], kQuad[3]}).IsValid());
  EXPECT_FALSE(Area({kQuad[0], kQuad[1], kQuad[3], kQuad[2]}).IsValid());
  // Across the seam as well.
  EXPECT_TRUE(Area({{6.0, 1.0}, {0.3, 1.0}, {0.3, 1.5}, {6.0, 1.5}}).IsValid());
  EXPECT_FALSE(Area({{6.0, 1.0}, {0.3, 1.5}, {0.3, 1.0}, {6.0, 1.5}}).IsValid());
}

// Not star-shaped, so its edges are compared with each other.
TEST(SphereArea, ACombIsValid) {
  const std::vector<AnglePointC> comb = {{1.0, 1.0}, {1.2, 1.5}, {1.4, 1.0}, {1.6, 1.5},
                                         {1.8, 1.0}, {2.0, 1.5}, {2.2, 1.0}, {2.2, 2.0},
                                         {1.6, 1.9}, {1.0, 2.0}};
  for (std::size_t first = 0; first < comb.size(); ++first) {
    SCOPED_TRACE(first);
    std::vector<AnglePointC> ring = comb;
    std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(first), ring.end());
    EXPECT_TRUE(Area(ring).IsValid());
    EXPECT_TRUE(Area(ring).Contains(1.6, 1.7));
    EXPECT_FALSE(Area(ring).Contains(1.6, 1.3));
    std::iter_swap(std::find(ring.begin(), ring.end(), AnglePointC{2.2, 2.0}),
                   std::find(ring.begin(), ring.end(), AnglePointC{1.0, 2.0}));
    EXPECT_FALSE(Area(ring).IsValid());
  }
}

TEST(SphereArea, AnEdgeThatTouchesAnotherToTenDigitsCrossesIt) {
  const auto spike = [](double gap) {
    return Area({{1.0, 1.0}, {2.0, 1.0}, {1.0 + gap, 1.25}, {2.0, 1.5}, {1.0, 1.5}});
  };
  EXPECT_FALSE(spike(0.0).IsValid());
  EXPECT_FALSE(spike(4e-11).IsValid());
  EXPECT_TRUE(spike(1e-9).IsValid());
}

TEST(SphereArea, ATriangleNeverCrossesItself) {
  EXPECT_TRUE(Area({{1.0, 1.0}, {2.0, 1.0}, {1.5, 1.5}}).IsValid());
  EXPECT_TRUE(Area({{1.0, 1.0}, {2.0, 1.0}, {1.5, 1.0}}).IsValid());
}

// A crossing counts only if both the arcs and the straight chords cross.
TEST(SphereArea, ACrossingOnlyOnTheSphereDoesNotCount) {
  // The long edge at V = 1 bulges up on the sphere, to V = 0.72; the two points at V = 0.9 above
  // the chord lie below the arc.
  const std::vector<AnglePointC> ring = {{1.0, 1.0}, {3.0, 1.0}, {3.5, 0.5},
                                         {2.1, 0.9}, {1.9, 0.9}, {0.5, 0.5}};
  EXPECT_TRUE(Area(ring).IsValid());
}

TEST(SphereArea, RingAroundTheZenith) {
  const SphereAreaC area = Area(RingAtV(0.3, 12, 0.5));
  const Extents e = Measure(area);
  EXPECT_TRUE(e.result);
  EXPECT_TRUE(e.enclosesZenith);
  EXPECT_EQ(e.hzMin, 0.5 + 1e-6);
  EXPECT_NEAR(e.hzMax - e.hzMin, TWO_PI, 1e-14);
  EXPECT_EQ(e.vMax, V_LIMIT);
  EXPECT_LT(e.vMin, 0.3);
  EXPECT_TRUE(area.Contains(2.0, 0.0));
  EXPECT_TRUE(area.Contains(2.0, 0.2));
  EXPECT_FALSE(area.Contains(2.0, 0.4));
  // In the other orientation it is the same area.
  std::vector<AnglePointC> back = RingAtV(0.3, 12, 0.5);
  std::reverse(back.begin(), back.end());
  EXPECT_TRUE(Area(back).Contains(2.0, 0.2));
  EXPECT_FALSE(Area(back).Contains(2.0, 0.4));
}

TEST(SphereArea, EveryRingAroundTheAxisEnclosesTheZenith) {
  for (int n = 3; n < 40; ++n) {
    SCOPED_TRACE(n);
    std::vector<AnglePointC> ring = RingAtV(0.3, n, 0.1 * n);
    EXPECT_TRUE(Measure(Area(ring)).enclosesZenith);
    std::reverse(ring.begin(), ring.end());
    EXPECT_TRUE(Measure(Area(ring)).enclosesZenith);
  }
}

TEST(SphereArea, TheBoundsOfARingAroundTheZenithBeginAtItsFirstPoint) {
  // The smallest Hz is that of the second point.
  const Extents e =
      Measure(Area({{0.5, 0.3}, {0.3, 0.4}, {1.5, 0.3}, {3.0, 0.3}, {4.5, 0.3}, {6.0, 0.3}}));
  EXPECT_TRUE(e.enclosesZenith);
  EXPECT_EQ(e.hzMin, 0.5 + 1e-6);
  EXPECT_EQ(e.hzMax, 0.5 + 1e-6 + TWO_PI);
}

TEST(SphereArea, ARingThatWindsTwiceEnclosesTheZenith) {
  std::vector<AnglePointC> ring;
  for (int i = 0; i < 10; ++i) {
    ring.push_back({NormalizeAngle(3.0 + 2.0 * TWO_PI * i / 10), 0.3 + 0.05 * i});
  }
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  for (int way = 0; way < 2; ++way) {
    ASSERT_TRUE(Area(ring).BuildEdgeList(edges, hzOrigin));
    for (std::size_t i = 0; i < edges.size(); i += 2) {
      EXPECT_NEAR(std::fabs(edges[i + 1].Hz - edges[i].Hz), 2.0 * TWO_PI / 10, 1e-14);
    }
    EXPECT_NEAR(std::fabs(edges.back().Hz - edges.front().Hz), 2.0 * TWO_PI, 1e-13);
    EXPECT_TRUE(Measure(Area(ring)).enclosesZenith);
    std::reverse(ring.begin(), ring.end());
  }
}

TEST(SphereArea, ARingAroundTheZenithNeedNotBeValid) {
  // Two neighbours were swapped, so the ring crosses itself there.
  std::vector<AnglePointC> ring = RingAtV(0.6, 12);
  for (std::size_t i = 0; i < ring.size(); i += 2) ring[i].V = 0.9;
  std::swap(ring[3], ring[5]);
  const SphereAreaC area = Area(ring);
  EXPECT_FALSE(area.IsValid());
  const Extents e = Measure(area);
  EXPECT_TRUE(e.result);
  EXPECT_TRUE(e.enclosesZenith);
  EXPECT_TRUE(area.Contains(5.0, 0.2));
  EXPECT_FALSE(area.Contains(5.0, 1.2));
  std::vector<AnglePointC> out;
  EXPECT_TRUE(area.SearchLine({5.0, 0.2}, true, out));
  EXPECT_EQ(out.size(), 1u);
}

// The first six edges go around, the others come back below: the frame is wider than a turn.
TEST(SphereArea, AnAreaMayBeWiderThanATurn) {
  const SphereAreaC area = Area({{0.0, 1.5},
                                 {2.0, 1.5},
                                 {4.0, 1.5},
                                 {6.0, 1.5},
                                 {1.0, 1.0},
                                 {1.7, 1.0},
                                 {6.1, 2.0},
                                 {4.0, 2.0},
                                 {2.0, 2.0},
                                 {0.1, 2.0}});
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  ASSERT_TRUE(area.BuildEdgeList(edges, hzOrigin));
  EXPECT_NEAR(edges[9].Hz, 1.7 + TWO_PI, 1e-15);
  EXPECT_EQ(edges.back(), edges.front());
  const Extents e = Measure(area);
  EXPECT_TRUE(e.result);
  EXPECT_FALSE(e.enclosesZenith);
  EXPECT_EQ(e.hzMin, 0.0);
  EXPECT_NEAR(e.hzMax, 1.7 + TWO_PI, 1e-15);
  // The vertex of the edge at V = 1 is found on the edge, beyond the turn.
  EXPECT_NEAR(e.vMin, HALF_PI - std::atan(std::tan(HALF_PI - 1.0) / std::cos(0.35)), 1e-14);
  EXPECT_TRUE(area.Contains(1.35, 1.05));
  EXPECT_TRUE(area.Contains(1.35, 1.8)) << "below, on the first turn";
  std::vector<AnglePointC> out;
  ASSERT_TRUE(area.SearchLine({0.0, 1.2}, false, out));
  ASSERT_EQ(out.size(), 2u);
  EXPECT_GT(out[0].Hz, 6.0);
  EXPECT_GT(out[1].Hz, TWO_PI + 1.0) << "in the frame of the edges";
}

TEST(SphereArea, ARingBelowTheLimitIsFollowedBetweenTheLimitAndItsTop) {
  // The bounds in V are then in the wrong order: 0.8 pi, and 2.6 at the corners.
  const SphereAreaC area = Area(RingAtV(2.6, 12, 0.5));
  const Extents e = Measure(area, true);
  EXPECT_EQ(e.vMin, 2.6);
  EXPECT_EQ(e.vMax, V_LIMIT);
  EXPECT_TRUE(area.Contains(0.5, 1.0)) << "at a corner";
  EXPECT_FALSE(area.Contains(0.6, 1.0)) << "between its corners, the ring is below its top";
}

TEST(SphereArea, ARingAroundTheZenithEndsAtTheLimit) {
  // Where its boundary lies below the limit, nothing is inside: the search line ends above it.
  const SphereAreaC area = Area(RingAtV(2.6, 12, 0.5));
  EXPECT_EQ(Measure(area).vMax, V_LIMIT);
  EXPECT_FALSE(area.Contains(2.0, 1.0));
}

TEST(SphereArea, BoundsAreClampedOnRequest) {
  const SphereAreaC area = Area({{1.0, 1.0}, {2.0, 2.6}});
  EXPECT_EQ(Measure(area, false).vMax, 2.5132741228718345);
  EXPECT_EQ(Measure(area, true).vMax, 2.6);
  const SphereAreaC above = Area({{1.0, -0.2}, {2.0, 1.0}});
  EXPECT_EQ(Measure(above, false).vMin, 0.0);
  EXPECT_EQ(Measure(above, true).vMin, -0.2);
  EXPECT_FALSE(Measure(above, true).result) << "the bounds are set nevertheless";
}

class UnlimitedAreaC : public SphereAreaC {
 public:
  UnlimitedAreaC() { SetVUnlimited(true); }
};

// Callers hold sphere areas by value.
TEST(SphereArea, HoldsItsMembersInOrder) {
  if (!API::kSizesArePromised) GTEST_SKIP() << "the offsets hold for 64-bit pointers";
  UnlimitedAreaC area;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&area);
  const auto at = [bytes](auto value, std::size_t offset) {
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
  };
  EXPECT_EQ(at(std::uint32_t{9}, 8), 1u);
  EXPECT_EQ(at(std::uint64_t{9}, 16), 0u);
  EXPECT_EQ(at(std::uint8_t{9}, 24), 0u);
  EXPECT_EQ(at(std::uint64_t{9}, 32), 0u);
  EXPECT_EQ(reinterpret_cast<const unsigned char*>(&area.GetPoints()) - bytes, 40);
  EXPECT_EQ(at(std::uint8_t{9}, 64), 1u);
}

TEST(SphereArea, ClampVSetsOrFailsInTheOrderOfItsChecks) {
  const SphereAreaC area;
  double a = 3.0;
  double b = -1.0;
  EXPECT_TRUE(area.ClampV(a, b, true));
  EXPECT_EQ(a, V_LIMIT);
  EXPECT_EQ(b, 0.0);
  for (const auto& [x, y] : {std::pair(3.0, 1.0), {1.0, 3.0}, {-1.0, 1.0}, {1.0, -1.0}}) {
    a = x;
    b = y;
    EXPECT_FALSE(area.ClampV(a, b, false));
    EXPECT_EQ(a, x);
    EXPECT_EQ(b, y);
  }
  a = V_LIMIT;
  b = 0.0;
  EXPECT_TRUE(area.ClampV(a, b, false));
  // The first value beyond the limits ends a check without clamping; with clamping it continues.
  a = std::nextafter(V_LIMIT, 3.0);
  b = -std::numeric_limits<double>::denorm_min();
  EXPECT_FALSE(area.ClampV(a, b, false));
  EXPECT_GT(a, V_LIMIT);
  EXPECT_TRUE(area.ClampV(a, b, true));
  EXPECT_EQ(a, V_LIMIT);
  EXPECT_EQ(b, 0.0);
  a = -1.0;
  b = 3.0;
  EXPECT_TRUE(area.ClampV(a, b, true));
  EXPECT_EQ(a, 0.0);
  EXPECT_EQ(b, V_LIMIT);
}

TEST(SphereArea, WithoutALimitVStaysAsItIs) {
  UnlimitedAreaC area;
  double a = 3.0;
  double b = -1.0;
  EXPECT_TRUE(area.ClampV(a, b, true));
  EXPECT_TRUE(area.ClampV(a, b, false));
  EXPECT_EQ(a, 3.0);
  EXPECT_EQ(b, -1.0);
  area.AddPoint(1.0, 1.0);
  area.AddPoint(2.0, 2.6);
  EXPECT_EQ(Measure(area).vMax, 2.6);
  // The limit of a ring around the zenith does not come from clamping.
  area.Clear();
  area.AddPoints(RingAtV(0.3, 12));
  EXPECT_EQ(Measure(area).vMax, V_LIMIT);
}

TEST(SphereArea, EdgesBulgeAndWidenTheBounds) {
  const Extents e = Measure(Area(kQuad));
  EXPECT_NEAR(e.vMin, HALF_PI - std::atan(std::tan(HALF_PI - 1.0) / std::cos(0.5)), 1e-14);
  EXPECT_EQ(e.vMax, 1.5) << "the lower edge bulges inwards";
  EXPECT_EQ(e.hzMin, 1.0);
  EXPECT_EQ(e.hzMax, 2.0);
}

TEST(SphereArea, TheSecondVertexCandidateFollowsItsFormula) {
  // An edge of more than a quarter turn that crosses the horizon: the vertex opposite that of its
  // start lies within its span, and enters the bounds as 2 pi - V.
  const std::vector<AnglePointC> ring = {{0.5, 1.2}, {3.4, 1.9}, {2.0, 2.2}};
  const GreatCircleArcC arc{SpherePointC({3.4 - 0.5, 1.9}), SpherePointC({0.0, 1.2})};
  double lat = 0.0;
  double lon = 0.0;
  ASSERT_TRUE(arc.GetVertex(lat, lon));
  const double opposite = NormalizeAngle(lon + PI);
  ASSERT_GT(opposite, 0.0);
  ASSERT_LT(opposite, 2.9);
  const Extents e = Measure(Area(ring), true);
  EXPECT_EQ(e.vMax, NormalizeAngle(TWO_PI - (HALF_PI - lat)));
  EXPECT_GT(e.vMax, PI) << "not a direction of the area";
}

TEST(SphereArea, WhatAnEdgeReachesBeyondTheBoundsIsOutside) {
  // The first edge rises from V = 70 to 69.6 degrees at Hz = 71 degrees. The vertex is computed
  // from the other end, below the horizon, and the opposite candidate is a different point.
  constexpr double kDegree = PI / 180.0;
  const SphereAreaC area = Area({{60 * kDegree, 70 * kDegree},
                                 {190 * kDegree, 100 * kDegree},
                                 {190 * kDegree, 115 * kDegree},
                                 {60 * kDegree, 115 * kDegree}});
  EXPECT_EQ(Measure(area, true).vMin, 70 * kDegree);
  EXPECT_FALSE(area.Contains(71 * kDegree, 75 * kDegree)) << "the edge above is out of bounds";
  EXPECT_TRUE(area.Contains(120 * kDegree, 80 * kDegree));
}

TEST(SphereArea, EdgeListIsUnwrappedAndBeginsAtZero) {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  ASSERT_TRUE(Area({{6.0, 1.0}, {0.3, 1.1}, {0.2, 1.5}}).BuildEdgeList(edges, hzOrigin));
  ASSERT_EQ(edges.size(), 6u);
  EXPECT_EQ(hzOrigin, 6.0);
  EXPECT_EQ(edges[0], (AnglePointC{0.0, 1.0}));
  EXPECT_EQ(edges[1], (AnglePointC{0.3 + TWO_PI - 6.0, 1.1}));
  EXPECT_EQ(edges[2], edges[1]);
  EXPECT_EQ(edges[3], (AnglePointC{0.2 + TWO_PI - 6.0, 1.5}));
  EXPECT_EQ(edges[4], edges[3]);
  EXPECT_EQ(edges[5], edges[0]);
  // Half a turn does not count as a crossing of the seam.
  ASSERT_TRUE(Area({{0.0, 1.0}, {PI, 1.1}, {1.0, 1.5}}).BuildEdgeList(edges, hzOrigin));
  EXPECT_EQ(edges[1].Hz, PI);
  ASSERT_TRUE(Area({{PI, 1.0}, {0.0, 1.1}, {1.0, 1.5}}).BuildEdgeList(edges, hzOrigin));
  EXPECT_EQ(edges[1].Hz, 0.0);
  // Over the seam in the other direction.
  ASSERT_TRUE(Area({{0.3, 1.1}, {6.0, 1.0}, {0.2, 1.5}}).BuildEdgeList(edges, hzOrigin));
  EXPECT_EQ(edges[1].Hz, 0.0);
  EXPECT_NEAR(edges[0].Hz, 0.3 + TWO_PI - 6.0, 1e-15);
  EXPECT_NEAR(hzOrigin, 6.0, 1e-15);
  // The points are outside the first turn, but the origin is in it.
  ASSERT_TRUE(Area({{9.0, 1.0}, {9.5, 1.1}, {9.2, 1.5}}).BuildEdgeList(edges, hzOrigin));
  EXPECT_EQ(edges[1].Hz, 0.5);
  EXPECT_EQ(hzOrigin, NormalizeAngle(9.0));
}

TEST(SphereArea, TheDistanceIsMeasuredAtHzPlusTheOrigin) {
  // Edges begin at Hz 0 of their frame, and the probe is shifted to Hz + 1.
  const SphereAreaC area = Area(kQuad);
  EXPECT_NEAR(area.DistanceToBoundary(-1.0 + 0.5, 1.2), 0.2, 1e-15);
  EXPECT_NEAR(area.DistanceToBoundary(-1.0 + 0.95, 1.2), 0.05, 1e-15);
  EXPECT_EQ(area.DistanceToBoundary(4.0, 1.2), std::numeric_limits<double>::max())
      << "not beside any edge";
  // The closing edge, at Hz 1, is not measured: the nearest is the upper edge.
  EXPECT_NEAR(area.DistanceToBoundary(-1.0 + 0.05, 1.1), 0.1, 1e-15);
}

TEST(SphereArea, TheBoundaryBandCountsAsInside) {
  // With the origin at Hz 0 the band lies where the boundary is.
  const SphereAreaC area = Area({{0.0, 1.0}, {1.0, 1.0}, {1.0, 1.5}, {0.0, 1.5}});
  const double half = CONTAINS_TOLERANCE / 2.0;
  EXPECT_TRUE(area.Contains(1.0 + 0.9 * half, 1.3));
  EXPECT_FALSE(area.Contains(1.0 + 1.1 * half, 1.3));
  EXPECT_TRUE(area.Contains(1.0 - 0.9 * half, 1.3));
  // The band follows the chord of the lower edge, not the arc above it.
  EXPECT_TRUE(area.Contains(0.5, 1.5 + 0.9 * half));
  EXPECT_FALSE(area.Contains(0.5, 1.5 + 1.1 * half));
  EXPECT_FALSE(area.Contains(0.5, 1.5 - 1.1 * half)) << "below the arc";
  // The closing edge has none.
  EXPECT_FALSE(area.Contains(TWO_PI - 0.9 * half, 1.3));
}

TEST(SphereArea, CornersNextToEachOtherOnTheHorizon) {
  // V is given to 8 decimals; the inside must not vanish.
  const SphereAreaC area = Area({{1.0, 1.57079633}, {2.0, 1.57079633}, {2.0, 2.0}, {1.0, 2.0}});
  EXPECT_TRUE(area.Contains(1.5, 1.7));
  EXPECT_FALSE(area.Contains(1.5, 1.5));
}

TEST(SphereArea, PolygonsAtThePolesAndMeridians) {
  const SphereAreaC octant = Area({{0.0, 0.0}, {0.5, HALF_PI}, {2.0, HALF_PI}});
  EXPECT_TRUE(octant.IsValid());
  EXPECT_TRUE(octant.Contains(1.0, 1.0));
  EXPECT_TRUE(octant.Contains(1.0, 0.01));
  EXPECT_FALSE(octant.Contains(2.5, 0.1));
  EXPECT_FALSE(octant.Contains(4.0, 0.1));
  EXPECT_FALSE(octant.Contains(1.0, 1.7));
  // The closing edge passes over the zenith: half of the cap.
  const SphereAreaC half = Area({{0.0, 0.6}, {1.5, 0.6}, {PI, 0.6}});
  EXPECT_TRUE(half.Contains(1.5, 0.3));
  EXPECT_FALSE(half.Contains(4.5, 0.3));
}

TEST(SphereArea, LineSearchSortsAlongTheLine) {
  const SphereAreaC area = Area(kQuad);
  std::vector<AnglePointC> out(1);
  ASSERT_TRUE(area.SearchLine({1.5, 1.2}, true, out));
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].Hz, 0.5) << "in the frame of the edges";
  EXPECT_EQ(out[1].Hz, 0.5);
  EXPECT_NEAR(out[0].V, HALF_PI - std::atan(std::tan(HALF_PI - 1.0) / std::cos(0.5)), 1e-14);
  EXPECT_GT(out[1].V, out[0].V);
  ASSERT_TRUE(area.SearchLine({5.0, 1.2}, true, out));
  EXPECT_TRUE(out.empty());
  ASSERT_TRUE(area.SearchLine({1.5, 1.2}, false, out));
  ASSERT_EQ(out.size(), 2u);
  EXPECT_NEAR(out[0].Hz, 0.0, 1e-7);
  EXPECT_NEAR(out[1].Hz, 1.0, 1e-7);
  EXPECT_EQ(out[0].V, 1.2);
  EXPECT_EQ(out[1].V, 1.2);
  // An edge may be crossed twice: the upper one at V = 0.95, between its ends and its vertex.
  ASSERT_TRUE(area.SearchLine({1.5, 0.95}, false, out));
  EXPECT_EQ(out.size(), 2u);
}

TEST(SphereArea, LineSearchOfARectangle) {
  const SphereAreaC area = Area({{6.0, 0.5}, {0.3, 1.0}});
  std::vector<AnglePointC> out;
  ASSERT_TRUE(area.SearchLine({0.1, 0.7}, true, out));
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].V, 0.5);
  EXPECT_EQ(out[1].V, 1.0);
  ASSERT_TRUE(area.SearchLine({0.1, 0.7}, false, out));
  ASSERT_EQ(out.size(), 2u);
  EXPECT_NEAR(out[0].Hz, 0.0, 1e-15);
  EXPECT_NEAR(out[1].Hz, 0.3 + TWO_PI - 6.0, 1e-15);
  // Every crossing has exactly the Hz of the line.
  for (int i = 0; i < 50; ++i) {
    const double hz = NormalizeAngle(6.0 + 0.01 * i);
    SCOPED_TRACE(hz);
    ASSERT_TRUE(area.SearchLine({hz, 0.7}, true, out));
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0].Hz, NormalizeAngle(hz - 6.0));
    EXPECT_EQ(out[1].Hz, NormalizeAngle(hz - 6.0));
  }
  // Around a full turn the level line begins where it ends, and crosses nothing.
  ASSERT_TRUE(Area({{0.0, 0.5}, {TWO_PI, 1.0}}).SearchLine({1.0, 0.7}, false, out));
  EXPECT_TRUE(out.empty());
}

TEST(SphereArea, LineSearchFails) {
  std::vector<AnglePointC> out(1);
  // An area around the zenith cannot be searched along a circle of latitude.
  const SphereAreaC ring = Area(RingAtV(0.3, 12));
  EXPECT_FALSE(ring.SearchLine({1.0, 0.2}, false, out));
  EXPECT_TRUE(ring.SearchLine({1.0, 0.2}, true, out));
  EXPECT_EQ(out.size(), 1u);
  // A meridian from pole to pole does not form an arc.
  const SphereAreaC poleToPole = Area({{1.0, 0.0}, {1.5, 1.0}, {2.0, PI}, {1.2, 1.5}});
  EXPECT_TRUE(poleToPole.IsValid());
  EXPECT_FALSE(poleToPole.SearchLine({1.4, 1.0}, true, out));
  EXPECT_FALSE(poleToPole.Contains(1.35, 1.2));
  EXPECT_FALSE(Area({kQuad[0], kQuad[2], kQuad[1], kQuad[3]}).SearchLine({1.5, 1.2}, true, out));
}

TEST(SphereArea, ContainsWrapsAndRefuses) {
  const SphereAreaC area = Area(kQuad);
  EXPECT_TRUE(area.Contains(1.5, 1.2));
  EXPECT_TRUE(area.Contains(1.5 + TWO_PI, 1.2 - TWO_PI));
  EXPECT_FALSE(area.Contains(1.5 + PI, TWO_PI - 1.2)) << "the second face is not converted";
  for (const double bad : {101.0, -101.0, kNaN, kInfinity, -kInfinity, 1e300}) {
    SCOPED_TRACE(bad);
    EXPECT_FALSE(area.Contains(bad, 1.2));
    EXPECT_FALSE(area.Contains(1.5, bad));
  }
}

TEST(SphereArea, TinyEdgesKeepTheirShape) {
  // A milliradian wide: at the seam, close to the zenith, and elsewhere.
  for (const AnglePointC at : {AnglePointC{0.0, 1.0}, {0.0005, 0.05}, {3.0, 2.4}}) {
    SCOPED_TRACE(testing::Message() << at.Hz << ", " << at.V);
    const auto corner = [at](double hz, double v) {
      return AnglePointC{NormalizeAngle(at.Hz + hz), at.V + v};
    };
    const SphereAreaC area =
        Area({corner(-5e-4, -5e-4), corner(5e-4, -5e-4), corner(5e-4, 5e-4), corner(-5e-4, 5e-4)});
    EXPECT_TRUE(area.IsValid());
    EXPECT_TRUE(area.Contains(at.Hz, at.V));
    EXPECT_FALSE(area.Contains(at.Hz + 6e-4, at.V));
    EXPECT_FALSE(area.Contains(at.Hz, at.V + 6e-4));
    EXPECT_FALSE(area.Contains(at.Hz, at.V - 6e-4));
  }
}

TEST(SphereArea, SixtyFiveThousandPoints) {
  constexpr int kCount = 65535;
  SphereAreaC area;
  for (int i = 0; i < kCount; ++i) {
    const double angle = TWO_PI * i / kCount;
    const double r = i % 2 == 0 ? 0.5 : 0.45;
    area.AddPoint(3.0 + r * std::cos(angle), 1.5 + r * std::sin(angle));
  }
  EXPECT_EQ(area.GetPointCount(), 65535u);
  EXPECT_TRUE(area.IsValid());
  EXPECT_TRUE(area.Contains(3.0, 1.5));
  EXPECT_TRUE(area.Contains(3.3, 1.7));
  EXPECT_FALSE(area.Contains(3.0, 2.1));
  EXPECT_FALSE(area.Contains(3.4, 1.9));
}

// The ring goes back and forth over half a turn, so its first and its sixth point, which are equal,
// lie a turn apart in its frame; there it is star-shaped.
TEST(SphereArea, EqualPointsATurnApartMakeItInvalid) {
  const std::vector<AnglePointC> ring = {
      {1.9594731342742513, 1.2433330394799877}, {5.1185056256668293, 1.2416082524469993},
      {5.1158643582040249, 1.2358570555021529}, {5.1033076819616117, 1.23465522979527},
      {5.0997810979455771, 1.2375898786181536}, {1.9594731342742513, 1.2433330394799877},
      {5.1010657878640444, 1.2463575187866265}, {5.1030641288205159, 1.248494038725154},
      {5.109397375635095, 1.2566142484889495},  {5.1137475243670298, 1.2465020973497287}};
  EXPECT_FALSE(Area(ring).IsValid());
}

TEST(SphereArea, HugeAndSenselessPointsAreHarmless) {
  const double values[] = {
      kNaN, kInfinity, -kInfinity, 1e300, -1e300, 1e17, std::numeric_limits<double>::max(),
      7.0,  -1e-8};
  std::vector<AnglePointC> out;
  for (const double x : values) {
    for (const double y : values) {
      SCOPED_TRACE(testing::Message() << x << ", " << y);
      for (const std::size_t n : {2u, 3u, 5u}) {
        std::vector<AnglePointC> ring(kQuad.begin(), kQuad.begin() + 2);
        ring.resize(n, {x, y});
        ring.back() = {y, x};
        const SphereAreaC area = Area(ring);
        EXPECT_FALSE(area.IsValid());
        EXPECT_FALSE(area.Contains(x, y) && !Measure(area).result);
        EXPECT_FALSE(area.Contains(kNaN, 1.0));
        area.DistanceToBoundary(y, x);
        area.SearchLine({x, y}, true, out);
        area.SearchLine({x, y}, false, out);
      }
    }
  }
}

TEST(PreparedSphereArea, AnswersAsTheAreaDoesWhere) {
  const struct {
    const char* where;
    std::vector<AnglePointC> ring;
    AnglePointC probe;
  } cases[] = {
      // Far from their corner, near the nadir, two edges are crossed less than 1e-10 rad apart.
      {"two edges come together again",
       {{0x1.25f461f99e444p+2, 0x1.44bec1dc0d063p+0},
        {0x1.f0c4fa923c637p+1, 0x1.8eb9778e8df57p+1},
        {0x1.12013679646e9p+2, 0x1.cce20231231adp+0},
        {0x1.f0c4fa923c637p+1, 0x1.8eb9778e5c7b1p+1},
        {0x1.4ff7c7a8116c5p+1, 0x1.64455a10d2a0bp-1},
        {0x1.6e3f35f9976d2p+1, 0x1.921fb55206ddfp+0}},
       {0x1.f28f5245092d3p+1, 0x1.921ffe6d2bd6ap+0}},
      {"a meridian edge leaves through the end of the search line",
       {{0x1.921fb54442d19p+2, 0x1p+1},
        {-0x0p+0, 0x1.921fb54442d18p+0},
        {0x1.921fb54442d19p+2, 0x1.921fb46d833cbp+1},
        {0x1.5fdbbe9bd3348p+2, 0x1.921fb55206ddfp+0},
        {0x1.921fb54442d19p+2, 0x1.921fb54442d18p+0},
        {0x1.921fb54442d18p+2, 0x1.921fb54442d18p-1},
        {0x1.921fb54442d18p+0, 0x1.921fb54442d18p+0},
        {0x1.921fb54508bbp-1, 0x1.2d97c7f3321d2p+1},
        {0x1.203af9ee75616p-50, 0x1.921fb54442d18p+0},
        {0x1.921fb54442d18p+2, 0x1.921fb54442d18p+0},
        {0x1.2d97c7f3321d2p+1, -0x0p+0},
        {0x1.5fdbbe9bba774p+2, 0x1.3333333333333p-2}},
       {0x1.8bd202cc052f9p-4, 0x1.62d8481ffdfp+0}},
      // The edge belongs to the last column, and its other half to the first.
      {"an edge across Hz 0 ends at the border of a column",
       {{0x1.f6a7a2955385ep+1, 0x0p+0},
        {0x1.921fb54442d19p-1, 0x1.921fb54442d18p+0},
        {0x1.f6a7a2955385ep+1, 0x1.2d97c7f2c429ap+1},
        {0x1.2d97c7f3321d2p+1, 0x1.921fb54442d18p+0},
        {0x1.2d97c7f3321d1p+1, 0x1.41b2f769cf0ep+1},
        {0x1.921fb5445b8ebp+2, 0x1.41b2f769611a8p+1}},
       {0x1.2d97c7f3321cfp+1, 0x1.65adab5efa28ap+0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.where);
    const SphereAreaC area = Area(c.ring);
    const PreparedSphereAreaC prepared(area);
    EXPECT_EQ(prepared.Ask(c.probe.Hz, c.probe.V).isInside, area.Contains(c.probe.Hz, c.probe.V));
  }
}

}  // namespace
}  // namespace GMAT
