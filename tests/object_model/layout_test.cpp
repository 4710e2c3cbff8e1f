#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/support/pairs.h"

// Sizes, offsets and order of virtual functions of the exported classes, which callers built apart
// from the library rely on. Where a field lies is found by writing it through its setter and
// looking which bytes of the object change.

namespace {

struct Range {
  std::size_t begin;
  std::size_t end;
};

// The fields of an object that has a virtual table and one pointer in front of them, at the next
// place of their alignment each. A letter stands for a field:
//
//   d, f     double, float                 e    extra time: byte, two 32-bit numbers
//   i, h, b  32, 16, 8 bits                v    three doubles
//   p        a pair of 8 bits              w    two numbers of 16 bits
//   t        a time of 8 bytes             A, D texts of 80 and 30 units
//   F        a fixed text of 16 units      N    a text of 31 units
//   S        a standard string             L    a list of 31 entries
//   [..]     an implementation held by value
class LayoutModel {
 public:
  explicit LayoutModel(const std::string& fields) {
    const char* at = fields.c_str();
    size_ = Add(at, 0);
  }

  std::size_t Size() const { return size_; }
  const std::vector<Range>& Fields() const { return fields_; }

 private:
  struct Kind {
    std::size_t size;
    std::size_t alignment;
  };

  static Kind KindOf(char letter) {
    switch (letter) {
      case 'd':
        return {8, 8};
      case 'f':
      case 'i':
        return {4, 4};
      case 'h':
        return {2, 2};
      case 'w':
        return {4, 2};
      case 'b':
        return {1, 1};
      case 'p':
        return {2, 1};
      case 't':
        return {8, 4};
      case 'e':
        return {12, 4};
      case 'v':
        return {24, 8};
      case 'A':
        return {160, 2};
      case 'D':
        return {60, 2};
      case 'N':
        return {62, 2};
      case 'L':
        return {66, 2};
      case 'F':
        return {48, 8};
      case 'S':
        return {sizeof(std::string), alignof(std::string)};
      default:
        throw std::invalid_argument(std::string(1, letter));
    }
  }

  static std::size_t RoundedUp(std::size_t at, std::size_t alignment) {
    return (at + alignment - 1) / alignment * alignment;
  }

  // Adds an object at `begin`; returns its size.
  std::size_t Add(const char*& at, std::size_t begin) {
    std::size_t end = begin + 2 * sizeof(void*);
    for (; *at != '\0' && *at != ']'; ++at) {
      if (*at == '[') {
        end = RoundedUp(end, alignof(void*));
        ++at;
        end += Add(at, end);
      } else {
        const Kind kind = KindOf(*at);
        const std::size_t field = RoundedUp(end, kind.alignment);
        end = field + kind.size;
        fields_.push_back({field, end});
      }
    }
    return RoundedUp(end, alignof(void*)) - begin;
  }

