#ifndef SURVEYDATA_TOOLS_RECORD_WALK_H_
#define SURVEYDATA_TOOLS_RECORD_WALK_H_

#include <cstdint>
#include <span>
#include <string>

#include <surveydata/gnss/gps_record_index.h>

#include "progress.h"

namespace Tool {

/// Walks a record file with a progress bar. Throws `ToolErrorC` where the file cannot be read.
class RecordWalkC {
 public:
  explicit RecordWalkC(const std::string& file);

  std::uint64_t GetFileSize() const { return index_.GetFileSize(); }
  bool Next(SDI::GPSRecordEntry& entry);
  /// The bytes of the record that `Next` gave last.
  std::span<const std::uint8_t> GetBytes() const { return index_.GetBytes(); }

 private:
  std::string file_;
  SDI::GPSRecordIndexC index_;
  ProgressC progress_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_WALK_H_
