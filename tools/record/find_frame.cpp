#include <algorithm>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include <surveydata/gnss/record_frame.h>

#include <command_line/exit_code.h>
#include <platform/input_file.h>
#include <record/find_frame.h>
#include <record/record_input.h>

namespace Tool {
namespace {

// A record that begins before this stretch also ends before the offset.
SDI::GPSRecordStretch StretchAround(std::uint64_t offset) {
  constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
  return {offset - std::min<std::uint64_t>(offset, SDI::RecordFrame::kLongestRecord),
          offset + (offset < kLast ? 1 : 0)};
}

// `reader` reads the stretch around the offset.
std::vector<std::uint8_t> Find(SDI::GPSRecordReaderC& reader, const FrameOffset& given) {
  const std::uint64_t offset = given.value;
  std::string reason = "the file ends before it";
  const char* damage = nullptr;
  reader.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    if (header.offset == offset) damage = TextOf(header.damage);
  });
  SDI::GPSRecordEntry entry;
  while (reader.NextEntry(entry)) {
    if (entry.offset + entry.size <= offset) continue;
    if (entry.isGap && damage != nullptr) {
      reason = fmt::format("found a bad frame: {}", damage);
    } else if (entry.isGap) {
      reason = "found no record";
    } else if (entry.offset != offset) {
      reason = fmt::format("it is inside the record at {}", entry.offset);
    } else if (!entry.IsMeasurement()) {
      reason = fmt::format("found a record of type {}", entry.type);
    } else {
      return {reader.GetBytes().begin(), reader.GetBytes().end()};
    }
    break;
  }
  if (reader.GetState() != SDI::GPSReaderState::kOpen) return {};
  throw ToolErrorC(ExitCode::kFinding,
                   fmt::format("no valid measurement frame at offset {}: {}", given.text, reason));
}

}  // namespace

std::vector<std::uint8_t> FindFrame(const std::string& file, const FrameOffset& offset) {
  InputFileC input(file);
  SDI::GPSRecordReaderC reader = ReadRecords(input, StretchAround(offset.value));
  std::vector<std::uint8_t> frame = Find(reader, offset);
  if (reader.GetState() != SDI::GPSReaderState::kOpen) input.Fail();
  return frame;
}

std::vector<std::uint8_t> FindFrame(SDI::GPSRecordReaderC::ReadAt readAt, std::uint64_t size,
                                    const FrameOffset& offset) {
  SDI::GPSRecordReaderC reader(std::move(readAt), size, StretchAround(offset.value));
  return Find(reader, offset);
}

}  // namespace Tool
