// A caller that uses every public class and no implementations. `abi.growth` compiles it with the
// current headers and runs it with a library whose implementations have more fields. Its output
// must be the same, and AddressSanitizer must not report anything.

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <surveydata/surveydata.h>

#include "tests/support/record_field_lists.h"

namespace {

void Print(const char* what, const std::string& text) {
  std::printf("%s: %s\n", what, text.c_str());
}
void Print(const char* what, double value) { std::printf("%s: %.17g\n", what, value); }

template <class Record>
void PrintFields(const char* what, const Record& record) {
  std::string line;
  for (const std::string& value : Records::Values(record)) line += value + " ";
  Print(what, line);
}

// A caller's class that derives from a public class.
template <class Record>
struct Derived : Record {
  using Record::Record;
  int note = 7;
};

// Uses the operations that every public class has, and prints whether copies equal `made`.
template <class Record>
void UseCopies(const Record& made) {
  Record copy(made);
  Record assigned;
  assigned = copy;
  const Record moved(std::move(copy));
  Derived<Record> derived;
  static_cast<Record&>(derived) = made;
  if constexpr (requires { made.IsEqual(made); }) {
    Print("equal", moved.IsEqual(made) && assigned.IsEqual(made) && derived.IsEqual(made));
    Print("as new", Record().IsEqual(made));
  } else if constexpr (requires { made == made; }) {
    Print("equal", moved == made && assigned == made && derived == made);
    Print("as new", Record() == made);
  }
  Print("note", derived.note);
  delete new Record(moved);
  std::vector<Record> many(3, made);
  many.push_back(moved);
  many.erase(many.begin());
}

template <class Record>
void UseRecord(const char* name) {
  Record made;
  PrintFields(name, made);
  Records::FillAll(made);
  PrintFields(name, made);
  UseCopies(made);
  Record other;
  other = made;
  PrintFields(name, other);
}

void UsePartsOfAPosition() {
  SDI::PositionC position;
  SDI::CoordinatePointC& point = position.GetCoordinatePoint();
  point.SetX(4.5);
  SDI::CoordinateReferenceSystemC& crs = position.GetCRS();
  crs.SetKind(1);
  SDI::QMatrixC matrix(1.0F, 2.0F, 3.0F, 4.0F, 5.0F, 6.0F);
  position.GetCoordinateQuality() = SDI::CoordinateQualityC(2.0F, matrix, 7);
  float deviation = 0.0F;
  Print("has deviation", position.GetStdDev(2, &deviation));
  Print("deviation", deviation);
  Print("dimension", position.GetDimension());
  const SDI::PositionC copy(position);
  Print("x", copy.GetCoordinatePoint().GetX());
  Print("q33", copy.GetCoordinateQuality().GetMatrix().GetQ33());
}

void PrintMeasurement(const SDI::GPSMeasDataC& measurement) {
  Print("week", measurement.GetTimeA().week);
  Print("time of week", measurement.GetTimeA().timeOfWeek);
  Print("time B", measurement.GetTimeB().timeOfWeek);
  SDI::GPSAntHeightC height;
  Print("has height", measurement.GetAntennaHeight(height));
  PrintFields("height", height);
  Print("vertical height", height.GetVerticalHeight());
  SDI::GPSDOPsC dops;
  Print("has dops", measurement.GetDOPs(dops));
  Print("hdop", dops.GetHDOP());
  Print("gdop", dops.GetGDOP());
  std::uint8_t first = 0;
  std::uint8_t second = 0;
  Print("total", measurement.GetTotalPair(first, second) ? first * 256 + second : -1);
  Print("system 1", measurement.GetSystem1Pair(first, second) ? first * 256 + second : -1);
  double vector[3] = {};
  Print("has vector", measurement.GetVector(vector));
  for (const double component : vector) Print("component", component);
  std::uint16_t word = 0;
  Print("word", measurement.GetWord16(word) ? word : -1);
  Print("value", measurement.GetValue(0));
  Print("value C", measurement.GetValueC());
}

void UseMeasurements(const char* recordFile) {
  SDI::GPSMeasDataC made;
  SDI::GPSAntHeightC height;
  height.SetHeight(1.5F, false);
  height.SetHorizontalOffset(0.5F);
  made.SetAntennaHeight(height);
  const std::uint16_t values[] = {4, 5, 6};
  made.SetValues(values, 3);
  PrintMeasurement(made);
  UseCopies(made);
  UseCopies(SDI::GPSDOPsC());

  SDI::GPSRecordIndexC index(recordFile);
  SDI::GPSRecordEntry entry;
  int read = 0;
  while (read < 20 && index.Next(entry)) {
    if (entry.isGap || !entry.IsMeasurement()) continue;
    SDI::GPSRecordFileInfo info;
    std::strncpy(info.path, recordFile, sizeof(info.path) - 1);
    info.offset = static_cast<std::int32_t>(entry.offset);
    SDI::GPSMeasDataC measurement;
    Print("result", SDI::GPSRecordFileC::ReadGPSMeasData(measurement.GetImpl(), &info));
    PrintMeasurement(measurement);
    UseCopies(measurement);
    ++read;
  }
  Print("read", read);
}

void UseReferenceStation() {
  const SDI::GPSRefStationDataC station;
  UseCopies(station);
  Print("number", station.GetStationNumber());
  Print("mask", station.GetValidMask());
  SDI::CoordinatePointC point(1.0, 2.0, 3.0);
  Print("has point", station.GetPoint(point));
}

void PrintPoints(const char* what, const std::vector<SDI::ScanDefPointC>& points) {
  for (const SDI::ScanDefPointC& point : points) {
    Print(what, point.GetHz());
    Print(what, point.GetV());
    Print(what, point.GetDistance());
  }
}

void PrintArea(const SDI::ScanAreaC& area) {
  Print("type", area.GetType());
  Print("valid", area.IsValid());
  Print("points", area.GetPointCount());
  SDI::ScanDefPointC low;
  SDI::ScanDefPointC high;
  Print("has bounds", area.GetBoundingPoints(low, high, true));
  PrintPoints("bounds", {low, high});
  std::vector<SDI::ScanDefPointC> outline;
  area.GetOutline(outline, 9.0);
  PrintPoints("outline", outline);
  const SDI::PreparedAreaC prepared(area);
  for (const double hz : {0.5, 1.5, 6.0}) {
    Print("inside", area.Contains(hz, 1.4));
    Print("inside, prepared", prepared.Contains(hz, 1.4));
  }
  Print("limit", area.GetLimitHigh());
  Print("setting E", area.GetSettingE());
}

void UseScans() {
  UseCopies(SDI::ScanDefPointC(1.0, 2.0, 3.0));
  SDI::ScanRectangularAreaC rectangle;
  rectangle.SetCorners(SDI::ScanDefPointC(1.0, 1.0, -1.0), SDI::ScanDefPointC(2.0, 1.8, 5.0));
  rectangle.SetSteps(0.1, 0.2);
  rectangle.SetLimitHigh(40.0);
  PrintArea(rectangle);
  SDI::ScanPolygonAreaC polygon;
  polygon.SetPoints({SDI::ScanDefPointC(0.2, 1.0, 4.0), SDI::ScanDefPointC(1.0, 1.8, -1.0),
                     SDI::ScanDefPointC(0.1, 1.9, 8.0)});
  polygon.AddPoint(SDI::ScanDefPointC(9.0, 9.0, 9.0));
  polygon.RemoveLastPoint();
  polygon.SetSteps(0.1, 0.2);
  PrintArea(polygon);
  SDI::ScanDomeAreaC dome;
  dome.SetSettingE(12);
  PrintArea(dome);
  Print("equal", rectangle.SDI::ScanDefinitionC::IsEqual(polygon));

  SDI::ScanC scan;
  scan.SetText1(u"first");
  scan.SetText3(u"third");
  scan.SetText4(u"fourth");
  scan.SetValue1(1.5);
  scan.SetValue4(4.5);
  scan.SetWord2(7);
  for (const SDI::ScanAreaC* area :
       {static_cast<SDI::ScanAreaC*>(&rectangle), static_cast<SDI::ScanAreaC*>(&polygon),
        static_cast<SDI::ScanAreaC*>(&dome)}) {
    SDI::ScanDefinitionC* const held = scan.SetArea(area);
    Print("equal", held != nullptr && held->IsEqual(*area));
    UseCopies(scan);
    const SDI::ScanC copy(scan);
    Print("text 1", Records::Show(std::u16string(copy.GetText1())));
    Print("text 4", Records::Show(std::u16string(copy.GetText4())));
    Print("value 4", copy.GetValue4());
    Print("word 2", copy.GetWord2());
    PrintArea(dynamic_cast<const SDI::ScanAreaC&>(*copy.GetArea()));
  }
  Print("created", scan.CreateArea(SDI::kPolygonArea)->GetType());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  UseRecord<SDI::CoordinatePointC>("point");
  UseRecord<SDI::QMatrixC>("matrix");
  UseRecord<SDI::CoordinateQualityC>("quality");
  UseRecord<SDI::CoordinateReferenceSystemC>("reference system");
  UseRecord<SDI::UndulationMementoC>("undulation");
  UseRecord<SDI::PositionC>("position");
  UseRecord<SDI::RectangleC>("rectangle");
  UseRecord<SDI::DisplayAttributesC>("display");
  UseRecord<SDI::InstrumentInfoDataC>("instrument");
  UseRecord<SDI::GPSAntHeightC>("antenna");
  UseRecord<SDI::TPSSetupDataC>("setup");
  UseRecord<SDI::TPSMeasDataC>("measurement");
  UseRecord<SDI::TPSCorrectionDataC>("correction");
  UseRecord<SDI::TPSCalibrationDataC>("calibration");
  UseRecord<SDI::ImgCameraInfoC>("camera");
  UseRecord<SDI::ImgChipWindowInfoC>("window");
  UseRecord<SDI::ImgExteriorOrientationC>("exterior");
  UseRecord<SDI::ImgInteriorOrientationC>("interior");
  UsePartsOfAPosition();
  UseMeasurements(argv[1]);
  UseReferenceStation();
  UseScans();
}
