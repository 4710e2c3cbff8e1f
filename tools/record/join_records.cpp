#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include <command_line/common_options.h>
#include <command_line/progress.h>
#include <output/output.h>
#include <record/join_records.h>
#include <record/kept_records.h>
#include <record/piece_output.h>

namespace Tool {
namespace {

// A file to be joined, positioned at its next record.
class JoinedFileC {
 public:
  JoinedFileC(const RecordFile& file, const JoinOptions& options,
              const std::function<void(std::uint64_t)>& report)
      : records_(file, options.stretch, options.filter, report) {}

  // Advances to the next measurement and writes the records before it. False at the end.
  bool GoOn(OutputC& out) {
    while (records_.Next()) {
      if (records_.IsMeasurement()) return true;
      Write(out);
    }
    return false;
  }
  void Write(OutputC& out) const {
    const std::span<const std::uint8_t> bytes = records_.GetBytes();
    out.GetBuffer().append(bytes.data(), bytes.data() + bytes.size());
    out.FlushIfFull();
  }
  // A measurement without a time comes immediately after the previous one.
  std::int64_t GetTime() const {
    return records_.GetTime().value_or(std::numeric_limits<std::int64_t>::min());
  }
  const KeptRecordsC& GetRecords() const { return records_; }

 private:
  KeptRecordsC records_;
};

}  // namespace

ExitCode JoinRecords(const JoinOptions& options) {
  const std::vector<RecordFile> files = FindRecordFiles(options.files, options.output);
  for (const RecordFile& file : files) {
    if (!file.fault.empty()) throw ToolErrorC(ExitCode::kFileError, file.fault);
  }
  std::uint64_t total = 0;
  for (const RecordFile& file : files) total += file.size;
  ProgressC progress(total);
  std::uint64_t done = 0;
  const auto report = [&](std::uint64_t bytes) { progress.Update(done += bytes); };
  // All files are opened before anything is written.
  std::vector<std::unique_ptr<JoinedFileC>> sources;
  sources.reserve(files.size());
  for (const RecordFile& file : files) {
    sources.push_back(std::make_unique<JoinedFileC>(file, options, report));
  }
  OutputC out(options.output);
  PieceOutputC messages(&out, progress);

  std::vector<JoinedFileC*> left;  // those that are at a measurement, in the order of the files
  for (const std::unique_ptr<JoinedFileC>& source : sources) {
    if (source->GoOn(out)) left.push_back(source.get());
  }
  while (!left.empty()) {
    const auto next = std::ranges::min_element(
        left, {}, [](const JoinedFileC* source) { return source->GetTime(); });
    (*next)->Write(out);
    if (!(*next)->GoOn(out)) left.erase(next);
  }
  out.Close();

  ExitCode result = ExitCode::kDone;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string prefix = files.size() > 1 ? files[i].Title() + ": " : std::string();
    result = std::max(result, sources[i]->GetRecords().TellAbout(prefix, messages));
  }
  return result;
}

CommandOption RecordOutputOption(std::string& output) {
  CommandOption option =
      OutputOption(output, "The file to write, - for standard output; required", "OUT.rec");
  option.isRequired = true;
  return option;
}

}  // namespace Tool
