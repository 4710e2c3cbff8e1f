#include "tests/support/literal_sphere_area.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace literal {
namespace {

const double kPi = 3.141592653589793;
const double kTwoPi = 6.283185307179586;
const double kHalfPi = 1.5707963267948966;
const double kVLimit = 0.8 * kPi;
const double kContainsTolerance = 0.001 / 200.0 * kPi;
const double kLargest = 1.7976931348623157e308;
const double kVertexAccuracy = 2.2e-8;
const double kSamePlane = 1e-10;

bool Equal10(double a, double b) { return ApproxEqual(a, b, 10); }

bool Between(double x, double end1, double end2) {
  return InRange(x, std::min(end1, end2), std::max(end1, end2), 10);
}

struct Point {
  double lat;
  double lon;
};

Point ToPoint(Angles a) {
  Point p{kHalfPi - a.v, a.hz};
  WrapIntoRange(&p.lat, -kPi, kPi);
  return p;
}

double ToV(double lat) {
  double v = kHalfPi - lat;
  WrapIntoRange(&v, 0.0, kTwoPi);
  return v;
}

bool SamePoint(Point a, Point b) {
  const bool lat = Equal10(a.lat, b.lat) || Equal10(std::fabs(a.lat - b.lat), kTwoPi);
  const bool lon = Equal10(a.lon, b.lon) || Equal10(std::fabs(a.lon - b.lon), kTwoPi);
  return lat && lon;
}

bool AtPole(double lat) { return Equal10(std::fabs(lat), kHalfPi); }

struct Vector {
  double x, y, z;
};

Vector Unit(Point p) {
  return {std::cos(p.lat) * std::cos(p.lon), std::cos(p.lat) * std::sin(p.lon), std::sin(p.lat)};
}

Vector Cross(Vector a, Vector b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double Length(Vector a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }

struct Arc {
  Point start;
  Point end;
  bool valid = false;
  bool meridian = false;
  bool equator = false;
  bool oppositeMeridians = false;

  Arc(Point s, Point e) : start(s), end(e) {
    if (SamePoint(start, end)) return;
    oppositeMeridians = Equal10(NormalizeAngle(end.lon - start.lon), kPi);
    if (oppositeMeridians) {
      if (!Equal10(start.lat, end.lat) && Equal10(std::fabs(start.lat), std::fabs(end.lat))) return;
      if (Equal10(start.lat, 0.0) && Equal10(end.lat, 0.0)) return;
    }
    if (AtPole(start.lat) && AtPole(end.lat)) return;
    valid = true;
    meridian = Equal10(start.lon, end.lon) || Equal10(NormalizeAngle(end.lon + kPi), start.lon) ||
               AtPole(start.lat) || AtPole(end.lat);
    equator = Equal10(start.lat, 0.0) && Equal10(end.lat, 0.0);
  }

  // Whether the plane of the arc contains the poles.
  bool ThroughPoles() const { return meridian || oppositeMeridians; }

  // 1 or -1 if the arc ends at the north or south pole or passes over it, otherwise 0.
  int Pole() const {
    if (!ThroughPoles()) return 0;
    if (AtPole(start.lat)) return start.lat > 0.0 ? 1 : -1;
    if (AtPole(end.lat)) return end.lat > 0.0 ? 1 : -1;
    if (Equal10(start.lon, end.lon)) return 0;
    return start.lat + end.lat > 0.0 ? 1 : -1;
  }

  // The longitude of the end that is not at a pole.
  double Meridian() const { return AtPole(start.lat) ? end.lon : start.lon; }

  Vector Normal() const {
    if (ThroughPoles()) return {-std::sin(Meridian()), std::cos(Meridian()), 0.0};
    const Vector a = Unit(start);
    const Vector b = Unit(end);
    return Cross({a.x + b.x, a.y + b.y, a.z + b.z}, {b.x - a.x, b.y - a.y, b.z - a.z});
  }

  bool Vertex(Point& vertex) const {
    if (!valid) return false;
    const double d = end.lon - start.lon;
    double c = std::atan(std::sin(d) / (std::tan(end.lat) * std::cos(start.lat) -
                                        std::cos(d) * std::sin(start.lat)));
    if (d < 0.0) {
      if (c >= 0.0) {
        c = c + kPi;
      } else {
        c = c + kTwoPi;
      }
    } else if (c < 0.0) {
      c = c + kPi;
    }
    vertex.lat = std::acos(std::fabs(std::sin(c) * std::cos(start.lat)));
    if (start.lat < 0.0) vertex.lat = -vertex.lat;
    vertex.lon = start.lon + std::atan(1.0 / (std::sin(start.lat) * std::tan(c)));
    return true;
  }

  // `lon` shifted by full turns to be nearest to the middle of the two longitudes.
  static double NextTo(double lon, double end1, double end2) {
    const double middle = (std::min(end1, end2) + std::max(end1, end2)) / 2.0;
    return lon + kTwoPi * std::floor((middle - lon) / kTwoPi + 0.5);
  }

  static bool OnMeridian(double lon, double end1, double end2) {
    return Between(NextTo(lon, end1, end2), end1, end2);
  }

  // Whether a point on the arc's great circle lies on the arc.
  bool Holds(Point p) const {
    if (!ThroughPoles()) return OnMeridian(p.lon, start.lon, end.lon);
    if (AtPole(p.lat) && Pole() != 0) return (p.lat > 0.0) == (Pole() > 0);
    if (AtPole(start.lat) || AtPole(end.lat)) {
      return OnMeridian(p.lon, Meridian(), Meridian()) && Between(p.lat, start.lat, end.lat);
    }
    if (Pole() == 0) {
      return OnMeridian(p.lon, start.lon, end.lon) && Between(p.lat, start.lat, end.lat);
    }
    const double top = Pole() * kHalfPi;
    return (OnMeridian(p.lon, start.lon, start.lon) && Between(p.lat, start.lat, top)) ||
           (OnMeridian(p.lon, end.lon, end.lon) && Between(p.lat, end.lat, top));
  }
};

bool PlanarCrossing(Angles a1, Angles a2, Angles b1, Angles b2, Angles& result) {
  const double ax = a2.hz - a1.hz;
  const double ay = a2.v - a1.v;
  const double bx = b2.hz - b1.hz;
  const double by = b2.v - b1.v;
  const double determinant = ax * by - ay * bx;
  if (determinant == 0.0) return false;
  const double t = ((b1.hz - a1.hz) * by - (b1.v - a1.v) * bx) / determinant;
  const Angles at{a1.hz + t * ax, a1.v + t * ay};
  if (!Between(at.hz, a1.hz, a2.hz) || !Between(at.v, a1.v, a2.v)) return false;
  if (!Between(at.hz, b1.hz, b2.hz) || !Between(at.v, b1.v, b2.v)) return false;
  result = at;
  return true;
}

bool SphericalCrossing(Angles a1, Angles a2, Angles b1, Angles b2) {
  const Arc a(ToPoint(a1), ToPoint(a2));
  const Arc b(ToPoint(b1), ToPoint(b2));
  if (!a.valid || !b.valid) return false;
  const Vector na = a.Normal();
  const Vector nb = b.Normal();
  const Vector line = Cross(na, nb);
  const double sine = Length(line) / (Length(na) * Length(nb));
  if (!(sine > kSamePlane)) return false;
  for (int side = 1; side >= -1; side -= 2) {
    const double x = side * line.x;
    const double y = side * line.y;
    const double z = side * line.z;
    const Point candidate{std::atan2(z, std::sqrt(x * x + y * y)), std::atan2(y, x)};
    if (a.Holds(candidate) && b.Holds(candidate)) return true;
  }
  return false;
}

// The crossing of the edge with the meridian Hz = h between the two V; its Hz is exactly h.
bool MeridianCrossing(Angles a1, Angles a2, double h, double vLow, double vHigh, Angles& result) {
  const Arc arc(ToPoint(a1), ToPoint(a2));
  if (!arc.valid) return false;
  const Vector n = arc.Normal();
  const double across = n.x * std::cos(h) + n.y * std::sin(h);
  const double sine = std::sqrt(across * across + n.z * n.z) / Length(n);
  if (!(sine > kSamePlane)) return false;
  double lat = 0.0;
  if (arc.ThroughPoles()) {
    if (arc.Pole() == 0) return false;
    lat = arc.Pole() * kHalfPi;
  } else {
    if (!Arc::OnMeridian(h, arc.start.lon, arc.end.lon)) return false;
    const double sign = n.z < 0.0 ? -1.0 : 1.0;
    lat = std::atan2(-across * sign, std::fabs(n.z));
  }
  const double v = kHalfPi - lat;
  if (!InRange(v, vLow - kVertexAccuracy, vHigh + kVertexAccuracy, 10)) return false;
  result = {h, v};
  return true;
}

double PlanarDistance(Angles p, Angles q) {
  return std::sqrt((p.hz - q.hz) * (p.hz - q.hz) + (p.v - q.v) * (p.v - q.v));
}

double PlanarLineDistance(Angles p, Angles a, Angles b) {
  return std::fabs((a.hz - b.hz) * (a.v - p.v) - (a.hz - p.hz) * (a.v - b.v)) /
         PlanarDistance(a, b);
}

// 10^(-digits). The rules use the correctly rounded value, which not every runtime's `pow` returns.
double Step(std::uint16_t digits) { return digits == 10 ? 1e-10 : std::pow(10.0, -digits); }

}  // namespace

bool ApproxEqual(double a, double b, std::uint16_t digits) {
  return std::fabs(a - b) < Step(digits);
}

double RoundToStep(double x, double step) {
  if (step > 0.0) return std::copysign(std::floor(std::fabs(x) / step + 0.5) * step, x);
  return x;
}

bool InRange(double x, double lo, double hi, std::uint16_t digits) {
  if (lo < x && x < hi) return true;
  const double step = Step(digits);
  const double roundedX = RoundToStep(x, step);
  const double roundedLo = RoundToStep(lo, step);
  const double roundedHi = RoundToStep(hi, step);
  return ApproxEqual(roundedX, roundedLo, digits) || ApproxEqual(roundedX, roundedHi, digits);
}

bool AtLeast(double a, double b, std::uint16_t digits) {
  const double step = Step(digits);
  return RoundToStep(a, step) > RoundToStep(b, step) || ApproxEqual(a, b, digits);
}

bool AtMost(double a, double b, std::uint16_t digits) {
  const double step = Step(digits);
  return RoundToStep(b, step) > RoundToStep(a, step) || ApproxEqual(a, b, digits);
}

double NormalizeAngle(double a) {
  if (0.0 <= a && a < kTwoPi) return a;
  return std::fmod(std::fmod(a, kTwoPi) + kTwoPi, kTwoPi);
}

bool WrapIntoRange(double* a, double lo, double hi) {
  if (lo >= hi) return false;
  if (lo < -100.0 || lo > 100.0) return false;
  if (hi < -100.0 || hi > 100.0) return false;
  if (*a < -100.0 || *a > 100.0) return false;
  double result = *a;
  if (result < lo) {
    result = result + kTwoPi * std::ceil((lo - result) / kTwoPi);
  } else if (result > hi) {
    result = result - kTwoPi * std::ceil((result - hi) / kTwoPi);
  }
  if ((lo <= result && result <= hi) || Equal10(result, hi) || Equal10(result, lo)) {
    *a = result;
    return true;
  }
  return false;
}

void SphereArea::AddPoint(double hz, double v) {
  Angles p{hz, v};
  if (p.v > kPi) {
    p.v = kTwoPi - p.v;
    p.hz = NormalizeAngle(p.hz + kPi);
  }
  points_.push_back(p);
}

bool SphereArea::ClampV(double& a, double& b, bool clamp) const {
  if (unlimitedV_) return true;
  if (a > kVLimit) {
    if (!clamp) return false;
    a = kVLimit;
  }
  if (b > kVLimit) {
    if (!clamp) return false;
    b = kVLimit;
  }
  if (a < 0.0) {
    if (!clamp) return false;
    a = 0.0;
  }
  if (b < 0.0) {
    if (!clamp) return false;
    b = 0.0;
  }
  return true;
}

bool SphereArea::BuildEdgeList(std::vector<Angles>& edges, double& hzOrigin) const {
  const std::size_t n = points_.size();
  if (n < 2) return false;
  edges.clear();
  if (n == 2) {
    const Angles p0 = points_[0];
    const Angles p1 = points_[1];
    if (p0.hz > p1.hz) hzOrigin = kTwoPi;
    const double x1 = p1.hz + hzOrigin;
    edges.push_back({p0.hz, p0.v});
    edges.push_back({p0.hz, p1.v});
    edges.push_back({p0.hz, p1.v});
    edges.push_back({x1, p1.v});
    edges.push_back({x1, p1.v});
    edges.push_back({x1, p0.v});
    edges.push_back({x1, p0.v});
    edges.push_back({p0.hz, p0.v});
  } else {
    double offset = 0.0;
    double previous = points_[0].hz;
    edges.push_back(points_[0]);
    for (std::size_t i = 1; i <= n; ++i) {
      const Angles p = i < n ? points_[i] : points_[0];
      double current = p.hz + offset;
      if (std::fabs(current - previous) > kPi) {
        if (previous > current) {
          offset = offset + kTwoPi;
          current = current + kTwoPi;
        } else {
          offset = offset - kTwoPi;
          current = current - kTwoPi;
        }
      }
      edges.push_back({current, p.v});
      if (i < n) edges.push_back({current, p.v});
      previous = current;
    }
  }
  double smallest = edges[0].hz;
  for (const Angles& e : edges) {
    if (e.hz < smallest) smallest = e.hz;
  }
  for (Angles& e : edges) e.hz = e.hz - smallest;
  hzOrigin = NormalizeAngle(smallest);
  return true;
}

bool SphereArea::IsValid() const {
  const std::size_t n = points_.size();
  if (n < 2) return false;
  for (const Angles& p : points_) {
    if (!InRange(p.hz, 0.0, kTwoPi, 10) || !InRange(p.v, 0.0, kPi, 10)) return false;
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      if (points_[i].hz == points_[j].hz && points_[i].v == points_[j].v) return false;
    }
  }
  if (n == 2) return true;
  std::vector<Angles> edges;
  double hzOrigin = 0.0;
  if (!BuildEdgeList(edges, hzOrigin)) return false;
  const std::size_t last = edges.size() - 1;
  for (std::size_t a = 0; a < last; a += 2) {
    for (std::size_t b = a + 4; b < last; b += 2) {
      if (a == 0 && b + 1 == last) continue;  // the first and the last edge share a point
      Angles crossing;
      if (SphericalCrossing(edges[a], edges[a + 1], edges[b], edges[b + 1]) &&
          PlanarCrossing(edges[a], edges[a + 1], edges[b], edges[b + 1], crossing)) {
        return false;
      }
    }
  }
  return true;
}

