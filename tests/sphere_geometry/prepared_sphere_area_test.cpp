#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>

#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

SphereAreaC MakeArea(const std::vector<AnglePointC>& points) {
  SphereAreaC area;
  area.AddPoints(points);
  return area;
}

const std::vector<AnglePointC> kSquare{{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}};

// All kinds of preparation, queried one direction at a time and in a batch.
void ExpectSameAnswers(const SphereAreaC& area, const std::vector<AnglePointC>& probes) {
  std::vector<double> hz;
  std::vector<double> v;
  for (const AnglePointC& probe : probes) {
    hz.push_back(probe.Hz);
    v.push_back(probe.V);
  }
  const auto inside = std::make_unique<bool[]>(probes.size());
  constexpr double kNever = std::numeric_limits<double>::infinity();
  const struct {
    bool hasRaster;
    double manySideBySide;
  } kinds[] = {{false, kNever}, {true, kNever}, {false, 0.0}, {true, 0.0}};
  for (const auto& [hasRaster, manySideBySide] : kinds) {
    const PreparedSphereAreaC prepared(area, hasRaster, manySideBySide);
    prepared.Contains(hz, v, {inside.get(), probes.size()});
    for (std::size_t i = 0; i < probes.size(); ++i) {
      const bool expected = area.Contains(hz[i], v[i]);
      ASSERT_EQ(prepared.Ask(hz[i], v[i]).isInside, expected) << hz[i] << ", " << v[i];
      ASSERT_EQ(inside[i], expected) << hz[i] << ", " << v[i];
    }
  }
}

TEST(PreparedSphereArea, HasAFrameIfItsPointsFormAnArea) {
  for (const bool hasRaster : {false, true}) {
    const auto frameOf = [hasRaster](const std::vector<AnglePointC>& points) {
      const PreparedSphereAreaC prepared(MakeArea(points), hasRaster, 0.0);
      return prepared.GetFrame() != nullptr ? prepared.GetFrame()->GetEdgeCount() : 0;
    };
    EXPECT_EQ(frameOf(kSquare), 4u);
    EXPECT_EQ(frameOf({kSquare[0], kSquare[1], kSquare[2]}), 3u);
    EXPECT_EQ(frameOf({kSquare[0], kSquare[2]}), 4u) << "a rectangle";
    EXPECT_EQ(frameOf({kSquare[0]}), 0u);
    EXPECT_EQ(frameOf({kSquare[0], kSquare[2], kSquare[1], kSquare[3]}), 0u) << "a bow-tie";
  }
}

TEST(PreparedSphereArea, AnswersAsTheAreaDoes) {
  RingGenerator random(11);
  for (int i = 0; i < 400; ++i) {
    const SphereAreaC area = MakeArea(random.Ring(40, true));
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    std::vector<AnglePointC> probes;
    for (int k = 0; k < 60; ++k) probes.push_back(random.Probe(edges, hzOrigin, true));
    ExpectSameAnswers(area, probes);
    if (HasFatalFailure()) return;
  }
}

TEST(PreparedSphereArea, BoundsProveTheAnswerAwayFromEdges) {
  const PreparedSphereAreaC prepared(MakeArea(kSquare));
  EXPECT_TRUE(prepared.Ask(1.5, 1.5).isProven);
  EXPECT_TRUE(prepared.Ask(1.5, 1.5).isInside);
  EXPECT_TRUE(prepared.Ask(0.5, 1.5).isProven);
  EXPECT_FALSE(prepared.Ask(1.0, 1.5).isProven) << "at a corner's Hz the rules decide";
}

TEST(PreparedSphereArea, DirectionsAreWrappedFirst) {
  for (const bool hasRaster : {false, true}) {
    const PreparedSphereAreaC prepared(MakeArea(kSquare), hasRaster);
    EXPECT_TRUE(prepared.Ask(1.5 + TWO_PI, 1.5).isInside);
    EXPECT_TRUE(prepared.Ask(1.5 - 2.0 * TWO_PI, 1.5 - TWO_PI).isInside);
    EXPECT_FALSE(prepared.Ask(101.0, 1.5).isInside);
    EXPECT_FALSE(prepared.Ask(std::nan(""), 1.5).isInside);
    EXPECT_FALSE(prepared.Ask(1.5, std::numeric_limits<double>::infinity()).isInside);
  }
}

// In a batch, only doubles in [0, 2 pi] take the fast path; here directions with other doubles
// alternate with one that takes it.
TEST(PreparedSphereArea, ABatchAnswersAnyDouble) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double values[] = {
      0.0,          -0.0,       1.5,          -1.5,         TWO_PI, std::nextafter(TWO_PI, 7.0),
      1.5 + TWO_PI, -5e-324,    5e-324,       100.0,        101.0,  -1e300,
      kInfinity,    -kInfinity, std::nan(""), -std::nan("")};
  std::vector<AnglePointC> probes;
  for (const double hz : values) {
    for (const double v : values) {
      probes.push_back({hz, v});
      probes.push_back({1.5, 1.5});
    }
  }
  ExpectSameAnswers(MakeArea(kSquare), probes);
  // An area that contains Hz 0, and one that contains the zenith.
  ExpectSameAnswers(MakeArea({{6.0, 1.0}, {1.0, 1.0}, {1.0, 2.0}, {6.0, 2.0}}), probes);
  ExpectSameAnswers(MakeArea({{0.0, 1.0}, {2.0, 1.0}, {4.0, 1.2}}), probes);
}

