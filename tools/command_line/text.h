#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_TEXT_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_TEXT_H_

#include <charconv>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace Tool {

/// UTF-8 for text files: surrogate pairs become their character; unpaired surrogates and control
/// characters become U+FFFD.
std::string ToPrintable(std::u16string_view text);
/// The same for UTF-8; bytes that are not UTF-8 become U+FFFD as well.
std::string ToPrintable(std::string_view utf8);

/// The text with U+FFFD in place of bytes that are not UTF-8.
std::string ToUtf8(std::string_view text);

/// UTF-8 for terminals. Everything that could move the cursor, break the line or reverse the order
/// of other characters is escaped: control characters, including those from U+0080 to U+009F, line
/// and paragraph separators, and bidirectional controls, for example as \n, \x1b or \u202e; bytes
/// that are not UTF-8, as \xff; unpaired surrogates, as \ud83d.
std::string ToVisible(std::u16string_view text);
std::string ToVisible(std::string_view utf8);
/// The same into a buffer of at least three bytes, without allocating. Returns the length. A text
/// that is too long is cut after a character and ends with "...".
std::size_t ToVisible(std::string_view utf8, std::span<char> to);

/// A text for messages: one of more than 60 bytes is cut before a character and ends with "...".
std::string Shortened(std::string_view utf8);

/// Whether the text has a control character, or a line or paragraph separator.
bool HasControl(std::u16string_view text);

/// The 16-bit units of well-formed UTF-8; empty for any other text, and for characters that need
/// more than one unit.
std::optional<std::u16string> ToSingleUnits(std::string_view utf8);

/// The text as a decimal number; empty for any other text, and for a number out of range.
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
