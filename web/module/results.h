#ifndef SURVEYDATA_WEB_MODULE_RESULTS_H_
#define SURVEYDATA_WEB_MODULE_RESULTS_H_

#include <cstdint>
#include <string_view>

#include <fmt/format.h>

/// \file
/// How the functions of the module return results to the page. The page passes bytes and texts in
/// memory that it allocates with `malloc`. Results other than a number are in one buffer, which the
/// next function overwrites.

/// A function that the page calls.
#define SURVEYDATA_PAGE extern "C" __attribute__((used, visibility("default")))

namespace Page {

/// Empties the buffer and returns it.
fmt::memory_buffer& NewResult();
/// The buffer, to be appended to.
fmt::memory_buffer& Result();

void SetResult(std::string_view text);

/// Sets the message of the exception that is being handled as the result.
void SetResultToException();

/// Runs `work` and returns its value. If it throws, returns -1 with the message as the result.
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
