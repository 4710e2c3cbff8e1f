#include "message.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>

#include "exit_code.h"

namespace Tool {

void Tell(std::string_view message) noexcept {
  std::fputs("surveydata: ", stderr);
  std::fwrite(message.data(), 1, message.size(), stderr);
  std::fputc('\n', stderr);
}

void FailToRead(std::string_view file) {
  const int error = errno;
  throw ToolErrorC(ExitCode::kFileError,
                   fmt::format("cannot read {}: {}", file, std::strerror(error)));
}

}  // namespace Tool
