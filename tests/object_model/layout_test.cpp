#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/support/expect_layout.h"
#include "tests/support/pairs.h"
#include "tests/support/test_each.h"

// Sizes and alignments of the exported classes, in bytes, and the order of the implementations'
// fields, which separately compiled callers rely on. The sizes hold for 64-bit pointers.

namespace {

using Layouts::Changed;
using Layouts::ExpectLayout;
using Layouts::Field;
using Layouts::kHasListedSizes;
using Layouts::OffsetIn;
using Layouts::Range;

// The alignment of a field within a class: on 32-bit x86, that of a double is 4 there, but 8 for a
// separate object.
template <class T>
struct AfterAByte {
  char byte;
  T field;
};

template <class T>
Field Of() {
  return {sizeof(T), offsetof(AfterAByte<T>, field)};
}

const Field kDouble = Of<double>(), kFloat = Of<float>();
const Field kInt = Of<std::uint32_t>(), kShort = Of<std::uint16_t>(), kByte = Of<std::uint8_t>();
const Field kString = Of<std::string>(), kFixedString16 = Of<API::FixedStringC<16>>();
const Field kText30 = Of<char16_t[30]>(), kText31 = Of<char16_t[31]>(),
            kText80 = Of<char16_t[80]>();
const Field kTime = Of<Vorlin::TimeC>(), kExtraTime = Of<std::uint32_t[3]>();
const Field kVector = Of<double[3]>(), kValues = Of<std::uint16_t[2]>(),
            kPair = Of<std::uint8_t[2]>();
const Field kListBlock = Of<SDI::GPSListBlock>();

// Parts: implementations held by value.
const Field kReferenceSystem{kInt, kInt, kInt};
const Field kPoint{kDouble, kDouble, kDouble};
const Field kMatrix{kFloat, kFloat, kFloat, kFloat, kFloat, kFloat};
const Field kQuality{kFloat, kMatrix, kByte};
const Field kUndulation{kFloat, kInt, kByte};
const Field kAntennaHeight{kFloat, kByte, kFloat};
const Field kDOPs{kShort, kShort, kShort};

template <class P>
class PublicLayout : public testing::Test {};
TEST_EACH_SUITE(PublicLayout, Pairs::AllPairs);

TEST_EACH(PublicLayout, IsALinkAndNothingElse) {
  EXPECT_EQ(sizeof(typename TypeParam::PublicT), 2 * sizeof(void*));
  EXPECT_EQ(alignof(typename TypeParam::PublicT), alignof(void*));
}

TEST(Layout, Geodetic) {
  ExpectLayout<ODM::CoordinatePointC>({40, 8}, {kDouble, kDouble, kDouble});
  ExpectLayout<ODM::QMatrixC>({40, 8}, {kFloat, kFloat, kFloat, kFloat, kFloat, kFloat});
  ExpectLayout<ODM::CoordinateQualityC>({72, 8}, {kFloat, kMatrix, kByte});
  ExpectLayout<ODM::CoordinateReferenceSystemC>({32, 8}, {kInt, kInt, kInt});
  ExpectLayout<ODM::UndulationMementoC>({32, 8}, {kFloat, kInt, kByte});
  ExpectLayout<ODM::PositionC>(
      {216, 8}, {kReferenceSystem, kPoint, kQuality, kUndulation, kInt, kInt, kInt, kInt, kInt});
  ExpectLayout<ODM::RectangleC>({128, 8}, {kReferenceSystem, kPoint, kPoint});
  ExpectLayout<ODM::DisplayAttributesC>(
      {40, 8}, {kInt, kShort, kShort, kShort, kShort, kShort, kShort, kInt});
  ExpectLayout<ODM::InstrumentInfoDataC>(
      {16 + 48 + 8 + 4 * sizeof(std::string) + 24, 8},
      {kFixedString16, kInt, kString, kString, kString, kString, kFloat, kInt, kInt, kInt, kInt});
}

TEST(Layout, TotalStation) {
  ExpectLayout<ODM::TPSSetupDataC>({88, 8}, {kDouble, kInt, kByte, kDouble, kDouble, kDouble,
                                             kDouble, kFloat, kFloat, kFloat, kInt, kInt, kInt});
  ExpectLayout<ODM::TPSMeasDataC>(
      {224, 8}, {kFixedString16, kDouble, kDouble, kDouble, kDouble, kDouble, kDouble,
                 kFloat,         kDouble, kDouble, kDouble, kDouble, kDouble, kFloat,
                 kFloat,         kFloat,  kFloat,  kFloat,  kInt,    kInt,    kInt,
                 kInt,           kInt,    kInt,    kInt,    kInt,    kInt,    kInt});
  ExpectLayout<ODM::TPSCorrectionDataC>(
      {104, 8}, {kDouble, kDouble, kDouble, kDouble, kDouble, kDouble, kDouble, kDouble, kFloat,
                 kFloat, kFloat, kFloat, kInt});
  ExpectLayout<ODM::TPSCalibrationDataC>(
      {80, 8}, {kDouble, kDouble, kDouble, kDouble, kDouble, kDouble, kDouble, kDouble});
}

TEST(Layout, Gnss) {
  ExpectLayout<SDI::GPSAntHeightImplC>({32, 8}, {kFloat, kByte, kFloat});
  ExpectLayout<SDI::GPSDOPsImplC>({24, 8}, {kShort, kShort, kShort});
  ExpectLayout<SDI::GPSRefStationDataImplC>(
      {200, 8},
      {kShort, kByte, kReferenceSystem, kPoint, kAntennaHeight, kText31, kByte, kByte, kByte});
  ExpectLayout<SDI::GPSMeasDataImplC>(
      {792, 8}, {kTime, kTime,  kExtraTime, kShort,  kShort,    kAntennaHeight, kByte,   kValues,
                 kDOPs, kShort, kPair,      kPair,   kPair,     kPair,          kVector, kByte,
                 kInt,  kInt,   kText80,    kText80, kInt,      kText80,        kByte,   kText30,
                 kByte, kInt,   kShort,     kShort,  kListBlock});
  ExpectLayout<ODM::GPSMeasDataC>(
      {144, 8}, {kTime, kTime, kShort, kShort, kAntennaHeight, kByte, kValues, kDOPs, kShort, kPair,
                 kPair, kPair, kPair, kVector});
}

// The parts of the compact measurement.
TEST(Layout, CompactParts) {
  EXPECT_EQ(sizeof(ODM::GPSAntHeightC), sizeof(SDI::GPSAntHeightImplC));
  EXPECT_EQ(sizeof(ODM::GPSDOPsC), sizeof(SDI::GPSDOPsImplC));
}

TEST(Layout, Imaging) {
  ExpectLayout<SDI::ImgCameraInfoImplC>(
      {80, 8}, {kInt, kInt, kInt, kDouble, kDouble, kShort, kShort, kDouble, kDouble, kInt, kInt});
  ExpectLayout<SDI::ImgChipWindowInfoImplC>({48, 8}, {kDouble, kDouble, kDouble, kDouble});
  ExpectLayout<SDI::ImgExteriorOrientationImplC>(
      {64, 8}, {kDouble, kDouble, kDouble, kDouble, kDouble, kDouble});
  ExpectLayout<SDI::ImgInteriorOrientationImplC>(
      {72, 8}, {kInt, kDouble, kDouble, kDouble, kDouble, kDouble, kDouble});
}

TEST(Layout, ScanDefinitionPoints) {
  ExpectLayout<SDI::ScanDefPointImplC>({40, 8}, {kDouble, kDouble, kDouble});
}

template <class Impl>
void ExpectAreaFieldsAt(std::uint32_t type) {
  SCOPED_TRACE(type);
  EXPECT_EQ(sizeof(Impl), 184U);
  EXPECT_EQ(alignof(Impl), 8U);
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
  // The points, which are copied into the sphere area, lie after it.
  if (type == SDI::kDomeArea) return;
  const Range points =
      Changed(impl, [](Impl& a) { a.AddPoint(SDI::ScanDefPointC(1.0, 1.0, 1.0)); });
  EXPECT_GE(points.begin, 88U + 40);
  EXPECT_LT(points.begin, 88U + 64);
  EXPECT_GE(points.end, 160U);
}

TEST(Layout, ScanAreas) {
  if (!kHasListedSizes) GTEST_SKIP() << "the offsets hold for 64-bit pointers";
  ExpectAreaFieldsAt<SDI::ScanRectangularAreaImplC>(SDI::kRectangularArea);
  ExpectAreaFieldsAt<SDI::ScanPolygonAreaImplC>(SDI::kPolygonArea);
  ExpectAreaFieldsAt<SDI::ScanDomeAreaImplC>(SDI::kDomeArea);
}

TEST(Layout, Scans) {
  EXPECT_EQ(sizeof(SDI::ScanImplC), kHasListedSizes ? 952U : sizeof(SDI::ScanImplC));
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

TEST(Layout, PlainValues) {
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

TEST(Layout, FixedTexts) {
  if (!kHasListedSizes) GTEST_SKIP() << "the sizes hold for 64-bit pointers";
  EXPECT_EQ(sizeof(API::FixedStringC<10>), 32U);
  EXPECT_EQ(sizeof(API::FixedStringC<16>), 48U);
  EXPECT_EQ(sizeof(API::FixedStringC<24>), 64U);
  EXPECT_EQ(sizeof(API::FixedStringC<30>), 72U);
  EXPECT_EQ(sizeof(API::FixedStringC<32>), 80U);
  EXPECT_EQ(sizeof(API::FixedStringC<60>), 136U);
  EXPECT_EQ(sizeof(API::FixedStringC<64>), 144U);
  EXPECT_EQ(sizeof(API::FixedStringC<240>), 496U);
  EXPECT_EQ(sizeof(API::FixedStringC<254>), 520U);
  EXPECT_EQ(sizeof(API::FixedStringC<255>), 520U);
}

}  // namespace
