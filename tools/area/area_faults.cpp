#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/ring_crossings.h>

#include <area/area_faults.h>

namespace Tool {
namespace {

constexpr std::size_t kMostCrossings = 8;

class FaultFinderC {
 public:
  explicit FaultFinderC(const AreaFile& file)
      : file_(file), area_(file.Impl()), corners_(file.Sphere().GetPoints()) {
    area_.GetPoints(points_);
  }

  std::vector<AreaFault> Find() && {
    CheckSteps();
    if (area_.GetType() == SDI::kDomeArea) return std::move(faults_);
    CheckCount();
    const std::size_t before = faults_.size();
    CheckRange();
    CheckEquality();
    if (area_.GetType() == SDI::kRectangularArea) CheckSides();
    const bool arePointsGood = faults_.size() == before;
    if (arePointsGood && corners_.size() > 2 && !file_.Sphere().IsValid()) FindCrossings();
    return std::move(faults_);
  }

 private:
  std::string Angle(double radians) const {
    return AngleText(FromRadians(radians, file_.unit), file_.unit);
  }
  std::string Point(std::size_t i) const {
    return fmt::format("(Hz {}, V {})", Angle(points_[i].GetHz()), Angle(points_[i].GetV()));
  }
  void Report(std::string_view rule, std::vector<std::size_t> points,
              std::vector<std::size_t> edges, std::string text) {
    faults_.push_back({rule, std::move(points), std::move(edges), std::move(text)});
  }

  void CheckSteps() {
    const auto check = [&](std::string_view rule, std::string_view name, double step) {
      if (step > 0) return;
      Report(rule, {}, {},
             fmt::format("the {} is {}, not above 0", name,
                         StepText(FromRadians(step, file_.unit), file_.unit)));
    };
    check("hzStepNotPositive", "Hz step", area_.GetHzStep());
    check("vStepNotPositive", "V step", area_.GetVStep());
  }

  void CheckCount() {
    const std::size_t count = points_.size();
    if (area_.GetType() == SDI::kRectangularArea && count != 2) {
      Report("pointCount", {}, {}, fmt::format("a rectangle has 2 corners, not {}", count));
    } else if (area_.GetType() == SDI::kPolygonArea && count < 3) {
      Report("pointCount", {}, {}, fmt::format("a polygon has 3 or more points, not {}", count));
    }
  }

  // A V beyond half a turn was replaced by the same direction in the first face.
  void CheckRange() {
    for (std::size_t i = 0; i < corners_.size(); ++i) {
      const bool isHzGood = GMAT::InRange(corners_[i].Hz, 0.0, GMAT::TWO_PI);
      const bool isVGood = GMAT::InRange(corners_[i].V, 0.0, GMAT::PI);
      if (isHzGood && isVGood) continue;
      const double half = HalfTurn(file_.unit);
      Report("pointOutOfRange", {i + 1}, {},
             fmt::format("point {} {} is out of range: {}", i + 1, Point(i),
                         isHzGood ? fmt::format("V goes from 0 to {:.7g}", half)
                                  : fmt::format("Hz goes from 0 to {:.7g}", 2 * half)));
    }
  }

  // Corners that are exactly the same direction, wherever they stand, and points that follow one
  // another and agree to less than the smallest normal number.
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
      if (corners_[order[k - 1]] == corners_[order[k]]) ReportEqual(order[k - 1], order[k]);
    }
    if (area_.GetType() == SDI::kRectangularArea && points_.size() != 2) return;
    for (std::size_t i = 0; i < points_.size(); ++i) {
      const std::size_t next = (i + 1) % points_.size();
      if (points_.size() < 2 || !(points_[i] == points_[next])) continue;
      if (!(corners_[i] == corners_[next])) ReportEqual(std::min(i, next), std::max(i, next));
      if (points_.size() == 2) break;
    }
  }
  void ReportEqual(std::size_t first, std::size_t second) {
    const bool isClosed = first == 0 && second + 1 == points_.size() && points_.size() > 2;
    Report(
        "equalPoints", {first + 1, second + 1}, {},
        fmt::format("points {} and {} are equal {}{}", first + 1, second + 1, Point(second),
                    isClosed ? ": a polygon closes itself, its first point is not repeated" : ""));
  }

  void CheckSides() {
    if (points_.size() != 2) return;
    if (points_[0].GetHz() - points_[1].GetHz() == 0.0) {
      Report("equalHz", {1, 2}, {},
             fmt::format("both corners have Hz {}: the rectangle has no width",
                         Angle(points_[0].GetHz())));
    }
    if (points_[0].GetV() - points_[1].GetV() == 0.0) {
      Report("equalV", {1, 2}, {},
             fmt::format("both corners have V {}: the rectangle has no height",
                         Angle(points_[0].GetV())));
    }
  }

  void FindCrossings() {
    std::vector<GMAT::AnglePointC> edges;
    double hzOrigin = 0.0;
    file_.Sphere().BuildEdgeList(edges, hzOrigin);
    const std::size_t count = edges.size() / 2;
    const auto edge = [&](std::size_t i) {
      return fmt::format("{} (point {} to {})", i + 1, i + 1, (i + 1) % count + 1);
    };
    for (const GMAT::EdgeCrossing& crossing : GMAT::FindEdgeCrossings(edges, kMostCrossings)) {
      Report(
          "crossingEdges", {}, {crossing.first + 1, crossing.second + 1},
          fmt::format("edges {} and {} cross near Hz {}, V {}", edge(crossing.first),
                      edge(crossing.second), Angle(GMAT::NormalizeAngle(crossing.at.Hz + hzOrigin)),
                      Angle(crossing.at.V)));
    }
  }

  const AreaFile& file_;
  const SDI::ScanAreaImplC& area_;
  const std::vector<GMAT::AnglePointC>& corners_;
  std::vector<SDI::ScanDefPointC> points_;
  std::vector<AreaFault> faults_;
};

}  // namespace

std::vector<AreaFault> FindAreaFaults(const AreaFile& file) { return FaultFinderC(file).Find(); }

}  // namespace Tool
