#include <cmath>

#include <command_line/text.h>
#include <output/json_writer.h>
#include <platform/format.h>

namespace Tool {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

// The short escape of `unit` in JSON, or 0.
char ShortEscape(char16_t unit) {
  switch (unit) {
    case u'"':
      return '"';
    case u'\\':
      return '\\';
    case u'\n':
      return 'n';
    case u'\r':
      return 'r';
    case u'\t':
      return 't';
    case u'\f':
      return 'f';
    case u'\b':
      return 'b';
    default:
      return 0;
  }
}

void AppendEscaped(fmt::memory_buffer& out, char16_t unit) {
  if (const char escape = ShortEscape(unit); escape != 0) {
    out.push_back('\\');
    out.push_back(escape);
  } else if (0x20 <= unit && unit < 0x7F) {
    out.push_back(static_cast<char>(unit));
  } else {
    const char escaped[] = {'\\',
                            'u',
                            kHexDigits[unit >> 12],
                            kHexDigits[(unit >> 8) & 0xFu],
                            kHexDigits[(unit >> 4) & 0xFu],
                            kHexDigits[unit & 0xFu]};
    out.append(escaped, escaped + sizeof(escaped));
  }
}

}  // namespace

void JsonWriterC::Write(double value) {
  if (!std::isfinite(value)) return Raw("null");
  const std::size_t start = out_.size();
  AppendNumber(out_, value);
  const std::string_view digits(out_.data() + start, out_.size() - start);
  const bool isWhole = digits.find_first_not_of("-0123456789") == std::string_view::npos;
  if (isWhole) Raw(".0");
}

void JsonWriterC::Write(std::u16string_view text) {
  out_.push_back('"');
  for (const char16_t unit : text) AppendEscaped(out_, unit);
  out_.push_back('"');
}

void JsonWriterC::Write(std::string_view utf8) {
  out_.push_back('"');
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    const auto next = static_cast<unsigned char>(i + 1 < utf8.size() ? utf8[i + 1] : '\0');
    if (byte < 0x80) {
      AppendEscaped(out_, byte);
    } else if (byte == 0xC2 && next < 0xA0) {  // a control character U+0080 to U+009F
      AppendEscaped(out_, next);
      ++i;
    } else {
      out_.push_back(utf8[i]);
    }
  }
  out_.push_back('"');
}

void JsonWriterC::Write(HexBytes value) {
  out_.push_back('"');
  for (const char byte : value.bytes) {
    const auto bits = static_cast<unsigned char>(byte);
    out_.push_back(kHexDigits[bits >> 4]);
    out_.push_back(kHexDigits[bits & 0xF]);
  }
  out_.push_back('"');
}

}  // namespace Tool
