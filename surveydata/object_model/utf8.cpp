#include <surveydata/object_model/utf8.h>

namespace API::Utf8 {
namespace {

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The six bits that a continuation byte carries.
unsigned Carried(char byte) { return static_cast<unsigned char>(byte) & 0x3Fu; }

}  // namespace

std::size_t Encode(const char16_t* units, std::size_t count, char* dst, std::size_t space) {
  if (dst == nullptr) space = 0;
  std::size_t needed = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned u = units[i];
    if (u == 0) {
      if (space > 0) *dst = '\0';
      break;
    }
    const std::size_t bytes = u < 0x80 ? 1 : u < 0x800 ? 2 : 3;
    needed += bytes;
    if (space < bytes) continue;
    space -= bytes;
    if (bytes == 1) {
      *dst++ = static_cast<char>(u);
    } else if (bytes == 2) {
      *dst++ = static_cast<char>(0xC0 | (u >> 6));
      *dst++ = static_cast<char>(0x80 | (u & 0x3F));
    } else {
      *dst++ = static_cast<char>(0xE0 | (u >> 12));
      *dst++ = static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      *dst++ = static_cast<char>(0x80 | (u & 0x3F));
    }
  }
  return needed;
}

Decoded Decode(const char* src, std::size_t limit, char16_t* units, std::size_t capacity,
               DecodeRules rules) {
  Decoded done{kDone, 0, 0};
  while (done.bytes < limit || (done.bytes == limit && rules.readsByteAtLimit)) {
    const char* const at = src + done.bytes;
    const std::size_t left = limit - done.bytes;
    const unsigned lead = static_cast<unsigned char>(*at);
    if (lead == 0) break;
    unsigned unit = lead;
    std::size_t bytes = 1;
    if (lead >= 0x80) {
      bytes = lead >= 0xE0 ? 3 : 2;
      if (lead < 0xC0 || (lead >= 0xF0 && !rules.acceptsLeadsFromF0)) {
        done.result = kInvalid;
        return done;
      }
      if (left < bytes) {
        done.result = kCut;
        return done;
      }
      if (!IsContinuation(at[1]) || (bytes == 3 && !IsContinuation(at[2]))) {
        done.result = kInvalid;
        return done;
      }
      unit = bytes == 3 ? (lead << 12) | (Carried(at[1]) << 6) | Carried(at[2])
                        : ((lead & 0x1F) << 6) | Carried(at[1]);
    }
    if (done.characters < capacity) units[done.characters] = static_cast<char16_t>(unit);
    ++done.characters;
    done.bytes += bytes;
  }
  if (done.characters > capacity) done.result = kTooLong;
  return done;
}

}  // namespace API::Utf8
