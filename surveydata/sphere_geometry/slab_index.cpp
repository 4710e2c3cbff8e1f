#include <algorithm>
#include <cmath>
#include <utility>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/close_crossings.h>
#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/slab_index.h>

namespace GMAT {
namespace {

// Narrower frames get columns as if they were this wide.
constexpr double kMinWidth = 1e-3;
// A frame that falls short of a full turn by less than this counts as a full turn.
constexpr double kNarrowGap = 1e-3;
constexpr std::uint32_t kMostBuckets = 1U << 16;
// Limits for the number of stored intervals of 16 bytes: a ring that crosses itself everywhere has
// one for each of n^2 crossings, a ring whose edges do not cross has a few for each edge.
constexpr std::size_t kFewestIntervals = std::size_t{1} << 20;
constexpr std::size_t kMostPerEdge = 32;
static_assert(TWO_PI / CellGridC::kFewestColumns <= kWidestColumn);
static_assert(kMinWidth / (4.0 * kColumnOverlap) > CellGridC::kFewestColumns);
static_assert(CellGridC::kRounding >
              2 * 0x1p-22F + 2.0F * static_cast<float>(kQuickArcTangentError));

// The height of a point in the cells: -V, as for directions.
double HeightOf(double tangent) { return QuickArcTangent(tangent) - HALF_PI; }
constexpr double kHeightOfZenith = 0.0;

}  // namespace

/// Lists the curves of a ring in the cells of an index.
class SlabIndexC::BuilderC {
 public:
  BuilderC(SlabIndexC& index, const AreaFrame& frame, const RingCurves& ring)
      : index_(index),
        frame_(frame),
        ring_(ring),
        line_(frame),
        comparison_(index.curves_, ring.curves.size(), index.intervals_) {}

  void Build(double manySideBySide) {
    index_.curves_.reserve(ring_.curves.size() + 1);
    index_.curves_ = ring_.curves;
    ChooseColumns(manySideBySide);
    parts_.reserve(6 * ring_.curves.size());
    index_.intervals_.SetMost(std::max(kFewestIntervals, kMostPerEdge * ring_.curves.size()));
    index_.intervals_.Reserve(2 * ring_.curves.size());
    for (std::size_t edge = 0; edge < ring_.curves.size(); ++edge) {
      if (ring_.curves[edge].kind == ArcCurve::kPole) {
        ListToPole(edge, ring_.GetStart(edge));
        ListToPole(edge, ring_.GetEnd(edge));
      } else {
        ListEdge(edge);
      }
    }
    if (hasOrder_) index_.order_.Build(columns_, std::move(spans_), *this);
    index_.grid_.Build(parts_);
    AddIntervalsOfCorners(frame_, ring_, index_.intervals_);
    AddIntervalsOfCells(index_.grid_, index_.order_, borders_, index_.curves_, ring_.curves.size(),
                        index_.intervals_);
    index_.intervals_.Build(kMostBuckets);
  }

  // -- Called by `ColumnOrderC` --

  double HeightAt(std::uint32_t curve, std::size_t border) const {
    return index_.curves_[curve].At(borders_[border]);
  }
  bool AreInOrder(std::size_t column, const ColumnOrderC::Crossing& lower,
                  const ColumnOrderC::Crossing& upper) {
    comparison_.SetColumn(index_.grid_.GetBorder(column), index_.grid_.GetBorder(column + 1),
                          borders_[column], borders_[column + 1]);
    return comparison_.CompareNeighbours(lower, upper);
  }
  // A curve that does not fit the order of a column is listed in its cells instead.
  void Reject(std::size_t column, const ColumnOrderC::Crossing& crossing) {
    const double span = index_.grid_.GetBorder(column + 1) - index_.grid_.GetBorder(column);
    const double slack = kListingMargin + SlackOf(index_.curves_[crossing.curve], crossing.left,
                                                  crossing.right, span);
    const double left = HeightOf(crossing.left);
    const double right = HeightOf(crossing.right);
    CellGridC::Part& part = parts_.emplace_back(CellGridC::MakePart(
        crossing.curve, column, std::min(left, right) - slack, std::max(left, right) + slack));
    part.entersLeft = 1U;
  }

