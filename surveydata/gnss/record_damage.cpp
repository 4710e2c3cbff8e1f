#include <algorithm>
#include <utility>

#include <surveydata/gnss/frame_blocks.h>
#include <surveydata/gnss/record_damage.h>

namespace SDI::RecordWalk {

void DamageFinderC::SetReport(Report report) {
  report_ = std::move(report);
  if (report_ == nullptr) Drop();
}

void DamageFinderC::Take(const RecordFrame::Header& header, std::uint64_t offset) {
  // A frame has at least times and flags.
  if (!header.IsMeasurement() || header.length < RecordFrame::kBlocksAt) return;
  Pass(offset);
  open_[(first_ + count_++) % kMostOpen] = {offset, header.Size(), GPSRecordDamage::kWrongChecksum};
}

void DamageFinderC::Pass(std::uint64_t offset) {
  while (count_ != 0 && open_[first_].offset + open_[first_].size <= offset) {
    ReportFirst(GPSRecordDamage::kWrongChecksum);
  }
}

void DamageFinderC::PassRecord(std::uint64_t offset, std::uint64_t end) {
  while (count_ != 0) {
    const std::uint64_t frameEnd = open_[first_].offset + open_[first_].size;
    ReportFirst(frameEnd > end      ? GPSRecordDamage::kCutByTheEnd
                : frameEnd > offset ? GPSRecordDamage::kRunsIntoNextRecord
                                    : GPSRecordDamage::kWrongChecksum);
  }
}

std::uint64_t DamageFinderC::GetOpenEnd() const {
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < count_; ++i) {
    const GPSDamagedHeader& header = open_[(first_ + i) % kMostOpen];
    end = std::max(end, header.offset + header.size);
  }
  return end;
}

void DamageFinderC::ReportFirst(GPSRecordDamage damage) {
  GPSDamagedHeader header = open_[first_];
  header.damage = damage;
  // Before calling the function, which may throw.
  first_ = (first_ + 1) % kMostOpen;
  --count_;
  report_(header);
}

}  // namespace SDI::RecordWalk
