#include <command_line/message.h>
#include <record/record_walk.h>

namespace Tool {

RecordWalkC::RecordWalkC(const std::string& file, bool hasRows)
    : file_(file), reader_(file.c_str()), progress_(reader_.GetSize(), hasRows) {
  if (reader_.GetState() != SDI::GPSReaderState::kOpen) FailToRead(file);
}

bool RecordWalkC::Next(SDI::GPSRecordEntry& entry) {
  const bool isFound = reader_.NextEntry(entry);
  if (reader_.GetState() != SDI::GPSReaderState::kOpen) FailToRead(file_);
  if (isFound) progress_.Update(entry.offset);
  return isFound;
}

}  // namespace Tool
