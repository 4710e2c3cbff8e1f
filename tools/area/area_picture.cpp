#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include <area/area_curves.h>
#include <area/area_drawing.h>
#include <area/area_measure.h>
#include <area/area_picture.h>
#include <area/area_plane_panel.h>
#include <area/area_polar_panel.h>
#include <output/svg.h>

namespace Tool {
namespace {

constexpr double kWidth = 1100;
constexpr double kHeight = 540;
constexpr double kLegendTop = 500;

// One line below the panels: what is in the picture, and nothing else.
class LegendC {
 public:
  explicit LegendC(SvgC& svg) : svg_(svg) {}

  void Fill(std::string_view text) {
    svg_.Rectangle({x_, kLegendTop - 11}, kSample, 12, kInsideFill);
    Label(text);
  }
  void Stroke(const SvgStroke& stroke, std::string_view text) {
    svg_.Line({x_, kLegendTop - 4.5}, {x_ + kSample, kLegendTop - 4.5}, stroke);
    Label(text);
  }
  void Probe(bool isInside, std::string_view text) {
    DrawProbe(svg_, {x_ + kSample / 2, kLegendTop - 4.5}, isInside);
    Label(text);
  }

 private:
  static constexpr double kSample = 26;

  void Label(std::string_view text) {
    constexpr double kLetter = 6.6;
    svg_.Text({x_ + kSample + 7, kLegendTop}, text);
    x_ += kSample + 30 + kLetter * static_cast<double>(text.size());
  }

  SvgC& svg_;
  double x_ = kPlaneLeft;
};

void DrawLegend(SvgC& svg, const AreaPicture& picture, const std::vector<EdgeCurve>& edges,
                bool hasBounds) {
  LegendC legend(svg);
  legend.Fill("inside");
  const auto has = [&](const SvgStroke& stroke) {
    return std::any_of(edges.begin(), edges.end(),
                       [&](const EdgeCurve& edge) { return &EdgeStroke(edge) == &stroke; });
  };
  if (has(kEdge)) legend.Stroke(kEdge, "edge");
  if (has(kFaultyEdge)) legend.Stroke(kFaultyEdge, "crossing edge");
  if (has(kNoArc)) legend.Stroke(kNoArc, "edge that is no arc");
  if (hasBounds) legend.Stroke(kBounds, "bounds");
  legend.Stroke(kLowest, "lowest direction");
  for (const bool isInside : {true, false}) {
    const auto count =
        std::count_if(picture.probes.begin(), picture.probes.end(),
                      [&](const AreaProbe& probe) { return probe.isInside == isInside; });
    if (count > 0) {
      legend.Probe(isInside, fmt::format("asked: {} ({})", isInside ? "inside" : "outside", count));
    }
  }
}

std::string Subtitle(const AreaPicture& picture, const std::optional<AreaBounds>& bounds) {
  const AreaFile& file = picture.file;
  std::string text(KindName(*file.area));
  if (file.area->GetType() == SDI::kPolygonArea) {
    text += fmt::format(", {} points", file.Sphere().GetPoints().size());
  }
  if (bounds && bounds->enclosesZenith) text += ", encloses the zenith";
  if (picture.faults.empty()) return text + ", valid";
  text += ", not valid: " + picture.faults.front().text;
  if (picture.faults.size() > 1) text += fmt::format(", and {} more", picture.faults.size() - 1);
  return text;
}

}  // namespace

std::string DrawArea(const AreaPicture& picture) {
  const std::optional<AreaBounds> bounds = MeasureBounds(picture.file);
  const std::vector<EdgeCurve> edges = MakeEdges(picture);
  SvgC svg(kWidth, kHeight, picture.file.name);
  svg.Text({kPlaneLeft, 34}, picture.file.name, {.size = 19, .isBold = true});
  svg.Text({kPlaneLeft, 56}, Subtitle(picture, bounds),
           {.colour = picture.faults.empty() ? kQuiet : kFault});
  DrawPlanePanel(svg, picture, edges, bounds);
  DrawPolarPanel(svg, picture, edges, bounds);
  DrawLegend(svg, picture, edges, bounds.has_value());
  return std::move(svg).Finish();
}

}  // namespace Tool
