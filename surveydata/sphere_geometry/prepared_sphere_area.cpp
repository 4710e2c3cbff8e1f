#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include <surveydata/sphere_geometry/area_probe.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>

namespace GMAT {
namespace {

// No comparison of the rules is undecided beyond this distance: the rounding to 10 digits, and the
// accuracy of the arcs.
constexpr double kMargin = kRoundingMargin;
// What the ends of the search line may be off, doubled.
constexpr double kLineMargin = 1e-7;
// Pieces reach this far beyond their edges, so that a column holds all that may matter to it.
constexpr double kOverlap = 1e-8;
constexpr double kMinWidth = 1e-3;
constexpr double kUndecided = std::numeric_limits<double>::infinity();

// The same values as `NormalizeAngle`, and quick for a in (-2 pi, 2 pi).
double NormalizeOneTurn(double a) {
  if (a >= 0.0 && a < TWO_PI) return a;
  if (!(a < 0.0 && a > -TWO_PI)) return NormalizeAngle(a);
  const double turned = a + TWO_PI;
  return turned < TWO_PI ? turned : 0.0;
}

bool IsRegular(const AnglePointC& p) {
  return p.Hz >= -kMargin && p.Hz <= TWO_PI + kMargin && p.V >= -kMargin && p.V <= PI + kMargin;
}

// As many columns as there are edges or more, but no more than keeps the lists linear in size.
std::size_t CountColumns(std::size_t edges, double spans, double width, double minStep) {
  const double n = static_cast<double>(edges);
  const double wanted = n < 16.0 ? 4.0 * n : (n < 64.0 ? 64.0 : n);
  const double crossedAtOnce = spans / width;
  const double affordable = std::clamp(8.0 * n / std::max(crossedAtOnce, 1.0), 8.0, wanted);
  return static_cast<std::size_t>(std::max(std::min(affordable, width / minStep), 1.0));
}

}  // namespace

PreparedSphereAreaC::PreparedSphereAreaC(const SphereAreaC& area) {
  SphereAreaC::Frame frame;
  if (!area.BuildFrame(frame)) return;
  if (!frame.enclosesZenith && !area.IsRingValid(frame.edges)) return;
  hzOrigin_ = frame.hzOrigin;
  vLow_ = std::min(frame.vMin, frame.vMax);
  vHigh_ = std::max(frame.vMin, frame.vMax);
  enclosesZenith_ = frame.enclosesZenith;
  edges_ = std::move(frame.edges);
  if (!std::all_of(area.GetPoints().begin(), area.GetPoints().end(), IsRegular)) {
    way_ = Way::kPlain;
    plainArea_ = area;
    return;
  }
  for (const AnglePointC& point : edges_) frameWidth_ = std::max(frameWidth_, point.Hz);
  if (area.GetPointCount() == 2) {
    way_ = Way::kRectangle;
    return;
  }
  way_ = Way::kColumns;
  hasSearchLine_ =
      GreatCircleArcC(SpherePointC({0.0, vLow_}), SpherePointC({0.0, vHigh_})).IsValid();
  BuildStrips();
  if (!hasSearchLine_) return;
  BuildArcs();
  BuildPieces();
}

void PreparedSphereAreaC::BuildArcs() {
  arcs_.reserve(edges_.size() / 2);
  SpherePointC start(edges_.front());
  start.GetUnit();
  for (std::size_t i = 0; i < edges_.size(); i += 2) {
    const SpherePointC end(edges_[i + 1]);
    end.GetUnit();
    const ArcEdgeC& arc = arcs_.emplace_back(start, end);
    if (arc.IsValid() && arc.GetPole() != 0) {
      poleEdges_.push_back(static_cast<std::uint32_t>(i / 2));
      (arc.GetPole() > 0 ? hasNorthPole_ : hasSouthPole_) = true;
    }
    start = end;
  }
}

void PreparedSphereAreaC::BuildPieces() {
  // A frame of less than a turn needs columns for its own width alone; edges at a pole concern
  // every meridian.
  const bool isNarrow = frameWidth_ < TWO_PI - 1e-3 && poleEdges_.empty();
  const double width = isNarrow ? std::max(frameWidth_, kMinWidth) : TWO_PI;

  double spans = 0.0;
  for (const ArcEdgeC& arc : arcs_) {
    if (arc.IsValid() && !arc.IsThroughPoles()) spans += arc.GetHzMax() - arc.GetHzMin();
  }
  const std::size_t columns = CountColumns(arcs_.size(), spans, width, 4.0 * kOverlap);
  const auto count = static_cast<std::ptrdiff_t>(columns);
  const double step = width / static_cast<double>(columns);
  pieces_.width = width;
  pieces_.perRadian = static_cast<double>(columns) / width;

  std::vector<double> cosines(columns + 1);
  std::vector<double> sines(columns + 1);
  for (std::size_t i = 0; i <= columns; ++i) {
    const double h = static_cast<double>(i) * step;
    cosines[i] = std::cos(h);
    sines[i] = std::sin(h);
  }

  // Calls use(column, piece) for every piece in the order of the edges.
  struct Range {
    std::ptrdiff_t first;
    std::ptrdiff_t last;
    double turn;
  };
  const auto rangeOf = [&](double low, double high) {
    const double turn = isNarrow ? 0.0 : TWO_PI * std::floor(low / TWO_PI);
    auto first =
        static_cast<std::ptrdiff_t>(std::floor((low - turn - kOverlap) * pieces_.perRadian));
    auto last =
        static_cast<std::ptrdiff_t>(std::floor((high - turn + kOverlap) * pieces_.perRadian));
    if (isNarrow) {
      first = std::clamp<std::ptrdiff_t>(first, 0, count - 1);
      last = std::clamp<std::ptrdiff_t>(last, 0, count - 1);
    }
    return Range{first, last, turn};
  };
  const auto columnOf = [&](std::ptrdiff_t i) {
    return static_cast<std::size_t>(i < 0 ? i + count : (i >= count ? i - count : i));
  };

  // Where an edge at a pole has its meridian, and on the opposite side, no bound decides.
  std::vector<std::pair<double, std::uint32_t>> seams;
  for (const std::uint32_t edge : poleEdges_) {
    const ArcEdgeC& arc = arcs_[edge];
    for (const double side : {0.0, PI}) {
      seams.emplace_back(NormalizeAngle(arc.GetMeridian() + side), edge);
    }
  }

  pieces_.begin.assign(columns + 1, 0);
  const auto countRange = [&](const Range& range) {
    for (std::ptrdiff_t i = range.first; i <= range.last; ++i) ++pieces_.begin[columnOf(i)];
  };
  for (const ArcEdgeC& arc : arcs_) {
    if (!arc.IsValid() || arc.IsThroughPoles()) continue;
    countRange(rangeOf(arc.GetHzMin(), arc.GetHzMax()));
  }
  for (const auto& [hz, edge] : seams) countRange(rangeOf(hz, hz));
  std::uint32_t total = 0;
  for (std::uint32_t& begin : pieces_.begin) {
    total += begin;
    begin = total;
  }
  pieces_.items.resize(total);
  const auto put = [&](std::ptrdiff_t column, const Piece& piece) {
    pieces_.items[--pieces_.begin[columnOf(column)]] = piece;
  };

  for (std::size_t e = 0; e < arcs_.size(); ++e) {
    const ArcEdgeC& arc = arcs_[e];
    if (!arc.IsValid() || arc.IsThroughPoles()) continue;
    const bool isEast = edges_[2 * e].Hz <= edges_[2 * e + 1].Hz;
    const AnglePointC& west = edges_[isEast ? 2 * e : 2 * e + 1];
    const AnglePointC& east = edges_[isEast ? 2 * e + 1 : 2 * e];
    const Range range = rangeOf(west.Hz, east.Hz);
    const double low = west.Hz - range.turn;
    const double high = east.Hz - range.turn;
    const cVec3& n = arc.GetNormal();
    const double flip = n.Z() < 0.0 ? 1.0 : -1.0;
    const double nz = std::fabs(n.Z());
    // tan(lat) swings between -k and k.
    const double k2 = (n.X() * n.X() + n.Y() * n.Y()) / (nz * nz);
    const bool isTooSteep = !(nz > kMargin * arc.GetNormalLength());
    const auto tangentOf = [](double v) { return std::cos(v) / std::sin(v); };

    // Whether the whole edge lies within the search line's range.
    const auto isClear = [&](double v) { return v >= vLow_ - kOverlap && v <= vHigh_ + kOverlap; };
    const double westTangent = tangentOf(west.V);
    const double eastTangent = tangentOf(east.V);
    bool fits = isClear(west.V) && isClear(east.V);
    if (fits) {
      // The slope of tan(lat) has one sign where the vertex is not in the span; the vertex lies
      // within the line's range when that reaches beyond the arc's highest and lowest point.
      const auto slopeAt = [&](double hz) { return n.X() * std::sin(hz) - n.Y() * std::cos(hz); };
      const bool isFarInside = std::min(west.V, east.V) - (high - low) > vLow_ &&
                               std::max(west.V, east.V) + (high - low) < vHigh_;
      if (!isFarInside) {
        const bool hasVertex =
            !(slopeAt(west.Hz) * slopeAt(east.Hz) > 1e-12 * (n.X() * n.X() + n.Y() * n.Y()));
        if (hasVertex) {
          const double highest = std::atan(std::sqrt(k2));
          fits = (westTangent > 0.0 && eastTangent > 0.0 && isClear(HALF_PI - highest)) ||
                 (westTangent < 0.0 && eastTangent < 0.0 && isClear(HALF_PI + highest));
        }
      }
    }

    double x0 = low;
    double v0 = west.V;
    double t0 = westTangent;
    for (std::ptrdiff_t i = range.first; i <= range.last; ++i) {
      const std::size_t column = columnOf(i);
      const double columnLow = static_cast<double>(i) * step;
      const double columnHigh = static_cast<double>(i + 1) * step;
      double x1 = high;
      double v1 = east.V;
      double t1 = eastTangent;
      if (columnHigh < high) {
        x1 = columnHigh;
        t1 = flip * (n.X() * cosines[column + 1] + n.Y() * sines[column + 1]) / nz;
        v1 = HALF_PI - std::atan(t1);
      }
      const double shift = columnLow - static_cast<double>(column) * step;
      const double dx = x1 - x0;
      Piece piece{low < columnLow - kOverlap ? -kUndecided : low - shift,
                  high > columnHigh + kOverlap ? kUndecided : high - shift,
                  0.0,
                  0.0,
                  kUndecided,
                  static_cast<std::uint32_t>(e)};
      bool isOutside = false;
      if (dx > kOverlap && !isTooSteep) {
        // The second derivative of the latitude is -sin(lat) (cos(lat) + 2 (k^2 - t^2) cos(lat)^3),
        // t = tan(lat); the chord is off by at most its maximum times dx^2 / 8.
        const double t2 = t0 * t1 > 0.0 ? std::min(t0 * t0, t1 * t1) : 0.0;
        const double c2 = 1.0 / (1.0 + t2);
        const double bend = std::sqrt(c2) * (1.0 + 2.0 * std::max(k2 - t2, 0.0) * c2);
        piece.slope = (v1 - v0) / dx;
        piece.v0 = v0 - piece.slope * (x0 - shift);
        const double error = 0.126 * dx * dx * bend + 2.0 * kMargin + 1e-8 * std::fabs(piece.slope);
        const double lowest = std::min(v0, v1) - error;
        const double highest = std::max(v0, v1) + error;
        isOutside = lowest > vHigh_ + kLineMargin || highest < vLow_ - kLineMargin;
        const bool isWithin = lowest > vLow_ && highest < vHigh_;
        if (fits || isWithin) piece.error = error;
      }
      if (isOutside) piece.edge = std::numeric_limits<std::uint32_t>::max();
      put(i, piece);
      if (columnHigh < high && columnHigh > low) {
        x0 = x1;
        v0 = v1;
        t0 = t1;
      }
    }
  }
  for (const auto& [hz, edge] : seams) {
    const Range range = rangeOf(hz, hz);
    for (std::ptrdiff_t i = range.first; i <= range.last; ++i) {
      const double shift = static_cast<double>(i) * step - static_cast<double>(columnOf(i)) * step;
      put(i, {hz - shift, hz - shift, 0.0, 0.0, kUndecided, edge});
    }
  }
  // Pieces beyond the search line's range are never crossed.
  std::size_t kept = 0;
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t from = pieces_.begin[column];
    const std::size_t to = pieces_.begin[column + 1];
    pieces_.begin[column] = static_cast<std::uint32_t>(kept);
    for (std::size_t i = from; i < to; ++i) {
      if (pieces_.items[i].edge != std::numeric_limits<std::uint32_t>::max()) {
        pieces_.items[kept++] = pieces_.items[i];
      }
    }
  }
  pieces_.begin[columns] = static_cast<std::uint32_t>(kept);
  pieces_.items.resize(kept);
}

