#include <record/record_input.h>
#include <record/record_walk.h>

namespace Tool {

RecordWalkC::RecordWalkC(const std::string& file, bool hasRows)
    : input_(file), reader_(ReadRecords(input_)), progress_(input_.GetSize(), hasRows) {}

bool RecordWalkC::Next(SDI::GPSRecordEntry& entry) {
  const bool isFound = reader_.NextEntry(entry);
  if (reader_.GetState() != SDI::GPSReaderState::kOpen) input_.Fail();
  if (isFound) progress_.Update(entry.offset);
  return isFound;
}

}  // namespace Tool
