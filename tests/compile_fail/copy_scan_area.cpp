// A public scan area cannot be copied; its implementation can.
#include <surveydata/scanning/scan_polygon_area.h>

void Copy(const SDI::ScanPolygonAreaC& area) {
#if defined(MUST_NOT_COMPILE)
  const SDI::ScanPolygonAreaC copy(area);
#else
  const SDI::ScanPolygonAreaC copy(new SDI::ScanPolygonAreaImplC(*area.GetImpl()));
#endif
}
