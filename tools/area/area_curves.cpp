#include <algorithm>
#include <cmath>

#include <surveydata/sphere_geometry/great_circle_arc.h>

#include <area/area_curves.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

// Along the meridian of `other` to the pole, then through every Hz there.
Curve ThroughPole(const AnglePointC& other, const AnglePointC& pole, bool isReversed) {
  const AnglePointC turn{other.Hz, pole.V};
  return [=](double t) {
    const double s = isReversed ? 1 - t : t;
    return s < 0.5 ? Straight(other, turn)(2 * s) : Straight(turn, pole)(2 * s - 1);
  };
}

// The arc, parameterised by the fraction of the angle between its ends.
Curve ArcOf(const AnglePointC& a, const AnglePointC& b) {
  const auto isPole = [](const AnglePointC& p) { return GMAT::IsPole(GMAT::HALF_PI - p.V); };
  if (isPole(b)) return ThroughPole(a, b, false);
  if (isPole(a)) return ThroughPole(b, a, true);
  const GMAT::cVec3 p = GMAT::SpherePointC(a).GetUnit();
  const GMAT::cVec3 q = GMAT::SpherePointC(b).GetUnit();
  const double dot = p[0] * q[0] + p[1] * q[1] + p[2] * q[2];
  const double angle = std::acos(std::clamp(dot, -1.0, 1.0));
  const double sine = std::sin(angle);
  if (!(sine > 1e-9)) return Straight(a, b);
  return [=](double t) {
    const double f = std::sin((1 - t) * angle) / sine;
    const double g = std::sin(t * angle) / sine;
    const double x = f * p[0] + g * q[0];
    const double y = f * p[1] + g * q[1];
    const double z = f * p[2] + g * q[2];
    // At a pole Hz is arbitrary: that of the nearer end is kept.
    const double level = std::hypot(x, y);
    const AnglePointC& near = t < 0.5 ? a : b;
    const double turn =
        level < 1e-9 ? 0.0 : std::remainder(std::atan2(y, x) - near.Hz, GMAT::TWO_PI);
    return AnglePointC{near.Hz + turn, std::atan2(level, z)};
  };
}

// Approximates the curve on the page to a quarter of a pixel.
void Sample(const Curve& curve, const PageMap& map, double t0, SvgPoint p0, double t1, SvgPoint p1,
            int depth, int least, std::vector<SvgPoint>& points) {
  constexpr int kMost = 14;
  constexpr double kFlat = 0.25;
  const double middle = (t0 + t1) / 2;
  const SvgPoint p = map(curve(middle));
  const double off = std::hypot(p.x - (p0.x + p1.x) / 2, p.y - (p0.y + p1.y) / 2);
  if (depth == kMost || (depth >= least && off < kFlat)) {
    points.push_back(p1);
    return;
  }
  Sample(curve, map, t0, p0, middle, p, depth + 1, least, points);
  Sample(curve, map, middle, p, t1, p1, depth + 1, least, points);
}

}  // namespace

bool IsDrawable(const AnglePointC& p) {
  constexpr double kMost = 100;
  return std::fabs(p.Hz) <= kMost && std::fabs(p.V) <= kMost;
}

Curve Straight(const AnglePointC& a, const AnglePointC& b) {
  return [a, b](double t) { return AnglePointC{a.Hz + t * (b.Hz - a.Hz), a.V + t * (b.V - a.V)}; };
}

std::set<std::size_t> Faulty(const std::vector<AreaFault>& faults,
                             std::vector<std::size_t> AreaFault::*numbers) {
  std::set<std::size_t> faulty;
  for (const AreaFault& fault : faults) {
    faulty.insert((fault.*numbers).begin(), (fault.*numbers).end());
  }
  return faulty;
}

std::vector<EdgeCurve> MakeEdges(const AreaFile& file, const std::vector<AreaFault>& faults) {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0;
  const GMAT::SphereAreaC& sphere = file.Sphere();
  const std::vector<AnglePointC>& corners = sphere.GetPoints();
  if (!std::all_of(corners.begin(), corners.end(), IsDrawable) ||
      !sphere.BuildEdgeList(edges, hzOrigin)) {
    return {};
  }
  const std::set<std::size_t> faulty = Faulty(faults, &AreaFault::edges);
  std::vector<EdgeCurve> curves;
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    const AnglePointC a{edges[i].Hz + hzOrigin, edges[i].V};
    const AnglePointC b{edges[i + 1].Hz + hzOrigin, edges[i + 1].V};
    const bool isStraight = corners.size() == 2;
    const bool isArc =
        isStraight || GMAT::GreatCircleArcC(GMAT::SpherePointC(a), GMAT::SpherePointC(b)).IsValid();
    const bool isFaulty = faulty.contains(i / 2 + 1);
    curves.push_back({isStraight || !isArc ? Straight(a, b) : ArcOf(a, b), isArc, isFaulty});
  }
  return curves;
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): it loses track of a moved std::function

std::vector<SvgPoint> Sampled(const Curve& curve, const PageMap& map, int least) {
  const SvgPoint first = map(curve(0));
  std::vector<SvgPoint> points = {first};
  Sample(curve, map, 0, first, 1, map(curve(1)), 0, least, points);
  return points;
}

std::vector<SvgPoint> Thinned(const std::vector<SvgPoint>& points) {
  constexpr double kFlat = 0.04;
  std::vector<SvgPoint> kept;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i > 0 && i + 1 < points.size()) {
      const SvgPoint a = kept.back();
      const SvgPoint b = points[i + 1];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      const double area = (b.x - a.x) * (points[i].y - a.y) - (b.y - a.y) * (points[i].x - a.x);
      const double along = (b.x - a.x) * (points[i].x - a.x) + (b.y - a.y) * (points[i].y - a.y);
      if (std::fabs(area) < kFlat * length && 0 <= along && along <= length * length) continue;
    }
    kept.push_back(points[i]);
  }
  return kept;
}

}  // namespace Tool
