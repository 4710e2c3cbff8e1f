#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include <boost/endian/conversion.hpp>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/record_columns.h>
#include <surveydata/gnss/record_frame.h>
#include <surveydata/gnss/text_column.h>
#include <surveydata/gnss/time_text.h>

namespace SDI {

using RecordColumns::IsLong;
using RecordColumns::RecordView;

namespace {

using ImplC = GPSMeasDataImplC;
using List = std::span<const std::uint16_t>;
using R = const RecordView&;

/// The number of rows that go through all columns together. What columns read of them fits the
/// second-level cache, and what one column reads fits the first. Most columns write whole cache
/// lines.
constexpr std::size_t kBlock = 64;
/// A bit for each row of a block.
using Bits = std::uint64_t;
static_assert(std::numeric_limits<Bits>::digits == kBlock);
constexpr Bits kWhole = std::numeric_limits<Bits>::max();
/// Rows are examined in groups of this many, so that a small block does not cost as much as a whole
/// one.
constexpr std::size_t kGroup = 16;
static_assert(kBlock % kGroup == 0);

/// The number of groups that contain the first `rows` rows.
constexpr std::size_t GroupsOf(std::size_t rows) { return (rows + kGroup - 1) / kGroup; }

/// A mask of each row of a block.
class MasksC {
 public:
  void Set(std::size_t row, std::uint16_t mask) { masks_[row] = mask; }
  /// The rows, among the first `groups`, whose mask has `bit` set.
  Bits With(std::uint16_t bit, std::size_t groups) const {
    const int toTop = 16 - std::bit_width(bit);
    Bits bits = 0;
    for (std::size_t group = 0; group < groups; ++group) {
      bits |= Bits{InGroup(masks_.data() + group * kGroup, toTop)} << group * kGroup;
    }
    return bits;
  }

 private:
  static std::uint32_t InGroup(const std::uint16_t* masks, int toTop) {
#if defined(__SSE2__)
    const auto* const at = reinterpret_cast<const __m128i*>(masks);
    const __m128i low = _mm_slli_epi16(_mm_load_si128(at), toTop);
    const __m128i high = _mm_slli_epi16(_mm_load_si128(at + 1), toTop);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));  // the signs
#else
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kGroup; ++i) {
      bits |= (std::uint32_t{masks[i]} << toTop >> 15 & 1U) << i;
    }
    return bits;
#endif
  }

  alignas(16) std::array<std::uint16_t, kBlock> masks_;
};

/// State of the text writers, kept from one record to the next.
struct Writers {
  TimeText::DateWriterC gps;
  TimeText::UTCWriterC utc;
};

/// What several columns need to know of each row.
enum class Trait : std::uint8_t {
  kHasTime,
  kHasExtraTime,
  kHasExtraTimeInRange,
  kHasHDOP,
  kHasVDOP,
  kHasTDOP,
  kCount,
};

/// Up to `kBlock` records, and their masks.
///
/// Which values are present varies from record to record. It is determined for a whole block
/// without branches, which would be mispredicted; then the present values are read.
class BlockC {
 public:
  using Views = std::array<RecordView, kBlock>;

  /// The first `count` of `views`; the others point to valid records, too.
  BlockC(const Views& views, std::size_t count, Writers& writers)
      : views_(views.data()), count_(count), groups_(GroupsOf(count)), writers_(writers) {
    for (std::size_t i = 0; i < groups_ * kGroup; ++i) {
      set_.Set(i, views[i].measurement->GetSetMask());
      status_.Set(i, views[i].measurement->GetStatusMask());
    }
  }

  /// One record, for a single value, which must not cost as much as those of a block.
  BlockC(const RecordView& record, Writers& writers)
      : views_(&record), count_(1), groups_(1), isSingle_(true), writers_(writers) {
    set_.Set(0, record.measurement->GetSetMask());
    status_.Set(0, record.measurement->GetStatusMask());
    for (std::size_t i = 1; i < kGroup; ++i) {
      set_.Set(i, 0);
      status_.Set(i, 0);
    }
  }

  std::size_t GetCount() const { return count_; }
  const RecordView& Get(std::size_t row) const { return views_[row]; }
  Writers& GetWriters() const { return writers_; }

