#ifndef SURVEYDATA_GNSS_RECORD_COLUMNS_H_
#define SURVEYDATA_GNSS_RECORD_COLUMNS_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_record_file_info.h>

/// \file
/// Internal: the columns of a record that is not a `GPSRecordC`.

namespace SDI::RecordColumns {

/// A record whose columns are read.
struct RecordView {
  const GPSMeasDataImplC* measurement = nullptr;
  const GPSRecordFileInfo* info = nullptr;
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
};

/// Prepares a measurement for the next frame.
struct Renewal {
  /// Does what `GPSMeasDataImplC::Reset` does, except that the texts keep their units after the
  /// terminator and the list its entries after the count. No column depends on them, and
  /// clearing them would take longer than the rest.
  static void Renew(GPSMeasDataImplC& measurement);
};

/// Whether the values are texts or lists, whose sizes differ.
constexpr bool IsLong(const GPSColumn& column) { return column.largest != 0; }

/// The bytes that the values of `rows` rows take; 0 for texts and lists.
constexpr std::size_t BytesOfValues(GPSColumnType type, std::size_t rows) {
  switch (type) {
    using enum GPSColumnType;
    case kBool:
      return (rows + 7) / 8;
    case kUInt8:
      return rows;
    case kUInt16:
      return rows * sizeof(std::uint16_t);
    case kUInt32:
    case kInt32:
    case kFloat32:
      return rows * sizeof(std::uint32_t);
    case kUInt64:
    case kFloat64:
      return rows * sizeof(std::uint64_t);
    case kText:
    case kUInt16List:
      break;
  }
  return 0;
}

void Ask(const GPSColumn& column, const RecordView& record, GPSColumnValueC& value);

}  // namespace SDI::RecordColumns

#endif  // SURVEYDATA_GNSS_RECORD_COLUMNS_H_
