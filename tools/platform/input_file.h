#ifndef SURVEYDATA_TOOLS_PLATFORM_INPUT_FILE_H_
#define SURVEYDATA_TOOLS_PLATFORM_INPUT_FILE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace Tool {

/// Whether this name from the command line means standard input: "-" or "/dev/stdin", and on POSIX
/// systems "/dev/fd/0" or "/proc/self/fd/0".
bool IsStandardInput(const std::string& name);

/// Whether both are the same regular file. `input` may mean standard input.
bool IsSameRegularFile(const std::string& output, const std::string& input);

/// The size in bytes of a file that is to be opened later, 0 if it is not a regular file.
/// \throw FileErrorC  with the reason if it cannot be opened; on Windows only opening shows that
///                    another program has locked a file, or that this user must not read it.
std::uint64_t ReadableSize(const std::string& name);

/// A file, a pipe or standard input, opened once for reading. Only regular files are seekable; a
/// pipe is read from front to back. Throws `FileErrorC` on failure, with the reason of the failed
/// call.
class InputFileC {
 public:
  explicit InputFileC(const std::string& name);
  InputFileC(const InputFileC&) = delete;
  InputFileC& operator=(const InputFileC&) = delete;
  ~InputFileC();

  /// For messages: "standard input" for "-".
  const std::string& GetName() const { return name_; }
  /// Whether `ReadAt` can be called: for a regular file that is not empty.
  bool CanSeek() const { return size_ > 0; }
  /// The size in bytes when the file was opened, for standard input starting at its initial
  /// position; 0 if not known.
  std::uint64_t GetSize() const { return size_; }

  /// The size that `GetSize` would return if the file were opened now; 0 if not known.
  std::uint64_t FindSize() const;

  /// Reads the next bytes as soon as there are any; returns 0 at the end.
  std::size_t Read(std::span<char> to);
  /// Reads bytes starting at `offset`, fewer than requested only at the end. Returns -1 on failure;
  /// `Fail` then reports it. Offsets in standard input are relative to its initial position.
  /// Several threads may call it at once.
  std::ptrdiff_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> to);
  /// The stream, without a buffer, for a caller that reads all of it.
  std::FILE* GetStream() const { return file_; }

  /// Throws the failure of `ReadAt`, or else that of `errno`.
  [[noreturn]] void Fail() const;

 private:
  bool IsStandard() const { return file_ == stdin; }

  std::string name_;
  std::FILE* file_;
  std::uint64_t start_ = 0;
  std::uint64_t size_ = 0;
  std::atomic<int> error_ = 0;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_INPUT_FILE_H_
