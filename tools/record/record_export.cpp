#include <memory>
#include <string>

#include <command_line/common_options.h>
#include <output/csv_writer.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/each_measurement.h>
#include <record/record_commands.h>
#include <record/record_walk.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Write every measurement with all its fields, as JSON Lines or as a CSV table.\n"
    "Bad frames are left out, counted on standard error, and give the exit code 1; so does a file\n"
    "without a measurement. Other kinds of records and gaps are passed over, with chance bytes in\n"
    "a gap that look like a header whose frame runs into the next record.";

struct Options {
  std::string file;
  std::string output;
  bool isCsv = false;
  Formulas formulas = Formulas::kEscape;
};

void WriteCsv(OutputC& out, const DecodedRecord& record, CsvWriterC::Row row, Formulas formulas) {
  CsvWriterC line(out.GetBuffer(), row, formulas);
  DescribeRecord(record, line);
  line.EndLine();
}

void WriteJson(OutputC& out, const DecodedRecord& record) {
  JsonWriterC line(out.GetBuffer());
  DescribeRecord(record, line);
  line.EndLine();
}

ExitCode Run(const Options& options) {
  RecordWalkC walk(options.file, options.output.empty());
  OutputC out(options.output, options.file);
  if (options.isCsv) WriteCsv(out, DecodedRecord(), CsvWriterC::Row::kHeader, options.formulas);
  const ExitCode result = ForEachMeasurement(walk, [&](const DecodedRecord& record) {
    if (options.isCsv) {
      WriteCsv(out, record, CsvWriterC::Row::kRecord, options.formulas);
    } else {
      WriteJson(out, record);
    }
    out.FlushIfFull();
  });
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
      "Example:\n  surveydata record export valley_drive.rec --csv -o valley_drive.csv";
  command.arguments = {FileArgument(options->file)};
  command.options = {{.names = {"--csv"},
                      .description = "CSV with a header row, quoted as RFC 4180 has it",
                      .flag = &options->isCsv},
                     FormulasOption(options->formulas),
                     OutputOption(options->output,
                                  "The file to write, - for standard output, the default", "OUT")};
  command.options[1].needs = {"--csv"};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
