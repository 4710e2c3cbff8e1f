#ifndef SURVEYDATA_BENCHMARKS_RINGS_H_
#define SURVEYDATA_BENCHMARKS_RINGS_H_

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

/// A direction in rad.
struct Direction {
  double hz;
  double v;
};

/// A star-shaped ring of `n` corners, about 0.4 rad wide, such as one around a building: five
/// lobes, and noise of a fifth of the distance between neighbours.
inline std::vector<Direction> LobedRing(std::size_t n) {
  std::mt19937_64 random(n);
  const double step = 6.283185307179586 / static_cast<double>(n);
  std::uniform_real_distribution<double> noise(-0.1 * step, 0.1 * step);
  std::vector<Direction> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = step * static_cast<double>(i) + noise(random);
    const double r = 0.4 * (1.0 + 0.2 * std::sin(5.0 * angle) + noise(random));
    ring.push_back({3.0 + r * std::cos(angle), 1.3 + r * std::sin(angle)});
  }
  return ring;
}

/// A star-shaped ring of spikes: the radius of each corner is random, so that a meridian crosses
/// a large part of all edges.
inline std::vector<Direction> SpikyRing(std::size_t n) {
  std::mt19937_64 random(n);
  std::uniform_real_distribution<double> radius(0.3, 0.5);
  const double step = 6.283185307179586 / static_cast<double>(n);
  std::vector<Direction> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = step * static_cast<double>(i);
    const double r = radius(random);
    ring.push_back({3.0 + r * std::cos(angle), 1.3 + r * std::sin(angle)});
  }
  return ring;
}

/// Directions in and around the rings: a box with a margin of a quarter of their width.
inline std::vector<Direction> ProbesAround(std::size_t count) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> offset(-0.6, 0.6);
  std::vector<Direction> probes;
  for (std::size_t i = 0; i < count; ++i) {
    probes.push_back({3.0 + offset(random), 1.3 + offset(random)});
  }
  return probes;
}

/// Distinct random directions in a box around the rings, `halfWidth` to each side of the middle.
inline std::vector<Direction> RandomDirections(std::size_t count, double halfWidth) {
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> offset(-halfWidth, halfWidth);
  std::vector<Direction> directions(count);
  for (Direction& d : directions) d = {3.0 + offset(random), 1.3 + offset(random)};
  return directions;
}

/// The directions of the same box as an instrument scans them, Hz by Hz, each from the top down.
inline std::vector<Direction> ScanDirections(std::size_t count, double halfWidth) {
  const auto rows = static_cast<std::size_t>(std::sqrt(static_cast<double>(count)));
  std::vector<Direction> directions(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double x = (static_cast<double>(i / rows) + 0.5) / static_cast<double>(rows);
    const double y = (static_cast<double>(i % rows) + 0.5) / static_cast<double>(rows);
    directions[i] = {3.0 + halfWidth * (2.0 * x - 1.0), 1.3 + halfWidth * (2.0 * y - 1.0)};
  }
  return directions;
}

#endif  // SURVEYDATA_BENCHMARKS_RINGS_H_
