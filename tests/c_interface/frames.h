#ifndef SURVEYDATA_TESTS_C_INTERFACE_FRAMES_H_
#define SURVEYDATA_TESTS_C_INTERFACE_FRAMES_H_

#include <stddef.h>
#include <stdint.h>
#include <string.h>

/* Frames for the tests in C. */

enum { FRAME_FLAGS_AT = 15, FRAME_BLOCKS_AT = 17 };

static inline void store_u16(uint8_t* to, unsigned value) {
  to[0] = (uint8_t)(value & 0xFF);
  to[1] = (uint8_t)(value >> 8);
}

static inline unsigned load_u16(const uint8_t* from) { return from[0] + 256u * from[1]; }

/* Writes the checksum of a frame. */
static inline void seal_frame(uint8_t* frame) {
  const size_t length = load_u16(frame + 2);
  unsigned sum = 0;
  size_t i;
  for (i = 2; i < length; ++i) sum += frame[i];
  store_u16(frame + length, (0x10000u - (sum & 0xFFFFu)) & 0xFFFFu);
}

/* A record of `size` bytes: header, zeros and checksum. */
static inline size_t make_record(uint8_t* to, size_t size, uint8_t type) {
  memset(to, 0, size);
  to[0] = 0x9C;
  to[1] = 0xAE;
  store_u16(to + 2, (unsigned)(size - 2));
  to[4] = type;
  seal_frame(to);
  return size;
}

/* A measurement without blocks. */
static inline size_t make_frame(uint8_t* to, size_t size) { return make_record(to, size, 113); }

#endif /* SURVEYDATA_TESTS_C_INTERFACE_FRAMES_H_ */
