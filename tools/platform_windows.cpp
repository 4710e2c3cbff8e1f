#include <array>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "platform.h"

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

constexpr std::array kOutputs{StandardStream::kOutput, StandardStream::kError};

// How the console was: it stays behind when the program has ended.
UINT codePageBefore;
std::array<DWORD, kOutputs.size()> modesBefore;

void RestoreConsole() {
  SetConsoleOutputCP(codePageBefore);
  for (std::size_t i = kOutputs.size(); i-- > 0;) {
    if (IsTerminal(kOutputs[i])) SetConsoleMode(HandleOf(kOutputs[i]), modesBefore[i]);
  }
}

}  // namespace

// The runtime itself keeps the places of standard streams that are closed.
void PrepareStandardStreams() {
  // Without ends of lines of its own kind; Ctrl-Z ends what is typed, but nothing else.
  if (!IsTerminal(StandardStream::kInput)) _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  if (!IsTerminal(StandardStream::kOutput) && !IsTerminal(StandardStream::kError)) return;
  codePageBefore = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  for (std::size_t i = 0; i < kOutputs.size(); ++i) {
    const HANDLE console = HandleOf(kOutputs[i]);
    if (GetConsoleMode(console, &modesBefore[i]) == 0) continue;
    SetConsoleMode(console, modesBefore[i] | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
  std::atexit(RestoreConsole);
}

// The runtime's own test takes the null device for a terminal.
bool IsTerminal(StandardStream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

const char* const kEndOfInput = "Ctrl-Z, Enter";

std::filesystem::path ToPath(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

}  // namespace Tool
