#include <surveydata/gnss/dilution.h>
#include <surveydata/gnss/gps_dops.h>
#include <surveydata/object_model/compare.h>

namespace ODM {

GPSDOPsC::GPSDOPsC() = default;
GPSDOPsC::GPSDOPsC(API::BaseC* owner) : ImplC(owner) {}
GPSDOPsC::GPSDOPsC(const GPSDOPsC& other) = default;
GPSDOPsC& GPSDOPsC::operator=(const GPSDOPsC& other) = default;
GPSDOPsC::~GPSDOPsC() = default;
API::BaseC* GPSDOPsC::GetBase() { return ImplC::GetBase(); }
GPSDOPsC::GPSDOPsC(std::uint16_t hdop, std::uint16_t vdop, std::uint16_t tdop)
    : hdop_(hdop), vdop_(vdop), tdop_(tdop) {}

double GPSDOPsC::GetHDOP() const { return SDI::Dilution::Combined(hdop_); }
double GPSDOPsC::GetVDOP() const { return SDI::Dilution::Combined(vdop_); }
double GPSDOPsC::GetTDOP() const { return SDI::Dilution::Combined(tdop_); }
double GPSDOPsC::GetPDOP() const { return SDI::Dilution::Combined(hdop_, vdop_); }
double GPSDOPsC::GetGDOP() const { return SDI::Dilution::Combined(hdop_, vdop_, tdop_); }
std::uint16_t GPSDOPsC::GetHDOPTenths() const { return hdop_; }
std::uint16_t GPSDOPsC::GetVDOPTenths() const { return vdop_; }
std::uint16_t GPSDOPsC::GetTDOPTenths() const { return tdop_; }

bool GPSDOPsC::isEqual(const GPSDOPsC& other) const {
  return API::EqualFields(*this, other, &GPSDOPsC::hdop_, &GPSDOPsC::vdop_, &GPSDOPsC::tdop_);
}

}  // namespace ODM

namespace SDI {

GPSDOPsImplC::GPSDOPsImplC() = default;
GPSDOPsImplC::GPSDOPsImplC(API::BaseC* owner) : ImplC(owner) {}
GPSDOPsImplC::GPSDOPsImplC(const GPSDOPsImplC& other) = default;
GPSDOPsImplC& GPSDOPsImplC::operator=(const GPSDOPsImplC& other) = default;
GPSDOPsImplC::~GPSDOPsImplC() = default;
API::BaseC* GPSDOPsImplC::GetBase() { return ImplC::GetBase(); }
GPSDOPsImplC::GPSDOPsImplC(std::uint16_t hdop, std::uint16_t vdop, std::uint16_t tdop)
    : hdop_(hdop), vdop_(vdop), tdop_(tdop) {}

double GPSDOPsImplC::GetHDOP() const { return Dilution::Combined(hdop_); }
double GPSDOPsImplC::GetVDOP() const { return Dilution::Combined(vdop_); }
double GPSDOPsImplC::GetTDOP() const { return Dilution::Combined(tdop_); }
double GPSDOPsImplC::GetPDOP() const { return Dilution::Combined(hdop_, vdop_); }
double GPSDOPsImplC::GetGDOP() const { return Dilution::Combined(hdop_, vdop_, tdop_); }
std::uint16_t GPSDOPsImplC::GetHDOPTenths() const { return hdop_; }
std::uint16_t GPSDOPsImplC::GetVDOPTenths() const { return vdop_; }
std::uint16_t GPSDOPsImplC::GetTDOPTenths() const { return tdop_; }

bool GPSDOPsImplC::isEqual(const GPSDOPsImplC& other) const {
  return API::EqualFields(*this, other, &GPSDOPsImplC::hdop_, &GPSDOPsImplC::vdop_,
                          &GPSDOPsImplC::tdop_);
}

GPSDOPsC::GPSDOPsC() = default;
GPSDOPsC::GPSDOPsC(GPSDOPsImplC* impl) : HandleC(impl) {}
template <std::same_as<ODM::GPSDOPsC> Compact>
GPSDOPsC::GPSDOPsC(Compact* impl) : HandleC(nullptr) {
  SetImpl(impl);
}
template GPSDOPsC::GPSDOPsC(ODM::GPSDOPsC* impl);
GPSDOPsC::GPSDOPsC(const GPSDOPsC& other) = default;
GPSDOPsC& GPSDOPsC::operator=(const GPSDOPsC& other) = default;
GPSDOPsC::~GPSDOPsC() = default;

double GPSDOPsC::GetHDOP() const { return Ask(&GPSDOPsImplC::GetHDOP, 0.0); }
double GPSDOPsC::GetVDOP() const { return Ask(&GPSDOPsImplC::GetVDOP, 0.0); }
double GPSDOPsC::GetTDOP() const { return Ask(&GPSDOPsImplC::GetTDOP, 0.0); }
double GPSDOPsC::GetPDOP() const { return Ask(&GPSDOPsImplC::GetPDOP, 0.0); }
double GPSDOPsC::GetGDOP() const { return Ask(&GPSDOPsImplC::GetGDOP, 0.0); }

bool GPSDOPsC::IsEqual(const GPSDOPsC& other) const { return AreBothEqual(other); }

}  // namespace SDI

template SDI::GPSDOPsImplC* API::CastFromAny(API::ImplObjectC*);
