#include <cstddef>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

// Misuse of ownership that debug builds of the library detect: each case ends the program with a
// message. Similar but permitted operations must not. AddressSanitizer detects some of the rest.

#if defined(__SANITIZE_ADDRESS__)
#define SURVEYDATA_TEST_HAS_ADDRESS_CHECKER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SURVEYDATA_TEST_HAS_ADDRESS_CHECKER
#endif
#endif

namespace {

using SDI::CoordinatePointC;

TEST(OwnershipChecks, AnImplementationThatItsOwnerHasReplacedIsNotDeleted) {
  auto* const object = new CoordinatePointC;
  API::ImplObjectC* const old = object->GetImpl();
  object->SetImpl(new ODM::CoordinatePointC);
  EXPECT_DEATH(delete old, "owner of this implementation has another one");
  EXPECT_DEATH(CoordinatePointC(static_cast<ODM::CoordinatePointC*>(old)),
               "earlier owner of this implementation has another one");
  EXPECT_DEATH(old->SetBase(nullptr), "earlier owner of this implementation has another one");

  // Permitted after detaching it.
  API::ImplObjectC* const next = object->GetImpl();
  object->SetImpl(nullptr);
  next->DetachBase();
  delete next;
  old->DetachBase();
  delete old;
  delete object;
}

TEST(OwnershipChecks, AnImplementationIsDeletedWithAnOwnerThatHasNone) {
  auto* const object = new CoordinatePointC;
  API::ImplObjectC* const old = object->GetImpl();
  object->SetImpl(nullptr);
  delete old;  // also deletes `object`, which is still its owner
}

#if defined(__linux__)
// The allocator has overwritten the owner's pointer; AddressSanitizer detects access to the freed
// owner.
TEST(OwnershipChecks, AnImplementationThatHasOutlivedItsOwnerIsNotDeleted) {
  EXPECT_DEATH(
      {
        auto* const object = new CoordinatePointC;
        const API::ImplObjectC* const old = object->GetImpl();
        object->SetImpl(nullptr);
        delete object;
        delete old;
      },
      "has another one, or was destroyed|heap-use-after-free|does not point to an object");
}

TEST(OwnershipChecks, TheImplementationOfAVariableIsNotDeleted) {
  const CoordinatePointC point;
  EXPECT_DEATH(delete point.GetImpl(), "a variable is deleted as the owner of an implementation");
  const SDI::ScanC scan;
  EXPECT_DEATH(delete scan.GetImpl(), "a variable is deleted as the owner of an implementation");
}

TEST(OwnershipChecks, TheImplementationOfAVariableIsNotAdopted) {
  const CoordinatePointC point;
  EXPECT_DEATH(CoordinatePointC(point.GetImpl()), "deleted as the earlier owner");
  CoordinatePointC other;
  EXPECT_DEATH(other.SetImpl(point.GetImpl()), "deleted as the earlier owner");
}

TEST(OwnershipChecks, AnImplementationThatIsAVariableIsNotAdopted) {
  EXPECT_DEATH(
      {
        ODM::CoordinatePointC impl;
        const CoordinatePointC object(&impl);  // destroyed first
      },
      "a variable is deleted as the implementation of an object");
  EXPECT_DEATH(
      {
        ODM::PositionC position;
        const CoordinatePointC object(&position.GetCoordinatePoint());
      },
      "a variable is deleted as the implementation of an object");

  ODM::CoordinatePointC impl;
  CoordinatePointC object(&impl);
  impl.DetachBase();  // each is destroyed alone
  ODM::CoordinatePointC first;
  new CoordinatePointC(&first);  // destroyed by `first`
}

TEST(OwnershipChecks, AVariableIsNotDeletedAsAnOwner) {
  EXPECT_DEATH(
      {
        CoordinatePointC object(static_cast<ODM::CoordinatePointC*>(nullptr));
        const ODM::CoordinatePointC impl(&object);
      },
      "a variable is deleted as the owner of an implementation");
}

// A caller's class whose objects `delete` does not free.
class PlacedPointC : public CoordinatePointC {
 public:
  using CoordinatePointC::CoordinatePointC;

