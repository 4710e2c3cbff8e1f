#include <cmath>

#include <command_line/text.h>
#include <output/csv_writer.h>

namespace Tool {

std::string CsvWriterC::Path(std::string_view key) const {
  return groups_.empty() ? std::string(key) : fmt::format("{}.{}", groups_.back(), key);
}

void CsvWriterC::Quoted(std::string_view text) { Cell(CsvCell(text, formulas_)); }

void CsvWriterC::Cells(double value) {
  Cell(std::isfinite(value) ? fmt::format("{}", value) : std::string());
}

void CsvWriterC::Cells(std::u16string_view text) { Quoted(ToPrintable(text)); }

void CsvWriterC::Cells(HexBytes value) {
  std::string hex;
  for (const char byte : value.bytes)
    hex += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  Cell(hex);
}

void CsvWriterC::Cells(std::span<const std::uint16_t> values) {
  Cell(fmt::format("{}", fmt::join(values, " ")));
}

}  // namespace Tool
