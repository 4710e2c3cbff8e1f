#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_

#include <string>
#include <string_view>
#include <vector>

#include <surveydata/gnss/gps_record_columns.h>

#include <command_line/command.h>
#include <record/decoded_record.h>

namespace Tool {

/// Columns of measurements, in the order of a table.
using RecordColumns = std::vector<const SDI::GPSColumn*>;

RecordColumns AllRecordColumns();

/// Their names.
std::vector<std::string> RecordColumnNames();

/// The column with this name. If there is none, throws `ValueErrorC` with a hint at similar names.
const SDI::GPSColumn& FindRecordColumn(std::string_view name);

/// As `SDI::AskGPSColumn`.
void AskRecordColumn(const SDI::GPSColumn& column, const DecodedRecord& record,
                     SDI::GPSColumnValueC& value);

/// The option --columns: names separated by commas. The options that it requires are not set.
CommandOption RecordColumnsOption(RecordColumns& columns);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_
