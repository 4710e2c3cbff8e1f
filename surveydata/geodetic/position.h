#ifndef SURVEYDATA_GEODETIC_POSITION_H_
#define SURVEYDATA_GEODETIC_POSITION_H_

#include <cstdint>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/geodetic/coordinate_quality.h>
#include <surveydata/geodetic/coordinate_reference_system.h>
#include <surveydata/geodetic/undulation_memento.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API PositionC;
}

namespace ODM {

/// The data of an `SDI::PositionC`.
class SURVEYDATA_API PositionC : public API::ImplC<PositionC, SDI::PositionC> {
 public:
  static constexpr std::int32_t kDefaultAttribute1 = 50;

  PositionC();
  explicit PositionC(API::BaseC* owner);
  PositionC(const PositionC& other);
  PositionC& operator=(const PositionC& other);
  ~PositionC() override;
  API::BaseC* GetBase() override;
  /// Attributes 2 and 3 are swapped: the third is given before the second.
  PositionC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& point,
            const CoordinateQualityC& quality, const UndulationMementoC& undulation,
            std::int32_t attribute1, std::int32_t attribute3, std::int32_t attribute2,
            std::int32_t attribute4, std::int32_t attribute5);

  const CoordinateReferenceSystemC& GetCRS() const;
  CoordinateReferenceSystemC& GetCRS();
  void SetCRS(const CoordinateReferenceSystemC& crs);
  const CoordinatePointC& GetCoordinatePoint() const;
  CoordinatePointC& GetCoordinatePoint();
  void SetCoordinatePoint(const CoordinatePointC& point);
  const CoordinateQualityC& GetCoordinateQuality() const;
  CoordinateQualityC& GetCoordinateQuality();
  void SetCoordinateQuality(const CoordinateQualityC& quality);
  const UndulationMementoC& GetUndulationMemento() const;
  UndulationMementoC& GetUndulationMemento();
  void SetUndulationMemento(const UndulationMementoC& undulation);
  std::int32_t GetAttribute1() const;
  void SetAttribute1(std::int32_t attribute1);
  std::int32_t GetAttribute2() const;
  void SetAttribute2(std::int32_t attribute2);
  std::int32_t GetAttribute3() const;
  void SetAttribute3(std::int32_t attribute3);
  std::int32_t GetAttribute4() const;
  void SetAttribute4(std::int32_t attribute4);
  std::int32_t GetAttribute5() const;
  void SetAttribute5(std::int32_t attribute5);

  std::uint16_t GetDimension() const;
  bool GetCombinedStdDev(std::uint16_t selector, float* result) const;
  bool GetStdDev(std::uint16_t axis, float* result) const;

  /// Whether the attributes are the same and the four parts are equal.
  bool isEqual(const PositionC& other) const;

 private:
  CoordinateReferenceSystemC crs_;
  CoordinatePointC point_;
  CoordinateQualityC quality_;
  UndulationMementoC undulation_;
  std::int32_t attribute1_ = kDefaultAttribute1;
  std::int32_t attribute2_ = 0;
  std::int32_t attribute3_ = 0;
  std::int32_t attribute4_ = 0;
  std::int32_t attribute5_ = 0;
};

}  // namespace ODM

namespace SDI {

/// A complete position: a point with its reference system, its quality, the undulation at the
/// point, and five attributes whose meaning the caller defines. By default, attribute 1 is 50 and
/// the others are 0.
///
/// The getters of the four parts return the position's own parts: repeated calls give the same
/// object, which changes with the position and is destroyed with its implementation.
class SURVEYDATA_API PositionC : public API::HandleC<ODM::PositionC> {
 public:
  PositionC();
  explicit PositionC(ODM::PositionC* impl);
  PositionC(const PositionC& other);
  PositionC& operator=(const PositionC& other);
  ~PositionC() override;
  /// Copies the four parts; the attributes have their default values.
  PositionC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& point,
            const CoordinateQualityC& quality, const UndulationMementoC& undulation);
  /// Copies the four parts. Attributes 2 and 3 are swapped: the third is given before the second.
  PositionC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& point,
            const CoordinateQualityC& quality, const UndulationMementoC& undulation,
            std::int32_t attribute1, std::int32_t attribute3, std::int32_t attribute2,
            std::int32_t attribute4, std::int32_t attribute5);

  const CoordinateReferenceSystemC& GetCRS() const;
  CoordinateReferenceSystemC& GetCRS();
  void SetCRS(const CoordinateReferenceSystemC& crs);
  const CoordinatePointC& GetCoordinatePoint() const;
  CoordinatePointC& GetCoordinatePoint();
  void SetCoordinatePoint(const CoordinatePointC& point);
  const CoordinateQualityC& GetCoordinateQuality() const;
  CoordinateQualityC& GetCoordinateQuality();
  void SetCoordinateQuality(const CoordinateQualityC& quality);
  const UndulationMementoC& GetUndulationMemento() const;
  UndulationMementoC& GetUndulationMemento();
  void SetUndulationMemento(const UndulationMementoC& undulation);
  std::int32_t GetAttribute1() const;
  void SetAttribute1(std::int32_t attribute1);
  std::int32_t GetAttribute2() const;
  void SetAttribute2(std::int32_t attribute2);
  std::int32_t GetAttribute3() const;
  void SetAttribute3(std::int32_t attribute3);
  std::int32_t GetAttribute4() const;
  void SetAttribute4(std::int32_t attribute4);
  std::int32_t GetAttribute5() const;
  void SetAttribute5(std::int32_t attribute5);

  /// The number of valid coordinates, depending on the kind of the reference system: 3 for kind 1;
  /// 3 with and 2 without a height for kinds 2 and 3; 1 with and 0 without a height for kind 4; 0
  /// for any other kind.
  std::uint16_t GetDimension() const;

  /// The combined standard deviation of several coordinates, in single precision: the scale factor
  /// of the quality times the square root of a sum of cofactors.
  ///
  /// | selector | of                 | valid axes | cofactors     | reference system  |
  /// |----------|--------------------|------------|---------------|-------------------|
  /// | 1        | the height         | 3          | q33           | not of kind 1     |
  /// | 2        | the plane position | 1, 2       | q11, q22      | not of kind 1     |
  /// | 3        | the whole position | 1, 2, 3    | q11, q22, q33 | any               |
  ///
  /// \param result  set to the standard deviation, NaN for a negative sum; 0 if there is none.
  /// \return whether there is a standard deviation; false for any other selector.
  bool GetCombinedStdDev(std::uint16_t selector, float* result) const;

  /// The standard deviation of the coordinate of one axis, 1 to 3, in single precision: the scale
  /// factor of the quality times the square root of the axis's cofactor.
  ///
  /// \param result  set to the standard deviation, NaN for a negative cofactor; 0 if there is none.
  /// \return whether there is a standard deviation: false if the axis is not valid, and for any
  ///         other axis.
  bool GetStdDev(std::uint16_t axis, float* result) const;

  /// Whether the attributes are the same and the four parts are equal.
  bool IsEqual(const PositionC& other) const;
};

static_assert(API::kHasSize<PositionC, 16> && API::kHasSize<ODM::PositionC, 216>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::PositionC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_POSITION_H_
