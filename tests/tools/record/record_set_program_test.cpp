#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"
#include "tests/tools/record/record_set_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// Makes a file an hour old: a file that replaces it is younger.
fs::file_time_type MakeOld(const std::string& file) {
  fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
  return fs::last_write_time(file);
}

TEST_F(RecordSet, ChangesTheGivenFieldsAndTheChecksumInEveryCombination) {
  for (unsigned choice = 1; choice < 16; ++choice) {
    SCOPED_TRACE(choice);
    Change change;
    std::vector<std::string> options;
    const auto give = [&options](const char* option, const char* value) {
      options.push_back(option);
      if (value != nullptr) options.push_back(value);
    };
    if ((choice & 1) != 0) {
      change.name = u"Höhe 7€";
      give("--name", "Höhe 7€");
    }
    if ((choice & 2) != 0) {
      change.number = -12345;
      give("--number", "-12345");
    }
    if ((choice & 4) != 0) {
      change.height = 1.2345F;
      give("--antenna-height", "1.2345");
    }
    if ((choice & 8) != 0) {
      if ((choice & 4) == 0) continue;  // a usage error, tested below
      change.isSlant = true;
      give("--slant", nullptr);
    }
    Replace(before_);
    const Bytes expected = Expected(change);

    std::vector<std::string> dry = options;
    dry.push_back("--dry-run");
    const auto time = MakeOld(file_);
    const Outcome told = Set(dry);
    EXPECT_EQ(told.exitCode, 0);
    EXPECT_TRUE(fs::last_write_time(file_) == time);
    ExpectUntouched();

    const Outcome done = Set(options);
    EXPECT_EQ(done.exitCode, 0) << done.err;
    EXPECT_EQ(done.out, "");
    EXPECT_TRUE(ReadBytes(file_) == expected);
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});

    // The dry run lists each byte that changes, and no other.
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      if (expected[i] == before_[i]) continue;
      char line[40];
      std::snprintf(line, sizeof(line), "%10zu   %02x   %02x  ", i, before_[i], expected[i]);
      lines.push_back(line);
    }
    std::vector<std::string> toldLines = Lines(told.out);
    ASSERT_EQ(toldLines.size(), lines.size() + 1);
    EXPECT_EQ(toldLines[0], "    offset  old  new  field");
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_EQ(toldLines[i + 1].substr(0, lines[i].size()), lines[i]);
    }
  }
}

TEST_F(RecordSet, ExplainsEachChangedByteInADryRun) {
  EXPECT_EQ(Set({"--number", "7", "--dry-run"}).out,
            "    offset  old  new  field\n"
            "      1023   01   07  name, number = 7\n"
            "      1425   47   41  checksum = 0xa941\n");
  // The value is shown once, with the first byte of its field that changes.
  EXPECT_EQ(Set({"--number", "70000", "--dry-run"}).out,
            "    offset  old  new  field\n"
            "      1023   01   70  name, number = 70000\n"
            "      1024   00   11  name, number\n"
            "      1025   00   01  name, number\n"
            "      1425   47   c6  checksum = 0xa8c6\n"
            "      1426   a9   a8  checksum\n");
}

// The bytes of the file after single changes of the frames at these offsets.
Bytes ChangedOneByOne(const Bytes& before, const std::vector<std::uint64_t>& offsets,
                      const std::vector<std::string>& options, std::string& dryRun) {
  const TempFolderC folder;
  const std::string file = folder / "one.rec";
  WriteBytes(file, before);
  for (const std::uint64_t offset : offsets) {
    std::vector<std::string> arguments = {"record", "set", file, "--offset",
                                          std::to_string(offset)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::vector<std::string> dry = arguments;
    dry.emplace_back("--dry-run");
    const std::string told = RunProgram(dry).out;
    dryRun += told.substr(dryRun.empty() || told.empty() ? 0 : told.find('\n') + 1);
    EXPECT_EQ(RunProgram(arguments).exitCode, 0);
  }
  return ReadBytes(file);
}

TEST_F(RecordSet, ChangesAllFramesThatAFilterSelectsInOneReplacement) {
  const std::vector<std::string> filter = {"--where", "number > 0", "--every", "40"};
  std::vector<std::string> arguments = {"record", "export", file_};
  arguments.insert(arguments.end(), filter.begin(), filter.end());
  std::vector<std::uint64_t> offsets;
  for (const json& line : JsonLines(RunProgram(arguments).out)) offsets.push_back(line["offset"]);
  ASSERT_GT(offsets.size(), 4U);
  const std::vector<std::string> changes = {"--name", "Wall", "--number", "7"};
  std::string dryRun;
  const Bytes expected = ChangedOneByOne(before_, offsets, changes, dryRun);
  const std::string count = std::to_string(offsets.size());

  arguments = {"record", "set", file_};
  arguments.insert(arguments.end(), filter.begin(), filter.end());
  arguments.insert(arguments.end(), changes.begin(), changes.end());
  std::vector<std::string> dry = arguments;
  dry.emplace_back("--dry-run");
  const int exitCode = RunProgram({"record", "export", file_}).exitCode;
  const Outcome told = RunProgram(dry);
  EXPECT_EQ(told.exitCode, exitCode);
  EXPECT_EQ(told.out, dryRun + count +
                          " measurements would change, 0 with these values already, 0 without "
                          "room\n");
  ExpectUntouched();

  const Outcome done = RunProgram(arguments);
  EXPECT_EQ(done.exitCode, exitCode);
  EXPECT_EQ(done.out,
            count + " measurements changed, 0 with these values already, 0 without room\n");
  EXPECT_TRUE(ReadBytes(file_) == expected);
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});

  // The same measurements, by what they have now.
  EXPECT_EQ(RunProgram({"record", "set", file_, "--where", "name = \"Wall\"", "--number", "7"}).out,
            "0 measurements changed, " + count + " with these values already, 0 without room\n");
  EXPECT_TRUE(ReadBytes(file_) == expected);
}

