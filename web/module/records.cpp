#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <module/results.h>

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_columns.h>

#include <command_line/command.h>
#include <command_line/text.h>
#include <output/chart.h>
#include <output/csv_writer.h>
#include <output/gps_time.h>
#include <output/json_writer.h>
#include <record/csv_table.h>
#include <record/decoded_record.h>
#include <record/describe_record.h>
#include <record/frame_values.h>
#include <record/satellite_series.h>
#include <record/show_writer.h>

/// \file
/// The functions for record files that the page calls.

/// Reads bytes of the file that is being listed. Defined by the page. Returns the number of bytes
/// read, or another result of `surveydata_read_at`.
extern "C" std::int32_t page_read(double offset, std::uint8_t* to, std::uint32_t count);

namespace {

using Tool::DecodedRecord;
using Tool::JsonWriterC;

// Kinds of rows: the kinds of entries, and measurements whose blocks do not fit.
enum RowKind : std::uint8_t {
  kMeasurement = SURVEYDATA_MEASUREMENT,
  kOther = SURVEYDATA_OTHER_RECORD,
  kGap = SURVEYDATA_GAP,
  kDamagedHeader = SURVEYDATA_DAMAGED_HEADER,
  kBadFrame = 16
};

// A row of the list. The page knows this layout: 32 bytes, see module.ts.
struct Row {
  double offset;
  double size;
  double time;  // of a measurement, in ms from the start of GPS time
  std::uint8_t kind;
  std::uint8_t detail;    // the type of another record, or the damage of a header
  std::uint16_t plotted;  // the plotted values of a measurement, see `PlottedC`
  std::uint32_t reserved;
};
static_assert(sizeof(Row) == 32);

// The plotted values of the measurements of a file. A file has few distinct combinations of a step
// in time with dilutions and satellites, however many records it has, so a 16-bit number identifies
// all plotted values of a record.
class PlottedC {
 public:
  // Identifies a record whose values are not kept, because there are too many combinations.
  static constexpr std::uint16_t kNotKept = 0;
  // The scripts use the remaining 16-bit numbers for rows that are not measurements.
  static constexpr std::size_t kMost = 65'000;

  std::uint16_t Add(const Tool::SatelliteSeriesC::Sample& sample) {
    Plotted plotted{static_cast<double>(isFirst_ ? 0 : sample.time - before_)};
    std::copy(sample.values.begin(), sample.values.end(), plotted.begin() + 1);
    isFirst_ = false;
    before_ = sample.time;
    if (last_ != kNotKept && plotted == all_[last_ - std::size_t{1}]) return last_;
    std::size_t slot = HashOf(plotted);
    while (slots_[slot] != kNotKept && plotted != all_[slots_[slot] - std::size_t{1}]) {
      slot = (slot + 1) % kSlots;
    }
    if (slots_[slot] == kNotKept) {
      if (all_.size() == kMost) return last_ = kNotKept;
      all_.push_back(plotted);
      slots_[slot] = static_cast<std::uint16_t>(all_.size());
    }
    return last_ = slots_[slot];
  }
  // The combinations starting with number `first`: the step in time (ms) and the values.
  std::span<const char> From(std::size_t first) const {
    const auto part = std::span(all_).subspan(std::min(first - 1, all_.size()));
    return {reinterpret_cast<const char*>(part.data()), part.size_bytes()};
  }

 private:
  using Plotted = std::array<double, 1 + Tool::SatelliteSeriesC::kValueCount>;

  // A table with linear probing, at most half full.
  static constexpr std::size_t kSlots = std::size_t{1} << 17;
  static_assert(2 * kMost <= kSlots);

  static std::size_t HashOf(const Plotted& plotted) {
    std::uint64_t hash = 0;
    for (const double value : plotted) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, &value, sizeof(bits));
      hash = (hash ^ bits) * 0x9E3779B97F4A7C15;
      hash ^= hash >> 32;
    }
    return static_cast<std::size_t>(hash % kSlots);
  }

  std::vector<std::uint16_t> slots_ = std::vector<std::uint16_t>(kSlots, kNotKept);
  std::vector<Plotted> all_;
  std::int64_t before_ = 0;
  std::uint16_t last_ = kNotKept;
  bool isFirst_ = true;
};

