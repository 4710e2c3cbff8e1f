#include <cmath>

#include <surveydata/sphere_geometry/cell_grid.h>

namespace GMAT {

std::size_t CellGridC::CountColumns(std::size_t curves, double spans, double width, double minStep,
                                    double partsPerCurve) {
  constexpr auto kFewest = static_cast<double>(kFewestColumns);
  const double n = static_cast<double>(curves);
  const double crossedAtOnce = spans / width;
  const double affordable =
      std::clamp(partsPerCurve * n / std::max(crossedAtOnce, 1.0), kFewest, std::max(n, kFewest));
  return static_cast<std::size_t>(std::max(std::min(affordable, width / minStep), 1.0));
}

CellGridC::Column CellGridC::MakeColumn(const Extent& extent, std::uint32_t firstCell) {
  // A few parts per row, but so few rows that each part lies in only a few of them.
  constexpr float kFew = 8.0F;
  constexpr float kPartsPerRow = 4.0F;
  constexpr float kRowsPerPart = 3.0F;
  Column column;
  column.firstCell = firstCell;
  const float height = extent.high - extent.low;
  if (!(extent.parts > kFew && height > 0.0F)) return column;
  const float rows =
      std::min(extent.parts / kPartsPerRow, kRowsPerPart * height * extent.parts / extent.heights);
  column.low = static_cast<double>(extent.low);
  column.rows = static_cast<std::uint32_t>(std::max(rows, 1.0F));
  column.rowsPerUnit = static_cast<double>(column.rows) / static_cast<double>(height);
  return column;
}

void CellGridC::Build(const std::vector<Part>& parts) {
  std::vector<Extent> extents(columns_.size());
  for (const Part& part : parts) {
    Extent& extent = extents[part.column];
    extent.low = std::min(extent.low, part.low);
    extent.high = std::max(extent.high, part.high);
    extent.heights += part.high - part.low;
    extent.parts += 1.0F;
  }
  std::uint32_t cells = 0;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    columns_[i] = MakeColumn(extents[i], cells);
    cells += columns_[i].rows;
  }

  lists_.assign(cells + 1, {0, 0});
  for (const Part& part : parts) {
    const Column& column = columns_[part.column];
    const std::uint32_t last = column.RowOfPart(part.high);
    for (std::uint32_t row = column.RowOfPart(part.low); row <= last; ++row) {
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
    const std::uint32_t first = column.RowOfPart(part.low);
    const std::uint32_t last = column.RowOfPart(part.high);
    const std::uint32_t start = column.RowOfPart(part.start);
    const std::uint32_t end = column.RowOfPart(part.end);
    for (std::uint32_t row = first; row <= last; ++row) {
      items_[--lists_[column.firstCell + row].begin] = {part.curve & kMostCurves, row == first,
                                                        start < row, end < row};
    }
  }
}

}  // namespace GMAT
