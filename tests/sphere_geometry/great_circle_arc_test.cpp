#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>

namespace GMAT {
namespace {

GreatCircleArcC Arc(AnglePointC a, AnglePointC b) { return {SpherePointC(a), SpherePointC(b)}; }

TEST(GreatCircleArc, EndsDetermineWhetherThereIsAnArcAndItsKind) {
  const struct {
    const char* what;
    AnglePointC a, b;
    bool valid, meridian, equator;
  } cases[] = {
      {"anywhere", {0.1, 1.0}, {0.5, 1.2}, true, false, false},
      {"equal ends", {0.1, 1.0}, {0.1 + 5e-11, 1.0}, false, false, false},
      {"ends a turn apart", {0.1, 1.0}, {0.1 + TWO_PI, 1.0}, false, false, false},
      {"antipodal ends", {0.1, 1.0}, {0.1 + PI, PI - 1.0}, false, false, false},
      {"opposite on the equator", {0.1, HALF_PI}, {0.1 + PI, HALF_PI}, false, false, false},
      {"pole to pole", {0.1, 0.0}, {0.7, PI}, false, false, false},
      {"one pole twice", {0.1, 0.0}, {0.7, 0.0}, false, false, false},
      {"along a meridian", {0.1, 0.5}, {0.1, 1.5}, true, true, false},
      {"over the pole", {0.1, 0.5}, {0.1 + PI, 0.6}, true, true, false},
      {"over the pole, back", {0.1 + PI, 0.5}, {0.1, 0.6}, true, true, false},
      {"over the pole, same height", {0.1, 0.5}, {0.1 + PI, 0.5}, true, true, false},
      {"over the pole, another turn", {7.0, 0.5}, {7.0 - PI, 0.6}, true, false, false},
      {"from the pole", {0.1, 0.0}, {2.0, 0.6}, true, true, false},
      {"to the pole", {0.1, 1.0}, {2.0, PI}, true, true, false},
      {"on the equator", {0.1, HALF_PI}, {0.9, HALF_PI}, true, false, true},
      {"on the equator to ten digits", {0.1, HALF_PI + 9e-11}, {0.9, HALF_PI}, true, false, true},
      {"beside the equator", {0.1, HALF_PI + 2e-10}, {0.9, HALF_PI}, true, false, false},
      {"from the equator", {0.1, HALF_PI}, {0.9, 1.5}, true, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const GreatCircleArcC arc = Arc(c.a, c.b);
    EXPECT_EQ(arc.IsValid(), c.valid);
    EXPECT_EQ(arc.IsMeridian(), c.meridian);
    EXPECT_EQ(arc.IsEquator(), c.equator);
  }
}

TEST(GreatCircleArc, CourseIsMeasuredFromNorthThroughEast) {
  const AnglePointC from{1.0, HALF_PI};
  EXPECT_NEAR(Arc(from, {1.0, 1.0}).GetCourse(), 0.0, 1e-15);
  EXPECT_NEAR(Arc(from, {1.001, HALF_PI - 0.001}).GetCourse(), PI / 4.0, 1e-6);
  EXPECT_NEAR(Arc(from, {1.001, HALF_PI + 0.001}).GetCourse(), 3.0 * PI / 4.0, 1e-6);
  EXPECT_NEAR(Arc(from, {0.999, HALF_PI + 0.001}).GetCourse(), 5.0 * PI / 4.0, 1e-6);
  EXPECT_NEAR(Arc(from, {0.999, HALF_PI - 0.001}).GetCourse(), 7.0 * PI / 4.0, 1e-6);
  // Due south the arc tangent returns -0.0, which is not less than 0.
  EXPECT_EQ(Arc(from, {1.0, 2.0}).GetCourse(), 0.0);
}

TEST(GreatCircleArc, VertexIsTheHighestPointOfTheCircle) {
  double lat = 0.0;
  double lon = 0.0;
  // Two points of equal height: the vertex lies in the middle.
  ASSERT_TRUE(Arc({1.0, 0.8}, {2.0, 0.8}).GetVertex(lat, lon));
  EXPECT_NEAR(lon, 1.5, 1e-14);
  EXPECT_NEAR(lat, std::atan(std::tan(HALF_PI - 0.8) / std::cos(0.5)), 1e-14);
  ASSERT_TRUE(Arc({1.0, PI - 0.8}, {2.0, PI - 0.8}).GetVertex(lat, lon));
  EXPECT_NEAR(lon, 1.5, 1e-14);
  EXPECT_NEAR(lat, -std::atan(std::tan(HALF_PI - 0.8) / std::cos(0.5)), 1e-14);
  // For an arc from the equator it is the northern one in any direction.
  ASSERT_TRUE(Arc({1.0, HALF_PI}, {2.0, 1.8}).GetVertex(lat, lon));
  EXPECT_GT(lat, 0.0);
  // The longitude is not normalised.
  ASSERT_TRUE(Arc({8.0, 0.8}, {9.0, 0.8}).GetVertex(lat, lon));
  EXPECT_NEAR(lon, 8.5, 1e-14);
  EXPECT_FALSE(Arc({1.0, 0.8}, {1.0, 0.8}).GetVertex(lat, lon));
  EXPECT_NEAR(lon, 8.5, 1e-14) << "a failure does not change the arguments";
}

TEST(GreatCircleArc, CircleOfLatitudeIsCrossedTwiceOrNever) {
  const GreatCircleArcC arc = Arc({1.0, 1.0}, {2.0, 1.0});
  double lon1 = 0.0;
  double lon2 = 0.0;
  ASSERT_TRUE(arc.GetLatitudeCrossings(HALF_PI - 1.0, lon1, lon2));
  EXPECT_NEAR(lon1, 2.0, 1e-7);
  EXPECT_NEAR(lon2, 1.0, 1e-7);
  ASSERT_TRUE(arc.GetLatitudeCrossings(HALF_PI - 0.1, lon1, lon2));
  EXPECT_TRUE(std::isnan(lon1) && std::isnan(lon2)) << "above the vertex";
  EXPECT_FALSE(Arc({1.0, HALF_PI}, {2.0, HALF_PI}).GetLatitudeCrossings(0.1, lon1, lon2));
  EXPECT_FALSE(Arc({1.0, 1.0}, {1.0, 1.0}).GetLatitudeCrossings(0.1, lon1, lon2));
}

TEST(LatitudeCrossings, LieInTheFrameOfTheArc) {
  std::vector<AnglePointC> out;
  FindLatitudeCrossings({12.0, 1.0}, {13.0, 1.0}, 0.95, out);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_NEAR(out[0].Hz + out[1].Hz, 25.0, 1e-12);
  for (const AnglePointC& at : out) {
    EXPECT_GT(at.Hz, 12.0);
    EXPECT_LT(at.Hz, 13.0);
    EXPECT_EQ(at.V, 0.95);
  }
  FindLatitudeCrossings({12.0, 1.0}, {13.0, 1.0}, 1.01, out);
  EXPECT_EQ(out.size(), 2u) << "the circle is crossed beyond both ends";
  FindLatitudeCrossings({12.0, HALF_PI}, {13.0, HALF_PI}, HALF_PI, out);
  EXPECT_EQ(out.size(), 2u) << "the equator has none";
}

TEST(LatitudeCrossings, OfTheCircleThroughTheVertexAreOne) {
  int found = 0;
  for (int i = 1; i < 20; ++i) {
    const AnglePointC a{1.0, 0.5 + 0.05 * i};
    const AnglePointC b{2.0, 0.5 + 0.05 * i};
    double lat = 0.0;
    double lon = 0.0;
    ASSERT_TRUE(Arc(a, b).GetVertex(lat, lon));
    const double v = HALF_PI - lat;
    if (HALF_PI - v != lat) continue;  // the circle must have exactly the vertex's latitude
    ++found;
    std::vector<AnglePointC> out;
    FindLatitudeCrossings(a, b, v, out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_NEAR(out[0].Hz, 1.5, 1e-10);
  }
  EXPECT_GT(found, 0);
}

TEST(ArcEdge, HoldsTheLongitudesBetweenItsEndsOnAnyTurn) {
  const ArcEdgeC arc{SpherePointC({12.0, 1.0}), SpherePointC({13.0, 1.1})};
  EXPECT_TRUE(arc.Holds(0.5, 12.5));
  EXPECT_TRUE(arc.Holds(0.5, 12.5 - 2.0 * TWO_PI));
  EXPECT_TRUE(arc.Holds(0.5, 12.5 + TWO_PI));
  EXPECT_TRUE(arc.Holds(0.5, 12.0 - 5e-11));
  EXPECT_FALSE(arc.Holds(0.5, 12.0 - 1e-9));
  EXPECT_FALSE(arc.Holds(0.5, 13.5));
  EXPECT_FALSE(arc.Holds(0.5, 12.5 + PI));
}

TEST(ArcEdge, APoleLiesOnEveryArcThatEndsThereOrPassesOver) {
  const ArcEdgeC over{SpherePointC({1.0, 0.5}), SpherePointC({1.0 + PI, 0.6})};
  const ArcEdgeC from{SpherePointC({1.0, 0.0}), SpherePointC({2.0, 0.6})};
  const ArcEdgeC to{SpherePointC({1.0, 2.0}), SpherePointC({2.0, PI})};
  const ArcEdgeC along{SpherePointC({1.0, 0.5}), SpherePointC({1.0, 0.6})};
  EXPECT_EQ(over.GetPole(), 1);
  EXPECT_EQ(from.GetPole(), 1);
  EXPECT_EQ(to.GetPole(), -1);
  EXPECT_EQ(along.GetPole(), 0);
  EXPECT_TRUE(over.Holds(HALF_PI, 5.0));
  EXPECT_FALSE(over.Holds(-HALF_PI, 1.0));
  EXPECT_TRUE(from.Holds(HALF_PI, 5.0));
  EXPECT_TRUE(to.Holds(-HALF_PI, 5.0));
  // Near the pole, the half plane of the end that is not at the pole counts.
  EXPECT_TRUE(from.Holds(1.3, 2.0));
  EXPECT_FALSE(from.Holds(1.3, 1.0));
  EXPECT_FALSE(from.Holds(0.5, 2.0)) << "below the end";
  EXPECT_TRUE(over.Holds(1.3, 1.0));
  EXPECT_TRUE(over.Holds(1.3, 1.0 + PI));
  EXPECT_FALSE(over.Holds(1.3, 2.0));
  EXPECT_TRUE(along.Holds(HALF_PI - 0.55, 1.0));
  EXPECT_FALSE(along.Holds(HALF_PI - 0.7, 1.0));
}

TEST(ArcEdge, KnowsItsPoleOnAnyTurn) {
  const struct {
    const char* what;
    AnglePointC a, b;
    int pole;
  } cases[] = {
      {"over the zenith", {1.0, 0.5}, {1.0 + PI, 2.5}, 1},
      {"over the nadir", {1.0, 0.7}, {1.0 + PI, 2.5}, -1},
      {"over the zenith on another turn", {7.0, 0.5}, {7.0 - PI, 0.6}, 1},
      {"over the nadir on another turn", {7.0, 2.5}, {7.0 - PI, 2.6}, -1},
      {"from the nadir", {1.0, PI}, {2.0, 2.0}, -1},
      {"to the zenith", {1.0, 1.0}, {2.0, 0.0}, 1},
      {"beside the zenith", {1.0, 1e-3}, {3.0, 1e-3}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const ArcEdgeC arc{SpherePointC(c.a), SpherePointC(c.b)};
    EXPECT_EQ(arc.GetPole(), c.pole);
    EXPECT_EQ(arc.IsThroughPoles(), c.pole != 0);
  }
}

// The product of the unit vectors would lose half of the digits.
TEST(ArcEdge, AShortArcIsCrossedWhereItIs) {
  constexpr double kShort = 1e-6;
  const ArcEdgeC arc{SpherePointC({1.0, 1.0}), SpherePointC({1.0 + kShort, 1.0 + kShort})};
  for (const double part : {0.25, 0.5, 0.75}) {
    SCOPED_TRACE(part);
    const double h = 1.0 + part * kShort;
    double v = 0.0;
    ASSERT_TRUE(arc.CrossesMeridian(h, std::cos(h), std::sin(h), 0.0, 3.0, v));
    EXPECT_NEAR(v, 1.0 + part * kShort, kShort * kShort);  // the chord is straight up to this
  }
}

TEST(ArcEdge, AMeridianCrossesOnlyOnItsOwnSide) {
  const ArcEdgeC arc{SpherePointC({1.0, 1.0}), SpherePointC({2.0, 1.0})};
  double v = -1.0;
  ASSERT_TRUE(arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), 0.0, 3.0, v));
  EXPECT_NEAR(v, HALF_PI - std::atan(std::tan(HALF_PI - 1.0) / std::cos(0.5)), 1e-15);
  const double opposite = 1.5 + PI;
  EXPECT_FALSE(arc.CrossesMeridian(opposite, std::cos(opposite), std::sin(opposite), 0.0, 3.0, v));
  EXPECT_FALSE(arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), 1.0, 3.0, v))
      << "above the line";
}

TEST(ArcEdge, AMeridianInTheArcsPlaneDoesNotCross) {
  const ArcEdgeC along{SpherePointC({1.0, 0.5}), SpherePointC({1.0, 1.5})};
  double v = 0.0;
  for (const double h : {1.0, 1.0 + 5e-11, 1.0 + PI, 2.0}) {
    SCOPED_TRACE(h);
    EXPECT_FALSE(along.CrossesMeridian(h, std::cos(h), std::sin(h), 0.0, 3.0, v));
  }
  const ArcEdgeC toPole{SpherePointC({1.0, 0.5}), SpherePointC({4.0, 0.0})};
  EXPECT_FALSE(toPole.CrossesMeridian(1.0, std::cos(1.0), std::sin(1.0), 0.0, 3.0, v));
  EXPECT_TRUE(toPole.CrossesMeridian(2.0, std::cos(2.0), std::sin(2.0), 0.0, 3.0, v));
  EXPECT_EQ(v, 0.0);
}

TEST(ArcEdge, TheLineReachesAsFarAsAVertexMayBeOff) {
  const ArcEdgeC arc{SpherePointC({1.0, 1.0}), SpherePointC({2.0, 1.1})};
  double v = 0.0;
  ASSERT_TRUE(arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), 0.0, 3.0, v));
  double ignored = 0.0;
  const auto crosses = [&](double vMin, double vMax) {
    return arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), vMin, vMax, ignored);
  };
  EXPECT_TRUE(crosses(v + 2.1e-8, 3.0));
  EXPECT_FALSE(crosses(v + 2.3e-8, 3.0));
  EXPECT_TRUE(crosses(0.0, v - 2.1e-8));
  EXPECT_FALSE(crosses(0.0, v - 2.3e-8));
}

