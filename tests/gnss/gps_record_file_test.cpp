#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_file.h>

#include "tests/gnss/expect_no_file.h"
#include "tests/gnss/record_model.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"
#include "tests/support/number_of_cases.h"
#include "tests/support/same_info.h"
#include "tests/support/temp_file.h"

namespace {

namespace fs = std::filesystem;

using SDI::GPSAntHeightImplC;
using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::ExpectNoFile;
using TestSupport::ExpectReadChangesNothing;
using TestSupport::ExpectSameInfo;
using TestSupport::FilledMeasurement;
using TestSupport::FrameBuilderC;
using TestSupport::StoredFields;
using TestSupport::StoredIn;
using TestSupport::TempFileC;
using TestSupport::TempFolderC;
using TestSupport::WellFormedFrame;

// Reads into a filled measurement and compares with the model. Returns the model's result.
std::uint32_t CheckRead(const ByteVector& bytes, GPSRecordFileInfo info) {
  GPSMeasDataImplC measurement = FilledMeasurement();
  StoredFields expected = StoredIn(measurement);
  info.number = -4711;
  std::memset(info.name, 'n', sizeof(info.name));
  info.flags = 0x8000'0000;
  GPSRecordFileInfo expectedInfo = info;
  const std::uint32_t result = RecordModel::Read(bytes, expected, expectedInfo);
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, &info), result);
  EXPECT_EQ(StoredIn(measurement), expected);
  ExpectSameInfo(info, expectedInfo);
  return result;
}

ByteVector SmallFrame() {
  return FrameBuilderC()
      .Times()
      .U16(0x0106)
      .NameUnits(u"P\u00fcnkt 7")
      .I32(42)
      .F32(1.75F)
      .U8(1)
      .U8(12)
      .U8(9)
      .Frame();
}

// --- Reading ------------------------------------------------------------------------------------

TEST(RecordFileRead, ReadsTheFrameAtTheOffset) {
  std::mt19937_64 random(1);
  ByteVector bytes;
  std::vector<std::uint32_t> offsets;
  for (unsigned i = 0; i < 40; ++i) {
    offsets.push_back(static_cast<std::uint32_t>(bytes.size()));
    const auto flags = static_cast<unsigned>(random() & 0xFFFF);
    const ByteVector frame = WellFormedFrame(flags, flags, random);
    Append(bytes, frame);
    bytes.resize(bytes.size() + random() % 30, 0x9C);
  }
  const TempFileC file(bytes);
  for (const std::uint32_t offset : offsets) {
    SCOPED_TRACE(offset);
    EXPECT_EQ(CheckRead(bytes, file.Info(offset)), 0U);
  }
  for (std::uint32_t offset = 0; offset < bytes.size() + 10; ++offset) {
    SCOPED_TRACE(offset);
    CheckRead(bytes, file.Info(offset));
  }
  EXPECT_EQ(file.Bytes(), bytes);
}

TEST(RecordFileRead, ASlantHeightHasNoOffset) {
  const TempFileC file(FrameBuilderC().Times().U16(4).F32(1.5F).U8(1).Frame());
  GPSMeasDataImplC measurement = FilledMeasurement();
  GPSRecordFileInfo info = file.Info();
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 0U);
  EXPECT_TRUE(measurement.GetAntennaHeight().isEqual(GPSAntHeightImplC(1.5F, false, 0.0F)));
}

TEST(RecordFileRead, AFileThatEndsAnywhereInTheFrameChangesNothing) {
  std::mt19937_64 random(2);
  const ByteVector frame = WellFormedFrame(0x3FFF, 0x3FFF, random);
  const TempFileC file(frame);
  for (std::size_t size = frame.size(); size-- > 0;) {
    SCOPED_TRACE(size);
    fs::resize_file(file.Path(), size);
    ExpectReadChangesNothing(file.Info(), 0);
    CheckRead(ByteVector(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size)),
              file.Info());
  }
}

