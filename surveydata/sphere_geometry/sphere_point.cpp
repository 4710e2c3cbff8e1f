#include <surveydata/sphere_geometry/sphere_point.h>

namespace GMAT {

SpherePointC::SpherePointC(const AnglePointC& p) : latitude_(HALF_PI - p.V), longitude_(p.Hz) {
  WrapIntoRange(latitude_, -PI, PI);
}

void SpherePointC::Set(double latitude, double longitude) {
  latitude_ = latitude;
  longitude_ = longitude;
  WrapIntoRange(latitude_, -HALF_PI, HALF_PI);
  WrapIntoRange(longitude_, 0.0, TWO_PI);
  cached_ = false;
}

const cVec3& SpherePointC::GetUnit() const {
  if (!cached_) {
    const double cosLat = std::cos(latitude_);
    unit_ = {cosLat * std::cos(longitude_), cosLat * std::sin(longitude_), std::sin(latitude_)};
    cached_ = true;
  }
  return unit_;
}

AnglePointC SpherePointC::ToAnglePoint() const { return {longitude_, LatitudeToV(latitude_)}; }

bool SpherePointC::operator==(const SpherePointC& other) const {
  const auto agree = [](double a, double b) {
    return ApproxEqual(a, b) || ApproxEqual(std::fabs(a - b), TWO_PI);
  };
  return agree(latitude_, other.latitude_) && agree(longitude_, other.longitude_);
}

double LatitudeToV(double latitude) {
  double v = HALF_PI - latitude;
  WrapIntoRange(v, 0.0, TWO_PI);
  return v;
}

}  // namespace GMAT
