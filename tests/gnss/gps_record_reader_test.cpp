#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <random>
#include <ranges>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "tests/gnss/reader_walks.h"
#include "tests/gnss/record_model.h"
#include "tests/gnss/record_pieces.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"
#include "tests/support/same_info.h"
#include "tests/support/temp_file.h"

namespace {

using ReaderWalks::List;
using ReaderWalks::Listed;
using SDI::GPSDamagedHeader;
using SDI::GPSMeasDataC;
using SDI::GPSMeasDataImplC;
using SDI::GPSReaderState;
using SDI::GPSRecordBlock;
using SDI::GPSRecordC;
using SDI::GPSRecordDamage;
using SDI::GPSRecordEntry;
using SDI::GPSRecordFileInfo;
using SDI::GPSRecordOutcome;
using SDI::GPSRecordReaderC;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::FrameOf;
using TestSupport::Piece;
using TestSupport::StoredFields;
using TestSupport::StoredIn;
using TestSupport::TempFileC;
using TestSupport::TempFolderC;

static_assert(std::input_iterator<GPSRecordReaderC::Iterator>);
static_assert(std::ranges::input_range<GPSRecordReaderC>);
static_assert(!std::is_copy_constructible_v<GPSRecordC>);
static_assert(!std::is_copy_constructible_v<GPSRecordReaderC>);

// A function that reads `bytes`, a few at a time.
GPSRecordReaderC::ReadAt Chunks(const ByteVector& bytes, std::size_t most) {
  return [&bytes, most](std::uint64_t offset, std::span<std::uint8_t> to) {
    const std::size_t left = bytes.size() - std::min<std::size_t>(offset, bytes.size());
    const std::size_t count = std::min({most, to.size(), left});
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), count, to.begin());
    return static_cast<std::ptrdiff_t>(count);
  };
}

class StreamC {
 public:
  explicit StreamC(const TempFileC& file) : file_(std::fopen(file.Path().string().c_str(), "rb")) {}
  StreamC(const StreamC&) = delete;
  StreamC& operator=(const StreamC&) = delete;
  ~StreamC() { std::fclose(file_); }
  std::FILE* Get() const { return file_; }

 private:
  std::FILE* file_;
};

// Runs `check` with readers of the same bytes from every kind of source.
template <class Check>
void ForEachSource(const TempFileC& file, const ByteVector& bytes, Check check) {
  file.Write(bytes);
  {
    SCOPED_TRACE("memory");
    GPSRecordReaderC reader(bytes);
    EXPECT_EQ(reader.GetSize(), bytes.size());
    check(reader);
  }
  {
    SCOPED_TRACE("file");
    GPSRecordReaderC reader(file.Path().string().c_str());
    EXPECT_EQ(reader.GetSize(), bytes.size());
    check(reader);
  }
  {
    SCOPED_TRACE("stream");
    const StreamC stream(file);
    GPSRecordReaderC reader(stream.Get());
    EXPECT_EQ(reader.GetSize(), 0U);
    check(reader);
  }
  {
    SCOPED_TRACE("function");
    GPSRecordReaderC reader(Chunks(bytes, 10'007), bytes.size());
    EXPECT_EQ(reader.GetSize(), bytes.size());
    check(reader);
  }
}

// The result of reading a frame by the model.
struct Expected {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  bool isDone = false;
  StoredFields fields;
  GPSRecordFileInfo info;
};

std::vector<Expected> ReadByTheModel(const ByteVector& bytes) {
  std::vector<Expected> all;
  for (const GPSRecordEntry& entry : RecordModel::Walk(bytes)) {
    if (!entry.IsMeasurement()) continue;
    Expected one{entry.offset, entry.size, false, {}, {}};
    one.info.offset = static_cast<std::uint32_t>(entry.offset);
    one.isDone = RecordModel::Read(bytes, one.fields, one.info) == 0;
    one.info.offset = 0;
    all.push_back(one);
  }
  return all;
}

void ExpectRecord(const GPSRecordC& record, const Expected& expected, const ByteVector& bytes) {
  EXPECT_EQ(record.GetOffset(), expected.offset);
  ASSERT_EQ(record.GetSize(), expected.size);
  EXPECT_EQ(record.IsDone(), expected.isDone);
  EXPECT_EQ(record.GetOutcome(),
            expected.isDone ? GPSRecordOutcome::kDone : GPSRecordOutcome::kBlockDoesNotFit);
  EXPECT_EQ(record.GetBlock() == GPSRecordBlock::kChecksum, expected.isDone);
  EXPECT_EQ(StoredIn(*record.GetMeasurement().GetImpl()), expected.fields);
  TestSupport::ExpectSameInfo(record.GetInfo(), expected.info);
  EXPECT_TRUE(std::ranges::equal(record.GetBytes(),
                                 std::span(bytes).subspan(expected.offset, expected.size)));
}

// Frames of every kind between pieces of every kind.
ByteVector MixedFile(std::mt19937_64& random, std::size_t pieces) {
  ByteVector bytes;
  for (; pieces > 0; --pieces) {
    if (random() % 2 == 0) {
      Append(bytes, Piece(random, 600));
    } else {
      const auto flags1 = static_cast<unsigned>(random() & 0x33FF);
      Append(bytes, TestSupport::WellFormedFrame(flags1, static_cast<unsigned>(random() & 0x3FFF),
                                                 random));
    }
  }
  return bytes;
}

TEST(RecordReader, GivesTheRecordsOfTheModelFromEverySource) {
  std::mt19937_64 random(20260120);
  const TempFileC file;
  std::size_t done = 0;
  std::size_t misfits = 0;
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    const ByteVector bytes = MixedFile(random, random() % 40);
    const auto expected = ReadByTheModel(bytes);
    for (const Expected& one : expected) ++(one.isDone ? done : misfits);
    ForEachSource(file, bytes, [&](GPSRecordReaderC& reader) {
      std::size_t count = 0;
      for (const GPSRecordC& record : reader) {
        ASSERT_LT(count, expected.size());
        ASSERT_NO_FATAL_FAILURE(ExpectRecord(record, expected[count++], bytes));
        EXPECT_EQ(reader.GetBytes().data(), record.GetBytes().data());
      }
      EXPECT_EQ(count, expected.size());
      EXPECT_EQ(reader.GetState(), GPSReaderState::kOpen);
      EXPECT_TRUE(reader.GetBytes().empty());
      EXPECT_FALSE(reader.Next());  // still at the end
    });
  }
  EXPECT_GT(done, 500U);
  EXPECT_GT(misfits, 300U);
}

TEST(RecordReader, ListsTheEntriesAndDamagedHeadersOfTheModelFromEverySource) {
  std::mt19937_64 random(20260121);
  const TempFileC file;
  std::array<std::size_t, 3> kinds = {};
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    ByteVector bytes = MixedFile(random, random() % 40);
    for (std::size_t flips = random() % 20; flips > 0 && !bytes.empty(); --flips) {
      bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1 + random() % 255);
    }
    bytes.resize(bytes.size() - std::min<std::size_t>(bytes.size(), random() % 200));
    const Listed expected{RecordModel::Walk(bytes), RecordModel::Damaged(bytes)};
    for (const auto& header : expected.damaged) ++kinds.at(static_cast<std::size_t>(header.damage));
    ForEachSource(file, bytes, [&](GPSRecordReaderC& reader) {
      const Listed listed = List(reader);
      ASSERT_EQ(listed.entries, expected.entries);
      ASSERT_EQ(listed.damaged, expected.damaged);
      EXPECT_EQ(reader.GetState(), GPSReaderState::kOpen);
    });
  }
  for (const std::size_t kind : kinds) EXPECT_GT(kind, 50U);
}

