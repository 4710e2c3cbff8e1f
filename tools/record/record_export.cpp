#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include <surveydata/gnss/gps_time.h>

#include <command_line/common_options.h>
#include <output/csv_writer.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/each_measurement.h>
#include <record/gps_moment.h>
#include <record/record_columns.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Write every measurement with all its fields, as JSON Lines or as a CSV table, whose columns\n"
    "surveydata record columns lists; what is absent is an empty cell.\n"
    "Bad frames are left out, counted on standard error, and give the exit code 1; so does a file\n"
    "without a measurement to write. Other kinds of records and gaps are passed over, with chance "
    "bytes in\n"
    "a gap that look like a header whose frame runs into the next record.";

struct Options {
  std::string file;
  std::string output;
  bool isCsv = false;
  RecordColumns columns = AllRecordColumns();
  Formulas formulas = Formulas::kEscape;
  RecordFilter filter;
};

// Writes the table, and notes when times in UTC are not certain.
class CsvTableC {
 public:
  CsvTableC(OutputC& out, const Options& options)
      : out_(out), columns_(options.columns), formulas_(options.formulas) {
    isInUTC_ = std::ranges::any_of(columns_, [](const SDI::GPSColumn* column) {
      return std::string_view(column->name).ends_with("_utc");
    });
    CsvWriterC line(out.GetBuffer(), formulas_);
    for (const SDI::GPSColumn* const column : columns_) line.Name(column->name);
    line.EndLine();
  }

  void Write(const DecodedRecord& record) {
    CsvWriterC line(out_.GetBuffer(), formulas_);
    SDI::GPSColumnValueC value;
    for (const SDI::GPSColumn* const column : columns_) {
      AskRecordColumn(*column, record, value);
      std::visit(
          [&line](const auto& held) {
            if constexpr (std::is_same_v<decltype(held), const std::monostate&>) {
              line.Empty();
            } else {
              line.Value(held);
            }
          },
          value.Get());
    }
    line.EndLine();
    hasTimesAfterExpiry_ |= isInUTC_ && IsAfterExpiry(record.measurement);
  }

  void TellAboutLeapSeconds() const {
    if (hasTimesAfterExpiry_) Tool::TellAboutLeapSeconds();
  }

 private:
  static bool IsAfterExpiry(const SDI::GPSMeasDataImplC& measurement) {
    Vorlin::TimeC extra;
    const bool hasExtra = measurement.GetExtraTime(extra.week, extra.timeOfWeek);
    return SDI::IsAfterLeapSecondExpiry(measurement.GetTimeA()) ||
           (hasExtra && SDI::IsAfterLeapSecondExpiry(extra));
  }

  OutputC& out_;
  const RecordColumns& columns_;
  Formulas formulas_;
  bool isInUTC_ = false;
  bool hasTimesAfterExpiry_ = false;
};

void WriteJson(OutputC& out, const DecodedRecord& record) {
  JsonWriterC line(out.GetBuffer());
  DescribeRecord(record, line);
  line.EndLine();
}

ExitCode Run(const Options& options) {
  RecordWalkC walk(options.file, options.output.empty());
  OutputC out(options.output, options.file);
  std::optional<CsvTableC> table;
  if (options.isCsv) table.emplace(out, options);
  const ExitCode result =
      ForEachMeasurement(walk, options.filter, [&](const DecodedRecord& record) {
        if (table) {
          table->Write(record);
        } else {
          WriteJson(out, record);
        }
        out.FlushIfFull();
      });
  if (table) table->TellAboutLeapSeconds();
  out.Close();
  return result;
}

}  // namespace

Command RecordExportCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "export";
  command.description = kDescription;
  command.footer =
      "Examples:\n  surveydata record export valley_drive.rec --csv -o valley_drive.csv\n"
      "  surveydata record export valley_drive.rec --where \"pdop < 4 and used >= 6\"";
  command.arguments = {FileArgument(options->file)};
  command.options = {{.names = {"--csv"},
                      .description = "CSV with a header row, quoted as RFC 4180 has it",
                      .flag = &options->isCsv},
                     RecordColumnsOption(options->columns),
                     FormulasOption(options->formulas),
                     OutputOption(options->output,
                                  "The file to write, - for standard output, the default", "OUT")};
  command.options[1].needs = {"--csv"};
  command.options[2].needs = {"--csv"};
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
