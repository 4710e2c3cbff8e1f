#ifndef SURVEYDATA_GNSS_FRAME_BLOCKS_H_
#define SURVEYDATA_GNSS_FRAME_BLOCKS_H_

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include <surveydata/gnss/frame_cursors.h>
#include <surveydata/gnss/frame_fields.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>
#include <surveydata/gnss/record_frame.h>

/// \file
/// Internal: the blocks of a measurement frame, each described once. `Walk` passes the fields of a
/// block to a cursor: the same description reads, writes, patches and explains. `Store` moves the
/// values that were read into a measurement and its info; `Load` takes the values to write from
/// them, and returns whether the frame needs the block. The tables `Blocks1` and `Blocks2` define
/// the bits and the order of the blocks.

namespace SDI::RecordFrame {

/// Where the fields of a frame go.
struct Target {
  GPSMeasDataImplC& measurement;
  GPSRecordFileInfo& info;
};

/// Where the fields of a frame come from, and the first field that the frame cannot hold.
struct Source {
  const GPSMeasDataImplC& measurement;
  const GPSRecordFileInfo& info;
  Refusal refusal = {};

  void Refuse(RecordField field, Refusal::Reason reason = Refusal::Reason::kNoPlace) {
    if (!IsRefused()) refusal = {field, reason};
  }
  bool IsRefused() const { return refusal.field != RecordField::kNone; }
  bool IsSet(std::uint16_t bit) const { return (measurement.GetSetMask() & bit) != 0; }
};

/// Follows the header of every frame.
struct Times {
  std::uint16_t weekA = 0;
  std::int32_t timeA = 0;
  std::int32_t timeB = 0;
  std::uint16_t flags1 = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kTimeAWeek, weekA);
    cursor.Number(Field::kTimeAOfWeek, timeA);
    cursor.Number(Field::kTimeBOfWeek, timeB);
    cursor.Number(Field::kFlags1, flags1);
  }
  void Store(const Target& out) const {
    out.measurement.SetTimeA({weekA, timeA});
    out.measurement.SetTimeB({out.measurement.GetTimeB().week, timeB});
  }
  void Load(Source& from) {
    const Vorlin::TimeC a = from.measurement.GetTimeA();
    const Vorlin::TimeC b = from.measurement.GetTimeB();
    weekA = a.week;
    timeA = a.timeOfWeek;
    timeB = b.timeOfWeek;
    if (b.week != 0) from.Refuse(RecordField::kTimeBWeek);
  }
};

/// Precedes the blocks of flags word 2.
struct More {
  std::uint16_t flags2 = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kFlags2, flags2);
  }
};

struct FileFlags {
  static constexpr RecordField kField = RecordField::kFlags;
  static constexpr std::uint8_t kRaisesBit3 = 0x02;  // of `status`
  static constexpr std::uint8_t kRaisesBit1 = 0x04;
  static constexpr std::int32_t kRaisesBit0 = 0x4000;  // of `moreStatus`

  std::uint8_t kind = 0;
  std::uint8_t status = 0;
  std::int32_t moreStatus = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Ignored(6);
    cursor.Number(Field::kFileKind, kind);
    cursor.Number(Field::kStatus, status);
    cursor.Number(Field::kMoreStatus, moreStatus);
  }
  void Store(const Target& out) const {
    out.info.flags |= kind != 0 ? GPSRecordFileInfo::kKindNonZero : GPSRecordFileInfo::kKindZero;
    if ((status & kRaisesBit3) != 0) out.measurement.SetStatusBit3();
    if ((status & kRaisesBit1) != 0) out.measurement.SetStatusBit1();
    if ((moreStatus & kRaisesBit0) != 0) out.measurement.SetStatusBit0();
  }
  /// The block carries one of the two flags, so it cannot store status bits without a flag.
  bool Load(Source& from) {
    const GPSMeasDataImplC& measurement = from.measurement;
    if (measurement.IsStatusBit2()) from.Refuse(RecordField::kStatusBit2);
    if (measurement.IsStatusBit3()) status |= kRaisesBit3;
    if (measurement.IsStatusBit1()) status |= kRaisesBit1;
    if (measurement.IsStatusBit0()) moreStatus |= kRaisesBit0;
    kind = from.info.flags == GPSRecordFileInfo::kKindZero ? 0 : 1;
    const bool isNeeded = from.info.flags != 0 || status != 0 || moreStatus != 0;
    if (isNeeded && from.info.flags != GPSRecordFileInfo::kKindZero &&
        from.info.flags != GPSRecordFileInfo::kKindNonZero) {
      from.Refuse(RecordField::kFlags);
    }
    return isNeeded;
  }
};

