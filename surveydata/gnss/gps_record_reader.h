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

/// The bytes `[begin, end)` of a source. Without limits it is the whole.
struct GPSRecordStretch {
  std::uint64_t begin = 0;
  std::uint64_t end = std::numeric_limits<std::uint64_t>::max();

  bool IsWhole() const { return begin == 0 && end == std::numeric_limits<std::uint64_t>::max(); }
  bool operator==(const GPSRecordStretch&) const = default;
};

/// A measurement as a reader hands it out. It belongs to the reader, and is valid until the reader
/// goes on; copy the measurement to keep it.
class SURVEYDATA_API GPSRecordC {
 public:
  GPSRecordC(const GPSRecordC&) = delete;
  GPSRecordC& operator=(const GPSRecordC&) = delete;

  /// Where the frame lies in the source.
  std::uint64_t GetOffset() const;
  /// The size of the frame in bytes, at most 500.
  std::uint64_t GetSize() const;
  /// `kDone` or `kBlockDoesNotFit`; then the blocks before `GetBlock()` are stored.
  GPSRecordOutcome GetOutcome() const;
  /// The block that does not fit; `kChecksum` when all do.
  GPSRecordBlock GetBlock() const;
  bool IsDone() const;

  /// The measurement, in fresh data: fields that the frame does not carry have their defaults.
  const GPSMeasDataC& GetMeasurement() const;
  /// Number, name and flags that the frame carries. The other fields are 0.
  const GPSRecordFileInfo& GetInfo() const;
  /// The whole frame, header and checksum included.
  std::span<const std::uint8_t> GetBytes() const;

 private:
  friend class GPSRecordReaderC;
  struct SURVEYDATA_HIDDEN Data;

  GPSRecordC();
  ~GPSRecordC();

  std::unique_ptr<Data> data_;
};

/// Reads the measurements of a record file, of a pipe, of bytes in memory, or of whatever a
/// function reads, from front to back:
///
///     for (const GPSRecordC& record : GPSRecordReaderC("valley_drive.rec")) ...
///
/// The records are those that `GPSRecordIndexC` finds. The source is only read, and may be
/// read-only. A reader keeps no state outside itself: any number of readers may run in any number
/// of threads, also over the same file or the same bytes; one reader is used by one thread at a
/// time. Files are read in blocks, never mapped: a file that shrinks meanwhile ends earlier.
///
/// **Stretches.** A reader of the stretch `[begin, end)` gives the records that begin there in the
/// walk from the start of the source, and so do its gaps and damaged headers: the stretches of any
/// cuts join to the whole. To know which records those are, it reads 131,074 bytes before `begin`;
/// where bytes were made so that several walks never meet, twice as much each time, at last from
/// the start.
///
/// \cost time linear in the bytes, whatever they are; 0.8 MB of memory for a source of any size,
/// 0.5
///       MB for bytes in memory. Nothing is allocated after construction.
class SURVEYDATA_API GPSRecordReaderC {
 public:
  /// Reads bytes of a source, from `offset` on, into `to`: answers how many were read, which may be
  /// fewer than asked for; 0 where the source ends; a negative number when reading failed. An
  /// exception passes through the reader, which can go on afterwards.
  using ReadAt = std::function<std::ptrdiff_t(std::uint64_t offset, std::span<std::uint8_t> to)>;
  using ReportDamaged = std::function<void(const GPSDamagedHeader& header)>;
  using ReportProgress = std::function<void(std::uint64_t offset)>;
  class Iterator;

  /// Reads a file, or a pipe that has a name. `fileName` is the whole name.
  explicit GPSRecordReaderC(const char* fileName, GPSRecordStretch stretch = {});
  /// Reads `stream` on from where it is, without seeking, to its end. It stays the caller's, who
  /// has opened it in binary mode, keeps it open as long as the reader, and closes it. Offsets
  /// count from where it was.
  explicit GPSRecordReaderC(std::FILE* stream);
  /// Reads `bytes`, which are not copied: they must stay as long as the reader.
  explicit GPSRecordReaderC(std::span<const std::uint8_t> bytes, GPSRecordStretch stretch = {});
  /// Reads what `readAt` gives, up to `size` bytes.
  GPSRecordReaderC(ReadAt readAt, std::uint64_t size, GPSRecordStretch stretch = {});
  GPSRecordReaderC(const GPSRecordReaderC&) = delete;
  GPSRecordReaderC& operator=(const GPSRecordReaderC&) = delete;
  ~GPSRecordReaderC();

  GPSReaderState GetState() const;
  /// The size of the source in bytes when it was opened; 0 when it is not known (a pipe).
  std::uint64_t GetSize() const;

  /// Makes the reader report each damaged header that it passes: in the order of their offsets, and
  /// before the record that ends their gap, or the gap itself, is given. Without a function it
  /// reports no more.
  void SetReportDamaged(ReportDamaged report);
  /// Makes the reader tell about every mebibyte how far it has come, also while it looks back from
  /// a stretch. An exception of the function passes through the reader, which can go on afterwards.
  /// Without a function it tells no more.
  void SetReportProgress(ReportProgress report);

  /// Goes on to the next measurement, which is `GetRecord()` then. False when there is none.
  bool Next();
  /// Goes on to the next record of any kind, or to the gap before it, as `GPSRecordIndexC` lists
  /// them. A measurement is `GetRecord()` then, which decodes it. A gap is cut at the ends of the
  /// stretch.
  bool NextEntry(GPSRecordEntry& entry);
  /// The measurement that was reached last, or, after `NextEntry`, was last asked for.
  const GPSRecordC& GetRecord() const;
  /// The bytes of the record, of whatever kind, that was reached last, valid until the reader goes
  /// on. Empty for a gap and at the end.
  std::span<const std::uint8_t> GetBytes() const;

  /// The records that are left; a reader is walked once.
  /// @{
  [[gnu::always_inline]] Iterator begin();
  [[gnu::always_inline]] std::default_sentinel_t end() { return {}; }
  /// @}

  /// Decodes one frame. Nothing is reset first, as in `GPSRecordFileC::ReadGPSMeasData`: fields
  /// that the frame does not carry keep what they hold. Bytes after the frame are not looked at.
  /// Nothing changes unless the outcome is `kDone` or `kBlockDoesNotFit`, which stores the blocks
  /// before that one. Allocates nothing.
  static GPSDecodeResult Decode(std::span<const std::uint8_t> frame, GPSMeasDataImplC& measurement,
                                GPSRecordFileInfo& info);

 private:
  struct SURVEYDATA_HIDDEN State;

  std::unique_ptr<State> state_;
};

/// Goes over the measurements of a reader, once.
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
