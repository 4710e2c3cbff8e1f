#ifndef SURVEYDATA_TOOLS_AREA_AREA_MAPS_H_
#define SURVEYDATA_TOOLS_AREA_AREA_MAPS_H_

#include <surveydata/sphere_geometry/sphere_area.h>

#include <area/area_inside.h>
#include <output/svg.h>

/// \file
/// The positions of the panels of an area's picture on the page, and of directions in the panels.

namespace Tool {

/// The page.
/// @{
inline constexpr double kPageWidth = 1100;
inline constexpr double kPageHeight = 550;
/// @}

/// The plane of Hz and V.
/// @{
inline constexpr double kPlaneLeft = 76;
inline constexpr double kPlaneTop = 112;
inline constexpr double kPlaneWidth = 600;
inline constexpr double kPlaneHeight = 300;
/// @}

/// The view from the zenith.
/// @{
inline constexpr SvgPoint kPole{904, 262};
inline constexpr double kPolarRadius = 150;
/// @}

/// Maps directions in the plane to the page, which shows a window of it.
class PlaneMapC {
 public:
  explicit PlaneMapC(const AngleWindow& window) : window_(window) {}

  const AngleWindow& GetWindow() const { return window_; }
  SvgPoint At(const GMAT::AnglePointC& p) const;
  /// The direction at a position on the page.
  GMAT::AnglePointC DirectionAt(SvgPoint p) const;
  /// The same direction, moved by full turns into the window if possible.
  GMAT::AnglePointC Turned(const GMAT::AnglePointC& p) const;
  static bool IsShown(SvgPoint p);

 private:
  AngleWindow window_;
};

/// A direction as seen from the zenith: the distance from the pole is V, Hz increases clockwise.
SvgPoint PolarAt(const GMAT::AnglePointC& p);
/// The direction at a position in that view; V is above pi outside it.
GMAT::AnglePointC PolarDirectionAt(SvgPoint p);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_MAPS_H_
