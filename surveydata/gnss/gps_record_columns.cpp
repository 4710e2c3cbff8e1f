#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/record_columns.h>
#include <surveydata/gnss/record_frame.h>
#include <surveydata/gnss/text_column.h>
#include <surveydata/gnss/time_text.h>

namespace SDI {

using RecordColumns::RecordView;

namespace {

using ImplC = GPSMeasDataImplC;
using List = std::span<const std::uint16_t>;

/// What writing texts needs from one record to the next.
struct Writers {
  TimeText::DateWriterC gps;
  TimeText::UTCWriterC utc;
};

/// A record that was decoded and awaits its columns.
struct Row {
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
  std::uint64_t offset = 0;
  std::uint64_t size = 0;

  RecordView View() const { return {measurement, info, offset, size}; }
};

/// So many rows go through all columns together: they stay in the cache of the first level.
constexpr std::size_t kBlock = 16;
using Rows = std::span<const Row>;
using Bits = std::uint32_t;  // one for each row of a block
static_assert(kBlock < std::numeric_limits<Bits>::digits);

}  // namespace

/// A column's values, one at a time and a block of rows at a time.
struct GPSColumnFunctions {
  using Ask = void (*)(const RecordView& record, GPSColumnValueC& value);
  using Fill = void (*)(Rows rows, Writers& writers, GPSColumnBuffer& buffer, std::size_t at);

  Ask ask;
  Fill fill;

  static GPSColumnValueC::Variant& ValueOf(GPSColumnValueC& to) { return to.value_; }
  static char* TextOf(GPSColumnValueC& to) { return to.text_; }
  static std::uint16_t* ListOf(GPSColumnValueC& to) { return to.list_; }
};

namespace {

using Functions = GPSColumnFunctions;

constexpr Bits AllOf(std::size_t count) { return (Bits{1} << count) - 1; }

/// Writes `count` bits from bit `at` on. Writes no byte beyond their last one, in which it clears
/// the bits after them.
void PutBits(std::uint8_t* bitmap, std::size_t at, std::size_t count, Bits bits) {
  const std::size_t shift = at % 8;
  std::uint64_t word = std::uint64_t{bits} << shift;
  if (shift != 0) word |= bitmap[at / 8] & AllOf(shift);
  for (std::size_t i = at / 8; i <= (at + count - 1) / 8; ++i, word >>= 8) {
    bitmap[i] = static_cast<std::uint8_t>(word);
  }
}

// `std::popcount` is a call where the processor may lack the instruction.
constexpr std::size_t Count(Bits bits) {
  static_assert(kBlock == 16);
  bits -= bits >> 1 & 0x5555;
  bits = (bits & 0x3333) + (bits >> 2 & 0x3333);
  bits = (bits + (bits >> 4)) & 0x0F0F;
  return (bits + (bits >> 8)) & 0x1F;
}

void MarkPresent(GPSColumnBuffer& buffer, std::size_t at, std::size_t count, Bits present) {
  buffer.absent += Count(present ^ AllOf(count));
  if (buffer.validity != nullptr) PutBits(buffer.validity, at, count, present);
}

template <class T>
struct Unwrap {
  using Value = T;
  static constexpr bool kIsOptional = false;
};
template <class T>
struct Unwrap<std::optional<T>> {
  using Value = T;
  static constexpr bool kIsOptional = true;
};

template <class Value>
constexpr GPSColumnType TypeFor() {
  using enum GPSColumnType;
  if constexpr (std::is_same_v<Value, bool>) return kBool;
  if constexpr (std::is_same_v<Value, std::uint8_t>) return kUInt8;
  if constexpr (std::is_same_v<Value, std::uint16_t>) return kUInt16;
  if constexpr (std::is_same_v<Value, std::uint32_t>) return kUInt32;
  if constexpr (std::is_same_v<Value, std::uint64_t>) return kUInt64;
  if constexpr (std::is_same_v<Value, std::int32_t>) return kInt32;
  if constexpr (std::is_same_v<Value, float>) return kFloat32;
  if constexpr (std::is_same_v<Value, double>) return kFloat64;
  if constexpr (std::is_same_v<Value, List>) return kUInt16List;
}

/// The functions of a column of numbers or flags. `ask(record)` answers the value, or an optional
/// one where it can be absent.
template <auto ask>
struct OfNumber {
  using Answer = std::invoke_result_t<decltype(ask), const RecordView&>;
  using Value = typename Unwrap<Answer>::Value;
  static constexpr bool kIsOptional = Unwrap<Answer>::kIsOptional;

