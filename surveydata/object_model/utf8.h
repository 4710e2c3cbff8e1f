#ifndef SURVEYDATA_OBJECT_MODEL_UTF8_H_
#define SURVEYDATA_OBJECT_MODEL_UTF8_H_

#include <cstddef>
#include <cstdint>

/// \file
/// Internal: UTF-8 encoding of 16-bit units as this library defines it. Sequences have one to three
/// bytes, surrogates are treated like any other unit, overlong sequences are accepted.

namespace API::Utf8 {

/// Encodes `units` up to the first 0 or up to `count` units, whichever comes first.
///
/// A sequence that does not fit into the remaining space is skipped, and later, shorter ones may
/// still be written. A 0 unit ends the text and writes a 0 byte if one byte remains; without a 0
/// unit, none is written. If `dst` is null, only counts the bytes.
///
/// \return the number of bytes of the whole text, without the terminator.
std::size_t Encode(const char16_t* units, std::size_t count, char* dst, std::size_t space);

/// The result of `Decode`: a result code, the number of bytes in complete characters, and the
/// number of characters, including those beyond the capacity.
struct Decoded {
  int result;
  std::size_t bytes;
  std::size_t characters;
};

inline constexpr int kDone = 0;
inline constexpr int kTooLong = -1;  ///< More characters than the capacity; the surplus is dropped.
inline constexpr int kCut = -2;      ///< The limit truncates a sequence.
inline constexpr int kInvalid = -3;  ///< A stray continuation byte, or a missing one.

/// The intended differences between the two uses of the decoder.
struct DecodeRules {
  bool readsByteAtLimit;    ///< A one-byte character exactly at the limit is still decoded.
  bool acceptsLeadsFromF0;  ///< Lead bytes F0 to FF start three-byte sequences, like E0 to EF.
};

/// Decodes `src` up to its first 0 byte or the limit, whichever comes first. Stores up to
/// `capacity` units in `units`; on an error, those before it. Clears the rest of the `capacity`
/// units.
Decoded Decode(const char* src, std::size_t limit, char16_t* units, std::size_t capacity,
               DecodeRules rules);

/// `Decode` with the interface of `FixedStringC::FromUtf8`: `inOutLength` is the limit and is set
/// to the number of bytes decoded; null or `SIZE_MAX` is a limit of three bytes per unit. `units`
/// has one unit more than the capacity, for the terminator, and `length` is set to the number of
/// units before it. A null `src` changes neither.
int DecodeText(const char* src, std::size_t* inOutLength, char16_t* units, std::size_t capacity,
               std::uint64_t& length);

}  // namespace API::Utf8

#endif  // SURVEYDATA_OBJECT_MODEL_UTF8_H_
