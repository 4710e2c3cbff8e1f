#ifndef SURVEYDATA_GNSS_RECORD_FRAME_H_
#define SURVEYDATA_GNSS_RECORD_FRAME_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include <boost/endian/conversion.hpp>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file.h>

/// \file
/// Internal: the binary frame of a GNSS measurement. The tables `kBlocks1` and `kBlocks2` describe
/// the frame once, for the reader and for everything that explains a frame byte by byte.

namespace SDI::RecordFrame {

using Bytes = std::span<const std::uint8_t>;

inline constexpr std::uint16_t kMagic = 44700;
inline constexpr std::uint8_t kType = 113;
inline constexpr std::size_t kHeaderSize = 5;   ///< Magic, length and type.
inline constexpr std::uint16_t kMinLength = 5;  ///< The checksum stands behind the header.
inline constexpr std::uint16_t kMaxLength = 498;
inline constexpr std::size_t kChecksumSize = 2;
inline constexpr std::size_t kMaxSize = kMaxLength + kChecksumSize;
inline constexpr std::size_t kNameUnits = 17;
inline constexpr std::size_t kFlags1At = 15;  ///< Behind the header and the times.
inline constexpr std::size_t kBlocksAt = 17;

// Bits of the flags words that the writer and the walk over the blocks know.
inline constexpr std::uint16_t kFileFlags = 0x0001;
inline constexpr std::uint16_t kName = 0x0002;
inline constexpr std::uint16_t kAntennaHeight = 0x0004;
inline constexpr std::uint16_t kMore = 0x2000;  ///< In word 1: word 2 follows.

inline constexpr std::uint8_t kSlantHeight = 1;  ///< The kind byte of a slant antenna height.

/// What every record begins with, whatever its kind.
struct Header {
  std::uint16_t magic;
  std::uint16_t length;  ///< Where the checksum stands; the record has two bytes more.
  std::uint8_t type;

  /// `bytes` holds at least `kHeaderSize`.
  static Header Load(const std::uint8_t* bytes);
  bool IsRecord() const { return magic == kMagic && length >= kMinLength; }
  bool IsMeasurement() const { return IsRecord() && type == kType && length <= kMaxLength; }
  std::size_t Size() const { return length + kChecksumSize; }
};

/// The checksum of a frame whose length is `length`: minus the sum of its bytes from the third up
/// to `length`, in 16 bits. 0 for lengths below 3.
std::uint16_t Checksum(const std::uint8_t* frame, std::size_t length);

/// Whether the checksum at `length` is right.
bool HasRightChecksum(const std::uint8_t* frame, std::size_t length);

/// Reads a whole frame, header and checksum included, that stands in memory.
/// \return as `GPSRecordFileC::ReadGPSMeasData`: `kDone` or `kBadFrame`.
std::uint32_t Decode(Bytes frame, GPSMeasDataImplC& measurement, GPSRecordFileInfo& info);

/// Rewrites the blocks that an update may change, where the flags of the frame announce them: kind
/// byte, name and number, antenna height; without a measurement the first two, whatever the flags.
/// The checksum is left to `Build`. `frame` is a whole buffer: a frame that is too short for its
/// blocks is written past its end.
void Patch(std::span<std::uint8_t, kMaxSize> frame, const GPSMeasDataImplC* measurement,
           const GPSRecordFileInfo& info);

/// Marks a frame without a sub-type.
inline constexpr int kNoSubType = -1;

/// Writes header and checksum around a payload that stands in `buffer` already.
///
/// The frame has `payload` + 7 bytes, and one more for a sub-type of 1 or above. A sub-type of 0 to
/// 255 is written behind the type: 0 is written but not counted in the size.
/// \return the size; 0, with nothing written, when `buffer` is smaller or the size needs more than
///         16 bits.
std::size_t Build(std::span<std::uint8_t> buffer, std::uint8_t type, int subType,
                  std::size_t payload);

/// The UTF-8 of `count` units up to their first 0. Without a 0 among them no 0 byte is written.
/// \return the bytes that the whole text needs (a unit that does not fit is skipped but counted);
///         -1, with nothing written, when `count` + 1 exceeds `capacity` or `dst` is null.
int EncodeName(const char16_t* units, std::size_t count, char* dst, std::size_t capacity);

/// Clears `capacity` units and decodes `src` into them, up to its first 0 byte or the limit.
/// \return 0; -1 when there are more units than `capacity`; -2 when the limit cuts a sequence; -3
///         on a stray or missing continuation byte or a lead byte of four or more bytes. The units
///         before a fault stand.
int DecodeName(const char* src, std::size_t limit, char16_t* units, std::size_t capacity);

/// Reads a frame front to back. A read past the end yields 0 and clears `Ok()`, so that a block is
/// checked once, when it has been read. Every read names its field for cursors that explain.
class FrameCursorC {
 public:
  explicit FrameCursorC(Bytes bytes) : at_(bytes.data()), end_(at_ + bytes.size()) {}

