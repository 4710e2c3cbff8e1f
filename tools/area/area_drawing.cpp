#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>
#include <area/area_drawing.h>
#include <area/picture_colours.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

constexpr int kRows = 360;
constexpr std::size_t kMostInsideRuns = 8'000;
constexpr std::size_t kMostRasterRuns = 10'000;
constexpr double kSlowCell = 4;  // pixels

// Whether each answer may need all edges, as for a ring around the zenith that crosses itself.
bool IsSlow(const PictureContents& picture) {
  constexpr std::size_t kManyEdges = 200;
  return !picture.faults.empty() && picture.file.Sphere().GetPoints().size() > kManyEdges;
}

std::string TitleOf(std::size_t number, const AnglePointC& corner, AngleUnit unit) {
  return fmt::format("{}: Hz {}, V {} {}", number, AngleText(FromRadians(corner.Hz, unit), unit),
                     AngleText(FromRadians(corner.V, unit), unit), UnitName(unit));
}

}  // namespace

int LeastHalvings(const std::vector<EdgeCurve>& edges) {
  return edges.size() > kManyCorners ? 0 : 3;
}

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

bool IsInsideDrawn(const PictureContents& picture) {
  return picture.faults.empty() || picture.file.Sphere().GetPoints().size() <= kManyCorners;
}

InsideDrawingC::InsideDrawingC(const PictureContents& picture) : picture_(picture) {
  using Questions = SDI::PreparedAreaC::Questions;
  if (!IsInsideDrawn(picture)) return;
  prepared_.emplace(*picture.file.area, IsSlow(picture) ? Questions::kFew : Questions::kMany);
}

std::optional<std::vector<InsideStrip>> InsideDrawingC::FindStrips(
    const AngleWindow& window) const {
  if (!prepared_ || IsSlow(picture_)) return {};
  return FindInside(*picture_.file.area, *prepared_, window, kRows, kMostInsideRuns);
}

void InsideDrawingC::DrawRaster(SvgC& svg, SvgPoint corner, double width, double height,
                                const std::function<AnglePointC(SvgPoint)>& directionAt) const {
  if (!prepared_) return;
  RasterC raster(corner, width, height, IsSlow(picture_) ? kSlowCell : 1);
  raster.ForEachCell([&](SvgPoint centre, std::uint8_t& mark) {
    const AnglePointC direction = directionAt(centre);
    mark = direction.V <= GMAT::TWO_PI && prepared_->Contains(direction.Hz, direction.V) ? 1 : 0;
  });
  raster.Draw(svg, kInsideFill, kMostRasterRuns);
}

void DrawCorners(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                 const std::function<AnglePointC(const AnglePointC&)>& show, const PageMap& map,
                 const std::function<bool(SvgPoint)>& isShown) {
  constexpr double kAway = 12;
  constexpr std::size_t kMostNumbered = 100;
  const std::vector<AnglePointC>& corners = picture.file.Sphere().GetPoints();
  const std::size_t n = corners.size();
  const std::set<std::size_t> faulty = Faulty(picture.faults, &AreaFault::points);
  std::size_t dots = 0;
  for (std::size_t i = 0; i < n && dots < kManyCorners; ++i) {
    if (!IsDrawable(corners[i])) continue;
    const SvgPoint p = map(show(corners[i]));
    const bool isFaulty = faulty.contains(i + 1);
    if (!isShown(p) || (n > kManyCorners && !isFaulty)) continue;
    ++dots;
    svg.Dot(p, isFaulty ? 4.2 : 2.6, isFaulty ? kFault : kEdge.colour,
            TitleOf(i + 1, corners[i], picture.file.unit));
    if (n <= kMostNumbered) labels.Reserve({p.x - 3, p.y - 3, p.x + 3, p.y + 3});
  }
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
    const SvgPoint after = towards(corners[(i + 1) % n]);
    SvgPoint away{-before.x - after.x, -before.y - after.y};
    const double length = std::hypot(away.x, away.y);
    away =
        length < 0.2 ? SvgPoint{before.y, -before.x} : SvgPoint{away.x / length, away.y / length};
    const SvgFont font{
        .size = 11, .anchor = "middle", .colour = faulty.contains(i + 1) ? kFault : kEdge.colour};
    for (const double turn : {0.0, 0.7, -0.7, 1.4, -1.4}) {  // the first that is free
      const double x = away.x * std::cos(turn) - away.y * std::sin(turn);
      const double y = away.x * std::sin(turn) + away.y * std::cos(turn);
      const SvgPoint at{p.x + kAway * x, p.y + kAway * y + 4};
      if (labels.Place(at, fmt::format("{}", i + 1), font)) break;
    }
  }
}

}  // namespace Tool
