#include <charconv>
#include <string_view>

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
    throw CLI::ValidationError("--offset", "neither a decimal number nor one like 0x1f");
  }
  return offset;
}

}  // namespace

void AddFileArgument(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "The record file")->required();
}

void AddOffsetOption(CLI::App& command, std::uint64_t& offset) {
  command
      .add_option_function<std::string>(
          "--offset", [&offset](const std::string& text) { offset = ParseOffset(text); },
          "Where the frame begins: bytes from the start of the file, decimal or 0x...")
      ->required()
      ->type_name("N");
}

void AddRecordCommands(CLI::App& app, ExitCode& result) {
  CLI::App& record = *app.add_subcommand("record", "Inspect, export, patch and draw record files");
  record.require_subcommand(1);
  record.footer("Example:\n  surveydata record list --help");
  AddRecordList(record, result);
  AddRecordShow(record, result);
  AddRecordExport(record, result);
  AddRecordSet(record, result);
  AddRecordPlot(record, result);
}

}  // namespace Tool
