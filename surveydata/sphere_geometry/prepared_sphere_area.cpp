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
constexpr double kPiecesPerEdge = 6.0;
constexpr double kUndecided = std::numeric_limits<double>::infinity();

// The next float that is not below x.
float UpToFloat(double x) { return static_cast<float>(x * (1.0 + 1e-6)); }

// tan(lat) of a direction, which falls from infinity at the zenith; beyond the poles it stays.
double TangentOf(double v) {
  if (v < kMargin) return kUndecided;
  if (v > PI - kMargin) return -kUndecided;
  return std::cos(v) / std::sin(v);
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

// As many columns as there are edges or more, but no more than keeps the lists linear in size.
std::size_t CountColumns(std::size_t edges, double spans, double width, double minStep) {
  const double n = static_cast<double>(edges);
  const double wanted = std::max(n, 16.0);
  const double crossedAtOnce = spans / width;
  const double affordable =
      std::clamp(kPiecesPerEdge * n / std::max(crossedAtOnce, 1.0), 8.0, wanted);
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
  MeasureCorners();
  BuildPieces();
  units_ = {};
  cornerReach_ = {};
}

void PreparedSphereAreaC::BuildArcs() {
  arcs_.reserve(edges_.size() / 2);
  SpherePointC start(edges_.front());
  units_.reserve(edges_.size() / 2 + 1);
  units_.push_back(start.GetUnit());
  for (std::size_t i = 0; i < edges_.size(); i += 2) {
    const SpherePointC end(edges_[i + 1]);
    units_.push_back(end.GetUnit());
    const ArcEdgeC& arc = arcs_.emplace_back(start, end);
    if (arc.IsValid() && arc.GetPole() != 0) {
      poleEdges_.push_back(static_cast<std::uint32_t>(i / 2));
      (arc.GetPole() > 0 ? hasNorthPole_ : hasSouthPole_) = true;
    }
    start = end;
  }
}

void PreparedSphereAreaC::MeasureCorners() {
  const auto dot = [](const cVec3& a, const cVec3& b) {
    return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z();
  };
  const std::size_t n = arcs_.size();
  cornerReach_.assign(n + 1, kMargin);
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t before = i > 0 ? i - 1 : n - 1;
    const ArcEdgeC& in = arcs_[before];
    const ArcEdgeC& out = arcs_[i];
    if (!in.IsValid() || !out.IsValid() || in.IsThroughPoles() || out.IsThroughPoles()) continue;
    const bool staysOnOneSide = (edges_[2 * before + 1].Hz - edges_[2 * before].Hz) *
                                    (edges_[2 * i + 1].Hz - edges_[2 * i].Hz) <
                                0.0;
    if (!staysOnOneSide) continue;
    // Two great circles part at the angle of their planes: a meridian at the distance d from their
    // corner crosses them at least sin(d) times the sine of that angle apart, on the first quarter
    // turn.
    const cVec3& a = in.GetNormal();
    const cVec3& b = out.GetNormal();
    const cVec3 between{a.Y() * b.Z() - a.Z() * b.Y(), a.Z() * b.X() - a.X() * b.Z(),
                        a.X() * b.Y() - a.Y() * b.X()};
    const double sine =
        std::sqrt(dot(between, between)) / (in.GetNormalLength() * out.GetNormalLength());
    const double sinV = std::sqrt(units_[i].X() * units_[i].X() + units_[i].Y() * units_[i].Y());
    const double reach = 4.0 * kMargin / (sine * sinV);
    constexpr double kFar = 0.05;
    const bool isBounded = reach < kFar && dot(units_[before], units_[before + 1]) > 0.0 &&
                           dot(units_[i], units_[i + 1]) > 0.0;
    cornerReach_[i] = isBounded ? std::max(reach, kMargin) : kUndecided;
  }
  cornerReach_[n] = cornerReach_[0];
}

