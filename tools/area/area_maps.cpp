#include <algorithm>
#include <cmath>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_maps.h>

namespace Tool {

using GMAT::AnglePointC;

SvgPoint PlaneMapC::At(const AnglePointC& p) const {
  return {kPlaneLeft + (p.Hz - window_.hzMin) / (window_.hzMax - window_.hzMin) * kPlaneWidth,
          kPlaneTop + (p.V - window_.vMin) / (window_.vMax - window_.vMin) * kPlaneHeight};
}

AnglePointC PlaneMapC::DirectionAt(SvgPoint p) const {
  return {window_.hzMin + (p.x - kPlaneLeft) / kPlaneWidth * (window_.hzMax - window_.hzMin),
          window_.vMin + (p.y - kPlaneTop) / kPlaneHeight * (window_.vMax - window_.vMin)};
}

AnglePointC PlaneMapC::Turned(const AnglePointC& p) const {
  constexpr double kSlack = 1e-9;
  const double turns = std::ceil((window_.hzMin - p.Hz) / GMAT::TWO_PI - kSlack);
  return {p.Hz + turns * GMAT::TWO_PI, p.V};
}

bool PlaneMapC::IsShown(SvgPoint p) {
  constexpr double kSlack = 0.5;
  return p.x >= kPlaneLeft - kSlack && p.x <= kPlaneLeft + kPlaneWidth + kSlack &&
         p.y >= kPlaneTop - kSlack && p.y <= kPlaneTop + kPlaneHeight + kSlack;
}

SvgPoint PolarAt(const AnglePointC& p) {
  const double r = std::clamp(p.V, 0.0, GMAT::PI) / GMAT::PI * kPolarRadius;
  return {kPole.x + r * std::sin(p.Hz), kPole.y - r * std::cos(p.Hz)};
}

AnglePointC PolarDirectionAt(SvgPoint p) {
  const double x = p.x - kPole.x;
  const double y = kPole.y - p.y;
  double hz = std::atan2(x, y);
  if (hz < 0) hz += GMAT::TWO_PI;
  return {hz, std::hypot(x, y) / kPolarRadius * GMAT::PI};
}

}  // namespace Tool
