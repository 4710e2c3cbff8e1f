#ifndef SURVEYDATA_TOOLS_OUTPUT_CHART_H_
#define SURVEYDATA_TOOLS_OUTPUT_CHART_H_

#include <string>
#include <vector>

namespace Tool {

/// A value at a time, in seconds.
struct ChartPoint {
  double time;
  double value;
};

/// A line of a panel with its entry in the legend. Its runs are not connected; a run of one point
/// is a dot.
struct ChartLine {
  std::string name;
  std::string colour;
  double width = 1.6;
  std::vector<std::vector<ChartPoint>> runs;
};

/// A panel of a chart with its own value axis, which begins at 0.
struct ChartPanel {
  std::string label;  ///< Of the axis, with the unit.
  bool isWhole;       ///< Only whole numbers are marked.
  std::vector<ChartLine> lines;
};

/// Panels above each other with a common time axis.
struct Chart {
  std::string title;
  std::string subtitle;
  std::string timeLabel;
  double firstTime;  ///< Seconds from the start of GPS time.
  double lastTime;
  std::vector<ChartPanel> panels;
};

/// The smallest number that is at least `least`, above 0, and 1, 2 or 5 times a power of ten.
double RoundStep(double least);

/// Round numbers, 1, 2 or 5 times a power of ten apart: from 0 to the first that is at least `top`,
/// about `wanted` of them.
std::vector<double> ValueTicks(double top, int wanted, bool isWhole);

/// Round times within the range (seconds), at most `wanted` of them.
std::vector<double> TimeTicks(double first, double last, int wanted);

/// The chart as an SVG document.
std::string DrawChart(const Chart& chart);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_CHART_H_
