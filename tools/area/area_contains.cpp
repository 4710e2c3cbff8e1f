#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <fmt/compile.h>
#include <fmt/format.h>

#include <surveydata/scanning/prepared_area.h>

#include <area/area_commands.h>
#include <area/area_file.h>
#include <area/direction_reader.h>
#include <command_line/common_options.h>
#include <command_line/message.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <platform/platform.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Tell of directions whether they lie inside an area, or within 0.0005 gon of its boundary.\n"
    "Directions come from the command line, from a file or from standard input, one a line: Hz\n"
    "and V in the unit of the area file, with a comma, semicolon or blanks between. What\n"
    "follows in a line is passed over, and so are a heading, empty lines and those that begin\n"
    "with #. A direction outside gives the exit code 1.";

struct Options {
  std::string file;
  std::vector<std::string> directions;
  std::string csv;
  bool isJson = false;
};

// Directions are answered in blocks and written as they were given.
class AnswerC {
 public:
  AnswerC(const AreaFile& file, bool isJson)
      : area_(*file.area), unit_(file.unit), isJson_(isJson) {
    if (isJson) return;
    out_.Print("{:>16}  {:>16}  {}\n", fmt::format("Hz [{}]", UnitName(unit_)),
               fmt::format("V [{}]", UnitName(unit_)), "answer");
  }

  void Add(const Direction& direction) {
    given_[size_] = direction;
    hz_[size_] = ToRadians(direction.hz, unit_);
    v_[size_] = ToRadians(direction.v, unit_);
    if (++size_ == kBlock) Flush();
  }

  /// Whether all were inside.
  bool Close() {
    Flush();
    if (!isJson_) {
      out_.Print("{} direction{}: {} inside, {} outside\n", inside_ + outside_,
                 inside_ + outside_ == 1 ? "" : "s", inside_, outside_);
    }
    out_.Close();
    return outside_ == 0;
  }

 private:
  static constexpr std::size_t kBlock = 4096;

  void Flush() {
    area_.Contains(std::span(hz_).first(size_), std::span(v_).first(size_), isInside_);
    for (std::size_t i = 0; i < size_; ++i) {
      ++(isInside_[i] ? inside_ : outside_);
      if (isJson_) {
        JsonWriterC line(out_.GetBuffer());
        line.Field("hz", given_[i].hz);
        line.Field("v", given_[i].v);
        line.Field("inside", isInside_[i]);
        line.EndLine();
      } else {
        fmt::format_to(fmt::appender(out_.GetBuffer()), FMT_COMPILE("{:>16}  {:>16}  {}\n"),
                       given_[i].hz, given_[i].v, isInside_[i] ? "inside" : "outside");
      }
      out_.FlushIfFull();
    }
    size_ = 0;
  }

  SDI::PreparedAreaC area_;
  AngleUnit unit_;
  bool isJson_;
  OutputC out_;
  std::array<Direction, kBlock> given_;
  std::array<double, kBlock> hz_;
  std::array<double, kBlock> v_;
  std::array<bool, kBlock> isInside_;
  std::size_t size_ = 0;
  std::uint64_t inside_ = 0;
  std::uint64_t outside_ = 0;
};

ExitCode Run(const Options& options) {
  const AreaFile file = LoadAreaFile(options.file);
  std::vector<Direction> directions;  // those of the command line are checked before all else
  for (const std::string& text : options.directions) directions.push_back(RequireDirection(text));
  const ExitCode validity = WarnOfFaults(FindAreaFaults(file));
  const auto answer = std::make_unique<AnswerC>(file, options.isJson);
  for (const Direction& direction : directions) answer->Add(direction);
  if (directions.empty()) {
    if (options.csv.empty() && IsTerminal(StandardStream::kInput)) {
      Tell(fmt::format("type directions, one a line: Hz and V; the end of the input ({}) ends them",
                       kEndOfInput));
    }
    DirectionReaderC reader(options.csv.empty() ? "-" : options.csv);
    for (Direction direction{}; reader.Next(direction);) answer->Add(direction);
  }
  return answer->Close() ? validity : ExitCode::kFinding;
}

}  // namespace

Command AreaContainsCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "contains";
  command.description = kDescription;
  command.footer = "Example:\n  surveydata area contains facade.json 57,92 60.5,95";
  command.arguments = {
      AreaArgument(options->file),
      {.names = {"DIRECTION"},
       .value = "HZ,V ...",
       .description = "Directions in the unit of the area file",
       .take = [options](const std::string& text) { options->directions.push_back(text); },
       .excludes = {"--csv"},
       .isRepeatable = true}};
  command.options = {{.names = {"--csv"},
                      .value = "FILE",
                      .description = "Reads directions; - for standard input, the default",
                      .take = StoreIn(options->csv),
                      .excludes = {"DIRECTION"}},
                     {.names = {"--json"},
                      .description = "JSON Lines: one object per direction",
                      .flag = &options->isJson}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
