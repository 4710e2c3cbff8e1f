#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>

#include <surveydata/c_interface/boundary.h>
#include <surveydata/c_interface/measurement.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>

using SDI::GPSAntHeightImplC;
using SDI::GPSCounterPair;
using SDI::GPSDOPsImplC;
using SDI::GPSListBlock;
using SDI::GPSMeasDataImplC;
using SDI::GPSRecordField;
using SDI::GPSRecordFileInfo;
using SDI::CInterface::Guarded;
using SDI::CInterface::HasKnownSize;

namespace {

using Struct = surveydata_measurement;

static_assert(sizeof(Struct::text_a) == GPSMeasDataImplC::kTextUnits * sizeof(char16_t));
static_assert(sizeof(Struct::text_d) == GPSMeasDataImplC::kTextDUnits * sizeof(char16_t));
static_assert(std::size(Struct().list_entries) == GPSListBlock::kCapacity);
static_assert(sizeof(Struct::name) > sizeof(GPSRecordFileInfo::name));
static_assert(SURVEYDATA_DOP_NOT_AVAILABLE == SDI::DOP_NOT_AVAILABLE);
static_assert(SURVEYDATA_LONGEST_FRAME == SDI::GPSRecordEntry::kLongestMeasurement);

constexpr std::uint16_t kSetBits =
    SURVEYDATA_HAS_ANTENNA_HEIGHT | SURVEYDATA_HAS_DOPS | SURVEYDATA_HAS_TOTAL_PAIR |
    SURVEYDATA_HAS_VECTOR | SURVEYDATA_HAS_WORD16 | SURVEYDATA_HAS_SYSTEMS |
    SURVEYDATA_HAS_VALUE_C | SURVEYDATA_HAS_VALUE_H | SURVEYDATA_HAS_VALUE_I | SURVEYDATA_HAS_LIST;
constexpr std::uint16_t kStatusBits =
    SURVEYDATA_STATUS_BIT_0 | SURVEYDATA_STATUS_BIT_1 | SURVEYDATA_STATUS_BIT_2 |
    SURVEYDATA_STATUS_BIT_3 | SURVEYDATA_SYSTEM_1 | SURVEYDATA_SYSTEM_2 | SURVEYDATA_SYSTEM_3;
static_assert(SURVEYDATA_HAS_ANTENNA_HEIGHT == GPSMeasDataImplC::kHasAntennaHeight &&
              SURVEYDATA_HAS_DOPS == GPSMeasDataImplC::kHasDOPs &&
              SURVEYDATA_HAS_TOTAL_PAIR == GPSMeasDataImplC::kHasTotalPair &&
              SURVEYDATA_HAS_VECTOR == GPSMeasDataImplC::kHasVector &&
              SURVEYDATA_HAS_WORD16 == GPSMeasDataImplC::kHasWord16 &&
              SURVEYDATA_HAS_SYSTEMS == GPSMeasDataImplC::kHasSystems &&
              SURVEYDATA_HAS_VALUE_C == GPSMeasDataImplC::kHasValueC &&
              SURVEYDATA_HAS_VALUE_H == GPSMeasDataImplC::kHasValueH &&
              SURVEYDATA_HAS_VALUE_I == GPSMeasDataImplC::kHasValueI &&
              SURVEYDATA_HAS_LIST == GPSMeasDataImplC::kHasListBlock);
static_assert(SURVEYDATA_STATUS_BIT_0 == GPSMeasDataImplC::kStatusBit0 &&
              SURVEYDATA_STATUS_BIT_1 == GPSMeasDataImplC::kStatusBit1 &&
              SURVEYDATA_STATUS_BIT_2 == GPSMeasDataImplC::kStatusBit2 &&
              SURVEYDATA_STATUS_BIT_3 == GPSMeasDataImplC::kStatusBit3 &&
              SURVEYDATA_SYSTEM_1 == GPSMeasDataImplC::kSystem1 &&
              SURVEYDATA_SYSTEM_2 == GPSMeasDataImplC::kSystem2 &&
              SURVEYDATA_SYSTEM_3 == GPSMeasDataImplC::kSystem3);

void Store(GPSCounterPair pair, std::uint8_t (&to)[2]) {
  to[0] = pair.first;
  to[1] = pair.second;
}

// Copies the whole array: a new measurement has zeros after the terminator.
template <std::size_t N>
void Store(const char16_t* text, std::uint16_t (&to)[N]) {
  std::memcpy(to, text, sizeof(to));
}

void Store(const GPSMeasDataImplC& from, Struct& to) {
  to.time_a_of_week = from.GetTimeA().timeOfWeek;
  to.time_b_of_week = from.GetTimeB().timeOfWeek;
  to.time_a_week = from.GetTimeA().week;
  to.time_b_week = from.GetTimeB().week;
  to.extra_time_count = from.GetExtraTimeCount();
  from.GetExtraTime(to.extra_time_week, to.extra_time_of_week);
  to.value_count = from.GetValueCount();
  to.values[0] = from.GetValue(0);
  to.values[1] = from.GetValue(1);
  to.set_mask = from.GetSetMask();
  to.status_mask = from.GetStatusMask();
  const GPSAntHeightImplC& antenna = from.GetAntennaHeight();
  bool isVertical = true;
  antenna.GetHeight(to.antenna_height, isVertical);
  to.antenna_is_vertical = isVertical ? 1 : 0;
  to.antenna_horizontal_offset = antenna.GetHorizontalOffset();
  to.hdop = from.GetDOPs().GetHDOPTenths();
  to.vdop = from.GetDOPs().GetVDOPTenths();
  to.tdop = from.GetDOPs().GetTDOPTenths();
  from.GetWord16(to.word16);
  Store(from.GetStoredTotalPair(), to.total_pair);
  Store(from.GetStoredSystem1Pair(), to.system_1_pair);
  Store(from.GetStoredSystem2Pair(), to.system_2_pair);
  Store(from.GetStoredSystem3Pair(), to.system_3_pair);
  from.GetVector(to.vector);
  to.flag_a = from.GetFlagA();
  to.flag_e = from.GetFlagE();
  to.value_b = from.GetValueB();
  to.value_c = from.GetValueC();
  to.value_d = from.GetValueD();
  to.value_f = from.GetValueF();
  to.value_g = from.GetValueG();
  to.value_h = from.GetValueH();
  to.value_i = from.GetValueI();
  Store(from.GetTextA(), to.text_a);
  Store(from.GetTextB(), to.text_b);
  Store(from.GetTextC(), to.text_c);
  Store(from.GetTextD(), to.text_d);
  const GPSListBlock& list = *from.GetListBlock();
  to.list_head = list.head;
  to.list_count = list.count;
  std::copy(std::begin(list.entries), std::end(list.entries), to.list_entries);
}

// --- From a struct of the caller. A value that the setters cannot produce is refused with its
// field; the encoder refuses what a frame cannot store.

template <std::size_t N>
bool LoadText(const std::uint16_t (&from)[N], GPSMeasDataImplC& to,
              void (GPSMeasDataImplC::*set)(const char16_t*)) {
  char16_t text[N];
  std::copy_n(from, N, text);
  if (std::find(text, text + N, u'\0') == text + N) return false;
  (to.*set)(text);
  return true;
}

GPSRecordField LoadTexts(const Struct& from, GPSMeasDataImplC& to) {
  if (!LoadText(from.text_a, to, &GPSMeasDataImplC::SetTextA)) return GPSRecordField::kTextA;
  if (!LoadText(from.text_b, to, &GPSMeasDataImplC::SetTextB)) return GPSRecordField::kTextB;
  if (!LoadText(from.text_c, to, &GPSMeasDataImplC::SetTextC)) return GPSRecordField::kTextC;
  if (!LoadText(from.text_d, to, &GPSMeasDataImplC::SetTextD)) return GPSRecordField::kTextD;
  return GPSRecordField::kNone;
}

// The pair of system 2 or 3. The setter marks it as present unless the second value is 0, so a pair
// that is present is set twice.
GPSRecordField LoadLaterSystem(const std::uint8_t (&pair)[2], bool isPresent, GPSRecordField field,
                               GPSMeasDataImplC& to,
                               void (GPSMeasDataImplC::*set)(std::uint8_t, std::uint8_t)) {
  if (isPresent) (to.*set)(pair[0], 1);
  (to.*set)(pair[0], pair[1]);
  return !isPresent && pair[1] != 0 ? field : GPSRecordField::kNone;
}

GPSRecordField LoadSystems(const Struct& from, GPSMeasDataImplC& to) {
  const auto has = [&](std::uint16_t system) { return (from.status_mask & system) != 0; };
  if (has(SURVEYDATA_SYSTEM_1)) to.SetSystem1Pair(from.system_1_pair[0], from.system_1_pair[1]);
  const GPSRecordField refused =
      LoadLaterSystem(from.system_2_pair, has(SURVEYDATA_SYSTEM_2), GPSRecordField::kSystem2Pair,
                      to, &GPSMeasDataImplC::SetSystem2Pair);
  if (refused != GPSRecordField::kNone) return refused;
  return LoadLaterSystem(from.system_3_pair, has(SURVEYDATA_SYSTEM_3), GPSRecordField::kSystem3Pair,
                         to, &GPSMeasDataImplC::SetSystem3Pair);
}

void LoadStatus(std::uint16_t status, GPSMeasDataImplC& to) {
  if ((status & SURVEYDATA_STATUS_BIT_0) != 0) to.SetStatusBit0();
  if ((status & SURVEYDATA_STATUS_BIT_1) != 0) to.SetStatusBit1();
  if ((status & SURVEYDATA_STATUS_BIT_2) != 0) to.SetStatusBit2();
  if ((status & SURVEYDATA_STATUS_BIT_3) != 0) to.SetStatusBit3();
}

// The fields that are present by the set mask.
void LoadPresent(const Struct& from, GPSMeasDataImplC& to) {
  const auto has = [&](std::uint16_t bit) { return (from.set_mask & bit) != 0; };
  if (has(SURVEYDATA_HAS_ANTENNA_HEIGHT)) {
    to.SetAntennaHeight(GPSAntHeightImplC(from.antenna_height, from.antenna_is_vertical != 0,
                                          from.antenna_horizontal_offset));
  }
  if (has(SURVEYDATA_HAS_DOPS)) to.SetDOPs(GPSDOPsImplC(from.hdop, from.vdop, from.tdop));
  if (has(SURVEYDATA_HAS_TOTAL_PAIR)) to.SetTotalPair(from.total_pair[0], from.total_pair[1]);
  if (has(SURVEYDATA_HAS_VECTOR)) to.SetVector(from.vector);
  if (has(SURVEYDATA_HAS_WORD16)) to.SetWord16(from.word16);
  if (has(SURVEYDATA_HAS_VALUE_C)) to.SetValueC(from.value_c);
  if (has(SURVEYDATA_HAS_VALUE_H)) to.SetValueH(from.value_h);
  if (has(SURVEYDATA_HAS_VALUE_I)) to.SetValueI(from.value_i);
  if (has(SURVEYDATA_HAS_LIST)) {
    GPSListBlock list;
    list.head = from.list_head;
    list.count = from.list_count;
    std::copy(std::begin(from.list_entries), std::end(from.list_entries), list.entries);
    to.SetListBlock(list);
  }
}

// Returns the first field with a value that no measurement can have.
GPSRecordField Load(const Struct& from, GPSMeasDataImplC& to) {
  to.SetTimeA({from.time_a_week, from.time_a_of_week});
  to.SetTimeB({from.time_b_week, from.time_b_of_week});
  if (from.extra_time_count > 1) return GPSRecordField::kExtraTime;
  if (from.extra_time_count == 1) to.SetExtraTime(from.extra_time_week, from.extra_time_of_week);
  LoadStatus(from.status_mask, to);
  if (from.value_count > std::size(from.values)) return GPSRecordField::kValues;
  to.SetValues(from.values, from.value_count);
  LoadPresent(from, to);
  const GPSRecordField system = LoadSystems(from, to);
  if (system != GPSRecordField::kNone) return system;
  to.SetFlagA(from.flag_a);
  to.SetValueB(from.value_b);
  to.SetValueD(from.value_d);
  to.SetFlagE(from.flag_e);
  to.SetValueF(from.value_f);
  to.SetValueG(from.value_g);
  const GPSRecordField text = LoadTexts(from, to);
  if (text != GPSRecordField::kNone) return text;
  // Bits that contradict each other or the values: value C is 0, or a system lacks its own bit.
  if (to.GetSetMask() != from.set_mask) {
    const bool isValueC = ((to.GetSetMask() ^ from.set_mask) & SURVEYDATA_HAS_VALUE_C) != 0;
    return isValueC ? GPSRecordField::kValueC : GPSRecordField::kSystem1Pair;
  }
  return GPSRecordField::kNone;
}

// Whether members that are reserved for later versions are set.
bool HasReserved(const Struct& of) {
  return of.reserved != 0 ||
         std::any_of(std::begin(of.reserved_at_end), std::end(of.reserved_at_end),
                     [](std::uint16_t word) { return word != 0; });
}

GPSRecordField LoadInfo(const Struct& from, GPSRecordFileInfo& to) {
  to.number = from.number;
  to.flags = from.flags;
  const char* const end = std::find(std::begin(from.name), std::end(from.name), '\0');
  const auto length = static_cast<std::size_t>(end - from.name);
  if (length > sizeof(to.name)) return GPSRecordField::kName;
  std::copy_n(from.name, length, to.name);
  return GPSRecordField::kNone;
}

}  // namespace

