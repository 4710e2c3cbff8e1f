#ifndef SURVEYDATA_GNSS_BYTE_SUM_H_
#define SURVEYDATA_GNSS_BYTE_SUM_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// \file
/// Internal: sums of bytes modulo 65536, many bytes at a time.

namespace SDI::RecordFrame {

#if defined(__SSE2__)

/// The sums of the two halves of sixteen bytes, in two lanes of 64 bits.
inline __m128i HalvesOf16(const std::uint8_t* bytes) {
  return _mm_sad_epu8(_mm_loadu_si128(reinterpret_cast<const __m128i_u*>(bytes)),
                      _mm_setzero_si128());
}

inline std::uint16_t SumOfLanes(__m128i lanes) {
  return static_cast<std::uint16_t>(
      _mm_cvtsi128_si32(_mm_add_epi64(lanes, _mm_unpackhi_epi64(lanes, lanes))));
}

inline std::uint16_t SumOf64(const std::uint8_t* bytes) {
  return SumOfLanes(_mm_add_epi64(_mm_add_epi64(HalvesOf16(bytes), HalvesOf16(bytes + 16)),
                                  _mm_add_epi64(HalvesOf16(bytes + 32), HalvesOf16(bytes + 48))));
}

#else

/// Adds eight bytes in pairs of neighbours, into four lanes of 16 bits.
inline std::uint64_t PairsOf8(const std::uint8_t* bytes) {
  constexpr std::uint64_t kEven = 0x00FF00FF00FF00FF;
  std::uint64_t eight = 0;
  std::memcpy(&eight, bytes,
              sizeof(eight));  // in the byte order of the machine, which does not matter to a sum
  return (eight & kEven) + (eight >> 8 & kEven);
}

/// The sum of the lanes, which fits 16 bits.
inline std::uint16_t SumOfLanes(std::uint64_t lanes) {
  return static_cast<std::uint16_t>(lanes * 0x0001000100010001 >> 48);
}

inline std::uint16_t SumOf64(const std::uint8_t* bytes) {
  std::uint64_t lanes = 0;
  for (int i = 0; i < 64; i += 8) lanes += PairsOf8(bytes + i);
  return SumOfLanes(lanes);
}

#endif

/// The sum of `count` bytes.
inline std::uint16_t SumOfBytes(const std::uint8_t* bytes, std::size_t count) {
  std::uint16_t sum = 0;
#if defined(__SSE2__)
  if (count >= 16) {
    __m128i lanes = _mm_setzero_si128();
    __m128i others =
        _mm_setzero_si128();  // a second sum: additions to one do not wait for the other
    const std::uint8_t* const end = bytes + count;
    for (; end - bytes >= 32; bytes += 32) {
      lanes = _mm_add_epi64(lanes, HalvesOf16(bytes));
      others = _mm_add_epi64(others, HalvesOf16(bytes + 16));
    }
    lanes = _mm_add_epi64(lanes, others);
    if (end - bytes >= 16) {
      lanes = _mm_add_epi64(lanes, HalvesOf16(bytes));
      bytes += 16;
    }
    // The last sixteen bytes, without those already added: a mask, because a branch on their number
    // would be mispredicted.
    alignas(16) static constexpr std::uint8_t kMasks[32] = {
        0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
        0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(end - 16));
    const __m128i mask =
        _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(kMasks + (end - bytes)));
    lanes = _mm_add_epi64(lanes, _mm_sad_epu8(_mm_and_si128(last, mask), _mm_setzero_si128()));
    return SumOfLanes(lanes);
  }
#else
  for (; count >= 64; count -= 64, bytes += 64) {
    sum = static_cast<std::uint16_t>(sum + SumOf64(bytes));
  }
#endif
  for (; count > 0; --count) sum = static_cast<std::uint16_t>(sum + *bytes++);
  return sum;
}

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_BYTE_SUM_H_
