#include <algorithm>
#include <string_view>

#include <command_line/command_tree.h>

namespace Tool {
namespace {

std::vector<std::string> Names(const CLI::Option& option) {
  if (!option.nonpositional()) return {option.get_name(true)};
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

CommandOption Describe(const CLI::Option& option, const CLI::Option* help) {
  CommandOption out;
  out.names = Names(option);
  out.description = option.get_description();
  out.isRequired = option.get_required();
  out.isHelp = &option == help;
  for (const CLI::Option* const other : option.get_excludes()) {
    for (std::string& name : Names(*other)) out.excludes.push_back(std::move(name));
  }
  if (option.get_items_expected_max() == 0) return out;

  out.value = option.get_type_name();
  out.isRepeatable = option.get_items_expected_max() > 1 ||
                     option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  const std::size_t dot = out.value.rfind('.');
  const bool hasExtension = dot != std::string::npos && dot + 1 < out.value.size() &&
                            out.value.find(' ') == std::string::npos;
  if (hasExtension) out.extension = out.value.substr(dot);
  out.isFile = hasExtension || out.value == "FILE" || out.value == "OUT" || out.names[0] == "FILE";
  return out;
}

Command Describe(const CLI::App& app, const std::string& before) {
  Command out;
  out.name = app.get_name();
  out.path = before + out.name;
  out.description = app.get_description();
  out.footer = app.get_footer();
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_group().empty()) continue;
    auto& to = option->nonpositional() ? out.options : out.arguments;
    to.push_back(Describe(*option, app.get_help_ptr()));
  }
  for (const CLI::App* const command : app.get_subcommands({})) {
    if (!command->get_group().empty()) {
      out.commands.push_back(Describe(*command, out.path + " "));
    }
  }
  return out;
}

}  // namespace

Command DescribeCommands(const CLI::App& app) { return Describe(app, ""); }

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
