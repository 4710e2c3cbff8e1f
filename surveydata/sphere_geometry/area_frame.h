#ifndef SURVEYDATA_SPHERE_GEOMETRY_AREA_FRAME_H_
#define SURVEYDATA_SPHERE_GEOMETRY_AREA_FRAME_H_

#include <cstddef>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

/// \file
/// The edges of a sphere area, its bounds and its validity, from its points.

namespace GMAT {

/// The edges of an area in one continuous Hz frame, and its bounds before any clamping.
struct AreaFrame {
  std::vector<AnglePointC> edges;  ///< Start and end of each edge; the smallest Hz is 0.
  double hzOrigin = 0.0;           ///< The Hz that corresponds to 0.
  double hzMin = 0.0;
  double hzMax = 0.0;
  double vMin = 0.0;
  double vMax = 0.0;
  bool isPolygon = false;  ///< Three points or more: edges are arcs of great circles.
  bool enclosesZenith = false;

  std::size_t GetEdgeCount() const { return edges.size() / 2; }
  const AnglePointC& GetStart(std::size_t edge) const { return edges[2 * edge]; }
  const AnglePointC& GetEnd(std::size_t edge) const { return edges[2 * edge + 1]; }
};

/// `SphereAreaC::BuildEdgeList`.
bool BuildEdges(std::span<const AnglePointC> points, std::vector<AnglePointC>& edges,
                double& hzOrigin);

/// The edges and the bounds. False with fewer than two points.
bool BuildFrame(std::span<const AnglePointC> points, AreaFrame& frame);

/// `SphereAreaC::IsValid` for two points or more, whose edges are given.
bool IsRingValid(std::span<const AnglePointC> points, const std::vector<AnglePointC>& edges);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_AREA_FRAME_H_
