#include <utility>

#include <fmt/format.h>

#include <command_line/text.h>
#include <output/svg.h>
#include <platform/format.h>

namespace Tool {
namespace {

std::string Attributes(const SvgStroke& stroke) {
  std::string text = fmt::format("stroke=\"{}\" stroke-width=\"{}\"", stroke.colour, stroke.width);
  if (!stroke.dashes.empty()) text += fmt::format(" stroke-dasharray=\"{}\"", stroke.dashes);
  return text;
}

}  // namespace

std::string EscapeXml(std::string_view text) {
  std::string out;
  std::string printable = ToPrintable(text);
  // Of the remaining characters, XML allows all but two.
  for (const char* const none : {"\uFFFE", "\uFFFF"}) {
    for (std::size_t at = 0; (at = printable.find(none, at)) != std::string::npos;) {
      printable.replace(at, 3, "\uFFFD");
    }
  }
  for (const char c : printable) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"') {
      out += "&quot;";
    } else {
      out += c;
    }
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
  Append(document_, "<line x1=\"{:.2f}\" y1=\"{:.2f}\" x2=\"{:.2f}\" y2=\"{:.2f}\" {}/>\n", from.x,
         from.y, to.x, to.y, Attributes(stroke));
}

void SvgC::Points(std::span<const SvgPoint> points) {
  for (const SvgPoint& point : points) {
    Append(document_, "{:.2f},{:.2f} ", point.x, point.y);
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
  Append(document_,
         "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" "
         "fill=\"{}\"/>\n",
         corner.x, corner.y, width, height, fill);
}

void SvgC::Rectangle(SvgPoint corner, double width, double height, const SvgStroke& stroke) {
  Append(document_,
         "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" "
         "fill=\"none\" {}/>\n",
         corner.x, corner.y, width, height, Attributes(stroke));
}

void SvgC::Dot(SvgPoint centre, double radius, std::string_view fill, std::string_view title) {
  Append(document_, "<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{}\" fill=\"{}\"", centre.x, centre.y,
         radius, fill);
  if (title.empty()) {
    document_ += "/>\n";
  } else {
    Append(document_, "><title>{}</title></circle>\n", EscapeXml(title));
  }
}

void SvgC::Path(std::string_view data, const SvgStroke& stroke) {
  Append(document_, "<path d=\"{}\" fill=\"none\" {}/>\n", data, Attributes(stroke));
}

void SvgC::Circle(SvgPoint centre, double radius, const SvgStroke& stroke) {
  Append(document_, "<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{:.2f}\" fill=\"none\" {}/>\n",
         centre.x, centre.y, radius, Attributes(stroke));
}

void SvgC::BeginClip(SvgPoint corner, double width, double height) {
  ++clips_;
  Append(document_,
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
  Append(document_,
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
