#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_COMPLETION_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_COMPLETION_H_

#include <string>

#include <command_line/command.h>

namespace Tool {

/// Scripts that complete a program's command line in a shell: commands, options, the words of which
/// an option's value consists, and file names where a file is expected: in bash only those with
/// the right extension, in other shells these first.
/// @{
std::string BashCompletion(const Command& top);
std::string ZshCompletion(const Command& top);
std::string FishCompletion(const Command& top);
/// @}

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_COMPLETION_H_
