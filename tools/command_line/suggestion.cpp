#include <algorithm>
#include <cstddef>
#include <numeric>

#include <command_line/suggestion.h>

namespace Tool {

std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t k = 0; k < b.size(); ++k) {
      const std::size_t replaced = diagonal + (a[i] == b[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({replaced, row[k] + 1, diagonal + 1});
    }
  }
  return row.back();
}

std::string Nearest(std::string_view word, const std::vector<std::string>& names) {
  const bool isLetter = word.size() == 2 && word[0] == '-' && word[1] != '-';
  const std::string begin = std::string(isLetter ? 1U : 0U, '-').append(word);
  std::vector<std::string> found;
  for (const std::string& name : names) {
    if (name.starts_with(begin)) found.push_back(name);
  }
  if (found.size() == 1) return found.front();
  if (isLetter) return {};

  constexpr std::size_t kMost = 2;
  const std::size_t dashes = std::min(word.find_first_not_of('-'), word.size());
  std::size_t least = std::min(kMost, (word.size() - dashes) / 2) + 1;
  found.clear();
  for (const std::string& name : names) {
    const std::size_t distance = EditDistance(word, name);
    if (distance > least) continue;
    if (distance < least) found.clear();
    least = distance;
    found.push_back(name);
  }
  const bool isNear = least <= std::min(kMost, (word.size() - dashes) / 2);
  return isNear && found.size() == 1 ? found.front() : std::string();
}

}  // namespace Tool
