// The meaning of each byte of a frame: a hand-made frame field by field, and frames with any
// blocks.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/frame_explanation.h>

#include "tests/support/frame_builder.h"

namespace SDI::RecordFrame {
namespace {

using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::WellFormedFrame;

using Place = std::tuple<std::size_t, std::size_t, Block, std::optional<Field>>;

// Records the fields that it receives.
struct Places {
  std::vector<Place> places;
  std::vector<double> numbers;
  std::vector<std::u16string> texts;

  template <class Value>
  void Number(const FieldPlace& place, Value value) {
    Ignored(place);
    numbers.push_back(static_cast<double>(value));
  }
  void Text(const FieldPlace& place, std::u16string_view text) {
    Ignored(place);
    texts.emplace_back(text);
  }
  void Ignored(const FieldPlace& place) {
    places.emplace_back(place.at, place.size, place.block, place.field);
  }
};

Places ExplainFrame(const ByteVector& frame) {
  Places places;
  Explain(frame, places);
  return places;
}

TEST(FrameExplanation, GivesTheOffsetTheBlockAndTheFieldOfEachByte) {
  const ByteVector frame = FrameBuilderC()
                               .Times(2200, 86'400'000, -7)
                               .U16(0x0006)
                               .NameUnits(u"P7")
                               .I32(-12)
                               .F32(1.5F)
                               .U8(1)
                               .Fill(3, 0xFF)
                               .Frame();
  const Places found = ExplainFrame(frame);
  const std::vector<Place> expected{
      {0, 2, Block::kHeader, Field::kMagic},
      {2, 2, Block::kHeader, Field::kLength},
      {4, 1, Block::kHeader, Field::kType},
      {5, 2, Block::kTimes, Field::kTimeAWeek},
      {7, 4, Block::kTimes, Field::kTimeAOfWeek},
      {11, 4, Block::kTimes, Field::kTimeBOfWeek},
      {15, 2, Block::kTimes, Field::kFlags1},
      {17, 34, Block::kName, Field::kName},
      {51, 4, Block::kName, Field::kNumber},
      {55, 4, Block::kAntennaHeight, Field::kHeight},
      {59, 1, Block::kAntennaHeight, Field::kHeightKind},
      {60, 3, Block::kUnused, Field::kIgnored},
      {63, 2, Block::kChecksum, Field::kChecksum},
  };
  EXPECT_EQ(found.places, expected);
  ASSERT_EQ(frame.size(), 65u);
  const double checksum = frame[63] + 256.0 * frame[64];
  EXPECT_EQ(found.numbers,
            (std::vector<double>{44700, 63, 113, 2200, 86'400'000, -7, 6, -12, 1.5, 1, checksum}));
  EXPECT_EQ(found.texts, (std::vector<std::u16string>{u"P7"}));
}

// The bytes of a block that does not fit are one place, whatever follows them.
TEST(FrameExplanation, ABlockThatDoesNotFitIsOnePlaceWithoutAField) {
  const ByteVector frame = FrameBuilderC().Times().U16(0x0006).NameUnits(u"P7").U16(5).Frame();
  const Places found = ExplainFrame(frame);
  ASSERT_GE(found.places.size(), 3u);
  EXPECT_EQ(found.places[7], (Place{17, 34, Block::kName, Field::kName}));
  EXPECT_EQ(found.places[8], (Place{51, 2, Block::kName, std::nullopt}));
  EXPECT_EQ(found.places[9], (Place{53, 2, Block::kChecksum, Field::kChecksum}));
  EXPECT_EQ(found.places.size(), 10u);
  // A frame that ends within bytes that the library ignores.
  const Places ignored = ExplainFrame(FrameBuilderC().Times().U16(0x0010).Fill(9, 0xA5).Frame());
  EXPECT_EQ(ignored.places[7], (Place{17, 2, Block::kWord16, Field::kWord16}));
  EXPECT_EQ(ignored.places[8], (Place{19, 7, Block::kWord16, std::nullopt}));
  EXPECT_EQ(ignored.places.size(), 10u);
  // A frame that ends within its times.
  const Places times = ExplainFrame(FrameBuilderC().U16(2200).Frame());
  EXPECT_EQ(times.places[4], (Place{7, 2, Block::kChecksum, Field::kChecksum}));
}

TEST(FrameExplanation, PassesEveryByteOnceInTheBlocksThatAreAnnounced) {
  std::mt19937_64 random(1);
  const std::vector<Block> all{Block::kFileFlags, Block::kName,       Block::kAntennaHeight,
                               Block::kExtraTime, Block::kWord16,     Block::kIgnoredPairs,
                               Block::kValues,    Block::kDOPs,       Block::kTotalPair,
                               Block::kVector,    Block::kSystemPairs};
  const unsigned bits[] = {0x0001, 0x0002, 0x0004, 0x0008, 0x0010, 0x0020,
                           0x0040, 0x0080, 0x0100, 0x0200, 0x1000};
  for (int i = 0; i < 2'000; ++i) {
    const auto flags1 = static_cast<unsigned>(random() & 0x33FF);
    const auto flags2 = static_cast<unsigned>(random() & 0x3FFF);
    const ByteVector frame = WellFormedFrame(flags1, flags2, random);
    std::size_t at = 0;
    std::vector<Block> blocks;
    for (const auto& [begin, size, block, field] : ExplainFrame(frame).places) {
      ASSERT_EQ(begin, at);
      ASSERT_GT(size, 0u);
      ASSERT_TRUE(field.has_value());
      at += size;
      if (blocks.empty() || blocks.back() != block) blocks.push_back(block);
    }
    ASSERT_EQ(at, frame.size());
    std::vector<Block> expected{Block::kHeader, Block::kTimes};
    for (std::size_t k = 0; k < all.size(); ++k) {
      if ((flags1 & bits[k]) != 0) expected.push_back(all[k]);
    }
    ASSERT_GE(blocks.size(), expected.size() + 1);
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), blocks.begin())) << flags1;
    EXPECT_EQ(blocks[expected.size()], (flags1 & 0x2000) != 0 ? Block::kMore : Block::kChecksum);
    EXPECT_EQ(blocks.back(), Block::kChecksum);
  }
}

}  // namespace
}  // namespace SDI::RecordFrame
