#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_

#include <cstdint>
#include <span>
#include <string>

#include <surveydata/gnss/gps_record_index.h>

#include <command_line/progress.h>

namespace Tool {

/// Walks a record file with a progress bar. Throws `ToolErrorC` where the file cannot be read.
class RecordWalkC {
 public:
  /// `hasRows`: as of `ProgressC`.
  explicit RecordWalkC(const std::string& file, bool hasRows = false);

  const std::string& GetFile() const { return file_; }
  /// 0 of a pipe.
  std::uint64_t GetFileSize() const { return index_.GetFileSize(); }
  bool Next(SDI::GPSRecordEntry& entry);
  /// For work on a stretch that takes long.
  void ShowProgress(std::uint64_t offset) { progress_.Update(offset); }
  /// Before a message.
  void HideProgress() { progress_.Wipe(); }
  /// The bytes of the record that `Next` gave last.
  std::span<const std::uint8_t> GetBytes() const { return index_.GetBytes(); }

 private:
  std::string file_;
  SDI::GPSRecordIndexC index_;
  ProgressC progress_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
