#include "output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "exit_code.h"
#include "platform.h"

namespace Tool {

OutputC::OutputC(const std::string& file, const std::string& input)
    : name_(file.empty() ? "standard output" : file), file_(stdout) {
  if (file.empty()) return;
  std::error_code ignored;
  if (!input.empty() && std::filesystem::equivalent(ToPath(file), ToPath(input), ignored)) {
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

CLI::Option* AddOutputOption(CLI::App& command, std::string& output, const std::string& description,
                             const std::string& typeName) {
  return command
      .add_option_function<std::string>(
          "-o,--output",
          [&output](const std::string& name) {
            if (name.empty()) throw CLI::ValidationError("--output", "needs the name of a file");
            output = name == "-" ? "" : name;
          },
          description + "; written in place, so a run that fails leaves a part of it")
      ->type_name(typeName);
}

CLI::Option* AddPictureOption(CLI::App& command, std::string& output) {
  return AddOutputOption(command, output, "The picture to write, - for standard output", "OUT.svg")
      ->required()
      ->check([](const std::string& name) {
        const std::string extension = CLI::detail::to_lower(ToPath(name).extension().string());
        for (const char* const other : {".png", ".jpg", ".jpeg", ".pdf", ".gif"}) {
          if (extension == other) return fmt::format("{} is no name for an SVG picture", name);
        }
        return std::string();
      });
}

}  // namespace Tool
