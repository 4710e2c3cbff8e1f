#ifndef SURVEYDATA_SPHERE_GEOMETRY_SLAB_INDEX_H_
#define SURVEYDATA_SPHERE_GEOMETRY_SLAB_INDEX_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/column_order.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/hz_intervals.h>
#include <surveydata/sphere_geometry/quick_trig.h>
#include <surveydata/sphere_geometry/ring_curves.h>

namespace GMAT {

/// The result of a floating-point filter for a direction.
enum class Verdict : std::uint8_t { kOutside, kInside, kUndecided };

/// A slab decomposition of a polygon: the even-odd rule of its crossings, with a floating-point
/// filter.
///
/// The plane of Hz and tan(latitude) is divided into columns and cells. A cell lists the curves of
/// the edges that enter it, and stores whether an odd number of the others is below it. If very
/// many edges lie side by side, those that cross a whole column are not in its cells but on an
/// ordered list (`ColumnOrderC`). If the rounding bounds (`filter_bounds.h`) do not prove the
/// answer, the rules must decide. The boundary band is not considered.
class SlabIndexC {
 public:
  /// \param manySideBySide the smallest average number of edges on a meridian for which ordered
  /// lists are used.
  /// \cost n log n for n edges that are spread over the ring.
  SlabIndexC(const AreaFrame& frame, const RingCurves& ring,
             double manySideBySide = CellGridC::kManySideBySide);

  /// `h` is in the frame of the edges, in [0, 2 pi]; `v` is in [0, 2 pi].
  Verdict Ask(double h, double v) const;

  /// True only for directions that `Ask` decides to be outside without the cells. Has no branch.
  bool IsBeyond(double h, double v) const {
    // Every crossing is within the search line: all count as above, or none does.
    return (v > vEnd_) | (v < vBegin_) | ((h > hEnd_) & (h < TWO_PI - kColumnOverlap));
  }

  /// The answer of the rules, for the frame of the index. On an ordered list, they are applied only
  /// to the edges that are not clear of the direction or of another crossing.
  bool AskRules(const AreaFrame& frame, double h, double v) const;

  /// Whether edges are on ordered lists.
  bool HasOrder() const { return !order_.IsEmpty(); }

  /// Whether `Ask` is undecided for every direction that is not beyond all edges.
  bool IsAlwaysUndecided() const { return isAlwaysUndecided_; }

  /// The edges that the meridian `h` may cross, for the rules: next to the seam all edges,
  /// elsewhere those of its column.
  std::vector<std::uint32_t> FindEdges(double h) const;

  /// Directions with their Hz in one of these are not decided: corners, and crossings so close that
  /// they may count as one. In [0, `GetWidth`].
  const HzIntervalsC& GetIntervals() const { return intervals_; }
  /// The width in Hz of the decomposed range, a full turn or less.
  double GetWidth() const { return grid_.GetWidth(); }

 private:
  class BuilderC;
  class OpenCrossingsC;

  // Whether the filter can decide the direction: h and v are in range, and it is not near a pole.
  bool IsRegular(double h, double v) const {
    return (h >= hFirst_) & (h <= hLast_) & (v >= kPoleMargin) & (v <= PI - kPoleMargin);
  }

  // The gap between a curve and a direction, or a crossing, on the meridian with cosine and sine
  // `atH`, and whether it proves on which side of the curve that is.
  struct Gap {
    double value;  // (t of the curve - t of the direction) times s
    bool isClear;
  };
  static Gap GapOf(const ArcCurve& curve, const CosSin& atH, const CosSin& atV) {
    const double gap = curve.At(atH) * atV.sine - atV.cosine;
    // Multiplied by s again.
    return {gap, std::fabs(gap) * atV.sine > kDirectionMargin + static_cast<double>(curve.error)};
  }
  std::size_t CountBelow(std::span<const ColumnOrderC::Item> order, const CosSin& atH,
                         const CosSin& atV) const {
    return ColumnOrderC::CountBelow(order, [&](const ColumnOrderC::Item& item) {
      return GapOf(curves_[item.curve], atH, atV).value < 0.0;
    });
  }

  // The edges of `FindEdges` that are not on an ordered list.
  std::vector<std::uint32_t> FindEdgesOfCells(double h) const;

  // Where the frame begins and ends, edges of the first or the last column may count.
  bool IsAtSeam(double h) const { return h < hFirst_ || h > hLast_; }

  double vBegin_;  // outside of these, nothing is inside
  double vEnd_;
  double hEnd_;
  double hFirst_;
  double hLast_;
  bool hasSearchLine_;
  bool isAlwaysUndecided_;
  std::uint32_t edgeCount_;
  std::vector<std::uint32_t> poleEdges_;
  std::vector<ArcCurve> curves_;  // an edge that crosses Hz 0 has two, a turn apart
  CellGridC grid_;
  ColumnOrderC order_;
  HzIntervalsC intervals_;
};

inline Verdict SlabIndexC::Ask(double h, double v) const {
  if (IsBeyond(h, v)) return Verdict::kOutside;
  if (isAlwaysUndecided_ || !IsRegular(h, v) || intervals_.Contains(h)) return Verdict::kUndecided;

  // Found by V itself, so that it need not wait for a trigonometric function.
  const std::size_t column = grid_.ColumnOf(h);
  const CellGridC::Cell cell = grid_.Find(column, -v);
  const CosSin atH = QuickCosSin(h);
  const CosSin atV = QuickCosSin(v);
  bool isOdd = cell.isOddBelow;
  bool isDecided = true;
  for (const CellGridC::Item& item : cell.items) {
    const ArcCurve& curve = curves_[item.curve];
    const auto [gap, isClear] = GapOf(curve, atH, atV);
    const bool hasBegun = h > curve.low;
    const bool isBeside = hasBegun & (h < curve.high);
    const bool endsBelow = item.endsBelow != 0;
    const bool isBelow = endsBelow ^ (isBeside & ((gap < 0.0) ^ endsBelow));
    isDecided &= !isBeside | isClear;
    isOdd ^= hasBegun & (isBelow ^ (item.startsBelow != 0));
  }
  if (HasOrder()) {
    const std::span<const ColumnOrderC::Item> order = order_.Get(column);
    const std::size_t below = CountBelow(order, atH, atV);
    isOdd ^= below % 2 == 1;
    if (below > 0) isDecided &= GapOf(curves_[order[below - 1].curve], atH, atV).isClear;
    if (below < order.size()) isDecided &= GapOf(curves_[order[below].curve], atH, atV).isClear;
  }
  if (!isDecided) return Verdict::kUndecided;
  // A closed ring is crossed an even number of times: with an odd number below, one is above.
  return isOdd ? Verdict::kInside : Verdict::kOutside;
}

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_SLAB_INDEX_H_
