#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/record_walk.h>

#include "tests/gnss/record_model.h"
#include "tests/support/frame_builder.h"

namespace {

using SDI::RecordWalk::ByteSumsC;
using SDI::RecordWalk::WalkC;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::FrameOf;

// The number of bytes that walking `bytes` adds, and of records that it finds.
struct Walked {
  std::uint64_t summed = 0;
  std::uint64_t records = 0;
};

Walked Walk(const ByteVector& bytes) {
  WalkC walk(bytes);
  Walked walked;
  while (const std::size_t size = walk.FindRecord()) {
    ++walked.records;
    walk.Pass(size);
  }
  EXPECT_EQ(walk.GetOffset(), bytes.size());
  walked.summed = walk.GetSummed();
  return walked;
}

// Headers of long records, close together: a walk that added the bytes of each would add 65535
// bytes for every 5.
TEST(RecordWalk, AddsFewBytesForAnyContent) {
  std::mt19937_64 random(20260110);
  for (const unsigned length : {5U, 60U, 498U, 5'000U, 65'530U, 65'535U}) {
    for (const std::size_t every : {5U, 7U, 50U, 499U, 30'000U}) {
      SCOPED_TRACE(testing::Message() << "length " << length << " every " << every);
      ByteVector bytes;
      std::uint64_t headers = 0;
      while (bytes.size() < 1'000'000) {
        ++headers;
        Append(bytes, {0x9C, 0xAE, static_cast<std::uint8_t>(length & 0xFF),
                       static_cast<std::uint8_t>(length >> 8), 113});
        for (std::size_t i = 5; i < every; ++i) {
          bytes.push_back(static_cast<std::uint8_t>(random() % 0x9C));
        }
        // Whole records in between.
        if (random() % 16 == 0) {
          ++headers;
          Append(bytes, FrameOf(random() % 600, static_cast<unsigned>(random() % 0x9C)));
        }
      }
      // Adds up the bytes of short records directly, as many bytes again for false headers, all
      // bytes in blocks, and two blocks per header.
      EXPECT_LE(Walk(bytes).summed, 3 * bytes.size() + 2 * ByteSumsC::kBlock * headers);
    }
  }
}

TEST(RecordWalk, SumsUpTheBytesOfAnUndamagedFileOnce) {
  ByteVector bytes;
  std::uint64_t inRecords = 0;
  std::uint64_t records = 0;
  for (; bytes.size() < 1'000'000; ++records) {
    const ByteVector frame = FrameOf(10 + records % 480, 0x11);
    inRecords += frame.size() - 4;  // neither magic nor checksum
    Append(bytes, frame);
  }
  const Walked walked = Walk(bytes);
  EXPECT_EQ(walked.records, records);
  EXPECT_EQ(walked.summed, inRecords);
}

TEST(RecordWalk, SumsAreThoseOfTheBytes) {
  std::mt19937_64 random(20260111);
  ByteVector bytes(400'000);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  for (int round = 0; round < 20; ++round) {
    ByteSumsC sums;
    // Small and large steps, short and long ranges; the largest bytes give the largest sums.
    if (round == 10) std::fill(bytes.begin(), bytes.end(), std::uint8_t{255});
    const std::uint64_t offset = round % 2 == 0 ? 0 : (std::uint64_t{1} << 40) - 3;
    for (std::size_t from = random() % 100; from + 65'537 < bytes.size();
         from += random() % (random() % 8 != 0 ? 60 : 70'000)) {
      const std::size_t count = random() % 4 != 0 ? random() % 150 : random() % 65'536;
      unsigned expected = 0;
      for (std::size_t i = 0; i < count; ++i) expected += bytes[from + i];
      ASSERT_EQ(sums.Sum(offset + from, offset + from + count, &bytes[from]), expected & 0xFFFF)
          << from << ' ' << count;
    }
  }
}

TEST(RecordWalk, StopsAtTheLimitAndContinuesThere) {
  ByteVector bytes(100, 0x9C);
  Append(bytes, FrameOf(20));
  WalkC walk(bytes);
  for (const std::uint64_t limit : {0U, 1U, 60U, 60U, 100U}) {
    EXPECT_EQ(walk.FindRecord(limit), 0U);
    EXPECT_EQ(walk.GetOffset(), limit);
  }
  EXPECT_EQ(walk.FindRecord(101), 27U);
  EXPECT_EQ(walk.GetOffset(), 100U);
  EXPECT_EQ(walk.GetFront(), &bytes[100]);
}

}  // namespace
