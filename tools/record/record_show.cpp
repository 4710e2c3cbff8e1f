#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/message.h>
#include <command_line/progress.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/each_measurement.h>
#include <record/explain_frame.h>
#include <record/find_frame.h>
#include <record/piece_output.h>
#include <record/record_commands.h>
#include <record/record_files.h>
#include <record/record_filter.h>
#include <record/record_walk.h>
#include <record/show_writer.h>

namespace Tool {
namespace {

struct Options {
  std::string file;
  FrameOffset offset;
  RecordFilter filter;
  bool isJson = false;
  bool hasBytes = false;
};

constexpr const char* kDescription =
    "Show one measurement frame, or all that the filters select: its fields, or with --bytes\n"
    "the meaning of each byte.";

std::string_view ToView(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void WriteJson(fmt::memory_buffer& out, const DecodedRecord& record,
               std::span<const std::uint8_t> frame, bool hasBytes) {
  JsonWriterC line(out);
  DescribeRecord(record, line);
  if (hasBytes) {
    line.BeginArray("bytes");
    for (const FrameField& field : ExplainFrame(frame)) {
      line.BeginElement();
      line.Field("offset", record.offset + field.at);
      line.Field("size", field.size);
      line.Field("hex", HexBytes{ToView(frame.subspan(field.at, field.size))});
      line.Field("block", field.BlockName());
      line.Field("field", field.FieldName());
      line.Field("value", std::string_view(field.value));
      line.End();
    }
    line.EndArray();
  }
  line.EndLine();
}

// Fields longer than a line continue on further lines.
void WriteBytes(fmt::memory_buffer& out, std::uint64_t offset,
                std::span<const std::uint8_t> frame) {
  constexpr std::size_t kPerLine = 8;
  Append(out, "{:>10}  {:<23}  {:<14}  {:<20}  {}\n", "offset", "bytes", "block", "field", "value");
  for (const FrameField& field : ExplainFrame(frame)) {
    for (std::size_t i = 0; i < field.size; i += kPerLine) {
      const auto bytes = frame.subspan(field.at + i, std::min(kPerLine, field.size - i));
      const std::string hex = SpacedHex(ToView(bytes));
      if (i > 0) {
        Append(out, "{:>10}  {}\n", offset + field.at + i, hex);
      } else {
        const std::string line =
            fmt::format("{:>10}  {:<23}  {:<14}  {:<20}  {}", offset + field.at, hex,
                        field.BlockName(), field.FieldName(), field.value);
        Append(out, "{}\n", std::string_view(line).substr(0, line.find_last_not_of(' ') + 1));
      }
    }
  }
}

void Write(fmt::memory_buffer& out, const DecodedRecord& record,
           std::span<const std::uint8_t> frame, const Options& options) {
  if (options.isJson) {
    WriteJson(out, record, frame, options.hasBytes);
  } else if (options.hasBytes) {
    WriteBytes(out, record.offset, frame);
  } else {
    ShowWriterC writer(out);
    DescribeRecord(record, writer);
  }
}

// Shows the measurements that the filters select, with empty lines between them.
ExitCode ShowFiltered(const Options& options) {
  if (options.filter.TakesAll()) {
    throw ToolErrorC(ExitCode::kUsage, "give --offset, or a filter such as --where",
                     "Run with --help for more information.");
  }
  const RecordFile file = FindRecordFile(options.file);
  OutputC out;
  ProgressC progress(file.size, true);
  PieceOutputC output(&out, progress);
  std::uint64_t done = 0;
  RecordWalkC walk(file.Open(), file, {},
                   [&](std::uint64_t bytes) { progress.Update(done += bytes); });
  bool isFirst = true;
  const MeasurementCounts counts =
      ForEachMeasurement(walk, options.filter, output, "", [&](const DecodedRecord& record) {
        if (!isFirst && !options.isJson) Append(out.GetBuffer(), "\n");
        isFirst = false;
        Write(out.GetBuffer(), record, walk.GetBytes(), options);
        out.FlushIfFull();
      });
  out.Close();
  return TellAbout(counts, options.filter, file, "", output);
}

ExitCode Run(const Options& options) {
  if (options.offset.text.empty()) return ShowFiltered(options);
  const std::vector<std::uint8_t> frame = FindFrame(options.file, options.offset);
  const DecodedRecord record = Decode(options.offset.value, frame);
  OutputC out;
  Write(out.GetBuffer(), record, frame, options);
  out.Close();
  if (record.IsDone()) return ExitCode::kDone;
  Tell(fmt::format("the blocks of the frame at {} do not fit", options.offset.text));
  return ExitCode::kFinding;
}

}  // namespace

Command RecordShowCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "show";
  command.description = kDescription;
  command.footer =
      "Examples:\n  surveydata record show valley_drive.rec --offset 960 --bytes\n"
      "  surveydata record show valley_drive.rec --where \"pdop > 6\"";
  command.arguments = {FileArgument(options->file)};
  command.options = {{.names = {"--bytes"},
                      .description = "Every byte with its block, field and value",
                      .flag = &options->hasBytes},
                     {.names = {"--json"},
                      .description = "One JSON object for each, as in export",
                      .flag = &options->isJson}};
  AddOffsetOrFilters(command, options->offset, FilterOptions(options->filter));
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
