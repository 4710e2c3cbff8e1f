#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <surveydata/geodetic/coordinate_point.h>

namespace {

using SDI::CoordinatePointC;

TEST(CoordinatePoint, IsTheOriginByDefault) {
  const CoordinatePointC point;
  EXPECT_EQ(point.GetX(), 0.0);
  EXPECT_EQ(point.GetY(), 0.0);
  EXPECT_EQ(point.GetZ(), 0.0);
}

TEST(CoordinatePoint, StoresEachCoordinateSeparately) {
  CoordinatePointC point(1.0, 2.0, 3.0);
  point.SetX(-1.5);
  EXPECT_EQ(point.GetX(), -1.5);
  EXPECT_EQ(point.GetY(), 2.0);
  point.SetY(-2.5);
  EXPECT_EQ(point.GetY(), -2.5);
  EXPECT_EQ(point.GetZ(), 3.0);
  point.SetZ(-3.5);
  EXPECT_EQ(point.GetX(), -1.5);
  EXPECT_EQ(point.GetZ(), -3.5);
}

TEST(CoordinatePoint, EqualityToleratesTwoUnitsInTheLastPlace) {
  constexpr double kUnit = std::numeric_limits<double>::epsilon();  // of 1.0
  const struct {
    double a, b;
    bool equal;
  } cases[] = {
      {1.0, 1.0 + 2 * kUnit, true},
      {1.0, 1.0 + 3 * kUnit, false},
      {1.0, 1.0 + 1e-12, false},
      {0.0, 1e-300, false},  // the tolerance is relative to the larger value
      {0.0, -0.0, true},
      {1.0, std::nan(""), true},
  };
  for (const auto& [a, b, equal] : cases) {
    SCOPED_TRACE(testing::Message() << "a = " << a << ", b = " << b);
    EXPECT_EQ(CoordinatePointC(a, 0, 0).IsEqual(CoordinatePointC(b, 0, 0)), equal);
    EXPECT_EQ(CoordinatePointC(0, a, 0).IsEqual(CoordinatePointC(0, b, 0)), equal);
    EXPECT_EQ(CoordinatePointC(0, 0, a).IsEqual(CoordinatePointC(0, 0, b)), equal);
  }
}

}  // namespace
