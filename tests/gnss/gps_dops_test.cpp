#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/gnss/gps_dops.h>

namespace {

using SDI::DOP_NOT_AVAILABLE;
using SDI::GPSDOPsC;
using SDI::GPSDOPsImplC;

// Both implementations store and return the same values.
template <class Impl>
class DOPsImpl : public testing::Test {};
using BothImpls = testing::Types<GPSDOPsImplC, ODM::GPSDOPsC>;
TYPED_TEST_SUITE(DOPsImpl, BothImpls);

template <class DOPs>
void ExpectAll(const DOPs& dops, double value) {
  EXPECT_EQ(dops.GetHDOP(), value);
  EXPECT_EQ(dops.GetVDOP(), value);
  EXPECT_EQ(dops.GetTDOP(), value);
  EXPECT_EQ(dops.GetPDOP(), value);
  EXPECT_EQ(dops.GetGDOP(), value);
}

template <class Impl>
void ExpectStores(const Impl& dops, unsigned hdop, unsigned vdop, unsigned tdop) {
  EXPECT_EQ(dops.GetHDOPTenths(), hdop);
  EXPECT_EQ(dops.GetVDOPTenths(), vdop);
  EXPECT_EQ(dops.GetTDOPTenths(), tdop);
}

TEST(DOPNotAvailable, IsTheLargestStoredValue) { EXPECT_EQ(DOP_NOT_AVAILABLE, 0xFFFF); }

TYPED_TEST(DOPsImpl, NoneIsAvailableByDefault) {
  ExpectStores(TypeParam(), 0xFFFF, 0xFFFF, 0xFFFF);
  ExpectAll(TypeParam(), -1.0);
}

TYPED_TEST(DOPsImpl, OwnerConstructorHoldsDefaultsAndKnowsItsOwner) {
  auto* const owner = new GPSDOPsC(static_cast<GPSDOPsImplC*>(nullptr));
  auto* const dops = new TypeParam(static_cast<API::BaseC*>(owner));
  EXPECT_EQ(dops->GetBase(), owner);
  ExpectStores(*dops, 0xFFFF, 0xFFFF, 0xFFFF);
  owner->SetImpl(dops);
  delete owner;  // and with it the implementation
}

TYPED_TEST(DOPsImpl, ReadsTenths) {
  const TypeParam dops(30, 40, 0xFFFF);
  EXPECT_EQ(dops.GetHDOP(), 3.0);
  EXPECT_EQ(dops.GetVDOP(), 4.0);
  EXPECT_EQ(dops.GetPDOP(), 5.0);
  EXPECT_EQ(dops.GetTDOP(), -1.0);
  EXPECT_EQ(dops.GetGDOP(), -1.0);
  EXPECT_EQ(TypeParam(20, 30, 60).GetGDOP(), 7.0);
  ExpectAll(TypeParam(0, 0, 0), 0.0);
}

TYPED_TEST(DOPsImpl, EveryStoredValueIsTheQuotientByTen) {
  for (unsigned tenths = 0; tenths <= 0xFFFF; ++tenths) {
    const auto stored = static_cast<std::uint16_t>(tenths);
    const double expected = tenths < 65535 ? tenths / 10.0 : -1.0;
    ASSERT_EQ(TypeParam(stored, 1, 2).GetHDOP(), expected) << tenths;
    ASSERT_EQ(TypeParam(1, stored, 2).GetVDOP(), expected) << tenths;
    ASSERT_EQ(TypeParam(1, 2, stored).GetTDOP(), expected) << tenths;
  }
  EXPECT_EQ(TypeParam(65534, 0, 0).GetHDOP(), 6553.4);
}

TYPED_TEST(DOPsImpl, CombinedValuesNeedAllTheirParts) {
  constexpr std::uint16_t kValues[] = {0, 1, 23, 40, 65534, 65535};
  for (const unsigned h : kValues) {
    for (const unsigned v : kValues) {
      for (const unsigned t : kValues) {
        SCOPED_TRACE(testing::Message() << h << ' ' << v << ' ' << t);
        const TypeParam dops(static_cast<std::uint16_t>(h), static_cast<std::uint16_t>(v),
                             static_cast<std::uint16_t>(t));
        const double hh = static_cast<double>(h) * h;
        const double vv = static_cast<double>(v) * v;
        const double tt = static_cast<double>(t) * t;
        const bool hv = h < 65535 && v < 65535;
        EXPECT_EQ(dops.GetPDOP(), hv ? std::sqrt(hh + vv) / 10.0 : -1.0);
        EXPECT_EQ(dops.GetGDOP(), hv && t < 65535 ? std::sqrt(hh + vv + tt) / 10.0 : -1.0);
      }
    }
  }
}

TYPED_TEST(DOPsImpl, CopiesAreEqualAndWithoutOwner) {
  TypeParam dops(1, 2, 3);
  API::BaseC* const owner = dops.GetBase();
  TypeParam copy(dops);
  ExpectStores(copy, 1, 2, 3);
  EXPECT_NE(copy.GetBase(), owner);
  TypeParam assigned;
  API::BaseC* const ownerOfAssigned = assigned.GetBase();
  assigned = dops;
  ExpectStores(assigned, 1, 2, 3);
  EXPECT_EQ(assigned.GetBase(), ownerOfAssigned);
  const TypeParam& same = dops;
  dops = same;
  ExpectStores(dops, 1, 2, 3);
}

TYPED_TEST(DOPsImpl, MakesItsPublicObjectOnceAndOwnsIt) {
  TypeParam dops;
  API::BaseC* const base = dops.GetBase();
  ASSERT_NE(dynamic_cast<GPSDOPsC*>(base), nullptr);
  EXPECT_EQ(base->GetImpl(), &dops);
  EXPECT_EQ(dops.GetBase(), base);
}

TYPED_TEST(DOPsImpl, EqualityTakesEveryField) {
  const TypeParam dops(1, 2, 3);
  EXPECT_TRUE(dops.isEqual(TypeParam(1, 2, 3)));
  EXPECT_FALSE(dops.isEqual(TypeParam(9, 2, 3)));
  EXPECT_FALSE(dops.isEqual(TypeParam(1, 9, 3)));
  EXPECT_FALSE(dops.isEqual(TypeParam(1, 2, 9)));
  EXPECT_TRUE(TypeParam().isEqual(TypeParam()));
}

TEST(DOPs, NoneIsAvailableByDefault) { ExpectAll(GPSDOPsC(), -1.0); }

TEST(DOPs, ReadsFromItsImplementation) {
  const GPSDOPsC dops(new GPSDOPsImplC(20, 30, 60));
  EXPECT_EQ(dops.GetHDOP(), 2.0);
  EXPECT_EQ(dops.GetVDOP(), 3.0);
  EXPECT_EQ(dops.GetTDOP(), 6.0);
  EXPECT_EQ(dops.GetPDOP(), std::sqrt(1300.0) / 10.0);
  EXPECT_EQ(dops.GetGDOP(), 7.0);
}

TEST(DOPs, CopyIsEqualAndIndependent) {
  const GPSDOPsC dops(new GPSDOPsImplC(20, 30, 60));
  GPSDOPsC copy(dops);
  EXPECT_TRUE(copy.IsEqual(dops));
  EXPECT_NE(copy.GetImpl(), dops.GetImpl());
  EXPECT_EQ(&(copy = GPSDOPsC()), &copy);
  ExpectAll(copy, -1.0);
  EXPECT_FALSE(copy.IsEqual(dops));
  EXPECT_EQ(dops.GetGDOP(), 7.0);
}

TEST(DOPs, SelfAssignmentChangesNothing) {
  GPSDOPsC dops(new GPSDOPsImplC(20, 30, 60));
  const auto* const impl = dops.GetImpl();
  const GPSDOPsC& same = dops;
  EXPECT_EQ(&(dops = same), &dops);
  EXPECT_EQ(dops.GetImpl(), impl);
  EXPECT_EQ(dops.GetGDOP(), 7.0);
}

// A public object whose implementation is missing, compact or of an unrelated class.
TEST(DOPs, ReturnsZeroWithoutAMatchingImplementation) {
  GPSDOPsC missing(static_cast<GPSDOPsImplC*>(nullptr));
  GPSDOPsC compact(new ODM::GPSDOPsC(20, 30, 60));
  GPSDOPsC foreign(static_cast<GPSDOPsImplC*>(nullptr));
  foreign.SetImpl(new SDI::GPSAntHeightImplC);
  for (GPSDOPsC* const dops : {&missing, &compact, &foreign}) {
    EXPECT_EQ(dops->GetImpl(), nullptr);
    ExpectAll(*dops, 0.0);
    EXPECT_FALSE(dops->IsEqual(*dops));
    EXPECT_FALSE(dops->IsEqual(GPSDOPsC()));
    EXPECT_FALSE(GPSDOPsC().IsEqual(*dops));

    ExpectAll(GPSDOPsC(*dops), -1.0);
    GPSDOPsC full(new GPSDOPsImplC(20, 30, 60));
    full = *dops;
    EXPECT_EQ(full.GetGDOP(), 7.0);
    *dops = full;
    EXPECT_EQ(dops->GetImpl(), nullptr);
  }
}

}  // namespace
