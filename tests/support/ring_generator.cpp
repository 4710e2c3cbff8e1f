#include "tests/support/ring_generator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

using GMAT::AnglePointC;
using GMAT::HALF_PI;
using GMAT::NormalizeAngle;
using GMAT::PI;
using GMAT::TWO_PI;

double RingGenerator::Nudged(double x) {
  constexpr double kOffsets[] = {1e-15,   1e-12, 4e-11, 5e-11, 9e-11,  1e-10, 1.1e-10,
                                 1.5e-10, 2e-10, 1e-9,  1e-8,  2.2e-8, 1e-7,  1e-6};
  switch (Below(6)) {
    case 0:
      return std::nextafter(x, OneIn(2) ? 100.0 : -100.0);
    case 1:
    case 2: {
      const double offset = kOffsets[Below(std::size(kOffsets))];
      return OneIn(2) ? x + offset : x - offset;
    }
    default:
      return x;
  }
}

double RingGenerator::SpecialHz() {
  const double quarter = static_cast<double>(Below(9)) * (TWO_PI / 8.0);
  return OneIn(20) ? -0.0 : Nudged(quarter);
}

double RingGenerator::SpecialV() {
  const double values[] = {0.0, -0.0, HALF_PI, HALF_PI, 1.57079633,    PI / 4.0,
                           PI,  0.3,  2.0,     HALF_PI, GMAT::V_LIMIT, 3.0 * PI / 4.0};
  return Nudged(values[Below(std::size(values))]);
}

std::size_t RingGenerator::Count(std::size_t maxPoints) {
  std::size_t n = 3 + Below(4);
  if (OneIn(4)) n = 3 + Below(12);
  if (OneIn(400)) n = 3 + Below(198);
  return std::min(n, maxPoints);
}

std::vector<AnglePointC> RingGenerator::Star(std::size_t n) {
  std::vector<AnglePointC> ring;
  const double hz = OneIn(2) ? Uniform(-0.3, 0.3) : Uniform(0.0, TWO_PI);
  const double v = Uniform(0.3, 2.4);
  const double radii[] = {1e-3, 0.02, 0.3, 1.2};
  const double radius = radii[Below(4)];
  const double noise = OneIn(2) ? 0.2 : 0.8;
  const double turn = OneIn(2) ? 1.0 : -1.0;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle =
        turn * TWO_PI * (static_cast<double>(i) + Uniform(0.0, 0.8)) / static_cast<double>(n);
    const double r = radius * Uniform(1.0 - noise, 1.0);
    ring.push_back({NormalizeAngle(hz + r * std::cos(angle)),
                    std::clamp(v + 0.7 * r * std::sin(angle), 0.0, PI)});
  }
  return ring;
}

std::vector<AnglePointC> RingGenerator::AroundZenith(std::size_t n) {
  std::vector<AnglePointC> ring;
  const double top = Uniform(0.1, 2.0);
  const double depth = OneIn(3) ? 0.0 : Uniform(0.0, 1.1);
  const double start = OneIn(3) ? 0.0 : Uniform(0.0, TWO_PI);
  const double turns = OneIn(6) ? 2.0 : 1.0;
  const double sign = OneIn(2) ? 1.0 : -1.0;
  const double jitter = OneIn(4) ? 1.5 : 0.4;
  for (std::size_t i = 0; i < n; ++i) {
    const double part =
        (static_cast<double>(i) + Uniform(-jitter, jitter)) / static_cast<double>(n);
    ring.push_back({NormalizeAngle(start + sign * turns * TWO_PI * part),
                    std::min(top + Uniform(0.0, depth), PI)});
  }
  return ring;
}

std::vector<AnglePointC> RingGenerator::Scattered(std::size_t n) {
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) ring.push_back({Uniform(0.0, TWO_PI), Uniform(0.0, PI)});
  return ring;
}

// Teeth with steep flanks, some narrower than the tolerances.
std::vector<AnglePointC> RingGenerator::Comb(std::size_t n) {
  std::vector<AnglePointC> ring;
  const double start = Uniform(0.0, TWO_PI);
  const double steps[] = {1e-11, 1e-10, 3e-10, 1e-9, 1e-6, 1e-2};
  const double step = steps[Below(6)];
  for (std::size_t i = 0; i + 1 < n; ++i) {
    ring.push_back({NormalizeAngle(start + step * static_cast<double>(i)),
                    i % 2 == 0 ? Uniform(0.5, 0.6) : Uniform(1.4, 1.8)});
  }
  ring.push_back({NormalizeAngle(start + step), 2.2});
  return ring;
}

std::vector<AnglePointC> RingGenerator::OnGrid(std::size_t n) {
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) ring.push_back({SpecialHz(), SpecialV()});
  return ring;
}

void RingGenerator::Spoil(std::vector<AnglePointC>& ring) {
  const std::size_t i = Below(ring.size());
  const std::size_t j = Below(ring.size());
  switch (Below(9)) {
    case 0:
      std::swap(ring[i], ring[j]);  // a bow-tie
      break;
    case 1:
      ring[i] = {Nudged(ring[j].Hz), Nudged(ring[j].V)};
      break;
    case 2:
      ring[i].Hz = Nudged(ring[(i + 1) % ring.size()].Hz);  // an edge along a meridian
      break;
    case 3:
      ring[i].Hz = Nudged(NormalizeAngle(ring[(i + 1) % ring.size()].Hz + PI));  // over a pole
      break;
    case 4:
      ring[i].V = Nudged(OneIn(2) ? 0.0 : PI);
      break;
    case 5:
      ring[i].V = Nudged(ring[j].V);
      break;
    case 6:
      ring[i].V = SpecialV();
      break;
    case 7:
      ring[i].Hz = SpecialHz();
      break;
    default:
      ring[i].Hz = Nudged(ring[j].Hz);
  }
}

