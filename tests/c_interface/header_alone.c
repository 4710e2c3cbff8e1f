/* The header of the C interface compiles alone, twice, and its enumerations are constants. */
#include <surveydata/c_interface/surveydata.h>
/* Again, which does nothing. */
#include <surveydata/c_interface/surveydata.h>

static const surveydata_status header_statuses[] = {SURVEYDATA_OK, SURVEYDATA_NOT_VALID};

surveydata_status header_alone(void);
surveydata_status header_alone(void) {
  surveydata_entry entry;
  entry.struct_size = sizeof(entry);
  entry.offset = SURVEYDATA_NO_END;
  return header_statuses[entry.offset == SURVEYDATA_NONE];
}
