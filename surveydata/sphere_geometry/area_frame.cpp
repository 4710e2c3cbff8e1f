#include <algorithm>
#include <cstdint>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/ring_crossings.h>

namespace GMAT {
namespace {

// Extends [vMin, vMax] to the vertex of the arc from `current` to `previous`. Each of the two
// candidates counts if it lies within the Hz span of the arc.
void WidenByVertex(const AnglePointC& current, const AnglePointC& previous, double& vMin,
                   double& vMax) {
  const GreatCircleArcC arc{SpherePointC(current), SpherePointC(previous)};
  double latitude = 0.0;
  double longitude = 0.0;
  if (!arc.GetVertex(latitude, longitude)) return;
  const double hzLow = std::min(current.Hz, previous.Hz);
  const double hzHigh = std::max(current.Hz, previous.Hz);
  const auto widen = [&](double hz, double v) {
    if (!InRange(hz, hzLow, hzHigh)) return;
    if (v < vMin) vMin = v;
    if (v > vMax) vMax = v;
  };
  const double v = LatitudeToV(latitude);
  widen(longitude, v);
  // The opposite vertex by the rules, which is not the antipode of the first.
  widen(NormalizeAngle(longitude + PI), NormalizeAngle(TWO_PI - v));
}

// Whether no candidate for the vertex can lie outside [vMin, vMax]; see `kVertexMargin`.
bool CannotWiden(const AnglePointC& current, const AnglePointC& previous, double vMin,
                 double vMax) {
  const double hz = std::fabs(current.Hz - previous.Hz);
  return hz < kWidestWithoutOpposite && current.Hz < kLargestHz && current.V >= 0.0 &&
         current.V <= PI && current.V - hz - kVertexMargin > vMin &&
         current.V + hz + kVertexMargin < vMax;
}

bool ArePointsValid(std::span<const AnglePointC> points) {
  return std::all_of(points.begin(), points.end(), [](const AnglePointC& p) {
    return InRange(p.Hz, 0.0, TWO_PI) && InRange(p.V, 0.0, PI);
  });
}

bool HasEqualPoints(std::span<const AnglePointC> points) {
  if (points.size() == 2) return points.front() == points.back();
  std::vector<AnglePointC> sorted(points.begin(), points.end());  // contains no NaN
  std::sort(sorted.begin(), sorted.end(), [](const AnglePointC& a, const AnglePointC& b) {
    return a.Hz != b.Hz ? a.Hz < b.Hz : a.V < b.V;
  });
  return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

}  // namespace

bool BuildEdges(std::span<const AnglePointC> points, std::vector<AnglePointC>& edges,
                double& hzOrigin) {
  const std::size_t n = points.size();
  if (n < 2) return false;
  edges.clear();
  edges.reserve(2 * std::max<std::size_t>(n, 4));
  const AnglePointC& first = points.front();
  if (n == 2) {
    const AnglePointC& second = points.back();
    if (first.Hz > second.Hz) hzOrigin = TWO_PI;
    const double x0 = first.Hz;
    const double x1 = second.Hz + hzOrigin;
    edges.assign({{x0, first.V},
                  {x0, second.V},
                  {x0, second.V},
                  {x1, second.V},
                  {x1, second.V},
                  {x1, first.V},
                  {x1, first.V},
                  {x0, first.V}});
  } else {
    double offset = 0.0;
    double previous = first.Hz;
    edges.push_back(first);
    for (std::size_t i = 1; i <= n; ++i) {
      const AnglePointC& point = points[i < n ? i : 0];
      double current = point.Hz + offset;
      if (std::fabs(current - previous) > PI) {
        const double turn = previous > current ? TWO_PI : -TWO_PI;
        offset += turn;
        current += turn;
      }
      edges.push_back({current, point.V});
      if (i < n) edges.push_back({current, point.V});
      previous = current;
    }
  }
  double smallest = edges.front().Hz;
  for (const AnglePointC& point : edges) {
    if (point.Hz < smallest) smallest = point.Hz;
  }
  for (AnglePointC& point : edges) point.Hz -= smallest;
  hzOrigin = NormalizeAngle(smallest);
  return true;
}

bool BuildFrame(std::span<const AnglePointC> points, AreaFrame& frame) {
  frame.hzOrigin = 0.0;
  if (!BuildEdges(points, frame.edges, frame.hzOrigin)) return false;
  frame.isPolygon = points.size() > 2;
  const std::vector<AnglePointC>& edges = frame.edges;

  double pointsVMin = edges.front().V;
  double pointsVMax = pointsVMin;
  for (const AnglePointC& point : edges) {
    if (point.V < pointsVMin) pointsVMin = point.V;
    if (point.V > pointsVMax) pointsVMax = point.V;
  }

  double hzMax = edges.front().Hz;
  double vMin = edges.front().V;
  double vMax = vMin;
  double winding = 0.0;
  for (std::size_t i = 1; i < edges.size(); ++i) {
    const AnglePointC& current = edges[i];
    const AnglePointC& previous = edges[i - 1];
    if (current.Hz > hzMax) hzMax = current.Hz;
    if (current.V < vMin) vMin = current.V;
    if (current.V > vMax) vMax = current.V;
    // Points i - 1 and i are the ends of an edge only if i is odd.
    if (frame.isPolygon && i % 2 == 1 && !CannotWiden(current, previous, pointsVMin, pointsVMax)) {
      WidenByVertex(current, previous, vMin, vMax);
    }
    winding += current.Hz - previous.Hz;
  }
  frame.hzMin = frame.hzOrigin;
  frame.hzMax = hzMax + frame.hzOrigin;
  frame.vMin = vMin;
  frame.vMax = vMax;
  constexpr std::uint16_t kWindingDigits = 3;
  frame.enclosesZenith =
      frame.isPolygon && (ApproxEqual(winding, TWO_PI, kWindingDigits) || winding > TWO_PI ||
                          ApproxEqual(winding, -TWO_PI, kWindingDigits) || winding < -TWO_PI);
  if (frame.enclosesZenith) {
    frame.hzMin = points.front().Hz + 1e-6;
    frame.hzMax = frame.hzMin + TWO_PI;
    frame.vMax = V_LIMIT;
  }
  return true;
}

bool IsRingValid(std::span<const AnglePointC> points, const std::vector<AnglePointC>& edges) {
  if (!ArePointsValid(points)) return false;
  if (points.size() == 2) return !HasEqualPoints(points);
  return IsProvenStarShaped(edges) || (!HasEqualPoints(points) && !CrossesItself(edges));
}

}  // namespace GMAT
