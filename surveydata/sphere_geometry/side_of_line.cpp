#include <surveydata/sphere_geometry/side_of_line.h>

namespace GMAT {
namespace {

// Differences of coordinates are exact: multiples of the grid with at most 53 bits.
static_assert(2.0 * kLargestOnGrid / kPlaneGrid <= 0x1p53);

// The rounding error of `product`, the rounded a b. It is a double, because a and b have at most 53
// bits and nothing overflows or underflows.
// \source Dekker, A floating-point technique for extending the available precision, 1971.
double RestOfProduct(double a, double b, double product) {
  constexpr double kSplitter = 0x1p27 + 1.0;
  const auto high = [](double x) {
    const double scaled = kSplitter * x;
    return scaled - (scaled - x);
  };
  const double a1 = high(a);
  const double b1 = high(b);
  const double a2 = a - a1;
  const double b2 = b - b1;
  return a2 * b2 - (((product - a1 * b1) - a2 * b1) - a1 * b2);
}

}  // namespace

int SideOfLine(const PlanePoint& a, const PlanePoint& b, const PlanePoint& p) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double px = p.x - a.x;
  const double py = p.y - a.y;
  double left = dx * py;
  double right = dy * px;
  // Rounding preserves the order of two products. If they round to the same double, their rounding
  // errors decide.
  if (left == right) {
    left = RestOfProduct(dx, py, left);
    right = RestOfProduct(dy, px, right);
  }
  return (left > right) - (left < right);
}

}  // namespace GMAT
