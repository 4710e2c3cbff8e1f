#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

#include <fmt/format.h>

#include <surveydata/gnss/record_columns.h>

#include <command_line/suggestion.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/record_columns.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

// A hint that lists the columns with the most similar names, if any are similar.
std::string Suggestion(std::string_view name) {
  std::size_t nearest = std::max<std::size_t>(2, name.size() / 3) + 1;
  std::string names;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) {
    const std::size_t distance = EditDistance(name, column.name);
    if (distance > nearest || distance > std::max<std::size_t>(2, name.size() / 3)) continue;
    if (distance < nearest) names.clear();
    nearest = distance;
    if (!names.empty()) names += " or ";
    names += column.name;
  }
  if (!names.empty()) return "; did you mean " + names + "?";
  return "; surveydata record columns lists them";
}

RecordColumns ParseColumns(std::string_view text) {
  RecordColumns columns;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(',', at), text.size());
    const std::string_view name = text.substr(at, end - at);
    const SDI::GPSColumn* const column = &FindRecordColumn(name);
    if (std::ranges::find(columns, column) != columns.end()) {
      throw ValueErrorC(fmt::format("the column {} is listed twice", name));
    }
    columns.push_back(column);
    at = end + 1;
  }
  return columns;
}

constexpr const char* kDescription =
    "List the columns of a table of measurements: name, type, unit and description. A question\n"
    "mark after the type means that a value can be absent.";

ExitCode Run(bool isJson) {
  OutputC out;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) {
    if (isJson) {
      JsonWriterC line(out.GetBuffer());
      line.NamedField("name", column.name);
      line.NamedField("type", TextOf(column.type));
      line.NamedField("unit", column.unit);
      line.Field("canBeAbsent", column.canBeAbsent);
      line.NamedField("description", column.description);
      line.EndLine();
      out.FlushIfFull();
    } else {
      out.Print("{:<26}{:<16}{:<5} {}\n", column.name,
                fmt::format("{}{}", TextOf(column.type), column.canBeAbsent ? "?" : ""),
                column.unit, column.description);
    }
  }
  out.Close();
  return ExitCode::kDone;
}

}  // namespace

RecordColumns AllRecordColumns() {
  RecordColumns columns;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) columns.push_back(&column);
  return columns;
}

std::vector<std::string> RecordColumnNames() {
  std::vector<std::string> names;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) names.emplace_back(column.name);
  return names;
}

const SDI::GPSColumn& FindRecordColumn(std::string_view name) {
  const SDI::GPSColumn* const column = SDI::FindGPSColumn(name);
  if (column == nullptr) {
    throw ValueErrorC(fmt::format("there is no column \"{}\"{}", name, Suggestion(name)));
  }
  return *column;
}

void AskRecordColumn(const SDI::GPSColumn& column, const DecodedRecord& record,
                     SDI::GPSColumnValueC& value) {
  SDI::RecordColumns::Ask(column, {&record.measurement, &record.info, record.offset, record.size},
                          value);
}

CommandOption RecordColumnsOption(RecordColumns& columns) {
  return {.names = {"--columns"},
          .value = "NAMES",
          .description =
              "The columns of the CSV table, separated by commas; surveydata record columns "
              "lists them all",
          .take = [&columns](const std::string& text) { columns = ParseColumns(text); },
          .words = RecordColumnNames()};
}

Command RecordColumnsCommand() {
  const auto isJson = std::make_shared<bool>(false);
  Command command;
  command.name = "columns";
  command.description = kDescription;
  command.footer =
      "surveydata record export --csv --columns selects some of them.\n\n"
      "Example:\n  surveydata record columns";
  command.options = {{.names = {"--json"},
                      .description = "JSON Lines: one object per column",
                      .flag = isJson.get()}};
  command.run = [isJson] { return Run(*isJson); };
  return command;
}

}  // namespace Tool
