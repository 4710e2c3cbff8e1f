#ifndef SURVEYDATA_TESTS_SUPPORT_VIRTUAL_SLOT_H_
#define SURVEYDATA_TESTS_SUPPORT_VIRTUAL_SLOT_H_

#include <cstddef>
#include <cstring>

namespace TestSupport {

/// The slot of a virtual function, where the destructor is slot 0; -1 for one that is not virtual.
/// Reads a member pointer as the Itanium C++ ABI lays it out, with two entries for the destructor.
template <class Function>
std::ptrdiff_t VirtualSlot(Function function) {
  struct {
    std::ptrdiff_t offset;
    std::ptrdiff_t adjustment;
  } pointer;
  static_assert(sizeof(function) == sizeof(pointer));
  std::memcpy(&pointer, &function, sizeof(pointer));
  if (pointer.offset % 2 == 0) return -1;
  return pointer.offset / static_cast<std::ptrdiff_t>(sizeof(void*)) - 1;
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SUPPORT_VIRTUAL_SLOT_H_
