#ifndef SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_BAND_H_
#define SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_BAND_H_

#include <cmath>
#include <cstddef>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/cell_grid.h>

namespace GMAT {

/// Where the band of one edge may lie: a strip along its line, within its box.
struct BandStrip {
  double v0;  ///< The line is v0 + slope Hz.
  double slope;
  double halfHeight;
  double hzLow;  ///< The box of the edge, widened by `kStripReach`.
  double hzHigh;
  double vLow;
  double vHigh;

  BandStrip(const AnglePointC& a, const AnglePointC& b, double steepestSpan);
  /// What the strip takes of the Hz between x1 and x2: empty when `high` is below `low`.
  struct VRange {
    double low;
    double high;
  };
  VRange Between(double x1, double x2) const;
};

/// An index of the boundary bands of a ring's edges in the (Hz, V) plane: which edges can have a
/// probe in their band?
class BoundaryBandC {
 public:
  explicit BoundaryBandC(const AreaFrame& frame);

  /// Whether the point of a direction (`BandProbe`) lies in the band of an edge.
  bool Contains(const AreaFrame& frame, const AnglePointC& probe) const {
    if (probe.Hz > width_) return false;
    for (const CellGridC::Item& item : grid_.Find(probe.Hz, probe.V).items) {
      const Line& line = lines_[item.curve];
      if (!(std::fabs(probe.V - (line.v0 + line.slope * probe.Hz)) <= line.halfHeight)) continue;
      if (IsInBand(probe, frame.GetStart(item.curve), frame.GetEnd(item.curve))) return true;
    }
    return false;
  }

  /// Bands lie in [-kStripReach, GetWidth()] of Hz.
  double GetWidth() const { return width_; }

 private:
  struct Line {
    double v0;
    double slope;
    double halfHeight;
  };

  double width_ = 0.0;
  std::vector<Line> lines_;
  CellGridC grid_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_BAND_H_
