#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

#include <surveydata/sphere_geometry/area_edges.h>
#include <surveydata/sphere_geometry/edge_sweep.h>
#include <surveydata/sphere_geometry/ring_crossings.h>

namespace GMAT {
namespace {

// Whether the edges `first` < `second` of a ring cross, as arcs and in the plane, and are not
// adjacent; sets the crossing of the arcs when they do. The planar test is the cheaper one.
bool DoEdgesCross(const std::vector<AnglePointC>& edges, std::size_t first, std::size_t second,
                  AnglePointC& crossing) {
  if (second - first < 2 || (first == 0 && second + 1 == edges.size() / 2)) return false;
  const AnglePointC& a1 = edges[2 * first];
  const AnglePointC& a2 = edges[2 * first + 1];
  const AnglePointC& b1 = edges[2 * second];
  const AnglePointC& b2 = edges[2 * second + 1];
  return FindPlanarCrossing(a1, a2, b1, b2, crossing) &&
         FindSphericalCrossing(ArcEdgeC(SpherePointC(a1), SpherePointC(a2)),
                               ArcEdgeC(SpherePointC(b1), SpherePointC(b2)), crossing);
}

struct Range {
  double low;
  double high;

  Range(double a, double b) : low(std::min(a, b)), high(std::max(a, b)) {}
  bool Reaches(const Range& other) const {
    return high + kRoundingMargin >= other.low && other.high + kRoundingMargin >= low;
  }
  double GetLength() const { return high - low; }
  void Widen(const Range& other) {
    low = std::min(low, other.low);
    high = std::max(high, other.high);
  }
};

struct Box {
  Range along;  // the sweep
  Range across;
  std::size_t edge;
};

// Up to this many comparisons of boxes cost less than the ordered sweep.
constexpr std::size_t kBoxesPerEdge = 24;

// Tests the pairs of edges whose boxes are within the margin of each other. Gives up after `most`
// comparisons.
SweepResult SweepBoxes(const std::vector<AnglePointC>& edges, const EdgePairTest& areCrossing,
                       const std::vector<bool>& leftOut, std::size_t most) {
  const std::size_t count = edges.size() / 2;
  std::vector<Box> boxes;
  boxes.reserve(count);
  double spansHz = 0.0;
  double spansV = 0.0;
  Range allHz(edges[0].Hz, edges[0].Hz);
  Range allV(edges[0].V, edges[0].V);
  for (std::size_t i = 0; i < count; ++i) {
    if (!leftOut.empty() && leftOut[i]) continue;
    const AnglePointC& a = edges[2 * i];
    const AnglePointC& b = edges[2 * i + 1];
    const Box& box = boxes.emplace_back(Box{{a.Hz, b.Hz}, {a.V, b.V}, i});
    spansHz += box.along.GetLength();
    spansV += box.across.GetLength();
    allHz.Widen(box.along);
    allV.Widen(box.across);
  }
  // Sweep along the axis on which fewer edges lie side by side.
  if (spansHz * allV.GetLength() > spansV * allHz.GetLength()) {
    for (Box& box : boxes) std::swap(box.along, box.across);
  }
  std::sort(boxes.begin(), boxes.end(),
            [](const Box& a, const Box& b) { return a.along.low < b.along.low; });

  // A crossing in the plane lies in both boxes to 10 digits, so edges whose boxes are further
  // apart than the margin need no test. An edge is active from its start until it is passed.
  std::vector<Box> active;
  for (const Box& box : boxes) {
    if (most < active.size()) return SweepResult::kUndecided;
    most -= active.size();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < active.size(); ++i) {
      const Box& other = active[i];
      if (other.along.high + kRoundingMargin < box.along.low) continue;
      if (other.across.Reaches(box.across)) {
        const auto [first, second] = std::minmax(box.edge, other.edge);
        if (areCrossing(first, second)) return SweepResult::kCrossing;
      }
      active[kept++] = other;
    }
    active.erase(active.begin() + static_cast<std::ptrdiff_t>(kept), active.end());
    active.push_back(box);
  }
  return SweepResult::kNoCrossing;
}

// A pair of crossing edges, neither of which is left out.
std::optional<EdgeCrossing> FindEdgeCrossing(const std::vector<AnglePointC>& edges,
                                             const std::vector<bool>& leftOut) {
  EdgeCrossing found{};
  const EdgePairTest areCrossing = [&](std::size_t first, std::size_t second) {
    found = {first, second, {}};
    return DoEdgesCross(edges, first, second, found.at);
  };
  const std::size_t count = edges.size() / 2;
  SweepResult result = SweepBoxes(edges, areCrossing, leftOut, kBoxesPerEdge * count);
  if (result == SweepResult::kUndecided) result = SweepInOrder(edges, areCrossing, leftOut);
  if (result == SweepResult::kUndecided) {
    result = SweepBoxes(edges, areCrossing, leftOut, std::numeric_limits<std::size_t>::max());
  }
  if (result != SweepResult::kCrossing) return std::nullopt;
  return found;
}

}  // namespace

