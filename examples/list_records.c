/* Counts what is in a record file, and shows which bytes a new name would change in the first
   measurement that has one, through the C interface. */

#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <surveydata/c_interface/surveydata.h>

/* The bytes of the name in a frame, before and after a change that is not written to the file. */
static surveydata_status preview_name(const surveydata_entry* record, const char* name) {
  uint8_t patched[SURVEYDATA_LONGEST_FRAME];
  surveydata_changes changes = {sizeof(changes), SURVEYDATA_CHANGE_NAME, NULL, 0, 0.0f, 0, 0};
  surveydata_field fields[SURVEYDATA_MOST_FIELDS];
  surveydata_status status;
  size_t count = 0;
  size_t i;
  changes.name = name;
  status = surveydata_patch(record->bytes, (size_t)record->size, &changes, patched);
  if (status == SURVEYDATA_OK) {
    status = surveydata_fields(patched, (size_t)record->size, fields, sizeof(fields[0]),
                               SURVEYDATA_MOST_FIELDS, &count);
  }
  for (i = 0; i < count; ++i) {
    const uint32_t at = fields[i].offset;
    if (memcmp(record->bytes + at, patched + at, fields[i].size) == 0) continue;
    printf("bytes %" PRIu32 " to %" PRIu32 ", %s: %s\n", at, at + fields[i].size - 1,
           fields[i].name, fields[i].value);
  }
  return status;
}

int main(void) {
  unsigned measurements = 0;
  unsigned named = 0;
  unsigned others = 0;
  unsigned damaged = 0;
  uint64_t in_gaps = 0;
  surveydata_reader* reader;
  surveydata_entry entry = {sizeof(entry), 0, 0, 0, 0, 0, NULL};
  surveydata_measurement measurement;
  surveydata_status status =
      surveydata_reader_open_file("valley_drive.rec", 0, SURVEYDATA_NO_END, &reader);
  measurement.struct_size = sizeof(measurement);

  while (status == SURVEYDATA_OK) {
    status = surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry);
    if (status != SURVEYDATA_OK) break;
    switch (entry.kind) {
      case SURVEYDATA_MEASUREMENT:
        status = surveydata_decode(entry.bytes, (size_t)entry.size, &measurement);
        if (status != SURVEYDATA_OK) break;
        ++measurements;
        if (measurement.name[0] != 0 && named++ == 0) {
          printf("%s, at byte %" PRIu64 "\n", measurement.name, entry.offset);
          status = preview_name(&entry, "Base camp");
        }
        break;
      case SURVEYDATA_GAP:
        in_gaps += entry.size;
        break;
      case SURVEYDATA_DAMAGED_HEADER:
        ++damaged;
        break;
      default:
        ++others;
    }
  }
  surveydata_reader_close(reader);
  if (status != SURVEYDATA_END) {
    fprintf(stderr, "valley_drive.rec: %s\n", surveydata_status_text(status));
    return 1;
  }
  printf("%u measurements, %u other records, %u damaged headers, %" PRIu64 " bytes in gaps\n",
         measurements, others, damaged, in_gaps);
  return 0;
}
