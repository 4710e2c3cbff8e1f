#ifndef SURVEYDATA_TESTS_GNSS_RECORD_MODEL_H_
#define SURVEYDATA_TESTS_GNSS_RECORD_MODEL_H_

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_outcome.h>

#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"

/// \file
/// Reads, writes and walks record files with plain byte arithmetic, following the description of
/// the format literally. It shares only the result structures with the library.

namespace RecordModel {

using TestSupport::ByteVector;
using TestSupport::StoredFields;

inline unsigned U16(const ByteVector& b, std::size_t at) { return b.at(at) + 256U * b.at(at + 1); }
inline std::uint32_t U32(const ByteVector& b, std::size_t at) {
  return U16(b, at) + 65536U * U16(b, at + 2);
}
inline std::int32_t I32(const ByteVector& b, std::size_t at) {
  return static_cast<std::int32_t>(U32(b, at));
}
inline void PutU16(ByteVector& b, std::size_t at, unsigned value) {
  b.at(at) = static_cast<std::uint8_t>(value % 256);
  b.at(at + 1) = static_cast<std::uint8_t>(value / 256);
}
inline void PutU32(ByteVector& b, std::size_t at, std::uint32_t value) {
  PutU16(b, at, value % 65536);
  PutU16(b, at + 2, value / 65536);
}

inline unsigned Checksum(const ByteVector& b, std::size_t at, std::size_t length) {
  if (length < 3) return 0;
  unsigned sum = 0;
  for (std::size_t i = 2; i < length; ++i) sum = (sum + b.at(at + i)) % 65536;
  return (65536 - sum) % 65536;
}

// The bytes of one unit.
inline std::string Encoded(unsigned u) {
  const auto c = [](unsigned byte) { return static_cast<char>(byte); };
  if (u < 0x80) return {c(u)};
  if (u < 0x800) return {c(0xC0 | u >> 6), c(0x80 | (u & 0x3F))};
  return {c(0xE0 | u >> 12), c(0x80 | (u >> 6 & 0x3F)), c(0x80 | (u & 0x3F))};
}

// The bytes that the encoder leaves in a field of `capacity` bytes, and the count that it returns.
inline int EncodeName(const std::vector<unsigned>& units, char* field, std::size_t capacity) {
  if (units.size() + 1 > capacity) return -1;
  std::size_t written = 0;
  std::size_t needed = 0;
  for (const unsigned unit : units) {
    if (unit == 0) {
      if (written < capacity) field[written] = 0;
      break;
    }
    const std::string bytes = Encoded(unit);
    needed += bytes.size();
    if (written + bytes.size() > capacity) continue;
    bytes.copy(field + written, bytes.size());
    written += bytes.size();
  }
  return static_cast<int>(needed);
}

struct DecodedName {
  std::vector<unsigned> units;
  int result = 0;
};

inline DecodedName DecodeName(const char* name, std::size_t limit, std::size_t capacity) {
  DecodedName d;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(name[i]); };
  const auto continues = [&](std::size_t i) { return byte(i) >= 0x80 && byte(i) <= 0xBF; };
  std::size_t i = 0;
  while (i < limit && byte(i) != 0) {
    const unsigned lead = byte(i);
    const std::size_t size = lead < 0x80                   ? 1
                             : lead < 0xC0 || lead >= 0xF0 ? 0
                             : lead < 0xE0                 ? 2
                                                           : 3;
    if (size == 0) {
      d.result = -3;
      break;
    }
    if (i + size > limit) {
      d.result = -2;
      break;
    }
    if ((size > 1 && !continues(i + 1)) || (size > 2 && !continues(i + 2))) {
      d.result = -3;
      break;
    }
    if (size == 1) d.units.push_back(lead);
    if (size == 2) d.units.push_back((lead & 0x1FU) * 64 + (byte(i + 1) & 0x3FU));
    if (size == 3) {
      d.units.push_back((lead & 0x0FU) * 4096 + (byte(i + 1) & 0x3FU) * 64 + (byte(i + 2) & 0x3FU));
    }
    i += size;
  }
  if (d.units.size() > capacity) {
    d.units.resize(capacity);
    if (d.result == 0) d.result = -1;
  }
  return d;
}

