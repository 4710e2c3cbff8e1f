/* Columns of measurements: the list, batches in the caller's buffers, and what is refused. */

#include <stdlib.h>

#include "tests/c_interface/check.h"
#include "tests/c_interface/frames.h"

enum { MOST_COLUMNS = 128, FRAMES = 40, SIZE = 24 };

static surveydata_column columns[MOST_COLUMNS];
static size_t column_count = 0;

static uint32_t column_of(const char* name) {
  size_t i;
  for (i = 0; i < column_count; ++i) {
    if (strcmp(columns[i].name, name) == 0) return (uint32_t)i;
  }
  CHECK(!"no such column");
  return 0;
}

static void test_list(void) {
  size_t count = 0;
  CHECK_STATUS(surveydata_columns(NULL, sizeof(surveydata_column), 0, &count), SURVEYDATA_OK);
  CHECK(50 < count && count <= MOST_COLUMNS);
  CHECK_STATUS(surveydata_columns(columns, sizeof(surveydata_column), 3, &column_count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK(column_count == count && strcmp(columns[0].name, "offset") == 0);
  CHECK_STATUS(surveydata_columns(columns, sizeof(surveydata_column), MOST_COLUMNS, &column_count),
               SURVEYDATA_OK);
  CHECK(column_count == count);
  CHECK(columns[column_of("offset")].type == SURVEYDATA_COLUMN_UINT64);
  CHECK(!columns[column_of("offset")].can_be_absent && columns[column_of("offset")].largest == 0);
  CHECK(strcmp(columns[column_of("offset")].unit, "byte") == 0);
  CHECK(columns[column_of("word_16")].can_be_absent);
  CHECK(columns[column_of("text_d")].largest == 87);
  CHECK(columns[column_of("list_entries")].type == SURVEYDATA_COLUMN_UINT16_LIST);

  CHECK_STATUS(surveydata_columns(columns, sizeof(surveydata_column) - 1, MOST_COLUMNS, &count),
               SURVEYDATA_WRONG_SIZE);
  CHECK_STATUS(surveydata_columns(columns, sizeof(surveydata_column), MOST_COLUMNS, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_columns(NULL, sizeof(surveydata_column), 1, &count),
               SURVEYDATA_INVALID_ARGUMENT);
}

/* Frames with time of week 0, 1000, 2000 and so on; every third has the total pair (i, i + 1), and
   every seventh a block that does not fit. */
static size_t make_frames(uint8_t* to) {
  uint8_t* const begin = to;
  unsigned i;
  for (i = 0; i < FRAMES; ++i) {
    make_frame(to, SIZE);
    store_u16(to + 5, 2091);
    store_u16(to + 7, (i * 1000) & 0xFFFF);
    if (i % 7 == 6) {
      store_u16(to + FRAME_FLAGS_AT, 0x0008);
      to[FRAME_BLOCKS_AT] = 2;
    } else if (i % 3 == 0) {
      store_u16(to + FRAME_FLAGS_AT, 0x0100);
      to[FRAME_BLOCKS_AT] = (uint8_t)i;
      to[FRAME_BLOCKS_AT + 1] = (uint8_t)(i + 1);
    }
    seal_frame(to);
    to += SIZE;
  }
  return (size_t)(to - begin);
}

static surveydata_reader* open_bytes(const uint8_t* bytes, size_t size) {
  surveydata_reader* reader = NULL;
  CHECK_STATUS(surveydata_reader_open_bytes(bytes, size, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_OK);
  return reader;
}

static void test_batches(const uint8_t* bytes, size_t size) {
  surveydata_reader* const reader = open_bytes(bytes, size);
  int32_t time_of_week[9];
  uint8_t second[9];
  uint8_t validity[2];
  char times[9 * 23];
  int64_t offsets[10];
  surveydata_column_buffer buffers[3];
  size_t rows = 7;
  uint64_t left_out = 7;
  unsigned frame = 0;
  memset(buffers, 0, sizeof(buffers));
  buffers[0].column = column_of("time_of_week");
  buffers[0].values = time_of_week;
  buffers[1].column = column_of("total_second");
  buffers[1].values = second;
  buffers[1].validity = validity;
  buffers[2].column = column_of("time_gps");
  buffers[2].values = times;
  buffers[2].values_size = sizeof(times);
  buffers[2].offsets = offsets;

  for (;;) {
    size_t row;
    unsigned absent = 0;
    const surveydata_status status =
        surveydata_reader_read_columns(reader, buffers, sizeof(buffers[0]), 3, 9, &rows, &left_out);
    if (status == SURVEYDATA_END) break;
    CHECK_STATUS(status, SURVEYDATA_OK);
    CHECK(0 < rows && rows <= 9);
    if (rows == 0) break;
    for (row = 0; row < rows; ++row, ++frame) {
      char time[24] = "2020-02-02T00:00:00.000";
      if (frame % 7 == 6) ++frame;
      CHECK(time_of_week[row] == (int32_t)(frame * 1000 & 0xFFFF));
      CHECK((validity[row / 8] >> row % 8 & 1) == (frame % 3 == 0));
      CHECK(second[row] == (frame % 3 == 0 ? frame + 1 : 0));
      absent += frame % 3 != 0;
      time[17] = (char)('0' + (frame * 1000 & 0xFFFF) / 1000 / 10 % 6);
      time[18] = (char)('0' + (frame * 1000 & 0xFFFF) / 1000 % 10);
      CHECK(offsets[row] == 23 * (int64_t)row && offsets[row + 1] == 23 * (int64_t)row + 23);
      CHECK(memcmp(times + offsets[row], time, 23) == 0);
    }
    CHECK(buffers[0].absent == 0 && buffers[1].absent == absent && buffers[2].absent == 0);
  }
  CHECK(rows == 0 && left_out == 5);
  CHECK(frame == FRAMES);
  CHECK_STATUS(
      surveydata_reader_read_columns(reader, buffers, sizeof(buffers[0]), 3, 9, &rows, NULL),
      SURVEYDATA_END);
  surveydata_reader_close(reader);
}

/* Columns continue after the entries that were read before, and vice versa. */
static void test_mixed(const uint8_t* bytes, size_t size) {
  surveydata_reader* const reader = open_bytes(bytes, size);
  uint64_t offset = 0;
  surveydata_column_buffer buffer;
  surveydata_entry entry;
  size_t rows = 0;
  memset(&buffer, 0, sizeof(buffer));
  buffer.column = column_of("offset");
  buffer.values = &offset;
  entry.struct_size = sizeof(entry);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 0);
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 1, &rows, NULL),
               SURVEYDATA_OK);
  CHECK(rows == 1 && offset == SIZE);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 2 * SIZE);
  surveydata_reader_close(reader);
}

