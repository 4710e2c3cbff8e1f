#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <area/area_commands.h>
#include <area/area_file.h>
#include <command_line/text.h>
#include <output/json_writer.h>
#include <output/output.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "List the corners of an area with their distances: four of a rectangle, none of a dome. A\n"
    "corner without a distance gets one from the others or, if none has one, the default. If the\n"
    "area is not valid, there is no list, and the exit code is 4.";

struct Options {
  std::string file;
  double defaultDistance = -1.0;
  bool isJson = false;
  bool isCsv = false;
};

std::optional<double> Distance(const SDI::ScanDefPointC& point) {
  return point.HasDistance() ? std::optional(point.GetDistance()) : std::nullopt;
}

void WriteJson(OutputC& out, const AreaFile& file, const std::vector<SDI::ScanDefPointC>& outline) {
  JsonWriterC line(out.GetBuffer());
  line.Field("name", std::string_view(file.name));
  line.Field("unit", UnitName(file.unit));
  line.BeginArray("points");
  for (const SDI::ScanDefPointC& point : outline) {
    line.BeginElement();
    line.Field("hz", FromRadians(point.GetHz(), file.unit));
    line.Field("v", FromRadians(point.GetV(), file.unit));
    line.Field("distance", Distance(point));
    line.End();
  }
  line.EndArray();
  line.EndLine();
}

void WriteCsv(OutputC& out, const AreaFile& file, const std::vector<SDI::ScanDefPointC>& outline) {
  out.Print("hz,v,distance\r\n");
  for (const SDI::ScanDefPointC& point : outline) {
    const auto distance = Distance(point);
    out.Print("{},{},{}\r\n", FromRadians(point.GetHz(), file.unit),
              FromRadians(point.GetV(), file.unit), distance ? fmt::format("{}", *distance) : "");
  }
}

void WriteText(OutputC& out, const AreaFile& file, const std::vector<SDI::ScanDefPointC>& outline) {
  const std::string_view unit = UnitName(file.unit);
  const auto angle = [&](double radians) {
    return AngleText(FromRadians(radians, file.unit), file.unit);
  };
  out.Print("{:>5}  {:>12}  {:>12}  {:>12}\n", "point", fmt::format("Hz [{}]", unit),
            fmt::format("V [{}]", unit), "distance [m]");
  std::size_t number = 0;
  for (const SDI::ScanDefPointC& point : outline) {
    const auto distance = Distance(point);
    out.Print("{:>5}  {:>12}  {:>12}  {:>12}\n", ++number, angle(point.GetHz()),
              angle(point.GetV()), distance ? fmt::format("{:.4f}", *distance) : "-");
  }
}

double ParseDistance(const std::string& text) {
  const auto distance = ToNumber<double>(text);
  if (!distance || !(*distance > 0) || !std::isfinite(*distance)) {
    throw ValueErrorC(text + " is not a distance above 0");
  }
  return *distance;
}

ExitCode Run(const Options& options) {
  const AreaFile file = LoadAreaFile(options.file);
  const ExitCode validity = WarnOfFaults(FindAreaFaults(file));
  if (validity != ExitCode::kDone) return validity;
  std::vector<SDI::ScanDefPointC> outline;
  file.area->GetOutline(outline, options.defaultDistance);
  OutputC out;
  if (options.isJson) {
    WriteJson(out, file, outline);
  } else if (options.isCsv) {
    WriteCsv(out, file, outline);
  } else {
    WriteText(out, file, outline);
  }
  out.Close();
  return ExitCode::kDone;
}

}  // namespace

Command AreaOutlineCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "outline";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata area outline facade.json --default-distance 10";
  command.arguments = {AreaArgument(options->file)};
  command.options = {
      {.names = {"--default-distance"},
       .value = "M",
       .description = "The distance in metres if no corner has one; none by default",
       .take =
           [options](const std::string& text) { options->defaultDistance = ParseDistance(text); }},
      {.names = {"--json"},
       .description = "One JSON object, angles in the unit of the file",
       .flag = &options->isJson,
       .excludes = {"--csv"}},
      {.names = {"--csv"},
       .description = "A CSV table, angles in the unit of the file",
       .flag = &options->isCsv,
       .excludes = {"--json"}}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
