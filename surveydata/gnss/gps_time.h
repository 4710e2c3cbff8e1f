#ifndef SURVEYDATA_GNSS_GPS_TIME_H_
#define SURVEYDATA_GNSS_GPS_TIME_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/platform/vorlin_time.h>

/// \file
/// Times of measurements as text, in GPS time and in UTC.

namespace SDI {

/// A time of week is at least 0 and less than this, in milliseconds.
inline constexpr std::int32_t kMillisecondsPerWeek = 7 * 24 * 3600 * 1000;

/// Characters of a time as text, "2020-02-06T18:14:35.000".
inline constexpr std::size_t kTimeTextSize = 23;

/// The source of the table of leap seconds.
inline constexpr const char* kLeapSecondSource = "IERS leap-seconds.list of 2026-07-06";
/// The first day, in UTC, for which the table may be wrong, according to its source. From then on
/// the last offset, 18 s, is used.
inline constexpr const char* kLeapSecondExpiry = "2027-06-28";

/// Writes `time`, a GPS week counted from 6 January 1980 and milliseconds of that week, as date and
/// time of day in ISO 8601. False, with `text` empty, if the time of week is out of range.
/// @{

/// In GPS time, which has no leap seconds.
SURVEYDATA_API bool FormatGPSTime(const Vorlin::TimeC& time, char (&text)[kTimeTextSize + 1]);
/// In UTC. A leap second is second 60 of its minute. From `kLeapSecondExpiry` on the result may be
/// some seconds late.
SURVEYDATA_API bool FormatUTC(const Vorlin::TimeC& time, char (&text)[kTimeTextSize + 1]);
/// @}

/// Whether `time` is at or after `kLeapSecondExpiry`, 00:00 UTC. False when the time of week is out
/// of range.
SURVEYDATA_API bool IsAfterLeapSecondExpiry(const Vorlin::TimeC& time);

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_TIME_H_
