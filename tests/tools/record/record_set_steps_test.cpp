#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "tests/support/sanitizer.h"
#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

// `record set` is killed, stopped or fails at every single step: the old file or the new one is
// left. tests/support/step_shim.cpp describes how this is done.

namespace {

namespace fs = std::filesystem;

// The program's environment with the shim, as the shell takes it. The sanitizer need not come
// first.
std::string WithShim(const std::string& order) {
  return "ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD='" SURVEYDATA_STEP_SHIM
         "' SURVEYDATA_SHIM='" +
         order + "'";
}

bool IsCopy(const std::string& name) { return name.starts_with(".surveydata."); }

// Whether the copy has a name from the start, as on a file system without unnamed files.
enum class CopyKind { kUnnamed, kNamed };

class RecordSetSteps : public testing::TestWithParam<CopyKind> {
 protected:
  void SetUp() override {
    if (IsNamed()) return;
    const int file = open(folder_.Path().c_str(), O_TMPFILE | O_RDWR, 0600);
    if (file < 0) GTEST_SKIP() << "no files without a name here";
    close(file);
  }

  RecordSetSteps() {
    WriteBytes(file_, before_);
    EXPECT_EQ(Set("log").exitCode, 0);
    after_ = ReadBytes(file_);
    EXPECT_EQ(after_.size(), before_.size());
    EXPECT_NE(after_, before_);
    WriteBytes(file_, before_);
  }

  static bool IsNamed() { return GetParam() == CopyKind::kNamed; }
  // The shim's orders for this kind of copy.
  static std::string Shim(const std::string& order) {
    return (IsNamed() ? "SURVEYDATA_SHIM_NAMED=1 " : "") + WithShim(order);
  }

  Outcome Set(const std::string& order) const {
    return RunProgram({"record", "set", file_, "--offset", "960", "--number", "4711"},
                      {.shell = Shim(order)});
  }

