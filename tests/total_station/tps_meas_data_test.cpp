#include <string>

#include <gtest/gtest.h>

#include <surveydata/total_station/tps_meas_data.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;
using SDI::TPSMeasDataC;

template <class Record = TPSMeasDataC>
Record RecordOf(const char16_t* text) {
  return Record(text, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5F, 9.5, 10.5, 11.5, 12.5, 13.5, 14.5F, 15.5F,
                16.5F, 17.5F, 18.5F, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28);
}

TEST(TPSMeasData, TakesEveryFieldInOrder) {
  const Texts expected = {"P1",   "2.5",  "3.5",  "4.5",  "5.5",  "6.5",  "7.5",
                          "8.5",  "9.5",  "10.5", "11.5", "12.5", "13.5", "14.5",
                          "15.5", "16.5", "17.5", "18.5", "19",   "20",   "21",
                          "22",   "23",   "24",   "25",   "26",   "27",   "28"};
  EXPECT_EQ(Values(RecordOf(u"P1")), expected);
  EXPECT_EQ(Values(RecordOf<ODM::TPSMeasDataC>(u"P1")), expected);
}

TEST(TPSMeasData, KeepsTextsOfUpToSixteenUnitsAndEmptiesForLongerOnes) {
  const std::u16string sixteen = u"0123456789\x00E9\xD83D\xDE00\xFFFFxy";
  ASSERT_EQ(sixteen.size(), 16U);
  const std::u16string seventeen = sixteen + u'z';
  const struct {
    const char16_t* text;
    std::u16string kept;
  } cases[] = {{u"", u""}, {sixteen.c_str(), sixteen}, {seventeen.c_str(), u""}, {nullptr, u""}};
  for (const auto& [text, kept] : cases) {
    SCOPED_TRACE(Records::Show(kept));
    TPSMeasDataC meas = RecordOf(u"before");
    meas.SetText(text);
    EXPECT_EQ(std::u16string(meas.GetText()), kept);
    EXPECT_EQ(std::u16string(RecordOf(text).GetText()), kept);
    EXPECT_EQ(std::u16string(RecordOf<ODM::TPSMeasDataC>(text).GetText()), kept);
  }
}

TEST(TPSMeasData, GivesATextThatChangesWithTheRecord) {
  TPSMeasDataC meas = RecordOf(u"before");
  const char16_t* const text = meas.GetText();
  meas.SetText(u"now");
  EXPECT_EQ(std::u16string(text), u"now");
  meas.SetText(text + 1);
  EXPECT_EQ(std::u16string(text), u"ow");
}

TEST(TPSMeasData, TellsTextsApartByCaseAndLength) {
  const TPSMeasDataC meas = RecordOf(u"P1");
  EXPECT_TRUE(meas.IsEqual(RecordOf(u"P1")));
  EXPECT_FALSE(meas.IsEqual(RecordOf(u"p1")));
  EXPECT_FALSE(meas.IsEqual(RecordOf(u"P")));
  EXPECT_FALSE(meas.IsEqual(RecordOf(u"P11")));
  TPSMeasDataC shortened = RecordOf(u"P1 and more");
  shortened.SetText(u"P1");
  EXPECT_TRUE(meas.IsEqual(shortened)) << "units after the text are not compared";
}

TEST(TPSMeasData, IsEqualWhateverTheOrderInWhichItWasSet) {
  TPSMeasDataC forwards, backwards;
  const auto fields = Records::FieldsOf<TPSMeasDataC>();
  for (std::size_t i = 0; i < fields.size(); ++i) fields[i].Fill(forwards, static_cast<int>(i));
  for (std::size_t i = fields.size(); i-- > 0;) fields[i].Fill(backwards, static_cast<int>(i));
  EXPECT_TRUE(forwards.IsEqual(backwards)) << Records::DifferingFields(forwards, backwards);
}

TEST(TPSMeasData, RaisesFlagsBeforeItLowersThem) {
  TPSMeasDataC meas;
  meas.SetFlags(0xFFFFFFFF, 0x80000000);
  EXPECT_EQ(meas.GetFlags(), 0x7FFFFFFFU);
  EXPECT_EQ(Records::DifferingFields(meas, TPSMeasDataC()), "Flags");
}

}  // namespace
