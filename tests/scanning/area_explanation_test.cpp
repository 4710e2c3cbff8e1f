// Why a direction is inside or outside: compares the reasons with the answers of areas and rules.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/literal_sphere_area.h"
#include "tests/support/number_of_cases.h"
#include "tests/support/ring_generator.h"

namespace SDI {
namespace {

using GMAT::AnglePointC;
using GMAT::HALF_PI;
using GMAT::PI;
using GMAT::TWO_PI;
using Rule = AreaExplanation::Rule;

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr std::size_t kNoEdge = AreaExplanation::kNoEdge;

void Fill(ScanAreaC& area, const std::vector<AnglePointC>& points) {
  for (const AnglePointC& p : points) area.AddPoint({p.Hz, p.V, -1.0});
}

std::vector<double> CountedOf(const AreaExplanation& why) {
  std::vector<double> counted;
  for (const AreaExplanation::Crossing& crossing : why.crossings) {
    if (crossing.isCounted) counted.push_back(crossing.v);
  }
  return counted;
}

bool Same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

void ExpectSame(const AreaExplanation& a, const AreaExplanation& b) {
  ASSERT_EQ(a.isInside, b.isInside);
  ASSERT_EQ(a.rule, b.rule);
  ASSERT_TRUE(Same(a.hz, b.hz));
  ASSERT_TRUE(Same(a.v, b.v));
  ASSERT_EQ(a.bandEdge, b.bandEdge);
  ASSERT_EQ(a.nearestEdge, b.nearestEdge);
  ASSERT_TRUE(Same(a.distance, b.distance));
  ASSERT_EQ(a.crossings.size(), b.crossings.size());
  for (std::size_t i = 0; i < a.crossings.size(); ++i) {
    ASSERT_EQ(a.crossings[i].edge, b.crossings[i].edge);
    ASSERT_TRUE(Same(a.crossings[i].v, b.crossings[i].v));
    ASSERT_EQ(a.crossings[i].isCounted, b.crossings[i].isCounted);
  }
}

// The expected reasons, by the step-by-step rules.
Rule RuleOf(const literal::SphereArea& rules, const AnglePointC& probe, AreaExplanation& expected) {
  if (!literal::WrapIntoRange(&expected.hz, 0.0, TWO_PI) ||
      !literal::WrapIntoRange(&expected.v, 0.0, TWO_PI)) {
    expected.hz = probe.Hz;
    return Rule::kOutOfRange;
  }
  literal::Extents extents;
  if (!rules.GetExtents(extents, false)) return Rule::kNotValid;
  std::vector<literal::Angles> line;
  const bool hasLine = rules.SearchLine({expected.hz, expected.v}, true, line);
  bool hasOneAbove = extents.enclosesZenith;
  for (const literal::Angles& crossing : line) {
    expected.crossings.push_back({0, crossing.v, false});
    hasOneAbove = hasOneAbove || literal::AtLeast(expected.v, crossing.v, 10);
  }
  if (literal::AtMost(rules.DistanceToBoundary(expected.hz, expected.v),
                      GMAT::CONTAINS_TOLERANCE / 2.0, 10)) {
    return Rule::kBand;
  }
  if (!hasLine) return Rule::kNoSearchLine;
  if (line.empty()) return Rule::kNoCrossing;
  return hasOneAbove ? Rule::kParity : Rule::kNothingAbove;
}

TEST(AreaExplanation, OfAnyDirectionIsThatOfTheRulesAndOfThePreparedArea) {
  RingGenerator random(20260301);
  std::size_t seen[8] = {};
  std::size_t inside = 0;
  constexpr std::size_t kRings = TestSupport::NumberOfCases(3000);
  for (std::size_t i = 0; i < kRings; ++i) {
    // The literal rules compare all pairs of the hundreds of edges of a crowded ring, many times
    // for each direction.
    const bool isCrowded = i % 300 == 0;
    const std::vector<AnglePointC> ring = isCrowded ? random.CrowdedRing() : random.Ring(40, true);
    ScanPolygonAreaC area;
    Fill(area, ring);
    literal::SphereArea rules;
    for (const AnglePointC& p : ring) rules.AddPoint(p.Hz, p.V);
    const PreparedAreaC prepared(area);
    const GMAT::SphereAreaC& sphere = area.GetImpl()->GetSphereArea();
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    sphere.BuildEdgeList(edges, hzOrigin);
    for (int k = 0; k < (isCrowded ? 1 : 8); ++k) {
      const AnglePointC probe = random.Probe(edges, hzOrigin, true);
      SCOPED_TRACE(testing::Message()
                   << "ring " << i << std::hexfloat << " probe " << probe.Hz << ", " << probe.V);
      const AreaExplanation why = area.Explain(probe.Hz, probe.V);
      ASSERT_NO_FATAL_FAILURE(ExpectSame(why, prepared.Explain(probe.Hz, probe.V)));
      ASSERT_EQ(why.isInside, area.Contains(probe.Hz, probe.V));
      ASSERT_EQ(why.isInside, prepared.Contains(probe.Hz, probe.V));
      ASSERT_EQ(why.isInside, rules.Contains(probe.Hz, probe.V));

      AreaExplanation expected;
      expected.hz = probe.Hz;
      expected.v = probe.V;
      ASSERT_EQ(why.rule, RuleOf(rules, probe, expected));
      ASSERT_TRUE(Same(why.hz, expected.hz));
      ASSERT_TRUE(Same(why.v, expected.v));
      ASSERT_EQ(why.crossings.size(), expected.crossings.size());
      for (std::size_t c = 0; c < why.crossings.size(); ++c) {
        ASSERT_TRUE(Same(why.crossings[c].v, expected.crossings[c].v));
        ASSERT_LT(why.crossings[c].edge, edges.size() / 2);
      }
      const bool isOdd = CountedOf(why).size() % 2 == 1;
      ASSERT_EQ(why.isInside, why.rule == Rule::kParity ? isOdd : why.rule == Rule::kBand);
      ASSERT_EQ(why.bandEdge != kNoEdge, why.rule == Rule::kBand);
      const bool isArea = why.rule != Rule::kOutOfRange && why.rule != Rule::kNotValid;
      ASSERT_TRUE(isArea || why.nearestEdge == kNoEdge);
      ASSERT_EQ(why.distance == kLargest, why.nearestEdge == kNoEdge);
      ++seen[static_cast<std::size_t>(why.rule)];
      inside += why.isInside;
    }
  }
  EXPECT_EQ(seen[static_cast<std::size_t>(Rule::kDome)], 0u);
  for (const Rule rule : {Rule::kOutOfRange, Rule::kNotValid, Rule::kBand, Rule::kNoSearchLine,
                          Rule::kNoCrossing, Rule::kNothingAbove, Rule::kParity}) {
    EXPECT_GT(seen[static_cast<std::size_t>(rule)], TestSupport::NumberOfCases(20u))
        << static_cast<int>(rule);
  }
  EXPECT_GT(inside, kRings / 4);
}

TEST(AreaExplanation, NamesTheCrossedEdges) {
  ScanPolygonAreaC area;  // a notch from below
  Fill(area, {{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.5, 1.5}, {1.0, 2.0}});
  const AreaExplanation above = area.Explain(1.3, 1.2);
  EXPECT_EQ(above.rule, Rule::kParity);
  EXPECT_TRUE(above.isInside);
  ASSERT_EQ(above.crossings.size(), 2u);
  EXPECT_EQ(above.crossings[0].edge, 0u);
  EXPECT_FALSE(above.crossings[0].isCounted);
  EXPECT_EQ(above.crossings[1].edge, 3u);
  EXPECT_TRUE(above.crossings[1].isCounted);
  EXPECT_LT(above.crossings[0].v, 1.2);
  EXPECT_GT(above.crossings[1].v, 1.2);

  const AreaExplanation below = area.Explain(1.3 + TWO_PI, 2.1);
  EXPECT_FALSE(below.isInside);
  EXPECT_EQ(below.rule, Rule::kParity);
  EXPECT_NEAR(below.hz, 1.3, 1e-15);
  EXPECT_EQ(CountedOf(below), std::vector<double>{});

  EXPECT_EQ(area.Explain(1.3, 0.5).rule, Rule::kNothingAbove);
  EXPECT_EQ(area.Explain(1.3, 0.5).crossings.size(), 2u);
  EXPECT_EQ(area.Explain(3.0, 1.5).rule, Rule::kNoCrossing);
  EXPECT_EQ(area.Explain(101.0, 1.5).rule, Rule::kOutOfRange);
  EXPECT_EQ(area.Explain(101.0, 1.5).hz, 101.0);
  EXPECT_EQ(area.Explain(1.3 + TWO_PI, std::nan("")).hz, 1.3 + TWO_PI);
}

TEST(AreaExplanation, NamesTheEdgeOfTheBand) {
  ScanPolygonAreaC area;  // begins at Hz 0, so its band is along the chords
  Fill(area, {{0.0, 1.0}, {1.0, 1.1}, {1.0, 2.0}, {0.0, 2.0}});
  const AreaExplanation why = area.Explain(1.0 + 5e-6, 1.5);
  EXPECT_EQ(why.rule, Rule::kBand);
  EXPECT_TRUE(why.isInside);
  EXPECT_EQ(why.bandEdge, 1u);
  EXPECT_EQ(why.nearestEdge, 1u);
  EXPECT_NEAR(why.distance, 5e-6 * std::sin(1.5), 1e-12);
  EXPECT_FALSE(area.Explain(1.0 + 9e-6, 1.5).isInside);
  // The closing edge has no band.
  EXPECT_EQ(area.Explain(TWO_PI - 5e-6, 1.5).rule, Rule::kNoCrossing);
  EXPECT_EQ(area.Explain(TWO_PI - 5e-6, 1.5).nearestEdge, 3u);

  ScanPolygonAreaC turned;  // begins at 0.5: the band is 1 rad away from the boundary
  Fill(turned, {{0.5, 1.0}, {1.5, 1.1}, {1.5, 2.0}, {0.5, 2.0}});
  const AreaExplanation displaced = turned.Explain(0.5 + 5e-6, 1.5);
  EXPECT_EQ(displaced.rule, Rule::kBand);
  EXPECT_EQ(displaced.bandEdge, 1u);
  EXPECT_EQ(displaced.nearestEdge, 3u);
  EXPECT_EQ(turned.Explain(1.5 + 5e-6, 1.5).rule, Rule::kNoCrossing);
}

TEST(AreaExplanation, OfAreasThatAreNotValid) {
  ScanPolygonAreaC crossed;
  Fill(crossed, {{1.0, 1.0}, {2.0, 2.0}, {2.0, 1.0}, {1.0, 2.0}});
  for (const AreaExplanation& why :
       {crossed.Explain(1.2, 1.5), PreparedAreaC(crossed).Explain(1.2, 1.5),
        ScanPolygonAreaC().Explain(1.2, 1.5),
        PreparedAreaC(ScanPolygonAreaC()).Explain(1.2, 1.5)}) {
    EXPECT_EQ(why.rule, Rule::kNotValid);
    EXPECT_FALSE(why.isInside);
    EXPECT_TRUE(why.crossings.empty());
    EXPECT_EQ(why.nearestEdge, kNoEdge);
    EXPECT_EQ(why.distance, kLargest);
    EXPECT_EQ(why.hz, 1.2);
  }
}

TEST(AreaExplanation, OfRectangles) {
  ScanRectangularAreaC area;
  Fill(area, {{6.0, 1.0}, {0.2, 2.0}});
  const AreaExplanation why = area.Explain(6.25, 1.9);
  EXPECT_TRUE(why.isInside);
  EXPECT_EQ(why.rule, Rule::kParity);
  EXPECT_EQ(why.nearestEdge, 1u);
  EXPECT_NEAR(why.distance, 0.1, 1e-14);
  ASSERT_EQ(why.crossings.size(), 2u);
  EXPECT_EQ(why.crossings[0].edge, 3u);
  EXPECT_EQ(why.crossings[0].v, 1.0);
  EXPECT_EQ(why.crossings[1].edge, 1u);
  EXPECT_EQ(why.crossings[1].v, 2.0);
}

TEST(AreaExplanation, OfDomes) {
  const ScanDomeAreaC dome;
  const PreparedAreaC prepared(dome);
  for (const double v : {0.0, 1.0, GMAT::V_LIMIT, std::nextafter(GMAT::V_LIMIT, 9.0), 3.0, 3.5, 6.2,
                         -0.1, -1e-11, 99.0, 101.0, std::nan("")}) {
    SCOPED_TRACE(v);
    const AreaExplanation why = dome.Explain(1.0, v);
    ExpectSame(why, prepared.Explain(1.0, v));
    EXPECT_EQ(why.isInside, dome.Contains(1.0, v));
    const bool isInRange = std::fabs(v) <= 100.0;
    EXPECT_EQ(why.rule, isInRange ? Rule::kDome : Rule::kOutOfRange);
    EXPECT_EQ(why.nearestEdge, isInRange ? 0u : kNoEdge);
  }
  EXPECT_NEAR(dome.Explain(1.0, 1.0).distance, GMAT::V_LIMIT - 1.0, 1e-15);
  EXPECT_NEAR(dome.Explain(1.0, 3.0).distance, 3.0 - GMAT::V_LIMIT, 1e-15);
  EXPECT_NEAR(dome.Explain(1.0, TWO_PI - 0.5).distance, GMAT::V_LIMIT - 0.5, 1e-15);
}

// The limit at which a ring around the zenith ends is not part of the boundary.
TEST(AreaExplanation, OfRingsAroundTheZenith) {
  ScanPolygonAreaC area;
  Fill(area, {{0.0, 1.0}, {HALF_PI, 1.0}, {PI, 1.0}, {1.5 * PI, 1.0}});
  const AreaExplanation zenith = area.Explain(0.0, 0.0);
  EXPECT_TRUE(zenith.isInside);
  EXPECT_EQ(zenith.rule, Rule::kParity);
  // The nearest point of an edge is its vertex, midway between two corners.
  EXPECT_NEAR(zenith.distance, std::atan(std::tan(1.0) * std::cos(PI / 4.0)), 1e-12);
  EXPECT_NEAR(area.Explain(0.0, GMAT::V_LIMIT).distance, GMAT::V_LIMIT - 1.0, 1e-12);
}

}  // namespace
}  // namespace SDI