  static void Ask(const RecordView& record, GPSColumnValueC& to) {
    const auto put = [&to](Value value) {
      if constexpr (std::is_same_v<Value, bool> || std::is_floating_point_v<Value>) {
        Functions::ValueOf(to) = value;
      } else if constexpr (std::is_signed_v<Value>) {
        Functions::ValueOf(to) = std::int64_t{value};
      } else {
        Functions::ValueOf(to) = std::uint64_t{value};
      }
    };
    if constexpr (!kIsOptional) {
      put(ask(record));
    } else if (const Answer answer = ask(record)) {
      put(*answer);
    } else {
      Functions::ValueOf(to) = std::monostate();
    }
  }

  static void Fill(Rows rows, Writers& /*writers*/, GPSColumnBuffer& buffer, std::size_t at) {
    Bits present = 0;
    Bits flags = 0;
    Value* const values = static_cast<Value*>(buffer.values) + at;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const Answer answer = ask(rows[i].View());
      Value value{};
      if constexpr (kIsOptional) {
        value = answer.value_or(Value{});
        present |= Bits{answer.has_value()} << i;
      } else {
        value = answer;
      }
      if constexpr (std::is_same_v<Value, bool>) {
        flags |= Bits{value} << i;
      } else {
        values[i] = value;
      }
    }
    if constexpr (std::is_same_v<Value, bool>) {
      PutBits(static_cast<std::uint8_t*>(buffer.values), at, rows.size(), flags);
    }
    MarkPresent(buffer, at, rows.size(), kIsOptional ? present : AllOf(rows.size()));
  }
};

/// The functions of a column of texts. `write(record, writers, to)` writes at most `largest` bytes
/// to `to` and answers how many, or `kNoText`.
constexpr std::size_t kNoText = SIZE_MAX;

template <auto write>
struct OfText {
  static void Ask(const RecordView& record, GPSColumnValueC& to) {
    Writers writers;
    char* const text = Functions::TextOf(to);
    const std::size_t size = write(record, writers, text);
    if (size == kNoText) {
      Functions::ValueOf(to) = std::monostate();
    } else {
      Functions::ValueOf(to) = std::string_view(text, size);
    }
  }

  static void Fill(Rows rows, Writers& writers, GPSColumnBuffer& buffer, std::size_t at) {
    Bits present = 0;
    char* const texts = static_cast<char*>(buffer.values);
    char* end = texts + buffer.offsets[at];
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::size_t size = write(rows[i].View(), writers, end);
      const bool isPresent = size != kNoText;
      present |= Bits{isPresent} << i;
      end += isPresent ? size : 0;
      buffer.offsets[at + i + 1] = end - texts;
    }
    MarkPresent(buffer, at, rows.size(), present);
  }
};

/// The functions of a column of lists. `ask(record)` answers an optional `List`.
template <auto ask>
struct OfList {
  static void Ask(const RecordView& record, GPSColumnValueC& to) {
    if (const std::optional<List> list = ask(record)) {
      std::uint16_t* const entries = Functions::ListOf(to);
      std::copy(list->begin(), list->end(), entries);
      Functions::ValueOf(to) = List(entries, list->size());
    } else {
      Functions::ValueOf(to) = std::monostate();
    }
  }

  static void Fill(Rows rows, Writers& /*writers*/, GPSColumnBuffer& buffer, std::size_t at) {
    Bits present = 0;
    auto* const entries = static_cast<std::uint16_t*>(buffer.values);
    std::uint16_t* end = entries + buffer.offsets[at];
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (const std::optional<List> list = ask(rows[i].View())) {
        present |= Bits{1} << i;
        end = std::copy(list->begin(), list->end(), end);
      }
      buffer.offsets[at + i + 1] = end - entries;
    }
    MarkPresent(buffer, at, rows.size(), present);
  }
};

template <class Of>
constexpr Functions kFunctionsOf{&Of::Ask, &Of::Fill};

