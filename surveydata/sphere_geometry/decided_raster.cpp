#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/boundary_band.h>
#include <surveydata/sphere_geometry/decided_raster.h>
#include <surveydata/sphere_geometry/filter_bounds.h>

namespace GMAT {
namespace {

constexpr auto kOutside = static_cast<std::uint8_t>(Verdict::kOutside);
constexpr auto kAsk = static_cast<std::uint8_t>(Verdict::kUndecided);
constexpr std::uint8_t kOpen = 255;  // neither marked nor decided

// Wraps an angle of a few turns at most into [0, 2 pi).
double InTurn(double x) {
  const double turned = x - TWO_PI * std::floor(x / TWO_PI);
  return turned >= 0.0 && turned < TWO_PI ? turned : 0.0;
}

}  // namespace

/// Marks the cells that edges and bands enter, then decides all others.
class DecidedRasterC::BuilderC {
 public:
  BuilderC(DecidedRasterC& raster, const AreaFrame& frame, const RingCurves& ring,
           const SlabIndexC& slabs)
      : raster_(raster), frame_(frame), ring_(ring), slabs_(slabs), line_(frame) {}

  void Build() {
    ChooseRows();
    ChooseColumns();
    MarkEdges();
    MarkBand();
    MarkNadir();
    for (std::size_t column = 0; column < kRingColumns; ++column) DecideColumn(column);
    CopyIntervals();
  }

 private:
  // Rows cover the bounds of the ring and of the band. Above a ring around the zenith, the
  // directions are inside.
  void ChooseRows() {
    double vLow = frame_.edges.front().V;
    double vHigh = vLow;
    for (const AnglePointC& point : frame_.edges) {
      vLow = std::min(vLow, point.V);
      vHigh = std::max(vHigh, point.V);
    }
    vLow = std::min({vLow, frame_.vMin, frame_.vMax}) - kStripReach - kRasterEdge;
    vHigh = std::max({vHigh, frame_.vMin, frame_.vMax}) + kStripReach + kRasterEdge;
    const double top = 2.0 * kPoleMargin;
    const bool isTopOutside = !frame_.enclosesZenith && vLow > top;
    raster_.vTop_ = isTopOutside ? vLow : top;
    raster_.rowsPerRadian_ = kRows / (vHigh - raster_.vTop_);
    above_ = isTopOutside ? kOutside : kAsk;
    rowTangents_.reserve(kRows + 1);
    for (std::size_t i = 0; i <= kRows; ++i) {
      const double v = raster_.vTop_ + static_cast<double>(i) / raster_.rowsPerRadian_;
      rowTangents_.push_back(v < PI - kPoleMargin ? std::cos(v) / std::sin(v)
                                                  : -2.0 * kPoleTangent);
    }
  }

  void ChooseColumns() {
    const bool isTurn = slabs_.GetWidth() == TWO_PI;
    raster_.origin_ = ToTurnUnits(NormalizeAngle(frame_.hzOrigin - kRasterOverlap));
    shift_ = InTurn(frame_.hzOrigin - ToHz(raster_.origin_));
    ringWidth_ = isTurn ? TWO_PI : slabs_.GetWidth() + shift_ + kRasterOverlap;
    raster_.ring_ = Block(0, ringWidth_, kRingColumns);
    std::size_t columns = kRingColumns;
    const double bandStart = InTurn(HzOfBand(-2.0 * kStripReach));
    const double bandWidth = slabs_.GetWidth() + 4.0 * kStripReach;
    hasBandColumns_ = !isTurn && bandStart + bandWidth > ringWidth_;
    if (hasBandColumns_) {
      raster_.band_ = Block(ToTurnUnits(bandStart), bandWidth, kBandColumns);
      columns += kBandColumns;
    }
    // One more column for every Hz outside both blocks.
    raster_.cells_.assign((columns + 1) * kStride, kOutside);
    for (std::size_t column = 0; column < kRingColumns; ++column) {
      std::uint8_t* const cells = CellsOf(column);
      cells[0] = above_;
      std::memset(cells + 1, kOpen, kRows);
    }
    borders_.reserve(kRingColumns + 1);
    for (std::size_t i = 0; i <= kRingColumns; ++i) {
      const double h = BorderOf(i);
      borders_.push_back({std::cos(h), std::sin(h)});
    }
  }

  // Converts an Hz of the band to one of the raster; not normalised.
  double HzOfBand(double x) const { return x - 2.0 * frame_.hzOrigin + shift_; }

