#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

Outcome Check(std::vector<std::string> arguments, const std::string& folder = {}) {
  arguments.insert(arguments.begin(), {"record", "check"});
  return RunProgram(arguments, {.folder = folder});
}

json CheckOne(const std::string& file, std::vector<std::string> options = {}) {
  options.insert(options.begin(), {file, "--json"});
  return JsonLines(Check(options).out).at(0);
}

// A measurement at a time of week in milliseconds.
Bytes FrameAt(std::uint32_t time) {
  Bytes body = MakeBody(0, {});
  for (std::size_t i = 0; i < 4; ++i) body[2 + i] = static_cast<std::uint8_t>(time >> (8 * i));
  return MakeFrame(113, body);
}

Bytes DamagedFrame() {
  Bytes frame = FrameAt(0);
  frame.back() ^= 1;
  return frame;
}

constexpr std::size_t kFrame = 19;  // bytes of these frames

TEST(RecordCheck, CountsWhatTheListShows) {
  for (const char* const name : kSamples) {
    SCOPED_TRACE(name);
    const std::string file = DataPath(std::string(name) + ".rec");
    std::size_t measurements = 0, others = 0, gaps = 0, gapBytes = 0, badFrames = 0, firstGap = 0;
    for (const json& line : JsonLines(RunProgram({"record", "list", file, "--json"}).out)) {
      const std::string kind = line["kind"];
      if (kind == "measurement") ++measurements;
      if (kind == "other") ++others;
      if (kind == "badFrame") ++badFrames;
      if (kind != "gap") continue;
      if (gaps++ == 0) firstGap = line["offset"];
      gapBytes += line["size"].get<std::size_t>();
    }
    const json found = CheckOne(file);
    EXPECT_EQ(found["verdict"], "faulty");
    EXPECT_EQ(found["size"], ReadBytes(file).size());
    EXPECT_EQ(found["measurements"], measurements);
    EXPECT_EQ(found["others"], others);
    EXPECT_EQ(found["gaps"], (json{{"count", gaps}, {"first", firstGap}}));
    EXPECT_EQ(found["gapBytes"], gapBytes);
    EXPECT_EQ(found["damagedHeaders"]["count"], 0) << "as export reports";
    EXPECT_EQ(found["overlappingHeaders"]["count"], badFrames);
  }
}

TEST(RecordCheck, FindsNothingInAHealthyFile) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", FrameAt(1000) + FrameAt(1000 + 1) + MakeFrame(17, {1, 2}));
  const Outcome outcome = Check({folder / "a.rec"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, "ok          " + folder / "a.rec" +
                             ": 2 measurements, 1 other record\n"
                             "ok          1 file: 0 faulty, 0 unreadable; 2 measurements, 1 other "
                             "record\n");
  const json found = CheckOne(folder / "a.rec");
  EXPECT_EQ(found["verdict"], "ok");
  EXPECT_EQ(found["firstTime"], "2020-02-02T00:00:01.000");
  EXPECT_EQ(found["lastTime"], "2020-02-02T00:00:01.001");
}

TEST(RecordCheck, FindsEachKindOfFaultWithItsOffset) {
  const struct {
    const char* kind;
    Bytes bytes;
    std::size_t count;
    std::size_t first;
  } cases[] = {
      {"gaps", FrameAt(1) + Bytes(5, 0) + FrameAt(2) + Bytes(7, 0), 2, kFrame},
      {"damagedHeaders", FrameAt(1) + Bytes(5, 0) + DamagedFrame() + DamagedFrame(), 2, kFrame + 5},
      {"badBlocks", FrameAt(1) + MakeFrame(113, MakeBody(0xFFFF, {})), 1, kFrame},
      {"timesBack", FrameAt(5) + FrameAt(4) + FrameAt(4 + 1) + FrameAt(3), 2, kFrame},
      {"repeated", FrameAt(1) + FrameAt(2) + FrameAt(2) + FrameAt(2) + FrameAt(3), 2, 2 * kFrame},
  };
  const TempFolderC folder;
  for (const auto& [kind, bytes, count, first] : cases) {
    SCOPED_TRACE(kind);
    WriteBytes(folder / "a.rec", bytes);
    EXPECT_EQ(Check({folder / "a.rec"}).exitCode, 1);
    const json found = CheckOne(folder / "a.rec");
    EXPECT_EQ(found["verdict"], "faulty");
    EXPECT_EQ(found[kind], (json{{"count", count}, {"first", first}}));
    for (const char* const other : {"badBlocks", "timesBack", "repeated"}) {
      if (std::string(other) != kind) {
        EXPECT_EQ(found[other], (json{{"count", 0}, {"first", nullptr}}));
      }
    }
  }
}

