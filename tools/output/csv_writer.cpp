#include <cmath>

#include <command_line/text.h>
#include <output/csv_writer.h>
#include <platform/format.h>

namespace Tool {

void CsvWriterC::Value(float value) {
  if (!std::isfinite(value)) return Empty();
  Cell({});
  AppendNumber(out_, value);
}

void CsvWriterC::Value(double value) {
  if (!std::isfinite(value)) return Empty();
  Cell({});
  AppendNumber(out_, value);
}

void CsvWriterC::Value(std::string_view text) { Cell(CsvCell(ToPrintable(text), formulas_)); }

void CsvWriterC::Value(std::span<const std::uint16_t> values) {
  Cell({});
  std::string_view before;
  for (const std::uint16_t value : values) {
    const fmt::format_int digits(value);
    Raw(before);
    Raw({digits.data(), digits.size()});
    before = " ";
  }
}

}  // namespace Tool
