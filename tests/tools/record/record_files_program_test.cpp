// Several files, folders and threads: the output does not depend on the number of threads.

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <unistd.h>
#endif

#include "tests/tools/program.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

Outcome Record(const std::vector<std::string>& arguments, const std::string& folder = {}) {
  std::vector<std::string> all = {"record"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return RunProgram(all, {.folder = folder});
}

Bytes Sample() { return ReadBytes(DataPath("valley_drive.rec")); }

// The header of a measurement with a wrong checksum.
Bytes DamagedFrame() {
  Bytes frame = MakeFrame(113, MakeBody(0, {}));
  frame.back() ^= 1;
  return frame;
}

// Records, gaps and damaged headers on and between the ends of stretches, which are at whole
// mebibytes.
Bytes FileOfStretches() {
  constexpr std::size_t kStretch = std::size_t{4} << 20;
  const Bytes sample = Sample();
  Bytes bytes = sample;
  const auto put = [&bytes](std::size_t at, const Bytes& what) {
    bytes.resize(std::max(bytes.size(), at));
    bytes.insert(bytes.end(), what.begin(), what.end());
  };
  put(kStretch - 50'000, sample);  // across an end
  put(3 * kStretch, sample);       // a gap over a whole stretch, then a record at its end
  Bytes damaged;
  for (int i = 0; i < 12'000; ++i) damaged = std::move(damaged) + DamagedFrame();
  put(4 * kStretch - 100'000, damaged);  // more than are kept, on both sides of an end
  put(5 * kStretch - 20, MakeFrame(113, Bytes(12, 0)) + DamagedFrame() + sample);
  put(6 * kStretch - 19 - sample.size(), sample + DamagedFrame());  // a damaged header at an end
  put(7 * kStretch + 1000, DamagedFrame());
  bytes.resize(bytes.size() + 3000);  // a gap at the end
  return bytes;
}

TEST(RecordJobs, WriteTheSameWhateverTheirNumber) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", FileOfStretches());
  WriteBytes(folder / "b.rec", Sample());
  WriteBytes(folder / "c.rec", {});
  const std::vector<std::vector<std::string>> commands = {
      {"list", "a.rec"},
      {"list", "a.rec", "--json"},
      {"list", "a.rec", "b.rec", "c.rec", "--json"},
      {"list", "b.rec", "a.rec", "none.rec", "c.rec"},
      {"list", "a.rec", "--where", "used >= 23"},
      {"export", "a.rec"},
      {"export", "a.rec", "b.rec", "none.rec", "c.rec", "--csv", "--columns",
       "offset,name,time_utc"},
      {"export", ".", "--every", "7"},
      {"export", "a.rec", "--csv", "--columns", "offset", "--where", "present(name)"},
      {"plot", "b.rec", "a.rec", "-o", "-"},
  };
  for (std::vector<std::string> command : commands) {
    SCOPED_TRACE(command[0] + " " + command.back());
    command.insert(command.end(), {"--jobs", "1"});
    const Outcome expected = Record(command, folder.Path().string());
    EXPECT_GT(expected.out.size(), 1000U);
    for (const char* const jobs : {"2", "3", "16"}) {
      command.back() = jobs;
      const Outcome outcome = Record(command, folder.Path().string());
      EXPECT_EQ(outcome.exitCode, expected.exitCode);
      EXPECT_EQ(outcome.err, expected.err);
      EXPECT_TRUE(outcome.out == expected.out) << jobs;
    }
  }
}

// The test above checks that the lists of stretches are joined; this one, that they are correct.
TEST(RecordJobs, ListTheGapsOfAFileAsAWhole) {
  const TempFolderC folder;
  const Bytes bytes = FileOfStretches();
  WriteBytes(folder / "a.rec", bytes);
  std::size_t end = 0;
  std::size_t gaps = 0;
  bool isAfterGap = false;
  for (const json& line :
       JsonLines(Record({"list", folder / "a.rec", "--json", "--jobs", "2"}).out)) {
    if (line["kind"] == "badFrame" &&
        line["reason"] != "right checksum, but its blocks do not fit") {
      continue;  // inside a gap
    }
    ASSERT_EQ(line["offset"], end) << "an offset is repeated or skipped";
    end += line["size"].get<std::size_t>();
    const bool isGap = line["kind"] == "gap";
    EXPECT_FALSE(isGap && isAfterGap) << "a gap in two parts at " << end;
    isAfterGap = isGap;
    gaps += isGap ? 1 : 0;
  }
  EXPECT_EQ(end, bytes.size());
  EXPECT_GT(gaps, 100U);
}

TEST(RecordFiles, BeginLinesAndRowsWithTheNameOfTheFile) {
  const TempFolderC folder;
  for (const char* const name : {"a.rec", "b.rec"}) WriteBytes(folder / name, Sample());
  const std::string work = folder.Path().string();
  const auto withFile = [](const std::string& text, const std::string& file, std::size_t heading) {
    std::string out;
    const auto lines = Lines(text);
    for (std::size_t i = heading; i < lines.size(); ++i) out += file + lines[i] + "\n";
    return out;
  };
  const std::vector<std::string> columns = {"--csv", "--columns", "offset,name"};
  const auto exported = [&](std::vector<std::string> files, bool isCsv) {
    files.insert(files.begin(), "export");
    if (isCsv) files.insert(files.end(), columns.begin(), columns.end());
    const Outcome outcome = Record(files, work);
    EXPECT_EQ(outcome.exitCode, 0);
    return outcome.out;
  };
  const std::string csv = exported({"a.rec"}, true);
  EXPECT_EQ(exported({"b.rec", "a.rec"}, true),
            "file,offset,name\r\n" + withFile(csv, "b.rec,", 1) + withFile(csv, "a.rec,", 1));
  const std::string lines = exported({"a.rec"}, false);
  const auto inLines = [&](const std::string& file) {
    std::string out;
    for (const std::string& line : Lines(lines)) {
      out += R"({"file":")" + file + R"(",)" + line.substr(1) + "\n";
    }
    return out;
  };
  EXPECT_TRUE(exported({"a.rec", "b.rec"}, false) == inLines("a.rec") + inLines("b.rec"));

  const std::string list = Record({"list", "a.rec"}, work).out;
  EXPECT_TRUE(Record({"list", "a.rec", "b.rec"}, work).out ==
              "a.rec\n" + list + "\nb.rec\n" + list);
  for (const json& line : JsonLines(Record({"list", "a.rec", "b.rec", "--json"}, work).out)) {
    EXPECT_TRUE(line["file"] == "a.rec" || line["file"] == "b.rec");
  }
}

TEST(RecordFiles, ReadsTheRecordFilesOfFolders) {
  const TempFolderC folder;
  fs::create_directories(folder.Path() / "day" / "deep");
  fs::create_directories(folder.Path() / "other.rec");
  for (const char* const name : {"day/b.rec", "day/a.REC", "day/notes.txt", "day/deep/c.rec"}) {
    WriteBytes(folder / name, Sample());
  }
  const auto filesOf = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"list", "--json"});
    std::vector<std::string> names;
    for (const json& line : JsonLines(Record(arguments, folder.Path().string()).out)) {
      std::string name = line["file"];
      std::ranges::replace(name, '\\', '/');
      if (names.empty() || names.back() != name) names.push_back(name);
    }
    return names;
  };
  using Names = std::vector<std::string>;
  EXPECT_EQ(filesOf({"day"}), (Names{"day/a.REC", "day/b.rec"}));
  EXPECT_EQ(filesOf({"day", "--recursive"}), (Names{"day/a.REC", "day/b.rec", "day/deep/c.rec"}));
  EXPECT_EQ(filesOf({"-r", "day/deep", "day/notes.txt"}),
            (Names{"day/deep/c.rec", "day/notes.txt"}));

  const Outcome empty = Record({"list", "other.rec"}, folder.Path().string());
  EXPECT_EQ(empty.exitCode, 3);
  EXPECT_EQ(empty.err,
            "surveydata: cannot read other.rec: it is a folder without files *.rec; --recursive "
            "also reads its subfolders\n");
}

