#include <cstdio>
#include <memory>
#include <string>

#include <fmt/format.h>

#include "csv_writer.h"
#include "decoded_record.h"
#include "describe_record.h"
#include "json_writer.h"
#include "output.h"
#include "record_commands.h"
#include "record_walk.h"

namespace Tool {
namespace {

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
  RecordWalkC walk(options.file);
  OutputC out(options.output, options.file);
  if (options.isCsv) WriteCsv(out, DecodedRecord(), CsvWriterC::Row::kHeader);
  ExitCode result = ExitCode::kDone;
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (!entry.IsMeasurement()) continue;
    const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
    if (!record.IsDone()) {
      fmt::print(stderr, "surveydata: the frame at {} is left out: its blocks do not fit\n",
                 entry.offset);
      result = ExitCode::kFinding;
      continue;
    }
    if (options.isCsv) {
      WriteCsv(out, record, CsvWriterC::Row::kRecord);
    } else {
      WriteJson(out, record);
    }
    out.FlushIfFull();
  }
  out.Close();
  return result;
}

}  // namespace

void AddRecordExport(CLI::App& record, ExitCode& result) {
  CLI::App& command = *record.add_subcommand(
      "export",
      "Write every measurement with all its fields, as JSON Lines or as a CSV table.\n"
      "A frame whose blocks do not fit is left out, named on standard error, and gives the\n"
      "exit code 1. Other kinds of records and gaps are passed over.");
  const auto options = std::make_shared<Options>();
  AddFileArgument(command, options->file);
  command.add_flag("--csv", options->isCsv, "CSV with a header row, quoted as RFC 4180 has it");
  command.add_option("-o,--output", options->output, "Write to this file, not standard output")
      ->type_name("OUT");
  command.footer("Example:\n  surveydata record export valley_drive.rec --csv -o valley_drive.csv");
  command.callback([options, &result] { result = Run(*options); });
}

}  // namespace Tool