// Damage at the borders of blocks, whose fault only the next block of the file shows.
TEST(RecordReader, DamageAtTheBordersOfBlocks) {
  std::mt19937_64 random(20260122);
  const TempFileC file;
  ByteVector cut = FrameOf(493 - 10, 0x55);
  cut.resize(200);
  for (std::size_t before = 256 * 1024 - 520; before < 256 * 1024 + 20; before += 7) {
    SCOPED_TRACE(before);
    ByteVector bytes(before, 0x11);
    Append(bytes, cut);  // runs into the next record
    Append(bytes, FrameOf(20));
    ByteVector wrong = FrameOf(100, 1);
    wrong.back() ^= 1;
    Append(bytes, wrong);  // has a wrong checksum
    Append(bytes, cut);    // is cut by the end
    const Listed expected{RecordModel::Walk(bytes), RecordModel::Damaged(bytes)};
    ASSERT_EQ(expected.damaged.size(), 3U);
    ForEachSource(file, bytes, [&](GPSRecordReaderC& reader) {
      const Listed listed = List(reader);
      ASSERT_EQ(listed.entries, expected.entries);
      ASSERT_EQ(listed.damaged, expected.damaged);
    });
  }
}

// A header whose frame would extend past the end of the source, although a record follows.
TEST(RecordReader, AHeaderThatReachesBeyondTheEndIsCutEvenBeforeARecord) {
  ByteVector bytes = FrameOf(400, 1);
  bytes.resize(100);
  Append(bytes, FrameOf(20));
  GPSRecordReaderC reader(bytes);
  const std::vector<GPSDamagedHeader> expected = {{0, 407, GPSRecordDamage::kCutByTheEnd}};
  EXPECT_EQ(List(reader).damaged, expected);
}

TEST(RecordReader, AHeaderWithoutRoomForTimesAndFlagsIsNotDamage) {
  for (const unsigned length : {5U, 16U, 17U, 498U, 499U}) {
    ByteVector bytes{0x9C, 0xAE, static_cast<std::uint8_t>(length & 0xFF),
                     static_cast<std::uint8_t>(length >> 8), 113};
    bytes.resize(600, 0);
    GPSRecordReaderC reader(bytes);
    EXPECT_EQ(List(reader).damaged.size(), 17 <= length && length <= 498 ? 1U : 0U) << length;
  }
}

// The largest possible number of headers before the fault of the first one is certain.
TEST(RecordReader, HeadersEveryFiveBytes) {
  ByteVector bytes;
  for (int i = 0; i < 3000; ++i) Append(bytes, {0x9C, 0xAE, 0xF2, 0x01, 113});
  GPSRecordReaderC reader(bytes);
  const Listed listed = List(reader);
  EXPECT_EQ(listed.damaged.size(), 3000U);
  EXPECT_EQ(listed.damaged, RecordModel::Damaged(bytes));
}

TEST(RecordReader, DamageIsReportedOnRequestOnly) {
  ByteVector wrong = FrameOf(100, 1);
  wrong.back() ^= 1;
  ByteVector bytes;
  for (int i = 0; i < 3; ++i) {
    Append(bytes, wrong);
    Append(bytes, FrameOf(20));
  }
  GPSRecordReaderC reader(bytes);
  std::vector<std::uint64_t> offsets;
  EXPECT_TRUE(reader.Next());
  reader.SetReportDamaged(
      [&](const GPSDamagedHeader& header) { offsets.push_back(header.offset); });
  EXPECT_TRUE(reader.Next());
  reader.SetReportDamaged(nullptr);
  EXPECT_TRUE(reader.Next());
  EXPECT_EQ(offsets, (std::vector<std::uint64_t>{134}));
}

