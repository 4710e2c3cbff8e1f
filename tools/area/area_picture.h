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

/// The area as an SVG document: in the (Hz, V) plane, and as seen from the zenith. The inside,
/// as the library defines it, is filled; the edges are drawn as arcs. The document has at most 2 MB
/// for any area: details that the page cannot resolve are drawn at its resolution, and the picture
/// says so.
std::string DrawArea(const AreaPicture& picture);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
