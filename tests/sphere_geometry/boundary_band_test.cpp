#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/boundary_band.h>

namespace GMAT {
namespace {

std::vector<AnglePointC> MakeRing(std::mt19937_64& random, std::size_t n) {
  std::uniform_real_distribution<double> noise(0.5, 1.0);
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle = TWO_PI * static_cast<double>(i) / static_cast<double>(n);
    const double r = 0.5 * noise(random);
    ring.push_back({3.0 + r * std::cos(angle), 1.4 + r * std::sin(angle)});
  }
  return ring;
}

TEST(BoundaryBand, ContainsTheBandsOfAllEdgesButTheClosingOne) {
  std::mt19937_64 random(1);
  int inside = 0;
  for (const std::size_t n : {3U, 4U, 20U, 300U}) {
    AreaFrame frame;
    ASSERT_TRUE(BuildFrame(MakeRing(random, n), frame));
    const BoundaryBandC band(frame);
    const BoundaryBandC ordered(frame, 0.0);  // with ordered lists
    std::uniform_real_distribution<double> part(0.0, 1.0);
    std::uniform_real_distribution<double> off(-1.2e-5, 1.2e-5);
    for (int i = 0; i < 20000; ++i) {
      const std::size_t edge = random() % n;
      const double t = part(random);
      const AnglePointC& a = frame.GetStart(edge);
      const AnglePointC& b = frame.GetEnd(edge);
      const AnglePointC probe{a.Hz + t * (b.Hz - a.Hz) + off(random),
                              a.V + t * (b.V - a.V) + off(random)};
      const bool expected = FindEdgeInBand(frame, EdgesWithBand(frame), probe).has_value();
      ASSERT_EQ(band.Contains(frame, probe), expected) << probe.Hz << ", " << probe.V;
      ASSERT_EQ(ordered.Contains(frame, probe), expected) << probe.Hz << ", " << probe.V;
      inside += expected;
    }
  }
  EXPECT_GT(inside, 20000);
  EXPECT_LT(inside, 70000);
}

// Long edges side by side: some closer to each other than the width of their bands, some crossing.
TEST(BoundaryBand, ContainsTheBandsOfEdgesInOrder) {
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> part(0.0, 1.0);
  std::uniform_real_distribution<double> off(-5e-5, 5e-5);
  int inside = 0;
  constexpr int kProbes = 20000;
  for (const double slope : {0.0, 0.7, -1.0, 1.9, 2.1, 5.0}) {
    std::vector<AnglePointC> points;
    for (int i = 0; i < 400; ++i) {
      const double x = i % 4 == 0 || i % 4 == 3 ? 1.0 : 2.0;
      points.push_back({x + 0.01 * part(random), 1.5 + 2e-5 * i + slope * (x - 1.5) / 4.0});
    }
    AreaFrame frame;
    ASSERT_TRUE(BuildFrame(points, frame));
    const BoundaryBandC band(frame, 0.0);
    for (int i = 0; i < kProbes; ++i) {
      const std::size_t edge = random() % 400;
      const AnglePointC& a = frame.GetStart(edge);
      const AnglePointC& b = frame.GetEnd(edge);
      const double t = part(random);
      const AnglePointC probe{a.Hz + t * (b.Hz - a.Hz), a.V + t * (b.V - a.V) + off(random)};
      const bool expected = FindEdgeInBand(frame, EdgesWithBand(frame), probe).has_value();
      ASSERT_EQ(band.Contains(frame, probe), expected) << probe.Hz << ", " << probe.V;
      inside += expected;
    }
  }
  EXPECT_GT(inside, 6 * kProbes / 4);
  EXPECT_LT(inside, 6 * kProbes * 7 / 8);
}

// The probe lies in the first turn for any width of the frame.
TEST(BoundaryBand, CoversTheFirstTurnOfARingOfTwoTurns) {
  std::vector<AnglePointC> points;
  for (int i = 0; i < 40; ++i) points.push_back({NormalizeAngle(0.3 * i), 1.0 + 0.01 * i});
  AreaFrame frame;
  ASSERT_TRUE(BuildFrame(points, frame));
  const BoundaryBandC band(frame);
  EXPECT_NEAR(band.GetWidth(), TWO_PI, 1e-4);
  for (std::size_t edge = 0; edge + 1 < frame.GetEdgeCount(); ++edge) {
    const AnglePointC& a = frame.GetStart(edge);
    EXPECT_EQ(band.Contains(frame, a), a.Hz <= band.GetWidth()) << a.Hz;
  }
}

TEST(BoundaryBand, AStripHoldsTheLineOfItsEdgeWithinItsBox) {
  const BandStrip strip({1.0, 1.0}, {2.0, 3.0}, 0.1);
  EXPECT_EQ(strip.slope, 2.0);
  EXPECT_NEAR(strip.v0, -1.0, 1e-15);
  const auto [low, high] = strip.Between(1.2, 1.3);
  EXPECT_NEAR(low, 1.4 - kStripReach * std::sqrt(5.0), 1e-12);
  EXPECT_NEAR(high, 1.6 + kStripReach * std::sqrt(5.0), 1e-12);
  const auto [first, last] = strip.Between(0.0, 9.0);
  EXPECT_NEAR(first, 1.0 - kStripReach, 1e-15) << "no farther than the box";
  EXPECT_NEAR(last, 3.0 + kStripReach, 1e-15);
}

TEST(BoundaryBand, AStripOfASteepEdgeIsItsBox) {
  const BandStrip strip({1.0, 1.0}, {1.01, 3.0}, 0.1);
  EXPECT_EQ(strip.slope, 0.0);
  const auto [low, high] = strip.Between(1.004, 1.005);
  EXPECT_NEAR(low, 1.0 - kStripReach, 1e-15);
  EXPECT_NEAR(high, 3.0 + kStripReach, 1e-15);
}

}  // namespace
}  // namespace GMAT
