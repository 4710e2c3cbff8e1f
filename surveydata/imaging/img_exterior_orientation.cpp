#include <surveydata/imaging/img_exterior_orientation.h>
#include <surveydata/object_model/compare.h>

namespace SDI {

ImgExteriorOrientationImplC::ImgExteriorOrientationImplC() = default;
ImgExteriorOrientationImplC::ImgExteriorOrientationImplC(API::BaseC* owner) : ImplC(owner) {}
ImgExteriorOrientationImplC::ImgExteriorOrientationImplC(const ImgExteriorOrientationImplC& other) =
    default;
ImgExteriorOrientationImplC& ImgExteriorOrientationImplC::operator=(
    const ImgExteriorOrientationImplC& other) = default;
ImgExteriorOrientationImplC::~ImgExteriorOrientationImplC() = default;
API::BaseC* ImgExteriorOrientationImplC::GetBase() { return ImplC::GetBase(); }

double ImgExteriorOrientationImplC::GetValue1() const { return value1_; }
void ImgExteriorOrientationImplC::SetValue1(double value1) { value1_ = value1; }
double ImgExteriorOrientationImplC::GetValue2() const { return value2_; }
void ImgExteriorOrientationImplC::SetValue2(double value2) { value2_ = value2; }
double ImgExteriorOrientationImplC::GetValue3() const { return value3_; }
void ImgExteriorOrientationImplC::SetValue3(double value3) { value3_ = value3; }
double ImgExteriorOrientationImplC::GetValue4() const { return value4_; }
void ImgExteriorOrientationImplC::SetValue4(double value4) { value4_ = value4; }
double ImgExteriorOrientationImplC::GetValue5() const { return value5_; }
void ImgExteriorOrientationImplC::SetValue5(double value5) { value5_ = value5; }
double ImgExteriorOrientationImplC::GetValue6() const { return value6_; }
void ImgExteriorOrientationImplC::SetValue6(double value6) { value6_ = value6; }

bool ImgExteriorOrientationImplC::operator==(const ImgExteriorOrientationImplC& other) const {
  return API::SameFields(
      *this, other, &ImgExteriorOrientationImplC::value1_, &ImgExteriorOrientationImplC::value2_,
      &ImgExteriorOrientationImplC::value3_, &ImgExteriorOrientationImplC::value4_,
      &ImgExteriorOrientationImplC::value5_, &ImgExteriorOrientationImplC::value6_);
}

ImgExteriorOrientationC::ImgExteriorOrientationC() = default;
ImgExteriorOrientationC::ImgExteriorOrientationC(ImgExteriorOrientationImplC* impl)
    : HandleC(impl) {}
ImgExteriorOrientationC::ImgExteriorOrientationC(const ImgExteriorOrientationC& other) = default;
ImgExteriorOrientationC& ImgExteriorOrientationC::operator=(const ImgExteriorOrientationC& other) =
    default;
ImgExteriorOrientationC::~ImgExteriorOrientationC() = default;

double ImgExteriorOrientationC::GetValue1() const { return GetImpl()->GetValue1(); }
void ImgExteriorOrientationC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
double ImgExteriorOrientationC::GetValue2() const { return GetImpl()->GetValue2(); }
void ImgExteriorOrientationC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double ImgExteriorOrientationC::GetValue3() const { return GetImpl()->GetValue3(); }
void ImgExteriorOrientationC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double ImgExteriorOrientationC::GetValue4() const { return GetImpl()->GetValue4(); }
void ImgExteriorOrientationC::SetValue4(double value4) { GetImpl()->SetValue4(value4); }
double ImgExteriorOrientationC::GetValue5() const { return GetImpl()->GetValue5(); }
void ImgExteriorOrientationC::SetValue5(double value5) { GetImpl()->SetValue5(value5); }
double ImgExteriorOrientationC::GetValue6() const { return GetImpl()->GetValue6(); }
void ImgExteriorOrientationC::SetValue6(double value6) { GetImpl()->SetValue6(value6); }

bool ImgExteriorOrientationC::operator==(const ImgExteriorOrientationC& other) const {
  return *GetImpl() == *other.GetImpl();
}

}  // namespace SDI

template SDI::ImgExteriorOrientationImplC* API::CastFromAny(API::ImplObjectC*);
