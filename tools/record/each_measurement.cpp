#include <cstdint>

#include <fmt/format.h>

#include <command_line/message.h>
#include <record/each_measurement.h>

namespace Tool {

ExitCode ForEachMeasurement(RecordWalkC& walk, const RecordFilter& filter,
                            const std::function<void(const DecodedRecord&)>& visit) {
  std::uint64_t measurements = 0;
  std::uint64_t badFrames = 0;
  walk.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    // Chance bytes in a gap of a healthy file look like this one.
    if (header.damage != SDI::GPSRecordDamage::kRunsIntoNextRecord) ++badFrames;
  });
  RecordSieveC sieve(filter);
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (!entry.IsMeasurement()) continue;
    const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
    if (record.IsDone()) {
      if (!sieve.Takes(record)) continue;
      ++measurements;
      visit(record);
      continue;
    }
    ++badFrames;
    walk.HideProgress();
    Tell(fmt::format("the frame at {} is left out: its blocks do not fit", entry.offset));
  }
  walk.SetReportDamaged(nullptr);
  walk.HideProgress();
  if (badFrames > 0) {
    Tell(fmt::format("{} bad frame{} left out; surveydata record list shows {}", badFrames,
                     badFrames == 1 ? " is" : "s are", badFrames == 1 ? "it" : "them"));
  }
  if (measurements == 0) Tell(filter.NoneIn(walk.GetName()));
  return badFrames > 0 || measurements == 0 ? ExitCode::kFinding : ExitCode::kDone;
}

}  // namespace Tool
