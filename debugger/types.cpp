// Debug information of the library's classes, which a stripped library lacks and callers only
// declare. Compiled with full debug information; contains no code.
#include <surveydata/surveydata.h>
