#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

namespace SDI {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kPi = 3.141592653589793;

// `count` directions of every kind, including invalid ones.
void MakeProbes(int count, std::vector<double>& hz, std::vector<double>& v) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> anyHz(-7.0, 14.0);
  std::uniform_real_distribution<double> anyV(-0.5, 4.0);
  for (int i = 0; i < count; ++i) {
    hz.push_back(anyHz(random));
    v.push_back(anyV(random));
  }
  const double odd[] = {0.0,   -0.0,   kTwoPi, kPi,
                        1.0,   2.0,    1.5,    std::nan(""),
                        101.0, -101.0, 1e300,  std::numeric_limits<double>::infinity()};
  for (const double x : odd) {
    for (const double y : odd) {
      hz.push_back(x);
      v.push_back(y);
    }
  }
}

// The number of directions inside. Compares both forms of `Contains` with the area.
std::size_t CountInside(const ScanAreaC& area, int probes = 5000) {
  std::vector<double> hz;
  std::vector<double> v;
  MakeProbes(probes, hz, v);
  const PreparedAreaC prepared(area);
  const PreparedAreaC withRaster(area, PreparedAreaC::Questions::kMany);
  const auto inside = std::make_unique<bool[]>(hz.size());
  const auto insideByRaster = std::make_unique<bool[]>(hz.size());
  prepared.Contains(hz, v, {inside.get(), hz.size()});
  withRaster.Contains(hz, v, {insideByRaster.get(), hz.size()});
  std::size_t count = 0;
  for (std::size_t i = 0; i < hz.size(); ++i) {
    const bool expected = area.Contains(hz[i], v[i]);
    EXPECT_EQ(prepared.Contains(hz[i], v[i]), expected) << hz[i] << ", " << v[i];
    EXPECT_EQ(withRaster.Contains(hz[i], v[i]), expected) << hz[i] << ", " << v[i];
    EXPECT_EQ(inside[i], expected) << hz[i] << ", " << v[i];
    EXPECT_EQ(insideByRaster[i], expected) << hz[i] << ", " << v[i];
    count += expected;
  }
  return count;
}

TEST(PreparedArea, AnswersAsTheAreaDoes) {
  ScanRectangularAreaC rectangle;
  rectangle.SetCorners({6.0, 0.5, -1.0}, {1.0, 1.5, -1.0});
  EXPECT_GT(CountInside(rectangle), 100u);
  ScanPolygonAreaC polygon;
  for (const auto& [hz, v] : {std::pair(1.0, 1.0), {2.5, 0.7}, {3.0, 1.5}, {2.0, 2.2}}) {
    polygon.AddPoint({hz, v, -1.0});
  }
  EXPECT_GT(CountInside(polygon), 100u);
  ScanPolygonAreaC ring;
  for (int i = 0; i < 12; ++i) ring.AddPoint({kTwoPi * i / 12, 1.0 + 0.1 * (i % 3), -1.0});
  EXPECT_GT(CountInside(ring), 500u);
  ScanDomeAreaC dome;
  EXPECT_GT(CountInside(dome), 2000u);
}

TEST(PreparedArea, NothingIsInsideAnInvalidArea) {
  ScanPolygonAreaC area;
  EXPECT_EQ(CountInside(area), 0u);
  area.AddPoint({1.0, 1.0, -1.0});
  EXPECT_EQ(CountInside(area), 0u);
  // A bow-tie.
  for (const auto& [hz, v] : {std::pair(2.0, 2.0), {2.0, 1.0}, {1.0, 2.0}}) {
    area.AddPoint({hz, v, -1.0});
  }
  EXPECT_EQ(CountInside(area), 0u);
  area.AddPoint({std::nan(""), 1e300, -1.0});
  EXPECT_EQ(CountInside(area), 0u);
}

TEST(PreparedArea, DoesNotFollowLaterChanges) {
  auto area = std::make_unique<ScanRectangularAreaC>();
  area->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.5, -1.0});
  const PreparedAreaC prepared(*area);
  const PreparedAreaC copy = prepared;
  area->Clear();
  EXPECT_TRUE(prepared.Contains(1.5, 1.0));
  area.reset();
  EXPECT_TRUE(copy.Contains(1.5, 1.0));
  EXPECT_FALSE(copy.Contains(2.5, 1.0));
}

