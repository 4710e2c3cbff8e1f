#include <surveydata/geodetic/undulation_memento.h>
#include <surveydata/object_model/compare.h>

namespace ODM {

UndulationMementoC::UndulationMementoC() = default;
UndulationMementoC::UndulationMementoC(API::BaseC* owner) : ImplC(owner) {}
UndulationMementoC::UndulationMementoC(const UndulationMementoC& other) = default;
UndulationMementoC& UndulationMementoC::operator=(const UndulationMementoC& other) = default;
UndulationMementoC::~UndulationMementoC() = default;
API::BaseC* UndulationMementoC::GetBase() { return ImplC::GetBase(); }

UndulationMementoC::UndulationMementoC(float undulation, std::int32_t source, std::uint8_t valid)
    : undulation_(undulation), source_(source), valid_(valid) {}

float UndulationMementoC::GetUndulation() const { return undulation_; }
std::int32_t UndulationMementoC::GetSource() const { return source_; }
std::uint8_t UndulationMementoC::GetValid() const { return valid_; }

bool UndulationMementoC::isEqual(const UndulationMementoC& other) const {
  return API::EqualFields(*this, other, &UndulationMementoC::valid_, &UndulationMementoC::source_,
                          &UndulationMementoC::undulation_);
}

}  // namespace ODM

namespace SDI {

UndulationMementoC::UndulationMementoC() = default;
UndulationMementoC::UndulationMementoC(ODM::UndulationMementoC* impl) : HandleC(impl) {}
UndulationMementoC::UndulationMementoC(const UndulationMementoC& other) = default;
UndulationMementoC& UndulationMementoC::operator=(const UndulationMementoC& other) = default;
UndulationMementoC::~UndulationMementoC() = default;

UndulationMementoC::UndulationMementoC(float undulation, std::int32_t source, std::uint8_t valid)
    : HandleC(new ODM::UndulationMementoC(undulation, source, valid)) {}

float UndulationMementoC::GetUndulation() const { return GetImpl()->GetUndulation(); }
std::int32_t UndulationMementoC::GetSource() const { return GetImpl()->GetSource(); }
std::uint8_t UndulationMementoC::GetValid() const { return GetImpl()->GetValid(); }

bool UndulationMementoC::IsEqual(const UndulationMementoC& other) const {
  return GetImpl()->isEqual(*other.GetImpl());
}

}  // namespace SDI

template ODM::UndulationMementoC* API::CastFromAny(API::ImplObjectC*);