template <auto ask>
constexpr GPSColumn Number(const char* name, const char* unit, const char* description) {
  using Of = OfNumber<ask>;
  return {name,
          TypeFor<typename Of::Value>(),
          unit,
          Of::kIsOptional,
          description,
          0,
          &kFunctionsOf<Of>};
}

template <std::size_t largest, auto write>
constexpr GPSColumn Text(const char* name, const char* description) {
  static_assert(largest <= GPSColumnValueC::kLargestText);
  return {name, GPSColumnType::kText, "", true, description, largest, &kFunctionsOf<OfText<write>>};
}

template <auto ask>
constexpr GPSColumn ListOf(const char* name, const char* description) {
  static_assert(GPSListBlock::kCapacity == GPSColumnValueC::kLargestList);
  constexpr std::size_t kLargest = GPSListBlock::kCapacity * sizeof(std::uint16_t);
  return {name,     GPSColumnType::kUInt16List, "", true, description,
          kLargest, &kFunctionsOf<OfList<ask>>};
}

// How the getters are asked.

bool IsSet(const RecordView& r, std::uint16_t bit) {
  return (r.measurement.GetSetMask() & bit) != 0;
}

/// What `get` answers of `what`, of which a measurement holds one in any case, where it is set.
template <class What, class Value>
std::optional<Value> If(bool isSet, const What& what, Value (What::*get)() const) {
  if (!isSet) return {};
  return (what.*get)();
}

/// Of an antenna height.
template <auto get>
auto OfAntenna(const RecordView& r) {
  return If(IsSet(r, ImplC::kHasAntennaHeight), r.measurement.GetAntennaHeight(), get);
}
std::optional<std::pair<float, bool>> AntennaHeight(const RecordView& r) {
  if (!IsSet(r, ImplC::kHasAntennaHeight)) return {};
  std::pair<float, bool> answer;
  r.measurement.GetAntennaHeight().GetHeight(answer.first, answer.second);
  return answer;
}

/// A dilution of precision: neither when it is not set nor when it is not available.
template <auto get>
std::optional<double> OfDOPs(const RecordView& r) {
  if (!IsSet(r, ImplC::kHasDOPs)) return {};
  const double value = (r.measurement.GetDOPs().*get)();
  return value >= 0.0 ? std::optional(value) : std::nullopt;
}

std::optional<std::uint16_t> ValueAt(const RecordView& r, std::uint8_t index) {
  if (index >= r.measurement.GetValueCount()) return {};
  return r.measurement.GetValue(index);
}

template <auto get>
std::optional<std::uint8_t> First(const RecordView& r) {
  std::uint8_t first = 0;
  std::uint8_t second = 0;
  if (!(r.measurement.*get)(first, second)) return {};
  return first;
}
template <auto get>
std::optional<std::uint8_t> Second(const RecordView& r) {
  std::uint8_t first = 0;
  std::uint8_t second = 0;
  if (!(r.measurement.*get)(first, second)) return {};
  return second;
}

template <std::size_t axis>
std::optional<double> Component(const RecordView& r) {
  double vector[3];
  if (!r.measurement.GetVector(vector)) return {};
  return vector[axis];
}

std::optional<Vorlin::TimeC> ExtraTime(const RecordView& r) {
  Vorlin::TimeC time;
  if (!r.measurement.GetExtraTime(time.week, time.timeOfWeek)) return {};
  return time;
}

template <class WriterC>
std::size_t WriteTime(const std::optional<Vorlin::TimeC>& time, WriterC& writer, char* to) {
  if (!time || !TimeText::IsInRange(*time)) return kNoText;
  writer.Write(TimeText::SinceEpoch(*time), to);
  return kTimeTextSize;
}

template <std::size_t capacity, auto get>
std::size_t WriteText(const RecordView& r, char* to) {
  const char16_t* const units = (r.measurement.*get)();
  if (*units == 0) return kNoText;
  return TextColumn::Write(units, capacity, to);
}

