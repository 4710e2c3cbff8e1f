#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_rules.h>

namespace GMAT {
namespace {

// Edge k begins at point k.
AreaFrame MakeFrame(const std::vector<AnglePointC>& points) {
  AreaFrame frame;
  EXPECT_TRUE(BuildFrame(points, frame));
  return frame;
}

const std::vector<AnglePointC> kSquare{{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}, {1.0, 2.0}};

std::vector<std::size_t> Numbers(EdgeNumbersC edges) {
  std::vector<std::size_t> numbers;
  for (const std::size_t edge : edges) numbers.push_back(edge);
  return numbers;
}

TEST(AreaFrame, EdgesBeginAtHzZero) {
  const AreaFrame frame = MakeFrame(kSquare);
  ASSERT_EQ(frame.GetEdgeCount(), 4u);
  EXPECT_EQ(frame.hzOrigin, 1.0);
  EXPECT_EQ(frame.GetStart(1), (AnglePointC{1.0, 1.0}));
  EXPECT_EQ(frame.GetEnd(1), (AnglePointC{1.0, 2.0}));
  EXPECT_EQ(frame.GetEnd(3), frame.GetStart(0));
  EXPECT_TRUE(frame.isPolygon);
  EXPECT_FALSE(frame.enclosesZenith);
  EXPECT_LT(frame.vMin, 1.0) << "the upper edge bulges towards the zenith";
  EXPECT_FALSE(MakeFrame({{1.0, 1.0}, {2.0, 2.0}}).isPolygon);
}

TEST(AreaRules, TheClosingEdgeHasNoBand) {
  const AreaFrame frame = MakeFrame(kSquare);
  EXPECT_EQ(Numbers(AllEdges(frame)), (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(Numbers(EdgesWithBand(frame)), (std::vector<std::size_t>{0, 1, 2}));
  const AnglePointC onClosing{0.0, 1.5};
  EXPECT_EQ(FindEdgeInBand(frame, EdgesWithBand(frame), onClosing), std::nullopt);
  EXPECT_EQ(FindEdgeInBand(frame, AllEdges(frame), onClosing), 3u);
}

TEST(AreaRules, TheBandIsLookedForInTheGivenEdges) {
  const AreaFrame frame = MakeFrame(kSquare);
  const AnglePointC onSecond{1.0, 1.5};
  EXPECT_EQ(FindEdgeInBand(frame, EdgesWithBand(frame), onSecond), 1u);
  EXPECT_EQ(FindEdgeInBand(frame, std::vector<std::size_t>{2, 1}, onSecond), 1u);
  EXPECT_EQ(FindEdgeInBand(frame, std::vector<std::size_t>{0, 2}, onSecond), std::nullopt);
  EXPECT_EQ(FindEdgeInBand(frame, std::vector<std::size_t>{}, onSecond), std::nullopt);
}

std::vector<std::pair<std::size_t, double>> Crossings(const AreaFrame& frame, double h) {
  std::vector<std::pair<std::size_t, double>> found;
  ForEachCrossing(frame, AllEdges(frame), SearchMeridianC(frame, h),
                  [&](std::size_t edge, double v) { found.emplace_back(edge, v); });
  return found;
}

TEST(AreaRules, AMeridianCrossesArcsOfPolygons) {
  const auto found = Crossings(MakeFrame(kSquare), 0.5);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].first, 0u);
  EXPECT_EQ(found[1].first, 2u);
  // tan(lat) of the arc's middle is that of its ends divided by cos(0.5).
  EXPECT_NEAR(found[0].second, HALF_PI - std::atan(std::tan(HALF_PI - 1.0) / std::cos(0.5)), 1e-15);
  EXPECT_NEAR(found[1].second, HALF_PI - std::atan(std::tan(HALF_PI - 2.0) / std::cos(0.5)), 1e-15);
}

TEST(AreaRules, AMeridianCrossesTheStraightSidesOfRectangles) {
  const auto found = Crossings(MakeFrame({{1.0, 1.0}, {2.0, 2.0}}), 0.5);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0], (std::pair<std::size_t, double>{1, 2.0}));
  EXPECT_EQ(found[1], (std::pair<std::size_t, double>{3, 1.0}));
}

TEST(AreaRules, ALineFromPoleToPoleIsNotAnArc) {
  const AreaFrame frame = MakeFrame({{1.0, 0.0}, {2.0, PI}, {1.5, 1.0}});
  const SearchMeridianC meridian(frame, 0.5);
  EXPECT_FALSE(meridian.IsArc());
  EXPECT_FALSE(IsInsideByCrossings(frame, AllEdges(frame), 0.5, 1.0));
  EXPECT_TRUE(SearchMeridianC(MakeFrame(kSquare), 0.5).IsArc());
  EXPECT_TRUE(SearchMeridianC(MakeFrame({{1.0, 0.0}, {2.0, PI}}), 0.5).IsArc())
      << "a rectangle needs none";
}

TEST(AreaRules, ADirectionIsInsideByTheCrossingsOfTheGivenEdges) {
  const AreaFrame frame = MakeFrame(kSquare);
  EXPECT_TRUE(IsInsideByCrossings(frame, AllEdges(frame), 0.5, 1.5));
  EXPECT_TRUE(IsInsideByCrossings(frame, std::vector<std::size_t>{2, 0}, 0.5, 1.5))
      << "in any order, without those that do not reach the meridian";
  EXPECT_FALSE(IsInsideByCrossings(frame, std::vector<std::size_t>{2}, 0.5, 1.5))
      << "nothing above";
  EXPECT_FALSE(IsInsideByCrossings(frame, std::vector<std::size_t>{0}, 0.5, 1.5))
      << "nothing below";
  EXPECT_FALSE(IsInsideByCrossings(frame, AllEdges(frame), 0.5, 0.5));
}

TEST(AreaRules, AZenithInsideNeedsNothingAbove) {
  AreaFrame frame = MakeFrame(kSquare);
  frame.enclosesZenith = true;
  EXPECT_TRUE(IsInsideByCrossings(frame, std::vector<std::size_t>{2}, 0.5, 1.5));
}

}  // namespace
}  // namespace GMAT