struct Name {
  static constexpr RecordField kField = RecordField::kName;

  char16_t name[kNameUnits];
  std::int32_t number = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Units(Field::kName, name);
    cursor.Number(Field::kNumber, number);
  }
  void Store(const Target& out) const {
    EncodeName(name, kNameUnits, out.info.name, sizeof(out.info.name));
    out.info.number = number;
  }
  /// The first units of the name, whatever follows them.
  void Take(const GPSRecordFileInfo& info) {
    char16_t units[sizeof(info.name)];  // its bytes decode to at most as many
    DecodeName(info.name, sizeof(info.name), units, std::size(units));
    std::copy_n(units, kNameUnits, name);
    number = info.number;
  }
  /// Refuses a name that would not be read back byte for byte: one with too many units, or
  /// with bytes that are not the shortest UTF-8 of a unit.
  bool Load(Source& from) {
    Take(from.info);
    char again[sizeof(from.info.name)] = {};
    EncodeName(name, kNameUnits, again, sizeof(again));
    if (std::strncmp(again, from.info.name, sizeof(again)) != 0) from.Refuse(kField);
    return number != 0 || from.info.name[0] != 0;
  }
};

struct AntennaHeight {
  static constexpr RecordField kField = RecordField::kAntennaHeight;

  float height = 0.0F;
  std::uint8_t kind = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kHeight, height);
    cursor.Number(Field::kHeightKind, kind);
  }
  void Store(const Target& out) const {
    out.measurement.SetAntennaHeight(GPSAntHeightImplC(height, kind != kSlantHeight, 0.0F));
  }
  bool Load(Source& from) {
    if (!from.IsSet(GPSMeasDataImplC::kHasAntennaHeight)) return false;
    const GPSAntHeightImplC& antenna = from.measurement.GetAntennaHeight();
    bool isVertical = true;
    antenna.GetHeight(height, isVertical);
    kind = isVertical ? 0 : kSlantHeight;
    const float offset = antenna.GetHorizontalOffset();
    if (offset != 0.0F || std::signbit(offset)) from.Refuse(RecordField::kHorizontalOffset);
    return true;
  }
};

struct ExtraTime {
  static constexpr RecordField kField = RecordField::kExtraTime;

  std::uint8_t count = 0;
  std::uint16_t week = 0;
  std::int32_t timeOfWeek = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kExtraTimeCount, count);
    if (count == 0) return;
    if (count > 1) return cursor.Fail();
    cursor.Number(Field::kExtraTimeWeek, week);
    cursor.Number(Field::kExtraTimeOfWeek, timeOfWeek);
  }
  void Store(const Target& out) const {
    if (count != 0) out.measurement.SetExtraTime(week, timeOfWeek);
  }
  bool Load(Source& from) {
    count = 1;
    return from.measurement.GetExtraTime(week, timeOfWeek);
  }
};

struct Word16 {
  static constexpr RecordField kField = RecordField::kWord16;

  std::uint16_t word = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kWord16, word);
    cursor.Ignored(2 + 3 * sizeof(double));
  }
  void Store(const Target& out) const { out.measurement.SetWord16(word); }
  bool Load(Source& from) { return from.measurement.GetWord16(word); }
};

/// Nothing in this block is stored, so no frame needs it.
struct IgnoredPairs {
  static constexpr RecordField kField = RecordField::kNone;

