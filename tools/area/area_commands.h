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
Command AreaGridCommand();
Command AreaConvertCommand();
Command AreaPlotCommand();

/// The positional argument AREA.
CommandOption AreaArgument(std::string& file);

/// Reports on standard error why the area is not valid, up to eight reasons, and returns
/// `kCannotBeQueried` if it is not.
ExitCode WarnOfFaults(const std::vector<AreaFault>& faults);

/// \throw ToolErrorC  if both the area and the directions would come from standard input.
void RequireOneStandardInput(const std::string& area, const std::string& directions);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_COMMANDS_H_
