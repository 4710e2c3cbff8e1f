#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {

double RoundToStep(double x, double step) {
  if (!(step > 0.0)) return x;
  return std::copysign(std::floor(std::fabs(x) / step + 0.5) * step, x);
}

bool InRange(double x, double lo, double hi, std::uint16_t digits) {
  if (lo < x && x < hi) return true;
  const double step = DecimalStep(digits);
  const double rounded = RoundToStep(x, step);
  return ApproxEqual(rounded, RoundToStep(lo, step), digits) ||
         ApproxEqual(rounded, RoundToStep(hi, step), digits);
}

bool AtLeast(double a, double b, std::uint16_t digits) {
  const double step = DecimalStep(digits);
  return RoundToStep(a, step) > RoundToStep(b, step) || ApproxEqual(a, b, digits);
}

bool AtMost(double a, double b, std::uint16_t digits) { return AtLeast(b, a, digits); }

bool WrapIntoRange(double& a, double lo, double hi) {
  constexpr double kBound = 100.0;
  const auto isOutside = [](double x) { return x < -kBound || x > kBound; };
  if (lo >= hi || isOutside(lo) || isOutside(hi) || isOutside(a)) return false;

  double wrapped = a;
  if (a < lo) {
    wrapped = a + TWO_PI * std::ceil((lo - a) / TWO_PI);
  } else if (a > hi) {
    wrapped = a - TWO_PI * std::ceil((a - hi) / TWO_PI);
  }
  const bool isInside = lo <= wrapped && wrapped <= hi;
  if (!isInside && !ApproxEqual(wrapped, hi) && !ApproxEqual(wrapped, lo)) return false;
  a = wrapped;
  return true;
}

void ToFirstFace(AnglePointC& p) {
  if (!(p.V > PI)) return;
  p.V = TWO_PI - p.V;
  p.Hz = NormalizeAngle(p.Hz + PI);
}

}  // namespace GMAT
