// A refused text reaches the invalid-parameter handler of the Windows runtime. msvcrt has one
// per module, so the library is linked into this program.

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_meas_data.h>

namespace {

using SDI::GPSMeasDataImplC;

int calls = 0;

void CountCall(const wchar_t* /*expression*/, const wchar_t* /*function*/, const wchar_t* /*file*/,
               unsigned /*line*/, std::uintptr_t /*reserved*/) {
  ++calls;
}

class GPSMeasDataImplText : public testing::Test {
 protected:
  void SetUp() override { calls = 0; }
  ~GPSMeasDataImplText() override { _set_invalid_parameter_handler(before_); }

 private:
  _invalid_parameter_handler before_ = _set_invalid_parameter_handler(CountCall);
};

struct Text {
  const char* name;
  void (GPSMeasDataImplC::*set)(const char16_t*);
  const char16_t* (GPSMeasDataImplC::*get)() const;
  std::size_t units;
};

const Text kTexts[] = {
    {"A", &GPSMeasDataImplC::SetTextA, &GPSMeasDataImplC::GetTextA, GPSMeasDataImplC::kTextUnits},
    {"B", &GPSMeasDataImplC::SetTextB, &GPSMeasDataImplC::GetTextB, GPSMeasDataImplC::kTextUnits},
    {"C", &GPSMeasDataImplC::SetTextC, &GPSMeasDataImplC::GetTextC, GPSMeasDataImplC::kTextUnits},
    {"D", &GPSMeasDataImplC::SetTextD, &GPSMeasDataImplC::GetTextD, GPSMeasDataImplC::kTextDUnits},
};

TEST_F(GPSMeasDataImplText, NullEmptiesTheFieldAndCallsTheHandler) {
  for (const Text& text : kTexts) {
    SCOPED_TRACE(text.name);
    GPSMeasDataImplC measurement;
    (measurement.*text.set)(u"before");
    calls = 0;
    errno = 0;
    (measurement.*text.set)(nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ((measurement.*text.get)()[0], 0);
  }
}

TEST_F(GPSMeasDataImplText, OneUnitTooManyEmptiesTheFieldAndCallsTheHandler) {
  for (const Text& text : kTexts) {
    SCOPED_TRACE(text.name);
    GPSMeasDataImplC measurement;
    (measurement.*text.set)(u"before");
    calls = 0;
    errno = 0;
    (measurement.*text.set)(std::u16string(text.units, u'x').c_str());
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ((measurement.*text.get)()[0], 0);
  }
}

TEST_F(GPSMeasDataImplText, TheLongestTextIsStoredAndNotReported) {
  for (const Text& text : kTexts) {
    SCOPED_TRACE(text.name);
    GPSMeasDataImplC measurement;
    const std::u16string longest(text.units - 1, u'x');
    (measurement.*text.set)(longest.c_str());
    EXPECT_EQ(calls, 0);
    EXPECT_EQ((measurement.*text.get)(), longest);
  }
}

}  // namespace
