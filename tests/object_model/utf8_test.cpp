#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/object_model/utf8.h>

namespace {

using API::Utf8::Decode;
using API::Utf8::Decoded;
using API::Utf8::DecodeRules;
using API::Utf8::DecodeText;
using API::Utf8::Encode;

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

constexpr DecodeRules kAllRules[] = {{false, false}, {false, true}, {true, false}, {true, true}};

// The UTF-8 bytes of one unit.
std::string Sequence(char16_t unit) {
  const unsigned u = unit;
  const auto byte = [](unsigned value) { return static_cast<char>(value); };
  if (u < 0x80) return {byte(u)};
  if (u < 0x800) return {byte(0xC0 | u >> 6), byte(0x80 | (u & 0x3F))};
  return {byte(0xE0 | u >> 12), byte(0x80 | (u >> 6 & 0x3F)), byte(0x80 | (u & 0x3F))};
}

std::string Bytes(const std::u16string& units) {
  std::string bytes;
  for (const char16_t unit : units) bytes += Sequence(unit);
  return bytes;
}

struct DecodedText {
  int result = 0;
  std::size_t bytes = 0;
  std::size_t characters = 0;
  std::u16string units;

  bool operator==(const DecodedText&) const = default;
};

void PrintTo(const DecodedText& text, std::ostream* out) {
  *out << "result " << text.result << ", " << text.bytes << " bytes, " << text.characters
       << " characters:";
  for (const unsigned unit : text.units) *out << ' ' << unit;
}

// A model of `Decode`, one character at a time. `source` has a byte at the limit.
DecodedText ModelDecode(const std::string& source, std::size_t limit, std::size_t capacity,
                        DecodeRules rules) {
  DecodedText text;
  std::u16string units;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(source.at(at)); };
  const auto continues = [&](std::size_t at) { return byte(at) >> 6 == 2; };
  while (text.bytes < limit + (rules.readsByteAtLimit ? 1 : 0) && byte(text.bytes) != 0) {
    const unsigned lead = byte(text.bytes);
    const std::size_t left = limit - text.bytes;
    const bool isLead = lead >= 0xC0 && (lead < 0xF0 || rules.acceptsLeadsFromF0);
    const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : 3;
    if (lead >= 0x80 && !isLead) {
      text.result = -3;
      break;
    }
    if (size > 1 && left < size) {
      text.result = -2;
      break;
    }
    unsigned unit = size == 1 ? lead : size == 2 ? lead & 0x1F : lead & 0x0F;
    bool isWhole = true;
    for (std::size_t i = 1; i < size && isWhole; ++i) {
      isWhole = continues(text.bytes + i);
      unit = unit << 6 | (byte(text.bytes + i) & 0x3F);
    }
    if (!isWhole) {
      text.result = -3;
      break;
    }
    units += static_cast<char16_t>(unit);
    text.bytes += size;
  }
  text.characters = units.size();
  if (text.result == 0 && units.size() > capacity) text.result = -1;
  units.resize(capacity);  // the remaining units are cleared
  text.units = units;
  return text;
}

// Decodes from and to heap blocks of exact size, so that AddressSanitizer detects accesses beyond
// them.
DecodedText DecodeExactly(const std::string& source, std::size_t limit, std::size_t capacity,
                          DecodeRules rules) {
  const std::vector<char> bytes(
      source.begin(),
      source.begin() + static_cast<std::ptrdiff_t>(limit + (rules.readsByteAtLimit ? 1 : 0)));
  std::vector<char16_t> units(capacity, u'#');
  const Decoded decoded = Decode(bytes.data(), limit, units.data(), capacity, rules);
  return {decoded.result, decoded.bytes, decoded.characters, {units.begin(), units.end()}};
}

void ExpectDecodesLikeTheModel(const std::string& bytes, std::size_t limit, std::size_t capacity) {
  for (const DecodeRules rules : kAllRules) {
    ASSERT_EQ(DecodeExactly(bytes + '\0', limit, capacity, rules),
              ModelDecode(bytes + '\0', limit, capacity, rules))
        << testing::PrintToString(bytes) << ", limit " << limit << ", capacity " << capacity
        << ", rules " << rules.readsByteAtLimit << rules.acceptsLeadsFromF0;
  }
}

