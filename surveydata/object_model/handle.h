#ifndef SURVEYDATA_OBJECT_MODEL_HANDLE_H_
#define SURVEYDATA_OBJECT_MODEL_HANDLE_H_

#include <cstdint>
#include <functional>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <surveydata/object_model/base.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/layout.h>

/// \file
/// The pair pattern: a public object that callers hold and an implementation that holds its data.
///
/// A data class consists of two classes: an implementation derived from `ImplC` with the fields,
/// their accessors and `isEqual`, and a public class derived from `HandleC` with the same accessors
/// and `IsEqual`. This file implements the special members of both sides. Each class declares its
/// own and defaults them in its source file, so that only the library contains them. Code that uses
/// public objects depends on neither the size nor the fields of an implementation, and need not be
/// recompiled when a record gets another field.

namespace API {

/// `CheckedCast` for an object whose class is not exactly `Wanted`. Out of line, so that accessors
/// stay small; the library exports an instance for each of its implementations.
template <class Wanted>
[[gnu::noinline, gnu::cold]] Wanted* CastFromAny(ImplObjectC* impl) {
  return dynamic_cast<Wanted*>(impl);
}

/// Casts `impl` to `Wanted`; null if it has another class. An exact match costs one comparison of
/// type information; only a class derived from `Wanted` requires `dynamic_cast`.
///
/// The type information is compared by address. In a module with its own copy, which the linker
/// could not merge, `dynamic_cast` gives the same answer.
template <class Wanted>
[[gnu::always_inline]] inline Wanted* CheckedCast(ImplObjectC* impl) {
  if (impl != nullptr && &typeid(*impl) == &typeid(Wanted)) return static_cast<Wanted*>(impl);
  return CastFromAny<Wanted>(impl);
}

/// The public side of a pair: a thin object that owns one `Impl`.
///
/// Copies are deep: a copy has its own implementation. Destroying either side of the pair destroys
/// the other. Moving copies, so that no object is left without its implementation.
///
/// A derived class declares the default constructor, the one that takes an `Impl*`, copying,
/// assignment and the destructor, and defaults them in its source file.
template <class Impl, class Base = BaseC>
class SURVEYDATA_VISIBLE HandleC : public Base {
 public:
  /// Creates a default implementation.
  HandleC() : Base(new Impl) {}
  /// Takes ownership of `impl`; a public object that owned it before is destroyed.
  explicit HandleC(Impl* impl) : Base(impl) {}
  /// A copy of the data of `other`; defaults if `other` has no `Impl`.
  HandleC(const HandleC& other) requires std::is_copy_constructible_v<Base>
      : Base(NewCopy(other.GetImpl())) {}
  /// Copies the data of `other`; changes nothing if either side has no `Impl`.
  HandleC& operator=(const HandleC& other) requires std::is_copy_assignable_v<Base> {
    if (this == &other) return *this;
    Impl* const to = GetImpl();
    const Impl* const from = other.GetImpl();
    if (to != nullptr && from != nullptr) *to = *from;
    return *this;
  }

  /// The implementation, or null if it is missing or of another class.
  [[gnu::always_inline]] Impl* GetImpl() const { return CheckedCast<Impl>(BaseC::GetImpl()); }

 protected:
  /// Invokes `question` on the implementation; returns `without` for a handle without one.
  template <class Question, class... Args>
  auto Ask(Question question, std::invoke_result_t<Question, const Impl&, Args&...> without,
           Args&... args) const {
    const Impl* const impl = GetImpl();
    return impl != nullptr ? std::invoke(question, *impl, args...) : without;
  }

  /// Invokes `order` on the implementation; does nothing for a handle without one.
  template <class Order, class... Args>
  void Tell(Order order, const Args&... args) {
    if (Impl* const impl = GetImpl()) std::invoke(order, *impl, args...);
  }

  /// Whether the implementations are equal; false if either side has none.
  bool AreBothEqual(const HandleC& other) const {
    const Impl* const a = GetImpl();
    const Impl* const b = other.GetImpl();
    return a != nullptr && b != nullptr && a->isEqual(*b);
  }

 private:
  static Impl* NewCopy(const Impl* from) { return from != nullptr ? new Impl(*from) : new Impl; }
};

/// The implementation side of a pair: holds the data of one `Public`.
///
/// Copying and assigning copy the data and never the owner. Destroying destroys the owner.
///
/// A derived class declares the default constructor, the one that takes its owner, copying,
/// assignment, the destructor and `GetBase`. It defaults them in its source file, where `GetBase`
/// calls the one below.
template <class Self, class Public, class Base = ImplObjectC>
class SURVEYDATA_VISIBLE ImplC : public Base {
 public:
  using Base::Base;
  ImplC() = default;
  /// Defaults, with `owner` as the owner, which must be of class `Public`; this is not checked.
  /// Does not link `owner` to this implementation; `SetImpl` does that.
  explicit ImplC(BaseC* owner) { this->SetBase(owner); }

  /// The public object of this implementation, created on the first call and owned by it.
  BaseC* GetBase() override {
    // Qualified: `Base` may be a pair itself, whose `GetBase` would create its own public object.
    // NOLINTBEGIN(bugprone-parent-virtual-call)
    if (ImplObjectC::GetBase() == nullptr) new Public(static_cast<Self*>(this));  // links itself
    return ImplObjectC::GetBase();
    // NOLINTEND(bugprone-parent-virtual-call)
  }
};

/// `flags` with the bits of `set` set and then those of `clear` cleared.
constexpr std::uint32_t ChangedFlags(std::uint32_t flags, std::uint32_t set, std::uint32_t clear) {
  return (flags | set) & ~clear;
}

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_HANDLE_H_
