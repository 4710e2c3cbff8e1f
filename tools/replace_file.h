#ifndef SURVEYDATA_TOOLS_REPLACE_FILE_H_
#define SURVEYDATA_TOOLS_REPLACE_FILE_H_

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace Tool {

/// A file descriptor that is closed on every way out.
class DescriptorC {
 public:
  explicit DescriptorC(int descriptor = -1) : descriptor_(descriptor) {}
  DescriptorC(const DescriptorC&) = delete;
  DescriptorC& operator=(const DescriptorC&) = delete;
  DescriptorC& operator=(DescriptorC&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~DescriptorC() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

/// A change of a file that happens whole or not at all: it is made in a copy beside the file, which
/// then takes the file's place in one step. Follows symbolic links. Throws `ToolErrorC` on failure;
/// the file is as it was then, and the copy is removed.
class FileReplacementC {
 public:
  /// Locks `file` (`flock`) for as long as the object lives: read what is to be changed meanwhile.
  /// Does not wait for another holder of the lock.
  explicit FileReplacementC(const std::string& file);

  /// Puts a copy of the file, with `after` where `before` stands at `offset`, in the file's place;
  /// owner and permissions are kept, except for an owner that only root may set. Refuses when
  /// `before` does not stand there, or when the file was changed since it was locked. The signals
  /// that end a program are answered before or after, not in between.
  void Replace(std::uint64_t offset, std::span<const std::uint8_t> before,
               std::span<const std::uint8_t> after);

 private:
  class SignalsC;
  class CopyC;

  void Copy(const CopyC& copy, const SignalsC& signals) const;
  void KeepOwnerAndMode(const CopyC& copy) const;
  void Verify(const CopyC& copy, std::uint64_t offset, std::span<const std::uint8_t> bytes) const;
  bool IsReplaced() const;
  bool IsChanged() const;
  [[noreturn]] void Refuse(const std::string& what) const;
  [[noreturn]] void Fail(const std::string& what) const;

  std::filesystem::path file_;
  DescriptorC original_;
  struct stat status_ {};  ///< Of the original when it was locked.
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_REPLACE_FILE_H_
