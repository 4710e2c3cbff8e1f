#ifndef SURVEYDATA_TESTS_SUPPORT_EXPECT_LAYOUT_H_
#define SURVEYDATA_TESTS_SUPPORT_EXPECT_LAYOUT_H_

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/field_changes.h"

/// \file
/// Checks the offsets of an object's fields. A field is located by writing it through its setter
/// and observing which bytes of the object change.

namespace Layouts {

struct Range {
  std::size_t begin;
  std::size_t end;
};

struct Layout {
  std::size_t size;
  std::size_t alignment;
};

/// A field, or a part: an implementation held by value, with its own fields.
class Field {
 public:
  Field(std::size_t size, std::size_t alignment) : layout_{size, alignment} {}
  Field(std::initializer_list<Field> part) : part_(part) {}

  /// Places the field at the first aligned offset at or after `end`, and appends its range, or
  /// those of the part's fields, to `places`. Returns its end.
  std::size_t Place(std::size_t end, std::vector<Range>& places) const;

 private:
  Layout layout_{};
  std::vector<Field> part_;
};

inline std::size_t RoundedUp(std::size_t at, std::size_t alignment) {
  return (at + alignment - 1) / alignment * alignment;
}

/// Places the fields of an implementation at `begin`, after the vtable pointer and the owner.
inline std::size_t PlaceAll(const std::vector<Field>& fields, std::size_t begin,
                            std::vector<Range>& places) {
  std::size_t end = begin + 2 * sizeof(void*);
  for (const Field& field : fields) end = field.Place(end, places);
  return RoundedUp(end, alignof(void*));
}

inline std::size_t Field::Place(std::size_t end, std::vector<Range>& places) const {
  if (!part_.empty()) return PlaceAll(part_, RoundedUp(end, alignof(void*)), places);
  const std::size_t begin = RoundedUp(end, layout_.alignment);
  places.push_back({begin, begin + layout_.size});
  return begin + layout_.size;
}

/// The bytes of an object.
template <class Object>
std::vector<std::byte> BytesOf(const Object& object) {
  std::vector<std::byte> bytes(sizeof(Object));
  std::memcpy(bytes.data(), static_cast<const void*>(&object), sizeof(Object));
  return bytes;
}

/// The range from the first to the last byte that `change` changes, half-open; empty if it changes
/// none.
template <class Object, class Change>
Range Changed(Object& object, Change change) {
  const auto before = BytesOf(object);
  change(object);
  const auto after = BytesOf(object);
  const auto first = std::mismatch(before.begin(), before.end(), after.begin()).first;
  const auto last = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first;
  return {static_cast<std::size_t>(first - before.begin()),
          static_cast<std::size_t>(before.rend() - last)};
}

template <class Object>
std::size_t OffsetIn(const Object& object, const void* field) {
  return static_cast<std::size_t>(static_cast<const std::byte*>(field) -
                                  reinterpret_cast<const std::byte*>(&object));
}

/// Whether the listed sizes apply: they hold for 64-bit pointers.
inline constexpr bool kHasListedSizes = sizeof(void*) == 8;

/// Checks that an implementation has this size and these fields, one after the other, each at the
/// next aligned offset: every change must affect only its own field.
template <class Impl>
void ExpectLayout(Layout layout, std::initializer_list<Field> fields) {
  SCOPED_TRACE(typeid(Impl).name());
  if (kHasListedSizes) {
    EXPECT_EQ(sizeof(Impl), layout.size);
    EXPECT_EQ(alignof(Impl), layout.alignment);
  }
  std::vector<Range> places;
  EXPECT_EQ(sizeof(Impl), PlaceAll(fields, 0, places));
  const auto changes = ChangesOf<Impl>();
  ASSERT_EQ(changes.size(), places.size());
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "field " << i);
    Impl impl;
    Prepare(impl);
    const Range range = Changed(impl, changes[i]);
    ASSERT_LT(range.begin, range.end) << "nothing changed";
    EXPECT_GE(range.begin, places[i].begin);
    EXPECT_LE(range.end, places[i].end);
  }
}

}  // namespace Layouts

#endif  // SURVEYDATA_TESTS_SUPPORT_EXPECT_LAYOUT_H_