  std::uint8_t U8(const char* /*field*/) { return Take<std::uint8_t>(); }
  std::uint16_t U16(const char* /*field*/) { return Take<std::uint16_t>(); }
  std::int32_t I32(const char* /*field*/) { return Take<std::int32_t>(); }
  float F32(const char* /*field*/) { return Take<float>(); }
  void Ignored(std::size_t count) {
    if (Left() < count) return Fail();
    at_ += count;
  }

  /// `N` units.
  template <std::size_t N>
  void Units(const char* /*field*/, char16_t (&units)[N]) {
    if (Left() < sizeof(units)) return Fail();
    Load(units, N);
    at_ += sizeof(units);
  }

  /// Units up to and including a 0 unit, at most `N`. The last unit taken is replaced by 0.
  template <std::size_t N>
  void Text(const char* /*field*/, char16_t (&text)[N]) {
    const std::size_t most = std::min(N, Left() / sizeof(char16_t));
    Load(text, most);  // at once, whatever stands behind the terminator
    const auto length = static_cast<std::size_t>(std::find(text, text + most, u'\0') - text);
    if (length == most && most < N) return Fail();
    const std::size_t taken = std::min(length + 1, N);
    text[taken - 1] = 0;
    at_ += taken * sizeof(char16_t);
  }

  /// Refuses what was read.
  void Fail() { ok_ = false; }
  bool Ok() const { return ok_; }

 private:
  template <class Value>
  Value Take() {
    if (Left() < sizeof(Value)) {
      Fail();
      return {};
    }
    const auto value =
        boost::endian::endian_load<Value, sizeof(Value), boost::endian::order::little>(at_);
    at_ += sizeof(Value);
    return value;
  }

  void Load(char16_t* units, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i) {
      units[i] = boost::endian::load_little_u16(at_ + i * sizeof(char16_t));
    }
  }

  std::size_t Left() const { return static_cast<std::size_t>(end_ - at_); }

  const std::uint8_t* at_;
  const std::uint8_t* end_;
  bool ok_ = true;
};

/// Where the fields of a frame go.
struct Target {
  GPSMeasDataImplC& measurement;
  GPSRecordFileInfo& info;
};

/// A block of a frame: the bit of the flags word that announces it, its name, and the one
/// description of its bytes. A block is stored only when it is whole.
template <class Cursor>
struct Block {
  std::uint16_t bit;
  const char* name;
  void (*read)(Cursor& in, const Target& out);
};

// What each block holds. A reader takes all of its block first and stores it only when it is whole.

template <class Cursor>
void ReadFileFlags(Cursor& in, const Target& out) {
  in.Ignored(6);
  const std::uint8_t kind = in.U8("kind");
  const std::uint8_t status = in.U8("status");
  const std::int32_t more = in.I32("more status");
  if (!in.Ok()) return;
  out.info.flags |= kind != 0 ? GPSRecordFileInfo::kKindNonZero : GPSRecordFileInfo::kKindZero;
  if ((status & 0x02) != 0) out.measurement.SetStatusBit3();
  if ((status & 0x04) != 0) out.measurement.SetStatusBit1();
  if ((more & 0x4000) != 0) out.measurement.SetStatusBit0();
}

template <class Cursor>
void ReadName(Cursor& in, const Target& out) {
  char16_t name[kNameUnits];
  in.Units("name", name);
  const std::int32_t number = in.I32("number");
  if (!in.Ok()) return;
  EncodeName(name, kNameUnits, out.info.name, sizeof(out.info.name));
  out.info.number = number;
}

template <class Cursor>
void ReadAntennaHeight(Cursor& in, const Target& out) {
  const float height = in.F32("height");
  const std::uint8_t kind = in.U8("kind");
  if (!in.Ok()) return;
  out.measurement.SetAntennaHeight(GPSAntHeightImplC(height, kind != kSlantHeight, 0.0F));
}

template <class Cursor>
void ReadExtraTime(Cursor& in, const Target& out) {
  const std::uint8_t count = in.U8("count");
  if (count == 0) return;
  if (count > 1) return in.Fail();
  const std::uint16_t week = in.U16("week");
  const std::int32_t timeOfWeek = in.I32("time of week");
  if (in.Ok()) out.measurement.SetExtraTime(week, timeOfWeek);
}

