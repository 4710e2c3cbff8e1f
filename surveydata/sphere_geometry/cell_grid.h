#ifndef SURVEYDATA_SPHERE_GEOMETRY_CELL_GRID_H_
#define SURVEYDATA_SPHERE_GEOMETRY_CELL_GRID_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace GMAT {

/// An index of curves of a plane by position. The plane is divided into columns of equal width in
/// x, and each column into rows of equal height, in proportion to its number of curves. A cell
/// lists the curves that enter it.
///
/// If the curves are the edges of rings, a cell also stores whether an odd number of them is below
/// it. Together with the marks of its items this gives the parity of the number below any point
/// (`Item`).
class CellGridC {
 public:
  static constexpr std::uint32_t kMostCurves = (1U << 29) - 1;
  static constexpr std::uint32_t kMostItems = (1U << 31) - 1;

  /// The part of a curve in one column. Missing ends are at `kNoEnd`, above all heights, which are
  /// below 8.
  struct Part {
    std::uint32_t curve;
    std::uint32_t column : 31;
    std::uint32_t entersLeft : 1;  ///< Whether it enters from the previous column.
    float low;                     ///< No point of the curve in this column is lower ...
    float high;                    ///< ... or higher.
    float start;                   ///< The height of its beginning, with x growing.
    float end;
  };
  static constexpr float kNoEnd = 1e6F;
  /// The error of heights: a float of less than 8 is rounded by 2.4e-7, and once more when it is
  /// widened; the rest is available to the caller.
  static constexpr float kRounding = 1e-6F;

  /// A curve adds nothing at points left of its beginning. Within its span it adds `startsBelow`,
  /// and 1 if it is below the point. Right of its end it adds both marks. The sum has the parity of
  /// the number of curves between the cell's lower left corner and the point.
  struct Item {
    std::uint32_t curve : 29;
    std::uint32_t isLowest : 1;  ///< Whether no cell below has the curve; true once per column.
    std::uint32_t startsBelow : 1;
    std::uint32_t endsBelow : 1;
  };

  struct Cell {
    std::span<const Item> items;
    bool isOddBelow;  ///< Curves of other cells, at the left border of the column.
  };

  /// The smallest number of columns, for at least as many curves, unless they would be too narrow.
  static constexpr std::size_t kFewestColumns = 8;
  /// The number of columns for curves that cover `spans` of x in total: at least `kFewestColumns`,
  /// at most one per curve, none narrower than `minStep`.
  ///
  /// \param partsPerCurve  the average number of columns in which a curve is listed; it keeps the
  ///                       lists linear in size.
  static std::size_t CountColumns(std::size_t curves, double spans, double width, double minStep,
                                  double partsPerCurve = kPartsPerCurve);
  static constexpr double kPartsPerCurve = 6.0;
  /// The same if a curve that crosses a whole column is listed there once, in order. With this many
  /// columns, few curves end in each of them, and the cells list only these.
  static constexpr double kPartsPerOrderedCurve = 64.0;
  /// If this many curves lie side by side on average, ordered lists are faster: a cell would
  /// contain hundreds of curves.
  static constexpr double kManySideBySide = 2000.0;

  CellGridC() = default;
  CellGridC(double width, std::size_t columns)
      : width_(width), perUnit_(static_cast<double>(columns) / width), columns_(columns) {}

  double GetWidth() const { return width_; }
  std::size_t GetColumnCount() const { return columns_.size(); }
  double GetBorder(std::size_t column) const { return static_cast<double>(column) / perUnit_; }
  /// The column at x; the first or the last one for x beyond the ends.
  std::size_t ColumnOf(double x) const { return ClampedIndex(x * perUnit_, columns_.size()); }

  /// A part of the curve between two heights.
  static Part MakePart(std::size_t curve, std::size_t column, double low, double high) {
    return {static_cast<std::uint32_t>(curve),
            static_cast<std::uint32_t>(column) & kMostItems,
            0U,
            static_cast<float>(low) - kRounding,
            static_cast<float>(high) + kRounding,
            kNoEnd,
            kNoEnd};
  }

  void Build(const std::vector<Part>& parts);

  Cell Find(std::size_t column, double y) const {
    const Column& at = columns_[column];
    return GetCell(at.firstCell + at.RowOf(y));
  }
  Cell Find(double x, double y) const { return Find(ColumnOf(x), y); }

  /// The items of all cells of a column.
  std::span<const Item> GetItems(std::size_t column) const {
    const Column& at = columns_[column];
    return {items_.data() + lists_[at.firstCell].begin,
            items_.data() + lists_[at.firstCell + at.rows].begin};
  }

  /// All cells of a column.
  template <class Use>
  void ForEachCell(std::size_t column, Use use) const {
    const Column& at = columns_[column];
    for (std::uint32_t row = 0; row < at.rows; ++row) use(GetCell(at.firstCell + row));
  }

 private:
  // With one row, or none, `rowsPerUnit` is 0.
  struct Column {
    double low = 0.0;
    double rowsPerUnit = 0.0;
    std::uint32_t firstCell = 0;
    std::uint32_t rows = 1;

    std::uint32_t RowOf(double y) const {
      return static_cast<std::uint32_t>(ClampedIndex((y - low) * rowsPerUnit, rows));
    }
    // The same; most columns of a small ring have one row.
    std::uint32_t RowOfPart(float y) const { return rows == 1 ? 0 : RowOf(static_cast<double>(y)); }
  };
  // The range of the parts in a column.
  struct Extent {
    float low = kNoEnd;
    float high = -kNoEnd;
    float heights = 0.0F;
    float parts = 0.0F;
  };
  struct List {
    std::uint32_t begin : 31;
    std::uint32_t isOddBelow : 1;
  };

  static Column MakeColumn(const Extent& extent, std::uint32_t firstCell);

  // The integer part of x, clamped to [0, count), without a branch.
  static std::size_t ClampedIndex(double x, std::size_t count) {
    const auto index = static_cast<std::int64_t>(x);
    const std::int64_t last = static_cast<std::int64_t>(count) - 1;
    const std::int64_t fromZero = index > 0 ? index : 0;
    return static_cast<std::size_t>(fromZero < last ? fromZero : last);
  }

  Cell GetCell(std::size_t i) const {
    return {{items_.data() + lists_[i].begin, items_.data() + lists_[i + 1].begin},
            lists_[i].isOddBelow != 0};
  }

  double width_ = 0.0;
  double perUnit_ = 0.0;
  std::vector<Column> columns_;
  std::vector<List> lists_;  // one per cell, and one more
  std::vector<Item> items_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_CELL_GRID_H_
