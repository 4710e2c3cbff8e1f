#ifndef SURVEYDATA_GNSS_TIME_TEXT_H_
#define SURVEYDATA_GNSS_TIME_TEXT_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <surveydata/gnss/gps_time.h>

/// \file
/// Internal: GPS time and UTC as text, fast for sequences of times.

namespace SDI::TimeText {

/// Milliseconds since the start of GPS time, 6 January 1980, 00:00.
using Milliseconds = std::int64_t;

inline constexpr Milliseconds kSecond = 1000;
inline constexpr Milliseconds kDay = 86'400 * kSecond;

inline bool IsInRange(const Vorlin::TimeC& time) {
  return 0 <= time.timeOfWeek && time.timeOfWeek < kMillisecondsPerWeek;
}
inline Milliseconds SinceEpoch(const Vorlin::TimeC& time) {
  return Milliseconds{time.week} * kMillisecondsPerWeek + time.timeOfWeek;
}

/// "00" to "99".
inline constexpr std::array<char, 200> kTwoDigits = [] {
  std::array<char, 200> digits{};
  for (std::size_t i = 0; i < 100; ++i) {
    digits[2 * i] = static_cast<char>('0' + i / 10);
    digits[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return digits;
}();

/// Writes dates and times of day. Caches the last minute and the last day, which consecutive times
/// mostly share.
class DateWriterC {
 public:
  /// Writes `kTimeTextSize` characters. `time` is at least 0.
  void Write(Milliseconds time, char* to) {
    if (time < minute_ || minute_ + kMinute <= time) SetMinute(time);
    const auto left = static_cast<std::uint32_t>(time - minute_);
    CopyMinute(to);
    PutTwo(left / 1000, to + 17);
    if (left % 1000 != 0) PutThree(left % 1000, to + 20);
  }
  /// Writes second 60 of the minute that contains `time`.
  void WriteLeapSecond(Milliseconds time, std::uint32_t thousandths, char* to) {
    SetMinute(time);
    CopyMinute(to);
    PutTwo(60, to + 17);
    PutThree(thousandths, to + 20);
  }

 private:
  static constexpr Milliseconds kMinute = 60 * kSecond;

  void SetDay(Milliseconds time);
  void SetMinute(Milliseconds time);

  void CopyMinute(char* to) const {
    static_assert(kTimeTextSize == 23);
    std::memcpy(to, text_.data(), 16);  // in two parts, which overlap
    std::memcpy(to + 7, text_.data() + 7, 16);
  }
  static void PutTwo(std::uint32_t number, char* to) {
    std::memcpy(to, kTwoDigits.data() + std::size_t{2} * number, 2);
  }
  static void PutThree(std::uint32_t number, char* to) {
    to[0] = static_cast<char>('0' + number / 100);
    PutTwo(number % 100, to + 1);
  }

  Milliseconds minute_ = -kMinute;
  Milliseconds day_ = -kDay;
  std::array<char, kTimeTextSize + 1> text_{"0000-00-00T00:00:00.000"};  // of the minute
};

/// Writes times in UTC. Caches the last offset.
class UTCWriterC {
 public:
  /// Whether any time was at or after the expiry of the table of leap seconds.
  bool HasExpired() const { return hasExpired_; }
  /// Writes `kTimeTextSize` characters. `time` is at least 0.
  void Write(Milliseconds time, char* to) {
    if (time < begin_ || end_ <= time) FindOffset(time);
    if (time < leap_) {
      date_.Write(time - offset_, to);
    } else {
      date_.WriteLeapSecond(leap_ - offset_ - kSecond, static_cast<std::uint32_t>(time - leap_),
                            to);
    }
  }

 private:
  void FindOffset(Milliseconds time);

  // From `begin_` to `leap_` GPS time is `offset_` ahead of UTC. The leap second is from `leap_` to
  // `end_`.
  Milliseconds begin_ = 0;
  Milliseconds leap_ = 0;
  Milliseconds end_ = 0;
  Milliseconds offset_ = 0;
  bool hasExpired_ = false;
  DateWriterC date_;
};

}  // namespace SDI::TimeText

#endif  // SURVEYDATA_GNSS_TIME_TEXT_H_
