#include <surveydata/scanning/scan_rectangular_area.h>

namespace SDI {

ScanRectangularAreaImplC::ScanRectangularAreaImplC() : ImplC(kRectangularArea) {}
ScanRectangularAreaImplC::ScanRectangularAreaImplC(API::BaseC* owner) : ImplC(kRectangularArea) {
  SetBase(owner);
}
ScanRectangularAreaImplC::ScanRectangularAreaImplC(const ScanRectangularAreaImplC& other) = default;
ScanRectangularAreaImplC& ScanRectangularAreaImplC::operator=(
    const ScanRectangularAreaImplC& other) = default;
ScanRectangularAreaImplC::~ScanRectangularAreaImplC() = default;
API::BaseC* ScanRectangularAreaImplC::GetBase() { return ImplC::GetBase(); }

bool ScanRectangularAreaImplC::IsEqual(const API::ImplObjectC& other) const {
  return dynamic_cast<const ScanRectangularAreaImplC*>(&other) != nullptr &&
         ScanAreaImplC::IsEqual(other);
}

bool ScanRectangularAreaImplC::IsAreaValid() const {
  const std::vector<ScanDefPointC>& points = Points();
  return GetSphereArea().IsValid() && points.size() == 2 && !(points[0] == points[1]) &&
         points[0].GetHz() - points[1].GetHz() != 0.0 && points[0].GetV() - points[1].GetV() != 0.0;
}

void ScanRectangularAreaImplC::GetOutline(std::vector<ScanDefPointC>& out,
                                          double defaultDistance) const {
  if (Points().size() < 2) return;
  ScanDefPointC p0 = Points()[0];
  ScanDefPointC p1 = Points()[1];
  const double d0 = p0.GetDistance();
  const double d1 = p1.GetDistance();
  if (d0 < 0.0 && d1 < 0.0) {
    p0.SetDistance(defaultDistance);
    p1.SetDistance(defaultDistance);
  } else if (d0 >= 0.0 && d1 < 0.0) {
    p1.SetDistance(d0);
  } else if (d0 < 0.0 && d1 >= 0.0) {
    p0.SetDistance(d1);
  }
  out.reserve(out.size() + 4);
  out.push_back(p0);
  out.emplace_back(p1.GetHz(), p0.GetV(), p1.GetDistance());
  out.push_back(p1);
  out.emplace_back(p0.GetHz(), p1.GetV(), p0.GetDistance());
}

void ScanRectangularAreaImplC::SetCorners(const ScanDefPointC& a, const ScanDefPointC& b) {
  const ScanDefPointC corners[] = {a, b};  // either may be a point of this area
  Clear();
  for (const ScanDefPointC& corner : corners) AddPoint(corner);
}

bool ScanRectangularAreaImplC::GetCorners(ScanDefPointC& a, ScanDefPointC& b) const {
  if (!IsValid()) return false;
  a = Points()[0];
  b = Points()[1];
  return true;
}

ScanRectangularAreaC::ScanRectangularAreaC() = default;
ScanRectangularAreaC::ScanRectangularAreaC(ScanRectangularAreaImplC* impl) : HandleC(impl) {}
ScanRectangularAreaC::~ScanRectangularAreaC() = default;

void ScanRectangularAreaC::SetCorners(const ScanDefPointC& a, const ScanDefPointC& b) {
  GetImpl()->SetCorners(a, b);
}

bool ScanRectangularAreaC::GetCorners(ScanDefPointC& a, ScanDefPointC& b) const {
  return GetImpl()->GetCorners(a, b);
}

}  // namespace SDI

template SDI::ScanRectangularAreaImplC* API::CastFromAny(API::ImplObjectC*);
