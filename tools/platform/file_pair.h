#ifndef SURVEYDATA_TOOLS_PLATFORM_FILE_PAIR_H_
#define SURVEYDATA_TOOLS_PLATFORM_FILE_PAIR_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include <platform/file_error.h>

/// \file
/// A file that is to be replaced and the copy that replaces it: `file_pair_posix.cpp` or
/// `file_pair_windows.cpp`. Every operation throws `FileErrorC` on failure and leaves the file
/// unchanged.

namespace Tool {

/// The bytes `[begin, end)` of a file.
struct FileStretch {
  std::uint64_t begin;
  std::uint64_t end;
};

/// The file, locked against other programs that use locks, as long as the object exists.
class OriginalFileC {
 public:
  /// Follows symbolic links. Does not wait for another holder of the lock.
  explicit OriginalFileC(const std::string& file);
  OriginalFileC(const OriginalFileC&) = delete;
  OriginalFileC& operator=(const OriginalFileC&) = delete;
  ~OriginalFileC();

  /// The name of the file itself, for messages.
  const std::string& GetName() const { return name_; }
  /// The size when it was locked.
  std::uint64_t GetSize() const { return size_; }
  /// Fills `bytes`, starting at `offset`; fewer bytes only at the end of the file.
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
  /// The first stretch at or after `offset` that is not a hole, within the size when it was locked;
  /// empty at that size if there is none. A system that does not report holes returns all bytes.
  FileStretch NextData(std::uint64_t offset) const;
  /// Refuses a file that this user must not write: replacing it would not need that permission.
  void RequireWritable() const;
  /// Whether another program changed or replaced the file despite the lock.
  bool IsChanged() const;

  /// Throws `FileErrorC` with `what`.
  [[noreturn]] void Refuse(const std::string& what) const {
    throw FileErrorC(what + "; " + name_ + " is unchanged");
  }
  /// The same, with the reason of the operating system.
  [[noreturn]] void Fail(const std::string& what) const;

 private:
  friend class CopiedFileC;
  struct Platform;

  std::string name_;
  std::uint64_t size_ = 0;
  std::unique_ptr<Platform> platform_;
};

/// A new file in the folder of the original. It has no name if the file system supports that, so
/// that nothing is left of it however the program ends. Otherwise it has a name, and is removed
/// unless it replaces the original. A named copy is locked as long as it is in use: a copy that a
/// killed program has left is not locked, and is removed when the next copy is created.
class CopiedFileC {
 public:
  /// `original` must outlive the copy.
  explicit CopiedFileC(OriginalFileC& original);
  CopiedFileC(const CopiedFileC&) = delete;
  CopiedFileC& operator=(const CopiedFileC&) = delete;
  ~CopiedFileC();

  /// For messages.
  const std::string& GetName() const { return name_; }
  /// As in `OriginalFileC`.
  /// @{
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
  FileStretch NextData(std::uint64_t offset) const;
  /// @}
  /// Sets the size of the copy; bytes that are never written are a hole if the system has holes.
  void SetSize(std::uint64_t size);
  void Write(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  /// Copies everything that controls access to the original: group, permissions, access control
  /// list, extended attributes, and the owner if this user may set it. Call it after the last
  /// write, which can clear some of them.
  void KeepAccess();
  /// Flushes the copy to the disk.
  void Flush();
  /// Replaces the original in one step and flushes the folder to the disk. Neither object can be
  /// used afterwards.
  void TakePlace();

 private:
  struct Platform;

  OriginalFileC& original_;
  std::string name_;
  std::unique_ptr<Platform> platform_;
};

/// Delays, as long as it exists, the signals that would end the program before the copy is
/// removed: all that end a program by default, except those raised by faults; on Windows Ctrl-C and
/// closing the console. They take effect afterwards. Signals that are ignored stay ignored.
class HeldSignalsC {
 public:
  HeldSignalsC();
  HeldSignalsC(const HeldSignalsC&) = delete;
  HeldSignalsC& operator=(const HeldSignalsC&) = delete;
  ~HeldSignalsC();

  bool IsAnyPending() const;

 private:
  struct Platform;

  std::unique_ptr<Platform> platform_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_FILE_PAIR_H_
