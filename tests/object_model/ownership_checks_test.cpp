#include <cstddef>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

// Misuse of ownership that debug builds of the library catch: each case ends the program with a
// message. What looks alike and is permitted goes on. Some of the rest the address checker finds.

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

  // Set aside in time, it is.
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
  delete old;  // with `object`, which is still its owner
}

#if defined(__linux__)
// The allocator has overwritten the pointer of the owner; the address checker sees that it is gone.
TEST(OwnershipChecks, AnImplementationThatHasOutlivedItsOwnerIsNotDeleted) {
  EXPECT_DEATH(
      {
        auto* const object = new CoordinatePointC;
        const API::ImplObjectC* const old = object->GetImpl();
        object->SetImpl(nullptr);
        delete object;
        delete old;
      },
      "has another one, or is gone|heap-use-after-free|does not point to an object");
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
        const CoordinatePointC object(&impl);  // goes first
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
  impl.DetachBase();  // both go alone
  ODM::CoordinatePointC first;
  new CoordinatePointC(&first);  // goes with `first`
}

TEST(OwnershipChecks, AVariableDoesNotGoAfterItsOwner) {
  EXPECT_DEATH(
      {
        CoordinatePointC object(static_cast<ODM::CoordinatePointC*>(nullptr));
        const ODM::CoordinatePointC impl(&object);
      },
      "a variable is deleted as the owner of an implementation");
}

// A class of a caller whose objects `delete` does not free.
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

  lent = &position.GetCoordinatePoint();  // made again
  lent->GetImpl()->DetachBase();
  lent->SetImpl(new ODM::CoordinatePointC(1.0, 2.0, 3.0));
  delete lent;

  // Another object takes its place, and lets go of the part in time.
  position.GetCoordinatePoint().SetX(4.0);
  const CoordinatePointC other(&position.GetImpl()->GetCoordinatePoint());
  EXPECT_EQ(&position.GetCoordinatePoint(), &other);
  EXPECT_EQ(other.GetX(), 4.0);
  other.GetImpl()->DetachBase();
}

// No message of the library: the pointer is null.
TEST(OwnershipChecks, AnObjectWithoutAnImplementationIsNotAsked) {
  const CoordinatePointC point(static_cast<ODM::CoordinatePointC*>(nullptr));
  EXPECT_DEATH(point.GetX(), "");
  EXPECT_EQ(SDI::GPSDOPsC(static_cast<SDI::GPSDOPsImplC*>(nullptr)).GetHDOP(), 0.0);
}

#ifdef SURVEYDATA_TEST_HAS_ADDRESS_CHECKER
constexpr char kGone[] = "heap-use-after-free|does not point to an object";
constexpr char kBadFree[] = "attempting free on address which was not malloc";

TEST(OwnershipChecks, TheAddressCheckerFindsASecondDeletion) {
  EXPECT_DEATH(
      {
        auto* const object = new CoordinatePointC;
        const auto* const impl = object->GetImpl();
        delete object;
        delete impl;
      },
      kGone);
}

TEST(OwnershipChecks, TheAddressCheckerFindsThatAnOwnerIsGone) {
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

TEST(OwnershipChecks, TheAddressCheckerFindsThatAMemberIsDeleted) {
  const auto* const pair = new Pair;
  EXPECT_DEATH(delete pair->second.GetImpl(), kBadFree);
  delete pair;
  static const CoordinatePointC variable;
  EXPECT_DEATH(delete variable.GetImpl(), kBadFree);
}

TEST(OwnershipChecks, TheAddressCheckerFindsThatAPartIsDeleted) {
  auto* const position = new ODM::PositionC;
  EXPECT_DEATH(CoordinatePointC(&position->GetCoordinatePoint()), kBadFree);
  EXPECT_DEATH(delete position->GetCoordinatePoint().GetBase(), kBadFree);
  delete position;
}

TEST(OwnershipChecks, TheAddressCheckerFindsThatAVariableOfAnotherThreadIsDeleted) {
  EXPECT_DEATH(std::thread([] {
                 const CoordinatePointC point;
                 delete point.GetImpl();
               }).join(),
               kBadFree);
}
#endif

}  // namespace
