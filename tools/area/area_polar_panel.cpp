#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>
#include <area/area_drawing.h>
#include <area/area_inside.h>
#include <area/area_polar_panel.h>

namespace Tool {
namespace {

using GMAT::AnglePointC;

constexpr int kRows = 360;
constexpr SvgPoint kPole{904, 262};
constexpr double kRadius = 150;

class PolarPanelC {
 public:
  PolarPanelC(SvgC& svg, const AreaPicture& picture) : svg_(svg), picture_(picture) {}

  void Draw(const std::vector<EdgeCurve>& edges, const std::optional<AreaBounds>& bounds) {
    DrawInside();
    DrawAxes();
    svg_.Circle(kPole, GMAT::V_LIMIT / GMAT::PI * kRadius, kLowest);
    for (const EdgeCurve& edge : edges) {
      svg_.Polyline(Sampled(edge.at, At, LeastHalvings(edges)), EdgeStroke(edge));
    }
    if (bounds) DrawBounds(*bounds);
    svg_.Circle(kPole, kRadius, kFrame);
    DrawCorners(
        svg_, picture_, [](const AnglePointC& p) { return p; }, At,
        [](SvgPoint /*p*/) { return true; });
    for (const AreaProbe& probe : picture_.probes) {
      if (0 <= probe.v && probe.v <= GMAT::PI) {
        DrawProbe(svg_, At({probe.hz, probe.v}), probe.isInside);
      }
    }
  }

 private:
  static SvgPoint At(const AnglePointC& p) {
    const double r = std::clamp(p.V, 0.0, GMAT::PI) / GMAT::PI * kRadius;
    return {kPole.x + r * std::sin(p.Hz), kPole.y - r * std::cos(p.Hz)};
  }

  void DrawInside() {
    std::vector<SvgPoint> points;
    const AngleWindow whole{0, GMAT::TWO_PI, 0, GMAT::PI};
    const auto append = [&](const AnglePointC& from, const AnglePointC& to) {
      const std::vector<SvgPoint> line = Sampled(Straight(from, to), At);
      points.insert(points.end(), line.begin(), line.end());
    };
    for (const InsideStrip& strip : FindInside(*picture_.file.area, whole, kRows)) {
      points.clear();
      const InsideRun& top = strip.front();
      const InsideRun& bottom = strip.back();
      for (const InsideRun& run : strip) points.push_back(At({run.from, run.v}));
      append({bottom.from, bottom.v}, {bottom.to, bottom.v});
      for (auto run = strip.rbegin(); run != strip.rend(); ++run) {
        points.push_back(At({run->to, run->v}));
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
      svg_.Line(kPole, At({radians, GMAT::PI}), kGrid);
      const double r = kRadius + 14;
      svg_.Text({kPole.x + r * std::sin(radians), kPole.y - r * std::cos(radians) + 4},
                fmt::format("{:.4g}", hz), {.size = 12, .anchor = "middle"});
    }
    const double ring = unit == AngleUnit::kGon ? 50 : isRad ? 0.5 : 30;
    for (int i = 1; i * ring < half - 1e-9; ++i) {
      svg_.Circle(kPole, ToRadians(i * ring, unit) / GMAT::PI * kRadius, kGrid);
    }
    svg_.Text({kPole.x, kPlaneTop - 26}, "seen from the zenith",
              {.anchor = "middle", .isBold = true});
    svg_.Text({kPole.x, kPlaneTop + kPlaneHeight + 42},
              fmt::format("rings every {:.4g} {} of V, nadir outside", ring, UnitName(unit)),
              {.size = 12, .anchor = "middle", .colour = kQuiet});
    svg_.Dot(kPole, 1.8, kQuiet);
  }

  void DrawBounds(const AreaBounds& bounds) {
    for (const Curve& line : BoundsLines(bounds)) svg_.Polyline(Sampled(line, At), kBounds);
  }

  SvgC& svg_;
  const AreaPicture& picture_;
};

}  // namespace

void DrawPolarPanel(SvgC& svg, const AreaPicture& picture, const std::vector<EdgeCurve>& edges,
                    const std::optional<AreaBounds>& bounds) {
  PolarPanelC(svg, picture).Draw(edges, bounds);
}

}  // namespace Tool
