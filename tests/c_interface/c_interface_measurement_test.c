/* Measurements and their frames: every function, every status, every boundary. */

#include <math.h>
#include <stdlib.h>

#include "tests/c_interface/check.h"
#include "tests/c_interface/frames.h"

static surveydata_measurement new_measurement(void) {
  surveydata_measurement measurement;
  memset(&measurement, 0, sizeof(measurement));
  measurement.struct_size = sizeof(measurement);
  return measurement;
}

/* Block numbers, as `SURVEYDATA_TEXT_BLOCK` names them. */
enum { BLOCK_TIMES = 1, BLOCK_EXTRA_TIME = 5, BLOCK_CHECKSUM = 29 };

static void append(uint8_t** at, const void* bytes, size_t size) {
  memcpy(*at, bytes, size);
  *at += size;
}
static void append_u8(uint8_t** at, unsigned value) { *(*at)++ = (uint8_t)value; }
static void append_u16(uint8_t** at, unsigned value) {
  store_u16(*at, value);
  *at += 2;
}
static void append_u32(uint8_t** at, uint32_t value) {
  append_u16(at, value & 0xFFFF);
  append_u16(at, value >> 16);
}
static void append_float(uint8_t** at, float value) {
  uint32_t bits;
  memcpy(&bits, &value, sizeof(bits));
  append_u32(at, bits);
}

/* A frame with every block from which decoding stores a value. */
static size_t make_full_frame(uint8_t* frame) {
  uint8_t* at = frame;
  memset(frame, 0, SURVEYDATA_LONGEST_FRAME);
  append(&at, "\x9C\xAE\0\0q", 5);
  append_u16(&at, 2100);
  append_u32(&at, 123456789);
  append_u32(&at, (uint32_t)-5);
  append_u16(&at, 0x33DF);
  append(&at, "\0\0\0\0\0\0\1\6", 8); /* flags: kind 1, status bits 3 and 1 */
  append_u32(&at, 0x4000);            /* status bit 0 */
  {
    static const char name[] = "Punkt 7";
    size_t i;
    for (i = 0; i < 17; ++i) append_u16(&at, i < sizeof(name) ? (uint8_t)name[i] : 0);
    at[-34 + 2] = 0xFC; /* u umlaut */
  }
  append_u32(&at, (uint32_t)-42);
  append_float(&at, 1.75f);
  append_u8(&at, 1);
  append_u8(&at, 1);
  append_u16(&at, 2101);
  append_u32(&at, 77);
  append_u16(&at, 4660);
  at += 26;
  append_u8(&at, 0);
  append_u16(&at, 11);
  append_u16(&at, 12);
  append_u8(&at, 0);
  append_u16(&at, 9);
  append_u16(&at, 15);
  append_u16(&at, SURVEYDATA_DOP_NOT_AVAILABLE);
  append(&at, "\x15\x0E", 2);
  append_u8(&at, 0);
  append_float(&at, 1.5f);
  append_float(&at, -2.5f);
  append_float(&at, 4096.0f);
  append(&at, "\7\1\x09\x08\1\x07\x06\1\x05\0", 10);
  append_u16(&at, 0x3FFF);
  append_u8(&at, 1);
  append_u8(&at, 200);
  append_u8(&at, 201);
  append_u16(&at, 'a');
  append_u16(&at, 0);
  append_u16(&at, 0xD83D); /* a surrogate pair */
  append_u16(&at, 0xDE00);
  append_u16(&at, 0);
  append_u32(&at, (uint32_t)-3);
  append_u16(&at, 0xD800); /* half a pair */
  append_u16(&at, 0);
  append_u8(&at, 1);
  append_u16(&at, 7); /* a control character */
  append_u16(&at, 0);
  append_u8(&at, 202);
  append_u32(&at, 1u << 30);
  append_u16(&at, 300);
  append_u16(&at, 301);
  append_u16(&at, 302);
  append_u8(&at, 2);
  append_u16(&at, 1);
  append_u16(&at, 2);
  store_u16(frame + 2, (unsigned)(at - frame));
  seal_frame(frame);
  return (size_t)(at - frame) + 2;
}