  std::uint8_t systems = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kIgnoredSystems, systems);
    cursor.Ignored(sizeof(std::int32_t));
    for (const unsigned system : {0x1U, 0x2U, 0x4U}) {
      if ((systems & system) != 0) cursor.Ignored(2 * sizeof(float));
    }
  }
  void Store(const Target& /*out*/) const {}
  bool Load(Source& /*from*/) { return false; }
};

struct Values {
  static constexpr RecordField kField = RecordField::kValues;

  std::uint16_t values[2] = {};

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Ignored(1);
    cursor.Number(Field::kFirstValue, values[0]);
    cursor.Number(Field::kSecondValue, values[1]);
  }
  void Store(const Target& out) const { out.measurement.SetValues(values, 2); }
  /// The block has both values, so it cannot store a single one.
  bool Load(Source& from) {
    const std::uint8_t count = from.measurement.GetValueCount();
    if (count == 1) from.Refuse(kField);
    values[0] = from.measurement.GetValue(0);
    values[1] = from.measurement.GetValue(1);
    return count != 0;
  }
};

struct DOPs {
  static constexpr RecordField kField = RecordField::kDOPs;

  std::uint16_t hdop = 0;
  std::uint16_t vdop = 0;
  std::uint16_t tdop = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Ignored(1);
    cursor.Number(Field::kHDOP, hdop);
    cursor.Number(Field::kVDOP, vdop);
    cursor.Number(Field::kTDOP, tdop);
  }
  void Store(const Target& out) const { out.measurement.SetDOPs(GPSDOPsImplC(hdop, vdop, tdop)); }
  bool Load(Source& from) {
    const GPSDOPsImplC& dops = from.measurement.GetDOPs();
    hdop = dops.GetHDOPTenths();
    vdop = dops.GetVDOPTenths();
    tdop = dops.GetTDOPTenths();
    return from.IsSet(GPSMeasDataImplC::kHasDOPs);
  }
};

struct TotalPair {
  static constexpr RecordField kField = RecordField::kTotalPair;

  std::uint8_t first = 0;
  std::uint8_t second = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kTotalFirst, first);
    cursor.Number(Field::kTotalSecond, second);
  }
  void Store(const Target& out) const { out.measurement.SetTotalPair(first, second); }
  bool Load(Source& from) { return from.measurement.GetTotalPair(first, second); }
};

struct Vector {
  static constexpr RecordField kField = RecordField::kVector;

  float x = 0.0F;
  float y = 0.0F;
  float z = 0.0F;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Ignored(1);
    cursor.Number(Field::kX, x);
    cursor.Number(Field::kY, y);
    cursor.Number(Field::kZ, z);
  }
  void Store(const Target& out) const { out.measurement.SetVector({x, y, z}); }
  /// Refuses a component that single precision cannot represent bit for bit.
  bool Load(Source& from) {
    double vector[3];
    if (!from.measurement.GetVector(vector)) return false;
    if (!Narrow(vector[0], x) || !Narrow(vector[1], y) || !Narrow(vector[2], z)) {
      from.Refuse(kField);
    }
    return true;
  }

 private:
  static bool Narrow(double wide, float& narrow) {
    // Converting a finite number outside the range of single precision is undefined.
    if (std::isfinite(wide) && std::fabs(wide) > std::numeric_limits<float>::max()) return false;
    narrow = static_cast<float>(wide);
    return std::bit_cast<std::uint64_t>(static_cast<double>(narrow)) ==
           std::bit_cast<std::uint64_t>(wide);
  }
};

struct SystemPairs {
  static constexpr RecordField kField = RecordField::kSystem1Pair;
  static constexpr std::uint8_t kIsValid = 0x01;

  struct System {
    std::uint8_t valid = 0;
    GPSCounterPair pair;