// The bytes are those that `EncodeName` made of single units: surrogates are the only sequences
// that are no UTF-8 for others, and they all begin with 0xED.
std::size_t WriteName(const RecordView& r, char* to) {
  const char* const name = r.info.name;
  if (name[0] == 0) return kNoText;
  const void* const found = std::memchr(name, 0, sizeof(r.info.name));
  const std::size_t size = found != nullptr
                               ? static_cast<std::size_t>(static_cast<const char*>(found) - name)
                               : sizeof(r.info.name);
  if (std::memchr(name, 0xED, size) == nullptr) {
    std::memcpy(to, name, size);
    return size;
  }
  char16_t units[sizeof(r.info.name) + 1];  // more than its bytes can make
  RecordFrame::DecodeName(name, size, units, std::size(units));
  return TextColumn::Write(units, std::size(units), to);
}

// The longest texts: three bytes for each unit before the terminator, and for the name no more
// bytes than it has.
constexpr std::size_t kLargestText = 3 * (ImplC::kTextUnits - 1);
constexpr std::size_t kLargestTextD = 3 * (ImplC::kTextDUnits - 1);
constexpr std::size_t kLargestName = sizeof(GPSRecordFileInfo::name);
static_assert(kLargestText == GPSColumnValueC::kLargestText);

// The table. Each row: how the value is asked for, name, unit, description.
using R = const RecordView&;