 private:
  // A frame narrower than a turn needs columns only for its own width; edges at a pole affect every
  // meridian.
  void ChooseColumns(double manySideBySide) {
    double frameWidth = 0.0;
    double spans = 0.0;
    for (std::size_t edge = 0; edge < frame_.GetEdgeCount(); ++edge) {
      const double hz = frame_.GetStart(edge).Hz;
      frameWidth = std::max(frameWidth, hz);
      spans += std::fabs(hz - frame_.GetEnd(edge).Hz);
    }
    frameWidth = std::max(frameWidth, frame_.edges.back().Hz);
    const bool isNarrow = frameWidth < TWO_PI - kNarrowGap && ring_.poleEdges.empty();
    const double width = isNarrow ? std::max(frameWidth, kMinWidth) : TWO_PI;
    hasOrder_ = spans >= manySideBySide * width;
    columns_ = CellGridC::CountColumns(
        frame_.GetEdgeCount(), spans, width, 4.0 * kColumnOverlap,
        hasOrder_ ? CellGridC::kPartsPerOrderedCurve : CellGridC::kPartsPerCurve);
    index_.grid_ = CellGridC(width, columns_);
    index_.intervals_ = HzIntervalsC(width);
    index_.hEnd_ = width + kColumnOverlap;
    index_.hFirst_ = isNarrow ? 0.0 : kColumnOverlap;
    index_.hLast_ = std::min(width, TWO_PI - kColumnOverlap);
    borders_.reserve(columns_ + 1);
    for (std::size_t i = 0; i <= columns_; ++i) {
      borders_.push_back(QuickCosSin(std::min(index_.grid_.GetBorder(i), TWO_PI)));
    }
  }

  std::uint32_t ColumnOf(double hz) const {
    return static_cast<std::uint32_t>(index_.grid_.ColumnOf(hz));
  }

  void LeaveToRules(std::size_t column) {
    index_.intervals_.AddHz(index_.grid_.GetBorder(column) - kRoundingMargin,
                            index_.grid_.GetBorder(column + 1) + kRoundingMargin);
  }

  // An edge at the pole rises to it from each of its corners.
  void ListToPole(std::size_t edge, const RingCorner& corner) {
    if (corner.tangent > kPoleTangent) return;
    const std::uint32_t column = ColumnOf(corner.hz);
    if (!line_.AllCount({corner.tangent, corner.tangent})) LeaveToRules(column);
    ArcCurve curve = ring_.curves[edge];
    curve.low = curve.high = corner.hz;
    CellGridC::Part part =
        CellGridC::MakePart(index_.curves_.size(), column, -corner.v, kHeightOfZenith);
    part.start = static_cast<float>(-corner.v);
    parts_.push_back(part);
    index_.curves_.push_back(curve);
  }

  void ListEdge(std::size_t number) {
    const RingEdge edge = ring_.Orient(number);
    const ArcCurve curve = ring_.curves[number];
    const bool isArc = curve.kind == ArcCurve::kArc;
    const bool allCount = line_.AllCount(curve, edge);
    const bool canBeInOrder = hasOrder_ && isArc && static_cast<double>(curve.error) <= kOrderError;
    const std::uint32_t first = ColumnOf(edge.west.hz);
    const std::uint32_t last =
        ColumnOf(edge.east.hz) + (edge.wraps ? static_cast<std::uint32_t>(columns_) : 0U);
    std::size_t listed = number;
    Point from{curve.low, edge.west.tangent, -edge.west.v};
    const Point end{curve.high, edge.east.tangent, -edge.east.v};
    for (std::uint32_t i = first; i <= last; ++i) {
      const auto column = static_cast<std::uint32_t>(i < columns_ ? i : i - columns_);
      if (i == columns_) listed = AddTurned(curve);
      const Point to = i == last || !isArc ? end : CrossBorder(curve, i + 1, column + 1);
      if (!allCount && !AllCount(curve, from, to)) {
        if (NoneCounts(curve, from, to)) {
          from = to;
          continue;
        }
        LeaveToRules(column);
      } else if (canBeInOrder && i > first && i < last) {
        AddToSpan(listed, column);
        from = to;
        continue;
      }
      const double slack =
          kListingMargin + (isArc ? SlackOf(curve, from.t, to.t, to.hz - from.hz) : 0.0);
      CellGridC::Part part =
          CellGridC::MakePart(listed, column, std::min(from.height, to.height) - slack,
                              std::max(from.height, to.height) + slack);
      if (i == first) part.start = static_cast<float>(-edge.west.v);
      if (i == last) part.end = static_cast<float>(-edge.east.v);
      part.entersLeft = i > first ? 1U : 0U;
      parts_.push_back(part);
      if (isArc) from = to;
    }
    ListBesideEnds(number, listed, first, last < columns_ ? last : last - columns_);
  }

  void AddToSpan(std::size_t curve, std::uint32_t column) {
    const bool goesOn =
        !spans_.empty() && spans_.back().curve == curve && spans_.back().last + 1 == column;
    if (goesOn) {
      spans_.back().last = column;
    } else {
      spans_.push_back({static_cast<std::uint32_t>(curve), column, column});
    }
  }

  struct Point {
    double hz;
    double t;
    double height;
  };

