// What `record set` keeps, and withstands, on POSIX systems.

#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <output/replace_file.h>
#include <platform/file_error.h>

#include "tests/tools/program.h"
#include "tests/tools/record/record_set_fixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(RecordSet, FollowsASymbolicLink) {
  const TempFolderC other;
  const std::string link = other / "link.rec";
  fs::create_symlink(file_, link);
  const Outcome outcome = RunProgram({"record", "set", link, "--offset", "960", "--number", "77"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 77, .height = {}}));
  EXPECT_EQ(other.Names(), std::vector<std::string>{"link.rec"});
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
}

TEST_F(RecordSet, KeepsThePermissions) {
  for (const auto mode : {0640, 0604, 0777}) {
    fs::permissions(file_, static_cast<fs::perms>(mode));
    EXPECT_EQ(Set({"--number", std::to_string(mode)}).exitCode, 0);
    EXPECT_EQ(static_cast<int>(fs::status(file_).permissions()), mode);
  }
}

TEST_F(RecordSet, WorksOnLongPaths) {
  fs::path folder = folder_.Path();
  for (int i = 0; i < 3; ++i) folder /= std::string(100, 'd');
  fs::create_directories(folder);
  const fs::path file = folder / "file.rec";
  fs::copy(file_, file);
  EXPECT_EQ(
      RunProgram({"record", "set", file.string(), "--offset", "960", "--number", "77"}).exitCode,
      0);
  EXPECT_TRUE(ReadBytes(file.string()) == Expected({.name = {}, .number = 77, .height = {}}));
}

// Elsewhere the system itself sees to it that a command line is text.
TEST_F(RecordSet, RefusesNamesThatAreNotUtf8) {
  for (const char* const name : {"a\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xFF"}) {
    const Outcome outcome = Set({"--name", name});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("is not UTF-8"), std::string::npos) << outcome.err;
  }
  ExpectUntouched();
}

TEST_F(RecordSet, WorksOnNamesAsLongAsTheyCanBe) {
  const std::string file = folder_ / std::string(255, 'n');
  fs::copy(file_, file);
  EXPECT_EQ(RunProgram({"record", "set", file, "--offset", "960", "--number", "77"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file) == Expected({.name = {}, .number = 77, .height = {}}));
}

TEST_F(RecordSet, RefusesAFileThatAnotherProgramHasLocked) {
  const int holder = open(file_.c_str(), O_RDONLY);
  ASSERT_EQ(flock(holder, LOCK_EX), 0);
  const Outcome outcome = Set({"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("locked"), std::string::npos) << outcome.err;
  EXPECT_EQ(Set({"--number", "5", "--dry-run"}).exitCode, 0);  // which writes nothing
  close(holder);
  ExpectUntouched();
}

TEST_F(RecordSet, RefusesAFileThatChangesMeanwhile) {
  const Bytes before(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Bytes after = before;
  Change{.name = {}, .number = 77, .height = {}}.Apply(after.data(), kFrameSize);
  const struct {
    const char* what;
    std::function<void()> change;
  } cases[] = {
      {"nothing", [] {}},
      {"appended to", [&] { Replace(before_ + Bytes{0}); }},
      {"another file of the same name",
       [&] {
         fs::copy(file_, folder_ / "new");
         fs::rename(folder_ / "new", file_);
       }},
      {"another byte, same size",
       [&] {
         Bytes bytes = before_;
         bytes[0] ^= 1;
         Replace(bytes);
         fs::last_write_time(file_, fs::file_time_type::clock::now() + std::chrono::hours(1));
       }},
      {"a byte of the frame, and the time set back",
       [&] {
         const auto time = fs::last_write_time(file_);
         Bytes bytes = before_;
         bytes[kFrame + 20] ^= 1;
         Replace(bytes);
         fs::last_write_time(file_, time);
       }},
  };
  const Bytes sample = before_;
  for (const auto& [what, change] : cases) {
    SCOPED_TRACE(what);
    Replace(sample);
    Tool::FileReplacementC replacement(file_);
    change();
    if (std::string(what) == "nothing") {
      replacement.Replace(kFrame, before, after);
      EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 77, .height = {}}));
      continue;
    }
    EXPECT_THROW(replacement.Replace(kFrame, before, after), Tool::FileErrorC);
    ExpectUntouched();
  }
}

TEST_F(RecordSet, LeavesNoCopyBehindWhenASignalComes) {
  const Bytes before(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, signal);
    ASSERT_EQ(sigprocmask(SIG_BLOCK, &one, nullptr), 0);
    const auto inherited = std::signal(signal, SIG_DFL);  // it may be ignored, as under nohup
    std::raise(signal);
    EXPECT_THROW(Tool::FileReplacementC(file_).Replace(kFrame, before, before), Tool::FileErrorC);
    int received = 0;
    EXPECT_EQ(sigwait(&one, &received), 0);  // still there for who waits for it
    EXPECT_EQ(received, signal);
    ExpectUntouched();

    // One that is ignored stops nothing.
    std::signal(signal, SIG_IGN);
    std::raise(signal);
    EXPECT_NO_THROW(Tool::FileReplacementC(file_).Replace(kFrame, before, before));
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
    std::signal(signal, inherited);
    ExpectUntouched();
  }
}

TEST_F(RecordSet, LeavesTheFileAsItWasWhenTheDiskTakesNoMore) {
  const Outcome outcome =
      Set({"--number", "5"}, {.shell = "trap '' XFSZ; ulimit -f 16;"});  // 8 KiB or 16 KiB
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("sample.rec is as it was"), std::string::npos) << outcome.err;
  ExpectUntouched();
}

// Root may write everywhere, so another user tries.
TEST_F(RecordSet, LeavesTheFileAsItWasWhereItMayNotBeWritten) {
  if (geteuid() == 0 && std::system("command -v setpriv >/dev/null") != 0) {
    GTEST_SKIP() << "root, and no setpriv";
  }
  const TempFolderC bin;
  RunOptions run;
  if (geteuid() == 0) {
    fs::copy(ProgramPath(), bin / "surveydata");
    fs::permissions(bin.Path(), fs::perms{0755});
    run.program = "setpriv";
  }
  const auto setAsOther = [&] {
    std::vector<std::string> arguments = {"record", "set",      file_, "--offset",
                                          "960",    "--number", "5"};
    if (geteuid() == 0) {
      arguments.insert(arguments.begin(),
                       {"--reuid=65534", "--regid=65534", "--clear-groups", bin / "surveydata"});
    }
    return RunProgram(arguments, run);
  };
  const struct {
    const char* what;
    unsigned folder;
    unsigned file;
  } cases[] = {{"folder", 0555, 0666}, {"file", 0777, 0444}};
  for (const auto& [what, folder, file] : cases) {
    SCOPED_TRACE(what);
    fs::permissions(folder_.Path(), fs::perms{folder});
    fs::permissions(file_, fs::perms{file});
    const Outcome outcome = setAsOther();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("sample.rec is as it was"), std::string::npos) << outcome.err;
    ExpectUntouched();
  }
  fs::permissions(folder_.Path(), fs::perms{0777});
  fs::permissions(file_, fs::perms{0666});
  if (geteuid() == 0) {
    // Who may write, but not give the copy the file's group, would change who can read it.
    const Outcome outcome = setAsOther();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("the group of"), std::string::npos) << outcome.err;
    ExpectUntouched();
    ASSERT_EQ(chown(file_.c_str(), 0, 65534), 0);
  }
  // With all of them, it works: the refusals above are about the permissions.
  EXPECT_EQ(setAsOther().exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 5, .height = {}}));
}

}  // namespace
