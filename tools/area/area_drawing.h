#ifndef SURVEYDATA_TOOLS_AREA_AREA_DRAWING_H_
#define SURVEYDATA_TOOLS_AREA_AREA_DRAWING_H_

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include <area/area_curves.h>
#include <area/area_maps.h>
#include <area/area_measure.h>
#include <area/picture_contents.h>
#include <output/label_placer.h>
#include <output/raster.h>
#include <output/svg.h>

/// \file
/// Shared by the panels of an area's picture: edges, corners, bounds and the inside.

namespace Tool {

/// If there are more corners than this, only those that break a rule are marked, up to this number.
/// The edges are then too short to need subdivision, and are drawn as one joined line.
inline constexpr std::size_t kManyCorners = 2000;

/// The minimum number of subdivisions of an edge's curve: 0 if there are many edges.
int LeastHalvings(const std::vector<EdgeCurve>& edges);

const SvgStroke& EdgeStroke(const EdgeCurve& edge);

/// The bounds as four straight lines in the plane.
std::vector<Curve> BoundsLines(const AreaBounds& bounds);

/// False for an invalid ring with many corners, because each query would need all its edges.
bool IsInsideDrawn(const PictureContents& picture);

/// Draws the inside, as the library defines it, in both panels: the area is prepared once.
class InsideDrawingC {
 public:
  explicit InsideDrawingC(const PictureContents& picture);

  /// The inside as strips of exact runs. Empty if there are too many runs for the picture, or if a
  /// large invalid ring would take too long: draw a raster instead.
  std::optional<std::vector<InsideStrip>> FindStrips(const AngleWindow& window) const;

  /// Draws the inside as a raster in a rectangle of the page.
  void DrawRaster(SvgC& svg, SvgPoint corner, double width, double height,
                  const std::function<GMAT::AnglePointC(SvgPoint)>& directionAt) const;

 private:
  const PictureContents& picture_;
  std::optional<SDI::PreparedAreaC> prepared_;  // if the inside is drawn
};

/// Dots at the corners, with their angles as titles, and their numbers on the outer side of the
/// turn that the ring makes there. `show` converts a corner to the frame of `map`.
void DrawCorners(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                 const std::function<GMAT::AnglePointC(const GMAT::AnglePointC&)>& show,
                 const PageMap& map, const std::function<bool(SvgPoint)>& isShown);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_DRAWING_H_