constexpr GPSColumn kColumns[] = {
    Number<[](R r) { return r.offset; }>("offset", "byte", "Where the frame begins in the source"),
    Number<[](R r) { return static_cast<std::uint16_t>(r.size); }>(
        "size", "byte", "The size of the frame, header and checksum included"),

    Text<kLargestName, [](R r, Writers& /*w*/, char* to) { return WriteName(r, to); }>(
        "name", "The name, absent when it is empty"),
    Number<[](R r) { return r.info.number; }>("number", "", "The number beside the name"),
    Number<[](R r) { return (r.info.flags & GPSRecordFileInfo::kKindZero) != 0; }>(
        "kind_zero", "", "Whether the frame has a kind byte that is 0"),
    Number<[](R r) { return (r.info.flags & GPSRecordFileInfo::kKindNonZero) != 0; }>(
        "kind_non_zero", "", "Whether the frame has a kind byte that is not 0"),

    Number<[](R r) { return r.measurement.GetTimeA().week; }>(
        "gps_week", "week", "Time A as stored: the GPS week, counted from 6 January 1980"),
    Number<[](R r) { return r.measurement.GetTimeA().timeOfWeek; }>(
        "time_of_week", "ms", "Time A as stored: the time since the start of the GPS week"),
    Text<kTimeTextSize,
         [](R r, Writers& w, char* to) {
           return WriteTime(std::optional(r.measurement.GetTimeA()), w.gps, to);
         }>("time_gps",
            "Time A in GPS time, in ISO 8601, absent when the time of week is out of range"),
    Text<kTimeTextSize,
         [](R r, Writers& w, char* to) {
           return WriteTime(std::optional(r.measurement.GetTimeA()), w.utc, to);
         }>("time_utc", "Time A in UTC, in ISO 8601, absent when the time of week is out of range"),
    Number<[](R r) { return r.measurement.GetTimeB().timeOfWeek; }>(
        "time_b_of_week", "ms", "Time B as stored: the time since the start of a GPS week"),
    Number<[](R r) {
      const auto time = ExtraTime(r);
      return time ? std::optional(time->week) : std::nullopt;
    }>("extra_gps_week", "week", "The extra time as stored: the GPS week"),
    Number<[](R r) {
      const auto time = ExtraTime(r);
      return time ? std::optional(time->timeOfWeek) : std::nullopt;
    }>("extra_time_of_week", "ms",
       "The extra time as stored: the time since the start of the GPS week"),
    Text<kTimeTextSize,
         [](R r, Writers& w, char* to) { return WriteTime(ExtraTime(r), w.gps, to); }>(
        "extra_time_gps",
        "The extra time in GPS time, in ISO 8601, absent when the time of week is out of range"),
    Text<kTimeTextSize,
         [](R r, Writers& w, char* to) { return WriteTime(ExtraTime(r), w.utc, to); }>(
        "extra_time_utc",
        "The extra time in UTC, in ISO 8601, absent when the time of week is out of range"),

    Number<[](R r) { return r.measurement.IsStatusBit0(); }>("status_bit_0", "", "Status bit 0"),
    Number<[](R r) { return r.measurement.IsStatusBit1(); }>("status_bit_1", "", "Status bit 1"),
    Number<[](R r) { return r.measurement.IsStatusBit2(); }>("status_bit_2", "", "Status bit 2"),
    Number<[](R r) { return r.measurement.IsStatusBit3(); }>("status_bit_3", "", "Status bit 3"),
    Number<[](R r) { return r.measurement.IsSystem1Used(); }>(
        "system_1_used", "", "Whether system 1 is used; true without information per system"),
    Number<[](R r) { return r.measurement.IsSystem2Used(); }>("system_2_used", "",
                                                              "Whether system 2 is used"),
    Number<[](R r) { return r.measurement.IsSystem3Used(); }>("system_3_used", "",
                                                              "Whether system 3 is used"),

    Number<[](R r) {
      const auto antenna = AntennaHeight(r);
      return antenna ? std::optional(antenna->first) : std::nullopt;
    }>("antenna_height", "m", "The antenna height as measured, vertical or slant"),
    Number<[](R r) {
      const auto antenna = AntennaHeight(r);
      return antenna ? std::optional(antenna->second) : std::nullopt;
    }>("antenna_is_vertical", "", "Whether the antenna height was measured vertically"),
    Number<[](R r) { return OfAntenna<&GPSAntHeightImplC::GetHorizontalOffset>(r); }>(
        "antenna_horizontal_offset", "m",
        "The distance from the antenna axis to the point of a slant height"),
    Number<[](R r) { return OfAntenna<&GPSAntHeightImplC::GetVerticalHeight>(r); }>(
        "antenna_vertical_height", "m", "The antenna height reduced to the vertical"),

    Number<[](R r) { return ValueAt(r, 0); }>("value_0", "", "The first of the two values"),
    Number<[](R r) { return ValueAt(r, 1); }>("value_1", "", "The second of the two values"),

    Number<[](R r) { return OfDOPs<&GPSDOPsImplC::GetHDOP>(r); }>(
        "hdop", "", "Horizontal dilution of precision, absent when not available"),
    Number<[](R r) { return OfDOPs<&GPSDOPsImplC::GetVDOP>(r); }>(
        "vdop", "", "Vertical dilution of precision, absent when not available"),
    Number<[](R r) { return OfDOPs<&GPSDOPsImplC::GetTDOP>(r); }>(
        "tdop", "", "Time dilution of precision, absent when not available"),
    Number<[](R r) { return OfDOPs<&GPSDOPsImplC::GetPDOP>(r); }>(
        "pdop", "", "Position dilution of precision, of hdop and vdop"),
    Number<[](R r) { return OfDOPs<&GPSDOPsImplC::GetGDOP>(r); }>(
        "gdop", "", "Geometric dilution of precision, of hdop, vdop and tdop"),

    Number<[](R r) {
      std::uint16_t word = 0;
      return r.measurement.GetWord16(word) ? std::optional(word) : std::nullopt;
    }>("word_16", "", "The 16-bit word"),

    Number<[](R r) { return First<&ImplC::GetTotalPair>(r); }>(
        "total_first", "", "The total pair of counters: the first"),
    Number<[](R r) { return Second<&ImplC::GetTotalPair>(r); }>(
        "total_second", "", "The total pair of counters: the second"),
    Number<[](R r) { return First<&ImplC::GetSystem1Pair>(r); }>(
        "system_1_first", "",
        "The pair of counters of system 1: the first; without information per system, of the total "
        "pair"),
    Number<[](R r) { return Second<&ImplC::GetSystem1Pair>(r); }>(
        "system_1_second", "",
        "The pair of counters of system 1: the second; without information per system, of the "
        "total pair"),
    Number<[](R r) { return First<&ImplC::GetSystem2Pair>(r); }>(
        "system_2_first", "", "The pair of counters of system 2: the first"),
    Number<[](R r) { return Second<&ImplC::GetSystem2Pair>(r); }>(
        "system_2_second", "", "The pair of counters of system 2: the second"),
    Number<[](R r) { return First<&ImplC::GetSystem3Pair>(r); }>(
        "system_3_first", "", "The pair of counters of system 3: the first"),
    Number<[](R r) { return Second<&ImplC::GetSystem3Pair>(r); }>(
        "system_3_second", "", "The pair of counters of system 3: the second"),

    Number<[](R r) { return Component<0>(r); }>("vector_x", "m", "The vector: its first component"),
    Number<[](R r) { return Component<1>(r); }>("vector_y", "m",
                                                "The vector: its second component"),
    Number<[](R r) { return Component<2>(r); }>("vector_z", "m", "The vector: its third component"),

    Number<[](R r) { return r.measurement.GetFlagA() != 0; }>("flag_a", "", "Flag A"),
    Number<[](R r) { return r.measurement.GetValueB(); }>("value_b", "", "Value B"),
    Number<[](R r) { return If(r.measurement.IsValueCSet(), r.measurement, &ImplC::GetValueC); }>(
        "value_c", "", "Value C, absent when it is 0"),
    Text<kLargestText,
         [](R r, Writers& /*w*/, char* to) {
           return WriteText<ImplC::kTextUnits, &ImplC::GetTextA>(r, to);
         }>("text_a", "Text A, absent when it is empty"),
    Text<kLargestText,
         [](R r, Writers& /*w*/, char* to) {
           return WriteText<ImplC::kTextUnits, &ImplC::GetTextB>(r, to);
         }>("text_b", "Text B, absent when it is empty"),
    Number<[](R r) { return r.measurement.GetValueD(); }>("value_d", "", "Value D"),
    Text<kLargestText,
         [](R r, Writers& /*w*/, char* to) {
           return WriteText<ImplC::kTextUnits, &ImplC::GetTextC>(r, to);
         }>("text_c", "Text C, absent when it is empty"),
    Number<[](R r) { return r.measurement.GetFlagE() != 0; }>("flag_e", "", "Flag E"),
    Text<kLargestTextD,
         [](R r, Writers& /*w*/, char* to) {
           return WriteText<ImplC::kTextDUnits, &ImplC::GetTextD>(r, to);
         }>("text_d", "Text D, absent when it is empty"),
    Number<[](R r) { return r.measurement.GetValueF(); }>("value_f", "", "Value F"),
    Number<[](R r) { return r.measurement.GetValueG(); }>("value_g", "", "Value G"),
    Number<[](R r) { return If(r.measurement.HasValueH(), r.measurement, &ImplC::GetValueH); }>(
        "value_h", "", "Value H"),
    Number<[](R r) { return If(r.measurement.HasValueI(), r.measurement, &ImplC::GetValueI); }>(
        "value_i", "", "Value I"),

    Number<[](R r) {
      return r.measurement.HasListBlock() ? std::optional(r.measurement.GetListBlock()->head)
                                          : std::nullopt;
    }>("list_head", "", "The list: its head value"),
    ListOf<[](R r) -> std::optional<List> {
      if (!r.measurement.HasListBlock()) return {};
      const GPSListBlock& list = *r.measurement.GetListBlock();
      return List(list.entries, list.count);
    }>("list_entries", "The list: its entries"),
};

}  // namespace

