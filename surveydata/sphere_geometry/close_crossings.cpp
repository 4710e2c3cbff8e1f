#include <algorithm>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/close_crossings.h>

namespace GMAT {
namespace {

// More curves of a cell are not compared with each other: its column is left to the rules.
constexpr std::size_t kMostLines = 1024;

// A bound of |t| along an edge.
double ExtremeOf(const RingCurves& ring, std::size_t edge) {
  const ArcCurve& curve = ring.curves[edge];
  const double t1 = ring.GetStart(edge).tangent;
  const double t2 = ring.GetEnd(edge).tangent;
  const double span = curve.high - curve.low;
  if (span > kShortSpan) return Swing(curve.a, curve.b);
  return std::max(std::fabs(t1), std::fabs(t2)) + BulgeOf(t1, t2, span);
}

double ErrorOf(const ArcCurve& curve) { return static_cast<double>(curve.error); }

// How far from where they meet two curves that part as a sinusoid S sin(x) are closer than
// `closest`: at most `span`.
double ReachOf(const ArcCurve& one, const ArcCurve& other, double closest, double span) {
  constexpr double kClearOfNextZero = 3.0;  // less than half a turn
  const double reach = kZeroReach * closest / Swing(one.a - other.a, one.b - other.b);
  return reach < kShortReach && span < kClearOfNextZero ? std::min(reach, span) : span;
}

// The curves of a cell, cut off at the borders of its column.
class CellComparisonC {
 public:
  CellComparisonC(const std::vector<ArcCurve>& curves, std::size_t edgeCount,
                  HzIntervalsC& intervals)
      : curves_(curves), edgeCount_(edgeCount), intervals_(intervals) {
    lines_.reserve(16);
  }

  void SetColumn(double west, double east, const CosSin& atWest, const CosSin& atEast) {
    west_ = west;
    east_ = east;
    atWest_ = atWest;
    atEast_ = atEast;
  }

  // Two curves are compared in the lowest cell that has both: there one of them is lowest.
  void Compare(const CellGridC::Cell& cell) {
    lines_.clear();
    AddLines(cell, true);
    const std::size_t lowest = lines_.size();
    AddLines(cell, false);
    if (lines_.size() > kMostLines) {
      intervals_.AddHz(west_ - kRoundingMargin, east_ + kRoundingMargin);
      return;
    }
    for (std::size_t a = 0; a < lowest; ++a) {
      for (std::size_t b = a + 1; b < lines_.size(); ++b) {
        if (!AreApart(lines_[a], lines_[b]) && !AreNeighbours(lines_[a], lines_[b])) {
          AddInterval(lines_[a], lines_[b]);
        }
      }
    }
  }

 private:
  struct Line {
    double west;  // t where the curve, or what would continue it, meets the borders
    double east;
    double closest;  // in t: nearer to it there may be crossings that count as one with it
    const ArcCurve* curve;
  };

  void AddLines(const CellGridC::Cell& cell, bool isLowest) {
    for (const CellGridC::Item& item : cell.items) {
      const ArcCurve& curve = curves_[item.curve];
      if (curve.kind != ArcCurve::kArc || (item.isLowest != 0) != isLowest) continue;
      const double west = curve.At(atWest_);
      const double east = curve.At(atEast_);
      const double extreme = kColumnRise * std::max(std::fabs(west), std::fabs(east));
      lines_.push_back({west, east, InTangent(kCrossingsApart, extreme), &curve});
    }
  }

  static double ClosestOf(const Line& a, const Line& b) {
    return std::min(a.closest, b.closest) + ErrorOf(*a.curve) + ErrorOf(*b.curve);
  }

  // The gap is a sinusoid: where it has one sign at both borders it is the least at one of them.
  static bool AreApart(const Line& a, const Line& b) {
    const double gapWest = a.west - b.west;
    const double gapEast = a.east - b.east;
    return gapWest * gapEast > 0.0 &&
           std::min(std::fabs(gapWest), std::fabs(gapEast)) > ClosestOf(a, b);
  }

  // Neighbours meet at a corner, which `AddIntervalsOfCorners` looks at.
  bool AreNeighbours(const Line& a, const Line& b) const {
    const std::size_t edgeA = a.curve->edge;
    const std::size_t edgeB = b.curve->edge;
    const std::size_t first = std::min(edgeA, edgeB);
    const std::size_t second = std::max(edgeA, edgeB);
    return second - first < 2 || (first == 0 && second + 1 == edgeCount_);
  }

  void AddInterval(const Line& a, const Line& b) {
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

  const std::vector<ArcCurve>& curves_;
  const std::size_t edgeCount_;
  HzIntervalsC& intervals_;
  double west_ = 0.0;
  double east_ = 0.0;
  CosSin atWest_{};
  CosSin atEast_{};
  std::vector<Line> lines_;
};

}  // namespace

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
      // Both edges are on one side, and part as a sinusoid that is 0 at the corner.
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
  // Where an edge at a pole has its meridian, and on the opposite side, the rules decide.
  for (const std::uint32_t edge : ring.poleEdges) {
    const ArcEdgeC arc(SpherePointC(frame.GetStart(edge)), SpherePointC(frame.GetEnd(edge)));
    for (const double side : {0.0, PI}) {
      const double hz = NormalizeAngle(arc.GetMeridian() + side);
      intervals.AddHz(hz - 2.0 * kRoundingMargin, hz + 2.0 * kRoundingMargin);
    }
  }
}

void AddIntervalsOfCells(const CellGridC& grid, const std::vector<CosSin>& borders,
                         const std::vector<ArcCurve>& curves, std::size_t edgeCount,
                         HzIntervalsC& intervals) {
  CellComparisonC comparison(curves, edgeCount, intervals);
  for (std::size_t i = 0; i < grid.GetColumnCount(); ++i) {
    comparison.SetColumn(grid.GetBorder(i), grid.GetBorder(i + 1), borders[i], borders[i + 1]);
    grid.ForEachCell(i, [&](const CellGridC::Cell& cell) { comparison.Compare(cell); });
  }
}

}  // namespace GMAT
