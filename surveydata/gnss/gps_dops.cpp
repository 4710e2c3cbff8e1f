#include <algorithm>
#include <cmath>

#include <surveydata/gnss/gps_dops.h>
#include <surveydata/object_model/compare.h>

namespace SDI {

template <class Self>
GPSDOPsFieldsC<Self>::GPSDOPsFieldsC(std::uint16_t hdop, std::uint16_t vdop, std::uint16_t tdop)
    : hdop_(hdop), vdop_(vdop), tdop_(tdop) {}

template <class Self>
template <class... Dops>
double GPSDOPsFieldsC<Self>::Combined(Dops... dops) {
  if (std::max({dops...}) == DOP_NOT_AVAILABLE) return -1.0;
  const auto squared = [](double tenths) { return tenths * tenths; };
  return std::sqrt((squared(dops) + ...)) / 10.0;
}

template <class Self>
double GPSDOPsFieldsC<Self>::GetHDOP() const {
  return Combined(hdop_);
}

template <class Self>
double GPSDOPsFieldsC<Self>::GetVDOP() const {
  return Combined(vdop_);
}

template <class Self>
double GPSDOPsFieldsC<Self>::GetTDOP() const {
  return Combined(tdop_);
}

template <class Self>
double GPSDOPsFieldsC<Self>::GetPDOP() const {
  return Combined(hdop_, vdop_);
}

template <class Self>
double GPSDOPsFieldsC<Self>::GetGDOP() const {
  return Combined(hdop_, vdop_, tdop_);
}

template <class Self>
std::uint16_t GPSDOPsFieldsC<Self>::GetHDOPTenths() const {
  return hdop_;
}

template <class Self>
std::uint16_t GPSDOPsFieldsC<Self>::GetVDOPTenths() const {
  return vdop_;
}

template <class Self>
std::uint16_t GPSDOPsFieldsC<Self>::GetTDOPTenths() const {
  return tdop_;
}

template <class Self>
bool GPSDOPsFieldsC<Self>::isEqual(const Self& other) const {
  return API::EqualFields<GPSDOPsFieldsC>(*this, other, &GPSDOPsFieldsC::hdop_,
                                          &GPSDOPsFieldsC::vdop_, &GPSDOPsFieldsC::tdop_);
}

template class GPSDOPsFieldsC<GPSDOPsImplC>;
template class GPSDOPsFieldsC<ODM::GPSDOPsC>;

double GPSDOPsC::GetHDOP() const { return Ask(&GPSDOPsImplC::GetHDOP, 0.0); }
double GPSDOPsC::GetVDOP() const { return Ask(&GPSDOPsImplC::GetVDOP, 0.0); }
double GPSDOPsC::GetTDOP() const { return Ask(&GPSDOPsImplC::GetTDOP, 0.0); }
double GPSDOPsC::GetPDOP() const { return Ask(&GPSDOPsImplC::GetPDOP, 0.0); }
double GPSDOPsC::GetGDOP() const { return Ask(&GPSDOPsImplC::GetGDOP, 0.0); }

bool GPSDOPsC::IsEqual(const GPSDOPsC& other) const { return AreBothEqual(other); }

}  // namespace SDI
