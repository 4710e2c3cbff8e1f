#include <algorithm>

#include <command_line/common_options.h>
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
  return {
      .names = {"-o", "--output"},
      .value = value,
      .description = description + "; written in place, so a run that fails leaves a part of it",
      .take = [&output](const std::string& name) {
        if (name.empty()) throw ValueErrorC("needs the name of a file");
        output = name == "-" ? "" : name;
      }};
}

CommandOption PictureOption(std::string& output) {
  CommandOption option =
      OutputOption(output, "The picture to write, - for standard output", "OUT.svg");
  option.isRequired = true;
  option.take = [take = option.take](const std::string& name) {
    const std::string extension = LowerCaseExtension(name);
    for (const char* const other : {".png", ".jpg", ".jpeg", ".pdf", ".gif"}) {
      if (extension == other) throw ValueErrorC(name + " is no name for an SVG picture");
    }
    take(name);
  };
  return option;
}

}  // namespace Tool
