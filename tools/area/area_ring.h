#ifndef SURVEYDATA_TOOLS_AREA_AREA_RING_H_
#define SURVEYDATA_TOOLS_AREA_AREA_RING_H_

#include <cstddef>
#include <vector>

#include <area/area_drawing.h>
#include <output/raster.h>
#include <output/svg.h>

namespace Tool {

/// Draws the edges of an area in one panel, whatever their number: a few one by one; more as joined
/// lines without the points that the page cannot show; what is still too much as a raster.
class RingDrawingC {
 public:
  /// `corner`, `width`, `height`: the panel. `edges`: how many there are.
  RingDrawingC(SvgPoint corner, double width, double height, std::size_t edges);

  /// The line of an edge, in the order of the edges.
  void Add(const std::vector<SvgPoint>& points, const SvgStroke& stroke);
  void Draw(SvgC& svg) const;

 private:
  void Mark(const std::vector<SvgPoint>& points, const SvgStroke& stroke);

  struct Line {
    const SvgStroke* stroke;
    std::vector<SvgPoint> points;
  };
  struct Marks {
    const SvgStroke* stroke;
    RasterC raster;
  };

  bool areJoined_;
  bool isRaster_ = false;
  std::size_t pointCount_ = 0;
  std::vector<Line> lines_;
  std::vector<Marks> marks_;  // one for each stroke
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_RING_H_
