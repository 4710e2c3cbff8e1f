#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <string_view>

#include <fmt/format.h>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/sphere_geometry/angles.h>

#include <area/area_measure.h>
#include <area/area_sweep.h>
#include <command_line/exit_code.h>

namespace Tool {
namespace {

struct Sweep {
  double hzMin;
  double width;
  double vMin;
  double vMax;
  double hzStep;
  double vStep;
  std::uint64_t columns;
  std::uint64_t rows;
};

// As in Python's `iter_grid`: doubles represent all whole numbers up to 2^53, and a column of 10^7
// directions takes a tenth of a second, so that the first directions are written without delay.
constexpr double kMostColumns = 9007199254740992.0;
constexpr double kMostRows = 1e7;

std::uint64_t ToCount(double count, double most, std::string_view what) {
  if (count <= most) return static_cast<std::uint64_t>(count);
  throw ToolErrorC(ExitCode::kCannotBeQueried,
                   fmt::format("the grid has {:.4g} {}, more than {:.4g}: the step is too small",
                               count, what, most));
}

Sweep PlanSweep(const AreaFile& file) {
  SDI::ScanDefPointC low;
  SDI::ScanDefPointC high;
  file.area->GetBoundingPoints(low, high, true);
  const auto bounds = MeasureBounds(file);
  Sweep sweep{.hzMin = low.GetHz(),
              .width = high.GetHz() - low.GetHz(),
              .vMin = low.GetV(),
              .vMax = high.GetV(),
              .hzStep = file.area->GetHzStep(),
              .vStep = file.area->GetVStep(),
              .columns = 0,
              .rows = 0};
  if (sweep.width < 0) sweep.width += GMAT::TWO_PI;
  if (bounds && bounds->enclosesZenith) {
    sweep.hzMin = 0;
    sweep.width = GMAT::TWO_PI;
    sweep.vMin = 0;
    if (file.area->GetType() == SDI::kDomeArea) sweep.vMax = GMAT::V_LIMIT;
  }
  // A full turn does not end where it began; the last step may fail by rounding.
  constexpr double kMost = 1e-9;
  const bool isTurn = sweep.width >= GMAT::TWO_PI - kMost;
  const double columns = isTurn ? std::max(1.0, std::ceil(GMAT::TWO_PI / sweep.hzStep - kMost))
                                : std::floor(sweep.width / sweep.hzStep + kMost) + 1;
  const double rows = std::floor((sweep.vMax - sweep.vMin) / sweep.vStep + kMost) + 1;
  sweep.columns = ToCount(columns, kMostColumns, "columns");
  sweep.rows = ToCount(rows, kMostRows, "directions in a column");
  return sweep;
}

// One column after the other, in blocks.
class SweeperC {
 public:
  SweeperC(const AreaFile& file, const std::function<void(double, double)>& visit)
      : sweep_(PlanSweep(file)),
        area_(*file.area, SDI::PreparedAreaC::Questions::kMany),
        visit_(visit) {}

  std::uint64_t Run() {
    bool isDown = true;
    for (std::uint64_t column = 0; column < sweep_.columns; ++column) {
      const double across = static_cast<double>(column) * sweep_.hzStep;
      hz_.fill(std::fmod(sweep_.hzMin + std::min(across, sweep_.width), GMAT::TWO_PI));
      const std::uint64_t before = count_;
      for (std::uint64_t done = 0; done < sweep_.rows; done += kBlock) {
        VisitBlock(done, isDown);
      }
      if (count_ > before) isDown = !isDown;
    }
    return count_;
  }

 private:
  static constexpr std::size_t kBlock = 4096;

  // The directions of a column after the first `done` ones, in the order of the sweep.
  void VisitBlock(std::uint64_t done, bool isDown) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, sweep_.rows - done));
    for (std::size_t i = 0; i < size; ++i) {
      const std::uint64_t place = done + i;
      const std::uint64_t row = isDown ? place : sweep_.rows - 1 - place;
      v_[i] = std::min(sweep_.vMin + sweep_.vStep * static_cast<double>(row), sweep_.vMax);
    }
    area_.Contains(std::span(hz_).first(size), std::span(v_).first(size), isInside_);
    for (std::size_t i = 0; i < size; ++i) {
      if (!isInside_[i]) continue;
      visit_(hz_[i], v_[i]);
      ++count_;
    }
  }

  Sweep sweep_;
  SDI::PreparedAreaC area_;
  const std::function<void(double, double)>& visit_;
  std::uint64_t count_ = 0;
  std::array<double, kBlock> hz_{};
  std::array<double, kBlock> v_{};
  std::array<bool, kBlock> isInside_{};
};

}  // namespace

std::uint64_t SweepArea(const AreaFile& file, const std::function<void(double, double)>& visit) {
  return SweeperC(file, visit).Run();
}

}  // namespace Tool
