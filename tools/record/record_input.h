#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_INPUT_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_INPUT_H_

#include <surveydata/gnss/gps_record_reader.h>

#include <platform/input_file.h>

namespace Tool {

/// A reader of the records in `input`, which must outlive it. `stretch` applies only to seekable
/// input: a pipe is read from its start.
SDI::GPSRecordReaderC ReadRecords(InputFileC& input, SDI::GPSRecordStretch stretch = {});

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_INPUT_H_
