#include <algorithm>
#include <cstddef>
#include <deque>
#include <map>
#include <span>

#include <record/common_records.h>
#include <record/compare_records.h>
#include <record/decoded_record.h>

namespace Tool {
namespace {

// Where so many records in a row are the same, the files go on together.
constexpr std::size_t kEnoughCommon = 32;
constexpr std::size_t kFirstWindow = 2 * kEnoughCommon;
constexpr std::size_t kLargestWindow = 8192;
constexpr std::size_t kMostBytes = std::size_t{8} << 20;  // held of a file, but for the last record

// The records of a file, those that are needed read ahead.
class SourceC {
 public:
  SourceC(RecordWalkC& walk, const RecordFilter& filter)
      : walk_(walk), takesAll_(filter.TakesAll()), sieve_(filter) {}

  // Goes on to the next record, beyond gaps; false at the end. Only while nothing is held.
  bool Next() {
    while (walk_.Next(entry_)) {
      if (!entry_.isGap && Takes()) return true;
    }
    isEnded_ = true;
    return false;
  }
  std::span<const std::uint8_t> GetBytes() const { return walk_.GetBytes(); }
  // Holds the record that `Next` gave last.
  void Hold() {
    const std::span<const std::uint8_t> bytes = walk_.GetBytes();
    held_.push_back({.offset = entry_.offset,
                     .type = entry_.type,
                     .isMeasurement = entry_.IsMeasurement(),
                     .bytes = {bytes.begin(), bytes.end()}});
    heldBytes_ += bytes.size();
  }
  // Holds `count` records, fewer at the end or if they are too long.
  void HoldUpTo(std::size_t count) {
    while (held_.size() < count && !IsFull() && !isEnded_) {
      if (Next()) Hold();
    }
  }

  // Whether all records up to the end are held.
  bool IsEnded() const { return isEnded_; }
  // Whether no more can be held.
  bool IsFull() const { return heldBytes_ >= kMostBytes; }
  const std::deque<ComparedRecord>& GetHeld() const { return held_; }
  void Drop(std::size_t count) {
    for (; count > 0; --count) {
      heldBytes_ -= held_.front().bytes.size();
      held_.pop_front();
    }
  }
  std::vector<std::string_view> Views() const {
    std::vector<std::string_view> views;
    views.reserve(held_.size());
    for (const ComparedRecord& record : held_) views.push_back(record.View());
    return views;
  }

 private:
  bool Takes() {
    if (takesAll_) return true;
    if (!entry_.IsMeasurement()) return false;
    const DecodedRecord record = Decode(entry_.offset, walk_.GetBytes());
    return record.IsDone() && sieve_.Takes(record);
  }

  RecordWalkC& walk_;
  bool takesAll_;
  RecordSieveC sieve_;
  SDI::GPSRecordEntry entry_;
  bool isEnded_ = false;
  std::deque<ComparedRecord> held_;
  std::size_t heldBytes_ = 0;
};

class ComparisonC {
 public:
  ComparisonC(SourceC& a, SourceC& b, RecordDifferencesI& differences)
      : a_(a), b_(b), differences_(differences) {}

  void Run() {
    while (SkipSame()) {
      if (a_.GetHeld().empty() || b_.GetHeld().empty()) {
        ReportRest();
      } else {
        ReportDifference();
      }
    }
  }

 private:
  // Goes to the next records that differ and holds them; false when there are none.
  bool SkipSame() {
    for (;;) {
      while (a_.GetHeld().empty() && b_.GetHeld().empty()) {
        const bool isA = !a_.IsEnded() && a_.Next();
        const bool isB = !b_.IsEnded() && b_.Next();
        if (!isA && !isB) return false;
        if (isA && isB && std::ranges::equal(a_.GetBytes(), b_.GetBytes())) {
          differences_.Same();
          continue;
        }
        if (isA) a_.Hold();
        if (isB) b_.Hold();
      }
      a_.HoldUpTo(1);
      b_.HoldUpTo(1);
      if (a_.GetHeld().empty() || b_.GetHeld().empty()) return true;
      if (a_.GetHeld().front().bytes != b_.GetHeld().front().bytes) return true;
      differences_.Same();
      a_.Drop(1);
      b_.Drop(1);
    }
  }

  // One file is at its end: whatever the other one has differs.
  void ReportRest() {
    for (;; a_.Drop(1)) {
      a_.HoldUpTo(1);
      if (a_.GetHeld().empty()) break;
      differences_.Removed(a_.GetHeld().front());
    }
    for (;; b_.Drop(1)) {
      b_.HoldUpTo(1);
      if (b_.GetHeld().empty()) break;
      differences_.Added(b_.GetHeld().front());
    }
  }

