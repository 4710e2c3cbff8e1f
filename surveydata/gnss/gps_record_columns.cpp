#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include <boost/endian/conversion.hpp>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <surveydata/gnss/dilution.h>
#include <surveydata/gnss/frame_blocks.h>
#include <surveydata/gnss/frame_cursors.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/record_columns.h>
#include <surveydata/gnss/record_frame.h>
#include <surveydata/gnss/text_column.h>
#include <surveydata/gnss/time_text.h>

namespace SDI {

using RecordColumns::BytesOfValues;
using RecordColumns::IsLong;
using RecordColumns::RecordView;

namespace {

using ImplC = GPSMeasDataImplC;
using List = std::span<const std::uint16_t>;
using R = const RecordView&;

/// The number of rows that go through all columns together. Their numbers and texts are collected
/// right after each frame is decoded, in arrays that one column reads from the first-level cache.
/// Most columns write whole cache lines.
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

  alignas(16) std::array<std::uint16_t, kBlock> masks_ = {};
};

/// A flag of each row of a block.
class FlagsC {
 public:
  void Set(std::size_t row, bool flag) { flags_[row] = flag ? kHighest : 0; }
  /// The rows, among the first `groups`, whose flag is set.
  Bits Get(std::size_t groups) const {
    Bits bits = 0;
    for (std::size_t group = 0; group < groups; ++group) {
      bits |= Bits{InGroup(flags_.data() + group * kGroup)} << group * kGroup;
    }
    return bits;
  }

 private:
  static constexpr std::uint8_t kHighest = 0x80;

  static std::uint32_t InGroup(const std::uint8_t* flags) {
#if defined(__SSE2__)
    return static_cast<std::uint32_t>(
        _mm_movemask_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(flags))));
#else
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kGroup; ++i) bits |= (std::uint32_t{flags[i]} >> 7) << i;
    return bits;
#endif
  }

  alignas(16) std::array<std::uint8_t, kBlock> flags_ = {};
};

/// The texts of a frame.
enum class TextPlace : std::uint8_t { kName, kA, kB, kC, kD, kCount };
constexpr std::size_t kTexts = static_cast<std::size_t>(TextPlace::kCount);

/// A decoded record and the sizes of the texts that were written, as UTF-8, while it was decoded.
/// They are empty in the measurement and in the info.
struct RowView : RecordView {
  std::array<std::uint8_t, kTexts> textSizes = {};

  std::size_t SizeOf(TextPlace place) const { return textSizes[static_cast<std::size_t>(place)]; }
};

/// State of the text writers, kept from one record to the next.
struct Writers {
  TimeText::DateWriterC gps;
  TimeText::UTCWriterC utc;
};

Vorlin::TimeC ExtraTime(R r) {
  Vorlin::TimeC time;
  r.measurement->GetExtraTime(time.week, time.timeOfWeek);
  return time;
}

std::pair<float, bool> AntennaHeight(R r) {
  std::pair<float, bool> answer;
  r.measurement->GetAntennaHeight().GetHeight(answer.first, answer.second);
  return answer;
}

/// The information that columns need about each row, in addition to the masks of the measurement.
enum class Trait : std::uint8_t {
  kHasName,
  kIsKindZero,
  kIsKindNonZero,
  kHasTime,
  kHasExtraTime,
  kHasExtraTimeInRange,
  kIsHeightVertical,
  kHasValue0,
  kHasValue1,
  kHasHDOP,
  kHasVDOP,
  kHasTDOP,
  kHasFlagA,
  kHasTextA,
  kHasTextB,
  kHasTextC,
  kHasFlagE,
  kHasTextD,
  kCount,
};
constexpr std::size_t kTraits = static_cast<std::size_t>(Trait::kCount);

/// Whether a record has a trait.
template <Trait trait>
bool Has(R r) {
  const ImplC& measurement = *r.measurement;
  switch (trait) {
    using enum Trait;
    case kHasName:
      return r.info->name[0] != 0;
    case kIsKindZero:
      return (r.info->flags & GPSRecordFileInfo::kKindZero) != 0;
    case kIsKindNonZero:
      return (r.info->flags & GPSRecordFileInfo::kKindNonZero) != 0;
    case kHasTime:
      return TimeText::IsInRange(measurement.GetTimeA());
    case kHasExtraTime:
      return measurement.GetExtraTimeCount() != 0;
    case kHasExtraTimeInRange:
      return measurement.GetExtraTimeCount() != 0 && TimeText::IsInRange(ExtraTime(r));
    case kIsHeightVertical:
      return AntennaHeight(r).second;
    case kHasValue0:
      return measurement.GetValueCount() > 0;
    case kHasValue1:
      return measurement.GetValueCount() > 1;
    case kHasHDOP:
      return measurement.GetDOPs().GetHDOPTenths() != DOP_NOT_AVAILABLE;
    case kHasVDOP:
      return measurement.GetDOPs().GetVDOPTenths() != DOP_NOT_AVAILABLE;
    case kHasTDOP:
      return measurement.GetDOPs().GetTDOPTenths() != DOP_NOT_AVAILABLE;
    case kHasFlagA:
      return measurement.GetFlagA() != 0;
    case kHasTextA:
      return *measurement.GetTextA() != 0;
    case kHasTextB:
      return *measurement.GetTextB() != 0;
    case kHasTextC:
      return *measurement.GetTextC() != 0;
    case kHasFlagE:
      return measurement.GetFlagE() != 0;
    case kHasTextD:
      return *measurement.GetTextD() != 0;
    case kCount:
      break;
  }
  return false;
}