static void test_decode(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  const size_t size = make_full_frame(frame);
  surveydata_measurement m;
  memset(&m, 0xEE, sizeof(m));
  m.struct_size = sizeof(m);
  CHECK_STATUS(surveydata_decode(frame, size, &m), SURVEYDATA_OK);
  CHECK(m.struct_size == sizeof(m) && m.block == BLOCK_CHECKSUM);
  CHECK(m.time_a_week == 2100 && m.time_a_of_week == 123456789);
  CHECK(m.time_b_week == 0 && m.time_b_of_week == -5);
  CHECK(m.extra_time_count == 1 && m.extra_time_week == 2101 && m.extra_time_of_week == 77);
  CHECK(m.set_mask == (SURVEYDATA_HAS_ANTENNA_HEIGHT | SURVEYDATA_HAS_DOPS |
                       SURVEYDATA_HAS_TOTAL_PAIR | SURVEYDATA_HAS_VECTOR | SURVEYDATA_HAS_WORD16 |
                       SURVEYDATA_HAS_SYSTEMS | SURVEYDATA_HAS_VALUE_C | SURVEYDATA_HAS_VALUE_H |
                       SURVEYDATA_HAS_VALUE_I | SURVEYDATA_HAS_LIST));
  CHECK(m.status_mask == (SURVEYDATA_STATUS_BIT_0 | SURVEYDATA_STATUS_BIT_1 |
                          SURVEYDATA_STATUS_BIT_3 | SURVEYDATA_SYSTEM_1 | SURVEYDATA_SYSTEM_2));
  CHECK(m.flags == 2 && m.number == -42);
  CHECK(memcmp(m.name, "P\xC3\xBCnkt 7\0\0", 10) == 0 && m.name[51] == 0);
  CHECK(m.antenna_height == 1.75f && m.antenna_is_vertical == 0);
  CHECK(m.antenna_horizontal_offset == 0.0f);
  CHECK(m.value_count == 2 && m.values[0] == 11 && m.values[1] == 12);
  CHECK(m.hdop == 9 && m.vdop == 15 && m.tdop == SURVEYDATA_DOP_NOT_AVAILABLE);
  CHECK(m.word16 == 4660);
  CHECK(m.total_pair[0] == 0x15 && m.total_pair[1] == 0x0E);
  CHECK(m.system_1_pair[0] == 9 && m.system_1_pair[1] == 8);
  CHECK(m.system_2_pair[0] == 7 && m.system_2_pair[1] == 6);
  CHECK(m.system_3_pair[0] == 5 && m.system_3_pair[1] == 0);
  CHECK(m.vector[0] == 1.5 && m.vector[1] == -2.5 && m.vector[2] == 4096.0);
  CHECK(m.flag_a == 1 && m.flag_e == 1);
  CHECK(m.value_b == 200 && m.value_c == 201 && m.value_d == -3 && m.value_f == 202);
  CHECK(m.value_g == 1 << 30 && m.value_h == 300 && m.value_i == 301);
  CHECK(m.text_a[0] == 'a' && m.text_a[1] == 0 && m.text_a[79] == 0);
  CHECK(m.text_b[0] == 0xD83D && m.text_b[1] == 0xDE00 && m.text_b[2] == 0);
  CHECK(m.text_c[0] == 0xD800 && m.text_c[1] == 0);
  CHECK(m.text_d[0] == 7 && m.text_d[1] == 0 && m.text_d[29] == 0);
  CHECK(m.list_head == 302 && m.list_count == 2 && m.list_entries[0] == 1 &&
        m.list_entries[1] == 2 && m.list_entries[2] == 0);
  CHECK(m.reserved == 0 && m.reserved_at_end[0] == 0 && m.reserved_at_end[2] == 0);
}

/* The fields that a frame without blocks does not set have their defaults. */
static void test_defaults(void) {
  uint8_t frame[19];
  surveydata_measurement m;
  memset(&m, 0xEE, sizeof(m));
  m.struct_size = sizeof(m);
  CHECK_STATUS(surveydata_decode(frame, make_frame(frame, sizeof(frame)), &m), SURVEYDATA_OK);
  CHECK(m.antenna_is_vertical == 1);
  CHECK(m.hdop == SURVEYDATA_DOP_NOT_AVAILABLE && m.vdop == SURVEYDATA_DOP_NOT_AVAILABLE &&
        m.tdop == SURVEYDATA_DOP_NOT_AVAILABLE);
  m.antenna_is_vertical = 0;
  m.hdop = m.vdop = m.tdop = 0;
  m.block = 0;
  {
    const surveydata_measurement zeros = new_measurement();
    CHECK(memcmp(&m, &zeros, sizeof(m)) == 0);
  }
}

