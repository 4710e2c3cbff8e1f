#include <algorithm>
#include <atomic>
#include <cstddef>
#include <deque>
#include <limits>
#include <map>
#include <span>
#include <utility>

#include <record/common_records.h>
#include <record/compare_records.h>
#include <record/decoded_record.h>
#include <record/ordered_jobs.h>

namespace Tool {
namespace {

// If this many records in a row are the same, a run of differences ends before them.
constexpr std::size_t kEnoughCommon = 32;
constexpr std::size_t kFirstWindow = 2 * kEnoughCommon;
constexpr std::size_t kLargestWindow = 8192;
constexpr std::size_t kMostBytes = std::size_t{8} << 20;  // held of a file, without the last record

// The records of a file. Reads ahead as many as needed.
class SourceC {
 public:
  SourceC(RecordWalkC& walk, const RecordFilter& filter)
      : walk_(walk), takesAll_(filter.TakesAll()), sieve_(filter) {}

  // Advances to the next record, beyond gaps; false at the end. Only while nothing is held.
  bool Next() {
    while (walk_.Next(entry_)) {
      if (!entry_.isGap && Takes()) return true;
    }
    isEnded_ = true;
    return false;
  }
  std::span<const std::uint8_t> GetBytes() const { return walk_.GetBytes(); }
  // The end of the record that `Next` found last.
  std::uint64_t GetEnd() const { return entry_.offset + entry_.size; }
  // Holds the record that `Next` found last.
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
  // Whether no more records can be held.
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

// A place in both files up to which they have been compared.
struct Place {
  std::uint64_t a = 0;
  std::uint64_t b = 0;
};

class ComparisonC {
 public:
  ComparisonC(SourceC& a, SourceC& b, RecordDifferencesI& differences)
      : a_(a), b_(b), differences_(differences) {}

  // Stops where `enough` bytes in a row are the same and nothing is held, and returns that place;
  // nothing at the ends of the files.
  std::optional<Place> Run(std::uint64_t enough) {
    for (;;) {
      const Stop stop = SkipSame(enough);
      if (stop == Stop::kEnds) return {};
      if (stop == Stop::kEnough) return Place{a_.GetEnd(), b_.GetEnd()};
      if (a_.GetHeld().empty() || b_.GetHeld().empty()) {
        ReportRest();
      } else {
        ReportDifference();
      }
    }
  }

 private:
  enum class Stop { kDifference, kEnough, kEnds };

  // Advances to the next records that differ and holds them.
  Stop SkipSame(std::uint64_t enough) {
    std::uint64_t same = 0;
    for (;;) {
      while (a_.GetHeld().empty() && b_.GetHeld().empty()) {
        if (same >= enough) return Stop::kEnough;
        const bool isA = !a_.IsEnded() && a_.Next();
        const bool isB = !b_.IsEnded() && b_.Next();
        if (!isA && !isB) return Stop::kEnds;
        if (isA && isB && std::ranges::equal(a_.GetBytes(), b_.GetBytes())) {
          differences_.Same(1);
          same += a_.GetBytes().size();
          continue;
        }
        if (isA) a_.Hold();
        if (isB) b_.Hold();
      }
      a_.HoldUpTo(1);
      b_.HoldUpTo(1);
      if (a_.GetHeld().empty() || b_.GetHeld().empty()) return Stop::kDifference;
      if (a_.GetHeld().front().bytes != b_.GetHeld().front().bytes) return Stop::kDifference;
      differences_.Same(1);
      a_.Drop(1);
      b_.Drop(1);
    }
  }

  // One file is at its end: all further records of the other one are differences.
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

  // Reports a run of differences, which ends where enough records in a row are the same.
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

  // The first of enough common records in a row.
  static std::optional<CommonPlace> FindEnd(const std::vector<CommonPlace>& common) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < common.size(); ++i) {
      const CommonPlace next{common[begin].a + (i - begin), common[begin].b + (i - begin)};
      if (common[i] != next) begin = i;
      if (i - begin + 1 == kEnoughCommon) return common[begin];
    }
    return {};
  }

  // The end of the times that both windows cover; the end of both windows if there are no times.
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

  // Reports the held records up to `end`, and drops them.
  void Report(const std::vector<CommonPlace>& common, const CommonPlace& end) {
    CommonPlace done{0, 0};
    for (const CommonPlace& place : common) {
      if (place.a >= end.a || place.b >= end.b) break;
      ReportReplaced(done, place);
      differences_.Same(1);
      done = {place.a + 1, place.b + 1};
    }
    ReportReplaced(done, end);
    a_.Drop(end.a);
    b_.Drop(end.b);
  }

