#ifndef SURVEYDATA_TOOLS_RECORD_GPS_MOMENT_H_
#define SURVEYDATA_TOOLS_RECORD_GPS_MOMENT_H_

#include <cstdint>
#include <string_view>

namespace Tool {

/// Reads a date, or a date and time of day, in ISO 8601: "2020-02-06", "2020-02-06T18:14",
/// "2020-02-06T18:14:35.25". It is GPS time, or UTC with a Z at the end, which may be a leap
/// second.
///
/// \return the first possible time of a measurement that is not earlier, in milliseconds from the
///         start of GPS time: 0 for texts before 1980-01-06, the end of the last GPS week for those
///         after it.
/// \throw ValueErrorC for any other text
std::int64_t ParseMoment(std::string_view text);

/// Warns that times in UTC are not certain after the expiry of the leap second table.
void TellAboutLeapSeconds();

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_GPS_MOMENT_H_
