#include <exception>
#include <sstream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include <command_line/exit_code.h>
#include <command_line/message.h>
#include <commands.h>
#include <output/output.h>
#include <platform/platform.h>

namespace {

using Tool::ExitCode;

ExitCode Run(int argc, char** argv) {
  ExitCode result = ExitCode::kDone;
  const auto app = Tool::MakeCommands(result);
  try {
    app->parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream help;
    std::ostringstream complaint;
    if (app->exit(error, help, complaint) != 0) {
      const std::string text = complaint.str();
      Tool::Tell(std::string_view(text).substr(0, text.find_last_not_of('\n') + 1));
      return ExitCode::kUsage;
    }
    Tool::OutputC out;
    out.Print("{}", help.str());
    out.Close();
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  Tool::PrepareStandardStreams();
  ExitCode result = ExitCode::kFileError;
  try {
    result = Run(argc, argv);
  } catch (const Tool::ToolErrorC& error) {
    Tool::Tell(error.what());
    result = error.GetCode();
  } catch (const std::exception& error) {  // a file that cannot be read or written
    Tool::Tell(error.what());
  }
  return static_cast<int>(result);
}
