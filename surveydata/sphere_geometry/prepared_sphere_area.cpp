#include <algorithm>
#include <cstddef>
#include <limits>

#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>

namespace GMAT {
namespace {

// No comparison of the rules is undecided beyond this distance: the rounding to 10 digits, and the
// accuracy of the arcs.
constexpr double kMargin = kRoundingMargin;
// Crossings this far apart are never taken for one, which those are that differ by less than 1e-10.
constexpr double kApart = 1.5e-10;
// What the ends of the search line may be off, doubled.
constexpr double kLineMargin = 1e-7;
// A column lists the edges that come this near.
constexpr double kOverlap = 1e-8;
constexpr double kMinWidth = 1e-3;
constexpr double kUndecided = std::numeric_limits<double>::infinity();

// tan(lat) of a direction, which falls from infinity at the zenith; beyond the poles it stays.
double TangentOf(double v) {
  if (v < kMargin) return kUndecided;
  if (v > PI - kMargin) return -kUndecided;
  return std::cos(v) / std::sin(v);
}

// The rows of the cells are even in this, between -1 at the nadir and 1 at the zenith.
double HeightOf(double tangent) { return tangent / (1.0 + std::fabs(tangent)); }

// How far a sinusoid a cos(x) + b sin(x) swings.
double Swing(double a, double b) { return std::sqrt(a * a + b * b); }

// How far tan(lat) of an arc may leave the range of its values at two Hz: t'' = -t.
double BulgeOf(double t1, double t2, double span) {
  return 0.2 * std::max(std::fabs(t1), std::fabs(t2)) * span * span;
}
constexpr double kShortSpan = 1.8;  // up to which that holds
static_assert(CellGridC::kWidest < kShortSpan);

// Higher than this no direction is asked for but by the rules.
constexpr double kPoleTangent = 1e9;

// What a small difference of directions makes in tan(lat): the derivative.
double InTangent(double difference, double tangent) {
  return difference * (1.0 + tangent * tangent);
}

// The same values as `NormalizeAngle`, and quick for a in (-2 pi, 2 pi).
double NormalizeOneTurn(double a) {
  if (a >= 0.0 && a < TWO_PI) return a;
  if (!(a < 0.0 && a > -TWO_PI)) return NormalizeAngle(a);
  const double turned = a + TWO_PI;
  return turned < TWO_PI ? turned : 0.0;
}

// A point beyond a pole, however little, stands on the opposite meridian of its Hz.
bool IsRegular(const AnglePointC& p) {
  return p.Hz >= -kMargin && p.Hz <= TWO_PI + kMargin && p.V >= 0.0 && p.V <= PI;
}

// Of the first `count` edges.
double SumOfSpans(const std::vector<AnglePointC>& edges, std::size_t count) {
  double sum = 0.0;
  for (std::size_t e = 0; e < count; ++e) sum += std::fabs(edges[2 * e].Hz - edges[2 * e + 1].Hz);
  return sum;
}

}  // namespace

PreparedSphereAreaC::PreparedSphereAreaC(const SphereAreaC& area) {
  AreaFrame frame;
  if (!BuildFrame(area.GetPoints(), frame)) return;
  if (!frame.enclosesZenith && !IsRingValid(area.GetPoints(), frame.edges)) return;
  frame_ = std::move(frame);
  vLow_ = std::min(frame_.vMin, frame_.vMax);
  vHigh_ = std::max(frame_.vMin, frame_.vMax);
  if (!std::all_of(area.GetPoints().begin(), area.GetPoints().end(), IsRegular)) {
    way_ = Way::kPlain;
    return;
  }
  for (const AnglePointC& point : frame_.edges) frameWidth_ = std::max(frameWidth_, point.Hz);
  if (!frame_.isPolygon) {
    way_ = Way::kRectangle;
    return;
  }
  way_ = Way::kCells;
  hasSearchLine_ =
      GreatCircleArcC(SpherePointC({0.0, vLow_}), SpherePointC({0.0, vHigh_})).IsValid();
  std::vector<CellGridC::Part> parts;
  parts.reserve(4 * frame_.edges.size());
  BuildStrips(parts);
  if (hasSearchLine_) BuildCurves(parts);
}

std::vector<PreparedSphereAreaC::Corner> PreparedSphereAreaC::BuildCorners() {
  const std::size_t n = frame_.GetEdgeCount();
  std::vector<Corner> corners;
  corners.reserve(n);
  curves_.reserve(n + 1);
  SpherePointC start(frame_.edges.front());
  for (std::size_t i = 0; i < n; ++i) {
    const SpherePointC end(frame_.GetEnd(i));
    const ArcEdgeC arc(start, end);
    const cVec3& u = start.GetUnit();
    const double level = Swing(u.X(), u.Y());
    corners.push_back(
        {NormalizeAngle(frame_.GetStart(i).Hz), u.X() / level, u.Y() / level, u.Z() / level});
    Curve& curve = curves_.emplace_back();
    curve.edge = static_cast<std::uint32_t>(i);
    const auto isAtZenith = [](const SpherePointC& p) {
      return p.GetLatitude() > 0.0 && IsPole(p.GetLatitude());
    };
    if (!arc.IsValid()) {
      curve.kind = isAtZenith(start) && isAtZenith(end) ? Kind::kPole : Kind::kSteep;
      // Without an arc between two points the ring has a gap.
      if (curve.kind == Kind::kSteep && !(start == end)) needsRules_ = true;
    } else if (arc.GetPole() != 0) {
      curve.kind = Kind::kPole;
      poleEdges_.push_back(curve.edge);
      (arc.GetPole() > 0 ? hasNorthPole_ : needsRules_) = true;
    } else if (arc.IsThroughPoles() ||
               !(std::fabs(arc.GetNormal().Z()) > kMargin * arc.GetNormalLength())) {
      curve.kind = Kind::kSteep;
    } else {
      curve.a = -arc.GetNormal().X() / arc.GetNormal().Z();
      curve.b = -arc.GetNormal().Y() / arc.GetNormal().Z();
    }
    start = end;
  }
  return corners;
}

void PreparedSphereAreaC::BuildCurves(std::vector<CellGridC::Part>& parts) {
  const std::vector<Corner> corners = BuildCorners();
  const std::size_t n = corners.size();
  // A frame of less than a turn needs columns for its own width alone; edges at a pole concern
  // every meridian.
  isNarrow_ = frameWidth_ < TWO_PI - 1e-3 && poleEdges_.empty();
  const double width = isNarrow_ ? std::max(frameWidth_, kMinWidth) : TWO_PI;
  const std::size_t columns =
      CellGridC::CountColumns(n, SumOfSpans(frame_.edges, n), width, 4.0 * kOverlap);
  curveGrid_ = CellGridC(width, columns);
  std::vector<Border> borders(columns + 1);
  for (std::size_t i = 0; i <= columns; ++i) {
    const double h = curveGrid_.GetBorder(i);
    borders[i] = {std::cos(h), std::sin(h)};
  }

  // What surely lies within the ends of the search line, and what beyond them.
  const double clearTop = TangentOf(vLow_ - kOverlap);
  const double clearBottom = TangentOf(vHigh_ + kOverlap);
  const double above = frame_.enclosesZenith ? TangentOf(vLow_ - kLineMargin) : kUndecided;
  const double below = frame_.enclosesZenith ? TangentOf(vHigh_ + kLineMargin) : -kUndecided;

  parts.clear();
  touches_.reserve(2 * n);
  const auto columnOf = [&](double hz) {
    return static_cast<std::uint32_t>(curveGrid_.ColumnOf(hz));
  };
  const auto leaveToRules = [&](std::size_t column) {
    AddTouch(curveGrid_.GetBorder(column) - kMargin, curveGrid_.GetBorder(column + 1) + kMargin);
  };
  for (std::size_t e = 0; e < n; ++e) {
    const Corner& start = corners[e];
    const Corner& end = corners[e + 1 < n ? e + 1 : 0];
    Curve curve = curves_[e];
    if (curve.kind == Kind::kPole) {
      // Up to the pole from each end.
      for (const Corner* const corner : {&start, &end}) {
        if (corner->tangent > kPoleTangent) continue;
        if (corner->tangent < clearBottom) leaveToRules(curveGrid_.ColumnOf(corner->hz));
        const double height = HeightOf(corner->tangent);
        curve.low = curve.high = corner->hz;
        CellGridC::Part part =
            CellGridC::MakePart(curves_.size(), columnOf(corner->hz), height, 1.0);
        part.start = static_cast<float>(height);
        parts.push_back(part);
        curves_.push_back(curve);
      }
      continue;
    }
    const bool wraps = std::fabs(start.hz - end.hz) > PI;
    const bool isEast = (start.hz <= end.hz) != wraps;
    const Corner& west = isEast ? start : end;
    const Corner& east = isEast ? end : start;
    curve.low = west.hz;
    curve.high = wraps ? east.hz + TWO_PI : east.hz;
    curves_[e] = curve;
    const bool isArc = curve.kind == Kind::kArc;
    double lowest = std::min(west.tangent, east.tangent);
    double highest = std::max(west.tangent, east.tangent);
    const double span = curve.high - curve.low;
    bool isClear = lowest > clearBottom && highest < clearTop;
    if (isArc) {
      const double bulge = BulgeOf(west.tangent, east.tangent, span);
      if (span > kShortSpan || lowest - bulge < clearBottom || highest + bulge > clearTop) {
        // tan(lat) swings between -k and k; its derivative tells whether it does so in between.
        const double k = Swing(curve.a, curve.b);
        const double climbWest = curve.b * west.cosine - curve.a * west.sine;
        const double climbEast = curve.b * east.cosine - curve.a * east.sine;
        if (climbWest > 0.0 && climbEast < 0.0) highest = k;
        if (climbWest < 0.0 && climbEast > 0.0) lowest = -k;
        isClear = lowest > clearBottom && highest < clearTop;
      }
    }
    const std::uint32_t first = columnOf(west.hz);
    const std::uint32_t last = columnOf(east.hz) + static_cast<std::uint32_t>(wraps ? columns : 0);
    std::size_t index = e;
    double x0 = curve.low;
    double t0 = west.tangent;
    for (std::uint32_t i = first; i <= last; ++i) {
      const auto column = static_cast<std::uint32_t>(i < columns ? i : i - columns);
      if (i == columns) {
        index = curves_.size();
        curve.low -= TWO_PI;
        curve.high -= TWO_PI;
        curves_.push_back(curve);
      }
      double low = lowest;
      double high = highest;
      if (isArc) {
        const double x1 = i < last ? curveGrid_.GetBorder(i + 1) : west.hz + span;
        const double t1 = i < last ? curve.At(borders[column + 1].cosine, borders[column + 1].sine)
                                   : east.tangent;
        const double slack = BulgeOf(t0, t1, x1 - x0) +
                             InTangent(8.0 * kMargin, std::max(std::fabs(t0), std::fabs(t1))) +
                             curve.Error();
        low = std::min(t0, t1) - slack;
        high = std::max(t0, t1) + slack;
        x0 = x1;
        t0 = t1;
      }
      if (!isClear && !(high < clearTop && low > clearBottom)) {
        const bool isBeyond = low > above || high < below;
        if (isBeyond) continue;
        leaveToRules(column);
      }
      CellGridC::Part part = CellGridC::MakePart(index, column, HeightOf(low), HeightOf(high));
      if (i == first) part.start = static_cast<float>(HeightOf(west.tangent));
      if (i == last) part.end = static_cast<float>(HeightOf(east.tangent));
      part.entersLeft = i > first ? 1U : 0U;
      parts.push_back(part);
    }
    // The rules may count an edge a little beyond its ends.
    const auto list = [&](std::size_t curveIndex, std::size_t column) {
      parts.push_back(CellGridC::MakePart(curveIndex, column, HeightOf(lowest), HeightOf(highest)));
    };
    if (first > 0 && west.hz - curveGrid_.GetBorder(first) < kOverlap) list(e, first - 1);
    const std::size_t next = (last < columns ? last : last - columns) + 1;
    if (next < columns && curveGrid_.GetBorder(next) - east.hz < kOverlap) list(index, next);
  }
  curveGrid_.Build(parts);
  FindTouchesOfCorners(corners);
  FindTouchesOfCells(borders);
  SortTouches();
}

void PreparedSphereAreaC::AddTouch(double low, double high) {
  if (low < 0.0 && !isNarrow_) touches_.push_back({low + TWO_PI, TWO_PI});
  if (high > TWO_PI) touches_.push_back({0.0, high - TWO_PI});
  touches_.push_back({std::max(low, 0.0), high});
}

double PreparedSphereAreaC::ExtremeOf(const Curve& curve, double t1, double t2) {
  const double span = curve.high - curve.low;
  if (span > kShortSpan) return Swing(curve.a, curve.b);
  return std::max(std::fabs(t1), std::fabs(t2)) + BulgeOf(t1, t2, span);
}

void PreparedSphereAreaC::FindTouchesOfCorners(const std::vector<Corner>& corners) {
  const std::size_t n = corners.size();
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t before = i > 0 ? i - 1 : n - 1;
    const Curve& in = curves_[before];
    const Curve& out = curves_[i];
    const Corner& corner = corners[i];
    double west = kMargin;
    double east = kMargin;
    const bool goesEast = frame_.GetStart(i).Hz < frame_.GetEnd(i).Hz;
    const bool cameEast = frame_.GetStart(before).Hz < frame_.GetEnd(before).Hz;
    if (in.kind == Kind::kArc && out.kind == Kind::kArc && goesEast != cameEast) {
      // Both edges are on one side, and part as a sinusoid that is 0 at the corner.
      const double span = std::min(in.high - in.low, out.high - out.low);
      const double extreme =
          std::max(ExtremeOf(in, corners[before].tangent, corner.tangent),
                   ExtremeOf(out, corner.tangent, corners[i + 1 < n ? i + 1 : 0].tangent));
      const double closest = InTangent(kApart, extreme) + in.Error() + out.Error();
      double reach = 1.01 * closest / Swing(in.a - out.a, in.b - out.b);
      reach = (reach < 0.01 && span < 3.0 ? std::min(reach, span) : span) + kMargin;
      (goesEast ? east : west) = reach;
    }
    AddTouch(corner.hz - west, corner.hz + east);
    if (out.kind == Kind::kSteep) AddTouch(out.low - kMargin, out.high + kMargin);
  }
  // Where an edge at a pole has its meridian, and on the opposite side, the rules decide.
  for (const std::uint32_t edge : poleEdges_) {
    for (const double side : {0.0, PI}) {
      const double hz = NormalizeAngle(MakeArc(edge).GetMeridian() + side);
      AddTouch(hz - 2.0 * kMargin, hz + 2.0 * kMargin);
    }
  }
}

