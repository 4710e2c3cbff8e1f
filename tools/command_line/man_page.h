#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_MAN_PAGE_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_MAN_PAGE_H_

#include <string>

#include <command_line/command.h>

namespace Tool {

/// The manual page of a program in the language of man(7). `date` and `version` are in its
/// footer.
std::string ManPage(const Command& top, const std::string& date, const std::string& version);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_MAN_PAGE_H_
