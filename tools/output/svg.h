#ifndef SURVEYDATA_TOOLS_OUTPUT_SVG_H_
#define SURVEYDATA_TOOLS_OUTPUT_SVG_H_

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Tool {

/// A position on the page, in pixels, y downwards.
struct SvgPoint {
  double x;
  double y;
};

/// How a line is drawn.
struct SvgStroke {
  std::string_view colour = "#222222";
  double width = 1.0;
  std::string_view dashes = {};  ///< As in `stroke-dasharray`; empty for a solid line.
};

/// How a text is set.
struct SvgFont {
  double size = 13.0;
  std::string_view anchor = "start";  ///< Or "middle", "end".
  bool isBold = false;
  double turned = 0.0;  ///< Degrees, clockwise.
  std::string_view colour = "#222222";
};

/// Writes a picture element by element, on a white page. Coordinates have two decimals.
class SvgC {
 public:
  SvgC(double width, double height, std::string_view title);

  void Line(SvgPoint from, SvgPoint to, const SvgStroke& stroke);
  void Polyline(std::span<const SvgPoint> points, const SvgStroke& stroke);
  void Polygon(std::span<const SvgPoint> points, std::string_view fill, const SvgStroke& stroke);
  void Rectangle(SvgPoint corner, double width, double height, std::string_view fill);
  void Rectangle(SvgPoint corner, double width, double height, const SvgStroke& stroke);
  /// The title is shown when the pointer is over the dot.
  void Dot(SvgPoint centre, double radius, std::string_view fill, std::string_view title = {});
  /// Draws a path; `data` is its attribute `d`.
  void Path(std::string_view data, const SvgStroke& stroke);
  void Circle(SvgPoint centre, double radius, const SvgStroke& stroke);
  void Text(SvgPoint at, std::string_view text, const SvgFont& font = {});

  /// Clips everything drawn until `EndClip` to the rectangle. Clips do not nest.
  void BeginClip(SvgPoint corner, double width, double height);
  void EndClip();

  /// The size of the document so far, in bytes.
  std::size_t GetSize() const { return document_.size(); }

  /// The whole document. Nothing can be drawn afterwards.
  std::string Finish() &&;

 private:
  void Points(std::span<const SvgPoint> points);

  std::string document_;
  int clips_ = 0;
};

/// `text` as XML character data: markup is escaped, and characters that XML does not allow, such as
/// control characters, become U+FFFD.
std::string EscapeXml(std::string_view text);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_SVG_H_
