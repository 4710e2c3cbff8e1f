/* The C interface of the installed library, used from C. */

#include <stdio.h>
#include <string.h>

#include <surveydata/c_interface/surveydata.h>

static int failures = 0;

static void expect(int holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "failed: %s\n", what);
  ++failures;
}

static void records_work(void) {
  surveydata_measurement measurement;
  surveydata_measurement decoded;
  surveydata_entry entry;
  uint8_t frame[SURVEYDATA_LONGEST_FRAME];
  size_t size = 0;
  surveydata_reader* reader = NULL;
  memset(&measurement, 0, sizeof(measurement));
  measurement.struct_size = sizeof(measurement);
  measurement.number = 42;
  expect(surveydata_encode(&measurement, frame, sizeof(frame), &size, NULL) == SURVEYDATA_OK,
         "encode");
  expect(surveydata_reader_open_bytes(frame, size, 0, SURVEYDATA_NO_END, &reader) == SURVEYDATA_OK,
         "open");
  entry.struct_size = sizeof(entry);
  decoded.struct_size = sizeof(decoded);
  expect(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry) == SURVEYDATA_OK, "next");
  expect(surveydata_decode(entry.bytes, (size_t)entry.size, &decoded) == SURVEYDATA_OK, "decode");
  expect(decoded.number == 42, "number");
  expect(surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry) == SURVEYDATA_END, "end");
  surveydata_reader_close(reader);
  expect(surveydata_reader_open_file("no/such/file", 0, SURVEYDATA_NO_END, &reader) ==
             SURVEYDATA_NO_SUCH_FILE,
         "a missing file");
}

static void areas_work(void) {
  const double hz[] = {1.0, 2.0};
  const double v[] = {1.0, 1.5};
  surveydata_area_definition definition;
  surveydata_area* area = NULL;
  int32_t inside = 0;
  memset(&definition, 0, sizeof(definition));
  definition.struct_size = sizeof(definition);
  definition.kind = SURVEYDATA_RECTANGLE;
  definition.count = 2;
  definition.hz = hz;
  definition.v = v;
  expect(surveydata_area_create(&definition, &area) == SURVEYDATA_OK, "create");
  expect(surveydata_area_contains(area, 1.5, 1.2, &inside) == SURVEYDATA_OK && inside == 1,
         "contains");
  surveydata_area_destroy(area);
}

int main(void) {
  expect(strcmp(surveydata_status_text(SURVEYDATA_OK), "done") == 0, "text");
  expect(surveydata_version()[0] != 0, "version");
  records_work();
  areas_work();
  if (failures == 0) puts("all is well");
  return failures == 0 ? 0 : 1;
}
