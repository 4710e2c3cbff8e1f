#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/hz_intervals.h>

namespace GMAT {
namespace {

bool IsInAny(const std::vector<HzIntervalsC::Interval>& intervals, double hz) {
  return std::any_of(intervals.begin(), intervals.end(),
                     [hz](const auto& i) { return i.low <= hz && hz <= i.high; });
}

TEST(HzIntervals, ContainsWhatOneOfItsIntervalsContains) {
  std::mt19937_64 random(1);
  const auto uniform = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  int inside = 0;
  int needlesslyNear = 0;
  for (int i = 0; i < 200; ++i) {
    const double width = i % 3 == 0 ? TWO_PI : uniform(1e-3, 6.0);
    HzIntervalsC set(width);
    std::vector<HzIntervalsC::Interval> all;
    for (std::uint64_t k = random() % 200; k > 0; --k) {
      const double low = uniform(0.0, width);
      const double high = std::min(low + width * (k % 20 == 0 ? 0.02 : 1e-8), width);
      set.Add(low, high);
      all.push_back({low, high});
    }
    set.Build(i % 5 == 0 ? 16 : 4096);
    for (int k = 0; k < 300; ++k) {
      double hz = uniform(0.0, width);
      if (k % 2 == 0 && !all.empty()) {  // at an end
        const auto& interval = all[random() % all.size()];
        hz = random() % 2 == 0 ? interval.low : interval.high;
        if (random() % 2 == 0) hz = std::nextafter(hz, random() % 2 == 0 ? 0.0 : width);
      }
      if (hz == TWO_PI) continue;  // is 0
      const bool expected = IsInAny(all, hz);
      ASSERT_EQ(set.Contains(hz), expected) << hz << " of width " << width;
      const bool isNear = set.MayContain(ToTurnUnits(hz));
      ASSERT_TRUE(isNear || !expected);
      inside += expected;
      needlesslyNear += isNear && !expected && k % 2 != 0 && i % 5 != 0;
    }
  }
  EXPECT_GT(inside, 10000);
  EXPECT_LT(needlesslyNear, 2000) << "of about 24000 at random";
}

// More intervals than may be stored: the set grows where gaps are narrow, and never shrinks.
TEST(HzIntervals, ClosesTheNarrowestGapsRatherThanStoreMore) {
  constexpr std::size_t kMost = 100;
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  HzIntervalsC set(TWO_PI);
  set.SetMost(kMost);
  std::vector<HzIntervalsC::Interval> all;
  for (int i = 0; i < 5000; ++i) {
    // In [1, 2] and [4, 5], with wide gaps.
    const double low = (i % 2 == 0 ? 1.0 : 4.0) + uniform(random);
    all.push_back({low, low + 1e-9});
    set.Add(low, low + 1e-9);
    ASSERT_LE(set.GetIntervals().size(), kMost);
  }
  set.Build(4096);
  EXPECT_GE(set.GetIntervals().size(), kMost / 2);
  for (const HzIntervalsC::Interval& interval : all) {
    ASSERT_TRUE(set.Contains(interval.low));
    ASSERT_TRUE(set.Contains(interval.high));
  }
  for (const double hz : {0.5, 0.99, 2.01, 3.0, 3.99, 5.01, 6.0}) EXPECT_FALSE(set.Contains(hz));
  for (std::size_t i = 1; i < set.GetIntervals().size(); ++i) {
    EXPECT_LT(set.GetIntervals()[i - 1].high, set.GetIntervals()[i].low);
  }
}

TEST(HzIntervals, StoresAllOfThemUpToTheLimit) {
  HzIntervalsC set(1.0);
  set.SetMost(4);
  for (const double low : {0.1, 0.2, 0.4, 0.7}) set.Add(low, low + 0.01);
  EXPECT_EQ(set.GetIntervals().size(), 4u);
  // Two of the three gaps are closed, the narrowest first.
  set.Add(0.9, 0.91);
  set.Build(16);
  ASSERT_EQ(set.GetIntervals().size(), 3u);
  EXPECT_EQ(set.GetIntervals()[0].low, 0.1);
  EXPECT_EQ(set.GetIntervals()[0].high, 0.4 + 0.01);
  EXPECT_EQ(set.GetIntervals()[1].low, 0.7);
}

TEST(HzIntervals, OverlappingIntervalsAreJoined) {
  HzIntervalsC set(1.0);
  set.Add(0.5, 0.6);
  set.Add(0.1, 0.2);
  set.Add(0.15, 0.3);
  set.Add(0.12, 0.13);
  set.Build(64);
  ASSERT_EQ(set.GetIntervals().size(), 2u);
  EXPECT_EQ(set.GetIntervals()[0].low, 0.1);
  EXPECT_EQ(set.GetIntervals()[0].high, 0.3);
  EXPECT_EQ(set.GetIntervals()[1].low, 0.5);
}

TEST(HzIntervals, OnAFullTurnIntervalsWrapAround) {
  HzIntervalsC turn(TWO_PI);
  turn.AddHz(-0.1, 0.1);
  turn.AddHz(TWO_PI - 0.01, TWO_PI + 0.2);
  turn.Build(64);
  for (const double hz : {0.0, 0.1, 0.2, TWO_PI - 0.1, TWO_PI}) EXPECT_TRUE(turn.Contains(hz));
  for (const double hz : {0.21, 3.0, TWO_PI - 0.11}) EXPECT_FALSE(turn.Contains(hz));
  HzIntervalsC narrow(1.0);
  narrow.AddHz(-0.1, 0.1);
  narrow.Build(64);
  EXPECT_TRUE(narrow.Contains(0.05));
  EXPECT_FALSE(narrow.Contains(0.95));
}

// A width that is a whole number of units up to the rounding of a quotient or a product, and
// others.
TEST(HzIntervals, AnIntervalUpToTheWidthContainsTheWidth) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const auto units = static_cast<double>(random() >> 32);
    double width = (units + 1.0) * (TWO_PI / 0x1p32);
    if (i == 0) width = 0x1.35e6a3a7ed268p+1;
    for (double hz : {width, std::nextafter(width, 0.0)}) {
      HzIntervalsC set(hz);
      set.Add(hz - 1e-9, hz + 1e-9);
      set.Build(16);
      if (hz == TWO_PI) continue;  // has the units of 0
      ASSERT_TRUE(set.Contains(hz)) << std::hexfloat << hz;
    }
  }
}

