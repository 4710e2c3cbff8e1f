#ifndef SURVEYDATA_TOOLS_AREA_AREA_RING_H_
#define SURVEYDATA_TOOLS_AREA_AREA_RING_H_

#include <cstddef>
#include <vector>

#include <output/raster.h>
#include <output/svg.h>

namespace Tool {

/// Draws any number of edges of an area in one panel: a few edges as separate lines, more as joined
/// lines without the points that the page cannot resolve, and even more as a raster.
class RingDrawingC {
 public:
  /// `corner`, `width` and `height` define the panel; `edges` is the number of edges.
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
