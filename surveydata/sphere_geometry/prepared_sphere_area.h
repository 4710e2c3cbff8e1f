#ifndef SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
#define SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_

#include <cstdint>
#include <optional>
#include <span>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/boundary_band.h>
#include <surveydata/sphere_geometry/decided_raster.h>
#include <surveydata/sphere_geometry/slab_index.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {

/// A sphere area prepared for many queries. It never changes, and does not depend on the area from
/// which it was created. Every answer is that of `SphereAreaC::Contains`, bit for bit.
///
/// It uses, in this order: the raster of decided cells, if there is one; the index of the boundary
/// band; the slab decomposition, a floating-point filter; and, if that does not prove the answer,
/// the rules, applied to the edges that can matter.
class PreparedSphereAreaC {
 public:
  /// \param hasRaster  whether to build a raster of decided cells.
  /// \param manySideBySide the smallest average number of edges on a meridian for which edges are
  /// kept in order. Tests, which have fewer, set it.
  /// \cost at least n log n for n points, including that of `SphereAreaC::IsValid`; up to n^2 for a
  ///       ring around the zenith that crosses itself nearly everywhere. Memory proportional to n.
  explicit PreparedSphereAreaC(const SphereAreaC& area, bool hasRaster = false,
                               double manySideBySide = CellGridC::kManySideBySide);

  struct Answer {
    bool isInside;
    bool isProven;  ///< Whether the bounds proved it, without the rules.
  };

  /// \cost grows with the number of edges in the direction's cell, about ten or twenty unless many
  ///       edges are in a small part of the area. Where the rules decide, with the number of edges
  ///       in its column of Hz.
  Answer Ask(double hz, double v) const;

  /// The edges and bounds to which the rules are applied; null if the points do not form an area.
  const AreaFrame* GetFrame() const { return way_ != Way::kNever ? &frame_ : nullptr; }

  /// The raster, or null if there is none or if it would decide nothing.
  const DecidedRasterC* GetRaster() const { return raster_ ? &*raster_ : nullptr; }

  void Contains(std::span<const double> hz, std::span<const double> v,
                std::span<bool> inside) const;

 private:
  // How queries are answered.
  enum class Way : std::uint8_t {
    kNever,      // not an area
    kRectangle,  // by comparing with the corners
    kPolygon,    // as the class comment says
    kRules,      // if points are out of range, or the frame has very many turns
  };

  Answer AskWrapped(double hz, double v) const;
  Answer AskRectangle(double h, double v) const;
  Answer AskPolygon(double h, double v) const;
  void AskPolygonBlock(std::span<const double> hz, std::span<const double> v,
                       std::span<bool> inside) const;
  void AskRasterBlock(std::span<const double> hz, std::span<const double> v,
                      std::span<bool> inside) const;

  Way way_ = Way::kNever;
  double rectangleWidth_ = 0.0;
  AreaFrame frame_;
  std::optional<BoundaryBandC> band_;
  std::optional<SlabIndexC> slabs_;
  std::optional<DecidedRasterC> raster_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
