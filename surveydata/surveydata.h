#ifndef SURVEYDATA_SURVEYDATA_H_
#define SURVEYDATA_SURVEYDATA_H_

/// \file
/// Every public header of the library.

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/gnss/gps_dops.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/object_model/base.h>
#include <surveydata/object_model/compare.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/fixed_string.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/object_model/version.h>
#include <surveydata/platform/vorlin_time.h>

#endif  // SURVEYDATA_SURVEYDATA_H_
