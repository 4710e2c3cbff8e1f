#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/text.h>
#include <output/colours.h>
#include <output/gps_time.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <platform/format.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_findings.h>
#include <record/record_pass.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Check record files: one verdict for each file and one for all of them, with counts and the\n"
    "offset of the first fault of each kind. A file is faulty if it has bytes that belong to no\n"
    "record (gaps, and damaged headers of measurements in them), frames whose blocks do not fit,\n"
    "measurements that are earlier than the previous one or have the same bytes, or no\n"
    "measurement. The exit code is 1 if a file is faulty, and 3 if a file cannot be read.\n"
    "Filters select the measurements that are counted and compared.";

struct Options {
  RecordFileOptions files;
  bool isJson = false;
  RecordFilter filter;
};

// The kinds of faults, with their names in text and in JSON.
struct Kind {
  Finding RecordFindings::*finding;
  const char* one;
  const char* many;
  const char* key;
};
constexpr Kind kKinds[] = {
    {&RecordFindings::gaps, "gap", "gaps", "gaps"},
    {&RecordFindings::damagedHeaders, "damaged header", "damaged headers", "damagedHeaders"},
    {&RecordFindings::overlappingHeaders, "header that overlaps the next record",
     "headers that overlap the next record", "overlappingHeaders"},
    {&RecordFindings::badBlocks, "frame whose blocks do not fit", "frames whose blocks do not fit",
     "badBlocks"},
    {&RecordFindings::timesBack, "time that goes backwards", "times that go backwards",
     "timesBack"},
    {&RecordFindings::repeated, "repeated measurement", "repeated measurements", "repeated"}};

std::string Counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

// "414 measurements, 143 other records; 70 gaps (1752 bytes, the first at 934)". Offsets
// are meaningless for all files together.
std::string ToText(const RecordFindings& found, bool isWhole) {
  std::string text = Counted(found.measurements, "measurement", "measurements") + ", " +
                     Counted(found.others, "other record", "other records");
  const char* separator = "; ";
  for (const Kind& kind : kKinds) {
    const Finding& finding = found.*kind.finding;
    if (finding.count == 0) continue;
    text += separator + Counted(finding.count, kind.one, kind.many);
    separator = ", ";
    std::string more;
    if (kind.finding == &RecordFindings::gaps) more = Counted(found.gapBytes, "byte", "bytes");
    if (!isWhole) {
      Append(more, "{}{}at {}", more.empty() ? "" : ", ", finding.count == 1 ? "" : "the first ",
             finding.first);
    }
    if (!more.empty()) text += " (" + more + ")";
  }
  return text;
}

void WriteFindings(JsonWriterC& line, const RecordFindings& found, bool isWhole) {
  line.Field("measurements", found.measurements);
  line.Field("others", found.others);
  line.Field("gapBytes", found.gapBytes);
  for (const Kind& kind : kKinds) {
    const Finding& finding = found.*kind.finding;
    if (isWhole) {
      line.Field(kind.key, finding.count);
      continue;
    }
    line.Begin(kind.key);
    line.Field("count", finding.count);
    line.Field("first", finding.count > 0 ? std::optional(finding.first) : std::nullopt);
    line.End();
  }
}

void WriteTime(JsonWriterC& line, std::string_view key, const std::optional<std::int64_t>& time) {
  const std::string text = time ? GpsDateTime(*time) : std::string();
  line.Field(key, time ? std::optional<std::string_view>(text) : std::nullopt);
}

struct CheckedPiece {
  PieceOutputC output;
  RecordFindings found;
};

class CheckPassC : public RecordPassI<CheckedPiece> {
 public:
  explicit CheckPassC(const Options& options) : options_(options) {}