// Parses a frame whose header and checksum are correct.
inline std::uint32_t Parse(const ByteVector& f, std::size_t length, StoredFields& m,
                           SDI::GPSRecordFileInfo& info) {
  std::size_t at = 5;
  const auto fits = [&](std::size_t size) { return at + size <= length; };
  const auto pairAt = [&](std::size_t i) { return SDI::GPSCounterPair{f.at(i), f.at(i + 1)}; };
  const auto bits = [&](std::size_t i) { return std::bit_cast<float>(U32(f, i)); };
  const auto widened = [&](std::size_t i) {
    return std::bit_cast<std::uint64_t>(static_cast<double>(bits(i)));
  };

  if (!fits(12)) return 2;
  m.timeA = {static_cast<std::uint16_t>(U16(f, 5)), I32(f, 7)};
  m.timeB.timeOfWeek = I32(f, 11);
  const unsigned flags1 = U16(f, 15);
  at = 17;

  if (flags1 & 0x0001) {
    if (!fits(12)) return 2;
    info.flags |= f.at(at + 6) != 0 ? 0x2 : 0x1;
    if (f.at(at + 7) & 0x02) m.statusMask |= 0x0008;
    if (f.at(at + 7) & 0x04) m.statusMask |= 0x0002;
    if (U32(f, at + 8) & 0x4000) m.statusMask |= 0x0001;
    at += 12;
  }
  if (flags1 & 0x0002) {
    if (!fits(38)) return 2;
    std::vector<unsigned> units;
    for (std::size_t i = 0; i < 17; ++i) units.push_back(U16(f, at + 2 * i));
    EncodeName(units, info.name, 49);
    info.number = I32(f, at + 34);
    at += 38;
  }
  if (flags1 & 0x0004) {
    if (!fits(5)) return 2;
    m.height = U32(f, at);
    m.isVertical = f.at(at + 4) != 1;
    m.horizontalOffset = 0;
    m.setMask |= 0x0002;
    at += 5;
  }
  if (flags1 & 0x0008) {
    if (!fits(1)) return 2;
    const unsigned count = f.at(at);
    if (count > 1) return 2;
    if (!fits(1 + 6 * count)) return 2;
    if (count == 1) {
      m.extraTimeCount = 1;
      m.extraWeek = U16(f, at + 1);
      m.extraTimeOfWeek = I32(f, at + 3);
    }
    at += 1 + 6 * count;
  }
  if (flags1 & 0x0010) {
    if (!fits(28)) return 2;
    m.word16 = U16(f, at);
    m.setMask |= 0x0020;
    at += 28;
  }
  if (flags1 & 0x0020) {
    if (!fits(1)) return 2;
    const unsigned systems = f.at(at);
    const std::size_t size = 5 + 8 * ((systems & 1) + (systems >> 1 & 1) + (systems >> 2 & 1));
    if (!fits(size)) return 2;
    at += size;
  }
  if (flags1 & 0x0040) {
    if (!fits(5)) return 2;
    m.valueCount = 2;
    m.values[0] = static_cast<std::uint16_t>(U16(f, at + 1));
    m.values[1] = static_cast<std::uint16_t>(U16(f, at + 3));
    at += 5;
  }
  if (flags1 & 0x0080) {
    if (!fits(7)) return 2;
    for (std::size_t i = 0; i < 3; ++i) {
      m.dops[i] = static_cast<std::uint16_t>(U16(f, at + 1 + 2 * i));
    }
    m.setMask |= 0x0004;
    at += 7;
  }
  if (flags1 & 0x0100) {
    if (!fits(2)) return 2;
    m.totalPair = pairAt(at);
    m.setMask |= 0x0008;
    at += 2;
  }
  if (flags1 & 0x0200) {
    if (!fits(13)) return 2;
    for (std::size_t i = 0; i < 3; ++i) m.vector[i] = widened(at + 1 + 4 * i);
    m.setMask |= 0x0010;
    at += 13;
  }
  if (flags1 & 0x1000) {
    if (!fits(1)) return 2;
    const unsigned systems = f.at(at++);
    std::array<std::size_t, 3> pairsAt = {};  // 0: none
    for (unsigned i = 0; i < 3; ++i) {
      if (!(systems >> i & 1)) continue;
      if (!fits(1)) return 2;
      const bool isValid = (f.at(at++) & 1) != 0;
      if (!isValid) continue;
      if (!fits(2)) return 2;
      pairsAt[i] = at;
      at += 2;
    }
    if (pairsAt[0] != 0) {
      m.system1Pair = pairAt(pairsAt[0]);
      m.setMask |= 0x0040;
      m.statusMask |= 0x0010;
    }
    if (pairsAt[1] != 0) {
      m.system2Pair = pairAt(pairsAt[1]);
      if (m.system2Pair.second != 0) m.setMask |= 0x0040, m.statusMask |= 0x0020;
    }
    if (pairsAt[2] != 0) {
      m.system3Pair = pairAt(pairsAt[2]);
      if (m.system3Pair.second != 0) m.setMask |= 0x0040, m.statusMask |= 0x0040;
    }
  }
  if (!(flags1 & 0x2000)) return 0;

  if (!fits(2)) return 2;
  const unsigned flags2 = U16(f, at);
  at += 2;

  // A text of at most `most` units. The terminator replaces the last one.
  const auto text = [&](std::size_t most, std::u16string& to) {
    std::u16string units;
    for (std::size_t i = 0; i < most; ++i) {
      if (!fits(2)) return false;
      const unsigned unit = U16(f, at);
      at += 2;
      if (unit == 0) break;
      if (i + 1 < most) units.push_back(static_cast<char16_t>(unit));
    }
    to = units;
    return true;
  };
  const auto byte = [&](auto& to) {
    if (!fits(1)) return false;
    to = f.at(at++);
    return true;
  };
  const auto word = [&](unsigned& to) {
    if (!fits(2)) return false;
    to = U16(f, at);
    at += 2;
    return true;
  };
  const auto longWord = [&](std::int32_t& to) {
    if (!fits(4)) return false;
    to = I32(f, at);
    at += 4;
    return true;
  };

  if (flags2 & 0x0001) {
    if (!byte(m.flagA)) return 2;
    m.flagA = m.flagA != 0 ? 1 : 0;
  }
  if (flags2 & 0x0002 && !byte(m.valueB)) return 2;
  if (flags2 & 0x0004) {
    if (!byte(m.valueC)) return 2;
    m.setMask = m.valueC != 0 ? m.setMask | 0x0080U : m.setMask & ~0x0080U;
  }
  if (flags2 & 0x0008 && !text(80, m.textA)) return 2;
  if (flags2 & 0x0010 && !text(80, m.textB)) return 2;
  if (flags2 & 0x0020 && !longWord(m.valueD)) return 2;
  if (flags2 & 0x0040 && !text(80, m.textC)) return 2;
  if (flags2 & 0x0080) {
    if (!byte(m.flagE)) return 2;
    m.flagE = m.flagE != 0 ? 1 : 0;
  }
  if (flags2 & 0x0100 && !text(30, m.textD)) return 2;
  if (flags2 & 0x0200 && !byte(m.valueF)) return 2;
  if (flags2 & 0x0400 && !longWord(m.valueG)) return 2;
  if (flags2 & 0x0800) {
    if (!word(m.valueH)) return 2;
    m.setMask |= 0x0100;
  }
  if (flags2 & 0x1000) {
    if (!word(m.valueI)) return 2;
    m.setMask |= 0x0200;
  }
  if (flags2 & 0x2000) {
    if (!fits(3)) return 2;
    const unsigned count = f.at(at + 2);
    if (count > 31) return 2;
    if (!fits(3 + 2 * count)) return 2;
    m.listHead = U16(f, at);
    m.listCount = count;
    m.listEntries = {};
    for (std::size_t i = 0; i < count; ++i) {
      m.listEntries[i] = static_cast<std::uint16_t>(U16(f, at + 3 + 2 * i));
    }
    m.setMask |= 0x0400;
  }
  return 0;
}