  // Reports what differs up to the place from where on the files go on together.
  void ReportDifference() {
    for (std::size_t window = kFirstWindow;; window *= 2) {
      a_.HoldUpTo(window);
      b_.HoldUpTo(window);
      const std::vector<CommonPlace> common = FindCommon(a_.Views(), b_.Views());
      const bool areWhole = a_.IsEnded() && b_.IsEnded();
      if (areWhole) return Report(common, {a_.GetHeld().size(), b_.GetHeld().size()});
      if (const auto end = FindEnd(common)) return Report(common, *end);
      if (window >= kLargestWindow || a_.IsFull() || b_.IsFull()) {
        return Report(common, CutByTime());
      }
    }
  }

  // Where enough records in a row begin to be common.
  static std::optional<CommonPlace> FindEnd(const std::vector<CommonPlace>& common) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < common.size(); ++i) {
      const CommonPlace next{common[begin].a + (i - begin), common[begin].b + (i - begin)};
      if (common[i] != next) begin = i;
      if (i - begin + 1 == kEnoughCommon) return common[begin];
    }
    return {};
  }

  // As far as both windows have the same times; all of them where there are no times.
  CommonPlace CutByTime() const {
    const std::vector<std::optional<RecordTime>> timesA = Times(a_.GetHeld());
    const std::vector<std::optional<RecordTime>> timesB = Times(b_.GetHeld());
    const std::optional<RecordTime> last =
        std::min(*std::ranges::max_element(timesA), *std::ranges::max_element(timesB));
    if (!last) return {timesA.size(), timesB.size()};
    const auto end = [&last](const std::vector<std::optional<RecordTime>>& times) {
      std::size_t size = times.size();
      while (size > 0 && (!times[size - 1] || times[size - 1] > last)) --size;
      return size;
    };
    return {end(timesA), end(timesB)};
  }

  static std::vector<std::optional<RecordTime>> Times(const std::deque<ComparedRecord>& records) {
    std::vector<std::optional<RecordTime>> times;
    times.reserve(records.size());
    for (const ComparedRecord& record : records) times.push_back(TimeOf(record));
    return times;
  }

  // Reports what is held up to `end`, and drops it.
  void Report(const std::vector<CommonPlace>& common, const CommonPlace& end) {
    CommonPlace done{0, 0};
    for (const CommonPlace& place : common) {
      if (place.a >= end.a || place.b >= end.b) break;
      ReportReplaced(done, place);
      differences_.Same();
      done = {place.a + 1, place.b + 1};
    }
    ReportReplaced(done, end);
    a_.Drop(end.a);
    b_.Drop(end.b);
  }

  // Nothing is the same in these runs: measurements of the same time are pairs.
  void ReportReplaced(const CommonPlace& begin, const CommonPlace& end) {
    std::map<RecordTime, std::deque<std::size_t>> places;  // in B
    if (begin.a < end.a) {
      for (std::size_t i = begin.b; i < end.b; ++i) {
        if (const auto time = TimeOf(b_.GetHeld()[i])) places[*time].push_back(i);
      }
    }
    std::vector<std::optional<std::size_t>> partners(end.a - begin.a);
    std::vector<bool> isPaired(end.b - begin.b);
    for (std::size_t i = begin.a; i < end.a && !places.empty(); ++i) {
      const auto time = TimeOf(a_.GetHeld()[i]);
      const auto found = time ? places.find(*time) : places.end();
      if (found == places.end() || found->second.empty()) continue;
      partners[i - begin.a] = found->second.front();
      isPaired[found->second.front() - begin.b] = true;
      found->second.pop_front();
    }
    std::size_t nextB = begin.b;
    const auto addUpTo = [&](std::size_t last) {
      for (; nextB < last; ++nextB) {
        if (!isPaired[nextB - begin.b]) differences_.Added(b_.GetHeld()[nextB]);
      }
    };
    for (std::size_t i = begin.a; i < end.a; ++i) {
      const auto partner = partners[i - begin.a];
      if (!partner) {
        differences_.Removed(a_.GetHeld()[i]);
        continue;
      }
      addUpTo(*partner);
      differences_.Changed(a_.GetHeld()[i], b_.GetHeld()[*partner]);
    }
    addUpTo(end.b);
  }

  SourceC& a_;
  SourceC& b_;
  RecordDifferencesI& differences_;
};

}  // namespace

std::optional<RecordTime> TimeOf(const ComparedRecord& record) {
  if (!record.isMeasurement) return {};
  const DecodedRecord decoded = Decode(record.offset, record.bytes);
  if (!decoded.IsDone()) return {};
  const Vorlin::TimeC& time = decoded.measurement.GetTimeA();
  return RecordTime(time.week, time.timeOfWeek);
}

void CompareRecords(RecordWalkC& a, RecordWalkC& b, const RecordFilter& filter,
                    RecordDifferencesI& differences) {
  SourceC sourceA(a, filter);
  SourceC sourceB(b, filter);
  ComparisonC(sourceA, sourceB, differences).Run();
}

}  // namespace Tool