TEST(RecordFileRead, EveryChangeOfOneByteInAFile) {
  const ByteVector frame = SmallFrame();
  const TempFileC file(frame);
  unsigned results[3] = {};
  for (std::size_t at = 0; at < frame.size() && !testing::Test::HasFailure(); ++at) {
    ByteVector changed = frame;
    for (unsigned step = 1; step <= 255; step += TestSupport::kOneCaseIn) {
      SCOPED_TRACE(testing::Message() << "byte " << at << " plus " << step);
      changed[at] = static_cast<std::uint8_t>(frame[at] + step);
      file.Write(changed);
      const std::uint32_t result = CheckRead(changed, file.Info());
      // Only a length that extends past the end of the file does not make a bad frame.
      EXPECT_TRUE(result == 2 || (result == 0 && (at == 2 || at == 3)));
      ++results[result];
    }
  }
  EXPECT_GT(results[0], TestSupport::NumberOfCases(100U));
}

TEST(RecordFileRead, Length498IsReadAnd499Refused) {
  FrameBuilderC b;
  b.Times().U16(0x0100).U8(1).U8(2).Fill(498 - 19, 0xAB);
  const ByteVector longest = b.Frame();
  ASSERT_EQ(longest.size(), 500U);
  EXPECT_EQ(CheckRead(longest, TempFileC(longest).Info()), 0U);
  const ByteVector tooLong = b.U8(0).Frame();
  ExpectReadChangesNothing(TempFileC(tooLong).Info(), 2);
}

TEST(RecordFileRead, EveryLengthInTheHeader) {
  const TempFileC file;
  for (unsigned length = 0; length <= 0xFFFF; length += length < 521 ? 1 : 0xFFFF - 521) {
    SCOPED_TRACE(length);
    ByteVector bytes(std::max(length + 2, 600U), 0);
    bytes[0] = 0x9C;
    bytes[1] = 0xAE;
    bytes[4] = 113;
    RecordModel::PutU16(bytes, 2, length);
    if (length >= 5) TestSupport::Seal(bytes);
    file.Write(bytes);
    EXPECT_EQ(CheckRead(bytes, file.Info()), 17 <= length && length <= 498 ? 0U : 2U);
  }
}

TEST(RecordFileRead, ABadBlockLeavesTheBlocksBeforeItStored) {
  const ByteVector frame =
      FrameBuilderC().Times(1, 2, 3).U16(0x000C).F32(9.5F).U8(0).U8(2).Fill(12, 0).Frame();
  const TempFileC file(frame);
  EXPECT_EQ(CheckRead(frame, file.Info()), 2U);
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info = file.Info();
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 2U);
  EXPECT_EQ(measurement.GetTimeA(), (Vorlin::TimeC{1, 2}));
  EXPECT_EQ(measurement.GetTimeB(), (Vorlin::TimeC{0, 3}));
  EXPECT_TRUE(measurement.GetAntennaHeight().isEqual(GPSAntHeightImplC(9.5F, true, 0.0F)));
  EXPECT_EQ(measurement.GetExtraTimeCount(), 0);
}

TEST(RecordFileRead, MissingArgumentsAreRefused) {
  const TempFileC file(SmallFrame());
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info = file.Info();
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(nullptr, &info), 1U);
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, nullptr), 1U);
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(nullptr, nullptr), 1U);
  ExpectSameInfo(info, file.Info());
}

// --- Files that cannot be used ------------------------------------------------------------------

