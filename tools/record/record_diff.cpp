#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <command_line/common_options.h>
#include <command_line/progress.h>
#include <command_line/text.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <platform/file_error.h>
#include <platform/input_file.h>
#include <platform/platform.h>
#include <record/compare_records.h>
#include <record/difference_writer.h>
#include <record/ordered_jobs.h>
#include <record/piece_output.h>
#include <record/record_commands.h>
#include <record/record_files.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Compare the records of two files, A and B, or of the files *.rec that have the same path in\n"
    "two folders. The differences are removed, added and changed records; for a changed\n"
    "measurement, the columns that differ, with both values and, if they are floating-point\n"
    "numbers, their distance in units in the last place (ULP). Unchanged records form a longest\n"
    "common subsequence of records with equal bytes; of the others, measurements between the\n"
    "same unchanged records and with the same time A count as changed. Gaps are not compared.\n"
    "With filters, only the measurements that they select are compared. The exit code is 0 if\n"
    "the records are the same, and 1 if they differ or if only one folder has a file. Memory\n"
    "depends on the longest run of differences, up to a limit: in runs of more than 8192 records\n"
    "or 8 MiB, the common subsequence is searched in parts.";

struct Options {
  std::string a;
  std::string b;
  RecordFileOptions folders;  // without names
  bool isJson = false;
  RecordFilter filter;
};

// The files to compare. If only one folder has the file, the other pointer is null.
struct FilePair {
  std::string title = {};  // empty if there is one pair
  const RecordFile* a = nullptr;
  const RecordFile* b = nullptr;

  bool AreBoth() const { return a != nullptr && b != nullptr; }
};

struct ComparedPair {
  PieceOutputC output;
  DifferenceCounts counts = {};
  std::string fault = {};  // why a file cannot be read
};

RecordFileOptions FilesOf(const std::string& name, const Options& options) {
  RecordFileOptions files = options.folders;
  files.names = {name};
  return files;
}

// The path below a folder, with slashes.
std::string PathBelow(const std::string& folder, const std::string& file) {
  const std::u8string path = ToPath(file).lexically_relative(ToPath(folder)).generic_u8string();
  return {path.begin(), path.end()};
}

class DiffC {
 public:
  explicit DiffC(const Options& options)
      : options_(options),
        format_{options.isJson, options.isJson ? ColoursC() : ColoursC::OfStandardOutput()} {
    const RecordFileOptions optionsA = FilesOf(options.a, options);
    const RecordFileOptions optionsB = FilesOf(options.b, options);
    areMany_ = optionsA.AreMany();
    if (areMany_ != optionsB.AreMany()) {
      throw ToolErrorC(
          ExitCode::kFileError,
          fmt::format("cannot read {}: it is a folder, but {} is not",
                      areMany_ ? options.a : options.b, areMany_ ? options.b : options.a));
    }
    filesA_ = FindRecordFiles(optionsA);
    filesB_ = FindRecordFiles(optionsB);
    MakePairs();
  }

  ExitCode Run() {
    std::uint64_t total = 0;
    for (const FilePair& pair : pairs_) {
      if (pair.AreBoth()) total += pair.a->size + pair.b->size;
    }
    ProgressC progress(total, true);
    OutputC out;
    PieceOutputC direct(&out, progress);
    const unsigned jobs = options_.folders.jobs > 0
                              ? options_.folders.jobs
                              : std::max(1U, std::thread::hardware_concurrency());
    const auto threads = static_cast<unsigned>(std::min<std::size_t>(jobs, pairs_.size()));
    if (threads == 1) {
      std::uint64_t done = 0;
      for (const FilePair& pair : pairs_) {
        ComparedPair compared{.output = PieceOutputC(&out, progress)};
        Compare(pair, jobs, compared, [&](std::uint64_t bytes) { progress.Update(done += bytes); });
        Take(pair, compared, direct);
      }
    } else {
      BufferPoolC pool;
      std::atomic<std::uint64_t> done = 0;
      OrderedJobsC<ComparedPair> work(pairs_.size(), threads, [&](std::size_t i) {
        ComparedPair compared{.output = PieceOutputC(pool)};
        Compare(pairs_[i], 1, compared, [&done](std::uint64_t bytes) { done += bytes; });
        return compared;
      });
      for (const FilePair& pair : pairs_) {
        ComparedPair compared = work.Take([&] { progress.Update(done); });
        Take(pair, compared, direct);
      }
    }
    if (areMany_) WriteWhole(direct);
    out.Close();
    return worst_;
  }

 private:
  void MakePairs() {
    if (!areMany_) {
      pairs_ = {{.a = &filesA_.front(), .b = &filesB_.front()}};
      return;
    }
    std::map<std::string, FilePair> pairs;
    for (const RecordFile& file : filesA_) pairs[PathBelow(options_.a, file.name)].a = &file;
    for (const RecordFile& file : filesB_) pairs[PathBelow(options_.b, file.name)].b = &file;
    for (auto& [path, pair] : pairs) {
      pair.title = path;
      pairs_.push_back(std::move(pair));
    }
  }

