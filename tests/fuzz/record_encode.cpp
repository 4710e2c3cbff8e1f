// For arbitrary calls of a measurement's setters, and any info, encoding either gives a frame that
// reads back as what was set, or refuses a field.

#include <algorithm>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/gnss/round_trip.h"
#include "tests/gnss/stored_fields.h"

namespace {

using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileInfo;

std::u16string Text(Fuzz::InputC& in) {
  std::u16string text;
  for (std::size_t left = in.Below(90); left > 0; --left) {
    text += static_cast<char16_t>(1 + in.U8());
  }
  return text;
}

void Call(Fuzz::InputC& in, GPSMeasDataImplC& m, GPSRecordFileInfo& info) {
  switch (in.Below(32)) {
    case 0: {
      const std::uint16_t week = in.U16();
      return m.SetTimeA({week, in.Take<std::int32_t>()});
    }
    case 1: {
      const std::uint16_t week = in.U8();
      return m.SetTimeB({week, in.Take<std::int32_t>()});
    }
    case 2:
      return m.SetStatusBit0();
    case 3:
      return m.SetStatusBit1();
    case 4:
      return m.SetStatusBit2();
    case 5:
      return m.SetStatusBit3();
    case 6:
      info.flags = in.U8();
      return;
    case 7:
      info.number = in.Take<std::int32_t>();
      return;
    case 8: {
      const auto name = in.Bytes(in.Below(sizeof(info.name) + 1));
      std::fill(std::begin(info.name), std::end(info.name), '\0');
      std::copy(name.begin(), name.end(), info.name);
      return;
    }
    case 9: {
      const auto height = in.Take<float>();
      const auto offset = in.Flag() ? in.Take<float>() : 0.0F;
      return m.SetAntennaHeight(SDI::GPSAntHeightImplC(height, in.Flag(), offset));
    }
    case 10: {
      const std::uint16_t week = in.U16();
      return m.SetExtraTime(week, in.Take<std::int32_t>());
    }
    case 11:
      return m.SetWord16(in.U16());
    case 12: {
      const std::uint16_t values[] = {in.U16(), in.U16()};
      return m.SetValues(values, static_cast<std::uint8_t>(in.Below(4)));
    }
    case 13: {
      const std::uint16_t dops[] = {in.U16(), in.U16(), in.U16()};
      return m.SetDOPs(SDI::GPSDOPsImplC(dops[0], dops[1], dops[2]));
    }
    case 14: {
      const std::uint8_t first = in.U8();
      return m.SetTotalPair(first, in.U8());
    }
    case 15: {
      double vector[3];
      for (double& component : vector) {
        component = in.Flag() ? in.Take<double>() : double{in.Take<float>()};
      }
      return m.SetVector(vector);
    }
    case 16: {
      const std::uint8_t first = in.U8();
      return m.SetSystem1Pair(first, in.U8());
    }
    case 17: {
      const std::uint8_t first = in.U8();
      return m.SetSystem2Pair(first, in.U8());
    }
    case 18: {
      const std::uint8_t first = in.U8();
      return m.SetSystem3Pair(first, in.U8());
    }
    case 19:
      return m.SetFlagA(in.U8());
    case 20:
      return m.SetValueB(in.U16());
    case 21:
      return m.SetValueC(in.U16());
    case 22:
      return m.SetTextA(Text(in).c_str());
    case 23:
      return m.SetTextB(Text(in).c_str());
    case 24:
      return m.SetTextC(Text(in).c_str());
    case 25:
      return m.SetTextD(Text(in).c_str());
    case 26:
      return in.Flag() ? m.SetValueD(in.Take<std::int32_t>())
                       : m.SetValueG(in.Take<std::int32_t>());
    case 27:
      return m.SetFlagE(in.U8());
    case 28:
      return m.SetValueF(in.U8());
    case 29:
      return in.Flag() ? m.SetValueH(in.U16()) : m.SetValueI(in.U16());
    case 30: {
      SDI::GPSListBlock list;
      list.head = in.U16();
      list.count = in.U8();
      for (auto& entry : list.entries) entry = in.U8();
      return m.SetListBlock(list);
    }
    default:
      return m.Reset();
  }
}

}  // namespace

// Input: a byte for each call, and its arguments.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::InputC in({data, size});
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
  while (!in.IsEmpty()) Call(in, measurement, info);
  const auto [bytes, refusal] = TestSupport::EncodedOf(measurement, info);
  EXPECT_EQ(bytes.empty(), refusal.field != SDI::RecordFrame::RecordField::kNone);
  if (!bytes.empty()) TestSupport::ExpectReadsBack(bytes, measurement, info);
  return 0;
}