bool PreparedSphereAreaC::MayTouch(const Piece& a, const Piece& b, Span& where) const {
  const auto [first, second] = std::minmax(a.edge, b.edge);
  const auto last = static_cast<std::uint32_t>(arcs_.size() - 1);
  if (second - first == 1 && cornerReach_[second] < kUndecided) return false;
  if (first == 0 && second == last && cornerReach_[0] < kUndecided) return false;
  const double low = std::max({-kOverlap, a.OuterLow(), b.OuterLow()});
  const double high = std::min({pieces_.step + kOverlap, a.OuterHigh(), b.OuterHigh()});
  if (low > high) return false;
  const double bend = std::fabs(static_cast<double>(a.bend) - static_cast<double>(b.bend));
  const double errors = a.Error() + b.Error() + bend * (high - low) * (high - low);
  const double gapLow = a.At(low) - b.At(low);
  const double gapHigh = a.At(high) - b.At(high);
  if ((gapLow > errors && gapHigh > errors) || (gapLow < -errors && gapHigh < -errors)) {
    return false;
  }
  // The gap is a straight line up to the errors.
  const double perGap = (high - low) / (gapHigh - gapLow);
  const double x1 = low + (errors - gapLow) * perGap;
  const double x2 = low + (-errors - gapLow) * perGap;
  where = {low, high};
  if (std::isfinite(x1) && std::isfinite(x2)) {
    where.low = std::max(low, std::min(x1, x2) - kMargin);
    where.high = std::min(high, std::max(x1, x2) + kMargin);
  }
  return true;
}

