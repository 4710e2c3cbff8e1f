#include <algorithm>
#include <cmath>
#include <cstdint>

#include <fmt/format.h>

#include <output/chart.h>
#include <output/gps_time.h>
#include <output/svg.h>

namespace Tool {
namespace {

constexpr double kWidth = 1000;
constexpr double kLeft = 76;
constexpr double kRight = kWidth - 28;
constexpr double kFirstPanelTop = 96;
constexpr double kPanelHeight = 208;
constexpr double kBetweenPanels = 46;
constexpr double kBelow = 62;
constexpr int kValueTicks = 6;
constexpr int kTimeTicks = 9;
constexpr double kDay = 86400;
constexpr SvgStroke kGrid{"#e3e3e3", 1.0};
constexpr SvgStroke kAxis{"#555555", 1.0};
constexpr std::string_view kQuiet = "#555555";

// The distance between round ticks.
double TimeStep(double range, int wanted) {
  constexpr double kSteps[] = {1,        2,        5,         10,        15,        30,
                               60,       120,      300,       600,       900,       1800,
                               3600,     7200,     10800,     21600,     43200,     kDay,
                               2 * kDay, 7 * kDay, 14 * kDay, 28 * kDay, 91 * kDay, 182 * kDay};
  for (const double step : kSteps) {
    if (range / step <= wanted - 1) return step;
  }
  return std::ceil(range / (wanted - 1) / (364 * kDay)) * 364 * kDay;
}

std::string TimeText(double seconds, double step) {
  const auto milliseconds = static_cast<std::int64_t>(std::llround(seconds * 1000));
  if (step >= kDay) return GpsDate(milliseconds);
  const std::string time = GpsTimeOfDay(milliseconds);
  return step < 60 ? time : time.substr(0, 5);
}

double Highest(const ChartPanel& panel) {
  double highest = 0;
  for (const ChartLine& line : panel.lines) {
    for (const auto& run : line.runs) {
      for (const ChartPoint& point : run) highest = std::max(highest, point.value);
    }
  }
  return highest;
}

// Maps the values of one panel to the page.
struct Frame {
  double top;
  double bottom;
  double firstTime;
  double lastTime;
  double highest;

  double X(double time) const {
    return kLeft + (time - firstTime) / (lastTime - firstTime) * (kRight - kLeft);
  }
  double Y(double value) const { return bottom - value / highest * (bottom - top); }
};

// Columns of one width, wide enough for the names of all lines in any font.
void DrawLegend(SvgC& svg, const ChartPanel& panel, double top) {
  constexpr double kColumn = 96;
  constexpr double kSample = 22;
  double left = kRight - kColumn * static_cast<double>(panel.lines.size());
  for (const ChartLine& line : panel.lines) {
    svg.Line({left, top - 13.5}, {left + kSample, top - 13.5}, {line.colour, 3.0});
    svg.Text({left + kSample + 7, top - 9}, line.name);
    left += kColumn;
  }
}

bool HasValues(const ChartPanel& panel) {
  return std::any_of(panel.lines.begin(), panel.lines.end(),
                     [](const ChartLine& line) { return !line.runs.empty(); });
}

void DrawLines(SvgC& svg, const ChartPanel& panel, const Frame& frame) {
  std::vector<SvgPoint> points;
  for (const ChartLine& line : panel.lines) {
    for (const auto& run : line.runs) {
      points.clear();
      for (const ChartPoint& point : run)
        points.push_back({frame.X(point.time), frame.Y(point.value)});
      if (points.size() == 1) {
        svg.Dot(points.front(), 1.4, line.colour);
      } else if (!points.empty()) {
        svg.Polyline(points, {line.colour, line.width});
      }
    }
  }
}

void DrawPanel(SvgC& svg, const ChartPanel& panel, Frame frame,
               const std::vector<double>& timeTicks) {
  const std::vector<double> ticks = ValueTicks(Highest(panel), kValueTicks, panel.isWhole);
  frame.highest = ticks.back();
  for (const double tick : ticks) {
    const double y = frame.Y(tick);
    if (tick != 0) svg.Line({kLeft, y}, {kRight, y}, kGrid);
    svg.Text({kLeft - 9, y + 4.5}, fmt::format("{:.6g}", tick), {.anchor = "end"});
  }
  for (const double tick : timeTicks) {
    const double x = frame.X(tick);
    svg.Line({x, frame.top}, {x, frame.bottom}, kGrid);
    svg.Line({x, frame.bottom}, {x, frame.bottom + 5}, kAxis);
  }
  svg.Line({kLeft, frame.top}, {kLeft, frame.bottom}, kAxis);
  svg.Line({kLeft, frame.bottom}, {kRight, frame.bottom}, kAxis);
  svg.Text({26, (frame.top + frame.bottom) / 2}, panel.label, {.anchor = "middle", .turned = -90});
  DrawLegend(svg, panel, frame.top);
  DrawLines(svg, panel, frame);
  if (!HasValues(panel)) {
    svg.Text({(kLeft + kRight) / 2, (frame.top + frame.bottom) / 2}, "none recorded",
             {.anchor = "middle", .colour = kQuiet});
  }
}

}  // namespace

double RoundStep(double least) {
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= least * (1 - 1e-9)) return factor * power;
  }
  return 10 * power;
}

