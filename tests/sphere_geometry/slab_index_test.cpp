#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <random>
#include <vector>

#include <benchmarks/hostile_rings.h>
#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/ring_curves.h>
#include <surveydata/sphere_geometry/slab_index.h>

#include "tests/support/number_of_cases.h"
#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

using TestSupport::NumberOfCases;

struct Indexed {
  explicit Indexed(const std::vector<AnglePointC>& points,
                   double manySideBySide = CellGridC::kManySideBySide) {
    EXPECT_TRUE(BuildFrame(points, frame));
    ring = BuildRingCurves(frame);
    slabs.emplace(frame, ring, manySideBySide);
  }
  Verdict Ask(double h, double v) const { return slabs->Ask(h, v); }
  bool AskRules(double h, double v) const {
    return IsInsideByCrossings(frame, AllEdges(frame), h, v);
  }

  AreaFrame frame;
  RingCurves ring;
  std::optional<SlabIndexC> slabs;
};

const std::vector<AnglePointC> kSquare{{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}};

bool IsRegular(const AnglePointC& p) {
  return p.Hz >= 0.0 && p.Hz <= TWO_PI && p.V >= 0.0 && p.V <= PI;
}

// Whether the index supports a ring: it is valid or around the zenith, with its points in range.
bool IsIndexed(const std::vector<AnglePointC>& points) {
  AreaFrame frame;
  return points.size() > 2 && std::all_of(points.begin(), points.end(), IsRegular) &&
         BuildFrame(points, frame) && (frame.enclosesZenith || IsRingValid(points, frame.edges));
}

// Edges side by side at an angle; half of the rings are mirrored.
std::vector<AnglePointC> HostileRing(RingGenerator& random) {
  std::vector<AnglePointC> points;
  const bool isMirrored = random.Below(2) == 0;
  const std::size_t kind = random.Below(std::size(HostileRings::kAll));
  for (const Direction& d : HostileRings::kAll[kind].make(20 + random.Below(200))) {
    points.push_back({d.hz, isMirrored ? PI - d.v : d.v});
  }
  return points;
}

std::vector<AnglePointC> SomeRing(RingGenerator& random, int i) {
  if (i % 20 == 0) return random.CrowdedRing();
  return i % 20 == 10 ? HostileRing(random) : random.Ring(60, false);
}

// Only with cells, or with ordered lists as well.
constexpr double kNever = std::numeric_limits<double>::infinity();
constexpr double kAlways = 0.0;

TEST(SlabIndex, ItsDecisionsAreTheAnswersOfTheRules) {
  RingGenerator random(7);
  int rings = 0;
  int ordered = 0;
  int decided = 0;
  int inside = 0;
  constexpr int kProbes = 100;
  for (int i = 0; i < NumberOfCases(6000); ++i) {
    const std::vector<AnglePointC> points = SomeRing(random, i / 2);
    if (!IsIndexed(points)) continue;
    const Indexed area(points, i % 2 == 0 ? kNever : kAlways);
    ++rings;
    ordered += area.slabs->HasOrder();
    for (int k = 0; k < (i / 2 % 10 == 0 ? 20 : kProbes); ++k) {
      const AnglePointC probe = random.Probe(area.frame.edges, 0.0, false);
      if (!IsRegular(probe)) continue;
      const double h = NormalizeAngle(probe.Hz);
      const bool byRules = area.slabs->AskRules(area.frame, h, probe.V);
      ASSERT_EQ(byRules, area.AskRules(h, probe.V)) << h << ", " << probe.V;
      const Verdict verdict = area.Ask(h, probe.V);
      if (verdict == Verdict::kUndecided) continue;
      ++decided;
      inside += verdict == Verdict::kInside;
      ASSERT_EQ(verdict == Verdict::kInside, area.AskRules(h, probe.V)) << h << ", " << probe.V;
    }
  }
  EXPECT_GT(rings, NumberOfCases(2000));
  EXPECT_GT(ordered, NumberOfCases(500));
  EXPECT_GT(decided, NumberOfCases(100000));
  EXPECT_GT(inside, NumberOfCases(10000));
}

