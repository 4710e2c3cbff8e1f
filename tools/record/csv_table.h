#ifndef SURVEYDATA_TOOLS_RECORD_CSV_TABLE_H_
#define SURVEYDATA_TOOLS_RECORD_CSV_TABLE_H_

#include <span>

#include <surveydata/gnss/gps_record_columns.h>

#include <output/csv_writer.h>
#include <record/decoded_record.h>

/// \file
/// The cells of a CSV table of measurements, as `surveydata record export --csv` writes them.

namespace Tool {

/// Writes the names of the columns.
void WriteNames(std::span<const SDI::GPSColumn* const> columns, CsvWriterC& line);

/// Writes the values of a measurement in these columns. An absent value is an empty cell.
void WriteValues(const DecodedRecord& record, std::span<const SDI::GPSColumn* const> columns,
                 CsvWriterC& line);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_CSV_TABLE_H_
