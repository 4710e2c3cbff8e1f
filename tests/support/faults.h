#ifndef SURVEYDATA_TESTS_SUPPORT_FAULTS_H_
#define SURVEYDATA_TESTS_SUPPORT_FAULTS_H_

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// \file
/// Fault injection for allocations by `operator new`, and for the file functions of the C runtime,
/// which the linker replaces. Link `heap_faults` for the former, `file_faults` for both.

namespace Faults {

inline constexpr std::size_t kNever = SIZE_MAX;

// --- Memory

/// The number of allocations since the start of the program.
std::size_t Allocations();
std::size_t Releases();
/// The bytes of all allocations since the start of the program.
std::size_t AllocatedBytes();

/// Lets `count` more allocations succeed; `kNever` means all.
void LimitAllocations(std::size_t count);

/// Runs `work`, allowing one more allocation each time, until it succeeds; `afterFailure` checks
/// the state after each failure. Returns the number of failures.
template <class Work, class Check>
std::size_t FailuresOfAChange(Work work, Check afterFailure) {
  for (std::size_t failures = 0;; ++failures) {
    SCOPED_TRACE(testing::Message() << "after " << failures << " allocations");
    bool isDone = false;
    LimitAllocations(failures);
    try {
      work();
      isDone = true;
    } catch (const std::bad_alloc&) {
    }
    LimitAllocations(kNever);
    if (isDone) return failures;
    afterFailure();
  }
}

/// The same for work that keeps nothing when it fails, not even the capacity of a container: checks
/// that everything allocated is released after each failure.
template <class Work, class Check>
std::size_t FailuresBeforeSuccess(Work work, Check afterFailure) {
  std::size_t taken = 0;
  std::size_t released = 0;
  return FailuresOfAChange(
      [&] {
        taken = Allocations();
        released = Releases();
        work();
      },
      [&] {
        EXPECT_EQ(Allocations() - taken, Releases() - released);
        afterFailure();
      });
}

template <class Work>
std::size_t FailuresBeforeSuccess(Work work) {
  return FailuresBeforeSuccess(work, [] {});
}

/// Checks on destruction that everything allocated since construction was released.
class BalanceC {
 public:
  BalanceC() {
    { SCOPED_TRACE("with the first trace GoogleTest takes memory that it keeps"); }
    taken_ = Allocations();
    released_ = Releases();
  }
  BalanceC(const BalanceC&) = delete;
  BalanceC& operator=(const BalanceC&) = delete;
  ~BalanceC() { EXPECT_EQ(Allocations() - taken_, Releases() - released_); }

 private:
  std::size_t taken_;
  std::size_t released_;
};

// --- Files (not on Windows)

/// How a read or a write fails: without effect, or after half of the data.
enum class Extent { kNothing, kHalf };

/// Makes only the file call with this number fail, counting from 0 after this call: `fopen`,
/// `fseek`, `fseeko`, `ftello`, `fread`, `fwrite`, `ftruncate`, `fclose`. A failing close still
/// closes the file. `another` is the number of a second call that fails.
void FailFileCall(std::size_t number, Extent extent = Extent::kNothing,
                  std::size_t another = kNever);
/// Lets all file calls succeed.
void FailNoFileCall();

/// The names of the calls since `FailFileCall` or `FailNoFileCall`.
std::vector<std::string> FileCalls();

/// The number of files opened but not closed since the start of the program.
int OpenFiles();

}  // namespace Faults

#endif  // SURVEYDATA_TESTS_SUPPORT_FAULTS_H_
