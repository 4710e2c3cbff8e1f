#ifndef SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_
#define SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_

#include <surveydata/sphere_geometry/sphere_area.h>

namespace Tool {

/// The solid angle of the inside of a polygon, as the crossings of the meridians define it, in
/// steradians, with a bound of its rounding. It takes the ends of the search line and crossings
/// that count as one into account, but not the boundary band.
///
/// A meridian sweeps once around; the inside lies below every other arc that it crosses. Two arcs
/// swap at a single Hz. Crossings count as one if they agree to 10 digits over at least 1e-6 rad of
/// Hz.
///
/// \cost (n + c) log n for n points and c places where arcs cross each other. Where crossings begin
///       or cease to count as one, and at an edge along a meridian with arcs next to it, inside and
///       outside are swapped for all arcs above, each of which is integrated up to there: n^2 if
///       half of the corners of a ring are that acute and have thousands of arcs above.
/// \source The integral of cos(V) over Hz along tan(lat) = a cos(Hz) + b sin(Hz) is
///         atan2(a sin(Hz) - b cos(Hz), 1 / cos(lat)).
struct PolygonSolidAngle {
  double steradians;
  double rounding;
};
PolygonSolidAngle IntegratePolygon(const GMAT::SphereAreaC& area);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_
