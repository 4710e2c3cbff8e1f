#ifndef SURVEYDATA_SPHERE_GEOMETRY_AREA_RULES_H_
#define SURVEYDATA_SPHERE_GEOMETRY_AREA_RULES_H_

#include <cstddef>
#include <optional>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/area_probe.h>

/// \file
/// The rules of containment over a range of edge numbers: all edges of an area, or those that an
/// index has not ruled out. Leaving out an edge to which the rule cannot apply changes no answer,
/// nor does the order of the edges.

namespace GMAT {

/// The numbers of the edges [0, count).
class EdgeNumbersC {
 public:
  class IteratorC {
   public:
    explicit IteratorC(std::size_t edge) : edge_(edge) {}
    std::size_t operator*() const { return edge_; }
    IteratorC& operator++() {
      ++edge_;
      return *this;
    }
    bool operator==(const IteratorC&) const = default;

   private:
    std::size_t edge_;
  };

  explicit EdgeNumbersC(std::size_t count) : count_(count) {}
  IteratorC begin() const { return IteratorC(0); }
  IteratorC end() const { return IteratorC(count_); }

 private:
  std::size_t count_;
};

/// All edges.
inline EdgeNumbersC AllEdges(const AreaFrame& frame) { return EdgeNumbersC(frame.GetEdgeCount()); }

/// The edges that have a boundary band: all but the one that closes the ring, the last.
inline EdgeNumbersC EdgesWithBand(const AreaFrame& frame) {
  return EdgeNumbersC(frame.GetEdgeCount() - 1);
}

/// The first of `edges` in whose boundary band `probe` lies (`BandProbe`).
template <class Edges>
std::optional<std::size_t> FindEdgeInBand(const AreaFrame& frame, const Edges& edges,
                                          const AnglePointC& probe) {
  for (const std::size_t edge : edges) {
    const AnglePointC& a = frame.GetStart(edge);
    const AnglePointC& b = frame.GetEnd(edge);
    if (IsNearBox(probe, a, b) && IsInBand(probe, a, b)) return edge;
  }
  return std::nullopt;
}

/// The meridian Hz = `h` in the frame of an area's edges, from the top of its bounds to their
/// bottom: the line along which crossings are counted.
class SearchMeridianC {
 public:
  SearchMeridianC(const AreaFrame& frame, double h);

  /// False if the line of a polygon does not define an arc (from pole to pole, or a point): the
  /// search then fails.
  bool IsArc() const { return isArc_; }

  /// Whether the edge crosses the meridian; sets `v` if it does.
  bool Crosses(const AnglePointC& a, const AnglePointC& b, double& v) const;

 private:
  double h_;
  double vTop_;
  double vBottom_;
  double cosH_ = 1.0;
  double sinH_ = 0.0;
  bool isPolygon_;
  bool isArc_ = true;
};

/// Calls `use(edge, v)` for each of `edges` that crosses the meridian.
template <class Edges, class Use>
void ForEachCrossing(const AreaFrame& frame, const Edges& edges, const SearchMeridianC& meridian,
                     Use use) {
  for (const std::size_t edge : edges) {
    double v = 0.0;
    if (meridian.Crosses(frame.GetStart(edge), frame.GetEnd(edge), v)) use(edge, v);
  }
}

/// Whether a direction at `v` on the meridian `h` is inside, regardless of the boundary band and of
/// the validity of the area.
template <class Edges>
bool IsInsideByCrossings(const AreaFrame& frame, const Edges& edges, double h, double v) {
  const SearchMeridianC meridian(frame, h);
  if (!meridian.IsArc()) return false;
  std::vector<double> crossings;
  ForEachCrossing(frame, edges, meridian,
                  [&](std::size_t, double crossing) { crossings.push_back(crossing); });
  return IsInsideByParity(crossings, v, frame.enclosesZenith);
}

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_AREA_RULES_H_
