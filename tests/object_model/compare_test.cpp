#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/object_model/compare.h>

namespace {

using API::CompareWithTolerance;
using API::EqualField;
using API::EqualFields;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();

// The exponent that `frexp` returns for a finite number, computed from its bits.
int ExponentOf(double x) {
  const auto bits = std::bit_cast<std::uint64_t>(x);
  const auto fraction = bits & 0xFFFFFFFFFFFFF;
  const int exponent = static_cast<int>(bits >> 52 & 0x7FF);
  if (exponent != 0) return exponent - 1022;
  return fraction == 0 ? 0 : -1022 - (std::countl_zero(fraction) - 12);
}

int Model(double a, double b, double eps) {
  double larger = b;
  if (std::fabs(a) > std::fabs(b)) larger = a;
  const int exponent = std::isfinite(larger) ? ExponentOf(larger) : 0;
  double tolerance = eps;
  for (int i = exponent; i > 0; --i) tolerance *= 2;
  // Halving step by step would round a denormal more than once.
  if (exponent < 0) tolerance = std::scalbn(eps, exponent);
  const double difference = a - b;
  if (difference > tolerance) return 1;
  if (difference < -tolerance) return -1;
  return 0;
}

TEST(CompareWithTolerance, GivesTheKnownAnswers) {
  const struct {
    double a, b, eps;
    int answer;
  } cases[] = {
      {1.0, 1.0 + 2.220446049250313e-16, DBL_EPSILON, 0},
      {0.0, 1e-300, DBL_EPSILON, -1},  // the tolerance is relative to the larger value
      {1e-300, 0.0, DBL_EPSILON, 1},
      {0.0, 0.0, DBL_EPSILON, 0},
      {0.0, -0.0, DBL_EPSILON, 0},
      {-0.0, 0.0, 0.0, 0},
      // 1 = 0.5 * 2^1: twice the epsilon, two steps above 1.
      {1.0, 1.0 + 2 * DBL_EPSILON, DBL_EPSILON, 0},
      {1.0, 1.0 + 3 * DBL_EPSILON, DBL_EPSILON, -1},
      {1.0 + 3 * DBL_EPSILON, 1.0, DBL_EPSILON, 1},
      {-1.0, -1.0 - 2 * DBL_EPSILON, DBL_EPSILON, 0},
      {-1.0, -1.0 - 3 * DBL_EPSILON, DBL_EPSILON, 1},
      // Below 1 the larger value is 0.99.. * 2^0: one epsilon, two steps below 1.
      {1.0 - DBL_EPSILON, 1.0 - 2 * DBL_EPSILON, DBL_EPSILON, 0},
      {1.0 - DBL_EPSILON, 1.0 - 2.5 * DBL_EPSILON, DBL_EPSILON, 1},
      {100.0, 101.0, 0.01, 0},  // 0.01 * 2^7 = 1.28
      {100.0, 101.29, 0.01, -1},
      {101.27, 100.0, 0.01, 0},
      // On a tie of magnitudes both have the same exponent.
      {1.0, -1.0, 1.0, 0},
      {1.0, -1.0, 0.99, 1},
      {-1.0, 1.0, 0.99, -1},
      // Without a tolerance, only equal numbers are equal.
      {1.0, 1.0, 0.0, 0},
      {1.0, 1.0 + DBL_EPSILON, 0.0, -1},
      {kTiny, 0.0, 0.0, 1},
      {kTiny, 0.0, DBL_EPSILON, 1},
      {0.0, kTiny, 1.0, 0},  // 0.5 * 2^-1073 within 2^-1073
      {kInfinity, 1.0, DBL_EPSILON, 1},
      {-kInfinity, 1.0, DBL_EPSILON, -1},
      {1.0, kInfinity, DBL_EPSILON, -1},
      {kInfinity, -kInfinity, DBL_EPSILON, 1},
      {kInfinity, kInfinity, DBL_EPSILON, 0},  // their difference is NaN
      {-kInfinity, -kInfinity, 0.0, 0},
      {kInfinity, 1.0, DBL_MAX, 1},         // the tolerance of an infinity is the epsilon
      {DBL_MAX, -DBL_MAX, DBL_EPSILON, 1},  // the difference is infinite
      {DBL_MAX, DBL_MAX / 2, 1.0, 0},       // the tolerance is infinite
      {kNaN, 1.0, DBL_EPSILON, 0},
      {1.0, kNaN, DBL_EPSILON, 0},
      {kNaN, kNaN, 0.0, 0},
      {kNaN, kInfinity, 0.0, 0},
      {1.0, 2.0, kNaN, 0},
  };
  for (const auto& [a, b, eps, answer] : cases) {
    SCOPED_TRACE(testing::Message() << std::hexfloat << a << " and " << b << " within " << eps);
    EXPECT_EQ(CompareWithTolerance(a, b, eps), answer);
    EXPECT_EQ(CompareWithTolerance(a, b, eps), Model(a, b, eps));
  }
}

TEST(CompareWithTolerance, AgreesWithTheModelForAnyBits) {
  std::mt19937_64 random(20260101);
  const auto any = [&random] { return std::bit_cast<double>(random()); };
  for (int i = 0; i < 300000; ++i) {
    const double a = any();
    // In half of the cases, the two numbers differ only in the last places.
    const double b =
        random() % 2 == 0
            ? any()
            : std::bit_cast<double>(std::bit_cast<std::uint64_t>(a) + random() % 9 - 4);
    for (const double eps : {DBL_EPSILON, 0.0, 1e-3, double{FLT_EPSILON}}) {
      ASSERT_EQ(CompareWithTolerance(a, b, eps), Model(a, b, eps))
          << std::hexfloat << a << " and " << b << " within " << eps;
    }
  }
}

TEST(CompareWithTolerance, ComparesFloatsInDoublePrecision) {
  static_assert(std::is_same_v<decltype(CompareWithTolerance(1.0F, 1.0F, 1.0F)), int>);
  const struct {
    float a, b;
    int answer;
  } cases[] = {
      {1.0F, 1.0F + 2 * FLT_EPSILON, 0},
      {1.0F, 1.0F + 3 * FLT_EPSILON, -1},
      {1.0F + 3 * FLT_EPSILON, 1.0F, 1},
      {0.0F, 1e-8F, -1},
      {0.0F, -0.0F, 0},
      {FLT_MAX, -FLT_MAX, 1},
      {kFloatInfinity, kFloatInfinity, 0},
      {kFloatInfinity, 1.0F, 1},
      {std::nanf(""), 1.0F, 0},
      // In single precision this tolerance would vanish.
      {std::numeric_limits<float>::denorm_min(), 0.0F, 1},
  };
  for (const auto& [a, b, answer] : cases) {
    SCOPED_TRACE(testing::Message() << a << " and " << b);
    EXPECT_EQ(CompareWithTolerance(a, b, FLT_EPSILON), answer);
  }
  std::mt19937 random(20260101);
  for (int i = 0; i < 300000; ++i) {
    const auto bits = static_cast<std::uint32_t>(random());
    const auto a = std::bit_cast<float>(bits);
    const auto b = std::bit_cast<float>(
        static_cast<std::uint32_t>(i % 2 == 0 ? random() : bits + random() % 9 - 4));
    ASSERT_EQ(CompareWithTolerance(a, b, FLT_EPSILON),
              Model(double{a}, double{b}, double{FLT_EPSILON}))
        << a << " and " << b;
  }
}

// --- EqualField and EqualFields

TEST(EqualField, ComparesFloatingPointNumbersWithTheEpsilonOfTheirType) {
  EXPECT_TRUE(EqualField(1.0, 1.0 + 2 * DBL_EPSILON));
  EXPECT_FALSE(EqualField(1.0, 1.0 + 3 * DBL_EPSILON));
  EXPECT_TRUE(EqualField(1.0F, 1.0F + 2 * FLT_EPSILON));
  EXPECT_FALSE(EqualField(1.0F, 1.0F + 3 * FLT_EPSILON));
  EXPECT_TRUE(EqualField(kInfinity, kInfinity));
  EXPECT_FALSE(EqualField(kInfinity, -kInfinity));
  EXPECT_TRUE(EqualField(kNaN, 1.0));
  EXPECT_TRUE(EqualField(0.0, -0.0));
  EXPECT_FALSE(EqualField(0.0F, 1e-8F));
}

TEST(EqualField, AnswersForAnyBitsAsTheComparisonDoes) {
  std::mt19937_64 random(20260101);
  for (int i = 0; i < 100000; ++i) {
    const auto bits = random();
    const auto a = std::bit_cast<double>(bits);
    const auto b = std::bit_cast<double>(i % 3 == 0 ? random() : bits + random() % 9 - 4);
    ASSERT_EQ(EqualField(a, b), Model(a, b, DBL_EPSILON) == 0) << a << " and " << b;
  }
}

struct Part {
  int value = 0;
  mutable int asked = 0;

