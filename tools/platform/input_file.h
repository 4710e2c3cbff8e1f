#ifndef SURVEYDATA_TOOLS_PLATFORM_INPUT_FILE_H_
#define SURVEYDATA_TOOLS_PLATFORM_INPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace Tool {

/// Whether this name of the command line means standard input: "-", or "/dev/stdin".
bool IsStandardInput(const std::string& name);

/// Whether both are one regular file. `input` may mean standard input.
bool IsSameRegularFile(const std::string& output, const std::string& input);

/// A file, a pipe or standard input, opened once to be read. Only regular files are sought in: a
/// pipe is read on, and waits for nothing but its writer. Throws `FileErrorC` on failure, with the
/// reason of the call that failed.
class InputFileC {
 public:
  explicit InputFileC(const std::string& name);
  InputFileC(const InputFileC&) = delete;
  InputFileC& operator=(const InputFileC&) = delete;
  ~InputFileC();

  /// For messages: "standard input" for "-".
  const std::string& GetName() const { return name_; }
  /// Whether `ReadAt` can be called: it is a regular file with something in it.
  bool CanSeek() const { return size_ > 0; }
  /// The size in bytes when it was opened, of standard input from where it was; 0 when it is not
  /// known.
  std::uint64_t GetSize() const { return size_; }

  /// The next bytes, as soon as there are any; 0 at the end.
  std::size_t Read(std::span<char> to);
  /// Bytes from `offset` on, fewer than asked for at the end; -1 on failure, which `Fail` reports
  /// then. Of standard input, offsets count from where it was.
  std::ptrdiff_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> to);
  /// Unbuffered, for a caller that reads all of it.
  std::FILE* GetStream() const { return file_; }

  /// Throws that reading failed, with the reason of `ReadAt`, or else `errno`.
  [[noreturn]] void Fail() const;

 private:
  bool IsStandard() const { return file_ == stdin; }

  std::string name_;
  std::FILE* file_;
  std::uint64_t start_ = 0;
  std::uint64_t size_ = 0;
  int error_ = 0;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_INPUT_FILE_H_
