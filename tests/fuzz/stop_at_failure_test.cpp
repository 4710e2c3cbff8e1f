#include <gtest/gtest.h>

#include "tests/fuzz/fuzz_input.h"

// Without this, the targets could not report findings.

namespace {

// As in a target, nothing catches the exception.
void FailInATarget() noexcept {
  LLVMFuzzerInitialize(nullptr, nullptr);
  EXPECT_EQ(1, 2) << "a finding";
}

TEST(FuzzTarget, EndsTheProcessAtTheFirstAssertionThatFails) {
  EXPECT_DEATH(FailInATarget(), "a finding");
}

}  // namespace