inline bool HasMeasurementHeader(const ByteVector& file, std::size_t offset) {
  const unsigned length = U16(file, offset + 2);
  return U16(file, offset) == 44700 && file.at(offset + 4) == 113 && length < 499 && length >= 5;
}

/// Reads the frame at `info.offset` of a file with the bytes `file`.
inline std::uint32_t Read(const ByteVector& file, StoredFields& m, SDI::GPSRecordFileInfo& info) {
  const std::size_t offset = info.offset;
  if (offset + 5 > file.size()) return 0;
  if (!HasMeasurementHeader(file, offset)) return 2;
  const std::size_t length = U16(file, offset + 2);
  if (offset + length + 2 > file.size()) return 0;
  if (U16(file, offset + length) != Checksum(file, offset, length)) return 2;
  const auto begin = file.begin() + static_cast<std::ptrdiff_t>(offset);
  const ByteVector frame(begin, begin + static_cast<std::ptrdiff_t>(length + 2));
  return Parse(frame, length, m, info);
}

/// Patches the frame at `info.offset` of a file with the bytes `file`; `m` may be null.
inline std::uint32_t Write(ByteVector& file, const StoredFields* m,
                           const SDI::GPSRecordFileInfo& info) {
  const std::size_t offset = info.offset;
  if (offset + 5 > file.size()) return 1;
  if (!HasMeasurementHeader(file, offset)) return 2;
  const std::size_t length = U16(file, offset + 2);
  const std::size_t size = length + 2;
  const std::size_t there = std::min(size, file.size() - offset);
  ByteVector frame(500, 0);
  for (std::size_t i = 0; i < there; ++i) frame[i] = file[offset + i];
  if (there == size) {
    if (U16(frame, length) != Checksum(frame, 0, length)) return 2;
    const unsigned flags = m != nullptr ? U16(frame, 15) : 0x0003;
    if (flags & 0x0001) frame[17 + 6] = (info.flags & 0x1) != 0 ? 0 : 1;
    if (flags & 0x0002) {
      const std::size_t at = flags & 0x0001 ? 17 + 12 : 17;
      std::vector<unsigned> units = DecodeName(info.name, 49, 65).units;
      units.resize(17);
      for (std::size_t i = 0; i < 17; ++i) PutU16(frame, at + 2 * i, units[i]);
      PutU32(frame, at + 34, static_cast<std::uint32_t>(info.number));
    }
    if (flags & 0x0004) {
      const std::size_t positions[] = {17 + 0, 17 + 12, 17 + 38, 17 + 50};
      const std::size_t at = positions[flags & 0x0003];
      const bool isSet = (m->setMask & 0x0002) != 0;
      const bool isVertical = !isSet || m->isVertical;
      const float height = isSet ? std::bit_cast<float>(m->height) : 0.0F;
      const float across = isSet ? std::bit_cast<float>(m->horizontalOffset) : 0.0F;
      float vertical = height;
      if (!isVertical) {
        vertical = height >= across ? std::sqrt(height * height - across * across) : 0.0F;
      }
      PutU32(frame, at, std::bit_cast<std::uint32_t>(vertical));
      frame[at + 4] = isVertical ? 0 : 1;
    }
  }
  PutU16(frame, length, Checksum(frame, 0, length));
  if (file.size() < offset + size) file.resize(offset + size);
  for (std::size_t i = 0; i < size; ++i) file[offset + i] = frame[i];
  return 0;
}

