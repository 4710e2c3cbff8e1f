#include <cstdio>

#include <surveydata/surveydata.h>

int main() {
  SDI::GPSRecordFileInfo where{.extension = "rec", .offset = 960, .path = "valley_drive"};
  SDI::GPSMeasDataC epoch;
  if (SDI::GPSRecordFileC::ReadGPSMeasData(epoch.GetImpl(), &where) != 0) return 1;
  SDI::GPSDOPsC dops;
  if (epoch.GetDOPs(dops)) std::printf("%s: PDOP %.1f\n", where.name, dops.GetPDOP());
}