  std::size_t size_;
  std::vector<Range> fields_;
};

template <class Object>
std::vector<std::byte> BytesOf(const Object& object) {
  std::vector<std::byte> bytes(sizeof(Object));
  std::memcpy(bytes.data(), static_cast<const void*>(&object), sizeof(Object));
  return bytes;
}

// One way to change each field, in the order in which they lie.
template <class Impl>
using Changes = std::vector<std::function<void(Impl&)>>;

template <class Impl>
Changes<Impl> ChangesOf() {
  Changes<Impl> changes;
  for (const auto& field : Records::FieldsOf<Impl>()) {
    changes.push_back([field](Impl& impl) { field.fill(impl, 17); });
  }
  return changes;
}

template <std::same_as<SDI::GPSDOPsImplC> Impl>
Changes<Impl> ChangesOf() {
  return {[](Impl& impl) { impl = Impl(1, impl.GetVDOPTenths(), impl.GetTDOPTenths()); },
          [](Impl& impl) { impl = Impl(impl.GetHDOPTenths(), 2, impl.GetTDOPTenths()); },
          [](Impl& impl) { impl = Impl(impl.GetHDOPTenths(), impl.GetVDOPTenths(), 3); }};
}

template <std::same_as<SDI::ScanDefPointImplC> Impl>
Changes<Impl> ChangesOf() {
  return {[](Impl& p) { p.SetHz(1.5); }, [](Impl& p) { p.SetV(1.5); },
          [](Impl& p) { p.SetDistance(1.5); }};
}

// What both implementations of a measurement begin with, behind the times.
template <class Impl>
Changes<Impl> SharedChanges() {
  return {
      [](Impl& m) { m.GetAntennaHeight().SetHeight(1.5F, true); },
      [](Impl& m) { m.GetAntennaHeight().SetHeight(0.0F, false); },
      [](Impl& m) { m.GetAntennaHeight().SetHorizontalOffset(1.5F); },
      [](Impl& m) { m.SetValues(nullptr, 0); },
      [](Impl& m) {
        const std::uint16_t values[2] = {0x101, 0x202};
        m.SetValues(values, 2);
      },
      [](Impl& m) {
        m.GetDOPs() = {1, 0xFFFF, 0xFFFF};
      },
      [](Impl& m) {
        m.GetDOPs() = {0xFFFF, 1, 0xFFFF};
      },
      [](Impl& m) {
        m.GetDOPs() = {0xFFFF, 0xFFFF, 1};
      },
      [](Impl& m) { m.SetWord16(0x101); },
      [](Impl& m) { m.SetTotalPair(1, 2); },
      [](Impl& m) { m.SetSystem1Pair(1, 2); },
      [](Impl& m) { m.SetSystem2Pair(1, 2); },
      [](Impl& m) { m.SetSystem3Pair(1, 2); },
      [](Impl& m) {
        m.SetVector({1.5, 2.5, 3.5});
      },
  };
}

// Optional fields are present already, so that their setters change no mask. The DOPs are not: to
// set them as they are changes the mask alone.
template <class Impl>
void Prepare(Impl& /*impl*/) {}

template <class Impl>
void PrepareShared(Impl& m) {
  m.SetAntennaHeight(m.GetAntennaHeight());
  const std::uint16_t zeros[2] = {};
  m.SetValues(zeros, 2);
  m.SetWord16(0);
  m.SetTotalPair(0, 0);
  m.SetSystem1Pair(0, 0);
  m.SetSystem2Pair(0, 1);
  m.SetSystem3Pair(0, 1);
  m.SetVector({0.0, 0.0, 0.0});
}

template <class Impl>
Changes<Impl> TimeChanges() {
  return {[](Impl& m) {
            m.SetTimeA({0x101, 0x1010101});
          },
          [](Impl& m) {
            m.SetTimeB({0x101, 0x1010101});
          }};
}

template <class Impl>
Changes<Impl> Joined(Changes<Impl> changes, const Changes<Impl>& more) {
  changes.insert(changes.end(), more.begin(), more.end());
  return changes;
}

template <std::same_as<ODM::GPSMeasDataC> Impl>
Changes<Impl> ChangesOf() {
  return Joined(Joined(TimeChanges<Impl>(), {[](Impl& m) { m.SetDOPs(m.GetDOPs()); },
                                             [](Impl& m) { m.SetStatusBit0(); }}),
                SharedChanges<Impl>());
}
void Prepare(ODM::GPSMeasDataC& m) { PrepareShared(m); }

template <std::same_as<SDI::GPSMeasDataImplC> Impl>
Changes<Impl> ChangesOf() {
  return Joined(
      Joined(Joined(TimeChanges<Impl>(),
                    {[](Impl& m) { m.SetExtraTime(0x101, 0x1010101); },
                     [](Impl& m) { m.SetDOPs(m.GetDOPs()); }, [](Impl& m) { m.SetStatusBit0(); }}),
             SharedChanges<Impl>()),
      {
          [](Impl& m) { m.SetFlagA(1); },
          [](Impl& m) { m.SetValueB(0x1010101); },
          [](Impl& m) { m.SetValueC(0x1010101); },
          [](Impl& m) { m.SetTextA(u"text"); },
          [](Impl& m) { m.SetTextB(u"text"); },
          [](Impl& m) { m.SetValueD(0x1010101); },
          [](Impl& m) { m.SetTextC(u"text"); },
          [](Impl& m) { m.SetFlagE(1); },
          [](Impl& m) { m.SetTextD(u"text"); },
          [](Impl& m) { m.SetValueF(1); },
          [](Impl& m) { m.SetValueG(0x1010101); },
          [](Impl& m) { m.SetValueH(0x101); },
          [](Impl& m) { m.SetValueI(0x101); },
          [](Impl& m) {
            SDI::GPSListBlock list;
            list.head = 0x101;
            list.count = 31;
            for (auto& entry : list.entries) entry = 0x101;
            m.SetListBlock(list);
          },
      });
}
void Prepare(SDI::GPSMeasDataImplC& m) {
  PrepareShared(m);
  m.SetValueC(2);
  m.SetValueH(0);
  m.SetValueI(0);
  m.SetListBlock({});
}

// Every change touches its own field and nothing else.
template <class Impl>
void ExpectFieldsAt(const char* name, const std::string& fields) {
  SCOPED_TRACE(name);
  const LayoutModel model(fields);
  EXPECT_EQ(sizeof(Impl), model.Size());
  EXPECT_EQ(alignof(Impl), alignof(void*));
  const auto changes = ChangesOf<Impl>();
  ASSERT_EQ(changes.size(), model.Fields().size());
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "field " << i);
    Impl impl;
    Prepare(impl);
    const auto before = BytesOf(impl);
    changes[i](impl);
    const auto after = BytesOf(impl);
    const auto first = std::mismatch(before.begin(), before.end(), after.begin()).first;
    const auto last = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first;
    ASSERT_NE(first, before.end()) << "nothing changed";
    EXPECT_GE(static_cast<std::size_t>(first - before.begin()), model.Fields()[i].begin);
    EXPECT_LE(static_cast<std::size_t>(before.rend() - last), model.Fields()[i].end);
  }
}

