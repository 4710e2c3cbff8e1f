// A caller of everything: creates every pair, copies, assigns, adopts, asks for the other side,
// compares and destroys. The tests `abi.caller` look for the library's classes in its object files,
// and run it.

#include <cstdio>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "tests/support/pair_list.h"

namespace {

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::exit(1);
}

// The implementation as a part of another object, without its public object at first.
template <class Impl>
void UseImplementation() {
  Impl part;
  API::BaseC* const base = part.GetBase();
  Expect(base != nullptr && part.GetBase() == base, "a part makes one public object");
  Impl copy(part);
  Impl moved(std::move(copy));
  copy = moved;
  Expect(copy.GetBase() != base, "a copy has a public object of its own");
  auto* const owner = new API::BaseC;
  const Impl owned(owner);
  Expect(owner->GetImpl() == nullptr, "an owner learns of its implementation by SetImpl");
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
    Expect(copy.GetImpl() != impl && made.GetImpl() == impl, "copies have data of their own");
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
  Expect(copy.GetBase() != definition.GetBase(), "a copy has a public object of its own");
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
  Expect(!(text == copy) && text.GetLength() == 4 && text.IsValid(), "a text has its units");
  Expect(copy.IsEmpty() && copy.GetData()[0] == 0, "a copy is as its source was");
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
  Expect(version >= copy && !(version == copy) && version.GetBuild() == 1, "versions have a word");
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
    Expect(adopting.GetImpl() == nullptr, "an implementation that is not read");
    ++pairs;
  });
  std::printf("%d pairs\n", pairs);
}
