#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <surveydata/scanning/prepared_area.h>

#include <area/area_commands.h>
#include <area/area_drawing.h>
#include <area/area_file.h>
#include <area/area_measure.h>
#include <area/area_picture.h>
#include <area/area_probes.h>
#include <area/direction_reader.h>
#include <command_line/common_options.h>
#include <output/output.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Draw an area as an SVG picture: in the plane of Hz and V, and as seen from the zenith, with\n"
    "its bounds and the lowest usable direction. The inside, as the library defines it, is\n"
    "filled. The picture has at most 2 MB: many directions and large rings are drawn at its\n"
    "resolution, which the picture states. If the area is not valid, it is drawn with its\n"
    "faults, and the exit code is 4.";

struct Options {
  std::string file;
  PictureOutput output;
  std::vector<std::string> probes;
  std::string csv;
  DirectionFormat format;
  std::string window;
};

// "HZ,V,HZ,V" as two opposite corners.
AngleWindow ParseWindow(const std::string& text, AngleUnit unit) {
  std::size_t comma = text.find(',');
  if (comma != std::string::npos) comma = text.find(',', comma + 1);
  const auto first = ParseDirection(std::string_view(text).substr(0, comma));
  if (comma == std::string::npos) comma = text.size();
  const auto last = ParseDirection(std::string_view(text).substr(std::min(comma + 1, text.size())));
  if (!first || !last || !(first->hz < last->hz) || !(first->v < last->v) ||
      last->hz - first->hz > 4 * HalfTurn(unit)) {
    throw ToolErrorC(
        ExitCode::kUsage,
        fmt::format("{} is not a window HZ,V,HZ,V: the second corner must have the larger Hz "
                    "and V, and be at most two turns away",
                    text));
  }
  return {ToRadians(first->hz, unit), ToRadians(last->hz, unit), ToRadians(first->v, unit),
          ToRadians(last->v, unit)};
}

// Whether preparing the area may take time proportional to the square of its corners, so that
// testing each direction separately is faster: a large ring around the zenith that crosses itself.
bool IsSlowToPrepare(const AreaFile& file, const std::vector<AreaFault>& faults) {
  if (faults.empty() || file.Sphere().GetPoints().size() <= kManyCorners) return false;
  AreaBounds extents{};
  const bool isArea = file.Sphere().GetExtents(extents.hzMin, extents.hzMax, extents.vMin,
                                               extents.vMax, extents.enclosesZenith, false);
  return isArea && extents.enclosesZenith;
}

ExitCode Run(const Options& options) {
  options.output.Require(options.file);
  RequireOneStandardInput(options.file, options.csv);
  const AreaFile file = LoadAreaFile(options.file);
  const std::vector<AreaFault> faults = FindAreaFaults(file);
  const AngleWindow window =
      options.window.empty() ? kWholeSphere : ParseWindow(options.window, file.unit);
  AreaProbesC probes(window);
  const bool isSlow = IsSlowToPrepare(file, faults);
  std::optional<SDI::PreparedAreaC> prepared;  // without any direction, it is not needed
  const auto ask = [&](const Direction& direction) {
    const double hz = ToRadians(direction.hz, file.unit);
    const double v = ToRadians(direction.v, file.unit);
    if (!prepared && !isSlow) prepared.emplace(*file.area);
    probes.Add(hz, v, prepared ? prepared->Contains(hz, v) : file.area->Contains(hz, v));
  };
  for (const std::string& probe : options.probes) ask(RequireDirection(probe));
  if (!options.csv.empty()) {
    DirectionFormat format = options.format;
    format.unit = file.unit;
    DirectionReaderC reader(options.csv, format);
    for (Direction direction{}; reader.Next(direction);) ask(direction);
  }

  const std::string svg = DrawArea({file, faults, window, probes});
  const std::string inputs[] = {options.file, options.csv};
  OutputC out(options.output.file, inputs);
  out.GetBuffer().append(svg.data(), svg.data() + svg.size());
  out.Close();
  return WarnOfFaults(faults);
}

}  // namespace

Command AreaPlotCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "plot";
  command.description = kDescription;
  command.footer =
      "Example:\n  surveydata area plot facade.json -o facade.svg --probe 57,92 --probe 120,92";
  command.arguments = {AreaArgument(options->file)};
  command.options = {
      PictureOption(options->output),
      {.names = {"--probe"},
       .value = "HZ,V",
       .description = "A direction to mark with its answer; can be repeated",
       .take = [options](const std::string& text) { options->probes.push_back(text); },
       .isRepeatable = true},
      {.names = {"--csv"},
       .value = "FILE",
       .description = "A table of more directions, as for area contains; - for standard input",
       .take = StoreIn(options->csv)},
      {.names = {"--window"},
       .value = "HZ,V,HZ,V",
       .description = "The part of the plane to show; the whole sphere by default",
       .take = StoreIn(options->window)}};
  for (CommandOption& option : DirectionFormatOptions(options->format)) {
    option.needs = {"--csv"};
    command.options.Add(option);
  }
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
