#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_COMMAND_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_COMMAND_H_

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include <command_line/exit_code.h>

/// \file
/// How a command describes itself. The parser and its help, the manual page and the completions of
/// the shells are all generated from these values.

namespace Tool {

/// What is wrong with the value of an option. The name of the option is added to the message.
class ValueErrorC : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

/// An option, a flag or an argument.
struct CommandOption {
  std::vector<std::string>
      names;               ///< With their dashes, short ones first; of an argument its name.
  std::string value = {};  ///< What the help calls the value; empty for a flag.
  std::string description;
  /// Takes the value; called for each one if the option is repeatable. Throws `ValueErrorC` to
  /// refuse it.
  std::function<void(const std::string&)> take = {};
  bool* flag = nullptr;   ///< Set when the flag is given.
  std::string text = {};  ///< Printed when the flag is given; no command runs then.
  std::vector<std::string> excludes = {};  ///< Names of what cannot be given with it; symmetrical.
  std::vector<std::string> needs = {};     ///< Names of what must be given with it.
  bool isRequired = false;
  bool isRepeatable = false;
  bool isHelp = false;
  /// Words that can occur in the value, of letters, digits and underscores; completed in it.
  std::vector<std::string> words = {};

  ~CommandOption();

  /// Whether the value is the name of a file: the help calls it or its argument FILE or OUT, or
  /// gives it an extension, e.g. AREA.json.
  bool IsFile() const;
  /// That of the files, e.g. ".json"; empty for any.
  std::string Extension() const;
};

/// Options or arguments. Its members are compiled once, not in the file of each command, which
/// takes a second for each.
class CommandOptionsC : public std::vector<CommandOption> {
 public:
  CommandOptionsC();
  CommandOptionsC(std::initializer_list<CommandOption> options);
  CommandOptionsC(const CommandOptionsC&);
  CommandOptionsC(CommandOptionsC&&) noexcept;
  CommandOptionsC& operator=(const CommandOptionsC&);
  CommandOptionsC& operator=(CommandOptionsC&&) noexcept;
  ~CommandOptionsC();

  void Add(CommandOption option);
  void Add(const CommandOptionsC& options);
  /// Before the one at this index.
  void Insert(std::size_t index, CommandOption option);
};

/// A group of commands in the manual page.
struct CommandTask {
  std::string title;               ///< E.g. "Checking and comparing record files".
  std::vector<std::string> paths;  ///< Those of the commands without the program's name.
};

/// A command, which either has subcommands or can be run.
struct Command {
  Command();
  Command(const Command&);
  Command(Command&&) noexcept;
  Command& operator=(const Command&);
  Command& operator=(Command&&) noexcept;
  ~Command();

  std::string path;  ///< The words that call it, e.g. "surveydata record list".
  std::string name;  ///< The last of them.
  std::string description;
  std::string footer;
  CommandOptionsC options;
  CommandOptionsC arguments;  ///< In their order.
  std::vector<Command> commands;
  std::vector<CommandTask> tasks = {};  ///< Of the program, in the order of the manual page.
  std::function<ExitCode()> run;
};

/// Gives the command and all below it their paths and the option `--help`.
void AddPathsAndHelp(Command& top);

/// The command and all below it, in the order of the help.
std::vector<const Command*> AllCommands(const Command& top);

/// The text before the first full stop, colon or semicolon, on one line.
std::string Summary(const std::string& description);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_COMMAND_H_