/// The same for a record whose texts have been written.
template <Trait trait>
bool HasInRow(const RowView& r) {
  switch (trait) {
    using enum Trait;
    case kHasName:
      return r.SizeOf(TextPlace::kName) != 0;
    case kHasTextA:
      return r.SizeOf(TextPlace::kA) != 0;
    case kHasTextB:
      return r.SizeOf(TextPlace::kB) != 0;
    case kHasTextC:
      return r.SizeOf(TextPlace::kC) != 0;
    case kHasTextD:
      return r.SizeOf(TextPlace::kD) != 0;
    default:
      return Has<trait>(r);
  }
}

/// Masks and traits of the rows of a block.
struct Presence {
  MasksC set;
  MasksC status;
  std::array<FlagsC, kTraits> traits;

  void Put(std::size_t row, const RowView& r) {
    set.Set(row, r.measurement->GetSetMask());
    status.Set(row, r.measurement->GetStatusMask());
    [&]<std::size_t... trait>(std::index_sequence<trait...>) {
      (traits[trait].Set(row, HasInRow<static_cast<Trait>(trait)>(r)), ...);
    }
    (std::make_index_sequence<kTraits>());
  }
};

/// The numbers of the rows of a block.
struct Values;

/// Up to `kBlock` records.
///
/// Which values are present varies from record to record. It is determined for a whole block
/// without branches, which would be mispredicted; then the present values are read.
class BlockC {
 public:
  /// The first `count` rows that were put into `presence` and `values`.
  BlockC(const Presence& presence, const Values& values, std::size_t count, Writers& writers)
      : presence_(&presence), values_(&values), count_(count), writers_(writers) {}

  /// One record, for a single value, which must not cost as much as those of a block.
  BlockC(const RecordView& record, Writers& writers)
      : record_(&record), count_(1), writers_(writers) {}

  std::size_t GetCount() const { return count_; }
  /// The single record.
  const RecordView& Get() const { return *record_; }
  Writers& GetWriters() const { return writers_; }
  /// Not of a single record.
  const Values& GetValues() const { return *values_; }

  Bits All() const { return count_ == 0 ? Bits{0} : kWhole >> (kBlock - count_); }
  /// The rows with this bit of the set mask.
  Bits WithSet(std::uint16_t bit) const {
    if (record_ != nullptr) return (record_->measurement->GetSetMask() & bit) != 0 ? 1 : 0;
    return presence_->set.With(bit, GroupsOf(count_)) & All();
  }
  /// The rows with this bit of the status mask.
  Bits WithStatus(std::uint16_t bit) const {
    if (record_ != nullptr) return (record_->measurement->GetStatusMask() & bit) != 0 ? 1 : 0;
    return presence_->status.With(bit, GroupsOf(count_)) & All();
  }
  /// The rows with this trait.
  template <Trait trait>
  Bits With() const {
    if (record_ != nullptr) return Has<trait>(*record_) ? 1 : 0;
    return presence_->traits[static_cast<std::size_t>(trait)].Get(GroupsOf(count_)) & All();
  }

 private:
  const RecordView* record_ = nullptr;  // null for a block
  const Presence* presence_ = nullptr;
  const Values* values_ = nullptr;
  std::size_t count_;
  Writers& writers_;
};

}  // namespace

/// The values of a column, for one record and for a block.
struct GPSColumnFunctions {
  using Ask = void (*)(const BlockC& record, GPSColumnValueC& value);
  using Put = void (*)(const RowView& record, Values& values, std::size_t row);
  using Fill = void (*)(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at);

  Ask ask;
  Put put;
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

/// For columns that keep no values of the rows of a block.
struct Nothing {};

#if defined(__SSE2__)
/// A byte for each of 16 rows: all bits of it set where `bits` has a bit.
inline __m128i BytesWhere(std::uint32_t bits) {
  constexpr std::uint64_t kEach = 0x0101'0101'0101'0101;
  const __m128i row = _mm_set1_epi64x(static_cast<std::int64_t>(0x8040'2010'0804'0201));
  const __m128i spread = _mm_set_epi64x(static_cast<std::int64_t>((bits >> 8 & 0xFF) * kEach),
                                        static_cast<std::int64_t>((bits & 0xFF) * kEach));
  return _mm_cmpeq_epi8(_mm_and_si128(spread, row), row);
}

/// Copies the values of 16 rows where the lanes of `where` are set, and writes 0 elsewhere. Each
/// step doubles the width of the lanes.
template <std::size_t kWidth, std::size_t kLanes = 1>
void CopyWhere(const std::uint8_t* from, __m128i where, std::uint8_t* to) {
  if constexpr (kLanes == kWidth) {
    const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(from));
    _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to), _mm_and_si128(value, where));
  } else {
    constexpr std::size_t kHalf = kGroup * kWidth / (2 * kLanes);
    CopyWhere<kWidth, 2 * kLanes>(from, _mm_unpacklo_epi8(where, where), to);
    CopyWhere<kWidth, 2 * kLanes>(from + kHalf, _mm_unpackhi_epi8(where, where), to + kHalf);
  }
}
#endif

