#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_

#include <cstdint>
#include <functional>
#include <string>

#include <CLI/CLI.hpp>

#include <command_line/exit_code.h>

namespace Tool {

/// Adds `surveydata record ...`. The command that is run leaves its exit code in `result`, which
/// must outlive the parsing.
void AddRecordCommands(CLI::App& app, ExitCode& result);

// One command each.
void AddRecordList(CLI::App& record, ExitCode& result);
void AddRecordShow(CLI::App& record, ExitCode& result);
void AddRecordExport(CLI::App& record, ExitCode& result);
void AddRecordSet(CLI::App& record, ExitCode& result);
void AddRecordPlot(CLI::App& record, ExitCode& result);

/// Adds the positional argument FILE.
void AddFileArgument(CLI::App& command, std::string& file);

/// Adds the required option --offset: decimal, or hexadecimal behind 0x.
void AddOffsetOption(CLI::App& command, std::uint64_t& offset);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_
