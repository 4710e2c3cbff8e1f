#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include <surveydata/c_interface/arrow_export.h>
#include <surveydata/c_interface/boundary.h>
#include <surveydata/c_interface/reader.h>
#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/record_columns.h>

namespace SDI::CInterface {
namespace {

using Columns = std::vector<const GPSColumn*>;
using RecordColumns::BytesOfValues;
using RecordColumns::IsLong;

constexpr std::size_t kRowsInBatch = 65536;
/// Before this many rows are read, there is room for their longest texts and lists.
constexpr std::size_t kRowsAtOnce = 1024;
/// The smallest frame of a measurement, in bytes.
constexpr std::uint64_t kSmallestFrame = 19;

// ----- Batches

/// Memory that keeps its content when it grows, aligned as Arrow recommends.
class MemoryC {
 public:
  MemoryC() = default;
  explicit MemoryC(std::size_t size) { Grow(size); }

  std::uint8_t* Get() const { return begin_; }
  std::size_t GetSize() const { return size_; }
  void Grow(std::size_t size) {
    std::size_t space = size + kAlignment;
    auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(space);
    void* begin = bytes.get();
    std::align(kAlignment, size, begin, space);
    if (size_ != 0) std::memcpy(begin, begin_, size_);
    bytes_ = std::move(bytes);
    begin_ = static_cast<std::uint8_t*>(begin);
    size_ = size;
  }

 private:
  static constexpr std::size_t kAlignment = 64;

  std::unique_ptr<std::uint8_t[]> bytes_;
  std::uint8_t* begin_ = nullptr;
  std::size_t size_ = 0;
};

/// The memory of a batch. Its arrays share the ownership: each may outlive the others.
struct BatchMemory {
  MemoryC fixed;               // all buffers whose size is known in advance
  std::vector<MemoryC> longs;  // bytes of texts and lists
};

/// A batch, with the rows read so far.
class BatchC {
 public:
  /// `room` is the initial number of bytes for each text and list column.
  BatchC(const Columns& columns, std::size_t capacity, std::span<const std::size_t> room)
      : capacity_(capacity), memory_(std::make_shared<BatchMemory>()) {
    if (capacity > kMostRows) throw std::bad_alloc();  // their bytes could not be counted
    memory_->fixed = MemoryC(Lay(columns, nullptr));
    Lay(columns, memory_->fixed.Get());
    for (const std::size_t size : room) memory_->longs.emplace_back(size);
    SetLongs();
  }

  std::size_t GetCapacity() const { return capacity_; }
  std::size_t GetRows() const { return rows_; }
  const std::vector<GPSColumnBuffer>& GetBuffers() const { return buffers_; }
  const std::shared_ptr<BatchMemory>& GetMemory() const { return memory_; }

  /// Reads until the batch is full or there are no more rows.
  void Read(GPSColumnReaderC& reader) {
    if (!hasBegun_) {
      for (GPSColumnBuffer& buffer : buffers_) {
        if (buffer.offsets != nullptr) buffer.offsets[0] = 0;
      }
      hasBegun_ = true;
    }
    while (rows_ < capacity_) {
      const std::size_t next = std::min(kRowsAtOnce, capacity_ - rows_);
      MakeRoom(next);
      if (reader.ReadOn(buffers_, rows_ + next, rows_) != GPSColumnsOutcome::kDone) return;
    }
  }

 private:
  static constexpr std::size_t kMostBytes = std::numeric_limits<std::ptrdiff_t>::max();
  /// One buffer of so many rows takes less than half of `kMostBytes`: no row takes more than 8
  /// bytes in it, or its offset.
  static constexpr std::size_t kMostRows = kMostBytes / 32;

  /// Places the buffers at `at` and returns the number of bytes that they take.
  std::size_t Lay(const Columns& columns, std::uint8_t* at) {
    buffers_.clear();
    std::size_t size = 0;
    const auto take = [&](std::size_t bytes) {
      std::uint8_t* const taken = at != nullptr ? at + size : nullptr;
      // Leaves a spare cache line, so that columns do not map to the same sets of the cache.
      size += (bytes + 127) / 64 * 64;
      if (size > kMostBytes) throw std::bad_alloc();
      return taken;
    };
    for (const GPSColumn* const column : columns) {
      GPSColumnBuffer buffer{.column = column};
      if (column->canBeAbsent) buffer.validity = take((capacity_ + 7) / 8);
      if (IsLong(*column)) {
        buffer.offsets =
            reinterpret_cast<std::int64_t*>(take((capacity_ + 1) * sizeof(std::int64_t)));
      } else {
        buffer.values = take(BytesOfValues(column->type, capacity_));
      }
      buffers_.push_back(buffer);
    }
    return size;
  }

  /// Sets the pointers to the bytes of texts and lists.
  void SetLongs() {
    std::size_t next = 0;
    for (GPSColumnBuffer& buffer : buffers_) {
      if (!IsLong(*buffer.column)) continue;
      const MemoryC& memory = memory_->longs[next++];
      buffer.values = memory.Get();
      buffer.size = memory.GetSize();
    }
  }

  /// Makes room for the texts and lists of `rows` more rows, however long they are. With less room
  /// rows would be read in smaller and smaller blocks.
  void MakeRoom(std::size_t rows) {
    std::size_t next = 0;
    for (const GPSColumnBuffer& buffer : buffers_) {
      if (!IsLong(*buffer.column)) continue;
      MemoryC& memory = memory_->longs[next++];
      const std::size_t unit =
          buffer.column->type == GPSColumnType::kText ? 1 : sizeof(std::uint16_t);
      const std::size_t used = static_cast<std::size_t>(buffer.offsets[rows_]) * unit;
      const std::size_t needed = used + rows * buffer.column->largest;
      if (memory.GetSize() < needed) memory.Grow(std::max(needed, 2 * memory.GetSize()));
    }
    SetLongs();
  }

