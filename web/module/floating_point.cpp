#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace {

// The shortest decimal digits of a number above 0, and the power of ten of the first digit.
struct Digits {
  std::string digits;
  int exponent;
};

template <class Float>
Digits ShortestDigits(Float value) {
  const auto decimal = fmt::detail::dragonbox::to_decimal(value);
  std::string digits = std::to_string(decimal.significand);
  const int exponent = decimal.exponent + static_cast<int>(digits.size()) - 1;
  digits.erase(digits.find_last_not_of('0') + 1);
  return {std::move(digits), exponent};
}

std::string Fixed(const Digits& number) {
  const int whole = number.exponent + 1;
  const int count = static_cast<int>(number.digits.size());
  if (whole <= 0) return "0." + std::string(static_cast<std::size_t>(-whole), '0') + number.digits;
  if (count <= whole) {
    return number.digits + std::string(static_cast<std::size_t>(whole - count), '0');
  }
  return number.digits.substr(0, static_cast<std::size_t>(whole)) + "." +
         number.digits.substr(static_cast<std::size_t>(whole));
}

std::string Scientific(const Digits& number) {
  std::string text = number.digits.substr(0, 1);
  if (number.digits.size() > 1) text += "." + number.digits.substr(1);
  const int size = std::abs(number.exponent);
  return text + (number.exponent < 0 ? "e-" : "e+") + (size < 10 ? "0" : "") + std::to_string(size);
}

template <class Float>
std::to_chars_result Write(char* first, char* last, Float value, std::chars_format format) {
  std::string text = std::signbit(value) ? "-" : "";
  if (std::isnan(value)) {
    text += "nan";
  } else if (std::isinf(value)) {
    text += "inf";
  } else {
    const Digits number =
        value == 0 ? Digits{"0", 0} : ShortestDigits(static_cast<Float>(std::fabs(value)));
    const bool isFixed =
        format == std::chars_format::fixed ||
        (format == std::chars_format::general && -4 <= number.exponent && number.exponent < 6);
    text += isFixed ? Fixed(number) : Scientific(number);
  }
  if (text.size() > static_cast<std::size_t>(last - first)) {
    return {last, std::errc::value_too_large};
  }
  return {std::copy(text.begin(), text.end(), first), std::errc()};
}

bool IsDigit(char c) { return '0' <= c && c <= '9'; }

// The end of the decimal number at the front, or `first` if there is none.
const char* EndOfNumber(const char* first, const char* last) {
  const char* at = first;
  const auto skipDigits = [&] {
    const char* const start = at;
    while (at != last && IsDigit(*at)) ++at;
    return at - start;
  };
  if (at != last && *at == '-') ++at;
  auto count = skipDigits();
  if (at != last && *at == '.') {
    ++at;
    count += skipDigits();
  }
  if (count == 0) return first;
  const char* const mantissaEnd = at;
  if (at != last && (*at == 'e' || *at == 'E')) {
    ++at;
    if (at != last && (*at == '-' || *at == '+')) ++at;
    if (skipDigits() > 0) return at;
  }
  return mantissaEnd;
}

// The end of "inf", "infinity" or "nan" at the front, in any case.
const char* EndOfName(const char* first, const char* last, double& value) {
  const char* const start = first != last && *first == '-' ? first + 1 : first;
  const auto begins = [&](std::string_view name) {
    return static_cast<std::size_t>(last - start) >= name.size() &&
           std::equal(name.begin(), name.end(), start,
                      [](char a, char b) { return a == (b | 0x20); });
  };
  const double sign = start == first ? 1.0 : -1.0;
  for (const std::string_view name : {"infinity", "inf", "nan"}) {
    if (!begins(name)) continue;
    value = std::copysign(name == "nan" ? std::numeric_limits<double>::quiet_NaN()
                                        : std::numeric_limits<double>::infinity(),
                          sign);
    return start + name.size();
  }
  return first;
}

}  // namespace

namespace std {
inline namespace _LIBCPP_ABI_NAMESPACE {

to_chars_result to_chars(char* first, char* last, float value, chars_format format) {
  return Write(first, last, value, format);
}

to_chars_result to_chars(char* first, char* last, double value, chars_format format) {
  return Write(first, last, value, format);
}

from_chars_result from_chars(const char* first, const char* last, double& value) {
  const char* const end = EndOfNumber(first, last);
  if (end == first) {
    const char* const nameEnd = EndOfName(first, last, value);
    return {nameEnd, nameEnd == first ? errc::invalid_argument : errc()};
  }
  const string digits(first, end);
  errno = 0;
  const double number = strtod(digits.c_str(), nullptr);
  // A number is out of range only if it rounds to 0 or to infinity.
  if (errno == ERANGE && (number == 0 || isinf(number))) return {end, errc::result_out_of_range};
  value = number;
  return {end, errc()};
}

}  // namespace _LIBCPP_ABI_NAMESPACE
}  // namespace std
