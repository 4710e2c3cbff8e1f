// A caller that uses every pair: creates, copies, assigns, adopts, compares and destroys objects,
// and requests the other side. The tests `abi.caller` search its object files for members of the
// library's classes, and run it.

#include <cstdio>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "tests/support/pair_list.h"

namespace {

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "failed: %s\n", what);
  std::exit(1);
}

// Uses an implementation like a part of another object, initially without a public object.
template <class Impl>
void UseImplementation() {
  Impl part;
  API::BaseC* const base = part.GetBase();
  Expect(base != nullptr && part.GetBase() == base, "a part creates one public object");
  Impl copy(part);
  Impl moved(std::move(copy));
  copy = moved;
  Expect(copy.GetBase() != base, "a copy has its own public object");
  auto* const owner = new API::BaseC;
  const Impl owned(owner);
  Expect(owner->GetImpl() == nullptr, "only SetImpl links an owner to its implementation");
  delete new Impl;
}

template <class Public, class Impl>
void UsePublicObject() {
  Public made;
  Impl* const impl = made.GetImpl();
  Expect(impl != nullptr && impl->GetBase() == &made, "both sides are linked");
  auto* const adopted = new Impl;
  const Public adopting(adopted);
  Expect(adopting.GetImpl() == adopted, "the implementation is adopted");
  delete new Public;
  delete (new Public)->GetImpl();
  if constexpr (std::is_copy_constructible_v<Public>) {
    Public copy(made);
    Public moved(std::move(copy));
    copy = moved;
    made = std::move(moved);
    Expect(copy.GetImpl() != impl && made.GetImpl() == impl, "copies have their own data");
  }
  if constexpr (requires { made.IsEqual(made); }) {
    Expect(made.IsEqual(made), "an object equals itself");
  }
  if constexpr (requires { made == made; }) Expect(made == made, "an object equals itself");
}

// The base of the scan areas has no default constructor: its implementation needs a kind.
void UseScanDefinition() {
  SDI::ScanDefinitionImplC definition(7);
  SDI::ScanDefinitionImplC copy(definition);
  copy = definition;
  Expect(copy.GetBase() != definition.GetBase(), "a copy has its own public object");
  const SDI::ScanDefinitionC adopting(new SDI::ScanDefinitionImplC(7));
  Expect(adopting.IsEqual(*static_cast<SDI::ScanDefinitionC*>(copy.GetBase())), "kinds are equal");
}

void UseBases() {
  API::BaseC object(new API::ImplObjectC);
  const API::BaseC copy(object);
  API::BaseC assigned;
  assigned = copy;
  API::ImplObjectC impl(*object.GetImpl());
  impl = *object.GetImpl();
  Expect(impl.GetBase() == nullptr && assigned.GetImpl() == nullptr, "copies are not linked");
}

template <class Text>
void UseText() {
  Text text;
  const Text copy(text);
  text = Text(u"text");
  Expect(!(text == copy) && text.GetLength() == 4 && text.IsValid(), "a text stores its units");
  Expect(copy.IsEmpty() && copy.GetData()[0] == 0, "a copy does not change with its source");
}

void UseValues() {
  UseText<API::FixedStringC<10>>();
  UseText<API::FixedStringC<16>>();
  UseText<API::FixedStringC<24>>();
  UseText<API::FixedStringC<30>>();
  UseText<API::FixedStringC<32>>();
  UseText<API::FixedStringC<60>>();
  UseText<API::FixedStringC<64>>();
  UseText<API::FixedStringC<240>>();
  UseText<API::FixedStringC<254>>();
  UseText<API::FixedStringC<255>>();
  API::VersionC version;
  const API::VersionC copy(version);
  version = API::VersionC(1);
  Expect(version >= copy && !(version == copy) && version.GetBuild() == 1, "versions compare");
}

}  // namespace

int main() {
  UseBases();
  UseScanDefinition();
  UseValues();
  int pairs = 0;
  Pairs::AllPairList::ForEach([&]<class P>() {
    UsePublicObject<typename P::PublicT, typename P::ImplT>();
    UseImplementation<typename P::ImplT>();
    ++pairs;
  });
  Pairs::UnreadPairList::ForEach([&]<class P>() {
    UseImplementation<typename P::ImplT>();
    const typename P::PublicT adopting(new typename P::ImplT);
    Expect(adopting.GetImpl() == nullptr, "a public object does not read a foreign implementation");
    ++pairs;
  });
  std::printf("%d pairs\n", pairs);
}
