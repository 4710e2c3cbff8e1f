#include <surveydata/sphere_geometry/great_circle_arc.h>

namespace GMAT {

GreatCircleArcC::GreatCircleArcC(const SpherePointC& start, const SpherePointC& end)
    : start_(start), end_(end) {
  const double lat1 = start.GetLatitude();
  const double lat2 = end.GetLatitude();
  const double lon1 = start.GetLongitude();
  const double lon2 = end.GetLongitude();
  if (start == end) return;
  const bool bothOnEquator = ApproxEqual(lat1, 0.0) && ApproxEqual(lat2, 0.0);
  opposite_ = ApproxEqual(NormalizeAngle(lon2 - lon1), PI);
  if (opposite_) {
    const bool mirrored = !ApproxEqual(lat1, lat2) && ApproxEqual(std::fabs(lat1), std::fabs(lat2));
    if (mirrored || bothOnEquator) return;
  }
  if (IsPole(lat1) && IsPole(lat2)) return;
  valid_ = true;
  meridian_ = ApproxEqual(lon1, lon2) || ApproxEqual(NormalizeAngle(lon2 + PI), lon1) ||
              IsPole(lat1) || IsPole(lat2);
  equator_ = bothOnEquator;
}

double GreatCircleArcC::GetCourse() const {
  const double lat1 = start_.GetLatitude();
  const double d = end_.GetLongitude() - start_.GetLongitude();
  double c = std::atan(
      std::sin(d) / (std::tan(end_.GetLatitude()) * std::cos(lat1) - std::cos(d) * std::sin(lat1)));
  if (d < 0.0) {
    c += c >= 0.0 ? PI : TWO_PI;
  } else if (c < 0.0) {
    c += PI;
  }
  return c;
}

bool GreatCircleArcC::GetVertex(double& latitude, double& longitude) const {
  if (!valid_) return false;
  const double latS = start_.GetLatitude();
  const double c = GetCourse();
  const double latV = std::acos(std::fabs(std::sin(c) * std::cos(latS)));
  latitude = latS < 0.0 ? -latV : latV;
  longitude = start_.GetLongitude() + std::atan(1.0 / (std::sin(latS) * std::tan(c)));
  return true;
}

bool GreatCircleArcC::GetLatitudeCrossings(double latitude, double& longitude1,
                                           double& longitude2) const {
  double latV = 0.0;
  double lonV = 0.0;
  if (equator_ || !GetVertex(latV, lonV)) return false;
  const auto crossing = [latitude](double vertexLat, double vertexLon) {
    return NormalizeAngle(vertexLon + std::acos(std::tan(latitude) / std::tan(vertexLat)));
  };
  longitude1 = crossing(latV, lonV);
  longitude2 = crossing(-latV, NormalizeAngle(lonV + PI));
  return true;
}

}  // namespace GMAT