TEST(Layout, ImplementationsHoldTheirFieldsInOrder) {
  ExpectFieldsAt<ODM::CoordinatePointC>("CoordinatePoint", "ddd");
  ExpectFieldsAt<ODM::QMatrixC>("QMatrix", "ffffff");
  ExpectFieldsAt<ODM::CoordinateQualityC>("CoordinateQuality", "f[ffffff]b");
  ExpectFieldsAt<ODM::CoordinateReferenceSystemC>("CoordinateReferenceSystem", "iii");
  ExpectFieldsAt<ODM::UndulationMementoC>("UndulationMemento", "fib");
  ExpectFieldsAt<ODM::PositionC>("Position", "[iii][ddd][f[ffffff]b][fib]iiiii");
  ExpectFieldsAt<ODM::RectangleC>("Rectangle", "[iii][ddd][ddd]");
  ExpectFieldsAt<ODM::DisplayAttributesC>("DisplayAttributes", "ihhhhhhi");
  ExpectFieldsAt<ODM::InstrumentInfoDataC>("InstrumentInfoData", "FiSSSSfiiii");
  ExpectFieldsAt<SDI::GPSAntHeightImplC>("GPSAntHeight", "fbf");
  ExpectFieldsAt<SDI::GPSDOPsImplC>("GPSDOPs", "hhh");
  ExpectFieldsAt<SDI::GPSRefStationDataImplC>("GPSRefStationData", "hb[iii][ddd][fbf]Nbbb");
  ExpectFieldsAt<ODM::TPSSetupDataC>("TPSSetupData", "dibddddfffiii");
  ExpectFieldsAt<ODM::TPSMeasDataC>("TPSMeasData", "Fddddddfdddddfffffiiiiiiiiii");
  ExpectFieldsAt<ODM::TPSCorrectionDataC>("TPSCorrectionData", "ddddddddffffi");
  ExpectFieldsAt<ODM::TPSCalibrationDataC>("TPSCalibrationData", "dddddddd");
  ExpectFieldsAt<SDI::ImgCameraInfoImplC>("ImgCameraInfo", "iiiddhhddii");
  ExpectFieldsAt<SDI::ImgChipWindowInfoImplC>("ImgChipWindowInfo", "dddd");
  ExpectFieldsAt<SDI::ImgExteriorOrientationImplC>("ImgExteriorOrientation", "dddddd");
  ExpectFieldsAt<SDI::ImgInteriorOrientationImplC>("ImgInteriorOrientation", "idddddd");
}