// Lists one file. The reader reports damaged headers before the gap that contains them; they are
// listed after it, as in the program, unless there are too many to keep.
class WalkC {
 public:
  explicit WalkC(double size) {
    surveydata_source source{};
    source.struct_size = sizeof(source);
    source.size = static_cast<std::uint64_t>(size);
    source.read_at = [](void* /*context*/, std::uint64_t offset, std::uint8_t* to,
                        std::size_t count) -> std::int64_t {
      return page_read(static_cast<double>(offset), to, count);
    };
    state_ = surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader_);
    entry_.struct_size = sizeof(entry_);
  }
  WalkC(const WalkC&) = delete;
  WalkC& operator=(const WalkC&) = delete;
  ~WalkC() { surveydata_reader_close(reader_); }

  surveydata_status GetState() const { return state_; }
  Tool::SatelliteSeriesC& GetSeries() { return series_; }
  const PlottedC& GetPlotted() const { return plotted_; }

  std::span<const Row> Next(std::size_t most) {
    rows_.clear();
    while (rows_.size() < most) {
      if (state_ != SURVEYDATA_OK) {
        if (held_.empty()) break;
        Release();
        break;
      }
      surveydata_status status = surveydata_reader_next(reader_, SURVEYDATA_ALL_ENTRIES, &entry_);
      if (status == SURVEYDATA_CANCELLED) break;
      state_ = status;
      if (status == SURVEYDATA_OK) Take();
    }
    return rows_;
  }

 private:
  static constexpr std::size_t kMostHeld = 10'000;

  void Take() {
    Row row{static_cast<double>(entry_.offset),
            static_cast<double>(entry_.size),
            0,
            static_cast<std::uint8_t>(entry_.kind),
            static_cast<std::uint8_t>(
                entry_.kind == SURVEYDATA_DAMAGED_HEADER ? entry_.damage : entry_.record_type),
            PlottedC::kNotKept,
            0};
    if (entry_.kind == SURVEYDATA_DAMAGED_HEADER) {
      if (held_.size() == kMostHeld) Release();
      held_.push_back(row);
      return;
    }
    if (entry_.kind == SURVEYDATA_MEASUREMENT) {
      const DecodedRecord& record = record_;
      Tool::DecodeChecked(entry_.offset, {entry_.bytes, static_cast<std::size_t>(entry_.size)},
                          record_);
      if (record.IsDone()) {
        const Tool::SatelliteSeriesC::Sample sample = Tool::SatelliteSeriesC::ToSample(record);
        row.time = static_cast<double>(sample.time);
        row.plotted = plotted_.Add(sample);
        series_.Add(sample);
      } else {
        row.kind = kBadFrame;
      }
    }
    rows_.push_back(row);
    if (entry_.kind == SURVEYDATA_GAP) Release();
  }
  void Release() {
    rows_.insert(rows_.end(), held_.begin(), held_.end());
    held_.clear();
  }

  surveydata_reader* reader_ = nullptr;
  surveydata_status state_;
  surveydata_entry entry_{};
  std::vector<Row> rows_;
  std::vector<Row> held_;
  Tool::SatelliteSeriesC series_;
  PlottedC plotted_;
  DecodedRecord record_;  // reused for each measurement
};

std::unique_ptr<WalkC> walk;
std::unique_ptr<Tool::SatelliteSeriesC> part;  // the series of a part of the file

std::string Told(bool isSet, double dop) {
  return isSet && dop >= 0 ? fmt::format("{:.1f}", dop) : std::string("–");
}

