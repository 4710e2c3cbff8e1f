#ifndef SURVEYDATA_TOOLS_AREA_PICTURE_COLOURS_H_
#define SURVEYDATA_TOOLS_AREA_PICTURE_COLOURS_H_

#include <string_view>

#include <output/svg.h>

namespace Tool {

/// Colours that can be distinguished with any colour vision; their shades differ as well.
/// @{
inline constexpr std::string_view kInsideFill = "#cfe3f3";
inline constexpr std::string_view kQuiet = "#555555";
inline constexpr std::string_view kFault = "#cc3311";
inline constexpr std::string_view kInsideProbe = "#117733";
inline constexpr std::string_view kOutsideProbe = "#aa3377";
inline constexpr SvgStroke kGrid{"#e3e3e3", 1.0};
inline constexpr SvgStroke kFrame{"#555555", 1.0};
inline constexpr SvgStroke kEdge{"#0072b2", 2.0};
inline constexpr SvgStroke kFaultyEdge{kFault, 2.4};
inline constexpr SvgStroke kNoArc{kFault, 1.2, "2 3"};
inline constexpr SvgStroke kBounds{"#333333", 1.1, "6 4"};
inline constexpr SvgStroke kLowest{"#d55e00", 1.2, "9 3 2 3"};
/// @}

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_PICTURE_COLOURS_H_