TEST(ArcEdge, ArcsCrossWhereBothHoldThePoint) {
  AnglePointC at;
  const auto edge = [](AnglePointC a, AnglePointC b) {
    return ArcEdgeC(SpherePointC(a), SpherePointC(b));
  };
  ASSERT_TRUE(
      FindSphericalCrossing(edge({1.0, 1.0}, {2.0, 1.5}), edge({1.0, 1.5}, {2.0, 1.0}), at));
  EXPECT_NEAR(at.Hz, 1.5, 1e-14);
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.0}, {2.0, 1.5}), edge({2.1, 1.5}, {3.0, 1.0}), at));
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.5}, {1.5, 1.5}), edge({1.0, 1.5}, {1.5, 1.5}), at))
      << "one great circle";
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.0}, {1.0, 1.0}), edge({1.0, 1.5}, {2.0, 1.0}), at))
      << "no arc";
  // The great circles intersect within only one of the arcs.
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.0}, {2.0, 1.5}), edge({2.5, 1.2}, {2.6, 2.2}), at));
  EXPECT_FALSE(
      FindSphericalCrossing(edge({2.5, 1.2}, {2.6, 2.2}), edge({1.0, 1.0}, {2.0, 1.5}), at));
  // Planes at an angle of 1e-10 or less count as one.
  const auto atHorizon = [&](double tilt) {
    return FindSphericalCrossing(edge({1.0, HALF_PI}, {2.0, HALF_PI}),
                                 edge({1.0, HALF_PI - tilt}, {2.0, HALF_PI + tilt}), at);
  };
  EXPECT_FALSE(atHorizon(4e-11));  // the sine is about twice the tilt
  EXPECT_TRUE(atHorizon(6e-11));
  EXPECT_NEAR(at.Hz, 1.5, 1e-4);
  // Two meridian edges meet at the pole over which both pass.
  EXPECT_TRUE(
      FindSphericalCrossing(edge({0.0, 0.5}, {PI, 0.5}), edge({1.0, 0.5}, {1.0 + PI, 0.5}), at));
  EXPECT_NEAR(at.V, 0.0, 1e-15);
}