template <class Cursor>
void ReadWord16(Cursor& in, const Target& out) {
  const std::uint16_t word = in.U16("word 16");
  in.Ignored(2 + 3 * sizeof(double));
  if (in.Ok()) out.measurement.SetWord16(word);
}

template <class Cursor>
void ReadIgnoredPairs(Cursor& in, const Target& /*out*/) {
  const std::uint8_t systems = in.U8("systems");
  in.Ignored(sizeof(std::int32_t));
  for (const unsigned system : {0x1U, 0x2U, 0x4U}) {
    if ((systems & system) != 0) in.Ignored(2 * sizeof(float));
  }
}

template <class Cursor>
void ReadValues(Cursor& in, const Target& out) {
  in.Ignored(1);
  const std::uint16_t first = in.U16("first");
  const std::uint16_t second = in.U16("second");
  const std::uint16_t values[] = {first, second};
  if (in.Ok()) out.measurement.SetValues(values, 2);
}

template <class Cursor>
void ReadDOPs(Cursor& in, const Target& out) {
  in.Ignored(1);
  const std::uint16_t hdop = in.U16("HDOP");
  const std::uint16_t vdop = in.U16("VDOP");
  const std::uint16_t tdop = in.U16("TDOP");
  if (in.Ok()) out.measurement.SetDOPs(GPSDOPsImplC(hdop, vdop, tdop));
}

template <class Cursor>
void ReadTotalPair(Cursor& in, const Target& out) {
  const std::uint8_t first = in.U8("first");
  const std::uint8_t second = in.U8("second");
  if (in.Ok()) out.measurement.SetTotalPair(first, second);
}

template <class Cursor>
void ReadVector(Cursor& in, const Target& out) {
  in.Ignored(1);
  const double x = in.F32("x");
  const double y = in.F32("y");
  const double z = in.F32("z");
  if (in.Ok()) out.measurement.SetVector({x, y, z});
}

template <class Cursor>
void ReadSystemPairs(Cursor& in, const Target& out) {
  struct System {
    GPSCounterPair pair;
    bool isPresent = false;
  };
  System systems[3];
  unsigned bits = in.U8("systems");
  for (System& system : systems) {
    if ((bits & 1) != 0 && (in.U8("valid") & 1) != 0) {
      system.isPresent = true;
      system.pair.first = in.U8("first");
      system.pair.second = in.U8("second");
    }
    bits >>= 1;
  }
  if (!in.Ok()) return;
  const auto& [one, two, three] = systems;
  if (one.isPresent) out.measurement.SetSystem1Pair(one.pair.first, one.pair.second);
  if (two.isPresent) out.measurement.SetSystem2Pair(two.pair.first, two.pair.second);
  if (three.isPresent) out.measurement.SetSystem3Pair(three.pair.first, three.pair.second);
}

template <class Cursor>
void ReadList(Cursor& in, const Target& out) {
  GPSListBlock list;
  list.head = in.U16("head");
  list.count = in.U8("count");
  if (list.count > GPSListBlock::kCapacity) return in.Fail();
  for (unsigned i = 0; i < list.count; ++i) list.entries[i] = in.U16("entry");
  if (in.Ok()) out.measurement.SetListBlock(list);
}

// Blocks of one number or text, which goes to the setter `Set`.

template <class Cursor, void (GPSMeasDataImplC::*Set)(std::uint8_t)>
void ReadFlag(Cursor& in, const Target& out) {
  const std::uint8_t flag = in.U8("flag");
  if (in.Ok()) (out.measurement.*Set)(flag != 0 ? 1 : 0);
}

template <class Cursor, auto Set>
void ReadU8(Cursor& in, const Target& out) {
  const std::uint8_t value = in.U8("value");
  if (in.Ok()) (out.measurement.*Set)(value);
}

template <class Cursor, auto Set>
void ReadU16(Cursor& in, const Target& out) {
  const std::uint16_t value = in.U16("value");
  if (in.Ok()) (out.measurement.*Set)(value);
}

template <class Cursor, auto Set>
void ReadI32(Cursor& in, const Target& out) {
  const std::int32_t value = in.I32("value");
  if (in.Ok()) (out.measurement.*Set)(value);
}

template <class Cursor, auto Set, std::size_t Units = GPSMeasDataImplC::kTextUnits>
void ReadText(Cursor& in, const Target& out) {
  char16_t text[Units];
  in.Text("text", text);
  if (in.Ok()) (out.measurement.*Set)(text);
}

