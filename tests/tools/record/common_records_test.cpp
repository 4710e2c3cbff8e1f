// What two lists of records have in common, and how far apart two numbers are.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <record/changed_fields.h>
#include <record/common_records.h>

namespace {

using Tool::CommonPlace;
using Tool::UlpDistance;

std::vector<std::string_view> Letters(std::string_view text) {
  std::vector<std::string_view> letters;
  for (std::size_t i = 0; i < text.size(); ++i) letters.push_back(text.substr(i, 1));
  return letters;
}

std::vector<CommonPlace> Common(const std::string& a, const std::string& b) {
  return Tool::FindCommon(Letters(a), Letters(b));
}

// By the recurrence that defines it.
std::size_t LongestCommon(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (const char letter : a) {
    std::size_t diagonal = 0;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t above = row[j + 1];
      row[j + 1] = letter == b[j] ? diagonal + 1 : std::max(above, row[j]);
      diagonal = above;
    }
  }
  return row.back();
}

TEST(FindCommon, FindsWhatIsCommonInItsOrder) {
  EXPECT_EQ(Common("abcd", "abcd"), (std::vector<CommonPlace>{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
  EXPECT_EQ(Common("abcd", "xabyd"), (std::vector<CommonPlace>{{0, 1}, {1, 2}, {3, 4}}));
  EXPECT_EQ(Common("ab", "ba").size(), 1U);
  EXPECT_TRUE(Common("abc", "xyz").empty());
  EXPECT_TRUE(Common("", "xyz").empty());
  EXPECT_TRUE(Common("abc", "").empty());
  EXPECT_EQ(Common("aaa", "aa").size(), 2U);
}

// Lists of up to 300 letters take several words of bits.
TEST(FindCommon, FindsAsManyAsThereAre) {
  std::uint64_t state = 7;
  const auto random = [&state](std::uint64_t below) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::size_t>((state >> 33) % below);
  };
  for (int round = 0; round < 400; ++round) {
    const std::size_t letters = 1 + random(20);
    std::string a(random(300), 'a');
    std::string b(random(300), 'a');
    for (char& letter : a) letter = static_cast<char>('a' + random(letters));
    for (char& letter : b) letter = static_cast<char>('a' + random(letters));
    SCOPED_TRACE(a + " and " + b);
    const std::vector<CommonPlace> common = Common(a, b);
    ASSERT_EQ(common.size(), LongestCommon(a, b));
    for (std::size_t i = 0; i < common.size(); ++i) {
      ASSERT_EQ(a[common[i].a], b[common[i].b]);
      if (i == 0) continue;
      ASSERT_LT(common[i - 1].a, common[i].a);
      ASSERT_LT(common[i - 1].b, common[i].b);
    }
  }
}

TEST(UlpDistance, CountsTheNumbersBetween) {
  constexpr double kTiny = std::numeric_limits<double>::denorm_min();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(UlpDistance(1.0, 1.0), 0U);
  EXPECT_EQ(UlpDistance(1.0, std::nextafter(1.0, 2.0)), 1U);
  EXPECT_EQ(UlpDistance(1.0, 2.0), std::uint64_t{1} << 52);
  EXPECT_EQ(UlpDistance(-1.0, -2.0), std::uint64_t{1} << 52);
  EXPECT_EQ(UlpDistance(0.0, -0.0), 0U);
  EXPECT_EQ(UlpDistance(kTiny, -kTiny), 2U);
  EXPECT_EQ(UlpDistance(std::numeric_limits<double>::max(), kInfinity), 1U);
  EXPECT_EQ(UlpDistance(-kInfinity, kInfinity), 2 * (std::uint64_t{0x7FF} << 52));
  EXPECT_EQ(UlpDistance(1.0, std::nan("")), std::nullopt);
  EXPECT_EQ(UlpDistance(1.0F, 2.0F), std::uint64_t{1} << 23);
  EXPECT_EQ(UlpDistance(-0.0F, std::numeric_limits<float>::denorm_min()), 1U);
  EXPECT_EQ(UlpDistance(std::nanf(""), 1.0F), std::nullopt);
}

}  // namespace