  // The names of the calls of an undisturbed run.
  std::vector<std::string> Calls() const {
    const TempFolderC folder;
    const std::string log = folder / "log";
    const Outcome outcome =
        RunProgram({"record", "set", file_, "--offset", "960", "--number", "4711"},
                   {.shell = "SURVEYDATA_SHIM_LOG='" + log + "' " + Shim("log")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    WriteBytes(file_, before_);
    return Lines(ReadText(log));
  }

  void ExpectNoCopyBehind() const {
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
  }

  // Runs again with the files that were left; a copy that was left is removed.
  void ExpectThatItWorksAgain() {
    WriteBytes(file_, before_);
    EXPECT_EQ(Set("log").exitCode, 0);
    EXPECT_EQ(ReadBytes(file_), after_);
    ExpectNoCopyBehind();
    WriteBytes(file_, before_);
  }

  TempFolderC folder_;
  std::string file_ = folder_ / "sample.rec";
  Bytes before_ = ReadBytes(DataPath("valley_drive.rec"));
  Bytes after_;
};

TEST_P(RecordSetSteps, ChangesFilesByTheseCallsInThisOrder) {
  std::vector<std::string> calls = Calls();
  EXPECT_GE(std::erase(calls, "pread"), 3U);
  // The calls that read the file's status depend on the C++ library and on the attributes.
  std::erase_if(calls, [](const std::string& call) {
    return call == "open" || call == "openat" || call == "stat" || call == "fstatat" ||
           call == "lseek" || call == "fgetxattr" || call == "flistxattr";
  });
  using Names = std::vector<std::string>;
  const Names middle = {"flock", "ftruncate", "pwrite", "pwrite", "fchown", "fchmod", "fsync"};
  Names expected = {"flock", IsNamed() ? "create" : "tmpfile"};
  expected.insert(expected.end(), middle.begin(), middle.end());
  if (!IsNamed()) expected.emplace_back("linkat");
  expected.insert(expected.end(), {"renameat", "fsync"});
  EXPECT_EQ(calls, expected);
}

TEST_P(RecordSetSteps, KilledAtAnyStepLeavesTheOldFileOrTheNewOne) {
  const std::vector<std::string> calls = Calls();
  const auto rename = std::find(calls.begin(), calls.end(), "renameat") - calls.begin();
  for (std::ptrdiff_t step = 0; step < std::ssize(calls); ++step) {
    for (const std::string what : {"kill", "tear"}) {
      const std::string& call = calls[static_cast<std::size_t>(step)];
      if (what == "tear" && call != "pwrite") continue;
      SCOPED_TRACE(what + " at step " + std::to_string(step) + ", " + call);
      EXPECT_EQ(Set(what + " " + std::to_string(step)).exitCode, 128 + SIGKILL);
      EXPECT_TRUE(ReadBytes(file_) == (step <= rename ? before_ : after_));
      // No process is left to remove a copy that has a name.
      const auto names = folder_.Names();
      EXPECT_LE(names.size(), IsNamed() || call == "renameat" ? 2U : 1U);
      EXPECT_EQ(names.back(), "sample.rec");
      EXPECT_TRUE(names.size() == 1 || IsCopy(names.front()));
      ExpectThatItWorksAgain();
    }
  }
}

TEST_P(RecordSetSteps, AnyCallThatFailsLeavesTheOldFileOrTheNewOneAndSaysSo) {
  const std::vector<std::string> calls = Calls();
  int failures = 0;
  for (std::size_t step = 0; step < calls.size(); ++step) {
    for (const int error : {EIO, ENOSPC}) {
      if (kIsSanitized && error == EIO) continue;  // only the text of the message differs
      SCOPED_TRACE("step " + std::to_string(step) + ", " + calls[step]);
      const Outcome outcome = Set("fail " + std::to_string(step) + " " + std::to_string(error));
      const Bytes bytes = ReadBytes(file_);
      ExpectNoCopyBehind();
      if (outcome.exitCode == 0) {
        // The program uses another call, or repeats this one.
        const std::set<std::string> passable = {"open",    "openat", "tmpfile", "stat",
                                                "fstatat", "flock",  "lseek"};
        EXPECT_TRUE(passable.contains(calls[step]));
        EXPECT_TRUE(bytes == after_);
      } else {
        ++failures;
        EXPECT_EQ(outcome.exitCode, 3);
        const bool isReplaced = outcome.err.find("sample.rec is replaced") != std::string::npos;
        EXPECT_TRUE(bytes == (isReplaced ? after_ : before_));
        EXPECT_NE(outcome.err.find(isReplaced ? "is replaced" : "sample.rec is unchanged"),
                  std::string::npos)
            << outcome.err;
      }
      ExpectThatItWorksAgain();
    }
  }
  EXPECT_GE(failures, kIsSanitized ? 10 : 20);
}

TEST_P(RecordSetSteps, ContinuesAfterAShortReadOrWrite) {
  const std::vector<std::string> calls = Calls();
  for (std::size_t step = 0; step < calls.size(); ++step) {
    if (calls[step] != "pread" && calls[step] != "pwrite") continue;
    SCOPED_TRACE("step " + std::to_string(step) + ", " + calls[step]);
    EXPECT_EQ(Set("short " + std::to_string(step)).exitCode, 0);
    EXPECT_TRUE(ReadBytes(file_) == after_);
    WriteBytes(file_, before_);
  }
}

TEST_P(RecordSetSteps, SucceedsWhereAFolderHasNothingToFlush) {
  for (const int error : {EINVAL, ENOTSUP}) {
    const Outcome outcome = Set("fail fsync 1 " + std::to_string(error));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(ReadBytes(file_) == after_);
    WriteBytes(file_, before_);
  }
  // The file itself must be flushed.
  EXPECT_EQ(Set("fail fsync 0 " + std::to_string(EINVAL)).exitCode, 3);
  EXPECT_TRUE(ReadBytes(file_) == before_);
}

TEST_P(RecordSetSteps, TakesAnotherNameIfOneIsTaken) {
  const std::string call = IsNamed() ? "create" : "linkat";
  const Outcome outcome = Set("fail " + call + " 0 " + std::to_string(EEXIST));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(ReadBytes(file_) == after_);
  ExpectNoCopyBehind();
}

TEST_P(RecordSetSteps, KeepsTheGroupOrRefuses) {
  // Only the owner cannot be kept.
  EXPECT_EQ(Set("fail fchown 0 " + std::to_string(EPERM)).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == after_);
  WriteBytes(file_, before_);
  // Nor the group.
  const Outcome outcome = Set("fail fchown -1 " + std::to_string(EPERM));
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("the group of"), std::string::npos) << outcome.err;
  EXPECT_TRUE(ReadBytes(file_) == before_);
  ExpectNoCopyBehind();
}

// The copy is read back: a changed bit is found anywhere in it.
TEST_P(RecordSetSteps, RefusesACopyThatDoesNotReadBack) {
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  Bytes large = before_;
  large.resize(2 * kBlock + 100, 0xA5);
  WriteBytes(file_, large);
  for (const char* const call : {"pwrite 0", "pwrite 1", "pwrite 2", "pwrite 3"}) {
    SCOPED_TRACE(call);
    const Outcome outcome = Set("flip " + std::string(call));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("does not read back as written"), std::string::npos) << outcome.err;
    EXPECT_TRUE(ReadBytes(file_) == large);
    ExpectNoCopyBehind();
  }
}

// A file with the same number on another device is another file.
TEST_P(RecordSetSteps, RefusesAFileThatIsNowOnAnotherDevice) {
  const std::vector<std::string> calls = Calls();
  for (const std::string call : {"stat", "fstatat"}) {
    SCOPED_TRACE(call);
    const auto count = std::count(calls.begin(), calls.end(), call);
    ASSERT_GE(count, 2);
    const Outcome outcome = Set("device " + call + " " + std::to_string(count - 1));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("the file has been changed by another program"), std::string::npos)
        << outcome.err;
    EXPECT_TRUE(ReadBytes(file_) == before_);
    ExpectNoCopyBehind();
  }
}

