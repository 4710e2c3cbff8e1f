#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_meas_data.h>

#include "tests/gnss/stored_fields.h"
#include "tests/support/field_changes.h"

namespace {

using SDI::GPSAntHeightC;
using SDI::GPSAntHeightImplC;
using SDI::GPSDOPsC;
using SDI::GPSDOPsImplC;
using SDI::GPSListBlock;
using SDI::GPSMeasDataC;
using SDI::GPSMeasDataImplC;
using TestSupport::FilledMeasurement;
using TestSupport::StoredFields;
using TestSupport::StoredIn;

using Bytes2 = std::pair<unsigned, unsigned>;
constexpr Bytes2 kUntouched{0xA5, 0x5A};

// The result of a pair getter: the pair, or unchanged outputs if it returns false.
template <class Meas, class Getter>
Bytes2 Asked(const Meas& meas, Getter getter, bool expected) {
  std::uint8_t first = 0xA5;
  std::uint8_t second = 0x5A;
  EXPECT_EQ((meas.*getter)(first, second), expected);
  return {first, second};
}

template <class Meas>
void ExpectPairs(const Meas& meas, const Bytes2* total, const Bytes2* system1,
                 const Bytes2* system2, const Bytes2* system3) {
  const auto expected = [](const Bytes2* pair) { return pair != nullptr ? *pair : kUntouched; };
  EXPECT_EQ(Asked(meas, &Meas::GetTotalPair, total != nullptr), expected(total));
  EXPECT_EQ(Asked(meas, &Meas::GetSystem1Pair, system1 != nullptr), expected(system1));
  EXPECT_EQ(Asked(meas, &Meas::GetSystem2Pair, system2 != nullptr), expected(system2));
  EXPECT_EQ(Asked(meas, &Meas::GetSystem3Pair, system3 != nullptr), expected(system3));
}

// The getters of both implementations and of the public class before anything is set.
template <class Meas>
void ExpectNothingPresent(const Meas& meas) {
  GPSAntHeightC antenna(new GPSAntHeightImplC(1.5F, false, 0.25F));
  EXPECT_FALSE(meas.GetAntennaHeight(antenna));
  EXPECT_TRUE(antenna.IsEqual(GPSAntHeightC(new GPSAntHeightImplC(1.5F, false, 0.25F))));
  GPSDOPsC dops(new GPSDOPsImplC(1, 2, 3));
  EXPECT_FALSE(meas.GetDOPs(dops));
  EXPECT_TRUE(dops.IsEqual(GPSDOPsC(new GPSDOPsImplC(1, 2, 3))));
  std::uint16_t word = 0xA55A;
  EXPECT_FALSE(meas.GetWord16(word));
  EXPECT_EQ(word, 0xA55A);
  ExpectPairs(meas, nullptr, nullptr, nullptr, nullptr);
  double vector[3] = {1.0, 2.0, 3.0};
  EXPECT_FALSE(meas.GetVector(vector));
  EXPECT_EQ(vector[0], 1.0);
  EXPECT_EQ(vector[1], 2.0);
  EXPECT_EQ(vector[2], 3.0);
  EXPECT_EQ(meas.GetValueCount(), 0);
  EXPECT_EQ(meas.GetValue(0), 0);
}

// --- Both implementations -----------------------------------------------------------------------

template <class Impl>
struct PartsOf;
template <>
struct PartsOf<GPSMeasDataImplC> {
  using AntHeight = GPSAntHeightImplC;
  using DOPs = GPSDOPsImplC;
};
template <>
struct PartsOf<ODM::GPSMeasDataC> {
  using AntHeight = ODM::GPSAntHeightC;
  using DOPs = ODM::GPSDOPsC;
};

template <class Impl>
class MeasDataImpl : public testing::Test {};
using BothImpls = testing::Types<GPSMeasDataImplC, ODM::GPSMeasDataC>;
TYPED_TEST_SUITE(MeasDataImpl, BothImpls);

TYPED_TEST(MeasDataImpl, HoldsNothingByDefault) {
  const TypeParam meas;
  EXPECT_EQ(meas.GetTimeA(), Vorlin::TimeC());
  EXPECT_EQ(meas.GetTimeB(), Vorlin::TimeC());
  EXPECT_EQ(meas.GetSetMask(), 0);
  EXPECT_EQ(meas.GetStatusMask(), 0);
  EXPECT_TRUE(meas.GetAntennaHeight().isEqual(typename PartsOf<TypeParam>::AntHeight()));
  EXPECT_TRUE(meas.GetDOPs().isEqual(typename PartsOf<TypeParam>::DOPs()));
  EXPECT_FALSE(meas.IsStatusBit0());
  EXPECT_FALSE(meas.IsStatusBit1());
  EXPECT_FALSE(meas.IsStatusBit2());
  EXPECT_FALSE(meas.IsStatusBit3());
  EXPECT_TRUE(meas.IsSystem1Used());
  EXPECT_FALSE(meas.IsSystem2Used());
  EXPECT_FALSE(meas.IsSystem3Used());
  ExpectNothingPresent(meas);
  double dop = 7.0;
  EXPECT_FALSE(meas.GetHDOP(dop));
  EXPECT_FALSE(meas.GetPDOP(dop));
  EXPECT_EQ(dop, 7.0);
}

TYPED_TEST(MeasDataImpl, OwnerConstructorHoldsDefaultsAndKnowsItsOwner) {
  auto* const owner = new GPSMeasDataC(static_cast<GPSMeasDataImplC*>(nullptr));
  auto* const meas = new TypeParam(static_cast<API::BaseC*>(owner));
  EXPECT_EQ(meas->GetBase(), owner);
  EXPECT_TRUE(meas->isEqual(TypeParam()));
  owner->SetImpl(meas);
  delete owner;  // and with it the implementation
}

TYPED_TEST(MeasDataImpl, MakesItsPublicObjectOnceAndOwnsIt) {
  TypeParam meas;
  API::BaseC* const base = meas.GetBase();
  ASSERT_NE(dynamic_cast<GPSMeasDataC*>(base), nullptr);
  EXPECT_EQ(base->GetImpl(), &meas);
  EXPECT_EQ(meas.GetBase(), base);
}

TYPED_TEST(MeasDataImpl, KeepsTheTimesApartAndRaisesNothing) {
  TypeParam meas;
  meas.SetTimeA({2200, 123456});
  meas.SetTimeB({2201, -123456});
  EXPECT_EQ(meas.GetTimeA(), (Vorlin::TimeC{2200, 123456}));
  EXPECT_EQ(meas.GetTimeB(), (Vorlin::TimeC{2201, -123456}));
  EXPECT_EQ(meas.GetSetMask(), 0);
  EXPECT_EQ(meas.GetStatusMask(), 0);
}

TYPED_TEST(MeasDataImpl, StatusSettersRaiseOnlyTheirBit) {
  const struct {
    void (TypeParam::*set)();
    bool (TypeParam::*is)() const;
    unsigned bit;
  } cases[] = {{&TypeParam::SetStatusBit0, &TypeParam::IsStatusBit0, 0x0001},
               {&TypeParam::SetStatusBit1, &TypeParam::IsStatusBit1, 0x0002},
               {&TypeParam::SetStatusBit2, &TypeParam::IsStatusBit2, 0x0004},
               {&TypeParam::SetStatusBit3, &TypeParam::IsStatusBit3, 0x0008}};
  TypeParam all;
  for (const auto& one : cases) {
    SCOPED_TRACE(one.bit);
    TypeParam meas;
    (meas.*one.set)();
    EXPECT_EQ(meas.GetStatusMask(), one.bit);
    EXPECT_EQ(meas.GetSetMask(), 0);
    for (const auto& other : cases) EXPECT_EQ((meas.*other.is)(), other.bit == one.bit);
    (all.*one.set)();
    (all.*one.set)();  // set again, never cleared
  }
  EXPECT_EQ(all.GetStatusMask(), 0x000F);
}

TYPED_TEST(MeasDataImpl, EveryRaisingSetterRaisesOnlyItsSetBit) {
  using Setter = void (*)(TypeParam&);
  const struct {
    Setter set;
    unsigned bit;
  } cases[] = {
      {[](TypeParam& m) { m.SetAntennaHeight(typename PartsOf<TypeParam>::AntHeight()); }, 0x0002},
      {[](TypeParam& m) { m.SetAntennaHeight(GPSAntHeightC()); }, 0x0002},
      {[](TypeParam& m) { m.SetDOPs(typename PartsOf<TypeParam>::DOPs()); }, 0x0004},
      {[](TypeParam& m) { m.SetTotalPair(0, 0); }, 0x0008},
      {[](TypeParam& m) {
         m.SetVector({0.0, 0.0, 0.0});
       },
       0x0010},
      {[](TypeParam& m) { m.SetWord16(0); }, 0x0020},
  };
  for (const auto& [set, bit] : cases) {
    SCOPED_TRACE(bit);
    TypeParam meas;
    set(meas);
    EXPECT_EQ(meas.GetSetMask(), bit);
    EXPECT_EQ(meas.GetStatusMask(), 0);
  }
}

TYPED_TEST(MeasDataImpl, AntennaHeightIsCopiedInAndOut) {
  TypeParam meas;
  meas.SetAntennaHeight(typename PartsOf<TypeParam>::AntHeight(1.5F, false, 0.25F));
  GPSAntHeightC antenna;
  EXPECT_TRUE(meas.GetAntennaHeight(antenna));
  EXPECT_TRUE(antenna.IsEqual(GPSAntHeightC(new GPSAntHeightImplC(1.5F, false, 0.25F))));

  meas.SetAntennaHeight(GPSAntHeightC(new GPSAntHeightImplC(2.5F, false, 0.75F)));
  const typename PartsOf<TypeParam>::AntHeight expected(2.5F, false, 0.75F);
  EXPECT_TRUE(meas.GetAntennaHeight().isEqual(expected));
  EXPECT_TRUE(meas.GetAntennaHeight(antenna));
  EXPECT_TRUE(antenna.IsEqual(GPSAntHeightC(new GPSAntHeightImplC(2.5F, false, 0.75F))));
}

TYPED_TEST(MeasDataImpl, AntennaHeightWithoutMatchingImplementationIsLeftAlone) {
  GPSAntHeightC foreign(new ODM::GPSAntHeightC(1.5F, false, 0.25F));
  TypeParam meas;
  meas.SetAntennaHeight(foreign);
  EXPECT_TRUE(meas.isEqual(TypeParam()));
  meas.SetAntennaHeight(GPSAntHeightC());
  EXPECT_FALSE(meas.GetAntennaHeight(foreign));
}

TYPED_TEST(MeasDataImpl, DOPsAreCopiedInAndOut) {
  TypeParam meas;
  meas.SetDOPs(typename PartsOf<TypeParam>::DOPs(30, 40, 0xFFFF));
  GPSDOPsC dops;
  EXPECT_TRUE(meas.GetDOPs(dops));
  EXPECT_TRUE(dops.IsEqual(GPSDOPsC(new GPSDOPsImplC(30, 40, 0xFFFF))));
  double dop = 0.0;
  EXPECT_TRUE(meas.GetHDOP(dop));
  EXPECT_EQ(dop, 3.0);
  EXPECT_TRUE(meas.GetPDOP(dop));
  EXPECT_EQ(dop, 5.0);
  GPSDOPsC foreign(new ODM::GPSDOPsC(1, 2, 3));
  EXPECT_FALSE(meas.GetDOPs(foreign));

  meas.SetDOPs(typename PartsOf<TypeParam>::DOPs());  // set, but not available
  EXPECT_TRUE(meas.GetHDOP(dop));
  EXPECT_EQ(dop, -1.0);
  EXPECT_TRUE(meas.GetPDOP(dop));
  EXPECT_EQ(dop, -1.0);
}

TYPED_TEST(MeasDataImpl, ValuesKeepTheFirstTwo) {
  const std::uint16_t values[] = {11, 22, 33, 44, 55};
  const struct {
    std::uint8_t count;
    unsigned kept, first, second;
  } cases[] = {{0, 0, 0, 0}, {1, 1, 11, 0}, {2, 2, 11, 22}, {3, 2, 11, 22}, {5, 2, 11, 22}};
  for (const auto& [count, kept, first, second] : cases) {
    SCOPED_TRACE(+count);
    TypeParam meas;
    meas.SetValues(values, count);
    EXPECT_EQ(meas.GetValueCount(), kept);
    EXPECT_EQ(meas.GetValue(0), first);
    EXPECT_EQ(meas.GetValue(1), second);
    EXPECT_EQ(meas.GetValue(2), 0);
    EXPECT_EQ(meas.GetValue(255), 0);
    EXPECT_EQ(meas.GetSetMask(), 0);
  }
}

TYPED_TEST(MeasDataImpl, FewerValuesLeaveTheOthersStoredAfterTheCount) {
  const std::uint16_t values[] = {11, 22};
  const std::uint16_t later[] = {33};
  TypeParam meas;
  meas.SetValues(values, 2);
  meas.SetValues(later, 1);
  EXPECT_EQ(meas.GetValueCount(), 1);
  EXPECT_EQ(meas.GetValue(0), 33);
  EXPECT_EQ(meas.GetValue(1), 0);
  meas.SetValues(nullptr, 2);
  EXPECT_EQ(meas.GetValueCount(), 0);
  EXPECT_EQ(meas.GetValue(0), 0);
}

TYPED_TEST(MeasDataImpl, Word16AndVectorAreCopiedInAndOut) {
  TypeParam meas;
  meas.SetWord16(0xBEEF);
  std::uint16_t word = 0;
  EXPECT_TRUE(meas.GetWord16(word));
  EXPECT_EQ(word, 0xBEEF);
  meas.SetVector({1.25, -2.5, 1e300});
  double vector[3] = {};
  EXPECT_TRUE(meas.GetVector(vector));
  EXPECT_EQ(vector[0], 1.25);
  EXPECT_EQ(vector[1], -2.5);
  EXPECT_EQ(vector[2], 1e300);
}

TYPED_TEST(MeasDataImpl, TotalPairIsThatOfSystem1UntilASystemIsSet) {
  const Bytes2 total{12, 9};
  const Bytes2 one{7, 5};
  TypeParam meas;
  meas.SetTotalPair(12, 9);
  ExpectPairs(meas, &total, &total, nullptr, nullptr);
  EXPECT_TRUE(meas.IsSystem1Used());
  meas.SetSystem1Pair(7, 5);
  EXPECT_EQ(meas.GetSetMask(), 0x0048);
  EXPECT_EQ(meas.GetStatusMask(), 0x0010);
  ExpectPairs(meas, &total, &one, nullptr, nullptr);
  EXPECT_TRUE(meas.IsSystem1Used());
}

TYPED_TEST(MeasDataImpl, WithOnlyAnotherSystemSystem1HasNoPair) {
  const Bytes2 total{12, 9};
  const Bytes2 later{5, 4};
  TypeParam two;
  two.SetTotalPair(12, 9);
  two.SetSystem2Pair(5, 4);
  EXPECT_EQ(two.GetSetMask(), 0x0048);
  EXPECT_EQ(two.GetStatusMask(), 0x0020);
  ExpectPairs(two, &total, nullptr, &later, nullptr);
  EXPECT_FALSE(two.IsSystem1Used());
  EXPECT_TRUE(two.IsSystem2Used());
  EXPECT_FALSE(two.IsSystem3Used());
  TypeParam three;
  three.SetTotalPair(12, 9);
  three.SetSystem3Pair(5, 4);
  EXPECT_EQ(three.GetSetMask(), 0x0048);
  EXPECT_EQ(three.GetStatusMask(), 0x0040);
  ExpectPairs(three, &total, nullptr, nullptr, &later);
  EXPECT_FALSE(three.IsSystem1Used());
  EXPECT_FALSE(three.IsSystem2Used());
  EXPECT_TRUE(three.IsSystem3Used());
}

TYPED_TEST(MeasDataImpl, System1IsPresentWithAPairOfZeros) {
  const Bytes2 zeros{0, 0};
  TypeParam meas;
  meas.SetSystem1Pair(0, 0);
  EXPECT_EQ(meas.GetSetMask(), 0x0040);
  EXPECT_EQ(meas.GetStatusMask(), 0x0010);
  ExpectPairs(meas, nullptr, &zeros, nullptr, nullptr);
}

TEST(MeasDataImpl, ReturnsStoredPairsWhetherOrNotTheyAreSet) {
  GPSMeasDataImplC meas;
  EXPECT_EQ(meas.GetStoredTotalPair(), SDI::GPSCounterPair{});
  meas.SetTotalPair(1, 2);
  meas.SetSystem1Pair(3, 4);
  meas.SetSystem2Pair(5, 0);
  meas.SetSystem3Pair(6, 0);
  EXPECT_EQ(meas.GetStoredTotalPair(), (SDI::GPSCounterPair{1, 2}));
  EXPECT_EQ(meas.GetStoredSystem1Pair(), (SDI::GPSCounterPair{3, 4}));
  EXPECT_EQ(meas.GetStoredSystem2Pair(), (SDI::GPSCounterPair{5, 0}));
  EXPECT_EQ(meas.GetStoredSystem3Pair(), (SDI::GPSCounterPair{6, 0}));
}

// --- Intended differences of the two implementations --------------------------------------------

TEST(MeasDataImplDifference, LaterSystemsWithoutASatelliteUsed) {
  GPSMeasDataImplC full;
  full.SetSystem2Pair(5, 0);
  full.SetSystem3Pair(6, 0);
  EXPECT_EQ(full.GetSetMask(), 0);
  EXPECT_EQ(full.GetStatusMask(), 0);
  ExpectPairs(full, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(StoredIn(full).system2Pair, (SDI::GPSCounterPair{5, 0}));
  EXPECT_EQ(StoredIn(full).system3Pair, (SDI::GPSCounterPair{6, 0}));

  const Bytes2 two{5, 0};
  const Bytes2 three{6, 0};
  ODM::GPSMeasDataC compact;
  compact.SetSystem2Pair(5, 0);
  EXPECT_EQ(compact.GetSetMask(), 0x0040);
  EXPECT_EQ(compact.GetStatusMask(), 0x0020);
  ExpectPairs(compact, nullptr, nullptr, &two, nullptr);
  compact.SetSystem3Pair(6, 0);
  EXPECT_EQ(compact.GetStatusMask(), 0x0060);
  ExpectPairs(compact, nullptr, nullptr, &two, &three);
}

TEST(MeasDataImplDifference, ALaterPairWithoutASatelliteUsedNeverLowersItsBits) {
  const Bytes2 zero{5, 0};
  GPSMeasDataImplC full;
  full.SetSystem2Pair(5, 4);
  full.SetSystem2Pair(5, 0);
  EXPECT_EQ(full.GetStatusMask(), 0x0020);
  ExpectPairs(full, nullptr, nullptr, &zero, nullptr);
}

TEST(MeasDataImplDifference, VerticalHeightOfATooShortSlantHeight) {
  const GPSAntHeightC antenna(new GPSAntHeightImplC(0.1F, false, 0.2F));
  GPSMeasDataImplC full;
  full.SetAntennaHeight(antenna);
  EXPECT_EQ(full.GetAntennaHeight().GetVerticalHeight(), 0.0F);
  ODM::GPSMeasDataC compact;
  compact.SetAntennaHeight(antenna);
  EXPECT_EQ(compact.GetAntennaHeight().GetVerticalHeight(), 0.1F);
}

// --- The compact implementation -----------------------------------------------------------------

TEST(MeasDataImplCompact, CopiesTakeEveryFieldAndNoOwner) {
  const ODM::GPSMeasDataC none;
  int seen = 0;
  for (const auto& change : Layouts::ChangesOf<ODM::GPSMeasDataC>()) {
    ODM::GPSMeasDataC meas;
    change(meas);
    if (meas.isEqual(none)) continue;  // the change gave the field its default
    ++seen;
    const API::BaseC* const owner = meas.GetBase();
    ODM::GPSMeasDataC copy(meas);
    EXPECT_TRUE(copy.isEqual(meas));
    EXPECT_NE(copy.GetBase(), owner);
    ODM::GPSMeasDataC assigned;
    const API::BaseC* const ownerOfAssigned = assigned.GetBase();
    assigned = meas;
    EXPECT_TRUE(assigned.isEqual(meas));
    EXPECT_FALSE(assigned.isEqual(none));
    EXPECT_EQ(assigned.GetBase(), ownerOfAssigned);
  }
  EXPECT_GE(seen, 16) << "times, flags, pairs, values, antenna height, DOPs";
}

// --- The full implementation --------------------------------------------------------------------

TEST(MeasDataImplFull, HoldsNothingByDefault) {
  const GPSMeasDataImplC meas;
  EXPECT_EQ(StoredIn(meas), StoredFields());
  std::uint16_t week = 0xA55A;
  std::int32_t timeOfWeek = -99;
  EXPECT_FALSE(meas.GetExtraTime(week, timeOfWeek));
  EXPECT_EQ(week, 0xA55A);
  EXPECT_EQ(timeOfWeek, -99);
  EXPECT_FALSE(meas.IsValueCSet());
  EXPECT_FALSE(meas.HasValueH());
  EXPECT_FALSE(meas.HasValueI());
  EXPECT_FALSE(meas.HasListBlock());
  EXPECT_FALSE(meas.HasTextA());
  EXPECT_FALSE(meas.HasTextB());
  EXPECT_FALSE(meas.HasTextC());
  EXPECT_FALSE(meas.HasTextD());
}

// Every setter changes only what it should.
TEST(MeasDataImplFull, EverySetterChangesOnlyItsFieldAndBits) {
  GPSListBlock list{.head = 9, .count = 2, .entries = {7, 8, 6}};
  const struct {
    const char* name;
    std::function<void(GPSMeasDataImplC&)> set;
    std::function<void(StoredFields&)> expected;
  } cases[] = {
      {"timeA",
       [](auto& m) {
         m.SetTimeA({1, 2});
       },
       [](auto& s) {
         s.timeA = {1, 2};
       }},
      {"timeB",
       [](auto& m) {
         m.SetTimeB({1, 2});
       },
       [](auto& s) {
         s.timeB = {1, 2};
       }},
      {"extraTime", [](auto& m) { m.SetExtraTime(0xFFFF, -5); },
       [](auto& s) { s.extraTimeCount = 1, s.extraWeek = 0xFFFF, s.extraTimeOfWeek = -5; }},
      {"flagA", [](auto& m) { m.SetFlagA(3); }, [](auto& s) { s.flagA = 3; }},
      {"valueB", [](auto& m) { m.SetValueB(0xFFFF'FFFF); },
       [](auto& s) { s.valueB = 0xFFFF'FFFF; }},
      {"valueC", [](auto& m) { m.SetValueC(0x8000'0000); },
       [](auto& s) { s.valueC = 0x8000'0000, s.setMask = 0x0080; }},
      {"textA", [](auto& m) { m.SetTextA(u"A"); }, [](auto& s) { s.textA = u"A"; }},
      {"textB", [](auto& m) { m.SetTextB(u"B"); }, [](auto& s) { s.textB = u"B"; }},
      {"valueD", [](auto& m) { m.SetValueD(-4); }, [](auto& s) { s.valueD = -4; }},
      {"textC", [](auto& m) { m.SetTextC(u"C"); }, [](auto& s) { s.textC = u"C"; }},
      {"flagE", [](auto& m) { m.SetFlagE(5); }, [](auto& s) { s.flagE = 5; }},
      {"textD", [](auto& m) { m.SetTextD(u"D"); }, [](auto& s) { s.textD = u"D"; }},
      {"valueF", [](auto& m) { m.SetValueF(255); }, [](auto& s) { s.valueF = 255; }},
      {"valueG", [](auto& m) { m.SetValueG(-7); }, [](auto& s) { s.valueG = -7; }},
      {"valueH", [](auto& m) { m.SetValueH(0); }, [](auto& s) { s.setMask = 0x0100; }},
      {"valueH", [](auto& m) { m.SetValueH(8); },
       [](auto& s) { s.valueH = 8, s.setMask = 0x0100; }},
      {"valueI", [](auto& m) { m.SetValueI(0); }, [](auto& s) { s.setMask = 0x0200; }},
      {"valueI", [](auto& m) { m.SetValueI(9); },
       [](auto& s) { s.valueI = 9, s.setMask = 0x0200; }},
      {"list", [&](auto& m) { m.SetListBlock(list); },
       [](auto& s) {
         s.listHead = 9, s.listCount = 2, s.listEntries = {7, 8, 6}, s.setMask = 0x0400;
       }},
  };
  for (const auto& [name, set, expected] : cases) {
    SCOPED_TRACE(name);
    GPSMeasDataImplC meas;
    set(meas);
    StoredFields fields;
    expected(fields);
    EXPECT_EQ(StoredIn(meas), fields);
  }
}

TEST(MeasDataImplFull, TestsOfPresenceFollowTheirSetters) {
  const GPSMeasDataImplC meas = FilledMeasurement();
  EXPECT_TRUE(meas.IsValueCSet());
  EXPECT_TRUE(meas.HasValueH());
  EXPECT_TRUE(meas.HasValueI());
  EXPECT_TRUE(meas.HasListBlock());
  EXPECT_TRUE(meas.HasTextA());
  EXPECT_TRUE(meas.HasTextB());
  EXPECT_TRUE(meas.HasTextC());
  EXPECT_TRUE(meas.HasTextD());
  EXPECT_EQ(meas.GetExtraTimeCount(), 1);
  std::uint16_t week = 0;
  std::int32_t timeOfWeek = 0;
  EXPECT_TRUE(meas.GetExtraTime(week, timeOfWeek));
  EXPECT_EQ(week, 555);
  EXPECT_EQ(timeOfWeek, 666666);
  EXPECT_EQ(meas.GetSetMask(), 0x07FE);  // every bit that is used
  EXPECT_EQ(meas.GetStatusMask(), 0x0074);
}

TEST(MeasDataImplFull, ValueCIsSetWhileItIsNotZero) {
  GPSMeasDataImplC meas;
  meas.SetWord16(1);
  meas.SetValueC(7);
  EXPECT_TRUE(meas.IsValueCSet());
  EXPECT_EQ(meas.GetSetMask(), 0x00A0);
  meas.SetValueC(0);
  EXPECT_FALSE(meas.IsValueCSet());
  EXPECT_EQ(meas.GetValueC(), 0U);
  EXPECT_EQ(meas.GetSetMask(), 0x0020);
}

TEST(MeasDataImplFull, CopiesTakeEveryFieldAndNoOwner) {
  GPSMeasDataImplC meas = FilledMeasurement();
  API::BaseC* const owner = meas.GetBase();
  API::BaseC* const antennaOwner = meas.GetAntennaHeight().GetBase();
  API::BaseC* const dopsOwner = meas.GetDOPs().GetBase();
  GPSMeasDataImplC copy(meas);
  EXPECT_EQ(StoredIn(copy), StoredIn(meas));
  EXPECT_NE(copy.GetBase(), owner);
  EXPECT_NE(copy.GetAntennaHeight().GetBase(), antennaOwner);
  EXPECT_NE(copy.GetDOPs().GetBase(), dopsOwner);
  GPSMeasDataImplC assigned;
  API::BaseC* const ownerOfAssigned = assigned.GetBase();
  assigned = meas;
  EXPECT_EQ(StoredIn(assigned), StoredIn(meas));
  EXPECT_EQ(assigned.GetBase(), ownerOfAssigned);
  const GPSMeasDataImplC& same = meas;
  meas = same;
  EXPECT_EQ(StoredIn(meas), StoredIn(FilledMeasurement()));
  EXPECT_EQ(meas.GetBase(), owner);
}

TEST(MeasDataImplFull, ResetKeepsOnlyTimesVectorAntennaHeightAndDOPs) {
  GPSMeasDataImplC meas = FilledMeasurement();
  meas.SetStatusBit0();
  meas.SetStatusBit1();
  meas.SetStatusBit3();
  const StoredFields before = StoredIn(meas);
  meas.Reset();
  StoredFields expected;
  expected.timeA = before.timeA;
  expected.timeB = before.timeB;
  expected.vector = before.vector;
  expected.height = before.height;
  expected.isVertical = before.isVertical;
  expected.horizontalOffset = before.horizontalOffset;
  expected.dops = before.dops;
  EXPECT_EQ(StoredIn(meas), expected);
  ExpectNothingPresent(meas);  // the stored values are absent
  EXPECT_TRUE(meas.IsSystem1Used());
}

TEST(MeasDataImplFull, ResetClearsTextsToTheirLastUnit) {
  GPSMeasDataImplC meas;
  meas.SetTextA(std::u16string(79, u'a').c_str());
  meas.SetTextD(std::u16string(29, u'd').c_str());
  meas.Reset();
  EXPECT_TRUE(std::all_of(meas.GetTextA(), meas.GetTextA() + 80, [](auto u) { return u == 0; }));
  EXPECT_TRUE(std::all_of(meas.GetTextD(), meas.GetTextD() + 30, [](auto u) { return u == 0; }));
}

// --- Texts --------------------------------------------------------------------------------------

struct TextField {
  const char* name;
  void (GPSMeasDataImplC::*set)(const char16_t*);
  const char16_t* (GPSMeasDataImplC::*get)() const;
  bool (GPSMeasDataImplC::*has)() const;
  std::size_t most;
};
constexpr TextField kTexts[] = {
    {"textA", &GPSMeasDataImplC::SetTextA, &GPSMeasDataImplC::GetTextA, &GPSMeasDataImplC::HasTextA,
     79},
    {"textB", &GPSMeasDataImplC::SetTextB, &GPSMeasDataImplC::GetTextB, &GPSMeasDataImplC::HasTextB,
     79},
    {"textC", &GPSMeasDataImplC::SetTextC, &GPSMeasDataImplC::GetTextC, &GPSMeasDataImplC::HasTextC,
     79},
    {"textD", &GPSMeasDataImplC::SetTextD, &GPSMeasDataImplC::GetTextD, &GPSMeasDataImplC::HasTextD,
     29},
};

TEST(MeasDataTexts, TakeUpToOneUnitLessThanTheirCapacity) {
  for (const TextField& field : kTexts) {
    for (std::size_t length = 0; length <= 300; ++length) {
      SCOPED_TRACE(testing::Message() << field.name << ' ' << length);
      GPSMeasDataImplC meas;
      (meas.*field.set)(u"before");
      std::u16string text(length, u'x');
      if (length > 0) text.back() = u'\xD800';  // a lone surrogate is stored as any unit
      errno = 0;
      (meas.*field.set)(text.c_str());
      if (length <= field.most) {
        EXPECT_EQ((meas.*field.get)(), text);
        EXPECT_EQ((meas.*field.has)(), length > 0);
        EXPECT_EQ(errno, 0);
      } else {
        EXPECT_EQ((meas.*field.get)()[0], 0);
        EXPECT_FALSE((meas.*field.has)());
        EXPECT_EQ(errno, ERANGE);
      }
      EXPECT_EQ(meas.GetSetMask(), 0);
    }
  }
}

TEST(MeasDataTexts, ATooLongTextIsNotReadBeyondTheCapacity) {  // AddressSanitizer checks it
  for (const TextField& field : kTexts) {
    GPSMeasDataImplC meas;
    const std::vector<char16_t> unterminated(field.most + 1, u'x');
    errno = 0;
    (meas.*field.set)(unterminated.data());
    EXPECT_FALSE((meas.*field.has)());
    EXPECT_EQ(errno, ERANGE);
  }
}

TEST(MeasDataTexts, AMissingTextEmptiesTheField) {
  for (const TextField& field : kTexts) {
    SCOPED_TRACE(field.name);
    GPSMeasDataImplC meas;
    (meas.*field.set)(u"before");
    errno = 0;
    (meas.*field.set)(nullptr);
    EXPECT_FALSE((meas.*field.has)());
    EXPECT_EQ(errno, EINVAL);
  }
}

TEST(MeasDataTexts, ATextMayBePartOfItsOwnField) {
  for (const TextField& field : kTexts) {
    SCOPED_TRACE(field.name);
    GPSMeasDataImplC meas;
    const std::u16string text = std::u16string(field.most - 6, u'x') + u"abcdef";
    (meas.*field.set)(text.c_str());
    (meas.*field.set)((meas.*field.get)());
    EXPECT_EQ((meas.*field.get)(), text);
    (meas.*field.set)((meas.*field.get)() + 3);
    EXPECT_EQ((meas.*field.get)(), text.substr(3));
    (meas.*field.set)((meas.*field.get)() + text.size() - 3);  // its terminator
    EXPECT_FALSE((meas.*field.has)());
  }
}

TEST(MeasDataTexts, EndAtTheirFirstZero) {
  for (const TextField& field : kTexts) {
    GPSMeasDataImplC meas;
    const char16_t text[] = u"ab\0cd";
    (meas.*field.set)(text);
    EXPECT_EQ(std::u16string((meas.*field.get)()), u"ab");
  }
}

// --- Equality -----------------------------------------------------------------------------------

template <class Impl>
using Changes = std::vector<std::pair<const char*, std::function<void(Impl&)>>>;

// Each changes one field of a filled measurement; `EqualFields` must detect it.
template <class Impl>
Changes<Impl> SharedChanges() {
  using AntHeight = typename PartsOf<Impl>::AntHeight;
  using DOPs = typename PartsOf<Impl>::DOPs;
  return {
      {"timeA.week",
       [](Impl& m) {
         m.SetTimeA({9, m.GetTimeA().timeOfWeek});
       }},
      {"timeA.timeOfWeek",
       [](Impl& m) {
         m.SetTimeA({m.GetTimeA().week, 9});
       }},
      {"timeB.week",
       [](Impl& m) {
         m.SetTimeB({9, m.GetTimeB().timeOfWeek});
       }},
      {"timeB.timeOfWeek",
       [](Impl& m) {
         m.SetTimeB({m.GetTimeB().week, 9});
       }},
      {"status bit 0", [](Impl& m) { m.SetStatusBit0(); }},
      {"status bit 1", [](Impl& m) { m.SetStatusBit1(); }},
      {"status bit 2", [](Impl& m) { m.SetStatusBit2(); }},
      {"status bit 3", [](Impl& m) { m.SetStatusBit3(); }},
      {"height", [](Impl& m) { m.GetAntennaHeight() = AntHeight(9, false, 0.25F); }},
      {"isVertical", [](Impl& m) { m.GetAntennaHeight() = AntHeight(1.75F, true, 0.25F); }},
      {"horizontalOffset", [](Impl& m) { m.GetAntennaHeight() = AntHeight(1.75F, false, 9); }},
      {"hdop", [](Impl& m) { m.GetDOPs() = DOPs(9, 22, 33); }},
      {"vdop", [](Impl& m) { m.GetDOPs() = DOPs(11, 9, 33); }},
      {"tdop", [](Impl& m) { m.GetDOPs() = DOPs(11, 22, 9); }},
      {"values[0]",
       [](Impl& m) {
         const std::uint16_t values[] = {9, 0x5678};
         m.SetValues(values, 2);
       }},
      {"values[1]",
       [](Impl& m) {
         const std::uint16_t values[] = {0x1234, 9};
         m.SetValues(values, 2);
       }},
      {"valueCount",
       [](Impl& m) {
         const std::uint16_t values[] = {0x1234};
         m.SetValues(values, 1);
       }},
      {"word16", [](Impl& m) { m.SetWord16(9); }},
      {"totalPair.first", [](Impl& m) { m.SetTotalPair(9, 62); }},
      {"totalPair.second", [](Impl& m) { m.SetTotalPair(61, 9); }},
      {"system1Pair.first", [](Impl& m) { m.SetSystem1Pair(9, 64); }},
      {"system1Pair.second", [](Impl& m) { m.SetSystem1Pair(63, 9); }},
      {"system2Pair.first", [](Impl& m) { m.SetSystem2Pair(9, 66); }},
      {"system2Pair.second", [](Impl& m) { m.SetSystem2Pair(65, 9); }},
      {"system3Pair.first", [](Impl& m) { m.SetSystem3Pair(9, 68); }},
      {"system3Pair.second", [](Impl& m) { m.SetSystem3Pair(67, 9); }},
      {"vector[0]",
       [](Impl& m) {
         m.SetVector({9, -2.5, 3.5});
       }},
      {"vector[1]",
       [](Impl& m) {
         m.SetVector({1.5, 9, 3.5});
       }},
      {"vector[2]",
       [](Impl& m) {
         m.SetVector({1.5, -2.5, 9});
       }},
  };
}

template <class Impl>
void FillShared(Impl& m) {
  m.SetTimeA({1111, 222222});
  m.SetTimeB({3333, -444444});
  m.SetAntennaHeight(typename PartsOf<Impl>::AntHeight(1.75F, false, 0.25F));
  const std::uint16_t values[] = {0x1234, 0x5678};
  m.SetValues(values, 2);
  m.SetDOPs(typename PartsOf<Impl>::DOPs(11, 22, 33));
  m.SetWord16(0xABCD);
  m.SetTotalPair(61, 62);
  m.SetSystem1Pair(63, 64);
  m.SetSystem2Pair(65, 66);
  m.SetSystem3Pair(67, 68);
  m.SetVector({1.5, -2.5, 3.5});
}

TYPED_TEST(MeasDataImpl, EqualityTakesEveryField) {
  TypeParam filled;
  FillShared(filled);
  EXPECT_TRUE(filled.isEqual(TypeParam(filled)));
  EXPECT_FALSE(filled.isEqual(TypeParam()));
  EXPECT_TRUE(TypeParam().isEqual(TypeParam()));
  for (const auto& [name, change] : SharedChanges<TypeParam>()) {
    SCOPED_TRACE(name);
    TypeParam changed(filled);
    change(changed);
    EXPECT_FALSE(filled.isEqual(changed));
    EXPECT_FALSE(changed.isEqual(filled));
  }
}

TYPED_TEST(MeasDataImpl, EqualityOfTheValuesStopsAtTheCount) {
  const auto with = [](std::uint16_t first, std::uint16_t second, std::uint8_t count) {
    const std::uint16_t values[] = {first, second};
    TypeParam meas;
    meas.SetValues(values, 2);
    meas.SetValues(values, count);
    return meas;
  };
  EXPECT_TRUE(with(1, 2, 0).isEqual(with(3, 4, 0)));
  EXPECT_TRUE(with(1, 2, 1).isEqual(with(1, 4, 1)));
  EXPECT_FALSE(with(1, 2, 1).isEqual(with(3, 2, 1)));
  EXPECT_FALSE(with(1, 2, 2).isEqual(with(1, 4, 2)));
  EXPECT_FALSE(with(1, 2, 2).isEqual(with(3, 2, 2)));
  EXPECT_FALSE(with(1, 2, 1).isEqual(with(1, 2, 2)));
}

TYPED_TEST(MeasDataImpl, EqualityTakesEverySetBit) {
  using AntHeight = typename PartsOf<TypeParam>::AntHeight;
  using DOPs = typename PartsOf<TypeParam>::DOPs;
  const TypeParam none;
  const Changes<TypeParam> raises = {
      {"antenna height", [](TypeParam& m) { m.SetAntennaHeight(AntHeight()); }},
      {"DOPs", [](TypeParam& m) { m.SetDOPs(DOPs()); }},
      {"total pair", [](TypeParam& m) { m.SetTotalPair(0, 0); }},
      {"vector",
       [](TypeParam& m) {
         m.SetVector({0, 0, 0});
       }},
      {"word16", [](TypeParam& m) { m.SetWord16(0); }},
      {"systems", [](TypeParam& m) { m.SetSystem1Pair(0, 0); }},
  };
  for (const auto& [name, raise] : raises) {
    SCOPED_TRACE(name);
    TypeParam raised;
    raise(raised);
    EXPECT_FALSE(none.isEqual(raised));
  }
}

TYPED_TEST(MeasDataImpl, EqualityToleratesTheEpsilonOfEachType) {
  using AntHeight = typename PartsOf<TypeParam>::AntHeight;
  constexpr double kUnit = std::numeric_limits<double>::epsilon();
  constexpr float kFloatUnit = std::numeric_limits<float>::epsilon();
  const auto withVector = [](double x) {
    TypeParam meas;
    meas.SetVector({x, 0.0, 0.0});
    return meas;
  };
  EXPECT_TRUE(withVector(1.0).isEqual(withVector(1.0 + 2 * kUnit)));
  EXPECT_FALSE(withVector(1.0).isEqual(withVector(1.0 + 3 * kUnit)));
  const auto withHeight = [](float height) {
    TypeParam meas;
    meas.SetAntennaHeight(AntHeight(height, true, 0.0F));
    return meas;
  };
  EXPECT_TRUE(withHeight(1.0F).isEqual(withHeight(1.0F + 2 * kFloatUnit)));
  EXPECT_FALSE(withHeight(1.0F).isEqual(withHeight(1.0F + 3 * kFloatUnit)));
}

TEST(MeasDataImplFull, EqualityTakesEveryFieldOfItsOwn) {
  const GPSMeasDataImplC filled = FilledMeasurement();
  Changes<GPSMeasDataImplC> changes = {
      {"extraTime.week", [](auto& m) { m.SetExtraTime(9, 666666); }},
      {"extraTime.timeOfWeek", [](auto& m) { m.SetExtraTime(555, 9); }},
      {"flagA", [](auto& m) { m.SetFlagA(9); }},
      {"valueB", [](auto& m) { m.SetValueB(9); }},
      {"valueC", [](auto& m) { m.SetValueC(9); }},
      {"textA", [](auto& m) { m.SetTextA(u"text A, olD"); }},
      {"textA, longer", [](auto& m) { m.SetTextA(u"text A, old "); }},
      {"textB", [](auto& m) { m.SetTextB(u"text B, olD"); }},
      {"valueD", [](auto& m) { m.SetValueD(9); }},
      {"textC", [](auto& m) { m.SetTextC(u"text C, olD"); }},
      {"flagE", [](auto& m) { m.SetFlagE(9); }},
      {"textD", [](auto& m) { m.SetTextD(u"text D, olD"); }},
      {"valueF", [](auto& m) { m.SetValueF(9); }},
      {"valueG", [](auto& m) { m.SetValueG(9); }},
      {"valueH", [](auto& m) { m.SetValueH(9); }},
      {"valueI", [](auto& m) { m.SetValueI(9); }},
  };
  const GPSListBlock& list = *filled.GetListBlock();
  const auto withList = [&changes](const char* name, const GPSListBlock& changed) {
    changes.emplace_back(name, [changed](auto& m) { m.SetListBlock(changed); });
  };
  for (unsigned i = 0; i < 31; ++i) {
    GPSListBlock changed = list;
    changed.entries[i] = 9;
    withList("list entry", changed);
  }
  GPSListBlock changed = list;
  changed.head = 9;
  withList("list head", changed);
  changed = list;
  changed.count = 30;
  withList("list count", changed);
  for (const auto& [name, change] : changes) {
    SCOPED_TRACE(name);
    GPSMeasDataImplC other(filled);
    change(other);
    EXPECT_FALSE(filled.isEqual(other));
    EXPECT_FALSE(other.isEqual(filled));
  }
  GPSMeasDataImplC raised;
  raised.SetExtraTime(0, 0);
  EXPECT_FALSE(raised.isEqual(GPSMeasDataImplC()));
}

TEST(MeasDataImplFull, EqualityIgnoresWhatFollowsTextsAndTheListCount) {
  GPSMeasDataImplC a;
  GPSMeasDataImplC b;
  a.SetTextA(u"a longer text before");
  a.SetTextA(u"text");
  b.SetTextA(u"text");
  a.SetListBlock({.head = 1, .count = 2, .entries = {5, 6, 7}});
  b.SetListBlock({.head = 1, .count = 2, .entries = {5, 6, 8}});
  EXPECT_TRUE(a.isEqual(b));
  // A count above the capacity reads no further than the entries.
  a.SetListBlock({.head = 1, .count = 255, .entries = {5}});
  b.SetListBlock({.head = 1, .count = 255, .entries = {5}});
  EXPECT_TRUE(a.isEqual(b));
}

// --- The public class ---------------------------------------------------------------------------

TEST(MeasData, HoldsNothingByDefault) {
  const GPSMeasDataC meas;
  EXPECT_EQ(meas.GetTimeA(), Vorlin::TimeC());
  EXPECT_EQ(meas.GetTimeB(), Vorlin::TimeC());
  EXPECT_TRUE(meas.IsSystem1Used());
  EXPECT_FALSE(meas.IsSystem2Used());
  EXPECT_FALSE(meas.IsValueCSet());
  ExpectNothingPresent(meas);
}

TEST(MeasData, ReadsFromItsImplementation) {
  auto* const impl = new GPSMeasDataImplC(FilledMeasurement());
  const GPSMeasDataC meas(impl);
  EXPECT_EQ(meas.GetTimeA(), (Vorlin::TimeC{1111, 222222}));
  EXPECT_EQ(meas.GetTimeB(), (Vorlin::TimeC{3333, -444444}));
  EXPECT_FALSE(meas.IsStatusBit0());
  EXPECT_FALSE(meas.IsStatusBit1());
  EXPECT_TRUE(meas.IsStatusBit2());
  EXPECT_FALSE(meas.IsStatusBit3());
  impl->SetStatusBit0();
  EXPECT_TRUE(meas.IsStatusBit0());
  EXPECT_FALSE(meas.IsStatusBit1());
  EXPECT_FALSE(meas.IsStatusBit3());
  impl->SetStatusBit1();
  EXPECT_TRUE(meas.IsStatusBit1());
  EXPECT_FALSE(meas.IsStatusBit3());
  impl->SetStatusBit3();
  EXPECT_TRUE(meas.IsStatusBit3());
  EXPECT_TRUE(meas.IsSystem1Used());
  EXPECT_TRUE(meas.IsSystem2Used());
  GPSAntHeightC antenna;
  EXPECT_TRUE(meas.GetAntennaHeight(antenna));
  EXPECT_TRUE(antenna.IsEqual(GPSAntHeightC(new GPSAntHeightImplC(1.75F, false, 0.25F))));
  EXPECT_EQ(meas.GetValueCount(), 2);
  EXPECT_EQ(meas.GetValue(0), 0x1234);
  EXPECT_EQ(meas.GetValue(1), 0x5678);
  EXPECT_EQ(meas.GetValue(2), 0);
  GPSDOPsC dops;
  EXPECT_TRUE(meas.GetDOPs(dops));
  EXPECT_TRUE(dops.IsEqual(GPSDOPsC(new GPSDOPsImplC(11, 22, 33))));
  std::uint16_t word = 0;
  EXPECT_TRUE(meas.GetWord16(word));
  EXPECT_EQ(word, 0xABCD);
  const Bytes2 total{61, 62};
  const Bytes2 one{63, 64};
  const Bytes2 two{65, 66};
  const Bytes2 three{67, 68};
  ExpectPairs(meas, &total, &one, &two, &three);
  double vector[3] = {};
  EXPECT_TRUE(meas.GetVector(vector));
  EXPECT_EQ(vector[0], 1.5);
  EXPECT_EQ(vector[1], -2.5);
  EXPECT_EQ(vector[2], 3.5);
  EXPECT_TRUE(meas.IsValueCSet());
  EXPECT_EQ(meas.GetFlagA(), 1);
  EXPECT_EQ(meas.GetValueB(), 0x0102'0304U);
  EXPECT_EQ(meas.GetValueC(), 0x0506'0708U);
  impl->SetFlagE(3);
  EXPECT_EQ(meas.GetFlagE(), 3);
}

TEST(MeasData, SettersStoreInItsImplementation) {
  GPSMeasDataC meas;
  meas.SetAntennaHeight(GPSAntHeightC(new GPSAntHeightImplC(1.5F, false, 0.25F)));
  EXPECT_TRUE(meas.GetImpl()->GetAntennaHeight().isEqual(GPSAntHeightImplC(1.5F, false, 0.25F)));
  EXPECT_EQ(meas.GetImpl()->GetSetMask(), 0x0002);
  const std::uint16_t values[] = {1, 2, 3, 4, 5};
  meas.SetValues(values, 5);
  EXPECT_EQ(meas.GetValueCount(), 2);
  EXPECT_EQ(meas.GetValue(1), 2);
  // An antenna height that the measurement cannot read sets no bit.
  GPSMeasDataC other;
  other.SetAntennaHeight(GPSAntHeightC(new ODM::GPSAntHeightC(1.5F, false, 0.25F)));
  EXPECT_EQ(other.GetImpl()->GetSetMask(), 0);
}

TEST(MeasData, CopyIsEqualAndIndependent) {
  GPSMeasDataC meas(new GPSMeasDataImplC(FilledMeasurement()));
  GPSMeasDataC copy(meas);
  EXPECT_EQ(StoredIn(*copy.GetImpl()), StoredIn(FilledMeasurement()));
  EXPECT_TRUE(copy.IsEqual(meas));
  copy.GetImpl()->SetWord16(9);
  EXPECT_FALSE(copy.IsEqual(meas));
  EXPECT_EQ(StoredIn(*meas.GetImpl()), StoredIn(FilledMeasurement()));
  EXPECT_EQ(&(meas = copy), &meas);
  EXPECT_EQ(StoredIn(*meas.GetImpl()), StoredIn(*copy.GetImpl()));
  EXPECT_NE(meas.GetImpl(), copy.GetImpl());
  const GPSMeasDataC& same = meas;
  EXPECT_EQ(&(meas = same), &meas);
  EXPECT_EQ(StoredIn(*meas.GetImpl()), StoredIn(*copy.GetImpl()));
}

// A public object whose implementation is missing, compact or of an unrelated class.
TEST(MeasData, ReturnsZeroWithoutAMatchingImplementation) {
  auto* const compactImpl = new ODM::GPSMeasDataC;
  FillShared(*compactImpl);
  compactImpl->SetStatusBit0();
  const ODM::GPSMeasDataC before(*compactImpl);
  GPSMeasDataC missing(static_cast<GPSMeasDataImplC*>(nullptr));
  GPSMeasDataC compact(compactImpl);
  GPSMeasDataC foreign(static_cast<GPSMeasDataImplC*>(nullptr));
  foreign.SetImpl(new GPSDOPsImplC);
  for (GPSMeasDataC* const meas : {&missing, &compact, &foreign}) {
    EXPECT_EQ(meas->GetImpl(), nullptr);
    const std::uint16_t values[] = {1, 2};
    meas->SetValues(values, 2);
    meas->SetAntennaHeight(GPSAntHeightC());
    EXPECT_EQ(meas->GetTimeA(), Vorlin::TimeC());
    EXPECT_EQ(meas->GetTimeB(), Vorlin::TimeC());
    EXPECT_FALSE(meas->IsStatusBit0());
    EXPECT_FALSE(meas->IsStatusBit1());
    EXPECT_FALSE(meas->IsStatusBit2());
    EXPECT_FALSE(meas->IsStatusBit3());
    EXPECT_FALSE(meas->IsSystem1Used());
    EXPECT_FALSE(meas->IsSystem2Used());
    ExpectNothingPresent(*meas);
    EXPECT_FALSE(meas->IsValueCSet());
    EXPECT_EQ(meas->GetFlagA(), 0);
    EXPECT_EQ(meas->GetValueB(), 0U);
    EXPECT_EQ(meas->GetValueC(), 0U);
    EXPECT_EQ(meas->GetFlagE(), 0);
    EXPECT_FALSE(meas->IsEqual(*meas));
    EXPECT_FALSE(meas->IsEqual(GPSMeasDataC()));
    EXPECT_FALSE(GPSMeasDataC().IsEqual(*meas));

    EXPECT_EQ(StoredIn(*GPSMeasDataC(*meas).GetImpl()), StoredFields());
    GPSMeasDataC full(new GPSMeasDataImplC(FilledMeasurement()));
    full = *meas;
    EXPECT_EQ(StoredIn(*full.GetImpl()), StoredIn(FilledMeasurement()));
    *meas = full;
    EXPECT_EQ(meas->GetImpl(), nullptr);
  }
  EXPECT_TRUE(compactImpl->isEqual(before));
}

}  // namespace
