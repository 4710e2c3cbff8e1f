#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include <platform/platform.h>

namespace Tool {

// Otherwise messages could go into a file that is opened with the number of a standard stream.
void PrepareStandardStreams() {
  int file = 0;
  do {
    file = open("/dev/null", O_RDONLY);
  } while (0 <= file && file <= STDERR_FILENO);
  if (file >= 0) close(file);
}

bool IsTerminal(StandardStream stream) {
  switch (stream) {
    case StandardStream::kInput:
      return isatty(STDIN_FILENO) != 0;
    case StandardStream::kOutput:
      return isatty(STDOUT_FILENO) != 0;
    case StandardStream::kError:
      return isatty(STDERR_FILENO) != 0;
  }
  return false;
}

bool ShowsColours(StandardStream stream) {
  const char* const terminal = std::getenv("TERM");
  const std::string_view name = terminal != nullptr ? terminal : "";
  return IsTerminal(stream) && !name.empty() && name != "dumb";
}

const char* const kEndOfInput = "Ctrl-D";

std::filesystem::path ToPath(const std::string& name) { return name; }

}  // namespace Tool