TEST(RecordReader, ARecordIsInFreshData) {
  FrameBuilderC full;
  full.Times().U16(0x2046).NameUnits(u"first").I32(7).F32(1.5F).U8(1).U8(0).U16(1).U16(2);
  full.U16(0x2009).U8(1).Units(u"text").U16(0).U16(9).U8(2).U16(3).U16(4);
  ByteVector bytes = full.Frame();
  Append(bytes, FrameBuilderC().I32(0).I32(0).U16(0).U16(0).Frame());
  GPSRecordReaderC reader(bytes);
  ASSERT_TRUE(reader.Next());
  EXPECT_TRUE(reader.GetRecord().IsDone());
  EXPECT_STREQ(reader.GetRecord().GetInfo().name, "first");
  EXPECT_TRUE(reader.GetRecord().GetMeasurement().GetImpl()->HasListBlock());
  // Changes by the caller, and public objects of parts, are discarded with the next record.
  GPSMeasDataImplC& impl = *reader.GetRecord().GetMeasurement().GetImpl();
  impl.SetTextB(u"changed");
  impl.SetTimeB({2200, 5});
  const API::BaseC* const antenna = impl.GetAntennaHeight().GetBase();
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.GetRecord().GetMeasurement().GetImpl(), &impl);
  EXPECT_EQ(StoredIn(impl), StoredFields());
  EXPECT_EQ(impl.GetAntennaHeight().GetBase(), antenna);
  TestSupport::ExpectSameInfo(reader.GetRecord().GetInfo(), {});
}

TEST(RecordReader, ACopyOfAMeasurementIsKept) {
  ByteVector bytes = FrameBuilderC().Times(1).U16(0).Frame();
  Append(bytes, FrameBuilderC().Times(2).U16(0).Frame());
  std::vector<GPSMeasDataC> kept;
  for (const GPSRecordC& record : GPSRecordReaderC(bytes)) kept.push_back(record.GetMeasurement());
  ASSERT_EQ(kept.size(), 2U);
  EXPECT_EQ(kept[0].GetTimeA().week, 1U);
  EXPECT_EQ(kept[1].GetTimeA().week, 2U);
}

TEST(RecordReader, ALoopThatWasLeftContinuesWithTheNextRecord) {
  ByteVector bytes;
  for (unsigned week = 1; week <= 3; ++week) {
    Append(bytes, FrameBuilderC().Times(week).U16(0).Frame());
  }
  GPSRecordReaderC reader(bytes);
  for (const GPSRecordC& record : reader) {
    EXPECT_EQ(record.GetMeasurement().GetTimeA().week, 1U);
    break;
  }
  std::vector<unsigned> weeks;
  for (const GPSRecordC& record : reader) {
    weeks.push_back(record.GetMeasurement().GetTimeA().week);
  }
  EXPECT_EQ(weeks, (std::vector<unsigned>{2, 3}));
}

TEST(RecordReader, NextAndNextEntryShareThePosition) {
  ByteVector bytes(3, 0x11);
  Append(bytes, FrameOf(20));
  Append(bytes, FrameOf(700, 1, 42));
  bytes.resize(bytes.size() + 2, 0x22);
  Append(bytes, FrameOf(20));
  GPSRecordReaderC reader(bytes);
  GPSRecordEntry entry;
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{0, 3, true, 0}));
  EXPECT_TRUE(reader.GetBytes().empty());
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.GetRecord().GetOffset(), 3U);
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{30, 707, false, 42}));
  EXPECT_EQ(reader.GetBytes().size(), 707U);
  EXPECT_EQ(reader.GetRecord().GetOffset(), 3U);  // the measurement that was reached last
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{737, 2, true, 0}));
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{739, 27, false, 113}));
  EXPECT_EQ(reader.GetRecord().GetOffset(), 739U);
  EXPECT_EQ(reader.GetRecord().GetBytes().data(), reader.GetBytes().data());
  EXPECT_FALSE(reader.NextEntry(entry));
  EXPECT_FALSE(reader.Next());
}

TEST(RecordReader, WorksWithAlgorithmsOfRanges) {
  ByteVector bytes;
  for (unsigned week = 1; week <= 9; ++week) {
    Append(bytes, FrameBuilderC().Times(week).U16(0).Frame());
  }
  GPSRecordReaderC reader(bytes);
  const auto isLater = [](const GPSRecordC& r) { return r.GetMeasurement().GetTimeA().week > 3; };
  const auto found = std::ranges::find_if(reader, isLater);
  ASSERT_NE(found, reader.end());
  EXPECT_EQ(found->GetOffset(), 57U);
  EXPECT_EQ(std::ranges::count_if(reader, isLater), 5);
}

// --- Sources

TEST(RecordReader, ANameWithoutAFile) {
  const TempFolderC folder;
  const TempFileC file;
  for (const std::string& name : {(folder.Path() / "missing.rec").string(), std::string(),
                                  (folder.Path() / "no" / "folder.rec").string()}) {
    GPSRecordReaderC reader(name.c_str());
    GPSRecordEntry entry;
    EXPECT_EQ(reader.GetState(), GPSReaderState::kNoSuchFile);
    EXPECT_EQ(reader.GetSize(), 0U);
    EXPECT_FALSE(reader.Next());
    EXPECT_FALSE(reader.NextEntry(entry));
    EXPECT_EQ(reader.GetState(), GPSReaderState::kNoSuchFile);
  }
  GPSRecordReaderC nameless(static_cast<const char*>(nullptr));
  EXPECT_EQ(nameless.GetState(), GPSReaderState::kNoSuchFile);
  EXPECT_FALSE(nameless.Next());
}