TEST_P(RecordSetSteps, KeepsEveryAttributeOrRefuses) {
  if (setxattr(file_.c_str(), "user.note", "seen", 4, 0) != 0) {
    GTEST_SKIP() << "no extended attributes here";
  }
  for (const char* const call : {"flistxattr 0", "fgetxattr 0", "fsetxattr 0"}) {
    SCOPED_TRACE(call);
    const Outcome outcome = Set("fail " + std::string(call) + " " + std::to_string(EACCES));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("cannot give the copy the attribute "), std::string::npos)
        << outcome.err;
    EXPECT_NE(outcome.err.find("Permission denied"), std::string::npos) << outcome.err;
    EXPECT_TRUE(ReadBytes(file_) == before_);
    ExpectNoCopyBehind();
  }
}

// --- Signals

class RecordSetSignals : public RecordSetSteps {
 protected:
  // Runs shell commands while the program is stopped before a call; $! is its process ID.
  Outcome SetAndRun(const std::string& order, const std::string& commands,
                    const std::string& file = "sample.rec") const {
    return RunShell("{ " + Shim(order) + " surveydata record set " + file +
                        " --offset 960 --number 4711 & "
                        "while read -r id name state rest </proc/$!/stat && [ $state != T ]; do "
                        "[ $state != Z ] || exit 99; done; " +
                        commands + "; kill -CONT $!; wait $!; }",
                    folder_.Path().string());
  }
  Outcome SetAndSignal(const std::string& order, const std::string& signal) const {
    return SetAndRun(order, "kill -" + signal + " $!");
  }
};

TEST_P(RecordSetSignals, ThatComeBeforeTheFileIsReplacedLeaveItAsItWas) {
  for (const char* const step : {"pwrite 0", "pwrite 1", "fchmod 0", "fsync 0"}) {
    SCOPED_TRACE(step);
    const Outcome outcome = SetAndSignal("stop " + std::string(step), "TERM");
    EXPECT_EQ(outcome.exitCode, 128 + SIGTERM) << outcome.err;
    EXPECT_TRUE(ReadBytes(file_) == before_);
    ExpectNoCopyBehind();
  }
  // A shell makes its jobs ignore INT.
  for (const auto& [name, number] : {std::pair("HUP", SIGHUP),
                                     {"PIPE", SIGPIPE},
                                     {"USR1", SIGUSR1},
                                     {"ALRM", SIGALRM},
                                     {"XFSZ", SIGXFSZ}}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(SetAndRun("stop fsync 0", "ulimit -c 0; kill -" + std::string(name) + " $!").exitCode,
              128 + number);
    EXPECT_TRUE(ReadBytes(file_) == before_);
    ExpectNoCopyBehind();
  }
}

// Another program replaces the file after it was opened: the change is made in the new one.
TEST_P(RecordSetSignals, LocksTheFileThatItsNameLeadsTo) {
  Bytes other = before_;
  other.push_back(0x55);
  Bytes otherAfter = after_;
  otherAfter.push_back(0x55);
  const TempFolderC elsewhere;
  WriteBytes(elsewhere / "other.rec", other);
  fs::copy(elsewhere / "other.rec", folder_ / "new.rec");
  const Outcome outcome = SetAndRun("stop flock 0", "mv new.rec sample.rec");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(ReadBytes(file_) == otherAfter);
  ExpectNoCopyBehind();
}