  // No record is the same in these runs: measurements with the same time are pairs.
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

// The records that are the same at the beginnings of two stretches.
struct SameRecords {
  std::uint64_t count = 0;
  std::optional<Place> end;  // of the last ones that are the same; empty if all are
};

// Skips records that are the same: threads read stretches at equal distances from the place up to
// which the files have been compared.
class SameStretchesC {
 public:
  SameStretchesC(const ComparedFileC& a, const ComparedFileC& b, const CompareOptions& options,
                 RecordDifferencesI& differences)
      : a_(a), b_(b), options_(options), differences_(differences) {}

  // Skips from `from` to the next difference, or to a remainder that is too short for stretches.
  Place SkipFrom(const Place& from) {
    // Stretches after a difference are read again later, and for each the reader looks back 128
    // KiB.
    constexpr std::uint64_t kLongest = std::uint64_t{16} << 20;
    const std::uint64_t rest = std::min(Rest(a_, from.a), Rest(b_, from.b));
    const std::uint64_t stretch = StretchOf(rest, options_.jobs, kLongest);
    if (rest < 2 * stretch) return from;
    const std::uint64_t count = (rest + stretch - 1) / stretch;
    const auto begin = [&](std::uint64_t i) {
      const std::uint64_t passed = std::min(i * stretch, rest);
      return Place{from.a + passed, from.b + passed};
    };
    isStopped_ = false;
    OrderedJobsC<SameRecords> work(
        count, static_cast<unsigned>(std::min<std::uint64_t>(options_.jobs, count)),
        [&](std::size_t i) { return CountSame(begin(i), begin(i + 1)); });
    for (std::uint64_t i = 0; i < count; ++i) {
      const SameRecords same = work.Take([] {});
      differences_.Same(same.count);
      if (same.end) {
        isStopped_ = true;
        return *same.end;
      }
      options_.reportProgress(begin(i + 1).a + begin(i + 1).b);
    }
    return begin(count);
  }

 private:
  static std::uint64_t Rest(const ComparedFileC& file, std::uint64_t from) {
    return file.GetSize() > from ? file.GetSize() - from : 0;
  }

  // Called from several threads at once.
  SameRecords CountSame(const Place& begin, const Place& end) const {
    const auto ignore = [](std::uint64_t) {};
    RecordWalkC walkA = a_.Walk(begin.a, end.a, ignore);
    RecordWalkC walkB = b_.Walk(begin.b, end.b, ignore);
    SourceC a(walkA, options_.filter);
    SourceC b(walkB, options_.filter);
    SameRecords same{.end = begin};
    while (!isStopped_) {
      const bool isA = a.Next();
      const bool isB = b.Next();
      if (!isA && !isB) {
        same.end.reset();
        break;
      }
      if (!isA || !isB || !std::ranges::equal(a.GetBytes(), b.GetBytes())) break;
      ++same.count;
      same.end = {a.GetEnd(), b.GetEnd()};
    }
    return same;
  }

  const ComparedFileC& a_;
  const ComparedFileC& b_;
  const CompareOptions& options_;
  RecordDifferencesI& differences_;
  std::atomic<bool> isStopped_ = false;  // the results of further stretches are not needed
};

}  // namespace

std::optional<RecordTime> TimeOf(const ComparedRecord& record) {
  if (!record.isMeasurement) return {};
  const DecodedRecord decoded = Decode(record.offset, record.bytes);
  if (!decoded.IsDone()) return {};
  const Vorlin::TimeC& time = decoded.measurement.GetTimeA();
  return RecordTime(time.week, time.timeOfWeek);
}

RecordWalkC ComparedFileC::Walk(std::uint64_t begin, std::optional<std::uint64_t> end,
                                std::function<void(std::uint64_t)> reportProgress) const {
  RecordPiece piece{.isFirst = begin == 0, .isLast = !end};
  piece.stretch.begin = begin;
  if (end) piece.stretch.end = *end;
  return RecordWalkC(input_, file_, piece, std::move(reportProgress));
}

void CompareRecords(const ComparedFileC& a, const ComparedFileC& b, const CompareOptions& options,
                    RecordDifferencesI& differences) {
  // After a difference, threads read again once this many bytes are the same.
  constexpr std::uint64_t kEnoughSame = std::uint64_t{256} << 10;
  // With `every`, the selection of a measurement depends on all measurements before it.
  const bool mayCut = options.jobs > 1 && options.filter.every == 1;
  std::optional<Place> place = Place{};
  while (place) {
    if (mayCut) *place = SameStretchesC(a, b, options, differences).SkipFrom(*place);
    std::uint64_t done = place->a + place->b;
    const auto report = [&](std::uint64_t bytes) { options.reportProgress(done += bytes); };
    RecordWalkC walkA = a.Walk(place->a, {}, report);
    RecordWalkC walkB = b.Walk(place->b, {}, report);
    SourceC sourceA(walkA, options.filter);
    SourceC sourceB(walkB, options.filter);
    place = ComparisonC(sourceA, sourceB, differences)
                .Run(mayCut ? kEnoughSame : std::numeric_limits<std::uint64_t>::max());
  }
}

}  // namespace Tool
