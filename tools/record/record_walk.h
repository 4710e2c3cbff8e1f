#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <utility>

#include <surveydata/gnss/gps_record_reader.h>

#include <platform/input_file.h>
#include <record/record_files.h>

namespace Tool {

/// Walks a piece of a record file, a pipe or standard input. Throws `FileErrorC` if it cannot be
/// read, or if the size of a file that is read in stretches has changed.
class RecordWalkC {
 public:
  /// `input` is that of `file`; walks in several threads may share it. Calls `reportProgress` about
  /// every mebibyte, with the bytes since the last call.
  RecordWalkC(std::shared_ptr<InputFileC> input, const RecordFile& file, const RecordPiece& piece,
              std::function<void(std::uint64_t)> reportProgress);

  const RecordPiece& GetPiece() const { return piece_; }
  /// As in `GPSRecordReaderC`: called before the gap, or the record that ends it, is returned.
  void SetReportDamaged(SDI::GPSRecordReaderC::ReportDamaged report) {
    reader_.SetReportDamaged(std::move(report));
  }
  bool Next(SDI::GPSRecordEntry& entry);
  /// The measurement that `Next` returned last, decoded when this is called.
  const SDI::GPSRecordC& GetRecord() const { return reader_.GetRecord(); }
  /// The bytes of the record that `Next` returned last.
  std::span<const std::uint8_t> GetBytes() const { return reader_.GetBytes(); }

 private:
  RecordPiece piece_;
  std::shared_ptr<InputFileC> input_;
  SDI::GPSRecordReaderC reader_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_WALK_H_
