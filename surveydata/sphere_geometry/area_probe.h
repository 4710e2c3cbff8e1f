#ifndef SURVEYDATA_SPHERE_GEOMETRY_AREA_PROBE_H_
#define SURVEYDATA_SPHERE_GEOMETRY_AREA_PROBE_H_

#include <cmath>
#include <cstddef>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/filter_bounds.h>

/// \file
/// The individual steps of the test whether a direction is inside an area.

namespace GMAT {

/// The point of the (Hz, V) plane at which the distance of a direction from the boundary is
/// measured.
AnglePointC BandProbe(double hz, double v, double hzOrigin);

/// Whether the distance from the probe to each end is at most the length of the edge.
bool IsBeside(const AnglePointC& probe, const AnglePointC& a, const AnglePointC& b);

/// Whether the probe is beside the edge and within the tolerance of its line.
bool IsInBand(const AnglePointC& probe, const AnglePointC& a, const AnglePointC& b);

/// False only where `IsInBand` is false.
inline bool IsNearBox(const AnglePointC& probe, const AnglePointC& a, const AnglePointC& b) {
  if (!(std::fabs(a.Hz - b.Hz) < kLargeEdge && std::fabs(a.V - b.V) < kLargeEdge)) return true;
  const auto isApart = [](double x, double end1, double end2) {
    return (x < end1 - kBandReach && x < end2 - kBandReach) ||
           (x > end1 + kBandReach && x > end2 + kBandReach);
  };
  return !isApart(probe.Hz, a.Hz, b.Hz) && !isApart(probe.V, a.V, b.V);
}

/// Whether a direction at `v` is inside, given where its meridian crosses the edges: there must be
/// a crossing at or above it (or the zenith inside), and an odd number of crossings below.
/// Crossings that are equal to 10 digits count as one. Reorders and shortens `crossings`.
///
/// \param hasOneAbove  whether the zenith is inside or another crossing is above.
/// \param othersBelow  the number of other crossings below, none equal to one in the list.
bool IsInsideByParity(std::vector<double>& crossings, double v, bool hasOneAbove,
                      std::size_t othersBelow = 0);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_AREA_PROBE_H_
