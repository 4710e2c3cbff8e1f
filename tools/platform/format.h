#ifndef SURVEYDATA_TOOLS_PLATFORM_FORMAT_H_
#define SURVEYDATA_TOOLS_PLATFORM_FORMAT_H_

#include <string>

#include <fmt/format.h>

/// \file
/// Formatting that compiles quickly: `fmt::format`, and `Append` instead of `fmt::format_to`, whose
/// formatter would be instantiated in every file.

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

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_FORMAT_H_
