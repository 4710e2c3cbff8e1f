// The rules count two crossings as one only inside the intervals.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/close_crossings.h>
#include <surveydata/sphere_geometry/slab_index.h>

#include "tests/support/ring_generator.h"

namespace GMAT {
namespace {

struct Indexed {
  explicit Indexed(const std::vector<AnglePointC>& points) {
    isArea = points.size() > 2 && std::all_of(points.begin(), points.end(), IsRegular) &&
             BuildFrame(points, frame) &&
             (frame.enclosesZenith || IsRingValid(points, frame.edges));
    if (isArea) ring = BuildRingCurves(frame);
  }
  static bool IsRegular(const AnglePointC& p) {
    return p.Hz >= 0.0 && p.Hz <= TWO_PI && p.V >= 0.0 && p.V <= PI;
  }

  bool isArea;
  AreaFrame frame;
  RingCurves ring;
};

// The Hz at which two edges, or their continuations, meet, or that of a corner.
double SomeHz(RingGenerator& random, const RingCurves& ring) {
  const std::size_t n = ring.curves.size();
  const ArcCurve& one = ring.curves[random.Below(n)];
  const ArcCurve& other = ring.curves[random.Below(n)];
  double hz = ring.corners[random.Below(n)].hz;
  if (random.Below(2) == 0 && (one.a != other.a || one.b != other.b)) {
    const double middle = (one.low + one.high) / 2.0;
    hz = middle + std::remainder(std::atan2(other.a - one.a, one.b - other.b) - middle, PI);
  }
  const double off = random.Below(2) == 0 ? 0.0 : random.Uniform(-2e-6, 2e-6);
  return NormalizeAngle(random.Nudged(hz) + off);
}

TEST(CloseCrossings, OutsideOfTheIntervalsNoTwoCrossingsCountAsOne) {
  RingGenerator random(21);
  int outside = 0;
  int asOne = 0;
  for (int i = 0; i < 3000; ++i) {
    const Indexed area(i % 20 == 0 ? random.CrowdedRing() : random.Ring(40, false));
    // All crossings at a pole count as one.
    if (!area.isArea || !area.ring.poleEdges.empty()) continue;
    const SlabIndexC inCells(area.frame, area.ring, 1e9);
    const SlabIndexC inOrder(area.frame, area.ring, 0.0);
    for (int k = 0; k < 40; ++k) {
      const double h = SomeHz(random, area.ring);
      std::vector<double> crossings;
      const SearchMeridianC meridian(area.frame, h);
      ForEachCrossing(area.frame, AllEdges(area.frame), meridian,
                      [&](std::size_t, double v) { crossings.push_back(v); });
      std::sort(crossings.begin(), crossings.end());
      const bool hasOne =
          std::adjacent_find(crossings.begin(), crossings.end(), [](double a, double b) {
            return ApproxEqual(a, b);
          }) != crossings.end();
      asOne += hasOne;
      for (const SlabIndexC* const slabs : {&inCells, &inOrder}) {
        const bool isAsked = slabs->GetIntervals().Contains(h) || h < kColumnOverlap ||
                             h > std::min(slabs->GetWidth(), TWO_PI - kColumnOverlap);
        if (isAsked) continue;
        ++outside;
        ASSERT_FALSE(hasOne) << "ring " << i << std::hexfloat << ", Hz " << h;
      }
    }
  }
  EXPECT_GT(outside, 20000);
  EXPECT_GT(asOne, 1000);
}

// The two edges of a needle diverge at 1e-4: within 1e-6 rad of their corner they are equal to 10
// digits.
TEST(CloseCrossings, TheEdgesOfANeedleAreCloseNextToItsCorner) {
  const Indexed area({{0.5, 1.5}, {1.5, 1.5}, {1.5, 1.5 + 1e-4}});
  ASSERT_TRUE(area.isArea);
  HzIntervalsC intervals(TWO_PI);
  AddIntervalsOfCorners(area.frame, area.ring, intervals);
  intervals.Build(1U << 10);
  for (const double hz : {0.0, 5e-7, 9e-7, 1.0 - 1e-10, 1.0, 1.0 + 1e-10, TWO_PI - 1e-10}) {
    EXPECT_TRUE(intervals.Contains(hz)) << hz;
  }
  for (const double hz : {1e-5, 0.5, 1.0 - 1e-8, 1.0 + 1e-8, TWO_PI - 1e-8}) {
    EXPECT_FALSE(intervals.Contains(hz)) << hz;
  }
}

}  // namespace
}  // namespace GMAT
