#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_TEXT_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_TEXT_H_

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace Tool {

/// UTF-8 for people: surrogate pairs become their character, a surrogate without its other half
/// and control characters become U+FFFD.
std::string ToPrintable(std::u16string_view text);
/// The same for UTF-8, where bytes that are none become U+FFFD as well.
std::string ToPrintable(std::string_view utf8);

/// The 16-bit units of well-formed UTF-8; nothing for any other text, and for characters that need
/// more than one unit.
std::optional<std::u16string> ToSingleUnits(std::string_view utf8);

/// The decimal number that the whole text is; nothing for any other text, and out of range.
template <class Number>
std::optional<Number> ToNumber(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return {};
  return number;
}

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_TEXT_H_
