#ifndef SURVEYDATA_GNSS_TIME_TEXT_H_
#define SURVEYDATA_GNSS_TIME_TEXT_H_

#include <array>
#include <cstdint>
#include <cstring>

#include <surveydata/gnss/gps_time.h>

/// \file
/// Internal: GPS time and UTC as texts, many times in a row.

namespace SDI::TimeText {

/// Milliseconds since the start of GPS time, 6 January 1980, 00:00.
using Milliseconds = std::int64_t;

inline constexpr Milliseconds kSecond = 1000;
inline constexpr Milliseconds kDay = 24 * 3600 * kSecond;

inline bool IsInRange(const Vorlin::TimeC& time) {
  return 0 <= time.timeOfWeek && time.timeOfWeek < kMillisecondsPerWeek;
}
inline Milliseconds SinceEpoch(const Vorlin::TimeC& time) {
  return Milliseconds{time.week} * kMillisecondsPerWeek + time.timeOfWeek;
}

/// Writes dates and times of day. Keeps the date that it wrote last: most times of a file share it.
class DateWriterC {
 public:
  /// Writes `kTimeTextSize` characters. `time` is at least 0.
  void Write(Milliseconds time, char* to) {
    const auto day = static_cast<std::int32_t>(time / kDay);
    auto left = static_cast<std::uint32_t>(time % kDay);
    const std::uint32_t thousandths = left % 1000;
    left /= 1000;
    WriteDate(day, to);
    PutTwo(left / 3600, to + 11);
    PutTwo(left / 60 % 60, to + 14);
    PutTwo(left % 60, to + 17);
    PutThree(thousandths, to + 20);
  }
  /// Writes second 60 of the last minute of `day`, counted from the start of GPS time.
  void WriteLeapSecond(std::int32_t day, std::uint32_t thousandths, char* to) {
    WriteDate(day, to);
    std::memcpy(to + 11, "23:59:60.", 9);
    PutThree(thousandths, to + 20);
  }

 private:
  // A whole text with the date that was written last.
  static constexpr std::array<char, kTimeTextSize + 1> kPattern{"0000-00-00T00:00:00.000"};

  void WriteDate(std::int32_t day, char* to) {
    if (day != day_) SetDay(day);
    std::memcpy(to, text_.data(), kTimeTextSize);
  }
  void SetDay(std::int32_t day);

  static void PutTwo(std::uint32_t number, char* to) {
    to[0] = static_cast<char>('0' + number / 10);
    to[1] = static_cast<char>('0' + number % 10);
  }
  static void PutThree(std::uint32_t number, char* to) {
    to[0] = static_cast<char>('0' + number / 100);
    PutTwo(number % 100, to + 1);
  }

  std::int32_t day_ = -1;
  std::array<char, kTimeTextSize + 1> text_ = kPattern;
};

/// Writes times in UTC. Keeps the offset that it used last.
class UTCWriterC {
 public:
  /// Whether a time was at or after the expiry of the table of leap seconds.
  bool HasExpired() const { return hasExpired_; }
  /// Writes `kTimeTextSize` characters. `time` is at least 0.
  void Write(Milliseconds time, char* to) {
    if (time < begin_ || end_ <= time) FindOffset(time);
    if (time < leap_) {
      date_.Write(time - offset_, to);
    } else {
      // A leap second ends a day, which is the one before that of the time with the old offset.
      date_.WriteLeapSecond(static_cast<std::int32_t>((leap_ - offset_) / kDay) - 1,
                            static_cast<std::uint32_t>(time - leap_), to);
    }
  }

 private:
  void FindOffset(Milliseconds time);

  // From `begin_` to `leap_` GPS time is `offset_` ahead of UTC; from `leap_` to `end_` is the leap
  // second.
  Milliseconds begin_ = 0;
  Milliseconds leap_ = 0;
  Milliseconds end_ = 0;
  Milliseconds offset_ = 0;
  bool hasExpired_ = false;
  DateWriterC date_;
};

}  // namespace SDI::TimeText

#endif  // SURVEYDATA_GNSS_TIME_TEXT_H_
