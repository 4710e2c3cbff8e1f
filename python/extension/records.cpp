#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <extension/buffer.h>
#include <extension/file_name.h>
#include <extension/module.h>
#include <extension/record_batch.h>
#include <nanobind/nanobind.h>
#include <nanobind/ndarray.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>

namespace Python {
namespace {

namespace nb = nanobind;
using namespace nb::literals;

using SDI::GPSColumn;
using SDI::GPSReaderState;
using SDI::GPSRecordReaderC;
using Batch = std::shared_ptr<const RecordBatch>;
using Bytes = nb::ndarray<nb::numpy, const std::uint8_t, nb::ndim<1>>;

std::vector<const GPSColumn*> FindColumns(const std::vector<std::string>& names) {
  std::vector<const GPSColumn*> columns;
  for (const std::string& name : names) {
    columns.push_back(SDI::FindGPSColumn(name));
    if (columns.back() == nullptr) throw nb::key_error(("no column '" + name + "'").c_str());
  }
  return columns;
}

// A view of the bytes of a block, which keeps `owner` alive.
Bytes View(const BlockC& block, nb::handle owner) {
  return Bytes(block.Get(), {block.GetSize()}, owner);
}

// The same for bools, which nothing else refers to.
using BoolArray = nb::ndarray<nb::numpy, bool, nb::ndim<1>>;
std::optional<BoolArray> ArrayOf(const BlockC& block) {
  if (block.GetSize() == 0) return {};
  auto memory = std::make_unique<BlockC>(block);
  std::uint8_t* const bools = memory->Get();
  const nb::capsule owner(memory.get(),
                          [](void* held) noexcept { delete static_cast<BlockC*>(held); });
  memory.release();  // NOLINT(bugprone-unused-return-value): `owner` deletes it
  return BoolArray(bools, {block.GetSize()}, owner);
}

// Reads a record file, bytes or a file object once, from front to back. Only one thread may use it
// at a time.
class ReaderC {
 public:
  ReaderC(const std::string& path, SDI::GPSRecordStretch stretch)
      : reader_(path.c_str(), stretch), columns_(reader_) {}
  ReaderC(std::unique_ptr<BufferC> bytes, SDI::GPSRecordStretch stretch)
      : bytes_(std::move(bytes)),
        reader_(std::span(std::as_const(*bytes_).GetBytes(), bytes_->GetByteCount()), stretch),
        columns_(reader_) {}
  // `readAt` takes an offset and a buffer, and returns the number of bytes that it has written
  // there.
  ReaderC(nb::object readAt, std::uint64_t size, SDI::GPSRecordStretch stretch)
      : readAt_(std::move(readAt)),
        reader_(
            [this](std::uint64_t offset, std::span<std::uint8_t> to) { return Ask(offset, to); },
            size, stretch),
        columns_(reader_) {}

  GPSReaderState GetState() const { return reader_.GetState(); }
  std::uint64_t GetSize() const { return reader_.GetSize(); }
  std::uint64_t GetLeftOut() const { return columns_.GetLeftOut(); }
  bool HasTimesAfterExpiry() const { return columns_.HasTimesAfterExpiry(); }

  Batch Read(const std::vector<std::string>& names, std::size_t rows) {
    const std::vector<const GPSColumn*> columns = FindColumns(names);
    const nb::gil_scoped_release unlocked;
    return ReadBatch(columns_, columns, rows);
  }

  // A part that is not a whole measurement: offset, size, kind and record type. The kind is "gap",
  // "other record", or the text of a damage.
  using Finding = std::tuple<std::uint64_t, std::uint64_t, std::string, int>;
  std::vector<Finding> FindDamage(bool withOthers) {
    std::vector<Finding> findings;
    const nb::gil_scoped_release unlocked;
    reader_.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
      findings.emplace_back(header.offset, header.size, SDI::TextOf(header.damage),
                            SDI::GPSRecordEntry::kMeasurement);
    });
    SDI::GPSRecordEntry entry;
    while (reader_.NextEntry(entry)) {
      if (entry.isGap) {
        findings.emplace_back(entry.offset, entry.size, "gap", 0);
      } else if (!entry.IsMeasurement()) {
        if (withOthers) findings.emplace_back(entry.offset, entry.size, "other record", entry.type);
      } else if (const SDI::GPSRecordC& record = reader_.GetRecord(); !record.IsDone()) {
        findings.emplace_back(
            entry.offset, entry.size,
            std::string(SDI::TextOf(record.GetOutcome())) + ": " + SDI::TextOf(record.GetBlock()),
            entry.type);
      }
    }
    reader_.SetReportDamaged({});
    return findings;
  }

