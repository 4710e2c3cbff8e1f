#include <surveydata/geodetic/instrument_info_data.h>
#include <surveydata/object_model/compare.h>

namespace ODM {

InstrumentInfoDataC::InstrumentInfoDataC() = default;
InstrumentInfoDataC::InstrumentInfoDataC(API::BaseC* owner) : ImplC(owner) {}
InstrumentInfoDataC::InstrumentInfoDataC(const InstrumentInfoDataC& other) = default;
InstrumentInfoDataC& InstrumentInfoDataC::operator=(const InstrumentInfoDataC& other) = default;
InstrumentInfoDataC::~InstrumentInfoDataC() = default;
API::BaseC* InstrumentInfoDataC::GetBase() { return ImplC::GetBase(); }

InstrumentInfoDataC::InstrumentInfoDataC(const char16_t* identifier, std::uint32_t flags,
                                         const char* text1, const char* text2, const char* text3,
                                         const char* text4, float value, std::int32_t number1,
                                         std::int32_t number2, std::int32_t number3,
                                         std::int32_t number4)
    : identifier_(identifier),
      flags_(flags),
      text1_(text1),
      text2_(text2),
      text3_(text3),
      text4_(text4),
      value_(value),
      number1_(number1),
      number2_(number2),
      number3_(number3),
      number4_(number4) {}

InstrumentInfoDataC::InstrumentInfoDataC(const wchar_t* identifier, std::uint32_t flags,
                                         const char* text1, const char* text2, const char* text3,
                                         const char* text4, float value, std::int32_t number1,
                                         std::int32_t number2, std::int32_t number3,
                                         std::int32_t number4)
    : InstrumentInfoDataC(API::FixedStringC<16>(identifier).GetData(), flags, text1, text2, text3,
                          text4, value, number1, number2, number3, number4) {}

InstrumentInfoDataC::InstrumentInfoDataC(std::nullptr_t /*identifier*/, std::uint32_t flags,
                                         const char* text1, const char* text2, const char* text3,
                                         const char* text4, float value, std::int32_t number1,
                                         std::int32_t number2, std::int32_t number3,
                                         std::int32_t number4)
    : InstrumentInfoDataC(u"", flags, text1, text2, text3, text4, value, number1, number2, number3,
                          number4) {}

const API::FixedStringC<16>& InstrumentInfoDataC::getIdentifier() const { return identifier_; }
void InstrumentInfoDataC::setIdentifier(const char16_t* identifier) {
  identifier_ = API::FixedStringC<16>(identifier);
}
void InstrumentInfoDataC::setIdentifier(const wchar_t* identifier) {
  identifier_ = API::FixedStringC<16>(identifier);
}
void InstrumentInfoDataC::setIdentifier(std::nullptr_t /*identifier*/) { identifier_ = {}; }
std::uint32_t InstrumentInfoDataC::getFlags() const { return flags_; }
void InstrumentInfoDataC::setFlags(std::uint32_t set, std::uint32_t clear) {
  flags_ = API::ChangedFlags(flags_, set, clear);
}
const char* InstrumentInfoDataC::getText1() const { return text1_.c_str(); }
void InstrumentInfoDataC::setText1(const char* text1) { text1_ = text1 != nullptr ? text1 : ""; }
const char* InstrumentInfoDataC::getText2() const { return text2_.c_str(); }
void InstrumentInfoDataC::setText2(const char* text2) { text2_ = text2 != nullptr ? text2 : ""; }
const char* InstrumentInfoDataC::getText3() const { return text3_.c_str(); }
void InstrumentInfoDataC::setText3(const char* text3) { text3_ = text3 != nullptr ? text3 : ""; }
const char* InstrumentInfoDataC::getText4() const { return text4_.c_str(); }
void InstrumentInfoDataC::setText4(const char* text4) { text4_ = text4 != nullptr ? text4 : ""; }
float InstrumentInfoDataC::getValue() const { return value_; }
void InstrumentInfoDataC::setValue(float value) { value_ = value; }
std::int32_t InstrumentInfoDataC::getNumber1() const { return number1_; }
void InstrumentInfoDataC::setNumber1(std::int32_t number1) { number1_ = number1; }
std::int32_t InstrumentInfoDataC::getNumber2() const { return number2_; }
void InstrumentInfoDataC::setNumber2(std::int32_t number2) { number2_ = number2; }
std::int32_t InstrumentInfoDataC::getNumber3() const { return number3_; }
void InstrumentInfoDataC::setNumber3(std::int32_t number3) { number3_ = number3; }
std::int32_t InstrumentInfoDataC::getNumber4() const { return number4_; }
void InstrumentInfoDataC::setNumber4(std::int32_t number4) { number4_ = number4; }

bool InstrumentInfoDataC::isEqual(const InstrumentInfoDataC& other) const {
  return API::EqualFields(*this, other, &InstrumentInfoDataC::flags_,
                          &InstrumentInfoDataC::number1_, &InstrumentInfoDataC::number2_,
                          &InstrumentInfoDataC::number3_, &InstrumentInfoDataC::number4_,
                          &InstrumentInfoDataC::identifier_, &InstrumentInfoDataC::text1_,
                          &InstrumentInfoDataC::text2_, &InstrumentInfoDataC::text3_,
                          &InstrumentInfoDataC::text4_, &InstrumentInfoDataC::value_);
}

}  // namespace ODM

