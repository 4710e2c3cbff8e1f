#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/message.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/explain_frame.h>
#include <record/find_frame.h>
#include <record/record_commands.h>
#include <record/show_writer.h>

namespace Tool {
namespace {

struct Options {
  std::string file;
  FrameOffset offset;
  bool isJson = false;
  bool hasBytes = false;
};

std::string_view ToView(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void WriteJson(OutputC& out, const DecodedRecord& record, std::span<const std::uint8_t> frame,
               bool hasBytes) {
  JsonWriterC line(out.GetBuffer());
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
void WriteBytes(OutputC& out, std::uint64_t offset, std::span<const std::uint8_t> frame) {
  constexpr std::size_t kPerLine = 8;
  out.Print("{:>10}  {:<23}  {:<14}  {:<20}  {}\n", "offset", "bytes", "block", "field", "value");
  for (const FrameField& field : ExplainFrame(frame)) {
    for (std::size_t i = 0; i < field.size; i += kPerLine) {
      const auto bytes = frame.subspan(field.at + i, std::min(kPerLine, field.size - i));
      const std::string hex = fmt::format("{:02x}", fmt::join(bytes, " "));
      if (i > 0) {
        out.Print("{:>10}  {}\n", offset + field.at + i, hex);
      } else {
        const std::string line =
            fmt::format("{:>10}  {:<23}  {:<14}  {:<20}  {}", offset + field.at, hex,
                        field.BlockName(), field.FieldName(), field.value);
        out.Print("{}\n", std::string_view(line).substr(0, line.find_last_not_of(' ') + 1));
      }
    }
  }
}

ExitCode Run(const Options& options) {
  const std::vector<std::uint8_t> frame = FindFrame(options.file, options.offset);
  const DecodedRecord record = Decode(options.offset.value, frame);
  OutputC out;
  if (options.isJson) {
    WriteJson(out, record, frame, options.hasBytes);
  } else if (options.hasBytes) {
    WriteBytes(out, options.offset.value, frame);
  } else {
    ShowWriterC writer(out.GetBuffer());
    DescribeRecord(record, writer);
  }
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
  command.description = "Show one measurement frame: its fields, or what each of its bytes is.";
  command.footer = "Example:\n  surveydata record show valley_drive.rec --offset 960 --bytes";
  command.arguments = {FileArgument(options->file)};
  command.options = {OffsetOption(options->offset),
                     {.names = {"--bytes"},
                      .description = "Every byte with its block, field and value",
                      .flag = &options->hasBytes},
                     {.names = {"--json"},
                      .description = "One JSON object, as in export",
                      .flag = &options->isJson}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
