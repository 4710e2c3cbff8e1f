#include <surveydata/object_model/compare.h>
#include <surveydata/total_station/tps_correction_data.h>

namespace ODM {

TPSCorrectionDataC::TPSCorrectionDataC() = default;
TPSCorrectionDataC::TPSCorrectionDataC(API::BaseC* owner) : ImplC(owner) {}
TPSCorrectionDataC::TPSCorrectionDataC(const TPSCorrectionDataC& other) = default;
TPSCorrectionDataC& TPSCorrectionDataC::operator=(const TPSCorrectionDataC& other) = default;
TPSCorrectionDataC::~TPSCorrectionDataC() = default;
API::BaseC* TPSCorrectionDataC::GetBase() { return ImplC::GetBase(); }

TPSCorrectionDataC::TPSCorrectionDataC(double value1, double value2, double value3,
                                       double scaleFactor, double value5, double value6,
                                       double value7, double value8, float single1, float single2,
                                       float single3, float single4, std::uint32_t flags)
    : value1_(value1),
      value2_(value2),
      value3_(value3),
      scaleFactor_(scaleFactor),
      value5_(value5),
      value6_(value6),
      value7_(value7),
      value8_(value8),
      single1_(single1),
      single2_(single2),
      single3_(single3),
      single4_(single4),
      flags_(flags) {}

double TPSCorrectionDataC::GetValue1() const { return value1_; }
void TPSCorrectionDataC::SetValue1(double value1) { value1_ = value1; }
double TPSCorrectionDataC::GetValue2() const { return value2_; }
void TPSCorrectionDataC::SetValue2(double value2) { value2_ = value2; }
double TPSCorrectionDataC::GetValue3() const { return value3_; }
void TPSCorrectionDataC::SetValue3(double value3) { value3_ = value3; }
double TPSCorrectionDataC::GetScaleFactor() const { return scaleFactor_; }
void TPSCorrectionDataC::SetScaleFactor(double scaleFactor) { scaleFactor_ = scaleFactor; }
double TPSCorrectionDataC::GetValue5() const { return value5_; }
void TPSCorrectionDataC::SetValue5(double value5) { value5_ = value5; }
double TPSCorrectionDataC::GetValue6() const { return value6_; }
void TPSCorrectionDataC::SetValue6(double value6) { value6_ = value6; }
double TPSCorrectionDataC::GetValue7() const { return value7_; }
void TPSCorrectionDataC::SetValue7(double value7) { value7_ = value7; }
double TPSCorrectionDataC::GetValue8() const { return value8_; }
void TPSCorrectionDataC::SetValue8(double value8) { value8_ = value8; }
float TPSCorrectionDataC::GetSingle1() const { return single1_; }
void TPSCorrectionDataC::SetSingle1(float single1) { single1_ = single1; }
float TPSCorrectionDataC::GetSingle2() const { return single2_; }
void TPSCorrectionDataC::SetSingle2(float single2) { single2_ = single2; }
float TPSCorrectionDataC::GetSingle3() const { return single3_; }
void TPSCorrectionDataC::SetSingle3(float single3) { single3_ = single3; }
float TPSCorrectionDataC::GetSingle4() const { return single4_; }
void TPSCorrectionDataC::SetSingle4(float single4) { single4_ = single4; }
std::uint32_t TPSCorrectionDataC::GetFlags() const { return flags_; }
void TPSCorrectionDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  flags_ = API::ChangedFlags(flags_, set, clear);
}

double TPSCorrectionDataC::ScaleFromPpm(double ppm) { return ppm * 1e-6 + 1.0; }
double TPSCorrectionDataC::PpmFromScale(double scale) { return (scale - 1.0) * 1e6; }

bool TPSCorrectionDataC::isEqual(const TPSCorrectionDataC& other) const {
  return API::EqualFields(
      *this, other, &TPSCorrectionDataC::flags_, &TPSCorrectionDataC::single1_,
      &TPSCorrectionDataC::single2_, &TPSCorrectionDataC::single3_, &TPSCorrectionDataC::single4_,
      &TPSCorrectionDataC::value1_, &TPSCorrectionDataC::value2_, &TPSCorrectionDataC::value3_,
      &TPSCorrectionDataC::scaleFactor_, &TPSCorrectionDataC::value5_, &TPSCorrectionDataC::value6_,
      &TPSCorrectionDataC::value7_, &TPSCorrectionDataC::value8_);
}

}  // namespace ODM

