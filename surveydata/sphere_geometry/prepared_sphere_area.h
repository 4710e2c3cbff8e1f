#ifndef SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
#define SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_

#include <cstdint>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {

/// A sphere area made ready for many questions. It never changes and knows nothing of the area it
/// was made from. Every answer is that of `SphereAreaC::Contains`, bit for bit.
///
/// Hz is cut into columns. Each knows the edges that a meridian in it can cross, as straight lines
/// with a bound of their error, and the edges that may have a direction in their band. Where the
/// bounds prove the answer it is given at once; otherwise the rules decide, on the edges of the
/// column.
class PreparedSphereAreaC {
 public:
  /// \cost n log n for n points at least, that of `SphereAreaC::IsValid` included.
  explicit PreparedSphereAreaC(const SphereAreaC& area);

  struct Answer {
    bool isInside;
    bool isProven;  ///< Whether the bounds proved it, and the rules were not asked.
  };

  /// \cost grows with the number of edges that the meridian crosses, not with their total.
  Answer Ask(double hz, double v) const;

  void Contains(std::span<const double> hz, std::span<const double> v,
                std::span<bool> inside) const;

 private:
  // How the questions are answered.
  enum class Way {
    kNever,      // not an area
    kRectangle,  // by comparing with the corners
    kColumns,    // as the class comment says
    kPlain,      // by the rules: points out of range
  };

  // A piece of an edge in a column: V = v0 + slope * h between the ends, up to `error`.
  struct Piece {
    double hzLow;
    double hzHigh;
    double v0;
    double slope;
    double error;
    std::uint32_t edge;
  };

  // The strip of a column in which an edge's band may lie.
  struct Strip {
    double v0;
    double slope;
    float halfHeight;
    std::uint32_t edge;
  };

  // Lists of one kind, one per column, back to back.
  template <class Item>
  struct Columns {
    double perRadian = 0.0;
    double width = 0.0;
    std::vector<std::uint32_t> begin;  // one more than there are columns
    std::vector<Item> items;

    std::span<const Item> At(double hz) const {
      const std::size_t last = begin.size() - 2;
      const auto wanted = static_cast<std::size_t>(hz * perRadian);
      const std::size_t i = wanted < last ? wanted : last;
      return {items.data() + begin[i], items.data() + begin[i + 1]};
    }
  };

  void BuildArcs();
  void BuildPieces();
  void BuildStrips();
  Answer AskInline(double hz, double v) const;
  bool IsInAnyBand(double x, double v) const;
  Answer AskRectangle(double h, double v) const;
  Answer AskColumns(double h, double v) const;
  // The rules, with the crossings of the column's edges or of all.
  bool AskRules(double h, double v) const;

  Way way_ = Way::kNever;
  double hzOrigin_ = 0.0;
  double vLow_ = 0.0;
  double vHigh_ = 0.0;
  double frameWidth_ = 0.0;
  bool enclosesZenith_ = false;
  bool hasSearchLine_ = true;
  bool hasNorthPole_ = false;
  bool hasSouthPole_ = false;
  std::vector<AnglePointC> edges_;
  std::vector<ArcEdgeC> arcs_;
  std::vector<std::uint32_t> poleEdges_;
  Columns<Piece> pieces_;
  Columns<Strip> strips_;
  SphereAreaC plainArea_;  // for `Way::kPlain`
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
