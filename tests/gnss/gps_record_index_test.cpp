#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_index.h>

#include "tests/gnss/record_model.h"
#include "tests/gnss/record_pieces.h"
#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using SDI::GPSRecordEntry;
using SDI::GPSRecordIndexC;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::FrameOf;
using TestSupport::Piece;
using TestSupport::TempFileC;
using TestSupport::TempFolderC;

// The entries that `index` finds in `bytes`. Checks that the bytes of each record are those at its
// offset.
std::vector<GPSRecordEntry> Walk(GPSRecordIndexC& index, const ByteVector& bytes) {
  EXPECT_TRUE(index.IsOpen());
  EXPECT_EQ(index.GetFileSize(), bytes.size());
  EXPECT_TRUE(index.GetBytes().empty());
  std::vector<GPSRecordEntry> entries;
  for (GPSRecordEntry entry; index.Next(entry);) {
    entries.push_back(entry);
    EXPECT_EQ(index.GetBytes().size(), entry.isGap ? 0 : entry.size);
    if (!std::equal(index.GetBytes().begin(), index.GetBytes().end(),
                    bytes.begin() + static_cast<std::ptrdiff_t>(entry.offset))) {
      ADD_FAILURE() << "not the bytes at " << entry.offset;
    }
  }
  EXPECT_FALSE(index.HasFailed());
  EXPECT_TRUE(index.GetBytes().empty());
  GPSRecordEntry untouched{1, 2, true, 3};
  EXPECT_FALSE(index.Next(untouched));  // still at the end
  EXPECT_EQ(untouched, (GPSRecordEntry{1, 2, true, 3}));
  return entries;
}

// The entries of a file with the bytes `bytes`. Checks that they equal those of the bytes in
// memory.
std::vector<GPSRecordEntry> WalkFile(const TempFileC& file, const ByteVector& bytes) {
  file.Write(bytes);
  GPSRecordIndexC index(file.Path().string().c_str());
  const auto entries = Walk(index, bytes);
  GPSRecordIndexC inMemory(bytes);
  EXPECT_EQ(Walk(inMemory, bytes), entries);
  return entries;
}

void ExpectAsTheModel(const TempFileC& file, const ByteVector& bytes) {
  const auto entries = WalkFile(file, bytes);
  ASSERT_EQ(entries, RecordModel::Walk(bytes));
  std::uint64_t covered = 0;
  for (const GPSRecordEntry& entry : entries) {
    ASSERT_EQ(entry.offset, covered);
    covered += entry.size;
  }
  ASSERT_EQ(covered, bytes.size());
}

TEST(RecordIndex, RandomFilesAsTheModelDoes) {
  std::mt19937_64 random(20260101);
  const TempFileC file;
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(round);
    ByteVector bytes;
    for (std::size_t i = random() % 20; i > 0; --i) Append(bytes, Piece(random, 600));
    ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(file, bytes));
  }
}

TEST(RecordIndex, LongRandomFilesAsTheModelDoes) {
  std::mt19937_64 random(20260102);
  const TempFileC file;
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    ByteVector bytes;
    while (bytes.size() < 1'200'000) Append(bytes, Piece(random, 65531));
    ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(file, bytes));
  }
}

TEST(RecordIndex, AFileCutAnywhereAsTheModelDoes) {
  std::mt19937_64 random(20260103);
  const TempFileC file;
  ByteVector bytes;
  while (bytes.size() < 700) Append(bytes, Piece(random, 100));
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    SCOPED_TRACE(size);
    const ByteVector cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(file, cut));
  }
}

TEST(RecordIndex, AnyByteDamagedAsTheModelDoes) {
  const TempFileC file;
  ByteVector bytes;
  for (const unsigned type : {1U, 113U, 42U}) Append(bytes, FrameOf(15, type, type));
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (const unsigned step : {1U, 0x6FU, 0xFFU}) {
      ByteVector damaged = bytes;
      damaged[at] = static_cast<std::uint8_t>(damaged[at] + step);
      ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel(file, damaged));
    }
  }
}