void PreparedSphereAreaC::BuildStrips() {
  // The probe of the band lies in [0, 2 pi], whatever the width of the frame.
  const double width = std::min(frameWidth_, TWO_PI) + 2.0 * kBandReach;
  const std::size_t measured = edges_.size() / 2 - 1;  // the closing edge has no band
  double spans = 0.0;
  for (std::size_t e = 0; e < measured; ++e) {
    spans += std::fabs(edges_[2 * e].Hz - edges_[2 * e + 1].Hz);
  }
  const std::size_t columns = CountColumns(edges_.size() / 2, spans, width, 2.0 * kBandReach);
  const double step = width / static_cast<double>(columns);
  strips_.width = width;
  strips_.perRadian = static_cast<double>(columns) / width;
  const auto columnAt = [&](double x) {
    return static_cast<std::size_t>(
        std::clamp(x * strips_.perRadian, 0.0, static_cast<double>(columns - 1)));
  };
  constexpr double kReach = kBandReach + kOverlap;

  strips_.begin.assign(columns + 1, 0);
  for (std::size_t e = 0; e < measured; ++e) {
    const auto [low, high] = std::minmax(edges_[2 * e].Hz, edges_[2 * e + 1].Hz);
    if (low - kReach > width) continue;
    const std::size_t last = columnAt(high + kReach);
    for (std::size_t i = columnAt(low - kReach); i <= last; ++i) ++strips_.begin[i];
  }
  std::uint32_t total = 0;
  for (std::uint32_t& begin : strips_.begin) {
    total += begin;
    begin = total;
  }
  strips_.items.resize(total);
  for (std::size_t e = 0; e < measured; ++e) {
    const AnglePointC& a = edges_[2 * e];
    const AnglePointC& b = edges_[2 * e + 1];
    const auto [low, high] = std::minmax(a.Hz, b.Hz);
    if (low - kReach > width) continue;
    const auto [vLow, vHigh] = std::minmax(a.V, b.V);
    // A strip is what lies within the reach of the edge's line, or the edge's box when the line is
    // steep.
    Strip strip{(vLow + vHigh) / 2.0, 0.0,
                static_cast<float>(((vHigh - vLow) / 2.0 + kReach) * (1.0 + 1e-6)),
                static_cast<std::uint32_t>(e)};
    if (high - low > step) {
      strip.slope = (b.V - a.V) / (b.Hz - a.Hz);
      strip.v0 = a.V - strip.slope * a.Hz;
      strip.halfHeight =
          static_cast<float>(kReach * std::sqrt(1.0 + strip.slope * strip.slope) * (1.0 + 1e-6));
    }
    const std::size_t last = columnAt(high + kReach);
    for (std::size_t i = columnAt(low - kReach); i <= last; ++i) {
      strips_.items[--strips_.begin[i]] = strip;
    }
  }
}

