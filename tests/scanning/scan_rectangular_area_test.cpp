#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_rectangular_area.h>

#include "tests/scanning/area_samples.h"

namespace {

using SDI::ScanDefPointC;
using SDI::ScanRectangularAreaC;
using SDI::ScanRectangularAreaImplC;
using TestSupport::Calls;
using TestSupport::kNotSet;
using TestSupport::LoggedC;
using TestSupport::MakeRectangle;

TEST(ScanRectangularArea, IsValidWithStepsAndTwoCornersThatDiffer) {
  ScanRectangularAreaC area;
  EXPECT_FALSE(area.IsValid());
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_TRUE(area.IsAreaValid());
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, 0.1);
  EXPECT_TRUE(area.IsValid());
  area.SetSteps(0.0, 0.1);
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, -0.1);
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, std::nan(""));
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, 0.1);
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 0.5, -1.0});
  EXPECT_FALSE(area.IsValid()) << "equal V";
  area.SetCorners({1.0, 0.5, -1.0}, {1.0, 0.6, -1.0});
  EXPECT_FALSE(area.IsValid()) << "equal Hz";
  area.SetCorners({1.0, 0.5, -1.0}, {1.0, 0.5, -1.0});
  EXPECT_FALSE(area.IsValid());
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  area.AddPoint({1.5, 2.0, -1.0});
  EXPECT_FALSE(area.IsValid()) << "three points";
  area.SetCorners({7.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_FALSE(area.IsValid()) << "out of range";
  // Hz and V must differ exactly, but the corners by more than a denormal.
  area.SetCorners({1.0, 0.5, -1.0}, {std::nextafter(1.0, 2.0), std::nextafter(0.5, 1.0), -1.0});
  EXPECT_TRUE(area.IsValid());
  area.SetCorners({0.0, 0.0, -1.0}, {1e-310, 1.0, -1.0});
  EXPECT_TRUE(area.IsValid());
  area.SetCorners({0.0, 0.0, -1.0}, {1e-310, 1e-310, -1.0});
  EXPECT_FALSE(area.IsValid());
}

TEST(ScanRectangularArea, SettingCornersClearsAndAddsThemByTheVirtualFunctions) {
  auto* const impl = new LoggedC<ScanRectangularAreaImplC>;
  ScanRectangularAreaC area(impl);
  const Calls expected = {"Clear", "AddPoint 1.0", "AddPoint 2.0"};
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_EQ(impl->TakeCalls(), expected);
  impl->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_EQ(impl->TakeCalls(), expected);
  ScanDefPointC a;
  ScanDefPointC b;
  area.SetSteps(0.1, 0.1);
  EXPECT_TRUE(area.GetCorners(a, b));
  EXPECT_EQ(impl->TakeCalls(), (Calls{"IsValid", "IsAreaValid"}));
}

TEST(ScanRectangularArea, CornersAreSetAndRead) {
  const std::unique_ptr<ScanRectangularAreaC> area(MakeRectangle());
  area->SetCorners({3.0, 0.6, 7.0}, {4.0, 1.1, 8.0});
  EXPECT_EQ(area->GetPointCount(), 2u);
  ScanDefPointC a;
  ScanDefPointC b;
  ASSERT_TRUE(area->GetCorners(a, b));
  EXPECT_EQ(a.GetHz(), 3.0);
  EXPECT_EQ(a.GetDistance(), 7.0);
  EXPECT_EQ(b.GetV(), 1.1);
  EXPECT_EQ(b.GetDistance(), 8.0);
  area->SetSteps(0.0, 0.0);
  a = ScanDefPointC();
  EXPECT_FALSE(area->GetCorners(a, b));
  EXPECT_EQ(a.GetHz(), kNotSet);
}

TEST(ScanRectangularArea, OutlineFillsTheDistances) {
  const struct {
    double first, second, filledFirst, filledSecond;
  } cases[] = {
      {12.5, -1.0, 12.5, 12.5}, {-1.0, 9.0, 9.0, 9.0}, {-1.0, -1.0, 3.0, 3.0}, {1.0, 2.0, 1.0, 2.0},
      {0.0, -1.0, 0.0, 0.0},    {-1.0, 0.0, 0.0, 0.0}, {1.0, 0.0, 1.0, 0.0},   {0.0, 1.0, 0.0, 1.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.first << ", " << c.second);
    const std::unique_ptr<ScanRectangularAreaC> area(MakeRectangle());
    area->SetCorners({1.0, 0.5, c.first}, {2.0, 1.0, c.second});
    std::vector<ScanDefPointC> out(1);
    area->GetOutline(out, 3.0);
    ASSERT_EQ(out.size(), 5u) << "corners are appended";
    const ScanDefPointC expected[] = {{1.0, 0.5, c.filledFirst},
                                      {2.0, 0.5, c.filledSecond},
                                      {2.0, 1.0, c.filledSecond},
                                      {1.0, 1.0, c.filledFirst}};
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_TRUE(out[i + 1] == expected[i]);
      EXPECT_EQ(out[i + 1].GetDistance(), expected[i].GetDistance());
    }
  }
  const std::unique_ptr<ScanRectangularAreaC> unknown(MakeRectangle());
  unknown->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, std::nan("")});
  std::vector<ScanDefPointC> out;
  unknown->GetOutline(out, 3.0);
  EXPECT_EQ(out[0].GetDistance(), -1.0) << "NaN is not filled in";
  EXPECT_TRUE(std::isnan(out[2].GetDistance()));
}

TEST(ScanRectangularArea, OutlineNeedsTwoCornersAndTakesTheFirstTwo) {
  ScanRectangularAreaC area;
  std::vector<ScanDefPointC> out(1);
  area.GetOutline(out, 3.0);
  EXPECT_EQ(out.size(), 1u) << "no corner";
  area.AddPoint({1.0, 0.5, -1.0});
  area.GetOutline(out, 3.0);
  ASSERT_EQ(out.size(), 1u) << "one corner";
  EXPECT_EQ(out[0].GetHz(), kNotSet) << "existing points are kept";
  area.AddPoint({2.0, 1.0, 5.0});
  area.AddPoint({3.0, 1.5, 7.0});
  area.AddPoint({4.0, 2.0, 9.0});
  area.GetOutline(out, 3.0);
  ASSERT_EQ(out.size(), 5u) << "four corners";
  const ScanDefPointC expected[] = {
      {1.0, 0.5, 5.0}, {2.0, 0.5, 5.0}, {2.0, 1.0, 5.0}, {1.0, 1.0, 5.0}};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(out[i + 1] == expected[i]) << i;
    EXPECT_EQ(out[i + 1].GetDistance(), expected[i].GetDistance()) << i;
  }
}

}  // namespace
