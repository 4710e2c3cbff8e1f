// A public scan area cannot be assigned to; its implementation can.
#include <surveydata/scanning/scan_dome_area.h>

void Assign(SDI::ScanDomeAreaC& to, const SDI::ScanDomeAreaC& from) {
#if defined(MUST_NOT_COMPILE)
  to = from;
#else
  *to.GetImpl() = *from.GetImpl();
#endif
}
