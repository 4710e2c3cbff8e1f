#ifndef SURVEYDATA_BENCHMARKS_HOSTILE_RINGS_H_
#define SURVEYDATA_BENCHMARKS_HOSTILE_RINGS_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "rings.h"

/// \file
/// Valid rings of `n` corners in which many edges share a range of Hz and many a range of V, so
/// that comparing bounding boxes takes n^2 steps. All are within about 1 rad of (pi / 2, pi / 2).

namespace HostileRings {

inline constexpr double kDegree = 3.141592653589793 / 180.0;

/// The point (x, y), in degrees from the centre of the rings, rotated by `angle` degrees.
inline Direction At(double x, double y, double angle = 0.0) {
  const double c = std::cos(angle * kDegree);
  const double s = std::sin(angle * kDegree);
  return {(90.0 + x * c - y * s) * kDegree, (90.0 + x * s + y * c) * kDegree};
}

/// Long teeth side by side, at `angle` degrees from the meridians.
inline std::vector<Direction> Comb(std::size_t n, double angle) {
  std::vector<Direction> ring;
  for (std::size_t i = 0; i + 2 < n; ++i) {
    const double along = 60.0 * static_cast<double>(i) / static_cast<double>(n - 3) - 30.0;
    const double across = i % 4 == 0 || i % 4 == 3 ? -29.0 : 30.0;
    ring.push_back(At(along, across, angle));
  }
  ring.push_back(At(30.01, -31.0, angle));
  ring.push_back(At(-30.01, -31.0, angle));
  return ring;
}

inline std::vector<Direction> DiagonalComb(std::size_t n) { return Comb(n, 45.0); }
inline std::vector<Direction> ObliqueComb(std::size_t n) { return Comb(n, 20.0); }

/// Teeth along meridians above teeth along circles of latitude.
inline std::vector<Direction> TwoCombs(std::size_t n) {
  const std::size_t half = (n - 3) / 2;
  std::vector<Direction> ring;
  const auto addTeeth = [&](auto point) {
    for (std::size_t i = 0; i < half; ++i) {
      const double along = 28.0 * static_cast<double>(i) / static_cast<double>(half - 1) + 1.0;
      point(along, i % 4 == 0 || i % 4 == 3 ? 1.0 : 29.0);
    }
  };
  addTeeth([&](double along, double across) { ring.push_back(At(-along, across)); });
  ring.push_back(At(-30.0, 0.5));
  ring.push_back(At(-30.0, -30.0));
  addTeeth([&](double along, double across) { ring.push_back(At(-across, along - 30.0)); });
  ring.push_back(At(-0.5, 0.5));
  if (ring.size() < n) ring.push_back(At(0.0, 0.5));
  return ring;
}

/// A spiral corridor.
inline std::vector<Direction> Spiral(std::size_t n) {
  const double turns = std::max(4.0, std::sqrt(static_cast<double>(n)) / 2.0);
  const std::size_t half = n / 2;
  std::vector<Direction> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const bool isOut = i < half;
    const double part = static_cast<double>(isOut ? i : n - 1 - i) / static_cast<double>(half);
    const double radius = 3.0 + 25.5 * part - (isOut ? 0.0 : 11.5 / turns);
    ring.push_back(At(radius, 0.0, 360.0 * turns * part));
  }
  return ring;
}

/// A star of long thin spikes that all lean to one side, so that no point sees the whole ring.
inline std::vector<Direction> LeaningStar(std::size_t n) {
  std::vector<Direction> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const bool isTip = i % 2 == 1;
    const double angle =
        360.0 * static_cast<double>(i) / static_cast<double>(n) + (isTip ? 60.0 : 0.0);
    ring.push_back(At(isTip ? 30.0 : 5.0, 0.0, angle));
  }
  return ring;
}

/// Bristles that spread from a handle.
inline std::vector<Direction> Brush(std::size_t n) {
  std::vector<Direction> ring;
  for (std::size_t i = 0; i + 2 < n; ++i) {
    const double along = 2.0 * static_cast<double>(i) / static_cast<double>(n - 3) - 1.0;
    const bool isTip = i % 2 == 1;
    const double spread = 60.0 * along * kDegree;
    const double x = 10.0 * along;
    ring.push_back(isTip ? At(x + 25.0 * std::sin(spread), 25.0 * std::cos(spread)) : At(x, 0.0));
  }
  ring.push_back(At(12.0, -5.0));
  ring.push_back(At(-12.0, -5.0));
  return ring;
}

struct Named {
  const char* name;
  std::vector<Direction> (*make)(std::size_t n);
};
inline constexpr Named kAll[] = {{"diagonal_comb", DiagonalComb}, {"oblique_comb", ObliqueComb},
                                 {"two_combs", TwoCombs},         {"spiral", Spiral},
                                 {"leaning_star", LeaningStar},   {"brush", Brush}};

}  // namespace HostileRings

#endif  // SURVEYDATA_BENCHMARKS_HOSTILE_RINGS_H_