  // The border to the west of a column, in the frame of the edges.
  double BorderOf(std::size_t column) const { return raster_.ring_.BorderOf(column) - shift_; }
  std::size_t ColumnOf(double h) const { return ColumnIn(raster_.ring_, h + shift_); }
  // An Hz outside the block gives its first or last column.
  static std::uint32_t ColumnIn(const Block& block, double hz) {
    const double units =
        std::clamp(hz * (0x1p32 / TWO_PI), 0.0, static_cast<double>(block.end - 1));
    return block.ColumnOf(static_cast<std::uint32_t>(units));
  }

  std::uint8_t* CellsOf(std::size_t column) { return raster_.cells_.data() + column * kStride; }
  void MarkColumn(std::size_t column) { std::memset(CellsOf(column), kAsk, kStride); }
  void MarkRows(std::size_t column, std::size_t first, std::size_t last) {
    std::memset(CellsOf(column) + first, kAsk, last + 1 - first);
  }

  // -- Edges --

  void MarkEdges() {
    for (std::size_t edge = 0; edge < ring_.curves.size(); ++edge) {
      const ArcCurve& curve = ring_.curves[edge];
      if (curve.kind == ArcCurve::kPole) {
        MarkToPole(ring_.GetStart(edge));
        MarkToPole(ring_.GetEnd(edge));
        continue;
      }
      const RingEdge ends = ring_.Orient(edge);
      allCount_ = line_.AllCount(curve, ends);
      SeekRow(ends.west.tangent);
      MarkEdge(curve, ends.west.tangent, ends.east.tangent);
    }
  }

  // An edge that crosses the seam of the raster is marked in two pieces.
  void MarkEdge(const ArcCurve& curve, double t1, double t2) {
    const double seam = TWO_PI - shift_;
    if (curve.high <= seam) {
      MarkPiece(curve, curve.low, curve.high, t1, t2);
    } else if (curve.low >= seam) {
      MarkPiece(curve, curve.low - TWO_PI, curve.high - TWO_PI, t1, t2);
    } else if (curve.kind == ArcCurve::kArc) {
      const double t = curve.At(borders_.front());
      MarkPiece(curve, curve.low, seam, t1, t);
      MarkPiece(curve, seam - TWO_PI, curve.high - TWO_PI, t, t2);
    } else {
      MarkPiece(curve, curve.low, seam, t1, t2);
      MarkPiece(curve, seam - TWO_PI, curve.high - TWO_PI, t1, t2);
    }
  }

  // Marks an edge, or a part of it, in the columns from Hz `low`, where its tangent is t1, to Hz
  // `high`, where it is t2.
  void MarkPiece(const ArcCurve& curve, double low, double high, double t1, double t2) {
    const std::size_t last = ColumnOf(high + kRasterSlack);
    double x0 = low;
    double t0 = t1;
    for (std::size_t column = ColumnOf(low - kRasterSlack); column <= last; ++column) {
      if (curve.kind != ArcCurve::kArc) {
        MarkRange(column, RangeOfSteep(t1, t2));
        continue;
      }
      const double x = column < last ? BorderOf(column + 1) : high;
      const double t = column < last ? curve.At(borders_[column + 1]) : t2;
      TangentRange range = RangeBetween(curve, t0, t, x - x0);
      const double slack = kRasterSlack * (std::fabs(curve.a) + std::fabs(curve.b));
      range.low -= slack;
      range.high += slack;
      MarkRange(column, range);
      x0 = x;
      t0 = t;
    }
  }

  // A steep edge is monotone, unless it is so close to a pole that its ends are close to it, too.
  static TangentRange RangeOfSteep(double t1, double t2) {
    TangentRange range{std::min(t1, t2), std::max(t1, t2)};
    range.low -= InTangent(kListingMargin, range.low);
    range.high += InTangent(kListingMargin, range.high);
    if (range.low < -kPoleTangent / 2.0) range.low = -4.0 * kPoleTangent;
    if (range.high > kPoleTangent / 2.0) range.high = 4.0 * kPoleTangent;
    return range;
  }

  // An edge at the pole rises to it from each of its corners.
  void MarkToPole(const RingCorner& corner) {
    allCount_ = line_.AllCount({corner.tangent, corner.tangent});
    SeekRow(corner.tangent);
    const double low = corner.tangent - InTangent(kListingMargin, corner.tangent);
    const double reach = kRoundingMargin + kRasterSlack;
    for (const double hz : {corner.hz - reach, corner.hz + reach}) {
      const double h = hz > TWO_PI - shift_ ? hz - TWO_PI : hz;
      MarkRange(ColumnOf(h), {low, 4.0 * kPoleTangent});
    }
  }

