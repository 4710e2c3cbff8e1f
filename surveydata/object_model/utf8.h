#ifndef SURVEYDATA_OBJECT_MODEL_UTF8_H_
#define SURVEYDATA_OBJECT_MODEL_UTF8_H_

#include <cstddef>
#include <cstdint>

/// \file
/// Internal: UTF-8 as the texts of this library use it, for single 16-bit units. Sequences have
/// one to three bytes, surrogates are units like any other, overlong forms are accepted.

namespace API::Utf8 {

/// Encodes `units` up to the first 0 or up to `count` units, whichever comes first.
///
/// A sequence that does not fit into the space left is skipped as a whole, and later, shorter ones
/// may still be written. A 0 unit ends the text and writes a 0 byte when one byte is left; without
/// one, none is written. A null `dst` counts only.
///
/// \return the bytes that the whole text needs, without the terminator.
std::size_t Encode(const char16_t* units, std::size_t count, char* dst, std::size_t space);

/// What `Decode` found: a result code of the texts, the bytes consumed by whole characters, and
/// the number of characters, those beyond the capacity included.
struct Decoded {
  int result;
  std::size_t bytes;
  std::size_t characters;
};

inline constexpr int kDone = 0;
inline constexpr int kTooLong = -1;  ///< More characters than the capacity; the surplus is dropped.
inline constexpr int kCut = -2;      ///< The limit cuts a sequence.
inline constexpr int kInvalid = -3;  ///< A stray continuation byte, or a missing one.

/// The intended differences between the two readers of UTF-8.
struct DecodeRules {
  bool readsByteAtLimit;    ///< A character of one byte just at the limit is still taken.
  bool acceptsLeadsFromF0;  ///< Lead bytes F0 to FF start sequences of three bytes like E0 to EF.
};

/// Decodes `src` up to its first 0 byte or the limit, whichever comes first. Units up to `capacity`
/// are stored in `units`; on a fault those before it are kept. The rest of the `capacity` units is
/// cleared.
Decoded Decode(const char* src, std::size_t limit, char16_t* units, std::size_t capacity,
               DecodeRules rules);

/// `Decode` as `FixedStringC::FromUtf8` answers: `inOutLength` is the limit and becomes the bytes
/// consumed; null or `SIZE_MAX` is a limit of three bytes for each unit. `units` has one unit more
/// than the capacity, for the terminator, and `length` becomes the number of units before it. A
/// null `src` changes neither.
int DecodeText(const char* src, std::size_t* inOutLength, char16_t* units, std::size_t capacity,
               std::uint64_t& length);

}  // namespace API::Utf8

#endif  // SURVEYDATA_OBJECT_MODEL_UTF8_H_