// The cells of a measurement in the list.
void DescribeMeasurement(const DecodedRecord& record, JsonWriterC& out) {
  using ImplC = SDI::GPSMeasDataImplC;
  const ImplC& measurement = record.measurement;
  const SDI::GPSDOPsImplC& dops = measurement.GetDOPs();
  const bool hasDOPs = (measurement.GetSetMask() & ImplC::kHasDOPs) != 0;
  const Tool::OptionalPair pair = Tool::AskPair(measurement, &ImplC::GetTotalPair);
  const auto text = [&](std::string_view key, const std::string& value) {
    out.Field(key, std::string_view(value));
  };
  text("time", Tool::GpsDateTime(Tool::GpsMilliseconds(measurement.GetTimeA())));
  text("hdop", Told(hasDOPs, dops.GetHDOP()));
  text("vdop", Told(hasDOPs, dops.GetVDOP()));
  text("pdop", Told(hasDOPs, dops.GetPDOP()));
  text("satellites", pair ? fmt::format("{}/{}", (*pair)[1], (*pair)[0]) : std::string("–"));
  text("name", Tool::ToVisible(record.Name()));
}

void WriteBytes(const std::uint8_t* frame, std::uint32_t size, JsonWriterC& out) {
  std::vector<surveydata_field> fields(SURVEYDATA_MOST_FIELDS);
  std::size_t count = 0;
  const surveydata_status status = surveydata_fields(
      frame, size, fields.data(), sizeof(surveydata_field), fields.size(), &count);
  out.Field("status", std::string_view(surveydata_status_text(status)));
  out.BeginArray("bytes");
  for (std::size_t i = 0; status == SURVEYDATA_OK && i < count; ++i) {
    const surveydata_field& field = fields[i];
    out.BeginElement();
    out.Field("at", field.offset);
    out.Field("size", field.size);
    out.Field("blockNumber", field.block);
    out.Field("block", std::string_view(field.block_name));
    out.Field("name", std::string_view(field.name));
    out.Field("unit", std::string_view(field.unit));
    out.Field("value", std::string_view(field.value));
    out.End();
  }
  out.EndArray();
}

// All columns of a table.
const std::vector<const SDI::GPSColumn*>& Columns() {
  static const std::vector<const SDI::GPSColumn*> columns = [] {
    std::vector<const SDI::GPSColumn*> all;
    for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) all.push_back(&column);
    return all;
  }();
  return columns;
}

// Runs `check`, and names the value that it refuses.
template <class Check>
void CheckValue(const char* name, const Check& check) {
  try {
    check();
  } catch (const Tool::ValueErrorC& error) {
    throw std::runtime_error(fmt::format("the {} {}", name, error.what()));
  }
}

Tool::SatelliteSeriesC& SeriesOf(std::int32_t isPart) {
  return isPart != 0 ? *part : walk->GetSeries();
}

}  // namespace

/// Starts to list the file that `page_read` reads, instead of the previous one. Returns a status of
/// the C interface.
SURVEYDATA_PAGE std::int32_t page_walk_open(double size) {
  walk = std::make_unique<WalkC>(size);
  return walk->GetState();
}

/// Reads about `most` further rows. The result is an array of `Row`. Returns a status: 0 if there
/// may be more rows.
SURVEYDATA_PAGE std::int32_t page_walk(std::uint32_t most) {
  return Page::Guarded([&] {
    const std::span<const Row> rows = walk->Next(most);
    Page::SetResult({reinterpret_cast<const char*>(rows.data()), rows.size_bytes()});
    return walk->GetState();
  });
}

/// The result is the meaning of the numbers in `Row::plotted` starting with `first`. Each is six
/// doubles: the time since the previous measurement (ms), and the values of `SatelliteSeriesC`.
SURVEYDATA_PAGE std::int32_t page_plotted(std::uint32_t first) {
  return Page::Guarded([&] {
    const std::span<const char> plotted = walk->GetPlotted().From(first);
    Page::SetResult({plotted.data(), plotted.size()});
    return 0;
  });
}