std::vector<AnglePointC> RingGenerator::Ring(std::size_t maxPoints, bool wild) {
  const std::size_t n = Count(maxPoints);
  std::vector<AnglePointC> ring;
  const std::uint64_t kind = Below(16);
  if (kind < 6) {
    ring = Star(n);
  } else if (kind < 9) {
    ring = AroundZenith(n);
  } else if (kind < 11) {
    ring = Scattered(std::min<std::size_t>(n, 6));
  } else if (kind < 12) {
    ring = Comb(n);
  } else if (kind < 14) {
    ring = OnGrid(n);
  } else if (kind < 15) {
    ring = OneIn(2) ? Scattered(2) : OnGrid(2);
  } else {
    ring = Star(n);
    for (AnglePointC& p : ring) p = {OneIn(3) ? SpecialHz() : p.Hz, OneIn(3) ? SpecialV() : p.V};
  }
  while (OneIn(3)) Spoil(ring);
  if (wild && OneIn(20)) {
    const double values[] = {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             1e300,
                             -1e300,
                             1e17,
                             7.0,
                             -3.0,
                             50.0,
                             150.0,
                             std::numeric_limits<double>::max()};
    for (int i = 0; i < 2; ++i) {
      AnglePointC& p = ring[Below(ring.size())];
      (OneIn(2) ? p.Hz : p.V) = values[Below(std::size(values))];
    }
  }
  if (wild && OneIn(200)) ring.resize(Below(2));
  return ring;
}

std::vector<AnglePointC> RingGenerator::CrowdedRing() {
  const std::size_t n = 100 + Below(500);
  const auto at = [n](std::size_t i) { return static_cast<double>(i) / static_cast<double>(n); };
  const double hz = OneIn(3) ? 0.0 : Uniform(0.0, TWO_PI);
  const double v = Uniform(0.8, 2.0);
  const double width = Uniform(0.05, 0.7);
  const std::uint64_t kind = Below(5);
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = TWO_PI * at(i);
    const double r = kind == 4 && angle > 0.05 ? width : width * Uniform(0.4, 1.0);
    AnglePointC p{hz + r * std::cos(angle), v + r * std::sin(angle)};
    if (kind == 0) p = {TWO_PI * at(i), v + Uniform(-width, width)};
    if (kind == 1 || kind == 2) {  // in steps up one side, with a tooth at every other corner
      const bool isTip = i % 2 == 1 && i + 1 < n;
      const double along = -width + 2.0 * width * at(i);
      const double across = i + 1 == n ? -width
                            : isTip    ? Uniform(0.5, 1.0) * width
                                       : Uniform(0.0, 0.1) * width;
      p = kind == 1 ? AnglePointC{hz + across, v + along} : AnglePointC{hz + along, v + across};
    }
    ring.push_back({NormalizeAngle(p.Hz), std::clamp(p.V, 0.0, PI)});
  }
  return ring;
}

AnglePointC RingGenerator::Probe(const std::vector<AnglePointC>& edges, double hzOrigin,
                                 bool wild) {
  if (edges.empty()) return {Uniform(0.0, TWO_PI), Uniform(0.0, PI)};
  const AnglePointC a = edges[Below(edges.size())];
  const std::size_t e = 2 * Below(edges.size() / 2);
  const double t = Uniform(0.0, 1.0);
  // On the chord of an edge, and slightly off it.
  AnglePointC on{edges[e].Hz + t * (edges[e + 1].Hz - edges[e].Hz),
                 edges[e].V + t * (edges[e + 1].V - edges[e].V)};
  switch (Below(12)) {
    case 0:
      return {Nudged(NormalizeAngle(a.Hz + hzOrigin)), Uniform(0.0, PI)};
    case 1:
      return {Nudged(NormalizeAngle(a.Hz + hzOrigin)), Nudged(a.V)};
    case 2:
      return {Nudged(NormalizeAngle(on.Hz + hzOrigin)), on.V + Uniform(-1e-3, 1e-3)};
    case 3:
      return {Nudged(NormalizeAngle(on.Hz + hzOrigin)), Nudged(on.V)};
    case 4:  // in the boundary band
      return {NormalizeAngle(on.Hz - hzOrigin), on.V + Uniform(-2e-5, 2e-5)};
    case 5:
      return {Nudged(NormalizeAngle(on.Hz - hzOrigin)), Nudged(on.V)};
    case 6:
      return {NormalizeAngle(a.Hz - hzOrigin) + Uniform(-1e-5, 1e-5), a.V + Uniform(-1e-5, 1e-5)};
    case 7:
      return {SpecialHz(), SpecialV()};
    case 8:
      return {NormalizeAngle(on.Hz + hzOrigin), Uniform(0.0, PI)};
    case 9:
      if (wild && OneIn(4)) {
        const double values[] = {std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity(),
                                 -1e300,
                                 99.9,
                                 100.0,
                                 -100.0,
                                 101.0,
                                 -1e-12,
                                 TWO_PI,
                                 -TWO_PI};
        return {OneIn(2) ? values[Below(10)] : a.Hz, OneIn(2) ? values[Below(10)] : a.V};
      }
      return {Uniform(-20.0, 20.0), Uniform(-1.0, 7.0)};
    default:
      return {Uniform(0.0, TWO_PI), Uniform(0.0, PI)};
  }
}
