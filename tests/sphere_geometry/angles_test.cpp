#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(AnglePoint, IsNotSetAtFirst) {
  EXPECT_EQ(AnglePointC().Hz, 1.7976931348623157e308);
  EXPECT_EQ(AnglePointC().V, 1.7976931348623157e308);
}

TEST(AnglePoint, EqualityIsExact) {
  EXPECT_EQ((AnglePointC{0.5, 1.0}), (AnglePointC{0.5, 1.0}));
  EXPECT_EQ((AnglePointC{-0.0, 1.0}), (AnglePointC{0.0, 1.0}));
  EXPECT_NE((AnglePointC{0.5, 1.0}), (AnglePointC{std::nextafter(0.5, 1.0), 1.0}));
  EXPECT_NE((AnglePointC{0.5, 1.0}), (AnglePointC{0.5, std::nextafter(1.0, 0.0)}));
}

TEST(Angles, ConstantsAreTheNearestDoubles) {
  EXPECT_EQ(PI, std::acos(-1.0));
  EXPECT_EQ(TWO_PI, 2.0 * PI);
  EXPECT_EQ(HALF_PI, PI / 2.0);
  EXPECT_EQ(V_LIMIT, 2.5132741228718345);
}

TEST(Angles, TheStepOfAComparisonIsThePowerOfTen) {
  for (std::uint16_t digits = 0; digits < 16; ++digits) {
    SCOPED_TRACE(digits);
    // In some runtimes the power is off by a few units in the last place.
    EXPECT_EQ(DecimalStep(digits), digits == kDigits ? 1e-10 : std::pow(10.0, -digits));
    EXPECT_NEAR(DecimalStep(digits) / std::stod("1e-" + std::to_string(digits)), 1.0, 1e-14);
  }
}

TEST(Angles, ApproxEqualMeansLessThanOneStepApart) {
  EXPECT_TRUE(ApproxEqual(1.0, 1.0 + 0.9e-10, 10));
  EXPECT_FALSE(ApproxEqual(1.0, 1.0 + 1.1e-10, 10));
  EXPECT_FALSE(ApproxEqual(0.0, 1e-10, 10));  // strictly less
  EXPECT_TRUE(ApproxEqual(0.0, std::nextafter(1e-10, 0.0), 10));
  EXPECT_TRUE(ApproxEqual(6.2835, TWO_PI, 3));
  EXPECT_FALSE(ApproxEqual(6.2845, TWO_PI, 3));
  EXPECT_FALSE(ApproxEqual(kNaN, kNaN, 10));
  EXPECT_FALSE(ApproxEqual(kInfinity, kInfinity, 10));
}

TEST(Angles, ExactlyEqualMeansLessThanTheSmallestNormalApart) {
  EXPECT_TRUE(ExactlyEqual(1.0, 1.0));
  EXPECT_FALSE(ExactlyEqual(1.0, std::nextafter(1.0, 2.0)));
  EXPECT_FALSE(ExactlyEqual(0.0, 2.2250738585072014e-308));
  EXPECT_TRUE(ExactlyEqual(0.0, std::nextafter(2.2250738585072014e-308, 0.0)));
}

TEST(Angles, RoundToStepRoundsHalvesAwayFromZero) {
  const struct {
    double x, step, rounded;
  } cases[] = {
      {2.5, 1.0, 3.0},   {-2.5, 1.0, -3.0},   {2.49, 1.0, 2.0},     {0.25, 0.5, 0.5},
      {-0.2, 1.0, -0.0}, {1.234, 0.0, 1.234}, {1.234, -1.0, 1.234}, {1.234, kNaN, 1.234},
  };
  for (const auto& [x, step, rounded] : cases) {
    SCOPED_TRACE(testing::Message() << x << " by " << step);
    EXPECT_EQ(RoundToStep(x, step), rounded);
    EXPECT_EQ(std::signbit(RoundToStep(x, step)), std::signbit(rounded));
  }
}

TEST(Angles, InRangeIsOpenInsideAndRoundsAtTheEnds) {
  EXPECT_TRUE(InRange(1.0, 0.0, 2.0, 10));
  EXPECT_TRUE(InRange(TWO_PI + 1e-11, 0.0, TWO_PI, 10));
  EXPECT_FALSE(InRange(TWO_PI + 1e-9, 0.0, TWO_PI, 10));
  EXPECT_TRUE(InRange(-1e-11, 0.0, TWO_PI, 10));
  EXPECT_FALSE(InRange(-1e-9, 0.0, TWO_PI, 10));
  EXPECT_TRUE(InRange(5.0, 5.0, 5.0, 10));
  EXPECT_FALSE(InRange(1.0, 2.0, 0.0, 10)) << "an empty range contains only its ends";
  EXPECT_TRUE(InRange(2.0, 2.0, 0.0, 10));
  EXPECT_FALSE(InRange(kNaN, 0.0, TWO_PI, 10));
  EXPECT_FALSE(InRange(kInfinity, 0.0, TWO_PI, 10));
  // What rounding may accept outside stays below the margin that the area's tests rely on.
  EXPECT_TRUE(InRange(1.0 + 0.4e-10, 0.0, 1.0, 10));
  EXPECT_FALSE(InRange(1.0 + 2.1e-10, 0.0, 1.0, 10));
}

