#ifndef SURVEYDATA_TOOLS_RECORD_FIND_FRAME_H_
#define SURVEYDATA_TOOLS_RECORD_FIND_FRAME_H_

#include <cstdint>
#include <string>
#include <vector>

#include <surveydata/gnss/gps_record_reader.h>

/// \file
/// What lies at an offset of a record file? The measurement frame that `record list` shows there,
/// as its bytes; or a `ToolErrorC` that says what is there instead. The time does not depend on the
/// size of the file.

namespace Tool {

std::vector<std::uint8_t> FindFrame(const std::string& file, std::uint64_t offset);

/// In a file that is open already: `readAt` and `size` are as in `GPSRecordReaderC`, and failures
/// of `readAt` are exceptions.
std::vector<std::uint8_t> FindFrame(SDI::GPSRecordReaderC::ReadAt readAt, std::uint64_t size,
                                    std::uint64_t offset);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_FIND_FRAME_H_
