#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_MESSAGE_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_MESSAGE_H_

#include <string_view>

namespace Tool {

/// Writes a line to standard error, with the name of the program before it. A message that cannot
/// be written is lost: it changes neither the work nor the exit code.
void Tell(std::string_view message) noexcept;

/// Throws the `ToolErrorC` of a file that cannot be read, with what `errno` says.
[[noreturn]] void FailToRead(std::string_view file);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_MESSAGE_H_
