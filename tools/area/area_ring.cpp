#include <cmath>

#include <area/area_drawing.h>
#include <area/area_ring.h>
#include <area/picture_colours.h>

namespace Tool {
namespace {

constexpr std::size_t kMostPoints = 10'000;
constexpr std::size_t kMostStrokeRuns = 6'000;
constexpr double kNear = 0.5;  // pixels

double Distance(SvgPoint a, SvgPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }

}  // namespace

RingDrawingC::RingDrawingC(SvgPoint corner, double width, double height, std::size_t edges)
    : areJoined_(edges > kManyCorners) {
  for (const SvgStroke* const stroke : {&kEdge, &kFaultyEdge, &kNoArc}) {
    marks_.push_back({stroke, RasterC(corner, width, height)});
  }
}

void RingDrawingC::Add(const std::vector<SvgPoint>& points, const SvgStroke& stroke) {
  if (isRaster_) return Mark(points, stroke);
  const bool isNext = areJoined_ && !lines_.empty() && lines_.back().stroke == &stroke &&
                      Distance(lines_.back().points.back(), points.front()) < kNear;
  if (!isNext) {
    lines_.push_back({&stroke, {points.front()}});
    ++pointCount_;
  }
  std::vector<SvgPoint>& line = lines_.back().points;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const bool isLast = i + 1 == points.size();
    const bool isNear = areJoined_ && Distance(line.back(), points[i]) < kNear;
    if (isNear && !(isLast && line.size() == 1)) continue;
    line.push_back(points[i]);
    ++pointCount_;
  }
  if (pointCount_ <= kMostPoints) return;
  isRaster_ = true;
  for (const Line& each : lines_) Mark(each.points, *each.stroke);
  lines_.clear();
}

void RingDrawingC::Mark(const std::vector<SvgPoint>& points, const SvgStroke& stroke) {
  for (Marks& marks : marks_) {
    if (marks.stroke != &stroke) continue;
    for (std::size_t i = 1; i < points.size(); ++i) marks.raster.MarkLine(points[i - 1], points[i]);
  }
}

void RingDrawingC::Draw(SvgC& svg) const {
  if (isRaster_) {
    for (const Marks& marks : marks_) marks.raster.Draw(svg, marks.stroke->colour, kMostStrokeRuns);
    return;
  }
  for (const Line& line : lines_) svg.Polyline(line.points, *line.stroke);
}

}  // namespace Tool
