#ifndef SURVEYDATA_SPHERE_GEOMETRY_SPHERE_POINT_H_
#define SURVEYDATA_SPHERE_GEOMETRY_SPHERE_POINT_H_

#include <limits>

#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/vectors.h>

namespace GMAT {

/// A point of the unit sphere in latitude and longitude, with its unit vector after the first call
/// that needs it. A new point is not set.
class SpherePointC {
 public:
  SpherePointC() = default;
  /// The point in direction `p`: latitude pi/2 - V, wrapped into [-pi, pi] if that succeeds;
  /// the longitude is Hz, not wrapped.
  explicit SpherePointC(const AnglePointC& p);

  double GetLatitude() const { return latitude_; }
  double GetLongitude() const { return longitude_; }
  /// Sets both angles, each wrapped into its range, [-pi/2, pi/2] and [0, 2 pi], if that
  /// succeeds.
  void Set(double latitude, double longitude);

  /// (cos lat cos lon, cos lat sin lon, sin lat), computed on the first call.
  const cVec3& GetUnit() const;

  /// The direction: Hz is the longitude, V = pi/2 - latitude wrapped into [0, 2 pi].
  AnglePointC ToAnglePoint() const;

  /// Whether latitudes and longitudes agree to 10 digits, or differ by 2 pi to 10 digits.
  bool operator==(const SpherePointC& other) const;

 private:
  double latitude_ = std::numeric_limits<double>::max();
  double longitude_ = std::numeric_limits<double>::max();
  mutable bool cached_ = false;
  mutable cVec3 unit_;
};

/// The V of a latitude, wrapped into [0, 2 pi].
double LatitudeToV(double latitude);

/// Whether `latitude` is that of a pole, to 10 digits.
inline bool IsPole(double latitude) { return ApproxEqual(std::fabs(latitude), HALF_PI); }

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_SPHERE_POINT_H_
