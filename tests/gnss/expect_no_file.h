#ifndef SURVEYDATA_TESTS_GNSS_EXPECT_NO_FILE_H_
#define SURVEYDATA_TESTS_GNSS_EXPECT_NO_FILE_H_

#include <cstdint>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_file.h>

#include "tests/gnss/stored_fields.h"
#include "tests/support/same_info.h"

namespace TestSupport {

/// Expects that reading returns `result` and changes nothing.
inline void ExpectReadChangesNothing(SDI::GPSRecordFileInfo info, std::uint32_t result) {
  SDI::GPSMeasDataImplC measurement = FilledMeasurement();
  const SDI::GPSRecordFileInfo before = info;
  EXPECT_EQ(SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info), result);
  EXPECT_EQ(StoredIn(measurement), StoredIn(FilledMeasurement()));
  ExpectSameInfo(info, before);
}

/// Expects that reading and writing the file return `result` and change nothing.
inline void ExpectNoFile(const SDI::GPSRecordFileInfo& info, std::uint32_t result) {
  ExpectReadChangesNothing(info, result);
  const SDI::GPSMeasDataImplC measurement = FilledMeasurement();
  SDI::GPSRecordFileInfo writing = info;
  EXPECT_EQ(SDI::GPSRecordFileC::WriteGPSMeasData(&measurement, &writing), result);
  ExpectSameInfo(writing, info);
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_GNSS_EXPECT_NO_FILE_H_
