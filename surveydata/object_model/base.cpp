#include <cassert>

#include <surveydata/object_model/base.h>

#if !defined(NDEBUG) && defined(__linux__)
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <typeinfo>

extern "C" {
// The start of the main thread's stack. C libraries other than glibc may lack it.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
[[gnu::weak]] extern void* __libc_stack_end;
}
#endif

namespace API {

#ifndef NDEBUG
namespace {

// Whether `object` is a variable of the main thread, which must not be deleted. A caller's class
// may have its own `operator delete`, so only objects of the library's classes count.
template <class Object>
bool IsAutomatic([[maybe_unused]] const Object& object) {
#if defined(__linux__)
  constexpr std::uintptr_t kStack = std::uintptr_t{1} << 20;  // no other mapping is as near
  if (&__libc_stack_end == nullptr) return false;
  const auto end = reinterpret_cast<std::uintptr_t>(__libc_stack_end);
  const auto at = reinterpret_cast<std::uintptr_t>(&object);
  if (at >= end || end - at > kStack) return false;
  const char* const name = typeid(object).name();
  const char* const namespaces[] = {"N3API", "N3ODM", "N3SDI"};
  return std::any_of(std::begin(namespaces), std::end(namespaces), [name](const char* prefix) {
    return std::strncmp(name, prefix, std::strlen(prefix)) == 0;
  });
#else
  return false;
#endif
}

}  // namespace
#endif

BaseC::BaseC() noexcept = default;
BaseC::BaseC(const BaseC& /*other*/) noexcept {}
BaseC::BaseC(ImplObjectC* impl) { BaseC::SetImpl(impl); }
BaseC& BaseC::operator=(const BaseC& other) noexcept = default;

BaseC::~BaseC() {
  if (impl_ == nullptr) return;
  assert(!IsAutomatic(*impl_) && "a variable is deleted as the implementation of an object");
  impl_->owner_ = nullptr;  // so that the implementation does not delete this object in turn
  delete impl_;
  // Only now: the implementation's destructor may call GetImpl(). A compiler may drop the store,
  // since no later read is defined.
  impl_ = nullptr;
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
  assert((owner_->impl_ == nullptr || owner_->impl_ == this) &&
         "the owner of this implementation has another one, or was destroyed");
  assert(!IsAutomatic(*owner_) && "a variable is deleted as the owner of an implementation");
  owner_->impl_ = nullptr;  // so that the owner does not delete this object in turn
  delete owner_;
  owner_ = nullptr;  // only now, likewise: the owner's destructor may call GetBase()
}

// Nothing is copied, so self-assignment needs no guard.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp)
ImplObjectC& ImplObjectC::operator=(const ImplObjectC& /*other*/) noexcept { return *this; }

BaseC* ImplObjectC::GetBase() { return owner_; }

void ImplObjectC::SetBase(BaseC* owner) {
  BaseC* const old = owner_;
  if (old != nullptr && old != owner) {
    assert((old->impl_ == nullptr || old->impl_ == this) &&
           "the earlier owner of this implementation has another one, or was destroyed");
    assert(!IsAutomatic(*old) && "a variable is deleted as the earlier owner of an implementation");
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
