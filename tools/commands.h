#ifndef SURVEYDATA_TOOLS_COMMANDS_H_
#define SURVEYDATA_TOOLS_COMMANDS_H_

#include <command_line/command.h>

namespace Tool {

/// All commands of the program.
Command MakeCommands();

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMANDS_H_
