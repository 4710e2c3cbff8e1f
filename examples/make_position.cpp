// Builds a position with its quality and undulation, and queries it.

#include <cstdio>

#include <surveydata/geodetic/position.h>

int main() {
  // Grid coordinates with a height: this application calls them kind 2.
  const SDI::CoordinateReferenceSystemC grid(2, 1, 1);
  const SDI::CoordinatePointC point(634217.482, 248903.117, 487.264);  // easting, northing, height

  // Cofactors in square metres. The roots of the diagonal times the scale factor are the standard
  // deviations; all three axes are valid.
  const SDI::QMatrixC cofactors(1.6e-5F, 0.2e-5F, 0.1e-5F,  //
                                0.9e-5F, 0.3e-5F,           //
                                6.4e-5F);
  const SDI::CoordinateQualityC quality(1.5F, cofactors, 0x07);
  const SDI::UndulationMementoC undulation(49.512F, 1, 1);

  SDI::PositionC position(grid, point, quality, undulation);
  std::printf("dimension          %d\n", position.GetDimension());

  float east = 0, north = 0, height = 0, plane = 0, whole = 0;
  if (position.GetStdDev(1, &east) && position.GetStdDev(2, &north) &&
      position.GetStdDev(3, &height)) {
    std::printf("standard deviation east %.1f mm, north %.1f mm, height %.1f mm\n", 1e3 * east,
                1e3 * north, 1e3 * height);
  }
  if (position.GetCombinedStdDev(2, &plane) && position.GetCombinedStdDev(3, &whole)) {
    std::printf("combined           plane %.1f mm, whole %.1f mm\n", 1e3 * plane, 1e3 * whole);
  }
  if (position.GetUndulationMemento().GetValid() != 0) {
    std::printf("ellipsoidal height %.3f m\n", position.GetCoordinatePoint().GetZ() +
                                                   position.GetUndulationMemento().GetUndulation());
  }

  // The parts belong to the position: changing a part changes the position.
  position.GetCoordinateQuality().SetValidAxes(0x03);
  std::printf("axis 3 not valid   deviation %s\n",
              position.GetStdDev(3, &height) ? "known" : "not known");
  position.GetCRS().SetHasHeight(0);
  std::printf("dimension          %d\n", position.GetDimension());
}