  void Read(RecordWalkC& walk, CheckedPiece& result) const override {
    result.found = FindFaults(walk, options_.filter);
  }
  void Take(const RecordPiece& piece, CheckedPiece& result, PieceOutputC& /*direct*/) override {
    if (piece.isFirst) {
      found_ = std::move(result.found);
    } else {
      found_.Join(result.found);
    }
  }
  ExitCode EndFile(const RecordFile& file, PieceOutputC& direct) override {
    ++files_;
    all_.AddCounts(found_);
    const bool isHealthy = found_.IsHealthy();
    if (!isHealthy) ++faulty_;
    if (options_.isJson) {
      JsonWriterC line = Begin(file, isHealthy ? "ok" : "faulty", direct);
      line.Field("size", file.size);
      WriteTime(line, "firstTime", found_.firstTime);
      WriteTime(line, "lastTime", found_.lastTime);
      WriteFindings(line, found_, false);
      line.EndLine();
    } else {
      Append(direct.GetBuffer(), "{} {}: {}\n", Verdict(isHealthy), ToVisible(file.Title()),
             ToText(found_, false));
    }
    direct.FlushIfFull();
    return isHealthy ? ExitCode::kDone : ExitCode::kFinding;
  }
  void FailFile(const RecordFile& file, const std::string& reason, PieceOutputC& direct) override {
    ++files_;
    ++unreadable_;
    if (options_.isJson) {
      JsonWriterC line = Begin(file, "unreadable", direct);
      line.NamedField("reason", ToUtf8(reason));
      line.EndLine();
    } else {
      Append(direct.GetBuffer(), "{} {}\n", colours_.Paint(Colour::kBad, "UNREADABLE "),
             ToVisible(file.Title()));
    }
    direct.FlushIfFull();
  }

  void WriteWhole(OutputC& out) const {
    const bool isHealthy = faulty_ + unreadable_ == 0;
    if (options_.isJson) {
      JsonWriterC line(out.GetBuffer());
      line.NamedField("verdict", isHealthy ? "ok" : "faulty");
      line.Field("files", files_);
      line.Field("faulty", faulty_);
      line.Field("unreadable", unreadable_);
      WriteFindings(line, all_, true);
      line.EndLine();
    } else {
      out.Print("{} {}: {} faulty, {} unreadable; {}\n", Verdict(isHealthy),
                Counted(files_, "file", "files"), faulty_, unreadable_, ToText(all_, true));
    }
  }

 private:
  std::string Verdict(bool isHealthy) const {
    return isHealthy ? colours_.Paint(Colour::kGood, "ok         ")
                     : colours_.Paint(Colour::kBad, "FAULTY     ");
  }
  static JsonWriterC Begin(const RecordFile& file, std::string_view verdict, PieceOutputC& direct) {
    JsonWriterC line(direct.GetBuffer());
    line.NamedField("file", ToUtf8(file.Title()));
    line.NamedField("verdict", verdict);
    return line;
  }

  const Options& options_;
  ColoursC colours_ = ColoursC::OfStandardOutput();
  RecordFindings found_;  // of the file
  RecordFindings all_;
  std::uint64_t files_ = 0;
  std::uint64_t faulty_ = 0;
  std::uint64_t unreadable_ = 0;
};

ExitCode Run(const Options& options) {
  // The findings take little memory, because records are not written.
  constexpr std::uint64_t kLongestStretch = std::uint64_t{64} << 20;
  constexpr std::size_t kAhead = 1000;
  const std::vector<RecordFile> files = FindRecordFiles(options.files);
  OutputC out;
  CheckPassC pass(options);
  const ExitCode result = RunPass(files,
                                  {.jobs = options.files.jobs,
                                   .mayCut = options.filter.every == 1,
                                   .longestStretch = kLongestStretch,
                                   .ahead = kAhead,
                                   .out = &out},
                                  pass);
  pass.WriteWhole(out);
  out.Close();
  return result;
}

}  // namespace

Command RecordCheckCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "check";
  command.description = kDescription;
  command.footer =
      "Examples:\n  surveydata record check valley_drive.rec\n"
      "  surveydata record check --recursive . --json";
  command.options = {{.names = {"--json"},
                      .description = "JSON Lines: one object for each file, and one for all",
                      .flag = &options->isJson}};
  AddFileOptions(command, options->files);
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
