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

/// An upper bound of the width of a text in pixels, for the usual sans-serif fonts.
double TextWidth(std::string_view utf8, const SvgFont& font);

/// The box that a text takes; texts are upright or turned by a quarter.
LabelBox BoxOf(SvgPoint at, std::string_view utf8, const SvgFont& font);

/// The text, or, if it is too wide, as much of its beginning as fits, with an ellipsis.
std::string FittedText(std::string_view utf8, double width, const SvgFont& font);

/// Writes texts into a picture so that none overlaps another one or leaves the page. Place the more
/// important texts first.
class LabelPlacerC {
 public:
  LabelPlacerC(SvgC& svg, double width, double height) : svg_(svg), page_{0, 0, width, height} {}

  /// Returns whether the text is written: it is left out if there is no room.
  bool Place(SvgPoint at, std::string_view utf8, const SvgFont& font = {});
  /// Keeps texts out of a box.
  void Reserve(const LabelBox& box) { taken_.push_back(box); }

 private:
  SvgC& svg_;
  LabelBox page_;
  std::vector<LabelBox> taken_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_LABEL_PLACER_H_
