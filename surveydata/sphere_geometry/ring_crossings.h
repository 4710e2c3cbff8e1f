#ifndef SURVEYDATA_SPHERE_GEOMETRY_RING_CROSSINGS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_RING_CROSSINGS_H_

#include <cstddef>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {

/// Whether the ring is seen to be star-shaped about the mean of its points in the (Hz, V) plane.
/// Then no two points are equal and no two edges that are no neighbours cross in the plane. False
/// says nothing.
/// \cost linear.
bool IsProvenStarShaped(const std::vector<AnglePointC>& edges);

/// Whether two edges that are no neighbours cross, both as arcs and in the plane.
///
/// Compares bounding boxes where few edges lie side by side, along Hz or along V; otherwise keeps
/// the edges in their order on a sweep line (`SweepInOrder`). Two chords that cross where their
/// arcs do not change places on that line, and its order ends there: then the boxes are compared
/// after all. \cost n log n, and one for every pair of edges within 2e-9 of each other. Where
/// chords cross and
///       arcs do not, or the frame is wider than `kWidestFrame`: one for every pair of edges that
///       share a range of Hz, or of V where these are fewer, n^2 at worst.
bool CrossesItself(const std::vector<AnglePointC>& edges);

/// Two edges that cross, `first` < `second`, and where their arcs do, in the frame of the edges.
struct EdgeCrossing {
  std::size_t first;
  std::size_t second;
  AnglePointC at;
};

/// The pairs of edges for which `CrossesItself` is true, in ascending order; of more than `most`
/// pairs, `most` of them.
/// \cost that of `CrossesItself`, once more than the pairs that are found at most.
std::vector<EdgeCrossing> FindEdgeCrossings(const std::vector<AnglePointC>& edges,
                                            std::size_t most);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_RING_CROSSINGS_H_
