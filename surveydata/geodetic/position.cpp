#include <cmath>

#include <surveydata/geodetic/position.h>
#include <surveydata/object_model/compare.h>
#include <surveydata/object_model/lent_object.h>

namespace ODM {
namespace {

// Computes the scale factor times the square root of `cofactor` if all axes in `needed` are valid.
bool StdDevOf(float cofactor, unsigned needed, const CoordinateQualityC& quality, float* result) {
  if ((quality.GetValidAxes() & needed) != needed) return false;
  *result = std::sqrt(cofactor) * quality.GetSigma();
  return true;
}

}  // namespace

PositionC::PositionC() = default;
PositionC::PositionC(API::BaseC* owner) : ImplC(owner) {}
PositionC::PositionC(const PositionC& other) = default;
PositionC& PositionC::operator=(const PositionC& other) = default;
PositionC::~PositionC() = default;
API::BaseC* PositionC::GetBase() { return ImplC::GetBase(); }

PositionC::PositionC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& point,
                     const CoordinateQualityC& quality, const UndulationMementoC& undulation,
                     std::int32_t attribute1, std::int32_t attribute3, std::int32_t attribute2,
                     std::int32_t attribute4, std::int32_t attribute5)
    : crs_(crs),
      point_(point),
      quality_(quality),
      undulation_(undulation),
      attribute1_(attribute1),
      attribute2_(attribute2),
      attribute3_(attribute3),
      attribute4_(attribute4),
      attribute5_(attribute5) {}

const CoordinateReferenceSystemC& PositionC::GetCRS() const { return crs_; }
CoordinateReferenceSystemC& PositionC::GetCRS() { return crs_; }
void PositionC::SetCRS(const CoordinateReferenceSystemC& crs) { crs_ = crs; }
const CoordinatePointC& PositionC::GetCoordinatePoint() const { return point_; }
CoordinatePointC& PositionC::GetCoordinatePoint() { return point_; }
void PositionC::SetCoordinatePoint(const CoordinatePointC& point) { point_ = point; }
const CoordinateQualityC& PositionC::GetCoordinateQuality() const { return quality_; }
CoordinateQualityC& PositionC::GetCoordinateQuality() { return quality_; }
void PositionC::SetCoordinateQuality(const CoordinateQualityC& quality) { quality_ = quality; }
const UndulationMementoC& PositionC::GetUndulationMemento() const { return undulation_; }
UndulationMementoC& PositionC::GetUndulationMemento() { return undulation_; }
void PositionC::SetUndulationMemento(const UndulationMementoC& undulation) {
  undulation_ = undulation;
}
std::int32_t PositionC::GetAttribute1() const { return attribute1_; }
void PositionC::SetAttribute1(std::int32_t attribute1) { attribute1_ = attribute1; }
std::int32_t PositionC::GetAttribute2() const { return attribute2_; }
void PositionC::SetAttribute2(std::int32_t attribute2) { attribute2_ = attribute2; }
std::int32_t PositionC::GetAttribute3() const { return attribute3_; }
void PositionC::SetAttribute3(std::int32_t attribute3) { attribute3_ = attribute3; }
std::int32_t PositionC::GetAttribute4() const { return attribute4_; }
void PositionC::SetAttribute4(std::int32_t attribute4) { attribute4_ = attribute4; }
std::int32_t PositionC::GetAttribute5() const { return attribute5_; }
void PositionC::SetAttribute5(std::int32_t attribute5) { attribute5_ = attribute5; }

std::uint16_t PositionC::GetDimension() const {
  const bool hasHeight = crs_.GetHasHeight() != 0;
  switch (crs_.GetKind()) {
    case 1:
      return 3;
    case 2:
    case 3:
      return hasHeight ? 3 : 2;
    case 4:
      return hasHeight ? 1 : 0;
    default:
      return 0;
  }
}

bool PositionC::GetCombinedStdDev(std::uint16_t selector, float* result) const {
  using Q = CoordinateQualityC;
  const QMatrixC& q = quality_.GetMatrix();
  const bool splitsHeight = crs_.GetKind() != 1;
  *result = 0.0F;
  switch (selector) {
    case 1:
      return splitsHeight && StdDevOf(q.GetQ33(), Q::kAxis3, quality_, result);
    case 2:
      return splitsHeight &&
             StdDevOf(q.GetQ11() + q.GetQ22(), Q::kAxis1 | Q::kAxis2, quality_, result);
    case 3:
      return StdDevOf(q.GetQ11() + q.GetQ22() + q.GetQ33(), Q::kAxis1 | Q::kAxis2 | Q::kAxis3,
                      quality_, result);
    default:
      return false;
  }
}

bool PositionC::GetStdDev(std::uint16_t axis, float* result) const {
  const QMatrixC& q = quality_.GetMatrix();
  *result = 0.0F;
  switch (axis) {
    case 1:
      return StdDevOf(q.GetQ11(), CoordinateQualityC::kAxis1, quality_, result);
    case 2:
      return StdDevOf(q.GetQ22(), CoordinateQualityC::kAxis2, quality_, result);
    case 3:
      return StdDevOf(q.GetQ33(), CoordinateQualityC::kAxis3, quality_, result);
    default:
      return false;
  }
}

