#include <surveydata/object_model/base.h>

namespace API {

BaseC::BaseC(const BaseC& /*other*/) noexcept {}

void BaseC::SetImpl(ImplObjectC* impl) {
  if (impl == impl_) return;
  impl_ = impl;
  if (impl != nullptr) impl->SetBase(this);
}

ImplObjectC::ImplObjectC(const ImplObjectC& /*other*/) noexcept {}

// Nothing is copied, so there is nothing to guard against assigning to itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp)
ImplObjectC& ImplObjectC::operator=(const ImplObjectC& /*other*/) noexcept { return *this; }

BaseC* ImplObjectC::GetBase() { return owner_; }

void ImplObjectC::SetBase(BaseC* owner) {
  BaseC* const old = owner_;
  if (old != nullptr && old != owner) {
    old->impl_ = nullptr;
    delete old;
  }
  owner_ = owner;
}

void ImplObjectC::DetachBase() noexcept {
  if (owner_ != nullptr) owner_->impl_ = nullptr;
  owner_ = nullptr;
}

}  // namespace API