TEST(Layout, MeasurementsHoldTheirFieldsInOrder) {
  ExpectFieldsAt<SDI::GPSMeasDataImplC>("full", "ttehh[fbf]bw[hhh]hppppvbiiAAiAbDbihhL");
  ExpectFieldsAt<ODM::GPSMeasDataC>("compact", "tthh[fbf]bw[hhh]hppppv");
}

TEST(Layout, ScanDefinitionPointsHoldTheirFieldsInOrder) {
  ExpectFieldsAt<SDI::ScanDefPointImplC>("ScanDefPoint", "ddd");
}

// From the first byte that a change touches to behind the last one.
template <class Object, class Change>
Range Changed(Object& object, Change change) {
  const auto before = BytesOf(object);
  change(object);
  const auto after = BytesOf(object);
  const auto first = std::mismatch(before.begin(), before.end(), after.begin()).first;
  const auto last = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first;
  return {static_cast<std::size_t>(first - before.begin()),
          static_cast<std::size_t>(before.rend() - last)};
}

template <class Object>
std::size_t OffsetIn(const Object& object, const void* field) {
  return static_cast<std::size_t>(static_cast<const std::byte*>(field) -
                                  reinterpret_cast<const std::byte*>(&object));
}

template <class Impl>
void ExpectAreaFieldsAt(std::uint32_t type) {
  SCOPED_TRACE(type);
  static_assert(sizeof(Impl) == 184);
  Impl impl;
  std::uint32_t stored = 0;
  std::memcpy(&stored, reinterpret_cast<const std::byte*>(&impl) + 16, sizeof(stored));
  EXPECT_EQ(stored, type);
  using Change = void (*)(Impl&);
  const struct {
    std::size_t begin;
    std::size_t size;
    Change change;
  } fields[] = {
      {24, 8, [](Impl& a) { a.SetHzStep(1.5); }},    {32, 8, [](Impl& a) { a.SetVStep(1.5); }},
      {40, 4, [](Impl& a) { a.SetSettingA(7); }},    {48, 8, [](Impl& a) { a.SetLimitLow(1.5); }},
      {56, 8, [](Impl& a) { a.SetLimitHigh(1.5); }}, {64, 4, [](Impl& a) { a.SetSettingB(7); }},
      {68, 4, [](Impl& a) { a.SetSettingC(7); }},    {72, 8, [](Impl& a) { a.SetSettingD(1.5); }},
      {80, 2, [](Impl& a) { a.SetSettingE(7); }},
  };
  for (const auto& field : fields) {
    SCOPED_TRACE(field.begin);
    const Range range = Changed(impl, field.change);
    EXPECT_GE(range.begin, field.begin);
    EXPECT_LE(range.end, field.begin + field.size);
  }
  EXPECT_EQ(OffsetIn(impl, &impl.GetSphereArea()), 88U);
  // The points are mirrored into the sphere area, and stand behind it.
  if (type == SDI::kDomeArea) return;
  const Range points =
      Changed(impl, [](Impl& a) { a.AddPoint(SDI::ScanDefPointC(1.0, 1.0, 1.0)); });
  EXPECT_GE(points.begin, 88U + 40);
  EXPECT_LT(points.begin, 88U + 64);
  EXPECT_GE(points.end, 160U);
}