TEST(PreparedSphereArea, HzAtTheEndsOfTheTurn) {
  // The frame begins at Hz 0, next to it, or well before it.
  for (const double begin : {0.0, 1e-12, 1e-9, TWO_PI - 1e-12, 6.0}) {
    const SphereAreaC area = MakeArea({{begin, 1.0},
                                       {NormalizeAngle(begin + 1.0), 1.0},
                                       {NormalizeAngle(begin + 1.0), 2.0},
                                       {begin, 2.0}});
    std::vector<AnglePointC> probes;
    for (const double hz : {0.0, -0.0, TWO_PI, -TWO_PI, 2.0 * TWO_PI, begin, begin + 1.0}) {
      for (const double off : {0.0, 1e-15, -1e-15, 5e-11, -5e-11, 2e-10, -2e-10, 2e-9, -2e-9, 2e-8,
                               -2e-8, 3e-8, -3e-8, 1e-5, -1e-5}) {
        for (const double v : {0.999, 1.0, 1.5, 2.0, 2.1}) probes.push_back({hz + off, v});
      }
    }
    ExpectSameAnswers(area, probes);
    if (HasFatalFailure()) return;
  }
}

TEST(PreparedSphereArea, ARectangleIsAnsweredByItsCorners) {
  const SphereAreaC area = MakeArea({{6.0, 0.5}, {1.0, 1.5}});
  const PreparedSphereAreaC prepared(area, true);
  EXPECT_TRUE(prepared.Ask(0.2, 1.0).isInside);
  EXPECT_TRUE(prepared.Ask(0.2, 1.0).isProven);
  EXPECT_FALSE(prepared.Ask(3.0, 1.0).isInside);
  std::vector<AnglePointC> probes;
  RingGenerator random(1);
  for (int i = 0; i < 2000; ++i) {
    probes.push_back(
        {random.Nudged(i % 2 == 0 ? 6.0 : 1.0), random.Nudged(i % 3 == 0 ? 0.5 : 1.0)});
    probes.push_back(
        {random.Nudged(1e-10 * static_cast<double>(random.Below(1000)) + 0.5e-10), 1.0});
  }
  ExpectSameAnswers(area, probes);
}

// Corners out of range, and frames with more windings than the bounds allow.
TEST(PreparedSphereArea, CasesOutsideTheBoundsAreLeftToTheRules) {
  std::vector<AnglePointC> points;
  for (int i = 0; i < 1000; ++i) points.push_back({NormalizeAngle(3.0 * i), 1.0 + 1e-4 * i});
  const SphereAreaC spiral = MakeArea(points);
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  ASSERT_TRUE(spiral.BuildEdgeList(edges, hzOrigin));
  ASSERT_GT(edges.back().Hz, kWidestFrame);
  const PreparedSphereAreaC prepared(spiral);
  EXPECT_FALSE(prepared.Ask(1.0, 1.5).isProven);
  RingGenerator random(1);
  std::vector<AnglePointC> probes;
  for (int i = 0; i < 200; ++i) probes.push_back(random.Probe(edges, hzOrigin, false));
  ExpectSameAnswers(spiral, probes);
  const PreparedSphereAreaC below(MakeArea({{1.0, -0.1e-10}, {2.0, 1.0}, {1.5, 2.0}}));
  EXPECT_FALSE(below.Ask(1.5, 1.5).isProven);
}

TEST(PreparedSphereArea, NothingIsInsideAnInvalidArea) {
  for (const auto& points : {std::vector<AnglePointC>{},
                             {{1.0, 1.0}},
                             {{1.0, 1.0}, {1.0, 1.0}},
                             {{1.0, 1.0}, {2.0, 2.0}, {2.0, 1.0}, {1.0, 2.0}}}) {
    for (const bool hasRaster : {false, true}) {
      const PreparedSphereAreaC prepared(MakeArea(points), hasRaster);
      EXPECT_FALSE(prepared.Ask(1.2, 1.2).isInside);
      EXPECT_TRUE(prepared.Ask(1.2, 1.2).isProven);
    }
  }
}

TEST(PreparedSphereArea, KeepsNothingOfTheArea) {
  auto area = std::make_unique<SphereAreaC>(MakeArea(kSquare));
  const PreparedSphereAreaC prepared(*area, true);
  const PreparedSphereAreaC copy(prepared);
  area.reset();
  EXPECT_TRUE(prepared.Ask(1.5, 1.5).isInside);
  EXPECT_TRUE(copy.Ask(1.5, 1.5).isInside);
}

}  // namespace
}  // namespace GMAT
