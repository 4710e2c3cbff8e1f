#include <algorithm>
#include <cstddef>
#include <utility>

#include <command_line/command.h>

namespace Tool {
namespace {

void AddBelow(Command& command, const std::string& before) {
  command.path = before + command.name;
  command.options.Insert(0, {.names = {"-h", "--help"},
                             .description = "Print this help message and exit",
                             .isHelp = true});
  for (Command& below : command.commands) AddBelow(below, command.path + " ");
}

}  // namespace

CommandOption::~CommandOption() = default;

CommandOptionsC::CommandOptionsC() = default;
CommandOptionsC::CommandOptionsC(std::initializer_list<CommandOption> options) : vector(options) {}
CommandOptionsC::CommandOptionsC(const CommandOptionsC&) = default;
CommandOptionsC::CommandOptionsC(CommandOptionsC&&) noexcept = default;
CommandOptionsC& CommandOptionsC::operator=(const CommandOptionsC&) = default;
CommandOptionsC& CommandOptionsC::operator=(CommandOptionsC&&) noexcept = default;
CommandOptionsC::~CommandOptionsC() = default;

void CommandOptionsC::Add(CommandOption option) { push_back(std::move(option)); }

void CommandOptionsC::Add(const CommandOptionsC& options) {
  insert(end(), options.begin(), options.end());
}

void CommandOptionsC::Insert(std::size_t index, CommandOption option) {
  insert(begin() + static_cast<std::ptrdiff_t>(index), std::move(option));
}

Command::Command() = default;
Command::Command(const Command&) = default;
Command::Command(Command&&) noexcept = default;
Command& Command::operator=(const Command&) = default;
Command& Command::operator=(Command&&) noexcept = default;
Command::~Command() = default;

std::string CommandOption::Extension() const {
  const std::size_t dot = value.rfind('.');
  const bool hasExtension =
      dot != std::string::npos && dot + 1 < value.size() && value.find(' ') == std::string::npos;
  return hasExtension ? value.substr(dot) : "";
}

bool CommandOption::IsFile() const {
  return value == "FILE" || value == "OUT" || names.front() == "FILE" || !Extension().empty();
}

void AddPathsAndHelp(Command& top) { AddBelow(top, ""); }

std::vector<const Command*> AllCommands(const Command& top) {
  std::vector<const Command*> all{&top};
  for (const Command& command : top.commands) {
    const auto below = AllCommands(command);
    all.insert(all.end(), below.begin(), below.end());
  }
  return all;
}

std::string Summary(const std::string& description) {
  std::string text = description + " ";
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text.substr(
      0, std::min({text.find(". "), text.find(": "), text.find("; "), text.size() - 1}));
}

}  // namespace Tool
