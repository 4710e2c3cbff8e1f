// Why an area is not valid: compares the rules with the library's answers, and tests the points and
// edges that they name.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/area_faults.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>
#include <surveydata/sphere_geometry/angles.h>

#include "tests/support/ring_generator.h"

namespace SDI {
namespace {

using GMAT::AnglePointC;
using Rule = AreaFault::Rule;
using Indices = std::array<std::size_t, 2>;

constexpr std::size_t kNone = AreaFault::kNone;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::unique_ptr<ScanAreaC> MakeKind(std::uint64_t kind) {
  if (kind == 0) return std::make_unique<ScanRectangularAreaC>();
  if (kind == 1) return std::make_unique<ScanDomeAreaC>();
  return std::make_unique<ScanPolygonAreaC>();
}

std::unique_ptr<ScanAreaC> Make(std::uint64_t kind, const std::vector<AnglePointC>& points,
                                double hzStep = 0.1, double vStep = 0.1) {
  auto area = MakeKind(kind);
  for (const AnglePointC& p : points) area->AddPoint({p.Hz, p.V, -1.0});
  area->SetSteps(hzStep, vStep);
  return area;
}
std::unique_ptr<ScanAreaC> MakeRectangle(const std::vector<AnglePointC>& points) {
  return Make(0, points);
}
std::unique_ptr<ScanAreaC> MakePolygon(const std::vector<AnglePointC>& points) {
  return Make(2, points);
}

// Repeats points, moves two within a denormal of each other, makes corners equal in V or Hz.
void Disturb(std::vector<AnglePointC>& ring, RingGenerator& random) {
  if (ring.empty()) return;
  const auto any = [&] { return random.Below(ring.size()); };
  switch (random.Below(8)) {
    case 0:
      ring.push_back(ring.front());
      break;
    case 1:
      ring[any()] = ring[any()];
      break;
    case 2:
      ring.insert(ring.begin() + static_cast<std::ptrdiff_t>(any()), ring[any()]);
      break;
    case 3:
      ring.back() = {1.0, 0.0};
      ring.front() = {1.0, 1e-310};
      break;
    case 4:
      ring.back().Hz = ring.front().Hz;
      break;
    case 5:
      ring.back().V = ring.front().V;
      break;
    default:
      break;
  }
}

// Valid indices come first, ascend, and are below `count`.
void ExpectIndices(const Indices& indices, std::size_t count) {
  if (indices[0] != kNone) {
    EXPECT_LT(indices[0], count);
  }
  if (indices[1] != kNone) {
    EXPECT_LT(indices[0], indices[1]);
    EXPECT_LT(indices[1], count);
  }
}

TEST(AreaFaults, AreFoundExactlyWhereTheLibrarySaysNotValid) {
  constexpr int kCases = 150'000;
  RingGenerator random(4711);
  std::map<Rule, int> seen;
  int valid = 0;
  const double steps[] = {0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.0, -1.0, kNaN, 5e-324};
  for (int i = 0; i < kCases; ++i) {
    SCOPED_TRACE(i);
    const std::uint64_t kind = random.Below(8);
    std::vector<AnglePointC> ring = random.Ring(kind == 0 ? 3 : 16, random.Below(4) == 0);
    if (kind == 0 && random.Below(4) != 0) ring.resize(std::min<std::size_t>(ring.size(), 2));
    if (random.Below(20) == 0) ring.resize(std::min<std::size_t>(ring.size(), random.Below(4)));
    Disturb(ring, random);
    const auto area = Make(kind, ring, steps[random.Below(10)], steps[random.Below(10)]);
    const std::vector<AreaFault> faults = FindAreaFaults(*area);
    ASSERT_EQ(faults.empty(), area->IsValid()) << (faults.empty() ? "" : TextOf(faults[0].rule));
    valid += faults.empty() ? 1 : 0;
    for (const AreaFault& fault : faults) {
      ++seen[fault.rule];
      ExpectIndices(fault.points, ring.size());
      ExpectIndices(fault.edges, ring.size());
      const bool isCrossing = fault.rule == Rule::kCrossingEdges;
      EXPECT_EQ(fault.edges[1] != kNone, isCrossing);
      if (isCrossing) {
        EXPECT_TRUE(0.0 <= fault.hz && fault.hz < GMAT::TWO_PI);
        EXPECT_TRUE(0.0 <= fault.v && fault.v <= GMAT::PI);
      } else {
        EXPECT_TRUE(fault.hz == 0.0 && fault.v == 0.0);
      }
    }
  }
  EXPECT_GT(valid, kCases / 20);
  for (auto rule = static_cast<int>(Rule::kHzStepNotPositive);
       rule <= static_cast<int>(Rule::kCrossingEdges); ++rule) {
    EXPECT_GT(seen[static_cast<Rule>(rule)], 100) << rule;
  }
}

TEST(AreaFaults, NameTheRuleThePointsAndTheEdges) {
  const auto expectOnly = [](const ScanAreaC& area, Rule rule, Indices points = {kNone, kNone},
                             Indices edges = {kNone, kNone}) {
    const std::vector<AreaFault> faults = FindAreaFaults(area);
    ASSERT_EQ(faults.size(), 1U) << TextOf(rule);
    EXPECT_EQ(faults[0].rule, rule);
    EXPECT_EQ(faults[0].points, points) << TextOf(rule);
    EXPECT_EQ(faults[0].edges, edges) << TextOf(rule);
  };
  expectOnly(*MakePolygon({{0.1, 0.1}, {0.2, 0.2}}), Rule::kPointCount);
  expectOnly(*MakePolygon({}), Rule::kPointCount);
  expectOnly(*MakeRectangle({{0.1, 0.1}, {0.2, 0.2}, {0.3, 0.3}}), Rule::kPointCount);
  expectOnly(*Make(1, {}, 0.0, 0.1), Rule::kHzStepNotPositive);
  expectOnly(*Make(1, {}, 0.1, kNaN), Rule::kVStepNotPositive);
  expectOnly(*MakePolygon({{0.1, 0.1}, {0.2, 0.1}, {6.3, 0.4}}), Rule::kPointOutOfRange,
             {2, kNone});
  // The second face is the same direction in the first one; below 0 there is no face.
  EXPECT_TRUE(FindAreaFaults(*MakePolygon({{0.1, 0.1}, {0.2, 0.1}, {3.3, 6.0}})).empty());
  expectOnly(*MakePolygon({{0.1, 0.1}, {0.2, 0.1}, {0.1, -0.4}}), Rule::kPointOutOfRange,
             {2, kNone});
  expectOnly(*MakePolygon({{0.1, 0.1}, {0.2, 0.1}, {0.2, 0.4}, {0.1, 0.1}}), Rule::kEqualPoints,
             {0, 3});
  expectOnly(*MakePolygon({{0.1, 0.1}, {0.2, 0.1}, {0.2, 0.4}, {0.2, 0.1}, {0.05, 0.2}}),
             Rule::kEqualPoints, {1, 3});
  expectOnly(*MakeRectangle({{0.1, 0.1}, {0.1, 0.2}}), Rule::kEqualHz, {0, 1});
  expectOnly(*MakeRectangle({{0.1, 0.1}, {0.2, 0.1}}), Rule::kEqualV, {0, 1});
  expectOnly(*MakePolygon({{1.0, 1.0}, {2.0, 1.5}, {2.0, 1.0}, {1.0, 1.5}}), Rule::kCrossingEdges,
             {kNone, kNone}, {0, 2});
}

TEST(AreaFaults, ReportWhereEdgesCross) {
  // By symmetry on the middle meridian, also across Hz 0.
  for (const double hz : {1.5, 0.2}) {
    const double left = hz < 0.5 ? hz - 0.5 + GMAT::TWO_PI : hz - 0.5;
    const auto faults =
        FindAreaFaults(*MakePolygon({{left, 1.0}, {hz + 0.5, 1.5}, {hz + 0.5, 1.0}, {left, 1.5}}));
    ASSERT_EQ(faults.size(), 1U);
    // The crossing is found to 10 decimal digits.
    EXPECT_NEAR(faults[0].hz, hz, 1e-9);
    EXPECT_GT(faults[0].v, 1.0);
    EXPECT_LT(faults[0].v, 1.5);
  }
}

TEST(AreaFaults, ReportEightOfManyCrossings) {
  std::vector<AnglePointC> zigzag;
  for (int i = 0; i < 40; ++i) zigzag.push_back({1.0 + 0.01 * (i * 17 % 40), 1.0 + 0.3 * (i % 2)});
  const auto faults = FindAreaFaults(*MakePolygon(zigzag));
  EXPECT_EQ(faults.size(), 8U);
  for (const AreaFault& fault : faults) EXPECT_EQ(fault.rule, Rule::kCrossingEdges);
}

TEST(AreaFaults, EveryRuleHasItsOwnText) {
  std::set<std::string> texts;
  for (int rule = 1; rule <= 8; ++rule) texts.insert(TextOf(static_cast<Rule>(rule)));
  EXPECT_EQ(texts.size(), 8U);
  EXPECT_EQ(texts.count("unknown"), 0U);
  EXPECT_STREQ(TextOf(static_cast<Rule>(0)), "unknown");
  EXPECT_STREQ(TextOf(static_cast<Rule>(9)), "unknown");
}

}  // namespace
}  // namespace SDI