  // Marks the cells of a column that an edge enters within a range of tangents: all of them if only
  // some of the crossings count, none if no crossing counts.
  void MarkRange(std::size_t column, const TangentRange& t) {
    if (!allCount_ && !line_.AllCount(t)) {
      if (!line_.NoneCounts(t)) MarkColumn(column);
      return;
    }
    // Row i holds tangents from rowTangents_[i] down to rowTangents_[i - 1].
    if (t.low > rowTangents_.front() || t.high < rowTangents_.back()) return;
    while (row_ > 1 && rowTangents_[row_ - 1] < t.high) --row_;
    while (row_ < kRows && rowTangents_[row_] > t.high) ++row_;
    std::size_t last = row_;
    while (last < kRows && rowTangents_[last] > t.low) ++last;
    MarkRows(column, row_, last);
  }

  void SeekRow(double tangent) {
    const auto after = std::lower_bound(rowTangents_.begin(), rowTangents_.end(), tangent,
                                        [](double row, double t) { return row > t; });
    row_ =
        std::clamp<std::size_t>(static_cast<std::size_t>(after - rowTangents_.begin()), 1, kRows);
  }

  // -- The band --

  void MarkBand() {
    const double step = raster_.ring_.BorderOf(1);
    for (const std::size_t edge : EdgesWithBand(frame_)) {
      const BandStrip strip(frame_.GetStart(edge), frame_.GetEnd(edge), step);
      // The probe of the band lies in [0, 2 pi] for any width of the frame.
      if (strip.hzLow > TWO_PI + kStripReach) continue;
      MarkStrip(strip, raster_.ring_, 0);
      if (hasBandColumns_) MarkStrip(strip, raster_.band_, kRingColumns);
    }
  }

  // Marks a strip in the columns of a block, the first of which is `column`.
  void MarkStrip(const BandStrip& strip, const Block& block, std::size_t column) {
    const double low = strip.hzLow - kRasterSlack;
    const double high = std::min(strip.hzHigh, TWO_PI + kStripReach) + kRasterSlack;
    const double from = InTurn(HzOfBand(low) - ToHz(block.start));
    const double to = from + (high - low);
    if (from < ToHz(block.end) + kRasterSlack) {
      MarkStripColumns(strip, block, column, from, to, low - from);
    }
    if (to > TWO_PI) MarkStripColumns(strip, block, column, 0.0, to - TWO_PI, low - from + TWO_PI);
  }

  // Marks a strip between two Hz of the block. The Hz of the strip is larger by `shift`.
  void MarkStripColumns(const BandStrip& strip, const Block& block, std::size_t column, double low,
                        double high, double shift) {
    const std::size_t last = ColumnIn(block, high);
    for (std::size_t i = ColumnIn(block, low); i <= last; ++i) {
      const double x1 = block.BorderOf(i) + shift - kRasterSlack;
      const double x2 = block.BorderOf(i + 1) + shift + kRasterSlack;
      const auto [vLow, vHigh] = strip.Between(x1, x2);
      MarkRows(column + i, raster_.RowOf(vLow), raster_.RowOf(std::max(vLow, vHigh)));
    }
  }

  // -- Cells --

  // Near the nadir, down to the end of the search line, the rules decide.
  void MarkNadir() {
    const std::size_t first = raster_.RowOf(PI - 2.0 * kPoleMargin);
    if (first > kRows) return;
    for (std::size_t column = 0; column < kRingColumns; ++column) MarkRows(column, first, kRows);
  }

  // Decides the cells that are not marked, a run of rows at a time.
  void DecideColumn(std::size_t column) {
    std::uint8_t* const cells = CellsOf(column);
    std::uint8_t* const end = cells + 1 + kRows;
    std::uint8_t* run = cells + 1;
    while (run < end) {
      if (*run != kOpen) {
        ++run;
        continue;
      }
      const void* const next = std::memchr(run, kAsk, static_cast<std::size_t>(end - run));
      std::uint8_t* const runEnd =
          next != nullptr ? run + (static_cast<const std::uint8_t*>(next) - run) : end;
      const double row = static_cast<double>(run - cells + runEnd - cells) / 2.0 - 1.0;
      const Verdict verdict = AskIn(column, raster_.vTop_ + row / raster_.rowsPerRadian_);
      std::memset(run, static_cast<int>(verdict), static_cast<std::size_t>(runEnd - run));
      run = runEnd;
    }
  }

