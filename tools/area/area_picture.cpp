#include <algorithm>
#include <cstdint>
#include <string_view>

#include <fmt/format.h>

#include <area/area_curves.h>
#include <area/area_drawing.h>
#include <area/area_maps.h>
#include <area/area_measure.h>
#include <area/area_picture.h>
#include <area/area_plane_panel.h>
#include <area/area_polar_panel.h>
#include <area/picture_colours.h>
#include <command_line/text.h>
#include <output/label_placer.h>
#include <output/svg.h>

namespace Tool {
namespace {

constexpr double kLegendTop = 500;
constexpr double kLegendLine = 18;
constexpr double kNotesTop = 540;

// The legend below the panels. It explains only what the picture contains.
class LegendC {
 public:
  LegendC(SvgC& svg, LabelPlacerC& labels) : svg_(svg), labels_(labels) {}

  void Fill(std::string_view text) {
    Begin(text);
    svg_.Rectangle({x_, y_ - 11}, kSample, 12, kInsideFill);
    Label(text);
  }
  void Stroke(const SvgStroke& stroke, std::string_view text) {
    Begin(text);
    svg_.Line({x_, y_ - 4.5}, {x_ + kSample, y_ - 4.5}, stroke);
    Label(text);
  }
  void Probe(bool isInside, std::string_view text) {
    Begin(text);
    DrawProbe(svg_, {x_ + kSample / 2, y_ - 4.5}, isInside);
    Label(text);
  }

 private:
  static constexpr double kSample = 26;
  static constexpr double kGap = 7;

  // Starts a new line if there is no room.
  void Begin(std::string_view text) {
    if (x_ + kSample + kGap + TextWidth(text, {}) <= kPageWidth) return;
    x_ = kPlaneLeft;
    y_ += kLegendLine;
  }
  void Label(std::string_view text) {
    labels_.Place({x_ + kSample + kGap, y_}, text);
    x_ += kSample + kGap + TextWidth(text, {}) + 16;
  }

  SvgC& svg_;
  LabelPlacerC& labels_;
  double x_ = kPlaneLeft;
  double y_ = kLegendTop;
};

void DrawLegend(SvgC& svg, LabelPlacerC& labels, const PictureContents& picture,
                const std::vector<EdgeCurve>& edges, bool hasBounds) {
  LegendC legend(svg, labels);
  if (IsInsideDrawn(picture)) legend.Fill("inside");
  const auto has = [&](const SvgStroke& stroke) {
    return std::any_of(edges.begin(), edges.end(),
                       [&](const EdgeCurve& edge) { return &EdgeStroke(edge) == &stroke; });
  };
  if (has(kEdge)) legend.Stroke(kEdge, "edge");
  if (has(kFaultyEdge)) legend.Stroke(kFaultyEdge, "crossing edge");
  if (has(kNoArc)) legend.Stroke(kNoArc, "edge without an arc");
  if (hasBounds) legend.Stroke(kBounds, "bounds");
  legend.Stroke(kLowest, "lowest direction");
  for (const bool isInside : {true, false}) {
    const std::uint64_t count = picture.probes.GetCount(isInside);
    if (count > 0) {
      legend.Probe(isInside, fmt::format("{} direction{} {}", count, count == 1 ? "" : "s",
                                         isInside ? "inside" : "outside"));
    }
  }
}

std::string Subtitle(const PictureContents& picture, const std::optional<AreaBounds>& bounds) {
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

// Notes on what the picture shows only at its resolution, or not at all.
std::string Notes(const PictureContents& picture) {
  std::string notes;
  const auto add = [&notes](std::string_view note) {
    notes += notes.empty() ? "" : "; ";
    notes += note;
  };
  const std::size_t corners = picture.file.Sphere().GetPoints().size();
  if (corners > kManyCorners) {
    std::string note =
        fmt::format("{} corners: drawn at the resolution of the picture, without marks", corners);
    const std::size_t faulty = Faulty(picture.faults, &AreaFault::points).size();
    if (faulty > kManyCorners) {
      note += fmt::format(" except at the first {} of {} that break a rule", kManyCorners, faulty);
    } else if (faulty > 0) {
      note += fmt::format(" except at the {} that break a rule", faulty);
    }
    add(note);
  }
  if (!IsInsideDrawn(picture)) add("the inside is not drawn");
  if (picture.probes.IsRaster()) {
    add(fmt::format("{} directions: drawn at the resolution of the picture",
                    picture.probes.GetCount(true) + picture.probes.GetCount(false)));
  }
  return notes;
}

}  // namespace

std::string DrawArea(const PictureContents& picture) {
  const std::optional<AreaBounds> bounds = MeasureBounds(picture.file);
  const std::vector<EdgeCurve> edges = MakeEdges(picture.file, picture.faults);
  constexpr SvgFont kTitle{.size = 19, .isBold = true};
  const SvgFont kSubtitle{.colour = picture.faults.empty() ? kQuiet : kFault};
  constexpr SvgFont kNotes{.size = 11, .colour = kQuiet};
  constexpr double kRoom = kPageWidth - kPlaneLeft - 8;
  const std::string title = FittedText(ToPrintable(picture.file.name), kRoom, kTitle);
  SvgC svg(kPageWidth, kPageHeight, title);
  LabelPlacerC labels(svg, kPageWidth, kPageHeight);
  labels.Place({kPlaneLeft, 34}, title, kTitle);
  labels.Place({kPlaneLeft, 56}, FittedText(Subtitle(picture, bounds), kRoom, kSubtitle),
               kSubtitle);
  const std::string notes = Notes(picture);
  if (!notes.empty()) {
    labels.Place({kPlaneLeft, kNotesTop}, FittedText(notes, kRoom, kNotes), kNotes);
  }
  DrawLegend(svg, labels, picture, edges, bounds.has_value());
  const InsideDrawingC inside(picture);
  DrawPlanePanel(svg, labels, picture, inside, edges, bounds);
  DrawPolarPanel(svg, labels, picture, inside, edges, bounds);
  return std::move(svg).Finish();
}

}  // namespace Tool
