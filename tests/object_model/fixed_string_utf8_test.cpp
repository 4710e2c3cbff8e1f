#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/object_model/fixed_string.h>

#include "tests/object_model/fixed_string_model.h"
#include "tests/support/number_of_cases.h"

namespace {

using API::FixedStringC;
using Model::Hex;
using Model::kNoLimit;
using Model::RandomUnits;

// Whether the decoded `text` and the reported result equal those of the model.
template <std::uint16_t N>
bool Agrees(const FixedStringC<N>& text, int result, std::size_t consumed,
            const Model::Decoded& model) {
  return result == model.result && consumed == model.consumed && text.GetLength() == model.length &&
         text.IsValid() &&
         std::memcmp(text.GetData(), model.units, (N + 1) * sizeof(char16_t)) == 0;
}

// Decodes bytes from a heap block that ends with their terminator, so that a sanitizer detects
// reads beyond it.
template <std::uint16_t N>
void ExpectDecodesLikeModel(const std::string& bytes, std::size_t limit) {
  const std::vector<char> source(bytes.c_str(), bytes.c_str() + bytes.size() + 1);
  FixedStringC<N> text(u"before");
  std::size_t consumed = limit;
  const int result = text.FromUtf8(source.data(), &consumed);
  const Model::Decoded model = Model::FromUtf8(source.data(), limit, N);
  EXPECT_TRUE(Agrees(text, result, consumed, model))
      << "limit " << limit << ", bytes " << Hex(bytes) << "\nresult " << result << ", model "
      << model.result << "; consumed " << consumed << ", model " << model.consumed << "; length "
      << text.GetLength() << ", model " << model.length;
}

TEST(FixedStringFromUtf8, DecodesTheKnownExamples) {
  const struct {
    const char* bytes;
    std::size_t limit;
    int result;
    std::size_t consumed;
    std::u16string units;
  } cases[] = {
      {"\xC3\xA9", 2, 0, 2, u"\u00E9"},
      {"\xE2\x82", 2, -2, 0, u""},
      {"\xA9", 1, -3, 0, u""},
      {"\xA9", kNoLimit, -3, 0, u""},
      {"ab\xE2\x82\xAC", 5, 0, 5, u"ab\u20AC"},
      {"ab\xE2\x82\xAC", 4, -2, 2, u"ab"},
      {"ab\xC3", 3, -2, 2, u"ab"},
      {"ab\xC3", 9, -3, 2, u"ab"},  // the terminator is not a continuation byte
      {"ab\xE2\x82", 9, -3, 2, u"ab"},
      {"a\xE2x\x82", 9, -3, 1, u"a"},
      {"", 0, 0, 0, u""},
      {"", kNoLimit, 0, 0, u""},
      {"abc", 0, 0, 1, u"a"},  // the byte at the limit is decoded
      {"abc", 2, 0, 3, u"abc"},
      {"\xC3\xA9", 0, -2, 0, u""},
      {"\xA9", 0, -3, 0, u""},
      {"a\xC3\xA9", 1, -2, 1, u"a"},
      {"\xC1\x81", 2, 0, 2, u"A"},  // overlong sequences are accepted
      {"\xE0\x81\x81", 3, 0, 3, u"A"},
      {"\xED\xA0\x80", 3, 0, 3, std::u16string(1, char16_t{0xD800})},
      {"\xF1\x82\x83", 3, 0, 3, u"\u1083"},  // lead bytes F0 to FF are like E0 to EF
      {"\xFF\xBF\xBF", 3, 0, 3, u"\uFFFF"},
      {"\xF0\x90\x8D\x88", 4, -3, 3, u"\u040D"},  // the fourth byte is a stray continuation byte
      {"\xC0\x80"
       "b",
       3, 0, 3, std::u16string(u"\0b", 2)},  // a unit of 0
  };
  for (const auto& [bytes, limit, result, consumed, units] : cases) {
    SCOPED_TRACE(testing::Message() << Hex(bytes) << "limit " << limit);
    FixedStringC<10> text(u"before");
    std::size_t length = limit;
    EXPECT_EQ(text.FromUtf8(bytes, &length), result);
    EXPECT_EQ(length, consumed);
    EXPECT_EQ(Model::Units(text), units);
    ExpectDecodesLikeModel<10>(bytes, limit);
  }
}

TEST(FixedStringFromUtf8, LeavesTheTextForANullSource) {
  FixedStringC<10> text(u"before");
  std::size_t length = 5;
  EXPECT_EQ(text.FromUtf8(nullptr, &length), 0);
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(Model::Units(text), u"before");
  EXPECT_EQ(text.FromUtf8(nullptr, nullptr), 0);
  EXPECT_EQ(Model::Units(text), u"before");
}

TEST(FixedStringFromUtf8, WithoutALengthTakesWhatFits) {
  FixedStringC<10> text;
  EXPECT_EQ(text.FromUtf8("caf\xC3\xA9", nullptr), 0);
  EXPECT_EQ(Model::Units(text), u"caf\u00E9");
}

TEST(FixedStringFromUtf8, KeepsTheFirstUnitsOfATextThatIsTooLong) {
  Model::ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    for (const char* character : {"a", "\xC3\xA9", "\xE2\x82\xAC"}) {
      for (const int count : {N - 1, N + 0, N + 1, 2 * N}) {
        std::string bytes;
        for (int i = 0; i < count; ++i) bytes += character;
        FixedStringC<N> text;
        std::size_t length = bytes.size();
        EXPECT_EQ(text.FromUtf8(bytes.c_str(), &length), count > N ? -1 : 0);
        EXPECT_EQ(length, bytes.size());
        EXPECT_EQ(text.GetLength(), static_cast<std::size_t>(std::min<int>(count, N)));
        ExpectDecodesLikeModel<N>(bytes, bytes.size());
        ExpectDecodesLikeModel<N>(bytes, kNoLimit);
        ExpectDecodesLikeModel<N>(bytes + "\xA9", kNoLimit - 1);  // an error takes precedence
      }
    }
  });
}

