/* The version, and the texts of every enumeration. */

#include "tests/c_interface/check.h"

enum { LAST_STATUS = SURVEYDATA_NOT_VALID, LAST_TEXT = SURVEYDATA_TEXT_RULE };

static const char* const unknown = "unknown";

static void test_version(void) { CHECK(strcmp(surveydata_version(), EXPECTED_VERSION) == 0); }

static void test_status_texts(void) {
  int32_t a;
  int32_t b;
  for (a = SURVEYDATA_OK; a <= LAST_STATUS; ++a) {
    const char* const text = surveydata_status_text(a);
    CHECK(text[0] != 0 && strcmp(text, unknown) != 0);
    for (b = SURVEYDATA_OK; b < a; ++b) CHECK(strcmp(text, surveydata_status_text(b)) != 0);
  }
  CHECK(strcmp(surveydata_status_text(SURVEYDATA_OK), "done") == 0);
  CHECK(strcmp(surveydata_status_text(SURVEYDATA_WRONG_CHECKSUM), "wrong checksum") == 0);
  CHECK(strcmp(surveydata_status_text(-1), unknown) == 0);
  CHECK(strcmp(surveydata_status_text(LAST_STATUS + 1), unknown) == 0);
  CHECK(strcmp(surveydata_status_text(INT32_MIN), unknown) == 0);
  CHECK(strcmp(surveydata_status_text(INT32_MAX), unknown) == 0);
}

/* Every value from `first` to `last` has its own text, and other values have none. */
static void check_texts(int32_t what, uint32_t first, uint32_t last) {
  uint32_t a;
  uint32_t b;
  for (a = first; a <= last; ++a) {
    const char* const text = surveydata_text(what, a);
    CHECK(text[0] != 0 && strcmp(text, unknown) != 0);
    for (b = first; b < a; ++b) CHECK(strcmp(text, surveydata_text(what, b)) != 0);
  }
  if (first != 0) CHECK(strcmp(surveydata_text(what, first - 1), unknown) == 0);
  CHECK(strcmp(surveydata_text(what, last + 1), unknown) == 0);
  /* Values are not truncated to 8 or 16 bits. */
  CHECK(strcmp(surveydata_text(what, 0x100 + first), unknown) == 0);
  CHECK(strcmp(surveydata_text(what, 0x10000 + first), unknown) == 0);
  CHECK(strcmp(surveydata_text(what, UINT32_MAX), unknown) == 0);
}

static void test_texts(void) {
  check_texts(SURVEYDATA_TEXT_DAMAGE, SURVEYDATA_DAMAGE_NONE,
              SURVEYDATA_DAMAGE_RUNS_INTO_NEXT_RECORD);
  check_texts(SURVEYDATA_TEXT_BLOCK, 0, 29);
  check_texts(SURVEYDATA_TEXT_RULE, SURVEYDATA_RULE_OUT_OF_RANGE, SURVEYDATA_RULE_PARITY);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_BLOCK, 29), "checksum") == 0);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_DAMAGE, SURVEYDATA_DAMAGE_WRONG_CHECKSUM),
               "wrong checksum") == 0);
  /* No field: an empty text. */
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_REFUSED_FIELD, 0), "") == 0);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_REFUSED_FIELD, 4), "name") == 0);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_REFUSED_FIELD, 29), "list block") == 0);
  CHECK(strcmp(surveydata_text(SURVEYDATA_TEXT_REFUSED_FIELD, 30), unknown) == 0);
  CHECK(strcmp(surveydata_text(0, 1), unknown) == 0);
  CHECK(strcmp(surveydata_text(LAST_TEXT + 1, 1), unknown) == 0);
  CHECK(strcmp(surveydata_text(-1, 1), unknown) == 0);
}

int main(void) {
  test_version();
  test_status_texts();
  test_texts();
  return check_result();
}
