#ifndef SURVEYDATA_TOOLS_OUTPUT_OUTPUT_H_
#define SURVEYDATA_TOOLS_OUTPUT_OUTPUT_H_

#include <cstddef>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <platform/format.h>

namespace Tool {

/// Standard output or a file, written through one buffer of fixed size. Throws `ToolErrorC` if
/// writing fails.
class OutputC {
 public:
  /// Writes to standard output if `file` is empty. Refuses to overwrite one of `inputs`, the files
  /// that the command reads, which may mean standard input. Empty names mean no file.
  explicit OutputC(const std::string& file = {}, std::span<const std::string> inputs = {});
  OutputC(const OutputC&) = delete;
  OutputC& operator=(const OutputC&) = delete;
  ~OutputC();

  /// The buffer to which output is appended; call `FlushIfFull` after each line or record.
  fmt::memory_buffer& GetBuffer() { return buffer_; }
  void FlushIfFull() {
    if (buffer_.size() >= kFull) Flush();
  }

  template <class... Args>
  void Print(fmt::format_string<Args...> format, Args&&... args) {
    Append(buffer_, format, std::forward<Args>(args)...);
    FlushIfFull();
  }

  /// Writes a long text without copying it.
  void Write(std::string_view text);

  /// Writes the rest of the buffer. Call it at the end: only then is everything known to be
  /// written.
  void Close();

 private:
  static constexpr std::size_t kFull = std::size_t{64} * 1024;

  void Flush();
  void WriteNow(std::string_view text);

  std::string name_;
  std::FILE* file_;
  fmt::memory_buffer buffer_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_OUTPUT_H_
