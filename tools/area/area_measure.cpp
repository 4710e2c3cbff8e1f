#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/sphere_geometry/angles.h>

#include <area/area_measure.h>
#include <area/polygon_solid_angle.h>

namespace Tool {
namespace {

// Answers for many directions at one Hz or at one V.
class ProbeRowC {
 public:
  explicit ProbeRowC(std::size_t size)
      : hz(size), v(size), inside_(std::make_unique<bool[]>(size)) {}

  std::span<const bool> Ask(const SDI::PreparedAreaC& area) {
    const std::span<bool> inside(inside_.get(), hz.size());
    area.Contains(hz, v, inside);
    return inside;
  }

  std::vector<double> hz;
  std::vector<double> v;

 private:
  std::unique_ptr<bool[]> inside_;
};

// Along all edges except the one that closes the ring, half of the boundary band is outside, or all
// of it where the band is displaced from the boundary.
double BandArea(const GMAT::SphereAreaC& sphere) {
  std::vector<GMAT::AnglePointC> edges;
  double hzOrigin = 0;
  sphere.BuildEdgeList(edges, hzOrigin);
  double length = 0;
  for (std::size_t i = 0; i + 2 < edges.size(); i += 2) {
    length += GMAT::PlanarDistance(edges[i], edges[i + 1]);
  }
  return length * GMAT::CONTAINS_TOLERANCE;
}

// The number of positions of a grid from 0 to `length`; for a full turn without its end.
double CountSteps(double length, double step, bool isTurn) {
  constexpr double kSlack = 1e-9;  // of a step: the rounding of the last one
  return isTurn ? std::max(1.0, std::ceil(length / step - kSlack))
                : std::floor(length / step + kSlack) + 1;
}

// A polygon must have more than two points: in the sphere geometry, two points would make a
// rectangle.
bool AreNoPolygon(const SDI::ScanAreaC& area) {
  if (area.GetType() != SDI::kPolygonArea) return false;
  std::vector<SDI::ScanDefPointC> points;
  area.GetPoints(points);
  return points.size() < 3 || std::adjacent_find(points.begin(), points.end()) != points.end() ||
         points.front() == points.back();
}

}  // namespace

std::optional<AreaBounds> MeasureBounds(const AreaFile& file) {
  SDI::ScanDefPointC low;
  SDI::ScanDefPointC high;
  if (AreNoPolygon(*file.area) || !file.area->GetBoundingPoints(low, high, false)) return {};
  AreaBounds bounds{low.GetHz(), high.GetHz(), low.GetV(), high.GetV(), true};
  if (file.area->GetType() != SDI::kDomeArea) {
    AreaBounds ignored = bounds;
    file.Sphere().GetExtents(ignored.hzMin, ignored.hzMax, ignored.vMin, ignored.vMax,
                             bounds.enclosesZenith, false);
  }
  return bounds;
}

SolidAngle MeasureSolidAngle(const AreaFile& file, const AreaBounds& bounds) {
  constexpr double kRounding = 1e-14;  // of the closed formulas
  if (file.area->GetType() == SDI::kDomeArea) {
    return {GMAT::TWO_PI * (1 - std::cos(GMAT::V_LIMIT)), kRounding, 0};
  }
  const double band = BandArea(file.Sphere());
  const std::vector<GMAT::AnglePointC>& corners = file.Sphere().GetPoints();
  if (corners.size() == 2) {
    // From the corners: the bounds end at the lowest usable direction, but the inside does not.
    const double height = std::fabs(std::cos(corners[0].V) - std::cos(corners[1].V));
    return {(bounds.hzMax - bounds.hzMin) * height, kRounding, band};
  }
  const PolygonSolidAngle polygon = IntegratePolygon(file.Sphere());
  return {polygon.steradians, polygon.rounding, band};
}

DirectionCount CountDirections(const AreaFile& file, const AreaBounds& bounds) {
  const bool isDome = file.area->GetType() == SDI::kDomeArea;
  const double vMin = bounds.enclosesZenith ? 0 : bounds.vMin;
  const double width = isDome ? GMAT::TWO_PI : bounds.hzMax - bounds.hzMin;
  const double columns =
      CountSteps(width, file.area->GetHzStep(), bounds.enclosesZenith || width >= GMAT::TWO_PI);
  const double rows = CountSteps(bounds.vMax - vMin, file.area->GetVStep(), false);
  constexpr double kMostWhole = 9e15;  // up to which a double represents whole numbers
  if (file.area->GetType() != SDI::kPolygonArea) {
    return {columns * rows, columns * rows < kMostWhole};
  }
  // The count overflows a double.
  if (!(columns * rows < std::numeric_limits<double>::max())) return {columns * rows, false};

  // A direction takes some nanoseconds, but hundreds of them where its meridian may cross thousands
  // of edges.
  constexpr std::size_t kSlowPoints = 10'000;
  const bool hasManyPoints = file.Sphere().GetPoints().size() > kSlowPoints;
  const double mostColumns = hasManyPoints ? 1024 : 4096;
  const double mostProbes = hasManyPoints ? 1e6 : 2e7;
  const bool isExact = columns * rows <= mostProbes && columns <= mostProbes / 16;
  // A coarser grid is counted instead: each of its directions represents several.
  const double shownColumns = isExact ? columns : std::min(columns, mostColumns);
  const double shownRows = isExact ? rows : std::min(rows, mostColumns);
  const SDI::PreparedAreaC area(*file.area, SDI::PreparedAreaC::Questions::kMany);
  ProbeRowC row(static_cast<std::size_t>(shownColumns));
  const double hzStep = file.area->GetHzStep() * (columns / shownColumns);
  const double vStep = file.area->GetVStep() * (rows / shownRows);
  for (std::size_t i = 0; i < row.hz.size(); ++i) {
    row.hz[i] = bounds.hzMin + static_cast<double>(i) * hzStep;
  }
  double count = 0;
  const auto rowCount = static_cast<std::size_t>(shownRows);
  for (std::size_t i = 0; i < rowCount; ++i) {
    std::fill(row.v.begin(), row.v.end(), vMin + static_cast<double>(i) * vStep);
    const std::span<const bool> inside = row.Ask(area);
    count += static_cast<double>(std::count(inside.begin(), inside.end(), true));
  }
  return {std::round(count * (columns / shownColumns) * (rows / shownRows)), isExact};
}

}  // namespace Tool
