#include <cmath>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace GMAT
