// An arbitrary record file is read as the format's description says, field by field. Reading the
// same frame in memory gives the same result and reads no byte after it. Encoding what was read
// gives a frame that reads the same.

#include <cstring>
#include <memory>

#include <gtest/gtest.h>

#include <surveydata/gnss/record_frame.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"
#include "tests/fuzz/sealed_frames.h"
#include "tests/gnss/record_model.h"
#include "tests/gnss/round_trip.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/same_info.h"

namespace {

using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;
using TestSupport::StoredIn;

struct Start {
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
};

}  // namespace

// Input: 1 byte of choices, 1 byte of offset, the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  const std::size_t offset = in.U8();
  auto file = in.Rest();
  if ((choices & 1) != 0) Fuzz::SealIfWhole(file, offset);
  memory.Write(file.data(), file.size());

  Start start{(choices & 2) != 0 ? TestSupport::FilledMeasurement() : GPSMeasDataImplC(),
              memory.Info(static_cast<std::uint32_t>(offset))};
  if ((choices & 4) != 0) {
    start.info.number = -4711;
    std::memset(start.info.name, 'n', sizeof(start.info.name));
    start.info.flags = 0x8000'0000;
  }

  TestSupport::StoredFields expected = StoredIn(start.measurement);
  GPSRecordFileInfo expectedInfo = start.info;
  const std::uint32_t result = RecordModel::Read(file, expected, expectedInfo);

  Start fromFile = start;
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&fromFile.measurement, &fromFile.info), result);
  EXPECT_EQ(StoredIn(fromFile.measurement), expected);
  TestSupport::ExpectSameInfo(fromFile.info, expectedInfo);
  EXPECT_EQ(memory.Bytes(), file);

  if (offset + SDI::RecordFrame::kHeaderSize > file.size()) return 0;
  const std::size_t whole = SDI::RecordFrame::Header::Load(file.data() + offset).Size();
  if (offset + whole > file.size()) return 0;
  const auto frame = std::make_unique<std::uint8_t[]>(whole);  // detects reads beyond its end
  std::memcpy(frame.get(), file.data() + offset, whole);
  Start fromMemory = start;
  const bool isDone =
      SDI::RecordFrame::Decode({frame.get(), whole}, fromMemory.measurement, fromMemory.info)
          .IsDone();
  EXPECT_EQ(isDone, result == GPSRecordFileC::kDone);
  EXPECT_EQ(StoredIn(fromMemory.measurement), expected);
  TestSupport::ExpectSameInfo(fromMemory.info, expectedInfo);
  if (isDone) TestSupport::ExpectRoundTrip({frame.get(), frame.get() + whole});
  return 0;
}
