#ifndef SURVEYDATA_GEODETIC_COORDINATE_QUALITY_H_
#define SURVEYDATA_GEODETIC_COORDINATE_QUALITY_H_

#include <cstdint>

#include <surveydata/geodetic/q_matrix.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API CoordinateQualityC;
}

namespace ODM {

/// The data of an `SDI::CoordinateQualityC`.
class SURVEYDATA_API CoordinateQualityC
    : public API::ImplC<CoordinateQualityC, SDI::CoordinateQualityC> {
 public:
  // Bits of the valid axes.
  static constexpr std::uint8_t kAxis1 = 0x01;
  static constexpr std::uint8_t kAxis2 = 0x02;
  static constexpr std::uint8_t kAxis3 = 0x04;

  CoordinateQualityC();
  explicit CoordinateQualityC(API::BaseC* owner);
  CoordinateQualityC(const CoordinateQualityC& other);
  CoordinateQualityC& operator=(const CoordinateQualityC& other);
  ~CoordinateQualityC() override;
  API::BaseC* GetBase() override;
  CoordinateQualityC(float sigma, const QMatrixC& matrix, std::uint32_t validAxes);

  float GetSigma() const;
  void SetSigma(float sigma);
  const QMatrixC& GetMatrix() const;
  QMatrixC& GetMatrix();
  void SetMatrix(const QMatrixC& matrix);
  std::uint8_t GetValidAxes() const;
  void SetValidAxes(std::uint8_t validAxes);

  /// Whether the valid axes are the same and the numbers agree within the tolerance of
  /// `API::CompareWithTolerance`.
  bool isEqual(const CoordinateQualityC& other) const;

 private:
  float sigma_ = 0.0F;
  QMatrixC matrix_;
  std::uint8_t validAxes_ = 0;
};

}  // namespace ODM

namespace SDI {

/// The quality of a coordinate triple: a cofactor matrix, the scale factor that converts square
/// roots of cofactors to standard deviations, and the axes for which they are valid. All are 0 by
/// default. `PositionC` computes the standard deviations themselves.
class SURVEYDATA_API CoordinateQualityC : public API::HandleC<ODM::CoordinateQualityC> {
 public:
  CoordinateQualityC();
  explicit CoordinateQualityC(ODM::CoordinateQualityC* impl);
  CoordinateQualityC(const CoordinateQualityC& other);
  CoordinateQualityC& operator=(const CoordinateQualityC& other);
  ~CoordinateQualityC() override;
  /// Keeps the low 8 bits of `validAxes`.
  CoordinateQualityC(float sigma, const QMatrixC& matrix, std::uint32_t validAxes);

  float GetSigma() const;
  void SetSigma(float sigma);
  /// A copy of the matrix: changing it does not change this quality.
  QMatrixC GetMatrix() const;
  void SetMatrix(const QMatrixC& matrix);
  /// Bits 0x01, 0x02 and 0x04 mean axes 1, 2 and 3.
  std::uint8_t GetValidAxes() const;
  void SetValidAxes(std::uint8_t validAxes);

  /// Whether the valid axes are the same, and the scale factors and the matrices agree within the
  /// tolerance of `API::CompareWithTolerance` in single precision. NaN equals anything.
  bool IsEqual(const CoordinateQualityC& other) const;
};

static_assert(API::kHasSize<CoordinateQualityC, 16> && API::kHasSize<ODM::CoordinateQualityC, 72>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::CoordinateQualityC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_COORDINATE_QUALITY_H_
