#ifndef SURVEYDATA_TOOLS_PLATFORM_FORMAT_H_
#define SURVEYDATA_TOOLS_PLATFORM_FORMAT_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <fmt/format.h>

/// \file
/// Formatting that compiles quickly. Use `fmt::format`, `Append` instead of `fmt::format_to`,
/// `AppendNumber` instead of `FMT_COMPILE`, and `Joined` instead of `fmt::join`: those instantiate
/// their formatters in every file.

namespace Tool {

/// @{
void AppendFormatted(std::string& out, fmt::string_view format, fmt::format_args args);
void AppendFormatted(fmt::memory_buffer& out, fmt::string_view format, fmt::format_args args);
/// @}

/// Appends to a `std::string` or an `fmt::memory_buffer`.
template <class Out, class... Args>
void Append(Out& out, fmt::format_string<Args...> format, Args&&... args) {
  AppendFormatted(out, format, fmt::make_format_args(args...));
}

/// Appends a number with as many digits as are needed to read it back exactly, as the format "{}"
/// does. A shorter number is right-aligned to `width` characters.
/// @{
void AppendNumber(fmt::memory_buffer& out, double number, std::size_t width = 0);
void AppendNumber(fmt::memory_buffer& out, float number);
/// @}

/// The texts or numbers in one text, with `between` between them.
/// @{
std::string Joined(std::span<const std::string> texts, std::string_view between);
std::string Joined(std::span<const std::uint16_t> numbers, std::string_view between);
/// @}

/// The bytes in hexadecimal, two digits each, with spaces between them.
std::string SpacedHex(std::string_view bytes);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_FORMAT_H_
