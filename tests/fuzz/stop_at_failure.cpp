// Linked into every target: the first failing assertion ends the process.

#include <gtest/gtest.h>

#include "tests/fuzz/fuzz_input.h"

// Not earlier, because the flags of GoogleTest get their defaults before `main`. Nothing catches
// the exception.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  GTEST_FLAG_SET(throw_on_failure, true);
  return 0;
}
