#include <surveydata/object_model/compare.h>
#include <surveydata/total_station/tps_meas_data.h>

namespace ODM {

TPSMeasDataC::TPSMeasDataC() = default;
TPSMeasDataC::TPSMeasDataC(API::BaseC* owner) : ImplC(owner) {}
TPSMeasDataC::TPSMeasDataC(const TPSMeasDataC& other) = default;
TPSMeasDataC& TPSMeasDataC::operator=(const TPSMeasDataC& other) = default;
TPSMeasDataC::~TPSMeasDataC() = default;
API::BaseC* TPSMeasDataC::GetBase() { return ImplC::GetBase(); }

TPSMeasDataC::TPSMeasDataC(const char16_t* text, double value1, double value2, double value3,
                           double value4, double value5, double value6, float single1,
                           double value7, double value8, double value9, double value10,
                           double value11, float single2, float single3, float single4,
                           float single5, float single6, std::uint32_t word1, std::uint32_t word2,
                           std::uint32_t word3, std::uint32_t word4, std::uint32_t word5,
                           std::uint32_t word6, std::uint32_t word7, std::uint32_t word8,
                           std::uint32_t flags, std::uint32_t word9)
    : text_(text),
      value1_(value1),
      value2_(value2),
      value3_(value3),
      value4_(value4),
      value5_(value5),
      value6_(value6),
      single1_(single1),
      value7_(value7),
      value8_(value8),
      value9_(value9),
      value10_(value10),
      value11_(value11),
      single2_(single2),
      single3_(single3),
      single4_(single4),
      single5_(single5),
      single6_(single6),
      word1_(word1),
      word2_(word2),
      word3_(word3),
      word4_(word4),
      word5_(word5),
      word6_(word6),
      word7_(word7),
      word8_(word8),
      flags_(flags),
      word9_(word9) {}

const char16_t* TPSMeasDataC::GetText() const { return text_.GetData(); }
void TPSMeasDataC::SetText(const char16_t* text) { text_ = API::FixedStringC<16>(text); }
double TPSMeasDataC::GetValue1() const { return value1_; }
void TPSMeasDataC::SetValue1(double value1) { value1_ = value1; }
double TPSMeasDataC::GetValue2() const { return value2_; }
void TPSMeasDataC::SetValue2(double value2) { value2_ = value2; }
double TPSMeasDataC::GetValue3() const { return value3_; }
void TPSMeasDataC::SetValue3(double value3) { value3_ = value3; }
double TPSMeasDataC::GetValue4() const { return value4_; }
void TPSMeasDataC::SetValue4(double value4) { value4_ = value4; }
double TPSMeasDataC::GetValue5() const { return value5_; }
void TPSMeasDataC::SetValue5(double value5) { value5_ = value5; }
double TPSMeasDataC::GetValue6() const { return value6_; }
void TPSMeasDataC::SetValue6(double value6) { value6_ = value6; }
float TPSMeasDataC::GetSingle1() const { return single1_; }
void TPSMeasDataC::SetSingle1(float single1) { single1_ = single1; }
double TPSMeasDataC::GetValue7() const { return value7_; }
void TPSMeasDataC::SetValue7(double value7) { value7_ = value7; }
double TPSMeasDataC::GetValue8() const { return value8_; }
void TPSMeasDataC::SetValue8(double value8) { value8_ = value8; }
double TPSMeasDataC::GetValue9() const { return value9_; }
void TPSMeasDataC::SetValue9(double value9) { value9_ = value9; }
double TPSMeasDataC::GetValue10() const { return value10_; }
void TPSMeasDataC::SetValue10(double value10) { value10_ = value10; }
double TPSMeasDataC::GetValue11() const { return value11_; }
void TPSMeasDataC::SetValue11(double value11) { value11_ = value11; }
float TPSMeasDataC::GetSingle2() const { return single2_; }
void TPSMeasDataC::SetSingle2(float single2) { single2_ = single2; }
float TPSMeasDataC::GetSingle3() const { return single3_; }
void TPSMeasDataC::SetSingle3(float single3) { single3_ = single3; }
float TPSMeasDataC::GetSingle4() const { return single4_; }
void TPSMeasDataC::SetSingle4(float single4) { single4_ = single4; }
float TPSMeasDataC::GetSingle5() const { return single5_; }
void TPSMeasDataC::SetSingle5(float single5) { single5_ = single5; }
float TPSMeasDataC::GetSingle6() const { return single6_; }
void TPSMeasDataC::SetSingle6(float single6) { single6_ = single6; }
std::uint32_t TPSMeasDataC::GetWord1() const { return word1_; }
void TPSMeasDataC::SetWord1(std::uint32_t word1) { word1_ = word1; }
std::uint32_t TPSMeasDataC::GetWord2() const { return word2_; }
void TPSMeasDataC::SetWord2(std::uint32_t word2) { word2_ = word2; }
std::uint32_t TPSMeasDataC::GetWord3() const { return word3_; }
void TPSMeasDataC::SetWord3(std::uint32_t word3) { word3_ = word3; }
std::uint32_t TPSMeasDataC::GetWord4() const { return word4_; }
void TPSMeasDataC::SetWord4(std::uint32_t word4) { word4_ = word4; }
std::uint32_t TPSMeasDataC::GetWord5() const { return word5_; }
void TPSMeasDataC::SetWord5(std::uint32_t word5) { word5_ = word5; }
std::uint32_t TPSMeasDataC::GetWord6() const { return word6_; }
void TPSMeasDataC::SetWord6(std::uint32_t word6) { word6_ = word6; }
std::uint32_t TPSMeasDataC::GetWord7() const { return word7_; }
void TPSMeasDataC::SetWord7(std::uint32_t word7) { word7_ = word7; }
std::uint32_t TPSMeasDataC::GetWord8() const { return word8_; }
void TPSMeasDataC::SetWord8(std::uint32_t word8) { word8_ = word8; }
std::uint32_t TPSMeasDataC::GetFlags() const { return flags_; }
void TPSMeasDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  flags_ = API::ChangedFlags(flags_, set, clear);
}
std::uint32_t TPSMeasDataC::GetWord9() const { return word9_; }
void TPSMeasDataC::SetWord9(std::uint32_t word9) { word9_ = word9; }