TEST(RecordFileOpen, AMissingFileIsRefused) {
  const TempFolderC folder;
  ExpectNoFile(TestSupport::InfoFor(folder.Path() / "missing.rec"), 1);
  ExpectNoFile(TestSupport::InfoFor(folder.Path() / "missing" / "file.rec"), 1);
  ExpectNoFile(GPSRecordFileInfo(), 1);  // "."
  EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(RecordFileOpen, AFolderIsRefused) {
  const TempFolderC folder;
  fs::create_directory(folder.Path() / "folder.rec");
  ExpectNoFile(TestSupport::InfoFor(folder.Path() / "folder.rec"), 1);
}

TEST(RecordFileOpen, AFileThatCannotBeWrittenIsRefused) {
  const TempFileC file(SmallFrame());
  fs::permissions(file.Path(), fs::perms::owner_read);
  // Root may write every file.
  if (!std::fstream(file.Path(), std::ios::in | std::ios::out)) ExpectNoFile(file.Info(), 1);
  fs::permissions(file.Path(), fs::perms::owner_all);
}

TEST(RecordFileOpen, TheNameIsPathDotExtension) {
  const ByteVector frame = SmallFrame();
  for (const char* const name : {"a.b", "with.dots.rec", ".rec", "x.1234567"}) {
    SCOPED_TRACE(name);
    const TempFileC file(frame, name);
    EXPECT_EQ(CheckRead(frame, file.Info()), 0U);
  }
  // The extension may be empty: the dot stays.
  const TempFileC file(frame, "file.");
  GPSRecordFileInfo info;
  const std::string path = (file.Path().parent_path() / "file").string();
  path.copy(info.path, path.size());
  EXPECT_EQ(CheckRead(frame, info), 0U);
}

TEST(RecordFileOpen, TextsThatFillTheirArraysEndThere) {
  const ByteVector frame = SmallFrame();
  const TempFolderC folder;
  std::string path = folder.Path().string() + "/";
  while (path.size() + 101 < 240) {  // the length of a single name is limited, too
    path += std::string(100, 'd') + "/";
    fs::create_directory(path);
  }
  path += std::string(240 - path.size(), 'f');
  std::ofstream(path + ".sevench", std::ios::binary)
      .write(reinterpret_cast<const char*>(frame.data()),
             static_cast<std::streamsize>(frame.size()));
  // A separate heap block, so that AddressSanitizer detects a read past the last array. The members
  // after `extension` and `path` contain no zero byte.
  const auto info = std::make_unique<GPSRecordFileInfo>();
  path.copy(info->path, 240);
  std::memcpy(info->extension, "sevench", 7);
  info->flags = 0x7F7F7F7F;
  GPSMeasDataImplC measurement;
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, info.get()), 0U);
  EXPECT_EQ(measurement.GetAntennaHeight().GetVerticalHeight(), 1.75F);
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, info.get()), 0U);
}

// --- Far offsets --------------------------------------------------------------------------------

TEST(RecordFileOffsets, OfTwoGigabytesAndMore) {
  const ByteVector frame = SmallFrame();
  const TempFileC file;
  for (const std::uint32_t offset : {0x7FFF'FFF0U, 0x8000'0000U, 0xFFFF'FFFFU}) {
    SCOPED_TRACE(offset);
    std::error_code failed;
    fs::resize_file(file.Path(), std::uint64_t{offset} + frame.size(), failed);  // sparse
    if (failed) GTEST_SKIP() << "no room for a sparse file: " << failed.message();
    std::fstream stream(file.Path(), std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(offset);
    stream.write(reinterpret_cast<const char*>(frame.data()),
                 static_cast<std::streamsize>(frame.size()));
    ASSERT_TRUE(stream.flush());

    GPSMeasDataImplC measurement;
    GPSRecordFileInfo info = file.Info(offset);
    ASSERT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 0U);
    EXPECT_EQ(info.number, 42);
    EXPECT_EQ(measurement.GetSetMask(), 0x000A);
    info.number = 43;
    ASSERT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, &info), 0U);
    info.number = 0;
    ASSERT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 0U);
    EXPECT_EQ(info.number, 43);
    EXPECT_EQ(fs::file_size(file.Path()), std::uint64_t{offset} + frame.size());
  }
}

