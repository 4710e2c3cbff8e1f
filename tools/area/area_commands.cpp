#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include <area/area_commands.h>
#include <command_line/common_options.h>
#include <command_line/message.h>
#include <platform/input_file.h>

namespace Tool {

CommandOption AreaArgument(std::string& file) {
  return {.names = {"AREA"},
          .value = "AREA.json",
          .description = "The area file, - for standard input",
          .take = StoreIn(file),
          .isRequired = true};
}

ExitCode WarnOfFaults(const std::vector<AreaFault>& faults) {
  constexpr std::size_t kMostReported = 8;
  const std::size_t reported = std::min(faults.size(), kMostReported);
  for (std::size_t i = 0; i < reported; ++i) Tell("the area is not valid: " + faults[i].text);
  if (reported < faults.size()) {
    Tell(fmt::format("the area is not valid: {} more reasons, see area info",
                     faults.size() - reported));
  }
  return faults.empty() ? ExitCode::kDone : ExitCode::kCannotBeQueried;
}

void RequireOneStandardInput(const std::string& area, const std::string& directions) {
  if (!IsStandardInput(area) || !IsStandardInput(directions)) return;
  throw ToolErrorC(ExitCode::kUsage, "standard input cannot be both the area and the directions");
}

Command AreaCommands() {
  Command command;
  command.name = "area";
  command.description = "Check, query, convert and draw scan areas";
  command.footer =
      "An area file is a JSON object:\n"
      "  kind      \"rectangle\" (2 corners), \"polygon\" (3 or more), \"dome\" (no points)\n"
      "  unit      \"rad\", \"deg\" or \"gon\", of every angle in the file\n"
      "  hzStep, vStep  the steps of the scan\n"
      "  points    [[hz, v], [hz, v, distance], {\"hz\": 1, \"v\": 2, \"distance\": 3}, ...]\n"
      "  name, limitLow, limitHigh, settingA to settingE  optional\n"
      "Hz is measured clockwise, V downwards from the zenith, distances in metres. A file has at "
      "most\n"
      "64 MiB and a million points.\n\n"
      "Example:\n  surveydata area info facade.json";
  command.commands = {AreaInfoCommand(), AreaOutlineCommand(), AreaContainsCommand(),
                      AreaGridCommand(), AreaConvertCommand(), AreaPlotCommand()};
  return command;
}

}  // namespace Tool