TEST(Layout, ScanAreasHoldTheirFieldsInOrder) {
  ExpectAreaFieldsAt<SDI::ScanRectangularAreaImplC>(SDI::kRectangularArea);
  ExpectAreaFieldsAt<SDI::ScanPolygonAreaImplC>(SDI::kPolygonArea);
  ExpectAreaFieldsAt<SDI::ScanDomeAreaImplC>(SDI::kDomeArea);
}

TEST(Layout, ScansHoldTheirFieldsInOrder) {
  SDI::ScanImplC scan;
  const std::size_t texts[] = {OffsetIn(scan, scan.GetText1()), OffsetIn(scan, scan.GetText2()),
                               OffsetIn(scan, scan.GetText3()), OffsetIn(scan, scan.GetText4())};
  EXPECT_EQ(texts[1] - texts[0], sizeof(API::FixedStringC<32>));
  EXPECT_EQ(texts[2] - texts[1], sizeof(API::FixedStringC<64>));
  EXPECT_EQ(texts[3] - texts[2], sizeof(API::FixedStringC<255>));
  using Change = void (*)(SDI::ScanImplC&);
  const Change changes[] = {[](SDI::ScanImplC& s) { s.SetValue1(1.5); },
                            [](SDI::ScanImplC& s) { s.SetValue2(1.5); },
                            [](SDI::ScanImplC& s) { s.SetValue3(1.5); },
                            [](SDI::ScanImplC& s) { s.SetValue4(1.5); },
                            [](SDI::ScanImplC& s) { s.SetWord1(7); },
                            [](SDI::ScanImplC& s) { s.SetWord2(7); },
                            [](SDI::ScanImplC& s) { s.CreateArea(SDI::kDomeArea); }};
  const std::size_t area = sizeof(SDI::ScanImplC) - sizeof(void*);
  const std::size_t ends[] = {area - 32, area - 24, area - 16,           area - 8,
                              area - 4,  area,      area + sizeof(void*)};
  const std::size_t begins[] = {area - 40, area - 32, area - 24, area - 16,
                                area - 8,  area - 4,  area};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    SCOPED_TRACE(i);
    const Range range = Changed(scan, changes[i]);
    EXPECT_GE(range.begin, begins[i]);
    EXPECT_LE(range.end, ends[i]);
  }
}

TEST(Layout, TheTwoImplementationsOfAPartAreAlike) {
  EXPECT_EQ(sizeof(ODM::GPSAntHeightC), sizeof(SDI::GPSAntHeightImplC));
  EXPECT_EQ(sizeof(ODM::GPSDOPsC), sizeof(SDI::GPSDOPsImplC));
}

template <class P>
class PairLayout : public testing::Test {};
TYPED_TEST_SUITE(PairLayout, Pairs::AllPairs);

#if defined(__GXX_ABI_VERSION)  // the Itanium rules: two destructors, then the virtual functions
using Slot = void (*)();

// The destructor in slot 0 may be that of the base where a class destroys nothing of its own.
constexpr std::size_t kDeletingDestructor = 1;

Slot SlotOf(const void* object, std::size_t index) {
  const Slot* table = nullptr;
  std::memcpy(&table, object, sizeof(table));
  return table[index];
}

