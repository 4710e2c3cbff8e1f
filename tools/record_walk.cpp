#include "record_walk.h"

#include <cerrno>

#include <fmt/format.h>

#include "message.h"

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

ExitCode ForEachMeasurement(RecordWalkC& walk,
                            const std::function<void(const DecodedRecord&)>& visit) {
  ExitCode result = ExitCode::kDone;
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (!entry.IsMeasurement()) continue;
    const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
    if (record.IsDone()) {
      visit(record);
    } else {
      Tell(fmt::format("the frame at {} is left out: its blocks do not fit", entry.offset));
      result = ExitCode::kFinding;
    }
  }
  return result;
}

}  // namespace Tool
