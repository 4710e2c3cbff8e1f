#include <surveydata/geodetic/coordinate_quality.h>
#include <surveydata/object_model/compare.h>
#include <surveydata/object_model/lent_object.h>

namespace ODM {

CoordinateQualityC::CoordinateQualityC() = default;
CoordinateQualityC::CoordinateQualityC(API::BaseC* owner) : ImplC(owner) {}
CoordinateQualityC::CoordinateQualityC(const CoordinateQualityC& other) = default;
CoordinateQualityC& CoordinateQualityC::operator=(const CoordinateQualityC& other) = default;
CoordinateQualityC::~CoordinateQualityC() = default;
API::BaseC* CoordinateQualityC::GetBase() { return ImplC::GetBase(); }

CoordinateQualityC::CoordinateQualityC(float sigma, const QMatrixC& matrix, std::uint32_t validAxes)
    : sigma_(sigma), matrix_(matrix), validAxes_(static_cast<std::uint8_t>(validAxes)) {}

float CoordinateQualityC::GetSigma() const { return sigma_; }
void CoordinateQualityC::SetSigma(float sigma) { sigma_ = sigma; }
const QMatrixC& CoordinateQualityC::GetMatrix() const { return matrix_; }
QMatrixC& CoordinateQualityC::GetMatrix() { return matrix_; }
void CoordinateQualityC::SetMatrix(const QMatrixC& matrix) { matrix_ = matrix; }
std::uint8_t CoordinateQualityC::GetValidAxes() const { return validAxes_; }
void CoordinateQualityC::SetValidAxes(std::uint8_t validAxes) { validAxes_ = validAxes; }

bool CoordinateQualityC::isEqual(const CoordinateQualityC& other) const {
  return API::EqualFields(*this, other, &CoordinateQualityC::validAxes_,
                          &CoordinateQualityC::sigma_, &CoordinateQualityC::matrix_);
}

}  // namespace ODM

namespace SDI {

CoordinateQualityC::CoordinateQualityC() = default;
CoordinateQualityC::CoordinateQualityC(ODM::CoordinateQualityC* impl) : HandleC(impl) {}
CoordinateQualityC::CoordinateQualityC(const CoordinateQualityC& other) = default;
CoordinateQualityC& CoordinateQualityC::operator=(const CoordinateQualityC& other) = default;
CoordinateQualityC::~CoordinateQualityC() = default;

CoordinateQualityC::CoordinateQualityC(float sigma, const QMatrixC& matrix, std::uint32_t validAxes)
    : HandleC(new ODM::CoordinateQualityC(sigma, *matrix.GetImpl(), validAxes)) {}

float CoordinateQualityC::GetSigma() const { return GetImpl()->GetSigma(); }
void CoordinateQualityC::SetSigma(float sigma) { GetImpl()->SetSigma(sigma); }
QMatrixC CoordinateQualityC::GetMatrix() const {
  return API::PublicOf<QMatrixC>(GetImpl()->GetMatrix());
}
void CoordinateQualityC::SetMatrix(const QMatrixC& matrix) {
  GetImpl()->SetMatrix(*matrix.GetImpl());
}
std::uint8_t CoordinateQualityC::GetValidAxes() const { return GetImpl()->GetValidAxes(); }
void CoordinateQualityC::SetValidAxes(std::uint8_t validAxes) {
  GetImpl()->SetValidAxes(validAxes);
}

bool CoordinateQualityC::IsEqual(const CoordinateQualityC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::CoordinateQualityC* API::CastFromAny(API::ImplObjectC*);
