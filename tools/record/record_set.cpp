#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <surveydata/gnss/gps_record_reader.h>

#include <command_line/message.h>
#include <command_line/progress.h>
#include <command_line/text.h>
#include <output/output.h>
#include <output/replace_file.h>
#include <platform/input_file.h>
#include <record/decoded_record.h>
#include <record/each_measurement.h>
#include <record/find_frame.h>
#include <record/frame_values.h>
#include <record/patch_frame.h>
#include <record/record_commands.h>
#include <record/record_filter.h>
#include <record/record_input.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Change the name, the number or the antenna height of one measurement frame, or of all that\n"
    "the filters select. In the latter case, frames without room for a name or an antenna height\n"
    "are left unchanged. Only the given fields are rewritten: the 17 characters of the name (a\n"
    "shorter one is padded with zeros), the number, the value and kind of the antenna height,\n"
    "and the checksum. All other bytes of the file stay the same. The change is made completely\n"
    "or not at all: in a copy that is read back and then replaces the file in one step. Group,\n"
    "permissions, access control list and extended attributes are preserved, or the change is\n"
    "refused; only root can preserve the owner of another user's file. Sparse files remain\n"
    "sparse. The file gets a new inode, so other hard links keep the old content; symbolic links\n"
    "are followed. The file is locked during the change: if several such commands run at once,\n"
    "all but one exit with 3. Other programs must not write to the file meanwhile; if a write is\n"
    "detected, the change is refused.";

struct Options {
  std::string file;
  FrameOffset offset;
  RecordFilter filter;
  bool isAll = false;
  FrameChanges changes;
  bool isDryRun = false;
};

std::int32_t ParseNumber(const std::string& text) {
  const auto number = ToNumber<std::int32_t>(text);
  if (!number) throw ValueErrorC("is not a decimal number of 32 bits");
  return *number;
}

float ParseHeight(const std::string& text) {
  const auto number = ToNumber<double>(text);
  if (!number) throw ValueErrorC("is not a decimal number");
  return ToAntennaHeight(*number);
}

void WriteHeading(OutputC& out) {
  out.Print("{:>10}  {:>3}  {:>3}  {}\n", "offset", "old", "new", "field");
}

// One line per changed byte; the first line of a field shows its new value.
void WriteChanges(OutputC& out, std::uint64_t offset, const PatchedFrame& frame) {
  for (const FrameField& field : frame.fields) {
    const std::string name = field.BlockName() == field.FieldName()
                                 ? std::string(field.FieldName())
                                 : fmt::format("{}, {}", field.BlockName(), field.FieldName());
    std::string value = " = " + field.value;
    for (std::size_t i = field.at; i < field.at + field.size; ++i) {
      if (frame.before[i] == frame.after[i]) continue;
      out.Print("{:>10}   {:02x}   {:02x}  {}{}\n", offset + i, frame.before[i], frame.after[i],
                name, value);
      value.clear();
    }
  }
}

bool IsSlant(std::span<const std::uint8_t> frame) {
  float height = 0;
  bool isVertical = true;
  Decode(0, frame).measurement.GetAntennaHeight().GetHeight(height, isVertical);
  return !isVertical;
}

std::vector<std::uint8_t> FindFrameIn(const Options& options,
                                      const std::optional<FileReplacementC>& replacement) {
  if (!replacement) return FindFrame(options.file, options.offset);
  const auto readAt = [&](std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return static_cast<std::ptrdiff_t>(replacement->Read(offset, bytes));
  };
  return FindFrame(readAt, replacement->GetSize(), options.offset);
}

// Distinguishes the bytes of a frame from others.
std::uint64_t MarkOf(std::span<const std::uint8_t> frame) {
  return std::hash<std::string_view>()({reinterpret_cast<const char*>(frame.data()), frame.size()});
}

// Changes all measurements of a file that a filter selects.
class FilteredChangeC {
 public:
  FilteredChangeC(const Options& options, OutputC& out) : options_(options), out_(out) {}

  ExitCode Run() {
    if (options_.isDryRun) {
      WriteHeading(out_);
      InputFileC input(options_.file);
      SDI::GPSRecordReaderC reader = ReadRecords(input);
      Find(reader, input.GetSize());
      if (reader.GetState() != SDI::GPSReaderState::kOpen) input.Fail();
    } else {
      FileReplacementC replacement(options_.file);  // holds the lock
      const auto readAt = [&](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        return static_cast<std::ptrdiff_t>(replacement.Read(offset, bytes));
      };
      SDI::GPSRecordReaderC reader(readAt, replacement.GetSize());
      Find(reader, replacement.GetSize());
      if (!patches_.empty()) {
        replacement.Replace(patches_, [this](const FilePatch& patch, auto bytes) {
          if (MarkOf(bytes) != patch.mark) return false;
          std::ranges::copy(PatchFrame(bytes, options_.changes).after, bytes.begin());
          return true;
        });
      }
    }
    return TellAll();
  }

 private:
  void Find(SDI::GPSRecordReaderC& reader, std::uint64_t size) {
    ProgressC progress(size, options_.isDryRun);
    reader.SetReportProgress([&progress](std::uint64_t at) { progress.Update(at); });
    reader.SetReportDamaged([this](const SDI::GPSDamagedHeader& header) {
      if (header.damage != SDI::GPSRecordDamage::kRunsIntoNextRecord) ++counts_.badFrames;
    });
    RecordSieveC sieve(options_.filter);
    SDI::GPSRecordEntry entry;
    while (reader.NextEntry(entry)) {
      if (!entry.IsMeasurement()) continue;
      const DecodedRecord record = Decode(entry.offset, reader.GetBytes());
      if (!record.IsDone()) {
        ++counts_.badFrames;
      } else if (sieve.Takes(record)) {
        ++counts_.taken;
        Take(entry.offset, reader.GetBytes());
      }
    }
    reader.SetReportDamaged(nullptr);
    reader.SetReportProgress(nullptr);
  }

