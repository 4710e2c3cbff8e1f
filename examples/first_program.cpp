#include <cstdio>

#include <surveydata/surveydata.h>

int main() {
  SDI::GPSRecordReaderC reader("valley_drive.rec");
  for (const SDI::GPSRecordC& record : reader) {
    SDI::GPSDOPsC dops;
    if (record.GetMeasurement().GetDOPs(dops) && dops.GetPDOP() > 6.0) {
      std::printf("PDOP %.1f  %.49s\n", dops.GetPDOP(), record.GetInfo().name);
    }
  }
  if (reader.GetState() != SDI::GPSReaderState::kOpen) std::puts(TextOf(reader.GetState()));
}
