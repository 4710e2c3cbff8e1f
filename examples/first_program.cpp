#include <cstdio>

#include <surveydata/surveydata.h>

int main() {
  const char* const file = "valley_drive.rec";
  SDI::GPSRecordReaderC reader(file);
  for (const SDI::GPSRecordC& record : reader) {
    SDI::GPSDOPsC dops;
    if (record.GetMeasurement().GetDOPs(dops) && dops.GetPDOP() > 6.0) {
      std::printf("PDOP %.1f  %.49s\n", dops.GetPDOP(), record.GetInfo().name);
    }
  }
  if (reader.GetState() == SDI::GPSReaderState::kOpen) return 0;
  std::fprintf(stderr, "%s: %s\n", file, TextOf(reader.GetState()));
  return 1;
}
