#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <command_line/text.h>
#include <output/chart.h>
#include <output/gps_time.h>
#include <output/svg.h>
#include <record/explain_frame.h>
#include <record/satellite_series.h>

#include "tests/tools/program.h"

namespace {

TEST(ExplainFrame, TellsEveryByteOfEverySampleFrameOnce) {
  for (const char* const name : kSamples) {
    const Bytes file = ReadBytes(DataPath(std::string(name) + ".rec"));
    const auto index = SampleIndex(name);
    for (const auto& entry : index["frames"]) {
      SCOPED_TRACE(entry);
      const std::size_t size = entry["size"];
      std::size_t at = 0;
      for (const Tool::FrameField& field :
           Tool::ExplainFrame({&file[entry["offset"].get<std::size_t>()], size})) {
        EXPECT_EQ(field.at, at);
        EXPECT_GT(field.size, 0u);
        EXPECT_TRUE(field.field.has_value());
        at += field.size;
      }
      EXPECT_EQ(at, size);
    }
  }
}

// Whatever the flags words announce, and wherever the frame ends.
TEST(ExplainFrame, TellsEveryByteOnceHoweverShortTheFrame) {
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  const Bytes body(sample.begin() + 965, sample.begin() + 960 + 465);
  for (std::size_t length = 0; length <= body.size(); ++length) {
    SCOPED_TRACE(length);
    const Bytes frame =
        MakeFrame(113, Bytes(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(length)));
    std::size_t at = 0;
    bool fits = true;
    for (const Tool::FrameField& field : Tool::ExplainFrame(frame)) {
      EXPECT_EQ(field.at, at);
      at += field.size;
      fits = fits && field.field.has_value();
    }
    EXPECT_EQ(at, frame.size());
    // Cut between blocks, nothing is left over to be told; the reader refuses the frame all the
    // same.
    EXPECT_TRUE(fits || length < body.size());
  }
}

// Dates of the GPS time scale: its first day, the rollovers of ten-bit weeks, and a leap day.
TEST(GpsTime, CountsDaysFromTheSixthOfJanuary1980) {
  const struct {
    Vorlin::TimeC time;
    const char* text;
  } cases[] = {
      {{0, 0}, "1980-01-06T00:00:00.000"},
      {{0, 604799999}, "1980-01-12T23:59:59.999"},
      {{0, -1}, "1980-01-05T23:59:59.999"},
      {{1024, 0}, "1999-08-22T00:00:00.000"},
      {{2048, 0}, "2019-04-07T00:00:00.000"},
      {{2095, 518400000}, "2020-03-07T00:00:00.000"},
      {{2094, 518400001}, "2020-02-29T00:00:00.001"},
      {{2091, 440075000}, "2020-02-07T02:14:35.000"},
  };
  for (const auto& [time, text] : cases) {
    EXPECT_EQ(Tool::GpsDateTime(Tool::GpsMilliseconds(time)), text);
  }
}

TEST(ToPrintable, LeavesWellFormedUtf8AndReplacesTheRest) {
  EXPECT_EQ(Tool::ToPrintable(std::string_view("a\u00E9\u20AC\U0001F600")),
            "a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(Tool::ToPrintable(std::string_view("\n\x1B[31m\x7F\u0085", 8)),
            "\uFFFD\uFFFD[31m\uFFFD\uFFFD");
  EXPECT_EQ(Tool::ToPrintable(std::string_view("\0", 1)), "\uFFFD");
  for (const char* const bad :
       {"\xFF", "\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
    SCOPED_TRACE(bad);
    const std::string shown = Tool::ToPrintable(std::string_view(bad + std::string("x")));
    EXPECT_EQ(shown.substr(shown.size() - 4), "\uFFFDx");
    EXPECT_EQ(Tool::ToPrintable(std::string_view(shown)), shown);
  }
}

TEST(ToPrintable, JoinsSurrogatePairsAndReplacesWhatNobodyCanRead) {
  EXPECT_EQ(Tool::ToPrintable(u"aé€"), "aé€");
  EXPECT_EQ(Tool::ToPrintable(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Tool::ToPrintable(u"\xD83Dx\xDE00"), "\uFFFDx\uFFFD");
  EXPECT_EQ(Tool::ToPrintable(u"\n\x7F\x9F"), "\uFFFD\uFFFD\uFFFD");
}

TEST(ToSingleUnits, TakesEveryCharacterOfOneUnitAndNothingElse) {
  for (unsigned unit = 1; unit < 0x10000; ++unit) {
    if (0xD800 <= unit && unit < 0xE000) continue;
    std::string utf8;
    if (unit < 0x80) {
      utf8 = {static_cast<char>(unit)};
    } else if (unit < 0x800) {
      utf8 = {static_cast<char>(0xC0 | unit >> 6), static_cast<char>(0x80 | (unit & 0x3F))};
    } else {
      utf8 = {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
              static_cast<char>(0x80 | (unit & 0x3F))};
    }
    const auto units = Tool::ToSingleUnits(utf8);
    ASSERT_TRUE(units.has_value()) << unit;
    ASSERT_EQ(*units, std::u16string(1, static_cast<char16_t>(unit)));
    if (utf8.size() > 1) {
      ASSERT_FALSE(Tool::ToSingleUnits(utf8.substr(0, utf8.size() - 1)).has_value()) << unit;
    }
  }
  for (const char* const wrong : {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                                  "\xED\xBF\xBF", "\xF0\x9F\x98\x80", "\xC3x", "\xFF"}) {
    EXPECT_FALSE(Tool::ToSingleUnits(wrong).has_value());
  }
}

TEST(EscapeXml, ReplacesWhatXmlCannotHold) {
  EXPECT_EQ(Tool::EscapeXml("<a & \"b\">"), "&lt;a &amp; &quot;b&quot;&gt;");
  EXPECT_EQ(Tool::EscapeXml("é€\xF0\x9F\x98\x80"), "é€\xF0\x9F\x98\x80");
  for (const char* const bad : {"\x01", "\x7F", "\x80", "\xC3", "\xFF"}) {
    EXPECT_EQ(Tool::EscapeXml(bad), "\uFFFD");
  }
  EXPECT_EQ(Tool::EscapeXml("\xE2\x82"), "\uFFFD\uFFFD");
  EXPECT_EQ(Tool::EscapeXml("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
}

TEST(ValueTicks, AreRoundAndReachTheTop) {
  const struct {
    double top;
    bool isWhole;
    std::vector<double> ticks;
  } cases[] = {
      {8.1, false, {0, 2, 4, 6, 8, 10}},
      {8.0, false, {0, 2, 4, 6, 8}},
      {1.0, true, {0, 1}},
      {0.0, false, {0, 0.2, 0.4, 0.6, 0.8, 1.0}},
      {39, true, {0, 10, 20, 30, 40}},
      {12, true, {0, 5, 10, 15}},
      {6553.4, false, {0, 2000, 4000, 6000, 8000}},
  };
  for (const auto& [top, isWhole, ticks] : cases) {
    SCOPED_TRACE(top);
    const std::vector<double> found = Tool::ValueTicks(top, 6, isWhole);
    ASSERT_EQ(found.size(), ticks.size());
    for (std::size_t i = 0; i < ticks.size(); ++i) EXPECT_NEAR(found[i], ticks[i], 1e-9);
  }
}

TEST(TimeTicks, AreRoundAndFewWhateverTheRange) {
  for (double range = 1; range < 4e10; range *= 1.7) {
    SCOPED_TRACE(range);
    const double first = 1.2e9 + 17;
    const std::vector<double> ticks = Tool::TimeTicks(first, first + range, 9);
    EXPECT_LE(ticks.size(), 9u);
    EXPECT_GE(ticks.size(), 1u);
    for (const double tick : ticks) {
      EXPECT_LE(first, tick);
      EXPECT_LE(tick, first + range);
    }
  }
  EXPECT_EQ(Tool::TimeTicks(100, 400, 6), (std::vector<double>{120, 180, 240, 300, 360}));
}

// More records than a picture can tell apart: the extremes of every value stay, and so do gaps.
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

// However many gaps there are: each value is drawn at a time that has it, and no line joins what
// lies on either side of a gap.
TEST(SatelliteSeries, DrawsNothingWhereNothingIsRecorded) {
  for (const int bursts : {10, 300, 20'000}) {
    SCOPED_TRACE(bursts);
    Tool::SatelliteSeriesC series;
    std::map<double, double> expected;
    for (int i = 0; i < 10 * bursts; ++i) {
      // Ten records a second apart, then a minute of nothing; every third burst lacks the pair.
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

TEST(DrawChart, SaysWhereAPanelHasNothingToShow) {
  Tool::Chart chart{.title = "t",
                    .subtitle = "",
                    .timeLabel = "",
                    .firstTime = 0,
                    .lastTime = 1,
                    .panels = {{"with", false, {{"a", "#000000", 1, {{{0, 1}, {1, 2}}}}}}}};
  EXPECT_EQ(Tool::DrawChart(chart).find("none recorded"), std::string::npos);
  chart.panels.push_back({"without", false, {{"b", "#000000", 1, {}}}});
  const std::string svg = Tool::DrawChart(chart);
  EXPECT_NE(svg.find("none recorded"), std::string::npos);
  EXPECT_EQ(svg.find("none recorded"), svg.rfind("none recorded"));
}

}  // namespace
