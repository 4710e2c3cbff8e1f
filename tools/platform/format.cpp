#include <algorithm>
#include <iterator>

#include <fmt/compile.h>
#ifdef SURVEYDATA_COMPILE_FMT
#include <fmt/format-inl.h>
#endif

#include <platform/format.h>

#ifdef SURVEYDATA_COMPILE_FMT
// fmt's own source, for systems that have only a shared library of fmt. Instantiates the templates
// that only format-inl.h defines for all files.
FMT_BEGIN_NAMESPACE
namespace detail {
template auto dragonbox::to_decimal(float x) noexcept -> dragonbox::decimal_fp<float>;
template auto dragonbox::to_decimal(double x) noexcept -> dragonbox::decimal_fp<double>;
template locale_ref::locale_ref(const std::locale& locale);
template auto locale_ref::get<std::locale>() const -> std::locale;
template auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template auto decimal_point_impl(locale_ref) -> char;
template void buffer<char>::append(const char*, const char*);
}  // namespace detail
FMT_END_NAMESPACE
#endif

namespace Tool {

void AppendFormatted(std::string& out, fmt::string_view format, fmt::format_args args) {
  fmt::vformat_to(std::back_inserter(out), format, args);
}

void AppendFormatted(fmt::memory_buffer& out, fmt::string_view format, fmt::format_args args) {
  fmt::vformat_to(fmt::appender(out), format, args);
}

void AppendNumber(fmt::memory_buffer& out, double number, std::size_t width) {
  const std::size_t start = out.size();
  fmt::format_to(fmt::appender(out), FMT_COMPILE("{}"), number);
  const std::size_t size = out.size() - start;
  if (size >= width) return;
  out.resize(start + width);
  char* const cell = out.data() + start;
  std::copy_backward(cell, cell + size, cell + width);
  std::fill_n(cell, width - size, ' ');
}

void AppendNumber(fmt::memory_buffer& out, float number) {
  fmt::format_to(fmt::appender(out), FMT_COMPILE("{}"), number);
}

std::string Joined(std::span<const std::string> texts, std::string_view between) {
  std::string joined;
  for (const std::string& text : texts) {
    if (&text != texts.data()) joined += between;
    joined += text;
  }
  return joined;
}

std::string Joined(std::span<const std::uint16_t> numbers, std::string_view between) {
  std::string joined;
  for (const std::uint16_t& number : numbers) {
    if (&number != numbers.data()) joined += between;
    const fmt::format_int digits(number);
    joined.append(digits.data(), digits.size());
  }
  return joined;
}

std::string SpacedHex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    if (!hex.empty()) hex += ' ';
    hex += kDigits[value >> 4];
    hex += kDigits[value & 0xF];
  }
  return hex;
}

}  // namespace Tool
