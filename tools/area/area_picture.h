#ifndef SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
#define SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_

#include <string>

#include <area/picture_contents.h>

namespace Tool {

/// The area as an SVG document: in the (Hz, V) plane, and as seen from the zenith. The inside,
/// as the library defines it, is filled; the edges are drawn as arcs. The document has at most 2 MB
/// for any area: details that the page cannot resolve are drawn at its resolution, and the picture
/// states this.
std::string DrawArea(const PictureContents& picture);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_PICTURE_H_
