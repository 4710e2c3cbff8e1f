#ifndef SURVEYDATA_GNSS_TEXT_COLUMN_H_
#define SURVEYDATA_GNSS_TEXT_COLUMN_H_

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// \file
/// Internal: the texts of a measurement as valid UTF-8.

namespace SDI::TextColumn {

/// Returns the character that begins at unit `i`, and moves `i` after it. A surrogate pair is one
/// character, an unpaired surrogate U+FFFD.
inline char32_t TakeCharacter(const char16_t* units, std::size_t capacity, std::size_t& i) {
  const auto isHigh = [](char16_t unit) { return (unit & 0xFC00) == 0xD800; };
  const auto isLow = [](char16_t unit) { return (unit & 0xFC00) == 0xDC00; };
  const char16_t unit = units[i++];
  if (isHigh(unit) && i < capacity && isLow(units[i])) {
    return 0x10000 + ((unit & 0x3FFU) << 10) + (units[i++] & 0x3FFU);
  }
  return isHigh(unit) || isLow(unit) ? char32_t{0xFFFD} : char32_t{unit};
}

/// Writes `c` as UTF-8, at most four bytes, and returns their end.
inline char* PutCharacter(char32_t c, char* to) {
  const auto put = [&](char32_t byte) { *to++ = static_cast<char>(byte); };
  const auto putTail = [&](unsigned shift) { put(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) {
    put(c);
    return to;
  }
  if (c < 0x800) {
    put(0xC0 | c >> 6);
  } else {
    if (c < 0x10000) {
      put(0xE0 | c >> 12);
    } else {
      put(0xF0 | c >> 18);
      putTail(12);
    }
    putTail(6);
  }
  putTail(0);
  return to;
}

/// Writes the rest of a text, starting at unit `i`, for any characters. The parameters and the
/// result are those of `Write`.
std::size_t WriteRest(const char16_t* units, std::size_t i, std::size_t capacity, char* to);

#if defined(__SSE2__)
/// The start of a text that `PackAscii` has written.
struct PackedAscii {
  std::size_t size;  ///< In units, and in bytes.
  bool isWhole;      ///< Whether the next unit is 0.
};

/// Writes `units`, which need no alignment, as ASCII up to the first 0, sixteen at a time. Stops at
/// the sixteen that have another character or are not all below `capacity`. Up to 16 bytes after
/// the text may be overwritten.
inline PackedAscii PackAscii(const void* units, std::size_t capacity, char* to) {
  const auto* const bytes = static_cast<const std::uint8_t*>(units);
  std::size_t i = 0;
  for (; capacity - i >= 16; i += 16) {
    const auto* const from = reinterpret_cast<const __m128i_u*>(bytes + i * sizeof(char16_t));
    const __m128i low = _mm_loadu_si128(from);
    const __m128i high = _mm_loadu_si128(from + 1);
    const __m128i none = _mm_setzero_si128();
    // Units above 0x7F become bytes above 0x7F or, if they are negative as signed numbers, 0.
    const __m128i packed = _mm_packus_epi16(low, high);
    const __m128i isEnd = _mm_packs_epi16(_mm_cmpeq_epi16(low, none), _mm_cmpeq_epi16(high, none));
    const auto ends = static_cast<unsigned>(_mm_movemask_epi8(isEnd));
    const auto zeros = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(packed, none)));
    const unsigned others =
        static_cast<unsigned>(_mm_movemask_epi8(packed)) | (zeros ^ ends);  // not ASCII
    const auto end = static_cast<std::size_t>(std::countr_zero(ends | 0x10000));
    if (static_cast<std::size_t>(std::countr_zero(others | 0x10000)) < end) break;
    _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to + i), packed);
    if (end != 16) return {i + end, true};
  }
  return {i, false};
}
#endif

/// Writes `units`, up to the first 0 or `capacity`, as UTF-8 and returns the number of bytes: at
/// most three for each unit. Surrogate pairs become their character, unpaired surrogates U+FFFD.
inline std::size_t Write(const char16_t* units, std::size_t capacity, char* to) {
  std::size_t i = 0;
#if defined(__SSE2__)
  const PackedAscii start = PackAscii(units, capacity, to);
  if (start.isWhole) return start.size;
  i = start.size;
#endif
  return WriteRest(units, i, capacity, to);
}

}  // namespace SDI::TextColumn

#endif  // SURVEYDATA_GNSS_TEXT_COLUMN_H_