/// Appends a row of the list to the result, as a line of JSON. `frame` is the bytes of a record.
SURVEYDATA_PAGE void page_row(std::uint32_t kind, std::uint32_t detail, double offset, double size,
                              const std::uint8_t* frame) {
  JsonWriterC out(Page::Result());
  out.Field("kind", kind);
  out.Field("offset", static_cast<std::uint64_t>(offset));
  out.Field("size", static_cast<std::uint64_t>(size));
  const auto tell = [&](const std::string& text) { out.Field("text", std::string_view(text)); };
  switch (kind) {
    case kMeasurement:
      DescribeMeasurement(
          Tool::Decode(static_cast<std::uint64_t>(offset), {frame, static_cast<std::size_t>(size)}),
          out);
      tell("measurement");
      break;
    case kOther:
      tell(fmt::format("record of type {}", detail));
      break;
    case kGap:
      tell("gap: bytes that belong to no record");
      break;
    case kDamagedHeader:
      tell(fmt::format("bad frame: {}", surveydata_text(SURVEYDATA_TEXT_DAMAGE, detail)));
      break;
    default:
      tell("bad frame: right checksum, but its blocks do not fit");
  }
  out.EndLine();
}

/// The result is one record: its fields as in `surveydata record show`, and its bytes.
SURVEYDATA_PAGE std::int32_t page_record(double offset, const std::uint8_t* frame,
                                         std::uint32_t size) {
  return Page::Guarded([&] {
    const DecodedRecord record =
        Tool::Decode(static_cast<std::uint64_t>(offset), {frame, std::size_t{size}});
    fmt::memory_buffer text;
    Tool::ShowWriterC show(text);
    Tool::DescribeRecord(record, show);
    JsonWriterC out(Page::NewResult());
    out.Field("text", std::string_view(text.data(), text.size()));
    surveydata_measurement measurement{};
    measurement.struct_size = sizeof(measurement);
    const surveydata_status status = surveydata_decode(frame, size, &measurement);
    out.Field("isWhole", status == SURVEYDATA_OK);
    out.Field("name", std::string_view(measurement.name));
    out.Field("number", measurement.number);
    out.Field("height", double{measurement.antenna_height});
    out.Field("isSlant", measurement.antenna_is_vertical == 0);
    WriteBytes(frame, size, out);
    out.EndLine();
    return 0;
  });
}

/// The result is the frame with the changes `which` of `surveydata_changes`. The values are those
/// that `surveydata record set` takes. Returns -1 with the reason if it cannot be changed.
SURVEYDATA_PAGE std::int32_t page_patch(const std::uint8_t* frame, std::uint32_t size,
                                        std::uint32_t which, const char* name, std::int32_t number,
                                        double height, std::int32_t isSlant) {
  return Page::Guarded([&] {
    const bool hasName = (which & SURVEYDATA_CHANGE_NAME) != 0;
    const bool hasHeight = (which & SURVEYDATA_CHANGE_ANTENNA_HEIGHT) != 0;
    surveydata_changes changes{};
    changes.struct_size = sizeof(changes);
    changes.which = which;
    changes.name = hasName ? name : nullptr;
    changes.number = number;
    if (hasName) CheckValue("name", [&] { Tool::ToFrameName(name); });
    if (hasHeight) {
      CheckValue("antenna height", [&] { changes.antenna_height = Tool::ToAntennaHeight(height); });
    }
    changes.is_slant = isSlant;
    std::vector<std::uint8_t> patched(size);
    const surveydata_status status = surveydata_patch(frame, size, &changes, patched.data());
    if (status != SURVEYDATA_OK) {
      throw std::runtime_error(fmt::format("the value {}", surveydata_status_text(status)));
    }
    Page::SetResult({reinterpret_cast<const char*>(patched.data()), patched.size()});
    return 0;
  });
}

/// Appends the output of `surveydata record export` before the first record.
SURVEYDATA_PAGE void page_export_header(std::int32_t isCsv) {
  if (isCsv == 0) return;
  Tool::CsvWriterC line(Page::Result(), Tool::Formulas::kEscape);
  Tool::WriteNames(Columns(), line);
  line.EndLine();
}

