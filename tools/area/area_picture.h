#ifndef SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_

#include <string>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_inside.h>
#include <area/area_probes.h>

namespace Tool {

struct AreaPicture {
  const AreaFile& file;
  const std::vector<AreaFault>& faults;
  AngleWindow window;  ///< What the plane shows.
  const AreaProbesC& probes;
};

/// The whole sphere.
inline constexpr AngleWindow kWholeSphere{0, GMAT::TWO_PI, 0, GMAT::PI};

/// The area as an SVG document: in the (Hz, V) plane, and as seen from the zenith. What the library
/// calls inside is filled; the edges are drawn as the arcs that they are. The document has at most
/// 2 MB, whatever the picture holds: what the page cannot show is drawn to its resolution, and the
/// picture says so.
std::string DrawArea(const AreaPicture& picture);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
