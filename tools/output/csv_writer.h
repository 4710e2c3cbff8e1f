#ifndef SURVEYDATA_TOOLS_OUTPUT_CSV_WRITER_H_
#define SURVEYDATA_TOOLS_OUTPUT_CSV_WRITER_H_

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <surveydata/platform/vorlin_time.h>

#include <output/csv_cell.h>
#include <output/field_types.h>

namespace Tool {

/// Appends the header row or one row of a CSV table to a buffer, as RFC 4180 has it: commas, CRLF,
/// quotes where a cell needs them. Each number of a group of fixed size has its own column; a list
/// is one cell with spaces in between; a value that is absent is an empty cell. Texts are UTF-8.
class CsvWriterC {
 public:
  enum class Row { kHeader, kRecord };

  CsvWriterC(fmt::memory_buffer& out, Row row, Formulas formulas = Formulas::kEscape)
      : out_(out), isHeader_(row == Row::kHeader), formulas_(formulas) {}

  void EndLine() { Raw("\r\n"); }

  void Begin(std::string_view key, bool isPresent = true) {
    if (isHeader_) groups_.push_back(Path(key));
    isSkipping_ = !isPresent && !isHeader_;
  }
  void End() {
    if (isHeader_) groups_.pop_back();
    isSkipping_ = false;
  }

  template <class Value>
  void Field(std::string_view key, const Value& value, bool /*isSet*/ = true) {
    if (isHeader_) {
      Columns(Path(key), value);
    } else {
      Cells(value);
    }
  }

 private:
  template <class Value, std::size_t N>
  void Columns(const std::string& path, const std::array<Value, N>& /*values*/) {
    for (std::size_t i = 0; i < N; ++i) Quoted(fmt::format("{}.{}", path, i));
  }
  template <class Value>
  void Columns(const std::string& path, const std::optional<Value>& /*value*/) {
    Columns(path, Value{});
  }
  void Columns(const std::string& path, const Vorlin::TimeC& /*time*/) {
    Quoted(path + ".week");
    Quoted(path + ".timeOfWeek");
  }
  template <class Value>
  void Columns(const std::string& path, const Value& /*value*/) {
    Quoted(path);
  }

  template <class Value, std::size_t N>
  void Cells(const std::array<Value, N>& values) {
    for (const Value& value : values) Cells(value);
  }
  template <class Value>
  void Cells(const std::optional<Value>& value) {
    const bool wasSkipping = isSkipping_;
    isSkipping_ = isSkipping_ || !value.has_value();
    Cells(value.value_or(Value{}));
    isSkipping_ = wasSkipping;
  }
  void Cells(const Vorlin::TimeC& time) {
    Cells(time.week);
    Cells(time.timeOfWeek);
  }
  void Cells(bool value) { Cell(value ? "true" : "false"); }
  template <std::integral Number>
  void Cells(Number value) {
    const fmt::format_int digits(value);
    Cell({digits.data(), digits.size()});
  }
  void Cells(double value);
  void Cells(std::u16string_view text);
  void Cells(HexBytes value);
  void Cells(std::span<const std::uint16_t> values);
  void Cells(TimeOfWeek value) { Cells(value.milliseconds); }
  void Cells(Mask value) { Cells(value.bits); }
  void Cells(Tenths value) { Cells(value.value); }
  void Cells(Dilution value) { Cells(value.value); }
  void Cells(Metres value) { Cells(value.value); }

  std::string Path(std::string_view key) const;
  void Raw(std::string_view text) { out_.append(text.data(), text.data() + text.size()); }
  void Comma() {
    if (!isFirst_) out_.push_back(',');
    isFirst_ = false;
  }
  void Cell(std::string_view text) {
    Comma();
    if (!isSkipping_) Raw(text);
  }
  void Quoted(std::string_view text);

  fmt::memory_buffer& out_;
  bool isHeader_;
  Formulas formulas_;
  bool isFirst_ = true;
  bool isSkipping_ = false;
  std::vector<std::string> groups_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_CSV_WRITER_H_
