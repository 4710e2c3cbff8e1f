// How often the program opens files on Windows, and what it reports about files that it cannot
// open.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include <platform/file_error.h>
#include <platform/input_file.h>

#include "tests/tools/program.h"

namespace {

// A file that no other program can open as long as the object exists.
class LockedC {
 public:
  explicit LockedC(const std::string& file)
      : handle_(CreateFileW(std::filesystem::path(file).c_str(), GENERIC_READ, 0, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
  }
  LockedC(const LockedC&) = delete;
  LockedC& operator=(const LockedC&) = delete;
  ~LockedC() { CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

TEST(ReadableSize, IsFoundWithoutOpeningTheFile) {
  const TempFolderC folder;
  const std::string name = folder / "a.rec";
  WriteBytes(name, Bytes(1234));
  EXPECT_EQ(Tool::ReadableSize(name), 1234U);
  const LockedC locked(name);
  EXPECT_EQ(Tool::ReadableSize(name), 1234U);
  EXPECT_THROW(Tool::InputFileC{name}, Tool::FileErrorC);
}

TEST(ReadableSize, GivesTheReasonForAMissingFile) {
  const TempFolderC folder;
  const std::string name = folder / "none.rec";
  try {
    Tool::ReadableSize(name);
    ADD_FAILURE() << "there is no file";
  } catch (const Tool::FileErrorC& error) {
    EXPECT_EQ(error.what(), "cannot read " + name + ": No such file or directory");
  }
  WriteBytes(name, {});
  EXPECT_EQ(Tool::ReadableSize(name), 0U);
}

TEST(InputFile, IsReportedIfAnotherProgramHasLockedIt) {
  const TempFolderC folder;
  const std::string path = folder.Path().string();
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  WriteBytes(folder / "a.rec", sample);
  WriteBytes(folder / "b.rec", sample);
  const Outcome alone = RunProgram({"record", "list", "b.rec", "--json"}, {.folder = path});
  const LockedC locked(folder / "a.rec");
  const std::string reason = "surveydata: cannot read a.rec: Permission denied\n";

  const Outcome listed =
      RunProgram({"record", "list", "a.rec", "b.rec", "--json"}, {.folder = path});
  EXPECT_EQ(listed.exitCode, 3);
  EXPECT_NE(listed.err.find(reason), std::string::npos) << listed.err;
  EXPECT_FALSE(alone.out.empty());
  EXPECT_EQ(Lines(listed.out).size(), Lines(alone.out).size());

  const Outcome joined =
      RunProgram({"record", "join", "b.rec", "a.rec", "-o", "joined.rec"}, {.folder = path});
  EXPECT_EQ(joined.exitCode, 3);
  EXPECT_EQ(joined.err, reason);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "joined.rec"));
}

}  // namespace