const char* TextOf(GPSColumnType type) {
  switch (type) {
    using enum GPSColumnType;
    case kBool:
      return "bool";
    case kUInt8:
      return "uint8";
    case kUInt16:
      return "uint16";
    case kUInt32:
      return "uint32";
    case kUInt64:
      return "uint64";
    case kInt32:
      return "int32";
    case kFloat32:
      return "float32";
    case kFloat64:
      return "float64";
    case kText:
      return "text";
    case kUInt16List:
      return "list of uint16";
  }
  return "unknown";
}

GPSColumnValueC::GPSColumnValueC() {}  // texts and lists are written before they are read
GPSColumnValueC::~GPSColumnValueC() = default;
bool GPSColumnValueC::IsAbsent() const { return std::holds_alternative<std::monostate>(value_); }
const GPSColumnValueC::Variant& GPSColumnValueC::Get() const { return value_; }

std::span<const GPSColumn> GetGPSColumns() { return kColumns; }

const GPSColumn* FindGPSColumn(std::string_view name) {
  const auto* const found =
      std::ranges::find(kColumns, name, [](const GPSColumn& column) { return column.name; });
  return found != std::end(kColumns) ? found : nullptr;
}

void RecordColumns::Ask(const GPSColumn& column, const RecordView& record, GPSColumnValueC& value) {
  column.functions->ask(record, value);
}

