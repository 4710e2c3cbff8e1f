#include <algorithm>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {

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
  return BuildEdges(points_, edges, hzOrigin);
}

bool SphereAreaC::IsValid() const {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  return BuildEdges(points_, edges, hzOrigin) && IsRingValid(points_, edges);
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
  AreaFrame frame;
  if (!BuildFrame(points_, frame)) return false;
  hzMin = frame.hzMin;
  hzMax = frame.hzMax;
  vMin = frame.vMin;
  vMax = frame.vMax;
  enclosesZenith = frame.enclosesZenith;
  if (!noClamp) ClampV(vMin, vMax, true);
  return enclosesZenith || IsRingValid(points_, frame.edges);
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

bool SphereAreaC::Contains(const double& hz, const double& v) const {
  double probeHz = hz;
  double probeV = v;
  if (!WrapIntoRange(probeHz, 0.0, TWO_PI) || !WrapIntoRange(probeV, 0.0, TWO_PI)) return false;
  AreaFrame frame;
  if (!BuildFrame(points_, frame)) return false;
  const AnglePointC bandProbe = BandProbe(probeHz, probeV, frame.hzOrigin);
  const double h = NormalizeAngle(probeHz - frame.hzOrigin);
  // The direction is inside if the area is valid: the most expensive check comes last.
  return (FindEdgeInBand(frame, EdgesWithBand(frame), bandProbe) ||
          IsInsideByCrossings(frame, AllEdges(frame), h, probeV)) &&
         (frame.enclosesZenith || IsRingValid(points_, frame.edges));
}

bool SphereAreaC::SearchLine(const AnglePointC& probe, bool vertical,
                             std::vector<AnglePointC>& out) const {
  AreaFrame frame;
  if (!BuildFrame(points_, frame)) return false;
  if (!frame.enclosesZenith && !IsRingValid(points_, frame.edges)) return false;
  out.clear();
  if (vertical) {
    const double h = NormalizeAngle(probe.Hz - frame.hzOrigin);
    const SearchMeridianC meridian(frame, h);
    if (!meridian.IsArc()) return false;
    ForEachCrossing(frame, AllEdges(frame), meridian, [&](std::size_t, double v) {
      out.push_back({h, v});
    });
    std::sort(out.begin(), out.end(),
              [](const AnglePointC& a, const AnglePointC& b) { return a.V < b.V; });
    return true;
  }
  if (frame.enclosesZenith) return false;
  const AnglePointC start{NormalizeAngle(frame.hzMin - frame.hzOrigin), probe.V};
  const AnglePointC end{NormalizeAngle(frame.hzMax - frame.hzOrigin), probe.V};
  for (const std::size_t edge : AllEdges(frame)) {
    const AnglePointC& a = frame.GetStart(edge);
    const AnglePointC& b = frame.GetEnd(edge);
    AnglePointC crossing;
    if (frame.isPolygon) {
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
