#include <cstdio>
#include <exception>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "area_commands.h"
#include "exit_code.h"
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
    return app.exit(error) == 0 ? ExitCode::kDone : ExitCode::kUsage;
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  ExitCode result = ExitCode::kFileError;
  try {
    result = Run(argc, argv);
  } catch (const Tool::ToolErrorC& error) {
    fmt::print(stderr, "surveydata: {}\n", error.what());
    result = error.GetCode();
  } catch (const std::exception& error) {
    fmt::print(stderr, "surveydata: {}\n", error.what());
  }
  return static_cast<int>(result);
}
