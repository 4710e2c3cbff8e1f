#ifndef SURVEYDATA_GNSS_GPS_RECORD_COLUMNS_H_
#define SURVEYDATA_GNSS_GPS_RECORD_COLUMNS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <variant>

#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/object_model/export.h>

/// \file
/// The measurements of a record file as a table: its columns, single values, and batches of rows.

namespace SDI {

/// The type of a column's values. Numbers have the byte order of the machine; floating-point
/// numbers are those of IEEE 754.
enum class GPSColumnType : std::uint8_t {
  kBool,
  kUInt8,
  kUInt16,
  kUInt32,
  kUInt64,
  kInt32,
  kFloat32,
  kFloat64,
  kText,        ///< UTF-8. An unpaired surrogate becomes U+FFFD.
  kUInt16List,  ///< Any number of 16-bit values.
};

/// The type as one word, for example "uint16". Never null.
SURVEYDATA_API const char* TextOf(GPSColumnType type);

/// A value of one column and one record.
class SURVEYDATA_API GPSColumnValueC {
 public:
  /// `std::monostate` is an absent value. Signed numbers are `std::int64_t`, unsigned ones
  /// `std::uint64_t`.
  using Variant = std::variant<std::monostate, bool, std::uint64_t, std::int64_t, float, double,
                               std::string_view, std::span<const std::uint16_t>>;
  /// Bytes of the longest text.
  static constexpr std::size_t kLargestText = 237;
  /// Entries of the longest list.
  static constexpr std::size_t kLargestList = 31;

  /// Absent.
  GPSColumnValueC();
  GPSColumnValueC(const GPSColumnValueC&) = delete;
  GPSColumnValueC& operator=(const GPSColumnValueC&) = delete;
  ~GPSColumnValueC();  // NOLINT(performance-trivially-destructible): it is exported

  bool IsAbsent() const;
  /// Texts and lists are valid until this object is destroyed or set again.
  const Variant& Get() const;

 private:
  friend struct GPSColumnFunctions;

  Variant value_;
  union {
    char text_[kLargestText];
    std::uint16_t list_[kLargestList];
  };
};

/// How the values of a column are found; internal to the library.
struct GPSColumnFunctions;

/// A column of the table. Its values are those that the getters of the record return. Where a
/// getter has nothing to return, the value is absent.
struct GPSColumn {
  const char* name;  ///< In snake case.
  GPSColumnType type;
  bool canBeAbsent;
  const char* unit;         ///< "m", "ms"; empty without a unit, or if the producer decides it.
  const char* description;  ///< One sentence without the full stop.
  /// The size of the longest text or list, in bytes; 0 for other types.
  std::size_t largest;
  const GPSColumnFunctions* functions;
};

/// All columns, in order. Find columns by name: later versions may have more of them, in another
/// order.
SURVEYDATA_API std::span<const GPSColumn> GetGPSColumns();

/// The column of this name; null if there is none.
SURVEYDATA_API const GPSColumn* FindGPSColumn(std::string_view name);

/// Sets `value` to that of `record`.
SURVEYDATA_API void AskGPSColumn(const GPSColumn& column, const GPSRecordC& record,
                                 GPSColumnValueC& value);

/// A column and the buffers for its values, in the layout of the Apache Arrow columnar format: the
/// first bit of a byte is the lowest, offsets have 64 bits, values are contiguous.
struct GPSColumnBuffer {
  /// One of `GetGPSColumns()`.
  const GPSColumn* column = nullptr;
  /// A value for each row, 0 where it is absent; for `kBool` a bit for each row; for texts and
  /// lists their bytes or entries, one row after the other. Aligned for its type.
  void* values = nullptr;
  /// Size of `values` in bytes; only used for texts and lists.
  std::size_t size = 0;
  /// Only for texts and lists: where each begins in `values`, in bytes or entries, followed by the
  /// end of the last one, so one more than there are rows.
  std::int64_t* offsets = nullptr;
  /// A bit for each row, 1 where there is a value. May be null.
  std::uint8_t* validity = nullptr;
  /// Receives the number of absent values.
  std::uint64_t absent = 0;
};

/// The outcome of reading a batch.
enum class GPSColumnsOutcome : std::uint8_t {
  kDone,        ///< There is at least one row.
  kEnd,         ///< There are no more rows: the source has ended, or reading it failed.
  kNoRoom,      ///< There is no room for a single row.
  kNotABuffer,  ///< A column, its values, or the offsets of a text or list are null.
};

/// Reads the measurements of a reader as columns, one batch at a time.
///
/// Rows are the records whose outcome is `kDone`. Frames with a block that does not fit are skipped
/// and counted.
///
/// \cost linear in rows and columns. Nothing is allocated after construction.
class SURVEYDATA_API GPSColumnReaderC {
 public:
  /// Continues from the position of `reader`, which must outlive this object.
  explicit GPSColumnReaderC(GPSRecordReaderC& reader);
  GPSColumnReaderC(const GPSColumnReaderC&) = delete;
  GPSColumnReaderC& operator=(const GPSColumnReaderC&) = delete;
  ~GPSColumnReaderC();

  /// Reads up to `capacity` rows, and sets `rows` to their number.
  ///
  /// Each of `buffers` has room for `capacity` values, validities and, for texts and lists,
  /// `capacity` + 1 offsets. The caller chooses the room for the bytes of texts and lists: a batch
  /// ends before a row for which a buffer has less than `GPSColumn::largest` bytes left.
  ///
  /// An exception thrown by the reader's function passes through. `rows` is set even then: these
  /// rows are in the buffers, and reading can continue after them.
  GPSColumnsOutcome Read(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                         std::size_t& rows);
  /// The same, continuing after the first `rows` rows, which are already in `buffers`; the texts
  /// and lists may have been moved to larger buffers in between. `kDone`: there is at least one
  /// more row.
  GPSColumnsOutcome ReadOn(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                           std::size_t& rows);

  /// How many frames were skipped so far because a block does not fit.
  std::uint64_t GetLeftOut() const;
  /// Whether any time written in UTC so far is at or after `kLeapSecondExpiry`.
  bool HasTimesAfterExpiry() const;

 private:
  struct SURVEYDATA_HIDDEN State;

  std::unique_ptr<State> state_;
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_COLUMNS_H_
