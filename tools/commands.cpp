#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <area/area_commands.h>
#include <commands.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

// Where a command is missing, names what stands in its place and what there is.
std::string Explain(const CLI::App* top, const CLI::Error& error) {
  const CLI::App* app = top;
  while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
  const bool needsCommand = app->get_require_subcommand_min() > 0;
  if (!needsCommand || dynamic_cast<const CLI::RequiredError*>(&error) == nullptr) {
    return CLI::FailureMessage::simple(top, error);
  }
  std::vector<std::string> names;
  for (const CLI::App* const command : app->get_subcommands({})) {
    if (!command->get_group().empty()) names.push_back(command->get_name());
  }
  const std::vector<std::string> given = app->remaining();
  const auto wrong = std::find_if(given.begin(), given.end(),
                                  [](const std::string& word) { return !word.starts_with('-'); });
  const std::string what = wrong != given.end() ? fmt::format("there is no command '{}'", *wrong)
                                                : std::string("a command is missing");
  return fmt::format("{}: {} has {}\nRun with --help for more information.", what, app->get_name(),
                     fmt::join(names, ", "));
}

}  // namespace

std::unique_ptr<CLI::App> MakeCommands(ExitCode& result) {
  auto app = std::make_unique<CLI::App>(
      "Works with the record files and the scan areas of a surveying instrument.", "surveydata");
  app->set_version_flag("--version", "surveydata " SURVEYDATA_VERSION);
  app->require_subcommand(1);
  app->failure_message(&Explain);
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
