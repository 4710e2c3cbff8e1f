// Record files of kinds, and with names, that there are on POSIX systems.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>

#include "tests/gnss/expect_no_file.h"
#include "tests/gnss/record_model.h"
#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

namespace fs = std::filesystem;

using SDI::GPSRecordEntry;
using SDI::GPSRecordIndexC;
using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::ExpectNoFile;
using TestSupport::FrameBuilderC;
using TestSupport::FrameOf;
using TestSupport::TempFileC;
using TestSupport::TempFolderC;

// The files that this process has open.
std::ptrdiff_t OpenFiles() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

TEST(RecordFileRead, EveryWayOutClosesTheFile) {
  const TempFileC good(FrameBuilderC().Times().U16(2).Fill(38, 2).Frame());
  const TempFileC bad(ByteVector(20, 1));
  const TempFileC empty;
  SDI::GPSMeasDataImplC measurement;
  const std::ptrdiff_t before = OpenFiles();
  for (int i = 0; i < 2; ++i) {
    for (const TempFileC* const file : {&good, &bad, &empty}) {
      SDI::GPSRecordFileInfo info = file->Info();
      ASSERT_NE(SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 1U);
      ASSERT_EQ(SDI::GPSRecordFileC::WriteGPSMeasData(&measurement, &info), file == &good  ? 0U
                                                                            : file == &bad ? 2U
                                                                                           : 1U);
      EXPECT_EQ(OpenFiles(), before);
    }
  }
}

// It can be read but, by nobody at all, be opened for writing.
TEST(RecordFileOpen, ARunningProgramIsNoFile) {
  const TempFolderC folder;
  fs::create_symlink(fs::read_symlink("/proc/self/exe"), folder.Path() / "running.rec");
  ASSERT_TRUE(std::ifstream(folder.Path() / "running.rec"));
  ExpectNoFile(TestSupport::InfoFor(folder.Path() / "running.rec"), 1);
}

TEST(RecordFileOpen, AFileThatCannotBePositionedIsABadFrame) {
  const TempFolderC folder;
  const fs::path pipe = folder.Path() / "pipe.rec";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ExpectNoFile(TestSupport::InfoFor(pipe), 2);
}

TEST(RecordFileOpen, TheNameMayBeOfAnyBytes) {
  const TempFileC file(FrameOf(20), "\xC3\xA9t\xC3\xA9.\xFF");
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info = file.Info();
  EXPECT_EQ(SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 0U);
}

TEST(RecordIndex, WalksAPipe) {
  const TempFolderC folder;
  const auto pipe = folder.Path() / "pipe.rec";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ByteVector bytes(300'000, 0x9C);
  Append(bytes, FrameOf(20));
  std::thread writer([&] {
    std::ofstream(pipe, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  });
  GPSRecordIndexC index(pipe.c_str());
  EXPECT_EQ(index.GetFileSize(), 0U);
  std::vector<GPSRecordEntry> entries;
  for (GPSRecordEntry entry; index.Next(entry);) entries.push_back(entry);
  writer.join();
  EXPECT_EQ(entries, RecordModel::Walk(bytes));
  EXPECT_FALSE(index.HasFailed());
}

// The first sequence of the last bytes would need the byte behind the array, which is the first of
// the extension.
TEST(RecordFileWrite, TheByteBehindTheNameIsNotRead) {
  const TempFileC file(FrameBuilderC().Times().U16(2).Fill(38, 2).Frame(), "file.\xA9");
  SDI::GPSRecordFileInfo info = file.Info();
  std::string name;
  for (int i = 0; i < 16; ++i) name += "\xE2\x82\xAC";  // 48 bytes
  (name + "\xC3").copy(info.name, sizeof(info.name));
  const SDI::GPSMeasDataImplC measurement;
  EXPECT_EQ(SDI::GPSRecordFileC::WriteGPSMeasData(&measurement, &info), 0U);
  EXPECT_EQ(file.Bytes(),
            FrameBuilderC().Times().U16(2).NameUnits(std::u16string(16, u'\u20ac')).I32(0).Frame());
}

}  // namespace
