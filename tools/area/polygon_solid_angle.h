#ifndef SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_
#define SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_

#include <surveydata/sphere_geometry/sphere_area.h>

namespace Tool {

/// What lies inside a polygon by the crossings of the meridians, in steradians, and a bound of its
/// rounding. Ends of the search line and crossings that always count as one are taken into account;
/// the boundary band is not.
///
/// A meridian moves once around; the inside lies below every other arc that it crosses. Two arcs
/// that change places do so at one Hz. Crossings count as one where they agree to 10 digits, if
/// that is so for 1e-6 rad of Hz or more.
///
/// \cost (n + c) log n for n points and c places where arcs cross each other. Where crossings begin
///       or cease to count as one, and at an edge along a meridian with arcs beside it, inside and
///       outside are exchanged for all arcs above, each of which is integrated up to there: n^2
///       where half of the corners of a ring are so acute and have thousands of arcs above.
/// \source The integral of cos(V) over Hz along tan(lat) = a cos(Hz) + b sin(Hz) is
///         atan2(a sin(Hz) - b cos(Hz), 1 / cos(lat)).
struct PolygonSolidAngle {
  double steradians;
  double rounding;
};
PolygonSolidAngle IntegratePolygon(const GMAT::SphereAreaC& area);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_