TEST(RecordFileOffsets, AfterTheEndOfTheFile) {
  const ByteVector frame = SmallFrame();
  const TempFileC file(frame);
  const GPSMeasDataImplC measurement;
  for (const std::uint32_t offset :
       {static_cast<std::uint32_t>(frame.size()), 1'000'000U, 0x8000'0000U, 0xFFFF'FFFFU}) {
    ExpectReadChangesNothing(file.Info(offset), 0);
    GPSRecordFileInfo info = file.Info(offset);
    EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, &info), 1U);
  }
  EXPECT_EQ(file.Bytes(), frame);
}

// --- Writing ------------------------------------------------------------------------------------

// Writes and compares the whole file with the model. Returns the model's result.
std::uint32_t CheckWrite(const TempFileC& file, const ByteVector& bytes,
                         const GPSMeasDataImplC* measurement, GPSRecordFileInfo info) {
  file.Write(bytes);
  ByteVector expected = bytes;
  StoredFields stored;
  if (measurement != nullptr) stored = StoredIn(*measurement);
  const std::uint32_t result =
      RecordModel::Write(expected, measurement != nullptr ? &stored : nullptr, info);
  const GPSRecordFileInfo before = info;
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(measurement, &info), result);
  EXPECT_EQ(file.Bytes(), expected);
  ExpectSameInfo(info, before);
  if (measurement != nullptr) {
    EXPECT_EQ(StoredIn(*measurement), stored);
  }
  return result;
}

void SetName(GPSRecordFileInfo& info, const std::string& name) {
  std::memset(info.name, 0, sizeof(info.name));
  name.copy(info.name, sizeof(info.name));
}

ByteVector Surrounded(const ByteVector& frame, std::size_t before, std::size_t after) {
  ByteVector bytes(before, 0x5A);
  Append(bytes, frame);
  bytes.resize(bytes.size() + after, 0xA5);
  return bytes;
}

TEST(RecordFileWrite, EveryCombinationOfTheThreeBlocks) {
  std::mt19937_64 random(5);
  const TempFileC file;
  GPSMeasDataImplC slant;
  slant.SetAntennaHeight(GPSAntHeightImplC(2.0F, false, 0.12F));
  GPSMeasDataImplC vertical;
  vertical.SetAntennaHeight(GPSAntHeightImplC(1.25F, true, 0.5F));
  GPSMeasDataImplC tooShort;
  tooShort.SetAntennaHeight(GPSAntHeightImplC(0.1F, false, 0.2F));
  GPSMeasDataImplC absent = slant;
  absent.Reset();  // the height is stored, but its bit is not set
  const GPSMeasDataImplC* const measurements[] = {&slant, &vertical, &tooShort, &absent, nullptr};
  for (unsigned blocks = 0; blocks < 8; ++blocks) {
    for (const unsigned others : {0U, 0x3FF8U, 0xFFF8U, 0x0100U}) {
      const ByteVector frame = WellFormedFrame(blocks | others, 0x3FFF, random);
      for (const GPSMeasDataImplC* const measurement : measurements) {
        for (const std::uint32_t flags : {0U, 1U, 2U, 3U, 0xFFFF'FFFEU}) {
          SCOPED_TRACE(testing::Message() << blocks << ' ' << others << ' ' << flags);
          GPSRecordFileInfo info = file.Info(33);
          info.flags = flags;
          info.number = static_cast<std::int32_t>(random());
          SetName(info, "P\xC3\xBCnkt");
          EXPECT_EQ(CheckWrite(file, Surrounded(frame, 33, 70), measurement, info), 0U);
        }
      }
    }
  }
}

// The rules without the model: which bytes change, and their new values.
TEST(RecordFileWrite, ChangesOnlyKindNameNumberHeightAndChecksum) {
  const ByteVector frame = FrameBuilderC()
                               .Times()
                               .U16(0x0107)
                               .Fill(6, 0xEE)
                               .U8(9)
                               .Fill(5, 0xEE)
                               .NameUnits(u"before")
                               .I32(1)
                               .F32(5.0F)
                               .U8(9)
                               .U8(12)
                               .U8(9)
                               .Fill(3, 0xEE)
                               .Frame();
  const TempFileC file(frame);
  GPSMeasDataImplC measurement;
  measurement.SetAntennaHeight(GPSAntHeightImplC(5.0F, false, 3.0F));
  measurement.SetTimeA({1, 1});  // only the antenna height of a measurement is written
  measurement.SetTotalPair(99, 99);
  GPSRecordFileInfo info = file.Info();
  info.number = -2;
  info.flags = 0x1;
  SetName(info, "n\xC3\xA9w");
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, &info), 0U);
  const ByteVector expected = FrameBuilderC()
                                  .Times()
                                  .U16(0x0107)
                                  .Fill(6, 0xEE)
                                  .U8(0)
                                  .Fill(5, 0xEE)
                                  .NameUnits(u"n\u00e9w")
                                  .I32(-2)
                                  .F32(4.0F)  // vertical, although the kind says slant
                                  .U8(1)
                                  .U8(12)
                                  .U8(9)
                                  .Fill(3, 0xEE)
                                  .Frame();
  EXPECT_EQ(file.Bytes(), expected);
}

