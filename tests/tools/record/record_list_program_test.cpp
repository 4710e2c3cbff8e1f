#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

Outcome List(const std::string& file) { return RunProgram({"record", "list", file}); }

std::vector<json> ListJson(const std::string& file) {
  return JsonLines(RunProgram({"record", "list", file, "--json"}).out);
}

// A record file of one frame.
std::string OneFrame(const TempFolderC& folder, const Bytes& frame) {
  WriteBytes(folder / "one.rec", frame);
  return folder / "one.rec";
}

Bytes SampleFrame(std::size_t offset, std::size_t size) {
  const Bytes bytes = ReadBytes(DataPath("valley_drive.rec"));
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
  return {begin, begin + static_cast<std::ptrdiff_t>(size)};
}

TEST(RecordList, HasARowForEveryRecordOfTheSamplesAndForEveryStretchBetween) {
  for (const char* const name : kSamples) {
    SCOPED_TRACE(name);
    const json index = SampleIndex(name);
    // The parts of the file from its index; adjacent stretches of padding are one gap.
    std::vector<json> expected;
    for (const json& frame : index["frames"]) {
      expected.push_back(
          {{"kind", "measurement"}, {"offset", frame["offset"]}, {"size", frame["size"]}});
    }
    for (const json& other : index["others"]) {
      expected.push_back({{"kind", "other"},
                          {"offset", other["offset"]},
                          {"size", other["size"]},
                          {"type", other["type"]}});
    }
    for (const json& padding : index["padding"]) {
      expected.push_back(
          {{"kind", "gap"}, {"offset", padding["offset"]}, {"size", padding["size"]}});
    }
    std::sort(expected.begin(), expected.end(), [](const json& a, const json& b) {
      return a["offset"].get<std::size_t>() < b["offset"].get<std::size_t>();
    });

    std::vector<json> found;
    for (const json& line : ListJson(DataPath(std::string(name) + ".rec"))) {
      if (line["kind"] == "badFrame") continue;  // is inside a gap
      json entry = {{"kind", line["kind"]}, {"offset", line["offset"]}, {"size", line["size"]}};
      if (line["kind"] == "other") entry["type"] = line["type"];
      found.push_back(entry);
    }
    EXPECT_EQ(found, expected);
  }
}

TEST(RecordList, ShowsTheResultOfReadingEachMeasurement) {
  for (const char* const name : kSamples) {
    const std::vector<json> records =
        JsonLines(ReadText(DataPath(std::string(name) + ".expected.jsonl")));
    std::size_t i = 0;
    for (const json& line : ListJson(DataPath(std::string(name) + ".rec"))) {
      if (line["kind"] != "measurement") continue;
      ASSERT_LT(i, records.size());
      const json& record = records[i++];
      SCOPED_TRACE(record["offset"]);
      EXPECT_EQ(line["time"], record["measurement"]["timeA"]);
      EXPECT_EQ(line["name"], record["info"]["name"]);
      const json& dops = record["getters"]["dops"];
      for (const char* const dop : {"hdop", "vdop", "tdop", "pdop"}) {
        const bool isThere = !dops.is_null() && dops[dop] >= 0;
        EXPECT_EQ(line[dop], isThere ? dops[dop] : json());
      }
      const json& pair = record["getters"]["totalPair"];
      EXPECT_EQ(line["inView"], pair.is_null() ? json() : pair[0]);
      EXPECT_EQ(line["used"], pair.is_null() ? json() : pair[1]);
    }
    EXPECT_EQ(i, records.size());
  }
}

