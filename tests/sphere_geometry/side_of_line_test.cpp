// The exact test of orientation, compared with rational arithmetic.
#include <cmath>
#include <random>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/side_of_line.h>

namespace GMAT {
namespace {

using Exact = boost::multiprecision::cpp_rational;

int ExactSide(const PlanePoint& a, const PlanePoint& b, const PlanePoint& p) {
  const Exact cross = (Exact(b.x) - Exact(a.x)) * (Exact(p.y) - Exact(a.y)) -
                      (Exact(b.y) - Exact(a.y)) * (Exact(p.x) - Exact(a.x));
  return cross.sign();
}

TEST(SideOfLine, DistinguishesLeftFromRight) {
  const PlanePoint a{1.0, 1.0};
  const PlanePoint b{2.0, 3.0};
  EXPECT_EQ(SideOfLine(a, b, {1.5, 2.5}), 1);
  EXPECT_EQ(SideOfLine(a, b, {1.5, 1.5}), -1);
  EXPECT_EQ(SideOfLine(a, b, {1.5, 2.0}), 0);
  EXPECT_EQ(SideOfLine(b, a, {1.5, 2.5}), -1);
  EXPECT_EQ(SideOfLine(a, a, {1.5, 2.5}), 0);
  EXPECT_EQ(SideOfLine(a, b, {0.5, 0.0}), 0);  // beyond the ends
}

// 2^-40 is the grid: of these products, which differ by 2^-80, both round to the same double.
TEST(SideOfLine, DistinguishesProductsThatRoundAlike) {
  const PlanePoint origin{0.0, 0.0};
  const PlanePoint b{1.0 + kPlaneGrid, 1.0};
  EXPECT_EQ((1.0 + kPlaneGrid) * (1.0 - kPlaneGrid), 1.0 * 1.0);
  EXPECT_EQ(SideOfLine(origin, b, {1.0, 1.0 - kPlaneGrid}), -1);
  EXPECT_EQ(SideOfLine(origin, {1.0, 1.0 - kPlaneGrid}, b), 1);
}

TEST(SideOfLine, EqualsRationalArithmetic) {
  std::mt19937_64 random(1);
  int alike = 0;
  int counts[3] = {};
  for (int i = 0; i < 100'000; ++i) {
    const auto onGrid = [&](double size) {
      const double x = static_cast<double>(static_cast<std::int64_t>(random())) * 0x1p-63;
      return std::round(x * size / kPlaneGrid) * kPlaneGrid;
    };
    const double size = random() % 2 == 0 ? 3.0 : kLargestOnGrid;
    const PlanePoint a{onGrid(size), onGrid(size)};
    const PlanePoint b{onGrid(size), onGrid(size)};
    const double t = onGrid(1.0);
    // As close to the line as the grid allows, or exactly on it.
    PlanePoint p{a.x + std::round(t * (b.x - a.x) / kPlaneGrid) * kPlaneGrid,
                 a.y + std::round(t * (b.y - a.y) / kPlaneGrid) * kPlaneGrid};
    if (random() % 4 == 0) p = {(a.x + b.x) / 2.0, (a.y + b.y) / 2.0};
    if (std::fabs(p.x) > kLargestOnGrid || std::fabs(p.y) > kLargestOnGrid) continue;
    if (std::fmod(p.x, kPlaneGrid) != 0.0 || std::fmod(p.y, kPlaneGrid) != 0.0) continue;
    const int side = ExactSide(a, b, p);
    ASSERT_EQ(SideOfLine(a, b, p), side);
    ++counts[side + 1];
    alike += (b.x - a.x) * (p.y - a.y) == (b.y - a.y) * (p.x - a.x);
  }
  EXPECT_GT(counts[0], 10'000);
  EXPECT_GT(counts[1], 1'000);
  EXPECT_GT(counts[2], 10'000);
  EXPECT_GT(alike, counts[1] + 100);
}

}  // namespace
}  // namespace GMAT