void PreparedSphereAreaC::FindTouchesOfCells(const std::vector<Border>& borders) {
  struct Line {
    double west;  // tan(lat) where the curve, or what would continue it, meets the borders
    double east;
    double closest;
    double error;
    const Curve* curve;
  };
  constexpr std::size_t kMostLines = 1024;  // of a cell
  std::vector<Line> lines;
  lines.reserve(16);
  double columnWest = 0.0;
  double columnEast = 0.0;
  const auto compare = [&](const Line& a, const Line& b) {
    // The gap is a sinusoid: where it has one sign at both borders it is the least at one of them.
    const double gapWest = a.west - b.west;
    const double gapEast = a.east - b.east;
    const double closest = std::min(a.closest, b.closest) + a.error + b.error;
    const bool isApart =
        gapWest * gapEast > 0.0 && std::min(std::fabs(gapWest), std::fabs(gapEast)) > closest;
    if (isApart) return;
    const std::size_t first = std::min(a.curve->edge, b.curve->edge);
    const std::size_t second = std::max(a.curve->edge, b.curve->edge);
    const bool areNeighbours =
        second - first < 2 || (first == 0 && second + 1 == frame_.GetEdgeCount());
    if (areNeighbours) return;
    double low = std::max({columnWest, a.curve->low, b.curve->low}) - kMargin;
    double high = std::min({columnEast, a.curve->high, b.curve->high}) + kMargin;
    if (low > high) return;
    const double gapA = a.curve->a - b.curve->a;
    const double gapB = a.curve->b - b.curve->b;
    const double reach = 1.01 * closest / Swing(gapA, gapB);
    if (reach < 0.01) {
      const double middle = (columnWest + columnEast) / 2.0;
      const double zero = middle + std::remainder(std::atan2(-gapA, gapB) - middle, PI);
      low = std::max(low, zero - reach);
      high = std::min(high, zero + reach);
      if (low > high) return;
    }
    AddTouch(low, high);
  };
  for (std::size_t i = 0; i < curveGrid_.GetColumnCount(); ++i) {
    columnWest = curveGrid_.GetBorder(i);
    columnEast = curveGrid_.GetBorder(i + 1);
    curveGrid_.ForEachCell(i, [&](const CellGridC::Cell& cell) {
      // Two curves are compared in the lowest cell that has both: there one of them is lowest.
      lines.clear();
      std::size_t lowest = 0;
      for (const bool isLowest : {true, false}) {
        for (const CellGridC::Item& item : cell.items) {
          const Curve& curve = curves_[item.curve];
          if (curve.kind != Kind::kArc || (item.isLowest != 0) != isLowest) continue;
          const double west = curve.At(borders[i].cosine, borders[i].sine);
          const double east = curve.At(borders[i + 1].cosine, borders[i + 1].sine);
          // In between tan(lat) may be greater, by 1 / cos(width / 2).
          constexpr double kSteepest = 1.45;
          const double extreme = std::max(std::fabs(west), std::fabs(east));
          lines.push_back(
              {west, east, InTangent(kApart, kSteepest * extreme), curve.Error(), &curve});
        }
        if (isLowest) lowest = lines.size();
      }
      if (lines.size() > kMostLines) {
        AddTouch(columnWest - kMargin, columnEast + kMargin);
        return;
      }
      for (std::size_t a = 0; a < lowest; ++a) {
        for (std::size_t b = a + 1; b < lines.size(); ++b) compare(lines[a], lines[b]);
      }
    });
  }
}

