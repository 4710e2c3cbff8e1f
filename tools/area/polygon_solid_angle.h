#ifndef SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_
#define SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_

#include <surveydata/sphere_geometry/sphere_area.h>

namespace Tool {

/// What lies inside a polygon by the crossings of the meridians, in steradians, and a bound of its
/// rounding. Ends of the search line and crossings that always count as one are taken into account;
/// the boundary band is not.
///
/// Between two neighbouring Hz of corners every meridian crosses the same arcs, all of them are
/// known in their order, and the inside lies below every other one. Two arcs that change places do
/// so at one Hz.
/// \cost n log n, and n times the number of arcs that a meridian crosses, for n points.
/// \source The integral of cos(V) over Hz along tan(lat) = a cos(Hz) + b sin(Hz) is
///         atan2(a sin(Hz) - b cos(Hz), 1 / cos(lat)).
struct PolygonSolidAngle {
  double steradians;
  double rounding;
};
PolygonSolidAngle IntegratePolygon(const GMAT::SphereAreaC& area);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_POLYGON_SOLID_ANGLE_H_
