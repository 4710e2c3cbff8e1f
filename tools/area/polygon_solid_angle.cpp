#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <queue>
#include <set>
#include <utility>
#include <vector>

#include <surveydata/sphere_geometry/area_edges.h>

#include <area/polygon_solid_angle.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;
using GMAT::TWO_PI;

// Events closer to each other than `kSameHz`, in rad, have the same Hz: the corners of adjacent
// edges differ by rounding. Arcs shorter than `kShortest` are left out, so that no arc begins and
// ends at the same Hz.
constexpr double kSameHz = 1e-12;
constexpr double kShortest = 2e-12;

// A part of an edge within one turn that the search line reaches: tan(lat) = a cos(Hz) + b sin(Hz).
struct Arc {
  double a;
  double b;
  double low;
  double high;

  double At(double hz) const { return a * std::cos(hz) + b * std::sin(hz); }
  // The antiderivative of cos(V) over Hz.
  double Integral(double hz) const {
    const double climb = b * std::cos(hz) - a * std::sin(hz);
    return std::atan2(-climb, std::hypot(1.0, At(hz)));
  }
};

// Whether two latitudes, given by their tangents, differ by less than `angle`.
bool AreClose(double s, double t, double angle) {
  return std::fabs(s - t) < angle * (1.0 + s * t);  // the tangent of the difference
}

double TangentOf(double v) {
  if (v <= 0.0) return std::numeric_limits<double>::infinity();
  return v >= GMAT::PI ? -std::numeric_limits<double>::infinity() : std::cos(v) / std::sin(v);
}

// The values common to all meridians, and the arcs that they cross.
struct Crossings {
  bool enclosesZenith = false;
  bool hasSearchLine = false;
  bool hasNorthPole = false;
  bool hasSouthPole = false;
  std::vector<Arc> arcs;
};

class CollectorC {
 public:
  explicit CollectorC(const GMAT::SphereAreaC& area) {
    double hzMin = 0.0;
    double hzMax = 0.0;
    double vMin = 0.0;
    double vMax = 0.0;
    area.GetExtents(hzMin, hzMax, vMin, vMax, found_.enclosesZenith, true);
    const auto [vLow, vHigh] = std::minmax(vMin, vMax);
    const GMAT::SpherePointC top({0.0, vLow});
    found_.hasSearchLine = GMAT::GreatCircleArcC(top, GMAT::SpherePointC({0.0, vHigh})).IsValid();
    const double above = vLow - GMAT::kVertexAccuracy;
    const double below = vHigh + GMAT::kVertexAccuracy;
    highest_ = TangentOf(above);
    lowest_ = TangentOf(below);
    CollectArcs(area, above <= 0.0, below >= GMAT::PI);
  }

  Crossings Get() && { return std::move(found_); }

 private:
  void CollectArcs(const GMAT::SphereAreaC& area, bool reachesZenith, bool reachesNadir) {
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    for (std::size_t i = 0; i < edges.size(); i += 2) {
      const GMAT::ArcEdgeC edge{GMAT::SpherePointC(edges[i]), GMAT::SpherePointC(edges[i + 1])};
      if (!edge.IsValid()) continue;
      found_.hasNorthPole = found_.hasNorthPole || (edge.GetPole() > 0 && reachesZenith);
      found_.hasSouthPole = found_.hasSouthPole || (edge.GetPole() < 0 && reachesNadir);
      const GMAT::cVec3& normal = edge.GetNormal();
      const bool isCurve = !edge.IsThroughPoles() && std::fabs(normal.Z()) > 0.0;  // false for NaN
      if (!isCurve) continue;
      // If points are out of range, an edge may be longer than a turn: every meridian crosses it
      // once.
      const double span = std::min(edge.GetHzMax() - edge.GetHzMin(), TWO_PI);
      const double middle = edge.GetHzMin() + (edge.GetHzMax() - edge.GetHzMin()) / 2.0;
      const double low = GMAT::NormalizeAngle(span < TWO_PI ? edge.GetHzMin() : middle - GMAT::PI);
      const double high = low + span;
      const double a = -normal.X() / normal.Z();
      const double b = -normal.Y() / normal.Z();
      AddReached({a, b, low, std::min(high, TWO_PI)});
      if (high > TWO_PI) AddReached({a, b, 0.0, high - TWO_PI});
    }
  }