static void test_decode_refuses(void) {
  uint8_t frame[600];
  surveydata_measurement m = new_measurement();
  surveydata_measurement before;
  m.number = 7;
  before = m;
  make_frame(frame, 100);
  CHECK_STATUS(surveydata_decode(NULL, 100, &m), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_decode(frame, 100, NULL), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_decode(frame, 0, &m), SURVEYDATA_CUT);
  CHECK_STATUS(surveydata_decode(frame, 4, &m), SURVEYDATA_CUT);
  CHECK_STATUS(surveydata_decode(frame, 99, &m), SURVEYDATA_CUT);
  CHECK(memcmp(&m, &before, sizeof(m)) == 0);
  CHECK_STATUS(surveydata_decode(frame, 100, &m), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_decode(frame, 600, &m), SURVEYDATA_OK);
  m = before;
  frame[50] ^= 1;
  CHECK_STATUS(surveydata_decode(frame, 100, &m), SURVEYDATA_WRONG_CHECKSUM);
  frame[50] ^= 1;
  make_record(frame, 100, 112);
  CHECK_STATUS(surveydata_decode(frame, 100, &m), SURVEYDATA_NO_MEASUREMENT);
  make_frame(frame, 500);
  CHECK_STATUS(surveydata_decode(frame, 500, &m), SURVEYDATA_OK);
  m = before;
  make_frame(frame, 501);
  CHECK_STATUS(surveydata_decode(frame, 501, &m), SURVEYDATA_NO_MEASUREMENT);
  CHECK(memcmp(&m, &before, sizeof(m)) == 0);
  /* Too short for times and flags. */
  make_frame(frame, 18);
  CHECK_STATUS(surveydata_decode(frame, 18, &m), SURVEYDATA_BLOCK_DOES_NOT_FIT);
  CHECK(m.block == BLOCK_TIMES && m.number == 0);

  m.struct_size = sizeof(m) - 1;
  CHECK_STATUS(surveydata_decode(frame, 18, &m), SURVEYDATA_WRONG_SIZE);
  m.struct_size = sizeof(m) + 1;
  CHECK_STATUS(surveydata_decode(frame, 18, &m), SURVEYDATA_WRONG_SIZE);
  m.struct_size = 0;
  CHECK_STATUS(surveydata_decode(frame, 18, &m), SURVEYDATA_WRONG_SIZE);
}

/* The blocks before the one that does not fit are stored. */
static void test_block_that_does_not_fit(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  surveydata_measurement m = new_measurement();
  make_frame(frame, 17 + 38 + 1 + 2);
  store_u16(frame + FRAME_FLAGS_AT, 0x000A);
  frame[FRAME_BLOCKS_AT] = 'x';
  frame[FRAME_BLOCKS_AT + 38] = 2; /* two further times are too many */
  seal_frame(frame);
  CHECK_STATUS(surveydata_decode(frame, sizeof(frame), &m), SURVEYDATA_BLOCK_DOES_NOT_FIT);
  CHECK(m.block == BLOCK_EXTRA_TIME && strcmp(m.name, "x") == 0 && m.extra_time_count == 0);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_BLOCK, m.block), "extra time") == 0);
}

/* ----- Encoding */

static void test_encode(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  uint8_t again[SURVEYDATA_LONGEST_FRAME + 1];
  surveydata_measurement m = new_measurement();
  surveydata_measurement decoded = new_measurement();
  size_t size = 0;
  uint32_t field = 7;
  CHECK_STATUS(surveydata_decode(frame, make_full_frame(frame), &m), SURVEYDATA_OK);
  again[SURVEYDATA_LONGEST_FRAME] = 0xEE;
  CHECK_STATUS(surveydata_encode(&m, again, SURVEYDATA_LONGEST_FRAME, &size, &field),
               SURVEYDATA_OK);
  CHECK(field == 0 && again[SURVEYDATA_LONGEST_FRAME] == 0xEE);
  CHECK(size == load_u16(again + 2) + 2);
  CHECK_STATUS(surveydata_decode(again, size, &decoded), SURVEYDATA_OK);
  CHECK(memcmp(&m, &decoded, sizeof(m)) == 0);
  /* The pointer to the refused field may be null. */
  CHECK_STATUS(surveydata_encode(&m, again, SURVEYDATA_LONGEST_FRAME + 1, &size, NULL),
               SURVEYDATA_OK);
  /* Nothing is present: the shortest frame. */
  m = new_measurement();
  CHECK_STATUS(surveydata_encode(&m, again, SURVEYDATA_LONGEST_FRAME, &size, &field),
               SURVEYDATA_OK);
  CHECK(size == 19);
}

static void test_encode_refuses(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  surveydata_measurement m = new_measurement();
  size_t size = 7;
  uint32_t field = 7;
  memset(frame, 0xEE, sizeof(frame));
  CHECK_STATUS(surveydata_encode(NULL, frame, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_encode(&m, NULL, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), NULL, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame) - 1, &size, &field),
               SURVEYDATA_BUFFER_TOO_SMALL);
  m.struct_size = sizeof(m) - 1;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field), SURVEYDATA_WRONG_SIZE);
  m.struct_size = sizeof(m) + 1;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field), SURVEYDATA_WRONG_SIZE);
  CHECK(size == 7 && field == 7 && frame[0] == 0xEE);
  /* Bits that do not exist, and members that are reserved for later versions. */
  m = new_measurement();
  m.set_mask = 1;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  m.set_mask = 0x0800;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  m = new_measurement();
  m.status_mask = 0x0080;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  m = new_measurement();
  m.reserved = 1;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
  m = new_measurement();
  m.reserved_at_end[2] = 1;
  CHECK_STATUS(surveydata_encode(&m, frame, sizeof(frame), &size, &field),
               SURVEYDATA_INVALID_ARGUMENT);
}

/* Each field that is refused is named. `name` is the library's name of the field. */
static void check_refused(const surveydata_measurement* m, surveydata_status status,
                          const char* name) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  size_t size = 7;
  uint32_t field = 0;
  CHECK_STATUS(surveydata_encode(m, frame, sizeof(frame), &size, &field), status);
  CHECK(size == 0);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_REFUSED_FIELD, field), name) == 0);
}

