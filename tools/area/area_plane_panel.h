#ifndef SURVEYDATA_TOOLS_AREA_AREA_PLANE_PANEL_H_
#define SURVEYDATA_TOOLS_AREA_AREA_PLANE_PANEL_H_

#include <optional>
#include <vector>

#include <area/area_curves.h>
#include <area/area_drawing.h>
#include <area/area_measure.h>
#include <area/picture_contents.h>
#include <output/label_placer.h>
#include <output/svg.h>

namespace Tool {

/// The area in the plane of Hz and V, with axes in the unit of the file.
void DrawPlanePanel(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                    const InsideDrawingC& inside, const std::vector<EdgeCurve>& edges,
                    const std::optional<AreaBounds>& bounds);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_PLANE_PANEL_H_
