#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>
#include <area/area_drawing.h>
#include <area/area_inside.h>
#include <area/area_plane_panel.h>
#include <area/area_ring.h>
#include <area/picture_colours.h>
#include <output/chart.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

// Tick marks of an angle from `first` to `last`, in the unit.
std::vector<double> AngleTicks(double first, double last, AngleUnit unit, int wanted) {
  const double range = last - first;
  double step = RoundStep(range / (wanted - 1));
  // Round fractions of a turn if a large part of it is shown.
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
  PlanePanelC(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
              const InsideDrawingC& inside)
      : svg_(svg),
        labels_(labels),
        picture_(picture),
        inside_(inside),
        map_(picture.window),
        window_(picture.window) {}

  void Draw(const std::vector<EdgeCurve>& edges, const std::optional<AreaBounds>& bounds) {
    svg_.BeginClip({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight);
    DrawInside();
    svg_.EndClip();
    DrawAxes();
    svg_.BeginClip({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight);
    svg_.Line(At({window_.hzMin, GMAT::V_LIMIT}), At({window_.hzMax, GMAT::V_LIMIT}), kLowest);
    DrawRing(edges);
    if (bounds) DrawBounds(*bounds);
    svg_.EndClip();
    svg_.Rectangle({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight, kFrame);
    DrawMarks();
  }

 private:
  SvgPoint At(const AnglePointC& p) const { return map_.At(p); }

  void DrawInside() {
    const auto strips = inside_.FindStrips(window_);
    if (!strips) {
      return inside_.DrawRaster(svg_, {kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight,
                                [&](SvgPoint p) { return map_.DirectionAt(p); });
    }
    std::vector<SvgPoint> points;
    for (const InsideStrip& strip : *strips) {
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
      labels_.Place({x, kPlaneTop + kPlaneHeight + 20}, Label(tick), {.anchor = "middle"});
    }
    for (const double tick : AngleTicks(inUnit(window_.vMin), inUnit(window_.vMax), unit, 8)) {
      const double y = At({0, ToRadians(tick, unit)}).y;
      svg_.Line({kPlaneLeft, y}, {kPlaneLeft + kPlaneWidth, y}, kGrid);
      svg_.Line({kPlaneLeft - 5, y}, {kPlaneLeft, y}, kFrame);
      labels_.Place({kPlaneLeft - 9, y + 4.5}, Label(tick), {.anchor = "end"});
    }
    labels_.Place({kPlaneLeft + kPlaneWidth / 2, kPlaneTop + kPlaneHeight + 42},
                  fmt::format("Hz [{}]", UnitName(unit)), {.anchor = "middle"});
    labels_.Place({24, kPlaneTop + kPlaneHeight / 2},
                  fmt::format("V from the zenith [{}]", UnitName(unit)),
                  {.anchor = "middle", .turned = -90});
    if (window_.vMin <= 0) {
      labels_.Place({kPlaneLeft + kPlaneWidth, kPlaneTop - 7}, "zenith",
                    {.size = 12, .anchor = "end", .colour = kQuiet});
    }
    labels_.Place({kPlaneLeft, kPlaneTop - 7}, "Hz and V", {.isBold = true});
  }
  std::string Label(double tick) const { return fmt::format("{:.6g}", tick + 0.0); }

  // Calls `draw` with the points of a curve for each turn at which part of it is visible.
  template <class Draw>
  void ForEachTurn(const Curve& curve, int least, const Draw& draw) const {
    const double a = curve(0).Hz;
    const double b = curve(1).Hz;
    const double reach = GMAT::PI;  // how far an arc may extend beyond its ends, over a pole
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
      draw(points);
    }
  }

  void DrawRing(const std::vector<EdgeCurve>& edges) {
    RingDrawingC ring({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight, edges.size());
    for (const EdgeCurve& edge : edges) {
      ForEachTurn(edge.at, LeastHalvings(edges),
                  [&](const std::vector<SvgPoint>& points) { ring.Add(points, EdgeStroke(edge)); });
    }
    ring.Draw(svg_);
  }

  void DrawBounds(const AreaBounds& bounds) {
    for (const Curve& line : BoundsLines(bounds)) {
      ForEachTurn(line, 3,
                  [&](const std::vector<SvgPoint>& points) { svg_.Polyline(points, kBounds); });
    }
  }

  void DrawMarks() {
    const double lowest = At({0, GMAT::V_LIMIT}).y;
    if (lowest > kPlaneTop && lowest < kPlaneTop + kPlaneHeight) {
      const double v = FromRadians(GMAT::V_LIMIT, picture_.file.unit);
      labels_.Place({kPlaneLeft + kPlaneWidth + 5, lowest + 4}, fmt::format("{:.4g}", v),
                    {.size = 11, .colour = kLowest.colour});
    }
    DrawCorners(
        svg_, labels_, picture_, [&](const AnglePointC& p) { return map_.Turned(p); },
        [&](const AnglePointC& p) { return At(p); }, &PlaneMapC::IsShown);
    picture_.probes.DrawInPlane(svg_);
  }

  SvgC& svg_;
  LabelPlacerC& labels_;
  const PictureContents& picture_;
  const InsideDrawingC& inside_;
  PlaneMapC map_;
  AngleWindow window_;
};

}  // namespace

void DrawPlanePanel(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                    const InsideDrawingC& inside, const std::vector<EdgeCurve>& edges,
                    const std::optional<AreaBounds>& bounds) {
  PlanePanelC(svg, labels, picture, inside).Draw(edges, bounds);
}

}  // namespace Tool