  // The answer of the slab index at some Hz of the column, or undecided if there is none.
  Verdict AskIn(std::size_t column, double v) const {
    const double low = BorderOf(column);
    const double high = BorderOf(column + 1);
    for (const double part : {0.5, 0.3, 0.7, 0.1, 0.9}) {
      const Verdict verdict = slabs_.Ask(low + part * (high - low), v);
      if (verdict != Verdict::kUndecided) return verdict;
    }
    return Verdict::kUndecided;
  }

  void CopyIntervals() {
    HzIntervalsC& intervals = raster_.intervals_;
    intervals = HzIntervalsC(ringWidth_);
    intervals.Reserve(slabs_.GetIntervals().GetIntervals().size() + 2);
    for (const HzIntervalsC::Interval& interval : slabs_.GetIntervals().GetIntervals()) {
      intervals.Add(interval.low + shift_ - kRasterSlack, interval.high + shift_ + kRasterSlack);
    }
    intervals.Add(0.0, 2.0 * kRasterOverlap);
    intervals.Add(ringWidth_ - 2.0 * kRasterOverlap, ringWidth_);
    intervals.Build(kMostBuckets);
    intervals.DropIntervals();
  }

  DecidedRasterC& raster_;
  const AreaFrame& frame_;
  const RingCurves& ring_;
  const SlabIndexC& slabs_;
  const LineEndsC line_;
  double shift_ = 0.0;  // Hz of the raster minus Hz of the frame
  double ringWidth_ = 0.0;
  bool hasBandColumns_ = false;
  std::uint8_t above_ = kAsk;
  std::vector<double> rowTangents_;  // the borders of the rows, from the top
  std::vector<CosSin> borders_;      // the borders of the columns of the ring
  bool allCount_ = false;            // whether all crossings of the current edge count
  std::size_t row_ = 1;              // the first row of its last range
};

DecidedRasterC::DecidedRasterC(const AreaFrame& frame, const RingCurves& ring,
                               const SlabIndexC& slabs) {
  BuilderC(*this, frame, ring, slabs).Build();
}

const std::uint8_t* DecidedRasterC::FindSharedColumn(std::span<const double> hz,
                                                     std::span<const double> v) const {
  if (!AreInTurn(hz.front(), hz.back())) return nullptr;
  // In random order, nearly all runs end here.
  const std::uint32_t column = ColumnOf(ToRasterUnits(hz.front()));
  if (column != ColumnOf(ToRasterUnits(hz.back()))) return nullptr;
  std::uint64_t low = OrderedBits(hz.front());
  std::uint64_t high = low;
  std::uint64_t highV = 0;
  for (std::size_t i = 0; i < hz.size(); ++i) {
    low = std::min(low, OrderedBits(hz[i]));
    high = std::max(high, OrderedBits(hz[i]));
    highV = std::max(highV, OrderedBits(v[i]));
  }
  // At 2 pi the units restart at 0.
  if (high >= OrderedBits(TWO_PI) || highV > OrderedBits(TWO_PI)) return nullptr;
  const std::uint32_t first = ToRasterUnits(std::bit_cast<double>(low));
  const std::uint32_t last = ToRasterUnits(std::bit_cast<double>(high));
  // If neither block begins between them, the columns ascend, too.
  const bool isAscending = first <= last && first - band_.start <= last - band_.start;
  if (!isAscending || ColumnOf(first) != column || ColumnOf(last) != column) return nullptr;
  return intervals_.MayContainAny(first, last) ? nullptr : cells_.data() + column * kStride;
}

void DecidedRasterC::FindBits(std::span<const double> hz, std::span<const double> v,
                              std::span<std::uint8_t> bits) const {
  constexpr std::size_t kRun = 64;
  for (std::size_t begin = 0; begin < hz.size(); begin += kRun) {
    const std::size_t end = std::min(begin + kRun, hz.size());
    const std::uint8_t* const cells =
        FindSharedColumn(hz.subspan(begin, end - begin), v.subspan(begin, end - begin));
    if (cells != nullptr) {
      for (std::size_t i = begin; i < end; ++i) bits[i] = cells[RowOf(v[i])];
    } else {
      for (std::size_t i = begin; i < end; ++i) {
        const bool isInTurn = AreInTurn(hz[i], v[i]);
        bits[i] = static_cast<std::uint8_t>(isInTurn ? BitsAt(hz[i], v[i]) : kUndecidedBit);
      }
    }
  }
}

}  // namespace GMAT
