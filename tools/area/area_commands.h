#ifndef SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_
#define SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <area/area_faults.h>
#include <command_line/exit_code.h>

namespace Tool {

/// Adds `surveydata area ...`. The command that is run leaves its exit code in `result`, which must
/// outlive the parsing.
void AddAreaCommands(CLI::App& app, ExitCode& result);

// One command each.
void AddAreaInfo(CLI::App& area, ExitCode& result);
void AddAreaOutline(CLI::App& area, ExitCode& result);
void AddAreaContains(CLI::App& area, ExitCode& result);
void AddAreaPlot(CLI::App& area, ExitCode& result);

/// Adds the positional argument AREA.
void AddAreaArgument(CLI::App& command, std::string& file);

/// Says on standard error why the area is not valid, up to eight reasons; `kFinding` when it is
/// not.
ExitCode WarnOfFaults(const std::vector<AreaFault>& faults);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_