TEST(SlabIndex, TheEdgesItFindsAreEnoughForTheRules) {
  RingGenerator random(8);
  for (int i = 0; i < 1000; ++i) {
    const std::vector<AnglePointC> points = SomeRing(random, i / 2);
    if (!IsIndexed(points)) continue;
    const Indexed area(points, i % 2 == 0 ? kNever : kAlways);
    for (int k = 0; k < 60; ++k) {
      const AnglePointC probe = random.Probe(area.frame.edges, 0.0, false);
      const double h = NormalizeAngle(probe.Hz);
      ASSERT_EQ(IsInsideByCrossings(area.frame, area.slabs->FindEdges(h), h, probe.V),
                area.AskRules(h, probe.V))
          << h << ", " << probe.V;
    }
  }
}

// Below the end of the search line nothing counts. Still, at an Hz slightly beyond the end of an
// edge that leads there almost along a meridian, the crossing may lie above the end of the line.
TEST(SlabIndex, FindsEdgesThatCountBeyondAnEndBelowTheSearchLine) {
  // The fifth edge ends at V = 2.524; 4e-11 further east, the rules find a crossing at V = 2.500.
  const Indexed area({{0.0, 2.1804076942357176},
                      {3.0910735542446068, 0.50542331804152552},
                      {4.9421616411627385, 2.5243104999406962},
                      {3.2254427824539169, 2.1804076942357176},
                      {4.3338154026183684, 3.141592652589793},
                      {4.9421616511627384, 2.5243104999406962}});
  const double h = 4.9421616512027384;
  const std::vector<std::uint32_t> found = area.slabs->FindEdges(h);
  EXPECT_EQ(std::count(found.begin(), found.end(), 4U), 1);
  EXPECT_TRUE(area.AskRules(h, 0.685));
  EXPECT_TRUE(area.slabs->AskRules(area.frame, h, 0.685));
}

TEST(SlabIndex, FindsEveryEdgeThatCountsBeyondAnEnd) {
  RingGenerator random(9);
  int crossings = 0;
  int curved = 0;
  for (int i = 0; i < 20000; ++i) {
    // The second edge is almost along a meridian, below the line, where nothing counts.
    const double hz = random.Uniform(1.0, 5.0);
    const double hzBefore = hz - std::pow(10.0, random.Uniform(-10.0, 0.0));
    const AnglePointC end{hz, V_LIMIT + std::pow(10.0, random.Uniform(-6.0, -1.0))};
    const bool isNearNadir = random.Below(2) == 0;
    const AnglePointC begin{hzBefore, isNearNadir ? PI - std::pow(10.0, random.Uniform(-9.5, -7.0))
                                                  : random.Uniform(2.6, 3.1)};
    const Indexed ring({{0.0, 2.0}, begin, end, {5.5, 2.0}, {5.9, 2.2}});
    const ArcCurve& curve = ring.ring.curves[1];
    for (const double beyond : {0.0, 2e-11, 6e-11, 1e-10, 1.5e-10}) {
      for (const double h : {hz + beyond, hzBefore - beyond}) {
        double v = 0.0;
        const SearchMeridianC meridian(ring.frame, h);
        if (!meridian.Crosses(ring.frame.GetStart(1), ring.frame.GetEnd(1), v)) continue;
        ++crossings;
        curved += curve.kind == ArcCurve::kArc;
        const std::vector<std::uint32_t> edges = ring.slabs->FindEdges(h);
        ASSERT_EQ(std::count(edges.begin(), edges.end(), 1U), 1)
            << begin.Hz << ", " << begin.V << " to " << end.Hz << ", " << end.V << " at " << h;
      }
    }
  }
  EXPECT_GT(crossings, 100);
  EXPECT_GT(curved, 20);
}

