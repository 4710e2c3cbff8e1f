// Measures the bounds of the floating-point filters against arithmetic of 60 digits, on inputs
// chosen to come close to them, and reports how much of each bound is used.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/boundary_band.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/hz_intervals.h>
#include <surveydata/sphere_geometry/quick_trig.h>
#include <surveydata/sphere_geometry/ring_curves.h>

#include "tests/support/number_of_cases.h"

namespace GMAT {
namespace {

using TestSupport::NumberOfCases;
using Exact = boost::multiprecision::cpp_bin_float_50;

const Exact kExactPi = boost::math::constants::pi<Exact>();

class FilterBounds : public testing::Test {
 protected:
  double Uniform(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  // Any order of magnitude between two.
  double Scaled(double low, double high) {
    return std::exp(Uniform(std::log(low), std::log(high)));
  }
  bool OneIn(std::uint64_t n) { return random_() % n == 0; }

  // Expects `used` to be within `bound`, and reports the fraction.
  static void Expect(const std::string& name, double used, double bound) {
    EXPECT_LE(used, bound) << name;
    EXPECT_GT(used, 0.0) << name << ": nothing was measured";
    const std::string part = std::to_string(100.0 * used / bound) + " %";
    RecordProperty(name, part);
    std::printf("%-28s %.3g of %.3g: %s\n", name.c_str(), used, bound, part.c_str());
  }

  std::mt19937_64 random_{20260101};
};

// The worst case: values half a step from where rounding to digits jumps, on both sides.
TEST_F(FilterBounds, ComparisonsToTenDigits) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(400'000); ++i) {
    const double high = (OneIn(2) ? kWidestFrame : TWO_PI) * Uniform(0.9, 1.0);
    const double edge =
        (std::floor(high * 1e10) - 0.5 + (OneIn(2) ? 1e-4 : Uniform(-0.01, 0.01))) * 1e-10;
    const double x = edge + Uniform(1.9e-10, 2.1e-10);
    const bool isAccepted = InRange(x, 0.0, edge) || AtMost(x, edge);
    if (isAccepted) used = std::max(used, x - edge);
  }
  Expect("kDigitsReach", used, kDigitsReach);
}

// The full turns of a frame: their error, and the rounding when an angle is moved by them.
TEST_F(FilterBounds, TurnsOfAFrame) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(100'000); ++i) {
    const double h = Uniform(0.0, TWO_PI);
    const double middle = kWidestFrame * Uniform(0.99, 1.0);
    const double turned = TurnedNextTo(h, middle);
    const Exact turns = round((Exact(turned) - Exact(h)) / (2 * kExactPi));
    const Exact error = abs(Exact(turned) - (Exact(h) + turns * 2 * kExactPi));
    used = std::max(used, error.convert_to<double>());
  }
  Expect("kRoundingMargin/4", used + kDigitsReach, kRoundingMargin / 4.0);
}

// Edges of all widths, many of them along the equator, where a vertex is least accurate.
TEST_F(FilterBounds, VerticesOfEdges) {
  double used = 0.0;
  double opposite = 0.0;
  for (int i = 0; i < 200'000; ++i) {
    const double width = OneIn(2) ? Scaled(1e-9, kWidestWithoutOpposite)
                                  : kWidestWithoutOpposite * Uniform(0.9, 1.0);
    const double start = (OneIn(4) ? kLargestHz : TWO_PI) * Uniform(0.0, 0.99);
    const bool isNearEquator = OneIn(2);
    const auto anyV = [&] {
      if (!isNearEquator) return Uniform(1e-3, PI - 1e-3);
      return HALF_PI + (OneIn(2) ? Scaled(1e-12, 1e-2) : -Scaled(1e-12, 1e-2));
    };
    const AnglePointC current{start, anyV()};
    const double end = OneIn(2) ? current.V : anyV();  // symmetric: the vertex is in the middle
    const AnglePointC previous{start + (OneIn(2) ? width : -width), end};
    const GreatCircleArcC arc{SpherePointC(current), SpherePointC(previous)};
    double latitude = 0.0;
    double longitude = 0.0;
    if (!arc.GetVertex(latitude, longitude)) continue;
    // The opposite candidate.
    opposite = std::max(opposite,
                        HALF_PI - std::fabs(std::remainder(longitude + PI - current.Hz, TWO_PI)));
    if (!InRange(longitude, std::min(start, previous.Hz), std::max(start, previous.Hz))) continue;
    const double farthest = std::fabs(latitude - (HALF_PI - current.V)) - width;
    used = std::max(used, farthest);
    // The claim on which it rests, exactly: a cos x + b sin x has its vertex at x0, no farther in
    // latitude.
    if (i % 40 != 0 || arc.IsMeridian()) continue;
    const Exact d = Exact(previous.Hz) - Exact(current.Hz);
    const Exact a = 1 / tan(Exact(current.V));
    const Exact b = (1 / tan(Exact(previous.V)) - a * cos(d)) / sin(d);
    const Exact vertex = atan(sqrt(a * a + b * b));
    const Exact x0 = atan(b / a);
    EXPECT_LE(vertex - atan(abs(a)), abs(x0));
  }
  Expect("kVertexMargin", used, kVertexMargin);
  Expect("kWidestWithoutOpposite", opposite, HALF_PI - kWidestWithoutOpposite);
}

// Probes at the limit of the tolerance next to edges of all lengths.
TEST_F(FilterBounds, ReachOfTheBand) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(200'000); ++i) {
    const double length = OneIn(3) ? kLargeEdge * 0.7 : Scaled(1e-4, 1e3);
    const double angle = OneIn(3) ? 0.0 : Uniform(0.0, TWO_PI);
    const AnglePointC a{Uniform(0.0, 6.0), Uniform(0.0, 3.0)};
    const AnglePointC b{a.Hz + length * std::cos(angle), a.V + length * std::sin(angle)};
    const double along = OneIn(2) ? Uniform(-1e-9, 1e-9) : length * Uniform(0.0, 1.0);
    const double across = CONTAINS_TOLERANCE / 2.0 + Uniform(0.0, 2.1e-10);
    const AnglePointC probe{a.Hz + along * std::cos(angle) - across * std::sin(angle),
                            a.V + along * std::sin(angle) + across * std::cos(angle)};
    if (!IsInBand(probe, a, b)) continue;
    const auto beyond = [](double x, double end1, double end2) {
      return std::max({std::min(end1, end2) - x, x - std::max(end1, end2), 0.0});
    };
    used = std::max({used, beyond(probe.Hz, a.Hz, b.Hz), beyond(probe.V, a.V, b.V)});
    const BandStrip strip(a, b, 2.0 * kBandReach);
    EXPECT_LE(std::fabs(probe.V - (strip.v0 + strip.slope * probe.Hz)), strip.halfHeight);
  }
  Expect("kBandReach", used, kBandReach);
}