void AskGPSColumn(const GPSColumn& column, const GPSRecordC& record, GPSColumnValueC& value) {
  RecordColumns::Ask(
      column,
      {*record.GetMeasurement().GetImpl(), record.GetInfo(), record.GetOffset(), record.GetSize()},
      value);
}

struct GPSColumnReaderC::State {
  explicit State(GPSRecordReaderC& from) : reader(from) {}

  void Stage(std::size_t most, std::size_t& staged);

  GPSRecordReaderC& reader;
  std::uint64_t leftOut = 0;
  Writers writers;
  const GPSMeasDataImplC fresh;
  std::array<Row, kBlock> rows;
};

// Decodes up to `most` records that are done, and counts them in `staged`.
void GPSColumnReaderC::State::Stage(std::size_t most, std::size_t& staged) {
  GPSRecordEntry entry;
  while (staged < most && reader.NextEntry(entry)) {
    if (!entry.IsMeasurement()) continue;
    Row& row = rows[staged];
    row.measurement = fresh;
    row.info.number = 0;  // the other fields are never set
    row.info.flags = 0;
    std::memset(row.info.name, 0, sizeof(row.info.name));
    row.offset = entry.offset;
    row.size = entry.size;
    if (RecordFrame::DecodeChecked(reader.GetBytes(), row.measurement, row.info).IsDone()) {
      ++staged;
    } else {
      ++leftOut;
    }
  }
}

namespace {

bool IsLong(const GPSColumn& column) { return column.largest != 0; }

bool IsBuffer(const GPSColumnBuffer& buffer) {
  return buffer.column != nullptr && buffer.values != nullptr &&
         (!IsLong(*buffer.column) || buffer.offsets != nullptr);
}

// How many rows, at most `most`, certainly fit after the first `rows`.
std::size_t RowsWithRoom(std::span<const GPSColumnBuffer> buffers, std::size_t rows,
                         std::size_t most) {
  for (const GPSColumnBuffer& buffer : buffers) {
    const GPSColumn& column = *buffer.column;
    if (!IsLong(column)) continue;
    const std::size_t unit = column.type == GPSColumnType::kText ? 1 : sizeof(std::uint16_t);
    const std::size_t used = static_cast<std::size_t>(buffer.offsets[rows]) * unit;
    most = std::min(most, (buffer.size - used) / column.largest);
  }
  return most;
}

}  // namespace

GPSColumnReaderC::GPSColumnReaderC(GPSRecordReaderC& reader) : state_(new State(reader)) {}
GPSColumnReaderC::~GPSColumnReaderC() = default;

GPSColumnsOutcome GPSColumnReaderC::Read(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                                         std::size_t& rows) {
  State& state = *state_;
  rows = 0;
  if (!std::ranges::all_of(buffers, IsBuffer)) return GPSColumnsOutcome::kNotABuffer;
  for (GPSColumnBuffer& buffer : buffers) {
    buffer.absent = 0;
    if (IsLong(*buffer.column)) buffer.offsets[0] = 0;
  }
  const auto fill = [&](std::size_t staged) {
    if (staged == 0) return;
    for (GPSColumnBuffer& buffer : buffers) {
      buffer.column->functions->fill({state.rows.data(), staged}, state.writers, buffer, rows);
    }
    rows += staged;
  };
  for (;;) {
    const std::size_t most =
        RowsWithRoom(buffers, rows, std::min(kBlock - rows % kBlock, capacity - rows));
    if (most == 0) return rows != 0 ? GPSColumnsOutcome::kDone : GPSColumnsOutcome::kNoRoom;
    std::size_t staged = 0;
    try {
      state.Stage(most, staged);
    } catch (...) {
      fill(staged);
      throw;
    }
    fill(staged);
    if (staged < most) return rows != 0 ? GPSColumnsOutcome::kDone : GPSColumnsOutcome::kEnd;
  }
}

std::uint64_t GPSColumnReaderC::GetLeftOut() const { return state_->leftOut; }
bool GPSColumnReaderC::HasTimesAfterExpiry() const { return state_->writers.utc.HasExpired(); }

}  // namespace SDI
