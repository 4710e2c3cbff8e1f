#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

Outcome Show(const std::string& file, const std::string& offset,
             const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments = {"record", "show", file, "--offset", offset};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return RunProgram(arguments);
}

std::string Valley() { return DataPath("valley_drive.rec"); }

std::string Hex(const Bytes& bytes, std::size_t at, std::size_t size) {
  std::string text;
  for (std::size_t i = at; i < at + size; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02x", bytes[i]);
    text += digits;
  }
  return text;
}

// The files hold what the program shows of three frames: one with all blocks, one with the fewest,
// one in between. Fields are those of the expectation lines, bytes those of the sample.
TEST(RecordShow, ShowsFieldsAndBytesAsRecorded) {
  for (const char* const offset : {"854", "960", "2087"}) {
    SCOPED_TRACE(offset);
    const std::string golden = "program/valley_drive_" + std::string(offset);
    const Outcome fields = Show(Valley(), offset);
    EXPECT_EQ(fields.exitCode, 0);
    EXPECT_EQ(fields.out, ReadText(DataPath(golden + "_fields.txt")));
    const Outcome bytes = Show(Valley(), offset, {"--bytes"});
    EXPECT_EQ(bytes.exitCode, 0);
    EXPECT_EQ(bytes.out, ReadText(DataPath(golden + "_bytes.txt")));
  }
}

TEST(RecordShow, GivesTheExportLineAsJson) {
  const std::vector<std::string> lines = Lines(ReadText(DataPath("valley_drive.expected.jsonl")));
  for (std::size_t i = 0; i < lines.size(); i += 25) {
    const json record = json::parse(lines[i]);
    const Outcome outcome = Show(Valley(), record["offset"].dump(), {"--json"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, lines[i] + "\n");
  }
}

TEST(RecordShow, GivesEveryByteOnceAsJson) {
  const Bytes file = ReadBytes(Valley());
  const std::vector<json> records = JsonLines(ReadText(DataPath("valley_drive.expected.jsonl")));
  for (std::size_t i = 0; i < records.size(); i += 25) {
    const json& record = records[i];
    SCOPED_TRACE(record["offset"]);
    const json shown =
        json::parse(Show(Valley(), record["offset"].dump(), {"--json", "--bytes"}).out);
    std::size_t at = record["offset"];
    for (const json& field : shown["bytes"]) {
      EXPECT_EQ(field["offset"], at);
      EXPECT_EQ(field["hex"], Hex(file, at, field["size"]));
      at += field["size"].get<std::size_t>();
    }
    EXPECT_EQ(at, record["offset"].get<std::size_t>() + record["size"].get<std::size_t>());
  }
}

TEST(RecordShow, TakesTheOffsetInDecimalAndHexadecimal) {
  const std::string expected = Show(Valley(), "960").out;
  for (const char* const offset : {"0x3c0", "0X3C0", "0960"}) {
    SCOPED_TRACE(offset);
    EXPECT_EQ(Show(Valley(), offset).out, expected);
  }
}

TEST(RecordShow, SaysWhyThereIsNothingToShow) {
  const TempFolderC folder;
  const std::string file = folder / "one.rec";
  Bytes bytes = ReadBytes(Valley());
  bytes.resize(960 + 466);
  bytes[900] ^= 1;  // in the frame at 894
  WriteBytes(file, bytes);
  const struct {
    const char* offset;
    const char* message;
  } cases[] = {
      {"0", "no measurement but a record of type 1 stands at offset 0"},
      {"1", "no record stands at offset 1"},
      {"894", "a frame with a wrong checksum stands at offset 894"},
      {"960", "the end of the file cuts the frame at offset 960"},
      {"1422", "no record stands at offset 1422"},
      {"1425", "no record stands at offset 1425"},
      {"1426", "no valid measurement frame at offset 1426: the file ends before it"},
      {"18446744073709551615",
       "no valid measurement frame at offset 18446744073709551615: the file ends before it"},
  };
  for (const auto& [offset, message] : cases) {
    SCOPED_TRACE(offset);
    const Outcome outcome = Show(file, offset);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
  }
}

TEST(RecordShow, ShowsTheBytesOfAFrameWhoseBlocksDoNotFit) {
  const TempFolderC folder;
  const std::string file = folder / "one.rec";
  WriteBytes(file, MakeFrame(113, MakeBody(0x0108, {2, 9, 9, 9, 9})));
  const Outcome outcome = Show(file, "0", {"--bytes"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("do not fit"), std::string::npos);
  const std::vector<std::string> lines = Lines(outcome.out);
  ASSERT_EQ(lines.size(), 11u);
  EXPECT_EQ(lines[8],
            "        17  02                       extra time      count                 2");
  EXPECT_EQ(lines[9], "        18  09 09 09 09              extra time      does not fit");
  EXPECT_TRUE(lines[10].starts_with("        22  ")) << lines[10];
}

TEST(RecordShow, ShowsBytesBehindTheLastBlockAsUnused) {
  const TempFolderC folder;
  const std::string file = folder / "one.rec";
  WriteBytes(file, MakeFrame(113, MakeBody(0x0000, {1, 2, 3})));
  const Outcome outcome = Show(file, "0", {"--bytes"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(Lines(outcome.out)[8], "        17  01 02 03                 unused          ignored");
}

}  // namespace