TEST(Angles, AtLeastAndAtMostTolerateOneStep) {
  EXPECT_TRUE(AtLeast(2.0, 1.0, 10));
  EXPECT_TRUE(AtLeast(1.0, 1.0, 10));
  EXPECT_TRUE(AtLeast(1.0, 1.0 + 0.9e-10, 10));
  EXPECT_FALSE(AtLeast(1.0, 1.0 + 2e-10, 10));
  EXPECT_TRUE(AtMost(1.0, 2.0, 10));
  EXPECT_TRUE(AtMost(1.0 + 0.9e-10, 1.0, 10));
  EXPECT_FALSE(AtMost(1.0 + 2e-10, 1.0, 10));
  EXPECT_FALSE(AtLeast(kNaN, 1.0, 10));
  EXPECT_FALSE(AtMost(kNaN, 1.0, 10));
}

TEST(Angles, GonToRadDividesTheTurnByFourHundred) {
  EXPECT_EQ(GonToRad(200.0), PI);
  EXPECT_EQ(GonToRad(100.0), HALF_PI);
  EXPECT_EQ(GonToRad(0.0), 0.0);
}

TEST(Angles, NormalizeAngleGivesTheHalfOpenTurn) {
  EXPECT_EQ(NormalizeAngle(-0.5), TWO_PI - 0.5);
  EXPECT_EQ(NormalizeAngle(TWO_PI), 0.0);
  EXPECT_EQ(NormalizeAngle(-TWO_PI), 0.0);
  EXPECT_EQ(NormalizeAngle(1.25), 1.25);
  EXPECT_NEAR(NormalizeAngle(7.0), 7.0 - TWO_PI, 1e-15);
  EXPECT_NEAR(NormalizeAngle(-20.0), 4.0 * TWO_PI - 20.0, 4e-15);
  EXPECT_TRUE(std::signbit(NormalizeAngle(-0.0))) << "an angle in range is unchanged";
  EXPECT_TRUE(std::isnan(NormalizeAngle(kInfinity)));
  EXPECT_TRUE(std::isnan(NormalizeAngle(kNaN)));
  // Above the sum of a tiny negative angle and the turn there is nothing.
  EXPECT_EQ(NormalizeAngle(-1e-300), 0.0);
}

TEST(Angles, WrapIntoRangeMovesByFullTurns) {
  const struct {
    double a, lo, hi, wrapped;
  } cases[] = {
      {1.0, 0.0, TWO_PI, 1.0},
      {0.0, 0.0, TWO_PI, 0.0},
      {TWO_PI, 0.0, TWO_PI, TWO_PI},
      {-1.0, 0.0, TWO_PI, TWO_PI - 1.0},
      {7.0, 0.0, TWO_PI, 7.0 - TWO_PI},
      {100.0, 0.0, TWO_PI, 100.0 - 15.0 * TWO_PI},
      {-100.0, 0.0, TWO_PI, -100.0 + 16.0 * TWO_PI},
      {3.5, -PI, PI, 3.5 - TWO_PI},
  };
  for (const auto& [a, lo, hi, expected] : cases) {
    SCOPED_TRACE(a);
    double wrapped = a;
    EXPECT_TRUE(WrapIntoRange(wrapped, lo, hi));
    EXPECT_NEAR(wrapped, expected, 1e-13);
  }
}

TEST(Angles, WrapIntoRangeRefusesAndLeavesTheAngle) {
  const struct {
    double a, lo, hi;
  } cases[] = {
      {150.0, 0.0, TWO_PI},
      {-100.5, 0.0, TWO_PI},
      {1.0, TWO_PI, 0.0},
      {1.0, 1.0, 1.0},
      {1.0, -101.0, 1.0},
      {1.0, 0.0, 101.0},
      {2.0, -HALF_PI, HALF_PI},  // no turns move it
                                 // there
      {2.0, 0.0, 1.0},
      {kNaN, 0.0, TWO_PI},
      {kInfinity, 0.0, TWO_PI},
  };
  for (const auto& [a, lo, hi] : cases) {
    SCOPED_TRACE(testing::Message() << a << " into " << lo << ", " << hi);
    double wrapped = a;
    EXPECT_FALSE(WrapIntoRange(wrapped, lo, hi));
    EXPECT_TRUE(wrapped == a || (std::isnan(wrapped) && std::isnan(a)));
  }
}

TEST(Angles, WrapIntoRangeAcceptsTenDigitsOutsideTheRange) {
  double beside = 1.0 - TWO_PI + 5e-11;
  EXPECT_TRUE(WrapIntoRange(beside, 0.5, 1.0));
  EXPECT_NEAR(beside, 1.0 + 5e-11, 1e-14);
  double farther = 1.0 - TWO_PI + 2e-10;
  EXPECT_FALSE(WrapIntoRange(farther, 0.5, 1.0));
}

TEST(Angles, ToFirstFaceTurnsADirectionBeyondTheNadir) {
  AnglePointC p{1.0, 3.5};
  ToFirstFace(p);
  EXPECT_EQ(p, (AnglePointC{1.0 + PI, TWO_PI - 3.5}));
  p = {4.0, 3.5};
  ToFirstFace(p);
  EXPECT_EQ(p, (AnglePointC{NormalizeAngle(4.0 + PI), TWO_PI - 3.5}));
  p = {7.0, PI};  // not beyond: Hz does not change, either
  ToFirstFace(p);
  EXPECT_EQ(p, (AnglePointC{7.0, PI}));
}

TEST(Angles, PlanarDistances) {
  EXPECT_EQ(PlanarDistance({1.0, 2.0}, {4.0, 6.0}), 5.0);
  EXPECT_EQ(PlanarLineDistance({7.0, 3.0}, {0.0, 1.0}, {2.0, 1.0}), 2.0) << "the line is infinite";
  EXPECT_TRUE(std::isnan(PlanarLineDistance({1.0, 1.0}, {2.0, 2.0}, {2.0, 2.0})));
}

}  // namespace
}  // namespace GMAT
