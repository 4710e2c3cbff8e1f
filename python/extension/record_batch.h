#ifndef SURVEYDATA_PYTHON_EXTENSION_RECORD_BATCH_H_
#define SURVEYDATA_PYTHON_EXTENSION_RECORD_BATCH_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <surveydata/gnss/gps_record_columns.h>

struct ArrowArrayStream;

namespace Python {

/// The most bytes of released memory that are kept for the next tables.
constexpr std::size_t kMostSpareBytes = std::size_t{256} << 20;
/// How many bytes are kept now.
std::size_t SpareBytes();

/// Uninitialised memory for numbers of any type. It is shared by copies and by parts.
class BlockC {
 public:
  BlockC() = default;
  /// \throw std::bad_alloc
  explicit BlockC(std::size_t size);

  std::uint8_t* Get() { return bytes_.get(); }
  const std::uint8_t* Get() const { return bytes_.get(); }
  std::size_t GetSize() const { return size_; }
  /// The `size` bytes starting at `at`.
  BlockC Part(std::size_t at, std::size_t size) const;

 private:
  std::shared_ptr<std::uint8_t> bytes_;
  std::size_t size_ = 0;
};

/// A column of a batch, in the layout of `SDI::GPSColumnBuffer`.
struct BatchColumn {
  const SDI::GPSColumn* column = nullptr;
  BlockC values;
  BlockC offsets;   ///< Empty except for texts and lists.
  BlockC validity;  ///< Empty where every row has a value.
  std::uint64_t absent = 0;

  bool IsLong() const { return column->largest != 0; }
};

/// The bytes of a value; 0 for texts, lists and flags, which are bits.
std::size_t ValueSize(SDI::GPSColumnType type);

/// Rows of some columns. Never changes after it is created.
struct RecordBatch {
  RecordBatch() = default;
  RecordBatch(const RecordBatch&) = delete;
  RecordBatch& operator=(const RecordBatch&) = delete;

  std::size_t rows = 0;
  std::vector<BatchColumn> columns;
};

/// Reads up to `capacity` rows of `columns`. Null if there are no more.
std::shared_ptr<const RecordBatch> ReadBatch(SDI::GPSColumnReaderC& reader,
                                             std::span<const SDI::GPSColumn* const> columns,
                                             std::size_t capacity);

/// Flags and validities as bools, with one element per row.
struct Bools {
  BlockC values;    ///< Empty for columns other than flags.
  BlockC validity;  ///< Empty where every row has a value.
};

/// The bools of each of `columns`, numbered as in the batch, as parts of one block.
std::vector<Bools> Unpack(const RecordBatch& batch, std::span<const std::size_t> columns);

/// The rows for which `keep`, with one element per row, is true.
std::shared_ptr<const RecordBatch> Filter(const RecordBatch& batch, std::span<const bool> keep);

/// The batches as a stream of the Arrow C data interface, which shares their memory.
void ExportStream(std::vector<const SDI::GPSColumn*> columns,
                  std::vector<std::shared_ptr<const RecordBatch>> batches,
                  ArrowArrayStream* stream);

/// Releases a stream that no consumer has taken over.
void DeleteStream(ArrowArrayStream* stream);
ArrowArrayStream* NewStream();

}  // namespace Python

#endif  // SURVEYDATA_PYTHON_EXTENSION_RECORD_BATCH_H_
