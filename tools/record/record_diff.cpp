#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <surveydata/gnss/gps_time.h>

#include <command_line/common_options.h>
#include <command_line/progress.h>
#include <command_line/text.h>
#include <output/gps_time.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <platform/input_file.h>
#include <record/changed_fields.h>
#include <record/common_records.h>
#include <record/decoded_record.h>
#include <record/record_commands.h>
#include <record/record_files.h>
#include <record/record_walk.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Compare the records of two files, A and B: which were removed, added and changed, and the\n"
    "columns of a changed measurement with both values, floating-point ones with their distance "
    "in\n"
    "units in the last place (ULP). Records that are the same are a longest common subsequence of\n"
    "equal bytes; of what lies between them, measurements with the same time A are changed ones.\n"
    "Gaps are not compared. The exit code is 0 for the same records and 1 for others. Memory "
    "depends\n"
    "on the longest run of differences, up to a limit: in runs of more than 8192 records the\n"
    "subsequence is one of parts.";

// Where so many records in a row are the same, the files go on together.
constexpr std::size_t kEnoughCommon = 32;
constexpr std::size_t kFirstWindow = 2 * kEnoughCommon;
constexpr std::size_t kLargestWindow = 8192;

struct Options {
  std::string a;
  std::string b;
  bool isJson = false;
};

struct DiffRecord {
  std::uint64_t offset = 0;
  std::uint8_t type = 0;
  bool isMeasurement = false;
  std::vector<std::uint8_t> bytes;

  std::string_view View() const {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }
};

// Week and time of week of time A; nothing for records that have none.
using TimeKey = std::pair<std::int64_t, std::int64_t>;

std::optional<TimeKey> TimeOf(const DiffRecord& record) {
  if (!record.isMeasurement) return {};
  const DecodedRecord decoded = Decode(record.offset, record.bytes);
  if (!decoded.IsDone()) return {};
  const Vorlin::TimeC& time = decoded.measurement.GetTimeA();
  return TimeKey(time.week, time.timeOfWeek);
}

// The records of a file, those that are needed read ahead.
class SourceC {
 public:
  SourceC(const RecordFile& file, std::function<void(std::uint64_t)> report)
      : walk_(file.Open(), file, {}, std::move(report)) {}

  // Goes on to the next record, beyond gaps; false at the end. Only while nothing is held.
  bool Next() {
    while (walk_.Next(entry_)) {
      if (!entry_.isGap) return true;
    }
    isEnded_ = true;
    return false;
  }
  std::span<const std::uint8_t> GetBytes() const { return walk_.GetBytes(); }
  // Holds the record that `Next` gave last.
  void Hold() {
    const std::span<const std::uint8_t> bytes = walk_.GetBytes();
    held_.push_back({.offset = entry_.offset,
                     .type = entry_.type,
                     .isMeasurement = entry_.IsMeasurement(),
                     .bytes = {bytes.begin(), bytes.end()}});
  }
  // Holds `count` records, fewer at the end.
  void HoldUpTo(std::size_t count) {
    while (held_.size() < count && !isEnded_) {
      if (Next()) Hold();
    }
  }

  // Whether all records up to the end are held.
  bool IsEnded() const { return isEnded_; }
  const std::deque<DiffRecord>& GetHeld() const { return held_; }
  void Drop(std::size_t count) {
    held_.erase(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(count));
  }
  std::vector<std::string_view> Views() const {
    std::vector<std::string_view> views;
    views.reserve(held_.size());
    for (const DiffRecord& record : held_) views.push_back(record.View());
    return views;
  }

 private:
  RecordWalkC walk_;
  SDI::GPSRecordEntry entry_;
  bool isEnded_ = false;
  std::deque<DiffRecord> held_;
};

// Writes what differs.
class DiffWriterC {
 public:
  DiffWriterC(OutputC& out, bool isJson) : out_(out), isJson_(isJson) {}

  void Same() { ++same_; }
  void Removed(const DiffRecord& record) {
    ++removed_;
    WriteOne("removed", &record, nullptr);
  }
  void Added(const DiffRecord& record) {
    ++added_;
    WriteOne("added", nullptr, &record);
  }
  void Changed(const DiffRecord& a, const DiffRecord& b) {
    ++changed_;
    WriteOne("changed", &a, &b);
  }

  // Whether all records are the same.
  bool Close() {
    if (isJson_) {
      JsonWriterC line(out_.GetBuffer());
      line.Field("same", same_);
      line.Field("changed", changed_);
      line.Field("removed", removed_);
      line.Field("added", added_);
      line.EndLine();
    } else {
      out_.Print("{} the same, {} changed, {} removed, {} added\n", same_, changed_, removed_,
                 added_);
    }
    out_.Close();
    return changed_ + removed_ + added_ == 0;
  }

