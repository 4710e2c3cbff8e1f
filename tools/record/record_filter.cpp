#include <algorithm>
#include <string_view>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include <surveydata/gnss/gps_time.h>

#include <command_line/text.h>
#include <output/gps_time.h>
#include <record/gps_moment.h>
#include <record/record_columns.h>
#include <record/record_filter.h>

namespace Tool {
namespace {

void CheckOrder(const RecordFilter& filter) {
  if (filter.from && filter.to && *filter.from >= *filter.to) {
    throw ValueErrorC("--from is not before --to");
  }
}

CommandOption TimeOption(std::string name, std::string description, RecordFilter& filter,
                         std::optional<std::int64_t> RecordFilter::*limit) {
  return {.names = {std::move(name)},
          .value = "TIME",
          .description = std::move(description),
          .take = [&filter, limit](const std::string& text) {
            filter.*limit = ParseMoment(text);
            CheckOrder(filter);
          }};
}

std::uint64_t ParseCount(const std::string& text) {
  const auto count = ToNumber<std::uint64_t>(text);
  if (!count || *count == 0) throw ValueErrorC("not a whole number of 1 or more");
  return *count;
}

// The words of conditions other than values.
std::vector<std::string> WordsOfConditions() {
  std::vector<std::string> words = RecordColumnNames();
  words.insert(words.end(), {"in_view", "used", "and", "or", "not", "present"});
  return words;
}

}  // namespace

std::string RecordFilter::NoneIn(std::string_view file) const {
  return fmt::format("{} contains no measurement{}", file,
                     TakesAll() ? "" : " that the filters select");
}

CommandOptionsC FilterOptionsWithoutName(RecordFilter& filter) {
  return {
      TimeOption("--from",
                 "Only measurements from this time on: GPS time such as "
                 "2020-02-06T18:14:35.5, or UTC with a Z at the end",
                 filter, &RecordFilter::from),
      TimeOption("--to", "Only measurements before this time, written as for --from", filter,
                 &RecordFilter::to),
      {.names = {"--where"},
       .value = "CONDITION",
       .description = "Only measurements whose columns meet a condition: comparisons with numbers "
                      "and texts in "
                      "quotes, and, or, not, present(COLUMN), such as \"pdop < 4 and used >= 6\"",
       .take =
           [&filter](const std::string& text) {
             filter.where = std::make_shared<const RecordConditionC>(text);
           },
       .words = WordsOfConditions()},
      {.names = {"--every"},
       .value = "N",
       .description = "Only the first and then every Nth of these measurements of each file",
       .take = [&filter](const std::string& text) { filter.every = ParseCount(text); }}};
}

void AddFilterOptions(Command& command, RecordFilter& filter) {
  command.options.Add(FilterOptions(filter));
}

CommandOptionsC FilterOptions(RecordFilter& filter) {
  CommandOptionsC options = FilterOptionsWithoutName(filter);
  options.Insert(2, {.names = {"--name"},
                     .value = "NAME",
                     .description = "Only measurements with this name; can be repeated",
                     .take = [&filter](const std::string& name) { filter.names.push_back(name); },
                     .isRepeatable = true});
  return options;
}

bool RecordSieveC::Takes(const DecodedRecord& record) {
  return Meets(record) && met_++ % filter_.every == 0;
}

bool RecordSieveC::Meets(const DecodedRecord& record) const {
  if (filter_.from || filter_.to) {
    const Vorlin::TimeC& time = record.measurement.GetTimeA();
    if (time.timeOfWeek < 0 || time.timeOfWeek >= SDI::kMillisecondsPerWeek) return false;
    const std::int64_t at = GpsMilliseconds(time);
    if (at < filter_.from.value_or(at) || (filter_.to && at >= *filter_.to)) return false;
  }
  if (!filter_.names.empty()) {
    static const SDI::GPSColumn& kName = FindRecordColumn("name");
    SDI::GPSColumnValueC value;
    AskRecordColumn(kName, record, value);
    const auto* const text = std::get_if<std::string_view>(&value.Get());
    const std::string_view name = text != nullptr ? *text : std::string_view();
    if (std::ranges::find(filter_.names, name) == filter_.names.end()) return false;
  }
  return !filter_.where || filter_.where->IsTrue(record);
}

}  // namespace Tool
