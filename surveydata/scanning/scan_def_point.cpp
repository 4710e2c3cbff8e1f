#include <surveydata/scanning/scan_def_point.h>
#include <surveydata/sphere_geometry/angles.h>

namespace SDI {

ScanDefPointImplC::ScanDefPointImplC() = default;
ScanDefPointImplC::ScanDefPointImplC(API::BaseC* owner) : ImplC(owner) {}
ScanDefPointImplC::ScanDefPointImplC(const ScanDefPointImplC& other) = default;
ScanDefPointImplC& ScanDefPointImplC::operator=(const ScanDefPointImplC& other) = default;
ScanDefPointImplC::~ScanDefPointImplC() = default;
API::BaseC* ScanDefPointImplC::GetBase() { return ImplC::GetBase(); }

ScanDefPointImplC::ScanDefPointImplC(double hz, double v, double distance)
    : hz_(hz), v_(v), distance_(distance) {}

double ScanDefPointImplC::GetHz() const { return hz_; }
void ScanDefPointImplC::SetHz(double hz) { hz_ = hz; }
double ScanDefPointImplC::GetV() const { return v_; }
void ScanDefPointImplC::SetV(double v) { v_ = v; }
double ScanDefPointImplC::GetDistance() const { return distance_; }
void ScanDefPointImplC::SetDistance(double distance) { distance_ = distance; }

void ScanDefPointImplC::ClearDistance() { distance_ = -1.0; }
bool ScanDefPointImplC::HasDistance() const { return distance_ > 0.0; }

bool ScanDefPointImplC::IsValid() const {
  const auto isSet = [](double angle) {
    return !GMAT::ExactlyEqual(std::numeric_limits<double>::max(), angle);
  };
  return isSet(hz_) && isSet(v_);
}

bool ScanDefPointImplC::IsEqual(const ScanDefPointImplC& other) const {
  return GMAT::ExactlyEqual(hz_, other.hz_) && GMAT::ExactlyEqual(v_, other.v_);
}

bool ScanDefPointImplC::operator==(const ScanDefPointImplC& other) const { return IsEqual(other); }
bool ScanDefPointImplC::operator!=(const ScanDefPointImplC& other) const {
  return !(*this == other);
}

ScanDefPointC::ScanDefPointC() = default;
ScanDefPointC::ScanDefPointC(ScanDefPointImplC* impl) : HandleC(impl) {}
ScanDefPointC::ScanDefPointC(const ScanDefPointC& other) = default;
ScanDefPointC& ScanDefPointC::operator=(const ScanDefPointC& other) = default;
ScanDefPointC::~ScanDefPointC() = default;

ScanDefPointC::ScanDefPointC(double hz, double v, double distance)
    : HandleC(new ScanDefPointImplC(hz, v, distance)) {}

double ScanDefPointC::GetHz() const { return GetImpl()->GetHz(); }
void ScanDefPointC::SetHz(double hz) { GetImpl()->SetHz(hz); }
double ScanDefPointC::GetV() const { return GetImpl()->GetV(); }
void ScanDefPointC::SetV(double v) { GetImpl()->SetV(v); }
double ScanDefPointC::GetDistance() const { return GetImpl()->GetDistance(); }
void ScanDefPointC::SetDistance(double distance) { GetImpl()->SetDistance(distance); }

void ScanDefPointC::ClearDistance() { GetImpl()->ClearDistance(); }
bool ScanDefPointC::HasDistance() const { return GetImpl()->HasDistance(); }

bool ScanDefPointC::IsEqual(const ScanDefPointC& other) const {
  return GetImpl()->IsEqual(*other.GetImpl());
}

bool ScanDefPointC::operator==(const ScanDefPointC& other) const { return IsEqual(other); }
bool ScanDefPointC::operator!=(const ScanDefPointC& other) const { return !(*this == other); }

}  // namespace SDI

template SDI::ScanDefPointImplC* API::CastFromAny(API::ImplObjectC*);
