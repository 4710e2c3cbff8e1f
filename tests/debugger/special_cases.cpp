#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <surveydata/surveydata.h>

// Creates objects in every state for which the debugger's output differs.

// The debugger stops here and shows the variables of the caller.
[[gnu::noinline]] void Stop() { asm volatile(""); }

namespace {

void ShowTexts() {
  const API::FixedStringC<10> empty;
  const API::FixedStringC<10> full(u"0123456789");
  const API::FixedStringC<16> umlauts(u"S\u00FCd-\u00D81");
  const API::FixedStringC<16> pair(u"a\U0001F600b");
  const API::FixedStringC<16> halfPair(u"a\xD83Dz");
  const API::FixedStringC<16>& reference = umlauts;
  API::FixedStringC<16> tooLong(u"text");
  const std::uint64_t length = 300;
  std::memcpy(reinterpret_cast<std::byte*>(&tooLong) + sizeof(tooLong) - sizeof(length), &length,
              sizeof(length));
  API::FixedStringC<16> endless(u"0123456789abcdef");
  const char16_t unit = u'g';
  std::memcpy(reinterpret_cast<std::byte*>(&endless) + 16 * sizeof(unit), &unit, sizeof(unit));
  Stop();
}

void ShowVersions() {
  const API::VersionC none;
  API::VersionC some;
  some.Set(3, 5, 42, 3, 1);
  API::VersionC last;
  last.Set(63, 127, 4095, 7, 15);
  Stop();
}

void ShowLinks() {
  SDI::CoordinatePointC detached(1.0, 2.0, 3.0);
  ODM::CoordinatePointC* const alone = detached.GetImpl();
  alone->DetachBase();

  SDI::CoordinatePointC foreign;
  API::ImplObjectC* const own = foreign.GetImpl();
  own->DetachBase();
  foreign.SetImpl(new ODM::QMatrixC(1.0F, 2.0F, 3.0F, 4.0F, 5.0F, 6.0F));

  SDI::CoordinatePointC replaced;
  ODM::CoordinatePointC* const stale = replaced.GetImpl();
  replaced.SetImpl(new ODM::CoordinatePointC(4.0, 5.0, 6.0));

  API::BaseC alias;
  alias = static_cast<const API::BaseC&>(replaced);  // copies only the pointer

  const API::BaseC base;
  const API::BaseC plain(new API::ImplObjectC);
  SDI::CoordinatePointC oneSided;
  API::ImplObjectC* const taken = oneSided.GetImpl();
  taken->DetachBase();
  auto* const other = new API::BaseC;
  ODM::CoordinatePointC owned(static_cast<API::BaseC*>(other));
  Stop();
  alias.SetImpl(nullptr);
  stale->DetachBase();
  delete stale;
  delete alone;
  delete own;
  delete taken;
}

class NamedPointC : public SDI::CoordinatePointC {
 public:
  using CoordinatePointC::CoordinatePointC;

  int number = 7;
};

class LoggedPointC : public ODM::CoordinatePointC {
 public:
  using CoordinatePointC::CoordinatePointC;

  int calls = 8;
};

struct Tag {
  virtual ~Tag() = default;
  int tag = 9;
};

class TaggedPointC : public ODM::CoordinatePointC, public Tag {};

void ShowClassesOfCallers() {
  const NamedPointC named(1.0, 2.0, 3.0);
  const SDI::CoordinatePointC& seenAsItsBase = named;
  const SDI::CoordinatePointC logged(new LoggedPointC(4.0, 5.0, 6.0));
  const SDI::CoordinatePointC tagged(new TaggedPointC);
  const ODM::CoordinatePointC& part = *tagged.GetImpl();
  Stop();
}

void ShowWaysToAnObject() {
  SDI::PositionC position;
  position.GetCoordinatePoint() = SDI::CoordinatePointC(1.0, 2.0, 3.0);
  const SDI::CoordinatePointC& lent = position.GetCoordinatePoint();
  const SDI::PositionC* const pointer = &position;
  const API::BaseC& base = position;
  const API::ImplObjectC& impl = *position.GetImpl();
  const std::array<SDI::CoordinatePointC, 2> two;
  Stop();
}

void ShowRecords() {
  SDI::GPSMeasDataImplC measurement;
  measurement.SetTimeA({2100, 345600});
  measurement.SetExtraTime(2101, 7);
  measurement.SetTotalPair(12, 9);
  measurement.SetVector({1.5, 2.5, 3.5});
  measurement.SetTextA(u"S\u00FCd");
  SDI::GPSListBlock list;
  list.head = 5;
  list.count = 3;
  for (std::uint16_t i = 0; i < 5; ++i) list.entries[i] = static_cast<std::uint16_t>(100 + i);
  measurement.SetListBlock(list);

  SDI::ScanC scan;
  scan.SetText1(u"facade");
  SDI::ScanPolygonAreaC area;
  area.AddPoint(SDI::ScanDefPointC(1.0, 1.5, 10.0));
  area.AddPoint(SDI::ScanDefPointC(2.0, 1.5, 20.0));
  area.AddPoint(SDI::ScanDefPointC(1.5, 1.0, 30.0));
  scan.SetArea(&area);
  const SDI::ScanDefinitionC& definition = *scan.GetArea();
  const SDI::ScanDefinitionImplC* const scanArea = definition.GetImpl();
  const SDI::ScanAreaC* const sameArea = &area;
  const SDI::ScanAreaImplC* const areaImpl = area.GetImpl();
  Stop();
}

void ShowMemoryThatHoldsNoObject() {
  alignas(SDI::CoordinatePointC) std::byte zeros[sizeof(SDI::CoordinatePointC)] = {};
  const auto& object = reinterpret_cast<const SDI::CoordinatePointC&>(zeros);
  alignas(ODM::CoordinatePointC) std::byte bytes[sizeof(ODM::CoordinatePointC)];
  std::memset(bytes, 0x5A, sizeof(bytes));
  const auto& impl = reinterpret_cast<const ODM::CoordinatePointC&>(bytes);
  const SDI::CoordinatePointC* const null = nullptr;
  Stop();
}

}  // namespace

int main() {
  ShowTexts();
  ShowVersions();
  ShowLinks();
  ShowClassesOfCallers();
  ShowWaysToAnObject();
  ShowRecords();
  ShowMemoryThatHoldsNoObject();
}
