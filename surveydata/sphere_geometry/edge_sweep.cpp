#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include <surveydata/sphere_geometry/edge_sweep.h>
#include <surveydata/sphere_geometry/side_of_line.h>

namespace GMAT {
namespace {

// The sweep works on corners rounded to the grid on which `SideOfLine` is exact.
static_assert(kWidestFrame <= kLargestOnGrid);
using Point = PlanePoint;

double Snapped(double angle) { return std::floor(angle / kPlaneGrid + 0.5) * kPlaneGrid; }

// How far the rounding moves an edge.
constexpr double kMoved = 0.71 * kPlaneGrid;

// The distance, along the axes, within which pairs of edges are compared. If an edge that
// is not steep passes an end of another edge at a distance d, it passes above or below that end by
// at most sqrt(2) d, or one of its own ends is within that distance. The rest covers the rounding
// of heights, a few units in the last place of 2048.
constexpr double kNear = 2e-9;
static_assert(1.4143 * (kCrossingReach + 2.0 * kMoved) + 1e-11 < kNear);

// An edge on the sweep line. A vertical edge is treated as leaning slightly to the right.
struct Segment {
  Point left;
  Point right;
  std::size_t edge;

  // Where the sweep line at `p`, which lies between the ends, crosses the segment.
  double HeightAt(const Point& p) const {
    if (left.x == right.x) return p.y;
    return left.y + (p.x - left.x) / (right.x - left.x) * (right.y - left.y);
  }
};

// The order on the sweep line. Two segments are compared at the start of the one that begins later,
// or by their directions if that point lies on the other segment.
struct IsBelow {
  using is_transparent = void;

  bool operator()(const Segment& s, const Segment& t) const {
    return t.left < s.left ? SideOf(t, s) < 0 : SideOf(s, t) > 0;
  }
  bool operator()(const Segment& s, const Point& p) const {
    return SideOfLine(s.left, s.right, p) > 0;
  }
  bool operator()(const Point& p, const Segment& s) const {
    return SideOfLine(s.left, s.right, p) < 0;
  }

 private:
  static int SideOf(const Segment& s, const Segment& later) {
    const int side = SideOfLine(s.left, s.right, later.left);
    return side != 0 ? side : SideOfLine(s.left, s.right, later.right);
  }
};

// Whether they cross at a point that is an end of neither, so that their order changes there.
bool CrossInside(const Segment& s, const Segment& t) {
  return SideOfLine(s.left, s.right, t.left) * SideOfLine(s.left, s.right, t.right) < 0 &&
         SideOfLine(t.left, t.right, s.left) * SideOfLine(t.left, t.right, s.right) < 0;
}

// The edges of a ring, and the test that is applied to pairs of them. Edge i runs from corner i to
// corner i + 1.
class RingC {
 public:
  RingC(std::vector<Point> corners, const EdgePairTest& areCrossing,
        const std::vector<bool>& leftOut)
      : corners_(std::move(corners)), areCrossing_(areCrossing), leftOut_(leftOut) {}

  const std::vector<Point>& GetCorners() const { return corners_; }
  std::size_t CountEdges() const { return corners_.size() - 1; }
  void SwapAxes() {
    for (Point& corner : corners_) std::swap(corner.x, corner.y);
  }

  // Calls `action(edge, its other end)` for the edges at a corner, until it returns true.
  template <class Action>
  bool AnyEdgeAt(std::size_t corner, Action action) const {
    return (corner > 0 && TakesPart(corner - 1) && action(corner - 1, corners_[corner - 1])) ||
           (corner < CountEdges() && TakesPart(corner) && action(corner, corners_[corner + 1]));
  }

  bool Ask(std::size_t edge, std::size_t other) const {
    const auto [first, second] = std::minmax(edge, other);
    return areCrossing_(first, second);
  }
  bool AskForEdgesAt(std::size_t corner, std::size_t other) const {
    return AnyEdgeAt(corner, [&](std::size_t edge, const Point&) { return Ask(edge, other); });
  }

  std::vector<std::size_t> SortCorners() const {
    std::vector<std::size_t> order(corners_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [this](std::size_t i, std::size_t k) { return corners_[i] < corners_[k]; });
    return order;
  }

 private:
  bool TakesPart(std::size_t edge) const { return leftOut_.empty() || !leftOut_[edge]; }

  std::vector<Point> corners_;
  const EdgePairTest& areCrossing_;
  const std::vector<bool>& leftOut_;
};

// Whether any two edges with ends near each other cross.
bool CrossNearCorners(const RingC& ring) {
  const std::vector<Point>& corners = ring.GetCorners();
  const std::vector<std::size_t> order = ring.SortCorners();
  std::set<std::pair<double, std::size_t>> passed;  // corners nearby, by their y
  auto oldest = order.begin();
  for (const std::size_t corner : order) {
    const Point& p = corners[corner];
    for (; corners[*oldest].x < p.x - kNear; ++oldest) passed.erase({corners[*oldest].y, *oldest});
    for (auto near = passed.lower_bound({p.y - kNear, 0});
         near != passed.end() && near->first <= p.y + kNear; ++near) {
      if (ring.AnyEdgeAt(near->second, [&](std::size_t edge, const Point&) {
            return ring.AskForEdgesAt(corner, edge);
          })) {
        return true;
      }
    }
    passed.insert({p.y, corner});
  }
  return false;
}

// Moves a sweep line along x.
class SweepC {
 public:
  explicit SweepC(const RingC& ring) : ring_(ring), places_(ring.CountEdges()) {}