TEST(RecordCheck, FindsAFileWithoutMeasurementsFaulty) {
  const TempFolderC folder;
  for (const Bytes& bytes : {Bytes(), MakeFrame(17, {1})}) {
    WriteBytes(folder / "a.rec", bytes);
    EXPECT_EQ(Check({folder / "a.rec"}).exitCode, 1);
    EXPECT_EQ(CheckOne(folder / "a.rec")["verdict"], "faulty");
  }
}

// Pieces of 1 MiB, whose ends divide a gap, measurements that repeat and a time that goes
// backwards.
TEST(RecordCheck, FindsTheSameInStretches) {
  constexpr std::size_t kStretch = std::size_t{1} << 20;
  const TempFolderC folder;
  Bytes bytes = FrameAt(100);
  const auto put = [&bytes](std::size_t at, const Bytes& what) {
    bytes.resize(std::max(bytes.size(), at));
    bytes.insert(bytes.end(), what.begin(), what.end());
  };
  put(kStretch - kFrame, FrameAt(200) + FrameAt(200) + FrameAt(300));
  put(2 * kStretch - kFrame, FrameAt(400) + FrameAt(350));
  // The only one of a stretch, and the same again in the next.
  put(4 * kStretch - kFrame, FrameAt(500) + FrameAt(500));
  put(4 * kStretch + 100, DamagedFrame() + FrameAt(100));
  bytes.resize(bytes.size() + 50);
  WriteBytes(folder / "a.rec", bytes);
  const json found = CheckOne(folder / "a.rec", {"--jobs", "1"});
  EXPECT_EQ(found["measurements"], 9);
  EXPECT_EQ(found["gaps"], (json{{"count", 5}, {"first", kFrame}}));
  EXPECT_EQ(found["gapBytes"], bytes.size() - 9 * kFrame);
  EXPECT_EQ(found["damagedHeaders"], (json{{"count", 1}, {"first", 4 * kStretch + 100}}));
  EXPECT_EQ(found["repeated"], (json{{"count", 2}, {"first", kStretch}}));
  EXPECT_EQ(found["timesBack"], (json{{"count", 2}, {"first", 2 * kStretch}}));
  for (const char* const jobs : {"2", "5"}) {
    EXPECT_EQ(CheckOne(folder / "a.rec", {"--jobs", jobs}), found);
  }
}

TEST(RecordCheck, GivesOneVerdictForEachFileAndOneForAll) {
  const TempFolderC folder;
  WriteBytes(folder / "bad.rec", FrameAt(2) + FrameAt(1));
  WriteBytes(folder / "good.rec", FrameAt(1) + FrameAt(2));
  const Outcome outcome =
      Check({"good.rec", "none.rec", "bad.rec", "--json"}, folder.Path().string());
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_TRUE(outcome.err.starts_with("surveydata: cannot read none.rec: ")) << outcome.err;
  const auto lines = JsonLines(outcome.out);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0]["file"], "good.rec");
  EXPECT_EQ(lines[0]["verdict"], "ok");
  EXPECT_EQ(lines[1]["file"], "none.rec");
  EXPECT_EQ(lines[1]["verdict"], "unreadable");
  EXPECT_TRUE(lines[1]["reason"].get<std::string>().starts_with("cannot read none.rec: "));
  EXPECT_EQ(lines[2]["verdict"], "faulty");
  EXPECT_EQ(lines[3]["verdict"], "faulty");
  EXPECT_EQ(lines[3]["files"], 3);
  EXPECT_EQ(lines[3]["faulty"], 1);
  EXPECT_EQ(lines[3]["unreadable"], 1);
  EXPECT_EQ(lines[3]["measurements"], 4);
  EXPECT_EQ(lines[3]["timesBack"], 1);

  EXPECT_EQ(
      Check({"good.rec", "bad.rec"}, folder.Path().string()).out,
      "ok          good.rec: 2 measurements, 0 other records\n"
      "FAULTY      bad.rec: 2 measurements, 0 other records; 1 time that goes backwards (at 19)\n"
      "FAULTY      2 files: 1 faulty, 0 unreadable; 4 measurements, 0 other records; 1 time "
      "that goes backwards\n");
}

TEST(RecordCheck, ComparesTheMeasurementsThatTheFiltersTake) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", FrameAt(5000) + FrameAt(1000) + FrameAt(6000));
  EXPECT_EQ(CheckOne(folder / "a.rec")["timesBack"]["count"], 1);
  const json found = CheckOne(folder / "a.rec", {"--where", "time_of_week >= 5000"});
  EXPECT_EQ(found["measurements"], 2);
  EXPECT_EQ(found["timesBack"]["count"], 0);
  EXPECT_EQ(found["verdict"], "ok");
}

}  // namespace