  static void* operator new(std::size_t /*size*/, void* place) { return place; }
  static void operator delete(void* /*object*/) {}
};

TEST(OwnershipChecks, ClassesOfCallersFreeTheirObjectsAsTheyLike) {
  alignas(PlacedPointC) std::byte place[sizeof(PlacedPointC)];
  const auto* const point = new (place) PlacedPointC(1.0, 2.0, 3.0);
  delete point->GetImpl();
}
#endif

TEST(OwnershipChecks, ThePublicObjectOfAPartIsNotDeleted) {
  SDI::PositionC position;
  const auto* const record = new SDI::RectangleC;
  EXPECT_DEATH(delete &position.GetCoordinatePoint(), "the public object of a part is deleted");
  EXPECT_DEATH(delete &position.GetCRS(), "the public object of a part is deleted");
  EXPECT_DEATH(delete &record->GetCRS(), "the public object of a part is deleted");
  delete record;
}

TEST(OwnershipChecks, ThePublicObjectOfAPartIsDeletedWhenItIsDetached) {
  SDI::PositionC position;
  CoordinatePointC* lent = &position.GetCoordinatePoint();
  lent->GetImpl()->DetachBase();
  delete lent;

  lent = &position.GetCoordinatePoint();  // created again
  lent->GetImpl()->DetachBase();
  lent->SetImpl(new ODM::CoordinatePointC(1.0, 2.0, 3.0));
  delete lent;

  // Another object replaces it, and is detached from the part before it is deleted.
  position.GetCoordinatePoint().SetX(4.0);
  const CoordinatePointC other(&position.GetImpl()->GetCoordinatePoint());
  EXPECT_EQ(&position.GetCoordinatePoint(), &other);
  EXPECT_EQ(other.GetX(), 4.0);
  other.GetImpl()->DetachBase();
}

// The library has no message for this: the null pointer access ends the program.
TEST(OwnershipChecks, AnObjectWithoutAnImplementationIsNotAccessed) {
  const CoordinatePointC point(static_cast<ODM::CoordinatePointC*>(nullptr));
  EXPECT_DEATH(point.GetX(), "");
  EXPECT_EQ(SDI::GPSDOPsC(static_cast<SDI::GPSDOPsImplC*>(nullptr)).GetHDOP(), 0.0);
}

#ifdef SURVEYDATA_TEST_HAS_ADDRESS_CHECKER
constexpr char kGone[] = "heap-use-after-free|does not point to an object";
constexpr char kBadFree[] = "attempting free on address which was not malloc";

TEST(OwnershipChecks, AddressSanitizerFindsASecondDeletion) {
  EXPECT_DEATH(
      {
        auto* const object = new CoordinatePointC;
        const auto* const impl = object->GetImpl();
        delete object;
        delete impl;
      },
      kGone);
}

TEST(OwnershipChecks, AddressSanitizerFindsThatAnOwnerIsDestroyed) {
  EXPECT_DEATH(
      {
        auto* const object = new CoordinatePointC;
        API::ImplObjectC* const old = object->GetImpl();
        object->SetImpl(nullptr);
        delete object;
        old->DetachBase();
      },
      kGone);
}

struct Pair {
  CoordinatePointC first;
  CoordinatePointC second;
};

TEST(OwnershipChecks, AddressSanitizerFindsThatAMemberIsDeleted) {
  const auto* const pair = new Pair;
  EXPECT_DEATH(delete pair->second.GetImpl(), kBadFree);
  delete pair;
  static const CoordinatePointC variable;
  EXPECT_DEATH(delete variable.GetImpl(), kBadFree);
}

TEST(OwnershipChecks, AddressSanitizerFindsThatAPartIsDeleted) {
  auto* const position = new ODM::PositionC;
  EXPECT_DEATH(CoordinatePointC(&position->GetCoordinatePoint()), kBadFree);
  EXPECT_DEATH(delete position->GetCoordinatePoint().GetBase(), kBadFree);
  delete position;
}

TEST(OwnershipChecks, AddressSanitizerFindsThatAVariableOfAnotherThreadIsDeleted) {
  EXPECT_DEATH(std::thread([] {
                 const CoordinatePointC point;
                 delete point.GetImpl();
               }).join(),
               kBadFree);
}
#endif

}  // namespace
