#include <stdexcept>

#include <windows.h>

#include "tests/tools/program.h"

namespace fs = std::filesystem;

namespace {

std::wstring Wide(const std::string& utf8) {
  return fs::path(std::u8string(utf8.begin(), utf8.end())).native();
}

// Quotes as programs parse it: backslashes are literal unless a quote follows.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : text) {
    if (c == '"') quoted += std::string(backslashes + 1, '\\');
    quoted += c;
    backslashes = c == '\\' ? backslashes + 1 : 0;
  }
  return quoted + std::string(backslashes, '\\') + "\"";
}

// A file that a program started from here can use.
class InheritedFileC {
 public:
  InheritedFileC(const std::string& name, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), nullptr, TRUE};
    handle_ = CreateFileW(Wide(name).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          &attributes, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle_ == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot open " + name);
  }
  InheritedFileC(const InheritedFileC&) = delete;
  InheritedFileC& operator=(const InheritedFileC&) = delete;
  ~InheritedFileC() { CloseHandle(handle_); }
  HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_;
};

DWORD Run(const std::string& command, const std::string& folder, const std::string& input,
          const TempFolderC& outputs) {
  const InheritedFileC in(input, GENERIC_READ, OPEN_EXISTING);
  const InheritedFileC out(outputs / "out", GENERIC_WRITE, CREATE_ALWAYS);
  const InheritedFileC err(outputs / "err", GENERIC_WRITE, CREATE_ALWAYS);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in.Get();
  startup.hStdOutput = out.Get();
  startup.hStdError = err.Get();
  PROCESS_INFORMATION process{};
  const std::wstring where = Wide(folder);
  bool isStarted = false;
  // On a busy machine, wine sometimes fails to start a program.
  for (int attempt = 0; attempt < 3 && !isStarted; ++attempt) {
    if (attempt > 0) Sleep(1000);
    std::wstring line = Wide(command);  // CreateProcessW may change it
    isStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                               where.empty() ? nullptr : where.c_str(), &startup, &process) != 0;
  }
  if (!isStarted) {
    throw std::runtime_error("cannot run " + command + ": error " + std::to_string(GetLastError()));
  }
  DWORD exitCode = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return exitCode;
}

}  // namespace

Outcome RunProgram(const std::vector<std::string>& arguments, const RunOptions& options) {
  std::string command = Quoted(options.program.empty() ? ProgramPath() : options.program);
  for (const std::string& argument : arguments) command += " " + Quoted(argument);
  const TempFolderC outputs;
  const std::string input = options.input.empty() ? "NUL" : options.input;
  const DWORD exitCode = Run(command, options.folder, input, outputs);
  return {static_cast<int>(exitCode), ReadText(outputs / "out"), ReadText(outputs / "err")};
}
