// What `record set` preserves, and which failures it handles, on POSIX systems.

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/xattr.h>
#endif

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

struct stat StatusOf(const std::string& file) {
  struct stat status {};
  EXPECT_EQ(stat(file.c_str(), &status), 0);
  return status;
}

// Including the bits above 0777: set-user-ID, set-group-ID, sticky.
TEST_F(RecordSet, KeepsThePermissions) {
  for (const mode_t mode : {0640u, 0604u, 0777u, 01640u, 02650u, 04640u}) {
    ASSERT_EQ(chmod(file_.c_str(), mode), 0);
    ASSERT_EQ(StatusOf(file_).st_mode & 07777, mode);
    EXPECT_EQ(Set({"--number", std::to_string(mode)}).exitCode, 0);
    EXPECT_EQ(StatusOf(file_).st_mode & 07777, mode);
  }
}

TEST_F(RecordSet, KeepsOwnerAndGroup) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file to another owner";
  ASSERT_EQ(chown(file_.c_str(), 65533, 65534), 0);
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_EQ(StatusOf(file_).st_uid, 65533u);
  EXPECT_EQ(StatusOf(file_).st_gid, 65534u);
}

#if defined(__linux__)

struct AclEntry {
  std::uint16_t tag;
  std::uint16_t permissions;
  std::uint32_t id = 0xFFFFFFFF;
};

// An access control list as Linux keeps it in an extended attribute: little-endian, version 2.
std::string MakeAcl(const std::vector<AclEntry>& entries) {
  std::string acl;
  const auto put = [&acl](std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) acl += static_cast<char>(value >> 8 * i & 0xFF);
  };
  put(2, 4);
  for (const AclEntry& entry : entries) {
    put(entry.tag, 2);
    put(entry.permissions, 2);
    put(entry.id, 4);
  }
  return acl;
}

constexpr std::uint16_t kOwner = 0x01, kUser = 0x02, kGroup = 0x04, kMask = 0x10, kOthers = 0x20;
constexpr const char* kAccess = "system.posix_acl_access";

bool SetAttribute(const std::string& file, const char* name, const std::string& value) {
  return setxattr(file.c_str(), name, value.data(), value.size(), 0) == 0;
}

// Empty if there is none.
std::string GetAttribute(const std::string& file, const char* name) {
  char value[1024];
  const ssize_t size = getxattr(file.c_str(), name, value, sizeof(value));
  return size < 0 ? "" : std::string(value, static_cast<std::size_t>(size));
}

// The mode's group bits are the mask of the list, not the rights of the group.
TEST_F(RecordSet, KeepsTheAccessControlList) {
  ASSERT_EQ(chmod(file_.c_str(), 0600), 0);
  const std::string acl =
      MakeAcl({{kOwner, 6}, {kUser, 6, 1}, {kGroup, 0}, {kMask, 6}, {kOthers, 0}});
  if (!SetAttribute(file_, kAccess, acl)) GTEST_SKIP() << "no access control lists here";
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_EQ(GetAttribute(file_, kAccess), acl);
  EXPECT_EQ(StatusOf(file_).st_mode & 07777, 0660u);
}

TEST_F(RecordSet, InheritsNoAccessControlListFromTheFolder) {
  const std::string inherited =
      MakeAcl({{kOwner, 7}, {kUser, 7, 65534}, {kGroup, 5}, {kMask, 7}, {kOthers, 5}});
  if (!SetAttribute(folder_.Path().string(), "system.posix_acl_default", inherited)) {
    GTEST_SKIP() << "no access control lists here";
  }
  ASSERT_EQ(chmod(file_.c_str(), 0640), 0);
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_EQ(GetAttribute(file_, kAccess), "");
  EXPECT_EQ(StatusOf(file_).st_mode & 07777, 0640u);
  // Nor in place of the file's own list.
  const std::string acl =
      MakeAcl({{kOwner, 6}, {kUser, 4, 1}, {kGroup, 4}, {kMask, 4}, {kOthers, 0}});
  ASSERT_TRUE(SetAttribute(file_, kAccess, acl));
  EXPECT_EQ(Set({"--number", "6"}).exitCode, 0);
  EXPECT_EQ(GetAttribute(file_, kAccess), acl);
}

TEST_F(RecordSet, KeepsExtendedAttributes) {
  const std::string binary("\0\xFF\n", 3);
  if (!SetAttribute(file_, "user.note", "seen") || !SetAttribute(file_, "user.empty", "") ||
      !SetAttribute(file_, "user.binary", binary)) {
    GTEST_SKIP() << "no extended attributes here";
  }
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_EQ(GetAttribute(file_, "user.note"), "seen");
  EXPECT_EQ(GetAttribute(file_, "user.binary"), binary);
  char none[1];
  EXPECT_EQ(getxattr(file_.c_str(), "user.empty", none, sizeof(none)), 0);
}

