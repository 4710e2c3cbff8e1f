#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <new>
#include <numeric>
#include <utility>

#ifdef __linux__
#include <pthread.h>
#include <sys/mman.h>
#endif

#include <boost/endian/conversion.hpp>
#include <extension/record_batch.h>

namespace Python {

using SDI::GPSColumn;
using SDI::GPSColumnBuffer;
using SDI::GPSColumnType;

namespace {

// The room of a batch for texts and lists, in bytes per row. If they are longer, a large batch has
// fewer rows, but at least `kCertainRows` always fit.
constexpr std::size_t kBytesInRow = 32;
constexpr std::size_t kCertainRows = 1024;

// The alignment of a column, and that of memory in huge pages.
constexpr std::size_t kAlignment = 64;
constexpr std::size_t kHugePage = std::size_t{1} << 21;

std::size_t RoundUp(std::size_t size, std::size_t unit) { return (size + unit - 1) / unit * unit; }

std::size_t BitBytes(std::size_t count) { return (count + 7) / 8; }

std::size_t ElementSize(const GPSColumn& column) {
  return column.type == GPSColumnType::kUInt16List ? sizeof(std::uint16_t) : 1;
}

const std::int64_t* Offsets(const BatchColumn& column) {
  return reinterpret_cast<const std::int64_t*>(column.offsets.Get());
}

// The bytes that the values of the first `rows` rows take.
std::size_t UsedBytes(const BatchColumn& column, std::size_t rows) {
  if (column.IsLong()) {
    return static_cast<std::size_t>(Offsets(column)[rows]) * ElementSize(*column.column);
  }
  if (column.column->type == GPSColumnType::kBool) return BitBytes(rows);
  return rows * ValueSize(column.column->type);
}

BlockC CopyOf(const BlockC& block, std::size_t size) {
  BlockC copy(size);
  if (size != 0) std::memcpy(copy.Get(), block.Get(), size);
  return copy;
}

bool IsBitSet(const std::uint8_t* bits, std::size_t at) {
  return (bits[at / 8] >> at % 8 & 1) != 0;
}

// Blocks of huge pages that were released, for the next ones: the kernel clears new pages, which
// took up to a fifth of the time of reading, and the kernel handles the page faults of threads one
// at a time.
class SparesC {
 public:
  // Never destroyed, because blocks may be released until the process ends.
  static SparesC& Get() {
    static SparesC* const spares = new SparesC;
    return *spares;
  }

  // A block of at least `room` bytes. Sets `room` to its size.
  std::uint8_t* Take(std::size_t& room) {
    {
      const std::lock_guard lock(mutex_);
      for (Spare& spare : spares_) {
        if (spare.size < room || spare.size > room + room / 2) continue;
        room = spare.size;
        bytes_ -= room;
        spare.size = 0;
        return spare.bytes;
      }
    }
    auto* const bytes = static_cast<std::uint8_t*>(::operator new(room, kAligned));
#ifdef __linux__
    static_cast<void>(madvise(bytes, room, MADV_HUGEPAGE));  // failure does not matter
#endif
    return bytes;
  }

  // Keeps a block, in place of the oldest ones if there are too many.
  void Keep(std::uint8_t* bytes, std::size_t size) {
    if (size > kMostSpareBytes) return ::operator delete(bytes, kAligned);
#ifdef __linux__
    static_cast<void>(madvise(bytes, size, MADV_FREE));  // the kernel may reclaim its pages
#endif
    const std::lock_guard lock(mutex_);
    for (bool isKept = false; !isKept;) {
      Spare& oldest = spares_[next_++ % spares_.size()];
      if (oldest.size != 0) ::operator delete(oldest.bytes, kAligned);
      bytes_ -= std::exchange(oldest.size, 0);
      isKept = bytes_ + size <= kMostSpareBytes;
      if (isKept) oldest = {bytes, size};
    }
    bytes_ += size;
  }

  std::size_t GetBytes() {
    const std::lock_guard lock(mutex_);
    return bytes_;
  }

 private:
  static constexpr std::align_val_t kAligned{kHugePage};

  SparesC() {
#ifdef __linux__
    // A child process gets the lock free, even if another thread holds it while it is forked.
    static_cast<void>(pthread_atfork([] { Get().mutex_.lock(); }, [] { Get().mutex_.unlock(); },
                                     [] { Get().mutex_.unlock(); }));
#endif
  }

  struct Spare {
    std::uint8_t* bytes = nullptr;
    std::size_t size = 0;  // 0 if there is no block
  };

