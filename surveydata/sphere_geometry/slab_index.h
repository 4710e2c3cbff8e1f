#ifndef SURVEYDATA_SPHERE_GEOMETRY_SLAB_INDEX_H_
#define SURVEYDATA_SPHERE_GEOMETRY_SLAB_INDEX_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/hz_intervals.h>
#include <surveydata/sphere_geometry/quick_trig.h>
#include <surveydata/sphere_geometry/ring_curves.h>

namespace GMAT {

/// What a floating-point filter knows of a direction.
enum class Verdict : std::uint8_t { kOutside, kInside, kUndecided };

/// A slab decomposition of a polygon: the even-odd rule of its crossings, with a floating-point
/// filter.
///
/// The plane of Hz and tan(latitude) is cut into columns and cells. A cell lists the curves of the
/// edges that come into it, and knows whether an odd number of the others lies below it. Where the
/// bounds of the rounding do not prove the answer, the rules must be asked (`filter_bounds.h`). The
/// boundary band is not considered.
class SlabIndexC {
 public:
  /// \cost n log n for n edges that are spread over the ring.
  SlabIndexC(const AreaFrame& frame, const RingCurves& ring);

  /// `h` is in the frame of the edges, in [0, 2 pi]; `v` is in [0, 2 pi].
  Verdict Ask(double h, double v) const;

  /// Whether `Ask` is undecided for every direction that is not beyond all edges.
  bool IsAlwaysUndecided() const { return isAlwaysUndecided_; }

  /// The edges that the meridian `h` may cross, for the rules to look at: all next to the seam,
  /// those of its column elsewhere.
  std::vector<std::uint32_t> FindEdges(double h) const;

  /// Directions with their Hz in one of these are not decided: corners, and crossings so close that
  /// they may count as one. In [0, `GetWidth`].
  const HzIntervalsC& GetIntervals() const { return intervals_; }
  /// The width in Hz of what is decomposed, a full turn or less.
  double GetWidth() const { return grid_.GetWidth(); }

 private:
  class BuilderC;

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
  std::vector<ArcCurve> curves_;  // and another a turn apart of an edge that crosses Hz 0
  CellGridC grid_;
  HzIntervalsC intervals_;
};

inline Verdict SlabIndexC::Ask(double h, double v) const {
  // Every crossing lies within the search line: all count as above, or none does.
  const bool isBeyond = (v > vEnd_) | (v < vBegin_) | ((h > hEnd_) & (h < TWO_PI - kColumnOverlap));
  if (isBeyond) return Verdict::kOutside;
  const bool isRegular =
      (h >= hFirst_) & (h <= hLast_) & (v >= kPoleMargin) & (v <= PI - kPoleMargin);
  if (isAlwaysUndecided_ || !isRegular || intervals_.Contains(h)) return Verdict::kUndecided;

  // Found by V itself, which takes no trigonometric function to wait for.
  const CellGridC::Cell cell = grid_.Find(grid_.ColumnOf(h), -v);
  const CosSin atH = QuickCosSin(h);
  const CosSin atV = QuickCosSin(v);
  bool isOdd = cell.isOddBelow;
  bool isDecided = true;
  for (const CellGridC::Item& item : cell.items) {
    const ArcCurve& curve = curves_[item.curve];
    // (t of the curve - t of the direction) times s, and then times s once more.
    const double gap = curve.At(atH) * atV.sine - atV.cosine;
    const bool isClear =
        std::fabs(gap) * atV.sine > kDirectionMargin + static_cast<double>(curve.error);
    const bool hasBegun = h > curve.low;
    const bool isBeside = hasBegun & (h < curve.high);
    const bool endsBelow = item.endsBelow != 0;
    const bool isBelow = endsBelow ^ (isBeside & ((gap < 0.0) ^ endsBelow));
    isDecided &= !isBeside | isClear;
    isOdd ^= hasBegun & (isBelow ^ (item.startsBelow != 0));
  }
  if (!isDecided) return Verdict::kUndecided;
  // A closed ring is crossed an even number of times: with an odd number below, one is above.
  return isOdd ? Verdict::kInside : Verdict::kOutside;
}

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_SLAB_INDEX_H_
