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
/// The measurements of a record file as a table: its columns, a value of one record, and many rows
/// at once.

namespace SDI {

/// The type of a column's values. Numbers are those of the machine, floating-point ones as in
/// IEEE 754.
enum class GPSColumnType : std::uint8_t {
  kBool,
  kUInt8,
  kUInt16,
  kUInt32,
  kUInt64,
  kInt32,
  kFloat32,
  kFloat64,
  kText,        ///< UTF-8. A surrogate without its other half is U+FFFD.
  kUInt16List,  ///< Any number of 16-bit values.
};

/// In a word, as in documents: "uint16". Never null.
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
  ~GPSColumnValueC();  // NOLINT(performance-trivially-destructible): it leaves the library

  bool IsAbsent() const;
  /// Texts and lists are valid as long as this object, and until it is filled again.
  const Variant& Get() const;

 private:
  friend struct GPSColumnFunctions;

  Variant value_;
  union {
    char text_[kLargestText];
    std::uint16_t list_[kLargestList];
  };
};

/// How the values of a column are found; known to the library alone.
struct GPSColumnFunctions;

/// A column of the table. Its values are those that the getters of the record answer, and absent
/// where these have nothing to answer.
struct GPSColumn {
  const char* name;  ///< In snake case.
  GPSColumnType type;
  bool canBeAbsent;
  const char* unit;         ///< "m", "ms"; empty for what has none, and where the producer decides.
  const char* description;  ///< One sentence without its full stop.
  /// The bytes of the longest text, or of the longest list; 0 for other types.
  std::size_t largest;
  const GPSColumnFunctions* functions;
};

/// All columns, in their order. Programs find columns by name: later versions may have more of
/// them, in other places.
SURVEYDATA_API std::span<const GPSColumn> GetGPSColumns();

/// The column of this name; null when there is none.
SURVEYDATA_API const GPSColumn* FindGPSColumn(std::string_view name);

/// Sets `value` to that of `record`.
SURVEYDATA_API void AskGPSColumn(const GPSColumn& column, const GPSRecordC& record,
                                 GPSColumnValueC& value);

/// A column, and where its values go, in the layout of the Apache Arrow columnar format: bits begin
/// with the lowest one of their byte, offsets have 64 bits, nothing lies between the values.
struct GPSColumnBuffer {
  /// One of `GetGPSColumns()`.
  const GPSColumn* column = nullptr;
  /// A value for each row, 0 where it is absent. Of `kBool` a bit for each row. Of texts and lists
  /// their bytes or entries, one row after the other. Aligned as its type.
  void* values = nullptr;
  /// Bytes at `values`; only read for texts and lists.
  std::size_t size = 0;
  /// Of texts and lists alone: where each begins in `values`, in bytes or entries, and after the
  /// last one its end: one more than there are rows.
  std::int64_t* offsets = nullptr;
  /// A bit for each row, 1 where there is a value. May be null.
  std::uint8_t* validity = nullptr;
  /// Set to the number of absent values.
  std::uint64_t absent = 0;
};

/// What came of reading a batch.
enum class GPSColumnsOutcome : std::uint8_t {
  kDone,        ///< There is at least one row.
  kEnd,         ///< There are no more rows: the source has ended, or reading it failed.
  kNoRoom,      ///< There is no room for a single row.
  kNotABuffer,  ///< A column, its values, or the offsets of a text or list are null.
};

/// Reads the measurements of a reader as columns, a batch at a time.
///
/// Rows are the records whose outcome is `kDone`. Frames with a block that does not fit are left
/// out and counted.
///
/// \cost linear in rows and columns. Nothing is allocated after construction.
class SURVEYDATA_API GPSColumnReaderC {
 public:
  /// Reads on where `reader` is, which stays the caller's and must live as long as this object.
  explicit GPSColumnReaderC(GPSRecordReaderC& reader);
  GPSColumnReaderC(const GPSColumnReaderC&) = delete;
  GPSColumnReaderC& operator=(const GPSColumnReaderC&) = delete;
  ~GPSColumnReaderC();

  /// Reads rows until there are `capacity`, and sets `rows` to how many there are.
  ///
  /// Each of `buffers` has room for `capacity` values, validities and, for texts and lists,
  /// `capacity` + 1 offsets. The room for the bytes of texts and lists is up to the caller: a batch
  /// ends before a row for which a buffer has less than `GPSColumn::largest` bytes left.
  ///
  /// An exception of the reader's function passes through. `rows` is set then, too: these rows are
  /// in the buffers, and reading can go on after them.
  GPSColumnsOutcome Read(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                         std::size_t& rows);
  /// The same after the first `rows` rows, which are in `buffers` already: their texts and lists
  /// may have moved to more room meanwhile. `kDone`: there is at least one more row.
  GPSColumnsOutcome ReadOn(std::span<GPSColumnBuffer> buffers, std::size_t capacity,
                           std::size_t& rows);

  /// How many frames were left out so far because a block does not fit.
  std::uint64_t GetLeftOut() const;
  /// Whether a time that was given in UTC so far is at or after `kLeapSecondExpiry`.
  bool HasTimesAfterExpiry() const;

 private:
  struct SURVEYDATA_HIDDEN State;

  std::unique_ptr<State> state_;
};

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_COLUMNS_H_
