#include "svg.h"

#include <iterator>
#include <utility>

#include <fmt/format.h>

namespace Tool {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// The bytes of the UTF-8 sequence at the front, 0 when there is none.
std::size_t SequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80                    ? 1
                             : 0xC2 <= lead && lead <= 0xDF ? 2
                             : 0xE0 <= lead && lead <= 0xEF ? 3
                             : 0xF0 <= lead && lead <= 0xF4 ? 4
                                                            : 0;
  if (length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0;
  }
  if (length < 3) return length;
  // Overlong forms, surrogates, and what lies behind the last character.
  const auto second = static_cast<unsigned char>(text[1]);
  const bool isCharacter = !(lead == 0xE0 && second < 0xA0) && !(lead == 0xED && second >= 0xA0) &&
                           !(lead == 0xF0 && second < 0x90) && !(lead == 0xF4 && second >= 0x90);
  return isCharacter ? length : 0;
}

std::string Attributes(const SvgStroke& stroke) {
  std::string text = fmt::format("stroke=\"{}\" stroke-width=\"{}\"", stroke.colour, stroke.width);
  if (!stroke.dashes.empty()) text += fmt::format(" stroke-dasharray=\"{}\"", stroke.dashes);
  return text;
}

}  // namespace

std::string EscapeXml(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    const std::string_view c = text.substr(0, length);
    const bool isControl = length == 1 && (static_cast<unsigned char>(c[0]) < 0x20 || c[0] == 0x7F);
    if (length == 0 || isControl) {
      out += kReplacement;
    } else if (c == "&") {
      out += "&amp;";
    } else if (c == "<") {
      out += "&lt;";
    } else if (c == ">") {
      out += "&gt;";
    } else if (c == "\"") {
      out += "&quot;";
    } else {
      out += c;
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

SvgC::SvgC(double width, double height, std::string_view title)
    : document_(fmt::format(
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
          "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
          "viewBox=\"0 0 {0} {1}\" font-family=\"Helvetica, Arial, 'Liberation Sans', 'DejaVu "
          "Sans', sans-serif\" stroke-linejoin=\"round\" stroke-linecap=\"butt\">\n"
          "<title>{2}</title>\n"
          "<rect width=\"{0}\" height=\"{1}\" fill=\"#ffffff\"/>\n",
          width, height, EscapeXml(title))) {}

void SvgC::Line(SvgPoint from, SvgPoint to, const SvgStroke& stroke) {
  fmt::format_to(std::back_inserter(document_),
                 "<line x1=\"{:.2f}\" y1=\"{:.2f}\" x2=\"{:.2f}\" y2=\"{:.2f}\" {}/>\n", from.x,
                 from.y, to.x, to.y, Attributes(stroke));
}

void SvgC::Points(std::span<const SvgPoint> points) {
  for (const SvgPoint& point : points) {
    fmt::format_to(std::back_inserter(document_), "{:.2f},{:.2f} ", point.x, point.y);
  }
  if (!points.empty()) document_.pop_back();
}

void SvgC::Polyline(std::span<const SvgPoint> points, const SvgStroke& stroke) {
  document_ += "<polyline points=\"";
  Points(points);
  document_ += fmt::format("\" fill=\"none\" {}/>\n", Attributes(stroke));
}

void SvgC::Polygon(std::span<const SvgPoint> points, std::string_view fill,
                   const SvgStroke& stroke) {
  document_ += "<polygon points=\"";
  Points(points);
  document_ += fmt::format("\" fill=\"{}\" {}/>\n", fill, Attributes(stroke));
}

void SvgC::Rectangle(SvgPoint corner, double width, double height, std::string_view fill) {
  fmt::format_to(std::back_inserter(document_),
                 "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" "
                 "fill=\"{}\"/>\n",
                 corner.x, corner.y, width, height, fill);
}

void SvgC::Rectangle(SvgPoint corner, double width, double height, const SvgStroke& stroke) {
  fmt::format_to(std::back_inserter(document_),
                 "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" "
                 "fill=\"none\" {}/>\n",
                 corner.x, corner.y, width, height, Attributes(stroke));
}

void SvgC::Dot(SvgPoint centre, double radius, std::string_view fill) {
  fmt::format_to(std::back_inserter(document_),
                 "<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{}\" fill=\"{}\"/>\n", centre.x, centre.y,
                 radius, fill);
}

void SvgC::Circle(SvgPoint centre, double radius, const SvgStroke& stroke) {
  fmt::format_to(std::back_inserter(document_),
                 "<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{:.2f}\" fill=\"none\" {}/>\n", centre.x,
                 centre.y, radius, Attributes(stroke));
}

void SvgC::BeginClip(SvgPoint corner, double width, double height) {
  ++clips_;
  fmt::format_to(std::back_inserter(document_),
                 "<clipPath id=\"clip{0}\"><rect x=\"{1:.2f}\" y=\"{2:.2f}\" width=\"{3:.2f}\" "
                 "height=\"{4:.2f}\"/></clipPath>\n<g clip-path=\"url(#clip{0})\">\n",
                 clips_, corner.x, corner.y, width, height);
}

void SvgC::EndClip() { document_ += "</g>\n"; }

void SvgC::Text(SvgPoint at, std::string_view text, const SvgFont& font) {
  std::string turned;
  if (font.turned != 0) {
    turned = fmt::format(" transform=\"rotate({} {:.2f} {:.2f})\"", font.turned, at.x, at.y);
  }
  fmt::format_to(std::back_inserter(document_),
                 "<text x=\"{:.2f}\" y=\"{:.2f}\" font-size=\"{}\" text-anchor=\"{}\" "
                 "fill=\"{}\"{}{}>{}</text>\n",
                 at.x, at.y, font.size, font.anchor, font.colour,
                 font.isBold ? " font-weight=\"bold\"" : "", turned, EscapeXml(text));
}

std::string SvgC::Finish() && {
  document_ += "</svg>\n";
  return std::move(document_);
}

}  // namespace Tool
