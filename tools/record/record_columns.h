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

/// The column of this name. Throws `ValueErrorC`, with a hint at names like it, where there is
/// none.
const SDI::GPSColumn& FindRecordColumn(std::string_view name);

/// As `SDI::AskGPSColumn`.
void AskRecordColumn(const SDI::GPSColumn& column, const DecodedRecord& record,
                     SDI::GPSColumnValueC& value);

/// --columns: names with commas between, without what it needs.
CommandOption RecordColumnsOption(RecordColumns& columns);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_
