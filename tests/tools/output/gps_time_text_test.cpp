#include <gtest/gtest.h>

#include <output/gps_time.h>

namespace {

// Dates of the GPS time scale: its first day, the rollovers of ten-bit weeks, and a leap day.
TEST(GpsTime, CountsDaysFromTheSixthOfJanuary1980) {
  const struct {
    Vorlin::TimeC time;
    const char* text;
  } cases[] = {
      {{0, 0}, "1980-01-06T00:00:00.000"},
      {{0, 604799999}, "1980-01-12T23:59:59.999"},
      {{0, -1}, "1980-01-05T23:59:59.999"},
      {{1024, 0}, "1999-08-22T00:00:00.000"},
      {{2048, 0}, "2019-04-07T00:00:00.000"},
      {{2095, 518400000}, "2020-03-07T00:00:00.000"},
      {{2094, 518400001}, "2020-02-29T00:00:00.001"},
      {{2091, 440075000}, "2020-02-07T02:14:35.000"},
  };
  for (const auto& [time, text] : cases) {
    EXPECT_EQ(Tool::GpsDateTime(Tool::GpsMilliseconds(time)), text);
  }
}

}  // namespace
