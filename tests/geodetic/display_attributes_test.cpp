#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include <surveydata/geodetic/display_attributes.h>

namespace {

constexpr std::uint32_t kLargestWord = std::numeric_limits<std::uint32_t>::max();
constexpr std::int16_t kSmallest = std::numeric_limits<std::int16_t>::min();
constexpr std::int16_t kLargest = std::numeric_limits<std::int16_t>::max();

TEST(DisplayAttributes, WordsAreUnsignedAndParametersSigned) {
  SDI::DisplayAttributesC display;
  display.SetMode(kLargestWord);
  display.SetOptions(kLargestWord - 1);
  EXPECT_EQ(display.GetMode(), kLargestWord);
  EXPECT_EQ(display.GetOptions(), kLargestWord - 1);
  for (const std::int16_t value : {kSmallest, std::int16_t{-1}, kLargest}) {
    display.SetParam1(value);
    display.SetParam6(value);
    EXPECT_EQ(display.GetParam1(), value);
    EXPECT_EQ(display.GetParam6(), value);
  }
  EXPECT_EQ(display.GetParam2(), 0);
  EXPECT_EQ(display.GetParam5(), 0);
}

}  // namespace
