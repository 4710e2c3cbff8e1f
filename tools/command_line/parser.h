#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_PARSER_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_PARSER_H_

#include <functional>
#include <string>

#include <command_line/command.h>

namespace Tool {

/// The result of parsing a command line: a command to run, or a text to print, such as the help.
struct Request {
  std::function<ExitCode()> run;  ///< Empty when there is only a text.
  std::string text;
};

/// Stores the values of the command line as the options of `top` and of its subcommands say.
/// \throw ToolErrorC  when the command line is wrong.
Request Parse(const Command& top, int argc, char** argv);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_PARSER_H_
