#ifndef SURVEYDATA_C_INTERFACE_SURVEYDATA_H_
#define SURVEYDATA_C_INTERFACE_SURVEYDATA_H_

/// \file
/// The C interface: record files of GNSS measurements, and areas on the sphere of directions. For
/// C99, C++, and languages that call C functions of a shared library. docs/c_interface.md has
/// examples.
///
/// **Status.** Every function that can fail returns a status; `SURVEYDATA_OK` is 0. No exception
/// crosses the interface. A function that fails changes neither its handles nor its outputs, unless
/// its comment says otherwise.
///
/// **Handles** are created by one function and released by another, which ignores a null pointer.
/// Pointers that a handle lends, to the bytes of a record for example, belong to the handle.
///
/// **Pointers** must not be null unless the comment allows it (`SURVEYDATA_INVALID_ARGUMENT`). Only
/// a reader keeps what it is given: its bytes and callbacks.
///
/// **Structs** that the caller creates begin with their size, which the caller sets to `sizeof` the
/// struct. Later versions add members at the end and accept the sizes of earlier versions. Any
/// other size is refused (`SURVEYDATA_WRONG_SIZE`). For an array of structs, the size of an element
/// is an argument.
///
/// **Arrays** that a function fills have a capacity in elements. The function sets the number of
/// available elements. If that exceeds the capacity, it fills the array up to its capacity and
/// returns `SURVEYDATA_BUFFER_TOO_SMALL`. With a null pointer and the capacity 0 it only sets the
/// number, and succeeds.
///
/// **Texts** are UTF-8 and terminated by a zero byte. Returned texts are constants of the library.
/// File names are passed to `fopen` of the C library.
///
/// **Threads.** The library keeps no state and starts no thread. A reader may be used by one thread
/// at a time; any number of readers may be used at once, also for the same file or bytes. An area
/// never changes: any number of threads may use it at once. All other functions may be called from
/// any thread.
///
/// Angles are in rad, lengths in metres. Flags are 0 or 1.

#include <stddef.h>
#include <stdint.h>

#include <surveydata/object_model/export.h>

