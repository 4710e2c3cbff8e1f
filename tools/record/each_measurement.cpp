#include <cstdint>
#include <optional>

#include <fmt/format.h>

#include <command_line/message.h>
#include <record/damaged_frames.h>
#include <record/each_measurement.h>

namespace Tool {

ExitCode ForEachMeasurement(RecordWalkC& walk,
                            const std::function<void(const DecodedRecord&)>& visit) {
  ExitCode result = ExitCode::kDone;
  std::uint64_t badFrames = 0;
  std::uint64_t unreadGapBytes = 0;
  std::optional<DamagedFrameFinderC> finder;
  const auto countBad = [&](const DamagedFrame& frame) {
    ++badFrames;
    if (!frame.isInNextRecord) result = ExitCode::kFinding;
  };
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (entry.isGap && walk.GetFileSize() == 0) {
      unreadGapBytes += entry.size;
    } else if (entry.isGap) {
      if (!finder) finder.emplace(walk.GetFile());
      finder->Find(entry, walk, countBad);
    } else if (entry.IsMeasurement()) {
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
  }
  walk.HideProgress();
  if (badFrames > 0) {
    Tell(fmt::format(
        "{} bad frame{} could not be read and {} left out; surveydata record list {} shows {}",
        badFrames, badFrames == 1 ? "" : "s", badFrames == 1 ? "is" : "are", walk.GetFile(),
        badFrames == 1 ? "it" : "them"));
  }
  if (unreadGapBytes > 0) {
    Tell(
        fmt::format("{} byte{} between the records were not searched for bad frames: {} is no file "
                    "that can be read twice",
                    unreadGapBytes, unreadGapBytes == 1 ? "" : "s", walk.GetFile()));
  }
  return result;
}

}  // namespace Tool