TEST(RecordReader, ANullStreamOrFunction) {
  GPSRecordReaderC streamless(static_cast<std::FILE*>(nullptr));
  EXPECT_EQ(streamless.GetState(), GPSReaderState::kCannotOpen);
  EXPECT_FALSE(streamless.Next());
  GPSRecordReaderC functionless(GPSRecordReaderC::ReadAt(), 100);
  EXPECT_EQ(functionless.GetState(), GPSReaderState::kCannotOpen);
  EXPECT_FALSE(functionless.Next());
}

TEST(RecordReader, NeedsNoWritePermission) {
  const TempFileC file(FrameOf(20));
  std::filesystem::permissions(file.Path(), std::filesystem::perms::owner_read);
  GPSRecordReaderC reader(file.Path().string().c_str());
  EXPECT_TRUE(reader.Next());
}

TEST(RecordReader, AFolderCannotBeRead) {
  const TempFolderC folder;
  GPSRecordReaderC reader(folder.Path().string().c_str());
#if defined(_WIN32)
  EXPECT_EQ(reader.GetState(), GPSReaderState::kNoPermission);
#else
  EXPECT_EQ(reader.GetState(), GPSReaderState::kCannotOpen);
#endif
  EXPECT_EQ(reader.GetSize(), 0U);
  EXPECT_FALSE(reader.Next());
}

TEST(RecordReader, AStreamIsReadFromItsPosition) {
  ByteVector bytes(7, 0x11);
  Append(bytes, FrameOf(20));
  const TempFileC file(bytes);
  const StreamC stream(file);
  ASSERT_EQ(std::fgetc(stream.Get()), 0x11);
  GPSRecordReaderC reader(stream.Get());
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.GetRecord().GetOffset(), 6U);
  EXPECT_FALSE(reader.Next());
  EXPECT_EQ(std::ftell(stream.Get()), 34L);  // still open
}

TEST(RecordReader, AFunctionMayGiveOneByteAtATime) {
  std::mt19937_64 random(20260123);
  const ByteVector bytes = MixedFile(random, 30);
  GPSRecordReaderC reader(Chunks(bytes, 1), bytes.size());
  EXPECT_EQ(List(reader).entries, RecordModel::Walk(bytes));
}

TEST(RecordReader, AFunctionThatEndsBeforeItsSize) {
  const ByteVector bytes = FrameOf(20);
  GPSRecordReaderC reader(Chunks(bytes, 100), 1000);
  EXPECT_EQ(List(reader).entries, RecordModel::Walk(bytes));
  EXPECT_EQ(reader.GetState(), GPSReaderState::kOpen);
}

TEST(RecordReader, NothingIsReadBeyondTheSizeOfAFunction) {
  ByteVector bytes = FrameOf(20);
  const std::size_t size = bytes.size();
  Append(bytes, FrameOf(20));
  GPSRecordReaderC reader(Chunks(bytes, 1000), size);
  EXPECT_TRUE(reader.Next());
  EXPECT_FALSE(reader.Next());
}

