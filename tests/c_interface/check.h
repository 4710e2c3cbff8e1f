#ifndef SURVEYDATA_TESTS_C_INTERFACE_CHECK_H_
#define SURVEYDATA_TESTS_C_INTERFACE_CHECK_H_

#include <stdio.h>
#include <string.h>

#include <surveydata/c_interface/surveydata.h>

/* Checks of the tests in C. A check that fails is reported, and the test continues; `check_result`
   is what `main` returns. */

static int check_count = 0;
static int check_failures = 0;

static inline void check(int holds, const char* what, const char* file, int line) {
  ++check_count;
  if (holds) return;
  ++check_failures;
  fprintf(stderr, "%s:%d: not so: %s\n", file, line, what);
}

static inline void check_status(surveydata_status actual, surveydata_status expected,
                                const char* what, const char* file, int line) {
  ++check_count;
  if (actual == expected) return;
  ++check_failures;
  fprintf(stderr, "%s:%d: %s: %d (%s) instead of %d (%s)\n", file, line, what, (int)actual,
          surveydata_status_text(actual), (int)expected, surveydata_status_text(expected));
}

#define CHECK(condition) check((condition) != 0, #condition, __FILE__, __LINE__)
#define CHECK_STATUS(call, expected) check_status(call, expected, #call, __FILE__, __LINE__)

static int check_result(void) {
  printf("%d checks, %d failures\n", check_count, check_failures);
  return check_failures != 0 || check_count == 0;
}

#endif /* SURVEYDATA_TESTS_C_INTERFACE_CHECK_H_ */
