#include <surveydata/surveydata.h>

#include "tests/support/pairs.h"

// Creates objects of every pair, which a debugger shows.

// The debugger stops here and shows the variables of the caller.
[[gnu::noinline]] void Stop() { asm volatile(""); }

namespace {

template <class Impl>
void Fill(Impl& impl) {
  if constexpr (requires { Records::FieldsOf<Impl>(); }) {
    Records::FillAll(impl);
  } else {
    Pairs::Mark(impl);
  }
}

template <class Pair>
void ShowPair() {
  typename Pair::ImplT impl;
  Fill(impl);
  const typename Pair::PublicT object(new typename Pair::ImplT(impl));
  Stop();
}

template <class... Each>
void ShowPairs(testing::Types<Each...>* /*pairs*/) {
  (ShowPair<Each>(), ...);
}

}  // namespace

int main() {
  ShowPairs(static_cast<Pairs::AllPairs*>(nullptr));
  ShowPairs(static_cast<Pairs::UnreadPairs*>(nullptr));
}
