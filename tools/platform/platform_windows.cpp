#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <platform/platform.h>

namespace Tool {
namespace {

HANDLE HandleOf(StandardStream stream) {
  switch (stream) {
    case StandardStream::kInput:
      return GetStdHandle(STD_INPUT_HANDLE);
    case StandardStream::kOutput:
      return GetStdHandle(STD_OUTPUT_HANDLE);
    case StandardStream::kError:
      return GetStdHandle(STD_ERROR_HANDLE);
  }
  return INVALID_HANDLE_VALUE;
}

// The console outlives the program.
UINT codePageBefore;
HANDLE colouredConsole;
DWORD modeBefore;

}  // namespace

// The runtime itself reserves the numbers of closed standard streams.
void PrepareStandardStreams() {
  // Binary mode: no conversion of line ends, and Ctrl-Z ends only input that is typed.
  if (!IsTerminal(StandardStream::kInput)) _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  if (!IsTerminal(StandardStream::kOutput) && !IsTerminal(StandardStream::kError)) return;
  codePageBefore = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  std::atexit([] { SetConsoleOutputCP(codePageBefore); });
}

// `_isatty` of the runtime reports the null device as a terminal.
bool IsTerminal(StandardStream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool ShowsColours(StandardStream stream) {
  const char* const terminal = std::getenv("TERM");
  if (terminal != nullptr && std::string_view(terminal) == "dumb") return false;
  const HANDLE console = HandleOf(stream);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == 0) return false;
  if ((mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0) return true;
  if (SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) == 0) return false;
  colouredConsole = console;
  modeBefore = mode;
  std::atexit([] { SetConsoleMode(colouredConsole, modeBefore); });
  return true;
}

const char* const kEndOfInput = "Ctrl-Z, Enter";

std::filesystem::path ToPath(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

}  // namespace Tool
