#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/file_access.h>

#include "tests/support/temp_file.h"

namespace SDI::FileAccess {
namespace {

class OpenFileC {
 public:
  explicit OpenFileC(const TestSupport::TempFileC& file)
      : file_(std::fopen(file.Path().string().c_str(), "rb+")) {}
  OpenFileC(const OpenFileC&) = delete;
  OpenFileC& operator=(const OpenFileC&) = delete;
  ~OpenFileC() { std::fclose(file_); }

  std::FILE* Get() const { return file_; }

 private:
  std::FILE* file_;
};

TEST(FileAccess, ReportsWhyAFileCannotBeOpened) {
  const struct {
    int error;
    OpenFailure failure;
  } cases[] = {
      {ENOENT, OpenFailure::kNoSuchFile},   {ENOTDIR, OpenFailure::kNoSuchFile},
      {EACCES, OpenFailure::kNoPermission}, {EPERM, OpenFailure::kNoPermission},
      {EROFS, OpenFailure::kNoPermission},  {EISDIR, OpenFailure::kOther},
      {EMFILE, OpenFailure::kOther},        {ENAMETOOLONG, OpenFailure::kOther},
  };
  for (const auto& [error, failure] : cases) {
    errno = error;
    EXPECT_EQ(GetOpenFailure(), failure) << error;
  }
}

TEST(FileAccess, SeeksBeyondFourGibibytes) {
  const TestSupport::TempFileC file;
  file.Write({1, 2, 3});
  const OpenFileC open(file);
  ASSERT_TRUE(SeekToEnd(open.Get()));
  EXPECT_EQ(Tell(open.Get()), 3);
  for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{0x7FFF'FFFF},
                                     std::uint64_t{0xFFFF'FFFF}, std::uint64_t{1} << 40}) {
    ASSERT_TRUE(Seek(open.Get(), offset));
    EXPECT_EQ(Tell(open.Get()), static_cast<Offset>(offset));
  }
}

TEST(FileAccess, TruncatesAFile) {
  const TestSupport::TempFileC file;
  file.Write({1, 2, 3});
  {
    const OpenFileC open(file);
    EXPECT_TRUE(Truncate(open.Get(), 1));
  }
  EXPECT_EQ(TestSupport::ReadBytes(file.Path()), std::vector<std::uint8_t>{1});
}

}  // namespace
}  // namespace SDI::FileAccess
