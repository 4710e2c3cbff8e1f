// Parts of record files and several files as new files: record cut and record join.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/sanitizer.h"
#include "tests/tools/program.h"

namespace {

using nlohmann::json;

Outcome Record(std::vector<std::string> arguments, const std::string& folder = {}) {
  arguments.insert(arguments.begin(), "record");
  return RunProgram(arguments, {.folder = folder});
}

// A measurement at a time of week in milliseconds, and a record of another type.
Bytes At(std::uint32_t time, std::uint16_t week = 2091) {
  Bytes body = MakeBody(0, {});
  body[0] = static_cast<std::uint8_t>(week & 0xFF);
  body[1] = static_cast<std::uint8_t>(week >> 8);
  for (std::size_t i = 0; i < 4; ++i) body[2 + i] = static_cast<std::uint8_t>(time >> (8 * i));
  return MakeFrame(113, body);
}
Bytes Other(std::uint8_t value) { return MakeFrame(17, {value}); }

Bytes Cut(const Bytes& bytes, std::vector<std::string> options) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", bytes);
  options.insert(options.begin(), {"cut", "a.rec", "-o", "b.rec"});
  EXPECT_EQ(Record(options, folder.Path().string()).exitCode, 0);
  return ReadBytes(folder / "b.rec");
}

TEST(RecordCut, KeepsTheSelectedMeasurementsAndTheRecordsAfterThem) {
  const Bytes file = Other(1) + Other(2) + At(1000) + Other(3) + At(2000) + Other(4) + Other(5) +
                     At(3000) + Other(6);
  EXPECT_EQ(Cut(file, {}), file);
  EXPECT_EQ(Cut(file, {"--where", "time_of_week = 2000"}),
            Other(1) + Other(2) + At(2000) + Other(4) + Other(5));
  EXPECT_EQ(Cut(file, {"--from", "2020-02-02T00:00:02"}),
            Other(1) + Other(2) + At(2000) + Other(4) + Other(5) + At(3000) + Other(6));
  EXPECT_EQ(Cut(file, {"--to", "2020-02-02T00:00:02"}), Other(1) + Other(2) + At(1000) + Other(3));
  EXPECT_EQ(Cut(file, {"--every", "2"}),
            Other(1) + Other(2) + At(1000) + Other(3) + At(3000) + Other(6));
}

TEST(RecordCut, KeepsTheRecordsThatBeginBetweenTwoOffsets) {
  const Bytes file = At(1000) + Other(3) + At(2000) + At(3000) + Other(6);
  const std::size_t second = At(1000).size() + Other(3).size();
  const std::string begin = std::to_string(second);
  EXPECT_EQ(Cut(file, {"--from-offset", begin}), At(2000) + At(3000) + Other(6));
  EXPECT_EQ(Cut(file, {"--to-offset", begin}), At(1000) + Other(3));
  EXPECT_EQ(Cut(file, {"--from-offset", "1", "--to-offset", std::to_string(second + 1)}),
            Other(3) + At(2000));
  EXPECT_EQ(Cut(file, {"--from-offset", begin, "--where", "time_of_week = 3000"}),
            At(3000) + Other(6));
}

TEST(RecordCut, CutsAPipeAtTheSameOffsets) {
  const TempFolderC folder;
  const std::string options = " --from-offset 960 --to-offset 2087 -o - ";
  const std::string file = DataPath("valley_drive.rec");
  const Outcome whole =
      Record({"cut", file, "--from-offset", "960", "--to-offset", "2087", "-o", "-"});
  EXPECT_EQ(whole.exitCode, 0);
  EXPECT_EQ(whole.out.size(), 467U + 340U + 320U);  // three records without a gap
#if !defined(_WIN32)
  EXPECT_TRUE(
      RunShell("cat '" + file + "' | surveydata record cut -" + options, folder.Path().string())
          .out == whole.out);
#endif
}

TEST(RecordCut, LeavesOutAndReportsGapsAndBadFrames) {
  const TempFolderC folder;
  Bytes damaged = At(1500);
  damaged.back() ^= 1;
  WriteBytes(folder / "a.rec", At(1000) + Bytes(5, 0) + At(2000) + damaged);
  const Outcome outcome = Record({"cut", "a.rec", "-o", "b.rec"}, folder.Path().string());
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.err, "surveydata: left out: 2 gaps with " + std::to_string(5 + damaged.size()) +
                             " bytes\n" + BadFramesTold(1));
  EXPECT_EQ(ReadBytes(folder / "b.rec"), At(1000) + At(2000));
}

TEST(RecordCut, RefusesWhatItCannotCut) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", At(1000));
  const std::string work = folder.Path().string();
  EXPECT_EQ(Record({"cut", "a.rec"}, work).exitCode, 2);
  EXPECT_EQ(Record({"cut", "a.rec", "-o", "a.rec"}, work).exitCode, 2);
  EXPECT_EQ(Record({"cut", ".", "-o", "b.rec"}, work).exitCode, 2);
  EXPECT_EQ(Record({"cut", "a.rec", "a.rec", "-o", "b.rec"}, work).exitCode, 2);
  EXPECT_EQ(Record({"cut", "a.rec", "--from-offset", "5", "--to-offset", "5", "-o", "b.rec"}, work)
                .exitCode,
            2);
  EXPECT_EQ(Record({"cut", "none.rec", "-o", "b.rec"}, work).exitCode, 3);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "b.rec"));
  EXPECT_EQ(ReadBytes(folder / "a.rec"), At(1000));
  // No file has a record at these offsets, however large they are.
  for (const char* const offset : {"1000000", "18446744073709551615", "99999999999999999999"}) {
    EXPECT_EQ(Record({"cut", "a.rec", "--from-offset", offset, "-o", "b.rec"}, work).exitCode, 1)
        << offset;
  }
  // No measurement is left.
  EXPECT_EQ(Record({"cut", "a.rec", "--name", "nobody", "-o", "b.rec"}, work).exitCode, 1);
}