// The distance from the line of a strip, compared with what the strip adds to the reach of the
// band.
TEST_F(FilterBounds, LinesOfStrips) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(20'000); ++i) {
    const double x = OneIn(2) ? kWidestFrame * Uniform(0.99, 1.0) : Uniform(0.0, TWO_PI);
    const double span = OneIn(2) ? Scaled(2.1e-5, 1.0) : Uniform(0.0, PI);
    const AnglePointC a{x, Uniform(0.0, PI)};
    const AnglePointC b{x + span, Uniform(0.0, PI)};
    const BandStrip strip(a, b, 2.0 * kBandReach);
    if (strip.slope == 0.0) continue;
    const double hz = x + Uniform(0.0, 1.0) * span;
    const Exact slope = (Exact(b.V) - Exact(a.V)) / (Exact(b.Hz) - Exact(a.Hz));
    const Exact v = Exact(a.V) + slope * (Exact(hz) - Exact(a.Hz));
    const Exact error = abs(Exact(strip.v0 + strip.slope * hz) - v) / sqrt(1 + slope * slope);
    used = std::max(used, error.convert_to<double>());
  }
  Expect("kStripReach-kBandReach", used, kStripReach - kBandReach);
}

TEST_F(FilterBounds, QuickCosineAndSine) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(40'000); ++i) {
    double x = Uniform(0.0, TWO_PI);
    // Near the middle between two entries of the table, and near an entry.
    if (OneIn(3)) x = (static_cast<double>(random_() % 512) / 2.0) * TrigTableC::kStep;
    if (OneIn(3)) x = std::nextafter(x, OneIn(2) ? 0.0 : TWO_PI);
    x = std::clamp(x, 0.0, TWO_PI);
    const CosSin quick = QuickCosSin(x);
    const Exact cosine = abs(Exact(quick.cosine) - cos(Exact(x)));
    const Exact sine = abs(Exact(quick.sine) - sin(Exact(x)));
    used = std::max({used, cosine.convert_to<double>(), sine.convert_to<double>()});
  }
  Expect("kQuickTrigError", used, kQuickTrigError);
}

