#include <exception>
#include <new>

#include <command_line/exit_code.h>
#include <command_line/message.h>
#include <command_line/parser.h>
#include <commands.h>
#include <output/output.h>
#include <platform/platform.h>

namespace {

using Tool::ExitCode;

ExitCode Run(int argc, char** argv) {
  const Tool::Command commands = Tool::MakeCommands();
  const Tool::Request request = Tool::Parse(commands, argc, argv);
  if (request.run) return request.run();
  Tool::OutputC out;
  out.Print("{}", request.text);
  out.Close();
  return ExitCode::kDone;
}

}  // namespace

int main(int argc, char** argv) {
  Tool::PrepareStandardStreams();
  ExitCode result = ExitCode::kFileError;
  try {
    result = Run(argc, argv);
  } catch (const Tool::ToolErrorC& error) {
    Tool::Tell(error.what(), error.GetHint());
    result = error.GetCode();
  } catch (const std::bad_alloc&) {
    Tool::Tell("there is not enough memory");
  } catch (const std::exception& error) {  // a file that cannot be read or written
    Tool::Tell(error.what());
  }
  return static_cast<int>(result);
}
