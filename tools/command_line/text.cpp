#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <command_line/text.h>

namespace Tool {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLowSurrogate(char32_t unit) { return (unit & 0xFC00) == 0xDC00; }
bool IsControl(char32_t c) { return c < 0x20 || (0x7F <= c && c < 0xA0); }
// Line and paragraph separator.
bool IsSeparator(char32_t c) { return c == 0x2028 || c == 0x2029; }
// Marks, embeddings, overrides and isolates.
bool IsBidirectional(char32_t c) {
  return c == 0x061C || c == 0x200E || c == 0x200F || (0x202A <= c && c <= 0x202E) ||
         (0x2066 <= c && c <= 0x2069);
}
bool IsInvisible(char32_t c) { return IsControl(c) || IsSeparator(c) || IsBidirectional(c); }

void Append(std::string& out, char32_t c) {
  const auto put = [&out](char32_t byte) { out += static_cast<char>(byte); };
  const auto continuation = [&](int shift) { put(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) return put(c);
  if (c < 0x800) {
    put(0xC0 | (c >> 6));
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12));
    continuation(6);
  } else {
    put(0xF0 | (c >> 18));
    continuation(12);
    continuation(6);
  }
  continuation(0);
}

// The length of the UTF-8 sequence at the start, 0 if there is none.
std::size_t SequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80                    ? 1
                             : 0xC2 <= lead && lead <= 0xDF ? 2
                             : 0xE0 <= lead && lead <= 0xEF ? 3
                             : 0xF0 <= lead && lead <= 0xF4 ? 4
                                                            : 0;
  if (length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0;
  }
  if (length < 3) return length;
  // Overlong forms, surrogates, and values above U+10FFFF.
  const auto second = static_cast<unsigned char>(text[1]);
  const bool isCharacter = !(lead == 0xE0 && second < 0xA0) && !(lead == 0xED && second >= 0xA0) &&
                           !(lead == 0xF0 && second < 0x90) && !(lead == 0xF4 && second >= 0x90);
  return isCharacter ? length : 0;
}

// The character of a well-formed sequence.
char32_t CharacterOf(std::string_view sequence) {
  constexpr unsigned char kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t c = static_cast<unsigned char>(sequence.front()) & kLeadBits[sequence.size()];
  for (std::size_t i = 1; i < sequence.size(); ++i) {
    c = (c << 6) | (static_cast<unsigned char>(sequence[i]) & 0x3Fu);
  }
  return c;
}

constexpr std::size_t kLongestEscape = 6;

// Writes a backslash, the letter and `digits` hexadecimal digits; returns the length.
std::size_t EscapeInHex(char letter, char32_t value, std::size_t digits,
                        char (&to)[kLongestEscape]) {
  to[0] = '\\';
  to[1] = letter;
  for (std::size_t i = 0; i < digits; ++i) {
    to[2 + i] = "0123456789abcdef"[(value >> 4 * (digits - 1 - i)) & 0xF];
  }
  return 2 + digits;
}

// Writes the escape of a character; returns its length.
std::size_t Escape(char32_t c, char (&to)[kLongestEscape]) {
  if (c != '\n' && c != '\r' && c != '\t') {
    return c < 0x80 ? EscapeInHex('x', c, 2, to) : EscapeInHex('u', c, 4, to);
  }
  to[0] = '\\';
  to[1] = c == '\n' ? 'n' : c == '\r' ? 'r' : 't';
  return 2;
}

template <class Write>
void WriteVisibleTo(std::string_view utf8, const Write& write) {
  char escape[kLongestEscape];
  while (!utf8.empty()) {
    const std::size_t length = SequenceLength(utf8);
    if (length == 0) {
      const auto byte = static_cast<unsigned char>(utf8.front());
      write(std::string_view(escape, EscapeInHex('x', byte, 2, escape)));
    } else if (const char32_t c = CharacterOf(utf8.substr(0, length)); IsInvisible(c)) {
      write(std::string_view(escape, Escape(c, escape)));
    } else {
      write(utf8.substr(0, length));
    }
    utf8.remove_prefix(std::max<std::size_t>(length, 1));
  }
}

}  // namespace