  bool isEqual(const Part& other) const {
    ++asked;
    return value / 10 == other.value / 10;  // differs from `==`
  }
  bool operator==(const Part&) const = delete;
};

TEST(EqualField, UsesTheEqualityOfAPart) {
  EXPECT_TRUE(EqualField(Part{12}, Part{17}));
  EXPECT_FALSE(EqualField(Part{12}, Part{21}));
}

TEST(EqualField, ComparesArraysElementByElement) {
  const std::array<double, 3> a{1.0, 2.0, 3.0};
  EXPECT_TRUE(EqualField(a, {1.0, 2.0 + 2 * DBL_EPSILON, 3.0}));
  EXPECT_FALSE(EqualField(a, {1.0, 2.0, 3.001}));
  EXPECT_FALSE(EqualField(a, {1.001, 2.0, 3.0}));
}

TEST(EqualField, ComparesTextsUpToTheirTerminator) {
  const char16_t a[4] = {u'a', u'b', 0, u'x'};
  const char16_t same[4] = {u'a', u'b', 0, u'y'};
  const char16_t longer[4] = {u'a', u'b', u'c', 0};
  const char16_t other[4] = {u'a', u'B', 0, u'x'};
  const char16_t full[4] = {u'a', u'b', u'c', u'd'};
  const char16_t fullToo[4] = {u'a', u'b', u'c', u'd'};
  EXPECT_TRUE(EqualField(a, same));
  EXPECT_FALSE(EqualField(a, longer));
  EXPECT_FALSE(EqualField(a, other));
  EXPECT_TRUE(EqualField(full, fullToo));
  EXPECT_FALSE(EqualField(full, longer));
}

TEST(EqualFields, ComparesInTheOrderListedUpToTheFirstDifference) {
  struct Record {
    Part first;
    double number = 0.0;
    Part second;
    int integer = 0;
  };
  const auto equal = [](const Record& a, const Record& b) {
    return EqualFields(a, b, &Record::second, &Record::number, &Record::integer, &Record::first);
  };
  Record a;
  Record b;
  EXPECT_TRUE(equal(a, b));
  EXPECT_EQ(a.first.asked, 1);
  EXPECT_EQ(a.second.asked, 1);
  b.integer = 1;
  EXPECT_FALSE(equal(a, b));
  EXPECT_EQ(a.first.asked, 1);  // not reached
  EXPECT_EQ(a.second.asked, 2);
  b.second.value = 10;
  b.integer = 0;
  EXPECT_FALSE(equal(a, b));
  EXPECT_EQ(a.first.asked, 1);
  b = a;
  b.number = 1e-300;
  EXPECT_FALSE(equal(a, b));
  b = a;
  b.first.value = 10;
  EXPECT_FALSE(equal(a, b));
  EXPECT_EQ(a.first.asked, 2);
}

}  // namespace