// Texts with one, two and three bytes per character, and mixed ones, longer than two blocks.
const std::u16string kTexts[] = {
    u"abcdefghijklmnopqrstuvw",
    u"\u0080\u07ff\u00e9\u0101\u0080\u07ff\u00e9\u0101\u0080\u07ff\u00e9\u0101\u0080\u07ff\u00e9",
    u"\u0800\uffff\u20ac\xd800\u0800\uffff\u20ac\xdc00\u0800\uffff\u20ac\xd83d\u0800\uffff\u20ac",
    u"a\u00e9\u20acb\u07ff\xdfff"
    u"cd\u0800\u0800"
    u"ef\u0080gh\u20ac\u20ac\u20aci",
};

// --- Decoding -----------------------------------------------------------------------------------

TEST(Utf8Decode, EveryLeadWithContinuationsAroundTheirLimits) {
  const unsigned seconds[] = {0x00, 0x01, 0x41, 0x7F, 0x80, 0x81, 0xA9, 0xBF, 0xC0, 0xE2, 0xFF};
  for (unsigned lead = 0; lead < 256; ++lead) {
    for (const unsigned second : seconds) {
      for (const unsigned third : seconds) {
        const std::string bytes{static_cast<char>(lead), static_cast<char>(second),
                                static_cast<char>(third)};
        for (std::size_t limit = 0; limit <= 3; ++limit) {
          ASSERT_NO_FATAL_FAILURE(ExpectDecodesLikeTheModel(bytes, limit, 4));
        }
      }
    }
  }
}

// An error of each kind at each position: within blocks, between them and in the rest.
TEST(Utf8Decode, FaultsAtEveryPlaceOfEveryKindOfText) {
  const std::string faults[] = {std::string(1, '\0'),
                                "\x80",
                                "\xBF",
                                "\xC3",
                                "\xC3x",
                                "\xE2",
                                "\xE2\x82",
                                "\xE2\x82x",
                                "\xE2x\x82",
                                "\xF0\x9F\x98\x80",
                                "\xFF",
                                "\xC0\x80",
                                "\xE0\x80\x80"};
  for (const std::u16string& text : kTexts) {
    for (const std::string& fault : faults) {
      for (std::size_t at = 0; at <= text.size(); ++at) {
        const std::string bytes = Bytes(text.substr(0, at)) + fault + Bytes(text.substr(at));
        ASSERT_NO_FATAL_FAILURE(ExpectDecodesLikeTheModel(bytes, bytes.size(), 40));
      }
    }
  }
}

TEST(Utf8Decode, EveryLimitAndCapacityOfEveryKindOfText) {
  for (const std::u16string& text : kTexts) {
    const std::string bytes = Bytes(text);
    for (std::size_t limit = 0; limit <= bytes.size(); ++limit) {
      for (std::size_t capacity = 0; capacity <= text.size() + 1; ++capacity) {
        ASSERT_NO_FATAL_FAILURE(ExpectDecodesLikeTheModel(bytes, limit, capacity));
      }
    }
  }
}

TEST(Utf8Decode, EveryUnitComesBack) {
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    const std::u16string text(1, static_cast<char16_t>(unit));
    const std::string bytes = Bytes(text);
    for (const DecodeRules rules : kAllRules) {
      ASSERT_EQ(DecodeExactly(bytes + '\0', bytes.size(), 1, rules),
                (DecodedText{0, bytes.size(), 1, text}));
    }
  }
}

TEST(Utf8Decode, WithoutBytesThereMayBeNoSource) {
  char16_t units[] = {u'#', u'#'};
  const Decoded decoded = Decode(nullptr, 0, units, 2, {false, false});
  EXPECT_EQ(decoded.result, 0);
  EXPECT_EQ(decoded.bytes, 0U);
  EXPECT_EQ(units[0], 0);
  EXPECT_EQ(units[1], 0);
}

TEST(Utf8Decode, TheLimitMayPromiseMoreThanThereIs) {
  const std::string source = "abcdefghijk";
  char16_t units[20];
  EXPECT_EQ(Decode(source.c_str(), kUnlimited, units, 20, {false, false}).characters, 11U);
}

// --- Decoding a fixed text ----------------------------------------------------------------------

TEST(Utf8DecodeText, ReportsBytesAndLengthAndTerminates) {
  char16_t units[4] = {u'#', u'#', u'#', u'#'};
  std::uint64_t length = 77;
  std::size_t inOut = 3;
  EXPECT_EQ(DecodeText("a\xC3\xA9", &inOut, units, 3, length), 0);
  EXPECT_EQ(inOut, 3U);
  EXPECT_EQ(length, 2U);
  EXPECT_EQ(std::u16string(units, 4), std::u16string(u"a\u00e9\0\0", 4));

  inOut = 5;
  EXPECT_EQ(DecodeText("abcde", &inOut, units, 3, length), -1);
  EXPECT_EQ(inOut, 5U);
  EXPECT_EQ(length, 3U);
  EXPECT_EQ(std::u16string(units, 4), std::u16string(u"abc\0", 4));

  inOut = 3;
  EXPECT_EQ(DecodeText("a\xE2\x82", &inOut, units, 3, length), -2);
  EXPECT_EQ(inOut, 1U);
  EXPECT_EQ(length, 1U);
}