void PreparedSphereAreaC::SortTouches() {
  const auto isBefore = [](const Span& a, const Span& b) { return a.low < b.low; };
  std::sort(touches_.begin(), touches_.end(), isBefore);
  std::size_t kept = 0;
  for (const Span& touch : touches_) {
    if (kept > 0 && touch.low <= touches_[kept - 1].high) {
      touches_[kept - 1].high = std::max(touches_[kept - 1].high, touch.high);
    } else {
      touches_[kept++] = touch;
    }
  }
  touches_.resize(kept);
  touchesPerRadian_ = static_cast<double>(kept) / curveGrid_.GetWidth();
  touchBegin_.reserve(kept);
  std::uint32_t first = 0;
  for (std::size_t i = 0; i < kept; ++i) {
    while (first < kept && touches_[first].high * touchesPerRadian_ < static_cast<double>(i)) {
      ++first;
    }
    touchBegin_.push_back(first);
  }
}

inline bool PreparedSphereAreaC::IsAtSeam(double h) const {
  return h > curveGrid_.GetWidth() || h > TWO_PI - kOverlap || (!isNarrow_ && h < kOverlap);
}

inline bool PreparedSphereAreaC::MayTouch(double h) const {
  const auto part = static_cast<std::size_t>(h * touchesPerRadian_);
  for (std::size_t i = touchBegin_[std::min(part, touchBegin_.size() - 1)];
       i < touches_.size() && touches_[i].low <= h; ++i) {
    if (h <= touches_[i].high) return true;
  }
  return false;
}

