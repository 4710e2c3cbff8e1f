#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>

#include "tests/gnss/record_model.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/faults.h"
#include "tests/support/frame_builder.h"
#include "tests/support/same_info.h"
#include "tests/support/temp_file.h"

// Failures that files cannot produce in a test: each call of a file function of the C runtime fails
// once.

namespace {

using Faults::Extent;
using SDI::GPSMeasDataImplC;
using SDI::GPSRecordFileC;
using SDI::GPSRecordFileInfo;
using TestSupport::ByteVector;
using TestSupport::StoredIn;

// The open descriptors of this process.
std::ptrdiff_t Descriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

class RecordFaults : public testing::Test {
 protected:
  RecordFaults()
      : random_(1),
        file_(TestSupport::WellFormedFrame(0x0007, 0, random_)),
        before_(file_.Bytes()) {
    info_ = file_.Info();
    info_.number = 4711;
    measurement_.SetWord16(7);
  }
  ~RecordFaults() override {
    Faults::FailNoFileCall();
    EXPECT_EQ(Faults::OpenFiles(), openFiles_);
    EXPECT_EQ(Descriptors(), descriptors_);
  }

  // Runs `operation` with a failing file call, and checks that no memory and no handle leaks.
  std::uint32_t RunWithFault(std::size_t call, Extent extent,
                             const std::function<std::uint32_t()>& operation) {
    const std::size_t taken = Faults::Allocations();
    const std::size_t released = Faults::Releases();
    Faults::FailFileCall(call, extent);
    const std::uint32_t result = operation();
    const std::size_t calls = Faults::FileCalls().size();
    Faults::FailNoFileCall();
    EXPECT_EQ(Faults::Allocations() - taken, Faults::Releases() - released);
    EXPECT_GT(calls, call);  // the failing call was reached
    EXPECT_EQ(Faults::OpenFiles(), openFiles_);
    EXPECT_EQ(Descriptors(), descriptors_);
    return result;
  }

  std::mt19937_64 random_;
  TestSupport::TempFileC file_;
  ByteVector before_;
  GPSRecordFileInfo info_;
  GPSMeasDataImplC measurement_;
  int openFiles_ = Faults::OpenFiles();
  std::ptrdiff_t descriptors_ = Descriptors();
};

const std::vector<std::string> kReadCalls = {"fopen", "fseeko", "fread", "fread", "fclose"};
const std::vector<std::string> kWriteCalls = {"fopen",  "fseeko", "fread", "fread",
                                              "fseeko", "fwrite", "fclose"};

TEST_F(RecordFaults, TheCallsOfAReadAndOfAWrite) {
  Faults::FailNoFileCall();
  EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement_, &info_), 0U);
  EXPECT_EQ(Faults::FileCalls(), kReadCalls);
  Faults::FailNoFileCall();
  EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_), 0U);
  EXPECT_EQ(Faults::FileCalls(), kWriteCalls);
}

TEST_F(RecordFaults, EveryCallOfAReadFails) {
  // A short read means that the file ends there; the result of closing is ignored.
  const std::uint32_t results[] = {1, 2, 0, 0, 0};
  for (const Extent extent : {Extent::kNothing, Extent::kHalf}) {
    for (std::size_t call = 0; call < kReadCalls.size(); ++call) {
      SCOPED_TRACE(testing::Message() << "call " << call << ", " << kReadCalls[call]);
      GPSMeasDataImplC measurement = measurement_;
      GPSRecordFileInfo info = info_;
      EXPECT_EQ(RunWithFault(call, extent,
                             [&] { return GPSRecordFileC::ReadGPSMeasData(&measurement, &info); }),
                results[call]);
      auto expected = StoredIn(measurement_);
      GPSRecordFileInfo expectedInfo = info_;
      if (kReadCalls[call] == "fclose") RecordModel::Read(before_, expected, expectedInfo);
      EXPECT_EQ(StoredIn(measurement), expected);
      TestSupport::ExpectSameInfo(info, expectedInfo);
      EXPECT_EQ(file_.Bytes(), before_);
      // The next one works.
      EXPECT_EQ(GPSRecordFileC::ReadGPSMeasData(&measurement, &info), 0U);
      EXPECT_EQ(info.number, RecordModel::I32(before_, 17 + 12 + 34));
    }
  }
}

