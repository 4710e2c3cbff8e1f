// Several files: their progress bar, as a terminal shows it, and how many are open at once.

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

// Three files of 4 MiB, with pipes between them that delay the program: the bar is shown after half
// a second. The pipes are opened when the program reads them.
TEST(RecordProgress, IsOneBarForAllFiles) {
  const TerminalC terminal;
  if (!terminal.IsThere()) GTEST_SKIP() << "no terminal available";
  constexpr std::size_t kSize = std::size_t{4} << 20;
  const TempFolderC folder;
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  Bytes bytes;
  while (bytes.size() < kSize) bytes.insert(bytes.end(), sample.begin(), sample.end());
  bytes.resize(kSize);
  for (const char* const name : {"a.rec", "b.rec", "c.rec"}) WriteBytes(folder / name, bytes);
  for (const char* const jobs : {"1", "2"}) {
    SCOPED_TRACE(jobs);
    const Outcome outcome = RunShell(
        "mkfifo one two;"
        "(exec 3>one; sleep 0.7; exec 3>&-; exec 3>two; sleep 0.4; exec 3>&-) &"
        "surveydata record check a.rec one b.rec two c.rec --jobs " +
            std::string(jobs) + " 2>" + terminal.Name() + "; rm one two",
        folder.Path().string());
    EXPECT_EQ(Lines(outcome.out).size(), 6U);
    const std::string shown = terminal.Read();
    const std::regex bar(R"(\r\[(#*) *\] +(\d+)%  (\d+) of (\d+) MiB)");
    std::size_t bars = 0;
    int last = 0;
    for (std::sregex_iterator it(shown.begin(), shown.end(), bar), end; it != end; ++it, ++bars) {
      EXPECT_EQ((*it)[4], "12");
      const int percent = std::stoi((*it)[2]);
      EXPECT_GE(percent, last) << shown;
      // All are rounded down.
      EXPECT_NEAR(static_cast<double>((*it)[1].length()), percent * 0.4, 1);
      EXPECT_NEAR(std::stoi((*it)[3]), percent * 0.12, 1);
      last = percent;
    }
    EXPECT_GE(bars, jobs == std::string("1") ? 2U : 1U) << shown;
    EXPECT_GE(last, 50) << shown;
    // Every bar begins at the start of the line, and at the end it is erased.
    EXPECT_EQ(static_cast<std::size_t>(std::count(shown.begin(), shown.end(), '[')), bars);
    EXPECT_TRUE(std::regex_search(shown, std::regex("MiB\\r +\\r$"))) << shown;
  }
}

// The bar is shown when the program has waited for the pipe for half a second.
TEST(RecordProgress, HasTheSizeOfTheComparedFiles) {
  const TerminalC terminal;
  if (!terminal.IsThere()) GTEST_SKIP() << "no terminal available";
  const TempFolderC folder;
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  Bytes bytes;
  while (bytes.size() < (std::size_t{5} << 20)) {
    bytes.insert(bytes.end(), sample.begin(), sample.end());
  }
  WriteBytes(folder / "a.rec", bytes);
  const Outcome outcome = RunShell(
      "mkfifo one; (exec 3>one; sleep 0.7; cat a.rec >&3) &"
      "surveydata record diff one a.rec --jobs 1 2>" +
          terminal.Name() + "; code=$?; rm one; exit $code",
      folder.Path().string());
  EXPECT_EQ(outcome.exitCode, 0);
  const std::string shown = terminal.Read();
  EXPECT_NE(shown.find(" of 5 MiB"), std::string::npos) << shown;
}

// A pipe holds up the output, and a thread reads all other files meanwhile.
TEST(RecordFiles, AreOpenOnlyWhileTheyAreRead) {
  constexpr int kFiles = 60;
  const TempFolderC folder;
  for (int i = 0; i < kFiles; ++i) {
    std::filesystem::copy_file(DataPath("valley_drive.rec"), folder / (std::to_string(i) + ".rec"));
  }
  const Outcome outcome = RunShell(
      "mkfifo pipe; (exec 3>pipe; sleep 0.5; exec 3>&-) &"
      "ulimit -n 16; surveydata record check pipe . --jobs 2 --json; rm pipe",
      folder.Path().string());
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(JsonLines(outcome.out).back()["files"], kFiles + 1);
  EXPECT_EQ(JsonLines(outcome.out).back()["unreadable"], 0);
}

}  // namespace
