#include <cstdint>
#include <memory>
#include <string>

#include <fmt/format.h>

#include <area/area_commands.h>
#include <area/area_file.h>
#include <area/area_sweep.h>
#include <command_line/common_options.h>
#include <command_line/message.h>
#include <output/output.h>
#include <platform/format.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "List the directions of an area at its steps as a CSV table, in the order in which an\n"
    "instrument sweeps: columns by ascending Hz, with V alternately ascending and descending.\n"
    "The grid begins at the lowest Hz and V of the bounds; around the zenith, at Hz 0 and V 0.\n"
    "The table has the directions that area contains reports as inside, in the unit of the area\n"
    "file. It is written while it is computed. If it has no direction, the exit code is 1; if\n"
    "the area is not valid, 4.";

struct Options {
  std::string file;
  std::string output;
};

ExitCode Run(const Options& options) {
  const AreaFile file = LoadAreaFile(options.file);
  const ExitCode validity = WarnOfFaults(FindAreaFaults(file));
  if (validity != ExitCode::kDone) return validity;
  OutputC out(options.output, {&options.file, 1});
  out.Print("hz,v\r\n");
  const std::uint64_t count = SweepArea(file, [&](double hz, double v) {
    fmt::memory_buffer& line = out.GetBuffer();
    AppendNumber(line, FromRadians(hz, file.unit));
    line.push_back(',');
    AppendNumber(line, FromRadians(v, file.unit));
    line.push_back('\r');
    line.push_back('\n');
    out.FlushIfFull();
  });
  out.Close();
  if (count > 0) return ExitCode::kDone;
  Tell("no direction at these steps is inside the area");
  return ExitCode::kFinding;
}

}  // namespace

Command AreaGridCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "grid";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata area grid facade.json -o facade.csv";
  command.arguments = {AreaArgument(options->file)};
  command.options = {OutputOption(
      options->output, "The table to write, - for standard output, the default", "OUT.csv")};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
