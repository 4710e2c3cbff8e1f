#include "satellite_series.h"

#include <algorithm>

#include "describe_record.h"
#include "gps_time.h"

namespace Tool {
namespace {

constexpr std::size_t kMostGroups = 4096;
constexpr std::int64_t kGapSteps = 3;

}  // namespace

void SatelliteSeriesC::Add(const DecodedRecord& record) {
  using ImplC = SDI::GPSMeasDataImplC;
  const ImplC& measurement = record.measurement;
  const std::int64_t time = GpsMilliseconds(measurement.GetTimeA());
  Group group{time, time, {}};
  group.values.fill({1, 0});
  const auto set = [&group](Value value, double number) {
    if (number < 0) return;  // not available
    const auto single = static_cast<float>(number);
    group.values[value] = {single, single};
  };
  if ((measurement.GetSetMask() & ImplC::kHasDOPs) != 0) {
    const SDI::GPSDOPsImplC& dops = measurement.GetDOPs();
    set(kHDOP, dops.GetHDOP());
    set(kVDOP, dops.GetVDOP());
    set(kPDOP, dops.GetPDOP());
  }
  if (const OptionalPair pair = AskPair(measurement, &ImplC::GetTotalPair)) {
    set(kInView, (*pair)[0]);
    set(kUsed, (*pair)[1]);
  }
  groups_.push_back(group);
  ++records_;
  if (groups_.size() < kMostGroups) return;
  Condense(false);
  if (groups_.size() > kMostGroups * 3 / 4) Condense(true);
}

void SatelliteSeriesC::Merge(Group& into, const Group& from) {
  into.first = std::min(into.first, from.first);
  into.last = std::max(into.last, from.last);
  for (std::size_t i = 0; i < kValueCount; ++i) {
    Range& range = into.values[i];
    const Range& other = from.values[i];
    if (range.IsEmpty()) {
      range = other;
    } else if (!other.IsEmpty()) {
      range = {std::min(range.lowest, other.lowest), std::max(range.highest, other.highest)};
    }
  }
}

std::int64_t SatelliteSeriesC::MedianStep() const {
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

bool SatelliteSeriesC::IsGap(std::int64_t from, std::int64_t to, std::int64_t median) const {
  return to < from || to - from > kGapSteps * median;
}

void SatelliteSeriesC::Condense(bool acrossGaps) {
  const std::int64_t median = MedianStep();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < groups_.size(); ++kept) {
    groups_[kept] = groups_[i++];
    if (i < groups_.size() &&
        (acrossGaps || !IsGap(groups_[kept].last, groups_[i].first, median))) {
      Merge(groups_[kept], groups_[i++]);
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
  const Group* before = nullptr;
  for (const Group& group : groups_) {
    const Range& range = group.values[value];
    if (range.IsEmpty()) continue;
    if (before == nullptr || IsGap(before->last, group.first, median)) runs.emplace_back();
    before = &group;
    const double time = static_cast<double>(group.first + group.last) / 2000;
    runs.back().push_back({time, range.lowest});
    if (range.lowest != range.highest) runs.back().push_back({time, range.highest});
  }
  return runs;
}

}  // namespace Tool
