#include <limits>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/sphere_point.h>

namespace GMAT {
namespace {

TEST(SpherePoint, IsNotSetAtFirst) {
  const SpherePointC p;
  EXPECT_EQ(p.GetLatitude(), std::numeric_limits<double>::max());
  EXPECT_EQ(p.GetLongitude(), std::numeric_limits<double>::max());
}

TEST(SpherePoint, LatitudeCountsFromTheHorizonAndIsWrapped) {
  EXPECT_EQ(SpherePointC({1.0, 0.0}).GetLatitude(), HALF_PI);
  EXPECT_EQ(SpherePointC({1.0, HALF_PI}).GetLatitude(), 0.0);
  EXPECT_EQ(SpherePointC({1.0, PI}).GetLatitude(), -HALF_PI);
  EXPECT_NEAR(SpherePointC({1.0, 5.0}).GetLatitude(), HALF_PI - 5.0 + TWO_PI, 1e-15);
  EXPECT_EQ(SpherePointC({1.0, 500.0}).GetLatitude(), HALF_PI - 500.0)
      << "a refused value changes nothing";
}

TEST(SpherePoint, LongitudeIsHzWhateverItsTurn) {
  EXPECT_EQ(SpherePointC({11.0, 1.0}).GetLongitude(), 11.0);
  EXPECT_EQ(SpherePointC({-1.0, 1.0}).GetLongitude(), -1.0);
}

TEST(SpherePoint, SetWrapsBothAnglesAndForgetsTheUnitVector) {
  SpherePointC p({0.0, HALF_PI});
  EXPECT_EQ(p.GetUnit().X(), 1.0);
  p.Set(0.5 + TWO_PI, -1.0);
  EXPECT_NEAR(p.GetLatitude(), 0.5, 1e-15);
  EXPECT_NEAR(p.GetLongitude(), TWO_PI - 1.0, 1e-15);
  EXPECT_NEAR(p.GetUnit().Z(), std::sin(0.5), 1e-15);
  p.Set(0.0, 0.1 + TWO_PI);
  EXPECT_NEAR(p.GetLongitude(), 0.1, 1e-15);
  p.Set(2.0, 1.0);  // no number of turns moves a latitude of 2 into range
  EXPECT_EQ(p.GetLatitude(), 2.0);
}

TEST(SpherePoint, UnitVector) {
  const SpherePointC p({0.7, 1.1});
  const double lat = HALF_PI - 1.1;
  EXPECT_EQ(p.GetUnit().X(), std::cos(lat) * std::cos(0.7));
  EXPECT_EQ(p.GetUnit().Y(), std::cos(lat) * std::sin(0.7));
  EXPECT_EQ(p.GetUnit().Z(), std::sin(lat));
}

TEST(SpherePoint, BecomesADirectionAgain) {
  EXPECT_EQ(SpherePointC({11.0, 1.0}).ToAnglePoint().Hz, 11.0);
  EXPECT_NEAR(SpherePointC({11.0, 1.0}).ToAnglePoint().V, 1.0, 1e-15);
  SpherePointC beyond({1.0, 1.0});
  beyond.Set(2.0, 1.0);  // V = pi/2 - 2 is below 0
  EXPECT_NEAR(beyond.ToAnglePoint().V, HALF_PI - 2.0 + TWO_PI, 1e-15);
}

TEST(SpherePoint, EqualityHasTenDigitsAndOneTurn) {
  const SpherePointC p({0.0, 1.0});
  EXPECT_EQ(p, SpherePointC({0.9e-10, 1.0}));
  EXPECT_EQ(p, SpherePointC({0.0, 1.0 + 0.9e-10}));
  EXPECT_EQ(p, SpherePointC({TWO_PI, 1.0})) << "0 and 2 pi are one longitude";
  EXPECT_EQ(p, SpherePointC({-TWO_PI, 1.0}));
  EXPECT_FALSE(p == SpherePointC({2.0 * TWO_PI, 1.0})) << "one turn, not two";
  EXPECT_FALSE(p == SpherePointC({1.1e-10, 1.0}));
  EXPECT_FALSE(p == SpherePointC({0.0, 1.0 + 1.1e-10}));
}

}  // namespace
}  // namespace GMAT