TEST(RecordIndex, ListsRecordsAndTheGapsBetweenThem) {
  ByteVector bytes(3, 0x11);
  Append(bytes, FrameOf(20));
  Append(bytes, FrameOf(700, 1, 42));
  Append(bytes, {0x9C, 0xAE});
  const std::vector<GPSRecordEntry> expected = {
      {0, 3, true, 0}, {3, 27, false, 113}, {30, 707, false, 42}, {737, 2, true, 0}};
  EXPECT_EQ(WalkFile(TempFileC(), bytes), expected);
}

TEST(RecordIndex, ARecordInsideAnotherIsNotListed) {
  FrameBuilderC outer;
  for (const std::uint8_t byte : FrameOf(20)) outer.U8(byte);
  const std::vector<GPSRecordEntry> whole = {{0, 34, false, 42}};
  EXPECT_EQ(WalkFile(TempFileC(), outer.Frame(42)), whole);
  ByteVector damaged = outer.Frame(42);
  damaged.back() ^= 1;
  const std::vector<GPSRecordEntry> inner = {
      {0, 5, true, 0}, {5, 27, false, 113}, {32, 2, true, 0}};
  EXPECT_EQ(WalkFile(TempFileC(), damaged), inner);
}

TEST(RecordIndex, EmptyAndTinyFiles) {
  const TempFileC file;
  EXPECT_TRUE(WalkFile(file, {}).empty());
  for (unsigned value = 0; value < 256; ++value) {
    const std::vector<GPSRecordEntry> gap = {{0, 1, true, 0}};
    EXPECT_EQ(WalkFile(file, {static_cast<std::uint8_t>(value)}), gap);
  }
  const std::vector<GPSRecordEntry> shortest = {{0, 7, false, 9}};
  EXPECT_EQ(WalkFile(file, FrameOf(0, 0, 9)), shortest);
}

TEST(RecordIndex, EveryLengthFromTheShortestToTheLongest) {
  const TempFileC file;
  ByteVector bytes;
  std::vector<GPSRecordEntry> expected;
  for (std::size_t length = 5; length <= 0xFFFF; length += length < 600 ? 1 : 9283) {
    expected.push_back({bytes.size(), length + 2, false, 113});
    Append(bytes, FrameOf(length - 5, 0x9C));
  }
  expected.push_back({bytes.size(), 0x10001, false, 113});
  Append(bytes, FrameOf(0xFFFF - 5, 0x9C));
  expected.push_back({bytes.size(), 0x10001, false, 113});
  Append(bytes, FrameOf(0xFFFF - 5, 0xFF));
  const auto entries = WalkFile(file, bytes);
  EXPECT_EQ(entries, expected);
  for (const GPSRecordEntry& entry : entries) EXPECT_EQ(entry.IsMeasurement(), entry.size <= 500);
}

TEST(RecordIndex, LengthsBelow5AreNotRecords) {
  for (unsigned length = 0; length < 5; ++length) {
    ByteVector bytes(20, 0);
    bytes[0] = 0x9C;
    bytes[1] = 0xAE;
    bytes[2] = static_cast<std::uint8_t>(length);
    const std::vector<GPSRecordEntry> gap = {{0, 20, true, 0}};
    EXPECT_EQ(WalkFile(TempFileC(), bytes), gap);
  }
}

TEST(RecordEntry, IsAMeasurementByItsTypeAndSize) {
  EXPECT_TRUE((GPSRecordEntry{0, 7, false, 113}).IsMeasurement());
  EXPECT_TRUE((GPSRecordEntry{0, 500, false, 113}).IsMeasurement());
  EXPECT_FALSE((GPSRecordEntry{0, 501, false, 113}).IsMeasurement());
  EXPECT_FALSE((GPSRecordEntry{0, 100, false, 112}).IsMeasurement());
  EXPECT_FALSE((GPSRecordEntry{0, 100, true, 113}).IsMeasurement());
}

// The longest records extend across every multiple of the block sizes that a walk reads.
TEST(RecordIndex, LongRecordsAtEveryPlaceInAFileOfSeveralMegabytes) {
  ByteVector bytes;
  std::vector<GPSRecordEntry> expected;
  for (unsigned i = 0; i < 60; ++i) {
    expected.push_back({bytes.size(), 1 + i, true, 0});
    Append(bytes, ByteVector(1 + i, 0x9C));
    expected.push_back({bytes.size(), 0x10001 - i, false, 7});
    Append(bytes, FrameOf(0xFFFF - 5 - i, i, 7));
  }
  EXPECT_EQ(WalkFile(TempFileC(), bytes), expected);
}

