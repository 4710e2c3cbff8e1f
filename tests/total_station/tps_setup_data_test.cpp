#include <gtest/gtest.h>

#include <surveydata/total_station/tps_setup_data.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;
using SDI::TPSSetupDataC;

TEST(TPSSetupData, TakesEveryFieldInOrder) {
  const Texts expected = {"1.5", "2",   "3",    "4.5", "5.5", "6.5",       "7.5",
                          "8.5", "9.5", "10.5", "11",  "12",  "4294967295"};
  EXPECT_EQ(
      Values(TPSSetupDataC(1.5, 2, 3, 4.5, 5.5, 6.5, 7.5, 8.5F, 9.5F, 10.5F, 11, 12, 0xFFFFFFFF)),
      expected);
  EXPECT_EQ(Values(ODM::TPSSetupDataC(1.5, 2, 3, 4.5, 5.5, 6.5, 7.5, 8.5F, 9.5F, 10.5F, 11, 12,
                                      0xFFFFFFFF)),
            expected);
}

TEST(TPSSetupData, RaisesFlagsBeforeItLowersThem) {
  const struct {
    std::uint32_t before, set, clear, after;
  } cases[] = {
      {0x0, 0x5, 0x4, 0x1},
      {0xA5, 0x0, 0x0, 0xA5},
      {0xF0, 0x0F, 0x30, 0xCF},
      {0x0, 0xFFFFFFFF, 0x80000000, 0x7FFFFFFF},
      {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0x0},
  };
  for (const auto& [before, set, clear, after] : cases) {
    SCOPED_TRACE(testing::Message() << "set " << set << ", clear " << clear);
    TPSSetupDataC setup;
    setup.SetFlags(before, 0);
    setup.SetFlags(set, clear);
    EXPECT_EQ(setup.GetFlags(), after);
  }
}

TEST(TPSSetupData, ComparesDoublesWithTolerance) {
  TPSSetupDataC a, b;
  a.SetValue2(1.0);
  b.SetValue2(1.0 + 1e-17);
  EXPECT_TRUE(a.IsEqual(b));
  b.SetValue2(1.0 + 1e-15);
  EXPECT_FALSE(a.IsEqual(b));
}

TEST(TPSSetupData, ComparesFloatsWithAToleranceThatShrinksWithThem) {
  TPSSetupDataC a, b;
  for (const float single : {1e-30F, 1e-8F, 1e-6F}) {
    SCOPED_TRACE(single);
    b.SetSingle1(single);
    EXPECT_FALSE(a.IsEqual(b));
  }
  a.SetSingle1(1.0F);
  b.SetSingle1(1.0F + 1e-7F);
  EXPECT_TRUE(a.IsEqual(b));
}

}  // namespace
