#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/record_fields.h"

// Tests the rules for the fields of every record, using the list of its fields.

namespace {

using Records::Compared;
using Records::DifferingFields;
using Records::Field;
using Records::FieldsOf;
using Records::FillAll;

template <class Record>
concept HasOperator = requires(const Record& a, const Record& b) {
  a == b;
};
template <class Record>
concept HasUnequal = requires(const Record& a, const Record& b) {
  a != b;
};
template <class Record>
concept HasIsEqual = requires(const Record& a, const Record& b) {
  a.IsEqual(b);
};
template <class Record>
concept HasIsEqualOfData = requires(const Record& a, const Record& b) {
  a.isEqual(b);
};

// The names of the comparisons: `IsEqual`, and `isEqual` in the implementation; in imaging,
// `operator==` on both sides. `operator!=` is deleted everywhere, because C++20 would derive it
// only in some classes.
enum class Equality { kMethods, kOperators, kNone };

template <class Public, class Impl, Equality equality = Equality::kMethods>
struct Pair {
  using PublicT = Public;
  using ImplT = Impl;
  static constexpr bool kHasEquality = equality != Equality::kNone;
  static_assert(HasIsEqual<Public> == (equality == Equality::kMethods));
  static_assert(HasIsEqualOfData<Impl> == (equality == Equality::kMethods));
  static_assert(HasOperator<Public> == (equality == Equality::kOperators));
  static_assert(HasOperator<Impl> == (equality == Equality::kOperators));
  static_assert(!HasIsEqualOfData<Public> && !HasIsEqual<Impl>);
  static_assert(!HasUnequal<Public> && !HasUnequal<Impl>);

