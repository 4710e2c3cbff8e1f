#ifndef SURVEYDATA_SPHERE_GEOMETRY_RING_CROSSINGS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_RING_CROSSINGS_H_

#include <cstddef>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {

/// True only if the ring is star-shaped in the (Hz, V) plane, about a point near the mean of its
/// corners. Then no two points are equal and no two non-adjacent edges cross in the plane. False
/// proves nothing.
/// \cost linear.
bool IsProvenStarShaped(const std::vector<AnglePointC>& edges);

/// Whether two non-adjacent edges cross, both as arcs and in the plane.
///
/// Compares bounding boxes if few edges lie side by side, along Hz or along V; otherwise keeps the
/// edges in order on a sweep line (`SweepInOrder`). If two chords cross where their arcs
/// do not, that order is lost, and the boxes are compared instead.
/// \cost O(n log n), and one comparison for every pair of edges within 2e-9 of each other. If
///       chords cross and their arcs do not, or the frame is wider than `kWidestFrame`: one
///       comparison for every pair of edges that share a range of Hz, or of V if these are fewer,
///       n^2 at worst.
bool CrossesItself(const std::vector<AnglePointC>& edges);

/// Two edges that cross, `first` < `second`, and the crossing of their arcs in the frame of the
/// edges.
struct EdgeCrossing {
  std::size_t first;
  std::size_t second;
  AnglePointC at;
};

/// The pairs of edges for which `CrossesItself` is true, in ascending order; at most
/// `most` of them.
/// \cost that of `CrossesItself`, at most once for each pair that is found and once more.
std::vector<EdgeCrossing> FindEdgeCrossings(const std::vector<AnglePointC>& edges,
                                            std::size_t most);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_RING_CROSSINGS_H_