 private:
  static std::optional<std::uint64_t> OffsetOf(const DiffRecord* record) {
    return record != nullptr ? std::optional(record->offset) : std::nullopt;
  }
  static std::string TimeText(const DiffRecord& record) {
    const auto time = TimeOf(record);
    const bool isInRange = time && time->second >= 0 && time->second < SDI::kMillisecondsPerWeek;
    if (!isInRange) return {};
    return GpsDateTime(time->first * SDI::kMillisecondsPerWeek + time->second);
  }

  void WriteOne(std::string_view change, const DiffRecord* a, const DiffRecord* b) {
    const DiffRecord& shown = a != nullptr ? *a : *b;
    const std::string time = TimeText(shown);
    if (isJson_) {
      JsonWriterC line(out_.GetBuffer());
      line.NamedField("change", change);
      line.Field("offsetA", OffsetOf(a));
      line.Field("offsetB", OffsetOf(b));
      line.Field("type", shown.type);
      line.Field("time", time.empty() ? std::nullopt : std::optional<std::string_view>(time));
      if (a != nullptr && b != nullptr) {
        WriteChangedFields(line, Decode(a->offset, a->bytes), Decode(b->offset, b->bytes));
      }
      line.EndLine();
    } else {
      const auto offset = [](const DiffRecord* record) {
        return record != nullptr ? fmt::format("{}", record->offset) : std::string("-");
      };
      const std::string kind = shown.isMeasurement ? (time.empty() ? "measurement" : time)
                                                   : fmt::format("record of kind {}", shown.type);
      out_.Print("{:<7}  {:>10}  {:>10}  {}\n", change, offset(a), offset(b), kind);
      if (a != nullptr && b != nullptr) {
        PrintChangedFields(out_.GetBuffer(), Decode(a->offset, a->bytes),
                           Decode(b->offset, b->bytes));
      }
    }
    out_.FlushIfFull();
  }

  OutputC& out_;
  bool isJson_;
  std::uint64_t same_ = 0;
  std::uint64_t changed_ = 0;
  std::uint64_t removed_ = 0;
  std::uint64_t added_ = 0;
};

class DifferC {
 public:
  DifferC(SourceC& a, SourceC& b, DiffWriterC& writer) : a_(a), b_(b), writer_(writer) {}

  void Run() {
    while (SkipSame()) {
      if (a_.GetHeld().empty() || b_.GetHeld().empty()) {
        WriteRest();
      } else {
        WriteDifference();
      }
    }
  }

 private:
  // Goes to the next records that differ and holds them; false when there are none.
  bool SkipSame() {
    for (;;) {
      while (a_.GetHeld().empty() && b_.GetHeld().empty()) {
        const bool isA = !a_.IsEnded() && a_.Next();
        const bool isB = !b_.IsEnded() && b_.Next();
        if (!isA && !isB) return false;
        if (isA && isB && std::ranges::equal(a_.GetBytes(), b_.GetBytes())) {
          writer_.Same();
          continue;
        }
        if (isA) a_.Hold();
        if (isB) b_.Hold();
      }
      a_.HoldUpTo(1);
      b_.HoldUpTo(1);
      if (a_.GetHeld().empty() || b_.GetHeld().empty()) return true;
      if (a_.GetHeld().front().bytes != b_.GetHeld().front().bytes) return true;
      writer_.Same();
      a_.Drop(1);
      b_.Drop(1);
    }
  }

  // One file is at its end: whatever the other one has differs.
  void WriteRest() {
    for (;; a_.Drop(1)) {
      a_.HoldUpTo(1);
      if (a_.GetHeld().empty()) break;
      writer_.Removed(a_.GetHeld().front());
    }
    for (;; b_.Drop(1)) {
      b_.HoldUpTo(1);
      if (b_.GetHeld().empty()) break;
      writer_.Added(b_.GetHeld().front());
    }
  }

  // Writes what differs up to the place from where on the files go on together.
  void WriteDifference() {
    for (std::size_t window = kFirstWindow;; window *= 2) {
      a_.HoldUpTo(window);
      b_.HoldUpTo(window);
      const std::vector<CommonPlace> common = FindCommon(a_.Views(), b_.Views());
      const bool areWhole = a_.IsEnded() && b_.IsEnded();
      if (areWhole) return Write(common, {a_.GetHeld().size(), b_.GetHeld().size()});
      if (const auto end = FindEnd(common)) return Write(common, *end);
      if (window >= kLargestWindow) return Write(common, CutByTime());
    }
  }

