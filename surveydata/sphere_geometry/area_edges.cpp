#include <algorithm>

#include <surveydata/sphere_geometry/area_edges.h>

namespace GMAT {
namespace {

// Two planes count as one if the sine of the angle between them is at most this.
constexpr double kSamePlane = 1e-10;

double Length(double x, double y, double z) { return std::sqrt(x * x + y * y + z * z); }

bool IsBetween(double x, double end1, double end2) {
  return InRange(x, std::min(end1, end2), std::max(end1, end2));
}

}  // namespace

bool FindPlanarCrossing(const AnglePointC& a1, const AnglePointC& a2, const AnglePointC& b1,
                        const AnglePointC& b2, AnglePointC& crossing) {
  const double ax = a2.Hz - a1.Hz;
  const double ay = a2.V - a1.V;
  const double bx = b2.Hz - b1.Hz;
  const double by = b2.V - b1.V;
  const double determinant = ax * by - ay * bx;
  if (determinant == 0.0) return false;
  const double t = ((b1.Hz - a1.Hz) * by - (b1.V - a1.V) * bx) / determinant;
  const AnglePointC at{a1.Hz + t * ax, a1.V + t * ay};
  if (!IsBetween(at.Hz, a1.Hz, a2.Hz) || !IsBetween(at.V, a1.V, a2.V) ||
      !IsBetween(at.Hz, b1.Hz, b2.Hz) || !IsBetween(at.V, b1.V, b2.V)) {
    return false;
  }
  crossing = at;
  return true;
}

double TurnedNextTo(double longitude, double target) {
  return longitude + TWO_PI * std::floor((target - longitude) / TWO_PI + 0.5);
}

ArcEdgeC::ArcEdgeC(const SpherePointC& start, const SpherePointC& end)
    : lat1_(start.GetLatitude()),
      lon1_(start.GetLongitude()),
      lat2_(end.GetLatitude()),
      lon2_(end.GetLongitude()) {
  const GreatCircleArcC arc(start, end);
  valid_ = arc.IsValid();
  if (!valid_) return;
  hzMin_ = std::min(lon1_, lon2_);
  hzMax_ = std::max(lon1_, lon2_);
  throughPoles_ = arc.IsMeridian() || arc.IsOpposite();
  opposite_ = throughPoles_ && !ApproxEqual(lon1_, lon2_);
  if (throughPoles_) {
    meridian_ = IsPole(lat1_) ? lon2_ : lon1_;
    if (IsPole(lat1_)) {
      pole_ = lat1_ > 0.0 ? 1 : -1;
    } else if (IsPole(lat2_)) {
      pole_ = lat2_ > 0.0 ? 1 : -1;
    } else if (opposite_) {
      pole_ = lat1_ + lat2_ > 0.0 ? 1 : -1;
    }
    normal_ = {-std::sin(meridian_), std::cos(meridian_), 0.0};
  } else {
    // As a x b, without its cancellation when the ends are close.
    const cVec3& a = start.GetUnit();
    const cVec3& b = end.GetUnit();
    normal_ = Cross({a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z()},
                    {b.X() - a.X(), b.Y() - a.Y(), b.Z() - a.Z()});
  }
  normalLength_ = Length(normal_.X(), normal_.Y(), normal_.Z());
}

bool ArcEdgeC::HoldsLongitude(double longitude) const {
  return InRange(TurnedNextTo(longitude, (hzMin_ + hzMax_) / 2.0), hzMin_, hzMax_);
}

bool ArcEdgeC::Holds(double latitude, double longitude) const {
  if (!throughPoles_) return HoldsLongitude(longitude);
  if (IsPole(latitude) && pole_ != 0) return (latitude > 0.0) == (pole_ > 0);
  const auto isOnMeridian = [longitude](double meridian1, double meridian2) {
    return IsBetween(TurnedNextTo(longitude, (meridian1 + meridian2) / 2.0), meridian1, meridian2);
  };
  if (IsPole(lat1_) || IsPole(lat2_)) {
    return isOnMeridian(meridian_, meridian_) && IsBetween(latitude, lat1_, lat2_);
  }
  if (opposite_) {
    const double top = pole_ * HALF_PI;
    return (isOnMeridian(lon1_, lon1_) && IsBetween(latitude, lat1_, top)) ||
           (isOnMeridian(lon2_, lon2_) && IsBetween(latitude, lat2_, top));
  }
  return isOnMeridian(lon1_, lon2_) && IsBetween(latitude, lat1_, lat2_);
}

bool ArcEdgeC::CrossesMeridian(double h, double cosH, double sinH, double vMin, double vMax,
                               double& v) const {
  if (!valid_) return false;
  const double across = normal_.X() * cosH + normal_.Y() * sinH;
  const double sine = std::sqrt(across * across + normal_.Z() * normal_.Z()) / normalLength_;
  if (!(sine > kSamePlane)) return false;
  double latitude = 0.0;
  if (throughPoles_) {
    if (pole_ == 0) return false;
    latitude = pole_ * HALF_PI;
  } else {
    if (!HoldsLongitude(h)) return false;
    latitude = std::atan2(normal_.Z() < 0.0 ? across : -across, std::fabs(normal_.Z()));
  }
  const double at = HALF_PI - latitude;
  if (!InRange(at, vMin - kVertexAccuracy, vMax + kVertexAccuracy)) return false;
  v = at;
  return true;
}

void FindLatitudeCrossings(const AnglePointC& a, const AnglePointC& b, double v,
                           std::vector<AnglePointC>& out) {
  const SpherePointC start(a);
  const SpherePointC end(b);
  const double latitude = HALF_PI - v;
  double longitudes[2] = {};
  if (!GreatCircleArcC(start, end).GetLatitudeCrossings(latitude, longitudes[0], longitudes[1])) {
    return;
  }
  const ArcEdgeC arc(start, end);
  const std::size_t before = out.size();
  for (const double longitude : longitudes) {
    if (std::isnan(longitude) || !arc.Holds(latitude, longitude)) continue;
    const double hz = TurnedNextTo(longitude, (arc.GetHzMin() + arc.GetHzMax()) / 2.0);
    if (out.size() > before && ApproxEqual(out.back().Hz, hz)) continue;
    out.push_back({hz, v});
  }
}

bool IsSurelyMissed(const AnglePointC& a, const AnglePointC& b, double h) {
  const double low = std::min(a.Hz, b.Hz);
  const double high = std::max(a.Hz, b.Hz);
  const double span = high - low;
  const auto isClearOfPoles = [](double v) {
    return v > kRoundingMargin && v < PI - kRoundingMargin;
  };
  if (!(span > kRoundingMargin && span < PI - kRoundingMargin && isClearOfPoles(a.V) &&
        isClearOfPoles(b.V))) {
    return false;
  }
  double x = h;
  if (!(low >= 0.0 && high <= TWO_PI)) {
    x = TurnedNextTo(h, (low + high) / 2.0);
  } else if (h + TWO_PI <= high + kRoundingMargin || h - TWO_PI >= low - kRoundingMargin) {
    return false;  // at the seam
  }
  return x < low - kRoundingMargin || x > high + kRoundingMargin;
}

bool FindSphericalCrossing(const ArcEdgeC& a, const ArcEdgeC& b, AnglePointC& crossing) {
  if (!a.IsValid() || !b.IsValid()) return false;
  const cVec3 line = Cross(a.GetNormal(), b.GetNormal());
  const double sine =
      Length(line.X(), line.Y(), line.Z()) / (a.GetNormalLength() * b.GetNormalLength());
  if (!(sine > kSamePlane)) return false;
  for (const double side : {1.0, -1.0}) {
    const double x = side * line.X();
    const double y = side * line.Y();
    const double latitude = std::atan2(side * line.Z(), std::sqrt(x * x + y * y));
    const double longitude = std::atan2(y, x);
    if (a.Holds(latitude, longitude) && b.Holds(latitude, longitude)) {
      crossing = {longitude, LatitudeToV(latitude)};
      return true;
    }
  }
  return false;
}

}  // namespace GMAT