TEST(PreparedArea, ABatchEndsWithTheShortestSpan) {
  const ScanDomeAreaC dome;
  ScanRectangularAreaC rectangle;
  rectangle.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.5, -1.0});
  for (const ScanAreaC* const area :
       {static_cast<const ScanAreaC*>(&dome), static_cast<const ScanAreaC*>(&rectangle)}) {
    const PreparedAreaC prepared(*area);
    const std::vector<double> three(3, 1.2);
    const std::vector<double> two(2, 1.2);
    bool inside[4] = {};
    prepared.Contains(three, two, inside);
    EXPECT_TRUE(inside[0] && inside[1]);
    EXPECT_FALSE(inside[2] || inside[3]);
    prepared.Contains(two, three, {inside + 3, 1});
    EXPECT_FALSE(inside[2]);
    EXPECT_TRUE(inside[3]);
    prepared.Contains({}, {}, {});
  }
}

TEST(PreparedArea, ACopyAnswersAsItsSource) {
  ScanRectangularAreaC rectangle;
  rectangle.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.5, -1.0});
  const PreparedAreaC prepared(rectangle);
  PreparedAreaC copy(prepared);
  EXPECT_TRUE(copy.Contains(1.2, 1.2));
  EXPECT_FALSE(copy.Contains(3.0, 1.2));
  copy = PreparedAreaC(ScanDomeAreaC());
  EXPECT_TRUE(copy.Contains(3.0, 1.2));
  EXPECT_FALSE(prepared.Contains(3.0, 1.2));
  copy = prepared;
  EXPECT_TRUE(copy.Contains(1.2, 1.2));
  EXPECT_FALSE(copy.Contains(3.0, 1.2));
}

// Rings with many edges close together, each in a different arrangement.
void MakeCrowdedRings(std::vector<std::unique_ptr<ScanPolygonAreaC>>& rings) {
  const auto add = [](ScanPolygonAreaC& area, double hz, double v) {
    area.AddPoint({hz - kTwoPi * std::floor(hz / kTwoPi), v, -1.0});
  };
  for (const double hz : {3.0, 0.05}) {  // a star, and one across Hz 0
    ScanPolygonAreaC& star = *rings.emplace_back(std::make_unique<ScanPolygonAreaC>());
    for (int i = 0; i < 400; ++i) {
      const double angle = kTwoPi * i / 400;
      const double r = i % 2 == 0 ? 0.5 : 0.4;
      add(star, hz + r * std::cos(angle), 1.4 + r * std::sin(angle));
    }
  }
  // Long arcs back and forth, bulging in the middle, and a return path next to them.
  for (const double hz : {0.2, 5.0}) {
    ScanPolygonAreaC& fan = *rings.emplace_back(std::make_unique<ScanPolygonAreaC>());
    for (int i = 0; i <= 60; ++i) add(fan, hz + (i % 2 != 0 ? 2.4 : 0.0), 0.7 + 0.02 * i);
    add(fan, hz - 0.2, 1.9);
    add(fan, hz - 0.2, 0.7);
  }
  // A ribbon of level edges, a few boundary bands apart. For a frame that begins at Hz 0, the bands
  // are not displaced.
  for (const double hz : {0.02, 6.2}) {
    ScanPolygonAreaC& ribbon = *rings.emplace_back(std::make_unique<ScanPolygonAreaC>());
    for (int i = 0; i <= 80; ++i) {
      const bool isEast = i % 4 == 1 || i % 4 == 2;
      add(ribbon, hz + (isEast ? 0.01 : 0.0), 1.5 + 4e-5 * (i / 2));
    }
    add(ribbon, hz - 0.02, 1.5 + 4e-5 * 40);
    add(ribbon, hz - 0.02, 1.5);
  }
  ScanPolygonAreaC& ring = *rings.emplace_back(std::make_unique<ScanPolygonAreaC>());
  for (int i = 0; i < 400; ++i) ring.AddPoint({kTwoPi * i / 400, 1.0 + 0.1 * (i % 5), -1.0});
}

