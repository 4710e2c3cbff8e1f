#ifndef SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_DISTANCE_H_
#define SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_DISTANCE_H_

#include <cstddef>
#include <limits>

#include <surveydata/sphere_geometry/area_frame.h>

/// \file
/// The distance of a direction from the boundary of an area, on the sphere.

namespace GMAT {

/// The angle between two directions.
/// \accuracy within 1e-15 rad and the rounding of the difference of the Hz.
/// \source sin^2(d/2) = sin^2((v-V)/2) cos^2(l/2) + sin^2((v+V)/2) sin^2(l/2) for Hz that differ
///         by l; the cosine likewise. Nothing cancels.
double DistanceToPoint(const AnglePointC& direction, const AnglePointC& point);

/// The angle between a direction and the nearest point of the shorter arc of the great circle from
/// `a` to `b`, or of its ends if they define no arc (`GreatCircleArcC::IsValid`).
/// \accuracy within 1e-12 rad for Hz up to 2048, even if the ends are close or nearly antipodal.
/// \source With Hz measured from the middle of the ends, and half of their difference l / 2, a x b
///         is (-sin(l/2) sin(V1 + V2), cos(l/2) sin(V2 - V1), sin V1 sin V2 sin l): products of
///         sines of sums, which are computed without rounding.
double DistanceToArc(const AnglePointC& direction, const AnglePointC& a, const AnglePointC& b);

/// The angle between a direction and the nearest point of the meridian `hz` between two V.
double DistanceToMeridian(const AnglePointC& direction, double hz, double v1, double v2);

/// The angle between a direction and the nearest point of the circle of latitude at `v` from `hz1`
/// up to `hz2`. All of them with V in [0, pi].
double DistanceToParallel(const AnglePointC& direction, double v, double hz1, double hz2);

/// The nearest edge of an area and its distance; the largest finite double without an edge.
struct NearestEdge {
  double distance = std::numeric_limits<double>::max();
  std::size_t edge = static_cast<std::size_t>(-1);
};

/// The edge of an area that is nearest to a direction on the sphere: for a polygon the shorter arcs
/// of great circles, including the closing one; for a rectangle its two meridians and two circles
/// of latitude. Edges with an end out of range (V in [0, pi] to 10 digits, finite Hz) are ignored.
/// Limits of V are not part of the boundary.
/// \cost linear.
NearestEdge FindNearestEdge(const AreaFrame& frame, const AnglePointC& direction);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_BOUNDARY_DISTANCE_H_