TEST(RecordFiles, ReadsTheOthersWhenOneCannotBeRead) {
  const TempFolderC folder;
  for (const char* const name : {"a.rec", "b.rec"}) WriteBytes(folder / name, Sample());
  const std::string work = folder.Path().string();
  const Outcome outcome =
      Record({"export", "a.rec", "none.rec", "b.rec", "--csv", "--columns", "offset"}, work);
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_TRUE(outcome.err.starts_with("surveydata: cannot read none.rec: ")) << outcome.err;
  EXPECT_EQ(Lines(outcome.err).size(), 1U);
  EXPECT_EQ(outcome.out,
            Record({"export", "a.rec", "b.rec", "--csv", "--columns", "offset"}, work).out);

  EXPECT_EQ(Record({"export", "none.rec", "-o", "out.jsonl"}, work).exitCode, 3);
  EXPECT_FALSE(fs::exists(folder.Path() / "out.jsonl"));
}

#if !defined(_WIN32)
TEST(RecordFiles, ReadTheOthersWhenAFolderCannotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read every folder";
  const TempFolderC folder;
  fs::create_directories(folder.Path() / "day" / "closed");
  WriteBytes(folder / "day/a.rec", Sample());
  WriteBytes(folder / "day/closed/b.rec", Sample());
  const fs::path closed = folder.Path() / "day" / "closed";
  const std::string work = folder.Path().string();
  const std::string expected = Record({"list", "day", "--json"}, work).out;
  fs::permissions(closed, fs::perms::none);
  const Outcome outcome = Record({"list", "--recursive", "day", "--json"}, work);
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_EQ(outcome.err, "surveydata: cannot read day/closed: Permission denied\n");
  EXPECT_EQ(outcome.out, expected);
  const Outcome alone = Record({"list", "day/closed"}, work);
  EXPECT_EQ(alone.exitCode, 3);
  EXPECT_EQ(alone.err, "surveydata: cannot read day/closed: Permission denied\n");
  EXPECT_EQ(Record({"join", "-r", "day", "-o", "out.rec"}, work).exitCode, 3);
  EXPECT_FALSE(fs::exists(folder.Path() / "out.rec"));
  fs::permissions(closed, fs::perms::owner_all);
}
#endif

