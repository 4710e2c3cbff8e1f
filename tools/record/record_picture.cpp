#include <cmath>
#include <string>

#include <fmt/format.h>

#include <output/chart.h>
#include <output/gps_time.h>
#include <record/record_picture.h>

namespace Tool {
namespace {

std::int64_t ToMilliseconds(double seconds) { return std::llround(seconds * 1000); }

std::string Moment(double seconds) {
  const std::int64_t milliseconds = ToMilliseconds(seconds);
  return GpsDate(milliseconds) + ' ' + GpsTimeOfDay(milliseconds);
}

}  // namespace

std::string DrawRecords(const SatelliteSeriesC& series, const std::string& title) {
  const double first = series.GetFirstTime();
  const double last = series.GetLastTime();
  // Colours that are distinct for any colour vision, and that also differ in lightness.
  return DrawChart(
      {.title = title,
       .subtitle = fmt::format("{} measurements, {} to {}, GPS time", series.GetRecordCount(),
                               Moment(first), Moment(last)),
       .timeLabel =
           fmt::format("GPS time (no leap seconds), from {}", GpsDate(ToMilliseconds(first))),
       .firstTime = first,
       .lastTime = last,
       .panels = {{"dilution of precision (no unit)",
                   false,
                   {{"PDOP", "#222222", 1.8, series.GetRuns(SatelliteSeriesC::kPDOP)},
                    {"VDOP", "#d55e00", 1.6, series.GetRuns(SatelliteSeriesC::kVDOP)},
                    {"HDOP", "#56b4e9", 1.6, series.GetRuns(SatelliteSeriesC::kHDOP)}}},
                  {"satellites (number)",
                   true,
                   {{"in view", "#e69f00", 1.6, series.GetRuns(SatelliteSeriesC::kInView)},
                    {"used", "#0072b2", 1.6, series.GetRuns(SatelliteSeriesC::kUsed)}}}}});
}

}  // namespace Tool