static void check_accepted(const surveydata_measurement* m) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  size_t size = 0;
  uint32_t field = 7;
  CHECK_STATUS(surveydata_encode(m, frame, sizeof(frame), &size, &field), SURVEYDATA_OK);
  CHECK(size >= 19 && field == 0);
}

static void fill_text(uint16_t* text, size_t count) {
  size_t i;
  for (i = 0; i < count; ++i) text[i] = 'x';
}

static void test_fields_without_place(void) {
  const surveydata_status no_place = SURVEYDATA_NO_PLACE;
  surveydata_measurement m = new_measurement();
  m.time_b_week = 1;
  check_refused(&m, no_place, "week of time B");
  m = new_measurement();
  m.flags = SURVEYDATA_STATUS_BIT_0;
  m.status_mask = SURVEYDATA_STATUS_BIT_2;
  check_refused(&m, no_place, "status bit 2");
  m = new_measurement();
  m.flags = 3;
  check_refused(&m, no_place, "flags");
  m.flags = 2;
  check_accepted(&m);

  m = new_measurement();
  memset(m.name, 'x', 17);
  check_accepted(&m);
  m.name[17] = 'x';
  check_refused(&m, no_place, "name");
  memset(m.name, 'x', 49);
  check_refused(&m, no_place, "name");
  memset(m.name, 'x', sizeof(m.name)); /* no terminator */
  check_refused(&m, no_place, "name");
  m = new_measurement();
  m.name[0] = (char)0xC0; /* not the shortest form */
  m.name[1] = (char)0xAF;
  check_refused(&m, no_place, "name");

  m = new_measurement();
  m.set_mask = SURVEYDATA_HAS_ANTENNA_HEIGHT;
  check_accepted(&m);
  m.antenna_horizontal_offset = 0.5f;
  check_refused(&m, no_place, "horizontal offset");
  m = new_measurement();
  m.extra_time_count = 1;
  check_accepted(&m);
  m.extra_time_count = 2;
  check_refused(&m, no_place, "extra time");
  m = new_measurement();
  m.value_count = 2;
  check_accepted(&m);
  m.value_count = 1;
  check_refused(&m, no_place, "values");
  m.value_count = 3;
  check_refused(&m, no_place, "values");
  m = new_measurement();
  m.set_mask = SURVEYDATA_HAS_VECTOR;
  m.vector[2] = 0.5;
  check_accepted(&m);
  m.vector[2] = 0.1;
  check_refused(&m, no_place, "vector");

  m = new_measurement();
  m.set_mask = SURVEYDATA_HAS_SYSTEMS;
  check_refused(&m, no_place, "system 1 pair"); /* no system at all */
  m.status_mask = SURVEYDATA_SYSTEM_1;
  check_accepted(&m);
  m.set_mask = 0;
  check_refused(&m, no_place, "system 1 pair");
  m.set_mask = SURVEYDATA_HAS_SYSTEMS;
  m.status_mask = SURVEYDATA_SYSTEM_2;
  check_refused(&m, no_place, "system 2 pair"); /* present, but its second value is 0 */
  m.system_2_pair[1] = 1;
  check_accepted(&m);
  m.status_mask = SURVEYDATA_SYSTEM_3;
  check_refused(&m, no_place, "system 2 pair"); /* not present, but its second value is 1 */
  m.system_2_pair[1] = 0;
  m.system_2_pair[0] = 4; /* such a pair may be stored */
  check_refused(&m, no_place, "system 3 pair");
  m.system_3_pair[1] = 1;
  check_accepted(&m);
  m.status_mask = SURVEYDATA_SYSTEM_1;
  check_refused(&m, no_place, "system 3 pair");

  m = new_measurement();
  m.flag_a = 1;
  check_accepted(&m);
  m.flag_a = 2;
  check_refused(&m, no_place, "flag A");
  m = new_measurement();
  m.flag_e = 2;
  check_refused(&m, no_place, "flag E");
  m = new_measurement();
  m.value_b = 255;
  check_accepted(&m);
  m.value_b = 256;
  check_refused(&m, no_place, "value B");
  m = new_measurement();
  m.set_mask = SURVEYDATA_HAS_VALUE_C;
  check_refused(&m, no_place, "value C"); /* 0 is not present */
  m.value_c = 255;
  check_accepted(&m);
  m.value_c = 256;
  check_refused(&m, no_place, "value C");
  m.set_mask = 0; /* left out */
  check_accepted(&m);

  m = new_measurement();
  m.set_mask = SURVEYDATA_HAS_LIST;
  m.list_count = 31;
  check_accepted(&m);
  m.list_count = 32;
  check_refused(&m, no_place, "list block");

  m = new_measurement();
  fill_text(m.text_a, 79);
  check_accepted(&m);
  fill_text(m.text_a, 80);
  check_refused(&m, no_place, "text A");
  m = new_measurement();
  fill_text(m.text_b, 80);
  check_refused(&m, no_place, "text B");
  m = new_measurement();
  fill_text(m.text_c, 80);
  check_refused(&m, no_place, "text C");
  m = new_measurement();
  fill_text(m.text_d, 29);
  check_accepted(&m);
  fill_text(m.text_d, 30);
  check_refused(&m, no_place, "text D");
}

