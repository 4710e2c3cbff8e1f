#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include <surveydata/sphere_geometry/area_edges.h>

#include <area/polygon_solid_angle.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;
using GMAT::TWO_PI;

// An edge, or what of it lies in one turn: tan(lat) = a cos(Hz) + b sin(Hz).
struct Arc {
  double a;
  double b;
  double low;
  double high;

  double At(double hz) const { return a * std::cos(hz) + b * std::sin(hz); }
  // The integral of cos(V) from one Hz to another is the difference of this.
  double Integral(double hz) const {
    const double climb = b * std::cos(hz) - a * std::sin(hz);
    return std::atan2(-climb, std::hypot(1.0, At(hz)));
  }
};

// An arc that the meridians at hand cross. What lies above it counts `sign` times.
struct Crossed {
  const Arc* arc;
  double tangent;  // at the last Hz ...
  double next;     // ... and at the next one
  double from;
  int sign;
};

double TangentOf(double v) {
  if (v <= 0.0) return std::numeric_limits<double>::infinity();
  return v >= GMAT::PI ? -std::numeric_limits<double>::infinity() : std::cos(v) / std::sin(v);
}

class IntegratorC {
 public:
  explicit IntegratorC(const GMAT::SphereAreaC& area) {
    double hzMin = 0.0;
    double hzMax = 0.0;
    double vMin = 0.0;
    double vMax = 0.0;
    area.GetExtents(hzMin, hzMax, vMin, vMax, enclosesZenith_, true);
    const auto [vLow, vHigh] = std::minmax(vMin, vMax);
    const GMAT::SpherePointC top({0.0, vLow});
    hasSearchLine_ = GMAT::GreatCircleArcC(top, GMAT::SpherePointC({0.0, vHigh})).IsValid();
    const double above = vLow - GMAT::kVertexAccuracy;
    const double below = vHigh + GMAT::kVertexAccuracy;
    highest_ = TangentOf(above);
    lowest_ = TangentOf(below);
    CollectArcs(area, above <= 0.0, below >= GMAT::PI);
  }

  PolygonSolidAngle Integrate() && {
    if (!hasSearchLine_) return {0.0, 0.0};
    std::sort(arcs_.begin(), arcs_.end(), [](const Arc& p, const Arc& q) { return p.low < q.low; });
    std::sort(borders_.begin(), borders_.end());
    borders_.erase(std::unique(borders_.begin(), borders_.end()), borders_.end());
    std::size_t begun = 0;
    for (std::size_t i = 0; i + 1 < borders_.size(); ++i) {
      const double hz = borders_[i];
      std::erase_if(crossed_, [&](const Crossed& item) {
        if (item.arc->high > hz) return false;
        Flush(item, hz);
        return true;
      });
      for (; begun < arcs_.size() && arcs_[begun].low <= hz; ++begun) {
        const Crossed item{&arcs_[begun], arcs_[begun].At(hz), 0.0, hz, 0};
        const auto isBelow = [](const Crossed& p, const Crossed& q) {
          return p.tangent < q.tangent;
        };
        crossed_.insert(std::upper_bound(crossed_.begin(), crossed_.end(), item, isBelow), item);
      }
      IntegrateStretch(hz, borders_[i + 1]);
    }
    for (const Crossed& item : crossed_) Flush(item, borders_.back());
    return {std::max(sum_, 0.0), kRounding * static_cast<double>(pieces_ + 1)};
  }

 private:
  // Of one piece: a few units in the last place of an angle.
  static constexpr double kRounding = 4e-15;

  void CollectArcs(const GMAT::SphereAreaC& area, bool reachesZenith, bool reachesNadir) {
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    borders_ = {0.0, TWO_PI};
    for (std::size_t i = 0; i < edges.size(); i += 2) {
      const GMAT::ArcEdgeC edge{GMAT::SpherePointC(edges[i]), GMAT::SpherePointC(edges[i + 1])};
      if (!edge.IsValid()) continue;
      hasNorthPole_ = hasNorthPole_ || (edge.GetPole() > 0 && reachesZenith);
      hasSouthPole_ = hasSouthPole_ || (edge.GetPole() < 0 && reachesNadir);
      const GMAT::cVec3& normal = edge.GetNormal();
      const bool isCurve = !edge.IsThroughPoles() && std::fabs(normal.Z()) > 0.0;  // and no NaN
      if (!isCurve) continue;
      // Of points out of range an edge may be longer than a turn: every meridian crosses it once.
      const double span = std::min(edge.GetHzMax() - edge.GetHzMin(), TWO_PI);
      const double middle = edge.GetHzMin() + (edge.GetHzMax() - edge.GetHzMin()) / 2.0;
      const double low = GMAT::NormalizeAngle(span < TWO_PI ? edge.GetHzMin() : middle - GMAT::PI);
      const double high = low + span;
      AddArc({-normal.X() / normal.Z(), -normal.Y() / normal.Z(), low, std::min(high, TWO_PI)});
      if (high > TWO_PI) AddArc({arcs_.back().a, arcs_.back().b, 0.0, high - TWO_PI});
    }
  }

  void AddArc(const Arc& arc) {
    arcs_.push_back(arc);
    borders_.push_back(arc.low);
    borders_.push_back(arc.high);
    // Where the arc passes an end of the search line.
    const double swing = std::hypot(arc.a, arc.b);
    for (const double end : {lowest_, highest_}) {
      if (!(std::fabs(end) < swing)) continue;
      const double peak = std::atan2(arc.b, arc.a);
      for (const double side : {1.0, -1.0}) {
        const double hz = GMAT::NormalizeAngle(peak + side * std::acos(end / swing));
        if (hz > arc.low && hz < arc.high) borders_.push_back(hz);
      }
    }
  }