/// Copies the first `count` values, and writes 0 where `present` has no bit.
template <class Value>
void CopyPresent(const std::array<Value, kBlock>& values, Bits present, std::size_t count,
                 Value* to) {
  if (present == kWhole) {
    std::memcpy(to, values.data(), sizeof(values));
    return;
  }
#if defined(__SSE2__)
  if (count == kBlock) {
    for (std::size_t i = 0; i < kBlock; i += kGroup) {
      CopyWhere<sizeof(Value)>(reinterpret_cast<const std::uint8_t*>(values.data() + i),
                               BytesWhere(static_cast<std::uint32_t>(present >> i & 0xFFFF)),
                               reinterpret_cast<std::uint8_t*>(to + i));
    }
    return;
  }
#endif
  for (std::size_t i = 0; i < count; ++i) to[i] = (present >> i & 1) != 0 ? values[i] : Value{};
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

/// Sets a value that is a number.
template <class Value>
void SetNumber(GPSColumnValueC& to, bool isPresent, Value value) {
  if (!isPresent) {
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

/// Columns of numbers: `get(record)` is the value where it is present, and any value elsewhere.
template <auto present, auto get>
struct OfNumber {
  using Value = std::invoke_result_t<decltype(get), R>;
  using Rows = std::array<Value, kBlock>;

  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    SetNumber(to, PresentIn<present>(record) != 0, get(record.Get()));
  }
  static void Put(R r, Rows& rows, std::size_t row) { rows[row] = get(r); }
  static void Fill(const BlockC& block, const Rows& rows, GPSColumnBuffer& buffer, std::size_t at) {
    const Bits bits = PresentIn<present>(block);
    CopyPresent(rows, bits, block.GetCount(), static_cast<Value*>(buffer.values) + at);
    MarkPresent(block, buffer, at, bits);
  }
};

/// Columns of dilutions of precision, of one or several that are stored.
template <auto present, auto... tenths>
struct OfDilution {
  using Value = double;
  using Stored = std::array<std::uint16_t, sizeof...(tenths)>;
  using Rows = std::array<Stored, kBlock>;

  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    SetNumber(to, PresentIn<present>(record) != 0, Combined(Get(record.Get())));
  }
  static void Put(R r, Rows& rows, std::size_t row) { rows[row] = Get(r); }
  static void Fill(const BlockC& block, const Rows& rows, GPSColumnBuffer& buffer, std::size_t at) {
    const Bits bits = PresentIn<present>(block);
    double* const values = static_cast<double*>(buffer.values) + at;
    std::fill_n(values, block.GetCount(), 0.0);
    ForEach(bits, [&](std::size_t i) { values[i] = Combined(rows[i]); });
    MarkPresent(block, buffer, at, bits);
  }

 private:
  static Stored Get(R r) { return {(r.measurement->GetDOPs().*tenths)()...}; }
  static double Combined(const Stored& stored) {
    return std::apply([](auto... each) { return Dilution::Combined(each...); }, stored);
  }
};

/// Columns of flags: `flags(block)` are the rows for which they are true.
template <auto present, auto flags>
struct OfFlag {
  using Rows = Nothing;

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

/// The texts or lists of the rows of a block, one after the other; empty where there is none.
template <class Element, std::size_t largest>
class LongRowsC {
 public:
  /// Where row `row` begins. There is room for `largest` elements and `kSpare` after them, which
  /// may be overwritten.
  Element* At(std::size_t row) { return elements_.data() + ends_[row]; }
  /// Row `row` has `size` elements, which have been written to `At(row)`.
  void Take(std::size_t row, std::size_t size) {
    ends_[row + 1] = static_cast<std::uint16_t>(ends_[row] + size);
  }
  void Fill(std::size_t count, GPSColumnBuffer& buffer, std::size_t at) const {
    std::int64_t* const offsets = buffer.offsets + at;
    const std::int64_t begin = offsets[0];
    std::copy_n(elements_.data(), ends_[count], static_cast<Element*>(buffer.values) + begin);
    for (std::size_t i = 1; i <= count; ++i) offsets[i] = begin + ends_[i];
  }

 private:
  static constexpr std::size_t kSpare = 16;
  static_assert(kBlock * largest <= std::numeric_limits<std::uint16_t>::max());

  std::array<std::uint16_t, kBlock + 1> ends_;  // the first is 0: that is where row 0 begins
  std::array<Element, kBlock * largest + kSpare> elements_;
};

/// Columns of texts: `write(record, to)` writes at most `kLargest` bytes to `to` and returns how
/// many. The texts of rows are written while their frames are decoded.
template <TextPlace place, std::size_t largest, auto present, auto write>
struct OfText {
  static constexpr TextPlace kPlace = place;
  static constexpr std::size_t kLargest = largest;
  using Rows = LongRowsC<char, largest>;

  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
      return;
    }
    char* const text = Functions::TextOf(to);
    Functions::ValueOf(to) = std::string_view(text, write(record.Get(), text));
  }
  static void Put(const RowView& r, Rows& rows, std::size_t row) {
    rows.Take(row, r.SizeOf(place));
  }
  static void Fill(const BlockC& block, const Rows& rows, GPSColumnBuffer& buffer, std::size_t at) {
    rows.Fill(block.GetCount(), buffer, at);
    MarkPresent(block, buffer, at, PresentIn<present>(block));
  }
};

