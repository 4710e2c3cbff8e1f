#include <algorithm>
#include <cmath>

#include <surveydata/sphere_geometry/boundary_distance.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/quick_trig.h>

namespace GMAT {
namespace {

/// The sum of two angles, unrounded: `sum + rest`.
struct ExactSum {
  double sum;
  double rest;

  ExactSum(double a, double b) : sum(a + b) {
    const double part = sum - a;
    rest = (a - (sum - part)) + (b - part);
  }
  ExactSum Half() const {
    ExactSum half = *this;
    half.sum /= 2.0;
    half.rest /= 2.0;
    return half;
  }
};

/// Cosine and sine of an angle, each with a relative error of a few units in the last place.
///
/// The angle is reduced by quarter turns here. A C library may reduce it with 66 bits of pi, which
/// give the sine of an angle 1e-10 from pi with only 11 correct digits.
/// \source W. J. Cody, W. Waite, Software Manual for the Elementary Functions, 1980: pi / 2 in
///         parts of 41 bits, whose products with up to 2^12 quarter turns are exact.
CosSin AccurateCosSin(const ExactSum& angle) {
  constexpr double kMostQuarters = 0x1p12;
  constexpr double kQuarter1 = 0x1.921fb54442p+0;
  constexpr double kQuarter2 = 0x1.a308d31319p-41;
  constexpr double kQuarter3 = 0x1.145c06e0e6895p-82;
  const double quarters = std::nearbyint(angle.sum / HALF_PI);
  if (!(std::fabs(quarters) < kMostQuarters)) return {std::cos(angle.sum), std::sin(angle.sum)};
  ExactSum small(angle.sum - quarters * kQuarter1, -(quarters * kQuarter2));
  small.rest += angle.rest - quarters * kQuarter3;
  const double sine = std::sin(small.sum) + small.rest * std::cos(small.sum);
  const double cosine = std::cos(small.sum) - small.rest * std::sin(small.sum);
  switch (static_cast<int>(quarters) & 3) {
    case 0:
      return {cosine, sine};
    case 1:
      return {-sine, cosine};
    case 2:
      return {-cosine, -sine};
    default:
      return {sine, -cosine};
  }
}
double AccurateSin(const ExactSum& angle) { return AccurateCosSin(angle).sine; }

double Dot(const cVec3& a, const cVec3& b) { return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z(); }

double Length(double x, double y) { return std::sqrt(x * x + y * y); }
double Length(const cVec3& a) { return std::sqrt(Dot(a, a)); }

// The unit vector at V whose Hz, from any origin, has this cosine and sine.
cVec3 ToVector(double v, double cosHz, double sinHz) {
  const double sinV = std::sin(v);
  return {sinV * cosHz, sinV * sinHz, std::cos(v)};
}

bool IsOnSphere(const AnglePointC& p) { return std::isfinite(p.Hz) && InRange(p.V, 0.0, PI); }

}  // namespace

double DistanceToPoint(const AnglePointC& direction, const AnglePointC& point) {
  const double turn = (direction.Hz - point.Hz) / 2.0;
  const double sinTurn = std::sin(turn);
  const double cosTurn = std::cos(turn);
  const double difference = (direction.V - point.V) / 2.0;
  const double mean = (direction.V + point.V) / 2.0;
  return 2.0 * std::atan2(Length(std::sin(difference) * cosTurn, std::sin(mean) * sinTurn),
                          Length(std::cos(difference) * cosTurn, std::cos(mean) * sinTurn));
}

double DistanceToArc(const AnglePointC& direction, const AnglePointC& a, const AnglePointC& b) {
  const double toEnds = std::min(DistanceToPoint(direction, a), DistanceToPoint(direction, b));
  if (!GreatCircleArcC(SpherePointC(a), SpherePointC(b)).IsValid()) return toEnds;
  const ExactSum turn(b.Hz, -a.Hz);
  const ExactSum half = turn.Half();
  const auto [cosHalf, sinHalf] = AccurateCosSin(half);
  const cVec3 normal(-sinHalf * AccurateSin({a.V, b.V}), cosHalf * AccurateSin({b.V, -a.V}),
                     std::sin(a.V) * std::sin(b.V) * AccurateSin(turn));
  const cVec3 start = ToVector(a.V, cosHalf, -sinHalf);
  const cVec3 end = ToVector(b.V, cosHalf, sinHalf);
  const double hz = (direction.Hz - a.Hz) - half.sum;
  const cVec3 probe = ToVector(direction.V, std::cos(hz), std::sin(hz));
  const bool isBeside =
      Dot(Cross(normal, start), probe) > 0.0 && Dot(Cross(end, normal), probe) > 0.0;
  if (!isBeside) return toEnds;
  return std::atan2(std::fabs(Dot(normal, probe)), Length(Cross(normal, probe)));
}

double DistanceToMeridian(const AnglePointC& direction, double hz, double v1, double v2) {
  const double turn = direction.Hz - hz;
  const double along = std::sin(direction.V) * std::cos(turn);
  const double nearest = std::atan2(along, std::cos(direction.V));
  if (nearest >= std::min(v1, v2) && nearest <= std::max(v1, v2)) {
    return std::atan2(std::fabs(std::sin(direction.V) * std::sin(turn)),
                      Length(along, std::cos(direction.V)));
  }
  return std::min(DistanceToPoint(direction, {hz, v1}), DistanceToPoint(direction, {hz, v2}));
}

double DistanceToParallel(const AnglePointC& direction, double v, double hz1, double hz2) {
  const double turns = std::ceil((hz1 - direction.Hz) / TWO_PI);
  if (direction.Hz + turns * TWO_PI <= hz2) return std::fabs(direction.V - v);
  return std::min(DistanceToPoint(direction, {hz1, v}), DistanceToPoint(direction, {hz2, v}));
}

NearestEdge FindNearestEdge(const AreaFrame& frame, const AnglePointC& direction) {
  AnglePointC probe = direction;
  ToFirstFace(probe);
  probe.Hz -= frame.hzOrigin;
  NearestEdge nearest;
  for (std::size_t edge = 0; edge < frame.GetEdgeCount(); ++edge) {
    const AnglePointC& a = frame.GetStart(edge);
    const AnglePointC& b = frame.GetEnd(edge);
    if (!IsOnSphere(a) || !IsOnSphere(b)) continue;
    double distance = 0.0;
    if (frame.isPolygon) {
      distance = DistanceToArc(probe, a, b);
    } else if (edge % 2 == 0) {
      distance = DistanceToMeridian(probe, a.Hz, a.V, b.V);
    } else {
      distance = DistanceToParallel(probe, a.V, std::min(a.Hz, b.Hz), std::max(a.Hz, b.Hz));
    }
    if (distance < nearest.distance) nearest = {distance, edge};
  }
  return nearest;
}

}  // namespace GMAT
