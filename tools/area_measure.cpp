#include "area_measure.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/sphere_geometry/angles.h>

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

// The solid angle per radian of Hz of what is inside at one Hz.
double IntegrateMeridian(const SDI::PreparedAreaC& area, double hz, double vMin, double vMax,
                         ProbeRowC& row) {
  constexpr int kHalvings = 40;
  const std::size_t count = row.v.size();
  const double step = (vMax - vMin) / static_cast<double>(count);
  for (std::size_t i = 0; i < count; ++i) {
    row.hz[i] = hz;
    row.v[i] = vMin + (static_cast<double>(i) + 0.5) * step;
  }
  const std::span<const bool> inside = row.Ask(area);
  double sum = 0;
  double start = vMin;
  for (std::size_t i = 1; i <= count; ++i) {
    double border = vMax;
    if (i < count) {
      if (inside[i] == inside[i - 1]) continue;
      double before = row.v[i - 1];
      double behind = row.v[i];
      for (int k = 0; k < kHalvings; ++k) {
        const double middle = (before + behind) / 2;
        (area.Contains(hz, middle) == inside[i - 1] ? before : behind) = middle;
      }
      border = (before + behind) / 2;
    }
    if (inside[i - 1]) sum += std::cos(start) - std::cos(border);
    start = border;
  }
  return sum;
}

// Between the corners the integrand is smooth, so each stretch is measured for itself.
double IntegrateArea(const SDI::PreparedAreaC& area, const AreaBounds& bounds,
                     const std::vector<double>& cuts, int meridians) {
  constexpr std::size_t kProbes = 512;
  ProbeRowC row(kProbes);
  double sum = 0;
  for (std::size_t i = 1; i < cuts.size(); ++i) {
    const double width = cuts[i] - cuts[i - 1];
    const double count = std::ceil(meridians * width / (cuts.back() - cuts.front()));
    for (double k = 0; k < count; ++k) {
      const double hz = cuts[i - 1] + (k + 0.5) * width / count;
      sum += IntegrateMeridian(area, hz, bounds.vMin, bounds.vMax, row) * width / count;
    }
  }
  return sum;
}

// The Hz of the corners in the frame of the bounds, from one end to the other.
std::vector<double> CornerHz(const AreaFile& file, const AreaBounds& bounds) {
  std::vector<double> cuts = {bounds.hzMin, bounds.hzMax};
  for (const GMAT::AnglePointC& corner : file.Sphere().GetPoints()) {
    const double turns = std::ceil((bounds.hzMin - corner.Hz) / GMAT::TWO_PI);
    const double hz = corner.Hz + turns * GMAT::TWO_PI;
    if (hz < bounds.hzMax) cuts.push_back(hz);
  }
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
  return cuts;
}

// What the boundary band can add at most: half of it lies outside, all along the edges.
double BandArea(const AreaFile& file) {
  std::vector<GMAT::AnglePointC> edges;
  double hzOrigin = 0;
  file.Sphere().BuildEdgeList(edges, hzOrigin);
  double length = 0;
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    length += GMAT::PlanarDistance(edges[i], edges[i + 1]);
  }
  return length * GMAT::CONTAINS_TOLERANCE / 2;
}

// The places of a grid from 0 to `length`; those of a full turn do not count its end again.
double CountSteps(double length, double step, bool isTurn) {
  constexpr double kSlack = 1e-9;  // of a step: what rounding may take from the last one
  return isTurn ? std::max(1.0, std::ceil(length / step - kSlack))
                : std::floor(length / step + kSlack) + 1;
}

}  // namespace

std::optional<AreaBounds> MeasureBounds(const AreaFile& file) {
  SDI::ScanDefPointC low;
  SDI::ScanDefPointC high;
  if (!file.area->GetBoundingPoints(low, high, false)) return {};
  AreaBounds bounds{low.GetHz(), high.GetHz(), low.GetV(), high.GetV(), true};
  if (file.area->GetType() != SDI::kDomeArea) {
    AreaBounds ignored = bounds;
    file.Sphere().GetExtents(ignored.hzMin, ignored.hzMax, ignored.vMin, ignored.vMax,
                             bounds.enclosesZenith, false);
  }
  return bounds;
}

