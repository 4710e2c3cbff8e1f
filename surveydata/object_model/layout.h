#ifndef SURVEYDATA_OBJECT_MODEL_LAYOUT_H_
#define SURVEYDATA_OBJECT_MODEL_LAYOUT_H_

#include <cstddef>

namespace API {

/// Whether the sizes that the headers assert apply: they hold on platforms with 64-bit pointers.
inline constexpr bool kSizesArePromised = sizeof(void*) == 8;

/// Whether `Class` has the asserted size; true where the assertions do not apply.
template <class Class, std::size_t size>
inline constexpr bool kHasSize = !kSizesArePromised || sizeof(Class) == size;

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_LAYOUT_H_