void SDI::CInterface::Fill(const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
                           GPSRecordBlock block, surveydata_measurement& to) {
  to = {};
  to.struct_size = sizeof(to);
  to.block = static_cast<std::uint32_t>(block);
  to.flags = info.flags;
  to.number = info.number;
  std::copy(std::begin(info.name), std::end(info.name), to.name);
  Store(measurement, to);
}

surveydata_status SDI::CInterface::StatusOf(GPSRecordOutcome outcome) {
  switch (outcome) {
    case GPSRecordOutcome::kDone:
      return SURVEYDATA_OK;
    case GPSRecordOutcome::kNoMeasurement:
      return SURVEYDATA_NO_MEASUREMENT;
    case GPSRecordOutcome::kCut:
      return SURVEYDATA_CUT;
    case GPSRecordOutcome::kWrongChecksum:
      return SURVEYDATA_WRONG_CHECKSUM;
    case GPSRecordOutcome::kBlockDoesNotFit:
      break;
  }
  return SURVEYDATA_BLOCK_DOES_NOT_FIT;
}

surveydata_status surveydata_decode(const std::uint8_t* frame, std::size_t size,
                                    surveydata_measurement* measurement) {
  if (frame == nullptr || measurement == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  if (!HasKnownSize(*measurement)) return SURVEYDATA_WRONG_SIZE;
  return Guarded([&] {
    GPSMeasDataImplC decoded;
    GPSRecordFileInfo info;
    const SDI::GPSDecodeResult result = SDI::GPSRecordReaderC::Decode({frame, size}, decoded, info);
    const surveydata_status status = SDI::CInterface::StatusOf(result.outcome);
    if (status == SURVEYDATA_OK || status == SURVEYDATA_BLOCK_DOES_NOT_FIT) {
      SDI::CInterface::Fill(decoded, info, result.block, *measurement);
    }
    return status;
  });
}

surveydata_status surveydata_encode(const surveydata_measurement* measurement, std::uint8_t* frame,
                                    std::size_t capacity, std::size_t* size,
                                    std::uint32_t* refused_field) {
  if (measurement == nullptr || frame == nullptr || size == nullptr) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  if (!HasKnownSize(*measurement)) return SURVEYDATA_WRONG_SIZE;
  if ((measurement->set_mask & ~unsigned{kSetBits}) != 0 ||
      (measurement->status_mask & ~unsigned{kStatusBits}) != 0 || HasReserved(*measurement)) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  if (capacity < SURVEYDATA_LONGEST_FRAME) return SURVEYDATA_BUFFER_TOO_SMALL;
  return Guarded([&]() -> surveydata_status {
    GPSMeasDataImplC loaded;
    GPSRecordFileInfo info;
    SDI::GPSEncodeResult result;
    result.field = LoadInfo(*measurement, info);
    if (result.field == GPSRecordField::kNone) result.field = Load(*measurement, loaded);
    if (result.field != GPSRecordField::kNone) {
      result.outcome = SDI::GPSEncodeOutcome::kNoPlace;
    } else {
      std::array<std::uint8_t, SURVEYDATA_LONGEST_FRAME> made;
      result = SDI::GPSRecordWriterC::Encode(loaded, info, made);
      std::copy_n(made.begin(), result.size, frame);
    }
    *size = result.size;
    if (refused_field != nullptr) *refused_field = static_cast<std::uint32_t>(result.field);
    switch (result.outcome) {
      case SDI::GPSEncodeOutcome::kDone:
        return SURVEYDATA_OK;
      case SDI::GPSEncodeOutcome::kTooLong:
        return SURVEYDATA_TOO_LONG;
      case SDI::GPSEncodeOutcome::kNoPlace:
        break;
    }
    return SURVEYDATA_NO_PLACE;
  });
}