bool SphereArea::GetExtents(Extents& extents, bool noClamp) const {
  const std::size_t n = points_.size();
  if (n < 2) return false;
  const bool isRectangle = n == 2;
  const bool spherical = n > 2;
  double hzOrigin = 0.0;
  std::vector<Angles> edges;
  if (!BuildEdgeList(edges, hzOrigin) || edges.size() < 2) return false;
  extents.hzMax = edges[0].hz;
  extents.vMin = edges[0].v;
  extents.vMax = edges[0].v;
  extents.enclosesZenith = false;
  double previousHz = edges[0].hz;
  double winding = 0.0;
  for (std::size_t i = 1; i < edges.size(); ++i) {
    const Angles current = edges[i];
    const Angles previous = edges[i - 1];
    if (current.hz > extents.hzMax) extents.hzMax = current.hz;
    if (current.v < extents.vMin) extents.vMin = current.v;
    if (current.v > extents.vMax) extents.vMax = current.v;
    if (spherical) {
      const Arc arc(ToPoint(current), ToPoint(previous));
      Point vertex{};
      if (arc.valid && arc.Vertex(vertex)) {
        const double low = std::min(current.hz, previous.hz);
        const double high = std::max(current.hz, previous.hz);
        const double hz1 = vertex.lon;
        const double v1 = ToV(vertex.lat);
        if (InRange(hz1, low, high, 10)) {
          if (v1 < extents.vMin) extents.vMin = v1;
          if (v1 > extents.vMax) extents.vMax = v1;
        }
        const double hz2 = NormalizeAngle(hz1 + kPi);
        const double v2 = NormalizeAngle(kTwoPi - v1);
        if (InRange(hz2, low, high, 10)) {
          if (v2 < extents.vMin) extents.vMin = v2;
          if (v2 > extents.vMax) extents.vMax = v2;
        }
      }
    }
    winding = winding + (current.hz - previousHz);
    previousHz = current.hz;
  }
  extents.hzMin = hzOrigin;
  extents.hzMax = extents.hzMax + hzOrigin;
  if (!isRectangle) {
    if (ApproxEqual(winding, kTwoPi, 3) || winding > kTwoPi || ApproxEqual(winding, -kTwoPi, 3) ||
        winding < -kTwoPi) {
      extents.enclosesZenith = true;
      extents.hzMin = points_[0].hz + 1e-6;
      extents.hzMax = extents.hzMin + kTwoPi;
      extents.vMax = kVLimit;
    }
  }
  if (!noClamp) ClampV(extents.vMin, extents.vMax, true);
  if (extents.enclosesZenith) return true;
  return IsValid();
}