 private:
  std::ptrdiff_t Ask(std::uint64_t offset, std::span<std::uint8_t> to) {
    const nb::gil_scoped_acquire locked;
    const nb::object memory = nb::steal(PyMemoryView_FromMemory(
        reinterpret_cast<char*>(to.data()), static_cast<Py_ssize_t>(to.size()), PyBUF_WRITE));
    // Python must not use the buffer after the call; tracebacks keep objects.
    const auto release = [&] { nb::object(memory.attr("release"))(); };
    std::ptrdiff_t count = 0;
    try {
      count = nb::cast<std::ptrdiff_t>(readAt_(offset, memory));
    } catch (...) {
      release();
      throw;
    }
    release();
    return std::min(count, static_cast<std::ptrdiff_t>(to.size()));
  }

  std::unique_ptr<BufferC> bytes_;
  nb::object readAt_;
  GPSRecordReaderC reader_;
  SDI::GPSColumnReaderC columns_;
};

SDI::GPSRecordStretch Stretch(std::uint64_t begin, std::optional<std::uint64_t> end) {
  return {begin, end.value_or(std::numeric_limits<std::uint64_t>::max())};
}

const BatchColumn& ColumnAt(const RecordBatch& batch, std::size_t i) {
  if (i >= batch.columns.size()) throw nb::index_error("no such column");
  return batch.columns[i];
}

}  // namespace

