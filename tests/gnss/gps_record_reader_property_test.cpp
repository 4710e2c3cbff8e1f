// Adjacent stretches together give the whole, for any bytes and any borders.

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/record_walk.h>

#include "tests/gnss/reader_walks.h"
#include "tests/gnss/record_model.h"
#include "tests/gnss/record_pieces.h"
#include "tests/support/frame_builder.h"
#include "tests/support/number_of_cases.h"
#include "tests/support/temp_file.h"

namespace {

using ReaderWalks::ChainOf;
using ReaderWalks::List;
using ReaderWalks::Listed;
using SDI::GPSReaderState;
using SDI::GPSRecordC;
using SDI::GPSRecordReaderC;
using SDI::GPSRecordStretch;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameOf;
using TestSupport::Piece;
using TestSupport::TempFileC;

// A function that reads `bytes` and counts the bytes read.
struct CountedC {
  const ByteVector& bytes;
  std::uint64_t count = 0;

  std::ptrdiff_t operator()(std::uint64_t offset, std::span<std::uint8_t> to) {
    const std::size_t left = bytes.size() - std::min<std::size_t>(offset, bytes.size());
    const std::size_t got = std::min(to.size(), left);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), got, to.begin());
    count += got;
    return static_cast<std::ptrdiff_t>(got);
  }
};

Listed Whole(const ByteVector& bytes) {
  GPSRecordReaderC reader(bytes);
  return List(reader);
}

// Up to 64 stretches, including empty ones and ones that begin or end beyond the bytes.
std::vector<GPSRecordStretch> Cuts(std::size_t size, std::mt19937_64& random) {
  std::vector<std::uint64_t> borders{0, random() % 4 != 0 ? size : size + random() % 100'000};
  std::size_t count = random() % 4 != 0 ? random() % 6 : random() % 64;
  while (count-- > 0) {
    // Anywhere, or next to another border.
    const std::uint64_t at = random() % 8 != 0 ? random() % (size + 1)
                                               : borders[random() % borders.size()] + random() % 3;
    borders.push_back(std::min<std::uint64_t>(at, borders[1]));
  }
  std::sort(borders.begin(), borders.end());
  std::vector<GPSRecordStretch> stretches;
  for (std::size_t i = 1; i < borders.size(); ++i)
    stretches.push_back({borders[i - 1], borders[i]});
  return stretches;
}

// The decoded records of a reader.
std::vector<std::uint64_t> Offsets(GPSRecordReaderC& reader) {
  std::vector<std::uint64_t> offsets;
  for (const GPSRecordC& record : reader) offsets.push_back(record.GetOffset());
  return offsets;
}

void ExpectStretchesJoin(const ByteVector& bytes, std::mt19937_64& random) {
  const Listed whole = Whole(bytes);
  const auto stretches = Cuts(bytes.size(), random);
  Listed joined;
  for (const GPSRecordStretch& stretch : stretches) {
    GPSRecordReaderC reader(bytes, stretch);
    const Listed part = List(reader);
    for (const auto& entry : part.entries) {
      ASSERT_GE(entry.offset, stretch.begin);
      ASSERT_LT(entry.offset, stretch.end);
      if (entry.isGap) {
        ASSERT_LE(entry.offset + entry.size, stretch.end);
      }
    }
    for (const auto& header : part.damaged) {
      ASSERT_GE(header.offset, stretch.begin);
      ASSERT_LT(header.offset, stretch.end);
    }
    ReaderWalks::Join(joined, part);
  }
  ASSERT_EQ(joined.entries, whole.entries);
  ASSERT_EQ(joined.damaged, whole.damaged);

  // The measurements of a stretch are those of its entries.
  const GPSRecordStretch& one = stretches[random() % stretches.size()];
  std::vector<std::uint64_t> expected;
  for (const auto& entry : whole.entries) {
    if (entry.IsMeasurement() && one.begin <= entry.offset && entry.offset < one.end) {
      expected.push_back(entry.offset);
    }
  }
  CountedC counted{bytes};
  GPSRecordReaderC reader(std::ref(counted), bytes.size(), one);
  ASSERT_EQ(Offsets(reader), expected);
}

// Flips bytes, removes pieces and duplicates others.
void Damage(ByteVector& bytes, std::mt19937_64& random) {
  for (std::size_t flips = random() % 40; flips > 0; --flips) {
    bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1 + random() % 255);
  }
  for (std::size_t cuts = random() % 4; cuts > 0; --cuts) {
    const auto at = static_cast<std::ptrdiff_t>(random() % bytes.size());
    const auto length = static_cast<std::ptrdiff_t>(random() % 3000);
    const auto end = std::min(at + length, static_cast<std::ptrdiff_t>(bytes.size()));
    if (random() % 2 == 0) {
      bytes.erase(bytes.begin() + at, bytes.begin() + end);
    } else {
      const ByteVector piece(bytes.begin() + at, bytes.begin() + end);
      bytes.insert(bytes.begin() + at, piece.begin(), piece.end());
    }
  }
}