void PreparedSphereAreaC::BuildStrips(std::vector<CellGridC::Part>& parts) {
  // The probe of the band lies in [0, 2 pi], whatever the width of the frame.
  const double width = std::min(frameWidth_, TWO_PI) + 2.0 * kBandReach;
  const std::size_t measured = frame_.GetEdgeCount() - 1;  // the closing edge has no band
  stripGrid_ =
      CellGridC(width, CellGridC::CountColumns(measured, SumOfSpans(frame_.edges, measured), width,
                                               2.0 * kBandReach));
  constexpr double kReach = kBandReach + kOverlap;
  const double step = stripGrid_.GetBorder(1);
  strips_.reserve(measured);
  for (std::size_t e = 0; e < measured; ++e) {
    const AnglePointC& a = frame_.GetStart(e);
    const AnglePointC& b = frame_.GetEnd(e);
    const auto [low, high] = std::minmax(a.Hz, b.Hz);
    const auto [vLow, vHigh] = std::minmax(a.V, b.V);
    // A strip is what lies within the reach of the edge's line, or the edge's box when the line is
    // steep.
    Strip strip{(vLow + vHigh) / 2.0, 0.0, (vHigh - vLow) / 2.0 + kReach};
    if (high - low > step) {
      strip.slope = (b.V - a.V) / (b.Hz - a.Hz);
      strip.v0 = a.V - strip.slope * a.Hz;
      strip.halfHeight = kReach * std::sqrt(1.0 + strip.slope * strip.slope);
    }
    strips_.push_back(strip);
    if (low - kReach > width) continue;
    const std::size_t last = stripGrid_.ColumnOf(high + kReach);
    for (std::size_t i = stripGrid_.ColumnOf(low - kReach); i <= last; ++i) {
      const double v1 = strip.v0 + strip.slope * stripGrid_.GetBorder(i);
      const double v2 = strip.v0 + strip.slope * stripGrid_.GetBorder(i + 1);
      const double top = std::max(std::min(v1, v2) - strip.halfHeight, vLow - kReach);
      const double bottom = std::min(std::max(v1, v2) + strip.halfHeight, vHigh + kReach);
      parts.push_back(CellGridC::MakePart(e, i, top, std::max(top, bottom)));
    }
  }
  stripGrid_.Build(parts);
}

