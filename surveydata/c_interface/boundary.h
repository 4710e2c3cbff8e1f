#ifndef SURVEYDATA_C_INTERFACE_BOUNDARY_H_
#define SURVEYDATA_C_INTERFACE_BOUNDARY_H_

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>
#include <stdexcept>

#include <surveydata/c_interface/surveydata.h>

/// \file
/// Internal: exceptions, sizes of structs and arrays at the boundary of the C interface.

namespace SDI::CInterface {

/// Thrown when a callback cancels.
struct Cancelled {};

/// Runs `work` and returns its status, or the status for the exception that it throws.
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

/// Whether a caller's struct has the size that it has in some version; there is only one so far.
template <class Struct>
bool HasKnownSize(const Struct& of) {
  return of.struct_size == sizeof(Struct);
}

/// An array of the caller that is to be filled.
template <class Element>
struct OutArray {
  Element* elements;
  std::size_t capacity;
  std::size_t* count;

  bool IsGood() const { return count != nullptr && (elements != nullptr || capacity == 0); }
  /// Sets the count, and sets as many elements as there is room for to `make(i)`.
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
