#ifndef SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_
#define SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_

#include <string>
#include <vector>

#include <area/area_faults.h>
#include <command_line/command.h>
#include <command_line/exit_code.h>

namespace Tool {

/// `surveydata area ...`.
Command AreaCommands();

// One command each.
Command AreaInfoCommand();
Command AreaOutlineCommand();
Command AreaContainsCommand();
Command AreaPlotCommand();

/// The positional argument AREA.
CommandOption AreaArgument(std::string& file);

/// Says on standard error why the area is not valid, up to eight reasons; `kFinding` when it is
/// not.
ExitCode WarnOfFaults(const std::vector<AreaFault>& faults);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_
