#ifndef SURVEYDATA_TOOLS_OUTPUT_RASTER_H_
#define SURVEYDATA_TOOLS_OUTPUT_RASTER_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <output/svg.h>

namespace Tool {

/// Marks of one colour in a rectangle of the page, on a grid of square cells, so that any number of
/// marks takes a limited amount of memory and of text.
class RasterC {
 public:
  /// `cell` is the size of a cell in pixels.
  RasterC(SvgPoint corner, double width, double height, double cell = 1.0);

  /// Marks the cell at a point; points outside the rectangle are ignored.
  void Mark(SvgPoint p);
  /// Marks the cells along the part of a line that is inside the rectangle.
  void MarkLine(SvgPoint from, SvgPoint to);

  /// For the centre of each cell, row by row: `visit(centre, mark)` may set the mark.
  template <class Visit>
  void ForEachCell(const Visit& visit) {
    for (std::size_t row = 0; row < rows_; ++row) {
      for (std::size_t column = 0; column < columns_; ++column) {
        visit(Centre(row, column), cells_[row * columns_ + column]);
      }
    }
  }

  bool IsEmpty() const;
  /// The number of runs of marked cells in the rows.
  std::size_t CountRuns() const;
  double GetCell() const { return cell_; }

  /// Draws the marks in at most `mostRuns` runs: as long as there are more, each four cells are
  /// combined into one.
  void Draw(SvgC& svg, std::string_view colour, std::size_t mostRuns) const;

 private:
  SvgPoint Centre(std::size_t row, std::size_t column) const;
  RasterC Coarser() const;
  template <class Visit>
  void ForEachRun(const Visit& visit) const;

  SvgPoint corner_;
  double width_;
  double height_;
  double cell_;
  std::size_t columns_;
  std::size_t rows_;
  std::vector<std::uint8_t> cells_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_RASTER_H_
