#ifndef SURVEYDATA_TOOLS_OUTPUT_CSV_WRITER_H_
#define SURVEYDATA_TOOLS_OUTPUT_CSV_WRITER_H_

#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>

#include <fmt/format.h>

#include <output/csv_cell.h>

namespace Tool {

/// Appends one row of a CSV table to a buffer, by RFC 4180: commas, CRLF, quotes if a cell needs
/// them. A list is one cell, with its elements separated by spaces. Texts are UTF-8.
class CsvWriterC {
 public:
  CsvWriterC(fmt::memory_buffer& out, Formulas formulas) : out_(out), formulas_(formulas) {}

  /// The name of a column.
  void Name(std::string_view name) { Cell(name); }
  /// An absent value.
  void Empty() { Cell({}); }
  void Value(bool value) { Cell(value ? "true" : "false"); }
  template <std::integral Number>
  void Value(Number value) {
    const fmt::format_int digits(value);
    Cell({digits.data(), digits.size()});
  }
  /// With as many digits as are needed to read the number back exactly; NaN and infinities are
  /// empty.
  /// @{
  void Value(float value);
  void Value(double value);
  /// @}
  void Value(std::string_view text);
  void Value(std::span<const std::uint16_t> values);

  void EndLine() { Raw("\r\n"); }

 private:
  void Raw(std::string_view text) { out_.append(text.data(), text.data() + text.size()); }
  void Cell(std::string_view text) {
    if (!isFirst_) out_.push_back(',');
    isFirst_ = false;
    Raw(text);
  }

  fmt::memory_buffer& out_;
  Formulas formulas_;
  bool isFirst_ = true;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_CSV_WRITER_H_
