/* Readers: every function, every status, every boundary. */

#include <stdlib.h>

#include "tests/c_interface/check.h"
#include "tests/c_interface/frames.h"

/* A file with every kind of entry: a gap with a header whose checksum is wrong, a measurement,
   another record, a record of the measurements' type that is too long for one, a gap with a header
   that runs into the next record, a measurement, and a header cut by the end. */
enum {
  GAP_1 = 30,
  FRAME_1 = 19,
  OTHER = 7,
  LONG_RECORD = 501,
  GAP_2 = 22,
  FRAME_2 = 500,
  CUT = 25,
  FILE_SIZE = GAP_1 + FRAME_1 + OTHER + LONG_RECORD + GAP_2 + FRAME_2 + CUT
};

static void make_file(uint8_t* to) {
  memset(to, 0x11, FILE_SIZE);
  make_frame(to + 3, 20);
  to[3 + 19] ^= 1;
  to += GAP_1;
  to += make_frame(to, FRAME_1);
  to += make_record(to, OTHER, 7);
  to += make_frame(to, LONG_RECORD);
  make_frame(to, 40); /* its end is overwritten */
  to += GAP_2;
  to += make_frame(to, FRAME_2);
  make_frame(to, 19);
  store_u16(to + 2, 24);
}

typedef struct expected_entry {
  uint32_t kind;
  uint64_t offset;
  uint64_t size;
  uint32_t record_type;
  uint32_t damage;
} expected_entry;

static const expected_entry everything[] = {
    {SURVEYDATA_DAMAGED_HEADER, 3, 20, 113, SURVEYDATA_DAMAGE_WRONG_CHECKSUM},
    {SURVEYDATA_GAP, 0, GAP_1, 0, 0},
    {SURVEYDATA_MEASUREMENT, 30, FRAME_1, 113, 0},
    {SURVEYDATA_OTHER_RECORD, 49, OTHER, 7, 0},
    {SURVEYDATA_OTHER_RECORD, 56, LONG_RECORD, 113, 0},
    {SURVEYDATA_DAMAGED_HEADER, 557, 40, 113, SURVEYDATA_DAMAGE_RUNS_INTO_NEXT_RECORD},
    {SURVEYDATA_GAP, 557, GAP_2, 0, 0},
    {SURVEYDATA_MEASUREMENT, 579, FRAME_2, 113, 0},
    {SURVEYDATA_DAMAGED_HEADER, 1079, 26, 113, SURVEYDATA_DAMAGE_CUT_BY_THE_END},
    {SURVEYDATA_GAP, 1079, CUT, 0, 0},
};
enum { ENTRIES = sizeof(everything) / sizeof(everything[0]) };

static surveydata_entry new_entry(void) {
  surveydata_entry entry;
  memset(&entry, 0xEE, sizeof(entry));
  entry.struct_size = sizeof(entry);
  return entry;
}

/* Reads to the end and compares the entries with all those of the `kinds`. */
static void check_entries(surveydata_reader* reader, uint32_t kinds, const uint8_t* bytes) {
  surveydata_entry entry = new_entry();
  size_t i;
  for (i = 0; i < ENTRIES; ++i) {
    const expected_entry* const expected = &everything[i];
    const int is_record =
        (expected->kind & (SURVEYDATA_MEASUREMENT | SURVEYDATA_OTHER_RECORD)) != 0;
    if ((expected->kind & kinds) == 0) continue;
    CHECK_STATUS(surveydata_reader_next(reader, kinds, &entry), SURVEYDATA_OK);
    CHECK(entry.struct_size == sizeof(entry));
    CHECK(entry.kind == expected->kind);
    CHECK(entry.offset == expected->offset && entry.size == expected->size);
    CHECK(entry.record_type == expected->record_type && entry.damage == expected->damage);
    CHECK((entry.bytes != NULL) == is_record);
    if (entry.bytes != NULL) {
      CHECK(memcmp(entry.bytes, bytes + entry.offset, (size_t)entry.size) == 0);
    }
  }
  {
    const surveydata_entry last = entry;
    CHECK_STATUS(surveydata_reader_next(reader, kinds, &entry), SURVEYDATA_END);
    CHECK_STATUS(surveydata_reader_next(reader, kinds, &entry), SURVEYDATA_END);
    CHECK(memcmp(&last, &entry, sizeof(entry)) == 0);
  }
}

