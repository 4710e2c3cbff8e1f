#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_FINDINGS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_FINDINGS_H_

#include <cstdint>
#include <optional>
#include <vector>

#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {

/// One kind of fault: how often it occurs, and the offset of its first occurrence.
struct Finding {
  std::uint64_t count = 0;
  std::uint64_t first = 0;

  void Add(std::uint64_t offset) {
    if (count++ == 0) first = offset;
  }
  /// Adds the occurrences in a later part.
  void Add(const Finding& later) {
    if (count == 0) first = later.first;
    count += later.count;
  }
};

/// What is wrong with a record file, or with a stretch of it.
struct RecordFindings {
  std::uint64_t measurements = 0;  ///< Those that the filter selects.
  std::uint64_t others = 0;        ///< Records of other kinds.
  std::uint64_t gapBytes = 0;
  Finding gaps;
  Finding damagedHeaders;  ///< In gaps: the checksum is wrong, or the file ends before the frame.
  Finding overlappingHeaders;  ///< In gaps: overlaps the next record; may be random bytes.
  Finding badBlocks;           ///< Frames with a right checksum whose blocks do not fit.
  Finding timesBack;           ///< Measurements with a time A before that of the previous one.
  Finding repeated;            ///< Measurements with the same bytes as the previous one.
  std::optional<std::int64_t>
      firstTime;  ///< Time A in milliseconds of GPS time, if it is in range.
  std::optional<std::int64_t> lastTime;

  bool IsHealthy() const;
  /// Adds the findings of the stretch that follows.
  void Join(const RecordFindings& next);
  /// Adds the counts of another file.
  void AddCounts(const RecordFindings& other);

  // What is needed to join two stretches.
  bool beginsInGap = false;
  bool endsInGap = false;
  std::uint64_t firstTimeAt = 0;
  std::uint64_t firstFrameAt = 0;
  std::vector<std::uint8_t> firstFrame;
  std::vector<std::uint8_t> lastFrame;
};

RecordFindings FindFaults(RecordWalkC& walk, const RecordFilter& filter);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_FINDINGS_H_