namespace SDI {

TPSCorrectionDataC::TPSCorrectionDataC() = default;
TPSCorrectionDataC::TPSCorrectionDataC(ODM::TPSCorrectionDataC* impl) : HandleC(impl) {}
TPSCorrectionDataC::TPSCorrectionDataC(const TPSCorrectionDataC& other) = default;
TPSCorrectionDataC& TPSCorrectionDataC::operator=(const TPSCorrectionDataC& other) = default;
TPSCorrectionDataC::~TPSCorrectionDataC() = default;

TPSCorrectionDataC::TPSCorrectionDataC(double value1, double value2, double value3,
                                       double scaleFactor, double value5, double value6,
                                       double value7, double value8, float single1, float single2,
                                       float single3, float single4, std::uint32_t flags)
    : HandleC(new ODM::TPSCorrectionDataC(value1, value2, value3, scaleFactor, value5, value6,
                                          value7, value8, single1, single2, single3, single4,
                                          flags)) {}

double TPSCorrectionDataC::GetValue1() const { return GetImpl()->GetValue1(); }
void TPSCorrectionDataC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
double TPSCorrectionDataC::GetValue2() const { return GetImpl()->GetValue2(); }
void TPSCorrectionDataC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double TPSCorrectionDataC::GetValue3() const { return GetImpl()->GetValue3(); }
void TPSCorrectionDataC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double TPSCorrectionDataC::GetScaleFactor() const { return GetImpl()->GetScaleFactor(); }
void TPSCorrectionDataC::SetScaleFactor(double scaleFactor) {
  GetImpl()->SetScaleFactor(scaleFactor);
}
double TPSCorrectionDataC::GetValue5() const { return GetImpl()->GetValue5(); }
void TPSCorrectionDataC::SetValue5(double value5) { GetImpl()->SetValue5(value5); }
double TPSCorrectionDataC::GetValue6() const { return GetImpl()->GetValue6(); }
void TPSCorrectionDataC::SetValue6(double value6) { GetImpl()->SetValue6(value6); }
double TPSCorrectionDataC::GetValue7() const { return GetImpl()->GetValue7(); }
void TPSCorrectionDataC::SetValue7(double value7) { GetImpl()->SetValue7(value7); }
double TPSCorrectionDataC::GetValue8() const { return GetImpl()->GetValue8(); }
void TPSCorrectionDataC::SetValue8(double value8) { GetImpl()->SetValue8(value8); }
float TPSCorrectionDataC::GetSingle1() const { return GetImpl()->GetSingle1(); }
void TPSCorrectionDataC::SetSingle1(float single1) { GetImpl()->SetSingle1(single1); }
float TPSCorrectionDataC::GetSingle2() const { return GetImpl()->GetSingle2(); }
void TPSCorrectionDataC::SetSingle2(float single2) { GetImpl()->SetSingle2(single2); }
float TPSCorrectionDataC::GetSingle3() const { return GetImpl()->GetSingle3(); }
void TPSCorrectionDataC::SetSingle3(float single3) { GetImpl()->SetSingle3(single3); }
float TPSCorrectionDataC::GetSingle4() const { return GetImpl()->GetSingle4(); }
void TPSCorrectionDataC::SetSingle4(float single4) { GetImpl()->SetSingle4(single4); }
std::uint32_t TPSCorrectionDataC::GetFlags() const { return GetImpl()->GetFlags(); }
void TPSCorrectionDataC::SetFlags(std::uint32_t set, std::uint32_t clear) {
  GetImpl()->SetFlags(set, clear);
}

double TPSCorrectionDataC::ScaleFromPpm(double ppm) {
  return ODM::TPSCorrectionDataC::ScaleFromPpm(ppm);
}
double TPSCorrectionDataC::PpmFromScale(double scale) {
  return ODM::TPSCorrectionDataC::PpmFromScale(scale);
}

bool TPSCorrectionDataC::IsEqual(const TPSCorrectionDataC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::TPSCorrectionDataC* API::CastFromAny(API::ImplObjectC*);
