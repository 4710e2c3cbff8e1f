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
/// Hz is cut into columns. Each knows the edges that a meridian in it can cross, as parabolas
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

  // A piece of an edge in a column: V = v0 + (slope + bend * x) * x up to `error`, for x between
  // the ends. x is Hz counted from the start of the column. Within `reach` outside an end no bound
  // decides.
  struct Piece {
    double low;
    double high;
    double t0;
    double slope;
    float bend;
    float error;
    float reachLow;
    float reachHigh;
    std::uint32_t edge;

    double At(double x) const { return t0 + (slope + static_cast<double>(bend) * x) * x; }
    double Error() const { return static_cast<double>(error); }
    double OuterLow() const { return low - static_cast<double>(reachLow); }
    double OuterHigh() const { return high + static_cast<double>(reachHigh); }
  };

  struct Span {
    double low;
    double high;
  };

  struct Order {
    std::uint32_t sorted;  // so many pieces come first that fill the column, from top to bottom
    bool isProven;  // no two crossings are close together, but near corners and in `touches_`
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
    double step = 0.0;
    double width = 0.0;
    std::vector<std::uint32_t> begin;  // one more than there are columns
    std::vector<Item> items;

    std::size_t IndexOf(double hz) const {
      const auto wanted = static_cast<std::size_t>(hz * perRadian);
      return wanted < begin.size() - 2 ? wanted : begin.size() - 2;
    }
    std::span<const Item> operator[](std::size_t column) const {
      return {items.data() + begin[column], items.data() + begin[column + 1]};
    }
  };

  void BuildArcs();
  // Finds how near a meridian may come to a corner before its two edges are crossed close together.
  void MeasureCorners();
  // Orders the pieces of a column, and finds out whether its crossings are well apart.
  void OrderColumn(std::size_t column);
  // Whether two pieces of a column may come close together, and where.
  bool MayTouch(const Piece& a, const Piece& b, Span& where) const;
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
  std::vector<cVec3> units_;         // of the starts of the edges, and of the last end
  std::vector<double> cornerReach_;  // in Hz; infinite where there is no bound
  std::vector<std::uint32_t> poleEdges_;
  Columns<Piece> pieces_;
  std::vector<Order> orders_;  // one per column of pieces
  Columns<Span> touches_;      // of the same columns: where pieces may come close together
  Columns<Strip> strips_;
  SphereAreaC plainArea_;  // for `Way::kPlain`
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_PREPARED_SPHERE_AREA_H_
