#ifndef SURVEYDATA_SPHERE_GEOMETRY_SIDE_OF_LINE_H_
#define SURVEYDATA_SPHERE_GEOMETRY_SIDE_OF_LINE_H_

/// \file
/// An exact test of orientation in the plane.

namespace GMAT {

struct PlanePoint {
  double x;
  double y;

  friend bool operator==(const PlanePoint&, const PlanePoint&) = default;
  /// By x, then by y.
  friend bool operator<(const PlanePoint& p, const PlanePoint& q) {
    return p.x != q.x ? p.x < q.x : p.y < q.y;
  }
};

/// `SideOfLine` takes points whose coordinates are multiples of this, no farther from 0 than
/// `kLargestOnGrid`.
inline constexpr double kPlaneGrid = 0x1p-40;
inline constexpr double kLargestOnGrid = 0x1p12;

/// Which side of the line from `a` to `b` the point `p` lies on: 1 left, -1 right, 0 on it. Exact.
int SideOfLine(const PlanePoint& a, const PlanePoint& b, const PlanePoint& p);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_SIDE_OF_LINE_H_