/* A frame holds 49 bytes of a name, which may have no zero byte after them. */
static void test_longest_names(void) {
  surveydata_measurement m = new_measurement();
  size_t i;
  for (i = 0; i < 16; ++i) memcpy(m.name + 3 * i, "\xE2\x82\xAC", 3);
  m.name[48] = 'x';
  check_accepted(&m);
  m.name[49] = 'x';
  check_refused(&m, SURVEYDATA_NO_PLACE, "name");
  m.name[50] = 'x';
  check_refused(&m, SURVEYDATA_NO_PLACE, "name");
  m.name[51] = 'x'; /* without any zero */
  check_refused(&m, SURVEYDATA_NO_PLACE, "name");
  m.name[49] = 0; /* nothing counts after it */
  check_accepted(&m);
}

/* Three texts of 79 units are 480 bytes, which leave 20: the frame's 19 bytes and the second flags
   word have no room. */
static void test_too_long(void) {
  surveydata_measurement m = new_measurement();
  fill_text(m.text_a, 79);
  fill_text(m.text_b, 79);
  fill_text(m.text_c, 79);
  check_refused(&m, SURVEYDATA_TOO_LONG, "text C");
  m.text_c[78] = 0; /* 499 bytes */
  check_accepted(&m);
  m.value_f = 1; /* 500 */
  check_accepted(&m);
  m.flag_e = 1; /* 501; the first that has no room, in the order of the frame */
  check_refused(&m, SURVEYDATA_TOO_LONG, "value F");
}

/* ----- Changes */

static surveydata_changes new_changes(uint32_t which) {
  surveydata_changes changes;
  memset(&changes, 0, sizeof(changes));
  changes.struct_size = sizeof(changes);
  changes.which = which;
  return changes;
}

static void test_patch(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  uint8_t patched[SURVEYDATA_LONGEST_FRAME];
  const size_t size = make_full_frame(frame);
  surveydata_changes changes = new_changes(SURVEYDATA_CHANGE_NAME);
  surveydata_measurement before = new_measurement();
  surveydata_measurement after = new_measurement();
  CHECK_STATUS(surveydata_decode(frame, size, &before), SURVEYDATA_OK);
  memset(patched, 0xEE, sizeof(patched));
  changes.name = "T\xC3\xBCr";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_OK);
  CHECK(patched[size] == 0xEE);
  CHECK_STATUS(surveydata_decode(patched, size, &after), SURVEYDATA_OK);
  CHECK(strcmp(after.name, "T\xC3\xBCr") == 0);
  memcpy(after.name, before.name, sizeof(before.name));
  CHECK(memcmp(&before, &after, sizeof(before)) == 0);

  changes = new_changes(SURVEYDATA_CHANGE_NUMBER);
  changes.number = INT32_MIN;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_decode(patched, size, &after), SURVEYDATA_OK);
  CHECK(after.number == INT32_MIN);
  after.number = before.number;
  CHECK(memcmp(&before, &after, sizeof(before)) == 0);

  changes = new_changes(SURVEYDATA_CHANGE_ANTENNA_HEIGHT);
  changes.antenna_height = -0.25f;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_decode(patched, size, &after), SURVEYDATA_OK);
  CHECK(after.antenna_height == -0.25f && after.antenna_is_vertical == 1);
  after.antenna_height = before.antenna_height;
  after.antenna_is_vertical = before.antenna_is_vertical;
  CHECK(memcmp(&before, &after, sizeof(before)) == 0);

  /* All at once, in place; bytes that do not belong to a change keep their values. */
  changes = new_changes(SURVEYDATA_CHANGE_NAME | SURVEYDATA_CHANGE_NUMBER |
                        SURVEYDATA_CHANGE_ANTENNA_HEIGHT);
  changes.name = "";
  changes.number = 5;
  changes.antenna_height = 2.0f;
  changes.is_slant = 1;
  memcpy(patched, frame, sizeof(frame));
  CHECK_STATUS(surveydata_patch(patched, size, &changes, patched), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_decode(patched, size, &after), SURVEYDATA_OK);
  CHECK(after.name[0] == 0 && after.number == 5 && after.antenna_height == 2.0f &&
        after.antenna_is_vertical == 0);
  {
    /* Only name, number, height and checksum change: all other bytes stay the same. */
    size_t i;
    for (i = 0; i < size - 2; ++i) {
      const int is_changed = 29 <= i && i < 72;
      CHECK(is_changed || patched[i] == frame[i]);
    }
  }
  /* No change at all. */
  changes = new_changes(0);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_OK);
  CHECK(memcmp(patched, frame, size) == 0);
}