TEST_F(FilterBounds, QuickArcTangent) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(20'000); ++i) {
    const double x = (OneIn(2) ? 1.0 : -1.0) * (OneIn(2) ? Uniform(0.0, 1.0) : Scaled(1e-3, 1e12));
    const Exact error = abs(Exact(QuickArcTangent(x)) - atan(Exact(x)));
    used = std::max(used, error.convert_to<double>());
  }
  Expect("kQuickArcTangentError", used, kQuickArcTangentError);
  EXPECT_EQ(QuickArcTangent(0.0), 0.0);
  EXPECT_NEAR(QuickArcTangent(std::numeric_limits<double>::infinity()), HALF_PI, 1e-15);
  // The widening of heights in the cells is rounded as a float, too.
  EXPECT_GT(static_cast<double>(CellGridC::kRounding), 2 * 0x1p-22 + 2 * kQuickArcTangentError);
}

// The normals of short, long, steep and nearly level arcs.
struct Arc {
  double a;
  double b;
  cVec3 normal;
};

bool MakeArc(const AnglePointC& p, const AnglePointC& q, Arc& arc) {
  const ArcEdgeC edge{SpherePointC(p), SpherePointC(q)};
  const cVec3& n = edge.GetNormal();
  if (!edge.IsValid() || edge.IsThroughPoles() ||
      !(std::fabs(n.Z()) > kSteepSine * edge.GetNormalLength())) {
    return false;
  }
  arc = {-n.X() / n.Z(), -n.Y() / n.Z(), n};
  return true;
}

