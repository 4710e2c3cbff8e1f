#ifndef SURVEYDATA_SPHERE_GEOMETRY_CLOSE_CROSSINGS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_CLOSE_CROSSINGS_H_

#include <cstddef>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/hz_intervals.h>
#include <surveydata/sphere_geometry/ring_curves.h>

/// \file
/// The Hz at which it is open whether an edge counts, or where two crossings may be so close that
/// the rules count them as one.

namespace GMAT {

/// Adds the meridians of corners, as far as two edges that meet there and go the same way stay
/// close; whole steep edges; and the meridians of edges at a pole.
void AddIntervalsOfCorners(const AreaFrame& frame, const RingCurves& ring, HzIntervalsC& intervals);

/// Adds where curves that share a cell come close to each other. `borders` are those of the grid's
/// columns; `edgeCount` tells which edges are neighbours.
void AddIntervalsOfCells(const CellGridC& grid, const std::vector<CosSin>& borders,
                         const std::vector<ArcCurve>& curves, std::size_t edgeCount,
                         HzIntervalsC& intervals);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_CLOSE_CROSSINGS_H_
