#include <surveydata/imaging/img_interior_orientation.h>
#include <surveydata/object_model/compare.h>

namespace SDI {

ImgInteriorOrientationImplC::ImgInteriorOrientationImplC() = default;
ImgInteriorOrientationImplC::ImgInteriorOrientationImplC(API::BaseC* owner) : ImplC(owner) {}
ImgInteriorOrientationImplC::ImgInteriorOrientationImplC(const ImgInteriorOrientationImplC& other) =
    default;
ImgInteriorOrientationImplC& ImgInteriorOrientationImplC::operator=(
    const ImgInteriorOrientationImplC& other) = default;
ImgInteriorOrientationImplC::~ImgInteriorOrientationImplC() = default;
API::BaseC* ImgInteriorOrientationImplC::GetBase() { return ImplC::GetBase(); }

std::uint32_t ImgInteriorOrientationImplC::GetModelCode() const { return modelCode_; }
void ImgInteriorOrientationImplC::SetModelCode(std::uint32_t modelCode) { modelCode_ = modelCode; }
double ImgInteriorOrientationImplC::GetValue1() const { return value1_; }
void ImgInteriorOrientationImplC::SetValue1(double value1) { value1_ = value1; }
double ImgInteriorOrientationImplC::GetValue2() const { return value2_; }
void ImgInteriorOrientationImplC::SetValue2(double value2) { value2_ = value2; }
double ImgInteriorOrientationImplC::GetValue3() const { return value3_; }
void ImgInteriorOrientationImplC::SetValue3(double value3) { value3_ = value3; }
double ImgInteriorOrientationImplC::GetValue4() const { return value4_; }
void ImgInteriorOrientationImplC::SetValue4(double value4) { value4_ = value4; }
double ImgInteriorOrientationImplC::GetValue5() const { return value5_; }
void ImgInteriorOrientationImplC::SetValue5(double value5) { value5_ = value5; }
double ImgInteriorOrientationImplC::GetValue6() const { return value6_; }
void ImgInteriorOrientationImplC::SetValue6(double value6) { value6_ = value6; }

bool ImgInteriorOrientationImplC::operator==(const ImgInteriorOrientationImplC& other) const {
  return API::SameFields(
      *this, other, &ImgInteriorOrientationImplC::modelCode_, &ImgInteriorOrientationImplC::value1_,
      &ImgInteriorOrientationImplC::value2_, &ImgInteriorOrientationImplC::value3_,
      &ImgInteriorOrientationImplC::value4_, &ImgInteriorOrientationImplC::value5_,
      &ImgInteriorOrientationImplC::value6_);
}

ImgInteriorOrientationC::ImgInteriorOrientationC() = default;
ImgInteriorOrientationC::ImgInteriorOrientationC(ImgInteriorOrientationImplC* impl)
    : HandleC(impl) {}
ImgInteriorOrientationC::ImgInteriorOrientationC(const ImgInteriorOrientationC& other) = default;
ImgInteriorOrientationC& ImgInteriorOrientationC::operator=(const ImgInteriorOrientationC& other) =
    default;
ImgInteriorOrientationC::~ImgInteriorOrientationC() = default;

std::uint32_t ImgInteriorOrientationC::GetModelCode() const { return GetImpl()->GetModelCode(); }
void ImgInteriorOrientationC::SetModelCode(std::uint32_t modelCode) {
  GetImpl()->SetModelCode(modelCode);
}
double ImgInteriorOrientationC::GetValue1() const { return GetImpl()->GetValue1(); }
void ImgInteriorOrientationC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
double ImgInteriorOrientationC::GetValue2() const { return GetImpl()->GetValue2(); }
void ImgInteriorOrientationC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double ImgInteriorOrientationC::GetValue3() const { return GetImpl()->GetValue3(); }
void ImgInteriorOrientationC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double ImgInteriorOrientationC::GetValue4() const { return GetImpl()->GetValue4(); }
void ImgInteriorOrientationC::SetValue4(double value4) { GetImpl()->SetValue4(value4); }
double ImgInteriorOrientationC::GetValue5() const { return GetImpl()->GetValue5(); }
void ImgInteriorOrientationC::SetValue5(double value5) { GetImpl()->SetValue5(value5); }
double ImgInteriorOrientationC::GetValue6() const { return GetImpl()->GetValue6(); }
void ImgInteriorOrientationC::SetValue6(double value6) { GetImpl()->SetValue6(value6); }

bool ImgInteriorOrientationC::operator==(const ImgInteriorOrientationC& other) const {
  return *GetImpl() == *other.GetImpl();
}

}  // namespace SDI

template SDI::ImgInteriorOrientationImplC* API::CastFromAny(API::ImplObjectC*);
