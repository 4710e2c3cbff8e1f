#include <area/area_commands.h>
#include <commands.h>
#include <record/record_commands.h>

namespace Tool {

Command MakeCommands() {
  Command top;
  top.name = "surveydata";
  top.description = "Works with the record files and the scan areas of a surveying instrument.";
  top.footer =
      "Exit codes: 0 done, 1 a finding (a bad frame, a gap, an area that is not valid, a "
      "direction\n"
      "outside), 2 wrong usage, 3 a file cannot be read or written.\n\n"
      "Example:\n  surveydata record --help";
  top.options = {{.names = {"--version"},
                  .description = "Display program version information and exit",
                  .text = "surveydata " SURVEYDATA_VERSION}};
  top.commands = {RecordCommands(), AreaCommands()};
  AddPathsAndHelp(top);
  return top;
}

}  // namespace Tool
