#ifndef SURVEYDATA_GNSS_RECORD_DAMAGE_H_
#define SURVEYDATA_GNSS_RECORD_DAMAGE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include <surveydata/gnss/gps_record_outcome.h>
#include <surveydata/gnss/record_frame.h>

/// \file
/// Internal: the headers of measurement frames in gaps, and why they begin no record.

namespace SDI::RecordWalk {

/// Takes the headers that a walk comes across where there is no record, and reports each as soon as
/// it is certain what is wrong with it, in the order of their offsets.
class DamageFinderC {
 public:
  using Report = std::function<void(const GPSDamagedHeader&)>;

  void SetReport(Report report);
  bool IsOn() const { return report_ != nullptr; }

  /// What looks like a header at `offset`, where no record begins.
  void Take(const RecordFrame::Header& header, std::uint64_t offset);
  /// No record begins before `offset`.
  void Pass(std::uint64_t offset);
  /// A record begins at `offset`; the source ends at `end` or, when that is later than any header
  /// asks for, anywhere after it.
  void PassRecord(std::uint64_t offset, std::uint64_t end);
  /// Forgets what is open: the walk goes on elsewhere, or failed.
  void Drop() { count_ = 0; }

  /// Whether there are headers of which it is still open what is wrong.
  bool IsOpen() const { return count_ != 0; }
  /// Where the last of their frames would end.
  std::uint64_t GetOpenEnd() const;

 private:
  // No header of a measurement lies in another one, so a frame that is still open has at most this
  // many after it.
  static constexpr std::size_t kMostOpen = RecordFrame::kMaxSize / RecordFrame::kHeaderSize;

  void ReportFirst(GPSRecordDamage damage);

  Report report_;
  std::array<GPSDamagedHeader, kMostOpen> open_;  // a ring
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace SDI::RecordWalk

#endif  // SURVEYDATA_GNSS_RECORD_DAMAGE_H_
