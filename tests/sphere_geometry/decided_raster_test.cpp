#include <algorithm>
#include <cmath>
#include <cstdint>
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

const std::vector<AnglePointC> kSquare{{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}};

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

TEST(DecidedRaster, ItsDecisionsAreTheAnswersOfTheArea) {
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

// Consecutive directions in one column, or nearly so, are looked up together.
TEST(DecidedRaster, ManyAreFoundAsOneByOne) {
  RingGenerator random(8);
  int shared = 0;
  for (int i = 0; i < 300; ++i) {
    const SphereAreaC area = MakeArea(i % 8 == 0 ? AroundZenith(1.2) : random.Ring(60, false));
    const PreparedSphereAreaC prepared(area, true);
    if (prepared.GetRaster() == nullptr) continue;
    const DecidedRasterC& raster = *prepared.GetRaster();
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    for (int line = 0; line < 20; ++line) {
      // From one Hz to one up to two columns further: of equal Hz, in ascending or in any order.
      const double column = TWO_PI / 512.0;
      const double width = line % 4 == 0 ? 0.0 : random.Uniform(0.0, 2.0 * column);
      double start = random.Uniform(-column, TWO_PI);
      if (line % 3 == 0) start = random.Probe(edges, hzOrigin, false).Hz;
      if (line % 3 == 1) start = raster.GetCellCorner(random.Below(513), 0).Hz - width / 2.0;
      const std::size_t count = 1 + random.Below(150);
      std::vector<double> hz;
      std::vector<double> v;
      for (std::size_t k = 0; k < count; ++k) {
        const double part = static_cast<double>(k) / static_cast<double>(count);
        hz.push_back(start + width * (line % 2 == 0 ? part : random.Uniform(0.0, 1.0)));
        v.push_back(random.Uniform(line % 5 == 0 ? -0.01 : 0.0, line % 5 == 1 ? 6.3 : PI));
      }
      std::vector<std::uint8_t> bits(count, 77);
      raster.FindBits(hz, v, bits);
      for (std::size_t k = 0; k < count; ++k) {
        const Verdict found =
            static_cast<Verdict>(std::min<std::uint32_t>(bits[k], DecidedRasterC::kUndecidedBit));
        const bool isInTurn = hz[k] >= 0.0 && hz[k] <= TWO_PI && v[k] >= 0.0 && v[k] <= TWO_PI;
        const Verdict expected = isInTurn ? raster.Find(hz[k], v[k]) : Verdict::kUndecided;
        ASSERT_EQ(found, expected) << hz[k] << ", " << v[k] << " in " << i << ", " << line;
        shared += expected != Verdict::kUndecided;
      }
    }
  }
  EXPECT_GT(shared, 100000);
}

// 2 pi has the units of 0: a run from one to the other includes every column.
TEST(DecidedRaster, ARunFromHz0ToAFullTurnSharesNoColumn) {
  const PreparedSphereAreaC prepared(MakeArea(Lobed(10, 3.0)), true);
  const std::vector<double> hz{1.0, 0.0, 3.05, TWO_PI, 5.0};
  const std::vector<double> v(hz.size(), 1.3);
  std::vector<std::uint8_t> bits(hz.size(), 77);
  prepared.GetRaster()->FindBits(hz, v, bits);
  EXPECT_EQ(bits, (std::vector<std::uint8_t>{0, 0, 1, 0, 0}));
}

// The ring is at Hz 2 to 3, its band at 4.28 to 5.28: a run from 3.5 to 6 has both ends in the
// column outside, and the band in between.
TEST(DecidedRaster, ARunAcrossTheBandSharesNoColumn) {
  const SphereAreaC area = MakeArea({{2.0, 1.0}, {3.0, 1.0}, {3.0, 2.0}, {2.0, 2.0}});
  const PreparedSphereAreaC prepared(area, true);
  const std::vector<double> hz{3.5, 4.7, 6.0, 3.6};
  const std::vector<double> v(hz.size(), 1.0);
  std::vector<std::uint8_t> bits(hz.size(), 77);
  prepared.GetRaster()->FindBits(hz, v, bits);
  EXPECT_EQ(bits, (std::vector<std::uint8_t>{0, DecidedRasterC::kUndecidedBit, 0, 0}));
}

TEST(DecidedRaster, AnglesOutsideATurnAreUndecidedAmongOthers) {
  const PreparedSphereAreaC prepared(MakeArea(Lobed(10, 3.0)), true);
  const DecidedRasterC& raster = *prepared.GetRaster();
  ASSERT_EQ(raster.Find(3.05, 1.3), Verdict::kInside);
  for (const double strange : {-1.0, 7.0, std::nan(""), 1e300, -1e300}) {
    for (const std::size_t at : {0U, 40U, 63U, 64U, 99U}) {
      for (const bool isHz : {false, true}) {
        std::vector<double> hz(100, 3.05);
        std::vector<double> v(100, 1.3);
        (isHz ? hz : v)[at] = strange;
        std::vector<std::uint8_t> bits(100, 77);
        raster.FindBits(hz, v, bits);
        for (std::size_t k = 0; k < bits.size(); ++k) {
          const Verdict expected = k == at ? Verdict::kUndecided : Verdict::kInside;
          ASSERT_EQ(static_cast<Verdict>(bits[k]), expected) << strange << " at " << at;
        }
      }
    }
  }
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

TEST(DecidedRaster, ItsColumnsCoverTheRingOnly) {
  const PreparedSphereAreaC prepared(MakeArea(Lobed(100, 3.0)), true);
  const DecidedRasterC& raster = *prepared.GetRaster();
  const AnglePointC first = raster.GetCellCorner(0, 0);
  const AnglePointC last =
      raster.GetCellCorner(DecidedRasterC::kRingColumns, DecidedRasterC::kRows);
  EXPECT_GT(first.Hz, 3.0 - 0.49);  // the radius is at most 0.48
  EXPECT_LT(last.Hz, 3.0 + 0.49);
  EXPECT_GT(last.Hz, 3.0 + 0.35);  // after a full turn it would be at the first one
  EXPECT_GT(first.V, 1.3 - 0.49);
  EXPECT_LT(last.V, 1.3 + 0.49);
}

TEST(DecidedRaster, ItsSizeIsThatOfCellsAndTable) {
  static_assert(DecidedRasterC::kMostBytes == 524'288, "PreparedAreaC promises 512 KB");
  const PreparedSphereAreaC few(MakeArea(Lobed(4, 3.0)), true);
  const PreparedSphereAreaC many(MakeArea(Lobed(1000, 3.0)), true);
  EXPECT_GE(few.GetRaster()->GetSize(), DecidedRasterC::kRows * DecidedRasterC::kRingColumns);
  EXPECT_GT(many.GetRaster()->GetSize(), few.GetRaster()->GetSize());  // its table is larger
  EXPECT_LE(many.GetRaster()->GetSize(), DecidedRasterC::kMostBytes);
}

// The band lies at the Hz of the ring less twice the Hz at which the frame begins.
TEST(DecidedRaster, TheDisplacedBandIsUndecided) {
  const SphereAreaC area = MakeArea(kSquare);
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

TEST(DecidedRaster, CornersAndSeamAreUndecidedInAnyCell) {
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
  EXPECT_EQ(raster.Find(1.1, 0.0), Verdict::kUndecided) << "the zenith is undecided";
  EXPECT_EQ(raster.Find(1.1, 2.0), Verdict::kOutside);
  EXPECT_EQ(raster.Find(1.1, 5.0), Verdict::kOutside);
}

// Where a ring around the zenith dips below the end of the search line, nothing is inside.
TEST(DecidedRaster, ColumnsWhereTheSearchLineEndsAreUndecided) {
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
