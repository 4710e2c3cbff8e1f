#include <command_line/message.h>
#include <record/record_walk.h>

namespace Tool {

RecordWalkC::RecordWalkC(const std::string& file, bool hasRows)
    : file_(file), index_(file.c_str()), progress_(index_.GetFileSize(), hasRows) {
  if (!index_.IsOpen()) {
    FailToRead(file);
  }
}

bool RecordWalkC::Next(SDI::GPSRecordEntry& entry) {
  const bool isFound = index_.Next(entry);
  if (index_.HasFailed()) {
    FailToRead(file_);
  }
  if (isFound) progress_.Update(entry.offset);
  return isFound;
}

}  // namespace Tool