TEST(RecordFileWrite, WithoutASetAntennaHeightZeroAndVerticalIsWritten) {
  const TempFileC file(FrameBuilderC().Times().U16(4).F32(5.0F).U8(1).Frame());
  GPSMeasDataImplC measurement = FilledMeasurement();
  measurement.Reset();
  GPSRecordFileInfo info = file.Info();
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, &info), 0U);
  EXPECT_EQ(file.Bytes(), FrameBuilderC().Times().U16(4).F32(0.0F).U8(0).Frame());
}

TEST(RecordFileWrite, WithoutAMeasurementTheFrameIsTakenToHaveTheFirstTwoBlocks) {
  // The frame has neither block: at their positions are a vector and other bytes.
  FrameBuilderC b;
  b.Times().U16(0x0200).Fill(70, 0xEE);
  const TempFileC file(b.Frame());
  GPSRecordFileInfo info = file.Info();
  info.number = 0x01020304;
  SetName(info, "ab");
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(nullptr, &info), 0U);
  FrameBuilderC expected;
  expected.Times().U16(0x0200).Fill(6, 0xEE).U8(1).Fill(5, 0xEE).NameUnits(u"ab").I32(0x01020304);
  expected.Fill(20, 0xEE);
  EXPECT_EQ(file.Bytes(), expected.Frame());
}

TEST(RecordFileWrite, NamesOfEveryKind) {
  const TempFileC file;
  const ByteVector frame = FrameBuilderC().Times().U16(3).Fill(12, 1).Fill(38, 2).Frame();
  const GPSMeasDataImplC measurement;
  std::vector<std::string> names = {
      "",
      "a",
      std::string(16, 'x'),
      std::string(17, 'x'),
      std::string(18, 'x'),  // cut after 17 units
      std::string(48, 'x'),
      std::string(49, 'x'),  // without a terminator
      "ab\xFF"
      "cd",  // a fault: the units before it
      "ab\x80"
      "cd",
      "ab\xF0\x9F\x98\x80"
      "cd",
      "ab\xC3"
      "cd",
      std::string(48, 'x') + "\xC3",  // a sequence cut by the end of the field
      std::string("ab\0cd", 5),
      "\xED\xA0\xBD\xED\xB8\x80",  // surrogates are units like any other
      "\xC0\x80"
      "ab",  // overlong forms are accepted
  };
  for (const std::size_t length : {15U, 16U, 17U}) {
    std::string euros;
    for (std::size_t i = 0; i < length; ++i) euros += "\xE2\x82\xAC";
    names.push_back(euros);
  }
  for (const std::string& name : names) {
    SCOPED_TRACE(testing::PrintToString(name));
    GPSRecordFileInfo info = file.Info();
    SetName(info, name);
    EXPECT_EQ(CheckWrite(file, frame, &measurement, info), 0U);
  }
  std::mt19937_64 random(6);
  for (int round = 0; round < 2000; ++round) {
    GPSRecordFileInfo info = file.Info();
    for (char& c : info.name) {
      constexpr unsigned char kBytes[] = {'a', 'b', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0x7F};
      c = static_cast<char>(random() % 16 != 0 ? kBytes[random() % 8] : random());
    }
    ASSERT_EQ(CheckWrite(file, frame, nullptr, info), 0U);
    ASSERT_FALSE(testing::Test::HasFailure());
  }
}

