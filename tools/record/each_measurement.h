#ifndef SURVEYDATA_TOOLS_RECORD_EACH_MEASUREMENT_H_
#define SURVEYDATA_TOOLS_RECORD_EACH_MEASUREMENT_H_

#include <functional>

#include <command_line/exit_code.h>
#include <record/decoded_record.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {

/// Reads the measurements that are left in `walk` and visits those that `filter` takes. Bad frames
/// are left out, counted on standard error, and make the answer `kFinding`; so does a file without
/// a measurement to visit. Headers in a gap whose frame would run into the next record are passed
/// over: chance bytes look like them.
ExitCode ForEachMeasurement(RecordWalkC& walk, const RecordFilter& filter,
                            const std::function<void(const DecodedRecord&)>& visit);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_EACH_MEASUREMENT_H_