  std::mutex mutex_;
  std::array<Spare, 8> spares_;
  std::size_t next_ = 0;  // where the next block goes
  std::size_t bytes_ = 0;
};

// A byte, 0 or 1, for each bit.
void UnpackBits(const std::uint8_t* bits, std::size_t count, std::uint8_t* to) {
  std::size_t i = 0;
  for (; count - i >= 8; i += 8) {
    // Each of eight copies keeps one bit, which the addition moves to the top if it is set.
    const std::uint64_t each = bits[i / 8] * 0x0101'0101'0101'0101U & 0x8040'2010'0804'0201U;
    boost::endian::store_little_u64(to + i,
                                    (each + 0x7F7F'7F7F'7F7F'7F7FU) >> 7 & 0x0101'0101'0101'0101U);
  }
  for (; i < count; ++i) to[i] = IsBitSet(bits, i) ? 1 : 0;
}

// The bits of the kept rows, without gaps.
BlockC FilterBits(const std::uint8_t* bits, std::span<const bool> keep, std::size_t kept) {
  BlockC to(BitBytes(kept));
  if (kept == 0) return to;
  std::memset(to.Get(), 0, to.GetSize());
  std::size_t at = 0;
  for (std::size_t i = 0; i < keep.size(); ++i) {
    if (!keep[i]) continue;
    if (IsBitSet(bits, i)) to.Get()[at / 8] |= static_cast<std::uint8_t>(1U << at % 8);
    ++at;
  }
  return to;
}

BatchColumn FilterColumn(const BatchColumn& from, std::span<const bool> keep, std::size_t kept) {
  BatchColumn to;
  to.column = from.column;
  if (from.validity.GetSize() != 0) {
    to.validity = FilterBits(from.validity.Get(), keep, kept);
    for (std::size_t i = 0; i < kept; ++i) to.absent += !IsBitSet(to.validity.Get(), i);
  }
  if (from.column->type == GPSColumnType::kBool) {
    to.values = FilterBits(from.values.Get(), keep, kept);
    return to;
  }
  const std::size_t size = from.IsLong() ? ElementSize(*from.column) : ValueSize(from.column->type);
  to.values = BlockC(from.IsLong() ? UsedBytes(from, keep.size()) : kept * size);
  if (from.IsLong()) to.offsets = BlockC((kept + 1) * sizeof(std::int64_t));
  auto* const offsets = reinterpret_cast<std::int64_t*>(to.offsets.Get());
  std::size_t row = 0;
  std::size_t used = 0;  // bytes
  for (std::size_t i = 0; i < keep.size(); ++i) {
    if (!keep[i]) continue;
    std::size_t at = i * size;
    std::size_t count = size;
    if (from.IsLong()) {
      offsets[row++] = static_cast<std::int64_t>(used / size);
      at = static_cast<std::size_t>(Offsets(from)[i]) * size;
      count = static_cast<std::size_t>(Offsets(from)[i + 1]) * size - at;
    }
    if (count != 0) std::memcpy(to.values.Get() + used, from.values.Get() + at, count);
    used += count;
  }
  if (from.IsLong()) offsets[row] = static_cast<std::int64_t>(used / size);
  return to;
}

}  // namespace

BlockC::BlockC(std::size_t size) : size_(size) {
  if (size == 0) return;
  if (size >= kHugePage) {
    std::size_t room = RoundUp(size, kHugePage);
    std::uint8_t* const bytes = SparesC::Get().Take(room);
    bytes_.reset(bytes, [room](std::uint8_t* to) { SparesC::Get().Keep(to, room); });
    return;
  }
  constexpr std::align_val_t kAligned{kAlignment};
  bytes_.reset(static_cast<std::uint8_t*>(::operator new(RoundUp(size, kAlignment), kAligned)),
               [](std::uint8_t* bytes) { ::operator delete(bytes, kAligned); });
}

std::size_t SpareBytes() { return SparesC::Get().GetBytes(); }

BlockC BlockC::Part(std::size_t at, std::size_t size) const {
  BlockC part;
  if (size == 0) return part;
  part.bytes_ = std::shared_ptr<std::uint8_t>(bytes_, bytes_.get() + at);
  part.size_ = size;
  return part;
}

std::size_t ValueSize(GPSColumnType type) {
  switch (type) {
    using enum GPSColumnType;
    case kUInt8:
      return 1;
    case kUInt16:
      return 2;
    case kUInt32:
    case kInt32:
    case kFloat32:
      return 4;
    case kUInt64:
    case kFloat64:
      return 8;
    case kBool:
    case kText:
    case kUInt16List:
      break;
  }
  return 0;
}

namespace {

std::size_t ValueBytes(const GPSColumn& column, std::size_t rows) {
  return column.type == GPSColumnType::kBool ? BitBytes(rows) : rows * ValueSize(column.type);
}

std::size_t ValidityBytes(const GPSColumn& column, std::size_t rows) {
  return column.canBeAbsent ? BitBytes(rows) : 0;
}

// Gives parts of one block.
class PartsC {
 public:
  explicit PartsC(std::size_t size) : block_(size) {}
  // For the columns of fixed width.
  PartsC(std::span<const GPSColumn* const> columns, std::size_t rows)
      : PartsC(std::accumulate(columns.begin(), columns.end(), std::size_t{0},
                               [rows](std::size_t sum, const GPSColumn* column) {
                                 if (column->largest != 0) return sum;
                                 return sum + RoundUp(ValueBytes(*column, rows), kAlignment) +
                                        RoundUp(ValidityBytes(*column, rows), kAlignment);
                               })) {}

