#ifndef SURVEYDATA_GNSS_RECORD_COLUMNS_H_
#define SURVEYDATA_GNSS_RECORD_COLUMNS_H_

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

void Ask(const GPSColumn& column, const RecordView& record, GPSColumnValueC& value);

}  // namespace SDI::RecordColumns

#endif  // SURVEYDATA_GNSS_RECORD_COLUMNS_H_
