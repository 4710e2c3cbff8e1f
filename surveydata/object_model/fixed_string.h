#ifndef SURVEYDATA_OBJECT_MODEL_FIXED_STRING_H_
#define SURVEYDATA_OBJECT_MODEL_FIXED_STRING_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/layout.h>

namespace API {

/// A text of at most `N` UTF-16 code units, held inline: no operation uses the heap.
///
/// A plain value of 16-bit units; surrogates are treated like any other unit. Each operation states
/// whether it refuses or truncates text that does not fit; only `FromUtf8` reports an error. If
/// `wchar_t` has 32 bits, a character above U+FFFF becomes its surrogate pair, and a value that is
/// not a character becomes U+FFFD.
///
/// The library is instantiated for the capacities 10, 16, 24, 30, 32, 60, 64, 240, 254 and 255.
template <std::uint16_t N>
class SURVEYDATA_VISIBLE FixedStringC {
 public:
  /// The empty text.
  FixedStringC() noexcept;
  /// Copies all units of `other` and its length, but sets the last unit to 0.
  FixedStringC(const FixedStringC& other) noexcept;
  /// Copies all units, including the last, and the length unchanged.
  FixedStringC& operator=(const FixedStringC& other) noexcept;
  /// A text of one unit, 0x00 to 0xFF; empty if `c` is 0.
  explicit FixedStringC(char c);
  /// A text of one character; empty if `c` is 0.
  /// @{
  explicit FixedStringC(char16_t c);
  explicit FixedStringC(wchar_t c);
  /// @}
  /// The bytes of `s`, each as a unit of 0x00 to 0xFF. Empty if `s` is longer than `N` or null.
  /// \throws boost::numeric::positive_overflow if `s` has 2^31 bytes or more.
  explicit FixedStringC(const char* s);
  /// The units of `s`. Empty if `s` is longer than `N` or null.
  /// @{
  explicit FixedStringC(const char16_t* s);
  explicit FixedStringC(const wchar_t* s);
  /// @}

  std::uint64_t GetLength() const { return length_; }
  bool IsEmpty() const { return length_ == 0; }
  /// Whether the length is at most `N` and a terminator follows the text.
  bool IsValid() const { return length_ <= N && data_[length_] == 0; }
  /// The units, with a terminator.
  const char16_t* GetData() const { return data_; }

  bool operator==(const FixedStringC& other) const;
  bool operator!=(const FixedStringC& other) const;
  /// Whether this text precedes or equals `other` in the order of their UTF-8 bytes.
  bool operator<=(const FixedStringC& other) const;

  /// Appends a character; changes nothing if the text is full, or has no room for a surrogate pair.
  /// @{
  FixedStringC& operator+=(char16_t c);
  FixedStringC& operator+=(wchar_t c);
  /// @}
  /// Appends `c` sign-extended: the bytes 0x80 to 0xFF become the units 0xFF80 to 0xFFFF. The
  /// constructor from a `char` differs.
  FixedStringC& operator+=(char c);
  /// Appends as many units of `s` as fit. `s` may be this text.
  FixedStringC& operator+=(const FixedStringC& s);
  /// Appends as many units of `s` as fit; nothing if `s` itself is longer than `N`.
  /// @{
  FixedStringC& operator+=(const char16_t* s);
  FixedStringC& operator+=(const wchar_t* s);
  /// @}
  /// \throws boost::numeric::positive_overflow if `s` has 2^31 bytes or more.
  FixedStringC& operator+=(const char* s);
  /// This text followed by as many units of `s` as fit.
  FixedStringC operator+(const FixedStringC& s) const;

  /// Keeps `count` units, starting at `start`, and returns `count`. If the text has fewer units, it
  /// is unchanged, and the result is `start + count`.
  std::uint32_t SubString(std::uint16_t start, std::uint16_t count);

  /// Writes the low byte of each unit, and a terminator.
  /// \return whether all units were below 256; false, with nothing written, if `dst` is null or
  ///         shorter than length + 1 bytes.
  bool ToNarrow(char* dst, std::size_t dstSize) const;

  /// The number at the start of the text as parsed by `atoi`, `atof` and `atol`; 0 if a unit is
  /// above 255. If the number is out of range, the result is that of the C runtime.
  /// @{
  std::int32_t ToInt() const;
  double ToDouble() const;
  std::int32_t ToLong() const;
  /// @}

  /// Writes the text up to its first 0 unit as UTF-8, one to three bytes per unit.
  ///
  /// A sequence that does not fit into the remaining space is skipped, later ones that fit are
  /// written; the terminator is written if a byte remains. If `dst` is null, only counts the bytes.
  /// \return the number of bytes of the whole text, without the terminator.
  int ToUtf8(char* dst, std::size_t dstSize) const;

  /// Replaces the text with the decoding of `src`: sequences of one to three bytes up to the first
  /// 0 byte. Overlong sequences are accepted; the lead bytes 0xF0 to 0xFF start three-byte
  /// sequences.
  ///
  /// `src` must be readable up to its 0 byte or up to the byte at the limit, whichever comes first.
  ///
  /// \param inOutLength  in: the limit, the maximum number of bytes to decode; all bits set or a
  ///                     null pointer mean 3 `N`. A one-byte character exactly at the limit is
  ///                     still decoded, so end `src` with a 0 there. Out: the number of bytes
  ///                     decoded; on an error, of those before the faulty sequence.
  /// \return 0; -1 if there were more than `N` characters (the first `N` are kept); -2 if the limit
  ///         truncates a sequence; -3 on an invalid sequence (the text before an error is kept). If
  ///         `src` is null, returns 0 and does not change the text.
  int FromUtf8(const char* src, std::size_t* inOutLength);

  /// Replaces the text with the output of `vsnprintf`; with the empty text if the output has more
  /// than `N` characters. `%n` works even in a writable format, which FORTIFY otherwise rejects.
  /// \return the number of characters formatted, even if they did not fit, or a negative value;
  ///         -1, with the text unchanged, if `fmt` is null or longer than `N`.
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
