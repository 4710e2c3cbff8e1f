#include <algorithm>
#include <cstdio>
#include <span>

#include <command_line/message.h>
#include <command_line/text.h>

namespace Tool {

// One system call for both lines, so that those of programs that run at the same time do not
// mix.
void Tell(std::string_view message, std::string_view hint) noexcept {
  constexpr std::string_view kBefore = "surveydata: ";
  constexpr std::size_t kMostOfHint = 512;
  char text[kLongestMessage];
  const std::span<char> all(text);
  std::size_t size = kBefore.size();
  std::copy(kBefore.begin(), kBefore.end(), text);
  size += ToVisible(message, all.subspan(size, all.size() - size - kMostOfHint - 2));
  text[size++] = '\n';
  if (!hint.empty()) {
    size += ToVisible(hint, all.subspan(size, kMostOfHint));
    text[size++] = '\n';
  }
  std::fwrite(text, 1, size, stderr);
}

}  // namespace Tool
