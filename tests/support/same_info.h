#ifndef SURVEYDATA_TESTS_SUPPORT_SAME_INFO_H_
#define SURVEYDATA_TESTS_SUPPORT_SAME_INFO_H_

#include <string>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_file.h>

namespace TestSupport {

/// Checks that two infos agree in every byte of every field.
inline void ExpectSameInfo(const SDI::GPSRecordFileInfo& actual,
                           const SDI::GPSRecordFileInfo& expected) {
  EXPECT_EQ(actual.number, expected.number);
  EXPECT_EQ(std::string(actual.name, 49), std::string(expected.name, 49));
  EXPECT_EQ(std::string(actual.extension, 7), std::string(expected.extension, 7));
  EXPECT_EQ(actual.offset, expected.offset);
  EXPECT_EQ(std::string(actual.path, 240), std::string(expected.path, 240));
  EXPECT_EQ(actual.flags, expected.flags);
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SUPPORT_SAME_INFO_H_
