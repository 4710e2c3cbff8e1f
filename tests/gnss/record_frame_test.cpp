#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/record_frame.h>

#include "tests/gnss/record_model.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"
#include "tests/support/same_info.h"

namespace {

using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileInfo;
using SDI::RecordFrame::Block;
using SDI::RecordFrame::Build;
using SDI::RecordFrame::Checksum;
using SDI::RecordFrame::Decode;
using SDI::RecordFrame::Decoded;
using SDI::RecordFrame::DecodeName;
using SDI::RecordFrame::EncodeName;
using SDI::RecordFrame::Field;
using SDI::RecordFrame::kMaxSize;
using SDI::RecordFrame::kNoSubType;
using SDI::RecordFrame::kUpdatedFields;
using SDI::RecordFrame::NameOf;
using SDI::RecordFrame::Patch;
using TestSupport::ByteVector;
using TestSupport::ExpectSameInfo;
using TestSupport::FilledMeasurement;
using TestSupport::FrameBuilderC;
using TestSupport::StoredFields;
using TestSupport::StoredIn;
using TestSupport::WellFormedFrame;

// --- Decoding compared with the literal model ---------------------------------------------------

// An info in which every field differs from its default, with unterminated texts.
GPSRecordFileInfo FilledInfo() {
  GPSRecordFileInfo info;
  info.number = -4711;
  std::memset(info.name, 'n', sizeof(info.name));
  std::memset(info.extension, 'e', sizeof(info.extension));
  std::memset(info.path, 'p', sizeof(info.path));
  info.flags = 0x8000'0000;
  return info;
}

// Decodes frames into a filled measurement and info, and compares with the model.
class Decoding : public testing::Test {
 protected:
  // The model's result for bytes that begin with a frame. Bytes that end before the frame are not a
  // frame in memory.
  std::uint32_t Model(const ByteVector& bytes) {
    expected_ = filled_;
    expectedInfo_ = filledInfo_;
    const bool isCut = bytes.size() < 5 || (RecordModel::HasMeasurementHeader(bytes, 0) &&
                                            bytes.size() < RecordModel::U16(bytes, 2) + 2U);
    return isCut ? 2 : RecordModel::Read(bytes, expected_, expectedInfo_);
  }

  // Compares the library with the model. Returns the model's result.
  std::uint32_t Check(const ByteVector& bytes) {
    const std::uint32_t result = Model(bytes);
    measurement_ = filledMeasurement_;
    GPSRecordFileInfo info = filledInfo_;
    // A separate heap block, so that AddressSanitizer detects every read past the frame.
    const std::vector<std::uint8_t> exact(bytes);
    EXPECT_EQ(Decode(exact, measurement_, info).IsDone(), result == 0);
    if (StoredIn(measurement_) != expected_) {
      ADD_FAILURE() << "stored:" << testing::PrintToString(StoredIn(measurement_))
                    << "expected:" << testing::PrintToString(expected_);
    }
    ExpectSameInfo(info, expectedInfo_);
    return result;
  }

