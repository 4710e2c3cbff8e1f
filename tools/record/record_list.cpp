#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <surveydata/gnss/gps_time.h>

#include <command_line/text.h>
#include <output/colours.h>
#include <output/gps_time.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <platform/format.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/gps_moment.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_pass.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "List every record of files with time, dilutions of precision, satellites and name. Gaps and\n"
    "bad frames are listed too: bytes that belong to no record, headers of measurement frames in\n"
    "them, and frames whose blocks do not fit. The exit code is 1 if there are any, or if a file\n"
    "has no measurement. With filters, only measurements are listed; gaps and bad frames are\n"
    "counted, and the exit code is the same.";

struct Options {
  RecordFileOptions files;
  bool isJson = false;
  bool isUTC = false;
  RecordFilter filter;
};

// The columns of the list for a measurement.
struct Summary {
  Vorlin::TimeC time;
  std::optional<double> hdop, vdop, tdop, pdop;
  OptionalPair satellites;  // in view, used
  std::u16string name;
};

std::optional<double> IfAvailable(bool isSet, double dop) {
  return isSet && dop >= 0 ? std::optional(dop) : std::nullopt;
}

Summary Summarise(const DecodedRecord& record) {
  using ImplC = SDI::GPSMeasDataImplC;
  const ImplC& measurement = record.measurement;
  const SDI::GPSDOPsImplC& dops = measurement.GetDOPs();
  const bool hasDOPs = (measurement.GetSetMask() & ImplC::kHasDOPs) != 0;
  return {measurement.GetTimeA(),
          IfAvailable(hasDOPs, dops.GetHDOP()),
          IfAvailable(hasDOPs, dops.GetVDOP()),
          IfAvailable(hasDOPs, dops.GetTDOP()),
          IfAvailable(hasDOPs, dops.GetPDOP()),
          AskPair(measurement, &ImplC::GetTotalPair),
          record.Name()};
}

// Empty if the time of week is out of range.
std::string UtcOf(const Vorlin::TimeC& time) {
  char text[SDI::kTimeTextSize + 1];
  SDI::FormatUTC(time, text);
  return text;
}

// Writes the list of a file in the requested format.
class ListI {
 public:
  ListI() = default;
  ListI(const ListI&) = delete;
  ListI& operator=(const ListI&) = delete;
  virtual ~ListI() = default;

  virtual void Heading(const RecordFile& /*file*/, bool /*isNext*/) {}
  virtual void Measurement(const DecodedRecord& record) = 0;
  virtual void Other(const SDI::GPSRecordEntry& entry) = 0;
  virtual void Gap(const SDI::GPSRecordEntry& entry) = 0;
  virtual void BadFrame(std::uint64_t offset, std::uint64_t size, std::string_view reason) = 0;
};

class TextListC : public ListI {
 public:
  // Writes the name of each file before its heading if there may be several.
  TextListC(PieceOutputC& out, bool areMany, bool isUTC, const ColoursC& colours)
      : out_(out), areMany_(areMany), isUTC_(isUTC), colours_(colours) {}

  void Heading(const RecordFile& file, bool isNext) override {
    if (areMany_) Print("{}{}\n", isNext ? "\n" : "", ToVisible(file.Title()));
    Print("{:>10}  {:<11} {:>6}  {:<23}  {:>4}  {:>12} {:>5} {:>5} {:>5} {:>5}  {:>9}  {}\n",
          "offset", "kind", "length", isUTC_ ? "UTC" : "GPS time", "week", "time of week", "HDOP",
          "VDOP", "TDOP", "PDOP", "used/view", "name");
  }