#endif

// Holes before, between and after data, so large that writing them would take minutes.
TEST_F(RecordSet, KeepsHolesAsHoles) {
  constexpr std::uintmax_t kHole = std::uintmax_t{1} << 38;
  constexpr blkcnt_t kFewBlocks = 8192;  // of 512 bytes
  const std::string tail = "the last bytes";
  std::error_code error;
  fs::resize_file(file_, kHole, error);
  if (!error) std::ofstream(file_, std::ios::app | std::ios::binary) << tail;
  if (!error) fs::resize_file(file_, kHole + kHole / 2, error);
  if (error || StatusOf(file_).st_blocks > kFewBlocks) GTEST_SKIP() << "no such holes here";
  EXPECT_EQ(Set({"--number", "77"}).exitCode, 0);
  EXPECT_LE(StatusOf(file_).st_blocks, kFewBlocks);
  EXPECT_EQ(fs::file_size(file_), kHole + kHole / 2);
  std::ifstream in(file_, std::ios::binary);
  std::string start(before_.size(), '\0');
  in.read(start.data(), static_cast<std::streamsize>(start.size()));
  EXPECT_TRUE(Bytes(start.begin(), start.end()) ==
              Expected({.name = {}, .number = 77, .height = {}}));
  std::string end(tail.size() + 1, 'x');
  in.seekg(static_cast<std::streamoff>(kHole));
  in.read(end.data(), static_cast<std::streamsize>(end.size()));
  EXPECT_EQ(end, tail + '\0');
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

// On other systems, the system itself ensures that a command line is text.
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

// To read it or to change it.
TEST_F(RecordSet, RefusesAFileThatAnotherProgramHasLocked) {
  for (const int lock : {LOCK_EX, LOCK_SH}) {
    const int holder = open(file_.c_str(), O_RDONLY);
    ASSERT_EQ(flock(holder, lock), 0);
    const Outcome outcome = Set({"--number", "5"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("locked"), std::string::npos) << outcome.err;
    EXPECT_EQ(Set({"--number", "5", "--dry-run"}).exitCode, 0);  // writes nothing
    close(holder);
    ExpectUntouched();
  }
}

// Removes what a killed program has left: a file of this user that has the name of a copy and is
// not locked. All other files are kept.
TEST_F(RecordSet, RemovesTheCopiesOfKilledProgramsAndNothingElse) {
  for (const char* const name :
       {".surveydata.abcXYZ", ".surveydata.000000", ".surveydata.abcXY", ".surveydata.abcXYZ1",
        ".surveydata.abc_YZ", ".surveydata.locked", "surveydata.abcXYZ"}) {
    WriteBytes(folder_ / name, {1});
  }
  fs::create_directory(folder_.Path() / ".surveydata.folder");
  fs::create_symlink(file_, folder_.Path() / ".surveydata.linked");
  ASSERT_EQ(mkfifo((folder_ / ".surveydata.apipe1").c_str(), 0600), 0);
  std::vector<std::string> kept = {
      ".surveydata.abcXY",  ".surveydata.abcXYZ1", ".surveydata.abc_YZ",
      ".surveydata.apipe1", ".surveydata.folder",  ".surveydata.linked",
      ".surveydata.locked", "sample.rec",          "surveydata.abcXYZ"};
  if (geteuid() == 0) {
    WriteBytes(folder_ / ".surveydata.theirs", {1});
    ASSERT_EQ(chown((folder_ / ".surveydata.theirs").c_str(), 65534, 65534), 0);
    kept.insert(kept.end() - 2, ".surveydata.theirs");
  }
  const int holder = open((folder_ / ".surveydata.locked").c_str(), O_RDONLY);
  ASSERT_EQ(flock(holder, LOCK_SH), 0);
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_EQ(folder_.Names(), kept);
  close(holder);
}

// A copy that root creates of another owner's file may already have that owner.
TEST_F(RecordSet, RemovesTheCopiesOfKilledProgramsOfRoot) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file to another owner";
  WriteBytes(folder_ / ".surveydata.theirs", {1});
  for (const std::string& file : {file_, folder_ / ".surveydata.theirs"}) {
    ASSERT_EQ(chown(file.c_str(), 65534, 65534), 0);
  }
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
}

// Sets the time of the last change to full seconds and these nanoseconds.
void SetTime(const std::string& file, long nanoseconds) {
  const timespec times[2] = {{0, UTIME_OMIT}, {1'700'000'000, nanoseconds}};
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

TEST_F(RecordSet, RefusesAFileThatChangesDuringTheChange) {
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
      {"appended to, and the time set back",
       [&] {
         Replace(before_ + Bytes{0});
         SetTime(file_, 500);
       }},
      {"another byte within the same second",
       [&] {
         Bytes bytes = before_;
         bytes[0] ^= 1;
         Replace(bytes);
         SetTime(file_, 1500);
       }},
      {"a byte of the frame, and the time set back",
       [&] {
         Bytes bytes = before_;
         bytes[kFrame + 20] ^= 1;
         Replace(bytes);
         SetTime(file_, 500);
       }},
  };
  const Bytes sample = before_;
  for (const auto& [what, change] : cases) {
    SCOPED_TRACE(what);
    Replace(sample);
    SetTime(file_, 500);
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

TEST_F(RecordSet, LeavesNoCopyWhenASignalComes) {
  const Bytes before(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXFSZ, SIGPIPE, SIGUSR1, SIGUSR2,
                           SIGALRM, SIGXCPU, SIGVTALRM, SIGPROF}) {
    SCOPED_TRACE(signal);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, signal);
    ASSERT_EQ(sigprocmask(SIG_BLOCK, &one, nullptr), 0);
    const auto inherited = std::signal(signal, SIG_DFL);  // it may be ignored, as under nohup
    std::raise(signal);
    EXPECT_THROW(Tool::FileReplacementC(file_).Replace(kFrame, before, before), Tool::FileErrorC);
    int received = 0;
    EXPECT_EQ(sigwait(&one, &received), 0);  // still pending
    EXPECT_EQ(received, signal);
    ExpectUntouched();

    // An ignored signal stops nothing.
    std::signal(signal, SIG_IGN);
    std::raise(signal);
    EXPECT_NO_THROW(Tool::FileReplacementC(file_).Replace(kFrame, before, before));
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
    std::signal(signal, inherited);
    ExpectUntouched();
  }
}

TEST_F(RecordSet, LeavesTheFileAsItWasWhenTheDiskIsFull) {
  const Outcome outcome =
      Set({"--number", "5"}, {.shell = "trap '' XFSZ; ulimit -f 16;"});  // 8 KiB or 16 KiB
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("sample.rec is unchanged"), std::string::npos) << outcome.err;
  ExpectUntouched();
}

TEST_F(RecordSet, EndsByTheSignalOfAFileThatBecomesTooLarge) {
  const Outcome outcome = Set({"--number", "5"}, {.shell = "ulimit -c 0; ulimit -f 16;"});
  EXPECT_EQ(outcome.exitCode, 128 + SIGXFSZ);
  ExpectUntouched();
}

// Root may write everywhere, so another user tries.
TEST_F(RecordSet, LeavesTheFileUnchangedIfItMayNotBeWritten) {
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
  // With a group that the other user may set, only the permissions prevent the change.
  if (geteuid() == 0) {
    ASSERT_EQ(chown(file_.c_str(), 0, 65534), 0);
  }
  for (const auto& [what, folder, file] : cases) {
    SCOPED_TRACE(what);
    fs::permissions(folder_.Path(), fs::perms{folder});
    fs::permissions(file_, fs::perms{file});
    const Outcome outcome = setAsOther();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("sample.rec is unchanged"), std::string::npos) << outcome.err;
    ExpectUntouched();
  }
  fs::permissions(folder_.Path(), fs::perms{0777});
  fs::permissions(file_, fs::perms{0666});
  if (geteuid() == 0) {
    // A user who may write the file but not set the group of the copy would change who can read it.
    ASSERT_EQ(chown(file_.c_str(), 0, 0), 0);
    const Outcome outcome = setAsOther();
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("the group of"), std::string::npos) << outcome.err;
    ExpectUntouched();
    // With another owner, the file would run with the rights of that owner.
    ASSERT_EQ(chown(file_.c_str(), 0, 65534), 0);
    ASSERT_EQ(chmod(file_.c_str(), 04666), 0);
    const Outcome asOwner = setAsOther();
    EXPECT_EQ(asOwner.exitCode, 3);
    EXPECT_NE(asOwner.err.find("set-user-ID"), std::string::npos) << asOwner.err;
    ExpectUntouched();
    ASSERT_EQ(chmod(file_.c_str(), 0666), 0);
  }
  // With all permissions it works, so the refusals above are due to the permissions.
  EXPECT_EQ(setAsOther().exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 5, .height = {}}));
  // A folder that can be written but not read cannot be flushed to the disk.
  Replace(before_);
  fs::permissions(folder_.Path(), fs::perms{0333});
  const Outcome outcome = setAsOther();
  fs::permissions(folder_.Path(), fs::perms{0777});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("sample.rec is replaced"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("Permission denied"), std::string::npos) << outcome.err;
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 5, .height = {}}));
}

}  // namespace