TYPED_TEST(PairLayout, APublicObjectIsALinkWithTwoVirtualOperations) {
  using Public = typename TypeParam::PublicT;
  static_assert(sizeof(Public) == sizeof(API::BaseC));
  static_assert(std::has_virtual_destructor_v<Public>);
  Public object;
  const API::BaseC base;
  const API::ImplObjectC* linked = nullptr;
  std::memcpy(&linked, reinterpret_cast<const std::byte*>(&object) + sizeof(void*), sizeof(void*));
  EXPECT_EQ(linked, object.GetImpl());
  EXPECT_NE(SlotOf(&object, kDeletingDestructor), SlotOf(&base, kDeletingDestructor));
  EXPECT_EQ(SlotOf(&object, 2), SlotOf(&base, 2));  // `SetImpl`, unchanged
}

template <class Impl>
void ExpectSlotsOfAnImplementation() {
  Impl impl;
  const API::ImplObjectC base;
  EXPECT_NE(SlotOf(&impl, kDeletingDestructor), SlotOf(&base, kDeletingDestructor));
  const auto getBase = reinterpret_cast<API::BaseC* (*)(API::ImplObjectC*)>(SlotOf(&impl, 2));
  API::BaseC* const made = getBase(&impl);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made, impl.API::ImplObjectC::GetBase());
  const API::BaseC* owner = nullptr;
  std::memcpy(&owner, reinterpret_cast<const std::byte*>(&impl) + sizeof(void*), sizeof(void*));
  EXPECT_EQ(owner, made);
}

TYPED_TEST(PairLayout, AnImplementationMakesItsPublicObjectInItsSecondVirtualOperation) {
  ExpectSlotsOfAnImplementation<typename TypeParam::ImplT>();
}

template <class P>
class UnreadPairLayout : public testing::Test {};
TYPED_TEST_SUITE(UnreadPairLayout, Pairs::UnreadPairs);

TYPED_TEST(UnreadPairLayout, AnImplementationMakesItsPublicObjectInItsSecondVirtualOperation) {
  ExpectSlotsOfAnImplementation<typename TypeParam::ImplT>();
}

TEST(Layout, TheFirstVirtualOperationOfTheBasesIsTheDestructor) {
  using Destroy = void (*)(void*);
  API::BaseC* const object = new API::BaseC(new API::ImplObjectC);
  const auto setImpl =
      reinterpret_cast<void (*)(API::BaseC*, API::ImplObjectC*)>(SlotOf(object, 2));
  API::ImplObjectC* const impl = object->GetImpl();
  setImpl(object, nullptr);
  EXPECT_EQ(object->GetImpl(), nullptr);
  setImpl(object, impl);
  EXPECT_EQ(object->GetImpl(), impl);
  EXPECT_EQ(reinterpret_cast<API::BaseC* (*)(API::ImplObjectC*)>(SlotOf(impl, 2))(impl), object);
  reinterpret_cast<Destroy>(SlotOf(object, 1))(object);  // and frees it, with `impl`

  alignas(API::BaseC) std::byte place[sizeof(API::BaseC)];
  auto* const other = new API::ImplObjectC;
  auto* const placed = new (place) API::BaseC(other);
  reinterpret_cast<Destroy>(SlotOf(placed, 0))(placed);  // frees `other` alone
}
#endif

TEST(Layout, PlainValuesHaveTheirSizes) {
  EXPECT_EQ(sizeof(API::VersionC), 4U);
  EXPECT_EQ(sizeof(Vorlin::TimeC), 8U);
  EXPECT_EQ(sizeof(SDI::GPSListBlock), 66U);
  EXPECT_EQ(sizeof(SDI::GPSRecordFileInfo), 4U + 49 + 7 + 4 + 240 + 4);
  EXPECT_EQ(offsetof(SDI::GPSRecordFileInfo, name), 4U);
  EXPECT_EQ(offsetof(SDI::GPSRecordFileInfo, extension), 53U);
  EXPECT_EQ(offsetof(SDI::GPSRecordFileInfo, offset), 60U);
  EXPECT_EQ(offsetof(SDI::GPSRecordFileInfo, path), 64U);
  EXPECT_EQ(offsetof(SDI::GPSRecordFileInfo, flags), 304U);
}

}  // namespace
