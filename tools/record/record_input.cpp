#include <span>

#include <record/record_input.h>

namespace Tool {

SDI::GPSRecordReaderC ReadRecords(InputFileC& input, SDI::GPSRecordStretch stretch) {
  if (!input.CanSeek()) return SDI::GPSRecordReaderC(input.GetStream());
  const auto readAt = [&input](std::uint64_t offset, std::span<std::uint8_t> to) {
    return input.ReadAt(offset, to);
  };
  return SDI::GPSRecordReaderC(readAt, input.GetSize(), stretch);
}

}  // namespace Tool
