#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>

#include "tests/gnss/record_model.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"
#include "tests/support/same_info.h"
#include "tests/support/temp_file.h"

namespace {

using SDI::GPSAppendOutcome;
using SDI::GPSEncodeOutcome;
using SDI::GPSEncodeResult;
using SDI::GPSMeasDataImplC;
using SDI::GPSRecordField;
using SDI::GPSRecordFileInfo;
using SDI::GPSRecordReaderC;
using SDI::GPSRecordWriterC;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::FrameOf;
using TestSupport::StoredIn;
using TestSupport::TempFileC;
using TestSupport::TempFolderC;

using Frame = std::array<std::uint8_t, 500>;

// --- Encoding

TEST(RecordWriterEncode, GivesTheRecordsOfTheSamplesAgain) {
  for (const char* const name : {"valley_drive.rec", "desert_highway.rec"}) {
    const std::string path = std::string(SURVEYDATA_TEST_DATA) + name;
    std::size_t count = 0;
    for (const SDI::GPSRecordC& record : GPSRecordReaderC(path.c_str())) {
      SCOPED_TRACE(testing::Message() << name << " at " << record.GetOffset());
      const GPSMeasDataImplC& measurement = *record.GetMeasurement().GetImpl();
      Frame frame;
      const GPSEncodeResult encoded =
          GPSRecordWriterC::Encode(measurement, record.GetInfo(), frame);
      ASSERT_TRUE(encoded.IsDone()) << SDI::TextOf(encoded.field);
      EXPECT_LE(encoded.size, record.GetSize());
      GPSMeasDataImplC again;
      GPSRecordFileInfo info;
      ASSERT_TRUE(
          GPSRecordReaderC::Decode(std::span(frame).first(encoded.size), again, info).IsDone());
      ASSERT_EQ(StoredIn(again), StoredIn(measurement));
      TestSupport::ExpectSameInfo(info, record.GetInfo());
      ++count;
    }
    EXPECT_GE(count, 380U);
  }
}

TEST(RecordWriterEncode, RefusesAFieldThatAFrameCannotStore) {
  GPSMeasDataImplC measurement;
  measurement.SetStatusBit2();
  GPSRecordFileInfo info;
  Frame frame;
  EXPECT_EQ(GPSRecordWriterC::Encode(measurement, info, frame),
            (GPSEncodeResult{GPSEncodeOutcome::kNoPlace, GPSRecordField::kStatusBit2, 0}));
  GPSMeasDataImplC other;
  std::strcpy(info.name, "eighteen letters..");
  EXPECT_EQ(GPSRecordWriterC::Encode(other, info, frame),
            (GPSEncodeResult{GPSEncodeOutcome::kNoPlace, GPSRecordField::kName, 0}));
}

// Three texts fill the 498 bytes before the checksum completely; one more unit is refused.
TEST(RecordWriterEncode, RefusesTheFieldThatMakesTheFrameTooLong) {
  GPSMeasDataImplC measurement;
  measurement.SetTextA(std::u16string(79, u'a').c_str());
  measurement.SetTextB(std::u16string(79, u'b').c_str());
  measurement.SetTextC(std::u16string(78, u'c').c_str());
  Frame frame;
  const GPSEncodeResult fits = GPSRecordWriterC::Encode(measurement, {}, frame);
  EXPECT_EQ(fits, (GPSEncodeResult{GPSEncodeOutcome::kDone, GPSRecordField::kNone, 499}));
  measurement.SetTextC(std::u16string(79, u'c').c_str());
  EXPECT_EQ(GPSRecordWriterC::Encode(measurement, {}, frame),
            (GPSEncodeResult{GPSEncodeOutcome::kTooLong, GPSRecordField::kTextC, 0}));
}

// --- Appending

TEST(RecordWriterAppend, AppendsRecordsAndCreatesTheFile) {
  const TempFolderC folder;
  const std::string name = (folder.Path() / "new.rec").string();
  ByteVector expected;
  for (unsigned week = 1; week <= 3; ++week) {
    ByteVector records = FrameBuilderC().Times(week).U16(0).Frame();
    Append(records, FrameOf(2000, week, 42));
    EXPECT_EQ(GPSRecordWriterC::Append(name.c_str(), records), GPSAppendOutcome::kDone);
    Append(expected, records);
    EXPECT_EQ(TestSupport::ReadBytes(name), expected);
  }
  std::vector<unsigned> weeks;
  for (const SDI::GPSRecordC& record : GPSRecordReaderC(name.c_str())) {
    weeks.push_back(record.GetMeasurement().GetTimeA().week);
  }
  EXPECT_EQ(weeks, (std::vector<unsigned>{1, 2, 3}));
}

TEST(RecordWriterAppend, NoRecordsChangeNothing) {
  const ByteVector before = FrameOf(20);
  const TempFileC file(before);
  EXPECT_EQ(GPSRecordWriterC::Append(file.Path().string().c_str(), {}), GPSAppendOutcome::kDone);
  EXPECT_EQ(file.Bytes(), before);
}

TEST(RecordWriterAppend, RefusesWhatIsNotWholeRecords) {
  const ByteVector before = FrameOf(20);
  const TempFileC file(before);
  ByteVector cut = FrameOf(20);
  cut.pop_back();
  ByteVector wrong = FrameOf(20);
  wrong.back() ^= 1;
  ByteVector after = FrameOf(20);
  after.push_back(0);
  ByteVector ahead{0x9C};
  Append(ahead, FrameOf(20));
  for (const ByteVector& records : {cut, wrong, after, ahead, ByteVector{0x9C}}) {
    EXPECT_EQ(GPSRecordWriterC::Append(file.Path().string().c_str(), records),
              GPSAppendOutcome::kNoRecords);
    EXPECT_EQ(file.Bytes(), before);
  }
  // Not even an empty file is created.
  const TempFolderC folder;
  EXPECT_EQ(GPSRecordWriterC::Append((folder.Path() / "new.rec").string().c_str(), cut),
            GPSAppendOutcome::kNoRecords);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(RecordWriterAppend, AFileThatCannotBeCreated) {
  const TempFolderC folder;
  const ByteVector records = FrameOf(20);
  EXPECT_EQ(
      GPSRecordWriterC::Append((folder.Path() / "no" / "folder.rec").string().c_str(), records),
      GPSAppendOutcome::kNoSuchFile);
  EXPECT_EQ(GPSRecordWriterC::Append(nullptr, records), GPSAppendOutcome::kNoSuchFile);
  EXPECT_EQ(GPSRecordWriterC::Append("", records), GPSAppendOutcome::kNoSuchFile);
  const GPSAppendOutcome outcome =
      GPSRecordWriterC::Append(folder.Path().string().c_str(), records);  // a folder itself
  EXPECT_TRUE(outcome == GPSAppendOutcome::kCannotOpen ||
              outcome == GPSAppendOutcome::kNoPermission);
}

TEST(RecordWriterTexts, EveryValueHasItsOwnText) {
  const auto texts = [](auto first, auto last) {
    std::vector<std::string> all;
    using Enum = decltype(last);
    for (int i = static_cast<int>(first); i <= static_cast<int>(last); ++i) {
      all.emplace_back(SDI::TextOf(static_cast<Enum>(i)));
      EXPECT_FALSE(all.back().empty());
      EXPECT_NE(all.back(), "unknown");
    }
    EXPECT_STREQ(SDI::TextOf(static_cast<Enum>(static_cast<int>(last) + 1)), "unknown");
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
    return all.size();
  };
  EXPECT_EQ(texts(GPSRecordField::kTimeBWeek, GPSRecordField::kListBlock), 29U);
  EXPECT_EQ(texts(GPSEncodeOutcome::kDone, GPSEncodeOutcome::kTooLong), 3U);
  EXPECT_EQ(texts(GPSAppendOutcome::kDone, GPSAppendOutcome::kLeftOver), 7U);
  EXPECT_STREQ(SDI::TextOf(GPSRecordField::kHorizontalOffset), "horizontal offset");
}

}  // namespace
