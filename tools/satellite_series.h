#ifndef SURVEYDATA_TOOLS_SATELLITE_SERIES_H_
#define SURVEYDATA_TOOLS_SATELLITE_SERIES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "chart.h"
#include "decoded_record.h"

namespace Tool {

/// Dilutions of precision and satellite counts over time, in a fixed amount of memory: when there
/// are more records than a picture can tell apart, neighbours are put together to a group that
/// keeps the lowest and the highest of each value.
class SatelliteSeriesC {
 public:
  enum Value : std::size_t { kHDOP, kVDOP, kPDOP, kUsed, kInView, kValueCount };

  void Add(const DecodedRecord& record);

  std::uint64_t GetRecordCount() const { return records_; }
  /// Seconds from the start of GPS time. There is at least one record.
  double GetFirstTime() const;
  double GetLastTime() const;

  /// The runs of a value. A run ends where a step in time is more than three times the median
  /// step of all records, or goes backwards, and where records in between lack the value for as
  /// long.
  std::vector<std::vector<ChartPoint>> GetRuns(Value value) const;

 private:
  struct Range {
    float lowest;  // above the highest when there is no value
    float highest;
    bool IsEmpty() const { return lowest > highest; }
  };
  struct Group {
    std::int64_t first;  // milliseconds of GPS time
    std::int64_t last;
    std::array<Range, kValueCount> values;
  };

  static void Merge(Group& into, const Group& from);
  bool IsGap(std::int64_t from, std::int64_t to, std::int64_t median) const;
  std::int64_t MedianStep() const;
  void Condense(bool acrossGaps);

  std::uint64_t records_ = 0;
  std::vector<Group> groups_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_SATELLITE_SERIES_H_