  // Tests the pairs of edges that change their order, and those in which an edge that is not steep
  // passes near an end of the other: whether one of these pairs crosses. `keepPlaces` means that no
  // two edges change their order.
  SweepResult FindCrossing(bool keepPlaces) {
    keepPlaces_ = keepPlaces;
    const std::vector<Point>& corners = ring_.GetCorners();
    const std::vector<std::size_t> order = ring_.SortCorners();
    for (auto begin = order.begin(); begin != order.end();) {
      const Point& at = corners[*begin];
      const auto end = std::find_if(begin, order.end(),
                                    [&](std::size_t corner) { return corners[corner] != at; });
      // Remove the edges that end at a point before those that begin there are inserted: edges that
      // only meet at a point have no order.
      const std::span<const std::size_t> here(&*begin, static_cast<std::size_t>(end - begin));
      for (const std::size_t corner : here) RemoveEdgesEndingAt(corner);
      if (ArePlacesLost()) return AskForExchange();
      for (const std::size_t corner : here) {
        if (AskBelowAndAbove(corner)) return SweepResult::kCrossing;
      }
      for (const std::size_t corner : here) InsertEdgesBeginningAt(corner);
      if (ArePlacesLost()) return AskForExchange();
      begin = end;
    }
    return SweepResult::kNoCrossing;
  }

 private:
  using Status = std::multiset<Segment, IsBelow>;

  void RemoveEdgesEndingAt(std::size_t corner) {
    const Point& at = ring_.GetCorners()[corner];
    ring_.AnyEdgeAt(corner, [&](std::size_t edge, const Point& other) {
      if (!(other < at)) return false;
      const auto above = status_.erase(places_[edge]);
      if (above != status_.begin() && above != status_.end()) Compare(*std::prev(above), *above);
      return false;
    });
  }
  void InsertEdgesBeginningAt(std::size_t corner) {
    const Point& at = ring_.GetCorners()[corner];
    ring_.AnyEdgeAt(corner, [&](std::size_t edge, const Point& other) {
      if (!(at < other)) return false;
      const auto place = status_.insert({at, other, edge});
      places_[edge] = place;
      if (place != status_.begin()) Compare(*std::prev(place), *place);
      if (std::next(place) != status_.end()) Compare(*place, *std::next(place));
      return false;
    });
  }

  void Compare(const Segment& s, const Segment& t) {
    if (!keepPlaces_ && !exchange_ && CrossInside(s, t)) exchange_.emplace(s.edge, t.edge);
  }
  bool ArePlacesLost() const { return exchange_.has_value(); }
  SweepResult AskForExchange() const {
    return ring_.Ask(exchange_->first, exchange_->second) ? SweepResult::kCrossing
                                                          : SweepResult::kUndecided;
  }

  // Tests the edges at a corner against all edges that pass near it, not only the nearest.
  bool AskBelowAndAbove(std::size_t corner) const {
    const Point& p = ring_.GetCorners()[corner];
    const auto place = status_.lower_bound(p);
    for (auto above = place; above != status_.end() && above->HeightAt(p) <= p.y + kNear; ++above) {
      if (ring_.AskForEdgesAt(corner, above->edge)) return true;
    }
    for (auto below = place; below != status_.begin();) {
      --below;
      if (below->HeightAt(p) < p.y - kNear) break;
      if (ring_.AskForEdgesAt(corner, below->edge)) return true;
    }
    return false;
  }

  const RingC& ring_;
  bool keepPlaces_ = false;
  Status status_;                         // the edges on the sweep line, from the bottom
  std::vector<Status::iterator> places_;  // their positions in `status_`, by edge
  std::optional<std::pair<std::size_t, std::size_t>> exchange_;
};

}  // namespace

SweepResult SweepInOrder(const std::vector<AnglePointC>& edges, const EdgePairTest& areCrossing,
                         const std::vector<bool>& leftOut) {
  std::vector<Point> corners;
  corners.reserve(edges.size() / 2 + 1);
  const auto add = [&](const AnglePointC& corner) {
    corners.push_back({Snapped(corner.Hz), Snapped(corner.V)});
    return std::fabs(corner.Hz) <= kWidestFrame && std::fabs(corner.V) <= kWidestFrame;
  };
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    if (!add(edges[i])) return SweepResult::kUndecided;
  }
  if (!add(edges.back())) return SweepResult::kUndecided;

  RingC ring(std::move(corners), areCrossing, leftOut);
  if (CrossNearCorners(ring)) return SweepResult::kCrossing;
  const SweepResult result = SweepC(ring).FindCrossing(false);
  if (result != SweepResult::kNoCrossing) return result;
  ring.SwapAxes();
  return SweepC(ring).FindCrossing(true);
}

}  // namespace GMAT