static surveydata_reader* open_bytes(const uint8_t* bytes, size_t size) {
  surveydata_reader* reader = NULL;
  CHECK_STATUS(surveydata_reader_open_bytes(bytes, size, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_OK);
  return reader;
}

static void test_kinds(void) {
  uint8_t bytes[FILE_SIZE];
  uint32_t kinds;
  make_file(bytes);
  for (kinds = 1; kinds <= SURVEYDATA_ALL_ENTRIES; ++kinds) {
    surveydata_reader* const reader = open_bytes(bytes, sizeof(bytes));
    check_entries(reader, kinds, bytes);
    surveydata_reader_close(reader);
  }
}

/* Kinds that are no longer wanted are no longer returned. */
static void test_changing_kinds(void) {
  uint8_t bytes[FILE_SIZE];
  surveydata_entry entry = new_entry();
  surveydata_reader* reader;
  make_file(bytes);
  reader = open_bytes(bytes, sizeof(bytes));
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.kind == SURVEYDATA_DAMAGED_HEADER);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 30);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_GAP, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 557);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_DAMAGED_HEADER, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 1079);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_GAP, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 1079);
  surveydata_reader_close(reader);
}

/* Headers that were found together with a wanted one, but are no longer wanted. */
static void test_headers_that_are_not_wanted_any_more(void) {
  uint8_t bytes[4 * 20];
  surveydata_entry entry = new_entry();
  surveydata_reader* reader;
  unsigned i;
  for (i = 0; i < 4; ++i) {
    make_frame(bytes + i * 20, 20);
    if (i < 3) bytes[i * 20 + 19] ^= 1;
  }
  reader = open_bytes(bytes, sizeof(bytes));
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.kind == SURVEYDATA_DAMAGED_HEADER && entry.offset == 0);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_GAP, &entry), SURVEYDATA_OK);
  CHECK(entry.kind == SURVEYDATA_GAP && entry.offset == 0 && entry.size == 60);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.kind == SURVEYDATA_MEASUREMENT && entry.offset == 60);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
}

/* More damaged headers in one gap than a reader holds. */
static void test_many_damaged_headers(void) {
  enum { COUNT = 2000, SIZE = 20 };
  uint8_t* const bytes = malloc(COUNT * SIZE);
  surveydata_entry entry = new_entry();
  surveydata_reader* reader;
  unsigned i;
  for (i = 0; i < COUNT; ++i) {
    make_frame(bytes + i * SIZE, SIZE);
    bytes[i * SIZE + SIZE - 1] ^= 1;
  }
  reader = open_bytes(bytes, COUNT * SIZE);
  for (i = 0; i < COUNT; ++i) {
    CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
    CHECK(entry.kind == SURVEYDATA_DAMAGED_HEADER && entry.offset == i * SIZE);
  }
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.kind == SURVEYDATA_GAP && entry.offset == 0 && entry.size == COUNT * SIZE);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
  free(bytes);
}

/* At each cut, the two stretches give each record once. */
static void test_stretches(void) {
  uint8_t bytes[FILE_SIZE];
  const uint32_t records = SURVEYDATA_MEASUREMENT | SURVEYDATA_OTHER_RECORD;
  uint64_t cut;
  make_file(bytes);
  for (cut = 0; cut <= FILE_SIZE; ++cut) {
    surveydata_entry entry = new_entry();
    surveydata_reader* first = NULL;
    surveydata_reader* second = NULL;
    size_t i;
    CHECK_STATUS(surveydata_reader_open_bytes(bytes, FILE_SIZE, 0, cut, &first), SURVEYDATA_OK);
    CHECK_STATUS(surveydata_reader_open_bytes(bytes, FILE_SIZE, cut, SURVEYDATA_NO_END, &second),
                 SURVEYDATA_OK);
    for (i = 0; i < ENTRIES; ++i) {
      if ((everything[i].kind & records) == 0) continue;
      CHECK_STATUS(
          surveydata_reader_next(everything[i].offset < cut ? first : second, records, &entry),
          SURVEYDATA_OK);
      CHECK(entry.offset == everything[i].offset);
    }
    CHECK_STATUS(surveydata_reader_next(first, records, &entry), SURVEYDATA_END);
    CHECK_STATUS(surveydata_reader_next(second, records, &entry), SURVEYDATA_END);
    surveydata_reader_close(first);
    surveydata_reader_close(second);
  }
}