static void test_patch_refuses(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  uint8_t patched[SURVEYDATA_LONGEST_FRAME];
  const size_t size = make_full_frame(frame);
  surveydata_changes changes = new_changes(SURVEYDATA_CHANGE_NUMBER);
  memset(patched, 0xEE, sizeof(patched));
  CHECK_STATUS(surveydata_patch(NULL, size, &changes, patched), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_patch(frame, size, NULL, patched), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, NULL), SURVEYDATA_INVALID_ARGUMENT);
  changes.struct_size = sizeof(changes) - 1;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_WRONG_SIZE);
  changes.struct_size = sizeof(changes) + 1;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_WRONG_SIZE);
  changes = new_changes(8);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_INVALID_ARGUMENT);
  changes = new_changes(0);
  changes.reserved = 1;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_INVALID_ARGUMENT);
  changes = new_changes(SURVEYDATA_CHANGE_NAME);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_INVALID_ARGUMENT);

  changes.name = "12345678901234567";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, frame), SURVEYDATA_OK);
  changes.name = "123456789012345678";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  /* 16 units of three bytes each and one of one byte are 49 bytes. */
  changes.name =
      "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC"
      "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC"
      "\xE2\x82\xAC\xE2\x82\xACx";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, frame), SURVEYDATA_OK);
  changes.name =
      "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC"
      "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC"
      "\xE2\x82\xAC\xE2\x82\xAC\xC3\xBC";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  changes.name = "\xC0\xAF"; /* not the shortest form */
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  changes.name = "\xF0\x9F\x98\x80"; /* beyond 16 bits */
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  changes.name = "\x80";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);

  changes = new_changes(SURVEYDATA_CHANGE_ANTENNA_HEIGHT);
  changes.antenna_height = (float)INFINITY;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  changes.antenna_height = (float)NAN;
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);

  /* Frames that lack the block of a change, one after the other. */
  changes.antenna_height = 1.0f;
  make_frame(frame, 17 + 38 + 2);
  store_u16(frame + FRAME_FLAGS_AT, 0x0002);
  seal_frame(frame);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  changes = new_changes(SURVEYDATA_CHANGE_NUMBER);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, frame), SURVEYDATA_OK);
  make_frame(frame, 17 + 5 + 2);
  store_u16(frame + FRAME_FLAGS_AT, 0x0004);
  seal_frame(frame);
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);
  changes = new_changes(SURVEYDATA_CHANGE_NAME);
  changes.name = "x";
  CHECK_STATUS(surveydata_patch(frame, size, &changes, patched), SURVEYDATA_NO_PLACE);

  /* Frames that do not decode. */
  CHECK_STATUS(surveydata_patch(frame, 23, &changes, patched), SURVEYDATA_CUT);
  store_u16(frame + FRAME_FLAGS_AT, 0x0002);
  CHECK_STATUS(surveydata_patch(frame, 24, &changes, patched), SURVEYDATA_WRONG_CHECKSUM);
  seal_frame(frame);
  CHECK_STATUS(surveydata_patch(frame, 24, &changes, patched), SURVEYDATA_BLOCK_DOES_NOT_FIT);
  make_record(frame, 24, 112);
  CHECK_STATUS(surveydata_patch(frame, 24, &changes, patched), SURVEYDATA_NO_MEASUREMENT);
  {
    size_t i;
    for (i = 0; i < sizeof(patched); ++i) CHECK(patched[i] == 0xEE);
  }
}

/* ----- Fields */

static const surveydata_field* find_field(const surveydata_field* fields, size_t count,
                                          const char* block, const char* name) {
  size_t i;
  for (i = 0; i < count; ++i) {
    if (strcmp(fields[i].block_name, block) == 0 && strcmp(fields[i].name, name) == 0) {
      return &fields[i];
    }
  }
  CHECK(!"field not found");
  return &fields[0];
}

/* Every byte belongs to one field, in order. */
static void check_cover(const surveydata_field* fields, size_t count, size_t size) {
  size_t at = 0;
  size_t i;
  for (i = 0; i < count; ++i) {
    CHECK(fields[i].offset == at && fields[i].size > 0);
    CHECK(fields[i].block_name != NULL && fields[i].name != NULL && fields[i].unit != NULL);
    CHECK(strcmp(fields[i].block_name, surveydata_text(SURVEYDATA_TEXT_BLOCK, fields[i].block)) ==
          0);
    CHECK(memchr(fields[i].value, 0, sizeof(fields[i].value)) != NULL);
    at += fields[i].size;
  }
  CHECK(at == size);
}

