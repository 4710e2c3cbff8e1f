#include <algorithm>
#include <array>
#include <numeric>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/ring_crossings.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {
namespace {

// Widens [vMin, vMax] by the two candidates for the vertex of the arc from `current` to `previous`
// that lie within its Hz span.
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
  // The rule for the opposite vertex; it is not the antipode of the first.
  widen(NormalizeAngle(longitude + PI), NormalizeAngle(TWO_PI - v));
}

// Whether no candidate for a vertex can reach beyond [vMin, vMax]. The first candidate lies at most
// as far from `current` in V as in Hz, and counts only within the edge's Hz span; the second lies
// at least a quarter turn from `current`. Where Hz is so large that it is rounded to more than a
// fraction of the margin, nothing is known.
bool CannotWiden(const AnglePointC& current, const AnglePointC& previous, double vMin,
                 double vMax) {
  constexpr double kMargin = 1e-6;  // above the accuracy of the vertex
  constexpr double kLargestHz = 1e6;
  const double hz = std::fabs(current.Hz - previous.Hz);
  return hz < HALF_PI - 0.01 && current.Hz < kLargestHz && current.V >= 0.0 && current.V <= PI &&
         current.V - hz - kMargin > vMin && current.V + hz + kMargin < vMax;
}

}  // namespace

SphereAreaC::~SphereAreaC() = default;

void SphereAreaC::Clear() { points_.clear(); }

void SphereAreaC::RemoveLastPoint() {
  if (!points_.empty()) points_.pop_back();
}

std::size_t SphereAreaC::GetPointCount() const { return points_.size(); }

bool SphereAreaC::AddPoint(const double& hz, const double& v) {
  AnglePointC point{hz, v};
  ToFirstFace(point);
  points_.push_back(point);
  return true;
}

bool SphereAreaC::AddPoints(const std::vector<AnglePointC>& points) {
  points_.reserve(points_.size() + points.size());
  for (const AnglePointC& point : points) SphereAreaC::AddPoint(point.Hz, point.V);
  return true;
}

