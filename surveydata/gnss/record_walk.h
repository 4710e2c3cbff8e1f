#ifndef SURVEYDATA_GNSS_RECORD_WALK_H_
#define SURVEYDATA_GNSS_RECORD_WALK_H_

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>

#include <surveydata/gnss/record_damage.h>
#include <surveydata/gnss/record_frame.h>
#include <surveydata/gnss/record_source.h>

/// \file
/// Internal: the walk over records from front to back, which the index and the reader share.

namespace SDI::RecordWalk {

/// The longest step of the walk.
using RecordFrame::kLongestRecord;
inline constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

/// The bytes around the front of a walk: a block of a source, or all bytes in memory.
class WindowC {
 public:
  explicit WindowC(std::unique_ptr<SourceI> source);
  explicit WindowC(Bytes memory);

  const SourceI* GetSource() const { return source_.get(); }

  /// The offset of the front in the source.
  std::uint64_t GetOffset() const { return offset_; }
  const std::uint8_t* GetFront() const { return bytes_ + begin_; }
  /// The number of bytes at and after the front.
  std::size_t GetLeft() const { return end_ - begin_; }

  /// Makes `count` bytes, at most `kLongestRecord`, available at the front. False if the source
  /// ends earlier. May move the bytes.
  bool Need(std::size_t count) { return GetLeft() >= count || Fetch(count); }
  /// `count` is at most the number of bytes left.
  void Advance(std::size_t count) {
    begin_ += count;
    offset_ += count;
  }

  /// Moves the front to `offset`, and reads no further than `reach` unless more is needed.
  void GoTo(std::uint64_t offset, std::uint64_t reach);

 private:
  static constexpr std::size_t kCapacity = std::size_t{256} * 1024;
  static_assert(kCapacity >= 2 * kLongestRecord);

  bool Fetch(std::size_t count);

  std::unique_ptr<SourceI> source_;  // null for memory
  std::unique_ptr<std::uint8_t[]> buffer_;
  const std::uint8_t* bytes_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::uint64_t offset_ = 0;  // of `begin_`
  std::uint64_t reach_ = kNoLimit;
  bool isAtEnd_ = false;
};

/// Sums of bytes modulo 65536. Cumulative sums of blocks are kept as long as a record that begins
/// at the front may need them: the sum of any record is then a difference of two of them plus the
/// bytes before its first and after its last whole block.
class ByteSumsC {
 public:
  static constexpr std::size_t kBlock = 64;

  /// Drops all sums: the walk continues elsewhere.
  void Clear() { end_ = begin_ = 0; }
  /// The sum of the bytes from `from` up to `to`, which are at `bytes`. They are at most
  /// `kLongestRecord`, and `from` never decreases between calls.
  std::uint16_t Sum(std::uint64_t from, std::uint64_t to, const std::uint8_t* bytes);
  /// How many bytes were added so far, counting repetitions.
  std::uint64_t GetSummed() const { return summed_; }

 private:
  static constexpr std::size_t kRing = 2048;
  static_assert(kRing >= 2 * (kLongestRecord / kBlock) && kLongestRecord % kBlock != 0);

  std::uint64_t begin_ = 0;  // the blocks with known sums, by number
  std::uint64_t end_ = 0;
  std::uint64_t summed_ = 0;
  // Cumulative sums: element n modulo `kRing` is the sum of the bytes before block n, relative to
  // an arbitrary start.
  std::array<std::uint16_t, kRing> before_ = {};
};

/// The progress of `WalkC::GoTo`, which continues there after an exception, so that a source that
/// throws often is still read to its end.
class LookBackC {
 public:
  LookBackC();

 private:
  friend class WalkC;

  // The next positions of the walks after the first run, none more than one step ahead.
  static constexpr std::size_t kRing = std::size_t{1} << 17;
  static_assert(kRing > kLongestRecord);

