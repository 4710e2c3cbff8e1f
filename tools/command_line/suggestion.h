#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_SUGGESTION_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_SUGGESTION_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// The number of characters to replace, delete or insert to turn `a` into `b` (Levenshtein
/// distance).
std::size_t EditDistance(std::string_view a, std::string_view b);

/// The name among `names` that a mistyped word probably means: the only one that begins with the
/// word, for "-v" the only long option that begins with that letter, or the only closest one, with
/// at most two wrong, missing or additional characters, fewer than half of the word. Empty if there
/// is none.
std::string Nearest(std::string_view word, const std::vector<std::string>& names);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_SUGGESTION_H_
