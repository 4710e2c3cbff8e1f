#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/message.h>
#include <command_line/text.h>
#include <output/output.h>
#include <output/replace_file.h>
#include <platform/input_file.h>
#include <record/decoded_record.h>
#include <record/find_frame.h>
#include <record/frame_values.h>
#include <record/patch_frame.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Change the name, the number or the antenna height of one measurement frame.\n"
    "Only the fields that are given are rewritten: the 17 characters of the name (zeros follow a\n"
    "shorter one), the number, the value and kind of the antenna height; and the checksum. All\n"
    "other bytes of the file stay. The change is made completely or not at all: in a copy that is\n"
    "read back and then replaces the file in one step. Group, permissions, access control list "
    "and\n"
    "extended attributes are kept, or the change is refused; only root keeps another owner. "
    "Sparse\n"
    "files stay sparse. The file gets a new inode, so other hard links keep the old content;\n"
    "symbolic links are followed. The file is locked in the meantime: of several such commands at\n"
    "once, all but one end with 3. Other programs must not write to it; a change that is noticed\n"
    "is refused.";

struct Options {
  std::string file;
  FrameOffset offset;
  FrameChanges changes;
  bool isDryRun = false;
};

std::int32_t ParseNumber(const std::string& text) {
  const auto number = ToNumber<std::int32_t>(text);
  if (!number) throw ValueErrorC("is not a decimal number of 32 bits");
  return *number;
}

float ParseHeight(const std::string& text) {
  const auto number = ToNumber<double>(text);
  if (!number) throw ValueErrorC("is not a decimal number");
  return ToAntennaHeight(*number);
}

// One line per changed byte; the first line of a field shows its new value.
void WriteChanges(OutputC& out, std::uint64_t offset, const PatchedFrame& frame) {
  out.Print("{:>10}  {:>3}  {:>3}  {}\n", "offset", "old", "new", "field");
  for (const FrameField& field : frame.fields) {
    const std::string name = field.BlockName() == field.FieldName()
                                 ? std::string(field.FieldName())
                                 : fmt::format("{}, {}", field.BlockName(), field.FieldName());
    std::string value = " = " + field.value;
    for (std::size_t i = field.at; i < field.at + field.size; ++i) {
      if (frame.before[i] == frame.after[i]) continue;
      out.Print("{:>10}   {:02x}   {:02x}  {}{}\n", offset + i, frame.before[i], frame.after[i],
                name, value);
      value.clear();
    }
  }
}

bool IsSlant(std::span<const std::uint8_t> frame) {
  float height = 0;
  bool isVertical = true;
  Decode(0, frame).measurement.GetAntennaHeight().GetHeight(height, isVertical);
  return !isVertical;
}

std::vector<std::uint8_t> FindFrameIn(const Options& options,
                                      const std::optional<FileReplacementC>& replacement) {
  if (!replacement) return FindFrame(options.file, options.offset);
  const auto readAt = [&](std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return static_cast<std::ptrdiff_t>(replacement->Read(offset, bytes));
  };
  return FindFrame(readAt, replacement->GetSize(), options.offset);
}

ExitCode Run(const Options& options) {
  const FrameChanges& changes = options.changes;
  if (IsStandardInput(options.file)) {
    throw ToolErrorC(ExitCode::kUsage, "standard input cannot be changed; name a file");
  }
  if (!changes.name && !changes.number && !changes.antennaHeight) {
    throw ToolErrorC(ExitCode::kUsage, "nothing to set: give --name, --number or --antenna-height");
  }
  std::optional<FileReplacementC> replacement;  // holds the lock while the frame is read
  if (!options.isDryRun) replacement.emplace(options.file);
  const PatchedFrame frame = PatchFrame(FindFrameIn(options, replacement), changes);
  if (changes.antennaHeight && !changes.isSlant && IsSlant(frame.before)) {
    Tell("the antenna height becomes a vertical one, without --slant; it is a slant height now");
  }
  OutputC out;
  if (frame.before == frame.after) {
    Tell(
        fmt::format("the frame at {} holds this already; nothing is changed", options.offset.text));
  } else if (options.isDryRun) {
    WriteChanges(out, options.offset.value, frame);
  } else {
    replacement->Replace(options.offset.value, frame.before, frame.after);
  }
  out.Close();
  return ExitCode::kDone;
}

}  // namespace

Command RecordSetCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "set";
  command.description = kDescription;
  command.footer =
      "Example:\n  surveydata record set valley_drive.rec --offset 960 --name 'Süd-Ø2' --number 7 "
      "--dry-run";
  command.arguments = {FileArgument(options->file, false)};
  command.options = {
      OffsetOption(options->offset),
      {.names = {"--name"},
       .value = "TEXT",
       .description = "The point name: up to 17 characters, UTF-8",
       .take = [options](const std::string& name) { options->changes.name = ToFrameName(name); }},
      {.names = {"--number"},
       .value = "N",
       .description = "The number beside the name",
       .take = [options](const std::string& text) { options->changes.number = ParseNumber(text); }},
      {.names = {"--antenna-height"},
       .value = "H",
       .description = "The antenna height in metres, 0 to 1000; vertical unless --slant is given",
       .take =
           [options](const std::string& text) {
             options->changes.antennaHeight = ParseHeight(text);
           }},
      {.names = {"--slant"},
       .description = "The antenna height is a slant height",
       .flag = &options->changes.isSlant,
       .needs = {"--antenna-height"}},
      {.names = {"--dry-run"},
       .description = "Print the bytes that would change, and leave the file as it is",
       .flag = &options->isDryRun}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
