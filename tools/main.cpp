#include <exception>
#include <sstream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <unistd.h>

#include "area_commands.h"
#include "exit_code.h"
#include "message.h"
#include "output.h"
#include "record_commands.h"

namespace {

using Tool::ExitCode;

ExitCode Run(int argc, char** argv) {
  CLI::App app("Works with the record files and the scan areas of a surveying instrument.",
               "surveydata");
  app.set_version_flag("--version", "surveydata " SURVEYDATA_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done, 1 a finding (a bad frame, a gap, an area that is not valid, a "
      "direction\n"
      "outside), 2 wrong usage, 3 a file cannot be read or written.\n\n"
      "Example:\n  surveydata record --help");
  ExitCode result = ExitCode::kDone;
  Tool::AddRecordCommands(app, result);
  Tool::AddAreaCommands(app, result);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream help;
    std::ostringstream complaint;
    if (app.exit(error, help, complaint) != 0) {
      const std::string text = complaint.str();
      Tool::Tell(std::string_view(text).substr(0, text.find_last_not_of('\n') + 1));
      return ExitCode::kUsage;
    }
    Tool::OutputC out;
    out.Print("{}", help.str());
    out.Close();
  }
  return result;
}

// Files do not take the place of standard streams that are closed: messages would go into them.
void FillStandardStreams() {
  int file = 0;
  do {
    file = open("/dev/null", O_RDONLY);
  } while (0 <= file && file <= STDERR_FILENO);
  if (file >= 0) close(file);
}

}  // namespace

int main(int argc, char** argv) {
  FillStandardStreams();
  ExitCode result = ExitCode::kFileError;
  try {
    result = Run(argc, argv);
  } catch (const Tool::ToolErrorC& error) {
    Tool::Tell(error.what());
    result = error.GetCode();
  } catch (const std::exception& error) {
    Tool::Tell(error.what());
  }
  return static_cast<int>(result);
}
