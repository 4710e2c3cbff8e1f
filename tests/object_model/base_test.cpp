#include <type_traits>

#include <gtest/gtest.h>

#include <surveydata/object_model/base.h>

namespace {

using API::BaseC;
using API::ImplObjectC;

int g_order = 0;  // counts destroyed objects

class Object : public BaseC {
 public:
  explicit Object(int& end, ImplObjectC* impl = nullptr) : BaseC(impl), end_(end) {}
  ~Object() override { end_ = ++g_order; }

 private:
  int& end_;
};

class Impl : public ImplObjectC {
 public:
  explicit Impl(int& end) : end_(end) {}
  ~Impl() override { end_ = ++g_order; }

 private:
  int& end_;
};

TEST(Base, HasNoImplementationByDefault) {
  const BaseC object;
  EXPECT_EQ(object.GetImpl(), nullptr);
  const ImplObjectC impl;
  EXPECT_EQ(ImplObjectC(impl).GetBase(), nullptr);
}

TEST(Base, ItsCopyHasNoImplementation) {
  BaseC object(new ImplObjectC);
  ImplObjectC* const impl = object.GetImpl();
  ASSERT_NE(impl, nullptr);
  const BaseC copy(object);
  EXPECT_EQ(copy.GetImpl(), nullptr);
  EXPECT_EQ(object.GetImpl(), impl);
  EXPECT_EQ(impl->GetBase(), &object);
}

TEST(Base, ItsAssignmentCopiesOnlyThePointer) {
  BaseC object(new ImplObjectC);
  ImplObjectC* const impl = object.GetImpl();
  BaseC other;
  EXPECT_EQ(&(other = object), &other);
  EXPECT_EQ(other.GetImpl(), impl);
  EXPECT_EQ(object.GetImpl(), impl);
  EXPECT_EQ(impl->GetBase(), &object);  // the link is unchanged
  other = BaseC();
  EXPECT_EQ(other.GetImpl(), nullptr);
  EXPECT_EQ(object.GetImpl(), impl);
}

TEST(Base, NullHasNothingToLink) {
  const BaseC object(nullptr);
  EXPECT_EQ(object.GetImpl(), nullptr);
  BaseC other;
  other.SetImpl(nullptr);
  EXPECT_EQ(other.GetImpl(), nullptr);
}

TEST(Base, DestroysItsImplementationInItsDestructor) {
  int object = 0;
  int impl = 0;
  g_order = 0;
  delete new Object(object, new Impl(impl));
  EXPECT_EQ(object, 1);
  EXPECT_EQ(impl, 2);
}

// Records what the destructor of a derived class sees when the other side's destructor invokes it.
class AskingImpl : public ImplObjectC {
 public:
  AskingImpl(BaseC& object, const ImplObjectC*& found) : object_(object), found_(found) {}
  ~AskingImpl() override {
    EXPECT_EQ(GetBase(), nullptr);  // its own link is already cut
    found_ = object_.GetImpl();
  }

 private:
  BaseC& object_;
  const ImplObjectC*& found_;
};

class AskingObject : public BaseC {
 public:
  AskingObject(ImplObjectC* impl, const BaseC*& found) : BaseC(impl), impl_(impl), found_(found) {}
  ~AskingObject() override {
    EXPECT_EQ(GetImpl(), nullptr);
    found_ = impl_->GetBase();
  }

