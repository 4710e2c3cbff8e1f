#include <surveydata/object_model/compare.h>
#include <surveydata/total_station/tps_calibration_data.h>

namespace ODM {

TPSCalibrationDataC::TPSCalibrationDataC() = default;
TPSCalibrationDataC::TPSCalibrationDataC(API::BaseC* owner) : ImplC(owner) {}
TPSCalibrationDataC::TPSCalibrationDataC(const TPSCalibrationDataC& other) = default;
TPSCalibrationDataC& TPSCalibrationDataC::operator=(const TPSCalibrationDataC& other) = default;
TPSCalibrationDataC::~TPSCalibrationDataC() = default;
API::BaseC* TPSCalibrationDataC::GetBase() { return ImplC::GetBase(); }

TPSCalibrationDataC::TPSCalibrationDataC(double value1, double value2, double value3, double value4,
                                         double value5, double value6, double value7, double value8)
    : value1_(value1),
      value2_(value2),
      value3_(value3),
      value4_(value4),
      value5_(value5),
      value6_(value6),
      value7_(value7),
      value8_(value8) {}

double TPSCalibrationDataC::GetValue1() const { return value1_; }
void TPSCalibrationDataC::SetValue1(double value1) { value1_ = value1; }
double TPSCalibrationDataC::GetValue2() const { return value2_; }
void TPSCalibrationDataC::SetValue2(double value2) { value2_ = value2; }
double TPSCalibrationDataC::GetValue3() const { return value3_; }
void TPSCalibrationDataC::SetValue3(double value3) { value3_ = value3; }
double TPSCalibrationDataC::GetValue4() const { return value4_; }
void TPSCalibrationDataC::SetValue4(double value4) { value4_ = value4; }
double TPSCalibrationDataC::GetValue5() const { return value5_; }
void TPSCalibrationDataC::SetValue5(double value5) { value5_ = value5; }
double TPSCalibrationDataC::GetValue6() const { return value6_; }
void TPSCalibrationDataC::SetValue6(double value6) { value6_ = value6; }
double TPSCalibrationDataC::GetValue7() const { return value7_; }
void TPSCalibrationDataC::SetValue7(double value7) { value7_ = value7; }
double TPSCalibrationDataC::GetValue8() const { return value8_; }
void TPSCalibrationDataC::SetValue8(double value8) { value8_ = value8; }

bool TPSCalibrationDataC::isEqual(const TPSCalibrationDataC& other) const {
  return API::EqualFields(
      *this, other, &TPSCalibrationDataC::value1_, &TPSCalibrationDataC::value2_,
      &TPSCalibrationDataC::value3_, &TPSCalibrationDataC::value4_, &TPSCalibrationDataC::value5_,
      &TPSCalibrationDataC::value6_, &TPSCalibrationDataC::value7_, &TPSCalibrationDataC::value8_);
}

}  // namespace ODM

namespace SDI {

TPSCalibrationDataC::TPSCalibrationDataC() = default;
TPSCalibrationDataC::TPSCalibrationDataC(ODM::TPSCalibrationDataC* impl) : HandleC(impl) {}
TPSCalibrationDataC::TPSCalibrationDataC(const TPSCalibrationDataC& other) = default;
TPSCalibrationDataC& TPSCalibrationDataC::operator=(const TPSCalibrationDataC& other) = default;
TPSCalibrationDataC::~TPSCalibrationDataC() = default;

TPSCalibrationDataC::TPSCalibrationDataC(double value1, double value2, double value3, double value4,
                                         double value5, double value6, double value7, double value8)
    : HandleC(new ODM::TPSCalibrationDataC(value1, value2, value3, value4, value5, value6, value7,
                                           value8)) {}

double TPSCalibrationDataC::GetValue1() const { return GetImpl()->GetValue1(); }
void TPSCalibrationDataC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
double TPSCalibrationDataC::GetValue2() const { return GetImpl()->GetValue2(); }
void TPSCalibrationDataC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double TPSCalibrationDataC::GetValue3() const { return GetImpl()->GetValue3(); }
void TPSCalibrationDataC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double TPSCalibrationDataC::GetValue4() const { return GetImpl()->GetValue4(); }
void TPSCalibrationDataC::SetValue4(double value4) { GetImpl()->SetValue4(value4); }
double TPSCalibrationDataC::GetValue5() const { return GetImpl()->GetValue5(); }
void TPSCalibrationDataC::SetValue5(double value5) { GetImpl()->SetValue5(value5); }
double TPSCalibrationDataC::GetValue6() const { return GetImpl()->GetValue6(); }
void TPSCalibrationDataC::SetValue6(double value6) { GetImpl()->SetValue6(value6); }
double TPSCalibrationDataC::GetValue7() const { return GetImpl()->GetValue7(); }
void TPSCalibrationDataC::SetValue7(double value7) { GetImpl()->SetValue7(value7); }
double TPSCalibrationDataC::GetValue8() const { return GetImpl()->GetValue8(); }
void TPSCalibrationDataC::SetValue8(double value8) { GetImpl()->SetValue8(value8); }

bool TPSCalibrationDataC::IsEqual(const TPSCalibrationDataC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::TPSCalibrationDataC* API::CastFromAny(API::ImplObjectC*);