  void Flush(const Crossed& item, double hz) {
    if (item.sign == 0 || !(hz > item.from)) return;
    ++pieces_;
    sum_ -= item.sign * (item.arc->Integral(hz) - item.arc->Integral(item.from));
  }
  void SetSign(Crossed& item, int sign, double hz) {
    if (item.sign == sign) return;
    Flush(item, hz);
    item.from = hz;
    item.sign = sign;
  }

  // Crossings that agree to 10 digits count as one.
  static bool AreOne(const Crossed& p, const Crossed& q) {
    const auto areClose = [](double s, double t) {
      return std::fabs(s - t) < 1e-10 * (1.0 + s * t);  // the tangent of the difference
    };
    return areClose(p.tangent, q.tangent) && areClose(p.next, q.next);
  }

  void IntegrateStretch(double hz, double next) {
    const double cosine = std::cos(next);
    const double sine = std::sin(next);
    for (Crossed& item : crossed_) item.next = item.arc->a * cosine + item.arc->b * sine;
    PutArcsOfOneCornerInOrder();
    const double middleCosine = std::cos((hz + next) / 2.0);
    const double middleSine = std::sin((hz + next) / 2.0);

    int count = hasSouthPole_ ? 1 : 0;
    Crossed* last = nullptr;
    for (Crossed& item : crossed_) {
      // Between two borders the search line reaches all of an arc or nothing.
      const double tangent = item.arc->a * middleCosine + item.arc->b * middleSine;
      const bool isReached = lowest_ <= tangent && tangent <= highest_;
      if (!isReached || (last != nullptr && AreOne(*last, item))) {
        SetSign(item, 0, hz);
        continue;
      }
      SetSign(item, count % 2 == 0 ? 1 : -1, hz);
      ++count;
      last = &item;
    }
    // The zenith comes last, as the north pole or as the end of what is inside there. Without
    // anything above, the topmost crossing has no inside.
    if (hasNorthPole_) ++count;
    const bool isOdd = count % 2 == 1;
    if (hasNorthPole_ ? !isOdd : isOdd && enclosesZenith_) sum_ += next - hz;
    if (!hasNorthPole_ && isOdd && !enclosesZenith_ && last != nullptr) SetSign(*last, 0, hz);
    const bool isAlone = count == 1 && !enclosesZenith_;
    if (hasSouthPole_ && !isAlone) sum_ += next - hz;

    ChangePlaces(hz, next);
  }

  // Where they meet, the next border tells which is above.
  void PutArcsOfOneCornerInOrder() {
    const auto meet = [](double s, double t) { return std::fabs(s - t) < 1e-12 * (1.0 + s * t); };
    for (std::size_t i = 1; i < crossed_.size(); ++i) {
      for (std::size_t k = i; k > 0 && meet(crossed_[k].tangent, crossed_[k - 1].tangent) &&
                              crossed_[k].next < crossed_[k - 1].next;
           --k) {
        std::swap(crossed_[k], crossed_[k - 1]);
      }
    }
  }

  // Brings the arcs into their order at the next border. Two that change places do so where they
  // cross; from there on each counts as the other did.
  void ChangePlaces(double hz, double next) {
    changes_.clear();
    for (std::size_t i = 0; i < crossed_.size(); ++i) {
      crossed_[i].tangent = crossed_[i].next;
      for (std::size_t k = i; k > 0 && crossed_[k].tangent < crossed_[k - 1].tangent; --k) {
        changes_.push_back({WhereEqual(*crossed_[k].arc, *crossed_[k - 1].arc, hz, next),
                            crossed_[k].arc, crossed_[k - 1].arc});
        std::swap(crossed_[k], crossed_[k - 1]);
      }
    }
    std::sort(changes_.begin(), changes_.end(),
              [](const Change& p, const Change& q) { return p.hz < q.hz; });
    for (const Change& change : changes_) {
      const auto find = [&](const Arc* arc) {
        return std::find_if(crossed_.begin(), crossed_.end(),
                            [&](const Crossed& item) { return item.arc == arc; });
      };
      const auto first = find(change.first);
      const auto second = find(change.second);
      const int sign = first->sign;
      SetSign(*first, second->sign, change.hz);
      SetSign(*second, sign, change.hz);
    }
  }
  static double WhereEqual(const Arc& p, const Arc& q, double hz, double next) {
    const double middle = (hz + next) / 2.0;
    const double zero = std::atan2(p.a - q.a, q.b - p.b);
    return std::clamp(middle + std::remainder(zero - middle, GMAT::PI), hz, next);
  }

  struct Change {
    double hz;
    const Arc* first;
    const Arc* second;
  };

  bool enclosesZenith_ = false;
  bool hasSearchLine_ = false;
  bool hasNorthPole_ = false;
  bool hasSouthPole_ = false;
  double highest_ = 0.0;  // tan(lat) of the ends of the search line
  double lowest_ = 0.0;
  std::vector<Arc> arcs_;
  std::vector<double> borders_;
  std::vector<Crossed> crossed_;  // from the nadir to the zenith
  std::vector<Change> changes_;
  double sum_ = 0.0;
  std::size_t pieces_ = 0;
};

}  // namespace

PolygonSolidAngle IntegratePolygon(const GMAT::SphereAreaC& area) {
  return IntegratorC(area).Integrate();
}

}  // namespace Tool
