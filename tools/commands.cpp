#include "commands.h"

#include "area_commands.h"
#include "record_commands.h"

namespace Tool {

std::unique_ptr<CLI::App> MakeCommands(ExitCode& result) {
  auto app = std::make_unique<CLI::App>(
      "Works with the record files and the scan areas of a surveying instrument.", "surveydata");
  app->set_version_flag("--version", "surveydata " SURVEYDATA_VERSION);
  app->require_subcommand(1);
  app->allow_windows_style_options(false);  // a path that begins with a slash is no option
  app->footer(
      "Exit codes: 0 done, 1 a finding (a bad frame, a gap, an area that is not valid, a "
      "direction\n"
      "outside), 2 wrong usage, 3 a file cannot be read or written.\n\n"
      "Example:\n  surveydata record --help");
  AddRecordCommands(*app, result);
  AddAreaCommands(*app, result);
  return app;
}

}  // namespace Tool