#ifdef __cplusplus
extern "C" {
#endif

// C names: lower case, and the prefix of the library instead of a namespace.
// NOLINTBEGIN(readability-identifier-naming)

// ----- Status and texts

typedef int32_t surveydata_status;

enum {
  SURVEYDATA_OK = 0,
  SURVEYDATA_END = 1,                  ///< There is nothing more to read.
  SURVEYDATA_INVALID_ARGUMENT = 2,     ///< A null pointer, or a value that is not allowed.
  SURVEYDATA_WRONG_SIZE = 3,           ///< No version of the struct has this size.
  SURVEYDATA_BUFFER_TOO_SMALL = 4,     ///< There are more elements than the capacity.
  SURVEYDATA_OUT_OF_MEMORY = 5,        ///< Memory is exhausted.
  SURVEYDATA_CANCELLED = 6,            ///< A callback cancelled; the call can be repeated.
  SURVEYDATA_FAILED = 7,               ///< A callback threw an exception.
  SURVEYDATA_NO_SUCH_FILE = 8,         ///< The file, or its folder, does not exist.
  SURVEYDATA_NO_PERMISSION = 9,        ///< The file may not be read, or written.
  SURVEYDATA_CANNOT_OPEN = 10,         ///< The file cannot be opened for another reason.
  SURVEYDATA_NO_STRETCHES = 11,        ///< A pipe can only be read as a whole.
  SURVEYDATA_READING_FAILED = 12,      ///< Reading failed; everything before it was returned.
  SURVEYDATA_WRITING_FAILED = 13,      ///< Writing failed; the file is unchanged.
  SURVEYDATA_LEFT_OVER = 14,           ///< Writing failed; part of it may be left in the file.
  SURVEYDATA_NO_RECORDS = 15,          ///< The bytes are not consecutive whole records.
  SURVEYDATA_NO_MEASUREMENT = 16,      ///< The bytes do not begin with a measurement's header.
  SURVEYDATA_CUT = 17,                 ///< The bytes end before the frame does.
  SURVEYDATA_WRONG_CHECKSUM = 18,      ///< The checksum does not match the bytes.
  SURVEYDATA_BLOCK_DOES_NOT_FIT = 19,  ///< A block exceeds the frame, or has too many entries.
  SURVEYDATA_NO_PLACE = 20,            ///< A frame cannot hold this value, or lacks its block.
  SURVEYDATA_TOO_LONG = 21,            ///< The frame would be longer than 500 bytes.
  SURVEYDATA_NOT_VALID = 22            ///< The points do not make an area.
};

/// The version of the library, "1.0.0" for example.
SURVEYDATA_API const char* surveydata_version(void);

/// The status in a few words, as part of a message: "wrong checksum". Never null.
SURVEYDATA_API const char* surveydata_status_text(surveydata_status status);

/// The enumerations for `surveydata_text`.
enum {
  SURVEYDATA_TEXT_DAMAGE = 1,  ///< `surveydata_entry::damage`
  SURVEYDATA_TEXT_BLOCK = 2,   ///< `surveydata_measurement::block`, `surveydata_field::block`
  SURVEYDATA_TEXT_REFUSED_FIELD = 3,  ///< The field that `surveydata_encode` refuses.
  SURVEYDATA_TEXT_FAULT = 4,          ///< `surveydata_fault::rule`
  SURVEYDATA_TEXT_RULE = 5            ///< `surveydata_explanation::rule`
};

/// A value of an enumeration in a few words, as part of a message: "wrong checksum". Never null;
/// "unknown" for other values.
SURVEYDATA_API const char* surveydata_text(int32_t what, uint32_t value);

// ----- Readers of record files

/// Reads the records of a file, of bytes in memory, or of a callback, once, from front to back. The
/// source is not changed. A reader takes 0.35 MB of memory for a file or callback, whatever its
/// size, and 90 KB for bytes in memory; 17 KB more for a stretch.
typedef struct surveydata_reader surveydata_reader;

/// The end of a stretch that extends to the end of the source.
#define SURVEYDATA_NO_END UINT64_MAX

/// Results of `surveydata_read_at` other than a count.
enum {
  SURVEYDATA_READ_FAILED = -1,    ///< `SURVEYDATA_READING_FAILED`; the reader is at its end.
  SURVEYDATA_READ_CANCELLED = -2  ///< `SURVEYDATA_CANCELLED`; a repeated call reads again.
};

/// Reads up to `count` bytes, which is above 0, at `offset` of a source into `to`. Returns the
/// number of bytes read, 0 at the end of the source, or one of the constants above; any other value
/// is a failure. Called by the thread that uses the reader. It must not use that reader.
typedef int64_t (*surveydata_read_at)(void* context, uint64_t offset, uint8_t* to, size_t count);

/// A source that is read by a callback.
typedef struct surveydata_source {
  uint32_t struct_size;
  uint32_t reserved;  ///< 0
  surveydata_read_at read_at;
  void (*release)(void* context);  ///< Called once, when the reader is closed. May be null.
  void* context;                   ///< Passed to both functions. May be null.
  uint64_t size;                   ///< In bytes; the source may end earlier.
} surveydata_source;

/// Opens a reader of the stretch [`begin`, `end`) of a source, in bytes; the whole source is [0,
/// `SURVEYDATA_NO_END`). The reader returns the records, gaps and damaged headers that begin in the
/// stretch when the source is read from its start, so that stretches with any borders together give
/// the whole. A gap is cut at the borders. To find out which records those are, the reader also
/// reads 131,074 bytes before `begin`, or more if the bytes were crafted to need that. `*reader` is
/// set to the reader, or to null on failure.
///
/// A stretch that begins at or after the end of the source is empty, however far away it is.
///
/// The source is a file or a named pipe. A pipe can only be read as a whole:
/// `surveydata_reader_next` refuses any other stretch. A folder cannot be opened.
/// \return also `SURVEYDATA_NO_SUCH_FILE`, `SURVEYDATA_NO_PERMISSION`, `SURVEYDATA_CANNOT_OPEN`.
SURVEYDATA_API surveydata_status surveydata_reader_open_file(const char* file_name, uint64_t begin,
                                                             uint64_t end,
                                                             surveydata_reader** reader);

/// The same for bytes in memory. They are not copied and must outlive the reader. `bytes` may be
/// null if `size` is 0.
SURVEYDATA_API surveydata_status surveydata_reader_open_bytes(const uint8_t* bytes, size_t size,
                                                              uint64_t begin, uint64_t end,
                                                              surveydata_reader** reader);

/// The same for a source that is read by a callback, in blocks of at most 256 KiB. On failure the
/// context is not released.
SURVEYDATA_API surveydata_status surveydata_reader_open_source(const surveydata_source* source,
                                                               uint64_t begin, uint64_t end,
                                                               surveydata_reader** reader);

/// Closes the reader and its file. Null is allowed.
SURVEYDATA_API void surveydata_reader_close(surveydata_reader* reader);

/// Sets `*size` to the size in bytes that the source had when it was opened, or to 0 if it is not
/// known (a pipe).
SURVEYDATA_API surveydata_status surveydata_reader_size(const surveydata_reader* reader,
                                                        uint64_t* size);

/// Receives the offset that the reader has reached. Returns 0 to continue, anything else to cancel.
/// Called by the thread that uses the reader. It must not use that reader.
typedef int32_t (*surveydata_progress)(void* context, uint64_t offset);

/// Makes the reader call `progress` about every mebibyte, or never if it is null. When `progress`
/// cancels, the function that reads returns `SURVEYDATA_CANCELLED`. It can be called again; nothing
/// is lost or returned twice.
SURVEYDATA_API surveydata_status surveydata_reader_set_progress(surveydata_reader* reader,
                                                                surveydata_progress progress,
                                                                void* context);

/// Kinds of entries.
enum {
  SURVEYDATA_MEASUREMENT = 1,     ///< A record of type 113, at most 500 bytes long.
  SURVEYDATA_OTHER_RECORD = 2,    ///< Any other record.
  SURVEYDATA_GAP = 4,             ///< Bytes that belong to no record.
  SURVEYDATA_DAMAGED_HEADER = 8,  ///< The header of a measurement in a gap.
  SURVEYDATA_ALL_ENTRIES = 15
};

/// Why a header does not begin a record.
enum {
  SURVEYDATA_DAMAGE_NONE = 0,
  SURVEYDATA_DAMAGE_WRONG_CHECKSUM = 1,
  SURVEYDATA_DAMAGE_CUT_BY_THE_END = 2,        ///< The source ends before the frame does.
  SURVEYDATA_DAMAGE_RUNS_INTO_NEXT_RECORD = 3  ///< Possibly bytes that look like a header.
};

/// A record, a gap or a damaged header.
typedef struct surveydata_entry {
  uint32_t struct_size;
  uint32_t kind;         ///< One of the kinds above.
  uint64_t offset;       ///< In the source.
  uint64_t size;         ///< In bytes; for a damaged header the size that it announces.
  uint32_t record_type;  ///< 0 to 255; 0 for a gap.
  uint32_t damage;       ///< Of a damaged header.
  /// The record with header and checksum, valid until the reader continues or is closed. Null for
  /// gaps and damaged headers.
  const uint8_t* bytes;
} surveydata_entry;

/// Reads up to the next entry of one of the `kinds`, a sum of the values above. Entries are ordered
/// by offset, except that the damaged headers in a gap precede the gap. Records and gaps together
/// cover the source once.
///
/// \return `SURVEYDATA_END` after the last entry, and for every further call; likewise
///         `SURVEYDATA_READING_FAILED` and `SURVEYDATA_NO_STRETCHES`; also `SURVEYDATA_CANCELLED`
///         and `SURVEYDATA_FAILED`, after which the call can be repeated.
/// \cost linear in the number of bytes, for any content.
SURVEYDATA_API surveydata_status surveydata_reader_next(surveydata_reader* reader, uint32_t kinds,
                                                        surveydata_entry* entry);

// ----- Measurements and their frames

/// The longest frame of a measurement, in bytes.
#define SURVEYDATA_LONGEST_FRAME 500

/// Bits of `surveydata_measurement::set_mask`: the fields that are present.
enum {
  SURVEYDATA_HAS_ANTENNA_HEIGHT = 0x0002,
  SURVEYDATA_HAS_DOPS = 0x0004,
  SURVEYDATA_HAS_TOTAL_PAIR = 0x0008,
  SURVEYDATA_HAS_VECTOR = 0x0010,
  SURVEYDATA_HAS_WORD16 = 0x0020,
  SURVEYDATA_HAS_SYSTEMS = 0x0040,  ///< At least one of the pairs 1 to 3, see the status mask.
  SURVEYDATA_HAS_VALUE_C = 0x0080,
  SURVEYDATA_HAS_VALUE_H = 0x0100,
  SURVEYDATA_HAS_VALUE_I = 0x0200,
  SURVEYDATA_HAS_LIST = 0x0400
};

/// Bits of `surveydata_measurement::status_mask`.
enum {
  SURVEYDATA_STATUS_BIT_0 = 0x0001,
  SURVEYDATA_STATUS_BIT_1 = 0x0002,
  SURVEYDATA_STATUS_BIT_2 = 0x0004,
  SURVEYDATA_STATUS_BIT_3 = 0x0008,
  SURVEYDATA_SYSTEM_1 = 0x0010,
  SURVEYDATA_SYSTEM_2 = 0x0020,
  SURVEYDATA_SYSTEM_3 = 0x0040
};

/// The value of a dilution of precision that is not available.
#define SURVEYDATA_DOP_NOT_AVAILABLE 65535

/// A GNSS measurement. A field that is not present has its default, which is 0 unless stated. The
/// producer of a record defines the meaning of fields without a comment.
typedef struct surveydata_measurement {
  uint32_t struct_size;
  /// Set by `surveydata_decode` to the block that does not fit, or to that of the checksum if all
  /// blocks fit; see `SURVEYDATA_TEXT_BLOCK`. Not read.
  uint32_t block;

  int32_t time_a_of_week;      ///< ms
  int32_t time_b_of_week;      ///< ms
  int32_t extra_time_of_week;  ///< ms
  uint16_t time_a_week;        ///< GPS week
  uint16_t time_b_week;        ///< 0: frames do not contain it.
  uint16_t extra_time_week;
  uint8_t extra_time_count;  ///< 0 or 1
  uint8_t value_count;       ///< 0 or 2

  uint16_t set_mask;
  uint16_t status_mask;
  uint32_t flags;  ///< 0x1 if the kind byte of the frame is 0, 0x2 if not, 0 without kind byte.
  int32_t number;  ///< Stored with the name.
  char name[52];   ///< At most 49 bytes of UTF-8, then zeros. Surrogates have 3 bytes each.

  float antenna_height;             ///< m
  float antenna_horizontal_offset;  ///< m; 0: frames do not contain it.
  uint8_t antenna_is_vertical;      ///< 1 by default, 0 for a slant height.
  uint8_t flag_a;
  uint8_t flag_e;
  uint8_t value_f;
  uint16_t values[2];
  uint16_t hdop;  ///< In tenths; `SURVEYDATA_DOP_NOT_AVAILABLE` by default.
  uint16_t vdop;  ///< Likewise.
  uint16_t tdop;  ///< Likewise.
  uint16_t word16;
  uint8_t total_pair[2];     ///< Usually satellites in view and satellites used.
  uint8_t system_1_pair[2];  ///< Likewise.
  uint8_t system_2_pair[2];  ///< Likewise; may be stored without being present.
  uint8_t system_3_pair[2];  ///< Likewise.
  double vector[3];          ///< m, earth-centred

  uint32_t value_b;
  uint32_t value_c;
  int32_t value_d;
  int32_t value_g;
  uint16_t value_h;
  uint16_t value_i;
  uint16_t list_head;
  uint8_t list_count;         ///< At most 31.
  uint8_t reserved;           ///< 0
  uint16_t list_entries[31];  ///< 0 after the count.
  uint16_t text_a[80];        ///< UTF-16, then zeros; the other texts likewise.
  uint16_t text_b[80];
  uint16_t text_c[80];
  uint16_t text_d[30];
  uint16_t reserved_at_end[3];  ///< 0
} surveydata_measurement;

/// Decodes the frame of a measurement and ignores bytes after it. Sets all members of the struct
/// except its size.
///
/// \return also `SURVEYDATA_NO_MEASUREMENT`, `SURVEYDATA_CUT`, `SURVEYDATA_WRONG_CHECKSUM`;
///         `SURVEYDATA_BLOCK_DOES_NOT_FIT`, after which the struct contains the blocks before it.
SURVEYDATA_API surveydata_status surveydata_decode(const uint8_t* frame, size_t size,
                                                   surveydata_measurement* measurement);

/// Creates the shortest frame that decodes to this measurement.
///
/// Omits fields whose presence bit, or bit of the status mask, is not set (except the pairs of
/// systems 2 and 3 with a second value of 0: frames store these without the bit); the extra time if
/// its count is 0, the values if theirs is 0, list entries after the count, and what follows the
/// first zero of the name or of a text. `block` is not read.
///
/// Refuses, with `SURVEYDATA_NO_PLACE`, values that decoding never returns: an extra time count
/// above 1, a value count other than 0 and 2, a list count above 31, a week of time B, status bit
/// 2, a status bit or flags without exactly one of the flags 0x1 and 0x2, a name of more than 49
/// bytes or 17 UTF-16 units or not in the shortest UTF-8, a text without a zero unit, a horizontal
/// offset of the antenna, a component of the vector that is not exactly a `float`, a pair of system
/// 2 or 3 that is present with a second value of 0 or absent with another one, `flag_a` and
/// `flag_e` above 1, `value_b` and `value_c` above 255, a presence bit of value C without a value,
/// or a bit of a system without `SURVEYDATA_HAS_SYSTEMS` and the reverse.
///
/// \param capacity       size of `frame` in bytes, at least 500.
/// \param size           set to the size of the frame, or to 0 if a field is refused.
/// \param refused_field  set to the field that is refused (see `SURVEYDATA_TEXT_REFUSED_FIELD`), or
///                       to 0. May be null.
/// \return also `SURVEYDATA_NO_PLACE` for a value that decoding never returns, and
///         `SURVEYDATA_TOO_LONG` for the first field that makes the frame longer than 500 bytes.
SURVEYDATA_API surveydata_status surveydata_encode(const surveydata_measurement* measurement,
                                                   uint8_t* frame, size_t capacity, size_t* size,
                                                   uint32_t* refused_field);

/// The members of `surveydata_changes` that are changes.
enum {
  SURVEYDATA_CHANGE_NAME = 1,
  SURVEYDATA_CHANGE_NUMBER = 2,
  SURVEYDATA_CHANGE_ANTENNA_HEIGHT = 4
};

/// Changes of a frame.
typedef struct surveydata_changes {
  uint32_t struct_size;
  uint32_t which;    ///< A sum of the values above.
  const char* name;  ///< At most 17 16-bit units and 49 bytes of UTF-8.
  int32_t number;
  float antenna_height;  ///< m, finite
  int32_t is_slant;      ///< 1 if the antenna height is a slant height.
  uint32_t reserved;     ///< 0
} surveydata_changes;

/// Copies a frame with some fields and the checksum changed; all other bytes stay the same.
/// `patched` may be `frame`. No file is written: compare the frames, or their `surveydata_fields`,
/// before you write the copy over the original.
///
/// \param size  of `frame` and of `patched`. Bytes after the frame are neither read nor written.
/// \return also the statuses of `surveydata_decode` if the frame cannot be decoded completely;
///         `SURVEYDATA_NO_PLACE` if the frame has no block for a change, or if the block cannot
///         hold the value.
SURVEYDATA_API surveydata_status surveydata_patch(const uint8_t* frame, size_t size,
                                                  const surveydata_changes* changes,
                                                  uint8_t* patched);

/// Types of fields. Numbers are little-endian.
enum {
  SURVEYDATA_FIELD_BYTES = 0,     ///< Ignored bytes, or the rest of a frame that does not fit.
  SURVEYDATA_FIELD_UNSIGNED = 1,  ///< 1 or 2 bytes
  SURVEYDATA_FIELD_BITS = 2,      ///< 2 bytes, displayed in hexadecimal
  SURVEYDATA_FIELD_SIGNED = 3,    ///< 4 bytes
  SURVEYDATA_FIELD_FLOAT = 4,     ///< 4 bytes, IEEE 754
  SURVEYDATA_FIELD_TEXT = 5       ///< UTF-16, up to a 0 unit or the end of the field
};

/// Consecutive bytes of a frame with one meaning.
typedef struct surveydata_field {
  uint32_t offset;         ///< From the start of the frame.
  uint32_t size;           ///< In bytes.
  uint32_t type;           ///< One of the types above.
  uint32_t block;          ///< See `SURVEYDATA_TEXT_BLOCK`.
  double number;           ///< The exact value of a number; 0 for other types.
  const char* block_name;  ///< "antenna height"
  const char* name;        ///< "height"; unique only within the block.
  const char* unit;        ///< "m", "ms", "0.1" for tenths, or "".
  /// The value as human-readable text; "" for bytes. Control characters and lone surrogates are
  /// replaced by U+FFFD.
  char value[240];
} surveydata_field;

/// An upper limit of the number of fields of a frame.
#define SURVEYDATA_MOST_FIELDS 128

/// Lists the fields of a measurement's frame, which together cover the frame once: header, blocks,
/// bytes after the last block, checksum. If a block does not fit, the bytes from its first field
/// that cannot be read to the checksum are one field, and the function succeeds.
///
/// \return also the other statuses of `surveydata_decode`.
SURVEYDATA_API surveydata_status surveydata_fields(const uint8_t* frame, size_t size,
                                                   surveydata_field* fields, size_t field_size,
                                                   size_t capacity, size_t* count);

/// Appends `records`, consecutive whole records of any type, to a file, which is created if it does
/// not exist. Existing content is never overwritten; when writing fails, the file is truncated to
/// its previous size, or removed if it is new. Only one writer may append at a time. `records` may
/// be null if `size` is 0.
///
/// \return also `SURVEYDATA_NO_RECORDS`, with the file unchanged; `SURVEYDATA_NO_SUCH_FILE`,
///         `SURVEYDATA_NO_PERMISSION`, `SURVEYDATA_CANNOT_OPEN`, `SURVEYDATA_WRITING_FAILED`,
///         `SURVEYDATA_LEFT_OVER`.
SURVEYDATA_API surveydata_status surveydata_append(const char* file_name, const uint8_t* records,
                                                   size_t size);

// ----- Columns of measurements

/// Types of columns.
enum {
  SURVEYDATA_COLUMN_BOOL = 0,  ///< A bit for each row.
  SURVEYDATA_COLUMN_UINT8 = 1,
  SURVEYDATA_COLUMN_UINT16 = 2,
  SURVEYDATA_COLUMN_UINT32 = 3,
  SURVEYDATA_COLUMN_UINT64 = 4,
  SURVEYDATA_COLUMN_INT32 = 5,
  SURVEYDATA_COLUMN_FLOAT32 = 6,
  SURVEYDATA_COLUMN_FLOAT64 = 7,
  SURVEYDATA_COLUMN_TEXT = 8,        ///< UTF-8 of any length, without terminators.
  SURVEYDATA_COLUMN_UINT16_LIST = 9  ///< Any number of 16-bit values.
};

/// A column of a table of measurements. Its values are those that the getters of a measurement
/// return, and absent where these return nothing. docs/columns.md lists the columns.
typedef struct surveydata_column {
  const char* name;  ///< In snake case.
  const char* unit;  ///< "m", "ms"; "" if there is none.
  const char* description;
  uint32_t type;
  int32_t can_be_absent;
  size_t largest;  ///< The bytes of the longest text or list; 0 for other types.
} surveydata_column;

/// Lists the columns. Look them up by name: later versions may have more of them, in another order.
/// \return `SURVEYDATA_BUFFER_TOO_SMALL`.
SURVEYDATA_API surveydata_status surveydata_columns(surveydata_column* columns, size_t column_size,
                                                    size_t capacity, size_t* count);

/// A column, and where its values go. The layout is that of the Apache Arrow columnar format: bits
/// start at the lowest one of each byte, numbers have the machine's byte order.
typedef struct surveydata_column_buffer {
  uint32_t column;    ///< Its index in the list of columns.
  uint32_t reserved;  ///< 0
  /// A value for each row, 0 if it is absent; a bit for each row of `SURVEYDATA_COLUMN_BOOL`. For
  /// texts and lists the bytes or entries of all rows, without gaps. Aligned for its type.
  void* values;
  size_t values_size;  ///< The bytes at `values`; only read for texts and lists.
  /// For texts and lists: where each row begins in `values`, in bytes or entries, followed by the
  /// end of the last row, so one more than there are rows. Null for other columns.
  int64_t* offsets;
  uint8_t* validity;  ///< A bit for each row, 1 where there is a value. May be null.
  uint64_t absent;    ///< Set to the number of absent values.
} surveydata_column_buffer;

/// Reads the next measurements as columns, up to `capacity` rows. Each buffer has room for as many.
/// A batch ends before a row for which the buffer of a text or list has less than `largest` bytes
/// left. Frames with a block that does not fit are left out.
///
/// \param rows      set to the number of rows, also when the function fails: they are in the
///                  buffers, and the next call continues after them.
/// \param left_out  set to the number of frames that were left out since the reader was opened. May
///                  be null.
/// \return `SURVEYDATA_END` with 0 rows after the last one, as in `surveydata_reader_next`;
///         `SURVEYDATA_BUFFER_TOO_SMALL` if there is no room for a single row.
SURVEYDATA_API surveydata_status surveydata_reader_read_columns(
    surveydata_reader* reader, surveydata_column_buffer* buffers, size_t buffer_size,
    size_t buffer_count, size_t capacity, size_t* rows, uint64_t* left_out);

/// A stream of batches; c_interface/arrow_c_interface.h defines it.
struct ArrowArrayStream;

/// Makes an `ArrowArrayStream` of the Arrow C stream interface from the remaining measurements of
/// the reader: structs of the chosen columns. Texts have 64-bit offsets, the metadata of the fields
/// are their units and descriptions, and that of the schema is the source of leap seconds. Frames
/// with a block that does not fit are left out.
///
/// On success the stream takes ownership of the reader, and closes it when it is released. Bytes in
/// memory from which the reader reads must outlive the stream. Batches are independent of the
/// stream, and may be released in any order and by any thread.
///
/// `get_next` fails with ECANCELED, ENOMEM, EIO (reading failed) or EINVAL, and `get_last_error`
/// describes the error. The next call continues where it occurred.
///
/// \param columns        indices in the list of columns, in any order. Null with the count 0 means
///                       all of them.
/// \param rows_in_batch  rows of every batch but the last; 0 means 65,536.
SURVEYDATA_API surveydata_status surveydata_reader_arrow_stream(surveydata_reader* reader,
                                                                const uint32_t* columns,
                                                                size_t column_count,
                                                                size_t rows_in_batch,
                                                                struct ArrowArrayStream* stream);

// ----- Areas on the sphere of directions

/// The directions around the instrument that a scan covers. An area never changes.
typedef struct surveydata_area surveydata_area;

/// Kinds of areas.
enum {
  SURVEYDATA_RECTANGLE = 1,  ///< Between two opposite corners, with edges along Hz and V. Crosses
                             ///< Hz 0 if the first corner has the larger Hz.
  SURVEYDATA_POLYGON = 2,    ///< Its edges are arcs of great circles; the last one closes it.
  SURVEYDATA_DOME = 3        ///< V from 0 to 0.8 pi, for all Hz. It has no points.
};

/// The definition of an area.
typedef struct surveydata_area_definition {
  uint32_t struct_size;
  uint32_t kind;
  size_t count;            ///< The number of points; not read for a dome.
  const double* hz;        ///< rad. May be null if there are no points.
  const double* v;         ///< rad, from the zenith. Likewise.
  const double* distance;  ///< m; not above 0 for a point without one. Null if no point has one.
  double hz_step;          ///< rad; step of the scan. Only `surveydata_area_faults` reads it.
  double v_step;           ///< Likewise.
} surveydata_area_definition;

/// Creates an area from any points; `surveydata_area_faults` checks them. `*area` is set to the
/// area, or to null on failure.
SURVEYDATA_API surveydata_status
surveydata_area_create(const surveydata_area_definition* definition, surveydata_area** area);

/// The number of directions for which an area is prepared. The answers are the same.
enum {
  SURVEYDATA_QUESTIONS_FEW = 1,  ///< Fast to prepare; worthwhile for a few directions.
  SURVEYDATA_QUESTIONS_MANY = 2  ///< Up to 512 KB and a millisecond; for 10,000 or more.
};

/// Creates an area with the same points and steps that finds faster which directions it contains.
/// `*prepared` is set to the new area, or to null on failure. It does not depend on `area`.
/// \cost n log n for n points.
SURVEYDATA_API surveydata_status surveydata_area_prepare(const surveydata_area* area,
                                                         uint32_t questions,
                                                         surveydata_area** prepared);

/// Releases an area. Null is allowed.
SURVEYDATA_API void surveydata_area_destroy(surveydata_area* area);

/// Rules that an area can break.
enum {
  SURVEYDATA_FAULT_HZ_STEP = 1,             ///< The step in Hz is not above 0.
  SURVEYDATA_FAULT_V_STEP = 2,              ///< The step in V is not above 0.
  SURVEYDATA_FAULT_POINT_COUNT = 3,         ///< A rectangle has 2 points, a polygon 3 or more.
  SURVEYDATA_FAULT_POINT_OUT_OF_RANGE = 4,  ///< Hz must be in [0, 2 pi], V in [0, pi].
  SURVEYDATA_FAULT_EQUAL_POINTS = 5,        ///< Two points are equal.
  SURVEYDATA_FAULT_EQUAL_HZ = 6,            ///< Both corners of a rectangle have the same Hz.
  SURVEYDATA_FAULT_EQUAL_V = 7,             ///< Both corners of a rectangle have the same V.
  SURVEYDATA_FAULT_CROSSING_EDGES = 8       ///< Two non-adjacent edges cross.
};

/// In place of the index of a point or an edge: none.
#define SURVEYDATA_NONE UINT64_MAX

/// A rule that an area breaks. Points and edges are counted from 0; edge i runs from point i to the
/// next point, the last edge to point 0.
typedef struct surveydata_fault {
  uint32_t rule;  ///< One of the rules above; see `SURVEYDATA_TEXT_FAULT`.
  uint32_t reserved;
  uint64_t points[2];  ///< The points concerned, or `SURVEYDATA_NONE`.
  uint64_t edges[2];   ///< The edges concerned, likewise.
  double hz;           ///< Near the crossing of two edges, rad; 0 for other rules.
  double v;            ///< Likewise.
} surveydata_fault;

/// Lists the rules that an area breaks: none if and only if the area and its steps are valid.
/// Crossing edges are searched for only if there is no fault of points; at most 8 pairs are listed.
SURVEYDATA_API surveydata_status surveydata_area_faults(const surveydata_area* area,
                                                        surveydata_fault* faults, size_t fault_size,
                                                        size_t capacity, size_t* count);

/// The bounds of an area.
typedef struct surveydata_bounds {
  uint32_t struct_size;
  int32_t encloses_zenith;
  double hz_min;  ///< rad; above `hz_max` if the area crosses Hz 0.
  double hz_max;  ///< rad, at most 2 pi
  double v_min;   ///< rad; for an area around the zenith the smallest V of its ring, not 0.
  double v_max;   ///< rad
} surveydata_bounds;

/// Sets `*bounds` to the bounds of an area.
/// \return also `SURVEYDATA_NOT_VALID` if the points do not make an area; the steps do not matter.
SURVEYDATA_API surveydata_status surveydata_area_bounds(const surveydata_area* area,
                                                        surveydata_bounds* bounds);

/// Lists the corners of an area with their distances. A rectangle has four, a dome none. A point
/// without distance gets one that is derived from the other points, or `default_distance` (m) if no
/// point has one. The three arrays have the same capacity; any of them may be null.
SURVEYDATA_API surveydata_status surveydata_area_outline(const surveydata_area* area,
                                                         double default_distance, double* hz,
                                                         double* v, double* distance,
                                                         size_t capacity, size_t* count);

/// Sets `*inside` to 1 if a direction is inside the area or in its boundary band, else to 0. It
/// is 0 for NaN and for angles beyond 100 rad. The steps do not matter.
/// \cost that of validity; less for a prepared area.
SURVEYDATA_API surveydata_status surveydata_area_contains(const surveydata_area* area, double hz,
                                                          double v, int32_t* inside);

/// Sets each of `count` elements of `inside` to 1 or 0, as `surveydata_area_contains` does for one
/// direction. The strides are the distances in bytes from one angle to the next, `sizeof(double)`
/// for contiguous arrays. They may be 0 or negative, and angles need not be aligned. An area that
/// is not prepared is prepared for the call. The pointers may be null if `count` is 0.
SURVEYDATA_API surveydata_status surveydata_area_contains_many(const surveydata_area* area,
                                                               const double* hz,
                                                               ptrdiff_t hz_stride, const double* v,
                                                               ptrdiff_t v_stride, size_t count,
                                                               uint8_t* inside);

/// The rule that decides whether a direction is inside: the first in this order that applies.
enum {
  SURVEYDATA_RULE_OUT_OF_RANGE = 0,    ///< An angle is NaN or beyond 100 rad: outside.
  SURVEYDATA_RULE_DOME = 1,            ///< Inside if V, reduced to [0, 2 pi], is at most 0.8 pi.
  SURVEYDATA_RULE_NOT_VALID = 2,       ///< The points do not make an area: outside.
  SURVEYDATA_RULE_BAND = 3,            ///< In the boundary band of an edge: inside.
  SURVEYDATA_RULE_NO_SEARCH_LINE = 4,  ///< The bounds reach both poles, or are a point: outside.
  SURVEYDATA_RULE_NO_CROSSING = 5,     ///< The meridian crosses no edge: outside.
  SURVEYDATA_RULE_NOTHING_ABOVE = 6,   ///< All crossings are below and the area does not enclose
                                       ///< the zenith: outside.
  SURVEYDATA_RULE_PARITY = 7           ///< Inside if the number of counted crossings is odd.
};

/// Why an area contains a direction, or does not contain it.
typedef struct surveydata_explanation {
  uint32_t struct_size;
  int32_t inside;  ///< The result of `surveydata_area_contains`.
  uint32_t rule;   ///< One of the rules above; see `SURVEYDATA_TEXT_RULE`.
  uint32_t reserved;
  double hz;              ///< The direction in [0, 2 pi], rad; unchanged if out of range.
  double v;               ///< Likewise.
  uint64_t band_edge;     ///< The first edge in whose band it lies, or `SURVEYDATA_NONE`.
  uint64_t nearest_edge;  ///< The nearest edge on the sphere, or `SURVEYDATA_NONE`.
  double distance;        ///< To the nearest edge, rad; `DBL_MAX` if there is none.
} surveydata_explanation;

/// A crossing of the meridian of a direction with an edge.
typedef struct surveydata_crossing {
  uint64_t edge;
  double v;            ///< rad
  int32_t is_counted;  ///< Below the direction, and not the same as the next crossing.
  uint32_t reserved;
} surveydata_crossing;

/// Explains whether an area contains a direction. Edges are counted from 0. Those of a rectangle
/// are the meridian of its first corner, the circle of latitude of its second corner, the meridian
/// of the second and the circle of latitude of the first. The only edge of a dome is its limit.
///
/// \param crossings  set to the crossings, by ascending V.
/// \cost that of validity; for a prepared area, linear in the number of points.
SURVEYDATA_API surveydata_status surveydata_area_explain(
    const surveydata_area* area, double hz, double v, surveydata_explanation* explanation,
    surveydata_crossing* crossings, size_t crossing_size, size_t capacity, size_t* count);

// NOLINTEND(readability-identifier-naming)

#ifdef __cplusplus
}
#endif

#endif  // SURVEYDATA_C_INTERFACE_SURVEYDATA_H_
