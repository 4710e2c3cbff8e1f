#ifndef SURVEYDATA_SPHERE_GEOMETRY_QUICK_TRIG_H_
#define SURVEYDATA_SPHERE_GEOMETRY_QUICK_TRIG_H_

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {

struct CosSin {
  double cosine;
  double sine;
};

/// Cosine and sine of the multiples of 2 pi / 256.
class TrigTableC {
 public:
  static constexpr std::size_t kSteps = 256;
  static constexpr double kStep = TWO_PI / kSteps;

  constexpr TrigTableC() {
    for (std::size_t i = 0; i <= kSteps / 8; ++i) {
      const CosSin at = Taylor(static_cast<double>(i) * kStep);
      // The eight points that are its mirror images.
      SetQuarters(i, at.cosine, at.sine);
      SetQuarters(kSteps / 4 - i, at.sine, at.cosine);
    }
    entries_[kSteps] = entries_[0];
  }
  const CosSin& operator[](std::size_t i) const { return entries_[i]; }

 private:
  // For x up to pi / 4, summed from the smallest term.
  static constexpr CosSin Taylor(double x) {
    double cosine = 1.0;
    double sine = 1.0;
    for (int n = 20; n > 0; n -= 2) {
      cosine = 1.0 - x * x / (n * (n - 1)) * cosine;
      sine = 1.0 - x * x / (n * (n + 1)) * sine;
    }
    return {cosine, x * sine};
  }

  // Angle `i` of the first quarter, and those a quarter turn, a half turn and three quarters on.
  constexpr void SetQuarters(std::size_t i, double cosine, double sine) {
    entries_[i] = {cosine, sine};
    entries_[i + kSteps / 4] = {-sine, cosine};
    entries_[i + kSteps / 2] = {-cosine, -sine};
    if (i + kSteps * 3 / 4 <= kSteps) entries_[i + kSteps * 3 / 4] = {sine, -cosine};
  }

  std::array<CosSin, kSteps + 1> entries_{};
};

inline constexpr TrigTableC kTrigTable;

/// Cosine and sine of x in [0, 2 pi], without a branch.
/// \accuracy `kQuickTrigError`.
/// \source the addition theorem about the nearest entry of the table; Taylor's series of the
///         remainder, which is at most pi / 256.
inline CosSin QuickCosSin(double x) {
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): x is not negative, and either neighbour would do
  const auto i = static_cast<std::int64_t>(x * (1.0 / TrigTableC::kStep) + 0.5);
  const double d = x - static_cast<double>(i) * TrigTableC::kStep;
  const double d2 = d * d;
  const double cosine = 1.0 - d2 * (1.0 / 2 - d2 * (1.0 / 24 - d2 * (1.0 / 720)));
  const double sine = d * (1.0 - d2 * (1.0 / 6 - d2 * (1.0 / 120)));
  const CosSin& at = kTrigTable[static_cast<std::size_t>(i)];
  return {at.cosine * cosine - at.sine * sine, at.sine * cosine + at.cosine * sine};
}

/// The arc tangent, for any x.
/// \accuracy `kQuickArcTangentError`.
/// \source C. Hastings, Approximations for Digital Computers, 1955, sheet 13; also Abramowitz and
///         Stegun, 4.4.49.
inline double QuickArcTangent(double x) {
  const double y = std::fabs(x);
  const bool isInverse = y > 1.0;
  const double z = isInverse ? 1.0 / y : y;
  const double z2 = z * z;
  constexpr double k[] = {1.0,           -0.3333314528, 0.1999355085,  -0.1420889944, 0.1065626393,
                          -0.0752896400, 0.0429096138,  -0.0161657367, 0.0028662257};
  double sum = 0.0;
  for (int i = 8; i >= 0; --i) sum = sum * z2 + k[i];
  const double angle = isInverse ? HALF_PI - z * sum : z * sum;
  return std::copysign(angle, x);
}

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_QUICK_TRIG_H_