TEST(PlanarEdges, CrossWithinTheSpansOfBoth) {
  AnglePointC at;
  ASSERT_TRUE(FindPlanarCrossing({0.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, 0.0}, at));
  EXPECT_EQ(at, (AnglePointC{1.0, 1.0}));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 0.0}, {2.0, 2.0}, {3.0, 2.0}, {5.0, 0.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 0.0}, {2.0, 2.0}, {0.0, 1.0}, {2.0, 3.0}, at))
      << "parallel";
  // Lines that are nearly parallel still cross.
  EXPECT_TRUE(FindPlanarCrossing({0.0, 0.0}, {2.0, 1e-9}, {0.0, 1e-9}, {2.0, 0.0}, at));
  // In the span of only one edge; Hz or V of the other edge is not compared.
  EXPECT_FALSE(FindPlanarCrossing({1.0, 0.0}, {1.0, 1.0}, {0.0, 2.0}, {2.0, 2.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 2.0}, {2.0, 2.0}, {1.0, 0.0}, {1.0, 1.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({1.0, 0.0}, {1.0, 1.0}, {2.0, 0.5}, {3.0, 0.5}, at));
  EXPECT_FALSE(FindPlanarCrossing({2.0, 0.5}, {3.0, 0.5}, {1.0, 0.0}, {1.0, 1.0}, at));
  // Touching counts, to ten digits.
  EXPECT_TRUE(FindPlanarCrossing({0.0, 0.0}, {2.0, 0.0}, {1.0, 4e-11}, {1.0, 1.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 0.0}, {2.0, 0.0}, {1.0, 1e-9}, {1.0, 1.0}, at));
}

}  // namespace
}  // namespace GMAT
