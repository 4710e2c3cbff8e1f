#ifndef SURVEYDATA_TOOLS_RECORD_DECODED_RECORD_H_
#define SURVEYDATA_TOOLS_RECORD_DECODED_RECORD_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file.h>

namespace Tool {

/// A measurement frame and the result of reading it.
struct DecodedRecord {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  std::uint32_t result = 0;  ///< As returned by `GPSRecordFileC::ReadGPSMeasData`.
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;

  bool IsDone() const { return result == SDI::GPSRecordFileC::kDone; }

  /// The UTF-8 bytes of the name, up to its terminator.
  std::string_view NameBytes() const;
  std::u16string Name() const;
};

/// Reads a frame in memory.
DecodedRecord Decode(std::uint64_t offset, std::span<const std::uint8_t> frame);
/// The same for a frame whose checksum is known to be correct. `record` may have been used before.
void DecodeChecked(std::uint64_t offset, std::span<const std::uint8_t> frame,
                   DecodedRecord& record);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_DECODED_RECORD_H_
