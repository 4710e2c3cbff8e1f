#include <chrono>

#include <fmt/format.h>

#include <output/gps_time.h>

namespace Tool {
namespace {

using std::chrono::days;
using std::chrono::milliseconds;
using std::chrono::sys_time;
using std::chrono::weeks;

constexpr std::chrono::sys_days kGpsEpoch{std::chrono::January / 6 / 1980};

struct Parts {
  std::chrono::year_month_day date;
  std::chrono::hh_mm_ss<milliseconds> time;
};

Parts Split(std::int64_t sinceEpoch) {
  const sys_time<milliseconds> point = kGpsEpoch + milliseconds(sinceEpoch);
  const auto day = std::chrono::floor<days>(point);
  return {std::chrono::year_month_day(day), std::chrono::hh_mm_ss(point - day)};
}

std::string Date(const Parts& parts) {
  return fmt::format("{:04d}-{:02d}-{:02d}", static_cast<int>(parts.date.year()),
                     static_cast<unsigned>(parts.date.month()),
                     static_cast<unsigned>(parts.date.day()));
}

std::string TimeOfDay(const Parts& parts) {
  return fmt::format("{:02d}:{:02d}:{:02d}", parts.time.hours().count(),
                     parts.time.minutes().count(), parts.time.seconds().count());
}

}  // namespace

std::int64_t GpsMilliseconds(const Vorlin::TimeC& time) {
  return milliseconds(weeks(time.week)).count() + time.timeOfWeek;
}

std::string GpsDateTime(std::int64_t milliseconds) {
  const Parts parts = Split(milliseconds);
  return fmt::format("{}T{}.{:03d}", Date(parts), TimeOfDay(parts),
                     parts.time.subseconds().count());
}

std::string GpsDate(std::int64_t milliseconds) { return Date(Split(milliseconds)); }

std::string GpsTimeOfDay(std::int64_t milliseconds) { return TimeOfDay(Split(milliseconds)); }

}  // namespace Tool
