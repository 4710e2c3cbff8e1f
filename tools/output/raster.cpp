#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include <output/raster.h>
#include <platform/format.h>

namespace Tool {

RasterC::RasterC(SvgPoint corner, double width, double height, double cell)
    : corner_(corner),
      width_(width),
      height_(height),
      cell_(cell),
      columns_(static_cast<std::size_t>(std::ceil(width / cell))),
      rows_(static_cast<std::size_t>(std::ceil(height / cell))),
      cells_(columns_ * rows_) {}

SvgPoint RasterC::Centre(std::size_t row, std::size_t column) const {
  return {corner_.x + (static_cast<double>(column) + 0.5) * cell_,
          corner_.y + (static_cast<double>(row) + 0.5) * cell_};
}

void RasterC::Mark(SvgPoint p) {
  const double column = std::floor((p.x - corner_.x) / cell_);
  const double row = std::floor((p.y - corner_.y) / cell_);
  const bool isInside = 0 <= column && column < static_cast<double>(columns_) && 0 <= row &&
                        row < static_cast<double>(rows_);
  if (!isInside) return;
  cells_[static_cast<std::size_t>(row) * columns_ + static_cast<std::size_t>(column)] = 1;
}

void RasterC::MarkLine(SvgPoint from, SvgPoint to) {
  // The part of the line inside the rectangle (Liang-Barsky clipping).
  double first = 0;
  double last = 1;
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const auto clip = [&](double step, double distance) {
    if (step == 0) return distance >= 0;
    const double t = distance / step;
    (step < 0 ? first : last) = step < 0 ? std::max(first, t) : std::min(last, t);
    return true;
  };
  const bool isAlong = clip(-dx, from.x - corner_.x) && clip(dx, corner_.x + width_ - from.x) &&
                       clip(-dy, from.y - corner_.y) && clip(dy, corner_.y + height_ - from.y);
  if (!isAlong || !(first <= last)) return;
  const double length = std::max(std::fabs(dx), std::fabs(dy)) * (last - first);
  const auto steps = static_cast<std::size_t>(std::ceil(length / cell_)) + 1;
  for (std::size_t i = 0; i <= steps; ++i) {
    const double t = first + (last - first) * static_cast<double>(i) / static_cast<double>(steps);
    Mark({from.x + t * dx, from.y + t * dy});
  }
}

template <class Visit>
void RasterC::ForEachRun(const Visit& visit) const {
  for (std::size_t row = 0; row < rows_; ++row) {
    const auto begin = cells_.begin() + static_cast<std::ptrdiff_t>(row * columns_);
    const auto end = begin + static_cast<std::ptrdiff_t>(columns_);
    for (auto first = std::find(begin, end, 1); first != end;) {
      const auto last = std::find(first, end, 0);
      visit(row, static_cast<std::size_t>(first - begin), static_cast<std::size_t>(last - first));
      first = std::find(last, end, 1);
    }
  }
}

bool RasterC::IsEmpty() const { return std::find(cells_.begin(), cells_.end(), 1) == cells_.end(); }

std::size_t RasterC::CountRuns() const {
  std::size_t count = 0;
  ForEachRun([&](std::size_t, std::size_t, std::size_t) { ++count; });
  return count;
}

RasterC RasterC::Coarser() const {
  RasterC coarse(corner_, width_, height_, 2 * cell_);
  for (std::size_t row = 0; row < rows_; ++row) {
    for (std::size_t column = 0; column < columns_; ++column) {
      if (cells_[row * columns_ + column] != 0) {
        coarse.cells_[row / 2 * coarse.columns_ + column / 2] = 1;
      }
    }
  }
  return coarse;
}

void RasterC::Draw(SvgC& svg, std::string_view colour, std::size_t mostRuns) const {
  if (CountRuns() > mostRuns && columns_ > 1) return Coarser().Draw(svg, colour, mostRuns);
  std::string path;
  ForEachRun([&](std::size_t row, std::size_t column, std::size_t length) {
    Append(path, "M{:.6g} {:.6g}h{:.6g}", corner_.x + static_cast<double>(column) * cell_,
           Centre(row, 0).y, static_cast<double>(length) * cell_);
  });
  if (!path.empty()) svg.Path(path, {colour, cell_});
}

}  // namespace Tool
