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

/// Where a picture is written.
struct PictureOutput {
  std::string file;  ///< Empty for standard output.
  bool isGiven = false;

  /// \throw ToolErrorC  when it is not given, and the picture is not that of standard input.
  void Require(const std::string& input) const;
};

/// `-o,--output` for an SVG picture. Names that end like those of other kinds of pictures are
/// refused. Required, unless the picture is that of standard input: call `Require`.
CommandOption PictureOption(PictureOutput& output);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_COMMON_OPTIONS_H_
