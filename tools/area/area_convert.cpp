#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_commands.h>
#include <area/area_file.h>
#include <command_line/common_options.h>
#include <output/output.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Write an area file with its angles in another unit. Everything else stays the same, and\n"
    "the area need not be valid. Degrees and gon with at most 10 decimals are restored exactly\n"
    "when they are converted back; radians may change in their last digits.";

struct Options {
  std::string file;
  std::optional<AngleUnit> unit;
  std::string output;
};

// The angle in the unit with the fewest digits that give the same angle, except for rounding.
double ToUnit(double radians, AngleUnit unit) {
  const double rounded = FromRadians(radians, unit);
  const double slack = 2 * std::numeric_limits<double>::epsilon() * std::fabs(radians);
  if (std::fabs(ToRadians(rounded, unit) - radians) <= slack) return rounded;
  const double exact = radians / GMAT::PI * HalfTurn(unit);
  if (std::isfinite(exact)) return exact;
  throw ToolErrorC(ExitCode::kCannotBeQueried,
                   fmt::format("an angle is too large for the unit {}", UnitName(unit)));
}

// The members of the file, one in each line.
class AreaWriterC {
 public:
  AreaWriterC(const AreaFile& file, AngleUnit unit, OutputC& out)
      : file_(file), area_(*file.area), unit_(unit), out_(out) {}

  void Write() {
    out_.Print("{{\n  \"kind\": \"{}\",\n  \"unit\": \"{}\"", KindName(area_), UnitName(unit_));
    if (file_.isNamed) Member("name", JsonText(file_.name));
    Member("hzStep", ToUnit(area_.GetHzStep(), unit_));
    Member("vStep", ToUnit(area_.GetVStep(), unit_));
    Member("limitLow", area_.GetLimitLow(), -1.0);
    Member("limitHigh", area_.GetLimitHigh(), -1.0);
    Member("settingA", area_.GetSettingA(), 0U);
    Member("settingB", area_.GetSettingB(), 4U);
    Member("settingC", area_.GetSettingC(), 0U);
    Member("settingD", area_.GetSettingD(), 0.0);
    Member("settingE", area_.GetSettingE(), 1U);
    if (area_.GetType() != SDI::kDomeArea) WritePoints();
    out_.Print("\n}}\n");
  }

 private:
  template <class Value>
  void Member(std::string_view key, const Value& value) {
    out_.Print(",\n  \"{}\": {}", key, value);
  }
  // One that has a default.
  template <class Value, class Default>
  void Member(std::string_view key, const Value& value, const Default& without) {
    if (value != static_cast<Value>(without)) Member(key, value);
  }

  void WritePoints() {
    std::vector<SDI::ScanDefPointC> points;
    area_.GetPoints(points);
    out_.Print(",\n  \"points\": [");
    std::string_view before = "\n";
    for (const SDI::ScanDefPointC& point : points) {
      out_.Print("{}    [{}, {}", before, ToUnit(point.GetHz(), unit_),
                 ToUnit(point.GetV(), unit_));
      if (point.GetDistance() != kNoDistance) out_.Print(", {}", point.GetDistance());
      out_.Print("]");
      before = ",\n";
    }
    out_.Print("{}]", points.empty() ? "" : "\n  ");
  }

  static constexpr double kNoDistance = -1.0;  // of a point whose file gives none

  const AreaFile& file_;
  const SDI::ScanAreaC& area_;
  AngleUnit unit_;
  OutputC& out_;
};

ExitCode Run(const Options& options) {
  const AreaFile file = LoadAreaFile(options.file);
  OutputC out(options.output, {&options.file, 1});
  AreaWriterC(file, *options.unit, out).Write();
  out.Close();
  return ExitCode::kDone;
}

}  // namespace

Command AreaConvertCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "convert";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata area convert facade.json --unit deg -o facade_deg.json";
  command.arguments = {AreaArgument(options->file)};
  command.options = {
      {.names = {"--unit"},
       .value = "rad|deg|gon",
       .description = "The unit of the new file",
       .take =
           [options](const std::string& text) {
             options->unit = FindUnit(text);
             if (!options->unit) throw ValueErrorC("must be rad, deg or gon");
           },
       .isRequired = true,
       .words = {"rad", "deg", "gon"}},
      OutputOption(options->output, "The file to write, - for standard output, the default",
                   "OUT.json")};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