    bool IsValid() const { return (valid & kIsValid) != 0; }
  };
  std::uint8_t systems = 0;  // a bit for each
  System one;
  System two;
  System three;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kSystems, systems);
    unsigned bits = systems;
    for (System* const system : {&one, &two, &three}) {
      if ((bits & 1) != 0) {
        cursor.Number(Field::kSystemValid, system->valid);
        if (system->IsValid()) {
          cursor.Number(Field::kSystemFirst, system->pair.first);
          cursor.Number(Field::kSystemSecond, system->pair.second);
        }
      }
      bits >>= 1;
    }
  }
  void Store(const Target& out) const {
    if (one.IsValid()) out.measurement.SetSystem1Pair(one.pair.first, one.pair.second);
    if (two.IsValid()) out.measurement.SetSystem2Pair(two.pair.first, two.pair.second);
    if (three.IsValid()) out.measurement.SetSystem3Pair(three.pair.first, three.pair.second);
  }
  /// Takes the pairs that are present and those that are only stored. Refuses a present pair of
  /// system 2 or 3 whose second value is 0: reading it would not make it present.
  bool Load(Source& from) {
    const GPSMeasDataImplC& measurement = from.measurement;
    const bool hasSystems = from.IsSet(GPSMeasDataImplC::kHasSystems);
    if (hasSystems && measurement.IsSystem1Used())
      Add(one, 0x1, measurement.GetStoredSystem1Pair());
    AddLater(from, two, 0x2, measurement.GetStoredSystem2Pair(), measurement.IsSystem2Used(),
             RecordField::kSystem2Pair);
    AddLater(from, three, 0x4, measurement.GetStoredSystem3Pair(), measurement.IsSystem3Used(),
             RecordField::kSystem3Pair);
    return systems != 0;
  }

 private:
  void Add(System& system, std::uint8_t bit, GPSCounterPair pair) {
    systems |= bit;
    system = {kIsValid, pair};
  }
  void AddLater(Source& from, System& system, std::uint8_t bit, GPSCounterPair pair, bool isPresent,
                RecordField field) {
    if (isPresent && pair.second == 0) from.Refuse(field);
    if (pair != GPSCounterPair()) Add(system, bit, pair);
  }
};

/// A list of entries.
struct List {
  static constexpr RecordField kField = RecordField::kListBlock;

  GPSListBlock list;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kListHead, list.head);
    cursor.Number(Field::kListCount, list.count);
    if (list.count > GPSListBlock::kCapacity) return cursor.Fail();
    for (unsigned i = 0; i < list.count; ++i) cursor.Number(Field::kListEntry, list.entries[i]);
  }
  void Store(const Target& out) const { out.measurement.SetListBlock(list); }
  bool Load(Source& from) {
    list = *from.measurement.GetListBlock();
    if (list.count > GPSListBlock::kCapacity) from.Refuse(kField);
    return from.measurement.HasListBlock();
  }
};

/// A flag. Reading stores any value other than 0 as 1.
template <RecordField field, auto Get, auto Set>
struct Flag {
  static constexpr RecordField kField = field;

  std::uint8_t flag = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kFlag, flag);
  }
  void Store(const Target& out) const { (out.measurement.*Set)(flag != 0 ? 1 : 0); }
  bool Load(Source& from) {
    flag = (from.measurement.*Get)();
    if (flag > 1) from.Refuse(kField);
    return flag != 0;
  }
};

/// A number. The frame may hold fewer bits of it than the measurement.
template <class Value, RecordField field, auto Get, auto Set>
struct Number {
  static constexpr RecordField kField = field;

  Value value = 0;

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Number(Field::kValue, value);
  }
  void Store(const Target& out) const { (out.measurement.*Set)(value); }
  bool Load(Source& from) {
    const auto stored = (from.measurement.*Get)();
    if (!std::in_range<Value>(stored)) from.Refuse(kField);
    value = static_cast<Value>(stored);
    return stored != 0;
  }
};

