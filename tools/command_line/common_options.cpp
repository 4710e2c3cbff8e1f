#include <algorithm>

#include <command_line/common_options.h>
#include <platform/input_file.h>
#include <platform/platform.h>

namespace Tool {
namespace {

std::string LowerCaseExtension(const std::string& name) {
  std::string extension = ToPath(name).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
    return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return extension;
}

}  // namespace

std::function<void(const std::string&)> StoreIn(std::string& text) {
  return [&text](const std::string& value) { text = value; };
}

CommandOption OutputOption(std::string& output, const std::string& description,
                           const std::string& value) {
  return {.names = {"-o", "--output"},
          .value = value,
          .description = description + "; written directly: a failed run leaves an incomplete file",
          .take = [&output](const std::string& name) {
            if (name.empty()) throw ValueErrorC("needs the name of a file");
            output = name == "-" ? "" : name;
          }};
}

void PictureOutput::Require(const std::string& input) const {
  if (isGiven || IsStandardInput(input)) return;
  throw ToolErrorC(ExitCode::kUsage, "--output is required",
                   "Run with --help for more information.");
}

CommandOption PictureOption(PictureOutput& output) {
  CommandOption option = OutputOption(
      output.file,
      "The picture to write, - for standard output; required unless the input is standard input",
      "OUT.svg");
  option.take = [&output, take = option.take](const std::string& name) {
    const std::string extension = LowerCaseExtension(name);
    for (const char* const other : {".png", ".jpg", ".jpeg", ".pdf", ".gif"}) {
      if (extension == other) throw ValueErrorC(name + " is not an SVG file name");
    }
    take(name);
    output.isGiven = true;
  };
  return option;
}

}  // namespace Tool