inline bool PreparedSphereAreaC::IsInAnyBand(double x, double v) const {
  if (x > strips_.width) return false;
  for (const Strip& strip : strips_.At(x)) {
    if (!(std::fabs(v - (strip.v0 + strip.slope * x)) <= static_cast<double>(strip.halfHeight))) {
      continue;
    }
    if (IsInBand({x, v}, edges_[2 * strip.edge], edges_[2 * strip.edge + 1])) return true;
  }
  return false;
}

PreparedSphereAreaC::Answer PreparedSphereAreaC::AskRectangle(double h, double v) const {
  if (h > frameWidth_ + kMargin && h < TWO_PI - kMargin) return {false, true};
  if (v < vLow_ - kMargin || v > vHigh_ + kMargin) return {false, true};
  if (h > kMargin && h < frameWidth_ - kMargin && v > vLow_ + kMargin && v < vHigh_ - kMargin) {
    return {true, true};
  }
  return {AskRules(h, v), false};
}

bool PreparedSphereAreaC::AskRules(double h, double v) const {
  std::vector<double> crossings;
  if (way_ == Way::kRectangle) {
    for (std::size_t i = 0; i < edges_.size(); i += 2) {
      AnglePointC crossing;
      if (FindPlanarCrossing(edges_[i], edges_[i + 1], {h, vLow_}, {h, vHigh_}, crossing)) {
        crossings.push_back(crossing.V);
      }
    }
    return IsInsideByParity(crossings, v, enclosesZenith_);
  }
  const double cosH = std::cos(h);
  const double sinH = std::sin(h);
  const auto add = [&](const ArcEdgeC& arc) {
    double at = 0.0;
    if (arc.CrossesMeridian(h, cosH, sinH, vLow_, vHigh_, at)) crossings.push_back(at);
  };
  if (h > TWO_PI - kOverlap || h > pieces_.width) {  // at the seam
    for (const ArcEdgeC& arc : arcs_) add(arc);
  } else {
    for (const Piece& piece : pieces_.At(h)) {
      if (arcs_[piece.edge].GetPole() == 0) add(arcs_[piece.edge]);
    }
    for (const std::uint32_t edge : poleEdges_) add(arcs_[edge]);
  }
  return IsInsideByParity(crossings, v, enclosesZenith_);
}

