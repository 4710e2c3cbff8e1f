#ifndef SURVEYDATA_OBJECT_MODEL_BASE_H_
#define SURVEYDATA_OBJECT_MODEL_BASE_H_

#include <surveydata/object_model/export.h>

namespace API {

class SURVEYDATA_API ImplObjectC;

/// The base of every public object: a thin handle to one implementation object.
///
/// While linked, each side owns the other: destroying either destroys both. There is no reference
/// counting and no locking.
class SURVEYDATA_API BaseC {
 public:
  /// A handle without an implementation.
  BaseC() noexcept;
  /// A handle without an implementation: a copy never shares the one of `other`.
  BaseC(const BaseC& other) noexcept;
  /// Links to `impl` as `SetImpl` does.
  explicit BaseC(ImplObjectC* impl);
  /// Clears the implementation's pointer to this object, then deletes the implementation. Until
  /// that is done, `GetImpl()` returns the implementation, even in the destructor of a class
  /// derived from it.
  virtual ~BaseC();

  /// Copies only the pointer and changes no other link. Public classes copy data instead.
  BaseC& operator=(const BaseC& other) noexcept;

  /// Links to `impl` (may be null); a public object that owned `impl` before is deleted. Has no
  /// effect if `impl` is already linked.
  ///
  /// The previously linked implementation is not deleted and keeps this object as its owner. To
  /// replace an implementation, call `DetachBase` on the old one first, and delete it afterwards:
  /// detaching or deleting it later would unlink or destroy this object.
  virtual void SetImpl(ImplObjectC* impl);

  /// The linked implementation, or null.
  [[gnu::always_inline]] ImplObjectC* GetImpl() const noexcept { return impl_; }

 private:
  friend class ImplObjectC;

  ImplObjectC* impl_ = nullptr;
};

/// The base of every implementation object: holds the data of one public object, its owner.
class SURVEYDATA_API ImplObjectC {
 public:
  /// An implementation without an owner.
  ImplObjectC() noexcept;
  /// An implementation without an owner: copying never copies the link.
  ImplObjectC(const ImplObjectC& other) noexcept;
  /// Clears the owner's pointer to this object, then deletes the owner. Until that is done,
  /// `GetBase()` returns the owner, even in the destructor of a class derived from the owner's.
  virtual ~ImplObjectC();

  /// Changes neither owner.
  ImplObjectC& operator=(const ImplObjectC& other) noexcept;

  /// The owner, or null. Concrete implementations create one on the first call.
  virtual BaseC* GetBase();

  /// Makes `owner` (may be null) the owner; a different previous owner is unlinked and deleted.
  void SetBase(BaseC* owner);

  /// Cuts the link on both sides and deletes nothing. The owner then has no implementation.
  void DetachBase() noexcept;

 private:
  friend class BaseC;

  BaseC* owner_ = nullptr;
};

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_BASE_H_