SolidAngle MeasureSolidAngle(const AreaFile& file, const AreaBounds& bounds) {
  constexpr std::string_view kFormula = "formula";
  if (file.area->GetType() == SDI::kDomeArea) {
    return {GMAT::TWO_PI * (1 - std::cos(GMAT::V_LIMIT)), 0, kFormula};
  }
  if (file.area->GetType() == SDI::kRectangularArea) {
    // The corners, for the bounds end at the lowest usable direction and the inside does not.
    const std::vector<GMAT::AnglePointC>& corners = file.Sphere().GetPoints();
    const double height = std::fabs(std::cos(corners[0].V) - std::cos(corners[1].V));
    return {(bounds.hzMax - bounds.hzMin) * height, 0, kFormula};
  }
  constexpr int kMeridians = 1024;
  const SDI::PreparedAreaC area(*file.area);
  // Unclamped: but for one around the zenith, a polygon may reach below the lowest direction.
  AreaBounds whole = bounds;
  file.Sphere().GetExtents(whole.hzMin, whole.hzMax, whole.vMin, whole.vMax, whole.enclosesZenith,
                           true);
  if (whole.enclosesZenith) whole.vMin = 0;
  // The first and the last probe of a meridian lie outside, or at the end of all V.
  const double margin = (whole.vMax - whole.vMin) / 256;
  whole.vMin = std::max(whole.vMin - margin, 0.0);
  whole.vMax = std::min(whole.vMax + margin, GMAT::PI);
  const std::vector<double> cuts = CornerHz(file, whole);
  const double sparse = IntegrateArea(area, whole, cuts, kMeridians);
  const double dense = IntegrateArea(area, whole, cuts, 2 * kMeridians);
  return {dense, std::fabs(dense - sparse) + BandArea(file), "quadrature"};
}

DirectionCount CountDirections(const AreaFile& file, const AreaBounds& bounds) {
  const bool isDome = file.area->GetType() == SDI::kDomeArea;
  const double vMin = bounds.enclosesZenith ? 0 : bounds.vMin;
  const double width = isDome ? GMAT::TWO_PI : bounds.hzMax - bounds.hzMin;
  const double columns =
      CountSteps(width, file.area->GetHzStep(), bounds.enclosesZenith || width >= GMAT::TWO_PI);
  const double rows = CountSteps(bounds.vMax - vMin, file.area->GetVStep(), false);
  constexpr double kMostWhole = 9e15;  // the numbers below are whole in a double
  if (file.area->GetType() != SDI::kPolygonArea) {
    return {columns * rows, columns * rows < kMostWhole};
  }
  // Nobody counts these, nor are they a number of steps that could be enlarged.
  if (!(columns * rows < std::numeric_limits<double>::max())) return {columns * rows, false};

  constexpr double kMostColumns = 4096;
  constexpr double kMostProbes = 2e7;
  const bool isExact = columns * rows <= kMostProbes && columns <= kMostProbes / 16;
  // A sparser grid stands for the whole one, each of its directions for several.
  const double shownColumns = isExact ? columns : std::min(columns, kMostColumns);
  const double shownRows = isExact ? rows : std::min(rows, kMostColumns);
  const SDI::PreparedAreaC area(*file.area);
  ProbeRowC row(static_cast<std::size_t>(shownColumns));
  const double hzStep = file.area->GetHzStep() * (columns / shownColumns);
  const double vStep = file.area->GetVStep() * (rows / shownRows);
  for (std::size_t i = 0; i < row.hz.size(); ++i) {
    row.hz[i] = bounds.hzMin + static_cast<double>(i) * hzStep;
  }
  double count = 0;
  for (double k = 0; k < shownRows; ++k) {
    std::fill(row.v.begin(), row.v.end(), vMin + k * vStep);
    const std::span<const bool> inside = row.Ask(area);
    count += static_cast<double>(std::count(inside.begin(), inside.end(), true));
  }
  return {std::round(count * (columns / shownColumns) * (rows / shownRows)), isExact};
}

}  // namespace Tool
