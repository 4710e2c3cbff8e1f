#ifndef SURVEYDATA_TOOLS_RECORD_FRAME_VALUES_H_
#define SURVEYDATA_TOOLS_RECORD_FRAME_VALUES_H_

#include <string>

/// \file
/// The values that may be written into a frame. Throws `ValueErrorC` with the reason for all
/// others.

namespace Tool {

/// A name: at most 17 UTF-16 units, without control characters.
std::u16string ToFrameName(const std::string& utf8);

/// 0 to 1000 metres.
float ToAntennaHeight(double metres);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_FRAME_VALUES_H_
