#include <cmath>

#include <gtest/gtest.h>

#include <surveydata/imaging/img_chip_window_info.h>

namespace {

using SDI::ImgChipWindowInfoC;

TEST(ImgChipWindowInfo, WithNaNDiffersFromItsCopy) {
  ImgChipWindowInfoC window;
  EXPECT_TRUE(window == ImgChipWindowInfoC(window));
  window.SetValue3(std::nan(""));
  EXPECT_FALSE(window == ImgChipWindowInfoC(window));
  EXPECT_FALSE(window == ImgChipWindowInfoC(window));
}

TEST(ImgChipWindowInfo, DetectsTheSmallestDifference) {
  ImgChipWindowInfoC a, b;
  a.SetValue1(1.0);
  b.SetValue1(std::nextafter(1.0, 2.0));
  EXPECT_FALSE(a == b);
  a.SetValue1(0.0);
  b.SetValue1(-0.0);
  EXPECT_TRUE(a == b);
}

}  // namespace