std::size_t ToVisible(std::string_view utf8, std::span<char> to) {
  constexpr std::string_view kCut = "...";
  std::size_t size = 0;
  std::size_t sizeBeforeCut = 0;  // the largest size that leaves room for kCut
  bool isCut = false;
  // Every byte takes at least one byte in the buffer.
  WriteVisibleTo(utf8.substr(0, to.size() + 1), [&](std::string_view part) {
    isCut = isCut || part.size() > to.size() - size;
    if (isCut) return;
    std::copy(part.begin(), part.end(), to.begin() + static_cast<std::ptrdiff_t>(size));
    size += part.size();
    if (size + kCut.size() <= to.size()) sizeBeforeCut = size;
  });
  if (!isCut) return size;
  std::copy(kCut.begin(), kCut.end(), to.begin() + static_cast<std::ptrdiff_t>(sizeBeforeCut));
  return sizeBeforeCut + kCut.size();
}

std::string Shortened(std::string_view utf8) {
  constexpr std::size_t kMost = 60;
  if (utf8.size() <= kMost) return std::string(utf8);
  std::size_t size = kMost;
  while (size > kMost - 4 && (static_cast<unsigned char>(utf8[size]) & 0xC0) == 0x80) --size;
  return std::string(utf8.substr(0, size)) + "...";
}

std::string ToVisible(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  WriteVisibleTo(utf8, [&out](std::string_view part) { out += part; });
  return out;
}

std::string ToVisible(std::u16string_view text) {
  std::string out;
  char escape[kLongestEscape];
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    const bool isPair = IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]);
    if (isPair) c = 0x10000 + ((c & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    if (!isPair && (IsHighSurrogate(c) || IsLowSurrogate(c) || IsInvisible(c))) {
      out.append(escape, Escape(c, escape));
    } else {
      Append(out, c);
    }
  }
  return out;
}

bool HasControl(std::u16string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char16_t unit) { return IsControl(unit) || IsSeparator(unit); });
}

std::string ToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    if (length == 0) {
      Append(out, kReplacement);
    } else {
      out += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return out;
}

std::string ToPrintable(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::size_t length = SequenceLength(utf8);
    const auto first = static_cast<unsigned char>(utf8.front());
    const bool isControl =
        length == 1 ? IsControl(first)
                    : length == 2 && first == 0xC2 && static_cast<unsigned char>(utf8[1]) < 0xA0;
    if (length == 0 || isControl) {
      Append(out, kReplacement);
    } else {
      out += utf8.substr(0, length);
    }
    utf8.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return out;
}

std::string ToPrintable(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      c = 0x10000 + ((c & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    } else if (IsHighSurrogate(c) || IsLowSurrogate(c) || IsControl(c)) {
      c = kReplacement;
    }
    Append(out, c);
  }
  return out;
}

std::optional<std::u16string> ToSingleUnits(std::string_view utf8) {
  std::u16string units;
  for (std::size_t i = 0; i < utf8.size();) {
    const std::uint32_t lead = static_cast<unsigned char>(utf8[i++]);
    const int more = lead < 0x80                    ? 0
                     : 0xC0 <= lead && lead <= 0xDF ? 1
                     : 0xE0 <= lead && lead <= 0xEF ? 2
                                                    : -1;
    if (more < 0) return {};
    std::uint32_t c = more == 0 ? lead : lead & (0x3Fu >> more);
    for (int k = 0; k < more; ++k) {
      if (i == utf8.size() || (static_cast<unsigned char>(utf8[i]) & 0xC0) != 0x80) return {};
      c = (c << 6) | (static_cast<unsigned char>(utf8[i++]) & 0x3Fu);
    }
    constexpr std::uint32_t kLeast[] = {0, 0x80, 0x800};  // anything below is overlong
    if (c < kLeast[more] || IsHighSurrogate(c) || IsLowSurrogate(c)) return {};
    units += static_cast<char16_t>(c);
  }
  return units;
}

}  // namespace Tool
