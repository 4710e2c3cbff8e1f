#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/support/pairs.h"
#include "tests/support/test_each.h"

// Tests the ownership rules for every pair. AddressSanitizer reports leaks and double deletions;
// the tests count which objects are destroyed when.

namespace {

using Pairs::IsMarked;
using Pairs::Mark;

// A class derived from `Base`, as callers may derive one. Counts its live objects.
template <class Base>
class Counted : public Base {
 public:
  template <class... Args>
  explicit Counted(int& alive, Args&&... args) : Base(std::forward<Args>(args)...), alive_(alive) {
    ++alive_;
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() override { --alive_; }

 private:
  int& alive_;
};

class ForeignImplC : public API::ImplObjectC {};

// The implementation linked to `object`, of any class.
API::ImplObjectC* LinkedTo(const API::BaseC& object) { return object.GetImpl(); }

template <class P>
class PairRules : public testing::Test {
 protected:
  using Public = typename P::PublicT;
  using Impl = typename P::ImplT;

  static void ExpectLinked(const Public& object, Impl& impl) {
    EXPECT_EQ(LinkedTo(object), &impl);
    EXPECT_EQ(object.GetImpl(), &impl);
    EXPECT_EQ(impl.API::ImplObjectC::GetBase(), &object);
    EXPECT_EQ(impl.GetBase(), &object);
  }
};
TEST_EACH_SUITE(PairRules, Pairs::AllPairs);

TEST_EACH(PairRules, ANewPublicObjectIsLinkedToItsOwnImplementation) {
  static_assert(std::is_base_of_v<API::BaseC, typename TestFixture::Public>);
  static_assert(std::is_base_of_v<API::ImplObjectC, typename TestFixture::Impl>);
  typename TestFixture::Public object;
  ASSERT_NE(object.GetImpl(), nullptr);
  this->ExpectLinked(object, *object.GetImpl());
  EXPECT_NE(IsMarked(*object.GetImpl()), Pairs::kHasData<typename TestFixture::Impl>);
}

TEST_EACH(PairRules, EitherSideDestroysTheOther) {
  int objects = 0;
  int impls = 0;
  for (const bool isObjectFirst : {true, false}) {
    auto* const impl = new Counted<typename TestFixture::Impl>(impls);
    auto* const object = new Counted<typename TestFixture::Public>(objects, impl);
    this->ExpectLinked(*object, *impl);  // a derived implementation is also recognised
    EXPECT_EQ(objects, 1);
    EXPECT_EQ(impls, 1);
    if (isObjectFirst) {
      delete object;
    } else {
      delete impl;
    }
    EXPECT_EQ(objects, 0);
    EXPECT_EQ(impls, 0);
  }
  delete new typename TestFixture::Public;
  delete (new typename TestFixture::Public)->GetImpl();
}

TEST_EACH(PairRules, AdoptingTakesTheImplementationFromItsEarlierOwner) {
  using Owner = Counted<typename TestFixture::Public>;
  int firsts = 0;
  int seconds = 0;
  int impls = 0;
  auto* const impl = new Counted<typename TestFixture::Impl>(impls);
  Mark<typename TestFixture::Impl>(*impl);
  new Owner(firsts, impl);
  {
    const Owner second(seconds, impl);
    EXPECT_EQ(firsts, 0);
    EXPECT_EQ(impls, 1);
    this->ExpectLinked(second, *impl);
    EXPECT_TRUE(IsMarked(*second.GetImpl()));
  }
  EXPECT_EQ(impls, 0);
}

TEST_EACH(PairRules, SetImplDoesNotDeleteTheOldImplementation) {
  int impls = 0;
  auto* const old = new Counted<typename TestFixture::Impl>(impls);
  auto* const impl = new Counted<typename TestFixture::Impl>(impls);
  typename TestFixture::Public object(old);
  object.SetImpl(old);  // already linked: no effect
  this->ExpectLinked(object, *old);

  object.SetImpl(impl);
  this->ExpectLinked(object, *impl);
  EXPECT_EQ(impls, 2);
  EXPECT_EQ(old->GetBase(), &object);  // stale

  object.SetImpl(nullptr);
  EXPECT_EQ(LinkedTo(object), nullptr);
  EXPECT_EQ(object.GetImpl(), nullptr);
  EXPECT_EQ(impl->GetBase(), &object);  // also stale
  EXPECT_EQ(impls, 2);

  // A caller that replaces an implementation must delete the old one.
  old->DetachBase();
  delete old;
  object.SetImpl(impl);
  this->ExpectLinked(object, *impl);
  EXPECT_EQ(impls, 1);
}

TEST_EACH(PairRules, AnImplementationDetachedFirstIsReplacedSafely) {
  typename TypeParam::PublicT object;
  auto* const old = object.GetImpl();
  auto* const impl = new typename TypeParam::ImplT;
  old->DetachBase();
  EXPECT_EQ(object.GetImpl(), nullptr);
  object.SetImpl(impl);
  delete old;
  EXPECT_EQ(object.GetImpl(), impl);
  EXPECT_EQ(impl->GetBase(), &object);
}

TEST_EACH(PairRules, SetImplTakesTheImplementationFromItsEarlierOwner) {
  int objects = 0;
  auto* const other = new Counted<typename TestFixture::Public>(objects);
  auto* const impl = other->GetImpl();
  typename TestFixture::Public object;
  auto* const old = object.GetImpl();
  old->DetachBase();
  delete old;
  object.SetImpl(impl);
  EXPECT_EQ(objects, 0);
  this->ExpectLinked(object, *impl);
}

TEST_EACH(PairRules, SetBaseDestroysTheEarlierOwner) {
  int objects = 0;
  auto* const first = new Counted<typename TestFixture::Public>(objects);
  auto* const impl = first->GetImpl();
  impl->SetBase(first);  // already the owner: no effect
  this->ExpectLinked(*first, *impl);
  impl->SetBase(nullptr);
  EXPECT_EQ(objects, 0);
  EXPECT_EQ(impl->API::ImplObjectC::GetBase(), nullptr);

  auto* const second = new Counted<API::BaseC>(objects);
  impl->SetBase(second);
  EXPECT_EQ(impl->GetBase(), second);
  EXPECT_EQ(LinkedTo(*second), nullptr);  // only `SetImpl` links the other side
  delete impl;
  EXPECT_EQ(objects, 0);
}

TEST_EACH(PairRules, DetachBaseLeavesTwoIndependentObjects) {
  int objects = 0;
  int impls = 0;
  auto* const impl = new Counted<typename TestFixture::Impl>(impls);
  auto* const object = new Counted<typename TestFixture::Public>(objects, impl);
  impl->DetachBase();
  impl->DetachBase();  // without an owner: no effect
  EXPECT_EQ(object->GetImpl(), nullptr);
  EXPECT_EQ(impl->API::ImplObjectC::GetBase(), nullptr);
  delete object;
  EXPECT_EQ(impls, 1);
  delete impl;
  EXPECT_EQ(objects + impls, 0);
}

TEST_EACH(PairRules, GetBaseMakesOnePublicObjectThatIsDestroyedWithTheImplementation) {
  int impls = 0;
  {
    Counted<typename TestFixture::Impl> impl(impls);
    EXPECT_EQ(impl.API::ImplObjectC::GetBase(), nullptr);
    API::BaseC* const base = impl.GetBase();
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(impl.GetBase(), base);
    auto* const object = dynamic_cast<typename TestFixture::Public*>(base);
    ASSERT_NE(object, nullptr);
    this->ExpectLinked(*object, impl);
  }
  EXPECT_EQ(impls, 0);
  auto* const impl = new typename TestFixture::Impl;
  delete impl->GetBase();  // destroys `impl`
}

TEST_EACH(PairRules, AnImplementationTakesAnOwner) {
  int owners = 0;
  {
    auto* const owner = new Counted<API::BaseC>(owners);
    typename TestFixture::Impl impl(static_cast<API::BaseC*>(owner));
    EXPECT_EQ(impl.GetBase(), owner);
    EXPECT_EQ(LinkedTo(*owner), nullptr);
    EXPECT_NE(IsMarked(impl), Pairs::kHasData<typename TestFixture::Impl>);
  }
  EXPECT_EQ(owners, 0);
}

TEST_EACH(PairRules, CopiesOfAnImplementationHaveNoOwner) {
  typename TestFixture::Impl impl;
  Mark(impl);
  API::BaseC* const owner = impl.GetBase();
  typename TestFixture::Impl copy(impl);
  EXPECT_TRUE(IsMarked(copy));
  EXPECT_EQ(copy.API::ImplObjectC::GetBase(), nullptr);
  EXPECT_NE(copy.GetBase(), owner);

  typename TestFixture::Impl other;
  API::BaseC* const otherOwner = other.GetBase();
  EXPECT_EQ(&(other = impl), &other);
  EXPECT_TRUE(IsMarked(other));
  EXPECT_EQ(other.GetBase(), otherOwner);
  EXPECT_EQ(impl.GetBase(), owner);

  const auto& self = impl;
  EXPECT_EQ(&(impl = self), &impl);
  EXPECT_TRUE(IsMarked(impl));
  EXPECT_EQ(impl.GetBase(), owner);

  typename TestFixture::Impl moved(std::move(impl));
  EXPECT_TRUE(IsMarked(moved));
  EXPECT_EQ(moved.API::ImplObjectC::GetBase(), nullptr);
  EXPECT_EQ(impl.GetBase(), owner);
}

TEST_EACH(PairRules, CopiesOfAPublicObjectAreIndependent) {
  using Object = typename TestFixture::Public;
  if constexpr (std::is_copy_constructible_v<Object>) {
    Object source;
    auto* const impl = source.GetImpl();
    Mark(*impl);
    Object copy(source);
    this->ExpectLinked(copy, *copy.GetImpl());
    EXPECT_NE(copy.GetImpl(), impl);
    EXPECT_TRUE(IsMarked(*copy.GetImpl()));
    *copy.GetImpl() = typename TestFixture::Impl();
    EXPECT_TRUE(IsMarked(*impl));

    Object assigned;
    auto* const assignedImpl = assigned.GetImpl();
    EXPECT_EQ(&(assigned = source), &assigned);
    this->ExpectLinked(assigned, *assignedImpl);
    EXPECT_TRUE(IsMarked(*assignedImpl));
    *assignedImpl = typename TestFixture::Impl();
    EXPECT_TRUE(IsMarked(*impl));

    const Object& self = source;
    EXPECT_EQ(&(source = self), &source);
    this->ExpectLinked(source, *impl);
    EXPECT_TRUE(IsMarked(*impl));

    Object moved(std::move(source));  // moving copies: no object is left without its implementation
    this->ExpectLinked(source, *impl);
    this->ExpectLinked(moved, *moved.GetImpl());
    EXPECT_TRUE(IsMarked(*moved.GetImpl()));
    assigned = std::move(moved);
    this->ExpectLinked(moved, *moved.GetImpl());
    this->ExpectLinked(assigned, *assignedImpl);
    EXPECT_TRUE(IsMarked(*assignedImpl));
  } else {
    static_assert(!std::is_copy_assignable_v<Object>);
  }
}

// Checks a public object that does not read its implementation.
template <class Public>
void ExpectNothingToCopy(Public& object) {
  using Impl = std::remove_pointer_t<decltype(object.GetImpl())>;
  API::ImplObjectC* const linked = LinkedTo(object);
  EXPECT_EQ(object.GetImpl(), nullptr);
  const Public copy(object);
  ASSERT_NE(copy.GetImpl(), nullptr);
  EXPECT_EQ(Pairs::Shown(*copy.GetImpl()), Pairs::Shown(Impl()));

  Public full;
  Mark(*full.GetImpl());
  object = full;
  EXPECT_EQ(LinkedTo(object), linked);
  full = object;
  EXPECT_TRUE(IsMarked(*full.GetImpl()));
}

TEST_EACH(PairRules, WithoutItsImplementationAPublicObjectCopiesAsDefaults) {
  typename TestFixture::Public object;
  auto* const impl = object.GetImpl();
  impl->DetachBase();
  delete impl;
  EXPECT_EQ(object.GetImpl(), nullptr);
  if constexpr (std::is_copy_constructible_v<typename TestFixture::Public>) {
    ExpectNothingToCopy(object);
  }
  auto* const foreign = new ForeignImplC;
  object.SetImpl(foreign);
  EXPECT_EQ(LinkedTo(object), foreign);
  EXPECT_EQ(object.GetImpl(), nullptr);
  if constexpr (std::is_copy_constructible_v<typename TestFixture::Public>) {
    ExpectNothingToCopy(object);
  }
}

template <class P>
class UnreadPairRules : public testing::Test {};
TEST_EACH_SUITE(UnreadPairRules, Pairs::UnreadPairs);

TEST_EACH(UnreadPairRules, ThePublicObjectOwnsWhatItDoesNotRead) {
  using Public = typename TypeParam::PublicT;
  int impls = 0;
  int objects = 0;
  {
    Counted<typename TypeParam::ImplT> impl(impls);
    Mark<typename TypeParam::ImplT>(impl);
    API::BaseC* const base = impl.GetBase();
    EXPECT_EQ(impl.GetBase(), base);
    auto* const object = dynamic_cast<Public*>(base);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(LinkedTo(*object), &impl);
    ExpectNothingToCopy(*object);
    EXPECT_TRUE(IsMarked<typename TypeParam::ImplT>(impl));
    const typename TypeParam::ImplT copy(impl);
    EXPECT_TRUE(IsMarked(copy));
  }
  for (const bool isObjectFirst : {true, false}) {
    auto* const impl = new Counted<typename TypeParam::ImplT>(impls);
    auto* const object =
        new Counted<Public>(objects, static_cast<typename TypeParam::ImplT*>(impl));
    EXPECT_EQ(LinkedTo(*object), impl);
    EXPECT_EQ(impl->GetBase(), object);
    EXPECT_EQ(object->GetImpl(), nullptr);
    if (isObjectFirst) {
      delete object;
    } else {
      delete impl;
    }
    EXPECT_EQ(impls + objects, 0);
  }
}

}  // namespace
