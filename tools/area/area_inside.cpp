#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <utility>

#include <area/area_inside.h>

namespace Tool {
namespace {

constexpr std::size_t kColumns = 720;
// In a polygon of this many points, a row may have a border in every column.
constexpr std::uint16_t kManyPoints = 10'000;

// The runs of all rows, from left to right.
class RowScanC {
 public:
  RowScanC(const SDI::ScanAreaC& area, const SDI::PreparedAreaC& prepared,
           const AngleWindow& window, std::size_t rows)
      : area_(prepared),
        window_(window),
        halvings_(area.GetPointCount() > kManyPoints ? 10 : 20),
        rows_(rows),
        hz_(kColumns) {
    for (std::size_t i = 0; i < kColumns; ++i) {
      hz_[i] = window.hzMin + (static_cast<double>(i) + 0.5) * (window.hzMax - window.hzMin) /
                                  static_cast<double>(kColumns);
    }
    std::vector<double> vs(kColumns);
    for (std::size_t row = 0; row < rows; ++row) {
      std::fill(vs.begin(), vs.end(), V(row));
      area_.Contains(hz_, vs, std::span<bool>(&inside_[row * kColumns], kColumns));
    }
  }

  double V(std::size_t row) const {
    return window_.vMin + (static_cast<double>(row) + 0.5) * (window_.vMax - window_.vMin) /
                              static_cast<double>(rows_);
  }

  std::size_t CountRuns() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < rows_ * kColumns; ++i) {
      if (inside_[i] && (i % kColumns == 0 || !inside_[i - 1])) ++count;
    }
    return count;
  }

  std::vector<InsideRun> Find(std::size_t row) const {
    const bool* const inside = &inside_[row * kColumns];
    const double v = V(row);
    std::vector<InsideRun> runs;
    double start = window_.hzMin;
    for (std::size_t i = 1; i <= kColumns; ++i) {
      if (i < kColumns && inside[i] == inside[i - 1]) continue;
      const double border = i < kColumns ? FindBorder(i, v, inside[i - 1]) : window_.hzMax;
      if (inside[i - 1]) runs.push_back({v, start, border});
      start = border;
    }
    return runs;
  }

 private:
  double FindBorder(std::size_t i, double v, bool isInsideBefore) const {
    double before = hz_[i - 1];
    double after = hz_[i];
    for (int k = 0; k < halvings_; ++k) {
      const double middle = (before + after) / 2;
      (area_.Contains(middle, v) == isInsideBefore ? before : after) = middle;
    }
    return (before + after) / 2;
  }

  const SDI::PreparedAreaC& area_;
  AngleWindow window_;
  int halvings_;  // of a column, to far less than a picture shows
  std::size_t rows_;
  std::vector<double> hz_;
  std::unique_ptr<bool[]> inside_ = std::make_unique<bool[]>(rows_ * kColumns);
};

bool Overlap(const InsideRun& a, const InsideRun& b) { return a.from < b.to && b.from < a.to; }

}  // namespace

std::vector<InsideStrip> FindInside(const SDI::ScanAreaC& area, const AngleWindow& window,
                                    int rows) {
  const SDI::PreparedAreaC prepared(area, SDI::PreparedAreaC::Questions::kMany);
  return *FindInside(area, prepared, window, rows, std::numeric_limits<std::size_t>::max());
}

std::optional<std::vector<InsideStrip>> FindInside(const SDI::ScanAreaC& area,
                                                   const SDI::PreparedAreaC& prepared,
                                                   const AngleWindow& window, int rows,
                                                   std::size_t mostRuns) {
  const RowScanC scan(area, prepared, window, static_cast<std::size_t>(rows));
  if (scan.CountRuns() > mostRuns) return {};
  const double height = (window.vMax - window.vMin) / rows;
  std::vector<InsideStrip> done;
  std::vector<InsideStrip> open;  // the strips that extend to the border above the row
  const auto close = [&](InsideStrip& strip, double border) {
    strip.push_back({border, strip.back().from, strip.back().to});
    done.push_back(std::move(strip));
  };
  for (int row = 0; row < rows; ++row) {
    const double border = window.vMin + row * height;
    const std::vector<InsideRun> runs = scan.Find(static_cast<std::size_t>(row));
    std::vector<InsideStrip> next;
    for (const InsideRun& run : runs) {
      // A run continues a strip if it touches no other strip, and the strip no other run.
      const auto touches = [&](const InsideStrip& strip) {
        return !strip.empty() && Overlap(strip.back(), run);
      };
      const auto strip = std::find_if(open.begin(), open.end(), touches);
      const bool isAlone = strip != open.end() && std::none_of(strip + 1, open.end(), touches) &&
                           std::count_if(runs.begin(), runs.end(), [&](const InsideRun& other) {
                             return Overlap(strip->back(), other);
                           }) == 1;
      if (isAlone) {
        strip->push_back(run);
        next.push_back(std::move(*strip));
        strip->clear();
      } else {
        next.push_back({{border, run.from, run.to}, run});
      }
    }
    for (InsideStrip& strip : open) {
      if (!strip.empty()) close(strip, border);
    }
    open = std::move(next);
  }
  for (InsideStrip& strip : open) close(strip, window.vMax);
  return done;
}

}  // namespace Tool
