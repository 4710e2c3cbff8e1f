#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_

#include <string>
#include <vector>

#include <surveydata/gnss/gps_record_columns.h>

#include <command_line/command.h>

namespace Tool {

/// Columns of measurements, in the order of a table.
using RecordColumns = std::vector<const SDI::GPSColumn*>;

RecordColumns AllRecordColumns();

/// --columns: names with commas between, without what it needs.
CommandOption RecordColumnsOption(RecordColumns& columns);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_COLUMNS_H_