ArcEdgeC PreparedSphereAreaC::MakeArc(std::size_t edge) const {
  return {SpherePointC(frame_.GetStart(edge)), SpherePointC(frame_.GetEnd(edge))};
}

inline bool PreparedSphereAreaC::IsInAnyBand(double x, double v) const {
  if (x > stripGrid_.GetWidth()) return false;
  for (const CellGridC::Item& item : stripGrid_.Find(x, v).items) {
    const Strip& strip = strips_[item.curve];
    if (!(std::fabs(v - (strip.v0 + strip.slope * x)) <= strip.halfHeight)) continue;
    const std::size_t edge = item.curve;
    if (IsInBand({x, v}, frame_.GetStart(edge), frame_.GetEnd(edge))) return true;
  }
  return false;
}

PreparedSphereAreaC::Answer PreparedSphereAreaC::AskRectangle(double h, double v) const {
  if (h > frameWidth_ + kMargin && h < TWO_PI - kMargin) return {false, true};
  if (v < vLow_ - kMargin || v > vHigh_ + kMargin) return {false, true};
  // A crossing counts when its Hz, which may be off in the last place, rounds to that of the line:
  // not so just between two steps.
  const double steps = h * 1e10;
  const bool isBetweenSteps = std::fabs(steps - std::floor(steps) - 0.5) < 0.01;
  if (!isBetweenSteps && h > kMargin && h < frameWidth_ - kMargin && v > vLow_ + kMargin &&
      v < vHigh_ - kMargin) {
    return {true, true};
  }
  return {AskRules(h, v), false};
}