// t of the filter and t of the rules, each compared with t of the normal that both compute.
TEST_F(FilterBounds, CurvesOfArcs) {
  double used = 0.0;
  int steep = 0;
  for (int i = 0; i < NumberOfCases(30'000); ++i) {
    const AnglePointC p{Uniform(0.0, TWO_PI), Uniform(0.01, 3.13)};
    const double span = OneIn(2) ? Scaled(1e-9, 3.0) : Uniform(0.0, 3.0);
    Arc arc;
    if (!MakeArc(p, {p.Hz + span, Uniform(0.01, 3.13)}, arc)) continue;
    // At a point where the two products cancel, or at random.
    double h = OneIn(2) ? std::atan2(-arc.a, arc.b) : Uniform(0.0, TWO_PI);
    if (h < 0.0) h += PI;
    const CosSin quick = QuickCosSin(h);
    const Exact t =
        -(Exact(arc.normal.X()) * cos(Exact(h)) + Exact(arc.normal.Y()) * sin(Exact(h))) /
        Exact(arc.normal.Z());
    const double scale = std::fabs(arc.a) + std::fabs(arc.b);
    const Exact ofFilter = abs(Exact(arc.a * quick.cosine + arc.b * quick.sine) - t);
    const double across = arc.normal.X() * std::cos(h) + arc.normal.Y() * std::sin(h);
    const Exact ofRules = abs(Exact(-across) / Exact(arc.normal.Z()) - t);
    used = std::max(used, (ofFilter + ofRules).convert_to<double>() / scale);
    steep += scale > 1e6;
  }
  EXPECT_GT(steep, NumberOfCases(30));
  Expect("kCurveError", used, kCurveError);
}

// If the filter decides on which side of an arc a direction is, V differs by more than the
// comparison with the crossing requires. Measures this requirement as a fraction of the smallest
// difference.
TEST_F(FilterBounds, SidesOfArcs) {
  double least = 1.0;
  double leastListed = 1.0;
  for (int i = 0; i < NumberOfCases(10'000); ++i) {
    const double v = OneIn(2) ? Scaled(kPoleMargin, 1.0) : Uniform(kPoleMargin, PI - kPoleMargin);
    const CosSin at = QuickCosSin(v);
    // A curve whose t is just beyond the margin, above or below.
    const double t = std::cos(v) / std::sin(v);
    const double side = OneIn(2) ? 1.0 : -1.0;
    const double curve = t + side * InTangent(kDirectionMargin, t) * Uniform(1.0, 1.001);
    const double gap = curve * at.sine - at.cosine;
    if (std::fabs(gap) * at.sine > kDirectionMargin) {
      const Exact exact = abs(atan2(Exact(1), Exact(curve)) - Exact(v));
      least = std::min(least, exact.convert_to<double>());
      EXPECT_EQ(gap<0.0, atan2(Exact(1), Exact(curve))> Exact(v));
    }
    const double listed = t + side * InTangent(kListingMargin, std::max(std::fabs(t), 1.0));
    const Exact apart = abs(atan2(Exact(1), Exact(listed)) - Exact(v));
    leastListed = std::min(leastListed, apart.convert_to<double>());
  }
  Expect("needed of kDirectionMargin", kRoundingMargin, least);
  Expect("needed of kListingMargin", kRoundingMargin, leastListed);
}

// Arcs as steep as in ordered lists. Tests the error of t, and a direction that is just clear of
// its neighbour on the list: the arc beyond the neighbour, as near as possible and with the largest
// error, still has its crossing on the same side. Measures the requirement of the comparison as a
// fraction of the smallest difference.
TEST_F(FilterBounds, ArcsInOrder) {
  constexpr double kSteepest = kOrderError / kCurveError;
  double used = 0.0;
  double least = 1.0;
  int nearlySteepest = 0;
  for (int i = 0; i < NumberOfCases(40'000); ++i) {
    const AnglePointC p{Uniform(0.0, TWO_PI - 0.1), Uniform(0.01, 3.13)};
    const AnglePointC q{p.Hz + Scaled(1e-5, 1e-2), Uniform(0.01, 3.13)};
    Arc arc;
    if (!MakeArc(p, q, arc)) continue;
    const double scale = std::fabs(arc.a) + std::fabs(arc.b);
    const double error = kCurveError * scale;  // the test that an edge must pass
    if (error > kOrderError) continue;
    nearlySteepest += scale > kSteepest / 2.0;
    const double h = Uniform(p.Hz, q.Hz);
    const CosSin quick = QuickCosSin(h);
    const double ofFilter = arc.a * quick.cosine + arc.b * quick.sine;
    const double across = arc.normal.X() * std::cos(h) + arc.normal.Y() * std::sin(h);
    const Exact t =
        -(Exact(arc.normal.X()) * cos(Exact(h)) + Exact(arc.normal.Y()) * sin(Exact(h))) /
        Exact(arc.normal.Z());
    const Exact off = abs(Exact(ofFilter) - t) + abs(Exact(-across) / Exact(arc.normal.Z()) - t);
    used = std::max(used, off.convert_to<double>());

    const double side = OneIn(2) ? 1.0 : -1.0;
    const double margin =
        InTangent(kDirectionMargin, ofFilter) + error * (1.0 + ofFilter * ofFilter);
    const double v = std::atan2(1.0, ofFilter - side * margin * Uniform(1.0, 1.001));
    const CosSin at = QuickCosSin(v);
    const double gap = ofFilter * at.sine - at.cosine;
    if (!(std::fabs(gap) * at.sine > kDirectionMargin + error)) continue;
    const Exact beyond = t - side * Exact(kOrderError);
    const Exact apart = side * (Exact(v) - atan2(Exact(1), beyond));
    least = std::min(least, apart.convert_to<double>());
  }
  EXPECT_GT(nearlySteepest, NumberOfCases(300));
  Expect("kOrderError", used, kOrderError);
  ASSERT_GT(least, 0.0) << "the arc beyond is on the other side";
  Expect("needed in addition to kOrderError", kRoundingMargin + 8.0 * kUnitRoundoff, least);
}

// Two crossings on arcs of maximum steepness, at the smallest distance that the filter
// accepts.
TEST_F(FilterBounds, CrossingsApart) {
  double least = 1.0;
  for (int i = 0; i < NumberOfCases(200'000); ++i) {
    const double t =
        (OneIn(2) ? 1.0 : -1.0) * (OneIn(2) ? 1.0 / kSteepSine : Scaled(1e-3, 1.0 / kSteepSine));
    const double other = t + (OneIn(2) ? 1.0 : -1.0) * InTangent(kCrossingsApart, t);
    // As the rules compute V.
    const double v1 = HALF_PI - std::atan2(t, 1.0);
    const double v2 = HALF_PI - std::atan2(other, 1.0);
    EXPECT_FALSE(ApproxEqual(v1, v2)) << t;
    least = std::min(least, std::fabs(v1 - v2));
  }
  Expect("needed of kCrossingsApart", 1e-10, least);
}

// The extreme of a sinusoid within a span, compared with its ends. The difference is largest if the
// span is symmetric about the extreme.
TEST_F(FilterBounds, BulgeOfSinusoids) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(10'000); ++i) {
    const double span = OneIn(3) ? kShortSpan : Scaled(1e-3, kShortSpan);
    const double first = span * (OneIn(2) ? 0.5 : Uniform(0.0, 1.0));
    const Exact end = std::max(cos(Exact(first)), cos(Exact(span - first)));
    const Exact bulge = (1 - end) / end / (Exact(span) * Exact(span));
    used = std::max(used, bulge.convert_to<double>());
  }
  Expect("kBulge", used, kBulge);
}

TEST_F(FilterBounds, RiseWithinAColumn) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(10'000); ++i) {
    const double width = OneIn(2) ? kWidestColumn : Uniform(0.0, kWidestColumn);
    const double first = width * (OneIn(2) ? 0.5 : Uniform(0.0, 1.0));
    const Exact rise = 1 / std::max(cos(Exact(first)), cos(Exact(width - first)));
    used = std::max(used, rise.convert_to<double>());
  }
  Expect("kColumnRise", used, kColumnRise);
}

TEST_F(FilterBounds, ReachAroundAZero) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(10'000); ++i) {
    const double x = OneIn(2) ? kShortReach : Scaled(1e-12, kShortReach);
    used = std::max(used, (asin(Exact(x)) / Exact(x)).convert_to<double>());
  }
  // The quotient and the amplitude are rounded by 8 u.
  Expect("kZeroReach", used * (1.0 + 8.0 * kUnitRoundoff), kZeroReach);
}

// The vertex of the rules, which determines the ends of the search line, on arcs along the equator.
TEST_F(FilterBounds, VerticesAlongTheEquator) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(10'000); ++i) {
    const double offset = OneIn(2) ? Scaled(1e-10, 1e-3) : Uniform(-0.01, 0.01);
    const SpherePointC start(AnglePointC{0.0, HALF_PI + offset});
    const SpherePointC end(AnglePointC{Uniform(0.1, 1.5), HALF_PI + offset * Uniform(-1.0, 2.0)});
    const GreatCircleArcC arc(start, end);
    double latitude = 0.0;
    double longitude = 0.0;
    if (!arc.GetVertex(latitude, longitude)) continue;
    // For the course as computed.
    const Exact level = abs(sin(Exact(arc.GetCourse())) * cos(Exact(start.GetLatitude())));
    const Exact error = abs(abs(Exact(latitude)) - acos(level));
    used = std::max(used, error.convert_to<double>());
  }
  Expect("kVertexAccuracy", used, kVertexAccuracy);
  Expect("kLineMargin", kVertexAccuracy + kDigitsReach, kLineMargin);
}

