#ifndef SURVEYDATA_TOOLS_RECORD_DAMAGED_FRAMES_H_
#define SURVEYDATA_TOOLS_RECORD_DAMAGED_FRAMES_H_

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include <record/record_walk.h>

namespace Tool {

/// What looks like a measurement frame in a gap: its header stands there, but not its checksum.
struct DamagedFrame {
  std::uint64_t offset;
  std::uint64_t size;  ///< As its header has it.
  const char* reason;
  bool isInNextRecord = false;  ///< It ends in the next record: maybe no frame but chance bytes.
};

/// Looks for damaged frames in the gaps of a record file. Throws `ToolErrorC` where the file cannot
/// be read.
class DamagedFrameFinderC {
 public:
  explicit DamagedFrameFinderC(const std::string& file);

  /// Reports the frames whose headers stand in the gap that `walk` is at, in order.
  void Find(const SDI::GPSRecordEntry& gap, RecordWalkC& walk,
            const std::function<void(const DamagedFrame&)>& report);

 private:
  std::string name_;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_DAMAGED_FRAMES_H_
