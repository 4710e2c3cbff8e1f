#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_COMMON_OPTIONS_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_COMMON_OPTIONS_H_

#include <functional>
#include <string>

#include <command_line/command.h>

namespace Tool {

/// For `CommandOption::take`: stores the value as it is given. `text` must outlive the parsing.
std::function<void(const std::string&)> StoreIn(std::string& text);

/// `-o,--output` with a file name that is not empty; - leaves `output` empty, for standard output.
CommandOption OutputOption(std::string& output, const std::string& description,
                           const std::string& value);

/// A required `-o,--output` for an SVG picture. Names that end like pictures of another kind are
/// refused.
CommandOption PictureOption(std::string& output);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_COMMON_OPTIONS_H_
