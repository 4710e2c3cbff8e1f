// The memory that record diff takes, and files that cannot be read.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/sanitizer.h"
#include "tests/tools/program.h"

namespace {

namespace fs = std::filesystem;

// The largest memory of a comparison in KiB; its output goes to `out`.
long MemoryOfDiff(const std::string& a, const std::string& b, const std::string& out) {
  const std::string program = ProgramPath();
  const pid_t child = fork();
  if (child == 0) {
    dup2(open(out.c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    execl(program.c_str(), program.c_str(), "record", "diff", a.c_str(), b.c_str(), nullptr);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  EXPECT_EQ(wait4(child, &status, 0, &usage), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
  return usage.ru_maxrss;
}

// Files of 48 MB with few differences.
TEST(RecordDiffMemory, DoesNotDependOnTheSizeOfTheFiles) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer itself uses memory";
  constexpr int kCopies = 500;
  const TempFolderC folder;
  const std::string sample = ReadText(DataPath("valley_drive.rec"));
  const std::string other = ReadText(DataPath("desert_highway.rec"));
  std::ofstream a(folder / "a.rec", std::ios::binary);
  std::ofstream b(folder / "b.rec", std::ios::binary);
  for (int i = 0; i < kCopies; ++i) {
    a << sample;
    if (i == kCopies / 3) continue;  // removed
    b << sample;
    if (i == kCopies / 2) b << other;  // added
  }
  a.close();
  b.close();
  EXPECT_LT(MemoryOfDiff(folder / "a.rec", folder / "b.rec", folder / "out"), 32L << 10);
  const auto records = [](const char* name) {
    const nlohmann::json index = SampleIndex(name);
    return index["frames"].size() + index["others"].size();
  };
  EXPECT_EQ(Lines(ReadText(folder / "out")).back(),
            std::to_string((kCopies - 1) * records("valley_drive")) + " the same, 0 changed, " +
                std::to_string(records("valley_drive")) + " removed, " +
                std::to_string(records("desert_highway")) + " added");
}

// Nothing is the same, and the records are as long as records can be.
TEST(RecordDiffMemory, IsLimitedWhereEverythingDiffers) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer itself uses memory";
  const TempFolderC folder;
  for (const std::uint8_t value : {std::uint8_t{1}, std::uint8_t{2}}) {
    std::ofstream out(folder / (value == 1 ? "a.rec" : "b.rec"), std::ios::binary);
    const Bytes record = MakeFrame(17, Bytes(65'000, value));
    const std::string text(record.begin(), record.end());
    for (int i = 0; i < 1000; ++i) out << text;
  }
  EXPECT_LT(MemoryOfDiff(folder / "a.rec", folder / "b.rec", folder / "out"), 64L << 10);
  EXPECT_EQ(Lines(ReadText(folder / "out")).back(),
            "0 the same, 0 changed, 1000 removed, 1000 added");
}

// Root may read everything, so another user tries.
TEST(FolderDiff, GoesOnAfterAFileThatCannotBeRead) {
  if (geteuid() == 0 && std::system("command -v setpriv >/dev/null") != 0) {
    GTEST_SKIP() << "root, and no setpriv";
  }
  const TempFolderC folder;
  fs::permissions(folder.Path(), fs::perms{0755});
  const Bytes record = MakeFrame(113, MakeBody(0, {}));
  for (const char* const side : {"a", "b"}) {
    fs::create_directory(folder.Path() / side);
    for (const char* const file : {"1.rec", "2.rec"}) {
      WriteBytes(folder / (std::string(side) + "/" + file), record);
    }
  }
  fs::permissions(folder / "b/1.rec", fs::perms{0});
  fs::copy(ProgramPath(), folder / "surveydata");
  std::vector<std::string> arguments = {"record", "diff", "a", "b", "--jobs", "2"};
  RunOptions run{.folder = folder.Path().string(), .program = folder / "surveydata"};
  if (geteuid() == 0) {
    arguments.insert(arguments.begin(),
                     {"--reuid=65534", "--regid=65534", "--clear-groups", run.program});
    run.program = "setpriv";
  }
  const Outcome outcome = RunProgram(arguments, run);
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_EQ(outcome.err, "surveydata: cannot read b/1.rec: Permission denied\n");
  EXPECT_EQ(outcome.out,
            "1.rec\n"
            "\n2.rec\n1 the same, 0 changed, 0 removed, 0 added\n"
            "\n2 files: 1 the same, 0 different, 0 removed, 0 added, 1 unreadable; "
            "records: 1 the same, 0 changed, 0 removed, 0 added\n");
}

}  // namespace