// The same if it becomes a link to the file: a link is never replaced.
TEST_P(RecordSetSignals, DoesNotReplaceALinkThatTheFileBecomes) {
  for (const auto& [call, isReplaced] : {std::pair("openat 0", true), {"fsync 0", false}}) {
    SCOPED_TRACE(call);
    const Outcome outcome = SetAndRun("stop " + std::string(call),
                                      "mv sample.rec moved.rec; ln -s moved.rec sample.rec");
    EXPECT_EQ(outcome.exitCode, isReplaced ? 0 : 3) << outcome.err;
    EXPECT_TRUE(fs::is_symlink(file_));
    EXPECT_TRUE(ReadBytes(folder_ / "moved.rec") == (isReplaced ? after_ : before_));
    fs::rename(folder_ / "moved.rec", file_);
    ExpectNoCopyBehind();
    WriteBytes(file_, before_);
  }
}

// After the copy was compared with the file, only the size of the file shows that bytes were
// appended to it.
TEST_P(RecordSetSignals, RefusesAFileThatGrowsAtTheLastMomentWithTheTimeSetBack) {
  const std::vector<std::string> calls = Calls();
  const auto count = std::count(calls.begin(), calls.end(), "stat");
  Bytes grown = before_;
  grown.push_back('x');
  const Outcome outcome = SetAndRun("stop stat " + std::to_string(count - 1),
                                    "cp -p sample.rec old; printf x >>sample.rec; "
                                    "touch -r old sample.rec; rm old");
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("the file has been changed by another program"), std::string::npos)
      << outcome.err;
  EXPECT_TRUE(ReadBytes(file_) == grown);
  ExpectNoCopyBehind();
}

// The folder is replaced by a link to another one while the program is stopped: nothing is created,
// replaced or removed there. The file is replaced in its own folder, or the change is refused.
TEST_P(RecordSetSignals, DoesNotFollowAFolderThatBecomesALink) {
  struct Step {
    std::string call;
    bool isReplaced;
  };
  const std::vector<std::string> calls = Calls();
  const auto opened = std::count(
      calls.begin(), std::find(calls.begin(), calls.end(), std::string("openat")), "open");
  std::vector<Step> steps = {{"open " + std::to_string(opened - 1), false},  // the folder
                             {"openat 1", false},  // to look for copies that were left
                             {IsNamed() ? "create 0" : "tmpfile 0", false},
                             {"renameat 0", true},
                             {"fsync 1", true}};
  if (!IsNamed()) steps.push_back({"linkat 0", true});
  const std::vector<std::string> others = {".surveydata.abcXYZ", "sample.rec"};
  const Bytes other = before_ + Bytes{0x55};
  for (const auto& [call, isReplaced] : steps) {
    SCOPED_TRACE(call);
    const TempFolderC elsewhere;
    for (const std::string& name : others) WriteBytes(elsewhere / name, other);
    const std::string own = folder_ / "own";
    fs::create_directory(own);
    WriteBytes(own + "/sample.rec", before_);
    const Outcome outcome =
        SetAndRun("stop " + call, "mv own moved; ln -s '" + elsewhere.Path().string() + "' own",
                  "own/sample.rec");
    EXPECT_EQ(outcome.exitCode, isReplaced ? 0 : 3) << outcome.err;
    EXPECT_EQ(elsewhere.Names(), others);
    for (const std::string& name : others) EXPECT_TRUE(ReadBytes(elsewhere / name) == other);
    EXPECT_TRUE(ReadBytes(folder_ / "moved/sample.rec") == (isReplaced ? after_ : before_));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path() / "moved"), {}), 1);
    fs::remove(own);
    fs::remove_all(folder_.Path() / "moved");
  }
}

TEST_P(RecordSetSignals, ThatComeLaterLetItBeReplacedFirst) {
  for (const char* const step : {"renameat 0", "fsync 1"}) {
    SCOPED_TRACE(step);
    EXPECT_EQ(SetAndSignal("stop " + std::string(step), "TERM").exitCode, 128 + SIGTERM);
    EXPECT_TRUE(ReadBytes(file_) == after_);
    ExpectNoCopyBehind();
    WriteBytes(file_, before_);
  }
}

// --- A full disk

// A separate file system with a given size.
class SmallDiskC {
 public:
  explicit SmallDiskC(std::size_t bytes)
      : isMounted_(mount("none", folder_.Path().c_str(), "tmpfs", 0,
                         ("size=" + std::to_string(bytes)).c_str()) == 0) {}
  SmallDiskC(const SmallDiskC&) = delete;
  SmallDiskC& operator=(const SmallDiskC&) = delete;
  ~SmallDiskC() {
    if (isMounted_) umount2(folder_.Path().c_str(), MNT_DETACH);
  }
  bool IsMounted() const { return isMounted_; }
  const TempFolderC& Folder() const { return folder_; }