// Frames in which the positions of the patches are after the frame or overlap its checksum.
TEST(RecordFileWrite, NoPatchLeavesAShortFrame) {
  std::mt19937_64 random(7);
  const TempFileC file;
  GPSMeasDataImplC measurement;
  measurement.SetAntennaHeight(GPSAntHeightImplC(2.0F, false, 0.5F));
  for (unsigned length = 5; length <= 80; ++length) {
    for (unsigned flags = 0; flags < 8; ++flags) {
      for (const GPSMeasDataImplC* const with :
           {&measurement, static_cast<GPSMeasDataImplC*>(nullptr)}) {
        SCOPED_TRACE(testing::Message() << length << ' ' << flags);
        ByteVector frame = FrameBuilderC().Noise(length - 5, random).Frame();
        ASSERT_EQ(frame.size(), length + 2);
        if (length >= 17) {
          RecordModel::PutU16(frame, 15, flags);
          TestSupport::Seal(frame);
        }
        GPSRecordFileInfo info = file.Info(11);
        info.number = -1;
        SetName(info, "a name of 17 char");
        EXPECT_EQ(CheckWrite(file, Surrounded(frame, 11, 100), with, info), 0U);
      }
    }
  }
}

// With a length of 15 the flags word is the checksum, with 16 half of it.
TEST(RecordFileWrite, FramesTooShortForAFlagsWord) {
  const TempFileC file;
  const GPSMeasDataImplC measurement = FilledMeasurement();
  for (unsigned value = 0; value < 256; ++value) {
    for (const std::size_t payload : {8U, 9U, 10U, 11U, 12U}) {
      const ByteVector frame = TestSupport::FrameOf(payload, value);
      GPSRecordFileInfo info = file.Info(3);
      SetName(info, "name");
      EXPECT_EQ(CheckWrite(file, Surrounded(frame, 3, 100), &measurement, info), 0U);
    }
  }
}

// A frame truncated by the end of the file is not patched, but written whole.
TEST(RecordFileWrite, FramesThatTheEndOfTheFileCuts) {
  std::mt19937_64 random(8);
  const TempFileC file;
  const ByteVector frame = Surrounded(WellFormedFrame(0x3FFF, 0x3FFF, random), 9, 0);
  const GPSMeasDataImplC measurement = FilledMeasurement();
  for (std::size_t size = 0; size <= frame.size(); ++size) {
    SCOPED_TRACE(size);
    const ByteVector cut(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size));
    GPSRecordFileInfo info = file.Info(9);
    SetName(info, "name");
    EXPECT_EQ(CheckWrite(file, cut, &measurement, info), size < 9 + 5 ? 1U : 0U);
    if (size >= 9 + 5) {
      const ByteVector whole = file.Bytes();
      EXPECT_EQ(whole.size(), frame.size());
      CheckRead(whole, info);  // the checksum is correct; the zeros may or may not form blocks
    }
  }
}

