#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <sys/wait.h>

#include "tests/tools/program.h"

namespace fs = std::filesystem;

namespace {

// The tests may run with ignored signals, for example under nohup. The programs that they start
// would inherit that.
const bool g_isNothingIgnored = [] {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGALRM, SIGTERM, SIGUSR1, SIGXFSZ}) {
    std::signal(signal, SIG_DFL);
  }
  return true;
}();

std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

Outcome Run(const std::string& command, const std::string& input = "/dev/null") {
  if (!g_isNothingIgnored) throw std::logic_error("signals are ignored");
  const TempFolderC folder;
  const std::string whole = "{ " + command + "\n} >" + Quoted(folder / "out") + " 2>" +
                            Quoted(folder / "err") + " <" + Quoted(input);
  const int status = std::system(whole.c_str());
  if (status == -1 || !WIFEXITED(status)) throw std::runtime_error("did not exit: " + command);
  return {WEXITSTATUS(status), ReadText(folder / "out"), ReadText(folder / "err")};
}

}  // namespace

Outcome RunProgram(const std::vector<std::string>& arguments, const RunOptions& options) {
  std::string command;
  if (!options.folder.empty()) command += "cd " + Quoted(options.folder) + " && ";
  command += options.shell + " ";
  command += Quoted(options.program.empty() ? ProgramPath() : options.program);
  for (const std::string& argument : arguments) {
    command += ' ';
    command += Quoted(argument);
  }
  return options.input.empty() ? Run(command) : Run(command, options.input);
}

Outcome RunShell(const std::string& command, const std::string& folder) {
  const std::string bin = fs::path(ProgramPath()).parent_path().string();
  return Run("cd " + Quoted(folder) + " && PATH=" + Quoted(bin) + ":\"$PATH\" && " + command);
}
