#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <command_line/exit_code.h>
#include <command_line/parser.h>
#include <command_line/suggestion.h>
#include <platform/format.h>

// The only file that includes CLI11, which takes seconds to compile.

namespace Tool {
namespace {

// CLI11 understands "--" only before the first argument of a command. The words after it that begin
// with a dash are passed to it without the "--", and with this mark as a prefix.
constexpr char kMark = '\x01';

std::vector<std::string> MarkArguments(int argc, char** argv) {
  std::vector<std::string> words;
  bool areArguments = false;
  for (int i = 0; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--" && !areArguments) {
      areArguments = true;
    } else {
      words.emplace_back(word);
      if (areArguments && word.starts_with('-')) words.back().insert(0, 1, kMark);
    }
  }
  return words;
}

std::string WithoutMarks(std::string text) {
  const char marked[] = {kMark, '-', '\0'};
  for (std::size_t at = 0; (at = text.find(marked, at)) != std::string::npos;) text.erase(at, 1);
  return text;
}

void AddOption(CLI::App& app, const CommandOption& option) {
  const std::string names = Joined(option.names, ",");
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
        option.take(WithoutMarks(value));
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

// The commands on the command line, as far as they are known: the program, its command, and so on.
std::vector<const CLI::App*> Chain(const CLI::App* top) {
  std::vector<const CLI::App*> chain = {top};
  while (!chain.back()->get_subcommands().empty()) {
    chain.push_back(chain.back()->get_subcommands().front());
  }
  return chain;
}

std::string PathOf(const CLI::App& app) {
  return (app.get_parent() == nullptr ? "" : PathOf(*app.get_parent()) + " ") + app.get_name();
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* const command : app.get_subcommands({})) {
    names.push_back(command->get_name());
  }
  return names;
}

// With their dashes.
std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::string ExplainOption(const CLI::App& app, const CLI::App& last, const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  const std::string what = fmt::format("{} has no option '{}'", PathOf(app), name);
  const std::vector<std::string> names = OptionNames(last);
  if (&app != &last && std::find(names.begin(), names.end(), name) != names.end()) {
    return fmt::format("{}; it belongs after '{}'", what, PathOf(last));
  }
  const std::string nearest = Nearest(name, names);
  return nearest.empty() ? what : fmt::format("{}; did you mean {}?", what, nearest);
}

std::string ExplainArgument(const CLI::App& app, const std::string& word) {
  std::vector<std::string> arguments;
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_positional()) arguments.push_back(option->get_name(true));
  }
  return fmt::format(
      "'{}' is one argument too many: {} takes {}", word, PathOf(app),
      arguments.empty() ? "none" : fmt::format("one {}", Joined(arguments, ", one ")));
}

std::string ExplainCommand(const CLI::App& app, const std::string& what) {
  return fmt::format("{}: {} has {}", what, app.get_name(), Joined(CommandNames(app), ", "));
}

// The word that no command, option or argument accepts; empty if there is none.
std::string ExplainWord(const std::vector<const CLI::App*>& chain) {
  for (const CLI::App* const app : chain) {
    const std::vector<std::string> words = app->remaining();
    const auto isOption = [](const std::string& word) {
      return word.size() > 1 && word.front() == '-';
    };
    const auto word = std::find_if_not(words.begin(), words.end(), isOption);
    if (word != words.end() && !CommandNames(*app).empty()) {
      return ExplainCommand(*app, fmt::format("there is no command '{}'", *word));
    }
    const auto option = std::find_if(words.begin(), words.end(), isOption);
    if (option != words.end()) {
      // Before a command, an option is wrong only if it looks like one of these.
      const bool isCommandMissing = app == chain.back() && !CommandNames(*app).empty();
      if (isCommandMissing && Nearest(*option, OptionNames(*app)).empty()) return {};
      return ExplainOption(*app, *chain.back(), *option);
    }
    if (word != words.end()) return ExplainArgument(*app, *word);
  }
  return {};
}

// The error as a sentence that names the words of the command line.
std::string Explain(const CLI::App* top, const CLI::Error& error) {
  const std::vector<const CLI::App*> chain = Chain(top);
  std::string text = error.what();
  const auto parts = [&text](std::string_view between) {
    const std::size_t at = text.find(between);
    return std::pair{text.substr(0, at), text.substr(std::min(at + between.size(), text.size()))};
  };
  const bool isRequired = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
  if (isRequired || dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    std::string word = ExplainWord(chain);
    if (!word.empty()) return word;
    if (chain.back()->get_require_subcommand_min() > 0) {
      return ExplainCommand(*chain.back(), "a command is missing");
    }
  }
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
    const auto [one, other] = parts(" excludes ");
    return fmt::format("{} and {} exclude each other: give one of them", one, other);
  }
  if (dynamic_cast<const CLI::RequiresError*>(&error) != nullptr) {
    const auto [one, other] = parts(" requires ");
    return fmt::format("{} requires {}", one, other);
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string name = parts(":").first;
    const CLI::Option* const option = chain.back()->get_option_no_throw(name);
    if (option != nullptr)
      return fmt::format("{} needs a value, {}", name, option->get_type_name());
  }
  return text;
}

}  // namespace

Request Parse(const Command& top, int argc, char** argv) {
  CLI::App app(top.description, top.name);
  app.failure_message(&Explain);
  app.allow_windows_style_options(false);  // a path that begins with a slash is not an option
  const Command* chosen = nullptr;
  AddContents(app, top, chosen);
  const std::vector<std::string> words = MarkArguments(argc, argv);
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) pointers.push_back(word.c_str());
  try {
    app.parse(static_cast<int>(pointers.size()), pointers.data());
  } catch (const CLI::ParseError& error) {
    std::ostringstream help;
    std::ostringstream complaint;
    if (app.exit(error, help, complaint) == 0) return {{}, help.str()};
    throw ToolErrorC(ExitCode::kUsage, WithoutMarks(complaint.str()),
                     "Run with --help for more information.");
  }
  return {chosen->run, {}};
}

}  // namespace Tool