  // Adds the parts of an arc between its crossings with the ends of the search line.
  void AddReached(const Arc& arc) {
    std::vector<double> cuts = {arc.low, arc.high};
    const double swing = std::hypot(arc.a, arc.b);
    for (const double end : {lowest_, highest_}) {
      if (!(std::fabs(end) < swing)) continue;
      const double peak = std::atan2(arc.b, arc.a);
      for (const double side : {1.0, -1.0}) {
        const double hz = GMAT::NormalizeAngle(peak + side * std::acos(end / swing));
        if (hz > arc.low && hz < arc.high) cuts.push_back(hz);
      }
    }
    std::sort(cuts.begin(), cuts.end());
    for (std::size_t i = 1; i < cuts.size(); ++i) {
      const double tangent = arc.At((cuts[i - 1] + cuts[i]) / 2.0);
      if (!(lowest_ <= tangent && tangent <= highest_)) continue;
      if (cuts[i] - cuts[i - 1] > kShortest) {
        found_.arcs.push_back({arc.a, arc.b, cuts[i - 1], cuts[i]});
      }
    }
  }

  Crossings found_;
  double highest_ = 0.0;  // tan(lat) of the ends of the search line
  double lowest_ = 0.0;
};

// A meridian that sweeps once around, with the arcs that it crosses in order from the nadir to the
// zenith. The order changes where an arc begins or ends, where two neighbours cross, and where two
// begin or cease to count as one.
class MeridianSweepC {
 public:
  explicit MeridianSweepC(const Crossings& crossings)
      : all_(crossings),
        arcs_(crossings.arcs),
        states_(arcs_.size()),
        order_(IsBelow{this}),
        hidden_(arcs_.size()) {}
  MeridianSweepC(const MeridianSweepC&) = delete;
  MeridianSweepC& operator=(const MeridianSweepC&) = delete;

  PolygonSolidAngle Integrate() {
    const std::vector<std::size_t> begins = Sorted(&Arc::low);
    const std::vector<std::size_t> ends = Sorted(&Arc::high);
    std::size_t begun = 0;
    std::size_t ended = 0;
    UpdateTop();
    while (ended < ends.size()) {
      double next = arcs_[ends[ended]].high;
      if (begun < begins.size()) next = std::min(next, arcs_[begins[begun]].low);
      if (!events_.empty()) next = std::min(next, events_.top().hz);
      MoveTo(std::max(next, hz_));
      const double limit = hz_ + kSameHz;
      for (; ended < ends.size() && arcs_[ends[ended]].high <= limit; ++ended) Remove(ends[ended]);
      for (; begun < begins.size() && arcs_[begins[begun]].low <= limit; ++begun) {
        Insert(begins[begun]);
      }
      CountChanged();
      while (!events_.empty() && events_.top().hz <= limit) {
        const Event event = events_.top();
        events_.pop();
        if (!AreNeighbours(event.below, event.above)) continue;
        if (event.isCrossing) ChangePlaces(event.below, event.above);
        changed_.push_back(event.above);
        CountChanged();
      }
      UpdateTop();
    }
    MoveTo(TWO_PI);
    UpdateTop();
    return {std::max(sum_, 0.0), kRounding * static_cast<double>(pieces_ + 1)};
  }

 private:
  static constexpr double kRounding = 4e-15;  // of one piece: a few units in the last place
  static constexpr double kTouching = 1e-12;  // the rounding of arcs that meet at a corner
  static constexpr double kAsOne = 1e-10;     // crossings that agree to 10 digits count as one
  static constexpr double kNotable = 1e-6;    // shorter ranges of Hz as one are ignored

  struct Place {
    mutable std::size_t arc;  // when two arcs swap, the order stays the same
  };
  struct IsBelow {
    const MeridianSweepC* sweep;
    bool operator()(const Place& p, const Place& q) const {
      return sweep->IsArcBelow(sweep->arcs_[p.arc], sweep->arcs_[q.arc]);
    }
  };
  using Order = std::multiset<Place, IsBelow>;