  Bits All() const { return count_ == 0 ? Bits{0} : kWhole >> (kBlock - count_); }
  /// The rows with this bit of the set mask.
  Bits WithSet(std::uint16_t bit) const { return set_.With(bit, groups_) & All(); }
  /// The rows with this bit of the status mask.
  Bits WithStatus(std::uint16_t bit) const { return status_.With(bit, groups_) & All(); }
  /// The rows for which `is(row)`.
  template <class Is>
  Bits Where(Is is) const {
    if (isSingle_) return is(views_[0]) ? 1 : 0;
    Bits bits = 0;
    for (std::size_t group = 0; group < groups_; ++group) {
      const RecordView* const views = views_ + group * kGroup;
      std::uint32_t found = 0;
      for (std::size_t i = 0; i < kGroup; ++i) found |= std::uint32_t{is(views[i])} << i;
      bits |= Bits{found} << group * kGroup;
    }
    return bits & All();
  }
  /// The same for a trait, which is examined once.
  template <class Is>
  Bits Where(Trait trait, Is is) const {
    const auto place = static_cast<std::size_t>(trait);
    if ((known_ & 1U << place) == 0) {
      traits_[place] = Where(is);
      known_ |= 1U << place;
    }
    return traits_[place];
  }

 private:
  const RecordView* views_;
  std::size_t count_;
  std::size_t groups_;
  bool isSingle_ = false;
  Writers& writers_;
  MasksC set_;
  MasksC status_;
  mutable std::uint32_t known_ = 0;  // a bit for each trait
  mutable std::array<Bits, static_cast<std::size_t>(Trait::kCount)> traits_;
};

}  // namespace

/// The values of a column, for one record and for a block.
struct GPSColumnFunctions {
  using Ask = void (*)(const BlockC& record, GPSColumnValueC& value);
  using Fill = void (*)(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at);

  Ask ask;
  Fill fill;

  static GPSColumnValueC::Variant& ValueOf(GPSColumnValueC& to) { return to.value_; }
  static char* TextOf(GPSColumnValueC& to) { return to.text_; }
  static std::uint16_t* ListOf(GPSColumnValueC& to) { return to.list_; }
};

namespace {

using Functions = GPSColumnFunctions;

/// Writes `count` bits, beginning at bit `at`. Clears the bits after them in the last byte, and
/// writes no further byte.
[[gnu::noinline]] void PutAnyBits(std::uint8_t* bitmap, std::size_t at, std::size_t count,
                                  Bits bits) {
  const std::size_t shift = at % 8;
  std::uint8_t* to = bitmap + at / 8;
  if (shift != 0) {
    const unsigned before = *to & ((1U << shift) - 1);
    *to++ = static_cast<std::uint8_t>(before | bits << shift);
    if (count <= 8 - shift) return;
    count -= 8 - shift;
    bits >>= 8 - shift;
  }
  for (std::size_t i = 0; i < (count + 7) / 8; ++i)
    to[i] = static_cast<std::uint8_t>(bits >> 8 * i);
}
inline void PutBits(std::uint8_t* bitmap, std::size_t at, std::size_t count, Bits bits) {
  if (count != kBlock || at % 8 != 0) return PutAnyBits(bitmap, at, count, bits);
  boost::endian::store_little_u64(bitmap + at / 8, bits);
}

// `std::popcount` is a function call if the target processor may lack the instruction.
constexpr std::uint64_t Count(Bits bits) {
  std::uint64_t count = bits - (bits >> 1 & 0x5555'5555'5555'5555U);
  count = (count & 0x3333'3333'3333'3333U) + (count >> 2 & 0x3333'3333'3333'3333U);
  count = (count + (count >> 4)) & 0x0F0F'0F0F'0F0F'0F0FU;
  return count * 0x0101'0101'0101'0101U >> 56;
}

inline void MarkPresent(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at,
                        Bits present) {
  buffer.absent += Count(present ^ block.All());
  if (buffer.validity != nullptr) PutBits(buffer.validity, at, block.GetCount(), present);
}

template <class Value>
constexpr GPSColumnType TypeFor() {
  using enum GPSColumnType;
  if constexpr (std::is_same_v<Value, std::uint8_t>) return kUInt8;
  if constexpr (std::is_same_v<Value, std::uint16_t>) return kUInt16;
  if constexpr (std::is_same_v<Value, std::uint32_t>) return kUInt32;
  if constexpr (std::is_same_v<Value, std::uint64_t>) return kUInt64;
  if constexpr (std::is_same_v<Value, std::int32_t>) return kInt32;
  if constexpr (std::is_same_v<Value, float>) return kFloat32;
  if constexpr (std::is_same_v<Value, double>) return kFloat64;
}

/// Calls `visit(i)` for each bit i that is set.
template <class Visit>
void ForEach(Bits bits, Visit visit) {
  for (Bits left = bits; left != 0; left &= left - 1) {
    visit(static_cast<std::size_t>(std::countr_zero(left)));
  }
}

/// Marks a column without absent values.
constexpr std::nullptr_t kAlways = nullptr;

template <auto present>
constexpr bool kIsOptional =
    !std::is_same_v<std::remove_const_t<decltype(present)>, std::nullptr_t>;

/// The rows of `block` that have a value.
template <auto present>
Bits PresentIn(const BlockC& block) {
  if constexpr (kIsOptional<present>) {
    return present(block);
  } else {
    return block.All();
  }
}

/// Columns of numbers: `get(record)` is the value where it is present.
template <auto present, auto get>
struct OfNumber {
  using Value = std::invoke_result_t<decltype(get), R>;

  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    const Value value = get(record.Get(0));
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
      // NOLINTNEXTLINE(bugprone-branch-clone): the conversions differ
    } else if constexpr (std::is_floating_point_v<Value>) {
      Functions::ValueOf(to) = value;
    } else if constexpr (std::is_signed_v<Value>) {
      Functions::ValueOf(to) = std::int64_t{value};
    } else {
      Functions::ValueOf(to) = std::uint64_t{value};
    }
  }

