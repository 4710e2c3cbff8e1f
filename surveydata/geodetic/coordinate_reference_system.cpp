#include <surveydata/geodetic/coordinate_reference_system.h>
#include <surveydata/object_model/compare.h>

namespace ODM {

CoordinateReferenceSystemC::CoordinateReferenceSystemC() = default;
CoordinateReferenceSystemC::CoordinateReferenceSystemC(API::BaseC* owner) : ImplC(owner) {}
CoordinateReferenceSystemC::CoordinateReferenceSystemC(const CoordinateReferenceSystemC& other) =
    default;
CoordinateReferenceSystemC& CoordinateReferenceSystemC::operator=(
    const CoordinateReferenceSystemC& other) = default;
CoordinateReferenceSystemC::~CoordinateReferenceSystemC() = default;
API::BaseC* CoordinateReferenceSystemC::GetBase() { return ImplC::GetBase(); }

CoordinateReferenceSystemC::CoordinateReferenceSystemC(std::int32_t kind, std::int32_t variant,
                                                       std::int32_t hasHeight)
    : kind_(kind), variant_(variant), hasHeight_(hasHeight) {}

std::int32_t CoordinateReferenceSystemC::GetKind() const { return kind_; }
void CoordinateReferenceSystemC::SetKind(std::int32_t kind) { kind_ = kind; }
std::int32_t CoordinateReferenceSystemC::GetVariant() const { return variant_; }
void CoordinateReferenceSystemC::SetVariant(std::int32_t variant) { variant_ = variant; }
std::int32_t CoordinateReferenceSystemC::GetHasHeight() const { return hasHeight_; }
void CoordinateReferenceSystemC::SetHasHeight(std::int32_t hasHeight) { hasHeight_ = hasHeight; }

bool CoordinateReferenceSystemC::isEqual(const CoordinateReferenceSystemC& other) const {
  return API::EqualFields(*this, other, &CoordinateReferenceSystemC::kind_,
                          &CoordinateReferenceSystemC::variant_,
                          &CoordinateReferenceSystemC::hasHeight_);
}

}  // namespace ODM

namespace SDI {

CoordinateReferenceSystemC::CoordinateReferenceSystemC() = default;
CoordinateReferenceSystemC::CoordinateReferenceSystemC(ODM::CoordinateReferenceSystemC* impl)
    : HandleC(impl) {}
CoordinateReferenceSystemC::CoordinateReferenceSystemC(const CoordinateReferenceSystemC& other) =
    default;
CoordinateReferenceSystemC& CoordinateReferenceSystemC::operator=(
    const CoordinateReferenceSystemC& other) = default;
CoordinateReferenceSystemC::~CoordinateReferenceSystemC() = default;

CoordinateReferenceSystemC::CoordinateReferenceSystemC(std::int32_t kind, std::int32_t variant,
                                                       std::int32_t hasHeight)
    : HandleC(new ODM::CoordinateReferenceSystemC(kind, variant, hasHeight)) {}

std::int32_t CoordinateReferenceSystemC::GetKind() const { return GetImpl()->GetKind(); }
void CoordinateReferenceSystemC::SetKind(std::int32_t kind) { GetImpl()->SetKind(kind); }
std::int32_t CoordinateReferenceSystemC::GetVariant() const { return GetImpl()->GetVariant(); }
void CoordinateReferenceSystemC::SetVariant(std::int32_t variant) {
  GetImpl()->SetVariant(variant);
}
std::int32_t CoordinateReferenceSystemC::GetHasHeight() const { return GetImpl()->GetHasHeight(); }
void CoordinateReferenceSystemC::SetHasHeight(std::int32_t hasHeight) {
  GetImpl()->SetHasHeight(hasHeight);
}

bool CoordinateReferenceSystemC::IsEqual(const CoordinateReferenceSystemC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::CoordinateReferenceSystemC* API::CastFromAny(API::ImplObjectC*);
