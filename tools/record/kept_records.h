#ifndef SURVEYDATA_TOOLS_RECORD_KEPT_RECORDS_H_
#define SURVEYDATA_TOOLS_RECORD_KEPT_RECORDS_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include <record/each_measurement.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {

/// Reads the records of a file that are kept in a copy: the measurements that a filter selects, and
/// records of other types together with the measurement before them. Those before the first
/// measurement, which describe the file, are always kept. Gaps and bad frames are dropped.
class KeptRecordsC {
 public:
  KeptRecordsC(const RecordFile& file, SDI::GPSRecordStretch stretch, const RecordFilter& filter,
               std::function<void(std::uint64_t)> reportProgress);

  /// Advances to the next kept record; false at the end.
  bool Next();
  std::span<const std::uint8_t> GetBytes() const { return walk_.GetBytes(); }
  bool IsMeasurement() const { return isMeasurement_; }
  /// Time A of a measurement in milliseconds of GPS time, if it is in range.
  std::optional<std::int64_t> GetTime() const { return time_; }

  /// Reports what was left out of the file. Returns the same exit code as the function of this name
  /// for measurements.
  ExitCode TellAbout(const std::string& prefix, PieceOutputC& output) const;

 private:
  bool Keeps(const SDI::GPSRecordEntry& entry);

  const RecordFile& file_;
  SDI::GPSRecordStretch stretch_;
  const RecordFilter& filter_;
  RecordWalkC walk_;
  RecordSieveC sieve_;
  MeasurementCounts counts_;
  std::uint64_t gaps_ = 0;
  std::uint64_t gapBytes_ = 0;
  bool keepsOthers_ = true;
  bool isMeasurement_ = false;
  std::optional<std::int64_t> time_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_KEPT_RECORDS_H_