 private:
  TempFolderC folder_;
  bool isMounted_;
};

TEST_P(RecordSetSteps, OnADiskThatFillsUpLeavesTheFileAsItWas) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t pages = (before_.size() + page - 1) / page;
  for (const std::size_t left : {std::size_t{0}, std::size_t{1}, pages / 2, pages - 1, pages}) {
    SCOPED_TRACE(testing::Message() << left << " of " << pages << " pages left");
    // The folder and the names take no pages.
    const SmallDiskC disk((pages + left) * page);
    if (!disk.IsMounted()) GTEST_SKIP() << "no file system may be mounted here";
    const std::string file = disk.Folder() / "sample.rec";
    WriteBytes(file, before_);
    const Outcome outcome =
        RunProgram({"record", "set", file, "--offset", "960", "--number", "4711"});
    EXPECT_EQ(outcome.exitCode, left < pages ? 3 : 0) << outcome.err;
    EXPECT_TRUE(ReadBytes(file) == (left < pages ? before_ : after_));
    EXPECT_EQ(disk.Folder().Names(), std::vector<std::string>{"sample.rec"});
  }
}

TEST_P(RecordSetSteps, OnAFileSizeThatIsLimitedLeavesTheFileAsItWas) {
  const std::size_t blocks = (before_.size() + 511) / 512;  // the shell counts in these
  for (const std::size_t limit : {std::size_t{1}, blocks / 2, blocks - 1, blocks}) {
    SCOPED_TRACE(limit);
    const Outcome outcome =
        RunProgram({"record", "set", file_, "--offset", "960", "--number", "4711"},
                   {.shell = "trap '' XFSZ; ulimit -f " + std::to_string(limit) + ";"});
    EXPECT_EQ(outcome.exitCode, limit < blocks ? 3 : 0) << outcome.err;
    EXPECT_TRUE(ReadBytes(file_) == (limit < blocks ? before_ : after_));
    ExpectNoCopyBehind();
  }
}

// --- The progress bar

TEST_P(RecordSetSteps, DrawsAProgressBarOnATerminalWhenTheWorkIsLong) {
  const TerminalC terminal;
  if (!terminal.IsThere()) GTEST_SKIP() << "no terminal available";
  constexpr std::uintmax_t kMebibyte = 1 << 20;
  // Each block takes so long that the bar is shown.
  const auto set = [&](std::uintmax_t size, const std::string& errors) {
    Bytes bytes = before_;
    bytes.resize(size, 1);  // no hole, which would be skipped
    WriteBytes(file_, bytes);
    const Outcome outcome =
        RunShell(Shim("wait pwrite 600") +
                     " surveydata record set sample.rec --offset 960 --number 4711 2>" + errors,
                 folder_.Path().string());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
  };
  set(2 * kMebibyte, terminal.Name());
  const std::string drawn = terminal.Read();
  EXPECT_TRUE(drawn.starts_with("\r[####################                    ]  50%  1 of 2 MiB"))
      << drawn;
  EXPECT_NE(drawn.find("] 100%  2 of 2 MiB"), std::string::npos) << drawn;
  const std::size_t last = drawn.rfind('[');
  ASSERT_NE(drawn.find('\r', last), std::string::npos) << drawn;
  const std::size_t width = drawn.find('\r', last) - last;
  EXPECT_TRUE(drawn.ends_with("\r" + std::string(width, ' ') + "\r")) << drawn;  // erased

  set(kMebibyte, terminal.Name());  // too little for a bar, however slow
  EXPECT_EQ(terminal.Read(), "");
  const TempFolderC elsewhere;
  set(2 * kMebibyte, elsewhere / "errors");  // not a terminal
  EXPECT_EQ(ReadText(elsewhere / "errors"), "");
}

std::string NameOf(const testing::TestParamInfo<CopyKind>& info) {
  return info.param == CopyKind::kNamed ? "NamedCopy" : "UnnamedCopy";
}

INSTANTIATE_TEST_SUITE_P(Copies, RecordSetSteps,
                         testing::Values(CopyKind::kUnnamed, CopyKind::kNamed), NameOf);
INSTANTIATE_TEST_SUITE_P(Copies, RecordSetSignals,
                         testing::Values(CopyKind::kUnnamed, CopyKind::kNamed), NameOf);

}  // namespace