  const char* name;
  std::size_t fields;  // number of fields of the record, including those of its parts
};

// Calls `check` with each record. Every record must be listed here.
template <class Check>
void ForEachPair(Check check) {
  const auto run = [&](const auto& pair) {
    SCOPED_TRACE(pair.name);
    check(pair);
  };
  run(Pair<SDI::CoordinatePointC, ODM::CoordinatePointC>{"CoordinatePoint", 3});
  run(Pair<SDI::QMatrixC, ODM::QMatrixC>{"QMatrix", 6});
  run(Pair<SDI::CoordinateQualityC, ODM::CoordinateQualityC>{"CoordinateQuality", 8});
  run(Pair<SDI::CoordinateReferenceSystemC, ODM::CoordinateReferenceSystemC>{
      "CoordinateReferenceSystem", 3});
  run(Pair<SDI::UndulationMementoC, ODM::UndulationMementoC>{"UndulationMemento", 3});
  run(Pair<SDI::PositionC, ODM::PositionC>{"Position", 22});
  run(Pair<SDI::RectangleC, ODM::RectangleC, Equality::kNone>{"Rectangle", 9});
  run(Pair<SDI::DisplayAttributesC, ODM::DisplayAttributesC, Equality::kNone>{"DisplayAttributes",
                                                                              8});
  run(Pair<SDI::InstrumentInfoDataC, ODM::InstrumentInfoDataC>{"InstrumentInfoData", 11});
  run(Pair<SDI::GPSAntHeightC, SDI::GPSAntHeightImplC>{"GPSAntHeight", 3});
  run(Pair<SDI::GPSRefStationDataC, SDI::GPSRefStationDataImplC>{"GPSRefStationData", 15});
  run(Pair<SDI::TPSSetupDataC, ODM::TPSSetupDataC>{"TPSSetupData", 13});
  run(Pair<SDI::TPSMeasDataC, ODM::TPSMeasDataC>{"TPSMeasData", 28});
  run(Pair<SDI::TPSCorrectionDataC, ODM::TPSCorrectionDataC>{"TPSCorrectionData", 13});
  run(Pair<SDI::TPSCalibrationDataC, ODM::TPSCalibrationDataC>{"TPSCalibrationData", 8});
  run(Pair<SDI::ImgCameraInfoC, SDI::ImgCameraInfoImplC, Equality::kOperators>{"ImgCameraInfo",
                                                                               11});
  run(Pair<SDI::ImgChipWindowInfoC, SDI::ImgChipWindowInfoImplC, Equality::kOperators>{
      "ImgChipWindowInfo", 4});
  run(Pair<SDI::ImgExteriorOrientationC, SDI::ImgExteriorOrientationImplC, Equality::kOperators>{
      "ImgExteriorOrientation", 6});
  run(Pair<SDI::ImgInteriorOrientationC, SDI::ImgInteriorOrientationImplC, Equality::kOperators>{
      "ImgInteriorOrientation", 7});
}

template <class Record>
bool AreEqual(const Record& a, const Record& b) {
  if constexpr (HasOperator<Record>) {
    return a == b;
  } else if constexpr (HasIsEqual<Record>) {
    return a.IsEqual(b);
  } else {
    return a.isEqual(b);
  }
}

// Checks the equality of two pairs, on both sides and in both orders.
template <class Public>
void ExpectEquality(const Public& a, const Public& b, bool expected) {
  SCOPED_TRACE("fields that differ: " + DifferingFields(*a.GetImpl(), *b.GetImpl()));
  EXPECT_EQ(AreEqual(a, b), expected);
  EXPECT_EQ(AreEqual(b, a), expected);
  EXPECT_EQ(AreEqual(*a.GetImpl(), *b.GetImpl()), expected);
  EXPECT_EQ(AreEqual(*b.GetImpl(), *a.GetImpl()), expected);
}

TEST(Records, HaveTheirFieldsListed) {
  ForEachPair([]<class P>(const P& pair) {
    const auto fields = FieldsOf<typename P::ImplT>();
    EXPECT_EQ(fields.size(), pair.fields);
    typename P::ImplT filled;
    FillAll(filled);
    std::string all;
    for (const auto& field : fields) all += (all.empty() ? "" : ", ") + field.name;
    EXPECT_EQ(DifferingFields(filled, typename P::ImplT()), all);
  });
}

// The range of bytes that `change` changes in `record`, as a half-open interval.
template <class Record, class Change>
std::pair<std::size_t, std::size_t> ChangedBytes(Record& record, Change change) {
  const auto bytes = [&record] {
    const auto* const first = reinterpret_cast<const unsigned char*>(&record);
    return std::vector<unsigned char>(first, first + sizeof(record));
  };
  const std::vector<unsigned char> before = bytes();
  change();
  const std::vector<unsigned char> after = bytes();
  const auto first = std::ranges::mismatch(before, after).in1 - before.begin();
  const auto last = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first;
  return {first, before.rend() - last};
}

TEST(Records, HoldTheirFieldsInOrderAndTheirPublicObjectsNone) {
  ForEachPair([]<class P>(const P&) {
    static_assert(sizeof(typename P::PublicT) == sizeof(API::BaseC));
    std::size_t end = sizeof(API::ImplObjectC);
    for (const auto& field : FieldsOf<typename P::ImplT>()) {
      SCOPED_TRACE(field.name);
      typename P::ImplT record;
      const auto [first, behind] = ChangedBytes(record, [&] { field.Fill(record, 17); });
      EXPECT_LT(first, behind);
      EXPECT_LE(end, first);
      end = behind;
    }
  });
}

TEST(Records, AreZeroByDefaultExceptForTheseFields) {
  const std::map<std::string, std::string> others = {
      {"CoordinateReferenceSystem.Variant", "1"},
      {"Position.CRS.Variant", "1"},
      {"Position.Attribute1", "50"},
      {"Rectangle.CRS.Variant", "1"},
      {"GPSAntHeight.IsVertical", "1"},
      {"GPSRefStationData.referenceSystem.Variant", "1"},
      {"GPSRefStationData.antennaHeight.IsVertical", "1"},
      {"TPSCorrectionData.ScaleFactor", "1"},
  };
  std::size_t found = 0;
  ForEachPair([&]<class P>(const P& pair) {
    const typename P::PublicT object;
    for (const auto& field : FieldsOf<typename P::ImplT>()) {
      SCOPED_TRACE(field.name);
      const std::string shown = field.Show(*object.GetImpl());
      const auto other = others.find(std::string(pair.name) + "." + field.name);
      if (other == others.end()) {
        EXPECT_TRUE(shown.empty() || shown == "0") << shown;
      } else {
        EXPECT_EQ(shown, other->second);
        ++found;
      }
    }
  });
  EXPECT_EQ(found, others.size());
}

TEST(Records, StoreInOneFieldWhatOneSetterIsGiven) {
  ForEachPair([]<class P>(const P&) {
    for (const auto& field : FieldsOf<typename P::ImplT>()) {
      typename P::ImplT record;
      field.Fill(record, 17);
      EXPECT_EQ(DifferingFields(record, typename P::ImplT()), field.name);
      EXPECT_EQ(field.Show(record), field.Filled(17)) << field.name;
    }
  });
}

TEST(Records, ReadAndWriteTheSameFieldOnBothSides) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    using Impl = typename P::ImplT;
    if constexpr (requires { FieldsOf<Public>(); }) {
      const auto fieldsOfImpl = FieldsOf<Impl>();
      for (const auto& field : FieldsOf<Public>()) {
        SCOPED_TRACE(field.name);
        const auto same = std::ranges::find(fieldsOfImpl, field.name, &Field<Impl>::name);
        ASSERT_NE(same, fieldsOfImpl.end());
        Public object;
        field.Fill(object, 17);
        Impl direct;
        same->Fill(direct, 17);
        EXPECT_EQ(DifferingFields(*object.GetImpl(), direct), "");
        EXPECT_EQ(field.Show(object), field.Filled(17));
        FillAll(*object.GetImpl());
        EXPECT_EQ(field.Show(object), same->Show(*object.GetImpl()));
      }
    }
  });
}

