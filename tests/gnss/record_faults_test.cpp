#include <cstdint>
#include <cstdio>

#include <gtest/gtest.h>
#include <tests/support/frame_builder.h>
#include <tests/support/temp_file.h>

#include <surveydata/gnss/gps_record_file.h>

// What a record file cannot be made to do on its own: `fseek` fails when it is told to. The linker
// puts this program's function in the place of the C runtime's.

namespace {

int seeksLeft = -1;  // that succeed; -1 for all

}  // namespace

extern "C" {
int __real_fseek(std::FILE* file, long offset, int whence);
int __wrap_fseek(std::FILE* file, long offset, int whence);

int __wrap_fseek(std::FILE* file, long offset, int whence) {
  if (seeksLeft == 0) return -1;
  if (seeksLeft > 0) --seeksLeft;
  return __real_fseek(file, offset, whence);
}
}

namespace {

using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;

class RecordFaults : public testing::Test {
 protected:
  RecordFaults()
      : random_(1),
        file_(TestSupport::WellFormedFrame(0x0007, 0, random_)),
        before_(file_.Bytes()) {
    info_ = file_.Info();
  }
  ~RecordFaults() override { seeksLeft = -1; }

  std::mt19937_64 random_;
  TestSupport::TempFileC file_;
  TestSupport::ByteVector before_;
  GPSRecordFileInfo info_;
  GPSMeasDataImplC measurement_;
};

TEST_F(RecordFaults, AReadThatCannotBePositionedFindsNoFrame) {
  seeksLeft = 0;
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement_, &info_), 2U);
  EXPECT_EQ(measurement_.GetSetMask(), 0);
}

TEST_F(RecordFaults, AWriteThatCannotBePositionedForReadingFindsNoFrame) {
  seeksLeft = 0;
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_), 2U);
  EXPECT_EQ(file_.Bytes(), before_);
}

TEST_F(RecordFaults, AWriteThatCannotBePositionedForWritingHasNoFile) {
  info_.number = 4711;
  seeksLeft = 1;
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_), 1U);
  EXPECT_EQ(file_.Bytes(), before_);
  seeksLeft = 2;
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_), 0U);
  EXPECT_NE(file_.Bytes(), before_);
}

}  // namespace