Bytes Join(const std::vector<Bytes>& files, const std::vector<std::string>& options = {}) {
  const TempFolderC folder;
  std::vector<std::string> arguments = {"join"};
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string name = std::to_string(i) + ".rec";
    WriteBytes(folder / name, files[i]);
    arguments.push_back(name);
  }
  arguments.insert(arguments.end(), {"-o", "out.rec"});
  arguments.insert(arguments.end(), options.begin(), options.end());
  EXPECT_EQ(Record(arguments, folder.Path().string()).exitCode, 0);
  return ReadBytes(folder / "out.rec");
}

TEST(RecordJoin, WritesTheMeasurementsInTheOrderOfTheirTimes) {
  EXPECT_EQ(Join({At(1000) + At(4000), At(2000) + At(3000) + At(5000)}),
            At(1000) + At(2000) + At(3000) + At(4000) + At(5000));
  EXPECT_EQ(Join({At(1000, 2092), At(2000, 2091)}), At(2000, 2091) + At(1000, 2092));
  EXPECT_EQ(Join({At(1000) + At(4000), At(2000) + At(3000)}, {"--to", "2020-02-02T00:00:03"}),
            At(1000) + At(2000));
}

TEST(RecordJoin, KeepsOtherRecordsWithTheMeasurementBeforeThem) {
  EXPECT_EQ(Join({Other(1) + At(1000) + Other(2) + At(3000), Other(3) + At(2000) + Other(4)}),
            Other(1) + Other(3) + At(1000) + Other(2) + At(2000) + Other(4) + At(3000));
}

// Of equal times, that of the first file comes first; the order within a file is kept.
TEST(RecordJoin, KeepsTheOrderOfEqualTimesAndOfTimesThatGoBackwards) {
  const auto named = [](std::uint32_t time, std::uint8_t mark) { return At(time) + Other(mark); };
  EXPECT_EQ(Join({named(1000, 1) + named(1000, 2), named(1000, 3)}),
            named(1000, 1) + named(1000, 2) + named(1000, 3));
  EXPECT_EQ(Join({At(5000) + At(1000), At(3000) + At(6000)}),
            At(3000) + At(5000) + At(1000) + At(6000));
  EXPECT_EQ(Join({At(3000) + At(0xFFFFFFFF) + At(7000), At(4000)}),
            At(3000) + At(0xFFFFFFFF) + At(4000) + At(7000))
      << "a measurement without a time stays with the previous one";
}

TEST(RecordJoin, JoinsTheSampleFiles) {
  const TempFolderC folder;
  for (const char* const name : kSamples) {
    std::filesystem::copy(DataPath(std::string(name) + ".rec"), folder.Path());
  }
  const Outcome outcome = Record({"join", ".", "-o", "-"}, folder.Path().string());
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(outcome.err.find("valley_drive.rec: left out: 70 gaps with 1752 bytes"),
            std::string::npos)
      << outcome.err;
  // The records before the first measurement of each file, then one file after the other: 2005 is
  // before 2020.
  std::string headings;
  std::string rest;
  for (const char* const name : {"desert_highway", "valley_drive"}) {
    const std::string file = ReadText(DataPath(std::string(name) + ".rec"));
    const Outcome list = Record({"list", DataPath(std::string(name) + ".rec"), "--json"});
    bool isBefore = true;
    for (const json& line : JsonLines(list.out)) {
      const bool isMeasurement = line["kind"] == "measurement";
      if (!isMeasurement && line["kind"] != "other") continue;
      isBefore = isBefore && !isMeasurement;
      (isBefore ? headings : rest) += file.substr(line["offset"], line["size"]);
    }
  }
  EXPECT_TRUE(outcome.out == headings + rest);
}

TEST(RecordJoin, RefusesFilesThatCannotBeReadBeforeItWrites) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", At(1000));
  const Outcome outcome =
      Record({"join", "a.rec", "none.rec", "-o", "b.rec"}, folder.Path().string());
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "b.rec"));
  EXPECT_EQ(Record({"join", "a.rec", "-o", "a.rec"}, folder.Path().string()).exitCode, 2);
}

#if !defined(_WIN32)
TEST(RecordJoin, OpensAllFilesBeforeItWrites) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer opens files itself when it checks types";
  const TempFolderC folder;
  std::vector<std::string> arguments = {"record", "join", "-o", "joined"};
  for (char name = 'a'; name < 'z'; ++name) {
    arguments.push_back(name + std::string(".rec"));
    WriteBytes(folder / arguments.back(), At(1000));
  }
  const Outcome outcome =
      RunProgram(arguments, {.folder = folder.Path().string(), .shell = "ulimit -n 20;"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("Too many open files"), std::string::npos) << outcome.err;
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "joined"));
}
#endif

}  // namespace