static void test_fields(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  const size_t size = make_full_frame(frame);
  surveydata_field fields[SURVEYDATA_MOST_FIELDS];
  const surveydata_field* field;
  size_t count = 0;
  memset(fields, 0xEE, sizeof(fields));
  CHECK_STATUS(surveydata_fields(frame, sizeof(frame), fields, sizeof(fields[0]),
                                 SURVEYDATA_MOST_FIELDS, &count),
               SURVEYDATA_OK);
  check_cover(fields, count, size);
  field = find_field(fields, count, "header", "length");
  CHECK(field->offset == 2 && field->size == 2 && field->type == SURVEYDATA_FIELD_UNSIGNED);
  CHECK(field->number == (double)size - 2 && field->unit[0] == 0);
  field = find_field(fields, count, "times", "time B, time of week");
  CHECK(field->type == SURVEYDATA_FIELD_SIGNED && field->number == -5.0);
  CHECK(strcmp(field->unit, "ms") == 0 && strcmp(field->value, "-5") == 0);
  field = find_field(fields, count, "times", "flags word 1");
  CHECK(field->type == SURVEYDATA_FIELD_BITS && field->number == 0x33DF);
  CHECK(strcmp(field->value, "0x33df") == 0);
  field = find_field(fields, count, "name", "name");
  CHECK(field->type == SURVEYDATA_FIELD_TEXT && field->size == 34 && field->number == 0.0);
  CHECK(strcmp(field->value, "P\xC3\xBCnkt 7") == 0);
  field = find_field(fields, count, "antenna height", "height");
  CHECK(field->type == SURVEYDATA_FIELD_FLOAT && field->number == 1.75);
  CHECK(strcmp(field->unit, "m") == 0 && strcmp(field->value, "1.75") == 0);
  field = find_field(fields, count, "DOPs", "TDOP");
  CHECK(field->number == SURVEYDATA_DOP_NOT_AVAILABLE && strcmp(field->unit, "0.1") == 0);
  field = find_field(fields, count, "vector", "z");
  CHECK(field->number == 4096.0 && strcmp(field->value, "4096") == 0);
  field = find_field(fields, count, "word 16", "ignored");
  CHECK(field->type == SURVEYDATA_FIELD_BYTES && field->size == 26 && field->value[0] == 0);
  field = find_field(fields, count, "text B", "text");
  CHECK(field->size == 6 && strcmp(field->value, "\xF0\x9F\x98\x80") == 0);
  field = find_field(fields, count, "text C", "text");
  CHECK(field->size == 4 && strcmp(field->value, "\xEF\xBF\xBD") == 0);
  field = find_field(fields, count, "text D", "text");
  CHECK(strcmp(field->value, "\xEF\xBF\xBD") == 0);
  field = find_field(fields, count, "checksum", "checksum");
  CHECK(field->offset == size - 2 && field->number == load_u16(frame + size - 2));
  CHECK(field == &fields[count - 1]);
}

/* How numbers are written as text. */
static void test_values_for_people(void) {
  static const struct {
    float height;
    const char* text;
  } cases[] = {{0.0f, "0"},
               {-0.0f, "-0"},
               {1.5f, "1.5"},
               {0.1f, "0.1"},
               {1e-4f, "0.0001"},
               {9.9e-5f, "9.9e-05"},
               {1234567.0f, "1234567"},
               {1e7f, "1e+07"},
               {-3.4028235e38f, "-3.4028235e+38"}};
  size_t i;
  for (i = 0; i < sizeof(cases) / sizeof(cases[0]); ++i) {
    uint8_t frame[24];
    uint8_t* at = frame + FRAME_BLOCKS_AT;
    surveydata_field fields[20];
    size_t count = 0;
    make_frame(frame, sizeof(frame));
    store_u16(frame + FRAME_FLAGS_AT, 0x0004);
    append_float(&at, cases[i].height);
    seal_frame(frame);
    CHECK_STATUS(surveydata_fields(frame, sizeof(frame), fields, sizeof(fields[0]), 20, &count),
                 SURVEYDATA_OK);
    CHECK(strcmp(find_field(fields, count, "antenna height", "height")->value, cases[i].text) == 0);
  }
}

/* Texts of every length up to the longest, of units that take three bytes each. */
static void test_longest_texts(void) {
  unsigned units;
  for (units = 0; units <= 80; ++units) {
    uint8_t frame[SURVEYDATA_LONGEST_FRAME];
    uint8_t* at;
    surveydata_field fields[20];
    const surveydata_field* field;
    size_t count = 0;
    unsigned i;
    make_frame(frame, 17 + 2 + 160 + 2);
    store_u16(frame + FRAME_FLAGS_AT, 0x2000);
    at = frame + FRAME_BLOCKS_AT;
    append_u16(&at, 0x0008);
    for (i = 0; i < units; ++i) append_u16(&at, 0x20AC);
    seal_frame(frame);
    CHECK_STATUS(surveydata_fields(frame, sizeof(frame), fields, sizeof(fields[0]), 20, &count),
                 SURVEYDATA_OK);
    check_cover(fields, count, 181);
    field = find_field(fields, count, "text A", "text");
    CHECK(field->size == (units < 80 ? 2 * units + 2 : 160));
    CHECK(strlen(field->value) == 3 * (units < 80 ? units : 79u));
  }
}

