#ifndef SURVEYDATA_TESTS_SUPPORT_FRAME_BUILDER_H_
#define SURVEYDATA_TESTS_SUPPORT_FRAME_BUILDER_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

/// \file
/// Builds synthetic record frames, independently of the library.

namespace TestSupport {

using ByteVector = std::vector<std::uint8_t>;

/// Appends `bytes` to `to`.
inline void Append(ByteVector& to, const ByteVector& bytes) {
  std::copy(bytes.begin(), bytes.end(), std::back_inserter(to));
}

/// Stores the correct checksum of the frame at `at`, after the length given in its header.
inline void Seal(ByteVector& bytes, std::size_t at = 0) {
  const std::size_t length = bytes.at(at + 2) + std::size_t{256} * bytes.at(at + 3);
  unsigned sum = 0;
  for (std::size_t i = 2; i < length; ++i) sum += bytes.at(at + i);
  const unsigned checksum = (0x10000 - (sum & 0xFFFF)) & 0xFFFF;
  bytes.at(at + length) = static_cast<std::uint8_t>(checksum & 0xFF);
  bytes.at(at + length + 1) = static_cast<std::uint8_t>(checksum >> 8);
}

/// Appends fields in order, little-endian; `Frame` adds header and checksum.
class FrameBuilderC {
 public:
  FrameBuilderC& U8(unsigned value) {
    payload_.push_back(static_cast<std::uint8_t>(value));
    return *this;
  }
  FrameBuilderC& U16(unsigned value) { return U8(value & 0xFF).U8(value >> 8 & 0xFF); }
  FrameBuilderC& U32(std::uint32_t value) { return U16(value & 0xFFFF).U16(value >> 16); }
  FrameBuilderC& I32(std::int32_t value) { return U32(static_cast<std::uint32_t>(value)); }
  FrameBuilderC& F32(float value) { return U32(std::bit_cast<std::uint32_t>(value)); }
  FrameBuilderC& Fill(std::size_t count, unsigned value) {
    payload_.resize(payload_.size() + count, static_cast<std::uint8_t>(value));
    return *this;
  }
  FrameBuilderC& Noise(std::size_t count, std::mt19937_64& random) {
    while (count-- > 0) U8(static_cast<unsigned>(random() & 0xFF));
    return *this;
  }
  /// Appends the units without a terminator.
  FrameBuilderC& Units(std::u16string_view units) {
    for (const char16_t unit : units) U16(unit);
    return *this;
  }
  /// Appends the units of a name block, padded with zeros to 17.
  FrameBuilderC& NameUnits(std::u16string_view units) {
    Units(units);
    return Fill(2 * (17 - units.size()), 0);
  }
  /// Appends the fields with which every measurement begins.
  FrameBuilderC& Times(unsigned week = 2200, std::int32_t timeA = 86'400'000,
                       std::int32_t timeB = -7) {
    return U16(week).I32(timeA).I32(timeB);
  }

  const ByteVector& Payload() const { return payload_; }

  ByteVector Frame(unsigned type = 113) const {
    const std::size_t length = 5 + payload_.size();
    ByteVector bytes;
    for (const std::size_t byte :
         {std::size_t{0x9C}, std::size_t{0xAE}, length & 0xFF, length >> 8, std::size_t{type}}) {
      bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    Append(bytes, payload_);
    bytes.resize(length + 2);
    Seal(bytes);
    return bytes;
  }

 private:
  ByteVector payload_;
};

/// A frame whose payload, including times and flags word, is `size` bytes of `value`.
inline ByteVector FrameOf(std::size_t size, unsigned value = 0, unsigned type = 113) {
  return FrameBuilderC().Fill(size, value).Frame(type);
}

/// A complete frame with every block that the two flags words announce, with random content, at
/// most 488 bytes long. `flags2` is only used if `flags1` announces it.
inline ByteVector WellFormedFrame(unsigned flags1, unsigned flags2, std::mt19937_64& random) {
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  FrameBuilderC b;
  b.Noise(10, random).U16(flags1);
  if (flags1 & 0x0001) b.Noise(6, random).U8(below(2) * below(256)).Noise(5, random);
  if (flags1 & 0x0002) {
    const unsigned length = below(18);
    for (unsigned i = 0; i < 17; ++i) {
      b.U16(i >= length ? below(3) : 1 + below(below(2) ? 0x7F : 0xFFFF));
    }
    b.Noise(4, random);
  }
  if (flags1 & 0x0004) b.Noise(4, random).U8(below(3));
  if (flags1 & 0x0008) {
    const unsigned count = below(2);
    b.U8(count).Noise(6 * count, random);
  }
  if (flags1 & 0x0010) b.Noise(28, random);
  if (flags1 & 0x0020) {
    const unsigned systems = below(256);
    b.U8(systems).Noise(4, random);
    for (const unsigned bit : {1U, 2U, 4U}) {
      if (systems & bit) b.Noise(8, random);
    }
  }
  if (flags1 & 0x0040) b.Noise(5, random);
  if (flags1 & 0x0080) b.Noise(7, random);
  if (flags1 & 0x0100) b.Noise(2, random);
  if (flags1 & 0x0200) b.Noise(13, random);
  if (flags1 & 0x1000) {
    const unsigned systems = below(256);
    b.U8(systems);
    for (const unsigned bit : {1U, 2U, 4U}) {
      if (!(systems & bit)) continue;
      const unsigned valid = below(256);
      b.U8(valid);
      if (valid & 1) b.U8(below(256)).U8(below(3));
    }
  }
  if (flags1 & 0x2000) {
    const auto text = [&] {
      for (unsigned i = below(19); i > 0; --i) b.U16(1 + below(0xFFFF));
      b.U16(0);
    };
    b.U16(flags2);
    if (flags2 & 0x0001) b.U8(below(3));
    if (flags2 & 0x0002) b.U8(below(256));
    if (flags2 & 0x0004) b.U8(below(3));
    if (flags2 & 0x0008) text();
    if (flags2 & 0x0010) text();
    if (flags2 & 0x0020) b.Noise(4, random);
    if (flags2 & 0x0040) text();
    if (flags2 & 0x0080) b.U8(below(3));
    if (flags2 & 0x0100) text();
    if (flags2 & 0x0200) b.U8(below(256));
    if (flags2 & 0x0400) b.Noise(4, random);
    if (flags2 & 0x0800) b.U16(below(0x10000));
    if (flags2 & 0x1000) b.U16(below(0x10000));
    if (flags2 & 0x2000) {
      const unsigned count = below(32);
      b.U16(below(0x10000)).U8(count).Noise(2 * std::size_t{count}, random);
    }
  }
  return b.Frame();
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SUPPORT_FRAME_BUILDER_H_
