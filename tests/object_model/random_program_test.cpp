#include <concepts>
#include <cstddef>
#include <cstdint>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/support/pairs.h"
#include "tests/support/test_each.h"

// Runs random programs of constructors, copies, assignments, adoptions, links and deletions from
// either side, and compares all links and the live objects with a model of ownership after every
// step. AddressSanitizer reports leaks and double deletions.

namespace {

constexpr std::uint64_t kSeed = 20260101;
constexpr int kPrograms = 200;  // for each pair
constexpr int kSteps = 60;
constexpr std::size_t kMostObjects = 8;  // per side

template <class P>
class RandomProgram : public testing::Test {
 protected:
  using Public = typename P::PublicT;
  using Impl = typename P::ImplT;

  // A plain scan definition has no data except its kind, which is fixed at construction.
  static constexpr bool kIsRecord = std::is_default_constructible_v<Impl>;
  static constexpr std::uint32_t kSomeKind = 7;
  static constexpr bool kTakesOwner = std::is_constructible_v<Impl, API::BaseC*>;

  // The live objects, by number. Objects that the library creates (in a constructor or `GetBase`)
  // are only known by their pointers.
  static inline int countedPublics = 0;
  static inline int countedImpls = 0;

  class CountedPublic : public Public {
   public:
    template <class... Args>
    explicit CountedPublic(Args&&... args) : Public(std::forward<Args>(args)...) {
      ++countedPublics;
    }
    CountedPublic(const CountedPublic&) = delete;
    CountedPublic& operator=(const CountedPublic&) = delete;
    ~CountedPublic() override { --countedPublics; }
  };
  class CountedImpl : public Impl {
   public:
    CountedImpl() requires kIsRecord { ++countedImpls; }
    CountedImpl() requires(!kIsRecord) : Impl(kSomeKind) { ++countedImpls; }
    explicit CountedImpl(API::BaseC* owner) requires kTakesOwner : Impl(owner) { ++countedImpls; }
    explicit CountedImpl(const Impl& other) : Impl(other) { ++countedImpls; }
    CountedImpl(const CountedImpl&) = delete;
    CountedImpl& operator=(const CountedImpl&) = delete;
    ~CountedImpl() override { --countedImpls; }
  };

  // The model. A pairing is a public object, an implementation, or both with their link.
  struct Side {
    bool isCounted = false;
  };
  struct Pairing {
    API::BaseC* object = nullptr;
    Impl* impl = nullptr;
    Side objectSide;
    Side implSide;
    bool isMarked = false;  // whether the data of `impl` is marked
  };

  RandomProgram() : random_(kSeed) {}
  ~RandomProgram() override { End(); }

  // Destroys all objects.
  void End() {
    while (!pairings_.empty()) DeleteEither(0);
    Check();
  }

  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
  bool Flip() { return Below(2) == 0; }

  void Check() {
    int publics = 0;
    int impls = 0;
    for (const Pairing& p : pairings_) {
      publics += p.object != nullptr && p.objectSide.isCounted;
      impls += p.impl != nullptr && p.implSide.isCounted;
      if (p.object != nullptr) {
        ASSERT_EQ(p.object->GetImpl(), p.impl);
      }
      if (p.impl != nullptr) {
        ASSERT_EQ(p.impl->API::ImplObjectC::GetBase(), p.object);
        if constexpr (kIsRecord) {
          ASSERT_EQ(Pairs::IsMarked(*p.impl), p.isMarked || !Pairs::kHasData<Impl>);
        } else {
          ASSERT_EQ(p.impl->GetType(), kSomeKind);
        }
      }
    }
    ASSERT_EQ(countedPublics, publics);
    ASSERT_EQ(countedImpls, impls);
  }

  // A pairing with the requested sides; null if there is none.
  Pairing* Some(bool hasObject, bool hasImpl) {
    std::vector<Pairing*> fitting;
    for (Pairing& p : pairings_) {
      if ((p.object != nullptr || !hasObject) && (p.impl != nullptr || !hasImpl)) {
        fitting.push_back(&p);
      }
    }
    return fitting.empty() ? nullptr : fitting[Below(fitting.size())];
  }
  void Forget(const Pairing* p) { pairings_.erase(pairings_.begin() + (p - pairings_.data())); }

  // Deletes a side that exists, which destroys both.
  void DeleteEither(std::size_t i) {
    const Pairing p = pairings_[i];
    pairings_.erase(pairings_.begin() + static_cast<std::ptrdiff_t>(i));
    if (p.object != nullptr && (p.impl == nullptr || Flip())) {
      delete p.object;
    } else {
      delete p.impl;
    }
  }

  // The implementation that a public object creates for itself has the class that it reads.
  static constexpr bool kReads = requires(const Public& p) {
    { p.GetImpl() } -> std::same_as<Impl*>;
  };

  Pairing OfPublic(API::BaseC* object) {
    return {object, static_cast<Impl*>(object->GetImpl()), {true}, {false}, false};
  }