/// Walks a file with the bytes `file`.
inline std::vector<SDI::GPSRecordEntry> Walk(const ByteVector& file) {
  std::vector<SDI::GPSRecordEntry> entries;
  std::size_t gap = 0;
  const auto endGap = [&](std::size_t at) {
    if (at > gap) entries.push_back({gap, at - gap, true, 0});
  };
  std::size_t at = 0;
  while (at < file.size()) {
    if (at + 5 <= file.size() && U16(file, at) == 44700) {
      const std::size_t length = U16(file, at + 2);
      if (length >= 5 && at + length + 2 <= file.size() &&
          U16(file, at + length) == Checksum(file, at, length)) {
        endGap(at);
        entries.push_back({at, length + 2, false, file[at + 4]});
        at += length + 2;
        gap = at;
        continue;
      }
    }
    ++at;
  }
  endGap(at);
  return entries;
}

/// The headers of measurement frames in the gaps of `file`.
inline std::vector<SDI::GPSDamagedHeader> Damaged(const ByteVector& file) {
  std::vector<SDI::GPSDamagedHeader> headers;
  for (const SDI::GPSRecordEntry& gap : Walk(file)) {
    if (!gap.isGap) continue;
    const std::uint64_t gapEnd = gap.offset + gap.size;
    for (std::size_t at = gap.offset; at + 5 <= gapEnd; ++at) {
      if (!HasMeasurementHeader(file, at) || U16(file, at + 2) < 17) continue;
      const std::size_t size = U16(file, at + 2) + 2;
      const auto damage = at + size > file.size() ? SDI::GPSRecordDamage::kCutByTheEnd
                          : at + size > gapEnd    ? SDI::GPSRecordDamage::kRunsIntoNextRecord
                                                  : SDI::GPSRecordDamage::kWrongChecksum;
      headers.push_back({at, size, damage});
    }
  }
  return headers;
}

}  // namespace RecordModel

#endif  // SURVEYDATA_TESTS_GNSS_RECORD_MODEL_H_
