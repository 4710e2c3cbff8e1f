#include <array>

#include <fmt/format.h>

#include <surveydata/scanning/area_faults.h>

#include <area/area_faults.h>

namespace Tool {
namespace {

using Rule = SDI::AreaFault::Rule;

std::string_view NameOf(Rule rule) {
  switch (rule) {
    case Rule::kHzStepNotPositive:
      return "hzStepNotPositive";
    case Rule::kVStepNotPositive:
      return "vStepNotPositive";
    case Rule::kPointCount:
      return "pointCount";
    case Rule::kPointOutOfRange:
      return "pointOutOfRange";
    case Rule::kEqualPoints:
      return "equalPoints";
    case Rule::kEqualHz:
      return "equalHz";
    case Rule::kEqualV:
      return "equalV";
    case Rule::kCrossingEdges:
      break;
  }
  return "crossingEdges";
}

// The indices that are present, counted from 1.
std::vector<std::size_t> Numbers(const std::array<std::size_t, 2>& indices) {
  std::vector<std::size_t> numbers;
  for (const std::size_t index : indices) {
    if (index != SDI::AreaFault::kNone) numbers.push_back(index + 1);
  }
  return numbers;
}

class FaultTextC {
 public:
  explicit FaultTextC(const AreaFile& file) : file_(file), area_(file.Impl()) {
    area_.GetPoints(points_);
  }

  std::string Of(const SDI::AreaFault& fault) const {
    switch (fault.rule) {
      case Rule::kHzStepNotPositive:
        return StepFault("Hz", area_.GetHzStep());
      case Rule::kVStepNotPositive:
        return StepFault("V", area_.GetVStep());
      case Rule::kPointCount:
        return fmt::format("a {}, not {}",
                           area_.GetType() == SDI::kRectangularArea
                               ? "rectangle has 2 corners"
                               : "polygon has 3 or more points",
                           points_.size());
      case Rule::kPointOutOfRange:
        return OutOfRange(fault.points[0]);
      case Rule::kEqualPoints:
        return Equal(fault.points[0], fault.points[1]);
      case Rule::kEqualHz:
        return fmt::format("both corners have Hz {}: the rectangle has no width",
                           Angle(points_[0].GetHz()));
      case Rule::kEqualV:
        return fmt::format("both corners have V {}: the rectangle has no height",
                           Angle(points_[0].GetV()));
      case Rule::kCrossingEdges:
        break;
    }
    return fmt::format("edges {} and {} cross near Hz {}, V {}", Edge(fault.edges[0]),
                       Edge(fault.edges[1]), Angle(fault.hz), Angle(fault.v));
  }

 private:
  std::string Angle(double radians) const {
    return AngleText(FromRadians(radians, file_.unit), file_.unit);
  }
  std::string Point(std::size_t i) const {
    return fmt::format("(Hz {}, V {})", Angle(points_[i].GetHz()), Angle(points_[i].GetV()));
  }
  std::string Edge(std::size_t i) const {
    return fmt::format("{} (point {} to {})", i + 1, i + 1, (i + 1) % points_.size() + 1);
  }

  std::string StepFault(std::string_view name, double step) const {
    return fmt::format("the {} step is {}, not above 0", name,
                       StepText(FromRadians(step, file_.unit), file_.unit));
  }
  std::string OutOfRange(std::size_t i) const {
    const bool isHzGood = GMAT::InRange(file_.Sphere().GetPoints()[i].Hz, 0.0, GMAT::TWO_PI);
    const double half = HalfTurn(file_.unit);
    return fmt::format("point {} {} is out of range: {}", i + 1, Point(i),
                       isHzGood ? fmt::format("V goes from 0 to {:.7g}", half)
                                : fmt::format("Hz goes from 0 to {:.7g}", 2 * half));
  }
  std::string Equal(std::size_t first, std::size_t second) const {
    const bool isClosed = first == 0 && second + 1 == points_.size() && points_.size() > 2;
    return fmt::format(
        "points {} and {} are equal {}{}", first + 1, second + 1, Point(second),
        isClosed ? ": a polygon closes itself, its first point is not repeated" : "");
  }

  const AreaFile& file_;
  const SDI::ScanAreaImplC& area_;
  std::vector<SDI::ScanDefPointC> points_;
};

}  // namespace

std::vector<AreaFault> FindAreaFaults(const AreaFile& file) {
  const FaultTextC text(file);
  std::vector<AreaFault> faults;
  for (const SDI::AreaFault& fault : SDI::FindAreaFaults(*file.area)) {
    faults.push_back(
        {NameOf(fault.rule), Numbers(fault.points), Numbers(fault.edges), text.Of(fault)});
  }
  return faults;
}

}  // namespace Tool