  void Step() {
    if (pairings_.size() > kMostObjects) DeleteEither(Below(pairings_.size()));
    switch (Below(15)) {
      case 0:
        if constexpr (kReads && std::is_default_constructible_v<Public>) {
          pairings_.push_back(OfPublic(new CountedPublic));
        }
        return;
      case 1:
        pairings_.push_back({nullptr, new CountedImpl, {}, {true}, false});
        return;
      case 2: {  // adoption of an implementation, with or without an owner
        Pairing* const p = Some(false, true);
        if (p == nullptr) return;
        if constexpr (std::is_constructible_v<Public, Impl*>) {
          p->object = new CountedPublic(p->impl);  // destroys the previous owner
        } else {
          p->object = p->impl->GetBase();
        }
        p->objectSide.isCounted = std::is_constructible_v<Public, Impl*>;
        return;
      }
      case 3: {  // a copy of a public object, which may have no implementation
        if constexpr (kReads && std::is_copy_constructible_v<Public>) {
          const Pairing* const p = Some(true, false);
          if (p == nullptr) return;
          Pairing copy = OfPublic(new CountedPublic(static_cast<const Public&>(*p->object)));
          copy.isMarked = p->isMarked;
          pairings_.push_back(copy);
        }
        return;
      }
      case 4: {
        const Pairing* const p = Some(false, true);
        if (p == nullptr) return;
        const bool isMarked = p->isMarked;
        pairings_.push_back(
            {nullptr, new CountedImpl(static_cast<const Impl&>(*p->impl)), {}, {true}, isMarked});
        return;
      }
      case 5: {  // assignment between public objects, including self-assignment
        if constexpr (kReads && std::is_copy_assignable_v<Public>) {
          Pairing* const to = Some(true, false);
          const Pairing* const from = Some(true, false);
          if (to == nullptr) return;
          static_cast<Public&>(*to->object) = static_cast<const Public&>(*from->object);
          if (to->impl != nullptr && from->impl != nullptr) to->isMarked = from->isMarked;
        }
        return;
      }
      case 6: {
        Pairing* const to = Some(false, true);
        const Pairing* const from = Some(false, true);
        if (to == nullptr) return;
        *to->impl = std::as_const(*from->impl);
        to->isMarked = from->isMarked;
        return;
      }
      case 7: {  // the public object that an implementation has or creates
        Pairing* const p = Some(false, true);
        if (p == nullptr) return;
        API::BaseC* const base = p->impl->GetBase();
        ASSERT_NE(base, nullptr);
        ASSERT_EQ(p->impl->GetBase(), base);
        if (p->object == nullptr) {
          p->object = base;
          p->objectSide.isCounted = false;
        }
        return;
      }
      case 8: {  // detaches both sides
        Pairing* const p = Some(true, true);
        if (p == nullptr) return;
        p->impl->DetachBase();
        const Pairing alone{p->object, nullptr, p->objectSide, {}, false};
        p->object = nullptr;
        pairings_.push_back(alone);
        return;
      }
      case 9: {  // another implementation for a public object
        Pairing* const to = Some(true, false);
        const Pairing* const from = Some(false, true);
        if (to == nullptr || from == nullptr) return;
        if (to == from) {
          to->object->SetImpl(from->impl);  // no effect
          return;
        }
        Impl* const before = to->impl;
        if (before != nullptr && Flip()) {
          to->object->SetImpl(from->impl);
          ASSERT_EQ(before->API::ImplObjectC::GetBase(), to->object);  // unchanged
          ASSERT_EQ(to->object->GetImpl(), from->impl);
        }
        if (before != nullptr) before->DetachBase();  // required before replacing it
        to->object->SetImpl(from->impl);              // destroys the owner of `from`
        to->impl = from->impl;
        const Side beforeSide = std::exchange(to->implSide, from->implSide);
        const bool wasMarked = std::exchange(to->isMarked, from->isMarked);
        Forget(from);
        if (before != nullptr) pairings_.push_back({nullptr, before, {}, beforeSide, wasMarked});
        return;
      }
      case 10: {
        if constexpr (kIsRecord) {
          Pairing* const p = Some(false, true);
          if (p == nullptr || p->isMarked) return;
          Pairs::Mark(*p->impl);
          p->isMarked = true;
        }
        return;
      }
      case 11:  // a public object without an implementation
        if constexpr (std::is_constructible_v<Public, Impl*>) {
          pairings_.push_back(
              {new CountedPublic(static_cast<Impl*>(nullptr)), nullptr, {true}, {}, false});
        }
        return;
      case 12: {  // an implementation constructed for a public object without one
        if constexpr (kTakesOwner) {
          Pairing* const p = Some(true, false);
          if (p == nullptr || p->impl != nullptr) return;
          p->impl = new CountedImpl(p->object);
          p->implSide.isCounted = true;
          ASSERT_EQ(p->object->GetImpl(), nullptr);  // not linked yet
          p->object->SetImpl(p->impl);
        }
        return;
      }
      case 13: {  // clears the owner, which is destroyed
        Pairing* const p = Some(true, true);
        if (p == nullptr) return;
        p->impl->SetBase(nullptr);
        p->object = nullptr;
        return;
      }
      default:
        if (!pairings_.empty()) DeleteEither(Below(pairings_.size()));
        return;
    }
  }

 private:
  std::mt19937_64 random_;
  std::vector<Pairing> pairings_;
};

template <class... P, class... Q, class... R>
testing::Types<P..., Q..., R...> Joined(testing::Types<P...>, testing::Types<Q...>,
                                        testing::Types<R...>);
// The base of the areas is also a pair, although callers do not create it.
using Bases = testing::Types<Pairs::Pair<SDI::ScanDefinitionC, SDI::ScanDefinitionImplC>>;
using EveryPair = decltype(Joined(Pairs::AllPairs(), Pairs::UnreadPairs(), Bases()));
TEST_EACH_SUITE(RandomProgram, EveryPair);

TEST_EACH(RandomProgram, LeavesEveryLinkAndEveryObjectAsTheModelSays) {
  for (int program = 0; program < kPrograms; ++program) {
    for (int step = 0; step < kSteps; ++step) {
      this->Step();
      ASSERT_NO_FATAL_FAILURE(this->Check()) << "program " << program << ", step " << step;
    }
    ASSERT_NO_FATAL_FAILURE(this->End()) << "program " << program;
  }
}

}  // namespace
