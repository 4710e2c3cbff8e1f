#ifndef SURVEYDATA_TOOLS_AREA_AREA_INSIDE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_INSIDE_H_

#include <cstddef>
#include <optional>
#include <vector>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_area.h>
#include <surveydata/sphere_geometry/angles.h>

namespace Tool {

/// A part of the (Hz, V) plane, rad.
struct AngleWindow {
  double hzMin;
  double hzMax;
  double vMin;
  double vMax;
};

/// The whole sphere.
inline constexpr AngleWindow kWholeSphere{0, GMAT::TWO_PI, 0, GMAT::PI};

/// A range of Hz that is inside at one V.
struct InsideRun {
  double v;
  double from;
  double to;
};

/// Connected runs in successive rows: a simple piece of the inside.
using InsideStrip = std::vector<InsideRun>;

/// The inside of an area in a window, as `Contains` defines it, in strips of `rows` equally spaced
/// V from top to bottom. Each strip ends above and below at a border between rows. Parts narrower
/// than a 720th of the window's width can be missed. The ends of a run are found to a millionth of
/// that, and for a polygon of more than 10,000 points to a thousandth.
std::vector<InsideStrip> FindInside(const SDI::ScanAreaC& area, const AngleWindow& window,
                                    int rows);

/// The same with the area that was prepared from `area`. Empty if there are more than `mostRuns`
/// runs.
std::optional<std::vector<InsideStrip>> FindInside(const SDI::ScanAreaC& area,
                                                   const SDI::PreparedAreaC& prepared,
                                                   const AngleWindow& window, int rows,
                                                   std::size_t mostRuns);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_INSIDE_H_
