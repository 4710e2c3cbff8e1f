#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include <area/area_commands.h>
#include <command_line/message.h>

namespace Tool {

void AddAreaArgument(CLI::App& command, std::string& file) {
  command.add_option("AREA", file, "The area file")->required()->type_name("AREA.json");
}

ExitCode WarnOfFaults(const std::vector<AreaFault>& faults) {
  constexpr std::size_t kMostTold = 8;
  const std::size_t told = std::min(faults.size(), kMostTold);
  for (std::size_t i = 0; i < told; ++i) Tell("the area is not valid: " + faults[i].text);
  if (told < faults.size()) {
    Tell(
        fmt::format("the area is not valid: {} more reasons, see area info", faults.size() - told));
  }
  return faults.empty() ? ExitCode::kDone : ExitCode::kFinding;
}

void AddAreaCommands(CLI::App& app, ExitCode& result) {
  CLI::App& area = *app.add_subcommand("area", "Check, ask and draw scan areas");
  area.require_subcommand(1);
  area.footer(
      "An area file is a JSON object:\n"
      "  kind      \"rectangle\" (2 corners), \"polygon\" (3 or more), \"dome\" (no points)\n"
      "  unit      \"rad\", \"deg\" or \"gon\", of every angle in the file\n"
      "  hzStep, vStep  the steps of the scan\n"
      "  points    [[hz, v], [hz, v, distance], {\"hz\": 1, \"v\": 2, \"distance\": 3}, ...]\n"
      "  name, limitLow, limitHigh, settingA to settingE  if wanted\n"
      "Hz goes clockwise, V from the zenith downwards, distances are in metres.\n\n"
      "Exit code 1: the area is not valid, or a direction lies outside.\n\n"
      "Example:\n  surveydata area info facade.json");
  AddAreaInfo(area, result);
  AddAreaOutline(area, result);
  AddAreaContains(area, result);
  AddAreaPlot(area, result);
}

}  // namespace Tool
