#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>

#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

SphereAreaC MakeArea(const std::vector<AnglePointC>& points) {
  SphereAreaC area;
  area.AddPoints(points);
  return area;
}

std::vector<AnglePointC> Lobed(std::size_t n, double hz) {
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = TWO_PI * static_cast<double>(i) / static_cast<double>(n);
    const double r = 0.4 * (1.0 + 0.2 * std::sin(5.0 * angle));
    ring.push_back({NormalizeAngle(hz + r * std::cos(angle)), 1.3 + r * std::sin(angle)});
  }
  return ring;
}

std::vector<AnglePointC> AroundZenith(double v) {
  std::vector<AnglePointC> ring;
  for (int i = 0; i < 12; ++i) ring.push_back({TWO_PI * i / 12, v + 0.05 * (i % 3)});
  return ring;
}

struct Tally {
  int decided = 0;
  int inside = 0;
  int asked = 0;
};

// The raster decides as the area does: at random directions, on and next to the corners of cells,
// and along the bands.
void Compare(const std::vector<AnglePointC>& points, RingGenerator& random, int probes,
             Tally& tally) {
  const SphereAreaC area = MakeArea(points);
  const PreparedSphereAreaC prepared(area, true);
  const DecidedRasterC* const raster = prepared.GetRaster();
  if (raster == nullptr) return;
  EXPECT_LE(raster->GetSize(), DecidedRasterC::kMostBytes);
  std::vector<AnglePointC> edges;
  double hzOrigin = 0.0;
  area.BuildEdgeList(edges, hzOrigin);
  for (int i = 0; i < probes; ++i) {
    AnglePointC probe{random.Uniform(0.0, TWO_PI), random.Uniform(0.0, PI)};
    if (i % 3 == 1) probe = random.Probe(edges, hzOrigin, false);
    if (i % 3 == 2) {
      probe = raster->GetCellCorner(random.Below(DecidedRasterC::kRingColumns + 1),
                                    random.Below(DecidedRasterC::kRows + 1));
      probe = {random.Nudged(probe.Hz), random.Nudged(probe.V)};
    }
    if (!(probe.Hz >= 0.0 && probe.Hz <= TWO_PI && probe.V >= 0.0 && probe.V <= TWO_PI)) continue;
    const Verdict verdict = raster->Find(probe.Hz, probe.V);
    if (verdict == Verdict::kUndecided) {
      ++tally.asked;
      continue;
    }
    ++tally.decided;
    tally.inside += verdict == Verdict::kInside;
    ASSERT_EQ(verdict == Verdict::kInside, area.Contains(probe.Hz, probe.V))
        << probe.Hz << ", " << probe.V;
  }
}

