#ifndef SURVEYDATA_SPHERE_GEOMETRY_RING_CURVES_H_
#define SURVEYDATA_SPHERE_GEOMETRY_RING_CURVES_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/quick_trig.h>

/// \file
/// The edges of a ring as curves of the plane of Hz and t = tan(latitude), in which an arc of a
/// great circle is a sinusoid.

namespace GMAT {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The amplitude of the sinusoid a cos(x) + b sin(x).
inline double Swing(double a, double b) { return std::sqrt(a * a + b * b); }

/// The most by which t of an arc can exceed the range of its values at two Hz `span` apart.
inline double BulgeOf(double t1, double t2, double span) {
  return kBulge * std::max(std::fabs(t1), std::fabs(t2)) * span * span;
}

/// An edge as t = a cos(Hz) + b sin(Hz) between two Hz.
struct ArcCurve {
  enum Kind : std::uint32_t {
    kArc,
    kSteep,  // along a meridian, or nearly so: only its ends matter
    kPole    // to the zenith or over it: it rises to the pole at both ends
  };

  static constexpr std::uint32_t kMostEdges = (1U << 30) - 1;

  double a = 0.0;
  double b = 0.0;
  double low = 0.0;
  double high = 0.0;
  float error = 0.0F;  ///< The rounding error of t, in the filter and in the rules.
  std::uint32_t edge : 30 = 0;
  std::uint32_t kind : 2 = kArc;

  double At(const CosSin& at) const { return a * at.cosine + b * at.sine; }
};

struct RingCorner {
  double hz;  ///< In [0, 2 pi).
  CosSin at;
  double tangent;
  double v;
};

/// An edge with its ends in the order of Hz.
struct RingEdge {
  const RingCorner& west;
  const RingCorner& east;
  bool wraps;  ///< Whether it crosses Hz 0.
};

struct TangentRange {
  double low;
  double high;
};

/// The curves of all edges. Curve i is that of edge i, which leads from corner i to the next one.
struct RingCurves {
  std::vector<RingCorner> corners;
  std::vector<ArcCurve> curves;  ///< Those at a pole without `low` and `high`.
  std::vector<std::uint32_t> poleEdges;
  bool isClosed = true;  ///< False at the south pole, and where an edge has no arc.

  const RingCorner& GetStart(std::size_t edge) const { return corners[edge]; }
  const RingCorner& GetEnd(std::size_t edge) const {
    return corners[edge + 1 < corners.size() ? edge + 1 : 0];
  }
  RingEdge Orient(std::size_t edge) const;
};

/// The curves of a polygon whose points are all in range.
RingCurves BuildRingCurves(const AreaFrame& frame);

/// The most by which t, and V, can exceed the range of their values at the ends of a part of the
/// curve, so that the part is listed in all cells with directions of which it is not clear. The
/// derivative of V is at most 1.
inline double SlackOf(const ArcCurve& curve, double t1, double t2, double span) {
  return BulgeOf(t1, t2, span) + static_cast<double>(curve.error);
}

/// Bounds of t along a part of the curve, between two Hz `span` apart at which it is t1 and t2.
inline TangentRange RangeBetween(const ArcCurve& curve, double t1, double t2, double span) {
  const double slack = SlackOf(curve, t1, t2, span) +
                       InTangent(kListingMargin, std::max(std::fabs(t1), std::fabs(t2)));
  return {std::min(t1, t2) - slack, std::max(t1, t2) + slack};
}

/// The ends of the line on which the rules count crossings, as tangents.
class LineEndsC {
 public:
  explicit LineEndsC(const AreaFrame& frame);
  /// Whether all crossings with t in the range count.
  bool AllCount(const TangentRange& t) const { return t.high < top_ && t.low > bottom_; }
  /// Whether all crossings with an edge that is not at a pole count.
  bool AllCount(const ArcCurve& curve, const RingEdge& edge) const;
  /// Whether no crossing counts. Never true if the ring does not enclose the zenith.
  bool NoneCounts(const TangentRange& t) const { return t.low > above_ || t.high < below_; }

 private:
  double top_;
  double bottom_;
  double above_;
  double below_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_RING_CURVES_H_
