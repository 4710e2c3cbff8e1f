#ifndef SURVEYDATA_SPHERE_GEOMETRY_SPHERE_AREA_H_
#define SURVEYDATA_SPHERE_GEOMETRY_SPHERE_AREA_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {

/// The base class of area managers.
class AreaManagerI {  // NOLINT(readability-identifier-naming): it has no pure function
 public:
  AreaManagerI() = default;
  AreaManagerI(const AreaManagerI&) = default;
  AreaManagerI& operator=(const AreaManagerI&) = default;
  virtual ~AreaManagerI() = default;
};

/// A region of the sphere of directions, given by its corners.
///
/// Two corners span a rectangle with straight edges in the (Hz, V) plane. Three or more are a
/// closed polygon whose edges are arcs of great circles. All points are stored, even those that
/// make the area invalid; for NaN and infinities queries return false.
///
/// Its functions are not exported: scan areas, which hold one, use it.
///
/// Nothing is kept between calls. Each result is, bit for bit, the one that its comment defines,
/// computed by the cheapest path.
class SphereAreaC : public AreaManagerI {
 public:
  SphereAreaC() = default;
  SphereAreaC(const SphereAreaC&) = default;
  SphereAreaC& operator=(const SphereAreaC&) = default;
  ~SphereAreaC() override;

  virtual void Clear();
  /// Does nothing if the area is empty.
  virtual void RemoveLastPoint();
  virtual std::size_t GetPointCount() const;
  /// Appends a direction, converted to the first face (`ToFirstFace`). Always true.
  virtual bool AddPoint(const double& hz, const double& v);
  virtual bool AddPoints(const std::vector<AnglePointC>& points);

  /// Whether there are two or more points, all with Hz in [0, 2 pi] and V in [0, pi] to 10 digits,
  /// no two exactly equal, and no two non-adjacent edges cross, both as arcs and in the
  /// (Hz, V) plane.
  /// \cost n log n for n points, and n for a ring that is star-shaped about the mean of its points.
  ///       Up to the square of n for edges within 2e-9 rad of each other, for a ring in which
  ///       chords of the (Hz, V) plane cross whose arcs do not, and for one that winds around the
  ///       axis hundreds of times.
  virtual bool IsValid() const;

  /// The bounds. `hzMax` is above `hzMin` and may exceed 2 pi.
  ///
  /// A polygon that winds around the vertical axis encloses the zenith: its Hz bounds are a full
  /// turn that begins 1e-6 after the first point, its `vMax` is `V_LIMIT`.
  /// \param noClamp  whether `vMin` and `vMax` are returned without clamping to [0, `V_LIMIT`].
  /// \return whether the area encloses the zenith or is valid. The bounds are set unless there are
  ///         fewer than two points.
  virtual bool GetExtents(double& hzMin, double& hzMax, double& vMin, double& vMax,
                          bool& enclosesZenith, bool noClamp) const;

  /// Whether a direction is inside or within the tolerance of the boundary.
  /// \cost that of `IsValid`.
  virtual bool Contains(const double& hz, const double& v) const;

  // The internal queries.

  /// The edges as pairs of points, start and end, in one continuous Hz frame whose smallest Hz is
  /// 0, which corresponds to `hzOrigin`. False with fewer than two points.
  bool BuildEdgeList(std::vector<AnglePointC>& edges, double& hzOrigin) const;

  /// The distance of a direction from the nearest edge next to it (`IsBeside`), in the plane of
  /// (Hz, V) at Hz + `hzOrigin`, without the closing edge of a polygon. The largest finite double
  /// if there is none.
  double DistanceToBoundary(double hz, double v) const;

  /// Clamps `a` and `b` to [0, `V_LIMIT`]; if `clamp` is false, fails instead if they are outside.
  /// An area without a limit accepts all values.
  bool ClampV(double& a, double& b, bool clamp) const;

  /// Where the meridian of `probe` (`vertical`), or its circle of latitude, crosses the edges; in
  /// ascending order of V or of Hz. Hz is in the frame of the edges.
  /// \return false if the extents fail, if the line does not form an arc (a meridian from pole to
  ///         pole, or a single point), or for a circle of an area around the zenith.
  bool SearchLine(const AnglePointC& probe, bool vertical, std::vector<AnglePointC>& out) const;

  const std::vector<AnglePointC>& GetPoints() const { return points_; }
  /// Whether `ClampV` leaves V alone; no operation sets it.
  bool IsVUnlimited() const { return unlimitedV_; }

 protected:
  void SetVUnlimited(bool unlimited) { unlimitedV_ = unlimited; }

 private:
  // Reserved: no operation reads them.
  [[maybe_unused]] std::uint32_t reserved1_ = 1;
  [[maybe_unused]] std::uint64_t reserved2_ = 0;
  [[maybe_unused]] bool reserved3_ = false;
  [[maybe_unused]] std::uint64_t reserved4_ = 0;
  std::vector<AnglePointC> points_;
  bool unlimitedV_ = false;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_SPHERE_AREA_H_
