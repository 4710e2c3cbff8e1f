#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <surveydata/gnss/gps_time.h>

#include <command_line/common_options.h>
#include <command_line/text.h>
#include <output/csv_writer.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/csv_table.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/each_measurement.h>
#include <record/gps_moment.h>
#include <record/record_columns.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_pass.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Write every measurement with all its fields, as JSON Lines or as a CSV table. Its columns\n"
    "are those that surveydata record columns lists; a cell without a value is empty. With\n"
    "several files, or a folder, each line or row begins with the name of the file.\n\n"
    "Bad frames are left out and counted on standard error. The exit code is 1 if there are any,\n"
    "or if a file has no measurement to write. Records of other kinds and gaps are skipped, and\n"
    "so are random bytes in a gap that look like a header whose frame overlaps the next record.";

struct Options {
  RecordFileOptions files;
  std::string output;
  bool isCsv = false;
  RecordColumns columns = AllRecordColumns();
  Formulas formulas = Formulas::kEscape;
  RecordFilter filter;
};

// The result of a piece.
struct Export {
  PieceOutputC output;
  MeasurementCounts counts;
  bool hasTimesAfterExpiry = false;
};

bool IsAfterExpiry(const SDI::GPSMeasDataImplC& measurement) {
  Vorlin::TimeC extra;
  const bool hasExtra = measurement.GetExtraTime(extra.week, extra.timeOfWeek);
  return SDI::IsAfterLeapSecondExpiry(measurement.GetTimeA()) ||
         (hasExtra && SDI::IsAfterLeapSecondExpiry(extra));
}

class ExportPassC : public RecordPassI<Export> {
 public:
  ExportPassC(const Options& options, const std::vector<RecordFile>& files)
      : options_(options), files_(files), hasFileColumn_(options.files.AreMany()) {
    isInUTC_ = options.isCsv && std::ranges::any_of(options.columns, [](const auto* column) {
                 return std::string_view(column->name).ends_with("_utc");
               });
  }

  void WriteHeading(OutputC& out) const {
    if (!options_.isCsv) return;
    CsvWriterC line(out.GetBuffer(), options_.formulas);
    if (hasFileColumn_) line.Name("file");
    WriteNames(options_.columns, line);
    line.EndLine();
  }

  void Read(RecordWalkC& walk, Export& result) const override {
    const RecordFile& file = files_[walk.GetPiece().file];
    const std::string name = hasFileColumn_ ? ToUtf8(file.Title()) : std::string();
    result.counts = ForEachMeasurement(
        walk, options_.filter, result.output, Prefix(file), [&](const DecodedRecord& record) {
          if (options_.isCsv) {
            WriteRow(name, record, result.output.GetBuffer());
            result.hasTimesAfterExpiry |= isInUTC_ && IsAfterExpiry(record.measurement);
          } else {
            WriteJson(name, record, result.output.GetBuffer());
          }
          result.output.FlushIfFull();
        });
  }

  void Take(const RecordPiece& piece, Export& result, PieceOutputC& direct) override {
    result.output.PutTo(direct);
    if (piece.isFirst) counts_ = {};
    counts_.Add(result.counts);
    hasTimesAfterExpiry_ |= result.hasTimesAfterExpiry;
  }

  ExitCode EndFile(const RecordFile& file, PieceOutputC& direct) override {
    return TellAbout(counts_, options_.filter, file, Prefix(file), direct);
  }

  bool HasTimesAfterExpiry() const { return hasTimesAfterExpiry_; }

 private:
  std::string Prefix(const RecordFile& file) const {
    return hasFileColumn_ ? file.Title() + ": " : std::string();
  }

  void WriteRow(std::string_view file, const DecodedRecord& record, fmt::memory_buffer& out) const {
    CsvWriterC line(out, options_.formulas);
    if (hasFileColumn_) line.Value(file);
    WriteValues(record, options_.columns, line);
    line.EndLine();
  }

  void WriteJson(std::string_view file, const DecodedRecord& record,
                 fmt::memory_buffer& out) const {
    JsonWriterC line(out);
    if (hasFileColumn_) line.NamedField("file", file);
    DescribeRecord(record, line);
    line.EndLine();
  }

  const Options& options_;
  const std::vector<RecordFile>& files_;
  bool hasFileColumn_;
  bool isInUTC_ = false;
  MeasurementCounts counts_;  // of the file
  bool hasTimesAfterExpiry_ = false;
};

ExitCode Run(const Options& options) {
  const std::vector<RecordFile> files = FindRecordFiles(options.files, options.output);
  OutputC out(options.output);
  ExportPassC pass(options, files);
  pass.WriteHeading(out);
  const ExitCode result = RunPass(files,
                                  {.jobs = options.files.jobs,
                                   .mayCut = options.filter.every == 1,
                                   .out = &out,
                                   .hasRows = options.output.empty()},
                                  pass);
  if (pass.HasTimesAfterExpiry()) TellAboutLeapSeconds();
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
      "  surveydata record export valley_drive.rec --where \"pdop < 4 and used >= 6\"\n"
      "  surveydata record export --recursive . --csv --columns time_gps,pdop";
  const auto needingCsv = [](CommandOption option) {
    option.needs = {"--csv"};
    return option;
  };
  command.options = {{.names = {"--csv"},
                      .description = "CSV with a header row, quoted as in RFC 4180",
                      .flag = &options->isCsv},
                     needingCsv(RecordColumnsOption(options->columns)),
                     needingCsv(FormulasOption(options->formulas)),
                     OutputOption(options->output,
                                  "The file to write, - for standard output, the default", "OUT")};
  AddFileOptions(command, options->files);
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