std::vector<double> ValueTicks(double top, int wanted, bool isWhole) {
  if (!(top > 0)) top = 1;
  double step = RoundStep(top / (wanted - 1));
  if (isWhole) step = std::max(step, 1.0);
  const auto count = static_cast<int>(std::ceil(top / step * (1 - 1e-9)));
  std::vector<double> ticks;
  for (int i = 0; i <= count; ++i) ticks.push_back(i * step);
  return ticks;
}

std::vector<double> TimeTicks(double first, double last, int wanted) {
  const double step = TimeStep(last - first, wanted);
  const double start = std::ceil(first / step);
  const auto count = static_cast<int>(std::floor(last / step) - start) + 1;
  std::vector<double> ticks;
  ticks.reserve(static_cast<std::size_t>(std::max(count, 0)));
  for (int i = 0; i < count; ++i) ticks.push_back((start + i) * step);
  return ticks;
}

std::string DrawChart(const Chart& chart) {
  const auto panelTop = [](std::size_t i) {
    return kFirstPanelTop + static_cast<double>(i) * (kPanelHeight + kBetweenPanels);
  };
  const double height = panelTop(chart.panels.size()) - kBetweenPanels + kBelow;
  SvgC svg(kWidth, height, chart.title);
  svg.Text({kLeft, 34}, chart.title, {.size = 19, .isBold = true});
  svg.Text({kLeft, 56}, chart.subtitle, {.colour = kQuiet});

  // A single moment gets a second on either side.
  const double margin = chart.lastTime > chart.firstTime ? 0 : 1;
  Frame frame{0, 0, chart.firstTime - margin, chart.lastTime + margin, 1};
  const std::vector<double> ticks = TimeTicks(frame.firstTime, frame.lastTime, kTimeTicks);
  for (std::size_t i = 0; i < chart.panels.size(); ++i) {
    frame.top = panelTop(i);
    frame.bottom = frame.top + kPanelHeight;
    DrawPanel(svg, chart.panels[i], frame, ticks);
  }
  const double step = ticks.size() > 1 ? ticks[1] - ticks[0] : 1;
  for (const double tick : ticks) {
    svg.Text({frame.X(tick), frame.bottom + 21}, TimeText(tick, step), {.anchor = "middle"});
  }
  svg.Text({(kLeft + kRight) / 2, frame.bottom + 46}, chart.timeLabel, {.anchor = "middle"});
  return std::move(svg).Finish();
}

}  // namespace Tool
