#include <surveydata/gnss/text_column.h>

namespace SDI::TextColumn {
namespace {

bool IsHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

char Byte(std::uint32_t byte) { return static_cast<char>(byte); }

// The six bits of a continuation byte that begin at `shift`.
char Continuation(std::uint32_t c, unsigned shift) { return Byte(0x80 | (c >> shift & 0x3F)); }

}  // namespace

std::size_t WriteRest(const char16_t* units, std::size_t i, std::size_t capacity, char* to) {
  char* out = to + i;
  for (; i < capacity && units[i] != 0; ++i) {
    std::uint32_t c = units[i];
    if (c < 0x80) {
      *out++ = Byte(c);
      continue;
    }
    if (c < 0x800) {
      *out++ = Byte(0xC0 | c >> 6);
      *out++ = Continuation(c, 0);
      continue;
    }
    if (IsHighSurrogate(units[i]) && i + 1 < capacity && IsLowSurrogate(units[i + 1])) {
      c = 0x10000 + ((c & 0x3FF) << 10) + (units[++i] & 0x3FFU);
      *out++ = Byte(0xF0 | c >> 18);
      *out++ = Continuation(c, 12);
    } else {
      if (IsHighSurrogate(units[i]) || IsLowSurrogate(units[i])) c = 0xFFFD;
      *out++ = Byte(0xE0 | c >> 12);
    }
    *out++ = Continuation(c, 6);
    *out++ = Continuation(c, 0);
  }
  return static_cast<std::size_t>(out - to);
}

}  // namespace SDI::TextColumn
