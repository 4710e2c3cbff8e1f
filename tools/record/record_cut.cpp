#include <cstdint>
#include <memory>
#include <string>

#include <fmt/format.h>

#include <record/join_records.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Write a part of a record file as a new file: the measurements that the filters take, and "
    "those\n"
    "from one offset to another, byte for byte. Records of other kinds are kept with the "
    "measurement\n"
    "before them, and always before the first one. Gaps and bad frames are left out and told "
    "about\n"
    "on standard error; bad frames give the exit code 1, and so does a part without a measurement.";

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
                     fmt::format("{} is a folder; surveydata record join takes it",
                                 options.files.names.front()));
  }
  // An offset too large for 64 bits is after the end of every file, as any other that is.
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
