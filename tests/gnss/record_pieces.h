#ifndef SURVEYDATA_TESTS_GNSS_RECORD_PIECES_H_
#define SURVEYDATA_TESTS_GNSS_RECORD_PIECES_H_

#include <cstddef>
#include <cstdint>
#include <random>

#include "tests/support/frame_builder.h"

namespace TestSupport {

/// Bytes that may occur in a record file, harmless or hostile.
inline ByteVector Piece(std::mt19937_64& random, std::size_t longest) {
  const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
  const auto type = [&] { return below(2) != 0 ? 113U : static_cast<unsigned>(below(256)); };
  const auto frame = [&](std::size_t payload) {
    return FrameBuilderC().Noise(payload, random).Frame(type());
  };
  switch (below(10)) {
    case 0:  // noise
      return FrameBuilderC().Noise(below(40), random).Payload();
    case 1: {  // a record with a wrong checksum
      ByteVector bytes = frame(below(60));
      bytes[2 + below(bytes.size() - 2)] ^= static_cast<std::uint8_t>(1 + below(255));
      return bytes;
    }
    case 2: {  // a record cut short
      ByteVector bytes = frame(below(60));
      bytes.resize(below(bytes.size()));
      return bytes;
    }
    case 3: {  // a record with records in its body
      FrameBuilderC b;
      b.Noise(below(10), random);
      for (std::size_t i = below(3); i > 0; --i) {
        for (const std::uint8_t byte : frame(below(30))) b.U8(byte);
      }
      return b.Frame(type());
    }
    case 4: {  // the same with a wrong checksum: the records inside are found
      FrameBuilderC b;
      for (const std::uint8_t byte : frame(below(30))) b.U8(byte);
      ByteVector bytes = b.Frame(type());
      bytes.back() ^= 1;
      return bytes;
    }
    case 5: {  // magics
      ByteVector bytes;
      for (std::size_t i = below(10); i > 0; --i) Append(bytes, {0x9C, 0xAE});
      return bytes;
    }
    case 6: {  // only a header, of any length
      ByteVector bytes{0x9C, 0xAE};
      Append(bytes, FrameBuilderC().Noise(3, random).Payload());
      return bytes;
    }
    case 7:
      return frame(below(longest));
    default:
      return frame(below(100));
  }
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_GNSS_RECORD_PIECES_H_