void PreparedSphereAreaC::OrderColumn(std::size_t column) {
  const std::span<Piece> pieces(pieces_.items.data() + pieces_.begin[column],
                                pieces_.items.data() + pieces_.begin[column + 1]);
  Order& order = orders_[column];
  order = {0, true};
  // Where a few pairs of pieces come close together there the rules decide; where many do, or far,
  // the pieces of a meridian are compared when it is asked for.
  constexpr std::size_t kMaxTouches = 64;
  const std::size_t firstTouch = touches_.items.size();
  const auto note = [&](const Piece& a, const Piece& b) {
    Span where{};
    if (!MayTouch(a, b, where)) return true;
    if (touches_.items.size() - firstTouch == kMaxTouches ||
        where.high - where.low > pieces_.step / 16.0) {
      order.isProven = false;
      touches_.items.resize(firstTouch);
      return false;
    }
    touches_.items.push_back(where);
    return true;
  };
  constexpr std::size_t kFew = 6;
  if (pieces.size() <= kFew) {
    for (std::size_t i = 1; i < pieces.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        if (!note(pieces[i], pieces[j])) return;
      }
    }
    return;
  }

  // By the lowest value that each piece may have; only pieces that share a value can touch.
  struct Entry {
    double lowest;
    double highest;
    Piece piece;
  };
  std::vector<Entry> entries;
  entries.reserve(pieces.size());
  for (const Piece& piece : pieces) {
    if (!(piece.Error() < kUndecided)) {
      order.isProven = false;
      return;
    }
    const double low = std::max(piece.OuterLow(), -kOverlap);
    const double high = std::min(piece.OuterHigh(), pieces_.step + kOverlap);
    const double t1 = piece.At(low);
    const double t2 = piece.At(high);
    const double slack =
        piece.Error() + std::fabs(static_cast<double>(piece.bend)) * (high - low) * (high - low);
    entries.push_back({std::min(t1, t2) - slack, std::max(t1, t2) + slack, piece});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.lowest < b.lowest; });
  for (std::size_t i = 0; i < entries.size(); ++i) {
    for (std::size_t j = i + 1; j < entries.size() && entries[j].lowest <= entries[i].highest;
         ++j) {
      if (!note(entries[i].piece, entries[j].piece)) return;
    }
  }
  // Pieces that fill the column and never touch have one order in all of it.
  if (touches_.items.size() > firstTouch) return;
  std::size_t next = 0;
  for (const bool wantFilling : {true, false}) {
    for (const Entry& entry : entries) {
      const bool fills = entry.piece.low == -kUndecided && entry.piece.high == kUndecided;
      if (fills == wantFilling) pieces[next++] = entry.piece;
    }
    if (wantFilling) order.sorted = static_cast<std::uint32_t>(next);
  }
  const double middle = pieces_.step / 2.0;
  std::sort(pieces.begin(), pieces.begin() + order.sorted,
            [middle](const Piece& a, const Piece& b) { return a.At(middle) > b.At(middle); });
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
  pieces_.step = step;
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

  // The ends of the search line, and what surely lies beyond them, as tan(lat).
  const double tangentTop = TangentOf(vLow_);
  const double tangentBottom = TangentOf(vHigh_);
  const double tangentAbove = TangentOf(vLow_ - kLineMargin);
  const double tangentBelow = TangentOf(vHigh_ + kLineMargin);
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
    const double k = std::sqrt(k2);
    const bool isTooSteep = !(nz > kMargin * arc.GetNormalLength());
    // Whether the whole edge lies within the search line's range.
    const auto isClear = [&](double v) { return v >= vLow_ - kOverlap && v <= vHigh_ + kOverlap; };
    const cVec3& westUnit = units_[isEast ? e : e + 1];
    const cVec3& eastUnit = units_[isEast ? e + 1 : e];
    const auto cosLatOf = [](const cVec3& u) { return std::sqrt(u.X() * u.X() + u.Y() * u.Y()); };
    const double westCos = cosLatOf(westUnit);
    const double eastCos = cosLatOf(eastUnit);
    const double westTangent = westUnit.Z() / westCos;
    const double eastTangent = eastUnit.Z() / eastCos;
    // The derivative of tan(lat).
    const auto derivativeAt = [&](double cosine, double sine) {
      return flip * (n.Y() * cosine - n.X() * sine) / nz;
    };
    const double westDerivative = derivativeAt(westUnit.X() / westCos, westUnit.Y() / westCos);
    const double eastDerivative = derivativeAt(eastUnit.X() / eastCos, eastUnit.Y() / eastCos);
    bool fits = isClear(west.V) && isClear(east.V);
    if (fits) {
      // The slope of tan(lat) has one sign where the vertex is not in the span; the vertex lies
      // within the line's range when that reaches beyond the arc's highest and lowest point.
      const bool isFarInside = std::min(west.V, east.V) - (high - low) > vLow_ &&
                               std::max(west.V, east.V) + (high - low) < vHigh_;
      if (!isFarInside) {
        const bool hasVertex = !(westDerivative * eastDerivative > 1e-12 * k2);
        if (hasVertex) {
          const double highest = std::atan(k);
          fits = (westTangent > 0.0 && eastTangent > 0.0 && isClear(HALF_PI - highest)) ||
                 (westTangent < 0.0 && eastTangent < 0.0 && isClear(HALF_PI + highest));
        }
      }
    }

    const auto reachOf = [this](std::size_t corner) {
      return cornerReach_[corner] < kUndecided ? cornerReach_[corner] : kMargin;
    };
    const double westReach = reachOf(isEast ? e : e + 1);
    const double eastReach = reachOf(isEast ? e + 1 : e);
    double x0 = low;
    double t0 = westTangent;
    double d0 = westDerivative;
    for (std::ptrdiff_t i = range.first; i <= range.last; ++i) {
      const std::size_t column = columnOf(i);
      const double columnLow = static_cast<double>(i) * step;
      const double columnHigh = static_cast<double>(i + 1) * step;
      double x1 = high;
      double t1 = eastTangent;
      double d1 = eastDerivative;
      if (columnHigh < high) {
        x1 = columnHigh;
        t1 = flip * (n.X() * cosines[column + 1] + n.Y() * sines[column + 1]) / nz;
        d1 = derivativeAt(cosines[column + 1], sines[column + 1]);
      }
      const double dx = x1 - x0;
      Piece piece{};
      // What surrounds a corner may reach into the columns beside its own.
      piece.low =
          low + westReach < columnLow - kOverlap ? -kUndecided : low - columnLow + westReach;
      piece.high =
          high - eastReach > columnHigh + kOverlap ? kUndecided : high - columnLow - eastReach;
      piece.reachLow = UpToFloat(westReach + kMargin);
      piece.reachHigh = UpToFloat(eastReach + kMargin);
      piece.error = std::numeric_limits<float>::infinity();
      piece.edge = static_cast<std::uint32_t>(e);
      bool isOutside = false;
      if (dx >= 0.0 && !isTooSteep) {
        // t'' = -t: the parabola of the first three terms is off by at most k dx^3 / 6.
        const double bend = -t0 / 2.0;
        const double back = columnLow - x0;
        piece.slope = d0 + 2.0 * bend * back;
        piece.t0 = t0 + (d0 + bend * back) * back;
        piece.bend = static_cast<float>(bend);
        const double extreme = std::max(std::fabs(t0), std::fabs(t1)) + std::fabs(bend) * dx * dx;
        const double error = 0.17 * k * dx * dx * dx + 4.0 * kMargin * (1.0 + extreme * extreme) +
                             1e-12 * (std::fabs(d0) + std::fabs(bend)) +
                             1e-7 * std::fabs(bend) * step * step;
        const double slack = error + std::fabs(bend) * dx * dx;
        const double lowest = std::min(t0, t1) - slack;
        const double highest = std::max(t0, t1) + slack;
        isOutside = lowest > tangentAbove || highest < tangentBelow;
        const bool isWithin = highest < tangentTop && lowest > tangentBottom;
        if (fits || isWithin) piece.error = UpToFloat(error);
      }
      if (isOutside) piece.edge = std::numeric_limits<std::uint32_t>::max();
      put(i, piece);
      if (columnHigh < high && columnHigh > low) {
        x0 = x1;
        t0 = t1;
        d0 = d1;
      }
    }
  }
  for (const auto& [hz, edge] : seams) {
    const Range range = rangeOf(hz, hz);
    for (std::ptrdiff_t i = range.first; i <= range.last; ++i) {
      const double x = hz - static_cast<double>(i) * step;
      Piece seam{};
      seam.low = x + kMargin;
      seam.high = x - kMargin;
      seam.reachLow = seam.reachHigh = UpToFloat(2.0 * kMargin);
      seam.edge = edge;
      put(i, seam);
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
  orders_.resize(columns);
  touches_.begin.reserve(columns + 1);
  for (std::size_t column = 0; column < columns; ++column) {
    touches_.begin.push_back(static_cast<std::uint32_t>(touches_.items.size()));
    OrderColumn(column);
  }
  touches_.begin.push_back(static_cast<std::uint32_t>(touches_.items.size()));
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
  strips_.step = step;
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
  for (const Strip& strip : strips_[strips_.IndexOf(x)]) {
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
    for (const Piece& piece : pieces_[pieces_.IndexOf(h)]) {
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
  if (h > pieces_.width || h > TWO_PI - kOverlap || hasSouthPole_ || v < kOverlap ||
      v > PI - kOverlap) {
    return {AskRules(h, v), false};
  }

  // Edges at the north pole are crossed there, above any direction, if the line reaches it.
  bool hasOneAbove = enclosesZenith_;
  if (hasNorthPole_) {
    if (vLow_ - kVertexAccuracy > -kMargin) return {AskRules(h, v), false};
    hasOneAbove = true;
  }
  const std::size_t column = pieces_.IndexOf(h);
  const std::span<const Piece> pieces = pieces_[column];
  const Order order = orders_[column];
  const double x = h - static_cast<double>(column) * pieces_.step;
  const double t = std::cos(v) / std::sin(v);
  const auto offsetFrom = [x, t](const Piece& piece) { return piece.At(x) - t; };
  const auto isUndecided = [&offsetFrom](const Piece& piece) {
    return !(std::fabs(offsetFrom(piece)) > piece.Error());
  };
  for (const Span& touch : touches_[column]) {
    if (x >= touch.low && x <= touch.high) return {AskRules(h, v), false};
  }
  constexpr std::size_t kMaxBelow = 8;
  std::array<const Piece*, kMaxBelow> below;
  std::size_t belowCount = 0;
  if (order.sorted > 0) {
    const auto end = pieces.begin() + order.sorted;
    const auto firstBelow = std::partition_point(
        pieces.begin(), end, [&](const Piece& piece) { return offsetFrom(piece) >= 0.0; });
    if ((firstBelow != end && isUndecided(*firstBelow)) ||
        (firstBelow != pieces.begin() && isUndecided(*(firstBelow - 1)))) {
      return {AskRules(h, v), false};
    }
    hasOneAbove = hasOneAbove || firstBelow != pieces.begin();
    belowCount = static_cast<std::size_t>(end - firstBelow);
  }
  for (const Piece& piece : pieces.subspan(order.sorted)) {
    if (x > piece.low && x < piece.high) {
      if (isUndecided(piece)) return {AskRules(h, v), false};
      if (offsetFrom(piece) > 0.0) {
        hasOneAbove = true;
      } else {
        if (belowCount < kMaxBelow) below[belowCount] = &piece;
        ++belowCount;
      }
    } else if (!(x < piece.OuterLow() || x > piece.OuterHigh())) {
      return {AskRules(h, v), false};
    }
  }
  if (!hasOneAbove) return {false, true};
  if (!order.isProven) {
    // Crossings that agree to 10 digits would count as one.
    if (belowCount > kMaxBelow) return {AskRules(h, v), false};
    for (std::size_t i = 1; i < belowCount; ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        const double apart = offsetFrom(*below[i]) - offsetFrom(*below[j]);
        if (!(std::fabs(apart) > below[i]->Error() + below[j]->Error()))
          return {AskRules(h, v), false};
      }
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
