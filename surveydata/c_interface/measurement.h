#ifndef SURVEYDATA_C_INTERFACE_MEASUREMENT_H_
#define SURVEYDATA_C_INTERFACE_MEASUREMENT_H_

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/gps_record_outcome.h>

/// \file
/// Internal: converts measurements to structs.

namespace SDI::CInterface {

/// Fills `to` with what was decoded into a fresh measurement.
void Fill(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info, GPSRecordBlock block,
          surveydata_measurement& to);

surveydata_status StatusOf(GPSRecordOutcome outcome);

}  // namespace SDI::CInterface

#endif  // SURVEYDATA_C_INTERFACE_MEASUREMENT_H_