 private:
  ImplObjectC* impl_;
  const BaseC*& found_;
};

TEST(Base, ReturnsItsImplementationWhileThatIsDestroyed) {
  const ImplObjectC* found = nullptr;
  auto* const object = new BaseC;
  auto* const impl = new AskingImpl(*object, found);
  object->SetImpl(impl);
  delete object;
  EXPECT_EQ(found, impl);
}

TEST(ImplObject, ReturnsItsOwnerWhileThatIsDestroyed) {
  const BaseC* found = nullptr;
  auto* const impl = new ImplObjectC;
  const auto* const object = new AskingObject(impl, found);
  delete impl;
  EXPECT_EQ(found, object);
}

TEST(ImplObject, DestroysItsOwnerInItsDestructor) {
  int object = 0;
  int impl = 0;
  g_order = 0;
  auto* const data = new Impl(impl);
  new Object(object, data);
  delete data;
  EXPECT_EQ(impl, 1);
  EXPECT_EQ(object, 2);
}

TEST(ImplObject, KeepsItsOwnerInCopyAndAssignment) {
  BaseC first(new ImplObjectC);
  BaseC second(new ImplObjectC);
  ImplObjectC& a = *first.GetImpl();
  ImplObjectC& b = *second.GetImpl();
  ImplObjectC copy(a);
  EXPECT_EQ(copy.GetBase(), nullptr);
  EXPECT_EQ(&(a = b), &a);
  EXPECT_EQ(a.GetBase(), &first);
  EXPECT_EQ(b.GetBase(), &second);
  copy = a;
  EXPECT_EQ(copy.GetBase(), nullptr);
  a = copy;
  EXPECT_EQ(a.GetBase(), &first);
}

TEST(ImplObject, CreatesNoOwner) {
  ImplObjectC impl;
  EXPECT_EQ(impl.GetBase(), nullptr);
  EXPECT_EQ(impl.GetBase(), nullptr);
}

TEST(ImplObject, UnlinksTheEarlierOwnerBeforeItDeletesIt) {
  int end = 0;
  g_order = 0;
  ImplObjectC impl;
  new Object(end, &impl);
  BaseC next;
  next.SetImpl(&impl);
  EXPECT_EQ(end, 1);
  EXPECT_EQ(impl.GetBase(), &next);
  EXPECT_EQ(next.GetImpl(), &impl);
  impl.DetachBase();
  EXPECT_EQ(next.GetImpl(), nullptr);
  EXPECT_EQ(impl.GetBase(), nullptr);
}

TEST(ImplObject, DetachingUnlinksItsOwnerFromAnyImplementation) {
  BaseC object(new ImplObjectC);
  ImplObjectC* const old = object.GetImpl();
  auto* const next = new ImplObjectC;
  object.SetImpl(next);
  old->DetachBase();
  EXPECT_EQ(object.GetImpl(), nullptr);
  EXPECT_EQ(old->GetBase(), nullptr);
  EXPECT_EQ(next->GetBase(), &object);
  delete old;
  object.SetImpl(next);
  EXPECT_EQ(object.GetImpl(), next);
}

TEST(Base, SettingTheCurrentImplementationLinksNothing) {
  int end = 0;
  g_order = 0;
  auto* const owner = new Object(end, new ImplObjectC);
  ImplObjectC* const impl = owner->GetImpl();
  BaseC other;
  other = *owner;  // only the pointer
  other.SetImpl(impl);
  EXPECT_EQ(end, 0) << "the owner is not replaced";
  EXPECT_EQ(impl->GetBase(), owner);
  other = BaseC();
  delete owner;
}

// The constructors do not call overrides of derived classes.
TEST(Base, ItsConstructorLinksByItsOwnSetImpl) {
  class Refusing : public BaseC {
   public:
    explicit Refusing(ImplObjectC* impl) : BaseC(impl) {}
    void SetImpl(ImplObjectC* /*impl*/) override {}
  };
  Refusing object(new ImplObjectC);
  EXPECT_NE(object.GetImpl(), nullptr);
}

TEST(Base, BothBasesArePolymorphicWithAVirtualDestructor) {
  static_assert(std::has_virtual_destructor_v<BaseC> && std::has_virtual_destructor_v<ImplObjectC>);
  static_assert(sizeof(BaseC) == 2 * sizeof(void*) && sizeof(ImplObjectC) == 2 * sizeof(void*));
}

}  // namespace
