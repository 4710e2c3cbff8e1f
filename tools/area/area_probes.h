#ifndef SURVEYDATA_TOOLS_AREA_AREA_PROBES_H_
#define SURVEYDATA_TOOLS_AREA_AREA_PROBES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include <area/area_maps.h>
#include <output/raster.h>
#include <output/svg.h>

namespace Tool {

/// A mark that shows the answer of a direction.
void DrawProbe(SvgC& svg, SvgPoint at, bool isInside);

/// Directions with their answers, for a picture, in a fixed amount of memory: if there are too
/// many to be distinguished, they are marks on a raster.
class AreaProbesC {
 public:
  explicit AreaProbesC(const AngleWindow& window);

  /// In radians.
  void Add(double hz, double v, bool isInside);

  std::uint64_t GetCount(bool isInside) const { return isInside ? inside_ : outside_; }
  bool IsRaster() const { return inside_ + outside_ > kMostMarks; }

  void DrawInPlane(SvgC& svg) const;
  void DrawInPolar(SvgC& svg) const;

 private:
  static constexpr std::size_t kMostMarks = 500;

  struct Probe {
    GMAT::AnglePointC at;
    bool isInside;
  };
  // Marks of inside and of outside.
  struct Rasters {
    RasterC inside;
    RasterC outside;
  };

  static void Draw(SvgC& svg, const Rasters& rasters);

  PlaneMapC plane_;
  std::uint64_t inside_ = 0;
  std::uint64_t outside_ = 0;
  std::vector<Probe> probes_;  // the first ones
  Rasters inPlane_;
  Rasters inPolar_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_PROBES_H_
