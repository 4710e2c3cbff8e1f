#ifndef SURVEYDATA_TOOLS_AREA_MEASURE_H_
#define SURVEYDATA_TOOLS_AREA_MEASURE_H_

#include <optional>
#include <string_view>

#include "area_file.h"

namespace Tool {

/// The bounds of an area as the library gives them, rad; Hz of the far end is not normalised.
struct AreaBounds {
  double hzMin;
  double hzMax;
  double vMin;
  double vMax;
  bool enclosesZenith;
};

/// Nothing when the points make no area.
std::optional<AreaBounds> MeasureBounds(const AreaFile& file);

struct SolidAngle {
  double steradians;
  double accuracy;          ///< 0 for a closed formula.
  std::string_view method;  ///< "formula" or "quadrature".
};

/// The solid angle of the directions that the library calls inside.
///
/// A rectangle and a dome have a closed formula. A polygon is cut into meridians, none at a corner;
/// along each, the borders of the inside are found by bisection, and what lies between them is
/// integrated exactly. The accuracy is an estimate: the change that twice the meridians make, and
/// what the boundary band can add. An inside that is lower than a 512th of the height of the area
/// can be missed.
SolidAngle MeasureSolidAngle(const AreaFile& file, const AreaBounds& bounds);

struct DirectionCount {
  double count;
  bool isExact;
};

/// The directions of a scan with the steps of the area, which must be above 0: a grid that begins
/// at the lower bounds (around the zenith: at V 0), as far as it lies inside. Counted one by one up
/// to some ten million in a polygon; estimated beyond from a sparser grid.
DirectionCount CountDirections(const AreaFile& file, const AreaBounds& bounds);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_MEASURE_H_