/// The blocks that flags word 1 announces, in the order in which they stand in a frame. The bits
/// 0x0400 and 0x0800 announce nothing; 0x2000 announces flags word 2 behind the last block.
template <class Cursor>
inline constexpr std::array kBlocks1{
    Block<Cursor>{kFileFlags, "file flags", ReadFileFlags<Cursor>},
    Block<Cursor>{kName, "name", ReadName<Cursor>},
    Block<Cursor>{kAntennaHeight, "antenna height", ReadAntennaHeight<Cursor>},
    Block<Cursor>{0x0008, "extra time", ReadExtraTime<Cursor>},
    Block<Cursor>{0x0010, "word 16", ReadWord16<Cursor>},
    Block<Cursor>{0x0020, "ignored pairs", ReadIgnoredPairs<Cursor>},
    Block<Cursor>{0x0040, "values", ReadValues<Cursor>},
    Block<Cursor>{0x0080, "DOPs", ReadDOPs<Cursor>},
    Block<Cursor>{0x0100, "total pair", ReadTotalPair<Cursor>},
    Block<Cursor>{0x0200, "vector", ReadVector<Cursor>},
    Block<Cursor>{0x1000, "system pairs", ReadSystemPairs<Cursor>},
};

/// The blocks that flags word 2 announces, in the order in which they stand in a frame.
template <class Cursor>
inline constexpr std::array kBlocks2{
    Block<Cursor>{0x0001, "flag A", ReadFlag<Cursor, &GPSMeasDataImplC::SetFlagA>},
    Block<Cursor>{0x0002, "value B", ReadU8<Cursor, &GPSMeasDataImplC::SetValueB>},
    Block<Cursor>{0x0004, "value C", ReadU8<Cursor, &GPSMeasDataImplC::SetValueC>},
    Block<Cursor>{0x0008, "text A", ReadText<Cursor, &GPSMeasDataImplC::SetTextA>},
    Block<Cursor>{0x0010, "text B", ReadText<Cursor, &GPSMeasDataImplC::SetTextB>},
    Block<Cursor>{0x0020, "value D", ReadI32<Cursor, &GPSMeasDataImplC::SetValueD>},
    Block<Cursor>{0x0040, "text C", ReadText<Cursor, &GPSMeasDataImplC::SetTextC>},
    Block<Cursor>{0x0080, "flag E", ReadFlag<Cursor, &GPSMeasDataImplC::SetFlagE>},
    Block<Cursor>{0x0100, "text D",
                  ReadText<Cursor, &GPSMeasDataImplC::SetTextD, GPSMeasDataImplC::kTextDUnits>},
    Block<Cursor>{0x0200, "value F", ReadU8<Cursor, &GPSMeasDataImplC::SetValueF>},
    Block<Cursor>{0x0400, "value G", ReadI32<Cursor, &GPSMeasDataImplC::SetValueG>},
    Block<Cursor>{0x0800, "value H", ReadU16<Cursor, &GPSMeasDataImplC::SetValueH>},
    Block<Cursor>{0x1000, "value I", ReadU16<Cursor, &GPSMeasDataImplC::SetValueI>},
    Block<Cursor>{0x2000, "list", ReadList<Cursor>},
};

/// Cursors that explain a frame are told where each block begins; others pay nothing.
template <class Cursor>
void BeginBlock(Cursor& in, const char* name) {
  if constexpr (requires { in.BeginBlock(name); }) in.BeginBlock(name);
}

/// False at the first block that does not fit; the blocks before it are stored.
template <class Cursor>
bool ReadBlocks(std::span<const Block<Cursor>> blocks, std::uint16_t flags, Cursor& in,
                const Target& out) {
  for (const Block<Cursor>& block : blocks) {
    if ((flags & block.bit) == 0) continue;
    BeginBlock(in, block.name);
    block.read(in, out);
    if (!in.Ok()) return false;
  }
  return true;
}

/// Reads what stands between the header of a frame and its checksum.
template <class Cursor>
bool ReadPayload(Cursor& in, const Target& out) {
  BeginBlock(in, "times");
  const std::uint16_t week = in.U16("time A, week");
  const std::int32_t timeA = in.I32("time A, time of week");
  const std::int32_t timeB = in.I32("time B, time of week");
  const std::uint16_t flags1 = in.U16("flags word 1");
  if (!in.Ok()) return false;
  out.measurement.SetTimeA({week, timeA});
  out.measurement.SetTimeB({out.measurement.GetTimeB().week, timeB});

  if (!ReadBlocks<Cursor>(kBlocks1<Cursor>, flags1, in, out)) return false;
  if ((flags1 & kMore) == 0) return true;
  BeginBlock(in, "more");
  const std::uint16_t flags2 = in.U16("flags word 2");
  return in.Ok() && ReadBlocks<Cursor>(kBlocks2<Cursor>, flags2, in, out);
}

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_RECORD_FRAME_H_