static void test_limits_of_stretches(void) {
  uint8_t bytes[FILE_SIZE];
  surveydata_entry entry = new_entry();
  surveydata_reader* reader = NULL;
  make_file(bytes);
  /* Empty, and beyond the end. */
  CHECK_STATUS(surveydata_reader_open_bytes(bytes, FILE_SIZE, 30, 30, &reader), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
  CHECK_STATUS(
      surveydata_reader_open_bytes(bytes, FILE_SIZE, SURVEYDATA_NO_END, SURVEYDATA_NO_END, &reader),
      SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
  /* One byte: the record that begins there. */
  CHECK_STATUS(surveydata_reader_open_bytes(bytes, FILE_SIZE, 30, 31, &reader), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.offset == 30 && entry.size == FRAME_1);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
  /* The end before the beginning. */
  CHECK_STATUS(surveydata_reader_open_bytes(bytes, FILE_SIZE, 31, 30, &reader),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(reader == NULL);
}

static void test_bytes(void) {
  uint8_t bytes[FILE_SIZE];
  uint64_t size = 7;
  surveydata_entry entry = new_entry();
  surveydata_reader* reader = (surveydata_reader*)bytes;
  make_file(bytes);
  /* No bytes, with and without a pointer. */
  CHECK_STATUS(surveydata_reader_open_bytes(NULL, 0, 0, SURVEYDATA_NO_END, &reader), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  CHECK_STATUS(surveydata_reader_size(reader, &size), SURVEYDATA_OK);
  CHECK(size == 0);
  surveydata_reader_close(reader);
  reader = open_bytes(bytes, 0);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
  /* Null. */
  reader = (surveydata_reader*)bytes;
  CHECK_STATUS(surveydata_reader_open_bytes(NULL, 1, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(reader == NULL);
  CHECK_STATUS(surveydata_reader_open_bytes(bytes, 1, 0, SURVEYDATA_NO_END, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
}

static void write_file(const char* name, const uint8_t* bytes, size_t size) {
  FILE* const file = fopen(name, "wb");
  CHECK(file != NULL);
  if (file == NULL) return;
  CHECK(fwrite(bytes, 1, size, file) == size);
  CHECK(fclose(file) == 0);
}

static void test_files(void) {
  static const char name[] = "reader_test.rec";
  uint8_t bytes[FILE_SIZE];
  uint64_t size = 0;
  surveydata_reader* reader = NULL;
  make_file(bytes);
  write_file(name, bytes, sizeof(bytes));
  CHECK_STATUS(surveydata_reader_open_file(name, 0, SURVEYDATA_NO_END, &reader), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_size(reader, &size), SURVEYDATA_OK);
  CHECK(size == FILE_SIZE);
  check_entries(reader, SURVEYDATA_ALL_ENTRIES, bytes);
  surveydata_reader_close(reader);
  /* A stretch of it. */
  CHECK_STATUS(surveydata_reader_open_file(name, 31, FILE_SIZE, &reader), SURVEYDATA_OK);
  {
    surveydata_entry entry = new_entry();
    CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry), SURVEYDATA_OK);
    CHECK(entry.offset == 579);
  }
  surveydata_reader_close(reader);

  reader = (surveydata_reader*)bytes;
  CHECK_STATUS(surveydata_reader_open_file(name, 2, 1, &reader), SURVEYDATA_INVALID_ARGUMENT);
  CHECK(reader == NULL);
  reader = (surveydata_reader*)bytes;
  CHECK_STATUS(surveydata_reader_open_file("no/such/file.rec", 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_NO_SUCH_FILE);
  CHECK(reader == NULL);
  CHECK_STATUS(surveydata_reader_open_file("", 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_NO_SUCH_FILE);
  reader = (surveydata_reader*)bytes;
  CHECK_STATUS(surveydata_reader_open_file(NULL, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(reader == NULL);
  CHECK_STATUS(surveydata_reader_open_file(name, 0, SURVEYDATA_NO_END, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  remove(name);
}

/* ----- Sources read by a callback */

typedef struct bytes_source {
  const uint8_t* bytes;
  size_t size;
  size_t most;    /* bytes at a time */
  int64_t answer; /* given at `answer_at` instead of bytes */
  uint64_t answer_at;
  int answers; /* how often */
  int released;
  int calls;
} bytes_source;

static int64_t read_bytes(void* context, uint64_t offset, uint8_t* to, size_t count) {
  bytes_source* const source = context;
  size_t left;
  ++source->calls;
  CHECK(count > 0 && count <= 256 * 1024);
  if (source->answers > 0 && offset + count > source->answer_at) {
    --source->answers;
    return source->answer;
  }
  if (offset >= source->size) return 0;
  left = source->size - (size_t)offset;
  if (count > left) count = left;
  if (count > source->most) count = source->most;
  memcpy(to, source->bytes + offset, count);
  return (int64_t)count;
}

static void release_bytes(void* context) { ++((bytes_source*)context)->released; }

static surveydata_source make_source(bytes_source* bytes) {
  surveydata_source source;
  memset(&source, 0, sizeof(source));
  source.struct_size = sizeof(source);
  source.read_at = read_bytes;
  source.release = release_bytes;
  source.context = bytes;
  source.size = bytes->size;
  return source;
}

static surveydata_reader* open_source(bytes_source* bytes) {
  const surveydata_source source = make_source(bytes);
  surveydata_reader* reader = NULL;
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_OK);
  return reader;
}

static void test_sources(void) {
  static const size_t most[] = {1, 2, 19, 1000, 100000};
  uint8_t file[FILE_SIZE];
  size_t i;
  make_file(file);
  for (i = 0; i < sizeof(most) / sizeof(most[0]); ++i) {
    bytes_source bytes = {file, FILE_SIZE, most[i], 0, 0, 0, 0, 0};
    uint64_t size = 0;
    surveydata_reader* const reader = open_source(&bytes);
    CHECK_STATUS(surveydata_reader_size(reader, &size), SURVEYDATA_OK);
    CHECK(size == FILE_SIZE);
    check_entries(reader, SURVEYDATA_ALL_ENTRIES, file);
    CHECK(bytes.released == 0);
    surveydata_reader_close(reader);
    CHECK(bytes.released == 1);
  }
  {
    /* Without a release function; the bytes end before the size. */
    bytes_source bytes = {file, FILE_SIZE, FILE_SIZE, 0, 0, 0, 0, 0};
    surveydata_source source = make_source(&bytes);
    surveydata_reader* reader = NULL;
    source.release = NULL;
    source.size = 1000000;
    CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
                 SURVEYDATA_OK);
    check_entries(reader, SURVEYDATA_ALL_ENTRIES, file);
    surveydata_reader_close(reader);
    CHECK(bytes.released == 0);
  }
}

/* Any value that is not a count ends the reading, at every call. */
static void test_sources_that_fail(void) {
  static const int64_t answers[] = {SURVEYDATA_READ_FAILED, -3,        INT64_MIN,
                                    256 * 1024 + 1,         INT64_MAX, 1LL << 32};
  const size_t size = 600000;
  uint8_t* const file = malloc(size);
  size_t i;
  memset(file, 0x11, size);
  make_frame(file, 100);
  for (i = 0; i < sizeof(answers) / sizeof(answers[0]); ++i) {
    bytes_source bytes = {file, size, size, answers[i], 300000, 1, 0, 0};
    surveydata_entry entry = new_entry();
    surveydata_reader* const reader = open_source(&bytes);
    CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry), SURVEYDATA_OK);
    CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry),
                 SURVEYDATA_READING_FAILED);
    CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry),
                 SURVEYDATA_READING_FAILED);
    surveydata_reader_close(reader);
    CHECK(bytes.released == 1);
  }
  free(file);
}

/* A source that has no bytes yet is called again, and nothing is lost. */
static void test_sources_that_cancel(void) {
  uint8_t file[FILE_SIZE];
  bytes_source bytes = {file, FILE_SIZE, 1, SURVEYDATA_READ_CANCELLED, 0, 0, 0, 0};
  surveydata_reader* reader;
  surveydata_entry entry = new_entry();
  size_t found = 0;
  int cancelled = 0;
  make_file(file);
  reader = open_source(&bytes);
  for (;;) {
    surveydata_status status;
    bytes.answers = cancelled % 2 == 0;
    bytes.answer_at = (uint64_t)cancelled * 10;
    status = surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry);
    if (status == SURVEYDATA_CANCELLED) {
      ++cancelled;
      continue;
    }
    if (status != SURVEYDATA_OK) {
      CHECK_STATUS(status, SURVEYDATA_END);
      break;
    }
    ++cancelled;
    CHECK(found < ENTRIES && entry.offset == everything[found].offset &&
          entry.size == everything[found].size && entry.kind == everything[found].kind);
    ++found;
  }
  CHECK(found == ENTRIES);
  CHECK(cancelled > 5);
  surveydata_reader_close(reader);
}

/* A source that cancels several times in each block is read to its end. */
static int64_t read_and_cancel(void* context, uint64_t offset, uint8_t* to, size_t count) {
  bytes_source* const source = context;
  if (source->calls % 2 != 0) {
    ++source->calls;
    return SURVEYDATA_READ_CANCELLED;
  }
  return read_bytes(source, offset, to, count);
}

static void test_sources_that_cancel_often(void) {
  enum { COUNT = 2000, SIZE = 300, MOST = 1000 };
  uint8_t* const file = malloc(COUNT * SIZE);
  static const uint64_t begins[] = {0, 400000};
  size_t i;
  for (i = 0; i < COUNT; ++i) make_frame(file + i * SIZE, SIZE);
  for (i = 0; i < 2; ++i) {
    bytes_source bytes = {file, COUNT * SIZE, MOST, 0, 0, 0, 0, 0};
    surveydata_source source = make_source(&bytes);
    surveydata_reader* reader = NULL;
    surveydata_entry entry = new_entry();
    uint64_t at = (begins[i] + SIZE - 1) / SIZE * SIZE;
    int cancelled = 0;
    surveydata_status status = SURVEYDATA_OK;
    source.read_at = read_and_cancel;
    CHECK_STATUS(surveydata_reader_open_source(&source, begins[i], SURVEYDATA_NO_END - 1, &reader),
                 SURVEYDATA_OK);
    while (cancelled < 1000) {
      status = surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry);
      if (status == SURVEYDATA_CANCELLED) {
        ++cancelled;
        continue;
      }
      if (status != SURVEYDATA_OK) break;
      CHECK(entry.offset == at);
      at += SIZE;
    }
    CHECK_STATUS(status, SURVEYDATA_END);
    CHECK(at == COUNT * SIZE);
    CHECK(cancelled > 100);
    surveydata_reader_close(reader);
  }
  free(file);
}

static void test_bad_sources(void) {
  bytes_source bytes = {(const uint8_t*)"", 0, 1, 0, 0, 0, 0, 0};
  surveydata_source source = make_source(&bytes);
  surveydata_reader* reader = (surveydata_reader*)&bytes;
  CHECK_STATUS(surveydata_reader_open_source(NULL, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(reader == NULL);
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_reader_open_source(&source, 1, 0, &reader), SURVEYDATA_INVALID_ARGUMENT);
  source.reserved = 1;
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_INVALID_ARGUMENT);
  source = make_source(&bytes);
  source.read_at = NULL;
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_INVALID_ARGUMENT);
  source = make_source(&bytes);
  reader = (surveydata_reader*)&bytes;
  source.struct_size = sizeof(source) - 1;
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_WRONG_SIZE);
  CHECK(reader == NULL);
  source.struct_size = sizeof(source) + 1;
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, &reader),
               SURVEYDATA_WRONG_SIZE);
  source.struct_size = 0;
  CHECK_STATUS(surveydata_reader_open_source(&source, 0, SURVEYDATA_NO_END, NULL),
               SURVEYDATA_WRONG_SIZE);
  CHECK(bytes.released == 0 && bytes.calls == 0);
}