TEST(PreparedArea, AnswersAsTheAreaDoesNextToItsEdges) {
  std::vector<std::unique_ptr<ScanPolygonAreaC>> rings;
  MakeCrowdedRings(rings);
  for (const auto& ring : rings) {
    const PreparedAreaC prepared(*ring);
    const PreparedAreaC withRaster(*ring, PreparedAreaC::Questions::kMany);
    std::vector<ScanDefPointC> points;
    ring->GetPoints(points);
    std::size_t inside = 0;
    for (std::size_t i = 0; i + 1 < points.size(); i += points.size() > 100 ? 5 : 1) {
      const double from = points[i].GetHz();
      const double to = points[i + 1].GetHz();
      for (const double part : {0.0, 0.3, 0.5, 1.0}) {
        const double hz = from + part * std::remainder(to - from, kTwoPi);
        const double v = points[i].GetV() + part * (points[i + 1].GetV() - points[i].GetV());
        // On the chord, within the boundary band, just beyond it, far from it.
        for (const double off : {0.0, 7e-6, -7e-6, 9e-6, -9e-6, 0.03, -0.3, 0.3}) {
          const bool expected = ring->Contains(hz, v + off);
          ASSERT_EQ(prepared.Contains(hz, v + off), expected) << hz << ", " << v << " + " << off;
          ASSERT_EQ(withRaster.Contains(hz, v + off), expected) << hz << ", " << v << " + " << off;
          inside += expected;
        }
      }
    }
    EXPECT_GT(inside, points.size() / 10);
  }
}

TEST(PreparedArea, AnswersAsTheAreaDoesOnTheMeridiansOfItsCorners) {
  ScanPolygonAreaC polygon;
  for (const auto& [hz, v] : {std::pair(1.0, 1.0), {2.5, 0.7}, {3.0, 1.5}, {2.0, 2.2}}) {
    polygon.AddPoint({hz, v, -1.0});
  }
  for (const auto questions : {PreparedAreaC::Questions::kFew, PreparedAreaC::Questions::kMany}) {
    const PreparedAreaC prepared(polygon, questions);
    for (const double hz : {1.0, 2.5, 3.0, 2.0}) {
      for (double v = 0.0; v < kPi; v += 0.01) {
        ASSERT_EQ(prepared.Contains(hz, v), polygon.Contains(hz, v)) << hz << ", " << v;
      }
    }
  }
}

// More adjacent edges than are compared with each other.
TEST(PreparedArea, AThousandEdgesNextToEachOther) {
  ScanPolygonAreaC area;
  for (int i = 0; i <= 1200; ++i) {
    const bool isEast = i % 2 != 0;
    area.AddPoint({isEast ? 3.0 : 1.0, (isEast ? 2.4 : 1.0) + 1e-7 * i, -1.0});
  }
  for (const auto& [hz, v] : {std::pair(1.0, 2.9), {3.2, 2.9}, {3.2, 0.6}}) {
    area.AddPoint({hz, v, -1.0});
  }
  EXPECT_GT(CountInside(area, 300), 10u);
}

TEST(PreparedArea, SeveralThreadsMayQuery) {
  ScanPolygonAreaC ring;
  for (int i = 0; i < 50; ++i) ring.AddPoint({kTwoPi * i / 50, 1.0 + 0.1 * (i % 3), -1.0});
  const PreparedAreaC prepared(ring);
  std::vector<double> hz;
  std::vector<double> v;
  MakeProbes(5000, hz, v);
  const auto expected = std::make_unique<bool[]>(hz.size());
  prepared.Contains(hz, v, {expected.get(), hz.size()});
  std::size_t differences[4] = {};
  std::vector<std::thread> threads;
  for (std::size_t& count : differences) {
    threads.emplace_back([&] {
      for (std::size_t i = 0; i < hz.size(); ++i) {
        count += prepared.Contains(hz[i], v[i]) != expected[i];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::size_t count : differences) EXPECT_EQ(count, 0u);
}

TEST(PreparedArea, SixtyFiveThousandPoints) {
  ScanPolygonAreaC area;
  for (int i = 0; i < 65535; ++i) {
    const double angle = kTwoPi * i / 65535;
    const double r = i % 2 == 0 ? 0.5 : 0.45;
    area.AddPoint({3.0 + r * std::cos(angle), 1.5 + r * std::sin(angle), -1.0});
  }
  const PreparedAreaC prepared(area);
  const PreparedAreaC withRaster(area, PreparedAreaC::Questions::kMany);
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> offset(-0.6, 0.6);
  for (int i = 0; i < 40; ++i) {
    const double hz = 3.0 + offset(random);
    const double v = 1.5 + offset(random);
    const bool expected = area.Contains(hz, v);
    EXPECT_EQ(prepared.Contains(hz, v), expected) << hz << ", " << v;
    EXPECT_EQ(withRaster.Contains(hz, v), expected) << hz << ", " << v;
  }
}

}  // namespace
}  // namespace SDI
