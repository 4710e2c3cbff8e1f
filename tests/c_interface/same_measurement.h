#ifndef SURVEYDATA_TESTS_C_INTERFACE_SAME_MEASUREMENT_H_
#define SURVEYDATA_TESTS_C_INTERFACE_SAME_MEASUREMENT_H_

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/gps_record_file_info.h>

namespace TestSupport {

template <std::size_t N>
void ExpectSameText(const std::uint16_t (&actual)[N], const char16_t* expected) {
  EXPECT_EQ(std::u16string(actual, std::find(actual, actual + N, 0)), std::u16string(expected));
}

/// Expects that the struct holds what the getters return, bit for bit.
inline void ExpectSame(const surveydata_measurement& actual, const SDI::GPSMeasDataImplC& expected,
                       const SDI::GPSRecordFileInfo& info) {
  EXPECT_EQ(actual.time_a_week, expected.GetTimeA().week);
  EXPECT_EQ(actual.time_a_of_week, expected.GetTimeA().timeOfWeek);
  EXPECT_EQ(actual.time_b_week, expected.GetTimeB().week);
  EXPECT_EQ(actual.time_b_of_week, expected.GetTimeB().timeOfWeek);
  std::uint16_t week = 0;
  std::int32_t ofWeek = 0;
  EXPECT_EQ(actual.extra_time_count, expected.GetExtraTime(week, ofWeek) ? 1 : 0);
  EXPECT_EQ(actual.extra_time_week, week);
  EXPECT_EQ(actual.extra_time_of_week, ofWeek);
  EXPECT_EQ(actual.set_mask, expected.GetSetMask());
  EXPECT_EQ(actual.status_mask, expected.GetStatusMask());
  EXPECT_EQ(actual.flags, info.flags);
  EXPECT_EQ(actual.number, info.number);
  EXPECT_EQ(std::string(actual.name, 49), std::string(info.name, 49));
  EXPECT_EQ(std::string(actual.name + 49, 3), std::string(3, '\0'));
  float height = 0.0F;
  bool isVertical = true;
  expected.GetAntennaHeight().GetHeight(height, isVertical);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.antenna_height),
            std::bit_cast<std::uint32_t>(height));
  EXPECT_EQ(actual.antenna_is_vertical, isVertical ? 1 : 0);
  EXPECT_EQ(actual.antenna_horizontal_offset, expected.GetAntennaHeight().GetHorizontalOffset());
  EXPECT_EQ(actual.value_count, expected.GetValueCount());
  EXPECT_EQ(actual.values[0], expected.GetValue(0));
  EXPECT_EQ(actual.values[1], expected.GetValue(1));
  EXPECT_EQ(actual.hdop, expected.GetDOPs().GetHDOPTenths());
  EXPECT_EQ(actual.vdop, expected.GetDOPs().GetVDOPTenths());
  EXPECT_EQ(actual.tdop, expected.GetDOPs().GetTDOPTenths());
  std::uint16_t word = 0;
  expected.GetWord16(word);
  EXPECT_EQ(actual.word16, word);
  const auto expectPair = [](const std::uint8_t(&pair)[2], SDI::GPSCounterPair stored) {
    EXPECT_EQ(pair[0], stored.first);
    EXPECT_EQ(pair[1], stored.second);
  };
  expectPair(actual.total_pair, expected.GetStoredTotalPair());
  expectPair(actual.system_1_pair, expected.GetStoredSystem1Pair());
  expectPair(actual.system_2_pair, expected.GetStoredSystem2Pair());
  expectPair(actual.system_3_pair, expected.GetStoredSystem3Pair());
  double vector[3] = {};
  expected.GetVector(vector);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(actual.vector[i]),
              std::bit_cast<std::uint64_t>(vector[i]));
  }
  EXPECT_EQ(actual.flag_a, expected.GetFlagA());
  EXPECT_EQ(actual.value_b, expected.GetValueB());
  EXPECT_EQ(actual.value_c, expected.GetValueC());
  EXPECT_EQ(actual.value_d, expected.GetValueD());
  EXPECT_EQ(actual.flag_e, expected.GetFlagE());
  EXPECT_EQ(actual.value_f, expected.GetValueF());
  EXPECT_EQ(actual.value_g, expected.GetValueG());
  EXPECT_EQ(actual.value_h, expected.GetValueH());
  EXPECT_EQ(actual.value_i, expected.GetValueI());
  ExpectSameText(actual.text_a, expected.GetTextA());
  ExpectSameText(actual.text_b, expected.GetTextB());
  ExpectSameText(actual.text_c, expected.GetTextC());
  ExpectSameText(actual.text_d, expected.GetTextD());
  EXPECT_EQ(actual.list_head, expected.GetListBlock()->head);
  EXPECT_EQ(actual.list_count, expected.GetListBlock()->count);
  EXPECT_TRUE(std::equal(std::begin(actual.list_entries), std::end(actual.list_entries),
                         expected.GetListBlock()->entries));
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_C_INTERFACE_SAME_MEASUREMENT_H_
