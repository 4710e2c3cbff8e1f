#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_MESSAGE_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_MESSAGE_H_

#include <cstddef>
#include <string_view>

namespace Tool {

/// The most bytes of a message: a pipe accepts this many in one piece.
inline constexpr std::size_t kLongestMessage = 4096;

/// Writes a message of one line to standard error, with the name of the program before it, and a
/// second line if there is a hint, in one system call. Characters that could control a
/// terminal or look like another line are escaped (see `ToVisible`). A message that is too long is
/// cut. One that cannot be written is lost: it changes neither the output nor the exit code.
void Tell(std::string_view message, std::string_view hint = {}) noexcept;

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_MESSAGE_H_
