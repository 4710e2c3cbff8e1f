#include <surveydata/imaging/img_chip_window_info.h>
#include <surveydata/object_model/compare.h>

namespace SDI {

ImgChipWindowInfoImplC::ImgChipWindowInfoImplC() = default;
ImgChipWindowInfoImplC::ImgChipWindowInfoImplC(API::BaseC* owner) : ImplC(owner) {}
ImgChipWindowInfoImplC::ImgChipWindowInfoImplC(const ImgChipWindowInfoImplC& other) = default;
ImgChipWindowInfoImplC& ImgChipWindowInfoImplC::operator=(const ImgChipWindowInfoImplC& other) =
    default;
ImgChipWindowInfoImplC::~ImgChipWindowInfoImplC() = default;
API::BaseC* ImgChipWindowInfoImplC::GetBase() { return ImplC::GetBase(); }

double ImgChipWindowInfoImplC::GetValue1() const { return value1_; }
void ImgChipWindowInfoImplC::SetValue1(double value1) { value1_ = value1; }
double ImgChipWindowInfoImplC::GetValue2() const { return value2_; }
void ImgChipWindowInfoImplC::SetValue2(double value2) { value2_ = value2; }
double ImgChipWindowInfoImplC::GetValue3() const { return value3_; }
void ImgChipWindowInfoImplC::SetValue3(double value3) { value3_ = value3; }
double ImgChipWindowInfoImplC::GetValue4() const { return value4_; }
void ImgChipWindowInfoImplC::SetValue4(double value4) { value4_ = value4; }

bool ImgChipWindowInfoImplC::operator==(const ImgChipWindowInfoImplC& other) const {
  return API::SameFields(*this, other, &ImgChipWindowInfoImplC::value1_,
                         &ImgChipWindowInfoImplC::value2_, &ImgChipWindowInfoImplC::value3_,
                         &ImgChipWindowInfoImplC::value4_);
}

ImgChipWindowInfoC::ImgChipWindowInfoC() = default;
ImgChipWindowInfoC::ImgChipWindowInfoC(ImgChipWindowInfoImplC* impl) : HandleC(impl) {}
ImgChipWindowInfoC::ImgChipWindowInfoC(const ImgChipWindowInfoC& other) = default;
ImgChipWindowInfoC& ImgChipWindowInfoC::operator=(const ImgChipWindowInfoC& other) = default;
ImgChipWindowInfoC::~ImgChipWindowInfoC() = default;

double ImgChipWindowInfoC::GetValue1() const { return GetImpl()->GetValue1(); }
void ImgChipWindowInfoC::SetValue1(double value1) { GetImpl()->SetValue1(value1); }
double ImgChipWindowInfoC::GetValue2() const { return GetImpl()->GetValue2(); }
void ImgChipWindowInfoC::SetValue2(double value2) { GetImpl()->SetValue2(value2); }
double ImgChipWindowInfoC::GetValue3() const { return GetImpl()->GetValue3(); }
void ImgChipWindowInfoC::SetValue3(double value3) { GetImpl()->SetValue3(value3); }
double ImgChipWindowInfoC::GetValue4() const { return GetImpl()->GetValue4(); }
void ImgChipWindowInfoC::SetValue4(double value4) { GetImpl()->SetValue4(value4); }

bool ImgChipWindowInfoC::operator==(const ImgChipWindowInfoC& other) const {
  return *GetImpl() == *other.GetImpl();
}

}  // namespace SDI

template SDI::ImgChipWindowInfoImplC* API::CastFromAny(API::ImplObjectC*);
