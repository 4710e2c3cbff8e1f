#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_EXIT_CODE_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_EXIT_CODE_H_

#include <stdexcept>
#include <string>

namespace Tool {

/// The exit codes of the program.
enum class ExitCode : int {
  kDone = 0,
  kFinding = 1,          ///< A finding, such as a gap, a bad frame or a direction outside.
  kUsage = 2,            ///< The command line is wrong.
  kFileError = 3,        ///< A file cannot be read or written.
  kCannotBeQueried = 4,  ///< The question has no answer, for example because the area is not valid.
};

/// Ends the command: `main` prints the message and exits with the code.
class ToolErrorC : public std::runtime_error {
 public:
  /// `hint` is a second line.
  ToolErrorC(ExitCode code, const std::string& message, const std::string& hint = {})
      : runtime_error(message), code_(code), hint_(hint) {}

  ExitCode GetCode() const { return code_; }
  const std::string& GetHint() const { return hint_; }

 private:
  ExitCode code_;
  std::string hint_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_EXIT_CODE_H_