bool PositionC::isEqual(const PositionC& other) const {
  return API::EqualFields(*this, other, &PositionC::attribute1_, &PositionC::attribute2_,
                          &PositionC::attribute4_, &PositionC::attribute5_, &PositionC::attribute3_,
                          &PositionC::crs_, &PositionC::undulation_, &PositionC::point_,
                          &PositionC::quality_);
}

}  // namespace ODM

namespace SDI {

PositionC::PositionC() = default;
PositionC::PositionC(ODM::PositionC* impl) : HandleC(impl) {}
PositionC::PositionC(const PositionC& other) = default;
PositionC& PositionC::operator=(const PositionC& other) = default;
PositionC::~PositionC() = default;

PositionC::PositionC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& point,
                     const CoordinateQualityC& quality, const UndulationMementoC& undulation)
    : PositionC(crs, point, quality, undulation, ODM::PositionC::kDefaultAttribute1, 0, 0, 0, 0) {}

PositionC::PositionC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& point,
                     const CoordinateQualityC& quality, const UndulationMementoC& undulation,
                     std::int32_t attribute1, std::int32_t attribute3, std::int32_t attribute2,
                     std::int32_t attribute4, std::int32_t attribute5)
    : HandleC(new ODM::PositionC(*crs.GetImpl(), *point.GetImpl(), *quality.GetImpl(),
                                 *undulation.GetImpl(), attribute1, attribute3, attribute2,
                                 attribute4, attribute5)) {}

const CoordinateReferenceSystemC& PositionC::GetCRS() const {
  return API::PublicOf<CoordinateReferenceSystemC>(GetImpl()->GetCRS());
}
CoordinateReferenceSystemC& PositionC::GetCRS() {
  return API::PublicOf<CoordinateReferenceSystemC>(GetImpl()->GetCRS());
}
void PositionC::SetCRS(const CoordinateReferenceSystemC& crs) { GetImpl()->SetCRS(*crs.GetImpl()); }
const CoordinatePointC& PositionC::GetCoordinatePoint() const {
  return API::PublicOf<CoordinatePointC>(GetImpl()->GetCoordinatePoint());
}
CoordinatePointC& PositionC::GetCoordinatePoint() {
  return API::PublicOf<CoordinatePointC>(GetImpl()->GetCoordinatePoint());
}
void PositionC::SetCoordinatePoint(const CoordinatePointC& point) {
  GetImpl()->SetCoordinatePoint(*point.GetImpl());
}
const CoordinateQualityC& PositionC::GetCoordinateQuality() const {
  return API::PublicOf<CoordinateQualityC>(GetImpl()->GetCoordinateQuality());
}
CoordinateQualityC& PositionC::GetCoordinateQuality() {
  return API::PublicOf<CoordinateQualityC>(GetImpl()->GetCoordinateQuality());
}
void PositionC::SetCoordinateQuality(const CoordinateQualityC& quality) {
  GetImpl()->SetCoordinateQuality(*quality.GetImpl());
}
const UndulationMementoC& PositionC::GetUndulationMemento() const {
  return API::PublicOf<UndulationMementoC>(GetImpl()->GetUndulationMemento());
}
UndulationMementoC& PositionC::GetUndulationMemento() {
  return API::PublicOf<UndulationMementoC>(GetImpl()->GetUndulationMemento());
}
void PositionC::SetUndulationMemento(const UndulationMementoC& undulation) {
  GetImpl()->SetUndulationMemento(*undulation.GetImpl());
}
std::int32_t PositionC::GetAttribute1() const { return GetImpl()->GetAttribute1(); }
void PositionC::SetAttribute1(std::int32_t attribute1) { GetImpl()->SetAttribute1(attribute1); }
std::int32_t PositionC::GetAttribute2() const { return GetImpl()->GetAttribute2(); }
void PositionC::SetAttribute2(std::int32_t attribute2) { GetImpl()->SetAttribute2(attribute2); }
std::int32_t PositionC::GetAttribute3() const { return GetImpl()->GetAttribute3(); }
void PositionC::SetAttribute3(std::int32_t attribute3) { GetImpl()->SetAttribute3(attribute3); }
std::int32_t PositionC::GetAttribute4() const { return GetImpl()->GetAttribute4(); }
void PositionC::SetAttribute4(std::int32_t attribute4) { GetImpl()->SetAttribute4(attribute4); }
std::int32_t PositionC::GetAttribute5() const { return GetImpl()->GetAttribute5(); }
void PositionC::SetAttribute5(std::int32_t attribute5) { GetImpl()->SetAttribute5(attribute5); }

std::uint16_t PositionC::GetDimension() const { return GetImpl()->GetDimension(); }
bool PositionC::GetCombinedStdDev(std::uint16_t selector, float* result) const {
  return GetImpl()->GetCombinedStdDev(selector, result);
}
bool PositionC::GetStdDev(std::uint16_t axis, float* result) const {
  return GetImpl()->GetStdDev(axis, result);
}

bool PositionC::IsEqual(const PositionC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::PositionC* API::CastFromAny(API::ImplObjectC*);
