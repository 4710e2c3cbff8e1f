#ifndef SURVEYDATA_TOOLS_OUTPUT_GPS_TIME_H_
#define SURVEYDATA_TOOLS_OUTPUT_GPS_TIME_H_

#include <cstdint>
#include <string>

#include <surveydata/platform/vorlin_time.h>

namespace Tool {

/// Milliseconds from the start of GPS time, 6 January 1980. GPS time has no leap seconds.
std::int64_t GpsMilliseconds(const Vorlin::TimeC& time);

/// A date and time of day of the GPS time scale, e.g. "2020-02-06T18:14:35.000".
std::string GpsDateTime(std::int64_t milliseconds);

/// The date alone, "2020-02-06".
std::string GpsDate(std::int64_t milliseconds);

/// The time of day alone, "18:14:35".
std::string GpsTimeOfDay(std::int64_t milliseconds);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_GPS_TIME_H_
