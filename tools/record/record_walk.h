#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include <surveydata/gnss/gps_record_reader.h>

#include <command_line/progress.h>
#include <platform/input_file.h>

namespace Tool {

/// Walks a record file, a pipe or standard input with a progress bar. Throws `FileErrorC` where it
/// cannot be read.
class RecordWalkC {
 public:
  /// `hasRows`: as in `ProgressC`.
  explicit RecordWalkC(const std::string& file, bool hasRows = false);

  /// For messages.
  const std::string& GetName() const { return input_.GetName(); }
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
  InputFileC input_;
  SDI::GPSRecordReaderC reader_;
  ProgressC progress_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
