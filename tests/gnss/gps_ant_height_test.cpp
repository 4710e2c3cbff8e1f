#include <cmath>
#include <limits>
#include <memory>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/gnss/gps_dops.h>

namespace {

using SDI::GPSAntHeightC;
using SDI::GPSAntHeightImplC;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Both implementations store and return the same values.
template <class Impl>
class AntHeightImpl : public testing::Test {};
using BothImpls = testing::Types<GPSAntHeightImplC, ODM::GPSAntHeightC>;
TYPED_TEST_SUITE(AntHeightImpl, BothImpls);

template <class AntHeight>
void ExpectHolds(const AntHeight& antenna, float height, bool isVertical, float offset) {
  float actualHeight = -1.0F;
  bool actualIsVertical = !isVertical;
  antenna.GetHeight(actualHeight, actualIsVertical);
  EXPECT_EQ(actualHeight, height);
  EXPECT_EQ(actualIsVertical, isVertical);
  EXPECT_EQ(antenna.GetHorizontalOffset(), offset);
}

TYPED_TEST(AntHeightImpl, IsZeroAndVerticalByDefault) {
  ExpectHolds(TypeParam(), 0.0F, true, 0.0F);
}

TYPED_TEST(AntHeightImpl, KeepsTheValuesOfItsConstructor) {
  ExpectHolds(TypeParam(1.5F, false, 0.25F), 1.5F, false, 0.25F);
  ExpectHolds(TypeParam(1.5F, true, 0.25F), 1.5F, true, 0.25F);
}

TYPED_TEST(AntHeightImpl, SettersChangeOnlyTheirFields) {
  TypeParam antenna(1.5F, false, 0.25F);
  antenna.SetHeight(2.5F, true);
  ExpectHolds(antenna, 2.5F, true, 0.25F);
  antenna.SetHorizontalOffset(0.5F);
  ExpectHolds(antenna, 2.5F, true, 0.5F);
}

TYPED_TEST(AntHeightImpl, OwnerConstructorHoldsDefaultsAndKnowsItsOwner) {
  auto* const owner = new GPSAntHeightC(static_cast<GPSAntHeightImplC*>(nullptr));
  auto* const antenna = new TypeParam(static_cast<API::BaseC*>(owner));
  EXPECT_EQ(antenna->GetBase(), owner);
  ExpectHolds(*antenna, 0.0F, true, 0.0F);
  owner->SetImpl(antenna);
  delete owner;  // and with it the implementation
}

TYPED_TEST(AntHeightImpl, CopiesAreEqualAndWithoutOwner) {
  TypeParam antenna(1.5F, false, 0.25F);
  API::BaseC* const owner = antenna.GetBase();
  TypeParam copy(antenna);
  ExpectHolds(copy, 1.5F, false, 0.25F);
  EXPECT_NE(copy.GetBase(), owner);
  TypeParam assigned;
  API::BaseC* const ownerOfAssigned = assigned.GetBase();
  assigned = antenna;
  ExpectHolds(assigned, 1.5F, false, 0.25F);
  EXPECT_EQ(assigned.GetBase(), ownerOfAssigned);
  TypeParam& same = antenna;
  antenna = same;
  ExpectHolds(antenna, 1.5F, false, 0.25F);
  EXPECT_EQ(antenna.GetBase(), owner);
}

TYPED_TEST(AntHeightImpl, MakesItsPublicObjectOnceAndOwnsIt) {
  TypeParam antenna;
  API::BaseC* const base = antenna.GetBase();
  ASSERT_NE(dynamic_cast<GPSAntHeightC*>(base), nullptr);
  EXPECT_EQ(base->GetImpl(), &antenna);
  EXPECT_EQ(antenna.GetBase(), base);
}

TYPED_TEST(AntHeightImpl, VerticalHeightIsReducedInSinglePrecision) {
  const struct {
    float height;
    bool isVertical;
    float offset;
    float vertical;
  } cases[] = {
      {2.0F, true, 0.12F, 2.0F},
      {0.1F, true, 0.2F, 0.1F},  // a vertical height ignores the offset
      {-1.0F, true, 0.0F, -1.0F},
      {2.0F, false, 0.12F, std::sqrt(2.0F * 2.0F - 0.12F * 0.12F)},
      {2.0F, false, 0.0F, 2.0F},
      {5.0F, false, 3.0F, 4.0F},
      {5.0F, false, -3.0F, 4.0F},
      {0.2F, false, 0.2F, 0.0F},
      {0.0F, false, 0.0F, 0.0F},
      // height * height overflows in single precision, not in double
      {1e30F, false, 0.0F, kInfinity},
      // height * height underflows to 0
      {1e-30F, false, 0.0F, 0.0F},
  };
  for (const auto& [height, isVertical, offset, vertical] : cases) {
    SCOPED_TRACE(testing::Message() << height << ' ' << isVertical << ' ' << offset);
    EXPECT_EQ(TypeParam(height, isVertical, offset).GetVerticalHeight(), vertical);
  }
  EXPECT_TRUE(std::isnan(TypeParam(1.0F, false, -2.0F).GetVerticalHeight()));
}

TYPED_TEST(AntHeightImpl, EqualityTakesEveryField) {
  const TypeParam antenna(1.5F, false, 0.25F);
  EXPECT_TRUE(antenna.isEqual(antenna));
  EXPECT_TRUE(antenna.isEqual(TypeParam(1.5F, false, 0.25F)));
  EXPECT_FALSE(antenna.isEqual(TypeParam(1.5001F, false, 0.25F)));
  EXPECT_FALSE(antenna.isEqual(TypeParam(1.5F, true, 0.25F)));
  EXPECT_FALSE(antenna.isEqual(TypeParam(1.5F, false, 0.2501F)));
}

TYPED_TEST(AntHeightImpl, EqualityToleratesTheFloatEpsilon) {
  constexpr float kUnit = std::numeric_limits<float>::epsilon();  // of 1.0
  const struct {
    float a, b;
    bool equal;
  } cases[] = {
      {1.0F, 1.0F + 2 * kUnit, true},
      {1.0F, 1.0F + 3 * kUnit, false},
      {0.0F, 1e-8F, false},  // the tolerance is relative to the larger value
      {0.0F, -0.0F, true},
      {1.0F, kNaN, true},
      {kInfinity, kInfinity, true},
  };
  for (const auto& [a, b, equal] : cases) {
    SCOPED_TRACE(testing::Message() << "a = " << a << ", b = " << b);
    EXPECT_EQ(TypeParam(a, true, 0).isEqual(TypeParam(b, true, 0)), equal);
    EXPECT_EQ(TypeParam(0, true, a).isEqual(TypeParam(0, true, b)), equal);
  }
}

TEST(AntHeightImplDifference, SlantHeightShorterThanItsOffset) {
  const struct {
    float height, offset;
  } cases[] = {{0.1F, 0.2F}, {-1.0F, 0.0F}, {1.0F, kInfinity}, {1.0F, kNaN}};
  for (const auto& [height, offset] : cases) {
    SCOPED_TRACE(testing::Message() << height << ' ' << offset);
    EXPECT_EQ(GPSAntHeightImplC(height, false, offset).GetVerticalHeight(), 0.0F);
    EXPECT_EQ(ODM::GPSAntHeightC(height, false, offset).GetVerticalHeight(), height);
  }
  EXPECT_EQ(GPSAntHeightImplC(kNaN, false, 0.0F).GetVerticalHeight(), 0.0F);
  EXPECT_TRUE(std::isnan(ODM::GPSAntHeightC(kNaN, false, 0.0F).GetVerticalHeight()));
}

TEST(AntHeight, IsZeroAndVerticalByDefault) {
  const GPSAntHeightC antenna;
  ExpectHolds(antenna, 0.0F, true, 0.0F);
  EXPECT_EQ(antenna.GetVerticalHeight(), 0.0F);
}

TEST(AntHeight, StoresInItsImplementation) {
  GPSAntHeightC antenna;
  antenna.SetHeight(2.0F, false);
  antenna.SetHorizontalOffset(0.12F);
  ExpectHolds(antenna, 2.0F, false, 0.12F);
  ExpectHolds(*antenna.GetImpl(), 2.0F, false, 0.12F);
  EXPECT_EQ(antenna.GetVerticalHeight(), std::sqrt(4.0F - 0.12F * 0.12F));
}

TEST(AntHeight, VerticalHeightOfATooShortSlantHeightIsZero) {
  GPSAntHeightC antenna;
  antenna.SetHeight(0.1F, false);
  antenna.SetHorizontalOffset(0.2F);
  EXPECT_EQ(antenna.GetVerticalHeight(), 0.0F);
}

TEST(AntHeight, AdoptsAnImplementation) {
  auto* const impl = new GPSAntHeightImplC(1.5F, false, 0.25F);
  const GPSAntHeightC antenna(impl);
  EXPECT_EQ(antenna.GetImpl(), impl);
  EXPECT_EQ(impl->GetBase(), &antenna);
  ExpectHolds(antenna, 1.5F, false, 0.25F);
}

TEST(AntHeight, CopyIsEqualAndIndependent) {
  GPSAntHeightC antenna(new GPSAntHeightImplC(1.5F, false, 0.25F));
  GPSAntHeightC copy(antenna);
  ExpectHolds(copy, 1.5F, false, 0.25F);
  EXPECT_TRUE(copy.IsEqual(antenna));
  copy.SetHeight(9.0F, true);
  copy.SetHorizontalOffset(8.0F);
  ExpectHolds(antenna, 1.5F, false, 0.25F);
  EXPECT_FALSE(copy.IsEqual(antenna));
  EXPECT_EQ(&(antenna = copy), &antenna);
  ExpectHolds(antenna, 9.0F, true, 8.0F);
  EXPECT_NE(antenna.GetImpl(), copy.GetImpl());
}

TEST(AntHeight, SelfAssignmentChangesNothing) {
  GPSAntHeightC antenna(new GPSAntHeightImplC(1.5F, false, 0.25F));
  const auto* const impl = antenna.GetImpl();
  const GPSAntHeightC& same = antenna;
  EXPECT_EQ(&(antenna = same), &antenna);
  EXPECT_EQ(antenna.GetImpl(), impl);
  ExpectHolds(antenna, 1.5F, false, 0.25F);
}

// A public object whose implementation is missing, compact or of an unrelated class.
TEST(AntHeight, ReturnsZeroWithoutAMatchingImplementation) {
  GPSAntHeightC missing(static_cast<GPSAntHeightImplC*>(nullptr));
  GPSAntHeightC compact(new ODM::GPSAntHeightC(1.5F, true, 0.25F));
  GPSAntHeightC foreign(static_cast<GPSAntHeightImplC*>(nullptr));
  foreign.SetImpl(new SDI::GPSDOPsImplC);
  for (GPSAntHeightC* const antenna : {&missing, &compact, &foreign}) {
    EXPECT_EQ(antenna->GetImpl(), nullptr);
    antenna->SetHeight(3.0F, true);
    antenna->SetHorizontalOffset(1.0F);
    ExpectHolds(*antenna, 0.0F, false, 0.0F);
    EXPECT_EQ(antenna->GetVerticalHeight(), 0.0F);
    EXPECT_FALSE(antenna->IsEqual(*antenna));
    EXPECT_FALSE(antenna->IsEqual(GPSAntHeightC()));
    EXPECT_FALSE(GPSAntHeightC().IsEqual(*antenna));

    const GPSAntHeightC copy(*antenna);
    ExpectHolds(copy, 0.0F, true, 0.0F);
    GPSAntHeightC full(new GPSAntHeightImplC(1.5F, false, 0.25F));
    full = *antenna;
    ExpectHolds(full, 1.5F, false, 0.25F);
    *antenna = full;
    EXPECT_EQ(antenna->GetImpl(), nullptr);
  }
  const auto* const held = static_cast<API::BaseC&>(compact).GetImpl();
  ExpectHolds(dynamic_cast<const ODM::GPSAntHeightC&>(*held), 1.5F, true, 0.25F);
}

TEST(AntHeight, ReadsAnImplementationDerivedFromItsOwn) {
  class DerivedC : public GPSAntHeightImplC {
   public:
    using GPSAntHeightImplC::GPSAntHeightImplC;
  };
  const GPSAntHeightC antenna(new DerivedC(1.5F, false, 0.25F));
  ExpectHolds(antenna, 1.5F, false, 0.25F);
}

}  // namespace
