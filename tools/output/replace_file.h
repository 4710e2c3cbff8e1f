#ifndef SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_
#define SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include <platform/file_pair.h>

namespace Tool {

/// Bytes of a file that are to be changed.
struct FilePatch {
  std::uint64_t offset;
  std::size_t size;
  std::uint64_t mark = 0;  ///< The caller defines its meaning.
};

/// Changes the bytes of a patch, given as they are in the file; false if these are not the bytes to
/// be changed. Repeated calls give the same result.
using ChangeBytes = std::function<bool(const FilePatch& patch, std::span<std::uint8_t> bytes)>;

/// A change of a file that is made completely or not at all: in a copy that replaces the file in
/// one step. Follows symbolic links. Throws `FileErrorC` on failure, with the file unchanged and no
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
  /// Fills `bytes`, starting at `offset`; fewer bytes only at the end of the file.
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    return original_.Read(offset, bytes);
  }

  /// Replaces the file by a copy of it in which `change` has changed the bytes of each patch.
  /// `patches` are by ascending offset and do not overlap. Holes are preserved. Access rights are
  /// preserved (see `CopiedFileC::KeepAccess`), or the change is refused; only the owner may
  /// change, if this user must not set it. Refuses if `change` does, or if the file has changed
  /// since it was locked. Signals that end the program take effect before or after the replacement,
  /// not during it. Can be called only once.
  void Replace(std::span<const FilePatch> patches, const ChangeBytes& change);
  /// The same with `after` in place of `before` at `offset`, of the same length.
  void Replace(std::uint64_t offset, std::span<const std::uint8_t> before,
               std::span<const std::uint8_t> after);

 private:
  void Copy(CopiedFileC& copy, const HeldSignalsC& signals) const;
  void Patch(CopiedFileC& copy, std::span<const FilePatch> patches, const ChangeBytes& change,
             const HeldSignalsC& signals) const;
  void Verify(const CopiedFileC& copy, std::span<const FilePatch> patches,
              const ChangeBytes& change) const;

  OriginalFileC original_;
  Progress progress_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_REPLACE_FILE_H_
