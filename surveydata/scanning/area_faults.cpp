#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <utility>

#include <surveydata/scanning/area_faults.h>
#include <surveydata/sphere_geometry/ring_crossings.h>

namespace SDI {
namespace {

constexpr std::size_t kMostCrossings = 8;

// In the order of the enumerators, which start at 1.
constexpr const char* kRules[] = {
    "the Hz step is not above 0",   "the V step is not above 0",
    "wrong number of points",       "a point is out of range",
    "two points are equal",         "both corners have the same Hz",
    "both corners have the same V", "edges cross",
};
static_assert(std::size(kRules) == static_cast<std::size_t>(AreaFault::Rule::kCrossingEdges));

class FaultFinderC {
 public:
  explicit FaultFinderC(const ScanAreaImplC& area)
      : area_(area), corners_(area.GetSphereArea().GetPoints()) {
    area.GetPoints(points_);
  }

  std::vector<AreaFault> Find() && {
    CheckSteps();
    if (area_.GetType() == kDomeArea) return std::move(faults_);
    CheckCount();
    const std::size_t before = faults_.size();
    CheckRange();
    CheckEquality();
    if (area_.GetType() == kRectangularArea) CheckSides();
    const bool arePointsGood = faults_.size() == before;
    if (arePointsGood && corners_.size() > 2 && !area_.GetSphereArea().IsValid()) FindCrossings();
    return std::move(faults_);
  }

 private:
  void Report(AreaFault::Rule rule) { faults_.push_back({.rule = rule}); }
  void Report(AreaFault::Rule rule, std::size_t first, std::size_t second = AreaFault::kNone) {
    faults_.push_back({.rule = rule, .points = {first, second}});
  }

  void CheckSteps() {
    if (!(area_.GetHzStep() > 0)) Report(AreaFault::Rule::kHzStepNotPositive);
    if (!(area_.GetVStep() > 0)) Report(AreaFault::Rule::kVStepNotPositive);
  }

  void CheckCount() {
    const std::size_t count = points_.size();
    const bool isGood = area_.GetType() == kRectangularArea ? count == 2 : count >= 3;
    if (!isGood) Report(AreaFault::Rule::kPointCount);
  }

  // A V beyond half a turn has been replaced by the same direction in the first face.
  void CheckRange() {
    for (std::size_t i = 0; i < corners_.size(); ++i) {
      const bool isGood = GMAT::InRange(corners_[i].Hz, 0.0, GMAT::TWO_PI) &&
                          GMAT::InRange(corners_[i].V, 0.0, GMAT::PI);
      if (!isGood) Report(AreaFault::Rule::kPointOutOfRange, i);
    }
  }

  // Any two corners that are exactly the same direction are equal, and so are adjacent points that
  // differ by less than the smallest normal number.
  void CheckEquality() {
    std::vector<std::size_t> order(corners_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto isUsable = [&](std::size_t i) {
      return !std::isnan(corners_[i].Hz) && !std::isnan(corners_[i].V);
    };
    std::erase_if(order, [&](std::size_t i) { return !isUsable(i); });
    std::sort(order.begin(), order.end(), [&](std::size_t i, std::size_t k) {
      const GMAT::AnglePointC& a = corners_[i];
      const GMAT::AnglePointC& b = corners_[k];
      if (a.Hz != b.Hz) return a.Hz < b.Hz;
      return a.V != b.V ? a.V < b.V : i < k;
    });
    for (std::size_t k = 1; k < order.size(); ++k) {
      if (corners_[order[k - 1]] == corners_[order[k]]) {
        Report(AreaFault::Rule::kEqualPoints, order[k - 1], order[k]);
      }
    }
    if (area_.GetType() == kRectangularArea && points_.size() != 2) return;
    for (std::size_t i = 0; i < points_.size(); ++i) {
      const std::size_t next = (i + 1) % points_.size();
      if (points_.size() < 2 || !(points_[i] == points_[next])) continue;
      if (!(corners_[i] == corners_[next])) {
        Report(AreaFault::Rule::kEqualPoints, std::min(i, next), std::max(i, next));
      }
      if (points_.size() == 2) break;
    }
  }

  void CheckSides() {
    if (points_.size() != 2) return;
    if (points_[0].GetHz() - points_[1].GetHz() == 0.0) Report(AreaFault::Rule::kEqualHz, 0, 1);
    if (points_[0].GetV() - points_[1].GetV() == 0.0) Report(AreaFault::Rule::kEqualV, 0, 1);
  }

  void FindCrossings() {
    std::vector<GMAT::AnglePointC> edges;
    double hzOrigin = 0.0;
    area_.GetSphereArea().BuildEdgeList(edges, hzOrigin);
    for (const GMAT::EdgeCrossing& crossing : GMAT::FindEdgeCrossings(edges, kMostCrossings)) {
      faults_.push_back({.rule = AreaFault::Rule::kCrossingEdges,
                         .edges = {crossing.first, crossing.second},
                         .hz = GMAT::NormalizeAngle(crossing.at.Hz + hzOrigin),
                         .v = crossing.at.V});
    }
  }

  const ScanAreaImplC& area_;
  const std::vector<GMAT::AnglePointC>& corners_;
  std::vector<ScanDefPointC> points_;
  std::vector<AreaFault> faults_;
};

}  // namespace

const char* TextOf(AreaFault::Rule rule) {
  const std::size_t index = static_cast<std::size_t>(rule) - 1;
  return index < std::size(kRules) ? kRules[index] : "unknown";
}

std::vector<AreaFault> FindAreaFaults(const ScanAreaC& area) {
  return FaultFinderC(*area.GetImpl()).Find();
}

}  // namespace SDI
