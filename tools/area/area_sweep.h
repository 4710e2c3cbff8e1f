#ifndef SURVEYDATA_TOOLS_AREA_AREA_SWEEP_H_
#define SURVEYDATA_TOOLS_AREA_AREA_SWEEP_H_

#include <cstdint>
#include <functional>

#include <area/area_file.h>

namespace Tool {

/// Calls `visit(hz, v)`, rad, for each direction of the area at its steps, in the order in which an
/// instrument sweeps: columns by ascending Hz, with V alternately ascending and descending. Columns
/// without a direction inside do not count. The first direction is that of the lowest Hz and V of
/// the bounds; for an area around the zenith and for a dome, it is Hz 0 and V 0. Memory does not
/// depend on the steps. Python's `Area.iter_grid` gives the same.
/// \param file  a valid area.
/// \return the number of directions.
/// \throw ToolErrorC  when there are more than 2^53 columns, or more than 10^7 directions in one.
std::uint64_t SweepArea(const AreaFile& file, const std::function<void(double, double)>& visit);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_SWEEP_H_
