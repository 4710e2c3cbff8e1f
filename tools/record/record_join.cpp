#include <memory>

#include <record/join_records.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Join record files to a new one, byte for byte, ordered by time A. The next record is always\n"
    "from the file whose next measurement is the earliest, and from the first of them if several\n"
    "are equally early. Within a file the order stays the same. Records of other kinds stay with\n"
    "the measurement before them; those before the first measurement of each file are at the\n"
    "start. A record that occurs in several files is written several times. Filters, gaps and\n"
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
