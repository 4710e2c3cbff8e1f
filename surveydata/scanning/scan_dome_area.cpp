#include <surveydata/scanning/scan_dome_area.h>

namespace SDI {

ScanDomeAreaImplC::ScanDomeAreaImplC() : ImplC(kDomeArea) {}
ScanDomeAreaImplC::ScanDomeAreaImplC(API::BaseC* owner) : ImplC(kDomeArea) { SetBase(owner); }
ScanDomeAreaImplC::ScanDomeAreaImplC(const ScanDomeAreaImplC& other) = default;
ScanDomeAreaImplC& ScanDomeAreaImplC::operator=(const ScanDomeAreaImplC& other) = default;
ScanDomeAreaImplC::~ScanDomeAreaImplC() = default;
API::BaseC* ScanDomeAreaImplC::GetBase() { return ImplC::GetBase(); }

bool ScanDomeAreaImplC::IsInDome(double hz, double v) {
  return GMAT::WrapIntoRange(hz, 0.0, GMAT::TWO_PI) && GMAT::WrapIntoRange(v, 0.0, GMAT::TWO_PI) &&
         v <= GMAT::V_LIMIT;
}

bool ScanDomeAreaImplC::IsEqual(const API::ImplObjectC& other) const {
  return dynamic_cast<const ScanDomeAreaImplC*>(&other) != nullptr && ScanAreaImplC::IsEqual(other);
}

bool ScanDomeAreaImplC::AddPoint(const ScanDefPointC& /*point*/) { return false; }
void ScanDomeAreaImplC::RemoveLastPoint() {}
void ScanDomeAreaImplC::Clear() {}
bool ScanDomeAreaImplC::IsAreaValid() const { return true; }

bool ScanDomeAreaImplC::GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high,
                                          bool /*normalize*/) const {
  low.SetHz(0.0);
  low.SetV(0.0);
  high.SetHz(GMAT::TWO_PI - 1e-6);
  high.SetV(GMAT::V_LIMIT);
  return true;
}

void ScanDomeAreaImplC::GetOutline(std::vector<ScanDefPointC>& /*out*/,
                                   double /*defaultDistance*/) const {}

ScanDomeAreaC::ScanDomeAreaC() = default;
ScanDomeAreaC::ScanDomeAreaC(ScanDomeAreaImplC* impl) : HandleC(impl) {}
ScanDomeAreaC::~ScanDomeAreaC() = default;

}  // namespace SDI

template SDI::ScanDomeAreaImplC* API::CastFromAny(API::ImplObjectC*);
