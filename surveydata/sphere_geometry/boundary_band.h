#ifndef SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_BAND_H_
#define SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_BAND_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/column_order.h>

namespace GMAT {

/// A strip that contains the band of one edge, along its line and within its box.
struct BandStrip {
  double v0;  ///< The line is v0 + slope Hz.
  double slope;
  double halfHeight;
  double hzLow;  ///< The box of the edge, widened by `kStripReach`.
  double hzHigh;
  double vLow;
  double vHigh;

  BandStrip(const AnglePointC& a, const AnglePointC& b, double steepestSpan);
  /// The range of V that the strip covers between the Hz x1 and x2: empty if `high` is below `low`.
  struct VRange {
    double low;
    double high;
  };
  VRange Between(double x1, double x2) const;
};

/// An index of the boundary bands of a ring's edges in the (Hz, V) plane. It finds the edges that
/// can have a probe in their band.
class BoundaryBandC {
 public:
  /// \param manySideBySide the smallest average number of edges at one Hz for which edges that
  /// cross a whole column are kept on an ordered list.
  explicit BoundaryBandC(const AreaFrame& frame,
                         double manySideBySide = CellGridC::kManySideBySide);

  /// True only if `Contains` is false.
  bool IsBeyond(double probeHz) const { return probeHz > width_; }

  /// Whether the point of a direction (`BandProbe`) lies in the band of an edge.
  bool Contains(const AreaFrame& frame, const AnglePointC& probe) const {
    if (IsBeyond(probe.Hz)) return false;
    const std::size_t column = grid_.ColumnOf(probe.Hz);
    for (const CellGridC::Item& item : grid_.Find(column, probe.V).items) {
      if (IsInBandOf(frame, item.curve, probe)) return true;
    }
    return !order_.IsEmpty() && IsInOrderedBand(frame, order_.Get(column), probe);
  }

  /// Bands lie in [-kStripReach, GetWidth()] of Hz.
  double GetWidth() const { return width_; }

 private:
  struct Line {
    double v0;
    double slope;
    double halfHeight;
  };

  class BuilderC;

  double VOf(std::uint32_t edge, double hz) const {
    return lines_[edge].v0 + lines_[edge].slope * hz;
  }
  bool IsInBandOf(const AreaFrame& frame, std::uint32_t edge, const AnglePointC& probe) const {
    return std::fabs(probe.V - VOf(edge, probe.Hz)) <= lines_[edge].halfHeight &&
           IsInBand(probe, frame.GetStart(edge), frame.GetEnd(edge));
  }
  bool IsInOrderedBand(const AreaFrame& frame, std::span<const ColumnOrderC::Item> order,
                       const AnglePointC& probe) const;

  double width_ = 0.0;
  std::vector<Line> lines_;
  CellGridC grid_;
  ColumnOrderC order_;  // of edges that are not steep
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_BAND_H_