TEST_F(RecordFaults, EveryCallOfAWriteFails) {
  // The second read determines what is patched, not whether; the write itself is not checked.
  const std::uint32_t results[] = {1, 2, 1, 0, 1, 0, 0};
  const auto stored = StoredIn(measurement_);
  ByteVector patched = before_;
  ASSERT_EQ(RecordModel::Write(patched, &stored, info_), 0U);
  ASSERT_NE(patched, before_);
  for (const Extent extent : {Extent::kNothing, Extent::kHalf}) {
    for (std::size_t call = 0; call < kWriteCalls.size(); ++call) {
      SCOPED_TRACE(testing::Message() << "call " << call << ", " << kWriteCalls[call]
                                      << (extent == Extent::kHalf ? ", half done" : ""));
      file_.Write(before_);
      const GPSRecordFileInfo info = info_;
      EXPECT_EQ(
          RunWithFault(call, extent,
                       [&] { return GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_); }),
          results[call]);
      TestSupport::ExpectSameInfo(info_, info);
      EXPECT_EQ(StoredIn(measurement_), stored);

      ByteVector expected = before_;
      if (call == 3) {
        // As if the file ended where the read did: the frame is written whole, with zeros for
        // missing bytes.
        ByteVector cut = before_;
        cut.resize(5 + (extent == Extent::kHalf ? (before_.size() - 5) / 2 : 0));
        ASSERT_EQ(RecordModel::Write(cut, &stored, info_), 0U);
        expected = cut;
      } else if (call == 5 && extent == Extent::kHalf) {
        const std::size_t half = patched.size() / 2;
        for (std::size_t i = 0; i < half; ++i) expected[i] = patched[i];
      } else if (call == 6) {
        expected = patched;
      }
      EXPECT_EQ(file_.Bytes(), expected);
      // The next one works.
      file_.Write(before_);
      EXPECT_EQ(GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_), 0U);
      EXPECT_EQ(file_.Bytes(), patched);
    }
  }
}

TEST_F(RecordFaults, ABadFrameClosesTheFileWhateverElseFails) {
  ByteVector bad = before_;
  bad.back() ^= 1;
  file_.Write(bad);
  EXPECT_EQ(RunWithFault(4, Extent::kNothing,
                         [&] { return GPSRecordFileC::ReadGPSMeasData(&measurement_, &info_); }),
            2U);
  EXPECT_EQ(RunWithFault(4, Extent::kNothing,
                         [&] { return GPSRecordFileC::WriteGPSMeasData(&measurement_, &info_); }),
            2U);
  EXPECT_EQ(file_.Bytes(), bad);
}

struct Walked {
  bool isOpen = false;
  bool hasFailed = false;
  std::uint64_t fileSize = 0;
  std::vector<SDI::GPSRecordEntry> entries;
};

Walked Walk(const TestSupport::TempFileC& file) {
  SDI::GPSRecordIndexC index(file.Path().c_str());
  Walked walked;
  walked.isOpen = index.IsOpen();
  walked.fileSize = index.GetFileSize();
  for (SDI::GPSRecordEntry entry; index.Next(entry);) walked.entries.push_back(entry);
  walked.hasFailed = index.HasFailed();
  EXPECT_TRUE(index.GetBytes().empty());
  return walked;
}

TEST_F(RecordFaults, EveryCallOfAWalkFails) {
  Faults::FailNoFileCall();
  const Walked whole = Walk(file_);
  ASSERT_EQ(whole.entries, RecordModel::Walk(before_));
  const std::vector<std::string> calls = Faults::FileCalls();
  ASSERT_EQ(calls,
            (std::vector<std::string>{"fopen", "fseeko", "ftello", "fseeko", "fread", "fclose"}));
  for (std::size_t call = 0; call < calls.size(); ++call) {
    SCOPED_TRACE(calls[call]);
    Faults::FailFileCall(call);
    const Walked walked = Walk(file_);
    EXPECT_GT(Faults::FileCalls().size(), call);
    Faults::FailNoFileCall();
    EXPECT_EQ(Faults::OpenFiles(), openFiles_);
    EXPECT_EQ(walked.isOpen, calls[call] != "fopen");
    // To the end, and back.
    const bool isSeekBack = call == 3;
    EXPECT_EQ(walked.hasFailed, isSeekBack || calls[call] == "fread");
    // The file is walked even if its size is unknown.
    const bool isUnmeasured = !isSeekBack && (calls[call] == "fseeko" || calls[call] == "ftello");
    EXPECT_EQ(walked.fileSize, walked.isOpen && !isUnmeasured ? before_.size() : 0U);
    const bool isWalked = isUnmeasured || calls[call] == "fclose";
    EXPECT_EQ(walked.entries, isWalked ? whole.entries : std::vector<SDI::GPSRecordEntry>());
  }
}

