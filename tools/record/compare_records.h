#ifndef SURVEYDATA_TOOLS_RECORD_COMPARE_RECORDS_H_
#define SURVEYDATA_TOOLS_RECORD_COMPARE_RECORDS_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <platform/input_file.h>
#include <record/record_files.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {

/// A record with a copy of its bytes.
struct ComparedRecord {
  std::uint64_t offset = 0;
  std::uint8_t type = 0;
  bool isMeasurement = false;
  std::vector<std::uint8_t> bytes;

  std::string_view View() const {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }
};

/// Week and time of week of time A.
using RecordTime = std::pair<std::int64_t, std::int64_t>;

/// Time A of a measurement; empty for any other record, and for one whose blocks do not fit.
std::optional<RecordTime> TimeOf(const ComparedRecord& record);

/// Receives the differences of two files, A and B, in order.
class RecordDifferencesI {
 public:
  RecordDifferencesI() = default;
  RecordDifferencesI(const RecordDifferencesI&) = delete;
  RecordDifferencesI& operator=(const RecordDifferencesI&) = delete;
  virtual ~RecordDifferencesI() = default;

  /// Records that both files have.
  virtual void Same(std::uint64_t count) = 0;
  virtual void Removed(const ComparedRecord& a) = 0;
  virtual void Added(const ComparedRecord& b) = 0;
  /// Measurements with the same time A and other bytes.
  virtual void Changed(const ComparedRecord& a, const ComparedRecord& b) = 0;
};

/// A file to compare, opened once. Several threads may walk it at once.
class ComparedFileC {
 public:
  /// \throw FileErrorC  if the file cannot be opened
  explicit ComparedFileC(const RecordFile& file) : file_(file), input_(file.Open()) {}

  /// 0 if unknown; the file is then walked as a whole.
  std::uint64_t GetSize() const { return file_.size; }
  /// A walk from `begin` to `end`, or to the end of the file.
  RecordWalkC Walk(std::uint64_t begin, std::optional<std::uint64_t> end,
                   std::function<void(std::uint64_t)> reportProgress) const;

 private:
  const RecordFile& file_;
  std::shared_ptr<InputFileC> input_;
};

struct CompareOptions {
  const RecordFilter& filter;
  unsigned jobs = 1;
  /// Called about every mebibyte with the bytes of both files up to there.
  std::function<void(std::uint64_t)> reportProgress;
};

/// Compares the records of two files: all records, or the measurements that the filter selects.
/// Gaps are ignored. Unchanged records form a longest common subsequence of records with equal
/// bytes, searched up to the first 32 records in a row that are the same; between them,
/// measurements with the same time A are pairs. In a run of differences longer than 8192 records or
/// 8 MiB, the subsequence is searched in parts, which are cut at the same time A.
///
/// With several jobs, threads read stretches of both files and count the records that are the same,
/// up to the next difference. The differences do not depend on the number of jobs.
/// \cost linear in the size of the files, plus n² / 64 for a run of differences of n records. The
///       memory depends on the longest run, at most about 30 MB.
/// \throw FileErrorC  if a file cannot be read
void CompareRecords(const ComparedFileC& a, const ComparedFileC& b, const CompareOptions& options,
                    RecordDifferencesI& differences);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_COMPARE_RECORDS_H_
