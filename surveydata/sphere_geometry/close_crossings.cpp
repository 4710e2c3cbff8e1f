#include <algorithm>
#include <cmath>
#include <limits>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/close_crossings.h>

namespace GMAT {
namespace {

// If a cell needs more comparisons per curve than this, its column is left to the rules.
constexpr std::size_t kMostPerCurve = 512;

// A curve that crosses more curves of the order than this is left to the rules.
constexpr std::size_t kMostExchanges = 16;

// An upper bound of |t| along an edge.
double ExtremeOf(const RingCurves& ring, std::size_t edge) {
  const ArcCurve& curve = ring.curves[edge];
  const double t1 = ring.GetStart(edge).tangent;
  const double t2 = ring.GetEnd(edge).tangent;
  const double span = curve.high - curve.low;
  if (span > kShortSpan) return Swing(curve.a, curve.b);
  return std::max(std::fabs(t1), std::fabs(t2)) + BulgeOf(t1, t2, span);
}

double ErrorOf(const ArcCurve& curve) { return static_cast<double>(curve.error); }

// The distance from their intersection within which two curves are closer than `closest`, or `span`
// if that is less. The difference of the curves is a sinusoid S sin(x).
double ReachOf(const ArcCurve& one, const ArcCurve& other, double closest, double span) {
  constexpr double kClearOfNextZero = 3.0;  // less than half a turn
  const double reach = kZeroReach * closest / Swing(one.a - other.a, one.b - other.b);
  return reach < kShortReach && span < kClearOfNextZero ? std::min(reach, span) : span;
}

}  // namespace

CurveComparisonC::CurveComparisonC(const std::vector<ArcCurve>& curves, std::size_t edgeCount,
                                   HzIntervalsC& intervals)
    : curves_(curves), edgeCount_(edgeCount), intervals_(intervals) {
  lines_.reserve(16);
}

void CurveComparisonC::SetColumn(double west, double east, const CosSin& atWest,
                                 const CosSin& atEast) {
  west_ = west;
  east_ = east;
  atWest_ = atWest;
  atEast_ = atEast;
}

CurveComparisonC::Line CurveComparisonC::MakeLine(const ArcCurve& curve, double west, double east) {
  const double extreme = kColumnRise * std::max(std::fabs(west), std::fabs(east));
  return {west, east, InTangent(kCrossingsApart, extreme), 0.0, &curve, false};
}

double CurveComparisonC::ClosestOf(const Line& a, const Line& b) {
  return std::min(a.closest, b.closest) + ErrorOf(*a.curve) + ErrorOf(*b.curve);
}

// The gap is a sinusoid. If it has the same sign at both borders, it is smallest at one of them.
bool CurveComparisonC::AreApart(const Line& a, const Line& b) {
  const double gapWest = a.west - b.west;
  const double gapEast = a.east - b.east;
  return gapWest * gapEast > 0.0 &&
         std::min(std::fabs(gapWest), std::fabs(gapEast)) > ClosestOf(a, b);
}

// Neighbours meet at a corner, which `AddIntervalsOfCorners` handles.
bool CurveComparisonC::AreNeighbours(const Line& a, const Line& b) const {
  const std::size_t edgeA = a.curve->edge;
  const std::size_t edgeB = b.curve->edge;
  const std::size_t first = std::min(edgeA, edgeB);
  const std::size_t second = std::max(edgeA, edgeB);
  return second - first < 2 || (first == 0 && second + 1 == edgeCount_);
}

void CurveComparisonC::AddInterval(const Line& a, const Line& b) {
  double low = std::max({west_, a.curve->low, b.curve->low}) - kRoundingMargin;
  double high = std::min({east_, a.curve->high, b.curve->high}) + kRoundingMargin;
  const double gapA = a.curve->a - b.curve->a;
  const double gapB = a.curve->b - b.curve->b;
  const double reach = kZeroReach * ClosestOf(a, b) / Swing(gapA, gapB);
  if (reach < kShortReach) {
    const double middle = (west_ + east_) / 2.0;
    const double zero = middle + std::remainder(std::atan2(-gapA, gapB) - middle, PI);
    low = std::max(low, zero - reach);
    high = std::min(high, zero + reach);
  }
  if (low <= high) intervals_.AddHz(low, high);
}

void CurveComparisonC::LeaveToRules(double low, double high) {
  intervals_.AddHz(low - kRoundingMargin, high + kRoundingMargin);
}

// Two curves are compared only in the lowest cell that contains both, where one of them `isLowest`.
void CurveComparisonC::CompareCell(const CellGridC::Cell& cell) {
  lines_.clear();
  double closest = 0.0;
  double error = 0.0;
  for (const CellGridC::Item& item : cell.items) {
    const ArcCurve& curve = curves_[item.curve];
    if (curve.kind != ArcCurve::kArc) continue;
    Line line = MakeLine(curve, curve.At(atWest_), curve.At(atEast_));
    line.isLowest = item.isLowest != 0;
    closest = std::max(closest, line.closest);
    error = std::max(error, ErrorOf(curve));
    lines_.push_back(line);
  }
  std::sort(lines_.begin(), lines_.end(),
            [](const Line& a, const Line& b) { return a.west < b.west; });
  double highestEast = -std::numeric_limits<double>::infinity();
  for (Line& line : lines_) line.highestEast = highestEast = std::max(highestEast, line.east);
  const double clear = closest + 2.0 * error;
  std::size_t left = kMostPerCurve * lines_.size();
  for (std::size_t i = 1; i < lines_.size(); ++i) {
    const Line& b = lines_[i];
    for (std::size_t k = i; k > 0; --k) {
      const Line& a = lines_[k - 1];
      // `b` is then that far above `a` and all lines before `a` at both borders.
      if (b.west - a.west > clear && b.east - a.highestEast > clear) break;
      if (left-- == 0) {
        LeaveToRules(west_, east_);
        return;
      }
      if ((a.isLowest || b.isLowest) && !AreApart(a, b) && !AreNeighbours(a, b)) AddInterval(a, b);
    }
  }
}

bool CurveComparisonC::CompareNeighbours(const ColumnOrderC::Crossing& lower,
                                         const ColumnOrderC::Crossing& upper) {
  const Line a = MakeLine(curves_[lower.curve], lower.left, lower.right);
  const Line b = MakeLine(curves_[upper.curve], upper.left, upper.right);
  const double closest = ClosestOf(a, b);
  const double least = std::min(b.west - a.west, b.east - a.east);
  const double most = std::max(b.west - a.west, b.east - a.east);
  if (least > closest) return true;
  // The gap changes sign at most once, near one border. Outside the interval it has its sign at the
  // other border.
  if (!(most > closest && least > -closest)) return false;
  AddInterval(a, b);
  return true;
}

void CurveComparisonC::CompareWithOrder(const ArcCurve& curve,
                                        std::span<const ColumnOrderC::Item> order) {
  if (curve.kind != ArcCurve::kArc || order.empty()) return;
  const double low = std::max(west_, curve.low);
  const double high = std::min(east_, curve.high);
  if (low > high) return;  // only an end is near, which has its own interval
  const CosSin atLow = QuickCosSin(low);
  const CosSin atHigh = QuickCosSin(high);
  const auto countBelow = [&](const CosSin& at) {
    const double t = curve.At(at);
    return ColumnOrderC::CountBelow(
        order, [&](const ColumnOrderC::Item& item) { return curves_[item.curve].At(at) < t; });
  };
  const auto [first, last] = std::minmax({countBelow(atLow), countBelow(atHigh)});
  if (last - first > kMostExchanges) {
    LeaveToRules(low, high);
    return;
  }
  // Only the next two curves on either side can be close: the curves of the order are as far apart
  // as two crossings must be, so the second one separates the curve from all beyond it.
  const std::size_t end = std::min(last + 2, order.size());
  const Line line = MakeLine(curve, curve.At(atLow), curve.At(atHigh));
  for (std::size_t i = first - std::min<std::size_t>(first, 2); i < end; ++i) {
    const ArcCurve& other = curves_[order[i].curve];
    const Line otherLine = MakeLine(other, other.At(atLow), other.At(atHigh));
    if (!AreApart(line, otherLine)) AddInterval(line, otherLine);
  }
}

void AddIntervalsOfCorners(const AreaFrame& frame, const RingCurves& ring,
                           HzIntervalsC& intervals) {
  const std::size_t n = ring.curves.size();
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t before = i > 0 ? i - 1 : n - 1;
    const ArcCurve& in = ring.curves[before];
    const ArcCurve& out = ring.curves[i];
    const double hz = ring.corners[i].hz;
    double west = kRoundingMargin;
    double east = kRoundingMargin;
    const bool goesEast = frame.GetStart(i).Hz < frame.GetEnd(i).Hz;
    const bool cameEast = frame.GetStart(before).Hz < frame.GetEnd(before).Hz;
    if (in.kind == ArcCurve::kArc && out.kind == ArcCurve::kArc && goesEast != cameEast) {
      // Both edges lie on the same side. Their difference is a sinusoid that is 0 at the corner.
      const double extreme = std::max(ExtremeOf(ring, before), ExtremeOf(ring, i));
      const double closest = InTangent(kCrossingsApart, extreme) + ErrorOf(in) + ErrorOf(out);
      const double span = std::min(in.high - in.low, out.high - out.low);
      (goesEast ? east : west) += ReachOf(in, out, closest, span);
    }
    intervals.AddHz(hz - west, hz + east);
    if (out.kind == ArcCurve::kSteep) {
      intervals.AddHz(out.low - kRoundingMargin, out.high + kRoundingMargin);
    }
  }
  // On the meridian of an edge at a pole, and on the opposite one, the rules decide.
  for (const std::uint32_t edge : ring.poleEdges) {
    const ArcEdgeC arc(SpherePointC(frame.GetStart(edge)), SpherePointC(frame.GetEnd(edge)));
    for (const double side : {0.0, PI}) {
      const double hz = NormalizeAngle(arc.GetMeridian() + side);
      intervals.AddHz(hz - 2.0 * kRoundingMargin, hz + 2.0 * kRoundingMargin);
    }
  }
}

void AddIntervalsOfCells(const CellGridC& grid, const ColumnOrderC& order,
                         const std::vector<CosSin>& borders, const std::vector<ArcCurve>& curves,
                         std::size_t edgeCount, HzIntervalsC& intervals) {
  CurveComparisonC comparison(curves, edgeCount, intervals);
  for (std::size_t i = 0; i < grid.GetColumnCount(); ++i) {
    comparison.SetColumn(grid.GetBorder(i), grid.GetBorder(i + 1), borders[i], borders[i + 1]);
    grid.ForEachCell(i, [&](const CellGridC::Cell& cell) { comparison.CompareCell(cell); });
    if (order.Get(i).empty()) continue;
    for (const CellGridC::Item& item : grid.GetItems(i)) {
      if (item.isLowest != 0) comparison.CompareWithOrder(curves[item.curve], order.Get(i));
    }
  }
}

}  // namespace GMAT
