#include <chrono>
#include <cstdint>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_time.h>

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kDay = 24 * 3600;
constexpr sys_days kEpoch{std::chrono::January / 6 / 1980};

// `seconds` and thousandths after the start of GPS time.
Vorlin::TimeC At(std::int64_t seconds, std::int32_t thousandths = 0) {
  return {static_cast<std::uint16_t>(seconds / (7 * kDay)),
          static_cast<std::int32_t>(seconds % (7 * kDay) * 1000 + thousandths)};
}

std::string Gps(const Vorlin::TimeC& time) {
  char text[SDI::kTimeTextSize + 1] = "left as it was";
  return SDI::FormatGPSTime(time, text) ? text : std::string("false, ") + text;
}

std::string Utc(const Vorlin::TimeC& time) {
  char text[SDI::kTimeTextSize + 1] = "left as it was";
  return SDI::FormatUTC(time, text) ? text : std::string("false, ") + text;
}

// The published table.
struct PublishedTable {
  std::vector<year_month_day> daysWithLeapSecond;  // since 1980
  std::string expires;
  std::string updated;
};

PublishedTable ReadTable() {
  PublishedTable table;
  std::ifstream in(SURVEYDATA_TEST_DATA "leapseconds");
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string word, month;
    int year = 0;
    unsigned day = 0;
    words >> word;
    if (word == "Leap") {
      words >> year >> month >> day;
      if (year >= 1980) {
        table.daysWithLeapSecond.push_back(std::chrono::year(year) / (month == "Jun" ? 6 : 12) /
                                           std::chrono::day(day));
      }
    } else if (const auto at = line.find("UTC)");
               line.starts_with("#expires ") && at != line.npos) {
      table.expires = line.substr(line.find('(') + 1, 10);
    } else if (line.starts_with("#updated ")) {
      table.updated = line.substr(line.find('(') + 1, 10);
    }
  }
  return table;
}

TEST(GPSTime, IsWrittenAsDateAndTimeOfDay) {
  EXPECT_EQ(Gps({0, 0}), "1980-01-06T00:00:00.000");
  EXPECT_EQ(Gps({2091, 440075000}), "2020-02-07T02:14:35.000");
  EXPECT_EQ(Gps({0, 1}), "1980-01-06T00:00:00.001");
  EXPECT_EQ(Gps({1, SDI::kMillisecondsPerWeek - 1}), "1980-01-19T23:59:59.999");
  EXPECT_EQ(Gps({1042, 345'600'000}), "1999-12-30T00:00:00.000");
  EXPECT_EQ(Gps({65535, SDI::kMillisecondsPerWeek - 1}), "3236-01-12T23:59:59.999");
}

TEST(GPSTime, IsEmptyOutOfTheWeek) {
  for (const std::int32_t timeOfWeek :
       {-1, SDI::kMillisecondsPerWeek, std::numeric_limits<std::int32_t>::min(),
        std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(Gps({2091, timeOfWeek}), "false, ");
    EXPECT_EQ(Utc({2091, timeOfWeek}), "false, ");
    EXPECT_FALSE(SDI::IsAfterLeapSecondExpiry({65535, timeOfWeek}));
  }
}

TEST(GPSTime, HasTheLeapSecondsOfThePublishedTable) {
  const PublishedTable table = ReadTable();
  ASSERT_EQ(table.daysWithLeapSecond.size(), 18U);
  std::int64_t offset = 0;
  for (const year_month_day date : table.daysWithLeapSecond) {
    const std::int64_t day = (sys_days(date) - kEpoch).count();
    const std::string text = Gps(At(day * kDay)).substr(0, 10);
    const std::string next = Gps(At((day + 1) * kDay)).substr(0, 10);
    SCOPED_TRACE(text);
    const std::int64_t leap = (day + 1) * kDay + offset;  // of GPS time
    EXPECT_EQ(Utc(At(leap - 1, 999)), text + "T23:59:59.999");
    EXPECT_EQ(Utc(At(leap)), text + "T23:59:60.000");
    EXPECT_EQ(Utc(At(leap, 999)), text + "T23:59:60.999");
    EXPECT_EQ(Utc(At(leap + 1)), next + "T00:00:00.000");
    EXPECT_EQ(Utc(At(leap + 2)), next + "T00:00:01.000");
    ++offset;
  }
  EXPECT_EQ(Utc({0, 0}), "1980-01-06T00:00:00.000");
  EXPECT_EQ(Utc({2091, 440075000}), "2020-02-07T02:14:17.000");
}

TEST(GPSTime, UsesTheLastOffsetAfterTheExpiryOfTheTable) {
  const PublishedTable table = ReadTable();
  EXPECT_EQ(SDI::kLeapSecondExpiry, table.expires);
  EXPECT_EQ(SDI::kLeapSecondSource, "IERS leap-seconds.list of " + table.updated);

  const std::int64_t expiry =
      (sys_days(std::chrono::June / 28 / 2027) - kEpoch).count() * kDay + 18;
  EXPECT_EQ(Utc(At(expiry)), table.expires + "T00:00:00.000");
  EXPECT_FALSE(SDI::IsAfterLeapSecondExpiry(At(expiry - 1, 999)));
  EXPECT_TRUE(SDI::IsAfterLeapSecondExpiry(At(expiry)));
  EXPECT_EQ(Utc(At(expiry - 1, 999)), "2027-06-27T23:59:59.999");
  EXPECT_EQ(Utc({65535, SDI::kMillisecondsPerWeek - 1}), "3236-01-12T23:59:41.999");
}

}  // namespace
