#ifndef SURVEYDATA_TOOLS_PLATFORM_FILE_PAIR_H_
#define SURVEYDATA_TOOLS_PLATFORM_FILE_PAIR_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include <platform/file_error.h>

/// \file
/// A file that is to be replaced, and the copy that takes its place, as the operating system has
/// them: `file_pair_posix.cpp` or `file_pair_windows.cpp`. All of it throws `FileErrorC` on
/// failure, with the file as it was.

namespace Tool {

/// The file, locked against other programs that do the same for as long as the object lives.
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
  /// Everything from `offset` on that fits into `bytes`; less only at the end of the file.
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
  /// Replacing needs no right to write the file itself, so ask for it.
  void RequireWritable() const;
  /// Whether another program changed or replaced it, where the lock does not keep it from that.
  bool IsChanged() const;

  /// Throws, with what went wrong.
  [[noreturn]] void Refuse(const std::string& what) const {
    throw FileErrorC(what + "; " + name_ + " is as it was");
  }
  /// The same, with what the operating system says.
  [[noreturn]] void Fail(const std::string& what) const;

 private:
  friend class CopiedFileC;
  struct Platform;

  std::string name_;
  std::uint64_t size_ = 0;
  std::unique_ptr<Platform> platform_;
};

/// A new file beside the original, removed unless it takes its place.
class CopiedFileC {
 public:
  explicit CopiedFileC(OriginalFileC& original);
  CopiedFileC(const CopiedFileC&) = delete;
  CopiedFileC& operator=(const CopiedFileC&) = delete;
  ~CopiedFileC();

  /// For messages.
  const std::string& GetName() const { return name_; }
  /// As of the original.
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
  void Write(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  /// Takes over who may do what with the original.
  void KeepOwnerAndMode();
  /// Brings what was written to the disk.
  void Flush();
  /// In one step, and brings that to the disk too. Nothing else can be done with either afterwards.
  void TakePlace();

 private:
  struct Platform;

  OriginalFileC& original_;
  std::string name_;
  std::unique_ptr<Platform> platform_;
};

/// Holds back, as long as it lives, what would end the program with a copy left behind: the signals
/// that are not ignored, or Ctrl-C and the closing of the console. They have their effect
/// afterwards.
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