  // The point at which a curve enters a column; `border` is the same border modulo a turn.
  Point CrossBorder(const ArcCurve& curve, std::size_t turnedBorder, std::size_t border) const {
    const double t = curve.At(borders_[border]);
    return {index_.grid_.GetBorder(turnedBorder), t, HeightOf(t)};
  }

  static TangentRange RangeOf(const ArcCurve& curve, const Point& from, const Point& to) {
    if (curve.kind == ArcCurve::kArc) return RangeBetween(curve, from.t, to.t, to.hz - from.hz);
    return {std::min(from.t, to.t), std::max(from.t, to.t)};
  }
  bool AllCount(const ArcCurve& curve, const Point& from, const Point& to) const {
    return line_.AllCount(RangeOf(curve, from, to));
  }
  // The rules may count a curve slightly beyond its ends. A steep one may be anywhere there, so it
  // is never left out.
  bool NoneCounts(const ArcCurve& curve, const Point& from, const Point& to) const {
    if (curve.kind != ArcCurve::kArc) return false;
    const double change = kColumnOverlap * (std::fabs(curve.a) + std::fabs(curve.b));
    const TangentRange range = RangeOf(curve, from, to);
    return line_.NoneCounts({range.low - change, range.high + change});
  }

  // Adds the same curve a turn further west and returns its number.
  std::size_t AddTurned(const ArcCurve& curve) {
    ArcCurve turned = curve;
    turned.low -= TWO_PI;
    turned.high -= TWO_PI;
    index_.curves_.push_back(turned);
    return index_.curves_.size() - 1;
  }

  // The rules may count an edge slightly beyond its ends, so the columns there list it, too.
  void ListBesideEnds(std::size_t number, std::size_t turned, std::size_t firstColumn,
                      std::size_t lastColumn) {
    const RingEdge edge = ring_.Orient(number);
    const CellGridC& grid = index_.grid_;
    if (firstColumn > 0 && edge.west.hz - grid.GetBorder(firstColumn) < kColumnOverlap) {
      parts_.push_back(CellGridC::MakePart(number, firstColumn - 1, -edge.west.v, -edge.west.v));
    }
    if (lastColumn + 1 < columns_ &&
        grid.GetBorder(lastColumn + 1) - edge.east.hz < kColumnOverlap) {
      parts_.push_back(CellGridC::MakePart(turned, lastColumn + 1, -edge.east.v, -edge.east.v));
    }
  }

  SlabIndexC& index_;
  const AreaFrame& frame_;
  const RingCurves& ring_;
  const LineEndsC line_;
  CurveComparisonC comparison_;
  std::size_t columns_ = 0;
  bool hasOrder_ = false;
  std::vector<CosSin> borders_;
  std::vector<CellGridC::Part> parts_;
  std::vector<ColumnOrderC::Span> spans_;
};

SlabIndexC::SlabIndexC(const AreaFrame& frame, const RingCurves& ring, double manySideBySide) {
  const double vLow = std::min(frame.vMin, frame.vMax);
  const double vHigh = std::max(frame.vMin, frame.vMax);
  vBegin_ = frame.enclosesZenith ? -kInfinity : vLow - kLineMargin;
  vEnd_ = vHigh + kLineMargin;
  edgeCount_ = static_cast<std::uint32_t>(frame.GetEdgeCount());
  poleEdges_ = ring.poleEdges;
  hasSearchLine_ = GreatCircleArcC(SpherePointC({0.0, vLow}), SpherePointC({0.0, vHigh})).IsValid();
  // If the search line reaches the north pole, it crosses the edges there, above any direction.
  isAlwaysUndecided_ =
      !ring.isClosed || (!poleEdges_.empty() && vLow - kVertexAccuracy > -kRoundingMargin);
  if (!hasSearchLine_) vBegin_ = kInfinity;
  BuilderC(*this, frame, ring).Build(manySideBySide);
}

std::vector<std::uint32_t> SlabIndexC::FindEdges(double h) const {
  std::vector<std::uint32_t> edges;
  if (IsAtSeam(h)) {
    for (std::uint32_t edge = 0; edge < edgeCount_; ++edge) edges.push_back(edge);
    return edges;
  }
  edges = FindEdgesOfCells(h);
  for (const ColumnOrderC::Item& item : order_.Get(grid_.ColumnOf(h))) {
    edges.push_back(curves_[item.curve].edge);
  }
  return edges;
}

std::vector<std::uint32_t> SlabIndexC::FindEdgesOfCells(double h) const {
  std::vector<std::uint32_t> edges = poleEdges_;
  for (const CellGridC::Item& item : grid_.GetItems(grid_.ColumnOf(h))) {
    const ArcCurve& curve = curves_[item.curve];
    if (item.isLowest != 0 && curve.kind != ArcCurve::kPole && h > curve.low - kColumnOverlap &&
        h < curve.high + kColumnOverlap) {
      edges.push_back(curve.edge);
    }
  }
  return edges;
}

/// The crossings of one meridian to which the rules are applied: with the edges in cells, and with
/// those edges on the ordered list that are not clear of the direction or of another crossing. Each
/// other edge on the list counts once, on a known side.
class SlabIndexC::OpenCrossingsC {
 public:
  OpenCrossingsC(const SlabIndexC& index, const AreaFrame& frame, double h)
      : index_(index),
        frame_(frame),
        meridian_(frame, h),
        atH_(QuickCosSin(h)),
        order_(index.order_.Get(index.grid_.ColumnOf(h))) {
    ForEachCrossing(frame, index.FindEdgesOfCells(h), meridian_,
                    [this](std::size_t, double v) { crossings_.push_back(v); });
    if (index.intervals_.Contains(h)) Sort();
    for (const double v : crossings_) AskNear(v);
  }

