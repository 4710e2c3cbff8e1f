#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <output/chart.h>

namespace {

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
