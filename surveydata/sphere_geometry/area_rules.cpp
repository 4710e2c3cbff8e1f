#include <algorithm>
#include <cmath>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>

namespace GMAT {

SearchMeridianC::SearchMeridianC(const AreaFrame& frame, double h)
    : h_(h),
      vTop_(std::min(frame.vMin, frame.vMax)),
      vBottom_(std::max(frame.vMin, frame.vMax)),
      isPolygon_(frame.isPolygon) {
  if (!isPolygon_) return;
  isArc_ = GreatCircleArcC(SpherePointC({h, vTop_}), SpherePointC({h, vBottom_})).IsValid();
  cosH_ = std::cos(h);
  sinH_ = std::sin(h);
}

bool SearchMeridianC::Crosses(const AnglePointC& a, const AnglePointC& b, double& v) const {
  if (!isPolygon_) {
    AnglePointC crossing;
    if (!FindPlanarCrossing(a, b, {h_, vTop_}, {h_, vBottom_}, crossing)) return false;
    v = crossing.V;
    return true;
  }
  if (IsSurelyMissed(a, b, h_)) return false;
  const ArcEdgeC arc{SpherePointC(a), SpherePointC(b)};
  return arc.CrossesMeridian(h_, cosH_, sinH_, vTop_, vBottom_, v);
}

}  // namespace GMAT
