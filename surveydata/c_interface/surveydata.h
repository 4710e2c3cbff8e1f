#ifndef SURVEYDATA_C_INTERFACE_SURVEYDATA_H_
#define SURVEYDATA_C_INTERFACE_SURVEYDATA_H_

/// \file
/// The C interface: record files of GNSS measurements, and areas on the sphere of directions. For
/// C99, C++ and whatever calls C functions of a shared library. docs/c_interface.md begins with
/// examples.
///
/// **Status.** Every function that can fail answers a status: `SURVEYDATA_OK` is 0. Nothing else is
/// reported, and no exception leaves a function. A function that fails changes neither its handles
/// nor what it was to fill, unless its comment says so.
///
/// **Handles** are made by a function and released by another, which takes a null pointer and does
/// nothing then. What a handle lends, a pointer to bytes for example, is the handle's.
///
/// **Pointers** must not be null where the comment does not allow it:
/// `SURVEYDATA_INVALID_ARGUMENT`. A function does not keep what it is given, but for the bytes and
/// the functions of a reader.
///
/// **Structs** that the caller makes begin with their size, which the caller sets: `sizeof` the
/// struct. Later versions add members at the end, and know the sizes of earlier ones. Every other
/// size is refused: `SURVEYDATA_WRONG_SIZE`. Of an array of structs, the size of an element is an
/// argument.
///
/// **Arrays** that a function fills have a capacity, in elements. The function sets the count that
/// there is; it answers `SURVEYDATA_BUFFER_TOO_SMALL`, with the array filled up to its capacity,
/// when that is more. A null pointer with the capacity 0 asks for the count alone, and is no
/// failure.
///
/// **Texts** are UTF-8, end with a zero byte, and are constants of the library, unless their
/// comment says otherwise. File names are those of the C library's `fopen`.
///
/// **Threads.** The library keeps no state and starts no thread. A reader is used by one thread at
/// a time; any number of readers may be used at once, also over the same file or bytes. An area
/// never changes: any number of threads may ask it at once. All other functions may be called from
/// any thread.
///
/// Angles are in rad, lengths in metres. Flags are 0 or 1.

#include <stddef.h>
#include <stdint.h>

#include <surveydata/object_model/export.h>

