// Record files on Windows.

#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_file.h>

#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;
using TestSupport::TempFileC;

// An open file cannot be removed.
TEST(RecordFileRead, EveryWayOutClosesTheFile) {
  SDI::GPSMeasDataImplC measurement;
  for (const ByteVector& bytes :
       {FrameBuilderC().Times().U16(2).Fill(38, 2).Frame(), ByteVector(20, 1), ByteVector()}) {
    for (const bool isWritten : {false, true}) {
      const TempFileC file(bytes);
      SDI::GPSRecordFileInfo info = file.Info();
      if (isWritten) {
        ASSERT_EQ(SDI::GPSRecordFileC::WriteGPSMeasData(&measurement, &info), bytes.size() > 20 ? 0U
                                                                              : bytes.empty()   ? 1U
                                                                                              : 2U);
      } else {
        ASSERT_NE(SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 1U);
      }
      std::error_code error;
      EXPECT_TRUE(std::filesystem::remove(file.Path(), error)) << error.message();
    }
  }
}

}  // namespace
