#include <cstdio>

#include <command_line/message.h>
#include <command_line/text.h>

namespace Tool {
namespace {

void WriteLine(std::string_view text) {
  WriteVisible(text,
               [](std::string_view part) { std::fwrite(part.data(), 1, part.size(), stderr); });
  std::fputc('\n', stderr);
}

}  // namespace

void Tell(std::string_view message, std::string_view hint) noexcept {
  std::fputs("surveydata: ", stderr);
  WriteLine(message);
  if (!hint.empty()) WriteLine(hint);
}

}  // namespace Tool
