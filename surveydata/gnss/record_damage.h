#ifndef SURVEYDATA_GNSS_RECORD_DAMAGE_H_
#define SURVEYDATA_GNSS_RECORD_DAMAGE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include <surveydata/gnss/gps_record_outcome.h>
#include <surveydata/gnss/record_frame.h>

/// \file
/// Internal: the headers of measurement frames in gaps, and why they do not begin a record.

namespace SDI::RecordWalk {

/// Takes the headers that a walk finds where no record begins, and reports each as soon as its
/// fault is certain, in the order of their offsets.
class DamageFinderC {
 public:
  using Report = std::function<void(const GPSDamagedHeader&)>;

  void SetReport(Report report);
  bool IsOn() const { return report_ != nullptr; }

  /// Takes a possible header at `offset`, where no record begins.
  void Take(const RecordFrame::Header& header, std::uint64_t offset);
  /// No record begins before `offset`.
  void Pass(std::uint64_t offset);
  /// A record begins at `offset`. The source ends at `end`, or later if `end` is after the frames
  /// of all open headers.
  void PassRecord(std::uint64_t offset, std::uint64_t end);
  /// Drops open headers: the walk continues elsewhere, or failed.
  void Drop() { count_ = 0; }

  /// Whether there are headers whose fault is not yet certain.
  bool IsOpen() const { return count_ != 0; }
  /// Where the last of their frames would end.
  std::uint64_t GetOpenEnd() const;

 private:
  // Headers do not overlap, so at most this many begin before the first open frame ends.
  static constexpr std::size_t kMostOpen = RecordFrame::kMaxSize / RecordFrame::kHeaderSize;

  void ReportFirst(GPSRecordDamage damage);

  Report report_;
  std::array<GPSDamagedHeader, kMostOpen> open_;  // a ring buffer
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace SDI::RecordWalk

#endif  // SURVEYDATA_GNSS_RECORD_DAMAGE_H_