TEST(ReaderStretchesProperty, OfDamagedFilesJoinToTheWhole) {
  std::mt19937_64 random(20260130);
  for (int round = 0; round < TestSupport::NumberOfCases(1000); ++round) {
    SCOPED_TRACE(round);
    ByteVector bytes;
    const std::size_t size = random() % 4 != 0 ? random() % 3000 : 150'000 + random() % 150'000;
    while (bytes.size() < size) Append(bytes, Piece(random, random() % 8 != 0 ? 600 : 65'531));
    if (!bytes.empty()) Damage(bytes, random);
    ASSERT_NO_FATAL_FAILURE(ExpectStretchesJoin(bytes, random));
  }
}

// Walks that begin with different frames of a chain meet only after damage.
TEST(ReaderStretchesProperty, OfChainsJoinToTheWhole) {
  std::mt19937_64 random(20260131);
  const struct {
    std::size_t size, step;
  } chains[] = {{100, 50},      {120, 10},        {500, 250},      {500, 50},
                {5'000, 2'500}, {65'537, 32'768}, {65'537, 21'845}};
  for (int round = 0; round < TestSupport::NumberOfCases(1000); ++round) {
    SCOPED_TRACE(round);
    const auto& [size, step] = chains[random() % std::size(chains)];
    ByteVector bytes(random() % 300, 0x11);
    const std::size_t length =
        random() % 4 != 0 ? size * (random() % 30) : 140'000 + random() % 200'000;
    if (length < 4'000'000)
      Append(bytes, ChainOf(size, step, std::min<std::size_t>(length, 340'000), random));
    for (std::size_t i = random() % 4; i > 0; --i) Append(bytes, Piece(random, 600));
    if (random() % 2 == 0 && !bytes.empty()) Damage(bytes, random);
    ASSERT_NO_FATAL_FAILURE(ExpectStretchesJoin(bytes, random));
  }
}

// The 100-byte frames of a chain begin every 50 bytes: at every position two walks are possible,
// and only the start of the file determines which is correct.
TEST(ReaderStretches, OnlyTheStartDeterminesTheWalkOfAChain) {
  std::mt19937_64 random(20260132);
  const ByteVector chain = ChainOf(100, 50, 400'000, random);
  for (const std::size_t shift : {0U, 50U}) {
    // The same bytes after a different start give a different walk.
    ByteVector bytes = shift == 0 ? ByteVector() : FrameOf(shift - 7, 1, 7);
    bytes.insert(bytes.end(), chain.begin() + static_cast<std::ptrdiff_t>(shift), chain.end());
    ASSERT_EQ(bytes.size(), chain.size());
    const std::uint64_t begin = 300'007;
    GPSRecordReaderC reader(bytes, {begin, 310'000});
    ASSERT_TRUE(reader.Next());
    EXPECT_EQ(reader.GetRecord().GetOffset(), shift == 0 ? 300'100U : 300'050U);
  }
}

// The chain begins where the first look-back does. The second look-back reaches it with the sums of
// the first one, whose beginning is overwritten: it must not use them.
TEST(ReaderStretches, ALookBackDoesNotUseTheSumsOfThePreviousOne) {
  std::mt19937_64 random(20260137);
  const ByteVector chain =
      ChainOf(20'000, 10'000, 400'000, random);  // too long to be summed at once
  for (const std::size_t after : {0U, 1U, 33U, 64U}) {
    SCOPED_TRACE(after);
    const std::uint64_t begin = 500'000;
    ByteVector bytes(begin - 131'074 + after, 0x11);
    Append(bytes, chain);
    const Listed whole = Whole(bytes);
    GPSRecordReaderC reader(bytes, {begin, begin + 30'000});
    const Listed part = List(reader);
    const auto first = std::find_if(whole.entries.begin(), whole.entries.end(),
                                    [&](const auto& entry) { return entry.offset >= begin; });
    ASSERT_FALSE(part.entries.empty());
    ASSERT_NE(first, whole.entries.end());
    EXPECT_EQ(part.entries.front(), *first);
  }
}

// The true walk passes the first positions of the look-back in one record and visits only the last
// of the 65,537. A frame in that record, 1,000 bytes earlier, leads to the other frames of a chain.
TEST(ReaderStretches, TheLastOfTheFirstPositionsCounts) {
  std::mt19937_64 random(20260139);
  constexpr std::size_t kBegin = 400'000;
  constexpr std::size_t kFirst = kBegin - 131'074;
  constexpr std::size_t kChain = kFirst + 65'536;
  constexpr std::size_t kBefore = 1'000;
  const auto put = [](ByteVector& bytes, std::size_t at, std::size_t size) {
    const ByteVector header{0x9C, 0xAE, static_cast<std::uint8_t>((size - 2) & 0xFF),
                            static_cast<std::uint8_t>((size - 2) >> 8), 113};
    std::copy(header.begin(), header.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
  };
  ByteVector bytes(kChain, 0x11);
  put(bytes, kFirst - 1, 65'537);
  put(bytes, kChain - kBefore, kBefore + 50);
  TestSupport::Seal(bytes, kFirst - 1);
  Append(bytes, ChainOf(100, 50, 150'000, random));
  TestSupport::Seal(bytes, kChain - kBefore);
  for (std::size_t at = kChain; at + 100 <= bytes.size(); at += 50) TestSupport::Seal(bytes, at);

  const Listed whole = Whole(bytes);
  const auto from = [](const Listed& listed, std::uint64_t begin) {
    return *std::find_if(listed.entries.begin(), listed.entries.end(),
                         [&](const auto& entry) { return entry.offset >= begin; });
  };
  ASSERT_EQ(from(whole, kFirst - 1).size, 65'537U);
  ASSERT_EQ(from(whole, kFirst).offset, kChain);
  GPSRecordReaderC other(bytes, {kChain - kBefore, kChain});
  ASSERT_EQ(List(other), Listed());  // the true walk does not visit that frame
  GPSRecordReaderC reader(bytes, {kBegin, kBegin + 1'000});
  const Listed part = List(reader);
  ASSERT_FALSE(part.entries.empty());
  EXPECT_EQ(part.entries.front(), from(whole, kBegin));
}

TEST(ReaderStretches, AChainCostsReadingFromItsStart) {
  std::mt19937_64 random(20260133);
  const ByteVector bytes = ChainOf(100, 50, 3'000'000, random);
  for (const std::uint64_t begin : {500'000U, 1'000'000U, 2'900'000U}) {
    CountedC counted{bytes};
    GPSRecordReaderC reader(std::ref(counted), bytes.size(), {begin, begin + 1000});
    EXPECT_EQ(Offsets(reader).size(), 10U);
    EXPECT_GE(counted.count, begin);
    EXPECT_LE(counted.count, 3 * begin + 100'000);
  }
}

// The chain begins before the first look-back and after the second: twice as far is far enough.
TEST(ReaderStretches, AShortChainCostsTwoLookBacks) {
  std::mt19937_64 random(20260138);
  ByteVector bytes(2'000'000, 0x11);
  Append(bytes, ChainOf(100, 50, 150'000, random));
  const std::uint64_t begin = 2'145'000;
  CountedC counted{bytes};
  GPSRecordReaderC reader(std::ref(counted), bytes.size(), {begin, begin + 1000});
  EXPECT_EQ(Offsets(reader).size(), 10U);
  EXPECT_GE(counted.count, 2U * 131'074U);
  EXPECT_LE(counted.count, 131'074U + 2U * 131'074U + 200'000U);
}

// Reading a stretch of a real file reads its bytes, those of the look-back, and those that the last
// header before its end needs after it.
TEST(ReaderStretches, OfRealFilesReadFewBytesMore) {
  for (const char* const name : {"valley_drive.rec", "desert_highway.rec"}) {
    const ByteVector once = TestSupport::ReadBytes(std::string(SURVEYDATA_TEST_DATA) + name);
    ByteVector bytes;
    while (bytes.size() < 2'000'000) Append(bytes, once);
    const Listed whole = Whole(bytes);
    std::mt19937_64 random(20260134);
    for (int round = 0; round < 200; ++round) {
      SCOPED_TRACE(testing::Message() << name << ", round " << round);
      const std::uint64_t begin = random() % (bytes.size() - 300'000);
      const std::uint64_t end = begin + random() % 300'000;
      CountedC counted{bytes};
      GPSRecordReaderC reader(std::ref(counted), bytes.size(), {begin, end});
      const Listed part = List(reader);
      EXPECT_LE(counted.count, end - begin + std::min<std::uint64_t>(begin, 131'074) + 65'537);
      // It begins with the first record there.
      const auto first = std::find_if(whole.entries.begin(), whole.entries.end(),
                                      [&](const auto& e) { return e.offset >= begin; });
      if (first->offset < end && !first->isGap) {
        const auto found = std::find_if(part.entries.begin(), part.entries.end(),
                                        [](const auto& e) { return !e.isGap; });
        ASSERT_NE(found, part.entries.end());
        EXPECT_EQ(*found, *first);
      }
    }
  }
}

// Every byte of a small file is used as a border.
TEST(ReaderStretches, CutAtEveryByte) {
  std::mt19937_64 random(20260135);
  ByteVector bytes;
  while (bytes.size() < 1500) Append(bytes, Piece(random, 200));
  const Listed whole = Whole(bytes);
  ASSERT_EQ(whole.entries, RecordModel::Walk(bytes));
  Listed single;
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    SCOPED_TRACE(cut);
    Listed joined;
    GPSRecordReaderC before(bytes, {0, cut});
    ReaderWalks::Join(joined, List(before));
    GPSRecordReaderC after(bytes, {cut, bytes.size()});
    ReaderWalks::Join(joined, List(after));
    ASSERT_EQ(joined, whole);
    GPSRecordReaderC one(bytes, {cut, cut + 1});
    ReaderWalks::Join(single, List(one));
  }
  EXPECT_EQ(single, whole);
}

TEST(ReaderStretches, EmptyBackwardAndBeyondTheEnd) {
  constexpr std::uint64_t kFar = std::uint64_t{1} << 63;  // further than systems seek
  const ByteVector bytes = FrameOf(20);
  for (const GPSRecordStretch& stretch :
       {GPSRecordStretch{0, 0}, GPSRecordStretch{5, 5}, GPSRecordStretch{20, 3},
        GPSRecordStretch{1, 27}, GPSRecordStretch{27, 27}, GPSRecordStretch{1'000'000, 2'000'000},
        GPSRecordStretch{UINT64_MAX - 5, UINT64_MAX}, GPSRecordStretch{kFar - 1, kFar},
        GPSRecordStretch{kFar, kFar + 1}, GPSRecordStretch{kFar + 131'074, UINT64_MAX},
        GPSRecordStretch{kFar / 2, kFar / 2 + 1}, GPSRecordStretch{kFar / 1024, UINT64_MAX - 1}}) {
    SCOPED_TRACE(stretch.begin);
    GPSRecordReaderC reader(bytes, stretch);
    EXPECT_EQ(List(reader), Listed());
    EXPECT_EQ(reader.GetState(), GPSReaderState::kOpen);
    const TempFileC file(bytes);
    GPSRecordReaderC fromFile(file.Path().string().c_str(), stretch);
    EXPECT_EQ(List(fromFile), Listed());
    EXPECT_EQ(fromFile.GetState(), GPSReaderState::kOpen);
  }
  GPSRecordReaderC first(bytes, {0, 1});
  EXPECT_TRUE(first.Next());
  EXPECT_FALSE(first.Next());
}

// Overlapping records of maximum length: adding the bytes of each record separately would take
// a thousand times as long.
TEST(ReaderStretches, MeetInLinearTime) {
  std::mt19937_64 random(20260136);
  for (const auto& [size, step] : {std::pair<std::size_t, std::size_t>{65'537, 700}, {100, 50}}) {
    const ByteVector bytes = ChainOf(size, step, 600'000, random);
    SDI::RecordWalk::WalkC walk(bytes);
    ASSERT_TRUE(walk.CanGoTo());
    SDI::RecordWalk::LookBackC lookBack;
    walk.GoTo(500'000, 600'000, lookBack);
    // Three look-backs, the last from the start: each adds every byte once, and two blocks per
    // header.
    const std::uint64_t walked = 131'074 + 262'148 + 500'000 + 3 * 65'537;
    EXPECT_LE(walk.GetSummed(),
              walked + 2 * SDI::RecordWalk::ByteSumsC::kBlock * (walked / step + 3));
  }
}

}  // namespace
