// The classes of the library for debuggers, which a stripped library does not describe and its
// callers only name. Compiled with full debug information and without a line of code.
#include <surveydata/surveydata.h>
