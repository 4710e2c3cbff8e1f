#ifndef SURVEYDATA_SPHERE_GEOMETRY_ANGLES_H_
#define SURVEYDATA_SPHERE_GEOMETRY_ANGLES_H_

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

/// \file
/// Directions, and comparisons of angles with decimal tolerances. Angles are in radians.
/// Functions that are not defined here are not exported.

namespace GMAT {

inline constexpr double PI = 3.141592653589793;
inline constexpr double TWO_PI = 6.283185307179586;
inline constexpr double HALF_PI = 1.5707963267948966;

/// The lowest usable direction: 144 degrees from the zenith.
inline constexpr double V_LIMIT = 0.8 * PI;

/// The number of decimal digits of nearly every comparison.
inline constexpr std::uint16_t kDigits = 10;

/// A direction of the instrument; a new one is not set.
struct AnglePointC {
  double Hz = std::numeric_limits<double>::max();  ///< Horizontal angle.
  double V = std::numeric_limits<double>::max();   ///< From the zenith: 0 is up, pi is down.

  friend bool operator==(const AnglePointC&, const AnglePointC&) = default;
};

/// 10^(-digits).
inline double DecimalStep(std::uint16_t digits) {
  return digits == kDigits ? 1e-10 : std::pow(10.0, -digits);
}

/// Whether `a` and `b` differ by less than 10^(-digits).
inline bool ApproxEqual(double a, double b, std::uint16_t digits = kDigits) {
  return std::fabs(a - b) < DecimalStep(digits);
}

/// Whether `a` and `b` differ by less than the smallest normal double.
inline bool ExactlyEqual(double a, double b) {
  return std::fabs(a - b) < std::numeric_limits<double>::min();
}

/// `x` rounded to a multiple of `step`, half away from zero; `x` itself if `step` is not
/// positive.
double RoundToStep(double x, double step);

/// Whether `x` lies between `lo` and `hi`, or rounds to one of them at `digits` decimal digits.
bool InRange(double x, double lo, double hi, std::uint16_t digits = kDigits);

/// Whether `a` is at least `b` at `digits` decimal digits.
bool AtLeast(double a, double b, std::uint16_t digits = kDigits);

/// Whether `a` is at most `b` at `digits` decimal digits.
bool AtMost(double a, double b, std::uint16_t digits = kDigits);

/// Converts gon to radians; a full turn is 400 gon.
constexpr double GonToRad(double gon) { return gon / 200.0 * PI; }

/// The width of the boundary band, half of it on either side: directions in it count as inside.
inline constexpr double CONTAINS_TOLERANCE = GonToRad(0.001);

/// The angle in [0, 2 pi) that differs from `a` by full turns; NaN if `a` is not finite.
inline double NormalizeAngle(double a) {
  if (0.0 <= a && a < TWO_PI) return a;
  return std::fmod(std::fmod(a, TWO_PI) + TWO_PI, TWO_PI);
}

/// Moves `a` into [lo, hi] by full turns.
///
/// \return false, with `a` unchanged, if `lo` is not below `hi`, if one of the three is outside
///         [-100, 100], or if no number of turns moves `a` into the range, to 10 decimal digits.
bool WrapIntoRange(double& a, double lo, double hi);

/// The bits of a double. Those of non-negative doubles sort like the doubles themselves; those of
/// all others, including -0.0 and NaN, are greater.
inline std::uint64_t OrderedBits(double x) { return std::bit_cast<std::uint64_t>(x); }

/// Whether both are in [0, 2 pi]; false for -0.0.
inline bool AreInTurn(double hz, double v) {
  return std::max(OrderedBits(hz), OrderedBits(v)) <= OrderedBits(TWO_PI);
}

/// The same direction seen in the first face: a V beyond pi becomes 2 pi - V at the opposite Hz.
void ToFirstFace(AnglePointC& p);

/// The distance between two points of the (Hz, V) plane.
inline double PlanarDistance(const AnglePointC& p, const AnglePointC& q) {
  const double hz = p.Hz - q.Hz;
  const double v = p.V - q.V;
  return std::sqrt(hz * hz + v * v);
}

/// The distance of `p` from the infinite line through `a` and `b` in the (Hz, V) plane; NaN or
/// infinite if `a` and `b` coincide.
inline double PlanarLineDistance(const AnglePointC& p, const AnglePointC& a, const AnglePointC& b) {
  return std::fabs((a.Hz - b.Hz) * (a.V - p.V) - (a.Hz - p.Hz) * (a.V - b.V)) /
         PlanarDistance(a, b);
}

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_ANGLES_H_
