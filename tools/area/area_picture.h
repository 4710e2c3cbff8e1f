#ifndef SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_

#include <optional>
#include <string>
#include <vector>

#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_inside.h>

namespace Tool {

/// A direction that was asked for, rad, with the answer.
struct AreaProbe {
  double hz;
  double v;
  bool isInside;
};

struct AreaPicture {
  const AreaFile& file;
  const std::vector<AreaFault>& faults;
  std::vector<AreaProbe> probes;
  std::optional<AngleWindow> window;  ///< What the plane shows; the whole sphere by default.
};

/// The area as an SVG document: in the (Hz, V) plane, and as seen from the zenith. What the library
/// calls inside is filled; the edges are drawn as the arcs that they are.
std::string DrawArea(const AreaPicture& picture);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
