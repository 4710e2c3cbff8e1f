#include <cerrno>
#include <cstring>

#include <command_line/exit_code.h>
#include <output/output.h>
#include <platform/input_file.h>

namespace Tool {

OutputC::OutputC(const std::string& file, const std::string& input)
    : name_(file.empty() ? "standard output" : file), file_(stdout) {
  if (file.empty()) return;
  if (!input.empty() && IsSameRegularFile(file, input)) {
    throw ToolErrorC(ExitCode::kUsage, fmt::format("{} is the input itself", file));
  }
  file_ = std::fopen(file.c_str(), "wb");
  if (file_ == nullptr) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot write {}: {}", file, std::strerror(errno)));
  }
}

OutputC::~OutputC() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

void OutputC::Flush() {
  const bool isWritten = std::fwrite(buffer_.data(), 1, buffer_.size(), file_) == buffer_.size();
  buffer_.clear();
  if (!isWritten) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot write {}: {}", name_, std::strerror(errno)));
  }
}

void OutputC::Close() {
  Flush();
  std::FILE* const file = file_;
  const bool isWritten = file == stdout ? std::fflush(file) == 0 : std::fclose(file) == 0;
  if (file != stdout) file_ = nullptr;
  if (!isWritten) {
    throw ToolErrorC(ExitCode::kFileError,
                     fmt::format("cannot write {}: {}", name_, std::strerror(errno)));
  }
}

}  // namespace Tool