/* ----- Progress */

typedef struct progress_log {
  uint64_t last;
  int calls;
  int cancel_at; /* the call that cancels */
} progress_log;

static int32_t log_progress(void* context, uint64_t offset) {
  progress_log* const log = context;
  CHECK(offset > log->last);
  log->last = offset;
  return ++log->calls == log->cancel_at ? -1 : 0;
}

static void test_progress(void) {
  const size_t size = 5 * 1024 * 1024 + 1000;
  uint8_t* const file = malloc(size);
  surveydata_entry entry = new_entry();
  surveydata_reader* reader;
  progress_log log = {0, 0, 2};
  size_t at;
  size_t count = 0;
  int cancelled = 0;
  memset(file, 0x9C, size);
  for (at = 0; at + 600 <= size; at += 600) make_frame(file + at, 500);
  reader = open_bytes(file, size);
  CHECK_STATUS(surveydata_reader_set_progress(reader, log_progress, &log), SURVEYDATA_OK);
  for (;;) {
    const surveydata_status status =
        surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT | SURVEYDATA_GAP, &entry);
    if (status == SURVEYDATA_CANCELLED) {
      ++cancelled;
      CHECK(log.calls == 2);
      continue;
    }
    if (status == SURVEYDATA_END) break;
    CHECK_STATUS(status, SURVEYDATA_OK);
    CHECK(entry.offset == count / 2 * 600 + (count % 2) * 500);
    ++count;
  }
  CHECK(count == 2 * (size / 600));
  CHECK(cancelled == 1);
  CHECK(log.calls == 5);
  surveydata_reader_close(reader);

  /* Removed again. */
  log.calls = 0;
  reader = open_bytes(file, size);
  CHECK_STATUS(surveydata_reader_set_progress(reader, log_progress, &log), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_set_progress(reader, NULL, NULL), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_OTHER_RECORD, &entry), SURVEYDATA_END);
  CHECK(log.calls == 0);
  surveydata_reader_close(reader);
  CHECK_STATUS(surveydata_reader_set_progress(NULL, log_progress, &log),
               SURVEYDATA_INVALID_ARGUMENT);
  free(file);
}

