// Prints the manual page of the program, or its completion for a shell:
//   describe_commands man DATE | bash | zsh | fish

#include <cstdio>
#include <string>

#include <command_line/command.h>
#include <command_line/completion.h>
#include <command_line/man_page.h>
#include <commands.h>

int main(int argc, char** argv) {
  const Tool::Command top = Tool::MakeCommands();
  const std::string what = argc > 1 ? argv[1] : "";
  std::string text;
  if (what == "man" && argc == 3) {
    text = Tool::ManPage(top, argv[2], SURVEYDATA_VERSION);
  } else if (what == "bash" && argc == 2) {
    text = Tool::BashCompletion(top);
  } else if (what == "zsh" && argc == 2) {
    text = Tool::ZshCompletion(top);
  } else if (what == "fish" && argc == 2) {
    text = Tool::FishCompletion(top);
  } else {
    std::fputs("usage: describe_commands man DATE | bash | zsh | fish\n", stderr);
    return 2;
  }
  return std::fputs(text.c_str(), stdout) < 0 || std::fclose(stdout) != 0 ? 1 : 0;
}
