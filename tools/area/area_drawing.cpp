#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_drawing.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

// More corners than this are too close for dots, and their edges too short to be halved for
// nothing.
constexpr std::size_t kMany = 1000;

}  // namespace

int LeastHalvings(const std::vector<EdgeCurve>& edges) { return edges.size() > kMany ? 0 : 3; }

const SvgStroke& EdgeStroke(const EdgeCurve& edge) {
  if (!edge.isArc) return kNoArc;
  return edge.isFaulty ? kFaultyEdge : kEdge;
}

std::vector<Curve> BoundsLines(const AreaBounds& bounds) {
  const AnglePointC corners[] = {{bounds.hzMin, bounds.vMin},
                                 {bounds.hzMax, bounds.vMin},
                                 {bounds.hzMax, bounds.vMax},
                                 {bounds.hzMin, bounds.vMax}};
  std::vector<Curve> lines;
  for (std::size_t i = 0; i < 4; ++i) {
    lines.push_back(Straight(corners[i], corners[(i + 1) % 4]));
  }
  return lines;
}

void DrawProbe(SvgC& svg, SvgPoint at, bool isInside) {
  constexpr double kArm = 3.6;
  if (isInside) {
    svg.Dot(at, 4.6, "#ffffff");
    svg.Dot(at, 3.6, kInsideProbe);
    return;
  }
  for (const auto& [stroke, arm] : {std::pair{SvgStroke{"#ffffff", 4.4}, kArm + 1},
                                    std::pair{SvgStroke{kOutsideProbe, 2.2}, kArm}}) {
    svg.Line({at.x - arm, at.y - arm}, {at.x + arm, at.y + arm}, stroke);
    svg.Line({at.x - arm, at.y + arm}, {at.x + arm, at.y - arm}, stroke);
  }
}

void DrawCorners(SvgC& svg, const AreaPicture& picture,
                 const std::function<AnglePointC(const AnglePointC&)>& show, const PageMap& map,
                 const std::function<bool(SvgPoint)>& isShown) {
  constexpr double kAway = 12;
  constexpr std::size_t kMostNumbered = 100;
  const std::vector<AnglePointC>& corners = picture.file.Sphere().GetPoints();
  const std::size_t n = corners.size();
  const std::set<std::size_t> faulty = Faulty(picture, &AreaFault::points);
  std::vector<SvgPoint> dots;
  for (std::size_t i = 0; i < n; ++i) {
    if (!IsDrawable(corners[i])) continue;
    const SvgPoint p = map(show(corners[i]));
    const bool isFaulty = faulty.contains(i + 1);
    if (!isShown(p) || (n > kMany && !isFaulty)) continue;
    svg.Dot(p, isFaulty ? 4.2 : 2.6, isFaulty ? kFault : kEdge.colour);
    dots.push_back(p);
  }
  std::vector<SvgPoint> numbers;
  const auto isFree = [&](SvgPoint at) {
    const auto isNear = [&](const std::vector<SvgPoint>& others, double x, double y) {
      return std::any_of(others.begin(), others.end(), [&](const SvgPoint& other) {
        return std::fabs(other.x - at.x) < x && std::fabs(other.y - at.y) < y;
      });
    };
    return !isNear(dots, 7, 8) && !isNear(numbers, 14, 12);
  };
  for (std::size_t i = 0; i < n && n <= kMostNumbered; ++i) {
    if (!IsDrawable(corners[i])) continue;
    const AnglePointC shown = show(corners[i]);
    const SvgPoint p = map(shown);
    if (!isShown(p)) continue;
    const auto towards = [&](const AnglePointC& other) {
      const AnglePointC next{shown.Hz + std::remainder(other.Hz - corners[i].Hz, GMAT::TWO_PI),
                             other.V};
      const SvgPoint q = IsDrawable(other) ? map(next) : p;
      const double length = std::max(std::hypot(q.x - p.x, q.y - p.y), 1e-9);
      return SvgPoint{(q.x - p.x) / length, (q.y - p.y) / length};
    };
    const SvgPoint before = towards(corners[(i + n - 1) % n]);
    const SvgPoint behind = towards(corners[(i + 1) % n]);
    SvgPoint away{-before.x - behind.x, -before.y - behind.y};
    const double length = std::hypot(away.x, away.y);
    away =
        length < 0.2 ? SvgPoint{before.y, -before.x} : SvgPoint{away.x / length, away.y / length};
    const SvgPoint at{p.x + kAway * away.x, p.y + kAway * away.y};
    if (!isFree(at)) continue;
    numbers.push_back(at);
    svg.Text(
        {at.x, at.y + 4}, fmt::format("{}", i + 1),
        {.size = 11, .anchor = "middle", .colour = faulty.contains(i + 1) ? kFault : kEdge.colour});
  }
}

}  // namespace Tool
