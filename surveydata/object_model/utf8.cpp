#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include <boost/endian/conversion.hpp>

#include <surveydata/object_model/utf8.h>

// Encoder and decoder process eight characters at a time as long as these are certain to fit, with
// fast paths for eight characters of the same kind. A simple loop processes the rest, one character
// at a time: the ends of texts, and errors.

namespace API::Utf8 {
namespace {

constexpr std::ptrdiff_t kBlock = 8;    // characters
constexpr std::ptrdiff_t kLongest = 3;  // bytes of a sequence

template <std::unsigned_integral Word>
Word Load(const void* from) {
  Word word;
  std::memcpy(&word, from, sizeof(word));
  return word;
}

std::uint32_t LoadLittle32(const char* from) {
  return boost::endian::little_to_native(Load<std::uint32_t>(from));
}

void StoreLittle32(char* to, std::uint32_t word) {
  boost::endian::native_to_little_inplace(word);
  std::memcpy(to, &word, sizeof(word));
}

unsigned Byte(char c) { return static_cast<unsigned char>(c); }

// The six payload bits of a continuation byte; 64 or more for any other byte.
unsigned Carried(char byte) { return Byte(byte) ^ 0x80; }

bool IsContinuation(char byte) { return Carried(byte) < 0x40; }

char16_t Join(unsigned lead, char second) {
  return static_cast<char16_t>((lead & 0x1F) << 6 | Carried(second));
}

char16_t Join(unsigned lead, char second, char third) {
  return static_cast<char16_t>(lead << 12 | Carried(second) << 6 | Carried(third));
}

// `value` in every lane of a word.
constexpr std::uint64_t Lanes16(std::uint64_t value) { return value * 0x0001'0001'0001'0001; }
constexpr std::uint64_t Lanes8(std::uint64_t value) { return value * 0x0101'0101'0101'0101; }

// In four 16-bit lanes: bits n and above are 0 for a unit from 1 to 2^n - 1, and all 1 for the
// unit 0. A mask of these bits tests four units together.
std::uint64_t UpperBits(const char16_t* units) {
  const auto lanes = Load<std::uint64_t>(units);
  return lanes | (lanes - Lanes16(1));
}

// Whether all eight units are 0x800 or above.
bool AreAllThreeBytes(const char16_t* units) {
  const auto carried = [](std::uint64_t lanes) {  // such a unit sets the top bit of its lane
    return (lanes >> 1 & Lanes16(0x7C00)) + Lanes16(0x7C00);
  };
  return (carried(Load<std::uint64_t>(units)) & carried(Load<std::uint64_t>(units + 4)) &
          Lanes16(0x8000)) == Lanes16(0x8000);
}

void PutTwo(unsigned u, char* dst) {
  dst[0] = static_cast<char>(0xC0 | u >> 6);
  dst[1] = static_cast<char>(0x80 | (u & 0x3F));
}

void PutThree(unsigned u, char* dst) {
  dst[0] = static_cast<char>(0xE0 | u >> 12);
  dst[1] = static_cast<char>(0x80 | (u >> 6 & 0x3F));
  dst[2] = static_cast<char>(0x80 | (u & 0x3F));
}

// Encodes eight units; 24 bytes must fit. Returns the position of the next byte, or null if a unit
// is 0.
inline char* EncodeBlock(const char16_t* units, char* dst) {
  const std::uint64_t upper = UpperBits(units) | UpperBits(units + 4);
  if ((upper & Lanes16(0xFF80)) == 0) {
    for (int i = 0; i < kBlock; ++i) dst[i] = static_cast<char>(units[i]);
    return dst + kBlock;
  }
  char* out = dst;  // the next byte is written to `out + i`
  if ((upper & Lanes16(0xF800)) == 0) {
    for (int i = 0; i < kBlock; ++i) {
      unsigned u = units[i];
      if (u >= 0x80) {
        out++[i] = static_cast<char>(0xC0 | u >> 6);
        u = 0x80 | (u & 0x3F);
      }
      out[i] = static_cast<char>(u);
    }
    return out + kBlock;
  }
  if (AreAllThreeBytes(units)) {
    std::array<std::uint32_t, kBlock> sequences;
    for (std::size_t i = 0; i < kBlock; ++i) {
      const std::uint32_t u = units[i];
      sequences[i] = 0x8080E0 | u >> 12 | (u & 0xFC0) << 2 | (u & 0x3F) << 16;
    }
    // The next sequence overwrites the fourth byte; the last sequence must not write one.
    for (std::size_t i = 0; i < kBlock - 1; ++i) StoreLittle32(dst + 3 * i, sequences[i]);
    PutThree(units[kBlock - 1], dst + 3 * (kBlock - 1));
    return dst + 3 * kBlock;
  }
  for (int i = 0; i < kBlock; ++i) {
    unsigned u = units[i];
    if (u == 0) return nullptr;
    if (u >= 0x80) {
      if (u >= 0x800) {
        out++[i] = static_cast<char>(0xE0 | u >> 12);
        out++[i] = static_cast<char>(0x80 | (u >> 6 & 0x3F));
      } else {
        out++[i] = static_cast<char>(0xC0 | u >> 6);
      }
      u = 0x80 | (u & 0x3F);
    }
    out[i] = static_cast<char>(u);
  }
  return out + kBlock;
}

// Decodes eight characters of three bytes each; false if one of them has another length. Out of
// line, so that its many constants do not occupy registers in the other paths.
[[gnu::noinline]] bool DecodeThreeByteBlock(const char* src, char16_t* units) {
  constexpr std::uint32_t kMarks = 0xC0C0F0;
  constexpr std::uint32_t kThreeBytes = 0x8080E0;
  std::array<std::uint32_t, kBlock> sequences;
  for (std::size_t i = 0; i < kBlock - 1; ++i) sequences[i] = LoadLittle32(src + 3 * i);
  sequences.back() = LoadLittle32(src + 20) >> 8;  // does not read beyond the last byte
  std::uint32_t strange = 0;
  for (const std::uint32_t sequence : sequences) strange |= (sequence & kMarks) ^ kThreeBytes;
  if (strange != 0) return false;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const std::uint32_t s = sequences[i];
    units[i] = static_cast<char16_t>((s << 12) | (s >> 2 & 0xFC0) | (s >> 16 & 0x3F));
  }
  return true;
}

// The number of characters decoded, and of their bytes.
struct Taken {
  std::ptrdiff_t bytes;
  std::ptrdiff_t characters;
};

// Decodes eight characters; fewer if an error occurs, or if a character would leave less than one
// byte for each remaining one. `last` is eight bytes before the end of the source.
inline Taken DecodeMixedBlock(const char* src, const char* last, char16_t* units,
                              DecodeRules rules) {
  const unsigned leads = rules.acceptsLeadsFromF0 ? 0x40 : 0x30;
  const char* in = src;  // `in + i` is the next byte
  std::ptrdiff_t i = 0;
#pragma GCC unroll 8
  for (; i < kBlock; ++i) {
    unsigned unit = Byte(in[i]);
    if (unit >= 0x80) {
      if (unit - 0xC0 >= leads) break;
      if (unit < 0xE0) {
        if (last - in < 1 || !IsContinuation(in[i + 1])) break;
        unit = Join(unit, in[i + 1]);
        in += 1;
      } else {
        if (last - in < 2 || !IsContinuation(in[i + 1]) || !IsContinuation(in[i + 2])) break;
        unit = Join(unit, in[i + 1], in[i + 2]);
        in += 2;
      }
    }
    units[i] = static_cast<char16_t>(unit);
  }
  return {in - src + i, i};
}

// Decodes most of `size` bytes, none of which is 0: at most up to the first error, and at most
// `capacity` characters. May stop shortly before the end.
inline Taken DecodeBlocks(const char* src, std::ptrdiff_t size, char16_t* units,
                          std::ptrdiff_t capacity, DecodeRules rules) {
  const char* in = src;
  const char* const end = src + size;
  char16_t* out = units;
  char16_t* const full = units + capacity;
  Taken taken{kBlock, kBlock};
  while (taken.characters == kBlock && end - in >= kBlock && full - out >= kBlock) {
    taken = {kBlock, kBlock};
    if ((Load<std::uint64_t>(in) & Lanes8(0x80)) == 0) {
      for (int i = 0; i < kBlock; ++i) out[i] = static_cast<char16_t>(Byte(in[i]));
    } else if (Byte(*in) >= 0xE0 && end - in >= kLongest * kBlock &&
               DecodeThreeByteBlock(in, out)) {
      taken.bytes *= kLongest;
    } else {
      taken = DecodeMixedBlock(in, end - kBlock, out, rules);
    }
    in += taken.bytes;
    out += taken.characters;
  }
  return {in - src, out - units};
}

// Inlined into both callers: for a short text, another call with its result on the stack would take
// an eighth of the time.
[[gnu::always_inline]] inline Decoded DecodeInline(const char* src, std::size_t limit,
                                                   char16_t* units, std::size_t capacity,
                                                   DecodeRules rules) {
  // The source may be shorter than the limit: the terminator may come first.
  const std::size_t most = std::min(limit, kLongest * capacity);
  const void* const found = most != 0 ? std::memchr(src, 0, most) : nullptr;  // `src` may be null
  const auto* const terminator = static_cast<const char*>(found);
  const auto size = terminator != nullptr ? terminator - src : static_cast<std::ptrdiff_t>(most);
  const Taken taken = DecodeBlocks(src, size, units, static_cast<std::ptrdiff_t>(capacity), rules);

  Decoded done{kDone, static_cast<std::size_t>(taken.bytes),
               static_cast<std::size_t>(taken.characters)};
  while (done.bytes < limit || (done.bytes == limit && rules.readsByteAtLimit)) {
    const char* const at = src + done.bytes;
    const std::size_t left = limit - done.bytes;
    const unsigned lead = Byte(*at);
    if (lead == 0) break;
    auto unit = static_cast<char16_t>(lead);
    std::size_t bytes = 1;
    if (lead >= 0x80) {
      bytes = lead >= 0xE0 ? 3 : 2;
      if (lead < 0xC0 || (lead >= 0xF0 && !rules.acceptsLeadsFromF0)) {
        done.result = kInvalid;
        break;
      }
      if (left < bytes) {
        done.result = kCut;
        break;
      }
      if (!IsContinuation(at[1]) || (bytes == 3 && !IsContinuation(at[2]))) {
        done.result = kInvalid;
        break;
      }
      unit = bytes == 3 ? Join(lead, at[1], at[2]) : Join(lead, at[1]);
    }
    if (done.characters < capacity) units[done.characters] = unit;
    ++done.characters;
    done.bytes += bytes;
  }
  if (done.result == kDone && done.characters > capacity) done.result = kTooLong;
  const std::size_t stored = std::min(done.characters, capacity);
  std::fill(units + stored, units + capacity, u'\0');
  return done;
}

}  // namespace

std::size_t Encode(const char16_t* units, std::size_t count, char* dst, std::size_t space) {
  // At most this much is ever written; callers may pass an unlimited size.
  space = dst != nullptr ? std::min(space, kLongest * count + 1) : 0;
  const char16_t* in = units;
  const char16_t* const end = units + count;
  char* out = dst;
  if (space >= kLongest * kBlock) {
    const char* const last = dst + (space - kLongest * kBlock);
    while (end - in >= kBlock && out <= last) {
      char* const next = EncodeBlock(in, out);
      if (next == nullptr) break;
      out = next;
      in += kBlock;
    }
  }
  std::size_t needed = static_cast<std::size_t>(out - dst);
  space -= needed;
  for (; in != end; ++in) {
    const unsigned u = *in;
    if (u == 0) {
      if (space > 0) *out = '\0';
      break;
    }
    const std::size_t bytes = u < 0x80 ? 1 : u < 0x800 ? 2 : 3;
    needed += bytes;
    if (space < bytes) continue;
    space -= bytes;
    if (u < 0x80) {
      *out++ = static_cast<char>(u);
      continue;
    }
    if (u < 0x800) {
      PutTwo(u, out);
    } else {
      PutThree(u, out);
    }
    out += bytes;
  }
  return needed;
}

Decoded Decode(const char* src, std::size_t limit, char16_t* units, std::size_t capacity,
               DecodeRules rules) {
  return DecodeInline(src, limit, units, capacity, rules);
}

int DecodeText(const char* src, std::size_t* inOutLength, char16_t* units, std::size_t capacity,
               std::uint64_t& length) {
  std::size_t limit = inOutLength != nullptr ? *inOutLength : SIZE_MAX;
  if (inOutLength != nullptr) *inOutLength = 0;
  if (src == nullptr) return kDone;
  if (limit == SIZE_MAX) limit = kLongest * capacity;
  const Decoded decoded = DecodeInline(src, limit, units, capacity,
                                       {.readsByteAtLimit = true, .acceptsLeadsFromF0 = true});
  length = std::min(decoded.characters, capacity);
  units[capacity] = 0;
  if (inOutLength != nullptr) *inOutLength = decoded.bytes;
  return decoded.result;
}

}  // namespace API::Utf8
