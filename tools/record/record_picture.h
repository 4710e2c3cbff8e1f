#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_PICTURE_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_PICTURE_H_

#include <string>

#include <record/satellite_series.h>

namespace Tool {

/// Dilutions of precision and satellites over time, as an SVG document. Requires at least one
/// record.
std::string DrawRecords(const SatelliteSeriesC& series, const std::string& title);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_PICTURE_H_