// Patches of a file larger than the blocks in which it is copied, some across their borders.
TEST_F(RecordSet, ChangesAllFramesOfAFileOfSeveralBlocks) {
  Bytes frame(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Bytes changed = frame;
  Change change;
  change.number = 7;
  change.Apply(changed.data(), changed.size());
  constexpr std::size_t kFrames = 5000;  // 2.3 MB
  Bytes all, expected;
  for (std::size_t i = 0; i < kFrames; ++i) {
    all.insert(all.end(), frame.begin(), frame.end());
    expected.insert(expected.end(), changed.begin(), changed.end());
  }
  Replace(all);
  const Outcome outcome = RunProgram({"record", "set", file_, "--all", "--number", "7"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "5000 measurements changed, 0 with these values already, 0 without room\n");
  EXPECT_TRUE(ReadBytes(file_) == expected);
}

TEST_F(RecordSet, DoesNotChangeFramesWithoutRoom) {
  const Bytes bare = MakeFrame(113, MakeBody(0, {}));
  Bytes all = bare;
  all.insert(all.end(), before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Replace(all);
  const Outcome outcome = RunProgram({"record", "set", file_, "--all", "--number", "7"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "1 measurement changed, 0 with these values already, 1 without room\n");
  Change change;
  change.number = 7;
  change.Apply(&all[bare.size()], kFrameSize);
  EXPECT_TRUE(ReadBytes(file_) == all);
  const Outcome none =
      RunProgram({"record", "set", file_, "--where", "number = 99", "--number", "7"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.out, "0 measurements changed, 0 with these values already, 0 without room\n");
  EXPECT_NE(none.err.find("contains no measurement that the filters select"), std::string::npos);
  EXPECT_TRUE(ReadBytes(file_) == all);
}

TEST_F(RecordSet, TakesNamesUpToTheLimitsOfAFrame) {
  std::string sixteenWide, fifteenWide;
  for (int i = 0; i < 16; ++i) sixteenWide += "€";
  for (int i = 0; i < 15; ++i) fifteenWide += "€";
  for (const std::string& name :
       {std::string(), std::string(17, 'x'), sixteenWide + "x", fifteenWide + "éé"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Set({"--name", name}).exitCode, 0);
    const auto shown = nlohmann::json::parse(
        RunProgram({"record", "show", file_, "--offset", "960", "--json"}).out);
    EXPECT_EQ(shown["info"]["name"], name);
  }
}

TEST_F(RecordSet, RefusesValuesThatAFrameCannotHold) {
  std::string seventeenWide;
  for (int i = 0; i < 17; ++i) seventeenWide += "€";
  const struct {
    std::vector<std::string> options;
    const char* message;
  } cases[] = {
      {{"--name", std::string(18, 'x')}, "has 18 characters; a frame holds 17"},
      {{"--name", seventeenWide}, "needs 51 bytes of UTF-8; 49 are read back"},
      {{"--name", "\xF0\x9F\x98\x80"}, "a character beyond U+FFFF"},
      {{"--name", "a\nb"}, "has a control character"},
      {{"--name", "\t"}, "has a control character"},
      {{"--name", "a\x1B[2J"}, "has a control character"},
      {{"--name", "a\x7F"}, "has a control character"},
      {{"--name", "a\u0085"}, "has a control character"},
      {{"--name", "a\u2028"}, "has a control character"},
      {{"--number", "2147483648"}, "--number"},
      {{"--number", "x"}, "--number"},
      {{"--number", ""}, "--number"},
      {{"--number", "0x10"}, "--number"},
      {{"--number", "7 "}, "--number"},
      {{"--antenna-height", ""}, "is not a decimal number"},
      {{"--antenna-height", "0x1p3"}, "is not a decimal number"},
      {{"--antenna-height", "1,5"}, "is not a decimal number"},
      {{"--antenna-height", "-0.0"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "-0.001"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "1000.001"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "nan"}, "must be from 0 to 1000 metres"},
      {{"--antenna-height", "inf"}, "must be from 0 to 1000 metres"},
      {{"--slant"}, "--antenna-height"},
      {{"--slant", "--number", "1"}, "--antenna-height"},
      {{}, "nothing to set"},
      {{"--dry-run"}, "nothing to set"},
  };
  for (const auto& [options, message] : cases) {
    SCOPED_TRACE(message);
    const Outcome outcome = Set(options);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
  }
  ExpectUntouched();
}

TEST_F(RecordSet, AcceptsTheSmallestAndLargestNumbersAndHeights) {
  for (const char* const number : {"-2147483648", "2147483647", "0"}) {
    EXPECT_EQ(Set({"--number", number}).exitCode, 0) << number;
  }
  for (const char* const height : {"0", "1000"}) {
    EXPECT_EQ(Set({"--antenna-height", height}).exitCode, 0) << height;
    EXPECT_EQ(Set({"--antenna-height", height, "--slant"}).exitCode, 0) << height;
  }
}

TEST_F(RecordSet, SaysThatASlantHeightBecomesAVerticalOne) {
  EXPECT_EQ(Set({"--number", "8"}).err, "");
  EXPECT_EQ(Set({"--antenna-height", "1.6", "--slant"}).err, "");
  const Outcome outcome = Set({"--antenna-height", "1.5"});  // the sample's is a slant height
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(outcome.err.find("without --slant, it becomes vertical"), std::string::npos)
      << outcome.err;
  EXPECT_EQ(Set({"--antenna-height", "1.6"}).err, "");
}

TEST_F(RecordSet, CountsTheSlantHeightsThatBecomeVertical) {
  std::size_t slant = 0;
  for (const std::string& cell :
       Lines(RunProgram({"record", "export", file_, "--csv", "--columns", "antenna_is_vertical"})
                 .out)) {
    if (cell.starts_with("false")) ++slant;
  }
  ASSERT_GT(slant, 1U);
  const auto messages = [this](std::vector<std::string> options) {
    options.insert(options.begin(), {"record", "set", file_, "--all", "--dry-run"});
    return RunProgram(options).err;
  };
  EXPECT_EQ(
      messages({"--antenna-height", "1.5"}),
      "surveydata: without --slant, " + std::to_string(slant) + " slant heights become vertical\n");
  EXPECT_EQ(messages({"--antenna-height", "1.5", "--slant"}), "");
  EXPECT_EQ(messages({"--number", "3"}), "");
}

TEST_F(RecordSet, ReadsNumbersAsDecimal) {
  EXPECT_EQ(Set({"--number", "010", "--antenna-height", "010"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected({.name = {}, .number = 10, .height = 10.0F}));
}

TEST_F(RecordSet, KeepsBytesThatTheWriterWouldNormalise) {
  Bytes bytes = before_;
  std::uint8_t* const frame = &bytes[kFrame];
  frame[kKindAt] = 5;      // a kind byte other than 0 and 1
  frame[kNameAt + 2] = 0;  // the name ends after one unit, with more units after it
  frame[kNameAt + 3] = 0;
  frame[kHeightKindAt] = 7;     // a kind of height other than 0 and 1
  frame[kHeightAt + 3] = 0x7F;  // a height that overflows when it is squared
  FixChecksum(frame, kFrameSize);
  Replace(bytes);

  const Change number{.name = {}, .number = 99, .height = {}};
  EXPECT_EQ(Set({"--number", "99"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected(number));

  Replace(bytes);
  const Change height{.name = {}, .number = {}, .height = 1.5F, .isSlant = true};
  EXPECT_EQ(Set({"--antenna-height", "1.5", "--slant"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected(height));

  Replace(bytes);
  const Change name{.name = u"B", .number = {}, .height = {}};
  EXPECT_EQ(Set({"--name", "B"}).exitCode, 0);
  EXPECT_TRUE(ReadBytes(file_) == Expected(name));
}

TEST_F(RecordSet, DoesNotReplaceAFileThatHasTheValuesAlready) {
  const auto time = MakeOld(file_);
  const Outcome outcome = Set({"--name", "Süd-Ø1", "--number", "1"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("nothing is changed"), std::string::npos);
  EXPECT_TRUE(fs::last_write_time(file_) == time);
}

TEST_F(RecordSet, RefusesOffsetsWhereNoValidMeasurementFrameBegins) {
  Bytes bytes = before_;
  bytes[900] ^= 1;  // in the frame at 894
  bytes.resize(1767 + 319);
  Replace(bytes);
  const struct {
    const char* offset;
    const char* reason;
  } cases[] = {
      {"0", "found a record of type 1"},
      {"961", "it is inside the record at 960"},
      {"894", "found a bad frame: wrong checksum"},
      {"940", "found no record"},
      {"1767", "found a bad frame: cut by the end of the file"},
      {"2086", "the file ends before it"},
      {"9999999999", "the file ends before it"},
  };
  for (const auto& [offset, reason] : cases) {
    SCOPED_TRACE(offset);
    const Outcome outcome = SetAt(offset, {"--number", "5"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
  }
  ExpectUntouched();
}

// A copy of a valid frame inside the body of another record is not a frame of the file.
TEST_F(RecordSet, RefusesAFrameInsideAnotherRecord) {
  const Bytes inner(before_.begin() + kFrame, before_.begin() + kFrame + kFrameSize);
  Replace(MakeFrame(42, Bytes(10, 0) + inner));
  const Outcome outcome = SetAt("15", {"--number", "5"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("inside the record at 0"), std::string::npos) << outcome.err;
  ExpectUntouched();
}

TEST_F(RecordSet, RefusesAFrameWithoutTheBlockThatAnOptionNeeds) {
  const struct {
    std::uint16_t flags;
    std::size_t size;
    std::vector<std::string> options;
    const char* message;
  } cases[] = {
      {0x0005, 17, {"--name", "A"}, "no room for a name and number"},
      {0x0005, 17, {"--number", "1"}, "no room for a name and number"},
      {0x0003, 50, {"--antenna-height", "1"}, "no room for an antenna height"},
      {0x0003, 50, {"--name", "A", "--antenna-height", "1"}, "no room for an antenna height"},
      {0x0008, 1, {"--name", "A"}, "do not fit"},
  };
  for (const auto& [flags, size, options, message] : cases) {
    SCOPED_TRACE(message);
    Replace(MakeFrame(113, MakeBody(flags, Bytes(size, 2))));
    const Outcome outcome = SetAt("0", options);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
    ExpectUntouched();
  }
}

TEST_F(RecordSet, WorksOnNamesWithoutExtension) {
  const fs::path file = folder_.Path() / "no extension 'here'";
  fs::copy(file_, file);
  EXPECT_EQ(
      RunProgram({"record", "set", file.string(), "--offset", "960", "--number", "77"}).exitCode,
      0);
  EXPECT_TRUE(ReadBytes(file.string()) == Expected({.name = {}, .number = 77, .height = {}}));
}

TEST_F(RecordSet, LosesNothingWhenSeveralRunAtOnce) {
  // Each exits with 0 and is in the file, or with 3 and is not.
  Bytes expected = before_;
  const json index = SampleIndex("valley_drive");
  std::vector<std::size_t> offsets;
  for (const json& frame : index["frames"]) {
    const auto offset = frame["offset"].get<std::size_t>();
    if ((expected[offset + 15] & 0x03) != 0x03) continue;  // no name and number to change
    offsets.push_back(offset);
    if (offsets.size() == 12) break;
  }
  ASSERT_EQ(offsets.size(), 12u);
  std::vector<int> codes(offsets.size());
  std::vector<std::thread> runs;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    runs.emplace_back([&, i] {
      codes[i] = SetAt(std::to_string(offsets[i]), {"--number", "4711"}).exitCode;
    });
  }
  for (std::thread& run : runs) run.join();
  int successes = 0;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    SCOPED_TRACE(offsets[i]);
    EXPECT_TRUE(codes[i] == 0 || codes[i] == 3) << codes[i];
    if (codes[i] != 0) continue;
    ++successes;
    std::uint8_t* const frame = &expected[offsets[i]];
    Change{.name = {}, .number = 4711, .height = {}}.Apply(frame, frame[2] + 256u * frame[3] + 2u);
  }
  EXPECT_GE(successes, 1);
  EXPECT_TRUE(ReadBytes(file_) == expected);
}

}  // namespace
