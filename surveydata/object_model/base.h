#ifndef SURVEYDATA_OBJECT_MODEL_BASE_H_
#define SURVEYDATA_OBJECT_MODEL_BASE_H_

#include <surveydata/object_model/export.h>

namespace API {

class SURVEYDATA_API ImplObjectC;

/// The base of every public object: a thin handle to one implementation object.
///
/// While the link stands, each side owns the other: destroying either destroys both. Nothing is
/// counted and nothing is locked.
class SURVEYDATA_API BaseC {
 public:
  /// A handle without an implementation.
  BaseC() noexcept;
  /// A handle without an implementation: a copy never shares the one of `other`.
  BaseC(const BaseC& other) noexcept;
  /// Links to `impl` as `SetImpl` does.
  explicit BaseC(ImplObjectC* impl);
  /// Takes itself from the implementation as its owner, then deletes it. Until that is done,
  /// `GetImpl()` answers the implementation, also to the destructor of a class derived from it.
  virtual ~BaseC();

  /// Copies the pointer alone and touches no link. Public classes copy data instead.
  BaseC& operator=(const BaseC& other) noexcept;

  /// Links to `impl` (may be null); a public object that owned `impl` before is deleted. Nothing
  /// happens when `impl` is linked already.
  ///
  /// The implementation that was linked before is not deleted and keeps this object as its owner.
  /// Whoever replaces an implementation calls `DetachBase` on the old one first, and deletes it
  /// afterwards: detaching or deleting it later would cut or destroy this object.
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
  /// Takes itself from the owner as its implementation, then deletes it. Until that is done,
  /// `GetBase()` answers the owner, also to the destructor of a class derived from the owner's.
  virtual ~ImplObjectC();

  /// Leaves both owners as they are.
  ImplObjectC& operator=(const ImplObjectC& other) noexcept;

  /// The owner, or null. Concrete implementations make one on the first call.
  virtual BaseC* GetBase();

  /// Makes `owner` (may be null) the owner; another owner from before is unlinked and deleted.
  void SetBase(BaseC* owner);

  /// Cuts the link on both sides and deletes nothing. The owner is left without an implementation.
  void DetachBase() noexcept;

 private:
  friend class BaseC;

  BaseC* owner_ = nullptr;
};

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_BASE_H_
