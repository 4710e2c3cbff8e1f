#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_COMMAND_TREE_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_COMMAND_TREE_H_

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

/// \file
/// What a command line offers, as the man page and the completions of the shells need it: taken
/// from the commands themselves, so that nothing of it is written down twice.

namespace Tool {

/// An option, a flag or an argument.
struct CommandOption {
  std::vector<std::string>
      names;          ///< With their dashes, short ones first; of an argument its name.
  std::string value;  ///< What the help calls the value; empty for a flag.
  std::string description;
  std::vector<std::string> excludes;  ///< Names of what cannot stand beside it.
  bool isFile = false;                ///< The value is the name of a file,
  std::string extension;              ///< with this extension if it is not empty, e.g. ".json".
  bool isRequired = false;
  bool isRepeatable = false;
  bool isHelp = false;
};

/// A command with its subcommands. Hidden options and commands are left out.
struct Command {
  std::string path;  ///< The words that call it, e.g. "surveydata record list".
  std::string name;  ///< The last of them.
  std::string description;
  std::string footer;
  std::vector<CommandOption> options;
  std::vector<CommandOption> arguments;  ///< In their order.
  std::vector<Command> commands;
};

/// What `app` offers. A value is taken for the name of a file when the help calls it or its
/// argument FILE or OUT, or gives it an extension, e.g. AREA.json.
Command DescribeCommands(const CLI::App& app);

/// The command and all below it, in the order of the help.
std::vector<const Command*> AllCommands(const Command& top);

/// What stands before the first full stop, colon or semicolon, on one line.
std::string Summary(const std::string& description);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_COMMAND_TREE_H_
