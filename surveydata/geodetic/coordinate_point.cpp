#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/object_model/compare.h>

namespace ODM {

CoordinatePointC::CoordinatePointC() = default;
CoordinatePointC::CoordinatePointC(API::BaseC* owner) : ImplC(owner) {}
CoordinatePointC::CoordinatePointC(const CoordinatePointC& other) = default;
CoordinatePointC& CoordinatePointC::operator=(const CoordinatePointC& other) = default;
CoordinatePointC::~CoordinatePointC() = default;
API::BaseC* CoordinatePointC::GetBase() { return ImplC::GetBase(); }

CoordinatePointC::CoordinatePointC(double x, double y, double z) : x_(x), y_(y), z_(z) {}

double CoordinatePointC::GetX() const { return x_; }
void CoordinatePointC::SetX(double x) { x_ = x; }
double CoordinatePointC::GetY() const { return y_; }
void CoordinatePointC::SetY(double y) { y_ = y; }
double CoordinatePointC::GetZ() const { return z_; }
void CoordinatePointC::SetZ(double z) { z_ = z; }

bool CoordinatePointC::isEqual(const CoordinatePointC& other) const {
  return API::EqualFields(*this, other, &CoordinatePointC::x_, &CoordinatePointC::y_,
                          &CoordinatePointC::z_);
}

}  // namespace ODM

namespace SDI {

CoordinatePointC::CoordinatePointC() = default;
CoordinatePointC::CoordinatePointC(ODM::CoordinatePointC* impl) : HandleC(impl) {}
CoordinatePointC::CoordinatePointC(const CoordinatePointC& other) = default;
CoordinatePointC& CoordinatePointC::operator=(const CoordinatePointC& other) = default;
CoordinatePointC::~CoordinatePointC() = default;

CoordinatePointC::CoordinatePointC(double x, double y, double z)
    : HandleC(new ODM::CoordinatePointC(x, y, z)) {}

double CoordinatePointC::GetX() const { return GetImpl()->GetX(); }
void CoordinatePointC::SetX(double x) { GetImpl()->SetX(x); }
double CoordinatePointC::GetY() const { return GetImpl()->GetY(); }
void CoordinatePointC::SetY(double y) { GetImpl()->SetY(y); }
double CoordinatePointC::GetZ() const { return GetImpl()->GetZ(); }
void CoordinatePointC::SetZ(double z) { GetImpl()->SetZ(z); }

bool CoordinatePointC::IsEqual(const CoordinatePointC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::CoordinatePointC* API::CastFromAny(API::ImplObjectC*);
