// Single fields of a frame are rewritten: these and the checksum, and no other byte.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/record_change.h>

#include "tests/support/frame_builder.h"

namespace SDI::RecordFrame {
namespace {

using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::Seal;
using TestSupport::WellFormedFrame;

constexpr std::size_t kNameAt = 17;
constexpr std::size_t kNumberAt = kNameAt + 34;
constexpr std::size_t kHeightAt = kNumberAt + 4;

// A name block and an antenna height, then other bytes.
ByteVector Frame() {
  return FrameBuilderC()
      .Times()
      .U16(0x0046)
      .NameUnits(u"P7")
      .I32(-12)
      .F32(1.5F)
      .U8(0)
      .Fill(9, 0xA5)
      .Frame();
}

// `frame` with the bytes at `at` replaced, and a correct checksum.
ByteVector With(ByteVector frame, std::size_t at, const ByteVector& bytes) {
  std::copy(bytes.begin(), bytes.end(), frame.begin() + static_cast<std::ptrdiff_t>(at));
  Seal(frame);
  return frame;
}

ByteVector Changed(ByteVector frame, const Changes& changes) {
  EXPECT_TRUE(Change(frame, changes));
  return frame;
}

void ExpectRefused(const ByteVector& frame, const Changes& changes) {
  ByteVector changed = frame;
  EXPECT_FALSE(Change(changed, changes));
  EXPECT_EQ(changed, frame);
}

TEST(RecordChange, ANumberReplacesOnlyTheNumber) {
  const ByteVector frame = Frame();
  Changes changes;
  for (const std::int32_t number :
       {0, 1, -1, std::numeric_limits<std::int32_t>::min(), 0x0403'0201}) {
    changes.number = number;
    EXPECT_EQ(Changed(frame, changes),
              With(frame, kNumberAt, FrameBuilderC().I32(number).Payload()));
  }
}

TEST(RecordChange, ANameReplacesOnlyItsUnits) {
  const ByteVector frame = Frame();
  Changes changes;
  for (const auto& [name, units] : {std::pair<std::string, std::u16string>{"", u""},
                                    {"A", u"A"},
                                    {"\xC3\xA4\xE2\x82\xAC", u"\u00E4\u20AC"},
                                    {"12345678901234567", u"12345678901234567"}}) {
    changes.name = name;
    EXPECT_EQ(Changed(frame, changes),
              With(frame, kNameAt, FrameBuilderC().NameUnits(units).Payload()));
  }
}

TEST(RecordChange, AnAntennaHeightReplacesHeightAndKind) {
  const ByteVector frame = Frame();
  Changes changes;
  changes.antenna = {2.25F, true};
  const ByteVector slant = With(frame, kHeightAt, FrameBuilderC().F32(2.25F).U8(1).Payload());
  EXPECT_EQ(Changed(frame, changes), slant);
  changes.antenna = {2.25F, false};
  EXPECT_EQ(Changed(slant, changes),
            With(frame, kHeightAt, FrameBuilderC().F32(2.25F).U8(0).Payload()));
}

TEST(RecordChange, SeveralChangesAreMadeAtOnceAndNoneChangesNothing) {
  const ByteVector frame = Frame();
  EXPECT_EQ(Changed(frame, {}), frame);
  Changes changes;
  changes.name = "B";
  changes.number = 7;
  changes.antenna = {0.5F, true};
  EXPECT_EQ(Changed(frame, changes),
            With(frame, kNameAt, FrameBuilderC().NameUnits(u"B").I32(7).F32(0.5F).U8(1).Payload()));
}

TEST(RecordChange, WhatAFrameCannotStoreIsRefused) {
  const ByteVector frame = Frame();
  Changes changes;
  const std::string tooManyUnits(18, 'n');
  for (const std::string& name :
       {tooManyUnits, std::string(50, 'n'), std::string("a\0b", 3), std::string("\xFF")}) {
    changes.name = name;
    ExpectRefused(frame, changes);
  }
  changes = {};
  for (const float height :
       {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN()}) {
    changes.antenna = {height, false};
    ExpectRefused(frame, changes);
  }
}

TEST(RecordChange, AFrameWithoutTheBlockIsRefused) {
  const ByteVector onlyHeight = FrameBuilderC().Times().U16(0x0004).F32(1.5F).U8(0).Frame();
  const ByteVector onlyName = FrameBuilderC().Times().U16(0x0002).NameUnits(u"P7").I32(1).Frame();
  Changes name;
  name.name = "A";
  Changes number;
  number.number = 3;
  Changes antenna;
  antenna.antenna = {1.0F, false};
  ExpectRefused(onlyHeight, name);
  ExpectRefused(onlyHeight, number);
  ExpectRefused(onlyName, antenna);
  Changed(onlyHeight, antenna);
  Changed(onlyName, name);
  Changed(onlyName, number);
}

// Blocks before the name, and frames of any content.
TEST(RecordChange, TheFieldsAreFoundAfterOtherBlocks) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 2'000; ++i) {
    const auto flags1 = static_cast<unsigned>(random() & 0x33FF) | 0x0006;
    const ByteVector frame = WellFormedFrame(flags1, static_cast<unsigned>(random()), random);
    const std::size_t shift = (flags1 & 0x0001) != 0 ? 12 : 0;
    Changes changes;
    changes.number = static_cast<std::int32_t>(random());
    ASSERT_EQ(Changed(frame, changes),
              With(frame, kNumberAt + shift, FrameBuilderC().I32(*changes.number).Payload()));
  }
}

}  // namespace
}  // namespace SDI::RecordFrame
