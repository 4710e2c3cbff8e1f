#include <cmath>

#include <surveydata/sphere_geometry/cell_grid.h>

namespace GMAT {

std::size_t CellGridC::CountColumns(std::size_t curves, double spans, double width,
                                    double minStep) {
  constexpr double kFewest = 8.0;
  constexpr double kPartsPerCurve = 6.0;
  const double n = static_cast<double>(curves);
  const double crossedAtOnce = spans / width;
  const double affordable =
      std::clamp(kPartsPerCurve * n / std::max(crossedAtOnce, 1.0), kFewest, std::max(n, kFewest));
  return static_cast<std::size_t>(std::max(std::min(affordable, width / minStep), 1.0));
}

void CellGridC::Build(const std::vector<Part>& parts) {
  for (const Part& part : parts) {
    Column& column = columns_[part.column];
    column.low = std::min(column.low, part.low);
    column.high = std::max(column.high, part.high);
    column.rowsPerUnit += part.high - part.low;  // the sum of the heights, for now
    ++column.rows;                               // the number of parts
  }

  // A few parts to a row, but no more rows than leave each part in a few of them.
  constexpr float kFew = 8.0F;
  constexpr float kPartsPerRow = 4.0F;
  constexpr float kRowsPerPart = 3.0F;
  std::uint32_t cells = 0;
  for (Column& column : columns_) {
    const float height = column.high - column.low;
    const float heights = column.rowsPerUnit;
    const auto count = static_cast<float>(column.rows);
    column.firstCell = cells;
    column.rowsPerUnit = 0.0F;
    column.rows = 1;
    if (count > kFew && height > 0.0F) {
      const float rows = std::min(count / kPartsPerRow, kRowsPerPart * height * count / heights);
      column.rows = static_cast<std::uint32_t>(std::max(rows, 1.0F));
      column.rowsPerUnit = static_cast<float>(column.rows) / height;
    }
    cells += column.rows;
  }

  lists_.assign(cells + 1, {0, 0});
  for (const Part& part : parts) {
    const Column& column = columns_[part.column];
    const std::uint32_t last = column.RowOf(part.high);
    for (std::uint32_t row = column.RowOf(part.low); row <= last; ++row) {
      ++lists_[column.firstCell + row].begin;
    }
    if (part.entersLeft != 0 && last + 1 < column.rows) {
      lists_[column.firstCell + last + 1].isOddBelow ^= 1U;
    }
  }
  std::uint32_t total = 0;
  for (List& list : lists_) {
    total += list.begin;
    list.begin = total & kMostItems;
  }
  for (const Column& column : columns_) {
    bool isOdd = false;
    for (std::uint32_t row = 0; row < column.rows; ++row) {
      List& list = lists_[column.firstCell + row];
      isOdd ^= list.isOddBelow != 0;
      list.isOddBelow = isOdd ? 1U : 0U;
    }
  }
  items_.resize(total);
  for (const Part& part : parts) {
    const Column& column = columns_[part.column];
    const std::uint32_t first = column.RowOf(part.low);
    const std::uint32_t last = column.RowOf(part.high);
    const std::uint32_t start = column.RowOf(part.start);
    const std::uint32_t end = column.RowOf(part.end);
    for (std::uint32_t row = first; row <= last; ++row) {
      items_[--lists_[column.firstCell + row].begin] = {part.curve & kMostCurves, row == first,
                                                        start < row, end < row};
    }
  }
}

}  // namespace GMAT
