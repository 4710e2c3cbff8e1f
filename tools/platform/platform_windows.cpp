#include <cstdio>
#include <cstdlib>

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

UINT codePageBefore;  // the console outlives the program

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

// The test of the runtime mistakes the null device for a terminal.
bool IsTerminal(StandardStream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

const char* const kEndOfInput = "Ctrl-Z, Enter";

std::filesystem::path ToPath(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

}  // namespace Tool