static void test_refused(const uint8_t* bytes, size_t size) {
  surveydata_reader* const reader = open_bytes(bytes, size);
  char texts[48];
  int64_t offsets[3];
  surveydata_column_buffer buffer;
  size_t rows = 7;
  memset(&buffer, 0, sizeof(buffer));
  buffer.column = column_of("name");
  buffer.values = texts;
  buffer.values_size = sizeof(texts); /* one less than the longest name */
  buffer.offsets = offsets;
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK(rows == 0);
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 0, &rows, NULL),
               SURVEYDATA_BUFFER_TOO_SMALL);
  rows = 7;
  CHECK_STATUS(
      surveydata_reader_read_columns(reader, &buffer, sizeof(buffer) + 8, 1, 2, &rows, NULL),
      SURVEYDATA_WRONG_SIZE);
  CHECK(rows == 0);
  rows = 7;
  CHECK_STATUS(surveydata_reader_read_columns(NULL, &buffer, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(rows == 0);
  rows = 7;
  CHECK_STATUS(surveydata_reader_read_columns(reader, NULL, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(rows == 0);
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 2, NULL, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  buffer.offsets = NULL;
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  buffer.offsets = offsets;
  buffer.values = NULL;
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  buffer.values = texts;
  buffer.reserved = 1;
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  buffer.reserved = 0;
  buffer.column = (uint32_t)column_count;
  CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, 2, &rows, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  /* Nothing was lost; rows can be counted without a buffer. */
  CHECK_STATUS(surveydata_reader_read_columns(reader, NULL, sizeof(buffer), 0, 1000, &rows, NULL),
               SURVEYDATA_OK);
  CHECK(rows == FRAMES - 5);
  surveydata_reader_close(reader);
}

typedef struct source_state {
  const uint8_t* bytes;
  size_t size;
  int64_t answer; /* instead of bytes, at offset 500 and after */
} source_state;

static int64_t read_at(void* context, uint64_t offset, uint8_t* to, size_t count) {
  source_state* const state = (source_state*)context;
  if (offset >= 500 && state->answer < 0) {
    const int64_t answer = state->answer;
    state->answer = 0;
    return answer;
  }
  if (count > 100) count = 100;
  if (count > state->size - offset) count = (size_t)(state->size - offset);
  memcpy(to, state->bytes + offset, count);
  return (int64_t)count;
}

/* The rows before a failure are in the buffers, and reading continues after a cancelled call. */
static void test_failures(const uint8_t* bytes, size_t size) {
  static const struct {
    int64_t answer;
    surveydata_status status;
  } cases[] = {{SURVEYDATA_READ_CANCELLED, SURVEYDATA_CANCELLED},
               {SURVEYDATA_READ_FAILED, SURVEYDATA_READING_FAILED}};
  size_t i;
  for (i = 0; i < 2; ++i) {
    source_state state;
    surveydata_source source;
    surveydata_reader* reader = NULL;
    uint64_t offsets[FRAMES];
    surveydata_column_buffer buffer;
    size_t rows = 0;
    size_t before = 0;
    surveydata_status status = SURVEYDATA_OK;
    state.bytes = bytes;
    state.size = size;
    state.answer = cases[i].answer;
    memset(&source, 0, sizeof(source));
    source.struct_size = sizeof(source);
    source.read_at = &read_at;
    source.context = &state;
    source.size = size;
    CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
                 SURVEYDATA_OK);
    memset(&buffer, 0, sizeof(buffer));
    buffer.column = column_of("offset");
    do {
      buffer.values = offsets + before;
      status = surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1, FRAMES - before,
                                              &rows, NULL);
      before += rows;
    } while (status == SURVEYDATA_OK);
    CHECK_STATUS(status, cases[i].status);
    if (status == SURVEYDATA_CANCELLED) {
      buffer.values = offsets + before;
      CHECK_STATUS(surveydata_reader_read_columns(reader, &buffer, sizeof(buffer), 1,
                                                  FRAMES - before, &rows, NULL),
                   SURVEYDATA_OK);
      before += rows;
      CHECK(before == FRAMES - 5);
      CHECK(offsets[before - 1] == (FRAMES - 1) * SIZE);
    } else {
      CHECK(before < FRAMES - 5);
    }
    surveydata_reader_close(reader);
  }
}

int main(void) {
  static uint8_t bytes[FRAMES * SIZE];
  const size_t size = make_frames(bytes);
  test_list();
  test_batches(bytes, size);
  test_mixed(bytes, size);
  test_refused(bytes, size);
  test_failures(bytes, size);
  return check_result();
}