TEST(SlabIndex, DecidesInsideAndOutside) {
  const Indexed area(kSquare);
  EXPECT_EQ(area.Ask(0.5, 1.5), Verdict::kInside);
  EXPECT_EQ(area.Ask(0.5, 0.5), Verdict::kOutside);
  EXPECT_EQ(area.Ask(0.5, 2.5), Verdict::kOutside);
  EXPECT_EQ(area.Ask(1.5, 1.5), Verdict::kOutside);
  EXPECT_EQ(area.Ask(6.0, 1.5), Verdict::kOutside);
  EXPECT_EQ(area.Ask(0.5, 6.0), Verdict::kOutside) << "V beyond pi";
}

TEST(SlabIndex, LeavesTheMeridiansOfCornersToTheRules) {
  const Indexed area({{1.0, 1.0}, {1.5, 0.9}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}});
  for (const double off : {0.0, 9e-10, -9e-10}) {
    EXPECT_EQ(area.Ask(0.5 + off, 1.5), Verdict::kUndecided) << off;
  }
  for (const double off : {2e-9, -2e-9}) EXPECT_EQ(area.Ask(0.5 + off, 1.5), Verdict::kInside);
}

TEST(SlabIndex, LeavesTheNeighbourhoodOfAnEdgeToTheRules) {
  const Indexed area(kSquare);
  const double v = HALF_PI - std::atan(std::tan(HALF_PI - 2.0) / std::cos(0.5) * std::cos(0.2));
  for (const double off : {0.0, 3e-9, -3e-9}) {
    EXPECT_EQ(area.Ask(0.7, v + off), Verdict::kUndecided) << off;
  }
  EXPECT_EQ(area.Ask(0.7, v - 1e-8), Verdict::kInside);
  EXPECT_EQ(area.Ask(0.7, v + 1e-8), Verdict::kOutside);
}

// Two edges that meet at a corner at such an acute angle that their crossings count as one for some
// distance.
TEST(SlabIndex, LeavesCrossingsThatCountAsOneToTheRules) {
  const double gap = 1e-8;  // 0.5 rad from the corner
  const Indexed area(
      {{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.5, 2.0}, {1.0, 1.5 + gap}, {1.5, 2.2}, {1.0, 1.5}});
  int merged = 0;
  for (double h = 1e-4; h < 0.5; h += 1e-4) {
    for (const double v : {1.2, 2.5}) {
      const Verdict verdict = area.Ask(h, v);
      if (verdict == Verdict::kUndecided) continue;
      ASSERT_EQ(verdict == Verdict::kInside, area.AskRules(h, v)) << h;
    }
    merged += area.Ask(h, 1.2) == Verdict::kUndecided;
  }
  const Indexed spike(
      {{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 1.5}, {2.0, 2.0 + gap}, {0.9, 2.2}});
  for (double h = 0.1 + 1e-4; h < 1.1; h += 1e-4) {
    merged += spike.Ask(h, 1.2) == Verdict::kUndecided;
    const Verdict verdict = spike.Ask(h, 1.2);
    if (verdict != Verdict::kUndecided) {
      ASSERT_EQ(verdict == Verdict::kInside, spike.AskRules(h, 1.2)) << h;
    }
  }
  EXPECT_GT(merged, 50);
}

