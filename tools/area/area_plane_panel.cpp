#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>
#include <area/area_drawing.h>
#include <area/area_inside.h>
#include <area/area_plane_panel.h>
#include <output/chart.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

constexpr int kRows = 360;

// Tick marks of an angle from `first` to `last`, in the unit.
std::vector<double> AngleTicks(double first, double last, AngleUnit unit, int wanted) {
  const double range = last - first;
  double step = RoundStep(range / (wanted - 1));
  // Whole parts of a turn where much of it is shown.
  if (unit == AngleUnit::kDeg) {
    for (const double part : {15.0, 30.0, 45.0, 90.0}) {
      if (range > 90 && range / part <= wanted) {
        step = part;
        break;
      }
    }
  }
  std::vector<double> ticks;
  const double slack = step * 1e-6;
  const double before = std::ceil((first - slack) / step);
  for (int i = 0; (before + i) * step <= last + slack; ++i) ticks.push_back((before + i) * step);
  return ticks;
}

class PlanePanelC {
 public:
  PlanePanelC(SvgC& svg, const AreaPicture& picture)
      : svg_(svg),
        picture_(picture),
        window_(picture.window.value_or(AngleWindow{0, GMAT::TWO_PI, 0, GMAT::PI})) {}

  void Draw(const std::vector<EdgeCurve>& edges, const std::optional<AreaBounds>& bounds) {
    svg_.BeginClip({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight);
    DrawInside();
    svg_.EndClip();
    DrawAxes();
    svg_.BeginClip({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight);
    svg_.Line(At({window_.hzMin, GMAT::V_LIMIT}), At({window_.hzMax, GMAT::V_LIMIT}), kLowest);
    for (const EdgeCurve& edge : edges) {
      DrawTurned(edge.at, EdgeStroke(edge), LeastHalvings(edges));
    }
    if (bounds) DrawBounds(*bounds);
    svg_.EndClip();
    svg_.Rectangle({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight, kFrame);
    DrawMarks();
  }

 private:
  SvgPoint At(const AnglePointC& p) const {
    return {kPlaneLeft + (p.Hz - window_.hzMin) / (window_.hzMax - window_.hzMin) * kPlaneWidth,
            kPlaneTop + (p.V - window_.vMin) / (window_.vMax - window_.vMin) * kPlaneHeight};
  }
  // The same direction, by full turns, where the window shows it if it does.
  AnglePointC Turned(const AnglePointC& p) const {
    constexpr double kSlack = 1e-9;
    const double turns = std::ceil((window_.hzMin - p.Hz) / GMAT::TWO_PI - kSlack);
    return {p.Hz + turns * GMAT::TWO_PI, p.V};
  }
  bool IsShown(SvgPoint p) const {
    constexpr double kSlack = 0.5;
    return p.x >= kPlaneLeft - kSlack && p.x <= kPlaneLeft + kPlaneWidth + kSlack &&
           p.y >= kPlaneTop - kSlack && p.y <= kPlaneTop + kPlaneHeight + kSlack;
  }

  void DrawInside() {
    std::vector<SvgPoint> points;
    for (const InsideStrip& strip : FindInside(*picture_.file.area, window_, kRows)) {
      points.clear();
      for (const InsideRun& run : strip) points.push_back(At({run.from, run.v}));
      for (auto run = strip.rbegin(); run != strip.rend(); ++run) {
        points.push_back(At({run->to, run->v}));
      }
      svg_.Polygon(Thinned(points), kInsideFill, {kInsideFill, 0.6});
    }
  }

  void DrawAxes() {
    const AngleUnit unit = picture_.file.unit;
    const auto inUnit = [&](double radians) { return FromRadians(radians, unit); };
    for (const double tick : AngleTicks(inUnit(window_.hzMin), inUnit(window_.hzMax), unit, 13)) {
      const double x = At({ToRadians(tick, unit), 0}).x;
      svg_.Line({x, kPlaneTop}, {x, kPlaneTop + kPlaneHeight}, kGrid);
      svg_.Line({x, kPlaneTop + kPlaneHeight}, {x, kPlaneTop + kPlaneHeight + 5}, kFrame);
      svg_.Text({x, kPlaneTop + kPlaneHeight + 20}, Label(tick), {.anchor = "middle"});
    }
    for (const double tick : AngleTicks(inUnit(window_.vMin), inUnit(window_.vMax), unit, 8)) {
      const double y = At({0, ToRadians(tick, unit)}).y;
      svg_.Line({kPlaneLeft, y}, {kPlaneLeft + kPlaneWidth, y}, kGrid);
      svg_.Line({kPlaneLeft - 5, y}, {kPlaneLeft, y}, kFrame);
      svg_.Text({kPlaneLeft - 9, y + 4.5}, Label(tick), {.anchor = "end"});
    }
    svg_.Text({kPlaneLeft + kPlaneWidth / 2, kPlaneTop + kPlaneHeight + 42},
              fmt::format("Hz [{}]", UnitName(unit)), {.anchor = "middle"});
    svg_.Text({24, kPlaneTop + kPlaneHeight / 2},
              fmt::format("V from the zenith [{}]", UnitName(unit)),
              {.anchor = "middle", .turned = -90});
    if (window_.vMin <= 0) {
      svg_.Text({kPlaneLeft + kPlaneWidth, kPlaneTop - 7}, "zenith",
                {.size = 12, .anchor = "end", .colour = kQuiet});
    }
    svg_.Text({kPlaneLeft, kPlaneTop - 7}, "Hz and V", {.isBold = true});
  }
  std::string Label(double tick) const { return fmt::format("{:.6g}", tick + 0.0); }

  // Once for each turn at which a part of it can be seen.
  void DrawTurned(const Curve& curve, const SvgStroke& stroke, int least) {
    const double a = curve(0).Hz;
    const double b = curve(1).Hz;
    const double reach = GMAT::PI;  // what an arc may go beyond its ends, over a pole
    const double first = std::ceil((window_.hzMin - std::max(a, b) - reach) / GMAT::TWO_PI);
    for (int i = 0;; ++i) {
      const double turn = (first + i) * GMAT::TWO_PI;
      if (!(std::min(a, b) - reach + turn <= window_.hzMax)) break;
      const auto shift = [&](const AnglePointC& p) { return At({p.Hz + turn, p.V}); };
      const auto points = Sampled(curve, shift, least);
      const auto [left, right] =
          std::minmax_element(points.begin(), points.end(),
                              [](const SvgPoint& p, const SvgPoint& q) { return p.x < q.x; });
      if (right->x < kPlaneLeft || left->x > kPlaneLeft + kPlaneWidth) continue;
      svg_.Polyline(points, stroke);
    }
  }

  void DrawBounds(const AreaBounds& bounds) {
    for (const Curve& line : BoundsLines(bounds)) DrawTurned(line, kBounds, 3);
  }

  void DrawMarks() {
    const double lowest = At({0, GMAT::V_LIMIT}).y;
    if (lowest > kPlaneTop && lowest < kPlaneTop + kPlaneHeight) {
      const double v = FromRadians(GMAT::V_LIMIT, picture_.file.unit);
      svg_.Text({kPlaneLeft + kPlaneWidth + 5, lowest + 4}, fmt::format("{:.4g}", v),
                {.size = 11, .colour = kLowest.colour});
    }
    DrawCorners(
        svg_, picture_, [&](const AnglePointC& p) { return Turned(p); },
        [&](const AnglePointC& p) { return At(p); }, [&](SvgPoint p) { return IsShown(p); });
    for (const AreaProbe& probe : picture_.probes) {
      const SvgPoint at = At(Turned({probe.hz, probe.v}));
      if (IsShown(at)) DrawProbe(svg_, at, probe.isInside);
    }
  }

  SvgC& svg_;
  const AreaPicture& picture_;
  AngleWindow window_;
};

}  // namespace

void DrawPlanePanel(SvgC& svg, const AreaPicture& picture, const std::vector<EdgeCurve>& edges,
                    const std::optional<AreaBounds>& bounds) {
  PlanePanelC(svg, picture).Draw(edges, bounds);
}

}  // namespace Tool
