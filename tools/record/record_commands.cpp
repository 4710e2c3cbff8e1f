#include <charconv>
#include <limits>
#include <string_view>

#include <command_line/common_options.h>
#include <record/record_commands.h>

namespace Tool {
FrameOffset ParseOffset(const std::string& text) {
  const bool isHex = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = std::string_view(text).substr(isHex ? 2 : 0);
  const char* const end = digits.data() + digits.size();
  std::uint64_t offset = 0;
  const auto [stop, error] = std::from_chars(digits.data(), end, offset, isHex ? 16 : 10);
  if (error == std::errc::invalid_argument || stop != end) {
    throw ValueErrorC("neither a decimal number nor one like 0x1f");
  }
  // No file reaches an offset that does not fit 64 bits.
  if (error != std::errc()) offset = std::numeric_limits<std::uint64_t>::max();
  return {offset, text};
}

CommandOption FileArgument(std::string& file, bool mayBeInput) {
  return {.names = {"FILE"},
          .value = "TEXT",
          .description = mayBeInput ? "The record file, - for standard input" : "The record file",
          .take = StoreIn(file),
          .isRequired = true};
}

CommandOption OffsetOption(FrameOffset& offset) {
  return {
      .names = {"--offset"},
      .value = "N",
      .description = "Where the frame begins: bytes from the start of the file, decimal or 0x...",
      .take = [&offset](const std::string& text) { offset = ParseOffset(text); },
      .isRequired = true};
}

void AddOffsetOrFilters(Command& command, FrameOffset& offset, CommandOptionsC filters) {
  CommandOption option = OffsetOption(offset);
  option.isRequired = false;
  for (CommandOption& filter : filters) {
    filter.excludes = {"--offset"};
    option.excludes.push_back(filter.names.front());
  }
  command.options.Insert(0, option);
  command.options.Add(filters);
}

Command RecordCommands() {
  Command command;
  command.name = "record";
  command.description = "Inspect, check, compare, export, patch and draw record files";
  command.footer = "Example:\n  surveydata record list --help";
  command.commands = {RecordListCommand(),    RecordShowCommand(),  RecordExportCommand(),
                      RecordColumnsCommand(), RecordCheckCommand(), RecordDiffCommand(),
                      RecordSetCommand(),     RecordCutCommand(),   RecordJoinCommand(),
                      RecordPlotCommand()};
  return command;
}

}  // namespace Tool