  const GPSMeasDataImplC filledMeasurement_ = FilledMeasurement();
  const StoredFields filled_ = StoredIn(filledMeasurement_);
  const GPSRecordFileInfo filledInfo_ = FilledInfo();
  GPSMeasDataImplC measurement_;
  StoredFields expected_;
  GPSRecordFileInfo expectedInfo_;
  std::mt19937_64 random_{20260101};
};

TEST_F(Decoding, EveryFlagsWord1OfWellFormedFrames) {
  for (unsigned flags = 0; flags <= 0xFFFF && !HasFailure(); ++flags) {
    SCOPED_TRACE(flags);
    const auto flags2 = static_cast<unsigned>(random_() & 0xFFFF);
    ASSERT_EQ(Check(WellFormedFrame(flags, flags2, random_)), 0U);
  }
}

TEST_F(Decoding, EveryFlagsWord2OfWellFormedFrames) {
  for (unsigned flags = 0; flags <= 0xFFFF && !HasFailure(); ++flags) {
    SCOPED_TRACE(flags);
    ASSERT_EQ(Check(WellFormedFrame(0x2000 | (flags & 0x0100), flags, random_)), 0U);
  }
}

// The same bytes with every flags word: most announce more bytes than there are, or too large
// counts.
TEST_F(Decoding, EveryFlagsWordOverTheSameBytes) {
  unsigned results[3] = {};
  for (const std::size_t size : {3U, 40U, 120U, 300U}) {
    FrameBuilderC b;
    b.Times().U16(0);
    for (std::size_t i = 0; i < size; ++i) {  // mostly small, so that counts are valid
      b.U8(static_cast<unsigned>(random_() % (random_() % 4 != 0 ? 3 : 256)));
    }
    ByteVector frame = b.Frame();
    for (unsigned flags = 0; flags <= 0xFFFF; ++flags) {
      RecordModel::PutU16(frame, 15, flags);
      RecordModel::PutU16(frame, 17, static_cast<unsigned>(random_() & 0xFFFF));
      TestSupport::Seal(frame);
      ++results[Check(frame)];
      ASSERT_FALSE(HasFailure()) << size << ", word 1 " << flags;
    }
    RecordModel::PutU16(frame, 15, 0x2000);
    for (unsigned flags = 0; flags <= 0xFFFF; ++flags) {
      RecordModel::PutU16(frame, 17, flags);
      TestSupport::Seal(frame);
      ++results[Check(frame)];
      ASSERT_FALSE(HasFailure()) << size << ", word 2 " << flags;
    }
  }
  EXPECT_GT(results[0], 10'000U);
  EXPECT_GT(results[2], 10'000U);
}

ByteVector FrameWithEverything(std::mt19937_64& random) {
  return WellFormedFrame(0xFFFF, 0xFFFF, random);
}

TEST_F(Decoding, EveryChangeOfOneByteIsRefused) {
  for (const unsigned flags : {0x0007U, 0x3FFFU}) {
    const ByteVector frame = WellFormedFrame(flags, 0xFFFF, random_);
    ASSERT_EQ(Check(frame), 0U);
    for (std::size_t at = 0; at < frame.size() && !HasFailure(); ++at) {
      ByteVector changed = frame;
      for (unsigned step = 1; step <= 255; ++step) {
        SCOPED_TRACE(testing::Message() << "byte " << at << " plus " << step);
        changed[at] = static_cast<std::uint8_t>(frame[at] + step);
        ASSERT_EQ(Check(changed), 2U);
        ASSERT_EQ(expected_, filled_);  // nothing is stored
      }
    }
  }
}

TEST_F(Decoding, EveryChangeOfOneByteWithARightChecksum) {
  unsigned results[3] = {};
  for (const unsigned flags : {0x100FU, 0x3FFFU}) {
    const ByteVector frame = WellFormedFrame(flags, 0xFFFF, random_);
    const std::size_t length = frame.size() - 2;
    for (std::size_t at = 4; at < length && !HasFailure(); ++at) {
      ByteVector changed = frame;
      for (unsigned step = 1; step <= 255; ++step) {
        SCOPED_TRACE(testing::Message() << "byte " << at << " plus " << step);
        changed[at] = static_cast<std::uint8_t>(frame[at] + step);
        TestSupport::Seal(changed);
        ++results[Check(changed)];
      }
    }
  }
  EXPECT_GT(results[0], 10'000U);
  EXPECT_GT(results[2], 1'000U);
}

// A frame that ends inside any block: only the blocks before it are stored.
TEST_F(Decoding, EveryLengthOfAFrameCutShort) {
  for (int round = 0; round < 20; ++round) {
    const ByteVector whole = FrameWithEverything(random_);
    for (std::size_t length = 0; length + 2 <= whole.size() && !HasFailure(); ++length) {
      SCOPED_TRACE(length);
      ByteVector cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
      cut.resize(std::max<std::size_t>(length, 5) + 2);
      RecordModel::PutU16(cut, 2, static_cast<unsigned>(length));
      if (length >= 5) TestSupport::Seal(cut);
      ASSERT_EQ(Check(cut), length + 2 == whole.size() ? 0U : 2U);
    }
  }
}

TEST_F(Decoding, EveryTruncationInMemoryIsRefused) {
  const ByteVector whole = FrameWithEverything(random_);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const ByteVector cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    ASSERT_EQ(Check(cut), 2U);
    ASSERT_EQ(expected_, filled_);
  }
}

TEST_F(Decoding, BytesAfterTheFrameAreIgnored) {
  ByteVector frame = FrameWithEverything(random_);
  frame.resize(frame.size() + 600, 0xFF);
  EXPECT_EQ(Check(frame), 0U);
}

TEST_F(Decoding, BytesBetweenTheLastBlockAndTheChecksumAreIgnored) {
  EXPECT_EQ(Check(FrameBuilderC().Times().U16(0x0100).U8(1).U8(2).Fill(100, 0xFF).Frame()), 0U);
  EXPECT_EQ(expected_.totalPair, (SDI::GPSCounterPair{1, 2}));
}

// Every length that a header can have, with a correct checksum if there is room for one.
TEST_F(Decoding, EveryLength) {
  for (unsigned length = 0; length <= 0xFFFF && !HasFailure(); length += length < 600 ? 1 : 7919) {
    SCOPED_TRACE(length);
    ByteVector bytes(std::max<std::size_t>(length + 2, 20), 0);
    bytes[0] = 0x9C;
    bytes[1] = 0xAE;
    bytes[4] = 113;
    RecordModel::PutU16(bytes, 2, length);
    if (length >= 5) TestSupport::Seal(bytes);
    ASSERT_EQ(Check(bytes), 17 <= length && length <= 498 ? 0U : 2U);
  }
}

TEST_F(Decoding, OnlyType113AndTheMagicAreMeasurements) {
  const ByteVector frame = FrameBuilderC().Times().U16(0).Frame();
  for (unsigned type = 0; type < 256; ++type) {
    ByteVector other = frame;
    other[4] = static_cast<std::uint8_t>(type);
    TestSupport::Seal(other);
    EXPECT_EQ(Check(other), type == 113 ? 0U : 2U);
  }
}

TEST_F(Decoding, EveryCountOfExtraTimes) {
  for (unsigned count = 0; count < 256; ++count) {
    SCOPED_TRACE(count);
    const ByteVector frame = FrameBuilderC()
                                 .Times()
                                 .U16(0x000C)
                                 .F32(1.25F)
                                 .U8(1)
                                 .U8(count)
                                 .U16(0xABCD)
                                 .I32(-5)
                                 .Fill(300, 0)
                                 .Frame();
    EXPECT_EQ(Check(frame), count <= 1 ? 0U : 2U);
    EXPECT_EQ(expected_.height, std::bit_cast<std::uint32_t>(1.25F));  // stored before
    EXPECT_EQ(expected_.extraWeek, count == 1 ? 0xABCDU : filled_.extraWeek);
  }
}

TEST_F(Decoding, EveryCountOfListEntries) {
  for (unsigned count = 0; count < 256; ++count) {
    SCOPED_TRACE(count);
    FrameBuilderC b;
    b.Times().U16(0x2000).U16(0x3000).U16(0x7788).U16(0x1122).U8(count);
    while (b.Payload().size() < 490) b.U8(static_cast<unsigned>(b.Payload().size()) & 0xFF);
    EXPECT_EQ(Check(b.Frame()), count <= 31 ? 0U : 2U);
    EXPECT_EQ(expected_.valueI, 0x7788U);  // stored before
    EXPECT_EQ(expected_.listHead, count <= 31 ? 0x1122U : filled_.listHead);
  }
}

TEST_F(Decoding, EntriesAfterTheCountAreZero) {
  const ByteVector frame =
      FrameBuilderC().Times().U16(0x2000).U16(0x2000).U16(1).U8(1).U16(7).Frame();
  EXPECT_EQ(Check(frame), 0U);
  EXPECT_EQ(StoredIn(measurement_).listEntries[0], 7);
  EXPECT_EQ(StoredIn(measurement_).listEntries[1], 0);
}

TEST_F(Decoding, EveryByteOfTheFileFlags) {
  for (const unsigned kind : {0U, 1U, 2U, 255U}) {
    for (unsigned status = 0; status < 256; ++status) {
      for (unsigned bit = 0; bit <= 32; ++bit) {
        const std::uint32_t more = bit < 32 ? 1U << bit : 0;
        ASSERT_EQ(
            Check(
                FrameBuilderC().Times().U16(1).Fill(6, 0xFF).U8(kind).U8(status).U32(more).Frame()),
            0U);
      }
    }
  }
  // Compared with the format, without the model.
  ASSERT_EQ(Check(FrameBuilderC().Times().U16(1).Fill(6, 0).U8(0).U8(6).U32(0x4000).Frame()), 0U);
  EXPECT_EQ(measurement_.GetStatusMask() & 0x0F, 0x0B | (filled_.statusMask & 0x0F));
  EXPECT_EQ(expectedInfo_.flags, 0x8000'0001);
  ASSERT_EQ(Check(FrameBuilderC().Times().U16(1).Fill(6, 0).U8(9).U8(0).U32(0).Frame()), 0U);
  EXPECT_EQ(expectedInfo_.flags, 0x8000'0002);
}

TEST_F(Decoding, EveryKindOfAntennaHeight) {
  for (unsigned kind = 0; kind < 256; ++kind) {
    EXPECT_EQ(Check(FrameBuilderC().Times().U16(4).F32(1.5F).U8(kind).Frame()), 0U);
    EXPECT_EQ(StoredIn(measurement_).isVertical, kind != 1);
    EXPECT_EQ(StoredIn(measurement_).horizontalOffset, 0U);
  }
}

TEST_F(Decoding, EverySetOfSystems) {
  for (unsigned systems = 0; systems < 256 && !HasFailure(); ++systems) {
    for (unsigned valid = 0; valid < 64; ++valid) {
      SCOPED_TRACE(testing::Message() << systems << ' ' << valid);
      FrameBuilderC b;
      b.Times().U16(0x1020).U8(systems).Fill(4, 0);
      for (unsigned i = 0; i < 3; ++i) {
        if (systems >> i & 1) b.Fill(8, 0xEE);
      }
      b.U8(systems);
      for (unsigned i = 0; i < 3; ++i) {
        if (!(systems >> i & 1)) continue;
        const unsigned isValid = valid >> i & 1;
        const unsigned isUsed = valid >> (3 + i) & 1;
        b.U8(isValid | 0xFE);
        if (isValid) b.U8(10 + i).U8(20 * isUsed);
      }
      ASSERT_EQ(Check(b.Frame()), 0U);
    }
  }
}

TEST_F(Decoding, ASystemWithoutASatelliteUsedIsStoredAndAbsent) {
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
  const ByteVector frame = FrameBuilderC().Times().U16(0x1000).U8(2).U8(1).U8(4).U8(0).Frame();
  EXPECT_TRUE(Decode(frame, measurement, info).IsDone());
  EXPECT_EQ(StoredIn(measurement).system2Pair, (SDI::GPSCounterPair{4, 0}));
  EXPECT_EQ(measurement.GetSetMask(), 0);
  std::uint8_t first = 9;
  std::uint8_t second = 9;
  EXPECT_FALSE(measurement.GetSystem2Pair(first, second));
}

// Texts of every length around their limit, with and without a terminator.
TEST_F(Decoding, EveryLengthOfEachText) {
  for (const auto& [bit, most] :
       {std::pair{0x0008U, 80U}, {0x0010U, 80U}, {0x0040U, 80U}, {0x0100U, 30U}}) {
    for (unsigned length = 0; length <= 120; ++length) {
      SCOPED_TRACE(testing::Message() << bit << ' ' << length);
      FrameBuilderC b;
      b.Times().U16(0x2000).U16(bit | 0x1000).Units(std::u16string(length, u'\xFEDC')).U16(0);
      b.U16(0x4321).Fill(40, 0);  // value I follows
      const std::uint32_t result = Check(b.Frame());
      EXPECT_EQ(result, 0U);
      const StoredFields stored = StoredIn(measurement_);
      const std::u16string& text = bit == 0x0008   ? stored.textA
                                   : bit == 0x0010 ? stored.textB
                                   : bit == 0x0040 ? stored.textC
                                                   : stored.textD;
      EXPECT_EQ(text, std::u16string(std::min(length, most - 1), u'\xFEDC'));
      // Without a terminator, exactly the maximum is consumed.
      const unsigned next = length < most ? 0x4321U : length > most ? 0xFEDCU : 0U;
      EXPECT_EQ(stored.valueI, next);
    }
  }
}

TEST_F(Decoding, ATextThatRunsIntoTheChecksumIsNotStored) {
  for (unsigned length = 0; length < 40; ++length) {
    for (const unsigned odd : {0U, 1U}) {
      FrameBuilderC b;
      b.Times().U16(0x2000).U16(0x0009).U8(5).Units(std::u16string(length, u'x')).Fill(odd, 0);
      EXPECT_EQ(Check(b.Frame()), 2U);
      EXPECT_EQ(expected_.flagA, 1U);
      EXPECT_EQ(expected_.textA, u"text A, old");
    }
  }
}

TEST_F(Decoding, NamesOfEveryKind) {
  const std::u16string kinds[] = {u"a",      u"\u00e9", u"\u20ac", u"\xD83D", u"\xFFFF",
                                  u"\u0080", u"\u07ff", u"\u0800", u"\x7f"};
  for (const auto& a : kinds) {
    for (const auto& b : kinds) {
      for (std::size_t length = 0; length <= 17; ++length) {
        std::u16string name;
        for (std::size_t i = 0; i < length; ++i) name += i % 3 == 0 ? b : a;
        ASSERT_EQ(Check(FrameBuilderC().Times().U16(2).NameUnits(name).I32(-77).Frame()), 0U);
        ASSERT_EQ(expectedInfo_.number, -77);
      }
    }
  }
}

// 16 units of three bytes fill 48 of 49: a 17th does not fit, a shorter one after it would.
TEST_F(Decoding, UnitsOfANameThatDoNotFitAreSkipped) {
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
  const auto decode = [&](const std::u16string& name) {
    std::memset(info.name, '#', sizeof(info.name));
    EXPECT_TRUE(
        Decode(FrameBuilderC().Times().U16(2).NameUnits(name).I32(1).Frame(), measurement, info)
            .IsDone());
    return std::string(info.name, sizeof(info.name));
  };
  std::string sixteen;
  for (int i = 0; i < 16; ++i) sixteen += "\xE2\x82\xAC";
  const std::u16string euros(16, u'\u20ac');
  EXPECT_EQ(decode(euros + u"\u20ac"), sixteen + "#");  // no room, and no zero among the units
  EXPECT_EQ(decode(euros + u"\u00e9"), sixteen + "#");
  EXPECT_EQ(decode(euros + u"x"), sixteen + "x");
  EXPECT_EQ(decode(euros), sixteen + '\0');  // the 17th unit is the zero
  const std::string fifteen = sixteen.substr(3);
  EXPECT_EQ(decode(std::u16string(15, u'\u20ac') + u"\u00e9"),
            fifteen + "\xC3\xA9" + std::string(1, '\0') + "#");
  // Without a zero among the units, the field keeps its bytes after the name.
  EXPECT_EQ(decode(std::u16string(17, u'x')), std::string(17, 'x') + std::string(32, '#'));
  EXPECT_EQ(decode(u""), std::string(1, '\0') + std::string(48, '#'));
}

TEST_F(Decoding, KeepsTheWeekOfTimeBAndResetsNothing) {
  GPSMeasDataImplC measurement;
  measurement.SetTimeB({1234, 5});
  GPSRecordFileInfo info;
  EXPECT_TRUE(Decode(FrameBuilderC().Times(2200, 11, -22).U16(0x0100).U8(3).U8(4).Frame(),
                     measurement, info)
                  .IsDone());
  EXPECT_EQ(measurement.GetTimeA(), (Vorlin::TimeC{2200, 11}));
  EXPECT_EQ(measurement.GetTimeB(), (Vorlin::TimeC{1234, -22}));
  EXPECT_TRUE(Decode(FrameBuilderC().Times(2201, 12, -23).U16(0x0010).U16(9).Fill(26, 0).Frame(),
                     measurement, info)
                  .IsDone());
  EXPECT_EQ(measurement.GetSetMask(), 0x0028);  // the pair of the first frame is still there
}

TEST_F(Decoding, FloatsKeepTheirBitsAndAreWidened) {
  for (const float value :
       {0.0F, -0.0F, 1e-45F, 3.4e38F, -1.25F, std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_EQ(Check(FrameBuilderC()
                        .Times()
                        .U16(0x0204)
                        .F32(value)
                        .U8(0)
                        .U8(9)
                        .F32(value)
                        .F32(-value)
                        .F32(value)
                        .Frame()),
              0U);
    EXPECT_EQ(expected_.vector[0], std::bit_cast<std::uint64_t>(static_cast<double>(value)));
  }
}

TEST_F(Decoding, ReportsTheOutcome) {
  using Outcome = SDI::GPSRecordOutcome;
  const ByteVector frame = FrameBuilderC().Times().U16(0x0100).U8(1).U8(2).Frame();
  const auto outcome = [](const ByteVector& bytes) {
    GPSMeasDataImplC measurement;
    GPSRecordFileInfo info;
    return Decode(bytes, measurement, info).outcome;
  };
  EXPECT_EQ(outcome(frame), Outcome::kDone);
  for (std::size_t size = 0; size < frame.size(); ++size) {
    EXPECT_EQ(outcome({frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size)}),
              Outcome::kCut);
  }
  ByteVector other = frame;
  other[4] = 17;
  EXPECT_EQ(outcome(other), Outcome::kNoMeasurement);
  ByteVector changed = frame;
  changed[17] ^= 1;
  EXPECT_EQ(outcome(changed), Outcome::kWrongChecksum);
  ByteVector without = FrameBuilderC().Times().U16(0x0100).U8(1).Frame();
  EXPECT_EQ(outcome(without), Outcome::kBlockDoesNotFit);
}

// Each block alone, without its last byte.
TEST_F(Decoding, NamesTheBlockThatDoesNotFit) {
  const struct {
    Block block;
    const char* name;
    unsigned flags1;
    unsigned flags2;
  } cases[] = {
      {Block::kFileFlags, "file flags", 0x0001, 0},
      {Block::kName, "name", 0x0002, 0},
      {Block::kAntennaHeight, "antenna height", 0x0004, 0},
      {Block::kExtraTime, "extra time", 0x0008, 0},
      {Block::kWord16, "word 16", 0x0010, 0},
      {Block::kIgnoredPairs, "ignored pairs", 0x0020, 0},
      {Block::kValues, "values", 0x0040, 0},
      {Block::kDOPs, "DOPs", 0x0080, 0},
      {Block::kTotalPair, "total pair", 0x0100, 0},
      {Block::kVector, "vector", 0x0200, 0},
      {Block::kSystemPairs, "system pairs", 0x1000, 0},
      {Block::kMore, "more", 0x2000, 0},
      {Block::kFlagA, "flag A", 0x2000, 0x0001},
      {Block::kValueB, "value B", 0x2000, 0x0002},
      {Block::kValueC, "value C", 0x2000, 0x0004},
      {Block::kTextA, "text A", 0x2000, 0x0008},
      {Block::kTextB, "text B", 0x2000, 0x0010},
      {Block::kValueD, "value D", 0x2000, 0x0020},
      {Block::kTextC, "text C", 0x2000, 0x0040},
      {Block::kFlagE, "flag E", 0x2000, 0x0080},
      {Block::kTextD, "text D", 0x2000, 0x0100},
      {Block::kValueF, "value F", 0x2000, 0x0200},
      {Block::kValueG, "value G", 0x2000, 0x0400},
      {Block::kValueH, "value H", 0x2000, 0x0800},
      {Block::kValueI, "value I", 0x2000, 0x1000},
      {Block::kList, "list", 0x2000, 0x2000},
  };
  for (const auto& [block, name, flags1, flags2] : cases) {
    SCOPED_TRACE(name);
    ByteVector frame = WellFormedFrame(flags1, flags2, random_);
    frame.pop_back();
    RecordModel::PutU16(frame, 2, static_cast<unsigned>(frame.size() - 2));
    TestSupport::Seal(frame);
    ASSERT_EQ(Check(frame), 2U);
    GPSMeasDataImplC measurement;
    GPSRecordFileInfo info;
    EXPECT_EQ(Decode(frame, measurement, info).block, block);
    EXPECT_STREQ(TextOf(block), name);
  }
}

// --- Patches ------------------------------------------------------------------------------------

// The positions of the fields of an update according to the format; the size is 0 if the flags do
// not announce them.
struct Place {
  std::size_t at = 0;
  std::size_t size = 0;
};
Place PlaceOf(Field field, unsigned flags) {
  const std::size_t name = 17 + (flags & 1 ? 12 : 0);
  const std::size_t antenna = name + (flags & 2 ? 38 : 0);
  if (field == Field::kFileKind && (flags & 1)) return {17 + 6, 1};
  if (field == Field::kName && (flags & 2)) return {name, 34};
  if (field == Field::kNumber && (flags & 2)) return {name + 34, 4};
  if (field == Field::kHeight && (flags & 4)) return {antenna, 4};
  if (field == Field::kHeightKind && (flags & 4)) return {antenna + 4, 1};
  return {};
}

// Each set of fields, in frames with each set of blocks; some are too short for their flags.
TEST(RecordPatch, ChangesTheListedFieldsAndNothingElse) {
  std::mt19937_64 random(6);
  const GPSMeasDataImplC measurement = FilledMeasurement();
  const StoredFields stored = StoredIn(measurement);
  GPSRecordFileInfo info = FilledInfo();
  info.flags = 0x1;
  for (const bool isGiven : {true, false}) {
    for (unsigned flags = 0; flags < 8; ++flags) {
      for (unsigned set = 0; set < 32; ++set) {
        SCOPED_TRACE(testing::Message() << isGiven << ' ' << flags << ' ' << set);
        std::array<std::uint8_t, kMaxSize> frame;
        for (auto& byte : frame) byte = static_cast<std::uint8_t>(random() | 1);
        ByteVector before(frame.begin(), frame.end());
        RecordModel::PutU16(before, 15, flags);
        std::copy(before.begin(), before.end(), frame.begin());
        // The model updates only good frames, so it gets a good one with the same bytes.
        ByteVector all = before;
        const ByteVector header = {0x9C, 0xAE, 0xF2, 0x01, 113};
        std::copy(header.begin(), header.end(), all.begin());
        TestSupport::Seal(all);
        ASSERT_EQ(RecordModel::Write(all, isGiven ? &stored : nullptr, info), 0U);

        std::vector<Field> fields;
        ByteVector expected = before;
        for (unsigned i = 0; i < kUpdatedFields.size(); ++i) {
          if (!(set >> i & 1)) continue;
          fields.push_back(kUpdatedFields[i]);
          const auto [at, size] = PlaceOf(kUpdatedFields[i], isGiven ? flags : 0x0003);
          std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(at), size,
                      expected.begin() + static_cast<std::ptrdiff_t>(at));
        }
        Patch(frame, isGiven ? &measurement : nullptr, info, fields);
        ASSERT_EQ(ByteVector(frame.begin(), frame.end()), expected);
        const bool hasAll = !isGiven || flags == 7;
        EXPECT_TRUE(!hasAll || set != 31 || expected != before) << "nothing to patch";
      }
    }
  }
}

// --- Checksum -----------------------------------------------------------------------------------

TEST(RecordChecksum, IsMinusTheSumOfLengthTypeAndPayload) {
  const ByteVector bytes = {0xFF, 0xFF, 1, 2, 3, 4};
  EXPECT_EQ(Checksum(bytes.data(), 3), 0xFFFF);
  EXPECT_EQ(Checksum(bytes.data(), 4), 0xFFFD);
  EXPECT_EQ(Checksum(bytes.data(), 6), 0xFFF6);
  std::mt19937_64 random(1);
  ByteVector noise(0x10000);
  for (auto& byte : noise) byte = static_cast<std::uint8_t>(random());
  for (std::size_t length = 3; length <= 0xFFFF; length += length < 600 ? 1 : 997) {
    ASSERT_EQ(Checksum(noise.data(), length), RecordModel::Checksum(noise, 0, length)) << length;
  }
  const ByteVector full(0x10000, 0xFF);
  EXPECT_EQ(Checksum(full.data(), 0xFFFF), RecordModel::Checksum(full, 0, 0xFFFF));
}

TEST(RecordChecksum, IsZeroBelowALengthOf3) {
  const ByteVector bytes = {1, 2, 3, 4};
  for (std::size_t length = 0; length < 3; ++length) EXPECT_EQ(Checksum(bytes.data(), length), 0);
}

TEST(RecordChecksum, OfSumsThatAreAMultipleOf65536IsZero) {
  ByteVector bytes(2 + 257, 0xFF);  // 257 * 255 = 65535
  bytes.push_back(1);
  EXPECT_EQ(Checksum(bytes.data(), bytes.size()), 0);
}

// --- Frame builder ------------------------------------------------------------------------------

// The builder's rules, literally, on a buffer that is not zeroed.
std::size_t ModelBuild(ByteVector& buffer, unsigned type, int subType, std::size_t payload) {
  std::size_t size = payload + 7;
  if (subType >= 1) ++size;
  if (buffer.size() < size) return 0;
  buffer[0] = 0x9C;
  buffer[1] = 0xAE;
  RecordModel::PutU16(buffer, 2, static_cast<unsigned>(size - 2));
  buffer[4] = static_cast<std::uint8_t>(type);
  if (subType >= 0 && subType <= 255) buffer[5] = static_cast<std::uint8_t>(subType);
  RecordModel::PutU16(buffer, size - 2, RecordModel::Checksum(buffer, 0, size - 2));
  return size;
}

TEST(RecordBuild, WritesHeaderSubTypeAndChecksumAsTheModelDoes) {
  std::mt19937_64 random(2);
  const int subTypes[] = {std::numeric_limits<int>::min(), kNoSubType, 0, 1, 2, 254, 255, 256,
                          std::numeric_limits<int>::max()};
  for (const std::size_t payload : {0U, 1U, 2U, 10U, 100U, 491U, 493U}) {
    for (const int subType : subTypes) {
      for (std::size_t capacity = payload; capacity < payload + 20; ++capacity) {
        SCOPED_TRACE(testing::Message() << payload << ' ' << subType << ' ' << capacity);
        ByteVector buffer(capacity);
        for (auto& byte : buffer) byte = static_cast<std::uint8_t>(random());
        ByteVector expected = buffer;
        const std::size_t size = ModelBuild(expected, 113, subType, payload);
        ASSERT_EQ(Build(buffer, 113, subType, payload), size);
        ASSERT_EQ(buffer, expected);
      }
    }
  }
}

TEST(RecordBuild, SubType0IsWrittenButNotCounted) {
  ByteVector buffer(20, 0xEE);
  EXPECT_EQ(Build(buffer, 113, 0, 3), 10U);
  EXPECT_EQ(buffer[5], 0);
  buffer.assign(20, 0xEE);
  EXPECT_EQ(Build(buffer, 113, 1, 3), 11U);
  EXPECT_EQ(buffer[5], 1);
  buffer.assign(20, 0xEE);
  EXPECT_EQ(Build(buffer, 113, 256, 3), 11U);  // counted but not written
  EXPECT_EQ(buffer[5], 0xEE);
  buffer.assign(20, 0xEE);
  EXPECT_EQ(Build(buffer, 113, kNoSubType, 3), 10U);
  EXPECT_EQ(buffer[5], 0xEE);
}

TEST(RecordBuild, TooSmallACapacityWritesNothing) {
  ByteVector buffer(9, 0xEE);
  EXPECT_EQ(Build(buffer, 113, kNoSubType, 3), 0U);
  EXPECT_EQ(buffer, ByteVector(9, 0xEE));
  EXPECT_EQ(Build({}, 113, kNoSubType, 0), 0U);
}

TEST(RecordBuild, ASizeThatItsLengthCannotHoldWritesNothing) {
  ByteVector buffer(0x10010, 0xEE);
  EXPECT_EQ(Build(buffer, 113, kNoSubType, 0xFFFF - 5), 0x10001U);
  buffer.assign(buffer.size(), 0xEE);
  EXPECT_EQ(Build(buffer, 113, 1, 0xFFFF - 5), 0U);
  EXPECT_EQ(Build(buffer, 113, kNoSubType, 0xFFFF - 4), 0U);
  EXPECT_EQ(Build(buffer, 113, kNoSubType, std::numeric_limits<std::size_t>::max() - 3), 0U);
  EXPECT_EQ(buffer, ByteVector(0x10010, 0xEE));
}

// --- Codec of the name --------------------------------------------------------------------------

TEST(RecordEncodeName, EveryUnitAlone) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const char16_t text[] = {static_cast<char16_t>(unit)};
    char actual[8];
    char expected[8];
    std::memset(actual, '#', 8);
    std::memset(expected, '#', 8);
    ASSERT_EQ(EncodeName(text, 1, actual, 8), RecordModel::EncodeName({unit}, expected, 8));
    ASSERT_EQ(std::string(actual, 8), std::string(expected, 8)) << unit;
  }
}

TEST(RecordEncodeName, RandomTextsIntoEveryCapacity) {
  std::mt19937_64 random(3);
  for (int round = 0; round < 3000; ++round) {
    const std::size_t count = random() % 19;
    std::vector<char16_t> text(count);
    for (auto& unit : text) {
      constexpr unsigned kLimits[] = {0x80, 0x800, 0x10000, 2};
      unit = static_cast<char16_t>(random() % kLimits[random() % 4]);
    }
    const std::vector<unsigned> units(text.begin(), text.end());
    for (std::size_t capacity = 0; capacity < 60; ++capacity) {
      std::vector<char> actual(capacity, '#');
      std::vector<char> expected(capacity, '#');
      ASSERT_EQ(EncodeName(text.data(), count, actual.data(), capacity),
                capacity == 0 ? -1 : RecordModel::EncodeName(units, expected.data(), capacity));
      ASSERT_EQ(actual, expected);
    }
  }
}

TEST(RecordEncodeName, RefusesTooSmallACapacityAndAMissingDestination) {
  char field[18];
  std::memset(field, '#', sizeof(field));
  EXPECT_EQ(EncodeName(u"x", 17, field, 17), -1);
  EXPECT_EQ(std::string(field, 18), std::string(18, '#'));
  EXPECT_EQ(EncodeName(u"x", 17, field, 18), 1);
  EXPECT_EQ(EncodeName(u"x", 1, nullptr, 18), -1);
}

TEST(RecordEncodeName, SkippedUnitsCount) {
  char field[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(EncodeName(u"a\u20ac\u20ac", 3, field, 4), 7);
  EXPECT_EQ(std::string(field, 4), "a\xE2\x82\xAC");
  EXPECT_EQ(EncodeName(u"ab\u20ac", 3, field, 4), 5);
  EXPECT_EQ(std::string(field, 4), "ab\x82\xAC");  // skipped; the bytes there stay
}

void ExpectDecodedAsTheModelDoes(const std::string& bytes, std::size_t capacity) {
  // A separate heap block, so that AddressSanitizer detects a read past the limit.
  const std::vector<char> exact(bytes.begin(), bytes.end());
  std::vector<char16_t> units(capacity, u'#');
  auto [expected, result] = RecordModel::DecodeName(exact.data(), exact.size(), capacity);
  ASSERT_EQ(DecodeName(exact.data(), exact.size(), units.data(), capacity), result);
  expected.resize(capacity);  // the rest is cleared
  ASSERT_EQ(std::vector<unsigned>(units.begin(), units.end()), expected);
}

TEST(RecordDecodeName, EverySequenceOfThreeBytes) {
  for (unsigned lead = 0; lead < 256; ++lead) {  // including shorter sequences
    for (unsigned second = 0; second < 256; second += second < 0x7E ? 9 : 1) {
      for (unsigned third = 0; third < 256; third += third < 0x7E ? 21 : 7) {
        const std::string bytes = {static_cast<char>(lead), static_cast<char>(second),
                                   static_cast<char>(third)};
        for (std::size_t limit = 0; limit <= 3; ++limit) {
          ASSERT_NO_FATAL_FAILURE(ExpectDecodedAsTheModelDoes(bytes.substr(0, limit), 5))
              << limit << " of " << lead << ' ' << second << ' ' << third;
        }
      }
    }
  }
}

TEST(RecordDecodeName, RandomBytes) {
  std::mt19937_64 random(4);
  for (int round = 0; round < 100'000; ++round) {
    std::string bytes;
    for (std::size_t i = random() % 50; i > 0; --i) {
      constexpr const char* kPieces[] = {"a",    "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                         "\x80", "\xE2",     "\xC3",         "zz"};
      const std::uint64_t pick = random() % 40;
      bytes += pick < 30 ? kPieces[pick % 3] : pick < 38 ? kPieces[pick % 8] : std::string(1, '\0');
    }
    bytes.resize(std::min<std::size_t>(bytes.size(), 49));
    ASSERT_NO_FATAL_FAILURE(ExpectDecodedAsTheModelDoes(bytes, random() % 2 == 0 ? 65 : 20));
  }
}

TEST(RecordDecodeName, GivesTheCodeOfEachFault) {
  const struct {
    std::string bytes;
    std::size_t capacity;
    int result;
    std::u16string units;
  } cases[] = {
      {"ab\xC3\xA9\xE2\x82\xAC", 8, 0, u"ab\u00e9\u20ac"},
      {"ab\x80"
       "c",
       8, -3, u"ab"},
      {"ab\xBF", 8, -3, u"ab"},
      {"ab\xF0\x9F\x98\x80", 8, -3, u"ab"},
      {"ab\xFF", 8, -3, u"ab"},
      {"ab\xC3"
       "c",
       8, -3, u"ab"},
      {"ab\xE2\x82"
       "c",
       8, -3, u"ab"},
      {"ab\xE2"
       "cd",
       8, -3, u"ab"},
      {"ab\xC3", 8, -2, u"ab"},
      {"ab\xE2\x82", 8, -2, u"ab"},
      {"abc", 2, -1, u"ab"},
      {"abc", 3, 0, u"abc"},
      {std::string("ab\0\xFF", 4), 8, 0, u"ab"},
      {"", 8, 0, u""},
  };
  for (const auto& [bytes, capacity, result, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    std::u16string units(capacity, u'#');
    EXPECT_EQ(DecodeName(bytes.data(), bytes.size(), units.data(), capacity), result);
    std::u16string padded = expected;
    padded.resize(capacity);
    EXPECT_EQ(units, padded);
  }
}

}  // namespace
