#ifndef SURVEYDATA_GNSS_FILE_ACCESS_H_
#define SURVEYDATA_GNSS_FILE_ACCESS_H_

#include <cstdint>
#include <cstdio>
#include <limits>

/// \file
/// Internal: file operations that differ between platforms: 64-bit offsets, truncation, and the
/// reason why a file cannot be opened.

namespace SDI::FileAccess {

/// A signed offset of 64 bits on every platform.
using Offset = std::int64_t;

inline constexpr std::uint64_t kMaxOffset = std::numeric_limits<Offset>::max();

/// Opens a file for reading. Null on failure, and for a folder, with the reason in `errno`.
std::FILE* OpenToRead(const char* fileName);

/// A file that is open for appending: the system puts every write at its current end.
struct Appended {
  std::FILE* file = nullptr;  ///< Null on failure, with the reason in `errno`.
  bool isNew = false;         ///< Whether opening has created it.
};
Appended OpenToAppend(const char* fileName);

/// Positions the file at `offset`, which is at most `kMaxOffset`.
bool Seek(std::FILE* file, std::uint64_t offset);
/// Whether `Seek` has just failed because no file of the system reaches that far, from `errno`.
bool IsBeyondAnyFile();
/// Positions the file at its end. False for a pipe.
bool SeekToEnd(std::FILE* file);
/// The position; negative on failure.
Offset Tell(std::FILE* file);
/// Truncates the file to `size` bytes.
bool Truncate(std::FILE* file, Offset size);

enum class OpenFailure : std::uint8_t { kNoSuchFile, kNoPermission, kOther };

/// Why `fopen` has just failed, from `errno`.
OpenFailure GetOpenFailure();

}  // namespace SDI::FileAccess

#endif  // SURVEYDATA_GNSS_FILE_ACCESS_H_
