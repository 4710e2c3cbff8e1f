#include <utility>

#include <fmt/format.h>

#include <surveydata/gnss/gps_time.h>

#include <output/gps_time.h>
#include <record/kept_records.h>

namespace Tool {

KeptRecordsC::KeptRecordsC(const RecordFile& file, SDI::GPSRecordStretch stretch,
                           const RecordFilter& filter,
                           std::function<void(std::uint64_t)> reportProgress)
    : file_(file),
      stretch_(stretch),
      filter_(filter),
      walk_(file.Open(), file, {.stretch = stretch}, std::move(reportProgress)),
      sieve_(filter) {
  walk_.SetReportDamaged([this](const SDI::GPSDamagedHeader& header) {
    if (header.damage != SDI::GPSRecordDamage::kRunsIntoNextRecord) ++counts_.badFrames;
  });
}

bool KeptRecordsC::Next() {
  SDI::GPSRecordEntry entry;
  while (walk_.Next(entry)) {
    // A pipe is read from its start, and beyond the stretch.
    if (entry.offset >= stretch_.end) return false;
    if (entry.offset >= stretch_.begin && Keeps(entry)) return true;
  }
  return false;
}

bool KeptRecordsC::Keeps(const SDI::GPSRecordEntry& entry) {
  if (entry.isGap) {
    ++gaps_;
    gapBytes_ += entry.size;
    return false;
  }
  isMeasurement_ = entry.IsMeasurement();
  if (!isMeasurement_) return keepsOthers_;
  const DecodedRecord record = Decode(entry.offset, walk_.GetBytes());
  if (!record.IsDone()) {
    ++counts_.badFrames;
    return false;
  }
  keepsOthers_ = sieve_.Takes(record);
  if (!keepsOthers_) return false;
  ++counts_.taken;
  const Vorlin::TimeC& time = record.measurement.GetTimeA();
  const bool isInRange = time.timeOfWeek >= 0 && time.timeOfWeek < SDI::kMillisecondsPerWeek;
  time_ = isInRange ? std::optional(GpsMilliseconds(time)) : std::nullopt;
  return true;
}

ExitCode KeptRecordsC::TellAbout(const std::string& prefix, PieceOutputC& output) const {
  if (gaps_ > 0) {
    output.Tell(fmt::format("{}left out: {} gap{} with {} byte{}", prefix, gaps_,
                            gaps_ == 1 ? "" : "s", gapBytes_, gapBytes_ == 1 ? "" : "s"));
  }
  return Tool::TellAbout(counts_, filter_, file_, prefix, output);
}

}  // namespace Tool
