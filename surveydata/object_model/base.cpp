#include <surveydata/object_model/base.h>

namespace API {

BaseC::BaseC() noexcept = default;
BaseC::BaseC(const BaseC& /*other*/) noexcept {}
BaseC::BaseC(ImplObjectC* impl) { BaseC::SetImpl(impl); }
BaseC& BaseC::operator=(const BaseC& other) noexcept = default;

BaseC::~BaseC() {
  if (impl_ == nullptr) return;
  impl_->owner_ = nullptr;  // so that the implementation does not delete this object in turn
  delete impl_;
  impl_ = nullptr;  // not before: the implementation's destructor may ask for it
}

void BaseC::SetImpl(ImplObjectC* impl) {
  if (impl == impl_) return;
  impl_ = impl;
  if (impl != nullptr) impl->SetBase(this);
}

ImplObjectC::ImplObjectC() noexcept = default;
ImplObjectC::ImplObjectC(const ImplObjectC& /*other*/) noexcept {}

ImplObjectC::~ImplObjectC() {
  if (owner_ == nullptr) return;
  owner_->impl_ = nullptr;  // so that the owner does not delete this object in turn
  delete owner_;
  owner_ = nullptr;  // not before: the owner's destructor may ask for it
}

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