TEST(DecidedRaster, WhatItDecidesIsWhatTheAreaSays) {
  RingGenerator random(3);
  Tally tally;
  for (int i = 0; i < 600; ++i) {
    const bool isCrowded = i % 40 == 0;
    Compare(isCrowded ? random.CrowdedRing() : random.Ring(60, false), random, isCrowded ? 60 : 300,
            tally);
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(tally.decided, 40000);
  EXPECT_GT(tally.inside, 4000);
  EXPECT_GT(tally.asked, 4000);
}

TEST(DecidedRaster, DecidesNearlyAllDirectionsAroundALobedRing) {
  for (const std::size_t n : {4U, 100U, 1000U}) {
    for (const double hz : {3.0, 0.1}) {
      const SphereAreaC area = MakeArea(Lobed(n, hz));
      const PreparedSphereAreaC prepared(area, true);
      ASSERT_NE(prepared.GetRaster(), nullptr);
      RingGenerator random(1);
      Tally tally;
      for (int i = 0; i < 20000; ++i) {
        const double probeHz = NormalizeAngle(hz + random.Uniform(-0.6, 0.6));
        const double v = 1.3 + random.Uniform(-0.6, 0.6);
        const Verdict verdict = prepared.GetRaster()->Find(probeHz, v);
        tally.asked += verdict == Verdict::kUndecided;
        tally.inside += verdict == Verdict::kInside;
      }
      EXPECT_LT(tally.asked, 800) << n << " corners at " << hz;
      EXPECT_GT(tally.inside, 4000);
    }
  }
}

// The band lies at the Hz of the ring less twice the Hz at which the frame begins.
TEST(DecidedRaster, TheDisplacedBandIsLeftToBeAsked) {
  const std::vector<AnglePointC> square{{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}};
  const SphereAreaC area = MakeArea(square);
  const PreparedSphereAreaC prepared(area, true);
  const DecidedRasterC& raster = *prepared.GetRaster();
  const double band = TWO_PI - 1.0;  // where the band of the frame's Hz 0 lies
  for (const double along : {0.01, 0.3, 0.99}) {
    EXPECT_TRUE(area.Contains(band + along, 1.0));
    EXPECT_EQ(raster.Find(band + along, 1.0), Verdict::kUndecided);
    EXPECT_EQ(raster.Find(band + along, 1.5), Verdict::kOutside) << "between the bands";
    EXPECT_EQ(raster.Find(band + along, 0.9), Verdict::kOutside);
  }
  EXPECT_EQ(raster.Find(band - 0.1, 1.0), Verdict::kOutside);
  EXPECT_EQ(raster.Find(4.0, 1.0), Verdict::kOutside);
  EXPECT_EQ(raster.Find(1.5, 1.5), Verdict::kInside);
}

TEST(DecidedRaster, CornersAndSeamAreLeftToBeAskedWhateverTheirCell) {
  const SphereAreaC area = MakeArea({{1.0, 1.0}, {1.5, 0.9}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}});
  const PreparedSphereAreaC prepared(area, true);
  EXPECT_EQ(prepared.GetRaster()->Find(1.5, 1.5), Verdict::kUndecided);
  EXPECT_EQ(prepared.GetRaster()->Find(1.5 + 1e-6, 1.5), Verdict::kInside);
  EXPECT_EQ(prepared.GetRaster()->Find(1.0, 1.5), Verdict::kUndecided);
  EXPECT_EQ(prepared.GetRaster()->Find(2.0, 1.5), Verdict::kUndecided);
}

TEST(DecidedRaster, ARingAroundTheZenithIsInsideUpToIt) {
  const SphereAreaC area = MakeArea(AroundZenith(1.5));
  const PreparedSphereAreaC prepared(area, true);
  const DecidedRasterC& raster = *prepared.GetRaster();
  EXPECT_EQ(raster.Find(1.1, 1e-5), Verdict::kInside);
  EXPECT_EQ(raster.Find(1.1, 0.0), Verdict::kUndecided) << "the zenith is asked";
  EXPECT_EQ(raster.Find(1.1, 2.0), Verdict::kOutside);
  EXPECT_EQ(raster.Find(1.1, 5.0), Verdict::kOutside);
}

// Where a ring around the zenith dips below the end of the search line, nothing is inside.
TEST(DecidedRaster, ColumnsWhereTheSearchLineEndsAreLeftToBeAsked) {
  RingGenerator random(5);
  Tally tally;
  Compare(AroundZenith(V_LIMIT - 0.07), random, 30000, tally);
  EXPECT_GT(tally.decided, 5000);
  EXPECT_GT(tally.inside, 100);
  EXPECT_GT(tally.asked, 100);
}

TEST(DecidedRaster, ThereIsNoneWhereNothingIsDecided) {
  EXPECT_EQ(PreparedSphereAreaC(MakeArea({{1.0, 1.5}, {2.0, PI}, {3.0, 1.5}}), true).GetRaster(),
            nullptr);
  EXPECT_EQ(PreparedSphereAreaC(MakeArea({{1.0, 1.0}, {2.0, 2.0}}), true).GetRaster(), nullptr);
  EXPECT_EQ(PreparedSphereAreaC(MakeArea({{1.0, 1.0}}), true).GetRaster(), nullptr);
  EXPECT_EQ(PreparedSphereAreaC(MakeArea(Lobed(10, 3.0))).GetRaster(), nullptr) << "not wanted";
}

}  // namespace
}  // namespace GMAT
