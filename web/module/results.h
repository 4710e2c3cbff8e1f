#ifndef SURVEYDATA_WEB_MODULE_RESULTS_H_
#define SURVEYDATA_WEB_MODULE_RESULTS_H_

#include <cstdint>
#include <string_view>

#include <fmt/format.h>

/// \file
/// How the functions of the module answer the page. Bytes and texts come to the module in memory
/// that the page takes with `malloc`; what a function answers beside its number is in one buffer,
/// which the next function overwrites.

/// A function that the page calls.
#define SURVEYDATA_PAGE extern "C" __attribute__((used, visibility("default")))

namespace Page {

/// The buffer, emptied.
fmt::memory_buffer& NewResult();
/// The buffer as it is, to be appended to.
fmt::memory_buffer& Result();

void SetResult(std::string_view text);

/// Sets the message of the exception that is being handled as the result.
void SetResultToException();

/// Runs `work` and answers what it does; -1 with the message as result when it throws.
template <class Work>
std::int32_t Guarded(Work work) {
  try {
    return work();
  } catch (...) {
    SetResultToException();
    return -1;
  }
}

}  // namespace Page

#endif  // SURVEYDATA_WEB_MODULE_RESULTS_H_
