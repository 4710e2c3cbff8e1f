#ifndef SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_
#define SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <platform/file_pair.h>

namespace Tool {

/// A change of a file that is made completely or not at all: in a copy that replaces the file in
/// one step. Follows symbolic links. Throws `FileErrorC` on failure, with the file as it was and no
/// copy left.
class FileReplacementC {
 public:
  /// Whether a long change shows a progress bar on a terminal.
  enum class Progress { kShown, kHidden };

  /// Locks `file` as long as the object exists, so that the bytes to change can be read. Does not
  /// wait for another holder of the lock.
  explicit FileReplacementC(const std::string& file, Progress progress = Progress::kShown)
      : original_(file), progress_(progress) {}

  /// The size when it was locked.
  std::uint64_t GetSize() const { return original_.GetSize(); }
  /// Fills `bytes` from `offset` on; fewer bytes only at the end of the file.
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    return original_.Read(offset, bytes);
  }

  /// Replaces the file by a copy of it with `after` in place of `before` at `offset`. Holes stay
  /// holes. Access rights are preserved (see `CopiedFileC::KeepAccess`), or the change is refused;
  /// only the owner may change, if this user must not set it. Refuses if the bytes at `offset` are
  /// not `before`, or if the file has changed since it was locked. Signals that end the program
  /// take effect before or after the replacement, not during it. Can be called only once.
  void Replace(std::uint64_t offset, std::span<const std::uint8_t> before,
               std::span<const std::uint8_t> after);

 private:
  void Copy(CopiedFileC& copy, const HeldSignalsC& signals) const;
  void Verify(const CopiedFileC& copy, std::uint64_t offset,
              std::span<const std::uint8_t> bytes) const;

  OriginalFileC original_;
  Progress progress_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_
