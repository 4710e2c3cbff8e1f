// Kinds and names of record files that exist only on POSIX systems.

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>

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

TEST(RecordReaderOpen, AFolderIsRefusedAndClosed) {
  const TempFolderC folder;
  const std::ptrdiff_t before = OpenFiles();
  for (int i = 0; i < 2; ++i) {
    const SDI::GPSRecordReaderC reader(folder.Path().c_str());
    EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kCannotOpen);
    EXPECT_EQ(OpenFiles(), before);
    EXPECT_FALSE(GPSRecordIndexC(folder.Path().c_str()).IsOpen());
  }
  EXPECT_EQ(OpenFiles(), before);
}

// A file that can be read, but that not even root can open for writing.
TEST(RecordFileOpen, ARunningProgramIsRefused) {
  const TempFolderC folder;
  fs::create_symlink(fs::read_symlink("/proc/self/exe"), folder.Path() / "running.rec");
  ASSERT_TRUE(std::ifstream(folder.Path() / "running.rec"));
  ExpectNoFile(TestSupport::InfoFor(folder.Path() / "running.rec"), 1);
}

TEST(RecordFileOpen, AFileThatCannotSeekIsABadFrame) {
  const TempFolderC folder;
  const fs::path pipe = folder.Path() / "pipe.rec";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ExpectNoFile(TestSupport::InfoFor(pipe), 2);
}

TEST(RecordFileOpen, TheNameMayContainAnyBytes) {
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

// A pipe with a name, into which a thread writes `bytes`.
class NamedPipeC {
 public:
  explicit NamedPipeC(ByteVector bytes) : path_(folder_.Path() / "pipe.rec") {
    std::signal(SIGPIPE, SIG_IGN);  // a reader may stop before the end
    if (mkfifo(path_.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
    writer_ = std::thread([this, bytes = std::move(bytes)] {
      std::ofstream(path_, std::ios::binary)
          .write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    });
  }
  NamedPipeC(const NamedPipeC&) = delete;
  NamedPipeC& operator=(const NamedPipeC&) = delete;
  ~NamedPipeC() { writer_.join(); }

  const char* Name() const { return path_.c_str(); }

 private:
  TempFolderC folder_;
  fs::path path_;
  std::thread writer_;
};

TEST(RecordReader, ReadsAPipeAndFindsItsDamage) {
  ByteVector wrong = FrameOf(100, 1);
  wrong.back() ^= 1;
  ByteVector bytes(300'000, 0x9C);
  Append(bytes, wrong);
  Append(bytes, FrameOf(20));
  Append(bytes, wrong);
  bytes.pop_back();
  const NamedPipeC pipe(bytes);
  SDI::GPSRecordReaderC reader(pipe.Name());
  EXPECT_EQ(reader.GetSize(), 0U);
  std::vector<SDI::GPSDamagedHeader> damaged;
  reader.SetReportDamaged([&](const auto& header) { damaged.push_back(header); });
  std::vector<GPSRecordEntry> entries;
  for (GPSRecordEntry entry; reader.NextEntry(entry);) entries.push_back(entry);
  EXPECT_EQ(entries, RecordModel::Walk(bytes));
  EXPECT_EQ(damaged, RecordModel::Damaged(bytes));
  EXPECT_EQ(damaged.size(), 2U);
  EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kOpen);
}

TEST(RecordReader, APipeHasNoStretches) {
  for (const SDI::GPSRecordStretch& stretch :
       {SDI::GPSRecordStretch{0, 10}, SDI::GPSRecordStretch{.begin = 1}}) {
    const NamedPipeC pipe(FrameOf(20));
    SDI::GPSRecordReaderC reader(pipe.Name(), stretch);
    EXPECT_FALSE(reader.Next());
    EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kNoStretches);
    GPSRecordEntry entry;
    EXPECT_FALSE(reader.NextEntry(entry));
  }
}

TEST(RecordReader, AFileWithoutReadPermission) {
  const TempFileC file(FrameOf(20));
  fs::permissions(file.Path().parent_path(), fs::perms::all);
  fs::permissions(file.Path(), fs::perms::none);
  const uid_t user = geteuid();
  ASSERT_EQ(seteuid(user != 0 ? user : 65534), 0);  // the superuser has all permissions
  const SDI::GPSRecordReaderC reader(file.Path().c_str());
  ASSERT_EQ(seteuid(user), 0);
  EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kNoPermission);
}

// Nobody, not even the superuser, may open a running program for writing.
TEST(RecordReader, AFileThatCannotBeWrittenIsRead) {
  const SDI::GPSRecordReaderC reader("/proc/self/exe");
  EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kOpen);
  const GPSRecordIndexC index("/proc/self/exe");
  EXPECT_TRUE(index.IsOpen());
}

TEST(RecordReader, AFileWithoutASizeIsRead) {
  // The system reports its size as 0.
  SDI::GPSRecordReaderC reader("/proc/self/maps");
  EXPECT_EQ(reader.GetSize(), 0U);
  GPSRecordEntry entry;
  ASSERT_TRUE(reader.NextEntry(entry));
  EXPECT_TRUE(entry.isGap);
  EXPECT_GT(entry.size, 100U);
  EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kOpen);
}

TEST(RecordWriter, AFileWithoutWritePermission) {
  const TempFileC file(FrameOf(20));
  fs::permissions(file.Path().parent_path(), fs::perms::all);
  fs::permissions(file.Path(), fs::perms::owner_read);
  const uid_t user = geteuid();
  ASSERT_EQ(seteuid(user != 0 ? user : 65534), 0);
  const auto outcome = SDI::GPSRecordWriterC::Append(file.Path().c_str(), FrameOf(20));
  ASSERT_EQ(seteuid(user), 0);
  EXPECT_EQ(outcome, SDI::GPSAppendOutcome::kNoPermission);
  EXPECT_EQ(file.Bytes(), FrameOf(20));
}

TEST(RecordWriter, APipeIsRefused) {
  const TempFolderC folder;
  const fs::path pipe = folder.Path() / "pipe.rec";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int reader =
      open(pipe.c_str(), O_RDONLY | O_NONBLOCK);  // otherwise, opening it for writing would block
  ASSERT_GE(reader, 0);
  EXPECT_EQ(SDI::GPSRecordWriterC::Append(pipe.c_str(), FrameOf(20)),
            SDI::GPSAppendOutcome::kCannotOpen);
  std::uint8_t byte = 0;
  EXPECT_EQ(read(reader, &byte, 1), 0);  // nothing was written
  close(reader);
}

// Every write to the device fails as on a full disk.
TEST(RecordWriter, AFullDevice) {
  EXPECT_EQ(SDI::GPSRecordWriterC::Append("/dev/full", FrameOf(20)),
            SDI::GPSAppendOutcome::kLeftOver);  // a device cannot be truncated
}

// The sequence at the end of the array would need the byte after it, which is the first of the
// extension.
TEST(RecordFileWrite, TheByteAfterTheNameIsNotRead) {
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