/* ----- Refused arguments */

static void test_refused_questions(void) {
  uint8_t bytes[FILE_SIZE];
  surveydata_entry entry = new_entry();
  uint64_t size = 0;
  surveydata_reader* reader;
  make_file(bytes);
  reader = open_bytes(bytes, sizeof(bytes));
  CHECK_STATUS(surveydata_reader_next(NULL, SURVEYDATA_ALL_ENTRIES, &entry),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_reader_next(reader, 0, &entry), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES + 1, &entry),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_reader_next(reader, 0x80000001u, &entry), SURVEYDATA_INVALID_ARGUMENT);
  entry.struct_size = sizeof(entry) - 1;
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry),
               SURVEYDATA_WRONG_SIZE);
  entry.struct_size = sizeof(entry) + 1;
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry),
               SURVEYDATA_WRONG_SIZE);
  entry.struct_size = 0;
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry),
               SURVEYDATA_WRONG_SIZE);
  CHECK_STATUS(surveydata_reader_size(NULL, &size), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_reader_size(reader, NULL), SURVEYDATA_INVALID_ARGUMENT);
  /* No entry was skipped. */
  check_entries(reader, SURVEYDATA_ALL_ENTRIES, bytes);
  surveydata_reader_close(reader);
  surveydata_reader_close(NULL);
}

int main(void) {
  test_kinds();
  test_changing_kinds();
  test_headers_that_are_not_wanted_any_more();
  test_many_damaged_headers();
  test_stretches();
  test_limits_of_stretches();
  test_bytes();
  test_files();
  test_sources();
  test_sources_that_fail();
  test_sources_that_cancel();
  test_sources_that_cancel_often();
  test_bad_sources();
  test_progress();
  test_refused_questions();
  return check_result();
}
