#include <cmath>
#include <memory>
#include <string>

#include <fmt/format.h>

#include <command_line/common_options.h>
#include <output/chart.h>
#include <output/gps_time.h>
#include <output/output.h>
#include <platform/input_file.h>
#include <platform/platform.h>
#include <record/decoded_record.h>
#include <record/each_measurement.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_walk.h>
#include <record/satellite_series.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Draw dilutions of precision and satellites over time as an SVG picture. Lines are broken\n"
    "where time steps by more than three times the median step. Bad frames are left out, counted\n"
    "on standard error, and give the exit code 1, as in export.";

struct Options {
  std::string file;
  PictureOutput output;
  RecordFilter filter;
};

std::int64_t ToMilliseconds(double seconds) { return std::llround(seconds * 1000); }

std::string Moment(double seconds) {
  const std::int64_t milliseconds = ToMilliseconds(seconds);
  return GpsDate(milliseconds) + ' ' + GpsTimeOfDay(milliseconds);
}

Chart ToChart(const SatelliteSeriesC& series, const std::string& file) {
  const double first = series.GetFirstTime();
  const double last = series.GetLastTime();
  // Colours that people with any colour vision tell apart, in shades that differ as well.
  return {.title = IsStandardInput(file) ? "standard input" : ToPath(file).filename().string(),
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
                       {"used", "#0072b2", 1.6, series.GetRuns(SatelliteSeriesC::kUsed)}}}}};
}

ExitCode Run(const Options& options) {
  options.output.Require(options.file);
  SatelliteSeriesC series;
  RecordWalkC walk(options.file);
  const ExitCode result = ForEachMeasurement(
      walk, options.filter, [&](const DecodedRecord& record) { series.Add(record); });
  if (series.GetRecordCount() == 0) return result;
  const std::string svg = DrawChart(ToChart(series, options.file));
  OutputC out(options.output.file, options.file);
  out.GetBuffer().append(svg.data(), svg.data() + svg.size());
  out.Close();
  return result;
}

}  // namespace

Command RecordPlotCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "plot";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata record plot valley_drive.rec -o valley_drive.svg";
  command.arguments = {FileArgument(options->file)};
  command.options = {PictureOption(options->output)};
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