/// Columns of times as text: `writer` of `Writers` writes `get(record)` where it is in range.
template <auto present, auto get, auto writer>
struct OfTime {
  static constexpr std::size_t kLargest = kTimeTextSize;
  using Rows = std::array<Vorlin::TimeC, kBlock>;

  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
      return;
    }
    char* const text = Functions::TextOf(to);
    (record.GetWriters().*writer).Write(TimeText::SinceEpoch(get(record.Get())), text);
    Functions::ValueOf(to) = std::string_view(text, kTimeTextSize);
  }
  static void Put(R r, Rows& rows, std::size_t row) { rows[row] = get(r); }
  static void Fill(const BlockC& block, const Rows& rows, GPSColumnBuffer& buffer, std::size_t at) {
    const Bits bits = PresentIn<present>(block);
    std::int64_t* const offsets = buffer.offsets + at;
    std::int64_t end = offsets[0];
    char* to = static_cast<char*>(buffer.values) + end;
    auto& from = block.GetWriters().*writer;
    ForEach(bits, [&](std::size_t i) {
      from.Write(TimeText::SinceEpoch(rows[i]), to);
      to += kTimeTextSize;
    });
    for (std::size_t i = 0; i < block.GetCount(); ++i) {
      offsets[i + 1] = end += (bits >> i & 1) != 0 ? kTimeTextSize : 0;
    }
    MarkPresent(block, buffer, at, bits);
  }
};

/// Columns of lists: `get(record)` is the list.
template <auto present, auto get>
struct OfList {
  using Rows = LongRowsC<std::uint16_t, GPSListBlock::kCapacity>;

  static void Ask(const BlockC& record, GPSColumnValueC& to) {
    if (PresentIn<present>(record) == 0) {
      Functions::ValueOf(to) = std::monostate();
      return;
    }
    const GPSListBlock& list = get(record.Get());
    std::uint16_t* const entries = Functions::ListOf(to);
    std::copy_n(list.entries, list.count, entries);
    Functions::ValueOf(to) = List(entries, list.count);
  }
  // Copies all entries, because a size that varies would be mispredicted.
  static void Put(R r, Rows& rows, std::size_t row) {
    const GPSListBlock& list = get(r);
    std::copy_n(list.entries, GPSListBlock::kCapacity, rows.At(row));
    rows.Take(row, list.count);
  }
  static void Fill(const BlockC& block, const Rows& rows, GPSColumnBuffer& buffer, std::size_t at) {
    rows.Fill(block.GetCount(), buffer, at);
    MarkPresent(block, buffer, at, PresentIn<present>(block));
  }
};

/// A row of the table: a column, apart from its functions, which are those of `OfType`.
template <class OfType>
struct Described {
  using Of = OfType;

  GPSColumn column;
};

template <auto present, auto get>
constexpr auto Number(const char* name, const char* unit, const char* description) {
  using Of = OfNumber<present, get>;
  return Described<Of>{
      {name, TypeFor<typename Of::Value>(), kIsOptional<present>, unit, description, 0, nullptr}};
}
template <auto get>
constexpr auto Number(const char* name, const char* unit, const char* description) {
  return Number<kAlways, get>(name, unit, description);
}
template <auto present, auto... tenths>
constexpr auto DilutionOf(const char* name, const char* description) {
  return Described<OfDilution<present, tenths...>>{
      {name, GPSColumnType::kFloat64, true, "", description, 0, nullptr}};
}

template <auto present, auto flags>
constexpr auto Flag(const char* name, const char* description) {
  return Described<OfFlag<present, flags>>{
      {name, GPSColumnType::kBool, kIsOptional<present>, "", description, 0, nullptr}};
}
template <auto flags>
constexpr auto Flag(const char* name, const char* description) {
  return Flag<kAlways, flags>(name, description);
}

template <class Of>
constexpr auto TextBy(const char* name, const char* description) {
  static_assert(Of::kLargest <= GPSColumnValueC::kLargestText);
  return Described<Of>{{name, GPSColumnType::kText, true, "", description, Of::kLargest, nullptr}};
}
template <TextPlace place, std::size_t largest, auto present, auto write>
constexpr auto Text(const char* name, const char* description) {
  return TextBy<OfText<place, largest, present, write>>(name, description);
}
template <auto present, auto get, auto writer>
constexpr auto Time(const char* name, const char* description) {
  return TextBy<OfTime<present, get, writer>>(name, description);
}