// 2091 weeks from 6 January 1980 is 2 February 2020; 440075 s are five days, 2 h 14 min 35 s. The
// other values are those of the file's expectation lines.
TEST(RecordList, AlignsItsRows) {
  const Outcome outcome = List(DataPath("valley_drive.rec"));
  EXPECT_EQ(outcome.exitCode, 1) << "the sample has gaps";
  EXPECT_EQ(outcome.err, "");
  const std::vector<std::string> lines = Lines(outcome.out);
  const std::vector<std::string> first = {
      "    offset  kind        length  GPS time                 week  time of week  HDOP  VDOP  "
      "TDOP  PDOP  used/view  name",
      "         0  type 1         647",
      "       647  type 17        207",
      "       854  measurement     40  2020-02-07T02:14:35.000  2091  440075.000 s   0.8   1.3   "
      "1.1   1.5      25/39",
      "       894  measurement     40  2020-02-07T02:14:39.000  2091  440079.000 s   0.8   1.3   "
      "1.9   1.5      25/39",
      "       934  GAP             26  bytes that belong to no record",
      "       960  measurement    467  2020-02-07T02:14:43.000  2091  440083.000 s   0.8   1.3   "
      "1.5   1.5      25/39  Süd-Ø1",
  };
  ASSERT_GE(lines.size(), first.size());
  for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(lines[i], first[i]);

  const json index = SampleIndex("valley_drive");
  std::size_t gapBytes = 0;
  for (const json& padding : index["padding"]) gapBytes += padding["size"].get<std::size_t>();
  const std::string counts = std::to_string(index["frames"].size()) + " measurements, " +
                             std::to_string(index["others"].size()) + " other records, " +
                             std::to_string(index["padding"].size()) + " gaps (" +
                             std::to_string(gapBytes) + " bytes), ";
  EXPECT_TRUE(lines.back().starts_with(counts)) << lines.back();
}

TEST(RecordList, IsDoneWhenEveryByteBelongsToAGoodRecord) {
  const TempFolderC folder;
  const Outcome outcome = List(OneFrame(folder, SampleFrame(960, 467) + MakeFrame(17, {1, 2, 3})));
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(Lines(outcome.out).back(),
            "1 measurement, 1 other record, 0 gaps (0 bytes), 0 bad frames");
}

TEST(RecordList, ReportsAFileWithoutMeasurements) {
  const TempFolderC folder;
  for (const Bytes& bytes : {Bytes{}, MakeFrame(17, {1, 2, 3})}) {
    const Outcome outcome = List(OneFrame(folder, bytes));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "surveydata: " + folder / "one.rec" + " contains no measurement\n");
  }
}

TEST(RecordList, ReportsAGap) {
  const TempFolderC folder;
  const Outcome outcome = List(OneFrame(folder, Bytes{7} + SampleFrame(960, 467)));
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(Lines(outcome.out)[1],
            "         0  GAP              1  bytes that belong to no record");
  EXPECT_EQ(Lines(outcome.out).back(),
            "1 measurement, 0 other records, 1 gap (1 byte), 0 bad frames");
}

TEST(RecordList, ReportsFramesWithAWrongChecksum) {
  const TempFolderC folder;
  Bytes frame = SampleFrame(960, 467);
  frame[100] ^= 1;
  const Bytes good = SampleFrame(854, 40);
  const struct {
    const char* what;
    Bytes bytes;
    std::size_t badAt;
    const char* reason;
  } cases[] = {
      {"alone", frame, 0, "wrong checksum"},
      {"between frames", good + frame + good, 40, "wrong checksum"},
      {"inside a gap", good + Bytes{1, 2, 3} + frame + Bytes{4} + good, 43, "wrong checksum"},
      {"cut by the end", good + SampleFrame(960, 466), 40, "cut by the end of the file"},
      {"header alone", good + SampleFrame(960, 5), 40, "cut by the end of the file"},
      {"a byte is missing", SampleFrame(960, 400) + good, 0, "cut by the end of the file"},
      {"bytes are missing", SampleFrame(960, 460) + good + good, 0, "runs into the next record"},
  };
  for (const auto& [what, bytes, badAt, reason] : cases) {
    SCOPED_TRACE(what);
    const std::string file = OneFrame(folder, bytes);
    EXPECT_EQ(List(file).exitCode, 1);
    std::vector<json> bad;
    for (const json& line : ListJson(file)) {
      if (line["kind"] == "badFrame") bad.push_back(line);
    }
    ASSERT_EQ(bad.size(), 1u);
    EXPECT_EQ(bad[0]["offset"], badAt);
    EXPECT_EQ(bad[0]["size"], 467);
    EXPECT_EQ(bad[0]["reason"], reason);
  }
}

TEST(RecordList, FindsABadFrameWhereverItLiesInALongGap) {
  const TempFolderC folder;
  Bytes frame = SampleFrame(854, 40);
  frame[20] ^= 1;
  // Sizes around that of the blocks in which gaps are read.
  for (const std::size_t before : {65530u, 65531u, 65532u, 65535u, 65536u, 65537u}) {
    SCOPED_TRACE(before);
    std::vector<std::size_t> bad;
    for (const json& line : ListJson(OneFrame(folder, Bytes(before, 0) + frame))) {
      if (line["kind"] == "badFrame") bad.push_back(line["offset"]);
    }
    EXPECT_EQ(bad, std::vector<std::size_t>{before});
  }
}

