#ifndef SURVEYDATA_TOOLS_AREA_AREA_MEASURE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_MEASURE_H_

#include <optional>

#include <area/area_file.h>

namespace Tool {

/// The bounds of an area as the library gives them, rad; Hz of the far end is not normalised.
struct AreaBounds {
  double hzMin;
  double hzMax;
  double vMin;
  double vMax;
  bool enclosesZenith;
};

/// Nothing when the points make no area of their kind, whatever the steps are.
std::optional<AreaBounds> MeasureBounds(const AreaFile& file);

struct SolidAngle {
  double steradians;
  double accuracy;  ///< A bound of the rounding.
  double band;      ///< What the boundary band can add at most.
};

/// The solid angle of the directions that the library calls inside, but for the boundary band: by
/// formula, for polygons from their arcs.
/// \cost for a polygon that of `IntegratePolygon`.
SolidAngle MeasureSolidAngle(const AreaFile& file, const AreaBounds& bounds);

struct DirectionCount {
  double count;
  bool isExact;
};

/// The directions of a scan with the steps of the area, which must be above 0: a grid that begins
/// at the lower bounds (around the zenith: at V 0), as far as it lies inside. Counted one by one up
/// to 20 million in a polygon, 1 million in one of more than 10,000 points; estimated beyond from a
/// sparser grid.
DirectionCount CountDirections(const AreaFile& file, const AreaBounds& bounds);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_MEASURE_H_
