#include <utility>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_probes.h>
#include <area/picture_colours.h>

namespace Tool {
namespace {

constexpr double kCell = 2;  // pixels
constexpr std::size_t kMostProbeRuns = 8'000;

RasterC PlaneRaster() { return RasterC({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight, kCell); }
RasterC PolarRaster() {
  return RasterC({kPole.x - kPolarRadius, kPole.y - kPolarRadius}, 2 * kPolarRadius,
                 2 * kPolarRadius, kCell);
}

bool IsInPolar(double v) { return 0 <= v && v <= GMAT::PI; }

}  // namespace

void DrawProbe(SvgC& svg, SvgPoint at, bool isInside) {
  constexpr double kArm = 3.6;
  if (isInside) {
    svg.Dot(at, 4.6, "#ffffff");
    svg.Dot(at, 3.6, kInsideProbe);
    return;
  }
  for (const auto& [stroke, arm] : {std::pair{SvgStroke{"#ffffff", 4.4}, kArm + 1},
                                    std::pair{SvgStroke{kOutsideProbe, 2.2}, kArm}}) {
    svg.Line({at.x - arm, at.y - arm}, {at.x + arm, at.y + arm}, stroke);
    svg.Line({at.x - arm, at.y + arm}, {at.x + arm, at.y - arm}, stroke);
  }
}

AreaProbesC::AreaProbesC(const AngleWindow& window)
    : plane_(window),
      inPlane_{PlaneRaster(), PlaneRaster()},
      inPolar_{PolarRaster(), PolarRaster()} {}

void AreaProbesC::Add(double hz, double v, bool isInside) {
  ++(isInside ? inside_ : outside_);
  if (probes_.size() < kMostMarks) probes_.push_back({{hz, v}, isInside});
  (isInside ? inPlane_.inside : inPlane_.outside).Mark(plane_.At(plane_.Turned({hz, v})));
  if (!IsInPolar(v)) return;
  (isInside ? inPolar_.inside : inPolar_.outside).Mark(PolarAt({hz, v}));
}

void AreaProbesC::DrawInPlane(SvgC& svg) const {
  if (IsRaster()) return Draw(svg, inPlane_);
  for (const Probe& probe : probes_) {
    const SvgPoint at = plane_.At(plane_.Turned(probe.at));
    if (PlaneMapC::IsShown(at)) DrawProbe(svg, at, probe.isInside);
  }
}

void AreaProbesC::DrawInPolar(SvgC& svg) const {
  if (IsRaster()) return Draw(svg, inPolar_);
  for (const Probe& probe : probes_) {
    if (IsInPolar(probe.at.V)) DrawProbe(svg, PolarAt(probe.at), probe.isInside);
  }
}

// If a cell has both marks, the one for outside is visible.
void AreaProbesC::Draw(SvgC& svg, const Rasters& rasters) {
  rasters.inside.Draw(svg, kInsideProbe, kMostProbeRuns);
  rasters.outside.Draw(svg, kOutsideProbe, kMostProbeRuns);
}

}  // namespace Tool
