#include <cstdint>
#include <memory>
#include <string>

#include <fmt/format.h>

#include <record/join_records.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Write a part of a record file as a new file, byte for byte: the measurements that the\n"
    "filters select and that begin between two offsets. Records of other kinds are kept with the\n"
    "measurement before them; those before the first measurement are always kept. Gaps and bad\n"
    "frames are left out and reported on standard error. The exit code is 1 if there are bad\n"
    "frames, or if the part has no measurement.";

CommandOption OffsetLimit(const std::string& name, const std::string& description,
                          std::uint64_t& offset) {
  return {.names = {name},
          .value = "N",
          .description = description,
          .take = [&offset](const std::string& text) { offset = ParseOffset(text).value; }};
}

ExitCode Run(const JoinOptions& options) {
  if (options.files.AreMany()) {
    throw ToolErrorC(ExitCode::kUsage,
                     fmt::format("{} is a folder; surveydata record join reads folders",
                                 options.files.names.front()));
  }
  // An offset too large for 64 bits is treated as any other offset after the end of a file.
  constexpr std::uint64_t kNoEnd = SDI::GPSRecordStretch().end;
  const auto [begin, end] = options.stretch;
  if (begin > end || (begin == end && end != kNoEnd)) {
    throw ToolErrorC(ExitCode::kUsage, "--from-offset is not before --to-offset");
  }
  return JoinRecords(options);
}

}  // namespace

Command RecordCutCommand() {
  const auto options = std::make_shared<JoinOptions>();
  Command command;
  command.name = "cut";
  command.description = kDescription;
  command.footer =
      "Example:\n  surveydata record cut valley_drive.rec --from 2020-02-07T02:20 --to "
      "2020-02-07T02:30 -o part.rec";
  CommandOption argument = FileArgument(options->files.names.emplace_back());
  command.arguments = {argument};
  command.options = {
      RecordOutputOption(options->output),
      OffsetLimit("--from-offset", "Only records that begin at this offset or after it",
                  options->stretch.begin),
      OffsetLimit("--to-offset", "Only records that begin before this offset",
                  options->stretch.end)};
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
