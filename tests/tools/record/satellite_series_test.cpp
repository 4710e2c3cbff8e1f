#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

#include <gtest/gtest.h>

#include <output/chart.h>
#include <record/decoded_record.h>
#include <record/satellite_series.h>

namespace {

// More records than a picture can resolve: the extremes of every value and the gaps are kept.
TEST(SatelliteSeries, KeepsExtremesAndGapsOfManyRecordsInFewPoints) {
  constexpr int kRecords = 200'000;
  Tool::SatelliteSeriesC series;
  Tool::DecodedRecord record;
  for (int i = 0; i < kRecords; ++i) {
    // A second apart; half an hour is missing after the 100,000th.
    const int second = i < 100'000 ? i : i + 1800;
    record.measurement.SetTimeA({0, second * 1000});
    record.measurement.SetDOPs(SDI::GPSDOPsImplC(i == 123'457 ? 999 : 10, 20, 0xFFFF));
    record.measurement.SetTotalPair(12, i == 65'432 ? 1 : 9);
    series.Add(record);
  }
  EXPECT_EQ(series.GetRecordCount(), static_cast<std::uint64_t>(kRecords));
  EXPECT_EQ(series.GetFirstTime(), 0);
  EXPECT_EQ(series.GetLastTime(), kRecords - 1 + 1800);
  const auto extremes = [&](Tool::SatelliteSeriesC::Value value) {
    double lowest = 1e9, highest = 0;
    std::size_t points = 0;
    const auto runs = series.GetRuns(value);
    EXPECT_EQ(runs.size(), 2u);
    for (const auto& run : runs) {
      points += run.size();
      for (const Tool::ChartPoint& point : run) {
        lowest = std::min(lowest, point.value);
        highest = std::max(highest, point.value);
      }
    }
    EXPECT_LE(points, 8192u);
    return std::pair(lowest, highest);
  };
  const auto [low, high] = extremes(Tool::SatelliteSeriesC::kHDOP);
  EXPECT_NEAR(low, 1.0, 1e-6);
  EXPECT_NEAR(high, 99.9, 1e-5);
  EXPECT_EQ(extremes(Tool::SatelliteSeriesC::kUsed), std::pair(1.0, 9.0));
}

// Of equal extremes, the first one is marked.
TEST(SatelliteSeries, MarksTheFirstOfEqualExtremes) {
  constexpr std::uint16_t kHDOPs[] = {30, 10, 10, 20};
  constexpr std::uint16_t kVDOPs[] = {10, 30, 30, 20};
  constexpr std::size_t kGroups = 1024;
  Tool::SatelliteSeriesC series;
  Tool::DecodedRecord record;
  // The first 4096 records are then in groups of four.
  for (int second = 0; second < 6144; ++second) {
    record.measurement.SetTimeA({0, second * 1000});
    record.measurement.SetDOPs(SDI::GPSDOPsImplC(kHDOPs[second % 4], kVDOPs[second % 4], 0xFFFF));
    series.Add(record);
  }
  const auto expect = [&](Tool::SatelliteSeriesC::Value value, double first, double second) {
    const auto runs = series.GetRuns(value);
    ASSERT_EQ(runs.size(), 1u);
    ASSERT_GE(runs[0].size(), 2 * kGroups);
    for (std::size_t i = 0; i < kGroups; ++i) {
      EXPECT_EQ(runs[0][2 * i].time, 4.0 * static_cast<double>(i));
      EXPECT_EQ(runs[0][2 * i].value, first);
      EXPECT_EQ(runs[0][2 * i + 1].time, 4.0 * static_cast<double>(i) + 1);
      EXPECT_EQ(runs[0][2 * i + 1].value, second);
    }
  };
  expect(Tool::SatelliteSeriesC::kHDOP, 3.0, 1.0);
  expect(Tool::SatelliteSeriesC::kVDOP, 1.0, 3.0);
}

// For any number of gaps, each value is drawn at a time that has it, and no line crosses a gap.
TEST(SatelliteSeries, DrawsNothingWhereNothingIsRecorded) {
  for (const int bursts : {10, 300, 20'000}) {
    SCOPED_TRACE(bursts);
    Tool::SatelliteSeriesC series;
    std::map<double, double> expected;
    for (int i = 0; i < 10 * bursts; ++i) {
      // Ten records a second apart, then a minute without records; every third burst lacks the
      // pair.
      const int burst = i / 10;
      const int second = 70 * burst + i % 10;
      Tool::DecodedRecord record;
      record.measurement.SetTimeA(
          {static_cast<std::uint16_t>(second / 604800), second % 604800 * 1000});
      if (burst % 3 != 0) {
        const int used = 5 + i * 7 % 11;
        record.measurement.SetTotalPair(20, static_cast<std::uint8_t>(used));
        expected[second] = used;
      }
      series.Add(record);
    }
    std::size_t points = 0;
    for (const auto& run : series.GetRuns(Tool::SatelliteSeriesC::kUsed)) {
      points += run.size();
      EXPECT_EQ(static_cast<int>(run.front().time) / 70, static_cast<int>(run.back().time) / 70);
      for (const Tool::ChartPoint& point : run) {
        const auto found = expected.find(point.time);
        ASSERT_NE(found, expected.end()) << point.time;
        EXPECT_EQ(found->second, point.value);
      }
    }
    EXPECT_GT(points, 0u);
    EXPECT_LE(points, 8192u);
    EXPECT_TRUE(series.GetRuns(Tool::SatelliteSeriesC::kHDOP).empty());
  }
}

}  // namespace