/// A number with a presence bit.
template <class Value, RecordField field, auto Has, auto Get, auto Set>
struct OptionalNumber : Number<Value, field, Get, Set> {
  bool Load(Source& from) {
    Number<Value, field, Get, Set>::Load(from);
    return (from.measurement.*Has)();
  }
};

template <std::size_t units, RecordField field, auto Get, auto Set>
struct Text {
  static constexpr RecordField kField = field;

  char16_t text[units];

  template <class Cursor>
  constexpr void Walk(Cursor& cursor) {
    cursor.Text(Field::kText, text);
  }
  void Store(const Target& out) const { (out.measurement.*Set)(text); }
  bool Load(Source& from) {
    std::copy_n((from.measurement.*Get)(), units, text);
    return text[0] != 0;
  }
};

/// A block of a table: the bit that announces it, its name, and its content.
template <std::uint16_t bit, Block block, class ContentType>
struct Row {
  static constexpr std::uint16_t kBit = bit;
  static constexpr Block kBlock = block;
  using Content = ContentType;
};

/// The blocks that a flags word announces, in the order in which they lie in a frame.
template <class... Rows>
struct Table {
  /// Visits the rows in order until `visit` returns false, and returns whether it never did.
  template <class Visit>
  static constexpr bool WhileTrue(Visit visit) {
    return (visit(Rows()) && ...);
  }

  /// The bit that announces a block; 0 for a block that is not in the table.
  static constexpr std::uint16_t BitOf(Block block) {
    return static_cast<std::uint16_t>(((Rows::kBlock == block ? Rows::kBit : 0) + ...));
  }
};

using Meas = GPSMeasDataImplC;

/// Flags word 1. The bits 0x0400 and 0x0800 announce nothing; 0x2000 announces flags word 2 after
/// the last block.
// clang-format off
using Blocks1 = Table<
    Row<0x0001, Block::kFileFlags, FileFlags>,
    Row<0x0002, Block::kName, Name>,
    Row<0x0004, Block::kAntennaHeight, AntennaHeight>,
    Row<0x0008, Block::kExtraTime, ExtraTime>,
    Row<0x0010, Block::kWord16, Word16>,
    Row<0x0020, Block::kIgnoredPairs, IgnoredPairs>,
    Row<0x0040, Block::kValues, Values>,
    Row<0x0080, Block::kDOPs, DOPs>,
    Row<0x0100, Block::kTotalPair, TotalPair>,
    Row<0x0200, Block::kVector, Vector>,
    Row<0x1000, Block::kSystemPairs, SystemPairs>>;
// clang-format on

/// In flags word 1: flags word 2 follows.
inline constexpr std::uint16_t kMore = 0x2000;

using FlagA = Flag<RecordField::kFlagA, &Meas::GetFlagA, &Meas::SetFlagA>;
using FlagE = Flag<RecordField::kFlagE, &Meas::GetFlagE, &Meas::SetFlagE>;
using ValueB = Number<std::uint8_t, RecordField::kValueB, &Meas::GetValueB, &Meas::SetValueB>;
using ValueC = Number<std::uint8_t, RecordField::kValueC, &Meas::GetValueC, &Meas::SetValueC>;
using ValueD = Number<std::int32_t, RecordField::kValueD, &Meas::GetValueD, &Meas::SetValueD>;
using ValueF = Number<std::uint8_t, RecordField::kValueF, &Meas::GetValueF, &Meas::SetValueF>;
using ValueG = Number<std::int32_t, RecordField::kValueG, &Meas::GetValueG, &Meas::SetValueG>;
using ValueH = OptionalNumber<std::uint16_t, RecordField::kValueH, &Meas::HasValueH,
                              &Meas::GetValueH, &Meas::SetValueH>;
using ValueI = OptionalNumber<std::uint16_t, RecordField::kValueI, &Meas::HasValueI,
                              &Meas::GetValueI, &Meas::SetValueI>;
