#ifndef SURVEYDATA_GNSS_GPS_RECORD_READER_H_
#define SURVEYDATA_GNSS_GPS_RECORD_READER_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <span>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_outcome.h>
#include <surveydata/object_model/export.h>

namespace SDI {

/// The bytes `[begin, end)` of a source; by default all of it.
struct GPSRecordStretch {
  std::uint64_t begin = 0;
  std::uint64_t end = std::numeric_limits<std::uint64_t>::max();

  bool IsWhole() const { return begin == 0 && end == std::numeric_limits<std::uint64_t>::max(); }
  bool operator==(const GPSRecordStretch&) const = default;
};

/// A measurement returned by a reader. It belongs to the reader and is valid until the reader
/// advances; copy the measurement to keep it.
class SURVEYDATA_API GPSRecordC {
 public:
  GPSRecordC(const GPSRecordC&) = delete;
  GPSRecordC& operator=(const GPSRecordC&) = delete;

  /// The offset of the frame in the source.
  std::uint64_t GetOffset() const;
  /// The size of the frame in bytes, at most 500.
  std::uint64_t GetSize() const;
  /// `kDone`, or `kBlockDoesNotFit` with the blocks before `GetBlock()` stored.
  GPSRecordOutcome GetOutcome() const;
  /// The block that does not fit; `kChecksum` if all do.
  GPSRecordBlock GetBlock() const;
  bool IsDone() const;

  /// The measurement, in fresh data: fields that the frame does not carry have their defaults.
  const GPSMeasDataC& GetMeasurement() const;
  /// Number, name and flags from the frame. The other fields are 0.
  const GPSRecordFileInfo& GetInfo() const;
  /// The whole frame, including header and checksum.
  std::span<const std::uint8_t> GetBytes() const;

 private:
  friend class GPSRecordReaderC;
  struct SURVEYDATA_HIDDEN Data;

  GPSRecordC();
  ~GPSRecordC();

  std::unique_ptr<Data> data_;
};

/// Reads the measurements of a record file, a pipe, bytes in memory, or a caller's function, from
/// front to back:
///
///     for (const GPSRecordC& record : GPSRecordReaderC("valley_drive.rec")) ...
///
/// The records are those that `GPSRecordIndexC` finds. The source is only read, and may be
/// read-only. A reader has no state outside itself: any number of readers may run in any number of
/// threads, even on the same file or bytes; only one thread at a time may use one reader. Files are
/// read in blocks, not mapped: a file that is truncated during reading just ends earlier.
///
/// **Stretches.** A reader of the stretch `[begin, end)` returns the records, gaps and damaged
/// headers that begin there in the walk from the start of the source: the results of adjacent
/// stretches together are those of the whole. To find the first record, it reads the 131,074 bytes
/// before `begin`. If the bytes were crafted so that several possible walks never meet, it doubles
/// this distance repeatedly, if necessary back to the start of the source.
///
/// A stretch that begins at or after the end of the source is empty, however far away it is.
///
/// \cost time linear in the number of bytes, whatever they are. Memory: 0.27 MB for a source of
///       any size, 9 KB for bytes in memory, 17 KB more for a stretch. Nothing is allocated after
///       construction.
class SURVEYDATA_API GPSRecordReaderC {
 public:
  /// Reads bytes of a source, starting at `offset`, into `to`. Returns how many were read, possibly
  /// fewer than requested; 0 at the end of the source; a negative number if reading failed. An
  /// exception passes through the reader, which can continue afterwards.
  using ReadAt = std::function<std::ptrdiff_t(std::uint64_t offset, std::span<std::uint8_t> to)>;
  using ReportDamaged = std::function<void(const GPSDamagedHeader& header)>;
  using ReportProgress = std::function<void(std::uint64_t offset)>;
  class Iterator;