bool TPSMeasDataC::isEqual(const TPSMeasDataC& other) const {
  return API::EqualFields(*this, other, &TPSMeasDataC::word1_, &TPSMeasDataC::word2_,
                          &TPSMeasDataC::word3_, &TPSMeasDataC::word4_, &TPSMeasDataC::word5_,
                          &TPSMeasDataC::word6_, &TPSMeasDataC::word7_, &TPSMeasDataC::word8_,
                          &TPSMeasDataC::flags_, &TPSMeasDataC::word9_, &TPSMeasDataC::text_,
                          &TPSMeasDataC::single1_, &TPSMeasDataC::single2_, &TPSMeasDataC::single3_,
                          &TPSMeasDataC::single4_, &TPSMeasDataC::single5_, &TPSMeasDataC::single6_,
                          &TPSMeasDataC::value1_, &TPSMeasDataC::value2_, &TPSMeasDataC::value3_,
                          &TPSMeasDataC::value4_, &TPSMeasDataC::value5_, &TPSMeasDataC::value6_,
                          &TPSMeasDataC::value7_, &TPSMeasDataC::value8_, &TPSMeasDataC::value9_,
                          &TPSMeasDataC::value10_, &TPSMeasDataC::value11_);
}

}  // namespace ODM

namespace SDI {

TPSMeasDataC::TPSMeasDataC() = default;
TPSMeasDataC::TPSMeasDataC(ODM::TPSMeasDataC* impl) : HandleC(impl) {}
TPSMeasDataC::TPSMeasDataC(const TPSMeasDataC& other) = default;
TPSMeasDataC& TPSMeasDataC::operator=(const TPSMeasDataC& other) = default;
TPSMeasDataC::~TPSMeasDataC() = default;

TPSMeasDataC::TPSMeasDataC(const char16_t* text, double value1, double value2, double value3,
                           double value4, double value5, double value6, float single1,
                           double value7, double value8, double value9, double value10,
                           double value11, float single2, float single3, float single4,
                           float single5, float single6, std::uint32_t word1, std::uint32_t word2,
                           std::uint32_t word3, std::uint32_t word4, std::uint32_t word5,
                           std::uint32_t word6, std::uint32_t word7, std::uint32_t word8,
                           std::uint32_t flags, std::uint32_t word9)
    : HandleC(new ODM::TPSMeasDataC(text, value1, value2, value3, value4, value5, value6, single1,
                                    value7, value8, value9, value10, value11, single2, single3,
                                    single4, single5, single6, word1, word2, word3, word4, word5,
                                    word6, word7, word8, flags, word9)) {}

const char16_t* TPSMeasDataC::GetText() const { return GetImpl()->GetText(); }
void TPSMeasDataC::SetText(const char16_t* text) { GetImpl()->SetText(text); }
double TPSMeasDataC::GetValue1() const { return GetImpl()->GetValue1(); }
void TPSMeasDataC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
double TPSMeasDataC::GetValue2() const { return GetImpl()->GetValue2(); }
void TPSMeasDataC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double TPSMeasDataC::GetValue3() const { return GetImpl()->GetValue3(); }
void TPSMeasDataC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double TPSMeasDataC::GetValue4() const { return GetImpl()->GetValue4(); }
void TPSMeasDataC::SetValue4(double value4) { GetImpl()->SetValue4(value4); }
double TPSMeasDataC::GetValue5() const { return GetImpl()->GetValue5(); }
void TPSMeasDataC::SetValue5(double value5) { GetImpl()->SetValue5(value5); }
double TPSMeasDataC::GetValue6() const { return GetImpl()->GetValue6(); }
void TPSMeasDataC::SetValue6(double value6) { GetImpl()->SetValue6(value6); }
float TPSMeasDataC::GetSingle1() const { return GetImpl()->GetSingle1(); }
void TPSMeasDataC::SetSingle1(float single1) { GetImpl()->SetSingle1(single1); }
double TPSMeasDataC::GetValue7() const { return GetImpl()->GetValue7(); }
void TPSMeasDataC::SetValue7(double value7) { GetImpl()->SetValue7(value7); }
double TPSMeasDataC::GetValue8() const { return GetImpl()->GetValue8(); }
void TPSMeasDataC::SetValue8(double value8) { GetImpl()->SetValue8(value8); }
double TPSMeasDataC::GetValue9() const { return GetImpl()->GetValue9(); }
void TPSMeasDataC::SetValue9(double value9) { GetImpl()->SetValue9(value9); }
double TPSMeasDataC::GetValue10() const { return GetImpl()->GetValue10(); }
void TPSMeasDataC::SetValue10(double value10) { GetImpl()->SetValue10(value10); }
double TPSMeasDataC::GetValue11() const { return GetImpl()->GetValue11(); }
void TPSMeasDataC::SetValue11(double value11) { GetImpl()->SetValue11(value11); }
float TPSMeasDataC::GetSingle2() const { return GetImpl()->GetSingle2(); }
void TPSMeasDataC::SetSingle2(float single2) { GetImpl()->SetSingle2(single2); }
float TPSMeasDataC::GetSingle3() const { return GetImpl()->GetSingle3(); }
void TPSMeasDataC::SetSingle3(float single3) { GetImpl()->SetSingle3(single3); }
float TPSMeasDataC::GetSingle4() const { return GetImpl()->GetSingle4(); }
void TPSMeasDataC::SetSingle4(float single4) { GetImpl()->SetSingle4(single4); }
float TPSMeasDataC::GetSingle5() const { return GetImpl()->GetSingle5(); }
void TPSMeasDataC::SetSingle5(float single5) { GetImpl()->SetSingle5(single5); }
float TPSMeasDataC::GetSingle6() const { return GetImpl()->GetSingle6(); }
void TPSMeasDataC::SetSingle6(float single6) { GetImpl()->SetSingle6(single6); }
std::uint32_t TPSMeasDataC::GetWord1() const { return GetImpl()->GetWord1(); }
void TPSMeasDataC::SetWord1(std::uint32_t word1) { GetImpl()->SetWord1(word1); }
std::uint32_t TPSMeasDataC::GetWord2() const { return GetImpl()->GetWord2(); }
void TPSMeasDataC::SetWord2(std::uint32_t word2) { GetImpl()->SetWord2(word2); }
std::uint32_t TPSMeasDataC::GetWord3() const { return GetImpl()->GetWord3(); }
void TPSMeasDataC::SetWord3(std::uint32_t word3) { GetImpl()->SetWord3(word3); }
std::uint32_t TPSMeasDataC::GetWord4() const { return GetImpl()->GetWord4(); }
void TPSMeasDataC::SetWord4(std::uint32_t word4) { GetImpl()->SetWord4(word4); }
std::uint32_t TPSMeasDataC::GetWord5() const { return GetImpl()->GetWord5(); }
void TPSMeasDataC::SetWord5(std::uint32_t word5) { GetImpl()->SetWord5(word5); }
std::uint32_t TPSMeasDataC::GetWord6() const { return GetImpl()->GetWord6(); }
void TPSMeasDataC::SetWord6(std::uint32_t word6) { GetImpl()->SetWord6(word6); }
std::uint32_t TPSMeasDataC::GetWord7() const { return GetImpl()->GetWord7(); }
void TPSMeasDataC::SetWord7(std::uint32_t word7) { GetImpl()->SetWord7(word7); }
std::uint32_t TPSMeasDataC::GetWord8() const { return GetImpl()->GetWord8(); }
void TPSMeasDataC::SetWord8(std::uint32_t word8) { GetImpl()->SetWord8(word8); }
std::uint32_t TPSMeasDataC::GetFlags() const { return GetImpl()->GetFlags(); }
void TPSMeasDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  GetImpl()->SetFlags(set, clear);
}
std::uint32_t TPSMeasDataC::GetWord9() const { return GetImpl()->GetWord9(); }
void TPSMeasDataC::SetWord9(std::uint32_t word9) { GetImpl()->SetWord9(word9); }

bool TPSMeasDataC::IsEqual(const TPSMeasDataC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::TPSMeasDataC* API::CastFromAny(API::ImplObjectC*);
