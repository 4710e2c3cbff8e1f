#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_SUGGESTION_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_SUGGESTION_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// How many characters must be replaced, left out or inserted to make `b` of `a` (Levenshtein).
std::size_t EditDistance(std::string_view a, std::string_view b);

/// The one of `names` that a mistyped word probably means: the only one that begins with the word,
/// for "-v" the only long option that begins with that letter, or the only nearest one, with at
/// most two wrong, missing or additional characters, fewer than half of the word. Empty if none is.
std::string Nearest(std::string_view word, const std::vector<std::string>& names);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_SUGGESTION_H_