TEST(Records, AreCopiedAndAssignedWithEveryField) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    using Impl = typename P::ImplT;
    Public source;
    FillAll(*source.GetImpl());
    const Impl reference(*source.GetImpl());
    EXPECT_EQ(DifferingFields(reference, *source.GetImpl()), "");

    Public copy(source);
    Public assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    Impl assignedImpl;
    EXPECT_EQ(&(assignedImpl = *source.GetImpl()), &assignedImpl);
    EXPECT_EQ(DifferingFields(*copy.GetImpl(), reference), "");
    EXPECT_EQ(DifferingFields(*assigned.GetImpl(), reference), "");
    EXPECT_EQ(DifferingFields(assignedImpl, reference), "");
    EXPECT_NE(copy.GetImpl(), source.GetImpl());

    for (const auto& field : FieldsOf<Impl>()) {
      field.Move(*copy.GetImpl(), 5);
      field.Move(*assigned.GetImpl(), 5);
    }
    EXPECT_EQ(DifferingFields(*source.GetImpl(), reference), "") << "changed through a copy";

    const Public& same = source;
    source = same;
    *source.GetImpl() = *same.GetImpl();
    EXPECT_EQ(DifferingFields(*source.GetImpl(), reference), "") << "changed by self-assignment";
  });
}

// The tolerance is two units in the last place of the larger number.
TEST(Records, AreEqualWhenEveryFieldIsEqualByItsOwnTolerance) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    if constexpr (P::kHasEquality) {
      Public a;
      FillAll(*a.GetImpl());
      ExpectEquality(Public(), Public(), true);
      ExpectEquality(a, Public(a), true);
      ExpectEquality(a, Public(), false);
      for (const auto& field : FieldsOf<typename P::ImplT>()) {
        for (const int units : {1, -1, 2, -2, 3, -3, 1001}) {
          SCOPED_TRACE(field.name + " off by " + std::to_string(units));
          const bool within = field.compared == Compared::kWithTolerance && std::abs(units) <= 2;
          Public b(a);
          field.Move(*b.GetImpl(), units);
          EXPECT_EQ(DifferingFields(*a.GetImpl(), *b.GetImpl()), field.name);
          ExpectEquality(a, b, within);
        }
      }
    }
  });
}

