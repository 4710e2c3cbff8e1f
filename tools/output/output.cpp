#include <cerrno>
#include <cstring>

#include <command_line/exit_code.h>
#include <output/output.h>
#include <platform/input_file.h>

namespace Tool {

OutputC::OutputC(const std::string& file, std::span<const std::string> inputs)
    : name_(file.empty() ? "standard output" : file), file_(stdout) {
  if (file.empty()) return;
  for (const std::string& input : inputs) {
    if (!input.empty() && IsSameRegularFile(file, input)) {
      throw ToolErrorC(ExitCode::kUsage, fmt::format("{} is the input itself", file));
    }
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

void OutputC::Write(std::string_view text) {
  Flush();
  WriteNow(text);
}

void OutputC::Flush() {
  // The buffer is empty afterwards even if this fails.
  const std::size_t size = buffer_.size();
  buffer_.clear();
  WriteNow({buffer_.data(), size});
}

void OutputC::WriteNow(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_) == text.size()) return;
  throw ToolErrorC(ExitCode::kFileError,
                   fmt::format("cannot write {}: {}", name_, std::strerror(errno)));
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