  BlockC Next(std::size_t size) {
    const std::size_t at = used_;
    used_ += RoundUp(size, kAlignment);
    return block_.Part(at, size);
  }

 private:
  BlockC block_;
  std::size_t used_ = 0;
};

}  // namespace

std::shared_ptr<const RecordBatch> ReadBatch(SDI::GPSColumnReaderC& reader,
                                             std::span<const GPSColumn* const> columns,
                                             std::size_t capacity) {
  auto batch = std::make_shared<RecordBatch>();
  std::vector<GPSColumnBuffer> buffers;
  PartsC parts(columns, capacity);
  for (const GPSColumn* column : columns) {
    BatchColumn to;
    to.column = column;
    const std::size_t validity = ValidityBytes(*column, capacity);
    if (column->largest != 0) {
      to.values = BlockC(
          std::max(capacity * kBytesInRow, std::min(capacity, kCertainRows) * column->largest));
      to.offsets = BlockC((capacity + 1) * sizeof(std::int64_t));
      to.validity = BlockC(validity);
    } else {
      to.values = parts.Next(ValueBytes(*column, capacity));
      to.validity = parts.Next(validity);
    }
    GPSColumnBuffer buffer;
    buffer.column = column;
    buffer.values = to.values.Get();
    buffer.size = to.values.GetSize();
    buffer.offsets = reinterpret_cast<std::int64_t*>(to.offsets.Get());
    buffer.validity = to.validity.Get();
    buffers.push_back(buffer);
    batch->columns.push_back(std::move(to));
  }
  reader.Read(buffers, capacity, batch->rows);
  if (batch->rows == 0) return nullptr;
  for (std::size_t i = 0; i < buffers.size(); ++i) {
    BatchColumn& column = batch->columns[i];
    column.absent = buffers[i].absent;
    // A block that is kept takes little more memory than it needs: pages at its end that are never
    // written take none.
    const bool isMostlyEmpty = batch->rows < capacity / 2;
    if (column.IsLong() || isMostlyEmpty) {
      column.values = CopyOf(column.values, UsedBytes(column, batch->rows));
    }
    if (column.IsLong() && isMostlyEmpty) {
      column.offsets = CopyOf(column.offsets, (batch->rows + 1) * sizeof(std::int64_t));
    }
    if (column.absent == 0) {
      column.validity = BlockC();
    } else if (isMostlyEmpty) {
      column.validity = CopyOf(column.validity, BitBytes(batch->rows));
    }
  }
  return batch;
}

std::vector<Bools> Unpack(const RecordBatch& batch, std::span<const std::size_t> columns) {
  const auto isFlag = [](const BatchColumn& column) {
    return column.column->type == GPSColumnType::kBool;
  };
  std::size_t count = 0;
  for (const std::size_t i : columns) {
    const BatchColumn& column = batch.columns[i];
    count += std::size_t{isFlag(column)} + std::size_t{column.absent != 0};
  }
  PartsC parts(count * RoundUp(batch.rows, kAlignment));
  std::vector<Bools> all;
  for (const std::size_t i : columns) {
    const BatchColumn& column = batch.columns[i];
    Bools bools;
    if (isFlag(column)) {
      bools.values = parts.Next(batch.rows);
      UnpackBits(column.values.Get(), batch.rows, bools.values.Get());
    }
    if (column.absent != 0) {
      bools.validity = parts.Next(batch.rows);
      UnpackBits(column.validity.Get(), batch.rows, bools.validity.Get());
    }
    all.push_back(std::move(bools));
  }
  return all;
}

std::shared_ptr<const RecordBatch> Filter(const RecordBatch& batch, std::span<const bool> keep) {
  auto kept = std::make_shared<RecordBatch>();
  kept->rows = static_cast<std::size_t>(std::ranges::count(keep, true));
  for (const BatchColumn& column : batch.columns) {
    kept->columns.push_back(FilterColumn(column, keep, kept->rows));
  }
  return kept;
}

}  // namespace Python
