#include "tests/support/record_fields.h"

namespace Records {

RECORDS_EACH_LIST()

}  // namespace Records