template <auto present, auto get>
constexpr auto ListOf(const char* name, const char* description) {
  static_assert(GPSListBlock::kCapacity == GPSColumnValueC::kLargestList);
  constexpr std::size_t kLargest = GPSListBlock::kCapacity * sizeof(std::uint16_t);
  return Described<OfList<present, get>>{
      {name, GPSColumnType::kUInt16List, true, "", description, kLargest, nullptr}};
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
/// As `GetSystem1Pair`: the total pair if there is no information per system.
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

template <Trait trait>
Bits With(const BlockC& block) {
  return block.With<trait>();
}

/// The rows whose dilutions are set and available.
template <Trait... available>
Bits HasDilutions(const BlockC& block) {
  return (block.WithSet(ImplC::kHasDOPs) & ... & block.With<available>());
}
constexpr auto kHTenths = &GPSDOPsImplC::GetHDOPTenths;
constexpr auto kVTenths = &GPSDOPsImplC::GetVDOPTenths;
constexpr auto kTTenths = &GPSDOPsImplC::GetTDOPTenths;

template <std::size_t axis>
double Component(R r) {
  double vector[3] = {};
  r.measurement->GetVector(vector);
  return vector[axis];
}

Vorlin::TimeC TimeA(R r) { return r.measurement->GetTimeA(); }

template <std::size_t capacity, auto get>
std::size_t WriteText(R r, char* to) {
  return TextColumn::Write((r.measurement->*get)(), capacity, to);
}

// `EncodeName` encodes each unit on its own, so surrogates are the only sequences that are not
// valid UTF-8. They all begin with this byte.
constexpr char kSurrogateLead = '\xED';
std::size_t WriteName(R r, char* to) {
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

/// Reads the fields of a frame, but writes its texts as UTF-8 and leaves them empty in the blocks.
class RowCursorC : public RecordFrame::FrameCursorC {
 public:
  /// `places` has room for the longest texts and 16 bytes more.
  RowCursorC(RecordFrame::Bytes payload, const std::array<char*, kTexts>& places, RowView& row)
      : FrameCursorC(payload), places_(places), row_(row) {}

  void BeginBlock(RecordFrame::Block block) { block_ = block; }

  template <std::size_t N>
  void Units(RecordFrame::Field field, char16_t (&units)[N]) {
#if defined(__SSE2__)
    // Nearly every name is ASCII and has fewer than sixteen units.
    if (WriteAscii(TextPlace::kName, 16)) {
      units[0] = 0;
      return Ignored(sizeof(units));
    }
#endif
    FrameCursorC::Units(field, units);
  }

  template <std::size_t N>
  void Text(RecordFrame::Field field, char16_t (&text)[N]) {
    const TextPlace place = PlaceOf(block_);
#if defined(__SSE2__)
    if (WriteAscii(place, N)) {
      text[0] = 0;
      return Ignored((row_.SizeOf(place) + 1) * sizeof(char16_t));
    }
#endif
    FrameCursorC::Text(field, text);
    if (Ok()) Take(place, TextColumn::Write(text, N, At(place)));
    text[0] = 0;
  }

 private:
  static TextPlace PlaceOf(RecordFrame::Block block) {
    switch (block) {
      case RecordFrame::Block::kTextA:
        return TextPlace::kA;
      case RecordFrame::Block::kTextB:
        return TextPlace::kB;
      case RecordFrame::Block::kTextC:
        return TextPlace::kC;
      default:
        return TextPlace::kD;
    }
  }

  char* At(TextPlace place) const { return places_[static_cast<std::size_t>(place)]; }
  void Take(TextPlace place, std::size_t size) {
    row_.textSizes[static_cast<std::size_t>(place)] = static_cast<std::uint8_t>(size);
  }

#if defined(__SSE2__)
  /// Writes a text if it is ASCII and has a terminator among its first `most` units.
  bool WriteAscii(TextPlace place, std::size_t most) {
    constexpr std::size_t kStep = 16;  // that of `PackAscii`
    const RecordFrame::Bytes rest = Rest();
    const std::size_t capacity =
        std::min(rest.size() / sizeof(char16_t), (most + kStep - 1) / kStep * kStep);
    const auto [size, isWhole] = TextColumn::PackAscii(rest.data(), capacity, At(place));
    if (!isWhole || size >= most) return false;
    Take(place, size);
    return true;
  }
#endif

  RecordFrame::Block block_ = RecordFrame::Block::kTimes;
  const std::array<char*, kTexts>& places_;
  RowView& row_;
};

/// Decodes a frame whose checksum is right.
/// \return whether all blocks fit.
// Flattened, so that the cursor is kept in registers.
[[gnu::flatten, gnu::noinline]] bool DecodeRow(RecordFrame::Bytes frame,
                                               const std::array<char*, kTexts>& places,
                                               GPSMeasDataImplC& measurement,
                                               GPSRecordFileInfo& info, RowView& row) {
  RowCursorC in(frame.subspan(RecordFrame::kHeaderSize,
                              frame.size() - RecordFrame::kHeaderSize - RecordFrame::kChecksumSize),
                places, row);
  if (RecordFrame::ReadPayload(in, RecordFrame::Target{measurement, info})) return false;
  constexpr auto kName = static_cast<std::size_t>(TextPlace::kName);
  if (info.name[0] != 0) {  // it is not ASCII or is long
    row.textSizes[kName] = static_cast<std::uint8_t>(WriteName(row, places[kName]));
  }
  return true;
}

// The longest texts: three bytes for each unit before the terminator; for the name, its own size.
constexpr std::size_t kLargestText = 3 * (ImplC::kTextUnits - 1);
constexpr std::size_t kLargestTextD = 3 * (ImplC::kTextDUnits - 1);
constexpr std::size_t kLargestName = sizeof(GPSRecordFileInfo::name);
static_assert(kLargestText == GPSColumnValueC::kLargestText);

// The table. Each row: when the value is present, if it can be absent, and how it is read; name,
// unit and description.
constexpr std::tuple kTable{
    Number<[](R r) { return r.offset; }>("offset", "byte", "Where the frame begins in the source"),
    Number<[](R r) { return static_cast<std::uint16_t>(r.size); }>(
        "size", "byte", "The size of the frame, including header and checksum"),

    Text<TextPlace::kName, kLargestName, With<Trait::kHasName>, WriteName>(
        "name", "The name, absent when it is empty"),
    Number<[](R r) { return r.info->number; }>("number", "",
                                               "The number that is stored with the name"),
    Flag<With<Trait::kIsKindZero>>("kind_zero", "Whether the frame has a kind byte that is 0"),
    Flag<With<Trait::kIsKindNonZero>>("kind_non_zero",
                                      "Whether the frame has a kind byte that is not 0"),

    Number<[](R r) { return r.measurement->GetTimeA().week; }>(
        "gps_week", "week", "Time A as stored: the GPS week, counted from 6 January 1980"),
    Number<[](R r) { return r.measurement->GetTimeA().timeOfWeek; }>(
        "time_of_week", "ms", "Time A as stored: the time since the start of the GPS week"),
    Time<With<Trait::kHasTime>, TimeA, &Writers::gps>(
        "time_gps",
        "Time A in GPS time, in ISO 8601, absent when the time of week is out of range"),
    Time<With<Trait::kHasTime>, TimeA, &Writers::utc>(
        "time_utc", "Time A in UTC, in ISO 8601, absent when the time of week is out of range"),
    Number<[](R r) { return r.measurement->GetTimeB().timeOfWeek; }>(
        "time_b_of_week", "ms", "Time B as stored: the time since the start of a GPS week"),
    Number<With<Trait::kHasExtraTime>, [](R r) { return ExtraTime(r).week; }>(
        "extra_gps_week", "week", "The extra time as stored: the GPS week"),
    Number<With<Trait::kHasExtraTime>, [](R r) { return ExtraTime(r).timeOfWeek; }>(
        "extra_time_of_week", "ms",
        "The extra time as stored: the time since the start of the GPS week"),
    Time<With<Trait::kHasExtraTimeInRange>, ExtraTime, &Writers::gps>(
        "extra_time_gps",
        "The extra time in GPS time, in ISO 8601, absent when the time of week is out of range"),
    Time<With<Trait::kHasExtraTimeInRange>, ExtraTime, &Writers::utc>(
        "extra_time_utc",
        "The extra time in UTC, in ISO 8601, absent when the time of week is out of range"),

    Flag<HasStatus<ImplC::kStatusBit0>>("status_bit_0", "Status bit 0"),
    Flag<HasStatus<ImplC::kStatusBit1>>("status_bit_1", "Status bit 1"),
    Flag<HasStatus<ImplC::kStatusBit2>>("status_bit_2", "Status bit 2"),
    Flag<HasStatus<ImplC::kStatusBit3>>("status_bit_3", "Status bit 3"),
    Flag<IsSystem1Used>("system_1_used",
                        "Whether system 1 is used; true if there is no information per system"),
    Flag<HasSystem<ImplC::kSystem2>>("system_2_used", "Whether system 2 is used"),
    Flag<HasSystem<ImplC::kSystem3>>("system_3_used", "Whether system 3 is used"),

    Number<IsSet<ImplC::kHasAntennaHeight>, [](R r) { return AntennaHeight(r).first; }>(
        "antenna_height", "m", "The antenna height as measured, vertical or slant"),
    Flag<IsSet<ImplC::kHasAntennaHeight>, With<Trait::kIsHeightVertical>>(
        "antenna_is_vertical", "Whether the antenna height was measured vertically"),
    Number<IsSet<ImplC::kHasAntennaHeight>,
           [](R r) { return r.measurement->GetAntennaHeight().GetHorizontalOffset(); }>(
        "antenna_horizontal_offset", "m",
        "The distance from the antenna axis to the point to which a slant height is measured"),
    Number<IsSet<ImplC::kHasAntennaHeight>,
           [](R r) { return r.measurement->GetAntennaHeight().GetVerticalHeight(); }>(
        "antenna_vertical_height", "m", "The antenna height reduced to the vertical"),

    Number<With<Trait::kHasValue0>, [](R r) { return r.measurement->GetValue(0); }>(
        "value_0", "", "The first of the two values"),
    Number<With<Trait::kHasValue1>, [](R r) { return r.measurement->GetValue(1); }>(
        "value_1", "", "The second of the two values"),

    DilutionOf<HasDilutions<Trait::kHasHDOP>, kHTenths>(
        "hdop", "Horizontal dilution of precision, absent when not available"),
    DilutionOf<HasDilutions<Trait::kHasVDOP>, kVTenths>(
        "vdop", "Vertical dilution of precision, absent when not available"),
    DilutionOf<HasDilutions<Trait::kHasTDOP>, kTTenths>(
        "tdop", "Time dilution of precision, absent when not available"),
    DilutionOf<HasDilutions<Trait::kHasHDOP, Trait::kHasVDOP>, kHTenths, kVTenths>(
        "pdop", "Position dilution of precision, computed from hdop and vdop"),
    DilutionOf<HasDilutions<Trait::kHasHDOP, Trait::kHasVDOP, Trait::kHasTDOP>, kHTenths, kVTenths,
               kTTenths>("gdop",
                         "Geometric dilution of precision, computed from hdop, vdop and tdop"),

    Number<IsSet<ImplC::kHasWord16>,
           [](R r) {
             std::uint16_t word = 0;
             r.measurement->GetWord16(word);
             return word;
           }>("word_16", "", "The 16-bit word"),

    Number<IsSet<ImplC::kHasTotalPair>,
           [](R r) { return r.measurement->GetStoredTotalPair().first; }>(
        "total_first", "", "The first of the total pair of counters"),
    Number<IsSet<ImplC::kHasTotalPair>,
           [](R r) { return r.measurement->GetStoredTotalPair().second; }>(
        "total_second", "", "The second of the total pair of counters"),
    Number<HasSystem1Pair, [](R r) { return System1Pair(r).first; }>(
        "system_1_first", "",
        "The first of the pair of counters of system 1, or of the total pair if there is no "
        "information per system"),
    Number<HasSystem1Pair, [](R r) { return System1Pair(r).second; }>(
        "system_1_second", "",
        "The second of the pair of counters of system 1, or of the total pair if there is no "
        "information per system"),
    Number<HasSystem<ImplC::kSystem2>,
           [](R r) { return r.measurement->GetStoredSystem2Pair().first; }>(
        "system_2_first", "", "The first of the pair of counters of system 2"),
    Number<HasSystem<ImplC::kSystem2>,
           [](R r) { return r.measurement->GetStoredSystem2Pair().second; }>(
        "system_2_second", "", "The second of the pair of counters of system 2"),
    Number<HasSystem<ImplC::kSystem3>,
           [](R r) { return r.measurement->GetStoredSystem3Pair().first; }>(
        "system_3_first", "", "The first of the pair of counters of system 3"),
    Number<HasSystem<ImplC::kSystem3>,
           [](R r) { return r.measurement->GetStoredSystem3Pair().second; }>(
        "system_3_second", "", "The second of the pair of counters of system 3"),

    Number<IsSet<ImplC::kHasVector>, Component<0>>("vector_x", "m",
                                                   "The vector: its first component"),
    Number<IsSet<ImplC::kHasVector>, Component<1>>("vector_y", "m",
                                                   "The vector: its second component"),
    Number<IsSet<ImplC::kHasVector>, Component<2>>("vector_z", "m",
                                                   "The vector: its third component"),

    Flag<With<Trait::kHasFlagA>>("flag_a", "Flag A"),
    Number<[](R r) { return r.measurement->GetValueB(); }>("value_b", "", "Value B"),
    Number<IsSet<ImplC::kHasValueC>, [](R r) { return r.measurement->GetValueC(); }>(
        "value_c", "", "Value C, absent when it is 0"),
    Text<TextPlace::kA, kLargestText, With<Trait::kHasTextA>,
         WriteText<ImplC::kTextUnits, &ImplC::GetTextA>>("text_a",
                                                         "Text A, absent when it is empty"),
    Text<TextPlace::kB, kLargestText, With<Trait::kHasTextB>,
         WriteText<ImplC::kTextUnits, &ImplC::GetTextB>>("text_b",
                                                         "Text B, absent when it is empty"),
    Number<[](R r) { return r.measurement->GetValueD(); }>("value_d", "", "Value D"),
    Text<TextPlace::kC, kLargestText, With<Trait::kHasTextC>,
         WriteText<ImplC::kTextUnits, &ImplC::GetTextC>>("text_c",
                                                         "Text C, absent when it is empty"),
    Flag<With<Trait::kHasFlagE>>("flag_e", "Flag E"),
    Text<TextPlace::kD, kLargestTextD, With<Trait::kHasTextD>,
         WriteText<ImplC::kTextDUnits, &ImplC::GetTextD>>("text_d",
                                                          "Text D, absent when it is empty"),
    Number<[](R r) { return r.measurement->GetValueF(); }>("value_f", "", "Value F"),
    Number<[](R r) { return r.measurement->GetValueG(); }>("value_g", "", "Value G"),
    Number<IsSet<ImplC::kHasValueH>, [](R r) { return r.measurement->GetValueH(); }>("value_h", "",
                                                                                     "Value H"),
    Number<IsSet<ImplC::kHasValueI>, [](R r) { return r.measurement->GetValueI(); }>("value_i", "",
                                                                                     "Value I"),

    Number<IsSet<ImplC::kHasListBlock>, [](R r) { return r.measurement->GetListBlock()->head; }>(
        "list_head", "", "The list: its head value"),
    ListOf<IsSet<ImplC::kHasListBlock>,
           [](R r) -> const GPSListBlock& { return *r.measurement->GetListBlock(); }>(
        "list_entries", "The list: its entries"),
};

template <std::size_t column>
using OfColumn = typename std::tuple_element_t<column, decltype(kTable)>::Of;
constexpr std::size_t kColumnCount = std::tuple_size_v<decltype(kTable)>;
constexpr auto kEachColumn = std::make_index_sequence<kColumnCount>();

template <std::size_t... column>
auto EmptyValues(std::index_sequence<column...>) -> std::tuple<typename OfColumn<column>::Rows...>;

struct Values {
  decltype(EmptyValues(kEachColumn)) ofColumns;
};

template <std::size_t column>
void PutColumn(const RowView& record, Values& values, std::size_t row) {
  using Of = OfColumn<column>;
  if constexpr (!std::is_same_v<typename Of::Rows, Nothing>) {
    Of::Put(record, std::get<column>(values.ofColumns), row);
  }
}

template <std::size_t column>
void FillColumn(const BlockC& block, GPSColumnBuffer& buffer, std::size_t at) {
  using Of = OfColumn<column>;
  if constexpr (std::is_same_v<typename Of::Rows, Nothing>) {
    Of::Fill(block, buffer, at);
  } else {
    Of::Fill(block, std::get<column>(block.GetValues().ofColumns), buffer, at);
  }
}

template <std::size_t... column>
constexpr std::array<Functions, kColumnCount> AllFunctions(std::index_sequence<column...>) {
  return {Functions{&OfColumn<column>::Ask, &PutColumn<column>, &FillColumn<column>}...};
}
constexpr std::array<Functions, kColumnCount> kFunctions = AllFunctions(kEachColumn);

// With more columns than this, storing the values of all columns is faster than calling a function
// for each of them.
constexpr std::size_t kFew = 12;

/// Where the texts of row `row` are to be written.
template <std::size_t... column>
std::array<char*, kTexts> PlacesOf(Values& values, std::size_t row,
                                   std::index_sequence<column...>) {
  std::array<char*, kTexts> places;
  const auto set = [&]<std::size_t at>(std::integral_constant<std::size_t, at>) {
    using Of = OfColumn<at>;
    if constexpr (requires { Of::kPlace; }) {
      places[static_cast<std::size_t>(Of::kPlace)] = std::get<at>(values.ofColumns).At(row);
    }
  };
  (set(std::integral_constant<std::size_t, column>()), ...);
  return places;
}

/// Puts the values of rows for the columns of some buffers.
class PutterC {
 public:
  explicit PutterC(std::span<const GPSColumnBuffer> buffers) : count_(buffers.size()) {
    if (count_ > kFew) return;
    std::transform(buffers.begin(), buffers.end(), functions_.begin(),
                   [](const GPSColumnBuffer& buffer) { return buffer.column->functions->put; });
  }

  void Put(const RowView& r, Values& values, std::size_t row) const {
    if (count_ > kFew) return PutAll(r, values, row, kEachColumn);
    for (std::size_t i = 0; i < count_; ++i) functions_[i](r, values, row);
  }

 private:
  template <std::size_t... column>
  static void PutAll(const RowView& r, Values& values, std::size_t row,
                     std::index_sequence<column...>) {
    (PutColumn<column>(r, values, row), ...);
  }

  std::size_t count_;
  std::array<Functions::Put, kFew> functions_;
};

template <std::size_t... column>
constexpr std::array<GPSColumn, kColumnCount> WithFunctions(std::index_sequence<column...>) {
  std::array<GPSColumn, kColumnCount> columns = {std::get<column>(kTable).column...};
  ((columns[column].functions = &kFunctions[column]), ...);
  return columns;
}
constexpr std::array<GPSColumn, kColumnCount> kColumns = WithFunctions(kEachColumn);

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
  explicit State(GPSRecordReaderC& from) : reader(from) {}

  void Stage(std::size_t most, const PutterC& putter, std::size_t& staged);

  GPSRecordReaderC& reader;
  std::uint64_t leftOut = 0;
  Writers writers;
  GPSMeasDataImplC measurement;  // of the current record
  GPSRecordFileInfo info;
  Presence presence;
  Values values;
};

// Decodes up to `most` records whose outcome is `kDone`, and counts them in `staged`.
void GPSColumnReaderC::State::Stage(std::size_t most, const PutterC& putter, std::size_t& staged) {
  GPSRecordEntry entry;
  while (staged < most && reader.NextEntry(entry)) {
    if (!entry.IsMeasurement()) continue;
    // Keeps fields that every frame sets, and fields whose columns have no value while they are
    // absent.
    RecordColumns::Renewal::Renew(measurement);
    info.number = 0;  // the other fields are never set
    info.flags = 0;
    std::memset(info.name, 0, sizeof(info.name));
    RowView record{{&measurement, &info, entry.offset, entry.size}};
    const std::array<char*, kTexts> places = PlacesOf(values, staged, kEachColumn);
    if (DecodeRow(reader.GetBytes(), places, measurement, info, record)) {
      presence.Put(staged, record);
      putter.Put(record, values, staged);
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

// Loads the memory that the next block will be written to while its frames are decoded. There are
// more columns than sequences of addresses that a processor detects by itself.
void FetchNextBlock(const GPSColumnBuffer& buffer, std::size_t rows, std::size_t staged,
                    std::size_t capacity) {
  constexpr std::size_t kLine = 64;
  const std::size_t next = rows + staged;
  if (capacity - next < kBlock) return;
  const auto fetch = [](const std::uint8_t* begin, std::size_t size) {
    for (std::size_t i = 0; i < size; i += kLine) __builtin_prefetch(begin + i, 1);
  };
  const auto* const values = static_cast<const std::uint8_t*>(buffer.values);
  const GPSColumnType type = buffer.column->type;
  if (!IsLong(*buffer.column)) {
    return fetch(values + BytesOfValues(type, next), BytesOfValues(type, kBlock));
  }
  fetch(reinterpret_cast<const std::uint8_t*>(buffer.offsets + next),
        kBlock * sizeof(std::int64_t));
  // As many bytes as this block has.
  const std::size_t unit = type == GPSColumnType::kText ? 1 : sizeof(std::uint16_t);
  const std::size_t begin = static_cast<std::size_t>(buffer.offsets[rows]) * unit;
  const std::size_t end = static_cast<std::size_t>(buffer.offsets[next]) * unit;
  fetch(values + end, std::min(end - begin, buffer.size - end));
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
    const BlockC block(state.presence, state.values, staged, state.writers);
    for (GPSColumnBuffer& buffer : buffers) {
      buffer.column->functions->fill(block, buffer, rows);
      FetchNextBlock(buffer, rows, staged, capacity);
    }
    rows += staged;
  };
  const PutterC putter(buffers);
  while (rows < capacity) {
    const std::size_t most =
        RowsWithRoom(buffers, rows, std::min(kBlock - rows % kBlock, capacity - rows));
    if (most == 0) break;
    std::size_t staged = 0;
    try {
      state.Stage(most, putter, staged);
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