  /// Reads a file, or a pipe that has a name. `fileName` is the whole name.
  explicit GPSRecordReaderC(const char* fileName, GPSRecordStretch stretch = {});
  /// Reads `stream` from its current position to its end, without seeking. The caller has opened it
  /// in binary mode, and closes it after the reader is destroyed. Offsets are relative to that
  /// position.
  explicit GPSRecordReaderC(std::FILE* stream);
  /// Reads `bytes`, which are not copied: they must outlive the reader.
  explicit GPSRecordReaderC(std::span<const std::uint8_t> bytes, GPSRecordStretch stretch = {});
  /// Reads `size` bytes through `readAt`.
  GPSRecordReaderC(ReadAt readAt, std::uint64_t size, GPSRecordStretch stretch = {});
  GPSRecordReaderC(const GPSRecordReaderC&) = delete;
  GPSRecordReaderC& operator=(const GPSRecordReaderC&) = delete;
  ~GPSRecordReaderC();

  GPSReaderState GetState() const;
  /// The size of the source in bytes when it was opened; 0 if unknown (a pipe).
  std::uint64_t GetSize() const;

  /// Makes the reader report each damaged header that it passes, in the order of their offsets, and
  /// before it returns the gap or the record that ends the gap. A null function ends the reports.
  void SetReportDamaged(ReportDamaged report);
  /// Makes the reader report its offset about every mebibyte, also while it looks back from a
  /// stretch. An exception thrown by the function passes through the reader, which can continue
  /// afterwards. A null function ends the reports.
  void SetReportProgress(ReportProgress report);

  /// Advances to the next measurement, which `GetRecord()` then returns. False if there is none.
  bool Next();
  /// Advances to the next record of any kind, or the gap before it, as `GPSRecordIndexC` lists
  /// them. If it is a measurement, `GetRecord()` decodes and returns it. Gaps are cut at the ends
  /// of the stretch.
  bool NextEntry(GPSRecordEntry& entry);
  /// The current measurement. If `NextEntry` reached something else, the last one that was decoded.
  const GPSRecordC& GetRecord() const;
  /// The bytes of the current record, of any kind, valid until the reader advances. Empty for a gap
  /// and at the end.
  std::span<const std::uint8_t> GetBytes() const;

  /// The remaining records. A reader can be iterated over only once.
  /// @{
  [[gnu::always_inline]] Iterator begin();
  [[gnu::always_inline]] std::default_sentinel_t end() { return {}; }
  /// @}

  /// Decodes one frame. Nothing is reset first, as in `GPSRecordFileC::ReadGPSMeasData`: fields
  /// that the frame does not carry keep their values. Bytes after the frame are ignored.
  /// Nothing changes unless the outcome is `kDone` or `kBlockDoesNotFit`, which stores the blocks
  /// before that one. Allocates nothing.
  static GPSDecodeResult Decode(std::span<const std::uint8_t> frame, GPSMeasDataImplC& measurement,
                                GPSRecordFileInfo& info);

 private:
  struct SURVEYDATA_HIDDEN State;

  std::unique_ptr<State> state_;
};

/// Iterates over the measurements of a reader, once.
class GPSRecordReaderC::Iterator {
 public:
  using iterator_concept = std::input_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using value_type = GPSRecordC;
  using difference_type = std::ptrdiff_t;
  using pointer = const GPSRecordC*;
  using reference = const GPSRecordC&;

  explicit Iterator(GPSRecordReaderC& reader) : reader_(&reader) { ++*this; }

  reference operator*() const { return reader_->GetRecord(); }
  pointer operator->() const { return &reader_->GetRecord(); }
  Iterator& operator++() {
    if (!reader_->Next()) reader_ = nullptr;
    return *this;
  }
  void operator++(int) { ++*this; }
  bool operator==(std::default_sentinel_t) const { return reader_ == nullptr; }

 private:
  GPSRecordReaderC* reader_;  // null at the end
};

inline GPSRecordReaderC::Iterator GPSRecordReaderC::begin() { return Iterator(*this); }

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_READER_H_
