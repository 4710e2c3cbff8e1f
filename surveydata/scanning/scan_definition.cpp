#include <surveydata/scanning/scan_definition.h>

namespace SDI {

ScanDefinitionImplC::ScanDefinitionImplC(std::uint32_t type) : type_(type) {}
ScanDefinitionImplC::ScanDefinitionImplC(const ScanDefinitionImplC& other) = default;
ScanDefinitionImplC& ScanDefinitionImplC::operator=(const ScanDefinitionImplC& other) = default;
ScanDefinitionImplC::~ScanDefinitionImplC() = default;
API::BaseC* ScanDefinitionImplC::GetBase() { return ImplC::GetBase(); }

bool ScanDefinitionImplC::IsEqual(const API::ImplObjectC& other) const {
  const auto* const definition = dynamic_cast<const ScanDefinitionImplC*>(&other);
  return definition != nullptr && definition->type_ == type_;
}

std::uint32_t ScanDefinitionImplC::GetType() const { return type_; }

ScanDefinitionC::ScanDefinitionC(ScanDefinitionImplC* impl) : API::BaseC(impl) {}
ScanDefinitionC::~ScanDefinitionC() = default;

ScanDefinitionImplC* ScanDefinitionC::GetImpl() const {
  return API::CheckedCast<ScanDefinitionImplC>(API::BaseC::GetImpl());
}

std::uint32_t ScanDefinitionC::GetType() const { return GetImpl()->GetType(); }

bool ScanDefinitionC::IsEqual(const ScanDefinitionC& other) const {
  return GetImpl()->IsEqual(*other.GetImpl());
}

}  // namespace SDI
