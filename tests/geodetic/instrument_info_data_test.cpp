#include <limits>

#include <gtest/gtest.h>

#include <surveydata/geodetic/instrument_info_data.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;

template <class Record = SDI::InstrumentInfoDataC>
Record RecordOf(const char16_t* identifier, float value = 1.5F) {
  return {identifier, 0x80000001, "one", "two", "three", "four", value, 1, -2, 3, -4};
}

TEST(InstrumentInfoData, TakesEveryFieldInOrder) {
  const Texts expected = {"TS-1", "2147483649", "one", "two", "three", "four",
                          "1.5",  "1",          "-2",  "3",   "-4"};
  EXPECT_EQ(Values(RecordOf(u"TS-1")), expected);
  EXPECT_EQ(Values(RecordOf<ODM::InstrumentInfoDataC>(u"TS-1")), expected);
}

TEST(InstrumentInfoData, KeepsIdentifiersOfUpToSixteenUnits) {
  const auto length = [](const char16_t* identifier) {
    return RecordOf(identifier).GetIdentifier().GetLength();
  };
  EXPECT_EQ(length(u"0123456789ABCDEF"), 16U);
  EXPECT_EQ(length(u"0123456789ABCDEFG"), 0U);
  EXPECT_EQ(length(nullptr), 0U);

  SDI::InstrumentInfoDataC info = RecordOf(u"TS-1");
  info.SetIdentifier(u"0123456789ABCDEF");
  EXPECT_EQ(info.GetIdentifier(), API::FixedStringC<16>(u"0123456789ABCDEF"));
  EXPECT_EQ(&info.GetIdentifier(), &info.GetImpl()->getIdentifier());
  info.SetIdentifier(u"0123456789ABCDEFG");
  EXPECT_TRUE(info.GetIdentifier().IsEmpty());
}

TEST(InstrumentInfoData, TakesWideIdentifiersAsFixedTextsDo) {
  const struct {
    const wchar_t* wide;
    const char16_t* units;
  } cases[] = {
      {L"TS-1", u"TS-1"},
      {L"0123456789ABCDEF", u"0123456789ABCDEF"},
      {L"0123456789ABCDEFG", u""},
      {L"\u20AC", u"\u20AC"},
      {L"TS\U0001F600", u"TS\U0001F600"},
      {nullptr, u""},
  };
  for (const auto& [wide, units] : cases) {
    const API::FixedStringC<16> expected(units);
    const SDI::InstrumentInfoDataC made(wide, 1, "one", "two", "three", "four", 1.5F, 2, 3, 4, 5);
    EXPECT_EQ(made.GetIdentifier(), expected);
    EXPECT_EQ(Values(made), Values(SDI::InstrumentInfoDataC(units, 1, "one", "two", "three", "four",
                                                            1.5F, 2, 3, 4, 5)));
    const ODM::InstrumentInfoDataC impl(wide, 1, "one", "two", "three", "four", 1.5F, 2, 3, 4, 5);
    EXPECT_TRUE(impl.isEqual(*made.GetImpl()));

    SDI::InstrumentInfoDataC info = RecordOf(u"before");
    info.SetIdentifier(wide);
    EXPECT_EQ(info.GetIdentifier(), expected);
    info.SetIdentifier(u"before");
    info.GetImpl()->setIdentifier(wide);
    EXPECT_EQ(info.GetIdentifier(), expected);
  }
}

TEST(InstrumentInfoData, TakesALiteralNullForTheEmptyIdentifier) {
  SDI::InstrumentInfoDataC info = RecordOf(u"TS-1");
  info.SetIdentifier(nullptr);
  EXPECT_TRUE(info.GetIdentifier().IsEmpty());
  info.SetIdentifier(u"TS-1");
  info.GetImpl()->setIdentifier(nullptr);
  EXPECT_TRUE(info.GetIdentifier().IsEmpty());

  const SDI::InstrumentInfoDataC made(nullptr, 1, "one", "two", "three", "four", 1.5F, 2, 3, 4, 5);
  const Texts expected = {"", "1", "one", "two", "three", "four", "1.5", "2", "3", "4", "5"};
  EXPECT_EQ(Values(made), expected);
  const ODM::InstrumentInfoDataC impl(nullptr, 1, "one", "two", "three", "four", 1.5F, 2, 3, 4, 5);
  EXPECT_EQ(Values(impl), expected);
}

TEST(InstrumentInfoData, LowersFlagsThatAreRaisedAndLoweredAtOnce) {
  ODM::InstrumentInfoDataC info;
  info.setFlags(0x4, 0);
  info.setFlags(0x3, 0x1);
  EXPECT_EQ(info.getFlags(), 0x6U);
  SDI::InstrumentInfoDataC object;
  object.SetFlags(0x4, 0);
  object.SetFlags(0x3, 0x1);
  EXPECT_EQ(object.GetFlags(), 0x6U);
}

TEST(InstrumentInfoData, TreatsANullTextAsEmpty) {
  ODM::InstrumentInfoDataC info = RecordOf<ODM::InstrumentInfoDataC>(u"TS-1");
  info.setText2(nullptr);
  EXPECT_STREQ(info.getText2(), "");
  info.setText1(nullptr);
  info.setText3(nullptr);
  info.setText4(nullptr);
  EXPECT_EQ(Values(info),
            (Texts{"TS-1", "2147483649", "", "", "", "", "1.5", "1", "-2", "3", "-4"}));

  SDI::InstrumentInfoDataC object = RecordOf(u"TS-1");
  object.SetText1(nullptr);
  object.SetText2(nullptr);
  object.SetText3(nullptr);
  object.SetText4(nullptr);
  EXPECT_EQ(Values(object), Values(info));
}

TEST(InstrumentInfoData, TakesATextFromItself) {
  SDI::InstrumentInfoDataC info = RecordOf(u"TS-1");
  info.SetText3(info.GetText3() + 2);
  info.SetIdentifier(info.GetIdentifier().GetData() + 3);
  EXPECT_STREQ(info.GetText3(), "ree");
  EXPECT_EQ(info.GetIdentifier(), API::FixedStringC<16>(u"1"));
}

TEST(InstrumentInfoData, ComparesItsValueWithTolerance) {
  constexpr float kUnit = std::numeric_limits<float>::epsilon();  // of 1.5F
  const auto info = RecordOf<ODM::InstrumentInfoDataC>(u"TS-1");
  EXPECT_TRUE(info.isEqual(RecordOf<ODM::InstrumentInfoDataC>(u"TS-1", 1.5F + kUnit)));
  EXPECT_FALSE(info.isEqual(RecordOf<ODM::InstrumentInfoDataC>(u"TS-1", 1.5F + 3 * kUnit)));
  EXPECT_FALSE(info.isEqual(RecordOf<ODM::InstrumentInfoDataC>(u"ts-1")));
}

}  // namespace