TEST(FixedStringFromUtf8, ReadsAtMostThreeBytesAUnitAndOneMoreByDefault) {
  Model::ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    // No terminator: a sanitizer reports a read beyond the last byte.
    const std::vector<char> ascii(3 * N + 1, 'x');
    FixedStringC<N> text;
    std::size_t length = kNoLimit;
    EXPECT_EQ(text.FromUtf8(ascii.data(), &length), -1);
    EXPECT_EQ(length, 3U * N + 1);
    std::string bytes;
    for (std::size_t i = 0; i < N; ++i) bytes += "\xE2\x82\xAC";
    length = kNoLimit;
    EXPECT_EQ(text.FromUtf8(bytes.c_str(), &length), 0);
    EXPECT_EQ(length, 3U * N);
    EXPECT_EQ(text.GetLength(), N);
  });
}

// Every text of three bytes, with every limit.
class FixedStringFromUtf8ThreeBytes : public testing::TestWithParam<std::size_t> {};

TEST_P(FixedStringFromUtf8ThreeBytes, AllDecodeLikeTheModel) {
  char bytes[4] = {};
  FixedStringC<10> text;
  for (unsigned value = 0; value < 0x1000000; value += TestSupport::kOneCaseIn) {
    bytes[0] = static_cast<char>(value >> 16);
    bytes[1] = static_cast<char>(value >> 8);
    bytes[2] = static_cast<char>(value);
    std::size_t consumed = GetParam();
    const int result = text.FromUtf8(bytes, &consumed);
    if (!Agrees(text, result, consumed, Model::FromUtf8(bytes, GetParam(), 10))) {
      ExpectDecodesLikeModel<10>(bytes, GetParam());
      FAIL() << Hex({bytes, 3});
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Limits, FixedStringFromUtf8ThreeBytes,
                         testing::Values(0, 1, 2, 3, kNoLimit));

TEST(FixedStringFromUtf8, AllOneAndTwoByteTextsDecodeLikeTheModel) {
  for (unsigned value = 0; value < 0x10000; ++value) {
    const std::string two{static_cast<char>(value >> 8), static_cast<char>(value)};
    for (const std::size_t limit :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}, kNoLimit}) {
      if (value < 0x100) ExpectDecodesLikeModel<10>(two.substr(1), limit);
      ExpectDecodesLikeModel<10>(two, limit);
    }
    if (testing::Test::HasFailure()) return;
  }
}

