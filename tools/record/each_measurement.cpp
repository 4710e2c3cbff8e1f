#include <cstdint>

#include <fmt/format.h>

#include <command_line/message.h>
#include <record/each_measurement.h>

namespace Tool {

ExitCode ForEachMeasurement(RecordWalkC& walk,
                            const std::function<void(const DecodedRecord&)>& visit) {
  ExitCode result = ExitCode::kDone;
  std::uint64_t badFrames = 0;
  walk.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    ++badFrames;
    // Chance bytes look like a frame that runs into the next record.
    if (header.damage != SDI::GPSRecordDamage::kRunsIntoNextRecord) result = ExitCode::kFinding;
  });
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (!entry.IsMeasurement()) continue;
    const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
    if (record.IsDone()) {
      visit(record);
      continue;
    }
    ++badFrames;
    result = ExitCode::kFinding;
    walk.HideProgress();
    Tell(fmt::format("the frame at {} is left out: its blocks do not fit", entry.offset));
  }
  walk.SetReportDamaged(nullptr);
  walk.HideProgress();
  if (badFrames > 0) {
    Tell(fmt::format(
        "{} bad frame{} could not be read and {} left out; surveydata record list {} shows {}",
        badFrames, badFrames == 1 ? "" : "s", badFrames == 1 ? "is" : "are", walk.GetFile(),
        badFrames == 1 ? "it" : "them"));
  }
  return result;
}

}  // namespace Tool