/// Appends its output for a record: nothing if a block of the frame does not fit.
SURVEYDATA_PAGE void page_export(std::int32_t isCsv, double offset, const std::uint8_t* frame,
                                 std::uint32_t size) {
  const DecodedRecord record =
      Tool::Decode(static_cast<std::uint64_t>(offset), {frame, std::size_t{size}});
  if (!record.IsDone()) return;
  if (isCsv != 0) {
    Tool::CsvWriterC line(Page::Result(), Tool::Formulas::kEscape);
    Tool::WriteValues(record, Columns(), line);
    line.EndLine();
  } else {
    JsonWriterC line(Page::Result());
    Tool::DescribeRecord(record, line);
    line.EndLine();
  }
}

/// The time of a measurement, in ms from the start of GPS time.
SURVEYDATA_PAGE double page_time(const std::uint8_t* frame, std::uint32_t size) {
  return static_cast<double>(
      Tool::GpsMilliseconds(Tool::Decode(0, {frame, std::size_t{size}}).measurement.GetTimeA()));
}

/// Starts the series of a part of the file; adds a record to it; adds the plotted values of `count`
/// records, each with the time (ms) and the values of `SatelliteSeriesC`.
/// @{
SURVEYDATA_PAGE void page_part_begin() { part = std::make_unique<Tool::SatelliteSeriesC>(); }
SURVEYDATA_PAGE void page_part_add(const std::uint8_t* frame, std::uint32_t size) {
  const DecodedRecord record = Tool::Decode(0, {frame, std::size_t{size}});
  if (record.IsDone()) part->Add(record);
}
SURVEYDATA_PAGE void page_part_add_plotted(const double* plotted, std::uint32_t count) {
  for (; count > 0; --count) {
    Tool::SatelliteSeriesC::Sample sample{.time = static_cast<std::int64_t>(*plotted++)};
    for (float& value : sample.values) value = static_cast<float>(*plotted++);
    part->Add(sample);
  }
}
/// @}

/// The result is the runs of a `SatelliteSeriesC::Value`: pairs of time (s) and value, with a pair
/// of NaN between two runs.
SURVEYDATA_PAGE std::int32_t page_series(std::int32_t isPart, std::uint32_t value) {
  return Page::Guarded([&] {
    std::vector<double> pairs;
    if (SeriesOf(isPart).GetRecordCount() > 0) {
      for (const auto& run :
           SeriesOf(isPart).GetRuns(static_cast<Tool::SatelliteSeriesC::Value>(value))) {
        if (!pairs.empty()) pairs.insert(pairs.end(), 2, std::nan(""));
        for (const Tool::ChartPoint& point : run) {
          pairs.insert(pairs.end(), {point.time, point.value});
        }
      }
    }
    Page::SetResult({reinterpret_cast<const char*>(pairs.data()), pairs.size() * sizeof(double)});
    return 0;
  });
}

/// The result is a JSON object: ticks of a time axis with their labels.
SURVEYDATA_PAGE std::int32_t page_time_ticks(double first, double last, std::int32_t wanted) {
  return Page::Guarded([&] {
    JsonWriterC out(Page::NewResult());
    out.BeginArray("ticks");
    for (const double tick : Tool::TimeTicks(first, last, wanted)) {
      const auto milliseconds = static_cast<std::int64_t>(std::llround(tick * 1000));
      out.BeginElement();
      out.Field("at", tick);
      out.Field("date", std::string_view(Tool::GpsDate(milliseconds)));
      out.Field("time", std::string_view(Tool::GpsTimeOfDay(milliseconds)));
      out.End();
    }
    out.EndArray();
    out.EndLine();
    return 0;
  });
}

/// The same for an axis of values that begins at 0.
SURVEYDATA_PAGE std::int32_t page_value_ticks(double top, std::int32_t wanted,
                                              std::int32_t isWhole) {
  return Page::Guarded([&] {
    JsonWriterC out(Page::NewResult());
    out.BeginArray("ticks");
    for (const double tick : Tool::ValueTicks(top, wanted, isWhole != 0)) {
      out.BeginElement();
      out.Field("at", tick);
      out.Field("label", std::string_view(fmt::format("{:.6g}", tick)));
      out.End();
    }
    out.EndArray();
    out.EndLine();
    return 0;
  });
}
