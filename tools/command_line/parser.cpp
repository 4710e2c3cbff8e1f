#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <command_line/exit_code.h>
#include <command_line/parser.h>

// The only file that includes CLI11, which takes seconds to compile.

namespace Tool {
namespace {

std::string Joined(const std::vector<std::string>& names) {
  return fmt::format("{}", fmt::join(names, ","));
}

void AddOption(CLI::App& app, const CommandOption& option) {
  const std::string names = Joined(option.names);
  if (option.isHelp) {
    app.set_help_flag(names, option.description);
    return;
  }
  if (!option.text.empty()) {
    app.set_version_flag(names, option.text, option.description);
    return;
  }
  if (option.flag != nullptr) {
    app.add_flag(names, *option.flag, option.description);
    return;
  }
  const bool isArgument = !option.names.front().starts_with('-');
  const std::string& name = option.names.back();
  const auto take = [&option, &name](const CLI::results_t& values) {
    for (const std::string& value : values) {
      try {
        option.take(value);
      } catch (const ValueErrorC& error) {
        throw CLI::ValidationError(name, error.what());
      }
    }
    return true;
  };
  CLI::Option& added = *app.add_option(names, take, option.description);
  added.type_name(option.value)->required(option.isRequired);
  if (!option.isRepeatable) return;
  added.expected(1, -1)->allow_extra_args();  // -1: any number
  if (!isArgument) added.expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void Relate(CLI::App& app, const CommandOption& option) {
  for (const std::string& other : option.excludes) {
    app.get_option(option.names.back())->excludes(app.get_option(other));
  }
  for (const std::string& other : option.needs) {
    app.get_option(option.names.back())->needs(app.get_option(other));
  }
}

// `chosen` becomes the command that is to be run.
void AddContents(CLI::App& app, const Command& command, const Command*& chosen) {
  app.footer(command.footer);
  // Missing arguments are reported before missing options.
  for (const CommandOption& argument : command.arguments) AddOption(app, argument);
  for (const CommandOption& option : command.options) AddOption(app, option);
  for (const CommandOption& option : command.options) Relate(app, option);
  for (const CommandOption& argument : command.arguments) Relate(app, argument);
  if (!command.commands.empty()) app.require_subcommand(1);
  if (command.run) app.callback([&command, &chosen] { chosen = &command; });
  for (const Command& below : command.commands) {
    AddContents(*app.add_subcommand(below.name, below.description), below, chosen);
  }
}

// What is wrong. When a command is missing, names the word that was given instead and the commands
// that exist.
std::string Explain(const CLI::App* top, const CLI::Error& error) {
  const CLI::App* app = top;
  while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
  const bool needsCommand = app->get_require_subcommand_min() > 0;
  if (!needsCommand || dynamic_cast<const CLI::RequiredError*>(&error) == nullptr) {
    return error.what();
  }
  std::vector<std::string> names;
  for (const CLI::App* const command : app->get_subcommands({})) {
    names.push_back(command->get_name());
  }
  const std::vector<std::string> given = app->remaining();
  const auto wrong = std::find_if(given.begin(), given.end(),
                                  [](const std::string& word) { return !word.starts_with('-'); });
  const std::string what = wrong != given.end() ? fmt::format("there is no command '{}'", *wrong)
                                                : std::string("a command is missing");
  return fmt::format("{}: {} has {}", what, app->get_name(), fmt::join(names, ", "));
}

}  // namespace

Request Parse(const Command& top, int argc, char** argv) {
  CLI::App app(top.description, top.name);
  app.failure_message(&Explain);
  app.allow_windows_style_options(false);  // a path that begins with a slash is no option
  const Command* chosen = nullptr;
  AddContents(app, top, chosen);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream help;
    std::ostringstream complaint;
    if (app.exit(error, help, complaint) == 0) return {{}, help.str()};
    throw ToolErrorC(ExitCode::kUsage, complaint.str(), "Run with --help for more information.");
  }
  return {chosen->run, {}};
}

}  // namespace Tool