using TextA = Text<Meas::kTextUnits, RecordField::kTextA, &Meas::GetTextA, &Meas::SetTextA>;
using TextB = Text<Meas::kTextUnits, RecordField::kTextB, &Meas::GetTextB, &Meas::SetTextB>;
using TextC = Text<Meas::kTextUnits, RecordField::kTextC, &Meas::GetTextC, &Meas::SetTextC>;
using TextD = Text<Meas::kTextDUnits, RecordField::kTextD, &Meas::GetTextD, &Meas::SetTextD>;

/// Flags word 2.
// clang-format off
using Blocks2 = Table<
    Row<0x0001, Block::kFlagA, FlagA>,
    Row<0x0002, Block::kValueB, ValueB>,
    Row<0x0004, Block::kValueC, ValueC>,
    Row<0x0008, Block::kTextA, TextA>,
    Row<0x0010, Block::kTextB, TextB>,
    Row<0x0020, Block::kValueD, ValueD>,
    Row<0x0040, Block::kTextC, TextC>,
    Row<0x0080, Block::kFlagE, FlagE>,
    Row<0x0100, Block::kTextD, TextD>,
    Row<0x0200, Block::kValueF, ValueF>,
    Row<0x0400, Block::kValueG, ValueG>,
    Row<0x0800, Block::kValueH, ValueH>,
    Row<0x1000, Block::kValueI, ValueI>,
    Row<0x2000, Block::kList, List>>;
// clang-format on

/// Where the blocks of flags word 1 begin.
inline constexpr std::size_t kBlocksAt = kHeaderSize + SizeOf<Times>();

/// Reports the beginning of a block to cursors that explain frames; compiles to nothing for others.
template <class Cursor>
void BeginBlock(Cursor& in, Block block) {
  if constexpr (requires { in.BeginBlock(block); }) in.BeginBlock(block);
}

/// Reads a block, and stores it if it is complete.
/// \return whether it is.
template <class Content, class Cursor>
bool ReadBlock(Cursor& in, const Target& out) {
  Content content;
  content.Walk(in);
  if (!in.Ok()) return false;
  content.Store(out);
  return true;
}

/// Reads the blocks of `Blocks` that `flags` announces.
/// \return the first that does not fit; the blocks before it are stored.
template <class Blocks, class Cursor>
std::optional<Block> ReadBlocks(std::uint16_t flags, Cursor& in, const Target& out) {
  std::optional<Block> bad;
  Blocks::WhileTrue([&](auto row) {
    if ((flags & row.kBit) == 0) return true;
    BeginBlock(in, row.kBlock);
    if (ReadBlock<typename decltype(row)::Content>(in, out)) return true;
    bad = row.kBlock;
    return false;
  });
  return bad;
}

/// Overwrites blocks of flags word 1 that `flags` announces: `fill` sets the fields of each block,
/// and `out` writes those of its list. Ends at the first block of the table that `fill` does not
/// take.
template <class Fill>
void PatchBlocks(std::uint16_t flags, FramePatchC& out, const Fill& fill) {
  Blocks1::WhileTrue([&](auto row) {
    using Content = typename decltype(row)::Content;
    if constexpr (std::is_invocable_v<const Fill&, Content&>) {
      if ((flags & row.kBit) == 0) return true;
      Content content{};
      fill(content);
      content.Walk(out);
      return true;
    } else {
      return false;
    }
  });
}

/// Reads what is between the header of a frame and its checksum.
/// \return the block that does not fit; the blocks before it are stored.
template <class Cursor>
std::optional<Block> ReadPayload(Cursor& in, const Target& out) {
  BeginBlock(in, Block::kTimes);
  Times times;
  times.Walk(in);
  if (!in.Ok()) return Block::kTimes;
  times.Store(out);
  if (const auto bad = ReadBlocks<Blocks1>(times.flags1, in, out)) return bad;
  if ((times.flags1 & kMore) == 0) return {};
  BeginBlock(in, Block::kMore);
  More more;
  more.Walk(in);
  if (!in.Ok()) return Block::kMore;
  return ReadBlocks<Blocks2>(more.flags2, in, out);
}

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_FRAME_BLOCKS_H_
