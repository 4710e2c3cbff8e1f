#ifndef SURVEYDATA_TESTS_OBJECT_MODEL_FIXED_STRING_MODEL_H_
#define SURVEYDATA_TESTS_OBJECT_MODEL_FIXED_STRING_MODEL_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/object_model/fixed_string.h>

/// \file
/// A reference model of the fixed strings: their rules step by step, regardless of speed.

namespace Model {

inline constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

/// Calls `test` with an integral constant of every capacity.
template <class Test>
void ForEachCapacity(Test test) {
  [&]<std::uint16_t... N>(std::integer_sequence<std::uint16_t, N...>) {
    const auto run = [&](auto capacity) {
      SCOPED_TRACE(testing::Message() << "capacity " << capacity());
      test(capacity);
    };
    (run(std::integral_constant<std::uint16_t, N>()), ...);
  }
  (std::integer_sequence<std::uint16_t, 10, 16, 24, 30, 32, 60, 64, 240, 254, 255>());
}

template <std::uint16_t N>
std::u16string Units(const API::FixedStringC<N>& text) {
  return {text.GetData(), static_cast<std::size_t>(text.GetLength())};
}

template <std::uint16_t N>
API::FixedStringC<N> Text(const std::u16string& units) {
  API::FixedStringC<N> text;
  for (const char16_t unit : units) text += unit;  // including 0 units
  return text;
}

/// `count` units; adjacent units differ.
inline std::u16string Counting(std::size_t count, char16_t first = u'a') {
  std::u16string units;
  for (std::size_t i = 0; i < count; ++i) units += static_cast<char16_t>(first + i % 26);
  return units;
}

inline bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) >> 6) == 2; }

struct Decoded {
  int result = 0;
  std::size_t consumed = 0;
  std::size_t length = 0;
  char16_t units[256] = {};
};

/// Decodes 0-terminated bytes.
inline Decoded FromUtf8(const char* src, std::size_t limit, std::size_t capacity) {
  Decoded out;
  if (limit == kNoLimit) limit = 3 * capacity;
  std::size_t characters = 0;
  do {
    const unsigned b = static_cast<unsigned char>(src[out.consumed]);
    const std::size_t left = limit - out.consumed;
    unsigned unit = 0;
    if (b == 0) break;
    if (b >= 0x80 && b <= 0xBF) {
      out.result = -3;
      return out;
    }
    if (b >= 0xE0) {
      if (left < 3) {
        out.result = -2;
        return out;
      }
      const char b1 = src[out.consumed + 1];
      if (!IsContinuation(b1)) {
        out.result = -3;
        return out;
      }
      const char b2 = src[out.consumed + 2];
      if (!IsContinuation(b2)) {
        out.result = -3;
        return out;
      }
      unit = (b << 12) | ((static_cast<unsigned>(b1) & 0x3F) << 6) |
             (static_cast<unsigned>(b2) & 0x3F);
      out.consumed += 3;
    } else if (b >= 0xC0) {
      if (left < 2) {
        out.result = -2;
        return out;
      }
      const char b1 = src[out.consumed + 1];
      if (!IsContinuation(b1)) {
        out.result = -3;
        return out;
      }
      unit = ((b & 0x1F) << 6) | (static_cast<unsigned>(b1) & 0x3F);
      out.consumed += 2;
    } else {
      unit = b;
      out.consumed += 1;
    }
    if (out.length < capacity) out.units[out.length++] = static_cast<char16_t>(unit & 0xFFFF);
    ++characters;
  } while (out.consumed <= limit);
  out.result = characters <= capacity ? 0 : -1;
  return out;
}

struct Encoded {
  std::size_t needed = 0;
  std::string written;  ///< With the terminator, if there was room.
};

/// Encodes units up to the first 0, and the terminator, into `space` bytes.
inline Encoded ToUtf8(const std::u16string& units, std::size_t space) {
  Encoded out;
  for (const char16_t c : units) {
    const unsigned u = c;
    if (u == 0) break;
    std::string sequence;
    if (u < 0x80) {
      sequence += static_cast<char>(u);
    } else if (u < 0x800) {
      sequence += static_cast<char>(0xC0 | u >> 6);
      sequence += static_cast<char>(0x80 | (u & 0x3F));
    } else {
      sequence += static_cast<char>(0xE0 | u >> 12);
      sequence += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      sequence += static_cast<char>(0x80 | (u & 0x3F));
    }
    out.needed += sequence.size();
    if (space - out.written.size() >= sequence.size()) out.written += sequence;
  }
  if (space > out.written.size()) out.written += '\0';
  return out;
}

/// The bytes of a text in hexadecimal, for messages.
inline std::string Hex(const std::string& bytes) {
  std::string hex;
  char digits[4];
  for (const char c : bytes) {
    std::snprintf(digits, sizeof(digits), "%02X ", static_cast<unsigned char>(c));
    hex += digits;
  }
  return hex;
}

/// Units that mostly need one, two or three bytes of UTF-8, or a mixture, including lone
/// surrogates.
inline std::u16string RandomUnits(std::mt19937_64& random, std::size_t count) {
  std::u16string units;
  const unsigned kind = static_cast<unsigned>(random() % 8);
  while (units.size() < count) {
    switch (kind < 3 ? kind : random() % 4) {
      case 0:
        units += static_cast<char16_t>(1 + random() % 0x7F);
        break;
      case 1:
        units += static_cast<char16_t>(0x80 + random() % 0x780);
        break;
      case 2:
        units += static_cast<char16_t>(0x800 + random() % 0xF800);
        break;
      default:
        units += random() % 50 == 0 ? std::u16string(1, u'\0') : u"abcdefgh";
        break;
    }
  }
  units.resize(count);
  return units;
}

}  // namespace Model

#endif  // SURVEYDATA_TESTS_OBJECT_MODEL_FIXED_STRING_MODEL_H_
