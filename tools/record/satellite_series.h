#ifndef SURVEYDATA_TOOLS_RECORD_SATELLITE_SERIES_H_
#define SURVEYDATA_TOOLS_RECORD_SATELLITE_SERIES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <output/chart.h>
#include <record/decoded_record.h>

namespace Tool {

/// Dilutions of precision and satellite counts over time, in a fixed amount of memory: if there
/// are more records than a picture can show, adjacent records are combined into a group, which
/// keeps the lowest and the highest of each value with their times.
class SatelliteSeriesC {
 public:
  enum Value : std::size_t { kHDOP, kVDOP, kPDOP, kUsed, kInView, kValueCount };

  /// The values of a record that a picture shows.
  struct Sample {
    std::int64_t time = 0;                       ///< Of time A, in milliseconds of GPS time.
    std::array<float, kValueCount> values = {};  ///< Negative when not available.
  };
  static Sample ToSample(const DecodedRecord& record);

  void Add(const Sample& sample);
  void Add(const DecodedRecord& record) { Add(ToSample(record)); }

  std::uint64_t GetRecordCount() const { return records_; }
  /// In seconds from the start of GPS time. Requires at least one record.
  double GetFirstTime() const;
  double GetLastTime() const;

  /// The runs of a value. A run ends where time advances by more than three times the median step
  /// (of the first 4096 records) or goes backwards, and where the value is absent for as long. If
  /// there are too many gaps to keep them all, the values between them are in runs of one point.
  std::vector<std::vector<ChartPoint>> GetRuns(Value value) const;

 private:
  // The range of a value in a group. Times are in milliseconds of GPS time.
  struct Range {
    float lowest = 1;  // above `highest` if there is no value
    float highest = 0;
    std::int64_t lowestAt = 0;
    std::int64_t highestAt = 0;
    std::int64_t first = 0;
    std::int64_t last = 0;
    bool hasGap = false;

    bool IsEmpty() const { return lowest > highest; }
  };
  struct Group {
    std::int64_t first;
    std::int64_t last;
    std::array<Range, kValueCount> values;
  };

  static void Merge(Group& into, const Group& from, std::int64_t median);
  static bool HasGap(const Group& from, const Group& to, std::int64_t median);
  static bool IsGap(std::int64_t from, std::int64_t to, std::int64_t median);
  std::int64_t MedianStep() const;
  void Condense(bool acrossGaps);

  std::uint64_t records_ = 0;
  std::int64_t median_ = 0;  // of the steps in time; 0 if not yet known
  std::vector<Group> groups_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_SATELLITE_SERIES_H_
