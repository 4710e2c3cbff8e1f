#ifndef SURVEYDATA_GEODETIC_Q_MATRIX_H_
#define SURVEYDATA_GEODETIC_Q_MATRIX_H_

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API QMatrixC;
}

namespace ODM {

/// The data of an `SDI::QMatrixC`.
class SURVEYDATA_API QMatrixC : public API::ImplC<QMatrixC, SDI::QMatrixC> {
 public:
  QMatrixC();
  explicit QMatrixC(API::BaseC* owner);
  QMatrixC(const QMatrixC& other);
  QMatrixC& operator=(const QMatrixC& other);
  ~QMatrixC() override;
  API::BaseC* GetBase() override;
  QMatrixC(float q11, float q12, float q13, float q22, float q23, float q33);

  float GetQ11() const;
  void SetQ11(float q11);
  float GetQ12() const;
  void SetQ12(float q12);
  float GetQ13() const;
  void SetQ13(float q13);
  float GetQ22() const;
  void SetQ22(float q22);
  float GetQ23() const;
  void SetQ23(float q23);
  float GetQ33() const;
  void SetQ33(float q33);

  /// Whether all six elements agree within the tolerance of `API::CompareWithTolerance`.
  bool isEqual(const QMatrixC& other) const;

 private:
  float q11_ = 0.0F;
  float q12_ = 0.0F;
  float q13_ = 0.0F;
  float q22_ = 0.0F;
  float q23_ = 0.0F;
  float q33_ = 0.0F;
};

}  // namespace ODM

namespace SDI {

/// The symmetric 3 by 3 cofactor matrix of a coordinate triple; the upper triangle is stored row by
/// row. A new matrix is zero. Its unit is that of the squared standard deviations derived from it:
/// square metres if the scale factor of the `CoordinateQualityC` is dimensionless.
class SURVEYDATA_API QMatrixC : public API::HandleC<ODM::QMatrixC> {
 public:
  QMatrixC();
  explicit QMatrixC(ODM::QMatrixC* impl);
  QMatrixC(const QMatrixC& other);
  QMatrixC& operator=(const QMatrixC& other);
  ~QMatrixC() override;
  QMatrixC(float q11, float q12, float q13, float q22, float q23, float q33);

  float GetQ11() const;
  void SetQ11(float q11);
  float GetQ12() const;
  void SetQ12(float q12);
  float GetQ13() const;
  void SetQ13(float q13);
  float GetQ22() const;
  void SetQ22(float q22);
  float GetQ23() const;
  void SetQ23(float q23);
  float GetQ33() const;
  void SetQ33(float q33);

  /// Whether all six elements agree within the tolerance of `API::CompareWithTolerance` in single
  /// precision. NaN equals anything.
  bool IsEqual(const QMatrixC& other) const;
};

static_assert(API::kHasSize<QMatrixC, 16> && API::kHasSize<ODM::QMatrixC, 40>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::QMatrixC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_Q_MATRIX_H_
