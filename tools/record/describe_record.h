#ifndef SURVEYDATA_TOOLS_RECORD_DESCRIBE_RECORD_H_
#define SURVEYDATA_TOOLS_RECORD_DESCRIBE_RECORD_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <output/field_types.h>
#include <record/decoded_record.h>

/// \file
/// The only description of the fields of a measurement record, used for JSON and text. The
/// type of a value defines its meaning; each writer decides its format.

namespace Tool {

inline Pair ToPair(SDI::GPSCounterPair pair) { return {pair.first, pair.second}; }

/// The result of a getter of a pair.
inline OptionalPair AskPair(const SDI::GPSMeasDataImplC& measurement,
                            bool (SDI::GPSMeasDataImplC::*get)(std::uint8_t&, std::uint8_t&)
                                const) {
  Pair pair{};
  if ((measurement.*get)(pair[0], pair[1])) return pair;
  return {};
}

/// Calls `out.Begin(key)` and `out.End()` around groups and `out.Field(key, value, isSet)` for
/// every value. All stored values of the measurement are reported, whether they are set or not. A
/// group that begins with `Begin(key, false)` is empty and means "none".
template <class Writer>
void DescribeRecord(const DecodedRecord& record, Writer& out) {
  using ImplC = SDI::GPSMeasDataImplC;
  const ImplC& measurement = record.measurement;
  const auto isSet = [mask = measurement.GetSetMask()](std::uint16_t bit) {
    return (mask & bit) != 0;
  };
  const auto isSystemSet = [&](std::uint16_t bit) {
    return isSet(ImplC::kHasSystems) && (measurement.GetStatusMask() & bit) != 0;
  };
  const bool hasAntennaHeight = isSet(ImplC::kHasAntennaHeight);
  const bool hasDOPs = isSet(ImplC::kHasDOPs);
  const SDI::GPSAntHeightImplC& antenna = measurement.GetAntennaHeight();
  const SDI::GPSDOPsImplC& dops = measurement.GetDOPs();

  out.Field("offset", record.offset);
  out.Field("size", record.size);
  out.Field("result", record.result);

  out.Begin("info");
  out.Field("number", record.info.number);
  out.Field("nameHex", HexBytes{record.NameBytes()});
  out.Field("flags", Mask{record.info.flags});
  out.Field("name", std::u16string_view(record.Name()));
  out.End();

  out.Begin("measurement");
  out.Field("timeA", measurement.GetTimeA());
  out.Field("timeB", TimeOfWeek{measurement.GetTimeB().timeOfWeek});
  const std::uint8_t extraTimeCount = measurement.GetExtraTimeCount();
  Vorlin::TimeC extraTime;
  measurement.GetExtraTime(extraTime.week, extraTime.timeOfWeek);
  out.Field("extraTimeCount", extraTimeCount);
  out.Field("extraTime", extraTime, extraTimeCount != 0);
  out.Field("setMask", Mask{measurement.GetSetMask()});
  out.Field("statusMask", Mask{measurement.GetStatusMask()});

  out.Begin("antennaHeight");
  float height = 0.0F;
  bool isVertical = true;
  antenna.GetHeight(height, isVertical);
  out.Field("height", Metres{height}, hasAntennaHeight);
  out.Field("isVertical", isVertical, hasAntennaHeight);
  out.Field("horizontalOffset", Metres{antenna.GetHorizontalOffset()}, hasAntennaHeight);
  out.End();

  out.Field("valueCount", measurement.GetValueCount());
  out.Field("values", std::array{measurement.GetValue(0), measurement.GetValue(1)},
            measurement.GetValueCount() != 0);

  out.Begin("dops");
  out.Field("hdop", Tenths{dops.GetHDOPTenths()}, hasDOPs);
  out.Field("vdop", Tenths{dops.GetVDOPTenths()}, hasDOPs);
  out.Field("tdop", Tenths{dops.GetTDOPTenths()}, hasDOPs);
  out.End();

  std::uint16_t word16 = 0;
  measurement.GetWord16(word16);
  out.Field("word16", word16, isSet(ImplC::kHasWord16));
  out.Field("totalPair", ToPair(measurement.GetStoredTotalPair()), isSet(ImplC::kHasTotalPair));
  out.Field("system1Pair", ToPair(measurement.GetStoredSystem1Pair()),
            isSystemSet(ImplC::kSystem1));
  out.Field("system2Pair", ToPair(measurement.GetStoredSystem2Pair()),
            isSystemSet(ImplC::kSystem2));
  out.Field("system3Pair", ToPair(measurement.GetStoredSystem3Pair()),
            isSystemSet(ImplC::kSystem3));
  double vector[3] = {};
  measurement.GetVector(vector);
  out.Field("vector", std::array{vector[0], vector[1], vector[2]}, isSet(ImplC::kHasVector));
  out.Field("flagA", measurement.GetFlagA());
  out.Field("valueB", measurement.GetValueB());
  out.Field("valueC", measurement.GetValueC(), isSet(ImplC::kHasValueC));
  out.Field("textA", std::u16string_view(measurement.GetTextA()));
  out.Field("textB", std::u16string_view(measurement.GetTextB()));
  out.Field("valueD", measurement.GetValueD());
  out.Field("textC", std::u16string_view(measurement.GetTextC()));
  out.Field("flagE", measurement.GetFlagE());
  out.Field("textD", std::u16string_view(measurement.GetTextD()));
  out.Field("valueF", measurement.GetValueF());
  out.Field("valueG", measurement.GetValueG());
  out.Field("valueH", measurement.GetValueH(), isSet(ImplC::kHasValueH));
  out.Field("valueI", measurement.GetValueI(), isSet(ImplC::kHasValueI));

  const SDI::GPSListBlock& list = *measurement.GetListBlock();
  const bool hasList = isSet(ImplC::kHasListBlock);
  out.Begin("listBlock");
  out.Field("head", list.head, hasList);
  out.Field("count", list.count, hasList);
  out.Field("entries", std::span<const std::uint16_t>(list.entries, list.count), hasList);
  out.End();
  out.End();

  out.Begin("getters");
  out.Field("totalPair", AskPair(measurement, &ImplC::GetTotalPair));
  out.Field("system1Pair", AskPair(measurement, &ImplC::GetSystem1Pair));
  out.Field("system2Pair", AskPair(measurement, &ImplC::GetSystem2Pair));
  out.Field("system3Pair", AskPair(measurement, &ImplC::GetSystem3Pair));
  out.Field("system1Used", measurement.IsSystem1Used());
  out.Field("system2Used", measurement.IsSystem2Used());
  out.Field("system3Used", measurement.IsSystem3Used());
  out.Field("statusBits", std::array{measurement.IsStatusBit0(), measurement.IsStatusBit1(),
                                     measurement.IsStatusBit2(), measurement.IsStatusBit3()});
  out.Field("verticalHeight",
            hasAntennaHeight ? std::optional(Metres{antenna.GetVerticalHeight()}) : std::nullopt);
  out.Begin("dops", hasDOPs);
  out.Field("hdop", Dilution{dops.GetHDOP()});
  out.Field("vdop", Dilution{dops.GetVDOP()});
  out.Field("tdop", Dilution{dops.GetTDOP()});
  out.Field("pdop", Dilution{dops.GetPDOP()});
  out.Field("gdop", Dilution{dops.GetGDOP()});
  out.End();
  out.End();
}

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_DESCRIBE_RECORD_H_
