#ifndef SURVEYDATA_TOOLS_OUTPUT_COLOURS_H_
#define SURVEYDATA_TOOLS_OUTPUT_COLOURS_H_

#include <string>
#include <string_view>

namespace Tool {

enum class Colour { kGood, kBad, kChanged };

/// The colours of text on standard output. They are off unless standard output is a terminal that
/// shows them: not with TERM=dumb, nor if the environment variable NO_COLOR has a value.
class ColoursC {
 public:
  /// Off.
  ColoursC() = default;
  static ColoursC OfStandardOutput();

  /// The text between escape sequences, or the text alone if colours are off.
  std::string Paint(Colour colour, std::string_view text) const;

 private:
  bool isOn_ = false;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_COLOURS_H_