// The crossing with a side of a rectangle has the Hz of the line.
TEST_F(FilterBounds, CrossingsWithSidesOfRectangles) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(200'000); ++i) {
    const double width = OneIn(2) ? Scaled(1e-6, TWO_PI) : Uniform(0.0, TWO_PI);
    const double v = Uniform(0.0, PI);
    const double h = width * Uniform(0.0, 1.0);
    AnglePointC crossing;
    if (!FindPlanarCrossing({0.0, v}, {width, v}, {h, v - 1.0}, {h, v + 0.7}, crossing)) continue;
    EXPECT_EQ(crossing.V, v);
    used = std::max(used, std::fabs(crossing.Hz - h));
  }
  Expect("kBetweenSteps", used + TWO_PI * 2.0 * kUnitRoundoff, kBetweenSteps * 1e-10);
}

// The Hz of the raster, in units of a turn, compared with the Hz of the rules.
TEST_F(FilterBounds, HzOfTheRaster) {
  double used = 0.0;
  for (int i = 0; i < NumberOfCases(200'000); ++i) {
    const double origin = Uniform(0.0, TWO_PI);
    const double hz = OneIn(3) ? origin : Uniform(0.0, TWO_PI);
    const std::uint32_t start = ToTurnUnits(origin);
    const Exact unit = 2 * kExactPi / 4294967296.0;
    const Exact inRaster = Exact(ToTurnUnits(hz) - start) * unit;
    const Exact h = Exact(NormalizeAngle(hz - origin)) + (Exact(origin) - Exact(start) * unit);
    const Exact difference = h - inRaster;
    const Exact turns = round(difference / (2 * kExactPi));
    used = std::max(used, abs(difference - turns * 2 * kExactPi).convert_to<double>());
  }
  Expect("kRasterSlack", used, kRasterSlack);
}

}  // namespace
}  // namespace GMAT
