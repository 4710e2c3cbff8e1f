#ifndef SURVEYDATA_TOOLS_RECORD_JOIN_RECORDS_H_
#define SURVEYDATA_TOOLS_RECORD_JOIN_RECORDS_H_

#include <string>

#include <surveydata/gnss/gps_record_reader.h>

#include <command_line/command.h>
#include <record/record_files.h>
#include <record/record_filter.h>

namespace Tool {

/// The options of `record cut` and `record join`.
struct JoinOptions {
  RecordFileOptions files;
  SDI::GPSRecordStretch stretch;  ///< Of each file.
  RecordFilter filter;
  std::string output;
};

/// Writes the records that `KeptRecordsC` selects from each file, ordered by time A.
ExitCode JoinRecords(const JoinOptions& options);

/// The required option -o,--output for a record file.
CommandOption RecordOutputOption(std::string& output);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_JOIN_RECORDS_H_
