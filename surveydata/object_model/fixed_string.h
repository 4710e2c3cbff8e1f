#ifndef SURVEYDATA_OBJECT_MODEL_FIXED_STRING_H_
#define SURVEYDATA_OBJECT_MODEL_FIXED_STRING_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/layout.h>

namespace API {

/// A text of at most `N` UTF-16 code units, held inline: no operation uses the heap.
///
/// A plain value of single 16-bit units; surrogates are units like any other. Each operation says
/// whether it refuses or drops what does not fit; only `FromUtf8` reports an error. Where
/// `wchar_t` has 32 bits, a character above U+FFFF becomes its surrogate pair, and a value that is
/// not a character becomes U+FFFD.
///
/// The library has the capacities 10, 16, 24, 30, 32, 60, 64, 240, 254 and 255.
template <std::uint16_t N>
class SURVEYDATA_VISIBLE FixedStringC {
 public:
  /// The empty text.
  FixedStringC();
  /// All units of `other` and its length; the last unit is 0 even where that of `other` is not.
  FixedStringC(const FixedStringC& other);
  /// Copies all units, the last one too, and the length as they are.
  FixedStringC& operator=(const FixedStringC& other);
  /// A text of one unit, 0x00 to 0xFF; empty when `c` is 0.
  explicit FixedStringC(char c);
  /// A text of one unit; empty when `c` is 0.
  /// @{
  explicit FixedStringC(char16_t c);
  explicit FixedStringC(wchar_t c);
  /// @}
  /// The bytes of `s`, each a unit of 0x00 to 0xFF. Empty when `s` is longer than `N` or null.
  /// \throws boost::numeric::positive_overflow when `s` has 2^31 bytes or more.
  explicit FixedStringC(const char* s);
  /// The units of `s`. Empty when `s` is longer than `N` or null.
  /// @{
  explicit FixedStringC(const char16_t* s);
  explicit FixedStringC(const wchar_t* s);
  /// @}

  std::uint64_t GetLength() const { return length_; }
  bool IsEmpty() const { return length_ == 0; }
  /// Whether the length is at most `N` and a terminator follows the text.
  bool IsValid() const { return length_ <= N && data_[length_] == 0; }
  /// The units, with their terminator.
  const char16_t* GetData() const { return data_; }

  bool operator==(const FixedStringC& other) const;
  /// Whether this text precedes or equals `other` in the order of their UTF-8 bytes.
  bool operator<=(const FixedStringC& other) const;

  /// Appends a unit; changes nothing when the text is full, or has no room for a surrogate pair.
  /// @{
  FixedStringC& operator+=(char16_t c);
  FixedStringC& operator+=(wchar_t c);
  /// @}
  /// Appends `c` sign-extended: the bytes 0x80 to 0xFF become the units 0xFF80 to 0xFFFF. The
  /// constructor from a `char` differs.
  FixedStringC& operator+=(char c);
  /// Appends as many units of `s` as fit. `s` may be this text.
  FixedStringC& operator+=(const FixedStringC& s);
  /// Appends as many units of `s` as fit; nothing when `s` alone is longer than `N`.
  /// @{
  FixedStringC& operator+=(const char16_t* s);
  FixedStringC& operator+=(const wchar_t* s);
  /// @}
  /// \throws boost::numeric::positive_overflow when `s` has 2^31 bytes or more.
  FixedStringC& operator+=(const char* s);
  /// This text and as many units of `s` as fit.
  FixedStringC operator+(const FixedStringC& s) const;

  /// Keeps `count` units from `start` on and returns `count`. When the text ends before them it
  /// stays as it is, and the result is `start + count`.
  std::uint32_t SubString(std::uint16_t start, std::uint16_t count);

  /// Writes the low byte of each unit, and the terminator.
  /// \return whether all units were below 256; false, with nothing written, when `dst` is null or
  ///         holds less than length + 1 bytes.
  bool ToNarrow(char* dst, std::size_t dstSize) const;

  /// The number at the front of the text as `atoi`, `atof` and `atol` read it; 0 when a unit is
  /// above 255. For a number that does not fit, the result is that of the C runtime.
  /// @{
  std::int32_t ToInt() const;
  double ToDouble() const;
  std::int32_t ToLong() const;
  /// @}

  /// Writes the text up to its first 0 unit as UTF-8, one to three bytes a unit.
  ///
  /// A sequence that does not fit into the space left is skipped, later ones that fit are written;
  /// the terminator is written when a byte is left. A null `dst` counts only.
  /// \return the bytes that the whole text needs, without the terminator.
  int ToUtf8(char* dst, std::size_t dstSize) const;

  /// Replaces the text by the decoding of `src`: sequences of one to three bytes up to the first
  /// 0 byte. Overlong forms are accepted, lead bytes from 0xF0 on read as those of three bytes.
  ///
  /// `src` must be readable up to its 0 byte or up to the byte at the limit, whichever comes first.
  ///
  /// \param inOutLength  in: the limit, the most bytes to take; all bits set or a null pointer mean
  ///                     3 `N`. A one-byte character exactly at the limit is still taken, so end
  ///                     `src` with a 0 there. Out: the bytes taken; on a fault, those before the
  ///                     faulty sequence.
  /// \return 0; -1 when there were more than `N` characters (the first `N` are kept); -2 when the
  ///         limit cuts a sequence; -3 on an invalid sequence (the text before a fault is kept).
  ///         A null `src` gives 0 and leaves the text as it is.
  int FromUtf8(const char* src, std::size_t* inOutLength);

  /// Replaces the text by the output of `vsnprintf`; empty when that has more than `N` characters.
  /// `%n` works in a writable format too, although FORTIFY refuses that to other callers.
  /// \return the number of characters formatted, even if they did not fit, or a negative value;
  ///         -1, with the text unchanged, when `fmt` is null or longer than `N`.
  int Format(const char* fmt, ...);

 private:
  char16_t data_[N + 1] = {};
  std::uint64_t length_ = 0;
};

extern template class SURVEYDATA_API FixedStringC<10>;
extern template class SURVEYDATA_API FixedStringC<16>;
extern template class SURVEYDATA_API FixedStringC<24>;
extern template class SURVEYDATA_API FixedStringC<30>;
extern template class SURVEYDATA_API FixedStringC<32>;
extern template class SURVEYDATA_API FixedStringC<60>;
extern template class SURVEYDATA_API FixedStringC<64>;
extern template class SURVEYDATA_API FixedStringC<240>;
extern template class SURVEYDATA_API FixedStringC<254>;
extern template class SURVEYDATA_API FixedStringC<255>;

static_assert(kHasSize<FixedStringC<10>, 32> && kHasSize<FixedStringC<255>, 520>);

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_FIXED_STRING_H_
