#ifndef SURVEYDATA_TESTS_SUPPORT_HOSTILE_RING_GENERATOR_H_
#define SURVEYDATA_TESTS_SUPPORT_HOSTILE_RING_GENERATOR_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <benchmarks/hostile_rings.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/edge_sweep.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/ring_generator.h"

/// \file
/// Rings whose edges nearly touch or cross, and the plain comparison of all pairs of their edges.

namespace GMAT {

using Corners = std::vector<AnglePointC>;

inline SphereAreaC ToArea(const Corners& ring) {
  SphereAreaC area;
  area.AddPoints(ring);
  return area;
}

inline std::vector<AnglePointC> EdgesOf(const Corners& ring) {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  ToArea(ring).BuildEdgeList(edges, hzOrigin);
  return edges;
}

inline bool AreNeighbours(std::size_t first, std::size_t second, std::size_t count) {
  return second - first < 2 || (first == 0 && second + 1 == count);
}

inline bool DoEdgesCross(const std::vector<AnglePointC>& edges, std::size_t first,
                         std::size_t second) {
  if (AreNeighbours(first, second, edges.size() / 2)) return false;
  const auto arc = [&](std::size_t i) {
    return ArcEdgeC(SpherePointC(edges[2 * i]), SpherePointC(edges[2 * i + 1]));
  };
  AnglePointC crossing;
  return FindPlanarCrossing(edges[2 * first], edges[2 * first + 1], edges[2 * second],
                            edges[2 * second + 1], crossing) &&
         FindSphericalCrossing(arc(first), arc(second), crossing);
}

inline bool HasCrossingPair(const std::vector<AnglePointC>& edges) {
  for (std::size_t first = 0; 2 * first < edges.size(); ++first) {
    for (std::size_t second = first + 2; 2 * second < edges.size(); ++second) {
      if (DoEdgesCross(edges, first, second)) return true;
    }
  }
  return false;
}

inline SweepResult Sweep(const std::vector<AnglePointC>& edges) {
  return SweepInOrder(edges, [&edges](std::size_t first, std::size_t second) {
    return DoEdgesCross(edges, first, second);
  });
}

inline std::string Describe(const Corners& ring) {
  std::string text;
  for (const AnglePointC& p : ring) {
    char line[100];
    std::snprintf(line, sizeof(line), "{%a, %a}, ", p.Hz, p.V);
    text += line;
  }
  return text;
}

class HostileRingGenerator : public RingGenerator {
 public:
  using RingGenerator::RingGenerator;

  double Pick(std::initializer_list<double> values) { return values.begin()[Below(values.size())]; }

  // One of the shapes of the benchmark, combs at any angle.
  Corners Shape(std::size_t n) {
    const std::uint64_t kind = Below(std::size(HostileRings::kAll) + 1);
    const std::vector<Direction> corners = kind == std::size(HostileRings::kAll)
                                               ? HostileRings::Comb(n, AnyAngle())
                                               : HostileRings::kAll[kind].make(n);
    Corners ring;
    for (const Direction& d : corners) ring.push_back({d.hz, d.v});
    return ring;
  }

  // A simple ring that is thin everywhere, at any angle: two chains above each other, whose
  // distances, steps and edges are near the margins, or not.
  Corners ThinRing(std::size_t n) {
    const double angle = AnyAngle();
    Corners ring;
    Corners back;
    double x = 60.0 * Uniform(-0.3, 0.0);
    double y = 0.0;
    const auto add = [&](Corners& to, double height) {
      const Direction d = HostileRings::At(x, height, angle);
      to.push_back({d.hz, d.v});
    };
    for (std::size_t i = 0; i < n / 2; ++i) {
      add(ring, y);
      if (Below(8) != 0) add(back, y + Small() + (Below(3) == 0 ? Uniform(0.0, 3.0) : 0.0));
      x += Below(3) == 0 ? Uniform(0.0, 2.0) : Small() * static_cast<double>(Below(4) != 0);
      y += (Below(3) == 0 ? Uniform(-3.0, 3.0) : Small()) * (Below(2) == 0 ? 1.0 : -1.0);
    }
    ring.insert(ring.end(), back.rbegin(), back.rend());
    return ring;
  }

  // Corners on a few lines along Hz and V: vertical and collinear edges, touching corners.
  Corners LatticeRing(std::size_t n) {
    const double step = Pick({0.1, 0.1, 1e-3, 1e-9, 5e-10, 2e-10, 1e-12});
    const std::uint64_t lines = 2 + Below(6);
    Corners ring;
    while (ring.size() < n) {
      ring.push_back({1.0 + step * static_cast<double>(Below(lines)),
                      1.5 + 0.1 * static_cast<double>(Below(lines))});
      if (ring.size() > 1 && ring.back() == ring[ring.size() - 2]) ring.pop_back();
    }
    return ring;
  }

  // Plants crossings, edges that nearly touch, repeated corners, vertical edges, other turns.
  void Harm(Corners& ring) {
    const std::size_t i = Below(ring.size());
    const std::size_t k = Below(ring.size());
    const AnglePointC& a = ring[k];
    const AnglePointC& b = ring[(k + 1) % ring.size()];
    const double t = Uniform(0.0, 1.0);
    const auto away = [this] {
      const double sizes[] = {0.0, 1e-16, 1e-12, 1e-11, 1e-10, 2e-10, 4e-10, 5.8e-10, 1e-9, 3e-9};
      return Uniform(-1.0, 1.0) * sizes[Below(std::size(sizes))];
    };
    switch (Below(7)) {
      case 0:
        std::swap(ring[i], ring[k]);
        break;
      case 1:
      case 2:
        ring[i] = {a.Hz + t * (b.Hz - a.Hz) + away(), a.V + t * (b.V - a.V) + away()};
        break;
      case 3:
        ring[i] = {a.Hz + away(), a.V + away()};
        break;
      case 4:
        ring[i].Hz = a.Hz + away();
        break;
      case 5:
        ring[i].V = a.V + away();
        break;
      default:
        ring.insert(ring.begin() + static_cast<std::ptrdiff_t>(i), {a.Hz + away(), a.V + away()});
    }
  }

  // Moves corners across Hz 0 and out of range.
  void Turn(Corners& ring) {
    const double by = Uniform(-2.0, 2.0);
    for (AnglePointC& p : ring) p.Hz = NormalizeAngle(p.Hz + by);
  }

  Corners Any(std::size_t n) {
    const std::uint64_t kind = Below(8);
    Corners ring = kind < 4 ? Shape(n) : kind < 7 ? ThinRing(n) : LatticeRing(n);
    while (Below(2) == 0) Harm(ring);
    if (Below(4) == 0) Turn(ring);
    return ring;
  }

 private:
  double AnyAngle() {
    return Pick({0.0, 90.0, 45.0, -45.0, 1e-8, 89.99999, Uniform(0.0, 360.0), Uniform(0.0, 360.0)});
  }
  // Degrees: from 1e-11 to 1e-8 rad.
  double Small() {
    return Pick({1e-11, 1e-10, 2e-10, 4e-10, 7e-10, 1e-9, 1.5e-9, 3e-9, 1e-8}) * Uniform(0.3, 1.0) /
           HostileRings::kDegree;
  }
};

}  // namespace GMAT

#endif  // SURVEYDATA_TESTS_SUPPORT_HOSTILE_RING_GENERATOR_H_
