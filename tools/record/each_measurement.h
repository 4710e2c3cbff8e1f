#ifndef SURVEYDATA_TOOLS_RECORD_EACH_MEASUREMENT_H_
#define SURVEYDATA_TOOLS_RECORD_EACH_MEASUREMENT_H_

#include <cstdint>
#include <functional>
#include <string>

#include <command_line/exit_code.h>
#include <record/decoded_record.h>
#include <record/piece_output.h>
#include <record/record_files.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {

/// How many measurements were selected, and how many frames were bad.
struct MeasurementCounts {
  std::uint64_t taken = 0;
  std::uint64_t badFrames = 0;

  void Add(const MeasurementCounts& more);
};

/// Reads the measurements of `walk` and visits those that `filter` selects. Bad frames are left out
/// and counted; the first 100 frames of a file whose blocks do not fit give messages that begin
/// with `prefix`. Headers in a gap whose frame would overlap the next record are ignored: random
/// bytes can look like them.
MeasurementCounts ForEachMeasurement(RecordWalkC& walk, const RecordFilter& filter,
                                     PieceOutputC& output, const std::string& prefix,
                                     const std::function<void(const DecodedRecord&)>& visit);

/// Reports the bad frames of a whole file, and a file without a measurement to visit. Returns
/// `kFinding` in both cases.
ExitCode TellAbout(const MeasurementCounts& counts, const RecordFilter& filter,
                   const RecordFile& file, const std::string& prefix, PieceOutputC& output);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_EACH_MEASUREMENT_H_