  // Where enough records in a row begin to be common.
  static std::optional<CommonPlace> FindEnd(const std::vector<CommonPlace>& common) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < common.size(); ++i) {
      const CommonPlace next{common[begin].a + (i - begin), common[begin].b + (i - begin)};
      if (common[i] != next) begin = i;
      if (i - begin + 1 == kEnoughCommon) return common[begin];
    }
    return {};
  }

  // As far as both windows have the same times; all of them where there are no times.
  CommonPlace CutByTime() const {
    const std::vector<std::optional<TimeKey>> timesA = Times(a_.GetHeld());
    const std::vector<std::optional<TimeKey>> timesB = Times(b_.GetHeld());
    const std::optional<TimeKey> last =
        std::min(*std::ranges::max_element(timesA), *std::ranges::max_element(timesB));
    if (!last) return {timesA.size(), timesB.size()};
    const auto end = [&last](const std::vector<std::optional<TimeKey>>& times) {
      std::size_t size = times.size();
      while (size > 0 && (!times[size - 1] || times[size - 1] > last)) --size;
      return size;
    };
    return {end(timesA), end(timesB)};
  }

  static std::vector<std::optional<TimeKey>> Times(const std::deque<DiffRecord>& records) {
    std::vector<std::optional<TimeKey>> times;
    times.reserve(records.size());
    for (const DiffRecord& record : records) times.push_back(TimeOf(record));
    return times;
  }

  // Writes what is held up to `end`, and drops it.
  void Write(const std::vector<CommonPlace>& common, const CommonPlace& end) {
    CommonPlace done{0, 0};
    for (const CommonPlace& place : common) {
      if (place.a >= end.a || place.b >= end.b) break;
      WriteReplaced(done, place);
      writer_.Same();
      done = {place.a + 1, place.b + 1};
    }
    WriteReplaced(done, end);
    a_.Drop(end.a);
    b_.Drop(end.b);
  }

  // Nothing is the same in these runs: measurements of the same time are pairs.
  void WriteReplaced(const CommonPlace& begin, const CommonPlace& end) {
    std::map<TimeKey, std::deque<std::size_t>> places;  // in B
    if (begin.a < end.a) {
      for (std::size_t i = begin.b; i < end.b; ++i) {
        if (const auto time = TimeOf(b_.GetHeld()[i])) places[*time].push_back(i);
      }
    }
    std::vector<std::optional<std::size_t>> partners(end.a - begin.a);
    std::vector<bool> isPaired(end.b - begin.b);
    for (std::size_t i = begin.a; i < end.a && !places.empty(); ++i) {
      const auto time = TimeOf(a_.GetHeld()[i]);
      const auto found = time ? places.find(*time) : places.end();
      if (found == places.end() || found->second.empty()) continue;
      partners[i - begin.a] = found->second.front();
      isPaired[found->second.front() - begin.b] = true;
      found->second.pop_front();
    }
    std::size_t nextB = begin.b;
    const auto addUpTo = [&](std::size_t last) {
      for (; nextB < last; ++nextB) {
        if (!isPaired[nextB - begin.b]) writer_.Added(b_.GetHeld()[nextB]);
      }
    };
    for (std::size_t i = begin.a; i < end.a; ++i) {
      const auto partner = partners[i - begin.a];
      if (!partner) {
        writer_.Removed(a_.GetHeld()[i]);
        continue;
      }
      addUpTo(*partner);
      writer_.Changed(a_.GetHeld()[i], b_.GetHeld()[*partner]);
    }
    addUpTo(end.b);
  }

  SourceC& a_;
  SourceC& b_;
  DiffWriterC& writer_;
};

RecordFile OnlyFile(const std::string& name) {
  RecordFileOptions options;
  options.names = {name};
  if (options.AreMany()) {
    throw ToolErrorC(ExitCode::kFileError, fmt::format("cannot read {}: it is a folder", name));
  }
  return FindRecordFiles(options).front();
}

ExitCode Run(const Options& options) {
  if (IsStandardInput(options.a) && IsStandardInput(options.b)) {
    throw ToolErrorC(ExitCode::kUsage, "standard input cannot give both A and B");
  }
  const RecordFile fileA = OnlyFile(options.a);
  const RecordFile fileB = OnlyFile(options.b);
  ProgressC progress(fileA.size + fileB.size, true);
  std::uint64_t done = 0;
  const auto report = [&](std::uint64_t bytes) { progress.Update(done += bytes); };
  SourceC a(fileA, report);
  SourceC b(fileB, report);
  OutputC out;
  DiffWriterC writer(out, options.isJson);
  DifferC(a, b, writer).Run();
  return writer.Close() ? ExitCode::kDone : ExitCode::kFinding;
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
  command.footer = "Example:\n  surveydata record diff valley_drive.rec desert_highway.rec --json";
  command.arguments = {
      RecordArgument("A", "A record file, - for standard input", options->a),
      RecordArgument("B", "The record file to compare with it, - for standard input", options->b)};
  command.options = {{.names = {"--json"},
                      .description = "JSON Lines: one object for each difference, and one with "
                                     "the numbers of records",
                      .flag = &options->isJson}};
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
