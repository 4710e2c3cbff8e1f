#ifndef SURVEYDATA_TOOLS_RECORD_FIND_FRAME_H_
#define SURVEYDATA_TOOLS_RECORD_FIND_FRAME_H_

#include <cstdint>
#include <string>
#include <vector>

#include <surveydata/gnss/gps_record_reader.h>

#include <record/record_commands.h>

/// \file
/// Finds the measurement frame that `record list` shows at an offset of a record file, and returns
/// its bytes. Otherwise throws a `ToolErrorC` that names what is at the offset instead. The time
/// does not depend on the size of a file; a pipe is read up to the offset.

namespace Tool {

std::vector<std::uint8_t> FindFrame(const std::string& file, const FrameOffset& offset);

/// In an open file: `readAt` and `size` are as in `GPSRecordReaderC`; `readAt`
/// reports failures by exceptions.
std::vector<std::uint8_t> FindFrame(SDI::GPSRecordReaderC::ReadAt readAt, std::uint64_t size,
                                    const FrameOffset& offset);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_FIND_FRAME_H_