  void Measurement(const DecodedRecord& record) override {
    const Summary summary = Summarise(record);
    const auto textOf = [](const std::optional<double>& dop) {
      return dop ? fmt::format("{:.1f}", *dop) : std::string("-");
    };
    const auto satellites = summary.satellites ? fmt::format("{}/{}", (*summary.satellites)[1],
                                                             (*summary.satellites)[0])
                                               : std::string("-");
    const std::string line = fmt::format(
        "{:>10}  {:<11} {:>6}  {:<23}  {:>4}  {:>10.3f} s {:>5} {:>5} {:>5} {:>5}  {:>9}  {}",
        record.offset, "measurement", record.size,
        isUTC_ ? UtcOf(summary.time) : GpsDateTime(GpsMilliseconds(summary.time)),
        summary.time.week, summary.time.timeOfWeek / 1000.0, textOf(summary.hdop),
        textOf(summary.vdop), textOf(summary.tdop), textOf(summary.pdop), satellites,
        ToVisible(summary.name));
    Print("{}\n", std::string_view(line).substr(0, line.find_last_not_of(' ') + 1));
  }
  void Other(const SDI::GPSRecordEntry& entry) override {
    Print("{:>10}  {:<11} {:>6}\n", entry.offset, fmt::format("type {}", entry.type), entry.size);
  }
  void Gap(const SDI::GPSRecordEntry& entry) override {
    Print("{:>10}  {} {:>6}  bytes that belong to no record\n", entry.offset,
          colours_.Paint(Colour::kBad, "GAP        "), entry.size);
  }
  void BadFrame(std::uint64_t offset, std::uint64_t size, std::string_view reason) override {
    Print("{:>10}  {} {:>6}  {}\n", offset, colours_.Paint(Colour::kBad, "BAD FRAME  "), size,
          reason);
  }

 private:
  template <class... Args>
  void Print(fmt::format_string<Args...> format, Args&&... args) {
    Append(out_.GetBuffer(), format, std::forward<Args>(args)...);
    out_.FlushIfFull();
  }

  PieceOutputC& out_;
  bool areMany_;
  bool isUTC_;
  const ColoursC& colours_;
};

class JsonListC : public ListI {
 public:
  // Each line begins with `file` unless it is empty.
  JsonListC(PieceOutputC& out, std::string file, bool isUTC)
      : out_(out), file_(std::move(file)), isUTC_(isUTC) {}

  void Measurement(const DecodedRecord& record) override {
    const Summary summary = Summarise(record);
    JsonWriterC line = Begin(record.offset, record.size, "measurement");
    line.Field("time", summary.time);
    line.Field("gpsTime", std::string_view(GpsDateTime(GpsMilliseconds(summary.time))));
    if (isUTC_) {
      const std::string utc = UtcOf(summary.time);
      line.Field("utc", utc.empty() ? std::nullopt : std::optional<std::string_view>(utc));
    }
    line.Field("hdop", summary.hdop);
    line.Field("vdop", summary.vdop);
    line.Field("tdop", summary.tdop);
    line.Field("pdop", summary.pdop);
    line.Field("inView", Nth(summary.satellites, 0));
    line.Field("used", Nth(summary.satellites, 1));
    line.Field("name", std::u16string_view(summary.name));
    End(line);
  }
  void Other(const SDI::GPSRecordEntry& entry) override {
    JsonWriterC line = Begin(entry.offset, entry.size, "other");
    line.Field("type", entry.type);
    End(line);
  }
  void Gap(const SDI::GPSRecordEntry& entry) override {
    JsonWriterC line = Begin(entry.offset, entry.size, "gap");
    End(line);
  }
  void BadFrame(std::uint64_t offset, std::uint64_t size, std::string_view reason) override {
    JsonWriterC line = Begin(offset, size, "badFrame");
    line.Field("reason", reason);
    End(line);
  }

 private:
  static std::optional<std::uint8_t> Nth(const OptionalPair& pair, std::size_t i) {
    return pair ? std::optional((*pair)[i]) : std::nullopt;
  }
  JsonWriterC Begin(std::uint64_t offset, std::uint64_t size, std::string_view kind) {
    JsonWriterC line(out_.GetBuffer());
    if (!file_.empty()) line.NamedField("file", file_);
    line.Field("offset", offset);
    line.Field("size", size);
    line.Field("kind", kind);
    return line;
  }
  void End(JsonWriterC& line) {
    line.EndLine();
    out_.FlushIfFull();
  }

  PieceOutputC& out_;
  std::string file_;
  bool isUTC_;
};

