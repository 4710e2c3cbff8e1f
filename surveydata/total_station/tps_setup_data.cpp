#include <surveydata/object_model/compare.h>
#include <surveydata/total_station/tps_setup_data.h>

namespace ODM {

TPSSetupDataC::TPSSetupDataC() = default;
TPSSetupDataC::TPSSetupDataC(API::BaseC* owner) : ImplC(owner) {}
TPSSetupDataC::TPSSetupDataC(const TPSSetupDataC& other) = default;
TPSSetupDataC& TPSSetupDataC::operator=(const TPSSetupDataC& other) = default;
TPSSetupDataC::~TPSSetupDataC() = default;
API::BaseC* TPSSetupDataC::GetBase() { return ImplC::GetBase(); }

TPSSetupDataC::TPSSetupDataC(double value1, std::uint32_t flags, std::uint8_t byte1, double value2,
                             double value3, double value4, double value5, float single1,
                             float single2, float single3, std::uint32_t word1, std::uint32_t word2,
                             std::uint32_t word3)
    : value1_(value1),
      flags_(flags),
      byte1_(byte1),
      value2_(value2),
      value3_(value3),
      value4_(value4),
      value5_(value5),
      single1_(single1),
      single2_(single2),
      single3_(single3),
      word1_(word1),
      word2_(word2),
      word3_(word3) {}

double TPSSetupDataC::GetValue1() const { return value1_; }
void TPSSetupDataC::SetValue1(double value1) { value1_ = value1; }
std::uint32_t TPSSetupDataC::GetFlags() const { return flags_; }
void TPSSetupDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  flags_ = API::ChangedFlags(flags_, set, clear);
}
std::uint8_t TPSSetupDataC::GetByte1() const { return byte1_; }
void TPSSetupDataC::SetByte1(std::uint8_t byte1) { byte1_ = byte1; }
double TPSSetupDataC::GetValue2() const { return value2_; }
void TPSSetupDataC::SetValue2(double value2) { value2_ = value2; }
double TPSSetupDataC::GetValue3() const { return value3_; }
void TPSSetupDataC::SetValue3(double value3) { value3_ = value3; }
double TPSSetupDataC::GetValue4() const { return value4_; }
void TPSSetupDataC::SetValue4(double value4) { value4_ = value4; }
double TPSSetupDataC::GetValue5() const { return value5_; }
void TPSSetupDataC::SetValue5(double value5) { value5_ = value5; }
float TPSSetupDataC::GetSingle1() const { return single1_; }
void TPSSetupDataC::SetSingle1(float single1) { single1_ = single1; }
float TPSSetupDataC::GetSingle2() const { return single2_; }
void TPSSetupDataC::SetSingle2(float single2) { single2_ = single2; }
float TPSSetupDataC::GetSingle3() const { return single3_; }
void TPSSetupDataC::SetSingle3(float single3) { single3_ = single3; }
std::uint32_t TPSSetupDataC::GetWord1() const { return word1_; }
void TPSSetupDataC::SetWord1(std::uint32_t word1) { word1_ = word1; }
std::uint32_t TPSSetupDataC::GetWord2() const { return word2_; }
void TPSSetupDataC::SetWord2(std::uint32_t word2) { word2_ = word2; }
std::uint32_t TPSSetupDataC::GetWord3() const { return word3_; }
void TPSSetupDataC::SetWord3(std::uint32_t word3) { word3_ = word3; }

bool TPSSetupDataC::isEqual(const TPSSetupDataC& other) const {
  return API::EqualFields(*this, other, &TPSSetupDataC::flags_, &TPSSetupDataC::byte1_,
                          &TPSSetupDataC::word1_, &TPSSetupDataC::word2_, &TPSSetupDataC::word3_,
                          &TPSSetupDataC::single1_, &TPSSetupDataC::single2_,
                          &TPSSetupDataC::single3_, &TPSSetupDataC::value1_,
                          &TPSSetupDataC::value2_, &TPSSetupDataC::value3_, &TPSSetupDataC::value4_,
                          &TPSSetupDataC::value5_);
}

}  // namespace ODM

namespace SDI {

TPSSetupDataC::TPSSetupDataC() = default;
TPSSetupDataC::TPSSetupDataC(ODM::TPSSetupDataC* impl) : HandleC(impl) {}
TPSSetupDataC::TPSSetupDataC(const TPSSetupDataC& other) = default;
TPSSetupDataC& TPSSetupDataC::operator=(const TPSSetupDataC& other) = default;
TPSSetupDataC::~TPSSetupDataC() = default;

TPSSetupDataC::TPSSetupDataC(double value1, std::uint32_t flags, std::uint8_t byte1, double value2,
                             double value3, double value4, double value5, float single1,
                             float single2, float single3, std::uint32_t word1, std::uint32_t word2,
                             std::uint32_t word3)
    : HandleC(new ODM::TPSSetupDataC(value1, flags, byte1, value2, value3, value4, value5, single1,
                                     single2, single3, word1, word2, word3)) {}

double TPSSetupDataC::GetValue1() const { return GetImpl()->GetValue1(); }
void TPSSetupDataC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
std::uint32_t TPSSetupDataC::GetFlags() const { return GetImpl()->GetFlags(); }
void TPSSetupDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  GetImpl()->SetFlags(set, clear);
}
std::uint8_t TPSSetupDataC::GetByte1() const { return GetImpl()->GetByte1(); }
void TPSSetupDataC::SetByte1(std::uint8_t byte1) { GetImpl()->SetByte1(byte1); }
double TPSSetupDataC::GetValue2() const { return GetImpl()->GetValue2(); }
void TPSSetupDataC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double TPSSetupDataC::GetValue3() const { return GetImpl()->GetValue3(); }
void TPSSetupDataC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double TPSSetupDataC::GetValue4() const { return GetImpl()->GetValue4(); }
void TPSSetupDataC::SetValue4(double value4) { GetImpl()->SetValue4(value4); }
double TPSSetupDataC::GetValue5() const { return GetImpl()->GetValue5(); }
void TPSSetupDataC::SetValue5(double value5) { GetImpl()->SetValue5(value5); }
float TPSSetupDataC::GetSingle1() const { return GetImpl()->GetSingle1(); }
void TPSSetupDataC::SetSingle1(float single1) { GetImpl()->SetSingle1(single1); }
float TPSSetupDataC::GetSingle2() const { return GetImpl()->GetSingle2(); }
void TPSSetupDataC::SetSingle2(float single2) { GetImpl()->SetSingle2(single2); }
float TPSSetupDataC::GetSingle3() const { return GetImpl()->GetSingle3(); }
void TPSSetupDataC::SetSingle3(float single3) { GetImpl()->SetSingle3(single3); }
std::uint32_t TPSSetupDataC::GetWord1() const { return GetImpl()->GetWord1(); }
void TPSSetupDataC::SetWord1(std::uint32_t word1) { GetImpl()->SetWord1(word1); }
std::uint32_t TPSSetupDataC::GetWord2() const { return GetImpl()->GetWord2(); }
void TPSSetupDataC::SetWord2(std::uint32_t word2) { GetImpl()->SetWord2(word2); }
std::uint32_t TPSSetupDataC::GetWord3() const { return GetImpl()->GetWord3(); }
void TPSSetupDataC::SetWord3(std::uint32_t word3) { GetImpl()->SetWord3(word3); }

bool TPSSetupDataC::IsEqual(const TPSSetupDataC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::TPSSetupDataC* API::CastFromAny(API::ImplObjectC*);
