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

void Ask(const GPSColumn& column, const RecordView& record, GPSColumnValueC& value);

}  // namespace SDI::RecordColumns

#endif  // SURVEYDATA_GNSS_RECORD_COLUMNS_H_
