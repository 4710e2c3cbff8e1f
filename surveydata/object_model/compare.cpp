#include <cmath>

#include <surveydata/object_model/compare.h>

namespace API {

int CompareWithTolerance(double a, double b, double eps) noexcept {
  const double larger = std::fabs(a) > std::fabs(b) ? a : b;
  int exponent = 0;  // for infinities and NaN, whose exponent `frexp` leaves unspecified
  if (std::isfinite(larger)) std::frexp(larger, &exponent);
  const double tolerance = std::ldexp(eps, exponent);
  const double difference = a - b;
  if (difference > tolerance) return 1;
  if (difference < -tolerance) return -1;
  return 0;
}

int CompareWithTolerance(float a, float b, float eps) noexcept {
  return CompareWithTolerance(static_cast<double>(a), static_cast<double>(b),
                              static_cast<double>(eps));
}

}  // namespace API
