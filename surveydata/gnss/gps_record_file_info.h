#ifndef SURVEYDATA_GNSS_GPS_RECORD_FILE_INFO_H_
#define SURVEYDATA_GNSS_GPS_RECORD_FILE_INFO_H_

#include <cstddef>
#include <cstdint>

namespace SDI {

/// Where a frame is, and what it carries besides its measurement. The file is
/// `path` + "." + `extension`. Texts end at their terminator or at the end of their array.
struct GPSRecordFileInfo {
  static constexpr std::uint32_t kKindZero = 0x1;     ///< Bit of `flags`: the kind byte was 0.
  static constexpr std::uint32_t kKindNonZero = 0x2;  ///< Bit of `flags`: it was not 0.

  std::int32_t number = 0;   ///< Read and written: the number that is stored with the name.
  char name[49] = {};        ///< Read and written: UTF-8.
  char extension[7] = {};    ///< Given by the caller, without the dot.
  std::uint32_t offset = 0;  ///< Given by the caller: where the frame begins, in bytes.
  char path[240] = {};       ///< Given by the caller, without the extension.
  std::uint32_t flags = 0;   ///< Read (bits are only ever added) and written.
};

static_assert(sizeof(GPSRecordFileInfo) == 308 && offsetof(GPSRecordFileInfo, offset) == 60);

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_FILE_INFO_H_
