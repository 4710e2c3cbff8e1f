#include <memory>

#include <record/join_records.h>
#include <record/record_commands.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Join record files to a new one, byte for byte, in the order of time A: the next record is "
    "that\n"
    "of the file whose next measurement is the earliest, of the first one of equals. Within a "
    "file\n"
    "the order stays. Records of other kinds stay with the measurement before them; those before "
    "the\n"
    "first measurement of each file are at the start. Nothing is dropped because two files have "
    "it.\n"
    "Filters, gaps and bad frames as in record cut.";

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
