#include <exception>
#include <sstream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "exit_code.h"
#include "message.h"
#include "output.h"
#include "platform.h"

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
  } catch (const std::exception& error) {
    Tool::Tell(error.what());
  }
  return static_cast<int>(result);
}
