#ifndef SURVEYDATA_SPHERE_GEOMETRY_EDGE_SWEEP_H_
#define SURVEYDATA_SPHERE_GEOMETRY_EDGE_SWEEP_H_

#include <cstddef>
#include <functional>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/filter_bounds.h>

/// \file
/// A sweep line that keeps the edges of a ring in order.

namespace GMAT {

/// Whether the edges `first` <= `second` of a ring cross, by the rules. Neighbours do not.
using EdgePairTest = std::function<bool(std::size_t first, std::size_t second)>;

enum class SweepResult {
  kCrossing,    ///< A pair was found for which the test is true.
  kNoCrossing,  ///< The test is false for every pair that can cross in the plane.
  kUndecided,   ///< Two edges swap and the test is false for them, or the frame is too
                ///< wide.
};

/// The largest distance, in rad, between two edges for which `FindPlanarCrossing` reports a
/// crossing, in a frame no wider than `kWidestFrame`.
///
/// The reported point is a1 + t a for the edge A from a1 along a, and B starts at b1 along b. With
/// u = 2^-53, N = (b1 - a1) x b and D = a x b:
/// - It lies within the spans of both edges by `InRange` with 10 digits: that rounds both sides to
///   1e-10 and requires a difference below 1e-10, so it accepts 2e-10 and the rounding of three
///   operations on angles up to 2048, 2.02e-10 in all. Along a line, both coordinates are limited,
///   so the point is past an end by at most 2.02e-10 sqrt(2) = 2.86e-10.
/// - It lies on the line of A up to the rounding of a1 + t a, 3 u 2048 < 1e-12.
/// - From the line of B it is off by |t D - N| / |b|. N and D are computed with errors of at most
///   4 u |b1 - a1| |b| and 4 u |a| |b| (Cauchy's inequality), the division adds u |t a|: together
///   less than 4e-12, even if the lines are nearly parallel.
/// - Products that underflow add e = 2^-1074 to the error of D. A computed D other than 0 has a
///   product of at least e / 2, so |a| |b| >= e / 2, and |t| e / |b| <= 2 |t a|, where
///   |t a| <= 2.86e-10 for such a short edge A. (A short edge B is as close as its box.)
///
/// The sum is 2 (2.86e-10) + 5e-12 + 2 (2.86e-10) < 1.2e-9, or 5.8e-10 if nothing underflows.
inline constexpr double kCrossingReach = 1.2e-9;

/// Searches a ring for two edges for which `areCrossing` is true. It is called for all pairs of
/// edges that come within `kCrossingReach` of each other in the (Hz, V) plane, and for a few more.
/// \param edges  start and end of each edge, the end of one being the start of the next; finite. A
///               frame wider than `kWidestFrame` is undecided.
/// \param leftOut  edges to ignore; empty for none, otherwise one flag for each edge.
/// \cost n log n, and one call for every pair of edges that come within 2e-9 of each other.
/// \source Shamos and Hoey, Geometric intersection problems, 1976.
SweepResult SweepInOrder(const std::vector<AnglePointC>& edges, const EdgePairTest& areCrossing,
                         const std::vector<bool>& leftOut = {});

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_EDGE_SWEEP_H_