// The same within a text long enough to be decoded in blocks, at each position of a block.
TEST(FixedStringFromUtf8, AllThreeBytesDecodeLikeTheModelInsideALongText) {
  constexpr std::size_t kLength = 34;
  char bytes[kLength + 1] = {};
  FixedStringC<30> text;
  for (unsigned value = 0; value < 0x1000000; value += TestSupport::kOneCaseIn) {
    const unsigned spread = value * 2654435761U;
    const std::size_t at = 8 + (spread >> 29);
    std::memset(bytes, 'x', kLength);
    bytes[at] = static_cast<char>(value >> 16);
    bytes[at + 1] = static_cast<char>(value >> 8);
    bytes[at + 2] = static_cast<char>(value);
    std::size_t consumed = kLength;
    const int result = text.FromUtf8(bytes, &consumed);
    if (!Agrees(text, result, consumed, Model::FromUtf8(bytes, kLength, 30))) {
      FAIL() << Hex({bytes, kLength});
    }
  }
}

// Texts composed of complete characters of each length, runs of one kind, and single bytes.
std::string RandomBytes(std::mt19937_64& random, std::size_t most) {
  const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
  const auto add = [&](std::string& bytes, unsigned first, unsigned count) {
    bytes += static_cast<char>(first);
    for (unsigned i = 1; i < count; ++i) bytes += static_cast<char>(0x80 + below(0x40));
  };
  std::string bytes;
  const unsigned faults = below(3) == 0 ? 40 : 2000;
  const unsigned kind = below(6);
  while (bytes.size() < most) {
    switch (below(faults) == 0 ? 4 + below(3) : kind < 3 ? kind : below(4)) {
      case 0:
        bytes += static_cast<char>(1 + below(0x7F));
        break;
      case 1:
        add(bytes, 0xC0 + below(0x20), 2);
        break;
      case 2:
        add(bytes, 0xE0 + below(0x20), 3);
        break;
      case 3:
        bytes += "abcdefgh";
        break;
      case 4:
        bytes += static_cast<char>(below(0x100));
        break;
      case 5:
        bytes += static_cast<char>(0x80 + below(0x80));
        break;
      default:
        add(bytes, 0xC0 + below(0x40), 1 + below(3));
        break;
    }
  }
  bytes.resize(most);
  return bytes;
}

TEST(FixedStringFromUtf8, RandomTextsDecodeLikeTheModel) {
  std::mt19937_64 random(20260101);
  for (int round = 0; round < 4000; ++round) {
    Model::ForEachCapacity([&](auto capacity) {
      constexpr std::uint16_t N = capacity();
      const std::string bytes = RandomBytes(random, random() % (4 * N));
      ExpectDecodesLikeModel<N>(bytes, kNoLimit);
      ExpectDecodesLikeModel<N>(bytes, bytes.size());
      ExpectDecodesLikeModel<N>(bytes, random() % (bytes.size() + 2));
      ExpectDecodesLikeModel<N>(bytes, bytes.size() + random() % 1000);
    });
    ASSERT_FALSE(HasFailure()) << "round " << round;
  }
}

// Writes into a block of exactly `space` bytes between guards.
template <std::uint16_t N>
void ExpectEncodesLikeModel(const FixedStringC<N>& text, std::size_t space) {
  const Model::Encoded model = Model::ToUtf8(Model::Units(text), space);
  std::vector<char> block(space, '\x55');
  std::vector<char> expected = block;
  std::copy(model.written.begin(), model.written.end(), expected.begin());
  char none;  // the destination of an empty block must not be null
  const int result = text.ToUtf8(space != 0 ? block.data() : &none, space);
  EXPECT_EQ(result, static_cast<int>(model.needed));
  EXPECT_EQ(block, expected) << "space " << space << ", text "
                             << testing::PrintToString(Model::Units(text));
}

