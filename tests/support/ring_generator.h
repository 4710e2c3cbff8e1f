#ifndef SURVEYDATA_TESTS_SUPPORT_RING_GENERATOR_H_
#define SURVEYDATA_TESTS_SUPPORT_RING_GENERATOR_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

/// Generates corners and probes that target the edge cases of the rules of sphere areas: the seam
/// at Hz 0, equal Hz, edges along meridians, poles, the horizon, rings around the zenith, the
/// boundary band, nearly equal points, self-intersecting rings. The same seed gives the same
/// sequence.
class RingGenerator {
 public:
  explicit RingGenerator(std::uint64_t seed) : random_(seed) {}

  /// The corners of the next area, usually few, at most `maxPoints`. With `wild`, a few of them are
  /// out of range or NaN.
  std::vector<GMAT::AnglePointC> Ring(std::size_t maxPoints, bool wild);

  /// Hundreds of corners, so that a meridian crosses many edges: a star of spikes, long teeth along
  /// Hz or along V, a jagged ring around the zenith, or much detail in a small part of the ring.
  std::vector<GMAT::AnglePointC> CrowdedRing();

  /// A direction to query. `edges` and `hzOrigin` are those of the ring.
  GMAT::AnglePointC Probe(const std::vector<GMAT::AnglePointC>& edges, double hzOrigin, bool wild);

  /// `x`, a neighbouring double, or `x` plus an offset of about a tolerance.
  double Nudged(double x);
  std::uint64_t Below(std::uint64_t n) { return random_() % n; }
  double Uniform(double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(random_() >> 11) * 0x1p-53);
  }

 private:
  bool OneIn(std::uint64_t n) { return Below(n) == 0; }
  double SpecialHz();
  double SpecialV();
  std::size_t Count(std::size_t maxPoints);
  std::vector<GMAT::AnglePointC> Star(std::size_t n);
  std::vector<GMAT::AnglePointC> AroundZenith(std::size_t n);
  std::vector<GMAT::AnglePointC> Scattered(std::size_t n);
  std::vector<GMAT::AnglePointC> Comb(std::size_t n);
  std::vector<GMAT::AnglePointC> OnGrid(std::size_t n);
  void Spoil(std::vector<GMAT::AnglePointC>& ring);

  std::mt19937_64 random_;
};

#endif  // SURVEYDATA_TESTS_SUPPORT_RING_GENERATOR_H_
