#ifndef SURVEYDATA_SPHERE_GEOMETRY_GREAT_CIRCLE_ARC_H_
#define SURVEYDATA_SPHERE_GEOMETRY_GREAT_CIRCLE_ARC_H_

#include <surveydata/sphere_geometry/sphere_point.h>

namespace GMAT {

/// The shorter arc of the great circle through two points.
///
/// Not valid if the ends are equal, antipodal, or both at poles, because these define no arc.
class GreatCircleArcC {
 public:
  GreatCircleArcC(const SpherePointC& start, const SpherePointC& end);

  const SpherePointC& GetStart() const { return start_; }
  const SpherePointC& GetEnd() const { return end_; }
  bool IsValid() const { return valid_; }
  /// Whether the arc runs along a meridian: equal or opposite longitudes, or an end at a pole.
  /// Longitudes are compared as given; only `end` + pi is normalised.
  bool IsMeridian() const { return meridian_; }
  /// Whether both ends are on the equator.
  bool IsEquator() const { return equator_; }
  /// Whether the ends are on opposite meridians, with longitudes on any turn.
  bool IsOpposite() const { return opposite_; }

  /// The course at the start towards the end, measured from north through east, in [0, 2 pi).
  /// \source c = atan(sin d / (tan latE cos latS - cos d sin latS)), d = lonE - lonS, moved into
  ///         the half turn that the sign of d requires.
  double GetCourse() const;

  /// The point of the arc's great circle nearest to a pole.
  ///
  /// \param latitude, longitude  set on success to the vertex in the hemisphere of the start; the
  ///                             longitude is not normalised.
  /// \return false, with both unchanged, if the arc is not valid.
  /// \accuracy for the course as computed, latitude within `kVertexAccuracy`: arcs along the
  ///           equator are the worst, where the arc cosine is steepest.
  /// \source Clairaut's relation, cos(latV) = |sin c cos latS|; Napier's rule in the right triangle
  ///         at the vertex, tan(lonV - lonS) = 1 / (sin latS tan c).
  bool GetVertex(double& latitude, double& longitude) const;

  /// The longitudes, in [0, 2 pi), at which the whole great circle crosses the circle of latitude
  /// `latitude`; NaN if it does not.
  /// \return false, with both unchanged, if the arc is not valid or is on the equator.
  /// \source cos(lon - lonV) = tan(latitude) / tan(latV), from the vertex and from its antipode.
  bool GetLatitudeCrossings(double latitude, double& longitude1, double& longitude2) const;

 private:
  SpherePointC start_;
  SpherePointC end_;
  bool valid_ = false;
  bool meridian_ = false;
  bool equator_ = false;
  bool opposite_ = false;
};

/// The largest error of a vertex in latitude, in rad: the square root of twice the rounding of a
/// cosine near 1.
inline constexpr double kVertexAccuracy = 2.2e-8;

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_GREAT_CIRCLE_ARC_H_