static void test_array_of_fields(void) {
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  const size_t size = make_full_frame(frame);
  surveydata_field fields[SURVEYDATA_MOST_FIELDS];
  surveydata_field untouched;
  size_t all = 0;
  size_t count = 0;
  memset(&untouched, 0xEE, sizeof(untouched));
  CHECK_STATUS(surveydata_fields(frame, size, NULL, sizeof(fields[0]), 0, &all), SURVEYDATA_OK);
  CHECK(all > 40 && all < SURVEYDATA_MOST_FIELDS);
  memset(fields, 0xEE, sizeof(fields));
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]), all - 1, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK(count == all && memcmp(&fields[all - 1], &untouched, sizeof(untouched)) == 0);
  check_cover(fields, all - 1, size - 2);
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]), 0, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]), all, &count),
               SURVEYDATA_OK);
  CHECK(memcmp(&fields[all], &untouched, sizeof(untouched)) == 0);

  CHECK_STATUS(surveydata_fields(NULL, size, fields, sizeof(fields[0]), all, &count),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_fields(frame, size, NULL, sizeof(fields[0]), all, &count),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]), all, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]) - 1, all, &count),
               SURVEYDATA_WRONG_SIZE);
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]) + 1, all, &count),
               SURVEYDATA_WRONG_SIZE);
  count = 7;
  CHECK_STATUS(surveydata_fields(frame, size - 1, fields, sizeof(fields[0]), all, &count),
               SURVEYDATA_CUT);
  frame[20] ^= 1;
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]), all, &count),
               SURVEYDATA_WRONG_CHECKSUM);
  frame[4] ^= 1;
  CHECK_STATUS(surveydata_fields(frame, size, fields, sizeof(fields[0]), all, &count),
               SURVEYDATA_NO_MEASUREMENT);
  CHECK(count == 7);
}

static void test_fields_that_do_not_fit(void) {
  uint8_t frame[40];
  surveydata_field fields[20];
  size_t count = 0;
  make_frame(frame, sizeof(frame));
  store_u16(frame + FRAME_FLAGS_AT, 0x0002);
  seal_frame(frame);
  CHECK_STATUS(surveydata_fields(frame, sizeof(frame), fields, sizeof(fields[0]), 20, &count),
               SURVEYDATA_OK);
  check_cover(fields, count, sizeof(frame));
  CHECK(strcmp(fields[count - 2].name, "does not fit") == 0);
  CHECK(strcmp(fields[count - 2].block_name, "name") == 0);
  CHECK(fields[count - 2].offset == 17 && fields[count - 2].size == 21);
  CHECK(fields[count - 2].type == SURVEYDATA_FIELD_BYTES);
  /* Bytes after the last block. */
  make_frame(frame, sizeof(frame));
  CHECK_STATUS(surveydata_fields(frame, sizeof(frame), fields, sizeof(fields[0]), 20, &count),
               SURVEYDATA_OK);
  check_cover(fields, count, sizeof(frame));
  CHECK(strcmp(fields[count - 2].block_name, "unused") == 0 && fields[count - 2].size == 21);
}

/* ----- Appending */

static long file_size(const char* name) {
  FILE* const file = fopen(name, "rb");
  long size = -1;
  if (file == NULL) return size;
  if (fseek(file, 0, SEEK_END) == 0) size = ftell(file);
  fclose(file);
  return size;
}

static void test_append(void) {
  static const char name[] = "measurement_test.rec";
  uint8_t records[100];
  size_t size = make_frame(records, 40);
  size += make_record(records + 40, 7, 9);
  remove(name);
  CHECK_STATUS(surveydata_append(NULL, records, size), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_append(name, NULL, 1), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_append(name, records, size - 1), SURVEYDATA_NO_RECORDS);
  CHECK_STATUS(surveydata_append(name, records + 1, size - 1), SURVEYDATA_NO_RECORDS);
  CHECK(file_size(name) == -1);
  CHECK_STATUS(surveydata_append(name, records, size), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_append(name, records, size), SURVEYDATA_OK);
  CHECK(file_size(name) == 2 * 47);
  CHECK_STATUS(surveydata_append(name, NULL, 0), SURVEYDATA_OK);
  CHECK(file_size(name) == 2 * 47);
  CHECK_STATUS(surveydata_append("no/such/folder.rec", records, size), SURVEYDATA_NO_SUCH_FILE);
  remove(name);
}

int main(void) {
  test_decode();
  test_defaults();
  test_decode_refuses();
  test_block_that_does_not_fit();
  test_encode();
  test_encode_refuses();
  test_fields_without_place();
  test_longest_names();
  test_too_long();
  test_patch();
  test_patch_refuses();
  test_fields();
  test_values_for_people();
  test_longest_texts();
  test_array_of_fields();
  test_fields_that_do_not_fit();
  test_append();
  return check_result();
}
