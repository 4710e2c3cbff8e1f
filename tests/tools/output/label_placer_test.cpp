#include <string>

#include <gtest/gtest.h>

#include <output/label_placer.h>
#include <output/svg.h>

namespace {

using Tool::FittedText;
using Tool::LabelPlacerC;
using Tool::SvgFont;
using Tool::TextWidth;

TEST(LabelPlacer, LeavesOutWhatWouldOverlap) {
  Tool::SvgC svg(200, 100, "");
  LabelPlacerC labels(svg, 200, 100);
  EXPECT_TRUE(labels.Place({10, 50}, "first"));
  EXPECT_FALSE(labels.Place({15, 52}, "second"));
  EXPECT_TRUE(labels.Place({10, 70}, "third"));
  labels.Reserve({100, 0, 200, 100});
  EXPECT_FALSE(labels.Place({120, 30}, "x"));
  EXPECT_FALSE(labels.Place({98, 30}, "x"));
  EXPECT_TRUE(labels.Place({98, 30}, "x", {.anchor = "end"}));
  const std::string text = std::move(svg).Finish();
  EXPECT_NE(text.find(">first<"), std::string::npos);
  EXPECT_EQ(text.find(">second<"), std::string::npos);
}

TEST(LabelPlacer, KeepsTextsOnThePage) {
  Tool::SvgC svg(100, 100, "");
  LabelPlacerC labels(svg, 100, 100);
  EXPECT_FALSE(labels.Place({-1, 50}, "left"));
  EXPECT_FALSE(labels.Place({95, 50}, "right"));
  EXPECT_FALSE(labels.Place({10, 2}, "above"));
  EXPECT_FALSE(labels.Place({10, 99}, "below"));
  EXPECT_FALSE(labels.Place({50, 20}, "turned, and much too long", {.turned = -90}));
  EXPECT_TRUE(labels.Place({50, 50}, "turned", {.anchor = "middle", .turned = -90}));
  EXPECT_FALSE(labels.Place({50, 30}, "x", {.anchor = "middle"}));
}

TEST(FittedText, IsAsLongAsFits) {
  const SvgFont font{.size = 10};
  EXPECT_EQ(FittedText("short", 100, font), "short");
  const std::string fitted = FittedText(std::string(1'000'000, 'W'), 100, font);
  EXPECT_TRUE(fitted.starts_with("WWWW") && fitted.ends_with("\u2026")) << fitted;
  EXPECT_LE(TextWidth(fitted, font), 100);
  EXPECT_GT(TextWidth("W" + fitted, font), 100);
  // Multi-byte characters are not split.
  const std::string wide = FittedText("\u20AC\u20AC\u20AC\u20AC", 35, font);
  EXPECT_EQ(wide, "\u20AC\u20AC\u2026");
}

}  // namespace