  void Take(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
    const FrameChanges& changes = options_.changes;
    if (!HasRoom(bytes, changes)) {
      ++withoutRoom_;
      return;
    }
    const PatchedFrame frame = PatchFrame(bytes, changes);
    if (frame.before == frame.after) {
      ++alike_;
      return;
    }
    ++changed_;
    if (changes.antennaHeight && !changes.isSlant && IsSlant(bytes)) ++slant_;
    if (options_.isDryRun) {
      WriteChanges(out_, offset, frame);
    } else {
      patches_.push_back({.offset = offset, .size = bytes.size(), .mark = MarkOf(bytes)});
    }
  }

  ExitCode TellAll() {
    if (slant_ > 0) {
      Tell(fmt::format("without --slant, {} slant height{} become{} vertical", slant_,
                       slant_ == 1 ? "" : "s", slant_ == 1 ? "s" : ""));
    }
    out_.Print("{} measurement{} {}, {} with these values already, {} without room\n", changed_,
               changed_ == 1 ? "" : "s", options_.isDryRun ? "would change" : "changed", alike_,
               withoutRoom_);
    ProgressC none(0);
    PieceOutputC messages(&out_, none);
    const ExitCode result =
        TellAbout(counts_, options_.filter, {.name = options_.file}, "", messages);
    return withoutRoom_ > 0 ? std::max(result, ExitCode::kFinding) : result;
  }

  const Options& options_;
  OutputC& out_;
  std::vector<FilePatch> patches_;
  MeasurementCounts counts_;
  std::uint64_t changed_ = 0;
  std::uint64_t alike_ = 0;
  std::uint64_t withoutRoom_ = 0;
  std::uint64_t slant_ = 0;
};

void Check(const Options& options) {
  const FrameChanges& changes = options.changes;
  if (IsStandardInput(options.file)) {
    throw ToolErrorC(ExitCode::kUsage, "standard input cannot be changed; name a file");
  }
  if (!changes.name && !changes.number && !changes.antennaHeight) {
    throw ToolErrorC(ExitCode::kUsage, "nothing to set: give --name, --number or --antenna-height");
  }
  if (options.offset.text.empty() && !options.isAll && options.filter.TakesAll()) {
    throw ToolErrorC(ExitCode::kUsage,
                     "give --offset, a filter such as --where, or --all for all measurements");
  }
}

ExitCode Run(const Options& options) {
  Check(options);
  if (options.offset.text.empty()) {
    OutputC out;
    const ExitCode result = FilteredChangeC(options, out).Run();
    out.Close();
    return result;
  }
  const FrameChanges& changes = options.changes;
  std::optional<FileReplacementC> replacement;  // holds the lock while the frame is read
  if (!options.isDryRun) replacement.emplace(options.file);
  const PatchedFrame frame = PatchFrame(FindFrameIn(options, replacement), changes);
  if (changes.antennaHeight && !changes.isSlant && IsSlant(frame.before)) {
    Tell("the antenna height was a slant height; without --slant, it becomes vertical");
  }
  OutputC out;
  if (frame.before == frame.after) {
    Tell(fmt::format("the frame at {} has these values already; nothing is changed",
                     options.offset.text));
  } else if (options.isDryRun) {
    WriteHeading(out);
    WriteChanges(out, options.offset.value, frame);
  } else {
    replacement->Replace(options.offset.value, frame.before, frame.after);
  }
  out.Close();
  return ExitCode::kDone;
}

}  // namespace

Command RecordSetCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "set";
  command.description = kDescription;
  command.footer =
      "Examples:\n"
      "  surveydata record set valley_drive.rec --offset 960 --name 'Süd-Ø2' --number 7 --dry-run\n"
      "  surveydata record set valley_drive.rec --where 'number > 0' --name A --dry-run";
  command.arguments = {FileArgument(options->file, false)};
  command.options = {
      {.names = {"--name"},
       .value = "TEXT",
       .description = "The point name: up to 17 characters, UTF-8",
       .take = [options](const std::string& name) { options->changes.name = ToFrameName(name); }},
      {.names = {"--number"},
       .value = "N",
       .description = "The number that is stored with the name",
       .take = [options](const std::string& text) { options->changes.number = ParseNumber(text); }},
      {.names = {"--antenna-height"},
       .value = "H",
       .description = "The antenna height in metres, 0 to 1000; vertical unless --slant is given",
       .take =
           [options](const std::string& text) {
             options->changes.antennaHeight = ParseHeight(text);
           }},
      {.names = {"--slant"},
       .description = "The antenna height is a slant height",
       .flag = &options->changes.isSlant,
       .needs = {"--antenna-height"}},
      {.names = {"--dry-run"},
       .description = "Print the bytes that would change, without changing the file",
       .flag = &options->isDryRun}};
  CommandOptionsC filters = FilterOptionsWithoutName(options->filter);
  filters.Add(
      {.names = {"--all"}, .description = "All measurements of the file", .flag = &options->isAll});
  AddOffsetOrFilters(command, options->offset, std::move(filters));
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
