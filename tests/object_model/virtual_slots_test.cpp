#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/support/pairs.h"
#include "tests/support/test_each.h"

// Tests the order of the virtual functions of both sides of every pair, which separately compiled
// callers rely on.

namespace {

template <class P>
class PairSlots : public testing::Test {};
TEST_EACH_SUITE(PairSlots, Pairs::AllPairs);

#if defined(__GXX_ABI_VERSION)  // the Itanium ABI: two destructors, then the virtual functions
using Slot = void (*)();

// The destructor in slot 0 may be that of the base if a class has nothing to destroy.
constexpr std::size_t kDeletingDestructor = 1;

Slot SlotOf(const void* object, std::size_t index) {
  const Slot* table = nullptr;
  std::memcpy(&table, object, sizeof(table));
  return table[index];
}

TEST_EACH(PairSlots, APublicObjectIsALinkWithTwoVirtualOperations) {
  using Public = typename TypeParam::PublicT;
  static_assert(sizeof(Public) == sizeof(API::BaseC));
  static_assert(std::has_virtual_destructor_v<Public>);
  Public object;
  const API::BaseC base;
  const API::ImplObjectC* linked = nullptr;
  std::memcpy(&linked, reinterpret_cast<const std::byte*>(&object) + sizeof(void*), sizeof(void*));
  EXPECT_EQ(linked, object.GetImpl());
  EXPECT_NE(SlotOf(&object, kDeletingDestructor), SlotOf(&base, kDeletingDestructor));
  EXPECT_EQ(SlotOf(&object, 2), SlotOf(&base, 2));  // `SetImpl`, unchanged
}

template <class Impl>
void ExpectSlotsOfAnImplementation() {
  Impl impl;
  const API::ImplObjectC base;
  EXPECT_NE(SlotOf(&impl, kDeletingDestructor), SlotOf(&base, kDeletingDestructor));
  const auto getBase = reinterpret_cast<API::BaseC* (*)(API::ImplObjectC*)>(SlotOf(&impl, 2));
  API::BaseC* const made = getBase(&impl);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made, impl.API::ImplObjectC::GetBase());
  const API::BaseC* owner = nullptr;
  std::memcpy(&owner, reinterpret_cast<const std::byte*>(&impl) + sizeof(void*), sizeof(void*));
  EXPECT_EQ(owner, made);
}

TEST_EACH(PairSlots, AnImplementationMakesItsPublicObjectInItsSecondVirtualOperation) {
  ExpectSlotsOfAnImplementation<typename TypeParam::ImplT>();
}

template <class P>
class UnreadPairSlots : public testing::Test {};
TEST_EACH_SUITE(UnreadPairSlots, Pairs::UnreadPairs);

TEST_EACH(UnreadPairSlots, AnImplementationMakesItsPublicObjectInItsSecondVirtualOperation) {
  ExpectSlotsOfAnImplementation<typename TypeParam::ImplT>();
}

TEST(Slots, TheFirstVirtualOperationOfTheBasesIsTheDestructor) {
  using Destroy = void (*)(void*);
  API::BaseC* const object = new API::BaseC(new API::ImplObjectC);
  const auto setImpl =
      reinterpret_cast<void (*)(API::BaseC*, API::ImplObjectC*)>(SlotOf(object, 2));
  API::ImplObjectC* const impl = object->GetImpl();
  setImpl(object, nullptr);
  EXPECT_EQ(object->GetImpl(), nullptr);
  setImpl(object, impl);
  EXPECT_EQ(object->GetImpl(), impl);
  EXPECT_EQ(reinterpret_cast<API::BaseC* (*)(API::ImplObjectC*)>(SlotOf(impl, 2))(impl), object);
  reinterpret_cast<Destroy>(SlotOf(object, 1))(object);  // also frees it, and `impl`

  alignas(API::BaseC) std::byte place[sizeof(API::BaseC)];
  auto* const other = new API::ImplObjectC;
  auto* const placed = new (place) API::BaseC(other);
  reinterpret_cast<Destroy>(SlotOf(placed, 0))(placed);  // frees only `other`
}
#endif

}  // namespace