// The same for edges that cross whole columns, and are therefore on an ordered list.
TEST(SlabIndex, AppliesTheRulesWhereCrossingsOnAListCountAsOne) {
  std::vector<AnglePointC> points;
  for (int i = 0; i < 21; ++i) {
    // A comb. The lower side of a tooth has a corner 5e-11 below the arc of the upper side.
    const double v = 1.0 + 0.01 * i;
    const double end = v + 0.003;
    const double t = (std::cos(v) / std::sin(v) + std::cos(end) / std::sin(end)) / 2.0;
    const double middle = HALF_PI - std::atan(t / std::cos(0.5));
    for (const AnglePointC& p : {AnglePointC{1.0, v},
                                 {2.0, end},
                                 {2.0, end + 1e-9},
                                 {1.5, middle + 5e-11},
                                 {1.0, v + 1e-9}}) {
      points.push_back(p);
    }
  }
  points.push_back({0.9, 2.0});
  points.push_back({0.9, 0.9});
  ASSERT_TRUE(IsIndexed(points));
  const Indexed area(points, kAlways);
  EXPECT_TRUE(area.slabs->HasOrder());
  int undecided = 0;
  int inside = 0;
  for (double h = 0.1003; h < 1.1; h += 0.001) {
    for (double v = 0.905; v < 1.3; v += 0.01) {
      const bool byRules = area.AskRules(h, v);
      inside += byRules;
      ASSERT_EQ(area.slabs->AskRules(area.frame, h, v), byRules) << h << ", " << v;
      const Verdict verdict = area.Ask(h, v);
      undecided += verdict == Verdict::kUndecided;
      ASSERT_TRUE(verdict == Verdict::kUndecided || (verdict == Verdict::kInside) == byRules) << h;
    }
  }
  EXPECT_GT(undecided, 1000);
  EXPECT_GT(inside, 500);
}

// The edges of several turns, nearly on top of each other. Where three or more swap, an edge may be
// close to one that is not its neighbour on the list.
TEST(SlabIndex, AppliesTheRulesWhereManyEdgesOnAListSwap) {
  RingGenerator random(10);
  int ordered = 0;
  int undecided = 0;
  for (int i = 0; i < 300; ++i) {
    constexpr std::uint64_t kCorners = 4;
    const double width = std::pow(10.0, random.Uniform(-9.5, -8.0));
    std::vector<AnglePointC> points;
    for (std::uint64_t k = 0; k < kCorners * (4 + random.Below(4)); ++k) {
      points.push_back({TWO_PI / kCorners * static_cast<double>(k % kCorners),
                        1.2 + random.Uniform(0.0, width)});
    }
    const Indexed area(points, kAlways);
    ordered += area.slabs->HasOrder();
    for (int k = 0; k < 200; ++k) {
      const double h = random.Uniform(0.0, TWO_PI);
      undecided += area.Ask(h, 0.5) == Verdict::kUndecided;
      ASSERT_EQ(area.slabs->AskRules(area.frame, h, 0.5), area.AskRules(h, 0.5)) << i << ": " << h;
    }
  }
  EXPECT_GT(ordered, 250);
  EXPECT_GT(undecided, 10000);
}

// Nearly all directions of a comb at an angle are decided, including those between its teeth.
TEST(SlabIndex, DecidesACombAtAnAngle) {
  std::vector<AnglePointC> points;
  for (const Direction& d : HostileRings::DiagonalComb(4000)) points.push_back({d.hz, d.v});
  const Indexed area(points, kAlways);
  ASSERT_TRUE(area.slabs->HasOrder());
  RingGenerator random(9);
  int decided = 0;
  int inside = 0;
  constexpr int kProbes = 2000;
  for (int i = 0; i < kProbes; ++i) {
    const double h = random.Uniform(0.3, 1.1);
    const double v = random.Uniform(1.2, 2.0);
    const Verdict verdict = area.Ask(h, v);
    if (verdict == Verdict::kUndecided) continue;
    ++decided;
    inside += verdict == Verdict::kInside;
    ASSERT_EQ(verdict == Verdict::kInside, area.AskRules(h, v)) << h << ", " << v;
  }
  EXPECT_GT(decided, kProbes * 99 / 100);
  EXPECT_GT(inside, kProbes / 4);
}

