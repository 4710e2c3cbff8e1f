#ifndef SURVEYDATA_TOOLS_OUTPUT_LABEL_PLACER_H_
#define SURVEYDATA_TOOLS_OUTPUT_LABEL_PLACER_H_

#include <string>
#include <string_view>
#include <vector>

#include <output/svg.h>

namespace Tool {

/// A rectangle of the page.
struct LabelBox {
  double left;
  double top;
  double right;
  double bottom;

  bool Overlaps(const LabelBox& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
};

/// The width of a text in pixels, at least as large as in the usual sans-serif fonts.
double TextWidth(std::string_view utf8, const SvgFont& font);

/// The box that a text takes; texts are upright or turned by a quarter.
LabelBox BoxOf(SvgPoint at, std::string_view utf8, const SvgFont& font);

/// The text, or as much of its beginning as fits into the width, with an ellipsis.
std::string FittedText(std::string_view utf8, double width, const SvgFont& font);

/// Writes texts into a picture so that none overlaps another one or leaves the page. Those that
/// come first are the more important ones.
class LabelPlacerC {
 public:
  LabelPlacerC(SvgC& svg, double width, double height) : svg_(svg), page_{0, 0, width, height} {}

  /// Whether the text is written: it is left out where there is no room.
  bool Place(SvgPoint at, std::string_view utf8, const SvgFont& font = {});
  /// Keeps texts away from something else.
  void Reserve(const LabelBox& box) { taken_.push_back(box); }

 private:
  SvgC& svg_;
  LabelBox page_;
  std::vector<LabelBox> taken_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_LABEL_PLACER_H_
