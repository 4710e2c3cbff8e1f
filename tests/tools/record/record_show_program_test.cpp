#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/number_of_cases.h"
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

// The files contain the output of the program for three frames: one with all blocks, one with the
// fewest, one in between. The fields are those of the expectation lines, the bytes those of the
// sample.
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
      {"0", "found a record of type 1"},
      {"1", "it is inside the record at 0"},
      {"894", "found a bad frame: wrong checksum"},
      {"895", "found no record"},
      {"960", "found a bad frame: cut by the end of the file"},
      {"1422", "found no record"},
      {"1425", "found no record"},
      {"1426", "the file ends before it"},
      {"18446744073709551615", "the file ends before it"},
      {"18446744073709551616", "the file ends before it"},
      {"0x123456789abcdef0123", "the file ends before it"},
  };
  for (const auto& [offset, message] : cases) {
    SCOPED_TRACE(offset);
    const Outcome outcome = Show(file, offset);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    const std::string expected = std::string("surveydata: no valid measurement frame at offset ") +
                                 offset + ": " + message + "\n";
    EXPECT_EQ(outcome.err, expected);
    // A change at this offset is refused with the same message.
    for (const bool isDryRun : {false, true}) {
      std::vector<std::string> set = {"record", "set", file, "--offset", offset, "--number", "5"};
      if (isDryRun) set.emplace_back("--dry-run");
      const Outcome refused = RunProgram(set);
      EXPECT_EQ(refused.exitCode, 1);
      EXPECT_EQ(refused.err, expected);
    }
  }
  EXPECT_EQ(ReadBytes(file), bytes);
}

// Inside a record of maximum length, so that the whole of it must be read.
TEST(RecordShow, FindsTheRecordThatAnOffsetIsInsideOf) {
  const TempFolderC folder;
  const std::string file = folder / "long.rec";
  const Bytes inner = MakeFrame(113, MakeBody(0, {}));
  const Bytes before = MakeFrame(113, MakeBody(0, {}));
  Bytes body(65'530 - inner.size(), 0);
  const std::size_t at = before.size() + 5 + body.size();
  const Bytes longest = MakeFrame(42, body + inner);
  ASSERT_EQ(longest.size(), 65'537u);
  WriteBytes(file, before + longest + before);
  EXPECT_EQ(Show(file, std::to_string(at)).err,
            "surveydata: no valid measurement frame at offset " + std::to_string(at) +
                ": it is inside the record at 19\n");
  const std::size_t last = before.size() + longest.size() - 1;
  EXPECT_EQ(Show(file, std::to_string(last)).err,
            "surveydata: no valid measurement frame at offset " + std::to_string(last) +
                ": it is inside the record at 19\n");
  EXPECT_EQ(Show(file, std::to_string(last + 1)).exitCode, 0);
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

TEST(RecordShow, ShowsBytesAfterTheLastBlockAsUnused) {
  const TempFolderC folder;
  const std::string file = folder / "one.rec";
  WriteBytes(file, MakeFrame(113, MakeBody(0x0000, {1, 2, 3})));
  const Outcome outcome = Show(file, "0", {"--bytes"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(Lines(outcome.out)[8], "        17  01 02 03                 unused          ignored");
}

// As with their offsets, one after another.
TEST(RecordShow, ShowsTheMeasurementsThatFiltersTake) {
  // The program runs three times for each record that is shown alone.
  const std::string every = std::to_string(5 * TestSupport::kOneCaseIn);
  const std::vector<std::string> filters[] = {
      {"--where", "pdop > 1.5", "--every", every},
      {"--from", "2020-02-07T02:20:00", "--to", "2020-02-07T02:20:10"}};
  for (const auto& filter : filters) {
    const auto show = [&](const std::string& command, const std::vector<std::string>& more) {
      std::vector<std::string> arguments = {"record", command, Valley()};
      arguments.insert(arguments.end(), filter.begin(), filter.end());
      arguments.insert(arguments.end(), more.begin(), more.end());
      const Outcome outcome = RunProgram(arguments);
      EXPECT_EQ(outcome.exitCode, 0);
      EXPECT_EQ(outcome.err, "");
      return outcome.out;
    };
    const std::string lines = show("export", {});
    EXPECT_GE(JsonLines(lines).size(), 2U);
    EXPECT_EQ(show("show", {"--json"}), lines);
    for (const std::vector<std::string>& form :
         {std::vector<std::string>{}, {"--bytes"}, {"--json", "--bytes"}}) {
      std::string expected;
      for (const json& record : JsonLines(lines)) {
        if (!expected.empty() && (form.empty() || form.front() != "--json")) expected += "\n";
        expected += Show(Valley(), record["offset"].dump(), form).out;
      }
      EXPECT_EQ(show("show", form), expected);
    }
  }
  const auto run = [](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"record", "show"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunProgram(arguments);
  };
  const Outcome none = run({Valley(), "--name", "nobody"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.out, "");
  EXPECT_NE(none.err.find("contains no measurement that the filters select"), std::string::npos);
  EXPECT_EQ(run({DataPath("areas"), "--every", "2"}).exitCode, 3);
  EXPECT_EQ(run({DataPath("none.rec"), "--every", "2"}).exitCode, 3);
}

}  // namespace
