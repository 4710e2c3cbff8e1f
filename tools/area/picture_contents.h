#ifndef SURVEYDATA_TOOLS_AREA_PICTURE_CONTENTS_H_
#define SURVEYDATA_TOOLS_AREA_PICTURE_CONTENTS_H_

#include <vector>

#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_inside.h>
#include <area/area_probes.h>

namespace Tool {

/// What a picture of an area shows.
struct PictureContents {
  const AreaFile& file;
  const std::vector<AreaFault>& faults;
  AngleWindow window;  ///< What the plane shows.
  const AreaProbesC& probes;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_PICTURE_CONTENTS_H_
