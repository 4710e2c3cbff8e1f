#ifndef SURVEYDATA_C_INTERFACE_BOUNDARY_H_
#define SURVEYDATA_C_INTERFACE_BOUNDARY_H_

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>
#include <stdexcept>

#include <surveydata/c_interface/surveydata.h>

/// \file
/// Internal: what every function of the C interface does at the boundary.

namespace SDI::CInterface {

/// Thrown when a function of the caller cancels.
struct Cancelled {};

/// Runs `work`, and answers its status, or that of the exception that it throws.
template <class Work>
surveydata_status Guarded(Work work) noexcept {
  try {
    return work();
  } catch (const Cancelled&) {
    return SURVEYDATA_CANCELLED;
  } catch (const std::bad_alloc&) {
    return SURVEYDATA_OUT_OF_MEMORY;
  } catch (const std::length_error&) {  // more elements than a container can have
    return SURVEYDATA_OUT_OF_MEMORY;
  } catch (...) {
    return SURVEYDATA_FAILED;
  }
}

/// Whether a caller's struct has the size of a version; there is one so far.
template <class Struct>
bool HasKnownSize(const Struct& of) {
  return of.struct_size == sizeof(Struct);
}

/// What a caller gives to have an array filled.
template <class Element>
struct OutArray {
  Element* elements;
  std::size_t capacity;
  std::size_t* count;

  bool IsGood() const { return count != nullptr && (elements != nullptr || capacity == 0); }
  /// Sets the count, and fills as many elements as there is room for by `make(i)`.
  template <class Make>
  surveydata_status Fill(std::size_t total, Make make) const {
    const std::size_t filled = std::min(total, capacity);
    for (std::size_t i = 0; i < filled; ++i) elements[i] = make(i);
    return SetCount(total);
  }
  surveydata_status SetCount(std::size_t total) const {
    *count = total;
    const bool isQuestion = elements == nullptr;
    return isQuestion || total <= capacity ? SURVEYDATA_OK : SURVEYDATA_BUFFER_TOO_SMALL;
  }
};

}  // namespace SDI::CInterface

#endif  // SURVEYDATA_C_INTERFACE_BOUNDARY_H_