TEST(FixedStringToUtf8, CountsForANullDestination) {
  const auto text = Model::Text<10>(u"\u00E9\u20AC");
  EXPECT_EQ(text.ToUtf8(nullptr, 0), 5);
  EXPECT_EQ(text.ToUtf8(nullptr, 100), 5);
  EXPECT_EQ(FixedStringC<10>().ToUtf8(nullptr, 0), 0);
  EXPECT_EQ(Model::Text<255>(std::u16string(255, u'\u20AC')).ToUtf8(nullptr, 1000), 765);
}

TEST(FixedStringToUtf8, SkipsWhatDoesNotFitAndContinues) {
  const auto text = Model::Text<10>(u"\u20AC\u0041");
  char bytes[4] = {'\x55', '\x55', '\x55', '\x55'};
  EXPECT_EQ(text.ToUtf8(bytes, 2), 4);
  EXPECT_EQ(std::string(bytes, 4), std::string("A\0\x55\x55", 4));
}

TEST(FixedStringToUtf8, EndsAtAUnitOfZero) {
  const auto text = Model::Text<10>(std::u16string(u"ab\0cd", 5));
  char bytes[6] = {};
  EXPECT_EQ(text.ToUtf8(bytes, sizeof(bytes)), 2);
  EXPECT_STREQ(bytes, "ab");
}

TEST(FixedStringToUtf8, EncodesEveryUnitLikeTheModelAndBack) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    SCOPED_TRACE(unit);
    // Alone, and at each position of a text that is encoded in blocks.
    for (const std::size_t length : {1U, 20U}) {
      auto units = Model::Counting(length);
      const std::size_t at = unit % length;
      units[at] = static_cast<char16_t>(unit);
      const auto text = Model::Text<24>(units);
      for (const std::size_t space : {std::size_t{0}, std::size_t{1}, std::size_t{2},
                                      std::size_t{3}, std::size_t{4}, std::size_t{64}}) {
        ExpectEncodesLikeModel(text, space);
      }
      if (unit == 0) continue;  // would end the text
      std::array<char, 3 * 24 + 1> bytes;
      std::size_t size = static_cast<std::size_t>(text.ToUtf8(bytes.data(), bytes.size()));
      FixedStringC<24> back;
      EXPECT_EQ(back.FromUtf8(bytes.data(), &size), 0);
      EXPECT_EQ(back, text);
    }
    if (HasFailure()) return;
  }
}

TEST(FixedStringToUtf8, RandomTextsEncodeLikeTheModelAtEveryDestinationSize) {
  std::mt19937_64 random(20260101);
  for (int round = 0; round < 100; ++round) {
    Model::ForEachCapacity([&](auto capacity) {
      constexpr std::uint16_t N = capacity();
      const auto text = Model::Text<N>(RandomUnits(random, random() % (N + 1)));
      const std::size_t needed = static_cast<std::size_t>(text.ToUtf8(nullptr, 0));
      for (std::size_t space = 0; space <= needed + 26; ++space)
        ExpectEncodesLikeModel(text, space);
    });
    ASSERT_FALSE(HasFailure()) << "round " << round;
  }
}

TEST(FixedStringToUtf8, SpaceMayBeUnlimited) {
  char bytes[3 * 255 + 1];
  const FixedStringC<255> text(std::u16string(255, u'\u20AC').c_str());
  EXPECT_EQ(text.ToUtf8(bytes, SIZE_MAX), 765);
  EXPECT_EQ(std::string(bytes, 765).substr(762), "\xE2\x82\xAC");
  EXPECT_EQ(bytes[765], '\0');
}

TEST(FixedStringToUtf8, FullTextsOfEachKindEncodeLikeTheModelAtEveryDestinationSize) {
  Model::ForEachCapacity([](auto capacity) {
    constexpr std::uint16_t N = capacity();
    for (const char16_t unit : {u'a', u'\u00E9', u'\u20AC'}) {
      const auto text = Model::Text<N>(std::u16string(N, unit));
      for (std::size_t space = 0; space <= 3 * N + 2; ++space) ExpectEncodesLikeModel(text, space);
    }
  });
}

}  // namespace