#ifdef __cplusplus
extern "C" {
#endif

// ----- Status and texts

typedef int32_t surveydata_status;

enum {
  SURVEYDATA_OK = 0,
  SURVEYDATA_END = 1,               ///< There is nothing more to read.
  SURVEYDATA_INVALID_ARGUMENT = 2,  ///< A pointer is null, or a value is none that is allowed.
  SURVEYDATA_WRONG_SIZE = 3,        ///< The size of a struct is that of no version.
  SURVEYDATA_BUFFER_TOO_SMALL = 4,  ///< The count that was set is above the capacity.
  SURVEYDATA_OUT_OF_MEMORY = 5,     ///< There is not enough memory.
  SURVEYDATA_CANCELLED = 6,        ///< A function of the caller asked for it; the reader can go on.
  SURVEYDATA_FAILED = 7,           ///< A function of the caller threw an exception.
  SURVEYDATA_NO_SUCH_FILE = 8,     ///< There is no file, or no folder, of this name.
  SURVEYDATA_NO_PERMISSION = 9,    ///< The file must not be read, or written.
  SURVEYDATA_CANNOT_OPEN = 10,     ///< The file cannot be opened for another reason.
  SURVEYDATA_NO_STRETCHES = 11,    ///< A stretch was asked of a pipe.
  SURVEYDATA_READING_FAILED = 12,  ///< Reading failed; what lies before was given.
  SURVEYDATA_WRITING_FAILED = 13,  ///< Writing failed; the file is as it was.
  SURVEYDATA_LEFT_OVER = 14,       ///< Writing failed; part of the records may be in the file.
  SURVEYDATA_NO_RECORDS = 15,      ///< The bytes are not whole records one after the other.
  SURVEYDATA_NO_MEASUREMENT = 16,  ///< The bytes do not begin with the header of a measurement.
  SURVEYDATA_CUT = 17,             ///< The bytes end before the frame does.
  SURVEYDATA_WRONG_CHECKSUM = 18,  ///< The checksum is not that of the bytes.
  SURVEYDATA_BLOCK_DOES_NOT_FIT =
      19,                    ///< A block runs past the checksum, or its count is too large.
  SURVEYDATA_NO_PLACE = 20,  ///< No frame holds this value, or this frame lacks its block.
  SURVEYDATA_TOO_LONG = 21,  ///< The frame would be longer than 500 bytes.
  SURVEYDATA_NOT_VALID = 22  ///< The points make no area.
};

/// The version of the library, "1.0.0" for example.
SURVEYDATA_API const char* surveydata_version(void);

/// A status in a few words, as part of a message: "wrong checksum". Never null.
SURVEYDATA_API const char* surveydata_status_text(surveydata_status status);

/// What `surveydata_text` has texts of.
enum {
  SURVEYDATA_TEXT_DAMAGE = 1,  ///< `surveydata_entry::damage`
  SURVEYDATA_TEXT_BLOCK = 2,   ///< `surveydata_measurement::block`, `surveydata_field::block`
  SURVEYDATA_TEXT_REFUSED_FIELD = 3,  ///< What `surveydata_encode` refused.
  SURVEYDATA_TEXT_FAULT = 4,          ///< `surveydata_fault::rule`
  SURVEYDATA_TEXT_RULE = 5            ///< `surveydata_explanation::rule`
};

/// A value of an enumeration in a few words, as part of a message: "wrong checksum". Never null:
/// "unknown" for what is none.
SURVEYDATA_API const char* surveydata_text(int32_t what, uint32_t value);

// ----- Readers of record files

/// Reads the records of a file, of bytes in memory, or of whatever a function reads, from front to
/// back, once. The source is only read. Of a file of any size, 1 MB is in memory.
typedef struct surveydata_reader surveydata_reader;

/// As the end of a stretch: that of the source.
#define SURVEYDATA_NO_END UINT64_MAX

/// What `surveydata_read_at` answers instead of a count.
enum {
  SURVEYDATA_READ_FAILED = -1,    ///< `SURVEYDATA_READING_FAILED`, and nothing more is read.
  SURVEYDATA_READ_CANCELLED = -2  ///< `SURVEYDATA_CANCELLED`; the bytes are asked for again later.
};

/// Reads bytes of a source, from `offset` on: at most `count`, above 0, to `to`. Answers how many
/// were read, 0 where the source ends, or one of the constants above; anything else is a failure.
/// Called by the thread that uses the reader; it must not use that reader.
typedef int64_t (*surveydata_read_at)(void* context, uint64_t offset, uint8_t* to, size_t count);

/// A source that a function reads.
typedef struct surveydata_source {
  uint32_t struct_size;
  uint32_t reserved;  ///< 0
  surveydata_read_at read_at;
  void (*release)(void* context);  ///< Called once, when the reader is closed; may be null.
  void* context;                   ///< Given to both functions; may be null.
  uint64_t size;                   ///< In bytes, as far as there are as many.
} surveydata_source;

/// Opens a reader. It gives the records, gaps and damaged headers that begin in the stretch
/// [`begin`, `end`), in bytes, in the walk from the start of the source: the stretches of any cuts
/// join to the whole, whose stretch is [0, `SURVEYDATA_NO_END`). A gap is cut at the ends of the
/// stretch. 131,074 bytes before `begin` are read for that, more where bytes were made so that they
/// do not suffice. `*reader` is set to the reader; to null when it is not opened.
///
/// Of a file, or of a pipe that has a name. A pipe can only be read as a whole: another stretch
/// fails when the reader is asked for its first entry.
/// \return `SURVEYDATA_NO_SUCH_FILE`, `SURVEYDATA_NO_PERMISSION` or `SURVEYDATA_CANNOT_OPEN`.
SURVEYDATA_API surveydata_status surveydata_reader_open_file(const char* file_name, uint64_t begin,
                                                             uint64_t end,
                                                             surveydata_reader** reader);

/// The same of bytes in memory, which are not copied: they must stay as long as the reader. `bytes`
/// may be null when `size` is 0.
SURVEYDATA_API surveydata_status surveydata_reader_open_bytes(const uint8_t* bytes, size_t size,
                                                              uint64_t begin, uint64_t end,
                                                              surveydata_reader** reader);

/// The same of a source that a function reads, in blocks of at most 256 KiB. When the reader is not
/// opened, the context is not released.
SURVEYDATA_API surveydata_status surveydata_reader_open_source(const surveydata_source* source,
                                                               uint64_t begin, uint64_t end,
                                                               surveydata_reader** reader);

/// Closes the reader and its file. Null is allowed.
SURVEYDATA_API void surveydata_reader_close(surveydata_reader* reader);

/// Sets `*size` to the size of the source in bytes when it was opened; 0 when that is not known (a
/// pipe).
SURVEYDATA_API surveydata_status surveydata_reader_size(const surveydata_reader* reader,
                                                        uint64_t* size);

/// Told how far the reader has come: at `offset`. Answers 0 to go on, anything else to cancel.
/// Called by the thread that uses the reader; it must not use that reader.
typedef int32_t (*surveydata_progress)(void* context, uint64_t offset);

/// Makes the reader call `progress` about every mebibyte from now on; no more when it is null. When
/// it cancels, the function that was called answers `SURVEYDATA_CANCELLED`; the reader can go on,
/// and nothing is lost or given twice.
SURVEYDATA_API surveydata_status surveydata_reader_set_progress(surveydata_reader* reader,
                                                                surveydata_progress progress,
                                                                void* context);

/// Kinds of entries.
enum {
  SURVEYDATA_MEASUREMENT = 1,     ///< A record of the type 113, at most 500 bytes long.
  SURVEYDATA_OTHER_RECORD = 2,    ///< Any other record.
  SURVEYDATA_GAP = 4,             ///< Bytes that belong to no record.
  SURVEYDATA_DAMAGED_HEADER = 8,  ///< The header of a measurement in a gap.
  SURVEYDATA_ALL_ENTRIES = 15
};

/// Why a header begins no record.
enum {
  SURVEYDATA_DAMAGE_NONE = 0,
  SURVEYDATA_DAMAGE_WRONG_CHECKSUM = 1,
  SURVEYDATA_DAMAGE_CUT_BY_THE_END = 2,        ///< The source ends before the frame does.
  SURVEYDATA_DAMAGE_RUNS_INTO_NEXT_RECORD = 3  ///< Maybe no header but chance bytes.
};

/// What a reader comes to.
typedef struct surveydata_entry {
  uint32_t struct_size;
  uint32_t kind;    ///< One of the kinds above.
  uint64_t offset;  ///< In the source.
  uint64_t size;    ///< In bytes; of a damaged header, that of its frame, as the header has it.
  uint32_t record_type;  ///< 0 to 255; 0 for a gap.
  uint32_t damage;       ///< Of a damaged header.
  /// The record, header and checksum included, until the reader goes on or is closed. Null for gaps
  /// and damaged headers.
  const uint8_t* bytes;
} surveydata_entry;

/// Goes on to the next entry of one of the `kinds`, a sum of the above: in the order of their
/// offsets, but that damaged headers come before the gap that they lie in. Records and gaps
/// together cover the source once.
///
/// \return `SURVEYDATA_END` after the last entry, then and each time after; before it
///         `SURVEYDATA_READING_FAILED` (then each time), `SURVEYDATA_NO_STRETCHES` (likewise),
///         `SURVEYDATA_CANCELLED` or `SURVEYDATA_FAILED`.
/// \cost linear in the bytes, whatever they are.
SURVEYDATA_API surveydata_status surveydata_reader_next(surveydata_reader* reader, uint32_t kinds,
                                                        surveydata_entry* entry);

// ----- Measurements and their frames

/// The longest frame of a measurement, in bytes.
#define SURVEYDATA_LONGEST_FRAME 500

/// Bits of `surveydata_measurement::set_mask`: which fields are present.
enum {
  SURVEYDATA_HAS_ANTENNA_HEIGHT = 0x0002,
  SURVEYDATA_HAS_DOPS = 0x0004,
  SURVEYDATA_HAS_TOTAL_PAIR = 0x0008,
  SURVEYDATA_HAS_VECTOR = 0x0010,
  SURVEYDATA_HAS_WORD16 = 0x0020,
  SURVEYDATA_HAS_SYSTEMS = 0x0040,  ///< Which ones: bits of the status mask.
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

/// Stands for a dilution of precision that is not available.
#define SURVEYDATA_DOP_NOT_AVAILABLE 65535

/// A GNSS measurement. What is not present has its default, 0 unless said otherwise. Fields that
/// are not described carry what the producer put into them.
typedef struct surveydata_measurement {
  uint32_t struct_size;
  uint32_t block;  ///< Set by `surveydata_decode` to the block that does not fit, for
                   ///< `SURVEYDATA_TEXT_BLOCK`; "checksum" when all do. Not read.

  int32_t time_a_of_week;      ///< ms
  int32_t time_b_of_week;      ///< ms
  int32_t extra_time_of_week;  ///< ms
  uint16_t time_a_week;        ///< GPS week
  uint16_t time_b_week;        ///< Frames do not carry it: 0.
  uint16_t extra_time_week;
  uint8_t extra_time_count;  ///< 0 or 1
  uint8_t value_count;       ///< 0 or 2

  uint16_t set_mask;
  uint16_t status_mask;
  uint32_t flags;  ///< 0x1: the kind byte of the frame is 0; 0x2: it is another; 0: it has none.
  int32_t number;  ///< Beside the name.
  char name[52];   ///< UTF-8 of at most 49 bytes, zeros after it. Made of 16-bit units one by one.

  float antenna_height;             ///< m
  float antenna_horizontal_offset;  ///< m; frames do not carry it: 0.
  uint8_t antenna_is_vertical;      ///< By default 1; 0 for a slant height.
  uint8_t flag_a;
  uint8_t flag_e;
  uint8_t value_f;
  uint16_t values[2];
  uint16_t hdop;  ///< Tenths; by default `SURVEYDATA_DOP_NOT_AVAILABLE`.
  uint16_t vdop;  ///< Likewise.
  uint16_t tdop;  ///< Likewise.
  uint16_t word16;
  uint8_t total_pair[2];     ///< Satellites in view and used, from receivers.
  uint8_t system_1_pair[2];  ///< Likewise.
  uint8_t system_2_pair[2];  ///< Likewise; may hold a pair that is not present.
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
  uint16_t text_a[80];        ///< UTF-16 up to the first 0, zeros after it; as the others.
  uint16_t text_b[80];
  uint16_t text_c[80];
  uint16_t text_d[30];
  uint16_t reserved_at_end[3];  ///< 0
} surveydata_measurement;

/// Decodes the frame of a measurement; bytes after it are not looked at. Every member of the struct
/// but its size is set.
///
/// \return `SURVEYDATA_NO_MEASUREMENT`, `SURVEYDATA_CUT` or `SURVEYDATA_WRONG_CHECKSUM`, with the
/// struct
///         untouched; `SURVEYDATA_BLOCK_DOES_NOT_FIT`, with the blocks before that one stored.
SURVEYDATA_API surveydata_status surveydata_decode(const uint8_t* frame, size_t size,
                                                   surveydata_measurement* measurement);

/// Makes the shortest frame that decodes to this measurement. Fields that carry a presence bit are
/// left out while it is clear, whatever they hold.
///
/// \param capacity       the bytes at `frame`: at least 500.
/// \param size           set to the size of the frame; 0 when a field is refused.
/// \param refused_field  set to the field that is refused, for `SURVEYDATA_TEXT_REFUSED_FIELD`; 0
/// when
///                       none is. May be null.
/// \return `SURVEYDATA_NO_PLACE` for a value that decoding never gives, `SURVEYDATA_TOO_LONG` for
/// the
///         first field that makes the frame longer than 500 bytes.
SURVEYDATA_API surveydata_status surveydata_encode(const surveydata_measurement* measurement,
                                                   uint8_t* frame, size_t capacity, size_t* size,
                                                   uint32_t* refused_field);

/// Which members of `surveydata_changes` are changes.
enum {
  SURVEYDATA_CHANGE_NAME = 1,
  SURVEYDATA_CHANGE_NUMBER = 2,
  SURVEYDATA_CHANGE_ANTENNA_HEIGHT = 4
};

/// What to change in a frame.
typedef struct surveydata_changes {
  uint32_t struct_size;
  uint32_t which;    ///< A sum of the above.
  const char* name;  ///< At most 17 units and 49 bytes of UTF-8. Null unless it is a change.
  int32_t number;
  float antenna_height;  ///< m, finite
  int32_t is_slant;      ///< Of the antenna height: 0 for a vertical one.
  uint32_t reserved;     ///< 0
} surveydata_changes;

/// Rewrites fields of a frame, and its checksum; every other byte stays. `patched` may be `frame`.
/// Nothing else is written: `surveydata_fields` of both shows what differs before it goes into a
/// file.
///
/// \param size      of the frame and of `patched`; bytes after the frame are not looked at nor
/// written.
/// \return as `surveydata_decode`, for a frame that it cannot decode whole;
/// `SURVEYDATA_NO_PLACE` when
///         the frame has no block for the change, or the block does not hold the value.
SURVEYDATA_API surveydata_status surveydata_patch(const uint8_t* frame, size_t size,
                                                  const surveydata_changes* changes,
                                                  uint8_t* patched);

/// How the bytes of a field are to be read: little-endian numbers.
enum {
  SURVEYDATA_FIELD_BYTES = 0,     ///< Ignored bytes, and those from a block on that does not fit.
  SURVEYDATA_FIELD_UNSIGNED = 1,  ///< 1 or 2 bytes
  SURVEYDATA_FIELD_BITS = 2,      ///< 2 bytes, shown in hexadecimal
  SURVEYDATA_FIELD_SIGNED = 3,    ///< 4 bytes
  SURVEYDATA_FIELD_FLOAT = 4,     ///< 4 bytes, IEEE 754
  SURVEYDATA_FIELD_TEXT = 5       ///< UTF-16 up to a 0 unit or the end of the field
};

/// What a run of bytes in a frame is.
typedef struct surveydata_field {
  uint32_t offset;         ///< From the start of the frame.
  uint32_t size;           ///< In bytes.
  uint32_t type;           ///< One of the types above.
  uint32_t block;          ///< In the order of the frame, for `SURVEYDATA_TEXT_BLOCK`.
  double number;           ///< The value of a number, exactly; 0 for others.
  const char* block_name;  ///< "antenna height"
  const char* name;        ///< "height"; tells the field from the others of its block only.
  const char* unit;        ///< "m", "ms", "0.1" for tenths; "" where there is none.
  /// The value for people, the bytes of a text included; "" for ignored bytes. Characters that
  /// cannot be shown, control characters and lone surrogates, are replaced by U+FFFD.
  char value[240];
} surveydata_field;

/// No frame has more fields.
#define SURVEYDATA_MOST_FIELDS 128

/// Explains every byte of a measurement's frame once, in order: header, blocks, bytes after the
/// last block, checksum. From a block on that does not fit, the bytes up to the checksum are one
/// field; that is no failure.
///
/// \return as `surveydata_decode`, with nothing set; `SURVEYDATA_BUFFER_TOO_SMALL`.
SURVEYDATA_API surveydata_status surveydata_fields(const uint8_t* frame, size_t size,
                                                   surveydata_field* fields, size_t field_size,
                                                   size_t capacity, size_t* count);

/// Puts `records`, whole ones of any kind, one after the other, at the end of a file, which is made
/// if there is none. What is in the file is never written over: when writing fails, it is cut back
/// to the size that it had. One writer at a time. `records` may be null when `size` is 0.
///
/// \return `SURVEYDATA_NO_RECORDS`, with the file untouched; `SURVEYDATA_NO_SUCH_FILE`,
///         `SURVEYDATA_NO_PERMISSION`, `SURVEYDATA_CANNOT_OPEN`, `SURVEYDATA_WRITING_FAILED` or
///         `SURVEYDATA_LEFT_OVER`.
SURVEYDATA_API surveydata_status surveydata_append(const char* file_name, const uint8_t* records,
                                                   size_t size);

/* Columns of measurements. These are declared when the table of columns is there (columns.cpp,
   arrow_stream.cpp):

   typedef struct surveydata_column {
     const char* name;  const char* unit;  const char* description;
     uint32_t type;         // SURVEYDATA_COLUMN_UINT8 ... _FLOAT64, _TEXT (UTF-8), _LIST...
     int32_t can_be_absent;
     size_t value_size;     // bytes of a value; 1 for texts
   } surveydata_column;

   // The list: like every array that a function fills.
   surveydata_columns(surveydata_column* columns, size_t column_size, size_t capacity, size_t*
   count);

   typedef struct surveydata_column_buffer {
     uint32_t column;           // its place in the list
     uint32_t reserved;
     void* values;              // one after the other; of texts, their bytes
     size_t values_capacity;    // in bytes
     uint8_t* present;          // 1 or 0 for each row; may be null
     int64_t* offsets;          // of texts: rows + 1; null for others
   } surveydata_column_buffer;

   // Reads the next `rows` measurements. `*rows_read` is set also when it fails or is cancelled, to
   // the rows that are there; SURVEYDATA_END with 0 rows after the last. A text that has no room
   ends
   // the batch before its row; SURVEYDATA_BUFFER_TOO_SMALL when that is the first.
   surveydata_reader_read_columns(surveydata_reader* reader, const surveydata_column_buffer*
   buffers, size_t buffer_size, size_t buffer_count, size_t rows, size_t* rows_read);

   // The stream owns the reader from then on, and closes it when it is released. Null columns and
   the
   // count 0 stand for all.
   surveydata_reader_arrow_stream(surveydata_reader* reader, const uint32_t* columns,
                                  size_t column_count, size_t rows_in_batch,
                                  struct ArrowArrayStream* stream);

   They go on with `surveydata_reader::GetReader()`, within `Guarded` of boundary.h. */

// ----- Areas on the sphere of directions

/// Which directions around the instrument a scan covers. It never changes.
typedef struct surveydata_area surveydata_area;

/// Kinds of areas.
enum {
  SURVEYDATA_RECTANGLE = 1,  ///< Between two opposite corners, with straight edges in the plane of
                             ///< Hz and V. It crosses Hz 0 when the first corner has the larger Hz.
  SURVEYDATA_POLYGON = 2,    ///< Its edges are arcs of great circles; it closes itself.
  SURVEYDATA_DOME = 3        ///< V from 0 to 0.8 pi, for all Hz. It has no points.
};

/// What an area is made of.
typedef struct surveydata_area_definition {
  uint32_t struct_size;
  uint32_t kind;
  size_t count;            ///< Of points; those of a dome are ignored.
  const double* hz;        ///< rad; may be null when there are no points.
  const double* v;         ///< rad, from the zenith; likewise.
  const double* distance;  ///< m, not above 0 for a point without one; null when no point has any.
  double hz_step;          ///< rad; of the scan. Validity wants it above 0, nothing else reads it.
  double v_step;           ///< Likewise.
} surveydata_area_definition;

/// Makes an area of any points; `surveydata_area_faults` says whether they make sense. `*area` is
/// set to the area, or to null on failure.
SURVEYDATA_API surveydata_status
surveydata_area_create(const surveydata_area_definition* definition, surveydata_area** area);

/// For how many questions an area is prepared; makes no difference to the answers.
enum {
  SURVEYDATA_QUESTIONS_FEW = 1,  ///< Quick to prepare: it pays from a few questions on.
  SURVEYDATA_QUESTIONS_MANY = 2  ///< Up to 512 KB and a millisecond: it pays from 10,000 on.
};

/// Makes an area with the same points that answers which directions it contains faster. `*prepared`
/// is set to it; to null when it is not made. The two areas are independent.
/// \cost n log n for n
/// points.
SURVEYDATA_API surveydata_status surveydata_area_prepare(const surveydata_area* area,
                                                         uint32_t questions,
                                                         surveydata_area** prepared);

/// Releases an area. Null is allowed.
SURVEYDATA_API void surveydata_area_destroy(surveydata_area* area);

/// Rules that an area breaks, for `SURVEYDATA_TEXT_FAULT`.
enum {
  SURVEYDATA_FAULT_HZ_STEP = 1,             ///< The step in Hz is not above 0.
  SURVEYDATA_FAULT_V_STEP = 2,              ///< The step in V is not above 0.
  SURVEYDATA_FAULT_POINT_COUNT = 3,         ///< A rectangle has 2 points, a polygon 3 or more.
  SURVEYDATA_FAULT_POINT_OUT_OF_RANGE = 4,  ///< Hz must be in [0, 2 pi], V in [0, pi].
  SURVEYDATA_FAULT_EQUAL_POINTS = 5,        ///< Two points are equal.
  SURVEYDATA_FAULT_EQUAL_HZ = 6,            ///< Both corners of a rectangle have the same Hz.
  SURVEYDATA_FAULT_EQUAL_V = 7,             ///< Both corners of a rectangle have the same V.
  SURVEYDATA_FAULT_CROSSING_EDGES = 8       ///< Two edges cross that are not adjacent.
};

/// In place of the index of a point or an edge: none.
#define SURVEYDATA_NONE UINT64_MAX

/// A rule that an area breaks. Points and edges are counted from 0; edge i runs from point i to the
/// next point, the last edge to point 0.
typedef struct surveydata_fault {
  uint32_t rule;
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
  double hz_min;  ///< rad; above `hz_max` when the area crosses Hz 0.
  double hz_max;  ///< rad, at most 2 pi
  double v_min;   ///< rad; of an area around the zenith the least V of its ring, not 0.
  double v_max;   ///< rad
} surveydata_bounds;

/// \return `SURVEYDATA_NOT_VALID` when the points make no area, whatever the steps.
SURVEYDATA_API surveydata_status surveydata_area_bounds(const surveydata_area* area,
                                                        surveydata_bounds* bounds);

/// The corners of the area with their distances: those of a rectangle are four, a dome has none. A
/// point without a distance takes it from the others, or `default_distance` (m) where none has any.
/// The three arrays have the same capacity; each may be null, to leave it out.
SURVEYDATA_API surveydata_status surveydata_area_outline(const surveydata_area* area,
                                                         double default_distance, double* hz,
                                                         double* v, double* distance,
                                                         size_t capacity, size_t* count);

/// Whether a direction lies inside the area or in its boundary band: sets `*inside` to 1 or 0. 0
/// for NaN and beyond 100 rad. The steps do not matter.
/// \cost that of validity; less for a prepared area.
SURVEYDATA_API surveydata_status surveydata_area_contains(const surveydata_area* area, double hz,
                                                          double v, int32_t* inside);

/// Answers for `count` directions: sets each of `inside` to 1 or 0. The strides are the bytes from
/// one angle to the next, `sizeof(double)` for arrays without gaps; they may be negative. An area
/// that is not prepared is prepared for the call. The pointers may be null when `count` is 0.
SURVEYDATA_API surveydata_status surveydata_area_contains_many(const surveydata_area* area,
                                                               const double* hz,
                                                               ptrdiff_t hz_stride, const double* v,
                                                               ptrdiff_t v_stride, size_t count,
                                                               uint8_t* inside);

/// The rule that decided, for `SURVEYDATA_TEXT_RULE`: the first in this order that applies.
enum {
  SURVEYDATA_RULE_OUT_OF_RANGE = 0,  ///< An angle is no number, or beyond 100 rad: outside.
  SURVEYDATA_RULE_DOME = 1,          ///< Inside where V, brought into [0, 2 pi], is at most 0.8 pi.
  SURVEYDATA_RULE_NOT_VALID = 2,     ///< The points make no area: outside.
  SURVEYDATA_RULE_BAND = 3,          ///< In the boundary band of an edge: inside.
  SURVEYDATA_RULE_NO_SEARCH_LINE =
      4,  ///< The bounds reach from pole to pole, or are a point: outside.
  SURVEYDATA_RULE_NO_CROSSING = 5,    ///< The meridian crosses no edge: outside.
  SURVEYDATA_RULE_NOTHING_ABOVE = 6,  ///< All crossings are below, and the area is not around the
                                      ///< zenith: outside.
  SURVEYDATA_RULE_PARITY = 7          ///< Inside where the number of crossings that count is odd.
};

/// Why an area contains a direction, or does not.
typedef struct surveydata_explanation {
  uint32_t struct_size;
  int32_t inside;  ///< The answer of `surveydata_area_contains`.
  uint32_t rule;
  uint32_t reserved;
  double hz;              ///< The direction in [0, 2 pi], rad; as given where it is out of range.
  double v;               ///< Likewise.
  uint64_t band_edge;     ///< The first edge in whose band it lies, or `SURVEYDATA_NONE`.
  uint64_t nearest_edge;  ///< The edge that is nearest on the sphere, or `SURVEYDATA_NONE`.
  double distance;        ///< To that edge, rad; the largest finite number where there is none.
} surveydata_explanation;

/// Where the meridian of a direction crosses an edge.
typedef struct surveydata_crossing {
  uint64_t edge;
  double v;            ///< rad
  int32_t is_counted;  ///< Below the direction, and not as good as the same as the next one below.
  uint32_t reserved;
} surveydata_crossing;

/// Explains the answer for a direction. Edges are counted from 0; those of a rectangle are the
/// meridian of the first corner, the circle of latitude of the second, its meridian, and the circle
/// of latitude of the first; a dome has one, its limit.
///
/// \param crossings  filled by ascending V.
/// \cost that of validity; for a prepared area, linear in the number of points.
SURVEYDATA_API surveydata_status surveydata_area_explain(
    const surveydata_area* area, double hz, double v, surveydata_explanation* explanation,
    surveydata_crossing* crossings, size_t crossing_size, size_t capacity, size_t* count);

#ifdef __cplusplus
}
#endif

#endif  // SURVEYDATA_C_INTERFACE_SURVEYDATA_H_
