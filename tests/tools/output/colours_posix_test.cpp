// Which output of the program is coloured, on a pseudo terminal.

#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

std::string WithoutColours(const std::string& text) {
  return std::regex_replace(text, std::regex("\x1b\\[[0-9]*m"), "");
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class Colours : public testing::Test {
 protected:
  Colours() {
    const Bytes frame = MakeFrame(113, MakeBody(0, {}));
    const Bytes changed = MakeFrame(113, MakeBody(0, {1}));
    WriteBytes(folder_ / "a.rec", frame + Bytes(5, 1) + MakeFrame(113, MakeBody(0x0008, {2})));
    WriteBytes(folder_ / "b.rec", MakeFrame(17, {1}) + changed);
    WriteBytes(folder_ / "ok.rec", frame);
  }
  void SetUp() override {
    if (!terminal_.IsThere()) GTEST_SKIP() << "no pseudo terminal available";
  }

  Outcome Run(const std::string& command) const {
    return RunShell(command, folder_.Path().string());
  }
  // What the command writes to the terminal.
  std::string Shown(const std::string& environment, const std::string& command) const {
    Run("env " + environment + " surveydata " + command + " >" + terminal_.Name());
    return terminal_.Read();
  }

  TerminalC terminal_;
  TempFolderC folder_;
};

TEST_F(Colours, ShowFaultsAndDifferencesOnATerminal) {
  const std::string terminal = "-u NO_COLOR TERM=xterm";
  const std::string red = "\x1b[31m";
  const std::string green = "\x1b[32m";
  const std::string yellow = "\x1b[33m";
  const struct {
    std::string command;
    std::vector<std::string> parts;
  } cases[] = {
      {"record list a.rec", {red + "GAP        \x1b[0m", red + "BAD FRAME  \x1b[0m"}},
      {"record check a.rec ok.rec none.rec 2>/dev/null",
       {red + "FAULTY     \x1b[0m", green + "ok         \x1b[0m", red + "UNREADABLE \x1b[0m"}},
      {"record diff a.rec b.rec",
       {red + "removed\x1b[0m", green + "added  \x1b[0m", yellow + "changed\x1b[0m"}}};
  for (const auto& [command, parts] : cases) {
    SCOPED_TRACE(command);
    const std::string shown = Shown(terminal, command);
    for (const std::string& part : parts) EXPECT_TRUE(Contains(shown, part)) << shown;
    // A file and a pipe get the same text without them.
    const std::string plain = Run("env " + terminal + " surveydata " + command).out;
    EXPECT_FALSE(Contains(plain, "\x1b"));
    EXPECT_EQ(Run("env " + terminal + " surveydata " + command + " | cat").out, plain);
    EXPECT_EQ(WithoutColours(shown), plain);
  }
}

TEST_F(Colours, AreOffWhereTheyAreNotWanted) {
  const std::string command = "record list a.rec";
  const std::string plain = Run("surveydata " + command).out;
  ASSERT_FALSE(plain.empty());
  for (const char* const environment :
       {"TERM=xterm NO_COLOR=1", "TERM=xterm NO_COLOR=0", "-u NO_COLOR TERM=dumb",
        "-u NO_COLOR TERM=", "-u NO_COLOR -u TERM"}) {
    SCOPED_TRACE(environment);
    EXPECT_EQ(Shown(environment, command), plain);
  }
  // NO_COLOR without a value does not turn them off.
  EXPECT_TRUE(Contains(Shown("NO_COLOR= TERM=xterm", command), "\x1b[31m"));
}

TEST_F(Colours, AreNotInJson) {
  for (const char* const command : {"record list a.rec --json", "record check a.rec --json",
                                    "record diff a.rec b.rec --json"}) {
    SCOPED_TRACE(command);
    const std::string shown = Shown("-u NO_COLOR TERM=xterm", command);
    EXPECT_FALSE(shown.empty());
    EXPECT_FALSE(Contains(shown, "\x1b"));
  }
}

}  // namespace
