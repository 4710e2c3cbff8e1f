#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_def_point.h>

namespace {

using SDI::ScanDefPointC;
using SDI::ScanDefPointImplC;

constexpr double kNotSet = 1.7976931348623157e308;

static_assert(sizeof(ScanDefPointC) == sizeof(API::BaseC));
static_assert(sizeof(ScanDefPointImplC) == sizeof(API::ImplObjectC) + 3 * sizeof(double));

static_assert(std::is_same_v<decltype(&ScanDefPointC::operator!=),
                             bool (ScanDefPointC::*)(const ScanDefPointC&) const>);
static_assert(std::is_same_v<decltype(&ScanDefPointImplC::operator!=),
                             bool (ScanDefPointImplC::*)(const ScanDefPointImplC&) const>);

// The results of both sides.
template <class Point>
constexpr bool ReturnsItsTypes() {
  using std::is_same_v;
  Point* point = nullptr;
  const Point* constant = nullptr;
  static_assert(is_same_v<decltype(constant->GetHz()), double>);
  static_assert(is_same_v<decltype(constant->GetV()), double>);
  static_assert(is_same_v<decltype(constant->GetDistance()), double>);
  static_assert(is_same_v<decltype(constant->HasDistance()), bool>);
  static_assert(is_same_v<decltype(constant->IsEqual(*constant)), bool>);
  static_assert(is_same_v<decltype(point->ClearDistance()), void>);
  return true;
}
static_assert(ReturnsItsTypes<ScanDefPointC>() && ReturnsItsTypes<ScanDefPointImplC>());
static_assert(std::is_same_v<decltype(std::declval<const ScanDefPointImplC&>().IsValid()), bool>);
static_assert(
    std::is_same_v<decltype(std::declval<const ScanDefPointC&>().GetImpl()), ScanDefPointImplC*>);

TEST(ScanDefPoint, UnequalIsTheNegationOfEqual) {
  const double different[] = {1.0, 1.0 + 1e-15, std::nan("")};
  for (const double a : different) {
    for (const double b : different) {
      const ScanDefPointC p(a, 0.5, 1.0);
      const ScanDefPointC q(b, 0.5, 2.0);
      EXPECT_EQ(p.operator!=(q), !(p == q));
      EXPECT_EQ(p.GetImpl()->operator!=(*q.GetImpl()), !(p == q));
    }
  }
  EXPECT_FALSE(ScanDefPointC(1.0, 0.5, 1.0) != ScanDefPointC(1.0, 0.5, 2.0));
  EXPECT_TRUE(ScanDefPointC(1.0, 0.5, 1.0) != ScanDefPointC(1.0, 0.6, 1.0));
}

TEST(ScanDefPoint, IsNotSetAtFirst) {
  const ScanDefPointC point;
  EXPECT_EQ(point.GetHz(), kNotSet);
  EXPECT_EQ(point.GetV(), kNotSet);
  EXPECT_EQ(point.GetDistance(), -1.0);
  EXPECT_FALSE(point.HasDistance());
  EXPECT_FALSE(point.GetImpl()->IsValid());
  EXPECT_TRUE(point == ScanDefPointC());
}

TEST(ScanDefPoint, StoresWhatItIsGiven) {
  ScanDefPointC point(7.0, -1.0, 12.5);
  EXPECT_EQ(point.GetHz(), 7.0);
  EXPECT_EQ(point.GetV(), -1.0);
  EXPECT_EQ(point.GetDistance(), 12.5);
  point.SetHz(1.0);
  point.SetV(2.0);
  point.SetDistance(3.0);
  EXPECT_EQ(point.GetHz(), 1.0);
  EXPECT_EQ(point.GetV(), 2.0);
  EXPECT_EQ(point.GetDistance(), 3.0);
  const ScanDefPointC copy(point);
  point.SetHz(5.0);
  EXPECT_EQ(copy.GetHz(), 1.0);
  EXPECT_EQ(copy.GetDistance(), 3.0);
}

TEST(ScanDefPoint, ADistanceIsAboveZero) {
  ScanDefPointC point;
  point.SetDistance(0.0);
  EXPECT_FALSE(point.HasDistance());
  point.SetDistance(1e-300);
  EXPECT_TRUE(point.HasDistance());
  point.ClearDistance();
  EXPECT_EQ(point.GetDistance(), -1.0);
  EXPECT_FALSE(point.HasDistance());
}

TEST(ScanDefPoint, EqualityDependsOnlyOnTheAngles) {
  const ScanDefPointC point(1.0, 0.5, 10.0);
  EXPECT_TRUE(point == ScanDefPointC(1.0, 0.5, -1.0));
  EXPECT_TRUE(point.IsEqual(ScanDefPointC(1.0, 0.5, -1.0)));
  EXPECT_FALSE(point == ScanDefPointC(1.0 + 1e-15, 0.5, 10.0));
  EXPECT_TRUE(point != ScanDefPointC(1.0, 0.5 + 1e-15, 10.0));
  EXPECT_TRUE(*point.GetImpl() == ScanDefPointImplC(1.0, 0.5, 3.0));
  EXPECT_TRUE(point.GetImpl()->IsEqual(ScanDefPointImplC(1.0, 0.5, 3.0)));
  constexpr double kSmallest = std::numeric_limits<double>::min();
  EXPECT_TRUE(ScanDefPointC(0.0, 0.0, 0.0) == ScanDefPointC(kSmallest / 2.0, 0.0, 0.0));
  EXPECT_FALSE(ScanDefPointC(0.0, 0.0, 0.0) == ScanDefPointC(kSmallest, 0.0, 0.0));
}

TEST(ScanDefPoint, IsValidWhenBothAnglesAreSet) {
  EXPECT_TRUE(ScanDefPointImplC(1.0, 2.0, -1.0).IsValid());
  EXPECT_FALSE(ScanDefPointImplC(kNotSet, 2.0, 1.0).IsValid());
  EXPECT_FALSE(ScanDefPointImplC(1.0, kNotSet, 1.0).IsValid());
  EXPECT_TRUE(ScanDefPointImplC(-kNotSet, 1e308, 1.0).IsValid());
  EXPECT_FALSE(ScanDefPointImplC(kNotSet, kNotSet, 1.0).IsValid());
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(ScanDefPointImplC(kInfinity, std::numeric_limits<double>::quiet_NaN(), 1.0).IsValid())
      << "only the largest double means an angle that is not set";
}

}  // namespace