TEST_F(RecordFaults, AWalkWhoseReadingFailsHalfwayListsWhatItRead) {
  ByteVector bytes;
  for (int i = 0; i < 3; ++i) TestSupport::Append(bytes, before_);
  file_.Write(bytes);
  Faults::FailFileCall(4, Extent::kHalf);  // half of the window: more than the file
  const Walked walked = Walk(file_);
  Faults::FailNoFileCall();
  EXPECT_TRUE(walked.hasFailed);
  EXPECT_EQ(walked.entries, RecordModel::Walk(bytes));
}

TEST_F(RecordFaults, EveryReadOfALongWalkFails) {
  ByteVector bytes;
  while (bytes.size() < 1'000'000) TestSupport::Append(bytes, before_);
  file_.Write(bytes);
  Faults::FailNoFileCall();
  ASSERT_EQ(Walk(file_).entries, RecordModel::Walk(bytes));
  const std::vector<std::string> calls = Faults::FileCalls();
  ASSERT_GE(std::count(calls.begin(), calls.end(), "fread"), 4);
  for (const Extent extent : {Extent::kNothing, Extent::kHalf}) {
    for (std::size_t call = 0; call < calls.size(); ++call) {
      if (calls[call] != "fread") continue;
      SCOPED_TRACE(testing::Message() << "call " << call);
      Faults::FailFileCall(call, extent);
      const Walked walked = Walk(file_);
      Faults::FailNoFileCall();
      EXPECT_TRUE(walked.hasFailed);
      EXPECT_EQ(Faults::OpenFiles(), openFiles_);
      // The bytes that were read are walked completely, once.
      ByteVector read = bytes;
      read.resize(
          walked.entries.empty() ? 0 : walked.entries.back().offset + walked.entries.back().size);
      EXPECT_EQ(walked.entries, RecordModel::Walk(read));
      EXPECT_EQ(read.empty(), call == 4 && extent == Extent::kNothing);
    }
  }
}

TEST_F(RecordFaults, AWalkWithoutMemoryLeavesNoFileOpen) {
  EXPECT_EQ(Faults::FailuresBeforeSuccess([&] { SDI::GPSRecordIndexC(file_.Path().c_str()); },
                                          [&] { EXPECT_EQ(Faults::OpenFiles(), openFiles_); }),
            3U);
}

struct Read {
  SDI::GPSReaderState state = SDI::GPSReaderState::kOpen;
  std::uint64_t size = 0;
  std::vector<SDI::GPSRecordEntry> entries;
};

Read ReadEntries(const TestSupport::TempFileC& file, SDI::GPSRecordStretch stretch = {}) {
  SDI::GPSRecordReaderC reader(file.Path().c_str(), stretch);
  Read read;
  read.size = reader.GetSize();
  for (SDI::GPSRecordEntry entry; reader.NextEntry(entry);) read.entries.push_back(entry);
  read.state = reader.GetState();
  return read;
}

TEST_F(RecordFaults, EveryCallOfAReaderFails) {
  using enum SDI::GPSReaderState;
  Faults::FailNoFileCall();
  const Read whole = ReadEntries(file_);
  ASSERT_EQ(whole.entries, RecordModel::Walk(before_));
  ASSERT_EQ(whole.state, kOpen);
  const std::vector<std::string> calls = Faults::FileCalls();
  ASSERT_EQ(calls,
            (std::vector<std::string>{"fopen", "fseeko", "ftello", "fseeko", "fread", "fclose"}));
  const SDI::GPSReaderState states[] = {kCannotOpen,    kOpen,          kOpen,
                                        kReadingFailed, kReadingFailed, kOpen};
  for (std::size_t call = 0; call < calls.size(); ++call) {
    SCOPED_TRACE(calls[call]);
    Faults::FailFileCall(call);
    const Read read = ReadEntries(file_);
    EXPECT_GT(Faults::FileCalls().size(), call);
    Faults::FailNoFileCall();
    EXPECT_EQ(Faults::OpenFiles(), openFiles_);
    EXPECT_EQ(read.state, states[call]);
    // The file is read even if its size is unknown.
    EXPECT_EQ(read.size, call == 0 || call == 1 || call == 2 ? 0U : before_.size());
    EXPECT_EQ(read.entries,
              read.state == kOpen ? whole.entries : std::vector<SDI::GPSRecordEntry>());
  }
}