// The longest record just fits, or just does not fit, after the part of a block that was walked.
TEST(RecordIndex, TheLongestRecordAtTheEndOfWhatIsReadAtOnce) {
  const ByteVector longest = FrameOf(0xFFFF - 5, 1, 7);
  const TempFileC file;
  for (const std::size_t atOnce : {128U * 1024U, 256U * 1024U, 512U * 1024U}) {
    for (std::size_t gap = atOnce - 0x10001 - 4; gap <= atOnce - 0x10001 + 4; ++gap) {
      ByteVector bytes(gap, 0);
      Append(bytes, longest);
      bytes.resize(bytes.size() + 10, 0);
      const std::vector<GPSRecordEntry> expected = {
          {0, gap, true, 0}, {gap, 0x10001, false, 7}, {gap + 0x10001, 10, true, 0}};
      EXPECT_EQ(WalkFile(file, bytes), expected);
    }
  }
}

TEST(RecordIndex, AGapOfManyWindowsIsOneEntry) {
  ByteVector bytes(3'000'000, 0x9C);
  Append(bytes, FrameOf(20));
  const std::vector<GPSRecordEntry> expected = {{0, 3'000'000, true, 0},
                                                {3'000'000, 27, false, 113}};
  EXPECT_EQ(WalkFile(TempFileC(), bytes), expected);
}

// Every second byte begins a header of the longest record. A walk that added the bytes of each
// would take hours.
TEST(RecordIndex, AFileFullOfMagicsTakesLinearTime) {
  ByteVector bytes;
  while (bytes.size() < 2'000'000) Append(bytes, {0x9C, 0xAE});
  const std::vector<GPSRecordEntry> gap = {{0, bytes.size(), true, 0}};
  EXPECT_EQ(WalkFile(TempFileC(), bytes), gap);
  ByteVector longest;
  while (longest.size() < 2'000'000) Append(longest, {0x9C, 0xAE, 0xFF, 0xFF, 113});
  const std::vector<GPSRecordEntry> one = {{0, longest.size(), true, 0}};
  EXPECT_EQ(WalkFile(TempFileC(), longest), one);
}

TEST(RecordIndex, AMissingFileHasNoEntries) {
  const TempFolderC folder;
  for (const std::string& name : {(folder.Path() / "missing.rec").string(), std::string()}) {
    GPSRecordIndexC index(name.c_str());
    GPSRecordEntry entry;
    EXPECT_FALSE(index.IsOpen());
    EXPECT_FALSE(index.HasFailed());
    EXPECT_EQ(index.GetFileSize(), 0U);
    EXPECT_FALSE(index.Next(entry));
    EXPECT_TRUE(index.GetBytes().empty());
  }
  GPSRecordIndexC nameless(static_cast<const char*>(nullptr));
  GPSRecordEntry entry;
  EXPECT_FALSE(nameless.IsOpen());
  EXPECT_FALSE(nameless.Next(entry));
}

TEST(RecordIndex, BytesInMemoryAreNotCopied) {
  const ByteVector bytes = FrameOf(20);
  GPSRecordIndexC index(bytes);
  GPSRecordEntry entry;
  ASSERT_TRUE(index.Next(entry));
  EXPECT_EQ(index.GetBytes().data(), bytes.data());
  GPSRecordIndexC none(std::span<const std::uint8_t>{});
  EXPECT_TRUE(none.IsOpen());
  EXPECT_FALSE(none.Next(entry));
}

TEST(RecordIndex, ReportsThatReadingFailed) {
  const TempFolderC folder;
  GPSRecordIndexC index(folder.Path().string().c_str());
  GPSRecordEntry entry;
  EXPECT_FALSE(index.IsOpen());
  EXPECT_EQ(index.GetFileSize(), 0U);
  EXPECT_FALSE(index.Next(entry));
}

TEST(RecordIndex, NeedsNoWritePermission) {
  const TempFileC file(FrameOf(20));
  std::filesystem::permissions(file.Path(), std::filesystem::perms::owner_read);
  GPSRecordIndexC index(file.Path().string().c_str());
  GPSRecordEntry entry;
  EXPECT_TRUE(index.Next(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{0, 27, false, 113}));
}

}  // namespace