inline PreparedSphereAreaC::Answer PreparedSphereAreaC::AskColumns(double h, double v) const {
  if (!hasSearchLine_) return {false, true};
  // Every crossing lies within the search line's range: all count as above, or none does.
  if (v > vHigh_ + kLineMargin || (!enclosesZenith_ && v < vLow_ - kLineMargin)) {
    return {false, true};
  }
  if (h > pieces_.width + kOverlap && h < TWO_PI - kOverlap) return {false, true};
  if (h > pieces_.width || h > TWO_PI - kOverlap || hasSouthPole_) return {AskRules(h, v), false};

  constexpr std::size_t kMaxBelow = 8;
  std::array<const Piece*, kMaxBelow> below;
  std::size_t belowCount = 0;
  // Edges at the north pole are crossed there, above any direction, if the line reaches it.
  bool hasOneAbove = enclosesZenith_;
  if (hasNorthPole_) {
    if (vLow_ - kVertexAccuracy > -kMargin) return {AskRules(h, v), false};
    hasOneAbove = true;
  }
  for (const Piece& piece : pieces_.At(h)) {
    if (h > piece.hzLow + kMargin && h < piece.hzHigh - kMargin) {
      const double offset = v - (piece.v0 + piece.slope * h);
      if (offset > piece.error) {
        hasOneAbove = true;
      } else if (offset < -piece.error && belowCount < kMaxBelow) {
        below[belowCount++] = &piece;
      } else {
        return {AskRules(h, v), false};
      }
    } else if (!(h < piece.hzLow - kMargin || h > piece.hzHigh + kMargin)) {
      return {AskRules(h, v), false};
    }
  }
  if (!hasOneAbove) return {false, true};
  // Crossings that agree to 10 digits would count as one.
  for (std::size_t i = 1; i < belowCount; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const Piece& a = *below[i];
      const Piece& b = *below[j];
      const double apart = (a.v0 + a.slope * h) - (b.v0 + b.slope * h);
      if (!(std::fabs(apart) > a.error + b.error)) return {AskRules(h, v), false};
    }
  }
  return {belowCount % 2 == 1, true};
}