// The first 100 frames are reported, whatever the number of threads, and all are counted.
TEST(RecordFiles, ReportTheFirstFramesAndCountAll) {
  const TempFolderC folder;
  Bytes many;
  while (many.size() < (std::size_t{2} << 20)) {
    for (int i = 0; i < 60; ++i) many = std::move(many) + MakeFrame(113, MakeBody(0x0008, {2}));
    many = std::move(many) + Sample();
  }
  WriteBytes(folder / "a.rec", many);
  WriteBytes(folder / "b.rec", many);
  for (const char* const jobs : {"1", "4"}) {
    const Outcome outcome =
        Record({"export", "a.rec", "b.rec", "--csv", "--columns", "offset", "--jobs", jobs},
               folder.Path().string());
    EXPECT_EQ(outcome.exitCode, 1);
    const auto lines = Lines(outcome.err);
    ASSERT_EQ(lines.size(), 202U) << jobs;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_TRUE(lines[i].starts_with(i < 101 ? "surveydata: a.rec: " : "surveydata: b.rec: "));
      EXPECT_EQ(lines[i].find("the frame at") == std::string::npos, i % 101 == 100) << lines[i];
    }
  }
}

TEST(RecordFiles, TellWhichFileHasBadFramesOrNoMeasurement) {
  const TempFolderC folder;
  WriteBytes(folder / "bad.rec", Sample() + DamagedFrame() + MakeFrame(113, {1, 2, 3}));
  WriteBytes(folder / "empty.rec", {});
  WriteBytes(folder / "good.rec", Sample());
  const Outcome outcome =
      Record({"export", "bad.rec", "empty.rec", "good.rec"}, folder.Path().string());
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("surveydata: bad.rec: the frame at "), std::string::npos)
      << outcome.err;
  EXPECT_NE(outcome.err.find("surveydata: bad.rec: 2 bad frames are left out"), std::string::npos)
      << outcome.err;
  EXPECT_NE(outcome.err.find("surveydata: empty.rec contains no measurement\n"), std::string::npos);
}

TEST(RecordFiles, TakeStandardInputOnceAmongFiles) {
  const std::string file = DataPath("valley_drive.rec");
  const Outcome outcome =
      RunProgram({"record", "export", file, "-", "--csv", "--columns", "offset"},
                 {.input = DataPath("desert_highway.rec")});
  EXPECT_EQ(outcome.exitCode, 0);
  const auto rows = Lines(outcome.out);
  EXPECT_EQ(std::ranges::count_if(
                rows, [](const std::string& row) { return row.starts_with("standard input,"); }),
            static_cast<std::ptrdiff_t>(SampleIndex("desert_highway")["frames"].size()));
  EXPECT_EQ(RunProgram({"record", "list", "-", "/dev/stdin"}, {.input = file}).exitCode, 2);
}

TEST(RecordFiles, ArePlottedInOnePicture) {
  const TempFolderC folder;
  const Outcome outcome = Record({"plot", DataPath("valley_drive.rec"),
                                  DataPath("desert_highway.rec"), "-o", folder / "a.svg"});
  EXPECT_EQ(outcome.exitCode, 0);
  const std::string picture = ReadText(folder / "a.svg");
  EXPECT_NE(picture.find(">2 files<"), std::string::npos);
  const std::size_t count =
      SampleIndex("valley_drive")["frames"].size() + SampleIndex("desert_highway")["frames"].size();
  EXPECT_NE(picture.find(">" + std::to_string(count) + " measurements, "), std::string::npos);
}

TEST(RecordFiles, RefuseToBeOverwritten) {
  const TempFolderC folder;
  for (const char* const name : {"a.rec", "b.rec"}) WriteBytes(folder / name, Sample());
  const std::string work = folder.Path().string();
  EXPECT_EQ(Record({"export", "a.rec", "b.rec", "-o", "b.rec"}, work).exitCode, 2);
  EXPECT_EQ(Record({"plot", ".", "-o", "b.rec"}, work).exitCode, 2);
  EXPECT_EQ(ReadBytes(folder / "b.rec"), Sample());
}

TEST(RecordJobs, AreWholeNumbersOfOneOrMore) {
  for (const char* const jobs : {"1", "250"}) {
    EXPECT_EQ(Record({"export", DataPath("valley_drive.rec"), "--jobs", jobs}).exitCode, 0) << jobs;
  }
  for (const char* const jobs : {"0", "-1", "x", "", "1.5", "251", "100000"}) {
    EXPECT_EQ(Record({"list", DataPath("valley_drive.rec"), "--jobs", jobs}).exitCode, 2) << jobs;
  }
}

}  // namespace
