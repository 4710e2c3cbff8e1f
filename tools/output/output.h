#ifndef SURVEYDATA_TOOLS_OUTPUT_OUTPUT_H_
#define SURVEYDATA_TOOLS_OUTPUT_OUTPUT_H_

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <platform/format.h>

namespace Tool {

/// Standard output or a file, written through one buffer of fixed size that is used again and
/// again. Throws `ToolErrorC` where writing fails.
class OutputC {
 public:
  /// To standard output when `file` is empty. Refuses to overwrite the file `input`, which may mean
  /// standard input.
  explicit OutputC(const std::string& file = {}, const std::string& input = {});
  OutputC(const OutputC&) = delete;
  OutputC& operator=(const OutputC&) = delete;
  ~OutputC();

  /// Where text is appended; call `FlushIfFull` after each line or record.
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

  /// Writes what is left. Call it at the end: only then it is known that all is written.
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