// Each of the bad frames of a gap has a row; up to 10,000 of them come after the gap.
TEST(RecordList, HasARowForEachOfManyBadFramesInAGap) {
  const TempFolderC folder;
  const Bytes header = {0x9C, 0xAE, 17, 0, 113};
  for (const std::size_t count : {std::size_t{10'000}, std::size_t{10'001}}) {
    SCOPED_TRACE(count);
    Bytes gap;
    for (std::size_t i = 0; i < count; ++i) gap.insert(gap.end(), header.begin(), header.end());
    const std::vector<json> lines = ListJson(OneFrame(folder, gap + Bytes(20, 0)));
    ASSERT_EQ(lines.size(), 1 + count);
    const std::size_t gapAt = count > 10'000 ? 10'000 : 0;
    EXPECT_EQ(lines[gapAt]["kind"], "gap");
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(lines[i + (i >= gapAt ? 1 : 0)]["offset"], i * header.size());
    }
  }
}

TEST(RecordList, ReportsFramesWhoseBlocksDoNotFit) {
  const TempFolderC folder;
  const Bytes twoExtraTimes = MakeFrame(113, MakeBody(0x0008, {2, 0, 0, 0, 0, 0, 0}));
  const Bytes tooShort = MakeFrame(113, MakeBody(0x0100, {1}));
  const std::string file = OneFrame(folder, twoExtraTimes + tooShort);
  const Outcome outcome = List(file);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(Lines(outcome.out)[1],
            "         0  BAD FRAME       26  right checksum, but its blocks do not fit");
  EXPECT_EQ(Lines(outcome.out).back(),
            "0 measurements, 0 other records, 0 gaps (0 bytes), 2 bad frames");
  EXPECT_EQ(ListJson(file).size(), 2u);
}

TEST(RecordList, DoesNotMistakeLongRecordsOfTheSameTypeForMeasurements) {
  const TempFolderC folder;
  const Outcome outcome = List(OneFrame(folder, MakeFrame(113, Bytes(494, 0))));
  EXPECT_EQ(Lines(outcome.out)[1], "         0  type 113       501");
  EXPECT_TRUE(Lines(outcome.out).back().starts_with("0 measurements, 1 other record, "));
}

TEST(RecordList, GivesTimesInUtcOnRequest) {
  const std::string file = DataPath("valley_drive.rec");
  const auto firstMeasurement = [](const Outcome& outcome) {
    for (const json& line : JsonLines(outcome.out)) {
      if (line["kind"] == "measurement") return line;
    }
    return json();
  };
  json line = firstMeasurement(RunProgram({"record", "list", file, "--json", "--utc"}));
  EXPECT_EQ(line["utc"], "2020-02-07T02:14:17.000");  // 18 leap seconds
  EXPECT_EQ(line["gpsTime"], "2020-02-07T02:14:35.000");
  line.erase("utc");
  EXPECT_EQ(line, firstMeasurement(RunProgram({"record", "list", file, "--json"})));

  std::string expected = RunProgram({"record", "list", file}).out;
  const auto text = Lines(RunProgram({"record", "list", file, "--utc"}).out);
  EXPECT_NE(text[0].find("  UTC  "), std::string::npos);
  EXPECT_EQ(text[0].find("GPS time"), std::string::npos);
  EXPECT_NE(text[3].find("  2020-02-07T02:14:17.000  2091"), std::string::npos) << text[3];
  EXPECT_EQ(text.size(), Lines(expected).size());

  const TempFolderC folder;
  Bytes body = MakeBody(0, {});
  body[0] = static_cast<std::uint8_t>(2600 & 0xFF);
  body[1] = static_cast<std::uint8_t>(2600 >> 8);
  WriteBytes(folder / "late.rec", MakeFrame(113, body));
  EXPECT_TRUE(RunProgram({"record", "list", folder / "late.rec", "--utc"})
                  .err.starts_with("surveydata: times in UTC from 2027-06-28 on"));
  EXPECT_EQ(RunProgram({"record", "list", folder / "late.rec"}).err, "");
}

}  // namespace
