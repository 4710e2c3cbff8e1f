#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

#include <boost/numeric/conversion/cast.hpp>

#include <surveydata/object_model/fixed_string.h>
#include <surveydata/object_model/utf8.h>

namespace API {
namespace {

// Converts a length, which is at most the capacity, to `std::size_t`, which may have fewer bits.
constexpr std::size_t Size(std::uint64_t length) { return static_cast<std::size_t>(length); }

// The algorithms do not depend on the capacity: the ten capacities share this code, and long
// functions are out of line, so that the library contains them once. A text has one unit more than
// its capacity.
struct Text {
  std::span<char16_t> units;
  std::uint64_t& length;

  std::size_t Capacity() const { return units.size() - 1; }
  std::size_t Room() const { return Capacity() - Size(length); }
};

// The one or two units of a wide character.
struct WideUnits {
  char16_t units[2];
  std::size_t count;
};

WideUnits ToUnits(wchar_t wide) {
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
    return {{static_cast<char16_t>(wide), 0}, 1};
  } else {
    // NOLINTNEXTLINE(bugprone-signed-char-misuse,cert-str34-c): wchar_t is not a signed char
    const auto c = static_cast<std::uint32_t>(wide);
    if (c <= 0xFFFF) return {{static_cast<char16_t>(c), 0}, 1};
    if (c > 0x10FFFF) return {{u'\uFFFD', 0}, 1};
    const std::uint32_t offset = c - 0x10000;
    return {{static_cast<char16_t>(0xD800 | (offset >> 10)),
             static_cast<char16_t>(0xDC00 | (offset & 0x3FF))},
            2};
  }
}

[[gnu::noinline]] void Append(Text text, const char16_t* units, std::size_t count) {
  const std::size_t taken = std::min(count, text.Room());
  std::memmove(text.units.data() + text.length, units, taken * sizeof(char16_t));
  text.length += taken;
  text.units[Size(text.length)] = 0;
}

// Appends a character only if all its units fit.
void AppendWhole(Text text, const char16_t* units, std::size_t count) {
  if (count <= text.Room()) Append(text, units, count);
}

// Compilers assume that no object is longer than PTRDIFF_MAX. Where that is 2^31 - 1, they would
// remove the check for longer texts, although such a text fits in the address space.
std::size_t LengthOf(const char* s) {
  if constexpr (sizeof(std::size_t) > sizeof(std::int32_t)) {
    return std::strlen(s);
  } else {
    const volatile std::size_t length = std::strlen(s);
    return length;
  }
}

[[gnu::noinline]] void Assign(Text text, const char* s) {
  if (s == nullptr) return;
  const auto length = static_cast<std::size_t>(boost::numeric_cast<std::int32_t>(LengthOf(s)));
  if (length > text.Capacity()) return;
  std::transform(s, s + length, text.units.begin(),
                 [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
  text.length = length;
}

[[gnu::noinline]] void Assign(Text text, const char16_t* s) {
  if (s == nullptr) return;
  const std::size_t most = text.Capacity() + 1;
  std::size_t length = 0;
  while (length < most && s[length] != 0) ++length;
  if (length < most) Append(text, s, length);
}

[[gnu::noinline]] void Assign(Text text, const wchar_t* s) {
  if (s == nullptr) return;
  std::size_t length = 0;
  for (const wchar_t* c = s; *c != 0; ++c) {
    length += ToUnits(*c).count;
    if (length > text.Capacity()) return;
  }
  for (const wchar_t* c = s; *c != 0; ++c) {
    const WideUnits wide = ToUnits(*c);
    Append(text, wide.units, wide.count);
  }
}

[[gnu::noinline]] bool ToNarrow(std::span<const char16_t> text, char* dst, std::size_t dstSize) {
  if (dst == nullptr || dstSize < text.size()) return false;
  unsigned all = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    all |= text[i];
    dst[i] = static_cast<char>(text[i]);
  }
  return all < 256;
}

// The unchecked formatter of the C library. With _FORTIFY_SOURCE, `std::vsnprintf` is a checked
// function that aborts the process on a `%n` in a writable format string, but `Format` supports
// `%n` in any format string. The other check, of the buffer's size, is not needed, because the size
// is passed. Only `Format` calls this.
int FormatUnchecked(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
#if defined(__GNUC__) && !defined(_WIN32)
  return __builtin_vsnprintf(buffer, size, format, arguments);
#else
  return std::vsnprintf(buffer, size, format, arguments);
#endif
}

// Each unit is encoded separately, so the order of the units is that of the UTF-8 bytes.
bool NotAfter(const char16_t* a, const char16_t* b) {
  while (*a != 0 && *a == *b) ++a, ++b;
  return *a <= *b;
}

}  // namespace

template <std::uint16_t N>
FixedStringC<N>::FixedStringC() noexcept = default;

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(const FixedStringC& other) noexcept : length_(other.length_) {
  std::memcpy(data_, other.data_, sizeof(data_));
  data_[N] = 0;
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator=(const FixedStringC& other) noexcept {
  if (this == &other) return *this;
  std::memcpy(data_, other.data_, sizeof(data_));
  length_ = other.length_;
  return *this;
}

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(char c)
    : FixedStringC(static_cast<char16_t>(static_cast<unsigned char>(c))) {}

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(char16_t c) : length_(c != 0 ? 1 : 0) {
  data_[0] = c;
}

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(wchar_t c) {
  if (c != 0) *this += c;
}

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(const char* s) {
  Assign({data_, length_}, s);
}

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(const char16_t* s) {
  Assign({data_, length_}, s);
}

template <std::uint16_t N>
FixedStringC<N>::FixedStringC(const wchar_t* s) {
  Assign({data_, length_}, s);
}

template <std::uint16_t N>
bool FixedStringC<N>::operator==(const FixedStringC& other) const {
  return length_ == other.length_ &&
         std::memcmp(data_, other.data_, (Size(length_) + 1) * sizeof(char16_t)) == 0;
}

template <std::uint16_t N>
bool FixedStringC<N>::operator!=(const FixedStringC& other) const {
  return !(*this == other);
}

template <std::uint16_t N>
bool FixedStringC<N>::operator<=(const FixedStringC& other) const {
  return NotAfter(data_, other.data_);
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(char16_t c) {
  AppendWhole({data_, length_}, &c, 1);
  return *this;
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(wchar_t c) {
  const WideUnits wide = ToUnits(c);
  AppendWhole({data_, length_}, wide.units, wide.count);
  return *this;
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(char c) {
  return *this += static_cast<char16_t>(static_cast<signed char>(c));
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(const FixedStringC& s) {
  Append({data_, length_}, s.data_, Size(s.length_));
  return *this;
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(const char16_t* s) {
  return *this += FixedStringC(s);
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(const wchar_t* s) {
  return *this += FixedStringC(s);
}

template <std::uint16_t N>
FixedStringC<N>& FixedStringC<N>::operator+=(const char* s) {
  return *this += FixedStringC(s);
}

template <std::uint16_t N>
FixedStringC<N> FixedStringC<N>::operator+(const FixedStringC& s) const {
  FixedStringC sum = *this;
  sum += s;
  return sum;
}

template <std::uint16_t N>
std::uint32_t FixedStringC<N>::SubString(std::uint16_t start, std::uint16_t count) {
  const std::uint32_t end = std::uint32_t{start} + count;
  if (end > length_) return end;
  std::memmove(data_, data_ + start, count * sizeof(char16_t));
  std::fill(data_ + count, data_ + N, u'\0');
  length_ = count;
  return count;
}

template <std::uint16_t N>
bool FixedStringC<N>::ToNarrow(char* dst, std::size_t dstSize) const {
  return API::ToNarrow({data_, Size(length_) + 1}, dst, dstSize);
}

template <std::uint16_t N>
std::int32_t FixedStringC<N>::ToInt() const {
  char narrow[N + 1];
  return ToNarrow(narrow, sizeof(narrow)) ? std::atoi(narrow) : 0;
}

template <std::uint16_t N>
double FixedStringC<N>::ToDouble() const {
  char narrow[N + 1];
  return ToNarrow(narrow, sizeof(narrow)) ? std::atof(narrow) : 0.0;
}

template <std::uint16_t N>
std::int32_t FixedStringC<N>::ToLong() const {
  char narrow[N + 1];
  return ToNarrow(narrow, sizeof(narrow)) ? static_cast<std::int32_t>(std::atol(narrow)) : 0;
}

template <std::uint16_t N>
int FixedStringC<N>::ToUtf8(char* dst, std::size_t dstSize) const {
  return static_cast<int>(Utf8::Encode(data_, N + 1, dst, dstSize));
}

template <std::uint16_t N>
int FixedStringC<N>::FromUtf8(const char* src, std::size_t* inOutLength) {
  return Utf8::DecodeText(src, inOutLength, data_, N, length_);
}

template <std::uint16_t N>
int FixedStringC<N>::Format(const char* fmt, ...) {
  if (fmt == nullptr || std::memchr(fmt, 0, N + 1) == nullptr) return -1;
  char buffer[2 * (N + 1)] = {};
  va_list arguments;
  va_start(arguments, fmt);
  const int result = FormatUnchecked(buffer, sizeof(buffer), fmt, arguments);
  va_end(arguments);
  *this = FixedStringC(buffer);
  return result;
}

template class FixedStringC<10>;
template class FixedStringC<16>;
template class FixedStringC<24>;
template class FixedStringC<30>;
template class FixedStringC<32>;
template class FixedStringC<60>;
template class FixedStringC<64>;
template class FixedStringC<240>;
template class FixedStringC<254>;
template class FixedStringC<255>;

}  // namespace API
