#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_

#include <cstdint>
#include <string>

#include <command_line/command.h>

namespace Tool {

/// `surveydata record ...`.
Command RecordCommands();

// One command each.
Command RecordListCommand();
Command RecordShowCommand();
Command RecordExportCommand();
Command RecordSetCommand();
Command RecordPlotCommand();

/// The positional argument FILE.
CommandOption FileArgument(std::string& file);

/// The required option --offset: decimal, or hexadecimal behind 0x.
CommandOption OffsetOption(std::uint64_t& offset);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_
