#include <cstdint>
#include <memory>
#include <string>

#include <command_line/common_options.h>
#include <command_line/message.h>
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
    "Bad frames, as list shows them, are left out, counted on standard error, and give the exit\n"
    "code 1; one that runs into the next record, as chance bytes do, is counted alone.\n"
    "Other kinds of records and gaps are passed over; a file that has nothing else gives the\n"
    "exit code 1 as well.";

struct Options {
  std::string file;
  std::string output;
  bool isCsv = false;
};

void WriteCsv(OutputC& out, const DecodedRecord& record, CsvWriterC::Row row) {
  CsvWriterC line(out.GetBuffer(), row);
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
  if (options.isCsv) WriteCsv(out, DecodedRecord(), CsvWriterC::Row::kHeader);
  std::uint64_t count = 0;
  ExitCode result = ForEachMeasurement(walk, [&](const DecodedRecord& record) {
    ++count;
    if (options.isCsv) {
      WriteCsv(out, record, CsvWriterC::Row::kRecord);
    } else {
      WriteJson(out, record);
    }
    out.FlushIfFull();
  });
  out.Close();
  if (count == 0 && walk.GetFileSize() > 0) {
    Tell(options.file + " holds no measurement");
    result = ExitCode::kFinding;
  }
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
                     OutputOption(options->output,
                                  "The file to write, - for standard output, the default", "OUT")};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
