#ifndef SURVEYDATA_SURVEYDATA_H_
#define SURVEYDATA_SURVEYDATA_H_

/// \file
/// Includes all public headers of the library.

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/geodetic/coordinate_quality.h>
#include <surveydata/geodetic/coordinate_reference_system.h>
#include <surveydata/geodetic/display_attributes.h>
#include <surveydata/geodetic/instrument_info_data.h>
#include <surveydata/geodetic/position.h>
#include <surveydata/geodetic/q_matrix.h>
#include <surveydata/geodetic/rectangle.h>
#include <surveydata/geodetic/undulation_memento.h>
#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/gnss/gps_dops.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_outcome.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>
#include <surveydata/gnss/gps_ref_station_data.h>
#include <surveydata/gnss/gps_time.h>
#include <surveydata/imaging/img_camera_info.h>
#include <surveydata/imaging/img_chip_window_info.h>
#include <surveydata/imaging/img_exterior_orientation.h>
#include <surveydata/imaging/img_interior_orientation.h>
#include <surveydata/object_model/base.h>
#include <surveydata/object_model/compare.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/fixed_string.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/object_model/version.h>
#include <surveydata/platform/vorlin_time.h>
#include <surveydata/scanning/area_explanation.h>
#include <surveydata/scanning/area_faults.h>
#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_area.h>
#include <surveydata/scanning/scan_def_point.h>
#include <surveydata/scanning/scan_definition.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>
#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/sphere_area.h>
#include <surveydata/total_station/tps_calibration_data.h>
#include <surveydata/total_station/tps_correction_data.h>
#include <surveydata/total_station/tps_meas_data.h>
#include <surveydata/total_station/tps_setup_data.h>

#endif  // SURVEYDATA_SURVEYDATA_H_
