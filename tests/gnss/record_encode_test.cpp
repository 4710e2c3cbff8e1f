#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/record_frame.h>

#include "tests/gnss/round_trip.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"

namespace {

using SDI::GPSAntHeightImplC;
using SDI::GPSDOPsImplC;
using SDI::GPSListBlock;
using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileInfo;
using SDI::RecordFrame::NameOf;
using SDI::RecordFrame::RecordField;
using SDI::RecordFrame::Refusal;
using TestSupport::ByteVector;
using TestSupport::EncodedOf;
using TestSupport::ExpectReadsBack;
using TestSupport::ExpectRoundTrip;
using TestSupport::FrameBuilderC;
using TestSupport::WellFormedFrame;

// --- Readable frames ----------------------------------------------------------------------------

TEST(RecordEncode, EveryFrameOfTheSamples) {
  for (const std::string name : {"valley_drive", "desert_highway"}) {
    const std::string path = SURVEYDATA_TEST_DATA + name + ".rec";
    SDI::GPSRecordIndexC index(path.c_str());
    unsigned frames = 0;
    for (SDI::GPSRecordEntry entry; index.Next(entry);) {
      if (!entry.IsMeasurement()) continue;
      SCOPED_TRACE(testing::Message() << name << " at " << entry.offset);
      ++frames;
      ASSERT_NO_FATAL_FAILURE(ExpectRoundTrip({index.GetBytes().begin(), index.GetBytes().end()}));
    }
    EXPECT_EQ(frames, name == "valley_drive" ? 414U : 380U);
  }
}

TEST(RecordEncode, EveryFlagsWordOfWellFormedFrames) {
  std::mt19937_64 random(1);
  for (unsigned flags = 0; flags <= 0xFFFF && !testing::Test::HasFailure(); ++flags) {
    SCOPED_TRACE(flags);
    const auto flags2 = static_cast<unsigned>(random() & 0xFFFF);
    ASSERT_NO_FATAL_FAILURE(ExpectRoundTrip(WellFormedFrame(flags, flags2, random)));
    ASSERT_NO_FATAL_FAILURE(ExpectRoundTrip(WellFormedFrame(0x2000, flags, random)));
  }
}

// Bytes between the last block and the checksum are not needed.
TEST(RecordEncode, TheLongestFrame) {
  FrameBuilderC b;
  b.Times().U16(0x2000).U16(0x0058);
  for (const std::size_t units : {79U, 79U, 78U}) b.Units(std::u16string(units, u'x')).U16(0);
  b.Fill(493 - b.Payload().size(), 0xAA);
  ASSERT_EQ(b.Frame().size(), 500U);
  ExpectRoundTrip(b.Frame());
}

TEST(RecordEncode, TextsWithoutATerminator) {
  const ByteVector frame = FrameBuilderC()
                               .Times()
                               .U16(0x2000)
                               .U16(0x0148)
                               .Units(std::u16string(160, u'x'))
                               .Units(std::u16string(30, u'y'))
                               .Frame();
  ExpectRoundTrip(frame);
}

TEST(RecordEncode, NamesOfEveryLengthInBytes) {
  const std::u16string kinds[] = {u"a", u"\u00e9", u"\u20ac", u"\xD83D"};
  for (const auto& most : kinds) {
    for (const auto& last : kinds) {
      for (std::size_t length = 1; length <= 17; ++length) {
        std::u16string name;
        for (std::size_t i = 1; i < length; ++i) name += most;
        name += last;
        ExpectRoundTrip(FrameBuilderC().Times().U16(2).NameUnits(name).I32(0).Frame());
      }
    }
  }
}

TEST(RecordEncode, FloatsOfEveryKind) {
  for (const std::uint32_t bits : {0U, 0x8000'0000U, 1U, 0x007F'FFFFU, 0x7F7F'FFFFU, 0x7F80'0000U,
                                   0xFF80'0000U, 0x7FC0'0000U, 0xFFC1'2345U, 0x7F80'0001U}) {
    SCOPED_TRACE(bits);
    FrameBuilderC b;
    b.Times().U16(0x0204).U32(bits).U8(1).U8(0).U32(bits).U32(bits ^ 0x8000'0000).U32(bits);
    ExpectRoundTrip(b.Frame());
  }
}

// --- The shortest frame -------------------------------------------------------------------------

struct Record {
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
};

FrameBuilderC Begun(unsigned flags1) {
  FrameBuilderC b;
  b.Times(0, 0, 0).U16(flags1);
  return b;
}
FrameBuilderC BegunMore(unsigned flags2) {
  FrameBuilderC b = Begun(0x2000);
  b.U16(flags2);
  return b;
}

GPSListBlock ListOf(std::uint8_t count) {
  GPSListBlock list{.head = 0x1234, .count = count, .entries = {}};
  for (unsigned i = 0; i < 31; ++i) list.entries[i] = static_cast<std::uint16_t>(0x100 + i);
  return list;
}

constexpr std::uint16_t kValues[] = {7, 8};

TEST(RecordEncode, ANewMeasurementHasOnlyTimes) {
  const auto [bytes, refusal] = EncodedOf({}, {});
  EXPECT_EQ(bytes, Begun(0).Frame());
  EXPECT_EQ(refusal, Refusal());
}

TEST(RecordEncode, OneFieldGivesOnlyItsBlock) {
  const struct {
    const char* field;
    std::function<void(Record&)> set;
    ByteVector frame;
  } cases[] = {
      {"time A",
       [](Record& r) {
         r.measurement.SetTimeA({2200, -5});
       },
       FrameBuilderC().Times(2200, -5, 0).U16(0).Frame()},
      {"time B",
       [](Record& r) {
         r.measurement.SetTimeB({0, -6});
       },
       FrameBuilderC().Times(0, 0, -6).U16(0).Frame()},
      {"flag 0x1", [](Record& r) { r.info.flags = 1; }, Begun(0x0001).Fill(12, 0).Frame()},
      {"flag 0x2", [](Record& r) { r.info.flags = 2; },
       Begun(0x0001).Fill(6, 0).U8(1).U8(0).U32(0).Frame()},
      {"status bits",
       [](Record& r) {
         r.info.flags = 1;
         r.measurement.SetStatusBit0();
         r.measurement.SetStatusBit1();
         r.measurement.SetStatusBit3();
       },
       Begun(0x0001).Fill(7, 0).U8(6).U32(0x4000).Frame()},
      {"number", [](Record& r) { r.info.number = -2; },
       Begun(0x0002).NameUnits(u"").I32(-2).Frame()},
      {"name", [](Record& r) { std::strcpy(r.info.name, "a\xC3\xA9"); },
       Begun(0x0002).NameUnits(u"a\u00e9").I32(0).Frame()},
      {"vertical height",
       [](Record& r) { r.measurement.SetAntennaHeight(GPSAntHeightImplC(1.5F, true, 0.0F)); },
       Begun(0x0004).F32(1.5F).U8(0).Frame()},
      {"slant height",
       [](Record& r) { r.measurement.SetAntennaHeight(GPSAntHeightImplC(0.0F, false, 0.0F)); },
       Begun(0x0004).F32(0.0F).U8(1).Frame()},
      {"extra time", [](Record& r) { r.measurement.SetExtraTime(0, 0); },
       Begun(0x0008).U8(1).U16(0).I32(0).Frame()},
      {"word 16", [](Record& r) { r.measurement.SetWord16(0); },
       Begun(0x0010).U16(0).Fill(26, 0).Frame()},
      {"values", [](Record& r) { r.measurement.SetValues(kValues, 2); },
       Begun(0x0040).U8(0).U16(7).U16(8).Frame()},
      {"DOPs", [](Record& r) { r.measurement.SetDOPs(GPSDOPsImplC(1, 2, 3)); },
       Begun(0x0080).U8(0).U16(1).U16(2).U16(3).Frame()},
      {"total pair", [](Record& r) { r.measurement.SetTotalPair(0, 0); },
       Begun(0x0100).U8(0).U8(0).Frame()},
      {"vector",
       [](Record& r) {
         r.measurement.SetVector({1, -2, 3});
       },
       Begun(0x0200).U8(0).F32(1).F32(-2).F32(3).Frame()},
      {"system 1 pair", [](Record& r) { r.measurement.SetSystem1Pair(0, 0); },
       Begun(0x1000).U8(1).U8(1).U8(0).U8(0).Frame()},
      {"system 2 pair", [](Record& r) { r.measurement.SetSystem2Pair(5, 4); },
       Begun(0x1000).U8(2).U8(1).U8(5).U8(4).Frame()},
      {"system 3 pair that is stored but not present",
       [](Record& r) { r.measurement.SetSystem3Pair(5, 0); },
       Begun(0x1000).U8(4).U8(1).U8(5).U8(0).Frame()},
      {"pair of zeros", [](Record& r) { r.measurement.SetSystem2Pair(0, 0); }, Begun(0).Frame()},
      {"flag A", [](Record& r) { r.measurement.SetFlagA(1); }, BegunMore(0x0001).U8(1).Frame()},
      {"value B", [](Record& r) { r.measurement.SetValueB(255); },
       BegunMore(0x0002).U8(255).Frame()},
      {"value C", [](Record& r) { r.measurement.SetValueC(255); },
       BegunMore(0x0004).U8(255).Frame()},
      {"text A", [](Record& r) { r.measurement.SetTextA(u"\xD800"); },
       BegunMore(0x0008).U16(0xD800).U16(0).Frame()},
      {"text B", [](Record& r) { r.measurement.SetTextB(std::u16string(79, u'b').c_str()); },
       BegunMore(0x0010).Units(std::u16string(79, u'b')).U16(0).Frame()},
      {"value D", [](Record& r) { r.measurement.SetValueD(-1); },
       BegunMore(0x0020).I32(-1).Frame()},
      {"text C", [](Record& r) { r.measurement.SetTextC(u"c"); },
       BegunMore(0x0040).Units(u"c").U16(0).Frame()},
      {"flag E", [](Record& r) { r.measurement.SetFlagE(1); }, BegunMore(0x0080).U8(1).Frame()},
      {"text D", [](Record& r) { r.measurement.SetTextD(std::u16string(29, u'd').c_str()); },
       BegunMore(0x0100).Units(std::u16string(29, u'd')).U16(0).Frame()},
      {"value F", [](Record& r) { r.measurement.SetValueF(9); }, BegunMore(0x0200).U8(9).Frame()},
      {"value G", [](Record& r) { r.measurement.SetValueG(9); }, BegunMore(0x0400).I32(9).Frame()},
      {"value H", [](Record& r) { r.measurement.SetValueH(0); }, BegunMore(0x0800).U16(0).Frame()},
      {"value I", [](Record& r) { r.measurement.SetValueI(0); }, BegunMore(0x1000).U16(0).Frame()},
      {"list", [](Record& r) { r.measurement.SetListBlock(ListOf(2)); },
       BegunMore(0x2000).U16(0x1234).U8(2).U16(0x100).U16(0x101).Frame()},
      {"empty list", [](Record& r) { r.measurement.SetListBlock(GPSListBlock()); },
       BegunMore(0x2000).U16(0).U8(0).Frame()},
  };
  for (const auto& [field, set, frame] : cases) {
    SCOPED_TRACE(field);
    Record record;
    set(record);
    const auto [bytes, refusal] = EncodedOf(record.measurement, record.info);
    EXPECT_EQ(bytes, frame);
    EXPECT_EQ(refusal, Refusal());
    ExpectReadsBack(bytes, record.measurement, record.info);
  }
}

TEST(RecordEncode, StoredValuesThatAreNotPresentAreLeftOut) {
  GPSMeasDataImplC measurement;
  measurement.SetAntennaHeight(GPSAntHeightImplC(1.5F, false, 0.25F));
  measurement.SetDOPs(GPSDOPsImplC(1, 2, 3));
  measurement.SetVector({0.1, 2.0, 3.0});
  measurement.Reset();
  measurement.SetValues(kValues, 2);
  measurement.SetValues(nullptr, 0);
  EXPECT_EQ(EncodedOf(measurement, {}).bytes, Begun(0).Frame());
}

TEST(RecordEncode, PathExtensionAndOffsetAreIgnored) {
  GPSRecordFileInfo info;
  info.offset = 77;
  std::memset(info.path, 'p', sizeof(info.path));
  std::memset(info.extension, 'e', sizeof(info.extension));
  info.name[1] = 'x';  // after the terminator
  EXPECT_EQ(EncodedOf({}, info).bytes, Begun(0).Frame());
}

// --- What is refused ----------------------------------------------------------------------------

TEST(RecordEncode, ValuesThatNoFrameGivesAreRefused) {
  const double beyond = std::nextafter(1.0, 2.0);
  const double largest = std::numeric_limits<float>::max();
  const auto tooLarge = std::nextafter(largest, std::numeric_limits<double>::infinity());
  const auto signalling = std::bit_cast<double>(0x7FF0'0000'2000'0000ULL);
  const auto longNaN = std::bit_cast<double>(0x7FF8'0000'0000'0001ULL);
  const auto vector = [](double x, double y, double z) {
    return [x, y, z](Record& r) { r.measurement.SetVector({x, y, z}); };
  };
  const auto name = [](std::string text) {
    return [text](Record& r) { text.copy(r.info.name, sizeof(r.info.name)); };
  };
  const auto flags = [](std::uint32_t bits) { return [bits](Record& r) { r.info.flags = bits; }; };
  const auto antenna = [](float offset) {
    return [offset](Record& r) {
      r.measurement.SetAntennaHeight(GPSAntHeightImplC(1.0F, true, offset));
    };
  };
  const auto list = [](std::uint8_t count) {
    return [count](Record& r) { r.measurement.SetListBlock(ListOf(count)); };
  };
  const struct {
    RecordField field;  // kNone: exactly at the limit
    const char* text;
    std::function<void(Record&)> set;
  } cases[] = {
      {RecordField::kTimeBWeek, "week of time B",
       [](Record& r) {
         r.measurement.SetTimeB({1, 0});
       }},
      {RecordField::kStatusBit2, "status bit 2", [](Record& r) { r.measurement.SetStatusBit2(); }},
      {RecordField::kFlags, "flags", flags(3)},
      {RecordField::kFlags, "flags", flags(4)},
      {RecordField::kFlags, "flags", flags(5)},
      {RecordField::kFlags, "flags", flags(0x8000'0002)},
      {RecordField::kFlags, "flags", [](Record& r) { r.measurement.SetStatusBit0(); }},
      {RecordField::kFlags, "flags", [](Record& r) { r.measurement.SetStatusBit1(); }},
      {RecordField::kFlags, "flags", [](Record& r) { r.measurement.SetStatusBit3(); }},
      {RecordField::kNone, "", name(std::string(17, 'n'))},
      {RecordField::kName, "name", name(std::string(18, 'n'))},
      {RecordField::kName, "name", name(std::string(49, 'n'))},
      {RecordField::kName, "name", name("a\x80")},                              // stray byte
      {RecordField::kName, "name", name("a\xC0\x80")},                          // 0, but longer
      {RecordField::kName, "name", name("a\xC1\xA1")},                          // 'a', but longer
      {RecordField::kName, "name", name("\xF0\x9F\x98\x80")},                   // beyond U+FFFF
      {RecordField::kName, "name", name(std::string(48, 'n').append("\xC3"))},  // cut
      {RecordField::kNone, "", antenna(0.0F)},
      {RecordField::kHorizontalOffset, "horizontal offset", antenna(-0.0F)},
      {RecordField::kHorizontalOffset, "horizontal offset", antenna(1e-45F)},
      {RecordField::kHorizontalOffset, "horizontal offset", antenna(std::nanf(""))},
      {RecordField::kValues, "values", [](Record& r) { r.measurement.SetValues(kValues, 1); }},
      {RecordField::kVector, "vector", vector(beyond, 0, 0)},
      {RecordField::kVector, "vector", vector(0, beyond, 0)},
      {RecordField::kVector, "vector", vector(0, 0, beyond)},
      {RecordField::kNone, "", vector(largest, -largest, HUGE_VAL)},
      {RecordField::kVector, "vector", vector(tooLarge, 0, 0)},
      {RecordField::kVector, "vector", vector(-1e300, 0, 0)},
      {RecordField::kVector, "vector", vector(1e-50, 0, 0)},
      {RecordField::kVector, "vector", vector(longNaN, 0, 0)},
      {RecordField::kVector, "vector", vector(signalling, 0, 0)},
      {RecordField::kSystem2Pair, "system 2 pair",
       [](Record& r) {
         r.measurement.SetSystem2Pair(5, 1);
         r.measurement.SetSystem2Pair(5, 0);
       }},
      {RecordField::kSystem3Pair, "system 3 pair",
       [](Record& r) {
         r.measurement.SetSystem3Pair(0, 1);
         r.measurement.SetSystem3Pair(0, 0);
       }},
      {RecordField::kFlagA, "flag A", [](Record& r) { r.measurement.SetFlagA(2); }},
      {RecordField::kValueB, "value B", [](Record& r) { r.measurement.SetValueB(256); }},
      {RecordField::kValueC, "value C", [](Record& r) { r.measurement.SetValueC(0x8000'0000); }},
      {RecordField::kFlagE, "flag E", [](Record& r) { r.measurement.SetFlagE(255); }},
      {RecordField::kNone, "", list(31)},
      {RecordField::kListBlock, "list block", list(32)},
      {RecordField::kListBlock, "list block", list(255)},
  };
  for (const auto& [field, text, set] : cases) {
    Record record;
    set(record);
    SCOPED_TRACE(testing::Message() << text << ' ' << &text - &cases[0].text);
    const auto [bytes, refusal] = EncodedOf(record.measurement, record.info);
    EXPECT_EQ(refusal.field, field);
    EXPECT_STREQ(TextOf(refusal.field), text);
    EXPECT_EQ(bytes.empty(), field != RecordField::kNone);
    EXPECT_EQ(refusal.reason,
              field == RecordField::kNone ? Refusal::Reason::kNone : Refusal::Reason::kNoPlace);
  }
}

TEST(RecordEncode, TheFirstFieldInTheOrderOfTheFrameIsNamed) {
  GPSMeasDataImplC measurement;
  measurement.SetValueB(256);
  measurement.SetSystem2Pair(1, 1);
  measurement.SetSystem2Pair(1, 0);
  EXPECT_EQ(EncodedOf(measurement, {}).refusal.field, RecordField::kSystem2Pair);
  measurement.SetTimeB({1, 0});
  EXPECT_EQ(EncodedOf(measurement, {}).refusal.field, RecordField::kTimeBWeek);
}

// Texts and flag A with `left` bytes to spare before a length of 498.
void Fill(GPSMeasDataImplC& measurement, std::size_t left) {
  std::size_t bytes = 498 - Begun(0x2000).Payload().size() - 5 - 2 - left;
  if (bytes % 2 != 0) {
    measurement.SetFlagA(1);
    --bytes;
  }
  const auto take = [&](std::size_t rest) {  // a text has 4 to 160 bytes
    const std::size_t text = std::min<std::size_t>(160, bytes - rest);
    bytes -= text;
    return std::u16string(text / 2 - 1, u'x');
  };
  measurement.SetTextA(take(8).c_str());
  measurement.SetTextB(take(4).c_str());
  if (bytes > 0) measurement.SetTextC(take(0).c_str());
}

TEST(RecordEncode, TheFieldThatIsTooLongIsNamed) {
  const auto text = [](std::size_t units) { return std::u16string(units, u'y'); };
  const struct {
    RecordField field;
    const char* text;
    std::size_t size;
    std::function<void(GPSMeasDataImplC&)> set;
  } cases[] = {
      {RecordField::kFlagE, "flag E", 1, [](auto& m) { m.SetFlagE(1); }},
      {RecordField::kTextD, "text D", 4, [&](auto& m) { m.SetTextD(text(1).c_str()); }},
      {RecordField::kTextD, "text D", 60, [&](auto& m) { m.SetTextD(text(29).c_str()); }},
      {RecordField::kValueF, "value F", 1, [](auto& m) { m.SetValueF(1); }},
      {RecordField::kValueG, "value G", 4, [](auto& m) { m.SetValueG(1); }},
      {RecordField::kValueH, "value H", 2, [](auto& m) { m.SetValueH(1); }},
      {RecordField::kValueI, "value I", 2, [](auto& m) { m.SetValueI(1); }},
      {RecordField::kListBlock, "list block", 3, [](auto& m) { m.SetListBlock(ListOf(0)); }},
      {RecordField::kListBlock, "list block", 65, [](auto& m) { m.SetListBlock(ListOf(31)); }},
  };
  for (const auto& [field, name, size, set] : cases) {
    SCOPED_TRACE(testing::Message() << name << ' ' << size);
    GPSMeasDataImplC fits;
    Fill(fits, size);
    set(fits);
    const auto encoded = EncodedOf(fits, {});
    EXPECT_EQ(encoded.bytes.size(), 500U);
    ExpectReadsBack(encoded.bytes, fits, {});

    GPSMeasDataImplC tooLong;
    Fill(tooLong, size - 1);
    set(tooLong);
    const auto [bytes, refusal] = EncodedOf(tooLong, {});
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(refusal, (Refusal{field, Refusal::Reason::kTooLong}));
    EXPECT_STREQ(TextOf(refusal.field), name);
  }
}

TEST(RecordEncode, AThirdLongTextIsTooLongByOneByte) {
  GPSMeasDataImplC measurement;
  measurement.SetTextA(std::u16string(79, u'a').c_str());
  measurement.SetTextB(std::u16string(79, u'b').c_str());
  measurement.SetTextC(std::u16string(78, u'c').c_str());
  measurement.SetFlagA(1);
  EXPECT_EQ(EncodedOf(measurement, {}).bytes.size(), 500U);
  measurement.SetValueB(1);
  EXPECT_EQ(EncodedOf(measurement, {}).refusal,
            (Refusal{RecordField::kTextC, Refusal::Reason::kTooLong}));
  measurement.SetTextC(std::u16string(77, u'c').c_str());
  EXPECT_EQ(EncodedOf(measurement, {}).bytes.size(), 499U);
}

// --- Any measurement that setters can produce ---------------------------------------------------

// Calls setters at random, with values around the limits of the frame.
Record RandomRecord(std::mt19937_64& random) {
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  const auto often = [&] { return below(3) != 0; };
  const auto rarely = [&] { return below(24) == 0; };
  const auto u8 = [&] { return static_cast<std::uint8_t>(below(256)); };
  const auto u16 = [&] { return static_cast<std::uint16_t>(below(below(2) != 0 ? 3 : 0x10000)); };
  const auto i32 = [&] { return often() ? static_cast<std::int32_t>(random()) : 0; };
  const auto real = [&] { return std::bit_cast<float>(static_cast<std::uint32_t>(random())); };
  const bool isLong = below(4) == 0;
  const auto text = [&](unsigned capacity) {
    std::u16string units(below(isLong ? capacity : 20), u'\0');
    for (auto& unit : units) unit = static_cast<char16_t>(1 + below(0xFFFF));
    return units;
  };
  Record r;
  GPSMeasDataImplC& m = r.measurement;
  m.SetTimeA({u16(), i32()});
  m.SetTimeB({static_cast<std::uint16_t>(rarely() ? 1 : 0), i32()});
  if (often()) r.info.flags = rarely() ? below(8) : 1 + below(2);
  if (r.info.flags != 0 || rarely()) {
    if (often()) m.SetStatusBit0();
    if (often()) m.SetStatusBit1();
    if (often()) m.SetStatusBit3();
  }
  if (rarely()) m.SetStatusBit2();
  if (often()) r.info.number = i32();
  if (often()) {
    const std::string pieces[] = {"a", "\xC3\xA9", "\xE2\x82\xAC"};
    std::string name;
    for (unsigned i = below(rarely() ? 30 : 17); i > 0; --i) name += pieces[below(3)];
    if (rarely()) name += static_cast<char>(u8());
    name.copy(r.info.name, sizeof(r.info.name));
  }
  if (often()) {
    m.SetAntennaHeight(GPSAntHeightImplC(real(), below(2) == 0, rarely() ? real() : 0.0F));
  }
  if (often()) m.SetExtraTime(u16(), i32());
  if (often()) m.SetWord16(u16());
  if (often()) m.SetValues(kValues, rarely() ? 1 : 2);
  if (often()) m.SetDOPs(GPSDOPsImplC(u16(), u16(), u16()));
  if (often()) m.SetTotalPair(u8(), u8());
  if (often()) {
    m.SetVector({real(), real(), rarely() ? std::bit_cast<double>(random()) : double{real()}});
  }
  if (often()) m.SetSystem1Pair(u8(), u8());
  for (unsigned i = below(3); i > 0; --i) m.SetSystem2Pair(u8(), rarely() ? 0 : u8());
  for (unsigned i = below(3); i > 0; --i) m.SetSystem3Pair(u8(), rarely() ? 0 : u8());
  if (often()) m.SetFlagA(static_cast<std::uint8_t>(rarely() ? 2 : below(2)));
  if (often()) m.SetValueB(rarely() ? 256 : u8());
  if (often()) m.SetValueC(rarely() ? 256 : u8());
  if (often()) m.SetTextA(text(80).c_str());
  if (often()) m.SetTextB(text(80).c_str());
  if (often()) m.SetValueD(i32());
  if (often()) m.SetTextC(text(80).c_str());
  if (often()) m.SetFlagE(static_cast<std::uint8_t>(rarely() ? 2 : below(2)));
  if (often()) m.SetTextD(text(30).c_str());
  if (often()) m.SetValueF(u8());
  if (often()) m.SetValueG(i32());
  if (often()) m.SetValueH(u16());
  if (often()) m.SetValueI(u16());
  if (often()) m.SetListBlock(ListOf(static_cast<std::uint8_t>(below(rarely() ? 40 : 32))));
  if (rarely()) m.Reset();
  return r;
}

// A measurement that is not refused reads back, and a refused one gives no frame.
TEST(RecordEncode, RandomRecordsReadBackOrAreRefused) {
  std::mt19937_64 random(5);
  unsigned encoded = 0;
  unsigned tooLong = 0;
  unsigned without = 0;
  for (int round = 0; round < 100'000 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    const Record record = RandomRecord(random);
    const auto [bytes, refusal] = EncodedOf(record.measurement, record.info);
    EXPECT_EQ(bytes.empty(), refusal.field != RecordField::kNone);
    if (bytes.empty()) {
      ++(refusal.reason == Refusal::Reason::kTooLong ? tooLong : without);
      continue;
    }
    ++encoded;
    ASSERT_NO_FATAL_FAILURE(ExpectReadsBack(bytes, record.measurement, record.info));
  }
  EXPECT_GT(encoded, 10'000U);
  EXPECT_GT(tooLong, 500U);
  EXPECT_GT(without, 10'000U);
}

}  // namespace