TEST(Records, TreatNaNAsEqualWithToleranceAndAsUnequalWithout) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    if constexpr (P::kHasEquality) {
      Public a;
      FillAll(*a.GetImpl());
      for (const auto& field : FieldsOf<typename P::ImplT>()) {
        if (!field.IsFloatingPoint()) continue;
        SCOPED_TRACE(field.name);
        Public b(a);
        field.Spoil(*b.GetImpl());
        ExpectEquality(a, b, field.compared == Compared::kWithTolerance);
        ExpectEquality(b, b, field.compared == Compared::kWithTolerance);
      }
    }
  });
}

// Callers rely on the width and signedness of the integers.
template <class Record, auto... getters, class Integer>
constexpr bool AllGive(Integer /*example*/) {
  return (std::is_same_v<std::invoke_result_t<decltype(getters), const Record&>, Integer> && ...);
}

template <class R>
constexpr bool AttributesAreIntegers() {
  return AllGive<R, &R::GetAttribute1, &R::GetAttribute2, &R::GetAttribute3, &R::GetAttribute4,
                 &R::GetAttribute5>(std::int32_t{}) &&
         AllGive<R, &R::GetDimension>(std::uint16_t{});
}
static_assert(AttributesAreIntegers<SDI::PositionC>() && AttributesAreIntegers<ODM::PositionC>());

template <class R>
constexpr bool SystemWordsAreIntegers() {
  return AllGive<R, &R::GetKind, &R::GetVariant, &R::GetHasHeight>(std::int32_t{});
}
static_assert(SystemWordsAreIntegers<SDI::CoordinateReferenceSystemC>());
static_assert(SystemWordsAreIntegers<ODM::CoordinateReferenceSystemC>());

template <class R>
constexpr bool DisplayParamsAreShorts() {
  return AllGive<R, &R::GetParam1, &R::GetParam2, &R::GetParam3, &R::GetParam4, &R::GetParam5,
                 &R::GetParam6>(std::int16_t{}) &&
         AllGive<R, &R::GetMode, &R::GetOptions>(std::uint32_t{});
}
static_assert(DisplayParamsAreShorts<SDI::DisplayAttributesC>());
static_assert(DisplayParamsAreShorts<ODM::DisplayAttributesC>());

template <class R>
constexpr bool MementoIsCodedInAByte() {
  return AllGive<R, &R::GetValid>(std::uint8_t{}) && AllGive<R, &R::GetSource>(std::int32_t{});
}
static_assert(MementoIsCodedInAByte<SDI::UndulationMementoC>());
static_assert(MementoIsCodedInAByte<ODM::UndulationMementoC>());

template <class R>
constexpr bool AxesAreAByte() {
  return AllGive<R, &R::GetValidAxes>(std::uint8_t{});
}
static_assert(AxesAreAByte<SDI::CoordinateQualityC>() && AxesAreAByte<ODM::CoordinateQualityC>());

template <class R>
constexpr bool SetupWordsAreUnsigned() {
  return AllGive<R, &R::GetFlags, &R::GetWord1, &R::GetWord2, &R::GetWord3>(std::uint32_t{}) &&
         AllGive<R, &R::GetByte1>(std::uint8_t{});
}
static_assert(SetupWordsAreUnsigned<SDI::TPSSetupDataC>());
static_assert(SetupWordsAreUnsigned<ODM::TPSSetupDataC>());

template <class R>
constexpr bool MeasurementWordsAreUnsigned() {
  return AllGive<R, &R::GetWord1, &R::GetWord2, &R::GetWord3, &R::GetWord4, &R::GetWord5,
                 &R::GetWord6, &R::GetWord7, &R::GetWord8, &R::GetFlags, &R::GetWord9>(
      std::uint32_t{});
}
static_assert(MeasurementWordsAreUnsigned<SDI::TPSMeasDataC>());
static_assert(MeasurementWordsAreUnsigned<ODM::TPSMeasDataC>());