  // Called from several threads at once.
  void Compare(const FilePair& pair, unsigned jobs, ComparedPair& compared,
               const std::function<void(std::uint64_t)>& report) const {
    PieceOutputC& out = compared.output;
    const bool isFirst = &pair == pairs_.data();
    if (areMany_ && !options_.isJson) {
      Append(out.GetBuffer(), "{}{}\n", isFirst ? "" : "\n", ToVisible(pair.title));
    }
    if (!pair.AreBoth()) return WriteSingle(pair, out);
    for (const RecordFile* const file : {pair.a, pair.b}) {
      if (!file->fault.empty()) compared.fault = file->fault;
    }
    if (!compared.fault.empty()) return;
    const std::string file = ToUtf8(pair.title);
    DifferenceWriterC writer(out, format_, file);
    try {
      std::uint64_t last = 0;
      const auto reportDone = [&](std::uint64_t done) {
        if (done <= last) return;
        report(done - last);
        last = done;
      };
      CompareRecords(ComparedFileC(*pair.a), ComparedFileC(*pair.b),
                     {options_.filter, jobs, reportDone}, writer);
    } catch (const FileErrorC& error) {
      compared.fault = error.what();
      return;
    }
    compared.counts = writer.GetCounts();
    if (options_.isJson) {
      JsonWriterC line(out.GetBuffer());
      if (areMany_) line.NamedField("file", file);
      compared.counts.Write(line);
      line.EndLine();
    } else {
      Append(out.GetBuffer(), "{}\n", compared.counts.ToText());
    }
    out.FlushIfFull();
  }

  void WriteSingle(const FilePair& pair, PieceOutputC& out) const {
    const std::string_view change = pair.a != nullptr ? "removed" : "added";
    if (options_.isJson) {
      JsonWriterC line(out.GetBuffer());
      line.NamedField("file", ToUtf8(pair.title));
      line.NamedField("change", change);
      line.EndLine();
    } else {
      Append(out.GetBuffer(), "{}  the file; only {} has it\n",
             format_.colours.Paint(pair.a != nullptr ? Colour::kBad : Colour::kGood,
                                   fmt::format("{:<7}", change)),
             pair.a != nullptr ? "A" : "B");
    }
    out.FlushIfFull();
  }

  void Take(const FilePair& pair, ComparedPair& compared, PieceOutputC& direct) {
    compared.output.PutTo(direct);
    ExitCode result = ExitCode::kDone;
    if (!compared.fault.empty()) {
      direct.Tell(compared.fault);
      ++unreadable_;
      result = ExitCode::kFileError;
    } else if (!pair.AreBoth()) {
      ++(pair.a != nullptr ? onlyA_ : onlyB_);
      result = ExitCode::kFinding;
    } else {
      all_.Add(compared.counts);
      const bool isSame = compared.counts.AreSame();
      ++(isSame ? same_ : different_);
      if (!isSame) result = ExitCode::kFinding;
    }
    worst_ = std::max(worst_, result);
  }

  void WriteWhole(PieceOutputC& direct) const {
    if (options_.isJson) {
      JsonWriterC line(direct.GetBuffer());
      line.Field("files", pairs_.size());
      line.Field("sameFiles", same_);
      line.Field("differentFiles", different_);
      line.Field("removedFiles", onlyA_);
      line.Field("addedFiles", onlyB_);
      line.Field("unreadableFiles", unreadable_);
      all_.Write(line);
      line.EndLine();
    } else {
      Append(direct.GetBuffer(),
             "\n{} file{}: {} the same, {} different, {} removed, {} added, {} unreadable; "
             "records: {}\n",
             pairs_.size(), pairs_.size() == 1 ? "" : "s", same_, different_, onlyA_, onlyB_,
             unreadable_, all_.ToText());
    }
  }

  const Options& options_;
  DifferenceFormat format_;
  bool areMany_ = false;
  std::vector<RecordFile> filesA_;
  std::vector<RecordFile> filesB_;
  std::vector<FilePair> pairs_;
  DifferenceCounts all_;
  std::uint64_t same_ = 0;
  std::uint64_t different_ = 0;
  std::uint64_t onlyA_ = 0;
  std::uint64_t onlyB_ = 0;
  std::uint64_t unreadable_ = 0;
  ExitCode worst_ = ExitCode::kDone;
};

ExitCode Run(const Options& options) {
  if (IsStandardInput(options.a) && IsStandardInput(options.b)) {
    throw ToolErrorC(ExitCode::kUsage, "standard input cannot be both A and B");
  }
  return DiffC(options).Run();
}

CommandOption RecordArgument(const std::string& name, const std::string& description,
                             std::string& file) {
  return {.names = {name},
          .value = "FILE",
          .description = description,
          .take = StoreIn(file),
          .isRequired = true};
}

}  // namespace

Command RecordDiffCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "diff";
  command.description = kDescription;
  command.footer =
      "Examples:\n"
      "  surveydata record diff valley_drive.rec desert_highway.rec --json\n"
      "  surveydata record diff archive backup --recursive --where \"pdop < 4\"";
  command.options = {{.names = {"--json"},
                      .description = "JSON Lines: one object for each difference, and one with "
                                     "the record counts",
                      .flag = &options->isJson}};
  AddFileOptions(command, options->folders);
  command.arguments = {
      RecordArgument("A", "A record file or a folder, - for standard input", options->a),
      RecordArgument("B", "The record file or the folder to compare with it, - for standard input",
                     options->b)};
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