namespace SDI {

InstrumentInfoDataC::InstrumentInfoDataC() = default;
InstrumentInfoDataC::InstrumentInfoDataC(ODM::InstrumentInfoDataC* impl) : HandleC(impl) {}
InstrumentInfoDataC::InstrumentInfoDataC(const InstrumentInfoDataC& other) = default;
InstrumentInfoDataC& InstrumentInfoDataC::operator=(const InstrumentInfoDataC& other) = default;
InstrumentInfoDataC::~InstrumentInfoDataC() = default;

InstrumentInfoDataC::InstrumentInfoDataC(const char16_t* identifier, std::uint32_t flags,
                                         const char* text1, const char* text2, const char* text3,
                                         const char* text4, float value, std::int32_t number1,
                                         std::int32_t number2, std::int32_t number3,
                                         std::int32_t number4)
    : HandleC(new ODM::InstrumentInfoDataC(identifier, flags, text1, text2, text3, text4, value,
                                           number1, number2, number3, number4)) {}

InstrumentInfoDataC::InstrumentInfoDataC(const wchar_t* identifier, std::uint32_t flags,
                                         const char* text1, const char* text2, const char* text3,
                                         const char* text4, float value, std::int32_t number1,
                                         std::int32_t number2, std::int32_t number3,
                                         std::int32_t number4)
    : HandleC(new ODM::InstrumentInfoDataC(identifier, flags, text1, text2, text3, text4, value,
                                           number1, number2, number3, number4)) {}

InstrumentInfoDataC::InstrumentInfoDataC(std::nullptr_t /*identifier*/, std::uint32_t flags,
                                         const char* text1, const char* text2, const char* text3,
                                         const char* text4, float value, std::int32_t number1,
                                         std::int32_t number2, std::int32_t number3,
                                         std::int32_t number4)
    : InstrumentInfoDataC(u"", flags, text1, text2, text3, text4, value, number1, number2, number3,
                          number4) {}

const API::FixedStringC<16>& InstrumentInfoDataC::GetIdentifier() const {
  return GetImpl()->getIdentifier();
}
void InstrumentInfoDataC::SetIdentifier(const char16_t* identifier) {
  GetImpl()->setIdentifier(identifier);
}
void InstrumentInfoDataC::SetIdentifier(const wchar_t* identifier) {
  GetImpl()->setIdentifier(identifier);
}
void InstrumentInfoDataC::SetIdentifier(std::nullptr_t identifier) {
  GetImpl()->setIdentifier(identifier);
}
std::uint32_t InstrumentInfoDataC::GetFlags() const { return GetImpl()->getFlags(); }
void InstrumentInfoDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  GetImpl()->setFlags(set, clear);
}
const char* InstrumentInfoDataC::GetText1() const { return GetImpl()->getText1(); }
void InstrumentInfoDataC::SetText1(const char* text1) { GetImpl()->setText1(text1); }
const char* InstrumentInfoDataC::GetText2() const { return GetImpl()->getText2(); }
void InstrumentInfoDataC::SetText2(const char* text2) { GetImpl()->setText2(text2); }
const char* InstrumentInfoDataC::GetText3() const { return GetImpl()->getText3(); }
void InstrumentInfoDataC::SetText3(const char* text3) { GetImpl()->setText3(text3); }
const char* InstrumentInfoDataC::GetText4() const { return GetImpl()->getText4(); }
void InstrumentInfoDataC::SetText4(const char* text4) { GetImpl()->setText4(text4); }
float InstrumentInfoDataC::GetValue() const { return GetImpl()->getValue(); }
void InstrumentInfoDataC::SetValue(float value) { GetImpl()->setValue(value); }
std::int32_t InstrumentInfoDataC::GetNumber1() const { return GetImpl()->getNumber1(); }
void InstrumentInfoDataC::SetNumber1(std::int32_t number1) { GetImpl()->setNumber1(number1); }
std::int32_t InstrumentInfoDataC::GetNumber2() const { return GetImpl()->getNumber2(); }
void InstrumentInfoDataC::SetNumber2(std::int32_t number2) { GetImpl()->setNumber2(number2); }
std::int32_t InstrumentInfoDataC::GetNumber3() const { return GetImpl()->getNumber3(); }
void InstrumentInfoDataC::SetNumber3(std::int32_t number3) { GetImpl()->setNumber3(number3); }
std::int32_t InstrumentInfoDataC::GetNumber4() const { return GetImpl()->getNumber4(); }
void InstrumentInfoDataC::SetNumber4(std::int32_t number4) { GetImpl()->setNumber4(number4); }

bool InstrumentInfoDataC::IsEqual(const InstrumentInfoDataC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::InstrumentInfoDataC* API::CastFromAny(API::ImplObjectC*);
