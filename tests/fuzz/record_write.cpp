// A frame in an arbitrary record file is patched as the format's description says, byte by byte,
// and reads back as written.

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"
#include "tests/fuzz/sealed_frames.h"
#include "tests/gnss/record_model.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/same_info.h"

using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;
using TestSupport::StoredIn;

// Input: 1 byte of choices, 1 byte of offset, flags, number, the antenna height, 49 bytes of name,
// the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  const std::size_t offset = in.U8();
  GPSRecordFileInfo info = memory.Info(static_cast<std::uint32_t>(offset));
  info.flags = in.U8();
  info.number = in.Take<std::int32_t>();
  GPSMeasDataImplC measurement;
  const auto height = in.Take<float>();
  const auto across = in.Take<float>();
  if ((choices & 2) != 0) {
    measurement.SetAntennaHeight(SDI::GPSAntHeightImplC(height, (choices & 4) != 0, across));
  }
  const auto name = in.Bytes(sizeof(info.name));
  std::copy(name.begin(), name.end(), info.name);
  auto file = in.Rest();
  if ((choices & 1) != 0) Fuzz::SealIfWhole(file, offset);
  memory.Write(file.data(), file.size());

  const bool isGiven = (choices & 8) == 0;
  const auto stored = StoredIn(measurement);
  auto expected = file;
  const GPSRecordFileInfo before = info;
  const std::uint32_t result = RecordModel::Write(expected, isGiven ? &stored : nullptr, info);
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(isGiven ? &measurement : nullptr, &info), result);
  EXPECT_EQ(memory.Bytes(), expected);
  EXPECT_EQ(StoredIn(measurement), stored);
  TestSupport::ExpectSameInfo(info, before);

  GPSMeasDataImplC again;
  auto expectedAgain = StoredIn(again);
  GPSRecordFileInfo infoAgain = memory.Info(static_cast<std::uint32_t>(offset));
  GPSRecordFileInfo expectedInfo = infoAgain;
  const std::uint32_t readAgain = RecordModel::Read(expected, expectedAgain, expectedInfo);
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&again, &infoAgain), readAgain);
  EXPECT_EQ(StoredIn(again), expectedAgain);
  TestSupport::ExpectSameInfo(infoAgain, expectedInfo);
  return 0;
}