// Non-adjacent edges that cross, as those of a ring around the zenith may.
TEST(SlabIndex, LeavesTheHzOfACrossingOfEdgesToTheRules) {
  std::vector<AnglePointC> points;
  for (int i = 0; i < 8; ++i) points.push_back({TWO_PI * i / 8, 1.5});
  points.push_back({0.2, 1.2});  // overlaps the beginning
  points.push_back({TWO_PI - 0.3, 1.7});
  const Indexed area(points);
  ASSERT_TRUE(area.frame.enclosesZenith);
  const auto& intervals = area.slabs->GetIntervals().GetIntervals();
  EXPECT_GT(intervals.size(), points.size()) << "more than the corners";
  for (double h = 0.0005; h < TWO_PI; h += 0.001) {
    const Verdict verdict = area.Ask(h, 2.2);
    if (verdict == Verdict::kUndecided) continue;
    ASSERT_EQ(verdict == Verdict::kInside, area.AskRules(h, 2.2)) << h;
  }
}

// A ring around the zenith with many more crossings than the index stores intervals.
TEST(SlabIndex, TakesALimitedAmountOfMemoryForARingThatCrossesItself) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  std::vector<AnglePointC> points;
  constexpr int kCorners = 9000;
  for (int i = 0; i < kCorners; ++i) {
    const double hz = TWO_PI * i / kCorners + 2.0 * uniform(random);
    points.push_back({NormalizeAngle(hz), 0.1 + 2.9 * uniform(random)});
  }
  ASSERT_TRUE(IsIndexed(points));
  const Indexed area(points);
  // The capacity is at most twice the largest number of intervals at any time.
  EXPECT_LE(area.slabs->GetIntervals().GetIntervals().capacity(), std::size_t{2} << 20);
  for (int i = 0; i < 100; ++i) {
    const double h = TWO_PI * uniform(random);
    const double v = PI * uniform(random);
    const bool byRules = area.AskRules(h, v);
    EXPECT_EQ(area.slabs->AskRules(area.frame, h, v), byRules);
    const Verdict verdict = area.Ask(h, v);
    EXPECT_TRUE(verdict == Verdict::kUndecided || (verdict == Verdict::kInside) == byRules);
  }
}

TEST(SlabIndex, LeavesThePolesToTheRules) {
  std::vector<AnglePointC> points;
  for (int i = 0; i < 8; ++i) points.push_back({TWO_PI * i / 8, 1.5});
  const Indexed area(points);
  EXPECT_EQ(area.Ask(1.0, kPoleMargin / 2.0), Verdict::kUndecided);
  EXPECT_EQ(area.Ask(1.0, 2.0 * kPoleMargin), Verdict::kInside);
  EXPECT_EQ(area.Ask(0.0, 1.0), Verdict::kUndecided) << "the seam";
  EXPECT_EQ(area.Ask(TWO_PI - kColumnOverlap / 2.0, 1.0), Verdict::kUndecided);
}

TEST(SlabIndex, DecidesNothingWhereTheRingHasAGapOrReachesThePole) {
  const Indexed south({{1.0, 1.5}, {2.0, PI}, {3.0, 1.5}});
  EXPECT_TRUE(south.slabs->IsAlwaysUndecided());
  EXPECT_EQ(south.Ask(1.0, 2.0), Verdict::kUndecided);
  EXPECT_EQ(south.Ask(1.0, 0.5), Verdict::kOutside) << "above all edges";
  EXPECT_FALSE(Indexed(kSquare).slabs->IsAlwaysUndecided());
  // Two antipodal corners have no arc between them.
  const Indexed gap({{1.0, 1.0}, {1.0 + PI, PI - 1.0}, {1.5, 2.0}});
  EXPECT_TRUE(gap.slabs->IsAlwaysUndecided());
}

// From pole to pole there is no search line.
TEST(SlabIndex, IsOutsideWithoutASearchLine) {
  const Indexed area({{1.0, 0.0}, {2.0, PI}, {1.5, 1.0}});
  EXPECT_EQ(area.Ask(0.3, 1.0), Verdict::kOutside);
  EXPECT_FALSE(area.AskRules(0.3, 1.0));
}

}  // namespace
}  // namespace GMAT