void AddRecords(nb::module_& module) {
  module.def("columns", [] {
    std::vector<std::tuple<std::string, std::string, std::string, bool, std::string>> columns;
    for (const GPSColumn& column : SDI::GetGPSColumns()) {
      columns.emplace_back(column.name, SDI::TextOf(column.type), column.unit, column.canBeAbsent,
                           column.description);
    }
    return columns;
  });

  module.def("spare_bytes", SpareBytes);

  nb::class_<RecordBatch>(module, "BatchCore")
      .def_prop_ro("rows", [](const RecordBatch& self) { return self.rows; })
      .def_prop_ro("names",
                   [](const RecordBatch& self) {
                     std::vector<std::string> names;
                     for (const BatchColumn& column : self.columns) {
                       names.emplace_back(column.column->name);
                     }
                     return names;
                   })
      .def(
          "values",
          [](nb::handle self, std::size_t i) {
            return View(ColumnAt(nb::cast<const RecordBatch&>(self), i).values, self);
          },
          "column"_a)
      .def(
          "offsets",
          [](nb::handle self, std::size_t i) {
            return View(ColumnAt(nb::cast<const RecordBatch&>(self), i).offsets, self);
          },
          "column"_a)
      .def(
          "validity",
          [](nb::handle self, std::size_t i) {
            return View(ColumnAt(nb::cast<const RecordBatch&>(self), i).validity, self);
          },
          "column"_a)
      .def(
          "absent", [](const RecordBatch& self, std::size_t i) { return ColumnAt(self, i).absent; },
          "column"_a)
      .def(
          "bools",
          [](const RecordBatch& self, const std::vector<std::size_t>& columns) {
            for (const std::size_t i : columns) ColumnAt(self, i);
            std::vector<Bools> unpacked;
            {
              const nb::gil_scoped_release unlocked;
              unpacked = Unpack(self, columns);
            }
            std::vector<std::tuple<std::optional<BoolArray>, std::optional<BoolArray>>> arrays;
            for (const Bools& bools : unpacked) {
              arrays.emplace_back(ArrayOf(bools.values), ArrayOf(bools.validity));
            }
            return arrays;
          },
          "columns"_a)
      .def(
          "filter",
          [](const RecordBatch& self, nb::handle keep) {
            const BufferC buffer(keep);
            if (buffer.GetFormat() != "?" || !buffer.IsContiguous() ||
                buffer.GetCount() != self.rows) {
              throw nb::value_error("expected one bool for each row");
            }
            // A copy: other threads may change the array, and NumPy's bools may be other bytes.
            const auto kept = std::make_unique<bool[]>(self.rows);
            std::transform(buffer.GetBytes(), buffer.GetBytes() + self.rows, kept.get(),
                           [](std::uint8_t byte) { return byte != 0; });
            const nb::gil_scoped_release unlocked;
            return Filter(self, {kept.get(), self.rows});
          },
          "keep"_a);

  module.def(
      "arrow_stream",
      [](const std::vector<std::string>& names, const std::vector<Batch>& batches) {
        constexpr const char* kName = "arrow_array_stream";
        ArrowArrayStream* const stream = NewStream();
        nb::object capsule = nb::steal(PyCapsule_New(stream, kName, [](PyObject* object) {
          DeleteStream(static_cast<ArrowArrayStream*>(PyCapsule_GetPointer(object, kName)));
        }));
        if (!capsule.is_valid()) {
          DeleteStream(stream);
          nb::raise_python_error();
        }
        ExportStream(FindColumns(names), batches, stream);
        return capsule;
      },
      "columns"_a, "batches"_a);

  nb::enum_<GPSReaderState>(module, "ReaderState")
      .value("OPEN", GPSReaderState::kOpen)
      .value("NO_SUCH_FILE", GPSReaderState::kNoSuchFile)
      .value("NO_PERMISSION", GPSReaderState::kNoPermission)
      .value("CANNOT_OPEN", GPSReaderState::kCannotOpen)
      .value("NO_STRETCHES", GPSReaderState::kNoStretches)
      .value("READING_FAILED", GPSReaderState::kReadingFailed);

  nb::class_<ReaderC>(module, "ReaderCore")
      .def_static(
          "open_file",
          [](nb::handle path, std::uint64_t begin, std::optional<std::uint64_t> end) {
            const std::string name = ToFileName(path);
            const nb::gil_scoped_release unlocked;  // opening a pipe blocks
            return std::make_shared<ReaderC>(name, Stretch(begin, end));
          },
          "path"_a, "begin"_a, "end"_a.none())
      .def_static(
          "open_bytes",
          [](nb::handle bytes, std::uint64_t begin, std::optional<std::uint64_t> end) {
            auto buffer = std::make_unique<BufferC>(bytes);
            if (!buffer->IsContiguous()) throw nb::value_error("the bytes have gaps");
            return std::make_shared<ReaderC>(std::move(buffer), Stretch(begin, end));
          },
          "bytes"_a, "begin"_a, "end"_a.none())
      .def_static(
          "open_source",
          [](nb::object readAt, std::uint64_t size, std::uint64_t begin,
             std::optional<std::uint64_t> end) {
            return std::make_shared<ReaderC>(std::move(readAt), size, Stretch(begin, end));
          },
          "read_at"_a, "size"_a, "begin"_a, "end"_a.none())
      .def_prop_ro("state", &ReaderC::GetState)
      .def_prop_ro("size", &ReaderC::GetSize)
      .def_prop_ro("left_out", &ReaderC::GetLeftOut)
      .def_prop_ro("has_times_after_expiry", &ReaderC::HasTimesAfterExpiry)
      .def("read", &ReaderC::Read, "columns"_a, "rows"_a)
      .def("find_damage", &ReaderC::FindDamage, "with_others"_a);

  using SDI::GPSAppendOutcome;
  nb::enum_<GPSAppendOutcome>(module, "AppendOutcome")
      .value("DONE", GPSAppendOutcome::kDone)
      .value("NO_RECORDS", GPSAppendOutcome::kNoRecords)
      .value("NO_SUCH_FILE", GPSAppendOutcome::kNoSuchFile)
      .value("NO_PERMISSION", GPSAppendOutcome::kNoPermission)
      .value("CANNOT_OPEN", GPSAppendOutcome::kCannotOpen)
      .value("WRITING_FAILED", GPSAppendOutcome::kWritingFailed)
      .value("LEFT_OVER", GPSAppendOutcome::kLeftOver);
  module.def(
      "append",
      [](nb::handle path, nb::handle records) {
        const std::string name = ToFileName(path);
        const BufferC buffer(records);
        if (!buffer.IsContiguous()) throw nb::value_error("the bytes have gaps");
        const nb::gil_scoped_release unlocked;
        return SDI::GPSRecordWriterC::Append(name.c_str(),
                                             std::span(buffer.GetBytes(), buffer.GetByteCount()));
      },
      "path"_a, "records"_a);
  module.def(
      "append_text", [](GPSAppendOutcome outcome) { return std::string(SDI::TextOf(outcome)); },
      "outcome"_a);
}

}  // namespace Python