  static void Fill(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at) {
    const Bits bits = PresentIn<present>(block);
    Value* const values = static_cast<Value*>(buffer.values) + at;
    if (bits == kWhole) {
      for (std::size_t i = 0; i < kBlock; ++i) values[i] = get(block.Get(i));
    } else {
      if (block.GetCount() == kBlock) {
        std::fill_n(values, kBlock, Value{});
      } else {
        std::fill_n(values, block.GetCount(), Value{});
      }
      ForEach(bits, [&](std::size_t i) { values[i] = get(block.Get(i)); });
    }
    MarkPresent(block, buffer, at, bits);
  }
};

/// Columns of flags: `flags(block)` are the rows for which they are true.
template <auto present, auto flags>
struct OfFlag {
  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
    } else {
      Functions::ValueOf(to) = flags(record) != 0;
    }
  }

  static void Fill(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at) {
    const Bits bits = PresentIn<present>(block);
    PutBits(static_cast<std::uint8_t*>(buffer.values), at, block.GetCount(), flags(block) & bits);
    MarkPresent(block, buffer, at, bits);
  }
};

/// Writes texts or lists: `write(record, to)` returns how many elements it wrote.
template <class Element, class Write>
void FillLong(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at, Bits present,
              Write write) {
  auto* const elements = static_cast<Element*>(buffer.values);
  std::int64_t* const offsets = buffer.offsets + at;
  std::int64_t end = offsets[0];
  std::array<std::uint8_t, kBlock> sizes = {};
  static_assert(GPSColumnValueC::kLargestText <= std::numeric_limits<std::uint8_t>::max());
  ForEach(present, [&](std::size_t i) {
    const std::size_t size = write(block.Get(i), elements + end);
    sizes[i] = static_cast<std::uint8_t>(size);
    end += static_cast<std::int64_t>(size);
  });
  end = offsets[0];
  for (std::size_t i = 0; i < block.GetCount(); ++i) offsets[i + 1] = end += sizes[i];
  MarkPresent(block, buffer, at, present);
}

/// Columns of texts: `write(record, writers, to)` writes at most `largest` bytes to `to` and
/// returns how many.
template <auto present, auto write>
struct OfText {
  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
      return;
    }
    char* const text = Functions::TextOf(to);
    Functions::ValueOf(to) =
        std::string_view(text, write(record.Get(0), record.GetWriters(), text));
  }

  static void Fill(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at) {
    FillLong<char>(block, buffer, at, PresentIn<present>(block),
                   [&](R r, char* to) { return write(r, block.GetWriters(), to); });
  }
};

/// Columns of lists: `get(record)` is the list where it is present.
template <auto present, auto get>
struct OfList {
  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
      return;
    }
    const List list = get(record.Get(0));
    std::uint16_t* const entries = Functions::ListOf(to);
    std::copy(list.begin(), list.end(), entries);
    Functions::ValueOf(to) = List(entries, list.size());
  }

  static void Fill(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at) {
    FillLong<std::uint16_t>(block, buffer, at, PresentIn<present>(block),
                            [](R r, std::uint16_t* to) {
                              const List list = get(r);
                              std::copy(list.begin(), list.end(), to);
                              return list.size();
                            });
  }
};

template <class Of>
constexpr Functions kFunctionsOf{&Of::Ask, &Of::Fill};