TEST(RecordFileWrite, ATruncatedFrameHasZerosAfterTheCutAndACorrectChecksum) {
  const ByteVector frame = FrameBuilderC().Times().U16(0x0004).F32(5.0F).U8(1).Frame();
  const TempFileC file(ByteVector(frame.begin(), frame.begin() + 20));
  const GPSMeasDataImplC measurement = FilledMeasurement();
  GPSRecordFileInfo info = file.Info();
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, &info), 0U);
  ByteVector expected(frame.begin(), frame.begin() + 20);
  expected.resize(frame.size());
  TestSupport::Seal(expected);
  EXPECT_EQ(file.Bytes(), expected);
}

TEST(RecordFileWrite, BadFramesAreLeftAsTheyAre) {
  const ByteVector frame = SmallFrame();
  const TempFileC file;
  const GPSMeasDataImplC measurement = FilledMeasurement();
  for (std::size_t at = 0; at < frame.size(); ++at) {
    for (const unsigned step : {1U, 0x80U}) {
      SCOPED_TRACE(at);
      ByteVector changed = Surrounded(frame, 5, 600);
      changed[5 + at] = static_cast<std::uint8_t>(changed[5 + at] + step);
      EXPECT_EQ(CheckWrite(file, changed, &measurement, file.Info(5)), 2U);
      EXPECT_EQ(CheckWrite(file, changed, nullptr, file.Info(5)), 2U);
      EXPECT_EQ(file.Bytes(), changed);
    }
  }
}

TEST(RecordFileWrite, EveryLengthInTheHeader) {
  const TempFileC file;
  const GPSMeasDataImplC measurement = FilledMeasurement();
  for (unsigned length = 0; length <= 0xFFFF; length += length < 521 ? 1 : 0xFFFF - 521) {
    SCOPED_TRACE(length);
    ByteVector bytes(std::max(length + 2, 600U), 0);
    bytes[0] = 0x9C;
    bytes[1] = 0xAE;
    bytes[4] = 113;
    RecordModel::PutU16(bytes, 2, length);
    if (length >= 5) TestSupport::Seal(bytes);
    if (length >= 17) bytes[15] = 7;
    if (length >= 5) TestSupport::Seal(bytes);
    EXPECT_EQ(CheckWrite(file, bytes, &measurement, file.Info()),
              5 <= length && length <= 498 ? 0U : 2U);
  }
}

TEST(RecordFileWrite, AMissingInfoIsRefused) {
  const GPSMeasDataImplC measurement;
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement, nullptr), 1U);
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(nullptr, nullptr), 1U);
}

TEST(RecordFileWrite, WhatIsWrittenIsReadBack) {
  std::mt19937_64 random(9);
  const TempFileC file;
  for (int round = 0; round < 200; ++round) {
    file.Write(WellFormedFrame(0x0007 | static_cast<unsigned>(random() & 0xFFFF), 0x3FFF, random));
    GPSMeasDataImplC before;
    GPSRecordFileInfo info = file.Info();
    ASSERT_EQ(GPSRecordFileC::ReadGPSMeasData(&before, &info), 0U);
    GPSMeasDataImplC changed = before;
    changed.SetAntennaHeight(GPSAntHeightImplC(static_cast<float>(round), true, 0.0F));
    info.number = round;
    info.flags = round % 2 == 0 ? GPSRecordFileInfo::kKindZero : 0;
    SetName(info, "point " + std::to_string(round));
    ASSERT_EQ(GPSRecordFileC::WriteGPSMeasData(&changed, &info), 0U);
    GPSMeasDataImplC after;
    GPSRecordFileInfo read = file.Info();
    ASSERT_EQ(GPSRecordFileC::ReadGPSMeasData(&after, &read), 0U);
    EXPECT_EQ(StoredIn(after), StoredIn(changed));
    EXPECT_EQ(read.number, round);
    EXPECT_EQ(std::string(read.name), "point " + std::to_string(round));
    EXPECT_EQ(read.flags, round % 2 == 0 ? 1U : 2U);
  }
}

}  // namespace
