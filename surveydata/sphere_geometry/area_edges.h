#ifndef SURVEYDATA_SPHERE_GEOMETRY_AREA_EDGES_H_
#define SURVEYDATA_SPHERE_GEOMETRY_AREA_EDGES_H_

#include <vector>

#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>

/// \file
/// How an edge of a sphere area crosses another edge or a meridian.

namespace GMAT {

/// The crossing of the lines A and B in the (Hz, V) plane, if it is within the Hz span and the V
/// span of both edges. Parallel lines have none.
bool FindPlanarCrossing(const AnglePointC& a1, const AnglePointC& a2, const AnglePointC& b1,
                        const AnglePointC& b2, AnglePointC& crossing);

/// An edge as an arc of a great circle, in the unwrapped Hz frame of its ring.
class ArcEdgeC {
 public:
  /// The arc between two points, whose unit vectors may already be computed.
  ArcEdgeC(const SpherePointC& start, const SpherePointC& end);

  bool IsValid() const { return valid_; }
  /// Whether the poles lie in the arc's plane: it runs along a meridian or over a pole.
  bool IsThroughPoles() const { return throughPoles_; }
  /// The pole at which the arc ends or over which it passes: 1 north, -1 south, 0 none.
  int GetPole() const { return pole_; }
  /// The longitude of the meridian of the end that is not at a pole.
  double GetMeridian() const { return meridian_; }
  double GetHzMin() const { return hzMin_; }
  double GetHzMax() const { return hzMax_; }
  /// The normal of the arc's plane; not a unit vector.
  const cVec3& GetNormal() const { return normal_; }
  double GetNormalLength() const { return normalLength_; }

  /// Whether the point of the arc's great circle at (latitude, longitude) lies on the arc. At a
  /// pole, the longitude does not matter for an arc that ends there or passes over it.
  bool Holds(double latitude, double longitude) const;

  /// Whether the meridian `h`, whose cosine and sine are given, crosses the arc between `vMin` and
  /// `vMax`; sets `v` if it does. The opposite meridian never counts, and a meridian that lies in
  /// the arc's plane does not cross it.
  /// \source tan(lat) = -(nx cos h + ny sin h) / nz for the points of a plane with the normal n.
  bool CrossesMeridian(double h, double cosH, double sinH, double vMin, double vMax,
                       double& v) const;

 private:
  bool HoldsLongitude(double longitude) const;

  cVec3 normal_;
  double normalLength_ = 0.0;
  double hzMin_ = 0.0;
  double hzMax_ = 0.0;
  double meridian_ = 0.0;
  double lat1_ = 0.0;
  double lon1_ = 0.0;
  double lat2_ = 0.0;
  double lon2_ = 0.0;
  int pole_ = 0;
  bool valid_ = false;
  bool throughPoles_ = false;
  bool opposite_ = false;
};

/// The crossing of two arcs. Arcs of one great circle have none.
bool FindSphericalCrossing(const ArcEdgeC& a, const ArcEdgeC& b, AnglePointC& crossing);

/// Appends the crossings of the circle of latitude at `v` with the arc from `a` to `b`, up to two
/// points with Hz in the frame of the arc.
void FindLatitudeCrossings(const AnglePointC& a, const AnglePointC& b, double v,
                           std::vector<AnglePointC>& out);

/// True only if `ArcEdgeC::CrossesMeridian` is false for the arc from `a` to `b` for every V range:
/// the arc is clear of the poles, and its Hz span is clear of `h` on every turn.
bool IsSurelyMissed(const AnglePointC& a, const AnglePointC& b, double h);

/// `longitude` moved by full turns to within half a turn of `target`.
double TurnedNextTo(double longitude, double target);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_AREA_EDGES_H_
