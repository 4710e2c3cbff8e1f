#include <algorithm>
#include <utility>

#include <output/gps_time.h>
#include <record/describe_record.h>
#include <record/satellite_series.h>

namespace Tool {
namespace {

constexpr std::size_t kMostGroups = 4096;
constexpr std::int64_t kGapSteps = 3;

}  // namespace

SatelliteSeriesC::Sample SatelliteSeriesC::ToSample(const DecodedRecord& record) {
  using ImplC = SDI::GPSMeasDataImplC;
  const ImplC& measurement = record.measurement;
  Sample sample{.time = GpsMilliseconds(measurement.GetTimeA())};
  sample.values.fill(-1);
  if ((measurement.GetSetMask() & ImplC::kHasDOPs) != 0) {
    const SDI::GPSDOPsImplC& dops = measurement.GetDOPs();
    sample.values[kHDOP] = static_cast<float>(dops.GetHDOP());
    sample.values[kVDOP] = static_cast<float>(dops.GetVDOP());
    sample.values[kPDOP] = static_cast<float>(dops.GetPDOP());
  }
  if (const OptionalPair pair = AskPair(measurement, &ImplC::GetTotalPair)) {
    sample.values[kInView] = (*pair)[0];
    sample.values[kUsed] = (*pair)[1];
  }
  return sample;
}

void SatelliteSeriesC::Add(const Sample& sample) {
  const std::int64_t time = sample.time;
  Group group{time, time, {}};
  for (std::size_t i = 0; i < kValueCount; ++i) {
    const float value = sample.values[i];
    if (value >= 0) group.values[i] = {value, value, time, time, time, time, false};
  }
  groups_.push_back(group);
  ++records_;
  if (groups_.size() < kMostGroups) return;
  Condense(false);
  if (groups_.size() > kMostGroups * 3 / 4) Condense(true);
}

void SatelliteSeriesC::Merge(Group& into, const Group& from, std::int64_t median) {
  into.first = std::min(into.first, from.first);
  into.last = std::max(into.last, from.last);
  for (std::size_t i = 0; i < kValueCount; ++i) {
    Range& range = into.values[i];
    const Range& other = from.values[i];
    if (other.IsEmpty()) continue;
    if (range.IsEmpty()) {
      range = other;
      continue;
    }
    range.hasGap = range.hasGap || other.hasGap || IsGap(range.last, other.first, median);
    range.last = other.last;
    if (other.lowest < range.lowest) {
      range.lowest = other.lowest;
      range.lowestAt = other.lowestAt;
    }
    if (other.highest > range.highest) {
      range.highest = other.highest;
      range.highestAt = other.highestAt;
    }
  }
}

std::int64_t SatelliteSeriesC::MedianStep() const {
  if (median_ > 0) return median_;
  std::vector<std::int64_t> steps;
  for (std::size_t i = 1; i < groups_.size(); ++i) {
    const std::int64_t step = groups_[i].first - groups_[i - 1].last;
    if (step > 0) steps.push_back(step);
  }
  if (steps.empty()) return 0;
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::nth_element(steps.begin(), middle, steps.end());
  return *middle;
}

bool SatelliteSeriesC::IsGap(std::int64_t from, std::int64_t to, std::int64_t median) {
  return to < from || to - from > kGapSteps * median;
}

bool SatelliteSeriesC::HasGap(const Group& from, const Group& to, std::int64_t median) {
  if (IsGap(from.last, to.first, median)) return true;
  for (std::size_t i = 0; i < kValueCount; ++i) {
    const Range& a = from.values[i];
    const Range& b = to.values[i];
    if (!a.IsEmpty() && !b.IsEmpty() && IsGap(a.last, b.first, median)) return true;
  }
  return false;
}

void SatelliteSeriesC::Condense(bool acrossGaps) {
  median_ = MedianStep();  // now, because steps within a group are not kept
  std::size_t kept = 0;
  for (std::size_t i = 0; i < groups_.size(); ++kept) {
    groups_[kept] = groups_[i++];
    if (i < groups_.size() && (acrossGaps || !HasGap(groups_[kept], groups_[i], median_))) {
      Merge(groups_[kept], groups_[i++], median_);
    }
  }
  groups_.resize(kept);
}

double SatelliteSeriesC::GetFirstTime() const {
  const auto earliest =
      std::min_element(groups_.begin(), groups_.end(),
                       [](const Group& a, const Group& b) { return a.first < b.first; });
  return static_cast<double>(earliest->first) / 1000;
}

double SatelliteSeriesC::GetLastTime() const {
  const auto latest =
      std::max_element(groups_.begin(), groups_.end(),
                       [](const Group& a, const Group& b) { return a.last < b.last; });
  return static_cast<double>(latest->last) / 1000;
}

std::vector<std::vector<ChartPoint>> SatelliteSeriesC::GetRuns(Value value) const {
  const std::int64_t median = MedianStep();
  std::vector<std::vector<ChartPoint>> runs;
  const Range* before = nullptr;
  for (const Group& group : groups_) {
    const Range& range = group.values[value];
    if (range.IsEmpty()) continue;
    const bool isNewRun = before == nullptr || before->hasGap || range.hasGap ||
                          IsGap(before->last, range.first, median);
    if (isNewRun) runs.emplace_back();
    before = &range;
    ChartPoint one{static_cast<double>(range.lowestAt) / 1000, range.lowest};
    ChartPoint other{static_cast<double>(range.highestAt) / 1000, range.highest};
    if (other.time < one.time) std::swap(one, other);
    runs.back().push_back(one);
    if (range.lowest == range.highest) continue;
    if (range.hasGap) runs.emplace_back();
    runs.back().push_back(other);
  }
  return runs;
}

}  // namespace Tool
