#ifndef SURVEYDATA_OBJECT_MODEL_LENT_OBJECT_H_
#define SURVEYDATA_OBJECT_MODEL_LENT_OBJECT_H_

#include <cassert>

#include <surveydata/object_model/base.h>

/// \file
/// Internal: the public objects of the parts that an implementation holds by value.

namespace API {

#ifndef NDEBUG
/// The public object of a part in debug builds. It detects its own deletion by a caller, which
/// would delete the part, although the part is not an object on the heap.
template <class Public, class Part>
class LentC final : public Public {
 public:
  explicit LentC(Part& part) : Public(&part), part_(part) {}
  LentC(const LentC&) = delete;
  LentC& operator=(const LentC&) = delete;
  ~LentC() override {
    assert(BaseC::GetImpl() != &part_ && "the public object of a part is deleted by its user");
  }

 private:
  const ImplObjectC& part_;
};
#endif

/// The public object of `part`, an implementation that another one holds by value. It exists as
/// long as `part`; repeated calls return the same object.
template <class Public, class Part>
Public& PublicOf(Part& part) {
#ifndef NDEBUG
  if (part.ImplObjectC::GetBase() == nullptr) {
    return *new LentC<Public, Part>(part);  // links itself
  }
#endif
  return static_cast<Public&>(*part.GetBase());
}

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_LENT_OBJECT_H_
