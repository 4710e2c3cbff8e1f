/* The statuses of files that only some systems have: pipes, devices, folders, files that must not
   be read or written, and disks that are full. */

#define _XOPEN_SOURCE 700

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/c_interface/check.h"
#include "tests/c_interface/frames.h"

enum { FRAME = 100, NOBODY = 65534 };

static char folder[] = "/tmp/surveydata-XXXXXX";

static void make_name(char (*name)[64], const char* file) {
  snprintf(*name, sizeof(*name), "%s/%s", folder, file);
}

static void write_file(const char* name, const uint8_t* bytes, size_t size) {
  FILE* const file = fopen(name, "wb");
  CHECK(file != NULL && fwrite(bytes, 1, size, file) == size);
  CHECK(file != NULL && fclose(file) == 0);
}

/* -1 if there is no such file. */
static long size_of(const char* name) {
  struct stat status;
  return stat(name, &status) == 0 ? (long)status.st_size : -1;
}

static void check_open(const char* name, surveydata_status status) {
  surveydata_reader* reader = (surveydata_reader*)folder;
  CHECK_STATUS(surveydata_reader_open_file(name, 0, SURVEYDATA_NO_END, &reader), status);
  CHECK(reader == NULL);
}

/* The superuser may read every file, so the test drops the privilege. */
static void test_no_permission(void) {
  char name[64];
  uint8_t frame[FRAME];
  const uid_t user = geteuid();
  make_frame(frame, FRAME);
  make_name(&name, "forbidden.rec");
  write_file(name, frame, FRAME);
  CHECK(chmod(name, 0) == 0);
  CHECK(seteuid(user != 0 ? user : NOBODY) == 0);
  check_open(name, SURVEYDATA_NO_PERMISSION);
  CHECK_STATUS(surveydata_append(name, frame, FRAME), SURVEYDATA_NO_PERMISSION);
  CHECK(seteuid(user) == 0);
  CHECK(size_of(name) == FRAME);
  remove(name);
}

static void test_cannot_open(void) {
  char name[64];
  uint8_t frame[FRAME];
  make_frame(frame, FRAME);
  check_open(folder, SURVEYDATA_CANNOT_OPEN);
  CHECK_STATUS(surveydata_append(folder, frame, FRAME), SURVEYDATA_CANNOT_OPEN);
  /* A link to itself. */
  make_name(&name, "loop.rec");
  CHECK(symlink(name, name) == 0);
  check_open(name, SURVEYDATA_CANNOT_OPEN);
  CHECK_STATUS(surveydata_append(name, frame, FRAME), SURVEYDATA_CANNOT_OPEN);
  remove(name);
}

static void test_pipe(void) {
  char name[64];
  uint8_t frame[FRAME];
  surveydata_reader* reader = NULL;
  surveydata_entry entry;
  int pipe_end;
  make_frame(frame, FRAME);
  make_name(&name, "pipe.rec");
  CHECK(mkfifo(name, 0600) == 0);
  pipe_end = open(name, O_RDWR); /* or opening the other end would wait */
  CHECK(pipe_end >= 0);
  entry.struct_size = sizeof(entry);
  CHECK_STATUS(surveydata_reader_open_file(name, 1, SURVEYDATA_NO_END, &reader), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry),
               SURVEYDATA_NO_STRETCHES);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry),
               SURVEYDATA_NO_STRETCHES);
  surveydata_reader_close(reader);
  /* It can be read as a whole, and its size is not known. */
  CHECK(write(pipe_end, frame, FRAME) == FRAME);
  CHECK_STATUS(surveydata_reader_open_file(name, 0, SURVEYDATA_NO_END, &reader), SURVEYDATA_OK);
  CHECK(close(pipe_end) == 0);
  {
    uint64_t size = 7;
    CHECK_STATUS(surveydata_reader_size(reader, &size), SURVEYDATA_OK);
    CHECK(size == 0);
  }
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_OK);
  CHECK(entry.kind == SURVEYDATA_MEASUREMENT && entry.size == FRAME);
  CHECK_STATUS(surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry), SURVEYDATA_END);
  surveydata_reader_close(reader);
  /* It cannot be appended to. */
  pipe_end = open(name, O_RDWR);
  CHECK_STATUS(surveydata_append(name, frame, FRAME), SURVEYDATA_CANNOT_OPEN);
  CHECK(close(pipe_end) == 0);
  remove(name);
}

/* Writing beyond the file size limit fails as on a full disk, also for the superuser. */
static void test_writing_failed(void) {
  char name[64];
  uint8_t frames[3 * FRAME];
  struct rlimit before;
  struct rlimit limit;
  size_t i;
  for (i = 0; i < 3; ++i) make_frame(frames + i * FRAME, FRAME);
  make_name(&name, "full.rec");
  write_file(name, frames, FRAME);
  signal(SIGXFSZ, SIG_IGN);
  CHECK(getrlimit(RLIMIT_FSIZE, &before) == 0);
  limit = before;
  limit.rlim_cur = FRAME + FRAME / 2;
  CHECK(setrlimit(RLIMIT_FSIZE, &limit) == 0);
  CHECK_STATUS(surveydata_append(name, frames, 2 * FRAME), SURVEYDATA_WRITING_FAILED);
  CHECK(size_of(name) == FRAME); /* as it was, though half a frame had room */
  remove(name);
  CHECK_STATUS(surveydata_append(name, frames, 3 * FRAME), SURVEYDATA_WRITING_FAILED);
  CHECK(size_of(name) == -1); /* nor is a new file left */
  CHECK(setrlimit(RLIMIT_FSIZE, &before) == 0);
  CHECK_STATUS(surveydata_append(name, frames, 3 * FRAME), SURVEYDATA_OK);
  CHECK(size_of(name) == 3 * FRAME);
  remove(name);
}

#if defined(__linux__)
/* A device that is always full and cannot be truncated. */
static void test_left_over(void) {
  uint8_t frame[FRAME];
  make_frame(frame, FRAME);
  CHECK_STATUS(surveydata_append("/dev/full", frame, FRAME), SURVEYDATA_LEFT_OVER);
  CHECK(access("/dev/full", F_OK) == 0);
}
#endif

int main(void) {
  CHECK(mkdtemp(folder) != NULL);
  CHECK(chmod(folder, 0777) == 0);
  test_no_permission();
  test_cannot_open();
  test_pipe();
  test_writing_failed();
#if defined(__linux__)
  test_left_over();
#endif
  CHECK(rmdir(folder) == 0);
  return check_result();
}
