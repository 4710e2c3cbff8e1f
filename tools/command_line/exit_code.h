#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_EXIT_CODE_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_EXIT_CODE_H_

#include <stdexcept>
#include <string>

namespace Tool {

/// What the program tells its caller.
enum class ExitCode : int {
  kDone = 0,
  kFinding = 1,    ///< The data have what the user wants to hear of: a gap, a bad frame.
  kUsage = 2,      ///< The command line makes no sense.
  kFileError = 3,  ///< A file cannot be read or written.
};

/// Ends the command: `main` prints the message and exits with the code.
class ToolErrorC : public std::runtime_error {
 public:
  ToolErrorC(ExitCode code, const std::string& message) : runtime_error(message), code_(code) {}

  ExitCode GetCode() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_EXIT_CODE_H_
