#ifndef SURVEYDATA_TOOLS_AREA_AREA_MEASURE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_MEASURE_H_

#include <optional>

#include <area/area_file.h>

namespace Tool {

/// The bounds of an area as the library returns them, in rad; the larger Hz is not normalised.
struct AreaBounds {
  double hzMin;
  double hzMax;
  double vMin;
  double vMax;
  bool enclosesZenith;
};

/// Empty if the points do not make an area of their kind. The steps do not matter.
std::optional<AreaBounds> MeasureBounds(const AreaFile& file);

struct SolidAngle {
  double steradians;
  double accuracy;  ///< A bound of the rounding.
  double band;      ///< What the boundary band can add at most.
};

/// The solid angle of the directions inside, as the library defines it, without the boundary band:
/// by formula, for polygons from their arcs. \cost for a polygon that of `IntegratePolygon`.
SolidAngle MeasureSolidAngle(const AreaFile& file, const AreaBounds& bounds);

struct DirectionCount {
  double count;
  bool isExact;
};

/// The directions of a scan with the steps of the area, which must be above 0: those inside, from a
/// grid that begins at the lower bounds (at V 0 around the zenith). Counted up to 20 million in a
/// polygon, or 1 million in one of more than 10,000 points; larger numbers are estimated from a
/// coarser grid.
DirectionCount CountDirections(const AreaFile& file, const AreaBounds& bounds);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_MEASURE_H_
