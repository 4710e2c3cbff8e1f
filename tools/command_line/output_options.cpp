#include <fmt/format.h>

#include <command_line/output_options.h>
#include <platform/platform.h>

namespace Tool {

CLI::Option* AddOutputOption(CLI::App& command, std::string& output, const std::string& description,
                             const std::string& typeName) {
  return command
      .add_option_function<std::string>(
          "-o,--output",
          [&output](const std::string& name) {
            if (name.empty()) throw CLI::ValidationError("--output", "needs the name of a file");
            output = name == "-" ? "" : name;
          },
          description + "; written in place, so a run that fails leaves a part of it")
      ->type_name(typeName);
}

CLI::Option* AddPictureOption(CLI::App& command, std::string& output) {
  return AddOutputOption(command, output, "The picture to write, - for standard output", "OUT.svg")
      ->required()
      ->check([](const std::string& name) {
        const std::string extension = CLI::detail::to_lower(ToPath(name).extension().string());
        for (const char* const other : {".png", ".jpg", ".jpeg", ".pdf", ".gif"}) {
          if (extension == other) return fmt::format("{} is no name for an SVG picture", name);
        }
        return std::string();
      });
}

}  // namespace Tool
