#include <chrono>
#include <iterator>
#include <limits>

#include <surveydata/gnss/gps_time.h>
#include <surveydata/gnss/time_text.h>

namespace SDI {
namespace TimeText {
namespace {

using std::chrono::January;
using std::chrono::July;
using std::chrono::June;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kEpoch{January / 6 / 1980};

constexpr Milliseconds Midnight(year_month_day date) {
  return (sys_days(date) - kEpoch).count() * kDay;
}

// The days that begin after a leap second, since the start of GPS time, which was equal to UTC
// then: the entries of `kLeapSecondSource` since 1 July 1981.
constexpr year_month_day kDaysAfterLeapSeconds[] = {
    July / 1 / 1981,    July / 1 / 1982,    July / 1 / 1983,    July / 1 / 1985,
    January / 1 / 1988, January / 1 / 1990, January / 1 / 1991, July / 1 / 1992,
    July / 1 / 1993,    July / 1 / 1994,    January / 1 / 1996, July / 1 / 1997,
    January / 1 / 1999, January / 1 / 2006, January / 1 / 2009, July / 1 / 2012,
    July / 1 / 2015,    January / 1 / 2017};
constexpr Milliseconds kLastOffset = std::size(kDaysAfterLeapSeconds) * kSecond;
static_assert(kLastOffset == 18 * kSecond, "update the comment of kLeapSecondExpiry");

constexpr Milliseconds kExpiry = Midnight(June / 28 / 2027) + kLastOffset;
constexpr Milliseconds kNever = std::numeric_limits<Milliseconds>::max();

}  // namespace

void DateWriterC::SetDay(Milliseconds time) {
  const auto day = static_cast<std::int32_t>(time / kDay);
  const year_month_day date(kEpoch + std::chrono::days(day));
  const auto year = static_cast<std::uint32_t>(static_cast<int>(date.year()));  // 1980 to 3236
  PutTwo(year / 100, text_.data());
  PutTwo(year % 100, text_.data() + 2);
  PutTwo(static_cast<unsigned>(date.month()), text_.data() + 5);
  PutTwo(static_cast<unsigned>(date.day()), text_.data() + 8);
  day_ = day * kDay;
}

void DateWriterC::SetMinute(Milliseconds time) {
  if (time < day_ || day_ + kDay <= time) SetDay(time);
  const auto minutes = static_cast<std::uint32_t>(time - day_) / std::uint32_t{kMinute};
  PutTwo(minutes / 60, text_.data() + 11);
  PutTwo(minutes % 60, text_.data() + 14);
  minute_ = day_ + minutes * kMinute;
}

void UTCWriterC::FindOffset(Milliseconds time) {
  begin_ = offset_ = 0;
  for (const year_month_day date : kDaysAfterLeapSeconds) {
    leap_ = Midnight(date) + offset_;
    end_ = leap_ + kSecond;
    if (time < end_) return;
    begin_ = end_;
    offset_ += kSecond;
  }
  // After the last leap second.
  leap_ = end_ = kExpiry;
  if (time < kExpiry) return;
  begin_ = kExpiry;
  leap_ = end_ = kNever;
  hasExpired_ = true;
}

}  // namespace TimeText

bool FormatGPSTime(const Vorlin::TimeC& time, char (&text)[kTimeTextSize + 1]) {
  text[0] = text[kTimeTextSize] = 0;
  if (!TimeText::IsInRange(time)) return false;
  TimeText::DateWriterC().Write(TimeText::SinceEpoch(time), text);
  return true;
}

bool FormatUTC(const Vorlin::TimeC& time, char (&text)[kTimeTextSize + 1]) {
  text[0] = text[kTimeTextSize] = 0;
  if (!TimeText::IsInRange(time)) return false;
  TimeText::UTCWriterC().Write(TimeText::SinceEpoch(time), text);
  return true;
}

bool IsAfterLeapSecondExpiry(const Vorlin::TimeC& time) {
  return TimeText::IsInRange(time) && TimeText::SinceEpoch(time) >= TimeText::kExpiry;
}

}  // namespace SDI
