#include <memory>

#include <record/join_records.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Join record files to a new one, byte for byte, in the order of time A. The next record is\n"
    "always from the file whose next measurement is the earliest, and from the first of them if\n"
    "several are equally early. Within a file the order stays the same. Records of other kinds\n"
    "stay with the measurement before them; those before the first measurement of each file are\n"
    "at the start. A record that several files have is written several times. Filters, gaps and\n"
    "bad frames are handled as by record cut.";

}  // namespace

Command RecordJoinCommand() {
  const auto options = std::make_shared<JoinOptions>();
  Command command;
  command.name = "join";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata record join --recursive . -o joined.rec";
  AddNamesOptions(command, options->files);
  command.options.Add(RecordOutputOption(options->output));
  AddFilterOptions(command, options->filter);
  command.run = [options] { return JoinRecords(*options); };
  return command;
}

}  // namespace Tool