double SphereArea::DistanceToBoundary(double hz, double v) const {
  double hzOrigin = 0.0;
  std::vector<Angles> edges;
  if (!BuildEdgeList(edges, hzOrigin)) return kLargest;
  Angles probe{hz + hzOrigin, v};
  if (!Equal10(probe.hz, kTwoPi) && !Equal10(probe.hz, -kTwoPi)) {
    WrapIntoRange(&probe.hz, 0.0, kTwoPi);
  }
  double best = kLargest;
  for (std::size_t i = 0; i < edges.size() - 2; i += 2) {
    const Angles a = edges[i];
    const Angles b = edges[i + 1];
    const double d = PlanarLineDistance(probe, a, b);
    if (d < best) {
      if (PlanarDistance(probe, a) <= PlanarDistance(a, b) &&
          PlanarDistance(probe, b) <= PlanarDistance(a, b)) {
        best = d;
      }
    }
  }
  return best;
}

bool SphereArea::SearchLine(Angles probe, bool vertical, std::vector<Angles>& out) const {
  Extents extents;
  if (!GetExtents(extents, true)) return false;
  out.clear();
  if (!vertical && extents.enclosesZenith) return false;
  double hzOrigin = 0.0;
  std::vector<Angles> edges;
  if (!BuildEdgeList(edges, hzOrigin)) return false;
  const bool isPolygon = points_.size() > 2;

  if (vertical) {
    const double h = NormalizeAngle(probe.hz - hzOrigin);
    const double vLow = std::min(extents.vMin, extents.vMax);
    const double vHigh = std::max(extents.vMin, extents.vMax);
    if (isPolygon && !Arc(ToPoint({h, vLow}), ToPoint({h, vHigh})).valid) return false;
    for (std::size_t i = 0; i < edges.size(); i += 2) {
      Angles crossing;
      if (isPolygon) {
        if (MeridianCrossing(edges[i], edges[i + 1], h, vLow, vHigh, crossing)) {
          out.push_back(crossing);
        }
      } else if (PlanarCrossing(edges[i], edges[i + 1], {h, vLow}, {h, vHigh}, crossing)) {
        out.push_back({h, crossing.v});
      }
    }
    std::sort(out.begin(), out.end(), [](Angles a, Angles b) { return a.v < b.v; });
    return true;
  }

  const Angles start{NormalizeAngle(extents.hzMin - hzOrigin), probe.v};
  const Angles end{NormalizeAngle(extents.hzMax - hzOrigin), probe.v};
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    if (!isPolygon) {
      Angles crossing;
      if (PlanarCrossing(edges[i], edges[i + 1], start, end, crossing)) out.push_back(crossing);
      continue;
    }
    const Arc arc(ToPoint(edges[i]), ToPoint(edges[i + 1]));
    if (!arc.valid || arc.equator) continue;
    Point vertex{};
    arc.Vertex(vertex);
    const double lat = kHalfPi - probe.v;
    const double dLon1 = std::acos(std::tan(lat) / std::tan(vertex.lat));
    const double lon1 = NormalizeAngle(vertex.lon + dLon1);
    const double dLon2 = std::acos(std::tan(lat) / std::tan(-vertex.lat));
    const double lon2 = NormalizeAngle(NormalizeAngle(vertex.lon + kPi) + dLon2);
    bool hasFirst = false;
    double first = 0.0;
    if (!std::isnan(lon1) && arc.Holds({lat, lon1})) {
      first = Arc::NextTo(lon1, arc.start.lon, arc.end.lon);
      hasFirst = true;
      out.push_back({first, probe.v});
    }
    if (!std::isnan(lon2) && arc.Holds({lat, lon2})) {
      const double second = Arc::NextTo(lon2, arc.start.lon, arc.end.lon);
      if (!hasFirst || !Equal10(first, second)) out.push_back({second, probe.v});
    }
  }
  std::sort(out.begin(), out.end(), [](Angles a, Angles b) { return a.hz < b.hz; });
  return true;
}

bool SphereArea::Contains(double hz, double v) const {
  if (!WrapIntoRange(&hz, 0.0, kTwoPi)) return false;
  if (!WrapIntoRange(&v, 0.0, kTwoPi)) return false;
  Extents extents;
  if (!GetExtents(extents, false)) return false;
  if (AtMost(DistanceToBoundary(hz, v), kContainsTolerance / 2.0, 10)) return true;
  std::vector<Angles> crossings;
  if (!SearchLine({hz, v}, true, crossings)) return false;
  if (crossings.empty()) return false;
  bool removed = false;
  std::vector<Angles> left;
  for (const Angles& crossing : crossings) {
    if (AtLeast(v, crossing.v, 10)) {
      removed = true;
    } else {
      left.push_back(crossing);
    }
  }
  for (std::size_t i = 0; i + 1 < left.size();) {
    const bool repeats = Equal10(NormalizeAngle(left[i].hz - left[i + 1].hz), 0.0) &&
                         Equal10(left[i].v, left[i + 1].v);
    if (repeats) {
      left.erase(left.begin() + static_cast<std::ptrdiff_t>(i));
    } else {
      ++i;
    }
  }
  return (removed || extents.enclosesZenith) && left.size() % 2 == 1;
}

}  // namespace literal