  struct State {
    Order::iterator place;
    double from = 0.0;  // the Hz at which it got its sign
    int sign = 0;       // how often the part above the arc counts
    bool isCrossed = false;
    bool isChanged = false;
    bool isOne = false;  // whether it counts as one with the arc below
    bool isOdd = false;  // whether the number of crossings up to this one is odd
  };

  // Neighbours cross at `hz`, or begin or cease to count as one.
  struct Event {
    double hz;
    std::size_t below;
    std::size_t above;
    bool isCrossing;
    friend bool operator<(const Event& p, const Event& q) {
      return p.hz > q.hz;
    }  // the first event on top
  };

  std::vector<std::size_t> Sorted(double Arc::*key) const {
    std::vector<std::size_t> order(arcs_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t i, std::size_t k) { return arcs_[i].*key < arcs_[k].*key; });
    return order;
  }

  void MoveTo(double hz) {
    hz_ = hz;
    cosine_ = std::cos(hz);
    sine_ = std::sin(hz);
  }
  double TangentHere(const Arc& arc) const { return arc.a * cosine_ + arc.b * sine_; }

  // If they meet here, the order at the end of their common range decides.
  bool IsArcBelow(const Arc& p, const Arc& q) const {
    const double s = TangentHere(p);
    const double t = TangentHere(q);
    if (!AreClose(s, t, kTouching)) return s < t;
    const double end = std::min(p.high, q.high);
    return p.At(end) < q.At(end);
  }

  void Insert(std::size_t arc) {
    const auto place = order_.insert({arc});
    State& state = states_[arc];
    state.place = place;
    state.isCrossed = true;
    changed_.push_back(arc);
    PushAbove(place);
  }
  void Remove(std::size_t arc) {
    SetSign(arc, 0);
    states_[arc].isCrossed = false;
    PushAbove(states_[arc].place);
    order_.erase(states_[arc].place);
  }
  void PushAbove(Order::iterator place) {
    if (++place != order_.end()) changed_.push_back(place->arc);
  }
  bool AreNeighbours(std::size_t below, std::size_t above) const {
    return states_[below].isCrossed && states_[above].isCrossed &&
           std::next(states_[below].place) == states_[above].place;
  }
  void ChangePlaces(std::size_t below, std::size_t above) {
    std::swap(states_[below].place, states_[above].place);
    states_[below].place->arc = below;
    states_[above].place->arc = above;
    changed_.push_back(below);
    PushAbove(states_[below].place);
  }

  // Recounts the arcs with a new neighbour below, and those above whose count changes.
  void CountChanged() {
    std::erase_if(changed_, [this](std::size_t arc) {
      return !states_[arc].isCrossed || std::exchange(states_[arc].isChanged, true);
    });
    for (const std::size_t arc : changed_) states_[arc].isOne = MeetBelow(states_[arc].place);
    // From the bottom, so that no arc is recounted twice.
    std::sort(changed_.begin(), changed_.end(), [this](std::size_t i, std::size_t k) {
      return TangentHere(arcs_[i]) < TangentHere(arcs_[k]);
    });
    for (const std::size_t arc : changed_) {
      auto place = states_[arc].place;
      if (!states_[arc].isChanged) continue;
      while (place != order_.begin() && states_[std::prev(place)->arc].isChanged) --place;
      for (; place != order_.end(); ++place) {
        const bool wasChanged = std::exchange(states_[place->arc].isChanged, false);
        if (!Count(place) && !wasChanged) break;
      }
    }
    changed_.clear();
  }
  // Counts the crossings up to here. Returns whether the parity of their number changes.
  bool Count(Order::iterator place) {
    const bool isOddBelow =
        place == order_.begin() ? all_.hasSouthPole : states_[std::prev(place)->arc].isOdd;
    State& state = states_[place->arc];
    const bool wasOdd = std::exchange(state.isOdd, isOddBelow != !state.isOne);
    SetSign(place->arc, SignOf(place->arc));
    return state.isOdd != wasOdd;
  }
  int SignOf(std::size_t arc) const {
    if (states_[arc].isOne || arc == hidden_) return 0;
    return states_[arc].isOdd ? 1 : -1;
  }
  void SetSign(std::size_t arc, int sign) {
    State& state = states_[arc];
    if (state.sign == sign) return;
    if (state.sign != 0 && hz_ > state.from) {
      ++pieces_;
      sum_ -= state.sign * (arcs_[arc].Integral(hz_) - arcs_[arc].Integral(state.from));
    }
    state.from = hz_;
    state.sign = sign;
  }

  // Schedules the next event of an arc and the one below. Returns whether they count as one now.
  bool MeetBelow(Order::iterator place) {
    if (place == order_.begin()) return false;
    const std::size_t below = std::prev(place)->arc;
    const std::size_t above = place->arc;
    const Arc& p = arcs_[below];
    const Arc& q = arcs_[above];
    double end = std::min(p.high, q.high);
    if (q.At(end) < p.At(end) && !AreClose(p.At(end), q.At(end), kTouching)) {
      end = WhereEqual(p, q, end);
      events_.push({end, below, above, true});
    }
    const auto areOne = [&](double hz) { return AreClose(p.At(hz), q.At(hz), kAsOne); };
    const bool isOne = areOne(hz_);
    if (areOne(end) == isOne) return isOne;
    double same = hz_;
    double other = end;
    while (other - same > kNotable / 16.0) {
      const double middle = (same + other) / 2.0;
      (areOne(middle) == isOne ? same : other) = middle;
    }
    if ((isOne ? other - hz_ : end - other) < kNotable) return false;
    events_.push({other, below, above, false});
    return isOne;
  }
  double WhereEqual(const Arc& p, const Arc& q, double end) const {
    const double middle = (hz_ + end) / 2.0;
    const double zero = std::atan2(p.a - q.a, q.b - p.b);
    return std::clamp(middle + std::remainder(zero - middle, GMAT::PI), hz_, end);
  }

  // Every meridian ends at the zenith, which is a crossing if an edge reaches it, and ends the
  // inside if the area encloses it. Otherwise nothing is above the topmost crossing, and the part
  // above that crossing is not inside.
  void UpdateTop() {
    sum_ += poles_ * (hz_ - polesFrom_);
    polesFrom_ = hz_;
    const bool isEmpty = order_.empty();
    const bool isOdd = isEmpty ? all_.hasSouthPole : states_[std::prev(order_.end())->arc].isOdd;
    const bool hasZenith = all_.hasNorthPole || all_.enclosesZenith;
    poles_ = (isOdd && hasZenith ? 1.0 : 0.0) +
             (all_.hasSouthPole && (!isEmpty || hasZenith) ? 1.0 : 0.0);

    std::size_t hidden = arcs_.size();
    if (isOdd && !hasZenith && !isEmpty) {
      auto last = std::prev(order_.end());
      while (states_[last->arc].isOne) --last;
      hidden = last->arc;
    }
    const std::size_t shown = std::exchange(hidden_, hidden);
    if (shown == hidden) return;
    for (const std::size_t arc : {shown, hidden}) {
      if (arc < arcs_.size() && states_[arc].isCrossed) SetSign(arc, SignOf(arc));
    }
  }

  const Crossings& all_;
  const std::vector<Arc>& arcs_;
  std::vector<State> states_;  // of the arcs
  Order order_;                // the arcs that the meridian crosses
  std::size_t hidden_;         // the topmost arc, if it does not bound the inside
  std::priority_queue<Event> events_;
  std::vector<std::size_t> changed_;
  double hz_ = 0.0;
  double cosine_ = 1.0;
  double sine_ = 0.0;
  double sum_ = 0.0;
  std::size_t pieces_ = 0;
  double poles_ = 0.0;  // the contribution of the poles per radian
  double polesFrom_ = 0.0;
};

}  // namespace

PolygonSolidAngle IntegratePolygon(const GMAT::SphereAreaC& area) {
  const Crossings crossings = CollectorC(area).Get();
  if (!crossings.hasSearchLine) return {0.0, 0.0};
  return MeridianSweepC(crossings).Integrate();
}

}  // namespace Tool
