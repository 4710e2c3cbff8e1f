#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/message.h>
#include <command_line/text.h>
#include <output/gps_time.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_walk.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "List every record of a file with time, dilutions of precision, satellites and name.\n"
    "Gaps and bad frames are listed too, and give the exit code 1: bytes that belong to no "
    "record,\n"
    "headers of measurement frames among them, and frames whose blocks do not fit. So does a file\n"
    "without a measurement. With filters only measurements are listed; the rest is counted, and "
    "gives\n"
    "the same exit code.";

struct Options {
  std::string file;
  bool isJson = false;
  RecordFilter filter;
};

// What a list tells of a measurement.
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

// The stretches of a file in the form that the user asked for.
class ListI {
 public:
  ListI() = default;
  ListI(const ListI&) = delete;
  ListI& operator=(const ListI&) = delete;
  virtual ~ListI() = default;

  virtual void Measurement(const DecodedRecord& record) = 0;
  virtual void Other(const SDI::GPSRecordEntry& entry) = 0;
  virtual void Gap(const SDI::GPSRecordEntry& entry) = 0;
  virtual void BadFrame(std::uint64_t offset, std::uint64_t size, std::string_view reason) = 0;
};

class TextListC : public ListI {
 public:
  explicit TextListC(OutputC& out) : out_(out) {
    out.Print("{:>10}  {:<11} {:>6}  {:<23}  {:>4}  {:>12} {:>5} {:>5} {:>5} {:>5}  {:>9}  {}\n",
              "offset", "kind", "length", "GPS time", "week", "time of week", "HDOP", "VDOP",
              "TDOP", "PDOP", "used/view", "name");
  }

  void Measurement(const DecodedRecord& record) override {
    const Summary summary = Summarise(record);
    const auto told = [](const std::optional<double>& dop) {
      return dop ? fmt::format("{:.1f}", *dop) : std::string("-");
    };
    const auto satellites = summary.satellites ? fmt::format("{}/{}", (*summary.satellites)[1],
                                                             (*summary.satellites)[0])
                                               : std::string("-");
    const std::string line = fmt::format(
        "{:>10}  {:<11} {:>6}  {:<23}  {:>4}  {:>10.3f} s {:>5} {:>5} {:>5} {:>5}  {:>9}  {}",
        record.offset, "measurement", record.size, GpsDateTime(GpsMilliseconds(summary.time)),
        summary.time.week, summary.time.timeOfWeek / 1000.0, told(summary.hdop), told(summary.vdop),
        told(summary.tdop), told(summary.pdop), satellites, ToVisible(summary.name));
    out_.Print("{}\n", std::string_view(line).substr(0, line.find_last_not_of(' ') + 1));
  }
  void Other(const SDI::GPSRecordEntry& entry) override {
    out_.Print("{:>10}  {:<11} {:>6}\n", entry.offset, fmt::format("type {}", entry.type),
               entry.size);
  }
  void Gap(const SDI::GPSRecordEntry& entry) override {
    out_.Print("{:>10}  {:<11} {:>6}  bytes that belong to no record\n", entry.offset, "GAP",
               entry.size);
  }
  void BadFrame(std::uint64_t offset, std::uint64_t size, std::string_view reason) override {
    out_.Print("{:>10}  {:<11} {:>6}  {}\n", offset, "BAD FRAME", size, reason);
  }

 private:
  OutputC& out_;
};

class JsonListC : public ListI {
 public:
  explicit JsonListC(OutputC& out) : out_(out) {}

  void Measurement(const DecodedRecord& record) override {
    const Summary summary = Summarise(record);
    JsonWriterC line = Begin(record.offset, record.size, "measurement");
    line.Field("time", summary.time);
    line.Field("gpsTime", std::string_view(GpsDateTime(GpsMilliseconds(summary.time))));
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
    line.Field("offset", offset);
    line.Field("size", size);
    line.Field("kind", kind);
    return line;
  }
  void End(JsonWriterC& line) {
    line.EndLine();
    out_.FlushIfFull();
  }

  OutputC& out_;
};

// "1 gap", "2 gaps".
std::string Counted(std::uint64_t count, std::string_view thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

ExitCode Run(const Options& options) {
  RecordWalkC walk(options.file, true);
  OutputC out;
  std::unique_ptr<ListI> list;
  if (options.isJson) {
    list = std::make_unique<JsonListC>(out);
  } else {
    list = std::make_unique<TextListC>(out);
  }

  RecordSieveC sieve(options.filter);
  const bool isListingAll = options.filter.TakesAll();
  std::uint64_t measurements = 0, others = 0, gaps = 0, gapBytes = 0, badFrames = 0;
  const auto reportBad = [&](std::uint64_t offset, std::uint64_t size, std::string_view reason) {
    ++badFrames;
    if (isListingAll) list->BadFrame(offset, size, reason);
  };
  // The walk gives the bad frames of a gap before the gap, the list shows them after it. There may
  // be any number: when these are full, they are shown at once.
  constexpr std::size_t kMostHeld = 10'000;
  std::vector<SDI::GPSDamagedHeader> held;
  const auto listHeld = [&] {
    for (const auto& header : held) reportBad(header.offset, header.size, TextOf(header.damage));
    held.clear();
  };
  walk.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    if (held.size() == kMostHeld) listHeld();
    held.push_back(header);
  });
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (entry.isGap) {
      ++gaps;
      gapBytes += entry.size;
      if (isListingAll) list->Gap(entry);
      listHeld();
    } else if (!entry.IsMeasurement()) {
      ++others;
      if (isListingAll) list->Other(entry);
    } else if (const DecodedRecord record = Decode(entry.offset, walk.GetBytes());
               record.IsDone()) {
      if (!sieve.Takes(record)) continue;
      ++measurements;
      list->Measurement(record);
    } else {
      reportBad(entry.offset, entry.size, "right checksum, but its blocks do not fit");
    }
  }
  if (!options.isJson) {
    out.Print("{}, {}, {} ({}), {}\n", Counted(measurements, "measurement"),
              Counted(others, "other record"), Counted(gaps, "gap"), Counted(gapBytes, "byte"),
              Counted(badFrames, "bad frame"));
  }
  out.Close();
  if (measurements == 0) Tell(options.filter.NoneIn(walk.GetName()));
  const bool isHealthy = gaps + badFrames == 0 && measurements > 0;
  return isHealthy ? ExitCode::kDone : ExitCode::kFinding;
}

}  // namespace

Command RecordListCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "list";
  command.description = kDescription;
  command.footer =
      "Times are GPS times, without leap seconds.\n\n"
      "Example:\n  surveydata record list valley_drive.rec";
  command.arguments = {FileArgument(options->file)};
  command.options = {{.names = {"--json"},
                      .description = "JSON Lines: one object per line",
                      .flag = &options->isJson}};
  AddFilterOptions(command, options->filter);
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
