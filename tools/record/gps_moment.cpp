#include <chrono>
#include <limits>
#include <string>

#include <fmt/format.h>

#include <surveydata/gnss/gps_time.h>

#include <command_line/command.h>
#include <command_line/message.h>
#include <record/gps_moment.h>

namespace Tool {
namespace {

constexpr std::int64_t kEnd =
    (std::int64_t{std::numeric_limits<std::uint16_t>::max()} + 1) * SDI::kMillisecondsPerWeek;

[[noreturn]] void Refuse(std::string_view what) {
  throw ValueErrorC(fmt::format(
      "{}; write a time as 2020-02-06T18:14:35.5 in GPS time, or in UTC with a Z at the end",
      what));
}

// Reads digits and separators from the front of a text.
class ScannerC {
 public:
  explicit ScannerC(std::string_view text) : rest_(text) {}

  bool Skip(char c) {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void Need(char c) {
    if (Skip(c)) return;
    Refuse(IsAtEnd() ? "it ends too early" : fmt::format("expected {} before \"{}\"", c, rest_));
  }
  int Number(std::size_t digits, std::string_view name) {
    const std::string_view all = Digits();
    if (all.size() != digits) Refuse(fmt::format("the {} must have {} digits", name, digits));
    int number = 0;
    for (const char digit : all) number = number * 10 + (digit - '0');
    return number;
  }
  std::string_view Digits() {
    std::size_t count = 0;
    while (count < rest_.size() && IsDigit(rest_[count])) ++count;
    const std::string_view digits = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return digits;
  }
  bool IsAtEnd() const { return rest_.empty(); }

 private:
  static bool IsDigit(char c) { return '0' <= c && c <= '9'; }

  std::string_view rest_;
};

struct Moment {
  std::string text;  // as SDI::FormatGPSTime writes it, with further digits if given
  bool isUTC = false;
  bool isLeapSecond = false;
};

Moment Scan(std::string_view text) {
  ScannerC scanner(text);
  const int year = scanner.Number(4, "year");
  scanner.Need('-');
  const int month = scanner.Number(2, "month");
  scanner.Need('-');
  const int day = scanner.Number(2, "day");
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) Refuse("there is no such day");

  int hour = 0, minute = 0, second = 0;
  std::string fraction;
  if (scanner.Skip('T')) {
    hour = scanner.Number(2, "hour");
    scanner.Need(':');
    minute = scanner.Number(2, "minute");
    if (scanner.Skip(':')) {
      second = scanner.Number(2, "second");
      if (scanner.Skip('.')) {
        fraction = scanner.Digits();
        if (fraction.empty()) Refuse("the fraction of the second has no digits");
      }
    }
  }
  Moment moment;
  moment.isUTC = scanner.Skip('Z');
  moment.isLeapSecond = second == 60;
  if (!scanner.IsAtEnd()) Refuse("unexpected characters after the time");
  if (hour > 23 || minute > 59 || second > (moment.isUTC ? 60 : 59)) {
    Refuse("there is no such time of day");
  }
  while (fraction.size() < 3) fraction += '0';
  moment.text = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{}", year, month, day, hour,
                            minute, second, fraction);
  return moment;
}

Vorlin::TimeC ToTime(std::int64_t milliseconds) {
  Vorlin::TimeC time;
  time.week = static_cast<std::uint16_t>(milliseconds / SDI::kMillisecondsPerWeek);
  time.timeOfWeek = static_cast<std::int32_t>(milliseconds % SDI::kMillisecondsPerWeek);
  return time;
}

std::string Format(std::int64_t milliseconds, bool isUTC) {
  char text[SDI::kTimeTextSize + 1];
  (isUTC ? SDI::FormatUTC : SDI::FormatGPSTime)(ToTime(milliseconds), text);
  return text;
}

}  // namespace

std::int64_t ParseMoment(std::string_view text) {
  const Moment moment = Scan(text);
  // Texts of times sort like the times, in UTC too, including leap seconds.
  std::int64_t first = 0;
  std::int64_t last = kEnd;
  while (first < last) {
    const std::int64_t middle = first + (last - first) / 2;
    if (Format(middle, moment.isUTC) < moment.text) {
      first = middle + 1;
    } else {
      last = middle;
    }
  }
  constexpr std::size_t kUpToSecond = 19;
  if (moment.isLeapSecond) {
    // A leap second begins at or before this time.
    const bool isThere = first > 0 && Format(first - 1, true).substr(0, kUpToSecond) ==
                                          moment.text.substr(0, kUpToSecond);
    const bool isNow = first < kEnd && Format(first, true).substr(0, kUpToSecond) ==
                                           moment.text.substr(0, kUpToSecond);
    if (!isThere && !isNow) Refuse("there is no such leap second");
  }
  if (moment.isUTC && first < kEnd && SDI::IsAfterLeapSecondExpiry(ToTime(first))) {
    TellAboutLeapSeconds();
  }
  return first;
}

void TellAboutLeapSeconds() {
  Tell(fmt::format("times in UTC from {} on assume that the {} has all leap seconds",
                   SDI::kLeapSecondExpiry, SDI::kLeapSecondSource));
}

}  // namespace Tool