TEST(Utf8DecodeText, TakesThreeBytesAUnitWithoutALimit) {
  const std::string source(20, 'x');
  char16_t units[4];
  std::uint64_t length = 0;
  EXPECT_EQ(DecodeText(source.c_str(), nullptr, units, 3, length), -1);
  EXPECT_EQ(length, 3U);
  std::size_t inOut = kUnlimited;
  EXPECT_EQ(DecodeText(source.c_str(), &inOut, units, 3, length), -1);
  EXPECT_EQ(inOut, 10U);  // including one byte exactly at the limit
}

TEST(Utf8DecodeText, WithoutASourceOnlyTheCountChanges) {
  char16_t units[] = {u'#', u'#'};
  std::uint64_t length = 77;
  std::size_t inOut = 5;
  EXPECT_EQ(DecodeText(nullptr, &inOut, units, 1, length), 0);
  EXPECT_EQ(inOut, 0U);
  EXPECT_EQ(length, 77U);
  EXPECT_EQ(units[0], u'#');
  EXPECT_EQ(DecodeText(nullptr, nullptr, units, 1, length), 0);
}

// --- Encoding -----------------------------------------------------------------------------------

struct EncodedText {
  std::size_t needed = 0;
  std::string bytes;

  bool operator==(const EncodedText&) const = default;
};

void PrintTo(const EncodedText& text, std::ostream* out) {
  *out << text.needed << " bytes: " << testing::PrintToString(text.bytes);
}

// A model of `Encode`, one unit at a time, writing over `#` characters.
EncodedText ModelEncode(const std::u16string& units, std::size_t space) {
  EncodedText text{0, std::string(space, '#')};
  std::size_t at = 0;
  for (const char16_t unit : units) {
    if (unit == 0) {
      if (at < space) text.bytes[at] = '\0';
      break;
    }
    const std::string sequence = Sequence(unit);
    text.needed += sequence.size();
    if (at + sequence.size() > space) continue;
    text.bytes.replace(at, sequence.size(), sequence);
    at += sequence.size();
  }
  return text;
}

EncodedText EncodeExactly(const std::u16string& units, std::size_t space) {
  const std::vector<char16_t> source(units.begin(), units.end());
  std::vector<char> bytes(space, '#');
  const std::size_t needed = Encode(source.data(), source.size(), bytes.data(), space);
  return {needed, {bytes.begin(), bytes.end()}};
}

TEST(Utf8Encode, EveryKindOfTextIntoEverySpace) {
  for (const std::u16string& text : kTexts) {
    for (std::size_t space = 1; space <= 3 * text.size() + 2; ++space) {
      ASSERT_EQ(EncodeExactly(text, space), ModelEncode(text, space)) << space;
      const std::u16string ended = text + u'\0' + text;
      ASSERT_EQ(EncodeExactly(ended, space), ModelEncode(ended, space)) << space;
    }
  }
}

// The smallest and largest units of each length, and the end of a text, at each position of each
// kind of text.
TEST(Utf8Encode, UnitsAtTheEdgesOfEachLengthAtEveryPlace) {
  const char16_t edges[] = {0, 1, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xD800, 0xDFFF, 0xE000, 0xFFFF};
  for (const std::u16string& text : kTexts) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      for (const char16_t edge : edges) {
        std::u16string changed = text;
        changed[at] = edge;
        for (const std::size_t space : {std::size_t{24}, 3 * text.size() + 1}) {
          ASSERT_EQ(EncodeExactly(changed, space), ModelEncode(changed, space)) << at;
        }
      }
    }
  }
}

TEST(Utf8Encode, CountsWithoutADestination) {
  for (const std::u16string& text : kTexts) {
    EXPECT_EQ(Encode(text.data(), text.size(), nullptr, kUnlimited), Bytes(text).size());
  }
}

TEST(Utf8Encode, SpaceMayBeUnlimited) {
  for (const std::u16string& text : kTexts) {
    std::vector<char> bytes(Bytes(text).size());
    EXPECT_EQ(Encode(text.data(), text.size(), bytes.data(), kUnlimited), bytes.size());
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), Bytes(text));
  }
}

}  // namespace