template <auto present, auto get>
constexpr GPSColumn Number(const char* name, const char* unit, const char* description) {
  using Of = OfNumber<present, get>;
  return {name,
          TypeFor<typename Of::Value>(),
          kIsOptional<present>,
          unit,
          description,
          0,
          &kFunctionsOf<Of>};
}
template <auto get>
constexpr GPSColumn Number(const char* name, const char* unit, const char* description) {
  return Number<kAlways, get>(name, unit, description);
}

template <auto present, auto flags>
constexpr GPSColumn Flag(const char* name, const char* description) {
  using Of = OfFlag<present, flags>;
  return {name, GPSColumnType::kBool, kIsOptional<present>, "", description, 0, &kFunctionsOf<Of>};
}
template <auto flags>
constexpr GPSColumn Flag(const char* name, const char* description) {
  return Flag<kAlways, flags>(name, description);
}

template <std::size_t largest, auto present, auto write>
constexpr GPSColumn Text(const char* name, const char* description) {
  static_assert(largest <= GPSColumnValueC::kLargestText);
  return {name,
          GPSColumnType::kText,
          true,
          "",
          description,
          largest,
          &kFunctionsOf<OfText<present, write>>};
}

template <auto present, auto get>
constexpr GPSColumn ListOf(const char* name, const char* description) {
  static_assert(GPSListBlock::kCapacity == GPSColumnValueC::kLargestList);
  constexpr std::size_t kLargest = GPSListBlock::kCapacity * sizeof(std::uint16_t);
  return {name,     GPSColumnType::kUInt16List,         true, "", description,
          kLargest, &kFunctionsOf<OfList<present, get>>};
}

// Adapters for the getters.

template <std::uint16_t bit>
Bits IsSet(const BlockC& block) {
  return block.WithSet(bit);
}
template <std::uint16_t bit>
Bits HasStatus(const BlockC& block) {
  return block.WithStatus(bit);
}
template <std::uint16_t system>
Bits HasSystem(const BlockC& block) {
  return block.WithSet(ImplC::kHasSystems) & block.WithStatus(system);
}
/// As `GetSystem1Pair`: without information per system it is the total pair.
Bits HasSystem1Pair(const BlockC& block) {
  const Bits systems = block.WithSet(ImplC::kHasSystems);
  return (systems & block.WithStatus(ImplC::kSystem1)) |
         (~systems & block.WithSet(ImplC::kHasTotalPair));
}
Bits IsSystem1Used(const BlockC& block) {
  const Bits systems = block.WithSet(ImplC::kHasSystems);
  return (systems & block.WithStatus(ImplC::kSystem1)) | (~systems & block.All());
}
GPSCounterPair System1Pair(R r) {
  const bool hasSystems = (r.measurement->GetSetMask() & ImplC::kHasSystems) != 0;
  return hasSystems ? r.measurement->GetStoredSystem1Pair() : r.measurement->GetStoredTotalPair();
}

Bits HasExtraTime(const BlockC& block) {
  return block.Where(Trait::kHasExtraTime,
                     [](R r) { return r.measurement->GetExtraTimeCount() != 0; });
}
Vorlin::TimeC ExtraTime(R r) {
  Vorlin::TimeC time;
  r.measurement->GetExtraTime(time.week, time.timeOfWeek);
  return time;
}

template <std::uint8_t index>
Bits HasValue(const BlockC& block) {
  return block.Where([](R r) { return r.measurement->GetValueCount() > index; });
}

/// A dilution of precision, by its stored value.
template <Trait trait, auto tenths>
Bits HasDilution(const BlockC& block) {
  return block.Where(trait,
                     [](R r) { return (r.measurement->GetDOPs().*tenths)() != DOP_NOT_AVAILABLE; });
}
constexpr auto kHasHDOP = &HasDilution<Trait::kHasHDOP, &GPSDOPsImplC::GetHDOPTenths>;
constexpr auto kHasVDOP = &HasDilution<Trait::kHasVDOP, &GPSDOPsImplC::GetVDOPTenths>;
constexpr auto kHasTDOP = &HasDilution<Trait::kHasTDOP, &GPSDOPsImplC::GetTDOPTenths>;
/// The rows whose dilutions are set and for which `has...` are available.
template <auto... has>
Bits HasDilutions(const BlockC& block) {
  return (block.WithSet(ImplC::kHasDOPs) & ... & has(block));
}
template <auto get>
double Dilution(R r) {
  return (r.measurement->GetDOPs().*get)();
}

std::pair<float, bool> AntennaHeight(R r) {
  std::pair<float, bool> answer;
  r.measurement->GetAntennaHeight().GetHeight(answer.first, answer.second);
  return answer;
}

template <std::size_t axis>
double Component(R r) {
  double vector[3] = {};
  r.measurement->GetVector(vector);
  return vector[axis];
}

