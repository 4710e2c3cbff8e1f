// What `record set` preserves on Windows, and how it handles open files.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include <output/replace_file.h>
#include <platform/file_error.h>

#include "tests/tools/program.h"
#include "tests/tools/record/record_set_fixture.h"

namespace {

namespace fs = std::filesystem;

// A file opened in a way in which another program may open it.
class OpenFileC {
 public:
  OpenFileC(const std::string& name, DWORD access, DWORD shared)
      : handle_(CreateFileW(fs::path(name).c_str(), access, shared, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  OpenFileC(const OpenFileC&) = delete;
  OpenFileC& operator=(const OpenFileC&) = delete;
  ~OpenFileC() {
    if (IsOpen()) CloseHandle(handle_);
  }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE handle_;
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

TEST_F(RecordSet, RefusesAFileThatAnotherProgramHasOpenToWrite) {
  const OpenFileC holder(file_, GENERIC_READ | GENERIC_WRITE, kShareAll);
  ASSERT_TRUE(holder.IsOpen());
  const Outcome outcome = Set({"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("locked"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("sample.rec is unchanged"), std::string::npos) << outcome.err;
  EXPECT_EQ(Set({"--number", "5", "--dry-run"}).exitCode, 0);  // writes nothing
  ExpectUntouched();
}

TEST_F(RecordSet, LeavesTheFileUnchangedIfAReaderPreventsItsReplacement) {
  const OpenFileC holder(file_, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
  ASSERT_TRUE(holder.IsOpen());
  const Outcome outcome = Set({"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("sample.rec is unchanged"), std::string::npos) << outcome.err;
  ExpectUntouched();
}

TEST_F(RecordSet, LetsNobodyElseChangeTheFileDuringTheChange) {
  const Bytes before(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Bytes after = before;
  const Change change{.name = {}, .number = 77, .height = {}};
  change.Apply(after.data(), kFrameSize);
  Tool::FileReplacementC replacement(file_);
  EXPECT_FALSE(OpenFileC(file_, GENERIC_WRITE, kShareAll).IsOpen());
  EXPECT_FALSE(OpenFileC(file_, DELETE, kShareAll).IsOpen());
  EXPECT_TRUE(OpenFileC(file_, GENERIC_READ, kShareAll).IsOpen());
  EXPECT_THROW(Tool::FileReplacementC{file_}, Tool::FileErrorC);
  replacement.Replace(kFrame, before, after);
  EXPECT_TRUE(ReadBytes(file_) == Expected(change));
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
}

TEST_F(RecordSet, RefusesAFrameThatIsNotWhatItWas) {
  Bytes other(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  other[20] ^= 1;
  EXPECT_THROW(Tool::FileReplacementC(file_).Replace(kFrame, other, other), Tool::FileErrorC);
  ExpectUntouched();
}

TEST_F(RecordSet, LeavesAReadOnlyFileAsItWas) {
  ASSERT_NE(SetFileAttributesW(fs::path(file_).c_str(), FILE_ATTRIBUTE_READONLY), 0);
  const Outcome outcome = Set({"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("sample.rec is unchanged"), std::string::npos) << outcome.err;
  ExpectUntouched();
  SetFileAttributesW(fs::path(file_).c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
}

TEST_F(RecordSet, KeepsTheAttributes) {
  ASSERT_NE(SetFileAttributesW(fs::path(file_).c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
  ASSERT_NE(GetFileAttributesW(fs::path(file_).c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
  EXPECT_EQ(Set({"--number", "5"}).exitCode, 0);
  EXPECT_NE(GetFileAttributesW(fs::path(file_).c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 5, .height = {}}));
}

TEST_F(RecordSet, WorksOnNamesBeyondTheOldCodePages) {
  const fs::path file = folder_.Path() / u8"Vermessung Süd-Ø2 測量.rec";
  fs::copy(file_, file);
  const Outcome outcome =
      RunProgram({"record", "set", file.string(), "--offset", "960", "--number", "5"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(ReadBytes(file.string()) == Expected({.name = {}, .number = 5, .height = {}}));
}

}  // namespace
