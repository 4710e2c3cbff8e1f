#ifndef SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_
#define SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <platform/file_pair.h>

namespace Tool {

/// A change of a file that happens whole or not at all: it is made in a copy beside the file, which
/// then takes the file's place in one step. Follows symbolic links. Throws `FileErrorC` on failure;
/// the file is as it was then, and the copy is removed.
class FileReplacementC {
 public:
  /// Locks `file` for as long as the object lives: read what is to be changed meanwhile. Does not
  /// wait for another holder of the lock.
  explicit FileReplacementC(const std::string& file) : original_(file) {}

  /// The size when it was locked.
  std::uint64_t GetSize() const { return original_.GetSize(); }
  /// Everything from `offset` on that fits into `bytes`; less only at the end of the file.
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    return original_.Read(offset, bytes);
  }

  /// Puts a copy of the file, with `after` where `before` stands at `offset`, in the file's place;
  /// owner and permissions are kept, except for an owner that only root may set. Refuses when
  /// `before` does not stand there, or when the file was changed since it was locked. The signals
  /// that end a program are answered before or after, not in between. Can be called once.
  void Replace(std::uint64_t offset, std::span<const std::uint8_t> before,
               std::span<const std::uint8_t> after);

 private:
  void Copy(CopiedFileC& copy, const HeldSignalsC& signals) const;
  void Verify(const CopiedFileC& copy, std::uint64_t offset,
              std::span<const std::uint8_t> bytes) const;

  OriginalFileC original_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_