bool PreparedSphereAreaC::AskRules(double h, double v) const {
  if (way_ != Way::kCells || IsAtSeam(h))
    return IsInsideByCrossings(frame_, AllEdges(frame_), h, v);
  std::vector<std::uint32_t> edges = poleEdges_;
  curveGrid_.ForEachCell(curveGrid_.ColumnOf(h), [&](const CellGridC::Cell& cell) {
    for (const CellGridC::Item& item : cell.items) {
      const Curve& curve = curves_[item.curve];
      if (item.isLowest != 0 && curve.kind != Kind::kPole && h > curve.low - kOverlap &&
          h < curve.high + kOverlap) {
        edges.push_back(curve.edge);
      }
    }
  });
  return IsInsideByCrossings(frame_, edges, h, v);
}

inline PreparedSphereAreaC::Answer PreparedSphereAreaC::AskCells(double h, double v) const {
  if (!hasSearchLine_) return {false, true};
  // Every crossing lies within the search line's range: all count as above, or none does.
  if (v > vHigh_ + kLineMargin || (!frame_.enclosesZenith && v < vLow_ - kLineMargin)) {
    return {false, true};
  }
  if (h > curveGrid_.GetWidth() + kOverlap && h < TWO_PI - kOverlap) return {false, true};
  if (needsRules_ || IsAtSeam(h) || v < kOverlap || v > PI - kOverlap || MayTouch(h)) {
    return {AskRules(h, v), false};
  }
  // Edges at the north pole are crossed there, above any direction, if the line reaches it.
  if (hasNorthPole_ && vLow_ - kVertexAccuracy > -kMargin) return {AskRules(h, v), false};
  const std::size_t column = curveGrid_.ColumnOf(h);

  const double cosH = std::cos(h);
  const double sinH = std::sin(h);
  const double t = std::cos(v) / std::sin(v);
  const double margin = InTangent(4.0 * kMargin, t);
  const CellGridC::Cell cell = curveGrid_.Find(column, HeightOf(t));
  bool isOdd = cell.isOddBelow;
  bool isDecided = true;
  for (const CellGridC::Item& item : cell.items) {
    const Curve& curve = curves_[item.curve];
    const double gap = curve.At(cosH, sinH) - t;
    const bool hasBegun = h > curve.low;
    const bool isBeside = hasBegun && h < curve.high;
    isDecided = isDecided && (!isBeside || std::fabs(gap) > margin + curve.Error());
    const bool isBelow = isBeside ? gap < 0.0 : item.endsBelow != 0;
    isOdd ^= hasBegun && isBelow != (item.startsBelow != 0);
  }
  if (!isDecided) return {AskRules(h, v), false};
  // A closed ring is crossed an even number of times: with an odd number below, one is above.
  return {isOdd, true};
}

