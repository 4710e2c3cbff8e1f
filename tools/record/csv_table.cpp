#include <type_traits>
#include <variant>

#include <surveydata/gnss/record_columns.h>

#include <record/csv_table.h>

namespace Tool {

void WriteNames(std::span<const SDI::GPSColumn* const> columns, CsvWriterC& line) {
  for (const SDI::GPSColumn* const column : columns) line.Name(column->name);
}

void WriteValues(const DecodedRecord& record, std::span<const SDI::GPSColumn* const> columns,
                 CsvWriterC& line) {
  SDI::GPSColumnValueC value;
  for (const SDI::GPSColumn* const column : columns) {
    SDI::RecordColumns::Ask(*column,
                            {&record.measurement, &record.info, record.offset, record.size}, value);
    std::visit(
        [&line](const auto& held) {
          if constexpr (std::is_same_v<decltype(held), const std::monostate&>) {
            line.Empty();
          } else {
            line.Value(held);
          }
        },
        value.Get());
  }
}

}  // namespace Tool
