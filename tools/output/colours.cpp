#include <cstdlib>

#include <fmt/format.h>

#include <output/colours.h>
#include <platform/platform.h>

namespace Tool {
namespace {

// The parameter of "select graphic rendition": green, red, yellow.
int CodeOf(Colour colour) {
  switch (colour) {
    case Colour::kGood:
      return 32;
    case Colour::kBad:
      return 31;
    case Colour::kChanged:
      return 33;
  }
  return 0;
}

}  // namespace

ColoursC ColoursC::OfStandardOutput() {
  const char* const refusal = std::getenv("NO_COLOR");
  ColoursC colours;
  colours.isOn_ = (refusal == nullptr || *refusal == '\0') && ShowsColours(StandardStream::kOutput);
  return colours;
}

std::string ColoursC::Paint(Colour colour, std::string_view text) const {
  return isOn_ ? fmt::format("\x1b[{}m{}\x1b[0m", CodeOf(colour), text) : std::string(text);
}

}  // namespace Tool
