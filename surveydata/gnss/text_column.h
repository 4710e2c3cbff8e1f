#ifndef SURVEYDATA_GNSS_TEXT_COLUMN_H_
#define SURVEYDATA_GNSS_TEXT_COLUMN_H_

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// \file
/// Internal: UTF-8 that every reader accepts, of texts of a measurement.

namespace SDI::TextColumn {

/// The rest of a text, from its unit `i` on, of which not all need be ASCII.
std::size_t WriteRest(const char16_t* units, std::size_t i, std::size_t capacity, char* to);

/// Writes the UTF-8 of `units`, up to the first 0 or `capacity`, and answers its bytes: at most
/// three for each unit. Pairs of surrogates become their character, a surrogate without its other
/// half U+FFFD.
inline std::size_t Write(const char16_t* units, std::size_t capacity, char* to) {
  std::size_t i = 0;
#if defined(__SSE2__)
  // Sixteen units at a time as long as they are ASCII. They have room for three bytes each, so that
  // the last ones may be written with what follows their end.
  for (; capacity - i >= 16; i += 16) {
    const auto* const from = reinterpret_cast<const __m128i_u*>(units + i);
    // Units above 0x7F become bytes above 0x7F or, if they are negative as signed numbers, 0.
    const __m128i bytes = _mm_packus_epi16(_mm_loadu_si128(from), _mm_loadu_si128(from + 1));
    const auto others = static_cast<unsigned>(_mm_movemask_epi8(bytes));
    const auto zeros =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
    const std::size_t ascii = static_cast<std::size_t>(std::countr_zero(others | zeros | 0x10000));
    if (ascii != 16 && units[i + ascii] != 0) break;
    _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to + i), bytes);
    if (ascii != 16) return i + ascii;
  }
#endif
  return WriteRest(units, i, capacity, to);
}

}  // namespace SDI::TextColumn

#endif  // SURVEYDATA_GNSS_TEXT_COLUMN_H_
