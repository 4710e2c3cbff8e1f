#ifndef SURVEYDATA_TOOLS_AREA_AREA_DRAWING_H_
#define SURVEYDATA_TOOLS_AREA_AREA_DRAWING_H_

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include <surveydata/sphere_geometry/sphere_area.h>

#include <area/area_curves.h>
#include <area/area_measure.h>
#include <area/area_picture.h>
#include <output/svg.h>

/// \file
/// What the panels of an area's picture share: places on the page, colours, and the marks of edges,
/// corners and probes.

namespace Tool {

/// The plane of Hz and V.
/// @{
inline constexpr double kPlaneLeft = 76;
inline constexpr double kPlaneTop = 112;
inline constexpr double kPlaneWidth = 600;
inline constexpr double kPlaneHeight = 300;
/// @}

/// Colours that people with any colour vision tell apart, in shades that differ as well.
/// @{
inline constexpr std::string_view kInsideFill = "#cfe3f3";
inline constexpr std::string_view kQuiet = "#555555";
inline constexpr std::string_view kFault = "#cc3311";
inline constexpr std::string_view kInsideProbe = "#117733";
inline constexpr std::string_view kOutsideProbe = "#aa3377";
inline constexpr SvgStroke kGrid{"#e3e3e3", 1.0};
inline constexpr SvgStroke kFrame{"#555555", 1.0};
inline constexpr SvgStroke kEdge{"#0072b2", 2.0};
inline constexpr SvgStroke kFaultyEdge{kFault, 2.4};
inline constexpr SvgStroke kNoArc{kFault, 1.2, "2 3"};
inline constexpr SvgStroke kBounds{"#333333", 1.1, "6 4"};
inline constexpr SvgStroke kLowest{"#d55e00", 1.2, "9 3 2 3"};
/// @}

/// How often the curves of the edges are halved in any case: not for nothing where there are many.
int LeastHalvings(const std::vector<EdgeCurve>& edges);

const SvgStroke& EdgeStroke(const EdgeCurve& edge);

/// The bounds as four straight lines in the plane.
std::vector<Curve> BoundsLines(const AreaBounds& bounds);

void DrawProbe(SvgC& svg, SvgPoint at, bool isInside);

/// Dots at the corners, and their numbers outside of the turn that the ring makes there. Where
/// there is no room for a number, it is left out. `show` gives a corner in the frame of `map`.
void DrawCorners(SvgC& svg, const AreaPicture& picture,
                 const std::function<GMAT::AnglePointC(const GMAT::AnglePointC&)>& show,
                 const PageMap& map, const std::function<bool(SvgPoint)>& isShown);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_DRAWING_H_
