// Compares the table and the quick functions with the functions of long double, whose own error is
// allowed for.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/quick_trig.h>

namespace GMAT {
namespace {

// Of a cosine, a sine or an arc tangent of long double, which is at most pi / 2.
constexpr double kErrorOfReference = 2.0 * std::numeric_limits<long double>::epsilon();

double ErrorOf(const CosSin& found, long double x) {
  return static_cast<double>(
      std::max(std::fabs(found.cosine - std::cos(x)), std::fabs(found.sine - std::sin(x))));
}

double ErrorOfArcTangent(double x) {
  return static_cast<double>(
      std::fabs(QuickArcTangent(x) - std::atan(static_cast<long double>(x))));
}

using Pair = std::pair<double, double>;

Pair ToPair(const CosSin& at) { return {at.cosine, at.sine}; }

// The bound of the table, without the rotation to other angles. i / 256 of a turn is exact.
TEST(TrigTable, HoldsTheStepsOfATurnTo3Units) {
  const long double turn = 2.0L * std::acos(-1.0L);
  for (std::size_t i = 0; i <= TrigTableC::kSteps; ++i) {
    const long double x = static_cast<long double>(i) / TrigTableC::kSteps * turn;
    EXPECT_LE(ErrorOf(kTrigTable[i], x), 3.0 * kUnitRoundoff + 8.0 * kErrorOfReference) << i;
  }
}

TEST(TrigTable, IsExactAtQuartersAndSymmetric) {
  EXPECT_EQ(ToPair(kTrigTable[0]), (Pair{1.0, 0.0}));
  EXPECT_EQ(ToPair(kTrigTable[64]), (Pair{0.0, 1.0}));
  EXPECT_EQ(ToPair(kTrigTable[128]), (Pair{-1.0, 0.0}));
  EXPECT_EQ(ToPair(kTrigTable[192]), (Pair{0.0, -1.0}));
  EXPECT_EQ(ToPair(kTrigTable[256]), ToPair(kTrigTable[0]));
  for (std::size_t i = 0; i < 64; ++i) {
    const CosSin& at = kTrigTable[i];
    // At an eighth of a turn, cosine and sine are rounded differently.
    if (i != 32) {
      EXPECT_EQ(ToPair(kTrigTable[64 - i]), (Pair{at.sine, at.cosine})) << i;
    }
    EXPECT_EQ(ToPair(kTrigTable[64 + i]), (Pair{-at.sine, at.cosine})) << i;
    EXPECT_EQ(ToPair(kTrigTable[128 + i]), (Pair{-at.cosine, -at.sine})) << i;
    EXPECT_EQ(ToPair(kTrigTable[192 + i]), (Pair{at.sine, -at.cosine})) << i;
  }
}

// At every entry of the table and halfway between two, where the nearest entry changes, and next to
// these, including both ends of the range.
TEST(QuickCosSin, IsWithinItsBoundAtEntriesAndHalfwayBetween) {
  for (std::size_t half = 0; half <= 2 * TrigTableC::kSteps; ++half) {
    const double at = static_cast<double>(half) / 2.0 * TrigTableC::kStep;
    for (const double x : {at, std::nextafter(at, 0.0), std::nextafter(at, 7.0)}) {
      if (x > TWO_PI) continue;
      EXPECT_LE(ErrorOf(QuickCosSin(x), x), kQuickTrigError + kErrorOfReference) << x;
    }
  }
  EXPECT_EQ(ToPair(QuickCosSin(0.0)), (Pair{1.0, 0.0}));
  EXPECT_EQ(ToPair(QuickCosSin(-0.0)), (Pair{1.0, 0.0}));
  // Within half a step of 0, the sine keeps its relative precision.
  for (const double x : {5e-324, 1e-300, 1e-9, 1e-3, 0.012}) {
    EXPECT_NEAR(QuickCosSin(x).sine / std::sin(x), 1.0, 4.0 * kUnitRoundoff) << x;
  }
}

TEST(QuickCosSin, IsWithinItsBoundAnywhere) {
  std::mt19937_64 random(1);
  double largest = 0.0;
  for (int i = 0; i < 20'000; ++i) {
    const double x = std::uniform_real_distribution<double>(0.0, TWO_PI)(random);
    const CosSin at = QuickCosSin(x);
    largest = std::max(largest, ErrorOf(at, x));
    ASSERT_NEAR(at.cosine * at.cosine + at.sine * at.sine, 1.0, 8.0 * kUnitRoundoff) << x;
  }
  EXPECT_LE(largest, kQuickTrigError + kErrorOfReference);
}

TEST(QuickArcTangent, IsWithinItsBoundAnywhere) {
  double largest = 0.0;
  for (int i = -2000; i <= 2000; ++i) {
    const double x = i / 1000.0;  // the polynomial of x, or of its inverse if x is 1 or more
    largest = std::max(largest, ErrorOfArcTangent(x));
    if (i != 0) largest = std::max(largest, ErrorOfArcTangent(2.0 / x));
  }
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    largest = std::max(largest, ErrorOfArcTangent(std::ldexp(-1.0, exponent)));
  }
  EXPECT_LE(largest, kQuickArcTangentError + kErrorOfReference);
  EXPECT_GT(largest, kQuickArcTangentError / 2.0) << "the cases come close to the bound";
}

TEST(QuickArcTangent, IsOddAndEndsAtAQuarterTurn) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  for (const double x : {0.0, 5e-324, 1e-9, 0.5, 1.0, 1.5, 1e9, 1.7e308, kInfinite}) {
    EXPECT_EQ(QuickArcTangent(-x), -QuickArcTangent(x)) << x;
  }
  EXPECT_EQ(QuickArcTangent(0.0), 0.0);
  EXPECT_TRUE(std::signbit(QuickArcTangent(-0.0)));
  EXPECT_EQ(QuickArcTangent(kInfinite), HALF_PI);
  EXPECT_TRUE(std::isnan(QuickArcTangent(std::numeric_limits<double>::quiet_NaN())));
  // Where the inverse takes over, both forms agree to the bound.
  EXPECT_NEAR(QuickArcTangent(std::nextafter(1.0, 2.0)), QuickArcTangent(1.0),
              2.0 * kQuickArcTangentError);
}

}  // namespace
}  // namespace GMAT
