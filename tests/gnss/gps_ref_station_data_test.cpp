#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_ref_station_data.h>

#include "tests/support/record_fields.h"

namespace {

using SDI::GPSRefStationDataC;
using SDI::GPSRefStationDataImplC;

// A station with all fields set, and the valid mask `validMask`.
GPSRefStationDataC StationOf(std::uint8_t validMask) {
  GPSRefStationDataC station;
  Records::FillAll(*station.GetImpl());
  station.GetImpl()->validMask = validMask;
  return station;
}

TEST(GPSRefStationData, IsZeroAndNotValidByDefault) {
  const GPSRefStationDataC station;
  SDI::CoordinateReferenceSystemC system;
  SDI::CoordinatePointC point;
  SDI::GPSAntHeightC height;
  EXPECT_EQ(station.GetStationNumber(), 0);
  EXPECT_EQ(station.GetStationKind(), 0);
  EXPECT_EQ(station.GetStationCode2(), 0);
  EXPECT_EQ(station.GetValidMask(), 0);
  EXPECT_FALSE(station.GetReferenceSystem(system));
  EXPECT_FALSE(station.GetPoint(point));
  EXPECT_FALSE(station.GetAntennaHeight(height));
  EXPECT_EQ(station.GetImpl()->name[0], 0);
}

TEST(GPSRefStationData, GivesItsNumbersAndCodes) {
  GPSRefStationDataC station;
  station.GetImpl()->stationNumber = 65535;
  station.GetImpl()->stationKind = 254;
  station.GetImpl()->stationCode2 = 253;
  station.GetImpl()->validMask = 0xFF;
  EXPECT_EQ(station.GetStationNumber(), 65535);
  EXPECT_EQ(station.GetStationKind(), 254);
  EXPECT_EQ(station.GetStationCode2(), 253);
  EXPECT_EQ(station.GetValidMask(), 0xFF);
}

TEST(GPSRefStationData, GivesItsPartsByTheBitsOfTheMask) {
  for (unsigned mask = 0; mask < 16; ++mask) {
    SCOPED_TRACE(mask);
    const GPSRefStationDataC station = StationOf(static_cast<std::uint8_t>(mask));
    const bool hasHeight = (mask & 0x1) != 0;
    const bool hasPosition = (mask & 0x2) != 0;
    EXPECT_EQ(station.IsAntennaHeightValid(), hasHeight);
    EXPECT_EQ(station.IsPositionValid(), hasPosition);
    EXPECT_EQ(station.IsFlag3Set(), (mask & 0x4) != 0);

    SDI::CoordinateReferenceSystemC system;
    SDI::CoordinatePointC point;
    SDI::GPSAntHeightC height;
    EXPECT_EQ(station.GetReferenceSystem(system), hasPosition);
    EXPECT_EQ(station.GetPoint(point), hasPosition);
    EXPECT_EQ(station.GetAntennaHeight(height), hasHeight);
    const GPSRefStationDataImplC& impl = *station.GetImpl();
    const GPSRefStationDataImplC untouched;
    const GPSRefStationDataImplC& position = hasPosition ? impl : untouched;
    EXPECT_EQ(Records::DifferingFields(*system.GetImpl(), position.referenceSystem), "");
    EXPECT_EQ(Records::DifferingFields(*point.GetImpl(), position.point), "");
    EXPECT_EQ(Records::DifferingFields(*height.GetImpl(),
                                       hasHeight ? impl.antennaHeight : untouched.antennaHeight),
              "");
  }
}

TEST(GPSRefStationData, ReturnsTenForItsCodesWithoutAnImplementation) {
  const GPSRefStationDataC nothing(static_cast<GPSRefStationDataImplC*>(nullptr));
  GPSRefStationDataC foreign;
  const std::unique_ptr<GPSRefStationDataImplC> replaced(foreign.GetImpl());
  replaced->DetachBase();
  foreign.SetImpl(new ODM::CoordinatePointC);
  for (const GPSRefStationDataC* station : {&nothing, &std::as_const(foreign)}) {
    ASSERT_EQ(station->GetImpl(), nullptr);
    SDI::CoordinateReferenceSystemC system;
    SDI::CoordinatePointC point;
    SDI::GPSAntHeightC height;
    EXPECT_EQ(station->GetStationNumber(), 0);
    EXPECT_EQ(station->GetStationKind(), 10);
    EXPECT_EQ(station->GetStationCode2(), 10);
    EXPECT_EQ(station->GetValidMask(), 0);
    EXPECT_FALSE(station->IsAntennaHeightValid());
    EXPECT_FALSE(station->IsPositionValid());
    EXPECT_FALSE(station->IsFlag3Set());
    EXPECT_FALSE(station->GetReferenceSystem(system));
    EXPECT_FALSE(station->GetPoint(point));
    EXPECT_FALSE(station->GetAntennaHeight(height));
    EXPECT_FALSE(station->IsEqual(GPSRefStationDataC()));
    EXPECT_FALSE(GPSRefStationDataC().IsEqual(*station));
    EXPECT_EQ(GPSRefStationDataC(*station).GetStationKind(), 0)
        << "a copy of an empty object is a default one";
    GPSRefStationDataC assigned = StationOf(0x7);
    assigned = *station;
    EXPECT_EQ(assigned.GetValidMask(), 0x7) << "assigning nothing changes nothing";
  }
}

TEST(GPSRefStationData, ReturnsFalseWhenTheArgumentCannotTakeThePart) {
  const GPSRefStationDataC station = StationOf(0x7);
  SDI::CoordinateReferenceSystemC system(static_cast<ODM::CoordinateReferenceSystemC*>(nullptr));
  SDI::CoordinatePointC point(static_cast<ODM::CoordinatePointC*>(nullptr));
  SDI::GPSAntHeightC height(static_cast<SDI::GPSAntHeightImplC*>(nullptr));
  EXPECT_FALSE(station.GetReferenceSystem(system));
  EXPECT_FALSE(station.GetPoint(point));
  EXPECT_FALSE(station.GetAntennaHeight(height));
}

TEST(GPSRefStationData, CopiesAllUnitsOfTheNameAndComparesThemUpToTheTerminator) {
  GPSRefStationDataC station;
  auto& name = station.GetImpl()->name;
  ASSERT_EQ(std::size(name), 31U);
  const std::u16string units(u"REF-4\0behind the terminator", 27);
  units.copy(name, units.size());
  name[30] = u'!';

  const GPSRefStationDataC copy(station);
  GPSRefStationDataC assigned;
  assigned = station;
  EXPECT_TRUE(std::ranges::equal(copy.GetImpl()->name, name));
  EXPECT_TRUE(std::ranges::equal(assigned.GetImpl()->name, name));

  name[6] = u'B';
  EXPECT_TRUE(station.IsEqual(copy)) << "after the terminator";
  name[4] = u'5';
  EXPECT_FALSE(station.IsEqual(copy));
}

// Destroys the public objects of the parts one after the other and records the order.
template <class Public>
class NotedC : public Public {
 public:
  template <class Impl>
  NotedC(Impl* impl, std::string& log, char letter) : Public(impl), log_(log), letter_(letter) {}
  NotedC(const NotedC&) = delete;
  NotedC& operator=(const NotedC&) = delete;
  ~NotedC() override { log_ += letter_; }

 private:
  std::string& log_;
  char letter_;
};

TEST(GPSRefStationData, DestroysAntennaHeightPointAndSystemInThisOrder) {
  std::string log;
  {
    GPSRefStationDataImplC station;
    new NotedC<SDI::CoordinateReferenceSystemC>(&station.referenceSystem, log, 's');
    new NotedC<SDI::CoordinatePointC>(&station.point, log, 'p');
    new NotedC<SDI::GPSAntHeightC>(&station.antennaHeight, log, 'h');
  }
  EXPECT_EQ(log, "hps");
}

}  // namespace
