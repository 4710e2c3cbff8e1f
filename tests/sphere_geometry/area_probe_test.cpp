#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {
namespace {

bool IsInside(std::vector<double> crossings, double v, bool enclosesZenith = false) {
  return IsInsideByParity(crossings, v, enclosesZenith);
}

TEST(AreaProbe, TheBandIsMeasuredAtHzPlusTheOriginInTheFirstTurn) {
  EXPECT_EQ(BandProbe(1.0, 0.5, 2.0), (AnglePointC{3.0, 0.5}));
  EXPECT_EQ(BandProbe(4.0, 0.5, 3.0), (AnglePointC{7.0 - TWO_PI, 0.5}));
  EXPECT_EQ(BandProbe(0.0, 9.0, 0.0), (AnglePointC{0.0, 9.0})) << "V is unchanged";
  // A full turn to ten digits is not wrapped to 0.
  EXPECT_EQ(BandProbe(TWO_PI, 0.5, 0.0).Hz, TWO_PI);
  EXPECT_EQ(BandProbe(TWO_PI + 9e-11, 0.5, 0.0).Hz, TWO_PI + 9e-11);
  EXPECT_NEAR(BandProbe(TWO_PI + 2e-10, 0.5, 0.0).Hz, 2e-10, 1e-15);
  EXPECT_EQ(BandProbe(-TWO_PI, 0.5, 0.0).Hz, -TWO_PI);
  EXPECT_EQ(BandProbe(-TWO_PI - 9e-11, 0.5, 0.0).Hz, -TWO_PI - 9e-11);
  EXPECT_NEAR(BandProbe(-TWO_PI + 2e-10, 0.5, 0.0).Hz, 2e-10, 1e-15);
}

TEST(AreaProbe, LiesBesideAnEdgeWhenNoEndIsFartherThanItsLength) {
  const AnglePointC a{0.0, 1.0};
  const AnglePointC b{2.0, 1.0};
  EXPECT_TRUE(IsBeside({1.0, 1.5}, a, b));
  EXPECT_TRUE(IsBeside(a, a, b)) << "the other end is one edge length away";
  EXPECT_TRUE(IsBeside(b, a, b));
  EXPECT_FALSE(IsBeside({2.1, 1.0}, a, b));
  EXPECT_FALSE(IsBeside({-0.1, 1.0}, a, b));
  EXPECT_FALSE(IsBeside({1.0, 2.8}, a, b))
      << "at sqrt 3 above the middle, both ends are one edge length away";
  EXPECT_TRUE(IsBeside({1.0, 2.7}, a, b));
}

TEST(AreaProbe, TheBandEndsAtHalfOfTheToleranceToTenDigits) {
  const AnglePointC a{0.0, 1.0};
  const AnglePointC b{2.0, 1.0};
  const double half = CONTAINS_TOLERANCE / 2.0;
  EXPECT_NEAR(half, 0.0005 * PI / 200.0, 1e-20);
  for (const double side : {1.0, -1.0}) {
    EXPECT_TRUE(IsInBand({1.0, 1.0 + side * half}, a, b));
    EXPECT_TRUE(IsInBand({1.0, 1.0 + side * (half + 0.9e-10)}, a, b));
    EXPECT_FALSE(IsInBand({1.0, 1.0 + side * (half + 2e-10)}, a, b));
    EXPECT_TRUE(IsNearBox({1.0, 1.0 + side * (half + 0.9e-10)}, a, b));
  }
  EXPECT_FALSE(IsInBand({2.0 + 1e-6, 1.0}, a, b)) << "beyond the end";
  EXPECT_FALSE(IsInBand(a, a, a)) << "an edge of length 0 has no line";
}

TEST(AreaProbe, IsInsideWithOneCrossingAboveAndAnOddNumberBelow) {
  EXPECT_TRUE(IsInside({0.5, 2.0}, 1.0));
  EXPECT_FALSE(IsInside({0.5, 2.0}, 0.4)) << "nothing above";
  EXPECT_FALSE(IsInside({0.5, 2.0}, 2.1)) << "nothing below";
  EXPECT_FALSE(IsInside({0.5, 2.0, 3.0}, 1.0));
  EXPECT_TRUE(IsInside({0.1, 0.2, 0.5, 2.0}, 1.0)) << "those above are not counted";
  EXPECT_FALSE(IsInside({}, 1.0));
  // If the zenith is inside, no crossing above is needed.
  EXPECT_TRUE(IsInside({2.0}, 1.0, true));
  EXPECT_FALSE(IsInside({2.0}, 1.0, false));
  EXPECT_FALSE(IsInside({}, 1.0, true));
  EXPECT_FALSE(IsInside({2.0}, std::numeric_limits<double>::quiet_NaN(), false));
}

TEST(AreaProbe, ACrossingAtTheDirectionToTenDigitsLiesAbove) {
  EXPECT_TRUE(IsInside({1.0, 2.0}, 1.0));
  EXPECT_TRUE(IsInside({1.0, 2.0}, 1.0 - 0.9e-10));
  EXPECT_FALSE(IsInside({1.0, 2.0}, 1.0 - 2e-10));
  EXPECT_FALSE(IsInside({1.0, 2.0}, 2.0 - 0.9e-10));
  EXPECT_TRUE(IsInside({1.0, 2.0}, 2.0 - 2e-10));
}

TEST(AreaProbe, CrossingsThatAgreeToTenDigitsCountAsOne) {
  EXPECT_TRUE(IsInside({0.5, 2.0, 2.0}, 1.0));
  EXPECT_TRUE(IsInside({0.5, 2.0, 2.0 + 0.9e-10}, 1.0));
  EXPECT_FALSE(IsInside({0.5, 2.0, 2.0 + 2e-10}, 1.0));
  EXPECT_FALSE(IsInside({0.5, 2.0, 3.0, 2.0}, 1.0)) << "in any order";
  // Each is compared only with the next one.
  EXPECT_TRUE(IsInside({0.5, 2.0, 2.0 + 0.9e-10, 2.0 + 1.8e-10}, 1.0));
  EXPECT_TRUE(IsInside({1.0 - 0.5e-10, 1.0 + 0.5e-10, 2.0}, 1.0 - 0.4e-10)) << "both lie above";
}

}  // namespace
}  // namespace GMAT
