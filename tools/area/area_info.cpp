#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_commands.h>
#include <area/area_file.h>
#include <area/area_measure.h>
#include <command_line/text.h>
#include <output/json_writer.h>
#include <output/output.h>

namespace Tool {
namespace {

// Larger counts are reported as this one.
constexpr double kMostDirections = 1e18;

constexpr const char* kDescription =
    "Report whether an area is valid, or why not; its bounds, whether it encloses the zenith,\n"
    "its solid angle, and the number of directions at its steps. Points and edges are counted\n"
    "from 1; edge k begins at point k. If the area is not valid, the exit code is 1.";

struct Options {
  std::string file;
  bool isJson = false;
};

// The report on an area. It has bounds if the points make an area, and the number of directions if
// the steps are valid, too.
struct AreaReport {
  AreaFile file;
  std::vector<AreaFault> faults;
  std::optional<AreaBounds> bounds;
  std::optional<SolidAngle> solidAngle;
  std::optional<DirectionCount> directions;

  double InUnit(double radians) const { return FromRadians(radians, file.unit); }
  // The far end of Hz, in [0, full turn].
  double HzEnd() const {
    double hz = bounds->hzMax;
    GMAT::WrapIntoRange(hz, 0.0, GMAT::TWO_PI);
    return hz;
  }
};

AreaReport Measure(const std::string& path) {
  AreaReport report{LoadAreaFile(path), {}, {}, {}, {}};
  report.faults = FindAreaFaults(report.file);
  report.bounds = MeasureBounds(report.file);
  if (report.bounds) report.solidAngle = MeasureSolidAngle(report.file, *report.bounds);
  if (report.faults.empty()) report.directions = CountDirections(report.file, *report.bounds);
  return report;
}

void WriteJson(OutputC& out, const AreaReport& report) {
  const SDI::ScanAreaC& area = *report.file.area;
  JsonWriterC line(out.GetBuffer());
  line.Field("name", std::string_view(report.file.name));
  line.Field("kind", KindName(area));
  line.Field("unit", UnitName(report.file.unit));
  line.Field("points", report.file.Sphere().GetPoints().size());
  line.Field("hzStep", report.InUnit(area.GetHzStep()));
  line.Field("vStep", report.InUnit(area.GetVStep()));
  line.Field("valid", report.faults.empty());
  line.BeginArray("faults");
  for (const AreaFault& fault : report.faults) {
    line.BeginElement();
    line.Field("rule", fault.rule);
    line.Field("points", fault.points);
    line.Field("edges", fault.edges);
    line.Field("text", std::string_view(fault.text));
    line.End();
  }
  line.EndArray();
  line.Begin("bounds", report.bounds.has_value());
  if (report.bounds) {
    line.Field("hzMin", report.InUnit(report.bounds->hzMin));
    line.Field("hzMax", report.InUnit(report.HzEnd()));
    line.Field("hzWidth", report.InUnit(report.bounds->hzMax - report.bounds->hzMin));
    line.Field("vMin", report.InUnit(report.bounds->vMin));
    line.Field("vMax", report.InUnit(report.bounds->vMax));
    line.Field("enclosesZenith", report.bounds->enclosesZenith);
  }
  line.End();
  line.Begin("solidAngle", report.solidAngle.has_value());
  if (report.solidAngle) {
    line.Field("steradians", report.solidAngle->steradians);
    line.Field("accuracy", report.solidAngle->accuracy);
    line.Field("band", report.solidAngle->band);
  }
  line.End();
  line.Begin("directions", report.directions.has_value());
  if (report.directions) {
    line.Field("count",
               static_cast<std::uint64_t>(std::min(report.directions->count, kMostDirections)));
    line.Field("exact", report.directions->isExact);
  }
  line.End();
  line.EndLine();
}

void WriteText(OutputC& out, const AreaReport& report) {
  const SDI::ScanAreaC& area = *report.file.area;
  const std::string_view unit = UnitName(report.file.unit);
  const auto line = [&](std::string_view key, const std::string& value) {
    out.Print("{:<13} {}\n", key, value);
  };
  const auto angle = [&](double inUnit) { return AngleText(inUnit, report.file.unit); };
  const auto radians = [&](double value) { return angle(report.InUnit(value)); };

  line("name", ToVisible(report.file.name));
  if (area.GetType() == SDI::kDomeArea) {
    line("kind", "dome");
  } else {
    line("kind",
         fmt::format("{}, {} points", KindName(area), report.file.Sphere().GetPoints().size()));
  }
  const auto step = [&](double value) { return StepText(report.InUnit(value), report.file.unit); };
  line("steps",
       fmt::format("Hz {} {}, V {} {}", step(area.GetHzStep()), unit, step(area.GetVStep()), unit));
  line("valid", report.faults.empty() ? "yes" : "no");
  for (const AreaFault& fault : report.faults) line("  because", fault.text);
  if (!report.bounds) return;
  line("bounds", fmt::format("Hz {} to {} {} ({} wide)", radians(report.bounds->hzMin),
                             angle(report.InUnit(report.HzEnd())), unit,
                             radians(report.bounds->hzMax - report.bounds->hzMin)));
  line("", fmt::format("V  {} to {} {}", radians(report.bounds->vMin), radians(report.bounds->vMax),
                       unit));
  line("zenith", report.bounds->enclosesZenith ? "enclosed" : "not enclosed");
  const SolidAngle& solidAngle = *report.solidAngle;
  const double share = 50 * solidAngle.steradians / GMAT::TWO_PI;
  line("solid angle",
       fmt::format("{:.9f} sr, {:.3f} % of the sphere{}", solidAngle.steradians, share,
                   solidAngle.band == 0 ? std::string()
                                        : fmt::format("; the boundary band adds at most {:.1g} sr",
                                                      solidAngle.band)));
  if (!report.directions) return;
  const DirectionCount& directions = *report.directions;
  line("directions", directions.count < kMostDirections
                         ? fmt::format("{}{:.0f} at these steps",
                                       directions.isExact ? "" : "about ", directions.count)
                         : fmt::format("{:.0e} or more at these steps", kMostDirections));
}

ExitCode Run(const Options& options) {
  const AreaReport report = Measure(options.file);
  OutputC out;
  if (options.isJson) {
    WriteJson(out, report);
  } else {
    WriteText(out, report);
  }
  out.Close();
  return report.faults.empty() ? ExitCode::kDone : ExitCode::kFinding;
}

}  // namespace

Command AreaInfoCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "info";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata area info facade.json";
  command.arguments = {AreaArgument(options->file)};
  command.options = {{.names = {"--json"},
                      .description = "One JSON object, angles in the unit of the file",
                      .flag = &options->isJson}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