bool SphereAreaC::BuildEdgeList(std::vector<AnglePointC>& edges, double& hzOrigin) const {
  const std::size_t n = points_.size();
  if (n < 2) return false;
  edges.clear();
  edges.reserve(2 * std::max<std::size_t>(n, 4));
  const AnglePointC& first = points_.front();
  if (n == 2) {
    const AnglePointC& second = points_.back();
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
      const AnglePointC& point = points_[i < n ? i : 0];
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

bool SphereAreaC::BuildFrame(Frame& frame) const {
  frame.hzOrigin = 0.0;
  if (!BuildEdgeList(frame.edges, frame.hzOrigin)) return false;
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
    // Between the end of an edge and the start of the next there is nothing.
    if (IsPolygon() && i % 2 == 1 && !CannotWiden(current, previous, pointsVMin, pointsVMax)) {
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
      IsPolygon() && (ApproxEqual(winding, TWO_PI, kWindingDigits) || winding > TWO_PI ||
                      ApproxEqual(winding, -TWO_PI, kWindingDigits) || winding < -TWO_PI);
  if (frame.enclosesZenith) {
    frame.hzMin = points_.front().Hz + 1e-6;
    frame.hzMax = frame.hzMin + TWO_PI;
    frame.vMax = V_LIMIT;
  }
  return true;
}

bool SphereAreaC::ArePointsValid() const {
  return std::all_of(points_.begin(), points_.end(), [](const AnglePointC& p) {
    return InRange(p.Hz, 0.0, TWO_PI) && InRange(p.V, 0.0, PI);
  });
}

bool SphereAreaC::HasEqualPoints() const {
  if (points_.size() == 2) return points_.front() == points_.back();
  std::vector<AnglePointC> sorted = points_;  // no NaN among them
  std::sort(sorted.begin(), sorted.end(), [](const AnglePointC& a, const AnglePointC& b) {
    return a.Hz != b.Hz ? a.Hz < b.Hz : a.V < b.V;
  });
  return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

bool SphereAreaC::IsValid() const {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  return BuildEdgeList(edges, hzOrigin) && IsRingValid(edges);
}

bool SphereAreaC::IsRingValid(const std::vector<AnglePointC>& edges) const {
  if (!ArePointsValid()) return false;
  if (!IsPolygon()) return !HasEqualPoints();
  return IsProvenStarShaped(edges) || (!HasEqualPoints() && !CrossesItself(edges));
}

bool SphereAreaC::ClampV(double& a, double& b, bool clamp) const {
  if (unlimitedV_) return true;
  for (double* const v : {&a, &b}) {
    if (!(*v > V_LIMIT)) continue;
    if (!clamp) return false;
    *v = V_LIMIT;
  }
  for (double* const v : {&a, &b}) {
    if (!(*v < 0.0)) continue;
    if (!clamp) return false;
    *v = 0.0;
  }
  return true;
}

bool SphereAreaC::GetExtents(double& hzMin, double& hzMax, double& vMin, double& vMax,
                             bool& enclosesZenith, bool noClamp) const {
  Frame frame;
  if (!BuildFrame(frame)) return false;
  hzMin = frame.hzMin;
  hzMax = frame.hzMax;
  vMin = frame.vMin;
  vMax = frame.vMax;
  enclosesZenith = frame.enclosesZenith;
  if (!noClamp) ClampV(vMin, vMax, true);
  return enclosesZenith || IsRingValid(frame.edges);
}

double SphereAreaC::DistanceToBoundary(double hz, double v) const {
  double best = std::numeric_limits<double>::max();
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  if (!BuildEdgeList(edges, hzOrigin)) return best;
  const AnglePointC probe = BandProbe(hz, v, hzOrigin);
  for (std::size_t i = 0; i + 2 < edges.size(); i += 2) {
    const double d = PlanarLineDistance(probe, edges[i], edges[i + 1]);
    if (d < best && IsBeside(probe, edges[i], edges[i + 1])) best = d;
  }
  return best;
}

bool SphereAreaC::IsWithinBoundaryBand(const Frame& frame, double hz, double v) const {
  const AnglePointC probe = BandProbe(hz, v, frame.hzOrigin);
  const std::vector<AnglePointC>& edges = frame.edges;
  for (std::size_t i = 0; i + 2 < edges.size(); i += 2) {
    if (IsNearBox(probe, edges[i], edges[i + 1]) && IsInBand(probe, edges[i], edges[i + 1])) {
      return true;
    }
  }
  return false;
}

bool SphereAreaC::FindMeridianCrossings(const Frame& frame, double h,
                                        std::vector<AnglePointC>& out) const {
  const AnglePointC top{h, std::min(frame.vMin, frame.vMax)};
  const AnglePointC bottom{h, std::max(frame.vMin, frame.vMax)};
  const std::vector<AnglePointC>& edges = frame.edges;
  if (!IsPolygon()) {
    for (std::size_t i = 0; i < edges.size(); i += 2) {
      AnglePointC crossing;
      if (!FindPlanarCrossing(edges[i], edges[i + 1], top, bottom, crossing)) continue;
      out.push_back({h, crossing.V});
    }
    return true;
  }
  if (!GreatCircleArcC(SpherePointC(top), SpherePointC(bottom)).IsValid()) return false;
  const double cosH = std::cos(h);
  const double sinH = std::sin(h);
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    if (IsSurelyMissed(edges[i], edges[i + 1], h)) continue;
    const ArcEdgeC arc{SpherePointC(edges[i]), SpherePointC(edges[i + 1])};
    double v = 0.0;
    if (arc.CrossesMeridian(h, cosH, sinH, top.V, bottom.V, v)) out.push_back({h, v});
  }
  return true;
}

bool SphereAreaC::Contains(const double& hz, const double& v) const {
  double probeHz = hz;
  double probeV = v;
  if (!WrapIntoRange(probeHz, 0.0, TWO_PI) || !WrapIntoRange(probeV, 0.0, TWO_PI)) return false;
  Frame frame;
  if (!BuildFrame(frame)) return false;
  if (!IsWithinBoundaryBand(frame, probeHz, probeV)) {
    std::vector<AnglePointC> crossings;
    const double h = NormalizeAngle(probeHz - frame.hzOrigin);
    if (!FindMeridianCrossings(frame, h, crossings)) return false;
    std::vector<double> below;
    below.reserve(crossings.size());
    for (const AnglePointC& crossing : crossings) below.push_back(crossing.V);
    if (!IsInsideByParity(below, probeV, frame.enclosesZenith)) return false;
  }
  // The direction is inside if the area is one: the dearest question comes last.
  return frame.enclosesZenith || IsRingValid(frame.edges);
}

bool SphereAreaC::SearchLine(const AnglePointC& probe, bool vertical,
                             std::vector<AnglePointC>& out) const {
  Frame frame;
  if (!BuildFrame(frame)) return false;
  if (!frame.enclosesZenith && !IsRingValid(frame.edges)) return false;
  out.clear();
  if (vertical) {
    if (!FindMeridianCrossings(frame, NormalizeAngle(probe.Hz - frame.hzOrigin), out)) return false;
    std::sort(out.begin(), out.end(),
              [](const AnglePointC& a, const AnglePointC& b) { return a.V < b.V; });
    return true;
  }
  if (frame.enclosesZenith) return false;
  const AnglePointC start{NormalizeAngle(frame.hzMin - frame.hzOrigin), probe.V};
  const AnglePointC end{NormalizeAngle(frame.hzMax - frame.hzOrigin), probe.V};
  for (std::size_t i = 0; i < frame.edges.size(); i += 2) {
    const AnglePointC& a = frame.edges[i];
    const AnglePointC& b = frame.edges[i + 1];
    AnglePointC crossing;
    if (IsPolygon()) {
      FindLatitudeCrossings(a, b, probe.V, out);
    } else if (FindPlanarCrossing(a, b, start, end, crossing)) {
      out.push_back(crossing);
    }
  }
  std::sort(out.begin(), out.end(),
            [](const AnglePointC& a, const AnglePointC& b) { return a.Hz < b.Hz; });
  return true;
}

}  // namespace GMAT
