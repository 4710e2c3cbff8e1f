#ifndef SURVEYDATA_SPHERE_GEOMETRY_DECIDED_RASTER_H_
#define SURVEYDATA_SPHERE_GEOMETRY_DECIDED_RASTER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/hz_intervals.h>
#include <surveydata/sphere_geometry/ring_curves.h>
#include <surveydata/sphere_geometry/slab_index.h>

namespace GMAT {

/// A raster over the directions around a polygon: each cell is proven inside, proven outside, or
/// undecided.
///
/// A cell is decided if, by the bounds of the slab decomposition, neither an edge nor the boundary
/// band of one enters it: then the number of edges below has the same parity for all directions of
/// the cell, and one answer of the decomposition holds for all. A separate table contains the Hz at
/// which directions are undecided in every cell.
///
/// The band is at the Hz of the ring less twice the Hz at which the frame begins. Separate columns
/// cover it where it leaves the ring. Directions beyond ring and band are outside.
class DecidedRasterC {
 public:
  /// The largest size of cells and table, in bytes.
  static constexpr std::size_t kMostBytes = std::size_t{512} * 1024;

  /// Whether the decomposition decides anything.
  static bool CanDecide(const SlabIndexC& slabs) { return !slabs.IsAlwaysUndecided(); }

  DecidedRasterC(const AreaFrame& frame, const RingCurves& ring, const SlabIndexC& slabs);

  /// For `hz` and `v` in [0, 2 pi].
  Verdict Find(double hz, double v) const {
    return static_cast<Verdict>(std::min(BitsAt(hz, v), kUndecidedBit));
  }

  /// The same for many queries: the verdict, or a value with `kUndecidedBit` set, as for all
  /// directions with an angle outside [0, 2 pi]. Fastest if consecutive directions have nearly the
  /// same Hz, as in a scan.
  ///
  /// \param bits  at least as many as directions.
  void FindBits(std::span<const double> hz, std::span<const double> v,
                std::span<std::uint8_t> bits) const;
  static constexpr auto kUndecidedBit = static_cast<std::uint32_t>(Verdict::kUndecided);
  static_assert(kUndecidedBit == 2 && static_cast<int>(Verdict::kInside) == 1);

  /// A corner of a cell that covers the ring, in Hz of the instrument: tests aim at them. `column`
  /// is at most `kRingColumns`, `row` at most `kRows`.
  AnglePointC GetCellCorner(std::size_t column, std::size_t row) const {
    return {NormalizeAngle(ToHz(origin_) + ring_.BorderOf(column)),
            vTop_ + static_cast<double>(row) / rowsPerRadian_};
  }
  static constexpr std::size_t kRows = 500;  // and one above, one below
  static constexpr std::size_t kRingColumns = 512;

  /// Bytes of the cells and the table.
  std::size_t GetSize() const { return cells_.size() + intervals_.GetTableSize(); }

 private:
  class BuilderC;

  static constexpr std::size_t kStride = kRows + 2;
  static constexpr std::int64_t kLastRow = kRows + 1;
  static constexpr std::size_t kBandColumns = 192;
  static constexpr std::size_t kMostColumns = kRingColumns + kBandColumns + 1;
  static constexpr std::uint32_t kMostBuckets = 1U << 14;
  static_assert(kRingColumns <= 1024 && kBandColumns <= 1024, "Block::ColumnOf would overflow");
  static_assert(kMostColumns * kStride + kMostBuckets * HzIntervalsC::kBytesPerBucket <=
                kMostBytes);

  static double ToHz(double units) { return units * (TWO_PI / 0x1p32); }

  // Columns side by side; Hz is in units of a turn, relative to the beginning of the block.
  struct Block {
    std::uint32_t start = 0;  // relative to the beginning of the raster
    std::uint32_t end = 0;
    std::uint64_t columnsPerUnit = 0;  // times 2^kFraction
    static constexpr int kFraction = 54;

    Block() = default;
    Block(std::uint32_t startUnit, double width, std::uint32_t columns)
        : start(startUnit),
          end(static_cast<std::uint32_t>(std::min(width / TWO_PI * 0x1p32, 0x1p32 - 1.0))),
          columnsPerUnit(((std::uint64_t{columns} << kFraction) + end - 1) / end) {}

    // The number of columns at or after the end, or up to three units before it: rounding up makes
    // columnsPerUnit greater by at most a relative 2^-30.
    std::uint32_t ColumnOf(std::uint32_t units) const {
      return static_cast<std::uint32_t>((std::min(units, end) * columnsPerUnit) >> kFraction);
    }
    // Where column `i` begins, rad.
    double BorderOf(std::size_t i) const {
      return ToHz(static_cast<double>(std::uint64_t{i} << kFraction) /
                  static_cast<double>(columnsPerUnit));
    }
  };

  std::uint32_t ToRasterUnits(double hz) const { return ToTurnUnits(hz) - origin_; }

  std::uint32_t ColumnOf(std::uint32_t units) const {
    const std::uint32_t inRing = ring_.ColumnOf(units);
    // All bits are set if the direction is beyond the columns of the ring.
    const std::uint32_t isBeyond = 0U - static_cast<std::uint32_t>(inRing >= kRingColumns);
    return inRing + (band_.ColumnOf(units - band_.start) & isBeyond);
  }

  std::size_t RowOf(double v) const {
    const auto row = static_cast<std::int64_t>((v - vTop_) * rowsPerRadian_ + 1.0);
    const std::int64_t fromTop = row > 0 ? row : 0;
    return static_cast<std::size_t>(fromTop <= kLastRow ? fromTop : kLastRow);
  }

  // One lookup in the cells and one in the table, without a branch.
  std::uint32_t BitsAt(double hz, double v) const {
    const std::uint32_t units = ToRasterUnits(hz);
    const std::uint32_t cell = cells_[ColumnOf(units) * kStride + RowOf(v)];
    return cell | (intervals_.MayContain(units) ? kUndecidedBit : 0U);
  }

  // The cells of the column in which all directions of a run lie. Null if they do not share one, if
  // the table may have an interval there, or if an angle is outside [0, 2 pi].
  const std::uint8_t* FindSharedColumn(std::span<const double> hz, std::span<const double> v) const;

  std::uint32_t origin_ = 0;  // in units of a turn
  Block ring_;
  Block band_;
  double vTop_ = 0.0;
  double rowsPerRadian_ = 0.0;
  std::vector<std::uint8_t> cells_;
  HzIntervalsC intervals_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_DECIDED_RASTER_H_
