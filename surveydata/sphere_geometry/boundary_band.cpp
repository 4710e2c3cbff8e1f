#include <algorithm>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/boundary_band.h>
#include <surveydata/sphere_geometry/filter_bounds.h>

namespace GMAT {

BandStrip::BandStrip(const AnglePointC& a, const AnglePointC& b, double steepestSpan)
    : v0((a.V + b.V) / 2.0),
      slope(0.0),
      halfHeight(std::fabs(a.V - b.V) / 2.0 + kStripReach),
      hzLow(std::min(a.Hz, b.Hz) - kStripReach),
      hzHigh(std::max(a.Hz, b.Hz) + kStripReach),
      vLow(std::min(a.V, b.V) - kStripReach),
      vHigh(std::max(a.V, b.V) + kStripReach) {
  // What lies within the reach of the edge's line, or the edge's box when the line is steep.
  if (!(std::fabs(a.Hz - b.Hz) > steepestSpan)) return;
  slope = (b.V - a.V) / (b.Hz - a.Hz);
  v0 = a.V - slope * a.Hz;
  halfHeight = kStripReach * std::sqrt(1.0 + slope * slope);
}

BandStrip::VRange BandStrip::Between(double x1, double x2) const {
  const double v1 = v0 + slope * x1;
  const double v2 = v0 + slope * x2;
  return {std::max(std::min(v1, v2) - halfHeight, vLow),
          std::min(std::max(v1, v2) + halfHeight, vHigh)};
}

BoundaryBandC::BoundaryBandC(const AreaFrame& frame) {
  // The probe lies in [0, 2 pi], whatever the width of the frame.
  double frameWidth = 0.0;
  double spans = 0.0;
  for (const AnglePointC& point : frame.edges) frameWidth = std::max(frameWidth, point.Hz);
  for (const std::size_t edge : EdgesWithBand(frame)) {
    spans += std::fabs(frame.GetStart(edge).Hz - frame.GetEnd(edge).Hz);
  }
  const std::size_t measured = frame.GetEdgeCount() - 1;
  width_ = std::min(frameWidth, TWO_PI) + 2.0 * kBandReach;
  grid_ = CellGridC(width_, CellGridC::CountColumns(measured, spans, width_, 2.0 * kBandReach));
  const double step = grid_.GetBorder(1);
  std::vector<CellGridC::Part> parts;
  parts.reserve(4 * measured);
  lines_.reserve(measured);
  for (const std::size_t edge : EdgesWithBand(frame)) {
    const BandStrip strip(frame.GetStart(edge), frame.GetEnd(edge), step);
    lines_.push_back({strip.v0, strip.slope, strip.halfHeight});
    if (strip.hzLow > width_) continue;
    const std::size_t last = grid_.ColumnOf(strip.hzHigh);
    for (std::size_t i = grid_.ColumnOf(strip.hzLow); i <= last; ++i) {
      const auto [low, high] = strip.Between(grid_.GetBorder(i), grid_.GetBorder(i + 1));
      parts.push_back(CellGridC::MakePart(edge, i, low, std::max(low, high)));
    }
  }
  grid_.Build(parts);
}

}  // namespace GMAT
