#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/ring_curves.h>

namespace GMAT {
namespace {

// t of a direction. It falls from infinity at the zenith to -infinity at the nadir, and does not
// change beyond the poles.
double TangentOf(double v) {
  if (v < kRoundingMargin) return kInfinity;
  if (v > PI - kRoundingMargin) return -kInfinity;
  return std::cos(v) / std::sin(v);
}

RingCorner MakeCorner(const AnglePointC& point, const SpherePointC& at) {
  const cVec3& u = at.GetUnit();
  const double level = Swing(u.X(), u.Y());
  return {NormalizeAngle(point.Hz), {u.X() / level, u.Y() / level}, u.Z() / level, point.V};
}

bool IsAtZenith(const SpherePointC& p) { return p.GetLatitude() > 0.0 && IsPole(p.GetLatitude()); }

}  // namespace

RingEdge RingCurves::Orient(std::size_t edge) const {
  const RingCorner& start = GetStart(edge);
  const RingCorner& end = GetEnd(edge);
  const bool wraps = std::fabs(start.hz - end.hz) > PI;
  const bool isEastward = (start.hz <= end.hz) != wraps;
  return isEastward ? RingEdge{start, end, wraps} : RingEdge{end, start, wraps};
}

RingCurves BuildRingCurves(const AreaFrame& frame) {
  const std::size_t n = frame.GetEdgeCount();
  RingCurves ring;
  ring.corners.reserve(n);
  ring.curves.reserve(n);
  SpherePointC start(frame.GetStart(0));
  for (std::size_t i = 0; i < n; ++i) {
    const SpherePointC end(frame.GetEnd(i));
    const ArcEdgeC arc(start, end);
    ring.corners.push_back(MakeCorner(frame.GetStart(i), start));
    ArcCurve& curve = ring.curves.emplace_back();
    curve.edge = static_cast<std::uint32_t>(i) & ArcCurve::kMostEdges;
    if (!arc.IsValid()) {
      curve.kind = IsAtZenith(start) && IsAtZenith(end) ? ArcCurve::kPole : ArcCurve::kSteep;
      // If there is no arc between two points, the ring has a gap.
      if (curve.kind == ArcCurve::kSteep && !(start == end)) ring.isClosed = false;
    } else if (arc.GetPole() != 0) {
      curve.kind = ArcCurve::kPole;
      ring.poleEdges.push_back(curve.edge);
      if (arc.GetPole() < 0) ring.isClosed = false;
    } else if (arc.IsThroughPoles() ||
               !(std::fabs(arc.GetNormal().Z()) > kSteepSine * arc.GetNormalLength())) {
      curve.kind = ArcCurve::kSteep;
    } else {
      curve.a = -arc.GetNormal().X() / arc.GetNormal().Z();
      curve.b = -arc.GetNormal().Y() / arc.GetNormal().Z();
      const double error = kCurveError * (std::fabs(curve.a) + std::fabs(curve.b));
      curve.error = static_cast<float>(error * (1.0 + 0x1p-22));  // rounded up
    }
    start = end;
  }
  for (std::size_t i = 0; i < n; ++i) {
    if (ring.curves[i].kind == ArcCurve::kPole) continue;
    const RingEdge edge = ring.Orient(i);
    ring.curves[i].low = edge.west.hz;
    ring.curves[i].high = edge.east.hz + (edge.wraps ? TWO_PI : 0.0);
  }
  return ring;
}

LineEndsC::LineEndsC(const AreaFrame& frame) {
  const double vLow = std::min(frame.vMin, frame.vMax);
  const double vHigh = std::max(frame.vMin, frame.vMax);
  top_ = TangentOf(vLow - kLineReach);
  bottom_ = TangentOf(vHigh + kLineReach);
  above_ = frame.enclosesZenith ? TangentOf(vLow - kLineMargin) : kInfinity;
  below_ = frame.enclosesZenith ? TangentOf(vHigh + kLineMargin) : -kInfinity;
}

bool LineEndsC::AllCount(const ArcCurve& curve, const RingEdge& edge) const {
  const RingCorner& west = edge.west;
  const RingCorner& east = edge.east;
  TangentRange range{std::min(west.tangent, east.tangent), std::max(west.tangent, east.tangent)};
  if (curve.kind != ArcCurve::kArc) return AllCount(range);
  const double span = curve.high - curve.low;
  const double bulge = BulgeOf(west.tangent, east.tangent, span);
  if (span <= kShortSpan && AllCount({range.low - bulge, range.high + bulge})) return true;
  // t oscillates between -k and k. Its derivatives at the ends show whether it has an extremum in
  // between.
  const double k = Swing(curve.a, curve.b);
  const double climbWest = curve.b * west.at.cosine - curve.a * west.at.sine;
  const double climbEast = curve.b * east.at.cosine - curve.a * east.at.sine;
  if (climbWest > 0.0 && climbEast < 0.0) range.high = k;
  if (climbWest < 0.0 && climbEast > 0.0) range.low = -k;
  return AllCount(range);
}

}  // namespace GMAT