  void Begin(std::uint64_t first);
  void GoFurtherBack();
  // A walk begins at each position of the first run, from `first_` up to here.
  std::uint64_t GetRunEnd() const { return first_ + kLongestRecord; }
  bool IsAhead(std::uint64_t position) const;
  // Moves a walk from a position to its next one.
  void Step(std::uint64_t from, std::uint64_t to);

  std::uint64_t back_;
  std::uint64_t first_ = 0;
  bool hasBegun_ = false;
  bool hasMet_ = false;
  std::size_t count_ = 0;
  std::bitset<kRing> ahead_;
};

/// Walks records from front to back: a record is where the magic, a length of at least 5 and a
/// correct checksum are; the walk continues after it. Elsewhere it advances by one byte.
///
/// \cost linear in the number of bytes, whatever they are. The bytes of a short record are added
///       directly as long as the bytes of headers that turned out to begin no record do not exceed
///       the length of the walk. Otherwise every byte is added once, and for each header at most
///       two blocks of 64 bytes again.
class WalkC {
 public:
  explicit WalkC(std::unique_ptr<SourceI> source);
  explicit WalkC(Bytes memory);

  bool IsMemory() const { return window_.GetSource() == nullptr; }
  bool HasFailed() const;
  std::uint64_t GetOffset() const { return window_.GetOffset(); }
  const std::uint8_t* GetFront() const { return window_.GetFront(); }
  /// The kind of the record at the front.
  std::uint8_t GetType() const { return GetFront()[RecordFrame::kTypeAt]; }

  /// Walks up to the next record and returns its size; 0 if the source ends or `limit` is reached
  /// earlier. The whole record is then available at the front.
  std::size_t FindRecord(std::uint64_t limit = kNoLimit);
  /// Moves the front to the end of the record there.
  void Pass(std::size_t size) { window_.Advance(size); }

  /// Whether the source can seek, which `GoTo` needs.
  bool CanGoTo() const;
  /// Moves the front to the first position at or after `begin` that the walk from the start of the
  /// source visits, and reads no further than `end` unless a record needs it. `lookBack` is new, or
  /// that of a call that an exception ended, which is continued.
  ///
  /// \cost see `GPSRecordReaderC`.
  void GoTo(std::uint64_t begin, std::uint64_t end, LookBackC& lookBack);

  /// Passes the headers of frames in the gaps that `FindRecord` walks to `damage`, which must
  /// outlive this object.
  void SetDamage(DamageFinderC* damage) { damage_ = damage; }
  /// Continues, past the limit of the walk, until every header that was taken is reported.
  void SettleDamage();

  /// Makes the walk call `report` with its offset, about every `kProgress` bytes. Without a
  /// function it reports no more.
  void SetProgress(std::function<void(std::uint64_t)> report);
  static constexpr std::uint64_t kProgress = std::uint64_t{1} << 20;

  /// How many bytes were added so far, counting repetitions.
  std::uint64_t GetSummed() const { return summedAtOnce_ + sums_.GetSummed(); }

 private:
  std::size_t Find(std::uint64_t limit, DamageFinderC* damage);
  void ReportProgress();
  std::size_t RecordSize();
  bool IsUnknown();
  void TakeDamage();
  void PassRecord();
  void PassEnd();
  bool MeetOne(std::uint64_t begin, LookBackC& lookBack);
  std::size_t ToNextCandidate() const;

  WindowC window_;
  ByteSumsC sums_;
  DamageFinderC* damage_ = nullptr;
  std::function<void(std::uint64_t)> progress_;
  std::uint64_t progressAt_ = kNoLimit;  // where the next report is due
  bool isLost_ = false;                  // reading failed inside a possible record

  static constexpr std::size_t kShort = 1024;
  std::uint64_t start_ = 0;   // of the walk
  std::uint64_t inVain_ = 0;  // bytes added for short headers that begin no record
  std::uint64_t summedAtOnce_ = 0;
};

}  // namespace SDI::RecordWalk

#endif  // SURVEYDATA_GNSS_RECORD_WALK_H_
