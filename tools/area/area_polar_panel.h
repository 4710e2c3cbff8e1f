#ifndef SURVEYDATA_TOOLS_AREA_AREA_POLAR_PANEL_H_
#define SURVEYDATA_TOOLS_AREA_AREA_POLAR_PANEL_H_

#include <optional>
#include <vector>

#include <area/area_curves.h>
#include <area/area_drawing.h>
#include <area/area_measure.h>
#include <area/picture_contents.h>
#include <output/label_placer.h>
#include <output/svg.h>

namespace Tool {

/// The area as seen from the zenith: the distance from the centre is V, north (Hz 0) is up, Hz
/// increases clockwise.
void DrawPolarPanel(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                    const InsideDrawingC& inside, const std::vector<EdgeCurve>& edges,
                    const std::optional<AreaBounds>& bounds);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_POLAR_PANEL_H_
