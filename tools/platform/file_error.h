#ifndef SURVEYDATA_TOOLS_PLATFORM_FILE_ERROR_H_
#define SURVEYDATA_TOOLS_PLATFORM_FILE_ERROR_H_

#include <stdexcept>

namespace Tool {

/// A file cannot be read or written, as `what()` says. The program exits with
/// `ExitCode::kFileError`.
class FileErrorC : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_FILE_ERROR_H_
