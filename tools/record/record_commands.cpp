#include <charconv>
#include <string_view>

#include <command_line/common_options.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

std::uint64_t ParseOffset(std::string_view text) {
  const bool isHex = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = isHex ? text.substr(2) : text;
  const char* const end = digits.data() + digits.size();
  std::uint64_t offset = 0;
  const auto [stop, error] = std::from_chars(digits.data(), end, offset, isHex ? 16 : 10);
  if (error != std::errc() || stop != end) {
    throw ValueErrorC("neither a decimal number nor one like 0x1f");
  }
  return offset;
}

}  // namespace

CommandOption FileArgument(std::string& file) {
  return {.names = {"FILE"},
          .value = "TEXT",
          .description = "The record file",
          .take = StoreIn(file),
          .isRequired = true};
}

CommandOption OffsetOption(std::uint64_t& offset) {
  return {
      .names = {"--offset"},
      .value = "N",
      .description = "Where the frame begins: bytes from the start of the file, decimal or 0x...",
      .take = [&offset](const std::string& text) { offset = ParseOffset(text); },
      .isRequired = true};
}

Command RecordCommands() {
  Command command;
  command.name = "record";
  command.description = "Inspect, export, patch and draw record files";
  command.footer = "Example:\n  surveydata record list --help";
  command.commands = {RecordListCommand(), RecordShowCommand(), RecordExportCommand(),
                      RecordSetCommand(), RecordPlotCommand()};
  return command;
}

}  // namespace Tool
