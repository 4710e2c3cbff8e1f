#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>

#include <command_line/exit_code.h>
#include <command_line/message.h>

namespace Tool {

void Tell(std::string_view message) noexcept {
  std::fputs("surveydata: ", stderr);
  for (const char c : message) {
    // What a file holds must not steer the terminal.
    const bool isControl = (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F;
    std::fputc(isControl ? '?' : c, stderr);
  }
  std::fputc('\n', stderr);
}

void FailToRead(std::string_view file) {
  const int error = errno;
  throw ToolErrorC(ExitCode::kFileError,
                   fmt::format("cannot read {}: {}", file, std::strerror(error)));
}

}  // namespace Tool