template <class R>
constexpr bool CameraIntegersAreUnsigned() {
  return AllGive<R, &R::GetInt1, &R::GetInt2, &R::GetInt3, &R::GetInt4, &R::GetInt5>(
      std::uint32_t{});
}
static_assert(CameraIntegersAreUnsigned<SDI::ImgCameraInfoC>());
static_assert(CameraIntegersAreUnsigned<SDI::ImgCameraInfoImplC>());
using CameraImpl = SDI::ImgCameraInfoImplC;
static_assert(AllGive<CameraImpl, &CameraImpl::GetShort1, &CameraImpl::GetShort2>(std::uint16_t{}));

using Correction = SDI::TPSCorrectionDataC;
using CorrectionImpl = ODM::TPSCorrectionDataC;
static_assert(AllGive<Correction, &Correction::GetFlags>(std::uint32_t{}));
static_assert(AllGive<CorrectionImpl, &CorrectionImpl::GetFlags>(std::uint32_t{}));
using Interior = SDI::ImgInteriorOrientationC;
using InteriorImpl = SDI::ImgInteriorOrientationImplC;
static_assert(AllGive<Interior, &Interior::GetModelCode>(std::uint32_t{}));
static_assert(AllGive<InteriorImpl, &InteriorImpl::GetModelCode>(std::uint32_t{}));
using Info = SDI::InstrumentInfoDataC;
using InfoImpl = ODM::InstrumentInfoDataC;
static_assert(AllGive<Info, &Info::GetFlags>(std::uint32_t{}));
static_assert(AllGive<InfoImpl, &InfoImpl::getFlags>(std::uint32_t{}));
static_assert(AllGive<Info, &Info::GetNumber1, &Info::GetNumber2, &Info::GetNumber3,
                      &Info::GetNumber4>(std::int32_t{}));
static_assert(AllGive<InfoImpl, &InfoImpl::getNumber1, &InfoImpl::getNumber2, &InfoImpl::getNumber3,
                      &InfoImpl::getNumber4>(std::int32_t{}));
using Station = SDI::GPSRefStationDataC;
static_assert(AllGive<Station, &Station::GetStationNumber>(std::uint16_t{}));
static_assert(AllGive<Station, &Station::GetStationKind, &Station::GetStationCode2,
                      &Station::GetValidMask>(std::uint8_t{}));

// Operations that a class must not have.
template <class R>
concept ChangesItsUndulation = requires(R& memento) {
  memento.SetUndulation(1.0F);
}
|| requires(R& memento) { memento.SetSource(1); }
|| requires(R& memento) { memento.SetValid(1); };
static_assert(!ChangesItsUndulation<SDI::UndulationMementoC>);
static_assert(!ChangesItsUndulation<ODM::UndulationMementoC>);

template <class R>
constexpr bool TakesTheValuesOfADisplay() {
  return std::is_constructible_v<R, std::uint32_t, std::int16_t, std::int16_t, std::int16_t,
                                 std::int16_t, std::int16_t, std::int16_t, std::uint32_t>;
}
static_assert(!TakesTheValuesOfADisplay<SDI::DisplayAttributesC>());
static_assert(!TakesTheValuesOfADisplay<ODM::DisplayAttributesC>());

template <class R>
concept ChangesItsStation = requires(R& station) {
  station.SetStationNumber(1);
}
|| requires(R& station) { station.SetStationKind(1); }
|| requires(R& station) { station.SetStationCode2(1); }
|| requires(R& station) { station.SetValidMask(1); }
|| requires(R& station, SDI::CoordinateReferenceSystemC part) { station.SetReferenceSystem(part); }
|| requires(R& station, SDI::CoordinatePointC part) { station.SetPoint(part); }
|| requires(R& station, SDI::GPSAntHeightC part) { station.SetAntennaHeight(part); };
static_assert(!ChangesItsStation<SDI::GPSRefStationDataC>);

}  // namespace
