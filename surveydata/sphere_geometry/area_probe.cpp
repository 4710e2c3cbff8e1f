#include <algorithm>

#include <surveydata/sphere_geometry/area_probe.h>

namespace GMAT {

AnglePointC BandProbe(double hz, double v, double hzOrigin) {
  // The rules add the origin although the edges were shifted by subtracting it. The band is
  // therefore displaced from the edges by twice the origin.
  AnglePointC probe{hz + hzOrigin, v};
  if (!ApproxEqual(probe.Hz, TWO_PI) && !ApproxEqual(probe.Hz, -TWO_PI)) {
    WrapIntoRange(probe.Hz, 0.0, TWO_PI);
  }
  return probe;
}

bool IsBeside(const AnglePointC& probe, const AnglePointC& a, const AnglePointC& b) {
  const double length = PlanarDistance(a, b);
  return PlanarDistance(probe, a) <= length && PlanarDistance(probe, b) <= length;
}

bool IsInBand(const AnglePointC& probe, const AnglePointC& a, const AnglePointC& b) {
  return IsBeside(probe, a, b) && AtMost(PlanarLineDistance(probe, a, b), CONTAINS_TOLERANCE / 2.0);
}

bool IsInsideByParity(std::vector<double>& crossings, double v, bool hasOneAbove,
                      std::size_t othersBelow) {
  const bool isOneRemoved =
      std::erase_if(crossings, [v](double crossing) { return AtLeast(v, crossing); }) > 0;
  if (!isOneRemoved && !hasOneAbove) return false;
  std::sort(crossings.begin(), crossings.end());
  std::size_t count = crossings.size() + othersBelow;
  for (std::size_t i = 1; i < crossings.size(); ++i) {
    if (ApproxEqual(crossings[i - 1], crossings[i])) --count;
  }
  return count % 2 == 1;
}

}  // namespace GMAT
