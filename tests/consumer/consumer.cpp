// Uses the library across the module boundary, as a caller does: creates objects on one side, uses
// them on the other and deletes them on either, and derives classes. Reports failures.

#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>
#include <typeinfo>

#include <surveydata/surveydata.h>

namespace {

int failures = 0;

void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "failed: %s\n", what);
  ++failures;
}

// A caller may derive from both sides of a pair; the library reaches the data through a cast.
class MarkedPointImplC : public ODM::CoordinatePointC {
 public:
  explicit MarkedPointImplC(bool& isGone) : isGone_(isGone) {}
  MarkedPointImplC(const MarkedPointImplC&) = default;
  MarkedPointImplC& operator=(const MarkedPointImplC&) = delete;
  ~MarkedPointImplC() override { isGone_ = true; }

 private:
  bool& isGone_;
};

class MarkedPointC : public SDI::CoordinatePointC {
 public:
  using CoordinatePointC::CoordinatePointC;
};

// On ELF systems the type information of a class exists once in the program, so comparing addresses
// is enough; on Windows each module has its own, and the names are compared.
bool AreTheSame(const std::type_info& a, const std::type_info& b) {
#if defined(_WIN32)
  return a == b;
#else
  return &a == &b;
#endif
}

template <class Public, class Impl>
void TypeIsTheSame(Public&& made, const char* what) {
  const API::BaseC& base = made;
  const API::ImplObjectC& impl = *base.GetImpl();
  Check(AreTheSame(typeid(base), typeid(std::decay_t<Public>)), what);
  Check(AreTheSame(typeid(impl), typeid(Impl)), what);
}

// These constructors run inside the library.
void TypesMadeInTheLibraryAreThoseOfTheCaller() {
  TypeIsTheSame<SDI::CoordinatePointC, ODM::CoordinatePointC>({1.0, 2.0, 3.0}, "point");
  TypeIsTheSame<SDI::UndulationMementoC, ODM::UndulationMementoC>(
      SDI::UndulationMementoC(1.0F, 2, 1), "undulation");
  SDI::PositionC position;
  SDI::CoordinatePointC& part = position.GetCoordinatePoint();
  // A debug build of the library lends an object of a derived class, which guards against deletion.
  const API::BaseC& base = part;
  Check(dynamic_cast<const SDI::CoordinatePointC*>(&base) != nullptr, "part of a position");
  const API::ImplObjectC& impl = *base.GetImpl();
  Check(AreTheSame(typeid(impl), typeid(ODM::CoordinatePointC)), "data of a part of a position");
  part.SetX(7.0);
  Check(position.GetImpl()->GetCoordinatePoint().GetX() == 7.0, "a part is lent");
}

// The getter runs inside the library, whose cast must recognise the implementation created here.
void TypesAreTheSameOnBothSides() {
  const SDI::CoordinatePointC point(1.0, 2.0, 3.0);
  Check(point.GetX() == 1.0 && point.GetZ() == 3.0, "the library reads a point created here");
  Check(point.GetImpl() != nullptr && point.GetImpl()->GetY() == 2.0, "the caller reads it too");

  // The GNSS getters return 0 when the cast fails, so a failing cast does not crash.
  SDI::GPSAntHeightC antenna;
  antenna.SetHeight(1.5F, true);
  Check(antenna.GetVerticalHeight() == 1.5F, "the library writes and reads an antenna height");
  SDI::GPSMeasDataC measurement;
  measurement.SetAntennaHeight(antenna);
  SDI::GPSAntHeightC copy;
  Check(measurement.GetAntennaHeight(copy) && copy.IsEqual(antenna),
        "an antenna height passes through a measurement");

  // A compact implementation has a public object of the same class, which does not read it.
  ODM::GPSAntHeightC compact(1.5F, true, 0.0F);
  auto* const foreign = static_cast<SDI::GPSAntHeightC*>(compact.GetBase());
  Check(foreign->GetImpl() == nullptr && foreign->GetVerticalHeight() == 0.0F,
        "an implementation of another class is refused on both sides");
}

void DerivedClassesWork() {
  bool isGone = false;
  {
    MarkedPointC point(new MarkedPointImplC(isGone));
    point.SetX(4.0);
    Check(point.GetX() == 4.0, "the library reads an implementation of a derived class");
    Check(dynamic_cast<MarkedPointImplC*>(point.GetImpl()) != nullptr,
          "an implementation of a derived class is recognised");
    API::BaseC* const base = point.GetImpl()->GetBase();
    Check(base == &point && typeid(*base) == typeid(MarkedPointC), "the two are linked");
    Check(!isGone, "the implementation lives as long as its point");
  }
  Check(isGone, "destroying the point destroys its implementation");
}

void OwnershipCrossesTheBoundary() {
  auto* const impl = new SDI::GPSDOPsImplC(10, 20, 30);
  API::BaseC* const made = impl->GetBase();
  Check(made == impl->GetBase(), "the public object is created once");
  Check(static_cast<SDI::GPSDOPsC*>(made)->GetHDOP() == 1.0,
        "the public object reads its implementation");
  delete impl;
  delete new API::BaseC;
  delete new API::ImplObjectC;
}

void TextsWork() {
  API::FixedStringC<10> text(u"Gr\u00FC\u00DFe");
  text += u"!";
  Check(!text.IsEmpty() && text.IsValid() && text.GetLength() == 6 && text.GetData()[5] == u'!',
        "inline members work");
  char utf8[32];
  Check(text.ToUtf8(utf8, sizeof(utf8)) == 8 && std::strcmp(utf8, "Gr\u00FC\u00DFe!") == 0,
        "a text is written as UTF-8");
  Check(API::FixedStringC<255>("45").ToInt() == 45, "a text is read as a number");
  API::VersionC version;
  version.Set(3, 5, 42, 0, 0);
  Check(version.Format(1) == "3.05.042", "a version is formatted");
  Check(API::CompareWithTolerance(1.0, 2.0, 1e-9) == -1, "numbers are compared");
}

void RecordFilesWork() {
  const char name[] = "consumer.rec";
  if (std::FILE* const file = std::fopen(name, "wb")) {
    std::fputs("not a record, anywhere", file);
    std::fclose(file);
  }
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  std::strcpy(info.path, "consumer");
  std::strcpy(info.extension, "rec");
  Check(SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info) == SDI::GPSRecordFileC::kBadFrame,
        "a bad frame is refused");
  std::strcpy(info.extension, "no");
  Check(SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info) == SDI::GPSRecordFileC::kNoFile,
        "a missing file is reported");
  {
    SDI::GPSRecordIndexC index(name);
    SDI::GPSRecordEntry entry;
    Check(index.IsOpen() && index.Next(entry) && entry.isGap && entry.size == 22,
          "the index finds a gap");
    Check(!index.Next(entry) && !index.HasFailed(), "the index ends after the gap");
  }
  std::remove(name);
}

}  // namespace

int main() {
  TypesMadeInTheLibraryAreThoseOfTheCaller();
  TypesAreTheSameOnBothSides();
  DerivedClassesWork();
  OwnershipCrossesTheBoundary();
  TextsWork();
  RecordFilesWork();
  if (failures == 0) std::puts("all is well");
  return failures == 0 ? 0 : 1;
}
