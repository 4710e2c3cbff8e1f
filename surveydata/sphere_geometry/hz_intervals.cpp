#include <cmath>
#include <cstddef>

#include <surveydata/sphere_geometry/hz_intervals.h>

namespace GMAT {

void HzIntervalsC::AddHz(double low, double high) {
  if (low < 0.0 && width_ == TWO_PI) Add(low + TWO_PI, TWO_PI);
  if (high > TWO_PI) Add(0.0, high - TWO_PI);
  Add(std::max(low, 0.0), high);
}

void HzIntervalsC::Join() {
  std::sort(intervals_.begin(), intervals_.end(),
            [](const Interval& a, const Interval& b) { return a.low < b.low; });
  std::size_t kept = 0;
  for (const Interval& interval : intervals_) {
    if (kept > 0 && interval.low <= intervals_[kept - 1].high) {
      intervals_[kept - 1].high = std::max(intervals_[kept - 1].high, interval.high);
    } else {
      intervals_[kept++] = interval;
    }
  }
  intervals_.resize(kept);
}

void HzIntervalsC::CloseNarrowGaps() {
  Join();
  const std::size_t wanted = most_ / 2;
  if (intervals_.size() <= wanted) return;
  std::vector<double> gaps;
  gaps.reserve(intervals_.size() - 1);
  for (std::size_t i = 1; i < intervals_.size(); ++i) {
    gaps.push_back(intervals_[i].low - intervals_[i - 1].high);
  }
  // The widest of the gaps that are closed: one interval more than gaps is left.
  const auto widest = gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() - wanted);
  std::nth_element(gaps.begin(), widest, gaps.end());
  std::size_t kept = 1;
  for (std::size_t i = 1; i < intervals_.size(); ++i) {
    if (intervals_[i].low - intervals_[kept - 1].high <= *widest) {
      intervals_[kept - 1].high = intervals_[i].high;
    } else {
      intervals_[kept++] = intervals_[i];
    }
  }
  intervals_.resize(kept);
}

void HzIntervalsC::Build(std::uint32_t mostBuckets) {
  Join();
  const std::size_t kept = intervals_.size();
  constexpr std::size_t kBucketsPerInterval = 4;
  const std::uint64_t buckets =
      std::clamp<std::uint64_t>(kept * kBucketsPerInterval, 1, mostBuckets);
  // The same product as in `ToTurnUnits`: however it is rounded, no Hz up to the width has more
  // units.
  lastUnit_ = static_cast<std::uint32_t>(std::min(width_ * (0x1p32 / TWO_PI), 0x1p32 - 1.0));
  bucketsPerUnit_ = (buckets << kFraction) / (std::uint64_t{lastUnit_} + 1);
  hulls_.assign(static_cast<std::size_t>(buckets), Hull{});
  for (const Interval& interval : intervals_) {
    // One unit more on either side covers the rounding.
    const std::uint32_t low = ToUnits(interval.low, -1.0);
    const std::uint32_t high = ToUnits(interval.high, 1.0);
    for (std::size_t bucket = BucketOf(low); bucket <= BucketOf(high); ++bucket) {
      Hull& hull = hulls_[bucket];
      // The intervals are in ascending order.
      hull.low = std::min(hull.low, low);
      hull.length = high - hull.low;
    }
  }
}

bool HzIntervalsC::MayContainAny(std::uint32_t first, std::uint32_t last) const {
  const std::size_t end = BucketOf(std::min(last, lastUnit_));
  for (std::size_t bucket = BucketOf(std::min(first, lastUnit_)); bucket <= end; ++bucket) {
    const Hull& hull = hulls_[bucket];
    if (hull.low <= last && first <= hull.low + hull.length) return true;
  }
  return false;
}

std::uint32_t HzIntervalsC::ToUnits(double hz, double added) const {
  const double units = std::floor(hz * (0x1p32 / TWO_PI)) + added;
  return static_cast<std::uint32_t>(std::clamp(units, 0.0, static_cast<double>(lastUnit_)));
}

bool HzIntervalsC::Find(double hz) const {
  const auto after =
      std::upper_bound(intervals_.begin(), intervals_.end(), hz,
                       [](double value, const Interval& interval) { return value < interval.low; });
  return after != intervals_.begin() && hz <= std::prev(after)->high;
}

}  // namespace GMAT
