#ifndef SURVEYDATA_SPHERE_GEOMETRY_FILTER_BOUNDS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_FILTER_BOUNDS_H_

#include <cmath>

#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>

/// \file
/// The bounds of the floating-point filters: if a computed comparison clears its bound, the rules
/// give the same answer and need not be evaluated. docs/sphere_areas.md has the whole argument;
/// filter_bounds_test measures each bound against multi-precision arithmetic.
///
/// Angles are in rad, u is the unit roundoff, s the sine of V, t = cot V = tan(latitude).

namespace GMAT {

/// The largest relative error of rounding to nearest.
inline constexpr double kUnitRoundoff = 0x1p-53;

// --- Comparisons to 10 digits ---

/// Areas whose frame is wider, rad, are left to the rules: a frame this wide winds 325 times.
inline constexpr double kWidestFrame = 2048.0;

/// The largest distance outside a range that `InRange`, `AtLeast` and `AtMost` accept, for operands
/// up to `kWidestFrame`.
///
/// RoundToStep computes k d for k = floor(x / d + 1/2), d = 1e-10. At x = 2048 the quotient 2.05e13
/// is rounded by u 2.05e13 = 0.0023, the sum by half of its ulp, 0.002, k d by u 2048 = 0.0023 d,
/// and d itself is off by u d, which moves k d by as much: |RoundToStep(x) - x| <= 0.509 d. Two
/// rounded operands count as equal when they differ by less than d: 2.018 d.
inline constexpr double kDigitsReach = 2.02e-10;

/// If angles are this far apart, every comparison to 10 digits is decided. Moving an angle by
/// full turns rounds twice by u `kWidestFrame` = 2.3e-13, and 325 turns of `TWO_PI` instead of 2 pi
/// are 8e-14 off.
inline constexpr double kRoundingMargin = 1e-9;
static_assert(kRoundingMargin > 4.0 * (kDigitsReach + 4.0 * kUnitRoundoff * kWidestFrame));

// --- The bounds of an area ---

/// The vertex of an edge cannot widen the bounds where it would have to lie farther from an end of
/// the edge in V than in Hz. On the arc tan(lat) = T cos(Hz - Hz0), |lat0 - lat| <= |Hz - Hz0|:
/// with d the difference of Hz and lat0 = atan T, tan(lat0 - d) <= T cos d follows from T (1 - cos
/// d) <= 2 T sin d <= tan d + T^2 sin d. The vertex that the rules compute is off by
/// `kVertexAccuracy`, and counts within the span of the edge to 10 digits.
inline constexpr double kVertexMargin = 1e-6;
/// Up to this Hz, a tenth of the margin exceeds the rounding error of Hz plus that of the
/// comparison to 10 digits.
inline constexpr double kLargestHz = 1e6;
static_assert(kVertexMargin / 10.0 > kVertexAccuracy + 16.0 * kUnitRoundoff * kLargestHz + 3e-10);
/// The second candidate is at least this far from an end: a quarter turn, less the error of the
/// courses of short edges.
inline constexpr double kWidestWithoutOpposite = HALF_PI - 0.01;

// --- The boundary band ---

/// Edges of this length or more in the (Hz, V) plane are left to the rules.
inline constexpr double kLargeEdge = 1e6;

/// How far from an edge's box a probe in its band may lie.
///
/// The rules accept a distance from the edge's line of half of `CONTAINS_TOLERANCE`, 7.854e-6, plus
/// `kDigitsReach`, and neither end may be farther than the edge is long, so that the foot of the
/// probe lies on the edge. Of the length L, the distance of the line is rounded by 8 u (two
/// products of factors up to L, each rounded three times, their difference, the quotient), those of
/// the ends by 4 u: with L = 1e6 that makes 1.3e-9.
inline constexpr double kBandReach = 1e-5;
static_assert(kBandReach >
              CONTAINS_TOLERANCE / 2.0 + kDigitsReach + 12.0 * kUnitRoundoff * kLargeEdge);

/// The same in the index of bands, whose lines v = v0 + m x are also rounded: v0, m x and the
/// sum by u |m x| each, x up to `kWidestFrame`, where the strip is m times `kBandReach` high.
inline constexpr double kStripReach = kBandReach + 1e-8;
static_assert(kStripReach - kBandReach > 4.0 * kUnitRoundoff * kWidestFrame);

// --- Arcs as sinusoids ---

/// Arcs whose plane comes nearer to the poles than this (sine of the angle, |nz| / |n|) are steep:
/// the rules decide over their whole span. Of the others |t| < 1 / kSteepSine.
inline constexpr double kSteepSine = 1e-9;

/// The error of `QuickCosSin`, of cosine and sine each.
///
/// The angle: k TWO_PI / 256 is rounded by half of ulp(2 pi) = 4 u, TWO_PI is 2.2 u off, the
/// difference is exact: 6.2 u. The table: 3 u. The two polynomials: rounded by 1 u, cut off by less
/// than 0.1 u. The rotation: two products and their sum, 2 u. Together less than 13 u.
inline constexpr double kQuickTrigError = 16.0 * kUnitRoundoff;

/// The error of `QuickArcTangent`: that of its polynomial, 2e-8 as published.
inline constexpr double kQuickArcTangentError = 2.1e-8;

/// The largest difference of t = a cos Hz + b sin Hz between the filter and the rules, in units of
/// |a| + |b|.
///
/// Both take a = -nx / nz and b = -ny / nz from the same computed normal n. The rules round cosine
/// and sine by 1 u, two products, their sum and the quotient by nz: 5 u. The filter rounds a and b
/// by 1 u, product and sum by 2 u, after an error of `kQuickTrigError`. The border of a column and
/// the column of a direction are rounded by 2 u of Hz, 4 pi u, which is less than 13 u.
inline constexpr double kCurveError = 40.0 * kUnitRoundoff;
static_assert(kCurveError > kQuickTrigError + (8.0 + 13.0) * kUnitRoundoff);

/// Directions this close to a pole are left to the rules: s > kPoleMargin for all others.
inline constexpr double kPoleMargin = 1e-8;
/// |t| is less than this for all directions that the filter decides.
inline constexpr double kPoleTangent = 1.0 / kPoleMargin;

/// Converts a difference of V into one of t with the derivative, 1 / s^2 = 1 + t^2.
constexpr double InTangent(double difference, double tangent) {
  return difference * (1.0 + tangent * tangent);
}

/// The smallest difference in V for a difference in t of m (1 + t^2), for |t| up to `extreme`:
/// between t and t + m (1 + t^2) the derivative of V is at least 1 / (1 + t^2) / (1 + m sqrt(1 +
/// t^2))^2.
constexpr double LeastInV(double m, double extreme) {
  return m / ((1.0 + 1.01 * m * extreme) * (1.0 + 1.01 * m * extreme));
}

/// It is certain on which side of an arc a direction is if |t_arc - t| exceeds this times 1 + t^2,
/// plus the error of the curve. Then V differs by more than the comparison with the crossing
/// requires, whose arc tangent and difference are rounded by 4 u.
inline constexpr double kDirectionMargin = 4.0 * kRoundingMargin;
static_assert(LeastInV(kDirectionMargin, kPoleTangent) > kRoundingMargin + 8.0 * kUnitRoundoff);

/// A cell lists the arcs within this distance of it. A direction nearer to the equator than the arc
/// is then that far from it in V; nearer to the pole |t| of both is below `kPoleTangent`.
inline constexpr double kListingMargin = 8.0 * kRoundingMargin;
static_assert(LeastInV(kListingMargin, kPoleTangent) > kRoundingMargin + 8.0 * kUnitRoundoff);

/// The largest error of arcs on an ordered list: if the neighbours of a direction on the list are
/// clear of it, so are the arcs beyond them.
inline constexpr double kOrderError = 1e-10;
static_assert(LeastInV(kDirectionMargin - kOrderError, kPoleTangent) >
              kRoundingMargin + 8.0 * kUnitRoundoff);

/// Two arcs that are this far apart in V have crossings that the rules never count as one, as they
/// do if crossings differ by less than 1e-10.
inline constexpr double kCrossingsApart = 1.5e-10;
static_assert(LeastInV(kCrossingsApart, 1.0 / kSteepSine) > 1e-10 + 16.0 * kUnitRoundoff);
/// So are arcs on an ordered list that are not neighbours: of their errors, those in the rules are
/// an eighth, and |t| is at most `kOrderError` / `kCurveError`.
static_assert(LeastInV(kCrossingsApart - kOrderError / 4.0, kOrderError / kCurveError) >
              1e-10 + 16.0 * kUnitRoundoff);

// --- The extremes of a sinusoid within a span ---

/// Over a span x of Hz up to `kShortSpan`, t leaves the range of its two ends by at most
/// kBulge x^2 max |t|: the extreme M within the span has an end within x / 2, at M cos(x / 2) or
/// more, so that M is at most 1 / cos(x / 2) times that end, and (1 / cos(x / 2) - 1) / x^2 grows
/// with x, to 0.1879 at 1.8.
inline constexpr double kBulge = 0.2;
inline constexpr double kShortSpan = 1.8;

/// The widest column of the slab decomposition: no area has fewer than 8.
inline constexpr double kWidestColumn = TWO_PI / 8.0;
static_assert(kWidestColumn < kShortSpan);

/// Within a column, |t| is at most this times the greater of its values at the borders:
/// 1 / cos(kWidestColumn / 2) = 1.0824.
inline constexpr double kColumnRise = 1.09;

/// asin(x) is at most this times x, up to `kShortReach`: the sinusoid S sin(Hz - Hz0) is below y
/// only within kZeroReach y / S of its zero. The rest of the hundredth, which asin(0.01) does not
/// need, covers the rounding of S and of the quotient.
///
/// y includes `kCurveError` times the sum of |a| and |b| of both curves, which is at least S. Of
/// these 40 u, the rules need 5 u; a, b and their differences, whose rounding displaces the zero,
/// 2 u. The zero itself is rounded by less than 24 u: an arc tangent up to pi by 4 u; its
/// difference from the middle of the column, up to 3 pi, by 8 u; `PI` is 1.1 u off, up to three
/// times; the sum and the end of the interval, up to 2 pi, are rounded by 4 u each.
inline constexpr double kZeroReach = 1.01;
inline constexpr double kShortReach = 0.01;
static_assert(kCurveError >= (5.0 + 2.0 + 24.0) * kUnitRoundoff);

// --- Ends ---

/// A column lists the edges that come this close in Hz; next to the seam the rules test all edges.
/// A corner lies within `kRoundingMargin` of where it counts.
inline constexpr double kColumnOverlap = 1e-8;
static_assert(kColumnOverlap > 4.0 * kRoundingMargin);

/// Crossings up to this far beyond the ends of the search line count for certain: the rules widen
/// it by `kVertexAccuracy`.
inline constexpr double kLineReach = 1e-8;
static_assert(kLineReach + kRoundingMargin < kVertexAccuracy);

/// Crossings farther than this beyond the ends of the search line do not count, for certain.
inline constexpr double kLineMargin = 1e-7;
static_assert(kLineMargin > kVertexAccuracy + 2.0 * kRoundingMargin);

// --- The raster ---

/// The raster finds a direction by its Hz in units of 2^-32 of a turn, rounded down: by less than a
/// unit and the rounding of the quotient and of the rules' Hz, 12 u of 2 pi. Arcs change by |a| +
/// |b| times this.
inline constexpr double kRasterSlack = 4e-9;
static_assert(kRasterSlack > 2.0 * TWO_PI * (0x1p-32 + 12.0 * kUnitRoundoff));

/// The raster begins this much before the frame and ends as much after it, so that it includes
/// everything that counts next to a corner.
inline constexpr double kRasterOverlap = 2.0 * kColumnOverlap;
static_assert(kRasterOverlap > kColumnOverlap + 2.0 * kRasterSlack);

/// Directions this far beyond the search line, or the band, are decided without the cells.
inline constexpr double kRasterEdge = 1e-6;
static_assert(kRasterEdge > kLineMargin + kPoleMargin);

// --- Rectangles ---

/// A crossing with the side of a rectangle has the Hz of the line to within 4 u of 2 pi; it is
/// compared to 10 digits. It is certain to count if Hz is farther than this from half a step.
inline constexpr double kBetweenSteps = 0.01;
static_assert(kBetweenSteps * 1e-10 > 8.0 * kUnitRoundoff * TWO_PI);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_FILTER_BOUNDS_H_
