#ifndef SURVEYDATA_TOOLS_OUTPUT_FIELD_TYPES_H_
#define SURVEYDATA_TOOLS_OUTPUT_FIELD_TYPES_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// \file
/// Types that define the meaning of values; each writer decides their format.

namespace Tool {

/// Milliseconds of a week.
struct TimeOfWeek {
  std::int32_t milliseconds;
};

/// A word of bits.
struct Mask {
  std::uint32_t bits;
};

/// A stored dilution of precision: in tenths, 65535 if not available.
struct Tenths {
  std::uint16_t value;
};

/// A dilution of precision as the getters return it: -1 if not available.
struct Dilution {
  double value;
};

/// A length.
struct Metres {
  double value;
};

/// Bytes, written in hexadecimal.
struct HexBytes {
  std::string_view bytes;
};

using Pair = std::array<std::uint8_t, 2>;
using OptionalPair = std::optional<Pair>;

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_FIELD_TYPES_H_
