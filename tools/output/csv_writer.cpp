#include <cmath>

#include <command_line/text.h>
#include <output/csv_writer.h>

namespace Tool {

void CsvWriterC::Value(float value) {
  if (!std::isfinite(value)) return Empty();
  Cell({});
  fmt::format_to(fmt::appender(out_), "{}", value);
}

void CsvWriterC::Value(double value) {
  if (!std::isfinite(value)) return Empty();
  Cell({});
  fmt::format_to(fmt::appender(out_), "{}", value);
}

void CsvWriterC::Value(std::string_view text) { Cell(CsvCell(ToPrintable(text), formulas_)); }

void CsvWriterC::Value(std::span<const std::uint16_t> values) {
  Cell({});
  fmt::format_to(fmt::appender(out_), "{}", fmt::join(values, " "));
}

}  // namespace Tool