TEST(RecordReader, AFunctionThatFailsEndsTheReading) {
  ByteVector bytes;
  while (bytes.size() < 600'000) Append(bytes, FrameOf(20));
  for (const std::ptrdiff_t answer : {std::ptrdiff_t{-1}, std::ptrdiff_t{1'000'000'000}}) {
    const auto read = Chunks(bytes, bytes.size());
    GPSRecordReaderC reader(
        [&](std::uint64_t offset, std::span<std::uint8_t> to) {
          return offset == 0 ? read(offset, to) : answer;
        },
        bytes.size());
    std::size_t count = 0;
    while (reader.Next()) ++count;
    EXPECT_EQ(reader.GetState(), GPSReaderState::kReadingFailed);
    EXPECT_EQ(count, 256U * 1024 / 27);  // those of the first block
    EXPECT_FALSE(reader.Next());
  }
}

// The body of a record that could not be read completely may contain frames, which are not records.
TEST(RecordReader, FramesInsideARecordThatCannotBeReadAreNotRecords) {
  const ByteVector first = FrameOf(20);
  ByteVector body;
  while (body.size() < 7'000) Append(body, FrameOf(29, 5));
  ByteVector bytes = first;
  FrameBuilderC outer;
  for (const std::uint8_t byte : body) outer.U8(byte);
  Append(bytes, outer.Frame(9));
  for (const std::size_t readable :
       {first.size() + 2, first.size() + 5, first.size() + 2'000, bytes.size() - 1}) {
    const auto read = Chunks(bytes, bytes.size());
    const auto fails = [&](std::uint64_t offset, std::span<std::uint8_t> to) -> std::ptrdiff_t {
      if (offset >= readable) return -1;
      return read(offset, to.first(std::min<std::size_t>(to.size(), readable - offset)));
    };
    GPSRecordReaderC reader(fails, bytes.size());
    reader.SetReportDamaged([](const GPSDamagedHeader& /*header*/) { ADD_FAILURE(); });
    GPSRecordEntry entry;
    ASSERT_TRUE(reader.NextEntry(entry));
    EXPECT_EQ(entry, (GPSRecordEntry{0, first.size(), false, 113}));
    EXPECT_FALSE(reader.NextEntry(entry)) << entry.offset;
    EXPECT_EQ(reader.GetState(), GPSReaderState::kReadingFailed);
    for (const std::uint64_t begin : {std::uint64_t{1}, std::uint64_t{first.size() + 100}}) {
      GPSRecordReaderC stretch(fails, bytes.size(), {begin, bytes.size()});
      EXPECT_FALSE(stretch.NextEntry(entry)) << begin;
      EXPECT_FALSE(stretch.Next());
      EXPECT_EQ(stretch.GetState(), GPSReaderState::kReadingFailed);
    }
  }
}

// The fault of the last header is unknown.
TEST(RecordReader, NoDamageIsReportedWhereReadingFailed) {
  ByteVector bytes = FrameOf(400, 1);
  bytes.resize(100);
  std::vector<GPSDamagedHeader> damaged;
  const auto read = Chunks(bytes, bytes.size());
  GPSRecordReaderC reader(
      [&](std::uint64_t offset, std::span<std::uint8_t> to) {
        return offset == 0 ? read(offset, to) : -1;
      },
      1000);
  EXPECT_TRUE(List(reader).damaged.empty());
  EXPECT_EQ(reader.GetState(), GPSReaderState::kReadingFailed);
}

TEST(RecordReader, AReaderContinuesAfterItsFunctionThrows) {
  ByteVector bytes;
  while (bytes.size() < 600'000) Append(bytes, FrameOf(20));
  int calls = 0;
  const auto read = Chunks(bytes, bytes.size());
  for (const SDI::GPSRecordStretch& stretch :
       {SDI::GPSRecordStretch(), SDI::GPSRecordStretch{300'000, 600'000}}) {
    GPSRecordReaderC reader(
        [&](std::uint64_t offset, std::span<std::uint8_t> to) {
          if (calls++ % 2 == 0) throw std::runtime_error("now and then");
          return read(offset, to);
        },
        bytes.size(), stretch);
    std::size_t count = 0;
    int thrown = 0;
    for (bool isLeft = true; isLeft;) {
      try {
        isLeft = reader.Next();
        if (isLeft) ++count;
      } catch (const std::runtime_error&) {
        ++thrown;
      }
    }
    EXPECT_GE(thrown, 2);
    const std::size_t first = (stretch.begin + 26) / 27;
    EXPECT_EQ(count, (bytes.size() - first * 27) / 27);
  }
}

// Returns `bytes` a few at a time, but throws in every third call: several times in each block that
// a reader requests.
class HaltingC {
 public:
  HaltingC(const ByteVector& bytes, std::size_t most) : read_(Chunks(bytes, most)) {}

  std::ptrdiff_t operator()(std::uint64_t offset, std::span<std::uint8_t> to) {
    if (++calls_ % 3 == 0) throw std::runtime_error("now and then");
    const std::ptrdiff_t count = read_(offset, to);
    given_ += static_cast<std::uint64_t>(count);
    return count;
  }
  std::uint64_t GetGiven() const { return given_; }
  int GetThrown() const { return calls_ / 3; }

 private:
  GPSRecordReaderC::ReadAt read_;
  int calls_ = 0;
  std::uint64_t given_ = 0;
};

// Continues after each exception, exactly as often as the source throws.
std::vector<GPSRecordEntry> EntriesDespite(GPSRecordReaderC& reader, std::size_t most) {
  std::vector<GPSRecordEntry> entries;
  GPSRecordEntry entry;
  for (std::size_t thrown = 0; thrown <= most;) {
    try {
      if (!reader.NextEntry(entry)) return entries;
      entries.push_back(entry);
    } catch (const std::runtime_error&) {
      ++thrown;
    }
  }
  ADD_FAILURE() << "the reader makes no progress";
  return entries;
}

TEST(RecordReader, WhatWasReadBeforeAnExceptionIsNotReadAgain) {
  ByteVector bytes;
  while (bytes.size() < 600'000) Append(bytes, FrameOf(493 - bytes.size() % 100));
  for (const std::size_t most : {700U, 10'000U}) {
    SCOPED_TRACE(most);
    HaltingC source(bytes, most);
    GPSRecordReaderC reader(std::ref(source), bytes.size());
    EXPECT_EQ(EntriesDespite(reader, bytes.size() / most), RecordModel::Walk(bytes));
    EXPECT_EQ(source.GetGiven(), bytes.size());
    EXPECT_GE(source.GetThrown(), 20);
  }
}

// The search for the correct walk does not start again after each exception; in a chain that
// needs several look-backs.
TEST(RecordReader, AStretchIsReachedDespiteExceptions) {
  std::mt19937_64 random(20260127);
  ByteVector bytes;
  while (bytes.size() < 1'000'000) Append(bytes, FrameOf(20));
  const ByteVector chain = ReaderWalks::ChainOf(100, 50, 1'000'000, random);
  for (const ByteVector& all : {bytes, chain}) {
    const SDI::GPSRecordStretch stretch{700'000, 710'000};
    GPSRecordReaderC undisturbed(all, stretch);
    const std::vector<GPSRecordEntry> expected = List(undisturbed).entries;
    EXPECT_GE(expected.size(), 100U);
    HaltingC source(all, 1000);
    GPSRecordReaderC reader(std::ref(source), all.size(), stretch);
    // 131,074 bytes, twice that, four times that, and from the start.
    EXPECT_EQ(EntriesDespite(reader, 2000), expected);
    EXPECT_LE(source.GetGiven(), 2'000'000U);
  }
}

TEST(RecordReader, AReportThatThrowsLosesNoHeader) {
  ByteVector wrong = FrameOf(100, 1);
  wrong.back() ^= 1;
  ByteVector bytes;
  for (int i = 0; i < 5; ++i) Append(bytes, wrong);
  Append(bytes, FrameOf(20));
  GPSRecordReaderC reader(bytes);
  std::vector<GPSDamagedHeader> damaged;
  reader.SetReportDamaged([&](const GPSDamagedHeader& header) {
    damaged.push_back(header);
    throw std::runtime_error("each time");
  });
  for (int i = 0; i < 5; ++i) EXPECT_THROW(reader.Next(), std::runtime_error);
  EXPECT_TRUE(reader.Next());
  EXPECT_EQ(damaged, RecordModel::Damaged(bytes));
}

// Throws in every second call.
class NowAndThenC {
 public:
  void operator()() {
    if (++calls_ % 2 == 0) throw std::runtime_error("now and then");
  }
  int GetThrown() const { return calls_ / 2; }

 private:
  int calls_ = 0;
};

// Continues after each exception.
ReaderWalks::Listed ListDespite(GPSRecordReaderC& reader, NowAndThenC& nowAndThen) {
  ReaderWalks::Listed listed;
  reader.SetReportDamaged([&](const GPSDamagedHeader& header) {
    listed.damaged.push_back(header);
    nowAndThen();
  });
  for (bool isLeft = true; isLeft;) {
    try {
      GPSRecordEntry entry;
      isLeft = reader.NextEntry(entry);
      if (isLeft) listed.entries.push_back(entry);
    } catch (const std::runtime_error&) {
    }
  }
  return listed;
}

TEST(RecordReader, NoExceptionLosesOrRepeatsAnEntry) {
  std::mt19937_64 random(20260125);
  for (int round = 0; round < 20; ++round) {
    // Several blocks, with gaps and damaged headers across their borders.
    ByteVector bytes;
    while (bytes.size() < 700'000) {
      Append(bytes, MixedFile(random, 20));
      bytes.resize(bytes.size() + random() % 70'000, 0x9C);
    }
    const auto read = Chunks(bytes, bytes.size());
    NowAndThenC nowAndThen;
    const auto readOrThrow = [&](std::uint64_t offset, std::span<std::uint8_t> to) {
      nowAndThen();
      return read(offset, to);
    };
    GPSRecordReaderC whole(readOrThrow, bytes.size());
    const ReaderWalks::Listed expected{RecordModel::Walk(bytes), RecordModel::Damaged(bytes)};
    EXPECT_EQ(ListDespite(whole, nowAndThen), expected);
    // A stretch determines the faults of its last damaged headers after its end.
    const std::uint64_t cut = random() % (bytes.size() + 1);
    GPSRecordReaderC first(readOrThrow, bytes.size(), {0, cut});
    ReaderWalks::Listed joined = ListDespite(first, nowAndThen);
    GPSRecordReaderC second(readOrThrow, bytes.size(), {cut, bytes.size()});
    ReaderWalks::Join(joined, ListDespite(second, nowAndThen));
    EXPECT_EQ(joined, expected);
    EXPECT_GT(nowAndThen.GetThrown(), 0);
  }
}

TEST(RecordReader, ReportsItsProgress) {
  constexpr std::uint64_t kMebibyte = 1U << 20;
  ByteVector bytes;
  while (bytes.size() < 4'500'000) Append(bytes, FrameOf(400));
  const TempFileC file(bytes);
  const std::span<const std::uint8_t> memory(bytes);
  const auto check = [&](GPSRecordReaderC& reader, std::uint64_t begin, std::size_t calls) {
    std::vector<std::uint64_t> offsets;
    reader.SetReportProgress([&](std::uint64_t offset) { offsets.push_back(offset); });
    while (reader.Next()) {
    }
    ASSERT_EQ(offsets.size(), calls);
    for (std::size_t i = 0; i < calls; ++i) {
      EXPECT_GE(offsets[i], begin + (i + 1) * kMebibyte);
      EXPECT_LT(offsets[i], begin + (i + 1) * kMebibyte + (i + 1) * 500);
    }
  };
  GPSRecordReaderC fromMemory(memory);
  check(fromMemory, 0, 4);
  GPSRecordReaderC fromFile(file.Path().string().c_str());
  check(fromFile, 0, 4);
  // A stretch begins before its first byte, where it looks back.
  GPSRecordReaderC stretch(memory, {3 * kMebibyte, bytes.size()});
  check(stretch, 3 * kMebibyte - 2 * 65'537, 1);

  GPSRecordReaderC silent(memory);
  int calls = 0;
  silent.SetReportProgress([&](std::uint64_t) { ++calls; });
  silent.SetReportProgress(nullptr);
  EXPECT_TRUE(silent.Next());
  while (silent.Next()) {
  }
  EXPECT_EQ(calls, 0);
}

// Also if a stretch must be read from the start of the source, during which nothing else is
// reported.
TEST(RecordReader, CanBeStoppedWhileItLooksBack) {
  std::mt19937_64 random(20260126);
  const ByteVector bytes = ReaderWalks::ChainOf(100, 50, 6'000'000, random);
  const std::span<const std::uint8_t> memory(bytes);
  const auto first = [&](bool stops) {
    GPSRecordReaderC reader(memory, {5'500'000, bytes.size()});
    int left = stops ? 3 : 0;
    reader.SetReportProgress([&](std::uint64_t) {
      if (left-- > 0) throw std::runtime_error("stop");
    });
    for (;;) {
      try {
        return reader.Next() ? reader.GetRecord().GetOffset() : 0;
      } catch (const std::runtime_error&) {
      }
    }
  };
  EXPECT_GE(first(false), 5'500'000U);
  EXPECT_EQ(first(true), first(false));
}

TEST(RecordReader, AFileThatShrinksEndsEarlier) {
  ByteVector bytes;
  while (bytes.size() < 1'000'000) Append(bytes, FrameOf(20));
  const TempFileC file(bytes);
  GPSRecordReaderC reader(file.Path().string().c_str());
  ASSERT_TRUE(reader.Next());
  std::filesystem::resize_file(file.Path(), 300'000);
  std::uint64_t end = 0;
  while (reader.Next()) end = reader.GetRecord().GetOffset() + reader.GetRecord().GetSize();
  EXPECT_EQ(end, 300'000U / 27 * 27);
  EXPECT_EQ(reader.GetState(), GPSReaderState::kOpen);
}

TEST(RecordReader, OffsetsOf64Bits) {
  // 5 GB of zeros, then a record: blocks of zeros cost only their reading.
  constexpr std::uint64_t kAt = 5'000'000'000;
  const ByteVector frame = FrameOf(20);
  const auto read = [&](std::uint64_t offset, std::span<std::uint8_t> to) {
    std::size_t count = 0;
    for (; count < to.size() && offset + count < kAt + frame.size(); ++count) {
      const std::uint64_t at = offset + count;
      to[count] = at >= kAt ? frame[at - kAt] : 0;
    }
    return static_cast<std::ptrdiff_t>(count);
  };
  GPSRecordReaderC reader(read, kAt + frame.size(), {kAt - 1000, kAt + 1});
  GPSRecordEntry entry;
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{kAt - 1000, 1000, true, 0}));
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_EQ(entry, (GPSRecordEntry{kAt, 27, false, 113}));
  EXPECT_EQ(reader.GetRecord().GetOffset(), kAt);
  EXPECT_FALSE(reader.NextEntry(entry));
}

// The thread sanitizer checks this in its build.
TEST(RecordReader, ReadersInManyThreads) {
  std::mt19937_64 random(20260124);
  ByteVector bytes;
  while (bytes.size() < 700'000) Append(bytes, MixedFile(random, 50));
  const TempFileC file(bytes);
  const std::string name = file.Path().string();
  const auto expected = RecordModel::Walk(bytes);
  std::array<Listed, 8> listed;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < listed.size(); ++i) {
    threads.emplace_back([&, i] {
      const std::size_t part = i / 2;
      const SDI::GPSRecordStretch stretch{part * bytes.size() / 4, (part + 1) * bytes.size() / 4};
      if (i % 2 == 0) {
        GPSRecordReaderC reader(name.c_str(), stretch);
        listed[i] = List(reader);
      } else {
        GPSRecordReaderC reader(bytes, stretch);
        listed[i] = List(reader);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t kind = 0; kind < 2; ++kind) {
    Listed whole;
    for (std::size_t i = kind; i < listed.size(); i += 2) ReaderWalks::Join(whole, listed[i]);
    EXPECT_EQ(whole.entries, expected);
  }
}

// --- Decoding one frame

struct Decoded {
  SDI::GPSDecodeResult result;
  StoredFields fields;
  GPSRecordFileInfo info;
};

Decoded Decode(std::span<const std::uint8_t> bytes) {
  GPSMeasDataImplC measurement;
  Decoded decoded;
  decoded.result = GPSRecordReaderC::Decode(bytes, measurement, decoded.info);
  decoded.fields = StoredIn(measurement);
  return decoded;
}

TEST(RecordReaderDecode, DecodesAsTheModelReads) {
  std::mt19937_64 random(20260125);
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(round);
    const auto flags1 = static_cast<unsigned>(random() & 0x33FF);
    ByteVector frame =
        TestSupport::WellFormedFrame(flags1, static_cast<unsigned>(random() & 0x3FFF), random);
    StoredFields fields;
    GPSRecordFileInfo info;
    ASSERT_EQ(RecordModel::Read(frame, fields, info), 0U);
    Append(frame, ByteVector(random() % 3, 0x9C));  // is ignored
    const Decoded decoded = Decode(frame);
    ASSERT_EQ(decoded.result, SDI::GPSDecodeResult());
    ASSERT_TRUE(decoded.result.IsDone());
    ASSERT_EQ(decoded.fields, fields);
    TestSupport::ExpectSameInfo(decoded.info, info);
  }
}

TEST(RecordReaderDecode, KeepsWhatTheFrameDoesNotCarry) {
  GPSMeasDataImplC measurement;
  measurement.SetTextA(u"kept");
  measurement.SetTimeB({17, 0});
  GPSRecordFileInfo info;
  info.flags = GPSRecordFileInfo::kKindZero;
  info.number = 12;
  const ByteVector frame = FrameBuilderC().Times().U16(1).Fill(6, 0).U8(1).Fill(5, 0).Frame();
  EXPECT_TRUE(GPSRecordReaderC::Decode(frame, measurement, info).IsDone());
  EXPECT_EQ(std::u16string(measurement.GetTextA()), u"kept");
  EXPECT_EQ(measurement.GetTimeB().week, 17U);
  EXPECT_EQ(measurement.GetTimeB().timeOfWeek, -7);
  EXPECT_EQ(info.number, 12);
  EXPECT_EQ(info.flags, GPSRecordFileInfo::kKindZero | GPSRecordFileInfo::kKindNonZero);
}

TEST(RecordReaderDecode, DistinguishesWhyBytesAreNotAFrame) {
  const ByteVector frame = FrameBuilderC().Times().U16(0x0100).U8(1).U8(2).Frame();
  const auto outcomeOf = [](std::span<const std::uint8_t> bytes) {
    const Decoded decoded = Decode(bytes);
    EXPECT_EQ(decoded.result.block, GPSRecordBlock::kChecksum);
    EXPECT_EQ(decoded.fields, StoredFields());
    return decoded.result.outcome;
  };
  for (std::size_t size = 0; size < frame.size(); ++size) {
    EXPECT_EQ(outcomeOf(std::span(frame).first(size)), GPSRecordOutcome::kCut) << size;
  }
  for (const std::size_t at : {0U, 1U, 4U}) {
    ByteVector other = frame;
    other[at] ^= 1;
    TestSupport::Seal(other);
    EXPECT_EQ(outcomeOf(other), GPSRecordOutcome::kNoMeasurement) << at;
  }
  for (std::size_t at = 5; at < frame.size(); ++at) {
    ByteVector damaged = frame;
    damaged[at] ^= 1;
    EXPECT_EQ(outcomeOf(damaged), GPSRecordOutcome::kWrongChecksum) << at;
  }
  EXPECT_EQ(outcomeOf(FrameOf(494)), GPSRecordOutcome::kNoMeasurement);  // longer than 500 bytes
  EXPECT_EQ(Decode(FrameOf(493)).result.outcome, GPSRecordOutcome::kDone);
}

TEST(RecordReaderDecode, NamesTheBlockThatDoesNotFit) {
  struct Case {
    unsigned flags1, flags2;
    GPSRecordBlock block;
  };
  constexpr unsigned kWord2 = 0x2000;
  using enum GPSRecordBlock;
  const Case cases[] = {
      {0x0001, 0, kFileFlags},   {0x0002, 0, kName},        {0x0004, 0, kAntennaHeight},
      {0x0008, 0, kExtraTime},   {0x0010, 0, kWord16},      {0x0020, 0, kIgnoredPairs},
      {0x0040, 0, kValues},      {0x0080, 0, kDOPs},        {0x0100, 0, kTotalPair},
      {0x0200, 0, kVector},      {0x1000, 0, kSystemPairs}, {kWord2, 0x0001, kFlagA},
      {kWord2, 0x0002, kValueB}, {kWord2, 0x0004, kValueC}, {kWord2, 0x0008, kTextA},
      {kWord2, 0x0010, kTextB},  {kWord2, 0x0020, kValueD}, {kWord2, 0x0040, kTextC},
      {kWord2, 0x0080, kFlagE},  {kWord2, 0x0100, kTextD},  {kWord2, 0x0200, kValueF},
      {kWord2, 0x0400, kValueG}, {kWord2, 0x0800, kValueH}, {kWord2, 0x1000, kValueI},
      {kWord2, 0x2000, kList},
  };
  for (const Case& one : cases) {
    FrameBuilderC b;
    b.Times().U16(one.flags1);
    if (one.flags1 == kWord2) b.U16(one.flags2);
    const Decoded decoded = Decode(b.Frame());
    EXPECT_EQ(decoded.result, (SDI::GPSDecodeResult{GPSRecordOutcome::kBlockDoesNotFit, one.block}))
        << SDI::TextOf(one.block);
    EXPECT_FALSE(decoded.result.IsDone());
    EXPECT_EQ(decoded.fields.timeA.week, 2200U);  // the blocks before it are stored
  }
  EXPECT_EQ(Decode(FrameOf(11)).result.block, kTimes);
  EXPECT_EQ(Decode(FrameBuilderC().Times().U16(kWord2).Frame()).result.block, kMore);
  EXPECT_EQ(Decode(FrameBuilderC().Times().U16(0x0008).U8(2).Fill(20, 0).Frame()).result.block,
            kExtraTime);
  EXPECT_EQ(
      Decode(FrameBuilderC().Times().U16(kWord2).U16(0x2000).U16(0).U8(32).Fill(80, 0).Frame())
          .result.block,
      kList);
}

// --- Texts

TEST(RecordReaderTexts, EveryValueHasItsOwnText) {
  const auto texts = [](auto last) {
    std::vector<std::string> all;
    using Enum = decltype(last);
    for (int i = 0; i <= static_cast<int>(last); ++i) {
      all.emplace_back(SDI::TextOf(static_cast<Enum>(i)));
      EXPECT_FALSE(all.back().empty());
      EXPECT_NE(all.back(), "unknown");
    }
    EXPECT_STREQ(SDI::TextOf(static_cast<Enum>(static_cast<int>(last) + 1)), "unknown");
    EXPECT_STREQ(SDI::TextOf(static_cast<Enum>(255)), "unknown");
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
    return all.size();
  };
  EXPECT_EQ(texts(GPSRecordBlock::kChecksum), 30U);
  EXPECT_EQ(texts(GPSRecordOutcome::kBlockDoesNotFit), 5U);
  EXPECT_EQ(texts(GPSRecordDamage::kRunsIntoNextRecord), 3U);
  EXPECT_EQ(texts(GPSReaderState::kReadingFailed), 6U);
  EXPECT_STREQ(SDI::TextOf(GPSReaderState::kNoPermission), "permission denied");
  EXPECT_STREQ(SDI::TextOf(GPSRecordBlock::kSystemPairs), "system pairs");
}

}  // namespace
