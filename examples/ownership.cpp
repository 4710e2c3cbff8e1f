// Ownership. The objects of this program print a line when they are destroyed.

#include <cstdio>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/geodetic/position.h>

namespace {

class DataC : public ODM::CoordinatePointC {
 public:
  explicit DataC(const char* name) : name_(name) {}
  DataC(const DataC&) = delete;
  DataC& operator=(const DataC&) = delete;
  ~DataC() override { std::printf("  data %s gone\n", name_); }

 private:
  const char* name_;
};

class PointC : public SDI::CoordinatePointC {
 public:
  PointC(const char* name, ODM::CoordinatePointC* data) : CoordinatePointC(data), name_(name) {}
  PointC(const PointC&) = delete;
  PointC& operator=(const PointC&) = delete;
  ~PointC() override { std::printf("  point %s gone\n", name_); }

 private:
  const char* name_;
};

// NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the analysis does not follow the link
void OneDeleteIsEnough() {
  std::puts("one delete is enough");
  auto* point = new PointC("1", new DataC("1"));
  delete point;  // deletes the implementation too

  auto* other = new PointC("2", new DataC("2"));
  delete other->GetImpl();  // deletes `other` too
}
// NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)

void AnImplementationIsTakenOver() {
  std::puts("adopting");
  auto* const data = new DataC("3");
  new PointC("A", data);
  const PointC adopting("B", data);  // A is deleted
  std::puts("  B has the data");
}

void PartsLendTheirPublicObject() {
  std::puts("parts");
  SDI::PositionC position;
  SDI::CoordinatePointC& lent = position.GetCoordinatePoint();  // created here, owned by position
  const SDI::CoordinatePointC copy = lent;                      // an independent copy
  lent.SetX(7.0);
  std::printf("  position %g, copy %g\n", position.GetCoordinatePoint().GetX(), copy.GetX());
}

void PartWithDataBeforeReplacingThem() {
  std::puts("replacing");
  PointC point("C", new DataC("4"));
  auto* const next = new DataC("5");

  ODM::CoordinatePointC* const old = point.GetImpl();
  old->DetachBase();
  point.SetImpl(next);
  delete old;
  std::puts("  C has other data");
}

}  // namespace

int main() {
  OneDeleteIsEnough();
  AnImplementationIsTakenOver();
  PartsLendTheirPublicObject();
  PartWithDataBeforeReplacingThem();
}
