#include <surveydata/gnss/gps_ref_station_data.h>
#include <surveydata/object_model/compare.h>

namespace SDI {
namespace {

constexpr std::uint8_t kCodeWithoutImpl = 10;

// Copies a valid part into `to`, which is null if the argument has no implementation.
template <class Part>
bool CopyOut(bool valid, const GPSRefStationDataImplC* from, Part GPSRefStationDataImplC::*part,
             Part* to) {
  if (!valid || to == nullptr) return false;
  *to = from->*part;
  return true;
}

}  // namespace

GPSRefStationDataImplC::GPSRefStationDataImplC() = default;
GPSRefStationDataImplC::GPSRefStationDataImplC(API::BaseC* owner) : ImplC(owner) {}
GPSRefStationDataImplC::GPSRefStationDataImplC(const GPSRefStationDataImplC& other) = default;
GPSRefStationDataImplC& GPSRefStationDataImplC::operator=(const GPSRefStationDataImplC& other) =
    default;
GPSRefStationDataImplC::~GPSRefStationDataImplC() = default;
API::BaseC* GPSRefStationDataImplC::GetBase() { return ImplC::GetBase(); }

bool GPSRefStationDataImplC::isEqual(const GPSRefStationDataImplC& other) const {
  using S = GPSRefStationDataImplC;
  return API::EqualFields(*this, other, &S::stationNumber, &S::stationKind, &S::referenceSystem,
                          &S::point, &S::antennaHeight, &S::name, &S::reserved8, &S::validMask,
                          &S::stationCode2);
}

GPSRefStationDataC::GPSRefStationDataC() = default;
GPSRefStationDataC::GPSRefStationDataC(GPSRefStationDataImplC* impl) : HandleC(impl) {}
GPSRefStationDataC::GPSRefStationDataC(const GPSRefStationDataC& other) = default;
GPSRefStationDataC& GPSRefStationDataC::operator=(const GPSRefStationDataC& other) = default;
GPSRefStationDataC::~GPSRefStationDataC() = default;

std::uint16_t GPSRefStationDataC::GetStationNumber() const {
  return Ask(&GPSRefStationDataImplC::stationNumber, 0);
}
std::uint8_t GPSRefStationDataC::GetStationKind() const {
  return Ask(&GPSRefStationDataImplC::stationKind, kCodeWithoutImpl);
}
std::uint8_t GPSRefStationDataC::GetStationCode2() const {
  return Ask(&GPSRefStationDataImplC::stationCode2, kCodeWithoutImpl);
}
std::uint8_t GPSRefStationDataC::GetValidMask() const {
  return Ask(&GPSRefStationDataImplC::validMask, 0);
}

bool GPSRefStationDataC::IsValid(std::uint8_t bit) const { return (GetValidMask() & bit) != 0; }
bool GPSRefStationDataC::IsAntennaHeightValid() const {
  return IsValid(GPSRefStationDataImplC::kAntennaHeightValid);
}
bool GPSRefStationDataC::IsPositionValid() const {
  return IsValid(GPSRefStationDataImplC::kPositionValid);
}
bool GPSRefStationDataC::IsFlag3Set() const { return IsValid(GPSRefStationDataImplC::kFlag3); }

bool GPSRefStationDataC::GetReferenceSystem(CoordinateReferenceSystemC& referenceSystem) const {
  return CopyOut(IsPositionValid(), GetImpl(), &GPSRefStationDataImplC::referenceSystem,
                 referenceSystem.GetImpl());
}
bool GPSRefStationDataC::GetPoint(CoordinatePointC& point) const {
  return CopyOut(IsPositionValid(), GetImpl(), &GPSRefStationDataImplC::point, point.GetImpl());
}
bool GPSRefStationDataC::GetAntennaHeight(GPSAntHeightC& antennaHeight) const {
  return CopyOut(IsAntennaHeightValid(), GetImpl(), &GPSRefStationDataImplC::antennaHeight,
                 antennaHeight.GetImpl());
}

bool GPSRefStationDataC::IsEqual(const GPSRefStationDataC& other) const {
  return AreBothEqual(other);
}

}  // namespace SDI

template SDI::GPSRefStationDataImplC* API::CastFromAny(API::ImplObjectC*);
