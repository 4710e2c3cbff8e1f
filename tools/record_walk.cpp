#include "record_walk.h"

#include <cerrno>
#include <cstring>

#include <fmt/format.h>

#include "exit_code.h"

namespace Tool {

RecordWalkC::RecordWalkC(const std::string& file)
    : file_(file), index_(file.c_str()), progress_(index_.GetFileSize()) {
  if (!index_.IsOpen()) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot read {}: {}", file, std::strerror(errno)));
  }
}

bool RecordWalkC::Next(SDI::GPSRecordEntry& entry) {
  const bool isFound = index_.Next(entry);
  if (index_.HasFailed()) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot read {}: {}", file_, std::strerror(errno)));
  }
  if (isFound) progress_.Update(entry.offset);
  return isFound;
}

}  // namespace Tool
