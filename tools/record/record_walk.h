#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include <surveydata/gnss/gps_record_reader.h>

#include <command_line/progress.h>

namespace Tool {

/// Walks a record file with a progress bar. Throws `ToolErrorC` where the file cannot be read.
class RecordWalkC {
 public:
  /// `hasRows`: as in `ProgressC`.
  explicit RecordWalkC(const std::string& file, bool hasRows = false);

  const std::string& GetFile() const { return file_; }
  /// 0 for a pipe.
  std::uint64_t GetFileSize() const { return reader_.GetSize(); }
  /// As in `GPSRecordReaderC`: before the record that ends a gap, or the gap, is given.
  void SetReportDamaged(SDI::GPSRecordReaderC::ReportDamaged report) {
    reader_.SetReportDamaged(std::move(report));
  }
  bool Next(SDI::GPSRecordEntry& entry);
  /// Before a message.
  void HideProgress() { progress_.Wipe(); }
  /// The bytes of the record that `Next` gave last.
  std::span<const std::uint8_t> GetBytes() const { return reader_.GetBytes(); }

 private:
  std::string file_;
  SDI::GPSRecordReaderC reader_;
  ProgressC progress_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