Bits HasTime(const BlockC& block) {
  return block.Where(Trait::kHasTime,
                     [](R r) { return TimeText::IsInRange(r.measurement->GetTimeA()); });
}
Bits HasExtraTimeInRange(const BlockC& block) {
  return block.Where(Trait::kHasExtraTimeInRange, [](R r) {
    return r.measurement->GetExtraTimeCount() != 0 && TimeText::IsInRange(ExtraTime(r));
  });
}
template <class WriterC>
std::size_t WriteTime(const Vorlin::TimeC& time, WriterC& writer, char* to) {
  writer.Write(TimeText::SinceEpoch(time), to);
  return kTimeTextSize;
}

template <auto get>
Bits HasText(const BlockC& block) {
  return block.Where([](R r) { return *(r.measurement->*get)() != 0; });
}
template <std::size_t capacity, auto get>
std::size_t WriteText(R r, Writers& /*writers*/, char* to) {
  return TextColumn::Write((r.measurement->*get)(), capacity, to);
}

Bits HasName(const BlockC& block) {
  return block.Where([](R r) { return r.info->name[0] != 0; });
}
// `EncodeName` encodes each unit on its own, so surrogates are the only sequences that are not
// valid UTF-8. They all begin with this byte.
constexpr char kSurrogateLead = '\xED';
std::size_t WriteName(R r, Writers& /*writers*/, char* to) {
  const char* const name = r.info->name;
#if defined(__SSE2__)
  // Nearly every name has fewer than sixteen bytes.
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(name));
  const auto ends =
      static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
  const auto leads = static_cast<unsigned>(
      _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(kSurrogateLead))));
  if (ends != 0 && leads == 0) {
    _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to), bytes);
    return static_cast<std::size_t>(std::countr_zero(ends));
  }
#endif
  const void* const found = std::memchr(name, 0, sizeof(r.info->name));
  const std::size_t size = found != nullptr
                               ? static_cast<std::size_t>(static_cast<const char*>(found) - name)
                               : sizeof(r.info->name);
  if (std::memchr(name, kSurrogateLead, size) == nullptr) {
    std::memcpy(to, name, size);
    return size;
  }
  char16_t units[sizeof(r.info->name) + 1];  // more than its bytes can encode
  RecordFrame::DecodeName(name, size, units, std::size(units));
  return TextColumn::Write(units, std::size(units), to);
}

// The longest texts: three bytes for each unit before the terminator; for the name, its own size.
constexpr std::size_t kLargestText = 3 * (ImplC::kTextUnits - 1);
constexpr std::size_t kLargestTextD = 3 * (ImplC::kTextDUnits - 1);
constexpr std::size_t kLargestName = sizeof(GPSRecordFileInfo::name);
static_assert(kLargestText == GPSColumnValueC::kLargestText);

