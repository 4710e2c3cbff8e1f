#ifndef SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
#define SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {

/// A sphere area made ready for many questions. It never changes and knows nothing of the area it
/// was made from. Every answer is that of `SphereAreaC::Contains`, bit for bit.
///
/// On a meridian tan(latitude) of an arc is a sinusoid of Hz, so that arcs are compared with a
/// direction by two products. The plane of Hz and tan(latitude) is cut into cells; each knows the
/// arcs that come into it, and whether an odd number lies below. Where the bounds of the rounding
/// prove the answer it is given at once; otherwise the rules decide, on the edges of the column.
class PreparedSphereAreaC {
 public:
  /// \cost n log n for n points at least, that of `SphereAreaC::IsValid` included.
  explicit PreparedSphereAreaC(const SphereAreaC& area);

  struct Answer {
    bool isInside;
    bool isProven;  ///< Whether the bounds proved it, and the rules were not asked.
  };

  /// \cost grows with the number of edges in the direction's cell, which is some ten or twenty
  ///       unless edges crowd in a small part of the area.
  Answer Ask(double hz, double v) const;

  /// The edges and bounds that the rules are asked of; null for what is no area.
  const AreaFrame* GetFrame() const { return way_ != Way::kNever ? &frame_ : nullptr; }

  void Contains(std::span<const double> hz, std::span<const double> v,
                std::span<bool> inside) const;

 private:
  // How the questions are answered.
  enum class Way {
    kNever,      // not an area
    kRectangle,  // by comparing with the corners
    kCells,      // as the class comment says
    kPlain,      // by the rules: points out of range
  };

  enum class Kind : std::uint8_t {
    kArc,
    kSteep,  // along a meridian, or nearly so: only its ends matter
    kPole    // to the zenith or over it; its curves rise to the pole at its ends
  };

  // An edge as tan(latitude) = a cos(Hz) + b sin(Hz) between two Hz. Edge k has curve k, and
  // another a turn apart when it crosses Hz 0.
  struct Curve {
    double a = 0.0;
    double b = 0.0;
    double low = 0.0;
    double high = 0.0;
    std::uint32_t edge = 0;
    Kind kind = Kind::kArc;

    double At(double cosine, double sine) const { return a * cosine + b * sine; }
    // What the rules, too, may be off by rounding in steep arcs.
    double Error() const { return 1e-14 * (std::fabs(a) + std::fabs(b)); }
  };

  struct Span {
    double low;
    double high;
  };

  // Where the band of an edge may lie.
  struct Strip {
    double v0;
    double slope;
    double halfHeight;
  };

  struct Corner {
    double hz;  // in [0, 2 pi)
    double cosine;
    double sine;
    double tangent;  // of the latitude
  };

  struct Border {
    double cosine;
    double sine;
  };

  // A bound of tan(lat) along an arc, given that of its ends.
  static double ExtremeOf(const Curve& curve, double t1, double t2);
  std::vector<Corner> BuildCorners();
  void BuildCurves(std::vector<CellGridC::Part>& parts);
  // Finds the Hz at which crossings may be so close that they count as one.
  void FindTouchesOfCorners(const std::vector<Corner>& corners);
  void FindTouchesOfCells(const std::vector<Border>& borders);
  void AddTouch(double low, double high);
  void SortTouches();
  void BuildStrips(std::vector<CellGridC::Part>& parts);
  // Where the frame begins and ends, so that edges of the first or the last column may count.
  bool IsAtSeam(double h) const;
  bool MayTouch(double h) const;
  ArcEdgeC MakeArc(std::size_t edge) const;
  Answer AskInline(double hz, double v) const;
  bool IsInAnyBand(double x, double v) const;
  Answer AskRectangle(double h, double v) const;
  Answer AskCells(double h, double v) const;
  // The rules, with the crossings of the column's edges or of all.
  bool AskRules(double h, double v) const;

  Way way_ = Way::kNever;
  AreaFrame frame_;
  double vLow_ = 0.0;
  double vHigh_ = 0.0;
  double frameWidth_ = 0.0;
  bool hasSearchLine_ = true;
  bool isNarrow_ = false;  // less than a turn wide
  bool hasNorthPole_ = false;
  bool needsRules_ = false;  // at the south pole, or where edges have no arc
  std::vector<std::uint32_t> poleEdges_;
  std::vector<Curve> curves_;
  CellGridC curveGrid_;
  std::vector<Span> touches_;              // in ascending order, none overlap
  std::vector<std::uint32_t> touchBegin_;  // the first that reaches beyond each part of the width
  double touchesPerRadian_ = 0.0;
  std::vector<Strip> strips_;
  CellGridC stripGrid_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
