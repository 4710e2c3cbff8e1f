#include <optional>

#include <fmt/format.h>

#include <surveydata/gnss/gps_time.h>

#include <output/gps_time.h>
#include <platform/format.h>
#include <record/changed_fields.h>
#include <record/decoded_record.h>
#include <record/difference_writer.h>

namespace Tool {
namespace {

std::optional<std::uint64_t> OffsetOf(const ComparedRecord* record) {
  return record != nullptr ? std::optional(record->offset) : std::nullopt;
}

std::string OffsetText(const ComparedRecord* record) {
  return record != nullptr ? fmt::format("{}", record->offset) : "-";
}

// Empty for a record without a time in range.
std::string TimeText(const ComparedRecord& record) {
  const auto time = TimeOf(record);
  const bool isInRange = time && time->second >= 0 && time->second < SDI::kMillisecondsPerWeek;
  return isInRange ? GpsDateTime(time->first * SDI::kMillisecondsPerWeek + time->second) : "";
}

}  // namespace

void DifferenceCounts::Add(const DifferenceCounts& more) {
  same += more.same;
  changed += more.changed;
  removed += more.removed;
  added += more.added;
}

std::string DifferenceCounts::ToText() const {
  return fmt::format("{} the same, {} changed, {} removed, {} added", same, changed, removed,
                     added);
}

void DifferenceCounts::Write(JsonWriterC& line) const {
  line.Field("same", same);
  line.Field("changed", changed);
  line.Field("removed", removed);
  line.Field("added", added);
}

void DifferenceWriterC::Removed(const ComparedRecord& a) {
  ++counts_.removed;
  Write("removed", Colour::kBad, &a, nullptr);
}

void DifferenceWriterC::Added(const ComparedRecord& b) {
  ++counts_.added;
  Write("added", Colour::kGood, nullptr, &b);
}

void DifferenceWriterC::Changed(const ComparedRecord& a, const ComparedRecord& b) {
  ++counts_.changed;
  Write("changed", Colour::kChanged, &a, &b);
}

void DifferenceWriterC::Write(std::string_view change, Colour colour, const ComparedRecord* a,
                              const ComparedRecord* b) {
  const ComparedRecord& shown = a != nullptr ? *a : *b;
  const std::string time = TimeText(shown);
  const bool areBoth = a != nullptr && b != nullptr;
  if (format_.isJson) {
    JsonWriterC line(out_.GetBuffer());
    if (!file_.empty()) line.NamedField("file", file_);
    line.NamedField("change", change);
    line.Field("offsetA", OffsetOf(a));
    line.Field("offsetB", OffsetOf(b));
    line.Field("type", shown.type);
    line.Field("time", time.empty() ? std::nullopt : std::optional<std::string_view>(time));
    if (areBoth) WriteChangedFields(line, Decode(a->offset, a->bytes), Decode(b->offset, b->bytes));
    line.EndLine();
  } else {
    const std::string kind = shown.isMeasurement ? (time.empty() ? "measurement" : time)
                                                 : fmt::format("record of kind {}", shown.type);
    Append(out_.GetBuffer(), "{}  {:>10}  {:>10}  {}\n",
           format_.colours.Paint(colour, fmt::format("{:<7}", change)), OffsetText(a),
           OffsetText(b), kind);
    if (areBoth) {
      PrintChangedFields(out_.GetBuffer(), Decode(a->offset, a->bytes),
                         Decode(b->offset, b->bytes));
    }
  }
  out_.FlushIfFull();
}

}  // namespace Tool