inline PreparedSphereAreaC::Answer PreparedSphereAreaC::AskInline(double hz, double v) const {
  if (!(hz >= 0.0 && hz <= TWO_PI) && !WrapIntoRange(hz, 0.0, TWO_PI)) return {false, true};
  if (!(v >= 0.0 && v <= TWO_PI) && !WrapIntoRange(v, 0.0, TWO_PI)) return {false, true};
  if (way_ == Way::kNever) return {false, true};
  if (way_ == Way::kPlain) return {plainArea_.Contains(hz, v), false};
  double x = hz + hzOrigin_;
  if (x > TWO_PI) {
    x = x > TWO_PI + kMargin && x < 2.0 * TWO_PI - kMargin ? x - TWO_PI
                                                           : BandProbe(hz, v, hzOrigin_).Hz;
  }
  const double h = NormalizeOneTurn(hz - hzOrigin_);
  if (way_ == Way::kColumns) {
    if (IsInAnyBand(x, v)) return {true, true};
    return AskColumns(h, v);
  }
  for (std::size_t i = 0; i + 2 < edges_.size(); i += 2) {
    if (IsNearBox({x, v}, edges_[i], edges_[i + 1]) && IsInBand({x, v}, edges_[i], edges_[i + 1])) {
      return {true, true};
    }
  }
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