  std::size_t capacity_;
  std::size_t rows_ = 0;
  bool hasBegun_ = false;
  std::shared_ptr<BatchMemory> memory_;
  std::vector<GPSColumnBuffer> buffers_;
};

// ----- The stream

int ErrnoOf(surveydata_status status) {
  switch (status) {
    case SURVEYDATA_OK:
    case SURVEYDATA_END:
      return 0;
    case SURVEYDATA_CANCELLED:
      return ECANCELED;
    case SURVEYDATA_OUT_OF_MEMORY:
      return ENOMEM;
    case SURVEYDATA_READING_FAILED:
      return EIO;
    default:
      return EINVAL;
  }
}

class StreamC {
 public:
  StreamC(Columns columns, std::size_t rowsInBatch)
      : columns_(std::move(columns)), rowsInBatch_(rowsInBatch) {
    for (const GPSColumn* const column : columns_) {
      if (IsLong(*column)) room_.push_back(column->largest);
    }
  }

  /// Takes ownership of the reader. Called last, when nothing else can fail.
  void Own(surveydata_reader* reader) { reader_.reset(reader); }

  int GetSchema(ArrowSchema& schema) {
    return Answer(Guarded([&] {
      MakeSchema(columns_, schema);
      return SURVEYDATA_OK;
    }));
  }

  int GetNext(ArrowArray& array) {
    array.release = nullptr;
    return Answer(Guarded([&] { return Next(array); }));
  }

  const char* GetLastError() const {
    return ErrnoOf(last_) == 0 ? nullptr : surveydata_status_text(last_);
  }

 private:
  surveydata_status Next(ArrowArray& array) {
    if (batch_ == nullptr) batch_ = std::make_unique<BatchC>(columns_, RowsToRead(), room_);
    batch_->Read(reader_->GetColumns());  // continues after an error
    if (batch_->GetRows() == 0) {
      batch_.reset();
      return reader_->GetStatus();
    }
    MakeArray(batch_->GetBuffers(), batch_->GetRows(), batch_->GetMemory(), array);
    NoteRoom();
    batch_.reset();
    return SURVEYDATA_OK;
  }

  /// At most as many rows as the source can contain, if its size is known.
  std::size_t RowsToRead() const {
    const std::uint64_t size = std::as_const(*reader_).GetReader().GetSize();
    if (size == 0) return rowsInBatch_;
    return static_cast<std::size_t>(
        std::min<std::uint64_t>(rowsInBatch_, size / kSmallestFrame + 1));
  }

  /// The next batch gets as much room as this one needed.
  void NoteRoom() {
    for (std::size_t i = 0; i < room_.size(); ++i) {
      room_[i] = batch_->GetMemory()->longs[i].GetSize();
    }
  }

  int Answer(surveydata_status status) {
    last_ = status;
    return ErrnoOf(status);
  }

  Columns columns_;
  std::size_t rowsInBatch_;
  std::vector<std::size_t> room_;  // for each text and list column, in bytes
  struct Close {
    void operator()(surveydata_reader* reader) const { surveydata_reader_close(reader); }
  };
  std::unique_ptr<surveydata_reader, Close> reader_;
  std::unique_ptr<BatchC> batch_;  // the batch that is being filled
  surveydata_status last_ = SURVEYDATA_OK;
};

StreamC& StreamOf(ArrowArrayStream* stream) { return *static_cast<StreamC*>(stream->private_data); }

}  // namespace
}  // namespace SDI::CInterface

using SDI::GPSColumn;
using SDI::CInterface::Columns;
using SDI::CInterface::StreamC;
using SDI::CInterface::StreamOf;

surveydata_status surveydata_reader_arrow_stream(surveydata_reader* reader,
                                                 const std::uint32_t* columns,
                                                 std::size_t column_count,
                                                 std::size_t rows_in_batch,
                                                 ArrowArrayStream* stream) {
  if (reader == nullptr || stream == nullptr || (columns == nullptr && column_count != 0)) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  return SDI::CInterface::Guarded([&]() -> surveydata_status {
    const std::span<const GPSColumn> all = SDI::GetGPSColumns();
    Columns chosen;
    for (const std::uint32_t column : std::span(columns, column_count)) {
      if (column >= all.size()) return SURVEYDATA_INVALID_ARGUMENT;
      chosen.push_back(&all[column]);
    }
    if (columns == nullptr) {
      for (const GPSColumn& column : all) chosen.push_back(&column);
    }
    const std::size_t rows = rows_in_batch != 0 ? rows_in_batch : SDI::CInterface::kRowsInBatch;
    auto made = std::make_unique<StreamC>(std::move(chosen), rows);
    reader->GetColumns();  // may throw
    made->Own(reader);
    *stream = {
        [](ArrowArrayStream* self, ArrowSchema* out) { return StreamOf(self).GetSchema(*out); },
        [](ArrowArrayStream* self, ArrowArray* out) { return StreamOf(self).GetNext(*out); },
        [](ArrowArrayStream* self) { return StreamOf(self).GetLastError(); },
        [](ArrowArrayStream* self) {
          delete &StreamOf(self);
          self->release = nullptr;
        },
        made.release()};
    return SURVEYDATA_OK;
  });
}
