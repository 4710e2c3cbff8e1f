#ifndef SURVEYDATA_OBJECT_MODEL_LAYOUT_H_
#define SURVEYDATA_OBJECT_MODEL_LAYOUT_H_

#include <cstddef>

namespace API {

/// Whether the sizes that the headers assert are promised: they are those of platforms whose
/// pointers have 64 bits.
inline constexpr bool kSizesArePromised = sizeof(void*) == 8;

/// Whether `Class` has the size that is promised for it; true where none is promised.
template <class Class, std::size_t size>
inline constexpr bool kHasSize = !kSizesArePromised || sizeof(Class) == size;

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_LAYOUT_H_