  bool IsInside(double v) {
    if (!meridian_.IsArc()) return false;
    const std::size_t below = AskNear(v);
    std::sort(asked_.begin(), asked_.end());
    asked_.erase(std::unique(asked_.begin(), asked_.end()), asked_.end());
    std::vector<std::uint32_t> edges;
    for (const std::size_t i : asked_) edges.push_back(index_.curves_[order_[i].curve].edge);
    ForEachCrossing(frame_, edges, meridian_,
                    [this](std::size_t, double crossing) { crossings_.push_back(crossing); });
    const auto askedBelow = static_cast<std::size_t>(
        std::lower_bound(asked_.begin(), asked_.end(), below) - asked_.begin());
    const std::size_t certainBelow = below - askedBelow;
    const std::size_t certainAbove = order_.size() - asked_.size() - certainBelow;
    return IsInsideByParity(crossings_, v, frame_.enclosesZenith || certainAbove > 0, certainBelow);
  }

 private:
  // Within the intervals, neighbours on the list may be swapped, and if many are, an edge may be
  // several places from its own. Sorts the list by the heights on the meridian, and collects the
  // edges that may count as one with another.
  void Sort() {
    std::vector<std::pair<double, ColumnOrderC::Item>> heights;
    heights.reserve(order_.size());
    for (const ColumnOrderC::Item& item : order_) {
      heights.emplace_back(index_.curves_[item.curve].At(atH_), item);
    }
    std::sort(heights.begin(), heights.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    sorted_.reserve(heights.size());
    for (std::size_t i = 0; i < heights.size(); ++i) {
      sorted_.push_back(heights[i].second);
      if (i == 0) continue;
      const double lower = heights[i - 1].first;
      const double upper = heights[i].first;
      const double extreme = std::max(std::fabs(lower), std::fabs(upper));
      if (upper - lower > InTangent(kCrossingsApart, extreme) + 2.0 * kOrderError) continue;
      asked_.push_back(i - 1);
      asked_.push_back(i);
    }
    order_ = sorted_;
  }

  // Collects the edges on the list that are not clear of V. Returns the number of edges below V.
  std::size_t AskNear(double v) {
    const CosSin atV{std::cos(v), std::sin(v)};
    const auto isClear = [&](std::size_t i) {
      return GapOf(index_.curves_[order_[i].curve], atH_, atV).isClear;
    };
    const std::size_t below = index_.CountBelow(order_, atH_, atV);
    for (std::size_t i = below; i > 0 && !isClear(i - 1); --i) asked_.push_back(i - 1);
    for (std::size_t i = below; i < order_.size() && !isClear(i); ++i) asked_.push_back(i);
    return below;
  }

  const SlabIndexC& index_;
  const AreaFrame& frame_;
  const SearchMeridianC meridian_;
  const CosSin atH_;
  std::span<const ColumnOrderC::Item> order_;
  std::vector<ColumnOrderC::Item> sorted_;
  std::vector<double> crossings_;
  std::vector<std::size_t> asked_;  // indices on the list
};

bool SlabIndexC::AskRules(const AreaFrame& frame, double h, double v) const {
  const std::size_t column = grid_.ColumnOf(h);
  // An edge on the list may end next to a border, where it is not certain whether it counts.
  const bool isInOrder = !order_.Get(column).empty() && IsRegular(h, v) &&
                         h > grid_.GetBorder(column) + kColumnOverlap &&
                         h < grid_.GetBorder(column + 1) - kColumnOverlap;
  if (isInOrder) return OpenCrossingsC(*this, frame, h).IsInside(v);
  return IsInsideByCrossings(frame, FindEdges(h), h, v);
}

}  // namespace GMAT
