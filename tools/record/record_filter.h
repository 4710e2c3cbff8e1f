#ifndef SURVEYDATA_TOOLS_RECORD_RECORD_FILTER_H_
#define SURVEYDATA_TOOLS_RECORD_RECORD_FILTER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <command_line/command.h>
#include <record/decoded_record.h>
#include <record/record_condition.h>

namespace Tool {

/// Which measurements a command selects; all by default.
struct RecordFilter {
  std::optional<std::int64_t> from;  ///< Time A is not earlier, in milliseconds of GPS time.
  std::optional<std::int64_t> to;    ///< Time A is earlier.
  std::vector<std::string> names;    ///< The name is one of these, in UTF-8.
  std::shared_ptr<const RecordConditionC> where;
  std::uint64_t every = 1;  ///< Of those that the others select, the first and then every Nth.

  bool TakesAll() const { return !from && !to && names.empty() && !where && every == 1; }
  /// The message that `file` has no such measurement.
  std::string NoneIn(std::string_view file) const;
};

/// Gives a command --from, --to, --name, --where and --every. `filter` must outlive the parsing.
void AddFilterOptions(Command& command, RecordFilter& filter);
/// These options.
CommandOptionsC FilterOptions(RecordFilter& filter);
/// Those without --name, for a command that has its own --name.
CommandOptionsC FilterOptionsWithoutName(RecordFilter& filter);

/// Applies a filter to the measurements of one file.
class RecordSieveC {
 public:
  explicit RecordSieveC(const RecordFilter& filter) : filter_(filter) {}

  /// Whether `record` is selected. Call it for all measurements in order.
  bool Takes(const DecodedRecord& record);

 private:
  bool Meets(const DecodedRecord& record) const;

  const RecordFilter& filter_;
  std::uint64_t met_ = 0;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_RECORD_FILTER_H_
