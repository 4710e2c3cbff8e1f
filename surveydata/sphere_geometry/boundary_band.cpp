#include <algorithm>
#include <cmath>
#include <utility>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/boundary_band.h>
#include <surveydata/sphere_geometry/filter_bounds.h>

namespace GMAT {
namespace {

// The largest half height of the strips that are kept in order. Strips along lines with a slope
// above 2 are higher, and many of them would be near a probe.
constexpr double kHighestInOrder = 2.24 * kStripReach;

}  // namespace

BandStrip::BandStrip(const AnglePointC& a, const AnglePointC& b, double steepestSpan)
    : v0((a.V + b.V) / 2.0),
      slope(0.0),
      halfHeight(std::fabs(a.V - b.V) / 2.0 + kStripReach),
      hzLow(std::min(a.Hz, b.Hz) - kStripReach),
      hzHigh(std::max(a.Hz, b.Hz) + kStripReach),
      vLow(std::min(a.V, b.V) - kStripReach),
      vHigh(std::max(a.V, b.V) + kStripReach) {
  // The strip extends from the line of the edge to either side by the reach. For a steep line it is
  // the bounding box of the edge.
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

// Lists the strips of the edges in the columns of an index.
class BoundaryBandC::BuilderC {
 public:
  explicit BuilderC(BoundaryBandC& band) : band_(band), grid_(band.grid_) {}

  void Build(const AreaFrame& frame, bool hasOrder) {
    const double step = grid_.GetBorder(1);
    const std::size_t measured = frame.GetEdgeCount() - 1;
    parts_.reserve(4 * measured);
    band_.lines_.reserve(measured);
    for (const std::size_t edge : EdgesWithBand(frame)) {
      const AnglePointC& a = frame.GetStart(edge);
      const AnglePointC& b = frame.GetEnd(edge);
      const BandStrip strip(a, b, step);
      band_.lines_.push_back({strip.v0, strip.slope, strip.halfHeight});
      if (strip.hzLow > band_.width_) continue;
      const std::size_t first = grid_.ColumnOf(strip.hzLow);
      const std::size_t last = grid_.ColumnOf(strip.hzHigh);
      std::size_t i = first;
      if (hasOrder && last > first + 1 && strip.halfHeight <= kHighestInOrder) {
        // The edge itself crosses the columns in between, except those next to its ends.
        const std::size_t from = grid_.ColumnOf(std::min(a.Hz, b.Hz)) + 1;
        const std::size_t to = grid_.ColumnOf(std::max(a.Hz, b.Hz));
        for (; i < from; ++i) AddPart(edge, strip, i);
        if (from < to) {
          spans_.push_back({static_cast<std::uint32_t>(edge), static_cast<std::uint32_t>(from),
                            static_cast<std::uint32_t>(to - 1)});
          i = to;
        }
      }
      for (; i <= last; ++i) AddPart(edge, strip, i);
    }
    if (hasOrder) band_.order_.Build(grid_.GetColumnCount(), std::move(spans_), *this);
    grid_.Build(parts_);
  }

  // -- Called by `ColumnOrderC` --

  double HeightAt(std::uint32_t edge, std::size_t border) const {
    return band_.VOf(edge, grid_.GetBorder(border));
  }
  static bool AreInOrder(std::size_t /*column*/, const ColumnOrderC::Crossing& lower,
                         const ColumnOrderC::Crossing& upper) {
    return lower.left <= upper.left && lower.right <= upper.right;
  }
  void Reject(std::size_t column, const ColumnOrderC::Crossing& crossing) {
    const double halfHeight = band_.lines_[crossing.curve].halfHeight;
    parts_.push_back(CellGridC::MakePart(crossing.curve, column,
                                         std::min(crossing.left, crossing.right) - halfHeight,
                                         std::max(crossing.left, crossing.right) + halfHeight));
  }

 private:
  void AddPart(std::size_t edge, const BandStrip& strip, std::size_t column) {
    const auto [low, high] = strip.Between(grid_.GetBorder(column), grid_.GetBorder(column + 1));
    parts_.push_back(CellGridC::MakePart(edge, column, low, std::max(low, high)));
  }

  BoundaryBandC& band_;
  CellGridC& grid_;
  std::vector<CellGridC::Part> parts_;
  std::vector<ColumnOrderC::Span> spans_;
};

BoundaryBandC::BoundaryBandC(const AreaFrame& frame, double manySideBySide) {
  // The probe lies in [0, 2 pi] for any width of the frame.
  double frameWidth = 0.0;
  double spans = 0.0;
  for (const AnglePointC& point : frame.edges) frameWidth = std::max(frameWidth, point.Hz);
  for (const std::size_t edge : EdgesWithBand(frame)) {
    spans += std::fabs(frame.GetStart(edge).Hz - frame.GetEnd(edge).Hz);
  }
  width_ = std::min(frameWidth, TWO_PI) + 2.0 * kBandReach;
  const bool hasOrder = spans >= manySideBySide * width_;
  grid_ = CellGridC(width_,
                    CellGridC::CountColumns(
                        frame.GetEdgeCount() - 1, spans, width_, 2.0 * kBandReach,
                        hasOrder ? CellGridC::kPartsPerOrderedCurve : CellGridC::kPartsPerCurve));
  BuilderC(*this).Build(frame, hasOrder);
}

bool BoundaryBandC::IsInOrderedBand(const AreaFrame& frame,
                                    std::span<const ColumnOrderC::Item> order,
                                    const AnglePointC& probe) const {
  const auto isBelow = [&](double v) {
    return [this, v, hz = probe.Hz](const ColumnOrderC::Item& item) {
      return VOf(item.curve, hz) < v;
    };
  };
  const std::size_t first = ColumnOrderC::CountBelow(order, isBelow(probe.V - kHighestInOrder));
  const auto isNotAbove = isBelow(probe.V + kHighestInOrder);
  for (std::size_t i = first; i < order.size() && isNotAbove(order[i]); ++i) {
    if (IsInBandOf(frame, order[i].curve, probe)) return true;
  }
  return false;
}

}  // namespace GMAT
