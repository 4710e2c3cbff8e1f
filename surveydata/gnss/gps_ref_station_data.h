#ifndef SURVEYDATA_GNSS_GPS_REF_STATION_DATA_H_
#define SURVEYDATA_GNSS_GPS_REF_STATION_DATA_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/geodetic/coordinate_reference_system.h>
#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API GPSRefStationDataC;

/// The data of a `GPSRefStationDataC`. The decoder of station messages sets the fields directly.
class SURVEYDATA_API GPSRefStationDataImplC
    : public API::ImplC<GPSRefStationDataImplC, GPSRefStationDataC> {
 public:
  // Bits of the valid mask.
  static constexpr std::uint8_t kAntennaHeightValid = 0x1;
  static constexpr std::uint8_t kPositionValid = 0x2;
  static constexpr std::uint8_t kFlag3 = 0x4;
  /// Units of the name, including the terminator.
  static constexpr std::size_t kNameUnits = 31;

  GPSRefStationDataImplC();
  explicit GPSRefStationDataImplC(API::BaseC* owner);
  GPSRefStationDataImplC(const GPSRefStationDataImplC& other);
  GPSRefStationDataImplC& operator=(const GPSRefStationDataImplC& other);
  ~GPSRefStationDataImplC() override;
  API::BaseC* GetBase() override;

  /// Whether all fields are equal: numbers of the point and the antenna height within the tolerance
  /// of `API::CompareWithTolerance`, the name up to its terminator.
  bool isEqual(const GPSRefStationDataImplC& other) const;

  std::uint16_t stationNumber = 0;
  std::uint8_t stationKind = 0;
  ODM::CoordinateReferenceSystemC referenceSystem;
  ODM::CoordinatePointC point;
  GPSAntHeightImplC antennaHeight;
  char16_t name[kNameUnits] = {};
  std::uint8_t reserved8 = 0;
  std::uint8_t validMask = 0;
  std::uint8_t stationCode2 = 0;
};

/// A GNSS reference station: its number and codes, its position and its antenna height, each with
/// a validity bit. It has no setters; in a new one all fields are 0 and nothing is valid.
///
/// Without an implementation of its class, the two codes are 10 and all other values 0 or false.
class SURVEYDATA_API GPSRefStationDataC : public API::HandleC<GPSRefStationDataImplC> {
 public:
  GPSRefStationDataC();
  explicit GPSRefStationDataC(GPSRefStationDataImplC* impl);
  GPSRefStationDataC(const GPSRefStationDataC& other);
  GPSRefStationDataC& operator=(const GPSRefStationDataC& other);
  ~GPSRefStationDataC() override;

  std::uint16_t GetStationNumber() const;
  std::uint8_t GetStationKind() const;
  std::uint8_t GetStationCode2() const;
  std::uint8_t GetValidMask() const;
  /// Bit 0x1 of the valid mask.
  bool IsAntennaHeightValid() const;
  /// Bit 0x2 of the valid mask: whether reference system and point are valid.
  bool IsPositionValid() const;
  /// Bit 0x4 of the valid mask.
  bool IsFlag3Set() const;

  /// Copies the part into the argument and returns true. Returns false and does not change the
  /// argument if the part is not valid or the argument has no implementation of its class.
  /// @{
  bool GetReferenceSystem(CoordinateReferenceSystemC& referenceSystem) const;
  bool GetPoint(CoordinatePointC& point) const;
  bool GetAntennaHeight(GPSAntHeightC& antennaHeight) const;
  /// @}

  /// Whether all fields are equal, valid or not, including the name and the reserved byte: numbers
  /// of the point and the antenna height within the tolerance of `API::CompareWithTolerance`, the
  /// name up to its terminator, all others exactly. False if either side has no implementation.
  bool IsEqual(const GPSRefStationDataC& other) const;

 private:
  bool IsValid(std::uint8_t bit) const;
};

static_assert(API::kHasSize<GPSRefStationDataC, 16> && API::kHasSize<GPSRefStationDataImplC, 200>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::GPSRefStationDataImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GNSS_GPS_REF_STATION_DATA_H_