TEST(HzIntervals, WithoutAnyNothingIsContained) {
  HzIntervalsC set(1.0);
  set.Build(64);
  for (const double hz : {0.0, 0.5, 1.0}) EXPECT_FALSE(set.Contains(hz));
  EXPECT_EQ(set.GetTableSize(), HzIntervalsC::kBytesPerBucket);
}

TEST(HzIntervals, TheTableOutlivesTheIntervals) {
  HzIntervalsC set(1.0);
  set.Add(0.25, 0.26);
  set.Build(1U << 20);
  set.DropIntervals();
  EXPECT_TRUE(set.MayContain(ToTurnUnits(0.255)));
  EXPECT_FALSE(set.MayContain(ToTurnUnits(0.75)));
  EXPECT_FALSE(set.MayContain(ToTurnUnits(5.0))) << "beyond the width";
}

TEST(HzIntervals, ARangeMayContainOneIfAnyOfItsHzMay) {
  std::mt19937_64 random(4);
  HzIntervalsC set(TWO_PI);
  std::vector<HzIntervalsC::Interval> all;
  for (int i = 0; i < 40; ++i) {
    const double low = 6.0 * static_cast<double>(i) / 40.0;
    all.push_back({low, low + (i % 4 == 0 ? 0.1 : 1e-9)});
    set.Add(all.back().low, all.back().high);
  }
  set.Build(4096);
  int apart = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto first = static_cast<std::uint32_t>(random() >> 32);
    const auto length = static_cast<std::uint32_t>(random() >> (33 + random() % 12));
    const std::uint32_t last = first + std::min(length, ~first);
    bool isIn = set.MayContain(first) || set.MayContain(last);
    for (const HzIntervalsC::Interval& interval : all) {
      const std::uint32_t units = ToTurnUnits(interval.low);
      isIn = isIn || (first <= units && units <= last);
    }
    if (isIn) {
      ASSERT_TRUE(set.MayContainAny(first, last)) << first << " to " << last;
    }
    apart += !set.MayContainAny(first, last);
  }
  EXPECT_GT(apart, 5000);
  HzIntervalsC narrow(1.0);
  narrow.Add(0.9, 1.0);
  narrow.Build(64);
  EXPECT_TRUE(narrow.MayContainAny(ToTurnUnits(0.5), ToTurnUnits(0.95)));
  EXPECT_TRUE(narrow.MayContainAny(ToTurnUnits(0.95), ToTurnUnits(5.0)));
  EXPECT_FALSE(narrow.MayContainAny(ToTurnUnits(0.1), ToTurnUnits(0.8)));
  EXPECT_FALSE(narrow.MayContainAny(ToTurnUnits(1.1), ToTurnUnits(5.0)));
}

TEST(HzIntervals, TheTableIsNoLargerThanRequested) {
  HzIntervalsC set(1.0);
  for (int i = 0; i < 1000; ++i) set.Add(i * 1e-3, i * 1e-3 + 1e-9);
  set.Build(100);
  EXPECT_EQ(set.GetTableSize(), 100 * HzIntervalsC::kBytesPerBucket);
  EXPECT_TRUE(set.Contains(0.5));
  EXPECT_FALSE(set.Contains(0.5005));
}

TEST(TurnUnits, WrapAfterATurn) {
  EXPECT_EQ(ToTurnUnits(0.0), 0u);
  EXPECT_EQ(ToTurnUnits(PI), 1U << 31);
  EXPECT_EQ(ToTurnUnits(TWO_PI), 0u);
  EXPECT_EQ(ToTurnUnits(std::nextafter(TWO_PI, 0.0)), ~0U);
}

}  // namespace
}  // namespace GMAT
