#include <algorithm>
#include <cstddef>

#include <command_line/text.h>
#include <output/label_placer.h>

namespace Tool {
namespace {

// Widths in units of the font size, of the widest of Helvetica, Arial, Liberation Sans and DejaVu
// Sans, rounded up.
double CharacterWidth(unsigned char c) {
  constexpr std::string_view kNarrow = "ijl.,:;'|!()[] -/\\It";
  constexpr std::string_view kWide = "mwMW@%";
  constexpr double kOther = 1.1;  // beyond ASCII
  if (c >= 0x80) return kOther;
  if (kNarrow.find(static_cast<char>(c)) != std::string_view::npos) return 0.42;
  if (kWide.find(static_cast<char>(c)) != std::string_view::npos) return 1.02;
  return 'A' <= c && c <= 'Z' ? 0.80 : 0.66;
}

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

constexpr double kBold = 1.15;
// In units of the font size, above and below the base line.
struct Heights {
  double ascent = 0.95;
  double descent = 0.25;
};

Heights HeightsOf(std::string_view utf8) {
  const bool areDigits = utf8.find_first_not_of("0123456789.-") == std::string_view::npos;
  return areDigits ? Heights{0.76, 0.03} : Heights{};
}

}  // namespace

double TextWidth(std::string_view utf8, const SvgFont& font) {
  double width = 0;
  for (const char c : utf8) {
    if (!IsContinuation(c)) width += CharacterWidth(static_cast<unsigned char>(c));
  }
  return width * font.size * (font.isBold ? kBold : 1.0);
}

LabelBox BoxOf(SvgPoint at, std::string_view utf8, const SvgFont& font) {
  const double width = TextWidth(utf8, font);
  const auto [ascent, descent] = HeightsOf(utf8);
  const double before = font.anchor == "middle" ? width / 2 : font.anchor == "end" ? width : 0;
  if (font.turned != 0) {  // by -90 degrees: the text runs upwards
    return {at.x - ascent * font.size, at.y - width + before, at.x + descent * font.size,
            at.y + before};
  }
  return {at.x - before, at.y - ascent * font.size, at.x - before + width,
          at.y + descent * font.size};
}

std::string FittedText(std::string_view utf8, double width, const SvgFont& font) {
  constexpr std::string_view kEllipsis = "\u2026";
  if (TextWidth(utf8, font) <= width) return std::string(utf8);
  const double room = width - TextWidth(kEllipsis, font);
  double used = 0;
  std::size_t end = 0;
  for (std::size_t at = 0; at < utf8.size(); at = end) {
    end = at + 1;
    while (end < utf8.size() && IsContinuation(utf8[end])) ++end;
    used += TextWidth(utf8.substr(at, end - at), font);
    if (used > room) return std::string(utf8.substr(0, at)).append(kEllipsis);
  }
  return std::string(utf8);
}

bool LabelPlacerC::Place(SvgPoint at, std::string_view utf8, const SvgFont& font) {
  const LabelBox box = BoxOf(at, utf8, font);
  const bool isOnPage = page_.left <= box.left && page_.top <= box.top &&
                        box.right <= page_.right && box.bottom <= page_.bottom;
  if (!isOnPage || std::any_of(taken_.begin(), taken_.end(),
                               [&](const LabelBox& other) { return box.Overlaps(other); })) {
    return false;
  }
  taken_.push_back(box);
  svg_.Text(at, utf8, font);
  return true;
}

}  // namespace Tool
