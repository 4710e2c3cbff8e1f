#ifndef SURVEYDATA_TOOLS_RECORD_WALK_H_
#define SURVEYDATA_TOOLS_RECORD_WALK_H_

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include <surveydata/gnss/gps_record_index.h>

#include "decoded_record.h"
#include "exit_code.h"
#include "progress.h"

namespace Tool {

/// Walks a record file with a progress bar. Throws `ToolErrorC` where the file cannot be read.
class RecordWalkC {
 public:
  /// `hasRows`: as of `ProgressC`.
  explicit RecordWalkC(const std::string& file, bool hasRows = false);

  std::uint64_t GetFileSize() const { return index_.GetFileSize(); }
  bool Next(SDI::GPSRecordEntry& entry);
  /// For work on a stretch that takes long.
  void ShowProgress(std::uint64_t offset) { progress_.Update(offset); }
  /// The bytes of the record that `Next` gave last.
  std::span<const std::uint8_t> GetBytes() const { return index_.GetBytes(); }

 private:
  std::string file_;
  SDI::GPSRecordIndexC index_;
  ProgressC progress_;
};

/// Reads the measurements that are left in `walk`. Frames whose blocks do not fit are left out,
/// named on standard error, and make the answer `kFinding`.
ExitCode ForEachMeasurement(RecordWalkC& walk,
                            const std::function<void(const DecodedRecord&)>& visit);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_WALK_H_