TEST_F(RecordFaults, EveryReadOfAStretchFails) {
  ByteVector bytes;
  while (bytes.size() < 1'500'000) TestSupport::Append(bytes, before_);
  file_.Write(bytes);
  const SDI::GPSRecordStretch stretch{400'000, 1'200'000};
  Faults::FailNoFileCall();
  const Read whole = ReadEntries(file_, stretch);
  ASSERT_EQ(whole.state, SDI::GPSReaderState::kOpen);
  const std::vector<std::string> calls = Faults::FileCalls();
  ASSERT_GE(std::count(calls.begin(), calls.end(), "fread"), 3);
  for (const Extent extent : {Extent::kNothing, Extent::kHalf}) {
    for (std::size_t call = 3; call + 1 < calls.size(); ++call) {
      SCOPED_TRACE(testing::Message() << "call " << call << ", " << calls[call]);
      Faults::FailFileCall(call, extent);
      const Read read = ReadEntries(file_, stretch);
      Faults::FailNoFileCall();
      EXPECT_EQ(read.state, SDI::GPSReaderState::kReadingFailed);
      // The records that were read are those of the stretch, up to where reading failed.
      std::size_t same = 0;
      for (const auto& entry : read.entries) {
        if (entry.isGap) continue;  // the rest of a record
        EXPECT_EQ(entry, whole.entries.at(same++));
      }
      EXPECT_LE(same, whole.entries.size());
    }
  }
}

TEST_F(RecordFaults, AReaderWithoutMemoryLeavesNoFileOpen) {
  const auto afterFailure = [&] { EXPECT_EQ(Faults::OpenFiles(), openFiles_); };
  EXPECT_GT(Faults::FailuresBeforeSuccess([&] { SDI::GPSRecordReaderC(file_.Path().c_str()); },
                                          afterFailure),
            3U);
  EXPECT_GT(Faults::FailuresBeforeSuccess([&] { SDI::GPSRecordReaderC{std::span(before_)}; },
                                          afterFailure),
            2U);
}

// The figures of the comments, which hold for 64-bit platforms and the standard library of g++.
TEST_F(RecordFaults, ReadersTakeAsMuchMemoryAsTheySay) {
  const std::string name = file_.Path().string();
  const std::span<const std::uint8_t> memory(before_);
  const auto bytesOf = [](auto make) {
    const std::size_t before = Faults::AllocatedBytes();
    make();
    return Faults::AllocatedBytes() - before;
  };
  const SDI::GPSRecordStretch stretch{1, 100};
  const struct {
    std::size_t bytes, least, most;
  } figures[] = {
      {bytesOf([&] { SDI::GPSRecordReaderC(name.c_str()); }), 265'000, 275'000},
      {bytesOf([&] { SDI::GPSRecordReaderC{memory}; }), 7'000, 9'500},
      {bytesOf([&] { SDI::GPSRecordReaderC(name.c_str(), stretch); }), 280'000, 292'000},
      {bytesOf([&] { SDI::GPSRecordReaderC(memory, stretch); }), 22'000, 26'500},
      {bytesOf([&] { SDI::GPSRecordIndexC(name.c_str()); }), 265'000, 275'000},
      {bytesOf([&] { SDI::GPSRecordIndexC{memory}; }), 4'000, 5'500},
  };
  for (const auto& [bytes, least, most] : figures) {
    EXPECT_GE(bytes, least);
    EXPECT_LE(bytes, most);
  }
}

TEST_F(RecordFaults, ReadingRecordsTakesNoMemory) {
  ByteVector bytes;
  while (bytes.size() < 700'000) {
    TestSupport::Append(bytes, TestSupport::WellFormedFrame(0x33FF, 0x3FFF, random_));
    TestSupport::Append(bytes, {0x9C, 0xAE, 0xFF, 0xFF, 113});  // makes the walk add bytes
  }
  file_.Write(bytes);
  for (const SDI::GPSRecordStretch& stretch :
       {SDI::GPSRecordStretch{}, SDI::GPSRecordStretch{300'000, 650'000}}) {
    SDI::GPSRecordReaderC reader(file_.Path().c_str(), stretch);
    std::size_t damaged = 0;
    reader.SetReportDamaged([&damaged](const SDI::GPSDamagedHeader&) { ++damaged; });
    const std::size_t taken = Faults::Allocations();
    std::size_t count = 0;
    while (reader.Next()) ++count;
    EXPECT_EQ(Faults::Allocations(), taken);
    EXPECT_GT(count, 600U);
  }
  GPSMeasDataImplC measurement;
  GPSRecordFileInfo info;
  const std::size_t taken = Faults::Allocations();
  EXPECT_TRUE(SDI::GPSRecordReaderC::Decode(before_, measurement, info).IsDone());
  EXPECT_EQ(Faults::Allocations(), taken);
}

TEST_F(RecordFaults, EveryCallOfAnAppendFails) {
  using enum SDI::GPSAppendOutcome;
  const ByteVector records = TestSupport::FrameOf(200, 1);
  ByteVector after = before_;
  TestSupport::Append(after, records);
  const auto append = [&] { return SDI::GPSRecordWriterC::Append(file_.Path().c_str(), records); };
  Faults::FailNoFileCall();
  ASSERT_EQ(append(), kDone);
  const std::vector<std::string> calls = Faults::FileCalls();
  // The first call creates a file.
  ASSERT_EQ(calls,
            (std::vector<std::string>{"fopen", "fopen", "fseeko", "ftello", "fwrite", "fclose"}));
  ASSERT_EQ(file_.Bytes(), after);
  const SDI::GPSAppendOutcome outcomes[] = {kCannotOpen, kCannotOpen,    kCannotOpen,
                                            kCannotOpen, kWritingFailed, kLeftOver};
  for (const Extent extent : {Extent::kNothing, Extent::kHalf}) {
    for (std::size_t call = 0; call < calls.size(); ++call) {
      SCOPED_TRACE(testing::Message() << "call " << call << ", " << calls[call]
                                      << (extent == Extent::kHalf ? ", half done" : ""));
      file_.Write(before_);
      Faults::FailFileCall(call, extent);
      EXPECT_EQ(append(), outcomes[call]);
      EXPECT_GT(Faults::FileCalls().size(), call);
      Faults::FailNoFileCall();
      EXPECT_EQ(Faults::OpenFiles(), openFiles_);
      EXPECT_EQ(Descriptors(), descriptors_);
      // Unchanged after every failure, except that of the close: all was written before.
      EXPECT_EQ(file_.Bytes(), calls[call] == "fclose" ? after : before_);
      file_.Write(before_);
      EXPECT_EQ(append(), kDone);  // the next one works
      EXPECT_EQ(file_.Bytes(), after);
    }
  }
}

// A file that an append has created is removed, even if it cannot be truncated.
TEST_F(RecordFaults, AnAppendThatFailsLeavesNoNewFile) {
  using enum SDI::GPSAppendOutcome;
  const TestSupport::TempFolderC folder;
  const std::string name = (folder.Path() / "new.rec").string();
  const ByteVector records = TestSupport::FrameOf(200, 1);
  const auto append = [&] { return SDI::GPSRecordWriterC::Append(name.c_str(), records); };
  Faults::FailNoFileCall();
  ASSERT_EQ(append(), kDone);
  const std::vector<std::string> calls = Faults::FileCalls();
  ASSERT_EQ(calls, (std::vector<std::string>{"fopen", "fseeko", "ftello", "fwrite", "fclose"}));
  std::filesystem::remove(name);
  const SDI::GPSAppendOutcome outcomes[] = {kCannotOpen, kCannotOpen, kCannotOpen, kWritingFailed,
                                            kWritingFailed};
  for (const Extent extent : {Extent::kNothing, Extent::kHalf}) {
    for (std::size_t call = 0; call < calls.size(); ++call) {
      // This failure alone, and with the next call failing: `ftruncate` after `fwrite`.
      for (const std::size_t another : {Faults::kNever, call + 1}) {
        SCOPED_TRACE(testing::Message() << "call " << call << ", " << calls[call]
                                        << (extent == Extent::kHalf ? ", half done" : ""));
        Faults::FailFileCall(call, extent, another);
        EXPECT_EQ(append(), outcomes[call]);
        EXPECT_GT(Faults::FileCalls().size(), call);
        Faults::FailNoFileCall();
        EXPECT_EQ(Faults::OpenFiles(), openFiles_);
        EXPECT_EQ(Descriptors(), descriptors_);
        EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
      }
    }
  }
  EXPECT_EQ(append(), kDone);
  EXPECT_EQ(TestSupport::ReadBytes(name), records);
}

// The only case in which bytes remain. Even then the previous contents are unchanged.
TEST_F(RecordFaults, AnAppendThatCannotBeUndoneIsReported) {
  const ByteVector records = TestSupport::FrameOf(200, 1);
  Faults::FailFileCall(4, Extent::kHalf, 5);
  EXPECT_EQ(SDI::GPSRecordWriterC::Append(file_.Path().c_str(), records),
            SDI::GPSAppendOutcome::kLeftOver);
  EXPECT_EQ(Faults::FileCalls(), (std::vector<std::string>{"fopen", "fopen", "fseeko", "ftello",
                                                           "fwrite", "ftruncate", "fclose"}));
  Faults::FailNoFileCall();
  EXPECT_EQ(Faults::OpenFiles(), openFiles_);
  ByteVector expected = before_;
  expected.insert(expected.end(), records.begin(), records.begin() + 103);
  EXPECT_EQ(file_.Bytes(), expected);
}

}  // namespace