// The table. Each row: when the value is present, if it can be absent, and how it is read; name,
// unit and description.
constexpr GPSColumn kColumns[] = {
    Number<[](R r) { return r.offset; }>("offset", "byte", "Where the frame begins in the source"),
    Number<[](R r) { return static_cast<std::uint16_t>(r.size); }>(
        "size", "byte", "The size of the frame, header and checksum included"),

    Text<kLargestName, HasName, WriteName>("name", "The name, absent when it is empty"),
    Number<[](R r) { return r.info->number; }>("number", "",
                                               "The number that is stored with the name"),
    Flag<[](const BlockC& block) {
      return block.Where([](R r) { return (r.info->flags & GPSRecordFileInfo::kKindZero) != 0; });
    }>("kind_zero", "Whether the frame has a kind byte that is 0"),
    Flag<[](const BlockC& block) {
      return block.Where(
          [](R r) { return (r.info->flags & GPSRecordFileInfo::kKindNonZero) != 0; });
    }>("kind_non_zero", "Whether the frame has a kind byte that is not 0"),

    Number<[](R r) { return r.measurement->GetTimeA().week; }>(
        "gps_week", "week", "Time A as stored: the GPS week, counted from 6 January 1980"),
    Number<[](R r) { return r.measurement->GetTimeA().timeOfWeek; }>(
        "time_of_week", "ms", "Time A as stored: the time since the start of the GPS week"),
    Text<kTimeTextSize, HasTime,
         [](R r, Writers& w, char* to) { return WriteTime(r.measurement->GetTimeA(), w.gps, to); }>(
        "time_gps",
        "Time A in GPS time, in ISO 8601, absent when the time of week is out of range"),
    Text<kTimeTextSize, HasTime,
         [](R r, Writers& w, char* to) { return WriteTime(r.measurement->GetTimeA(), w.utc, to); }>(
        "time_utc", "Time A in UTC, in ISO 8601, absent when the time of week is out of range"),
    Number<[](R r) { return r.measurement->GetTimeB().timeOfWeek; }>(
        "time_b_of_week", "ms", "Time B as stored: the time since the start of a GPS week"),
    Number<HasExtraTime, [](R r) { return ExtraTime(r).week; }>(
        "extra_gps_week", "week", "The extra time as stored: the GPS week"),
    Number<HasExtraTime, [](R r) { return ExtraTime(r).timeOfWeek; }>(
        "extra_time_of_week", "ms",
        "The extra time as stored: the time since the start of the GPS week"),
    Text<kTimeTextSize, HasExtraTimeInRange,
         [](R r, Writers& w, char* to) { return WriteTime(ExtraTime(r), w.gps, to); }>(
        "extra_time_gps",
        "The extra time in GPS time, in ISO 8601, absent when the time of week is out of range"),
    Text<kTimeTextSize, HasExtraTimeInRange,
         [](R r, Writers& w, char* to) { return WriteTime(ExtraTime(r), w.utc, to); }>(
        "extra_time_utc",
        "The extra time in UTC, in ISO 8601, absent when the time of week is out of range"),

    Flag<HasStatus<ImplC::kStatusBit0>>("status_bit_0", "Status bit 0"),
    Flag<HasStatus<ImplC::kStatusBit1>>("status_bit_1", "Status bit 1"),
    Flag<HasStatus<ImplC::kStatusBit2>>("status_bit_2", "Status bit 2"),
    Flag<HasStatus<ImplC::kStatusBit3>>("status_bit_3", "Status bit 3"),
    Flag<IsSystem1Used>("system_1_used",
                        "Whether system 1 is used; true without information per system"),
    Flag<HasSystem<ImplC::kSystem2>>("system_2_used", "Whether system 2 is used"),
    Flag<HasSystem<ImplC::kSystem3>>("system_3_used", "Whether system 3 is used"),

    Number<IsSet<ImplC::kHasAntennaHeight>, [](R r) { return AntennaHeight(r).first; }>(
        "antenna_height", "m", "The antenna height as measured, vertical or slant"),
    Flag<IsSet<ImplC::kHasAntennaHeight>,
         [](const BlockC& block) {
           return block.Where([](R r) { return AntennaHeight(r).second; });
         }>("antenna_is_vertical", "Whether the antenna height was measured vertically"),
    Number<IsSet<ImplC::kHasAntennaHeight>,
           [](R r) { return r.measurement->GetAntennaHeight().GetHorizontalOffset(); }>(
        "antenna_horizontal_offset", "m",
        "The distance from the antenna axis to the point of a slant height"),
    Number<IsSet<ImplC::kHasAntennaHeight>,
           [](R r) { return r.measurement->GetAntennaHeight().GetVerticalHeight(); }>(
        "antenna_vertical_height", "m", "The antenna height reduced to the vertical"),

    Number<HasValue<0>, [](R r) { return r.measurement->GetValue(0); }>(
        "value_0", "", "The first of the two values"),
    Number<HasValue<1>, [](R r) { return r.measurement->GetValue(1); }>(
        "value_1", "", "The second of the two values"),

    Number<HasDilutions<kHasHDOP>, Dilution<&GPSDOPsImplC::GetHDOP>>(
        "hdop", "", "Horizontal dilution of precision, absent when not available"),
    Number<HasDilutions<kHasVDOP>, Dilution<&GPSDOPsImplC::GetVDOP>>(
        "vdop", "", "Vertical dilution of precision, absent when not available"),
    Number<HasDilutions<kHasTDOP>, Dilution<&GPSDOPsImplC::GetTDOP>>(
        "tdop", "", "Time dilution of precision, absent when not available"),
    Number<HasDilutions<kHasHDOP, kHasVDOP>, Dilution<&GPSDOPsImplC::GetPDOP>>(
        "pdop", "", "Position dilution of precision, of hdop and vdop"),
    Number<HasDilutions<kHasHDOP, kHasVDOP, kHasTDOP>, Dilution<&GPSDOPsImplC::GetGDOP>>(
        "gdop", "", "Geometric dilution of precision, of hdop, vdop and tdop"),

    Number<IsSet<ImplC::kHasWord16>,
           [](R r) {
             std::uint16_t word = 0;
             r.measurement->GetWord16(word);
             return word;
           }>("word_16", "", "The 16-bit word"),

    Number<IsSet<ImplC::kHasTotalPair>,
           [](R r) { return r.measurement->GetStoredTotalPair().first; }>(
        "total_first", "", "The total pair of counters: the first"),
    Number<IsSet<ImplC::kHasTotalPair>,
           [](R r) { return r.measurement->GetStoredTotalPair().second; }>(
        "total_second", "", "The total pair of counters: the second"),
    Number<HasSystem1Pair, [](R r) { return System1Pair(r).first; }>(
        "system_1_first", "",
        "The pair of counters of system 1: the first; without information per system, of the total "
        "pair"),
    Number<HasSystem1Pair, [](R r) { return System1Pair(r).second; }>(
        "system_1_second", "",
        "The pair of counters of system 1: the second; without information per system, of the "
        "total pair"),
    Number<HasSystem<ImplC::kSystem2>,
           [](R r) { return r.measurement->GetStoredSystem2Pair().first; }>(
        "system_2_first", "", "The pair of counters of system 2: the first"),
    Number<HasSystem<ImplC::kSystem2>,
           [](R r) { return r.measurement->GetStoredSystem2Pair().second; }>(
        "system_2_second", "", "The pair of counters of system 2: the second"),
    Number<HasSystem<ImplC::kSystem3>,
           [](R r) { return r.measurement->GetStoredSystem3Pair().first; }>(
        "system_3_first", "", "The pair of counters of system 3: the first"),
    Number<HasSystem<ImplC::kSystem3>,
           [](R r) { return r.measurement->GetStoredSystem3Pair().second; }>(
        "system_3_second", "", "The pair of counters of system 3: the second"),

    Number<IsSet<ImplC::kHasVector>, Component<0>>("vector_x", "m",
                                                   "The vector: its first component"),
    Number<IsSet<ImplC::kHasVector>, Component<1>>("vector_y", "m",
                                                   "The vector: its second component"),
    Number<IsSet<ImplC::kHasVector>, Component<2>>("vector_z", "m",
                                                   "The vector: its third component"),

    Flag<[](const BlockC& block) {
      return block.Where([](R r) { return r.measurement->GetFlagA() != 0; });
    }>("flag_a", "Flag A"),
    Number<[](R r) { return r.measurement->GetValueB(); }>("value_b", "", "Value B"),
    Number<IsSet<ImplC::kHasValueC>, [](R r) { return r.measurement->GetValueC(); }>(
        "value_c", "", "Value C, absent when it is 0"),
    Text<kLargestText, HasText<&ImplC::GetTextA>, WriteText<ImplC::kTextUnits, &ImplC::GetTextA>>(
        "text_a", "Text A, absent when it is empty"),
    Text<kLargestText, HasText<&ImplC::GetTextB>, WriteText<ImplC::kTextUnits, &ImplC::GetTextB>>(
        "text_b", "Text B, absent when it is empty"),
    Number<[](R r) { return r.measurement->GetValueD(); }>("value_d", "", "Value D"),
    Text<kLargestText, HasText<&ImplC::GetTextC>, WriteText<ImplC::kTextUnits, &ImplC::GetTextC>>(
        "text_c", "Text C, absent when it is empty"),
    Flag<[](const BlockC& block) {
      return block.Where([](R r) { return r.measurement->GetFlagE() != 0; });
    }>("flag_e", "Flag E"),
    Text<kLargestTextD, HasText<&ImplC::GetTextD>, WriteText<ImplC::kTextDUnits, &ImplC::GetTextD>>(
        "text_d", "Text D, absent when it is empty"),
    Number<[](R r) { return r.measurement->GetValueF(); }>("value_f", "", "Value F"),
    Number<[](R r) { return r.measurement->GetValueG(); }>("value_g", "", "Value G"),
    Number<IsSet<ImplC::kHasValueH>, [](R r) { return r.measurement->GetValueH(); }>("value_h", "",
                                                                                     "Value H"),
    Number<IsSet<ImplC::kHasValueI>, [](R r) { return r.measurement->GetValueI(); }>("value_i", "",
                                                                                     "Value I"),

    Number<IsSet<ImplC::kHasListBlock>, [](R r) { return r.measurement->GetListBlock()->head; }>(
        "list_head", "", "The list: its head value"),
    ListOf<IsSet<ImplC::kHasListBlock>,
           [](R r) {
             const GPSListBlock& list = *r.measurement->GetListBlock();
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
  Writers writers;
  column.functions->ask(BlockC(record, writers), value);
}

void AskGPSColumn(const GPSColumn& column, const GPSRecordC& record, GPSColumnValueC& value) {
  RecordColumns::Ask(
      column,
      {record.GetMeasurement().GetImpl(), &record.GetInfo(), record.GetOffset(), record.GetSize()},
      value);
}

struct GPSColumnReaderC::State {
  explicit State(GPSRecordReaderC& from) : reader(from) {
    for (std::size_t i = 0; i < kBlock; ++i) views[i] = {&rows[i].measurement, &rows[i].info};
  }

  /// A decoded record that is not yet in the columns.
  struct Row {
    GPSMeasDataImplC measurement;
    GPSRecordFileInfo info;
  };

  void Stage(std::size_t most, std::size_t& staged);

  GPSRecordReaderC& reader;
  std::uint64_t leftOut = 0;
  Writers writers;
  std::array<Row, kBlock> rows;
  BlockC::Views views;
};

// Decodes up to `most` records whose outcome is `kDone`, and counts them in `staged`.
void GPSColumnReaderC::State::Stage(std::size_t most, std::size_t& staged) {
  GPSRecordEntry entry;
  while (staged < most && reader.NextEntry(entry)) {
    if (!entry.IsMeasurement()) continue;
    Row& row = rows[staged];
    // Keeps what every frame stores and what has no value in a column while it is absent.
    RecordColumns::Renewal::Renew(row.measurement);
    row.info.number = 0;  // the other fields are never set
    row.info.flags = 0;
    std::memset(row.info.name, 0, sizeof(row.info.name));
    if (RecordFrame::DecodeChecked(reader.GetBytes(), row.measurement, row.info).IsDone()) {
      views[staged].offset = entry.offset;
      views[staged].size = entry.size;
      ++staged;
    } else {
      ++leftOut;
    }
  }
}

namespace {

bool IsBuffer(const GPSColumnBuffer& buffer) {
  return buffer.column != nullptr && buffer.values != nullptr &&
         (!IsLong(*buffer.column) || buffer.offsets != nullptr);
}

// How many rows, at most `most`, are certain to fit after the first `rows`.
std::size_t RowsWithRoom(std::span<const GPSColumnBuffer> buffers, std::size_t rows,
                         std::size_t most) {
  for (const GPSColumnBuffer& buffer : buffers) {
    const GPSColumn& column = *buffer.column;
    if (!IsLong(column)) continue;
    const std::size_t unit = column.type == GPSColumnType::kText ? 1 : sizeof(std::uint16_t);
    const std::size_t left = buffer.size - static_cast<std::size_t>(buffer.offsets[rows]) * unit;
    if (left < most * column.largest) most = left / column.largest;
  }
  return most;
}

}  // namespace

GPSColumnReaderC::GPSColumnReaderC(GPSRecordReaderC& reader) : state_(new State(reader)) {}
GPSColumnReaderC::~GPSColumnReaderC() = default;

GPSColumnsOutcome GPSColumnReaderC::Read(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                                         std::size_t& rows) {
  rows = 0;
  if (!std::ranges::all_of(buffers, IsBuffer)) return GPSColumnsOutcome::kNotABuffer;
  for (GPSColumnBuffer& buffer : buffers) {
    buffer.absent = 0;
    if (IsLong(*buffer.column)) buffer.offsets[0] = 0;
  }
  return ReadOn(buffers, capacity, rows);
}

GPSColumnsOutcome GPSColumnReaderC::ReadOn(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                                           std::size_t& rows) {
  State& state = *state_;
  if (!std::ranges::all_of(buffers, IsBuffer)) return GPSColumnsOutcome::kNotABuffer;
  const std::size_t before = rows;
  const auto fill = [&](std::size_t staged) {
    if (staged == 0) return;
    const BlockC block(state.views, staged, state.writers);
    for (GPSColumnBuffer& buffer : buffers) buffer.column->functions->fill(block, buffer, rows);
    rows += staged;
  };
  while (rows < capacity) {
    const std::size_t most =
        RowsWithRoom(buffers, rows, std::min(kBlock - rows % kBlock, capacity - rows));
    if (most == 0) break;
    std::size_t staged = 0;
    try {
      state.Stage(most, staged);
    } catch (...) {
      fill(staged);
      throw;
    }
    fill(staged);
    if (staged < most) return rows != before ? GPSColumnsOutcome::kDone : GPSColumnsOutcome::kEnd;
  }
  return rows != before ? GPSColumnsOutcome::kDone : GPSColumnsOutcome::kNoRoom;
}

std::uint64_t GPSColumnReaderC::GetLeftOut() const { return state_->leftOut; }
bool GPSColumnReaderC::HasTimesAfterExpiry() const { return state_->writers.utc.HasExpired(); }

}  // namespace SDI
