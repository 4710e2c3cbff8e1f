#ifndef SURVEYDATA_GNSS_GPS_RECORD_INDEX_H_
#define SURVEYDATA_GNSS_GPS_RECORD_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include <surveydata/object_model/export.h>

namespace SDI {

/// A part of a record file: a record of any kind, or a gap between records.
struct GPSRecordEntry {
  static constexpr std::uint8_t kMeasurement = 113;  ///< The kind of a GNSS measurement.
  static constexpr std::size_t kLongestMeasurement = 500;

  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  bool isGap = false;
  std::uint8_t type = 0;  ///< The kind of the record; 0 for a gap.

  /// Whether this is the frame of a GNSS measurement, of a valid length. Reading it may still find
  /// blocks that do not fit.
  bool IsMeasurement() const {
    return !isGap && type == kMeasurement && size <= kLongestMeasurement;
  }

  bool operator==(const GPSRecordEntry&) const = default;
};

/// Walks a record file of any size, or bytes in memory, from front to back.
///
/// A record is where the magic, a length of at least 5 and a correct checksum are; the walk
/// continues after it. Elsewhere the walk advances by one byte, so that it finds the next record
/// after any damage. Together the entries cover the file exactly once. Records inside the body of
/// another record are not listed. The file is only read, and may be read-only. `GPSRecordReaderC`
/// also decodes the measurements.
///
/// \cost time linear in the size of the file, whatever it contains. Memory: 0.27 MB for a file,
///       5 KB for bytes in memory.
class SURVEYDATA_API GPSRecordIndexC {
 public:
  explicit GPSRecordIndexC(const char* fileName);
  /// Walks `bytes`, which are not copied: they must outlive the index.
  explicit GPSRecordIndexC(std::span<const std::uint8_t> bytes);
  GPSRecordIndexC(const GPSRecordIndexC&) = delete;
  GPSRecordIndexC& operator=(const GPSRecordIndexC&) = delete;
  ~GPSRecordIndexC();

  /// Whether the file could be opened; true for bytes in memory.
  bool IsOpen() const;
  /// Whether reading failed; if so, the walk has ended.
  bool HasFailed() const;
  /// The size in bytes when the file was opened; 0 for a pipe.
  std::uint64_t GetFileSize() const;

  /// The next record or gap; false at the end of the file.
  bool Next(GPSRecordEntry& entry);

  /// The bytes of the record that `Next` gave last, valid until its next call. Empty for a gap.
  std::span<const std::uint8_t> GetBytes() const;

 private:
  struct Window;

  std::FILE* file_ = nullptr;
  std::uint64_t fileSize_ = 0;
  std::unique_ptr<Window> window_;
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_INDEX_H_
