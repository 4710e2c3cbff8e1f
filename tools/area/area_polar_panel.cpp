#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>
#include <area/area_drawing.h>
#include <area/area_inside.h>
#include <area/area_polar_panel.h>
#include <area/area_ring.h>
#include <area/picture_colours.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

constexpr double kRadius = kPolarRadius;

class PolarPanelC {
 public:
  PolarPanelC(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
              const InsideDrawingC& inside)
      : svg_(svg), labels_(labels), picture_(picture), inside_(inside) {}

  void Draw(const std::vector<EdgeCurve>& edges, const std::optional<AreaBounds>& bounds) {
    DrawInside();
    DrawAxes();
    svg_.Circle(kPole, GMAT::V_LIMIT / GMAT::PI * kRadius, kLowest);
    RingDrawingC ring({kPole.x - kRadius, kPole.y - kRadius}, 2 * kRadius, 2 * kRadius,
                      edges.size());
    for (const EdgeCurve& edge : edges) {
      ring.Add(Sampled(edge.at, PolarAt, LeastHalvings(edges)), EdgeStroke(edge));
    }
    ring.Draw(svg_);
    if (bounds) DrawBounds(*bounds);
    svg_.Circle(kPole, kRadius, kFrame);
    DrawCorners(
        svg_, labels_, picture_, [](const AnglePointC& p) { return p; }, PolarAt,
        [](SvgPoint /*p*/) { return true; });
    picture_.probes.DrawInPolar(svg_);
  }

 private:
  void DrawInside() {
    const auto strips = inside_.FindStrips(kWholeSphere);
    if (!strips) {
      return inside_.DrawRaster(svg_, {kPole.x - kRadius, kPole.y - kRadius}, 2 * kRadius,
                                2 * kRadius, [](SvgPoint p) {
                                  AnglePointC direction = PolarDirectionAt(p);
                                  if (direction.V > GMAT::PI) direction.V = 2 * GMAT::TWO_PI;
                                  return direction;
                                });
    }
    std::vector<SvgPoint> points;
    const auto append = [&](const AnglePointC& from, const AnglePointC& to) {
      const std::vector<SvgPoint> line = Sampled(Straight(from, to), PolarAt);
      points.insert(points.end(), line.begin(), line.end());
    };
    for (const InsideStrip& strip : *strips) {
      points.clear();
      const InsideRun& top = strip.front();
      const InsideRun& bottom = strip.back();
      for (const InsideRun& run : strip) points.push_back(PolarAt({run.from, run.v}));
      append({bottom.from, bottom.v}, {bottom.to, bottom.v});
      for (auto run = strip.rbegin(); run != strip.rend(); ++run) {
        points.push_back(PolarAt({run->to, run->v}));
      }
      append({top.to, top.v}, {top.from, top.v});
      svg_.Polygon(Thinned(points), kInsideFill, {kInsideFill, 0.6});
    }
  }

  void DrawAxes() {
    const AngleUnit unit = picture_.file.unit;
    const double half = HalfTurn(unit);
    const bool isRad = unit == AngleUnit::kRad;
    const double spoke = unit == AngleUnit::kGon ? 50 : isRad ? 1 : 30;
    for (int i = 0; i * spoke < 2 * half - 1e-9; ++i) {
      const double hz = i * spoke;
      const double radians = ToRadians(hz, unit);
      svg_.Line(kPole, PolarAt({radians, GMAT::PI}), kGrid);
      const double r = kRadius + 14;
      labels_.Place({kPole.x + r * std::sin(radians), kPole.y - r * std::cos(radians) + 4},
                    fmt::format("{:.4g}", hz), {.size = 12, .anchor = "middle"});
    }
    const double ring = unit == AngleUnit::kGon ? 50 : isRad ? 0.5 : 30;
    for (int i = 1; i * ring < half - 1e-9; ++i) {
      svg_.Circle(kPole, ToRadians(i * ring, unit) / GMAT::PI * kRadius, kGrid);
    }
    labels_.Place({kPole.x, kPlaneTop - 26}, "seen from the zenith",
                  {.anchor = "middle", .isBold = true});
    labels_.Place({kPole.x, kPlaneTop + kPlaneHeight + 42},
                  fmt::format("rings every {:.4g} {} of V, nadir outside", ring, UnitName(unit)),
                  {.size = 12, .anchor = "middle", .colour = kQuiet});
    svg_.Dot(kPole, 1.8, kQuiet);
  }

  void DrawBounds(const AreaBounds& bounds) {
    for (const Curve& line : BoundsLines(bounds)) svg_.Polyline(Sampled(line, PolarAt), kBounds);
  }

  SvgC& svg_;
  LabelPlacerC& labels_;
  const PictureContents& picture_;
  const InsideDrawingC& inside_;
};

}  // namespace

void DrawPolarPanel(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                    const InsideDrawingC& inside, const std::vector<EdgeCurve>& edges,
                    const std::optional<AreaBounds>& bounds) {
  PolarPanelC(svg, labels, picture, inside).Draw(edges, bounds);
}

}  // namespace Tool
