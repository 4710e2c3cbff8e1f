#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_

#include <cstdint>
#include <string>
#include <vector>

#include <command_line/command.h>

namespace Tool {

/// An offset from the command line, and how the user wrote it.
struct FrameOffset {
  std::uint64_t value = 0;  ///< The largest number for one that is larger.
  std::string text;
};

/// `surveydata record ...`.
Command RecordCommands();

// One command each.
Command RecordListCommand();
Command RecordShowCommand();
Command RecordExportCommand();
Command RecordColumnsCommand();
Command RecordCheckCommand();
Command RecordDiffCommand();
Command RecordSetCommand();
Command RecordCutCommand();
Command RecordJoinCommand();
Command RecordPlotCommand();

/// Parses an offset from the command line: decimal, or hexadecimal after 0x. Throws `ValueErrorC`
/// for any other text.
FrameOffset ParseOffset(const std::string& text);

/// The positional argument FILE; with `mayBeInput`, its help says that - is standard input.
CommandOption FileArgument(std::string& file, bool mayBeInput = true);

/// The required option --offset: decimal, or hexadecimal after 0x.
CommandOption OffsetOption(FrameOffset& offset);

/// Gives a command --offset and `filters`, which exclude each other.
void AddOffsetOrFilters(Command& command, FrameOffset& offset, CommandOptionsC filters);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_COMMANDS_H_
