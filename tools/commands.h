#ifndef SURVEYDATA_TOOLS_COMMANDS_H_
#define SURVEYDATA_TOOLS_COMMANDS_H_

#include <memory>

#include <CLI/CLI.hpp>

#include <command_line/exit_code.h>

namespace Tool {

/// The command line of the program. The command that is run leaves its exit code in `result`, which
/// must outlive the parsing.
std::unique_ptr<CLI::App> MakeCommands(ExitCode& result);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMANDS_H_