bool IsProvenStarShaped(const std::vector<AnglePointC>& edges) {
  // Equal points may lie a turn apart in the frame and would then look distinct. The frame is
  // rounded by about 1e-15.
  constexpr double kLessThanTurn = TWO_PI - 1e-8;
  const auto reachesTurn = [](const AnglePointC& p) { return p.Hz > kLessThanTurn; };
  if (std::any_of(edges.begin(), edges.end(), reachesTurn)) return false;
  if (edges.front() != edges.back()) return false;  // winds around the axis
  const std::size_t ends = edges.size();            // two per edge
  const double count = static_cast<double>(ends) / 2.0;
  double hz = 0.0;
  double v = 0.0;
  double area = 0.0;
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    hz += edges[i].Hz;
    v += edges[i].V;
    area += edges[i].Hz * edges[i + 1].V - edges[i].V * edges[i + 1].Hz;
  }
  AnglePointC centre{hz / count, v / count};
  const double side = area < 0.0 ? -1.0 : 1.0;

  // Move the centre across the worst edge until it lies on the same side of all edges.
  constexpr int kMoves = 24;
  constexpr double kClear =
      1e-9;  // how far beyond the edge: any small distance, the proof follows below
  for (int move = 0;; ++move) {
    double worst = std::numeric_limits<double>::max();
    AnglePointC step{0.0, 0.0};
    for (std::size_t i = 0; i < edges.size(); i += 2) {
      const AnglePointC& a = edges[i];
      const AnglePointC& b = edges[i + 1];
      const double dx = b.Hz - a.Hz;
      const double dy = b.V - a.V;
      const double cross = side * (dx * (centre.V - a.V) - dy * (centre.Hz - a.Hz));
      if (cross >= worst) continue;  // not divided by the length: exact enough for a search
      worst = cross;
      step = {-side * dy, side * dx};
    }
    if (!(worst < std::numeric_limits<double>::max())) return false;
    if (worst > 0.0) break;
    const double length2 = step.Hz * step.Hz + step.V * step.V;
    if (move == kMoves || !(length2 > 0.0)) return false;
    const double by = (kClear - 1.5 * worst) / length2;
    centre = {centre.Hz + by * step.Hz, centre.V + by * step.V};
  }

  // Each edge fills its own sector. Two non-adjacent edges are separated by the sector of another
  // edge, so by at least the smallest distance from the centre times the sine of the smallest
  // sector. Edges further apart than the reach of the planar test do not cross.
  constexpr double kRounding = 1e-12;  // of a few operations on angles within a turn
  constexpr double kApart = 1e-8;
  static_assert(kApart > kCrossingReach + kRounding);
  double smallestDistance = 1.0;
  double smallestSine = 1.0;
  int turns = 0;
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    const double x1 = edges[i].Hz - centre.Hz;
    const double y1 = side * (edges[i].V - centre.V);
    const double x2 = edges[i + 1].Hz - centre.Hz;
    const double y2 = side * (edges[i + 1].V - centre.V);
    const double cross = x1 * y2 - y1 * x2;
    if (!(cross > 0.0)) return false;
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double radius1 = x1 * x1 + y1 * y1;
    const double radius2 = x2 * x2 + y2 * y2;
    const bool isNearestInside = x1 * dx + y1 * dy < 0.0 && x2 * dx + y2 * dy > 0.0;
    const double distance = isNearestInside ? cross / std::sqrt(dx * dx + dy * dy)
                                            : std::sqrt(std::min(radius1, radius2));
    smallestDistance = std::min(smallestDistance, distance);
    smallestSine = std::min(smallestSine, cross / std::sqrt(radius1 * radius2));
    if (y1 < 0.0 && y2 >= 0.0) ++turns;
  }
  return turns == 1 && smallestDistance * smallestSine > kApart;
}

bool CrossesItself(const std::vector<AnglePointC>& edges) {
  return FindEdgeCrossing(edges, {}).has_value();
}

std::vector<EdgeCrossing> FindEdgeCrossings(const std::vector<AnglePointC>& edges,
                                            std::size_t most) {
  const std::size_t count = edges.size() / 2;
  std::vector<EdgeCrossing> found;
  // An edge that crosses another one is compared with all edges and then left out, until no
  // crossing edges remain.
  std::vector<bool> leftOut(count, false);
  while (found.size() < most) {
    const std::optional<EdgeCrossing> crossing = FindEdgeCrossing(edges, leftOut);
    if (!crossing) break;
    const std::size_t edge = crossing->first;
    const Range hz(edges[2 * edge].Hz, edges[2 * edge + 1].Hz);
    const Range v(edges[2 * edge].V, edges[2 * edge + 1].V);
    for (std::size_t other = 0; other < count; ++other) {
      if (leftOut[other] || !hz.Reaches({edges[2 * other].Hz, edges[2 * other + 1].Hz}) ||
          !v.Reaches({edges[2 * other].V, edges[2 * other + 1].V})) {
        continue;
      }
      const auto [first, second] = std::minmax(edge, other);
      AnglePointC at;
      if (DoEdgesCross(edges, first, second, at)) found.push_back({first, second, at});
    }
    leftOut[edge] = true;
  }
  std::sort(found.begin(), found.end(), [](const EdgeCrossing& p, const EdgeCrossing& q) {
    return std::pair(p.first, p.second) < std::pair(q.first, q.second);
  });
  if (found.size() > most) found.resize(most);
  return found;
}

}  // namespace GMAT
