#include <fmt/format.h>

#include <record/each_measurement.h>

namespace Tool {

void MeasurementCounts::Add(const MeasurementCounts& more) {
  taken += more.taken;
  badFrames += more.badFrames;
}

MeasurementCounts ForEachMeasurement(RecordWalkC& walk, const RecordFilter& filter,
                                     PieceOutputC& output, const std::string& prefix,
                                     const std::function<void(const DecodedRecord&)>& visit) {
  MeasurementCounts counts;
  walk.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    // Random bytes in a gap of an undamaged file can look like this.
    if (header.damage != SDI::GPSRecordDamage::kRunsIntoNextRecord) ++counts.badFrames;
  });
  RecordSieveC sieve(filter);
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (!entry.IsMeasurement()) continue;
    const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
    if (record.IsDone()) {
      if (!sieve.Takes(record)) continue;
      ++counts.taken;
      visit(record);
      continue;
    }
    ++counts.badFrames;
    output.TellOneOfMany(
        fmt::format("{}the frame at {} is left out: its blocks do not fit", prefix, entry.offset));
  }
  walk.SetReportDamaged(nullptr);
  return counts;
}

ExitCode TellAbout(const MeasurementCounts& counts, const RecordFilter& filter,
                   const RecordFile& file, const std::string& prefix, PieceOutputC& output) {
  if (counts.badFrames > 0) {
    output.Tell(fmt::format("{}{} bad frame{} left out; surveydata record list shows {}", prefix,
                            counts.badFrames, counts.badFrames == 1 ? " is" : "s are",
                            counts.badFrames == 1 ? "it" : "them"));
  }
  if (counts.taken == 0) output.Tell(filter.NoneIn(file.Title()));
  return counts.badFrames > 0 || counts.taken == 0 ? ExitCode::kFinding : ExitCode::kDone;
}

}  // namespace Tool