inline PreparedSphereAreaC::Answer PreparedSphereAreaC::AskInline(double hz, double v) const {
  if (!(hz >= 0.0 && hz <= TWO_PI) && !WrapIntoRange(hz, 0.0, TWO_PI)) return {false, true};
  if (!(v >= 0.0 && v <= TWO_PI) && !WrapIntoRange(v, 0.0, TWO_PI)) return {false, true};
  if (way_ == Way::kNever) return {false, true};
  const double hzOrigin = frame_.hzOrigin;
  if (way_ == Way::kPlain) {
    return {FindEdgeInBand(frame_, EdgesWithBand(frame_), BandProbe(hz, v, hzOrigin)) ||
                AskRules(NormalizeAngle(hz - hzOrigin), v),
            false};
  }
  double x = hz + hzOrigin;
  if (x > TWO_PI) {
    x = x > TWO_PI + kMargin && x < 2.0 * TWO_PI - kMargin ? x - TWO_PI
                                                           : BandProbe(hz, v, hzOrigin).Hz;
  }
  const double h = NormalizeOneTurn(hz - hzOrigin);
  if (way_ == Way::kCells) {
    if (IsInAnyBand(x, v)) return {true, true};
    return AskCells(h, v);
  }
  if (FindEdgeInBand(frame_, EdgesWithBand(frame_), {x, v})) return {true, true};
  return AskRectangle(h, v);
}

PreparedSphereAreaC::Answer PreparedSphereAreaC::Ask(double hz, double v) const {
  return AskInline(hz, v);
}

void PreparedSphereAreaC::Contains(std::span<const double> hz, std::span<const double> v,
                                   std::span<bool> inside) const {
  const std::size_t count = std::min({hz.size(), v.size(), inside.size()});
  for (std::size_t i = 0; i < count; ++i) inside[i] = AskInline(hz[i], v[i]).isInside;
}

}  // namespace GMAT
