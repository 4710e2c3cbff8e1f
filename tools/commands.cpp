#include <view/view_command.h>

#include <area/area_commands.h>
#include <commands.h>
#include <record/record_commands.h>

namespace Tool {

Command MakeCommands() {
  Command top;
  top.name = "surveydata";
  top.description = "Works with the record files and the scan areas of a surveying instrument.";
  top.footer =
      "Exit codes:\n"
      "  0  done\n"
      "  1  a finding: a gap, a bad frame or no measurement in a record file,\n"
      "     no measurement frame at an offset, records that differ (record diff),\n"
      "     a frame without room for a change (record set),\n"
      "     an area that is not valid (area info),\n"
      "     a direction outside, no direction at all\n"
      "  2  wrong usage\n"
      "  3  a file cannot be read or written, a browser cannot be started, or there is not enough\n"
      "     memory\n"
      "  4  no answer: the area is not valid (area contains, grid, outline, plot), or an angle is\n"
      "     too large for the unit (area convert)\n\n"
      "Example:\n  surveydata record --help";
  top.options = {{.names = {"--version"},
                  .description = "Print the version of the program and exit",
                  .text = "surveydata " SURVEYDATA_VERSION}};
  top.commands = {RecordCommands(), AreaCommands(), ViewCommand()};
  top.tasks = {
      {"Reading record files", {"record list", "record show", "record export", "record columns"}},
      {"Checking and comparing record files", {"record check", "record diff"}},
      {"Changing, cutting and joining record files", {"record set", "record cut", "record join"}},
      {"Understanding areas", {"area info", "area outline", "area contains"}},
      {"Scanning and converting areas", {"area grid", "area convert"}},
      {"Drawing and viewing", {"record plot", "area plot", "view"}}};
  AddPathsAndHelp(top);
  return top;
}

}  // namespace Tool
