#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_COMPLETION_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_COMPLETION_H_

#include <string>

#include <command_line/command.h>

namespace Tool {

/// Scripts that complete a program's command line in a shell: commands, options, the words that an
/// option's value consists of, and the names of files where they belong, those with the right
/// extension.
/// @{
std::string BashCompletion(const Command& top);
std::string ZshCompletion(const Command& top);
std::string FishCompletion(const Command& top);
/// @}

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_COMPLETION_H_
