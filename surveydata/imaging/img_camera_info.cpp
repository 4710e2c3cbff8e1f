#include <surveydata/imaging/img_camera_info.h>
#include <surveydata/object_model/compare.h>

namespace SDI {

ImgCameraInfoImplC::ImgCameraInfoImplC() = default;
ImgCameraInfoImplC::ImgCameraInfoImplC(API::BaseC* owner) : ImplC(owner) {}
ImgCameraInfoImplC::ImgCameraInfoImplC(const ImgCameraInfoImplC& other) = default;
ImgCameraInfoImplC& ImgCameraInfoImplC::operator=(const ImgCameraInfoImplC& other) = default;
ImgCameraInfoImplC::~ImgCameraInfoImplC() = default;
API::BaseC* ImgCameraInfoImplC::GetBase() { return ImplC::GetBase(); }

std::uint32_t ImgCameraInfoImplC::GetInt1() const { return int1_; }
void ImgCameraInfoImplC::SetInt1(std::uint32_t int1) { int1_ = int1; }
std::uint32_t ImgCameraInfoImplC::GetInt2() const { return int2_; }
void ImgCameraInfoImplC::SetInt2(std::uint32_t int2) { int2_ = int2; }
std::uint32_t ImgCameraInfoImplC::GetInt3() const { return int3_; }
void ImgCameraInfoImplC::SetInt3(std::uint32_t int3) { int3_ = int3; }
double ImgCameraInfoImplC::GetReal1() const { return real1_; }
void ImgCameraInfoImplC::SetReal1(double real1) { real1_ = real1; }
double ImgCameraInfoImplC::GetReal2() const { return real2_; }
void ImgCameraInfoImplC::SetReal2(double real2) { real2_ = real2; }
std::uint16_t ImgCameraInfoImplC::GetShort1() const { return short1_; }
void ImgCameraInfoImplC::SetShort1(std::uint16_t short1) { short1_ = short1; }
std::uint16_t ImgCameraInfoImplC::GetShort2() const { return short2_; }
void ImgCameraInfoImplC::SetShort2(std::uint16_t short2) { short2_ = short2; }
double ImgCameraInfoImplC::GetReal3() const { return real3_; }
void ImgCameraInfoImplC::SetReal3(double real3) { real3_ = real3; }
double ImgCameraInfoImplC::GetReal4() const { return real4_; }
void ImgCameraInfoImplC::SetReal4(double real4) { real4_ = real4; }
std::uint32_t ImgCameraInfoImplC::GetInt4() const { return int4_; }
void ImgCameraInfoImplC::SetInt4(std::uint32_t int4) { int4_ = int4; }
std::uint32_t ImgCameraInfoImplC::GetInt5() const { return int5_; }
void ImgCameraInfoImplC::SetInt5(std::uint32_t int5) { int5_ = int5; }

bool ImgCameraInfoImplC::operator==(const ImgCameraInfoImplC& other) const {
  return API::SameFields(
      *this, other, &ImgCameraInfoImplC::int1_, &ImgCameraInfoImplC::int2_,
      &ImgCameraInfoImplC::int3_, &ImgCameraInfoImplC::real1_, &ImgCameraInfoImplC::real2_,
      &ImgCameraInfoImplC::short1_, &ImgCameraInfoImplC::short2_, &ImgCameraInfoImplC::real3_,
      &ImgCameraInfoImplC::real4_, &ImgCameraInfoImplC::int4_, &ImgCameraInfoImplC::int5_);
}

ImgCameraInfoC::ImgCameraInfoC() = default;
ImgCameraInfoC::ImgCameraInfoC(ImgCameraInfoImplC* impl) : HandleC(impl) {}
ImgCameraInfoC::ImgCameraInfoC(const ImgCameraInfoC& other) = default;
ImgCameraInfoC& ImgCameraInfoC::operator=(const ImgCameraInfoC& other) = default;
ImgCameraInfoC::~ImgCameraInfoC() = default;

std::uint32_t ImgCameraInfoC::GetInt1() const { return GetImpl()->GetInt1(); }
void ImgCameraInfoC::SetInt1(std::uint32_t int1) { GetImpl()->SetInt1(int1); }
std::uint32_t ImgCameraInfoC::GetInt2() const { return GetImpl()->GetInt2(); }
void ImgCameraInfoC::SetInt2(std::uint32_t int2) { GetImpl()->SetInt2(int2); }
std::uint32_t ImgCameraInfoC::GetInt3() const { return GetImpl()->GetInt3(); }
void ImgCameraInfoC::SetInt3(std::uint32_t int3) { GetImpl()->SetInt3(int3); }
double ImgCameraInfoC::GetReal1() const { return GetImpl()->GetReal1(); }
void ImgCameraInfoC::SetReal1(double real1) { GetImpl()->SetReal1(real1); }
double ImgCameraInfoC::GetReal2() const { return GetImpl()->GetReal2(); }
void ImgCameraInfoC::SetReal2(double real2) { GetImpl()->SetReal2(real2); }
double ImgCameraInfoC::GetReal3() const { return GetImpl()->GetReal3(); }
void ImgCameraInfoC::SetReal3(double real3) { GetImpl()->SetReal3(real3); }
double ImgCameraInfoC::GetReal4() const { return GetImpl()->GetReal4(); }
void ImgCameraInfoC::SetReal4(double real4) { GetImpl()->SetReal4(real4); }
std::uint32_t ImgCameraInfoC::GetInt4() const { return GetImpl()->GetInt4(); }
void ImgCameraInfoC::SetInt4(std::uint32_t int4) { GetImpl()->SetInt4(int4); }
std::uint32_t ImgCameraInfoC::GetInt5() const { return GetImpl()->GetInt5(); }
void ImgCameraInfoC::SetInt5(std::uint32_t int5) { GetImpl()->SetInt5(int5); }

bool ImgCameraInfoC::operator==(const ImgCameraInfoC& other) const {
  return *GetImpl() == *other.GetImpl();
}

}  // namespace SDI

template SDI::ImgCameraInfoImplC* API::CastFromAny(API::ImplObjectC*);