// "1 gap", "2 gaps".
std::string Counted(std::uint64_t count, std::string_view thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

struct Counts {
  std::uint64_t measurements = 0, others = 0, gaps = 0, gapBytes = 0, badFrames = 0;

  void Add(const Counts& more) {
    measurements += more.measurements;
    others += more.others;
    gaps += more.gaps;
    gapBytes += more.gapBytes;
    badFrames += more.badFrames;
  }
};

// A gap, and the damaged headers in it.
struct Gap {
  SDI::GPSRecordEntry entry;
  std::vector<SDI::GPSDamagedHeader> headers;
};

// Lists gaps and bad frames. The reader reports the bad frames of a gap before the gap; the list
// shows them after it, unless there are too many to keep.
class FaultListC {
 public:
  // Only counts if `list` is null. `held` are the bad frames of a gap that has not ended.
  FaultListC(ListI* list, Counts& counts, std::vector<SDI::GPSDamagedHeader>& held)
      : list_(list), counts_(counts), held_(held) {}

  void Header(const SDI::GPSDamagedHeader& header) {
    if (held_.size() == kMostHeld) ListHeld();
    held_.push_back(header);
  }
  void EndGap(const SDI::GPSRecordEntry& entry) {
    ++counts_.gaps;
    counts_.gapBytes += entry.size;
    if (list_ != nullptr) list_->Gap(entry);
    ListHeld();
  }
  void BadFrame(std::uint64_t offset, std::uint64_t size, std::string_view reason) {
    ++counts_.badFrames;
    if (list_ != nullptr) list_->BadFrame(offset, size, reason);
  }

 private:
  static constexpr std::size_t kMostHeld = 10'000;

  void ListHeld() {
    for (const auto& header : held_) BadFrame(header.offset, header.size, TextOf(header.damage));
    held_.clear();
  }

  ListI* list_;
  Counts& counts_;
  std::vector<SDI::GPSDamagedHeader>& held_;
};

// The result of a piece. Stretches may cut the gaps of a file.
struct ListedPiece {
  PieceOutputC output;
  Counts counts;
  bool hasTimesAfterExpiry = false;
  std::optional<Gap> first;  // begins in the previous piece, and may continue in the next one
  std::optional<Gap> last;   // continues in the next piece
};

class ListPassC : public RecordPassI<ListedPiece> {
 public:
  ListPassC(const Options& options, const std::vector<RecordFile>& files)
      : options_(options), files_(files), areMany_(options.files.AreMany()) {}

  void Read(RecordWalkC& walk, ListedPiece& result) const override {
    const RecordPiece& piece = walk.GetPiece();
    const auto list = ListOf(files_[piece.file], result.output);
    ListI* const all = options_.filter.TakesAll() ? list.get() : nullptr;
    std::vector<SDI::GPSDamagedHeader> held;
    FaultListC faults(all, result.counts, held);
    std::vector<SDI::GPSDamagedHeader> headers;  // those of a gap in a stretch, which may be cut
    walk.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
      if (piece.IsWhole()) {
        faults.Header(header);
      } else {
        headers.push_back(header);
      }
    });
    if (piece.isFirst) list->Heading(files_[piece.file], piece.file > 0);
    RecordSieveC sieve(options_.filter);
    SDI::GPSRecordEntry entry;
    while (walk.Next(entry)) {
      if (entry.isGap) {
        const bool isCutBefore = !piece.isFirst && entry.offset == piece.stretch.begin;
        const bool isCutAfter = !piece.isLast && entry.offset + entry.size == piece.stretch.end;
        if (isCutBefore) {
          result.first = Gap{entry, std::move(headers)};
        } else if (isCutAfter) {
          result.last = Gap{entry, std::move(headers)};
        } else {
          for (const SDI::GPSDamagedHeader& header : headers) faults.Header(header);
          faults.EndGap(entry);
        }
        headers.clear();
      } else if (!entry.IsMeasurement()) {
        ++result.counts.others;
        if (all != nullptr) all->Other(entry);
      } else if (const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
                 !record.IsDone()) {
        faults.BadFrame(entry.offset, entry.size, "right checksum, but its blocks do not fit");
      } else if (sieve.Takes(record)) {
        ++result.counts.measurements;
        list->Measurement(record);
        result.hasTimesAfterExpiry |=
            options_.isUTC && SDI::IsAfterLeapSecondExpiry(record.measurement.GetTimeA());
      }
    }
    walk.SetReportDamaged(nullptr);
  }

  void Take(const RecordPiece& piece, ListedPiece& result, PieceOutputC& direct) override {
    if (piece.isFirst) {
      counts_ = {};
      open_.reset();
    }
    if (result.first) Open(piece, *result.first, direct);
    const bool isAllGap =
        result.first && result.first->entry.size == piece.stretch.end - piece.stretch.begin;
    if (!isAllGap || piece.isLast) Close(piece, direct);
    result.output.PutTo(direct);
    counts_.Add(result.counts);
    hasTimesAfterExpiry_ |= result.hasTimesAfterExpiry;
    if (result.last) Open(piece, *result.last, direct);
  }

  ExitCode EndFile(const RecordFile& file, PieceOutputC& direct) override {
    if (!options_.isJson) {
      Append(direct.GetBuffer(), "{}, {}, {} ({}), {}\n",
             Counted(counts_.measurements, "measurement"), Counted(counts_.others, "other record"),
             Counted(counts_.gaps, "gap"), Counted(counts_.gapBytes, "byte"),
             Counted(counts_.badFrames, "bad frame"));
      direct.FlushIfFull();
    }
    if (counts_.measurements == 0) direct.Tell(options_.filter.NoneIn(file.Title()));
    const bool isHealthy = counts_.gaps + counts_.badFrames == 0 && counts_.measurements > 0;
    return isHealthy ? ExitCode::kDone : ExitCode::kFinding;
  }

  bool HasTimesAfterExpiry() const { return hasTimesAfterExpiry_; }

 private:
  std::unique_ptr<ListI> ListOf(const RecordFile& file, PieceOutputC& out) const {
    if (!options_.isJson) {
      return std::make_unique<TextListC>(out, areMany_, options_.isUTC, colours_);
    }
    return std::make_unique<JsonListC>(out, areMany_ ? ToUtf8(file.Title()) : std::string(),
                                       options_.isUTC);
  }

  void Open(const RecordPiece& piece, const Gap& gap, PieceOutputC& direct) {
    if (open_) {
      open_->entry.size += gap.entry.size;
    } else {
      open_ = Gap{gap.entry, {}};
    }
    InOpen(piece, direct, [&](FaultListC& faults) {
      for (const SDI::GPSDamagedHeader& header : gap.headers) faults.Header(header);
    });
  }
  void Close(const RecordPiece& piece, PieceOutputC& direct) {
    if (!open_) return;
    InOpen(piece, direct, [&](FaultListC& faults) { faults.EndGap(open_->entry); });
    open_.reset();
  }
  template <class Do>
  void InOpen(const RecordPiece& piece, PieceOutputC& direct, const Do& what) {
    const auto list = ListOf(files_[piece.file], direct);
    FaultListC faults(options_.filter.TakesAll() ? list.get() : nullptr, counts_, open_->headers);
    what(faults);
  }

  const Options& options_;
  const std::vector<RecordFile>& files_;
  bool areMany_;
  ColoursC colours_ = ColoursC::OfStandardOutput();
  bool hasTimesAfterExpiry_ = false;
  Counts counts_;            // of the file
  std::optional<Gap> open_;  // may continue in the next piece
};

ExitCode Run(const Options& options) {
  const std::vector<RecordFile> files = FindRecordFiles(options.files);
  OutputC out;
  ListPassC pass(options, files);
  // The list is shorter than the records.
  constexpr std::uint64_t kLongestStretch = std::uint64_t{2} << 20;
  const ExitCode result = RunPass(files,
                                  {.jobs = options.files.jobs,
                                   .mayCut = options.filter.every == 1,
                                   .longestStretch = kLongestStretch,
                                   .out = &out,
                                   .hasRows = true},
                                  pass);
  out.Close();
  if (pass.HasTimesAfterExpiry()) TellAboutLeapSeconds();
  return result;
}

}  // namespace

Command RecordListCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "list";
  command.description = kDescription;
  command.footer =
      "Times are GPS times, without leap seconds, unless --utc is given.\n\n"
      "Example:\n  surveydata record list valley_drive.rec";
  command.options = {{.names = {"--json"},
                      .description = "JSON Lines: one object per line",
                      .flag = &options->isJson},
                     {.names = {"--utc"},
                      .description = "Times in UTC; in JSON Lines in addition to GPS time",
                      .flag = &options->isUTC}};
  AddFileOptions(command, options->files);
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
