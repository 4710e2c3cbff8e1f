// What `record diff` reports about two files.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

// A measurement at a time of week in milliseconds, with a time B to distinguish it from others.
Bytes At(std::uint32_t time, std::uint32_t timeB = 0) {
  Bytes body = MakeBody(0, {});
  for (std::size_t i = 0; i < 4; ++i) {
    body[2 + i] = static_cast<std::uint8_t>(time >> (8 * i));
    body[6 + i] = static_cast<std::uint8_t>(timeB >> (8 * i));
  }
  return MakeFrame(113, body);
}
Bytes Other(std::uint32_t value) {
  return MakeFrame(17, {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)});
}

class RecordDiff : public testing::Test {
 protected:
  Outcome Diff(const Bytes& a, const Bytes& b, const std::vector<std::string>& more = {}) {
    WriteBytes(folder_ / "a.rec", a);
    WriteBytes(folder_ / "b.rec", b);
    std::vector<std::string> arguments = {"record", "diff", "a.rec", "b.rec"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunProgram(arguments, {.folder = folder_.Path().string()});
  }
  // The lines of the differences, and at the end the numbers.
  std::vector<json> Lines(const Bytes& a, const Bytes& b) {
    const Outcome outcome = Diff(a, b, {"--json"});
    std::vector<json> lines = JsonLines(outcome.out);
    const bool isSame = lines.size() == 1;
    EXPECT_EQ(outcome.exitCode, isSame ? 0 : 1);
    EXPECT_EQ(outcome.err, "");
    return lines;
  }
  // Same, changed, removed, added; as many lines as the last three say.
  std::vector<int> Counts(const Bytes& a, const Bytes& b) {
    const std::vector<json> lines = Lines(a, b);
    const json& all = lines.back();
    const std::vector<int> counts = {all["same"], all["changed"], all["removed"], all["added"]};
    int told = 0;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
      const std::string change = lines[i]["change"];
      EXPECT_EQ(lines[i]["offsetA"].is_null(), change == "added");
      EXPECT_EQ(lines[i]["offsetB"].is_null(), change == "removed");
      EXPECT_EQ(lines[i].contains("fields"), change == "changed");
      ++told;
    }
    EXPECT_EQ(told, counts[1] + counts[2] + counts[3]);
    return counts;
  }

  TempFolderC folder_;
};

using Numbers = std::vector<int>;

TEST_F(RecordDiff, ExitsWithZeroForTheSameRecords) {
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  const Outcome outcome = Diff(sample, sample);
  EXPECT_EQ(outcome.exitCode, 0);
  const json index = SampleIndex("valley_drive");
  const std::size_t records = index["frames"].size() + index["others"].size();
  EXPECT_EQ(outcome.out, std::to_string(records) + " the same, 0 changed, 0 removed, 0 added\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Counts({}, {}), (Numbers{0, 0, 0, 0}));
  // Gaps are not records.
  EXPECT_EQ(Counts(At(1) + Bytes(5, 1) + At(2), At(1) + At(2) + Bytes(3, 0)),
            (Numbers{2, 0, 0, 0}));
}

TEST_F(RecordDiff, ExitsWithZeroForFilesWithoutARecord) {
  WriteBytes(folder_ / "empty.rec", {});
  const Outcome outcome =
      RunProgram({"record", "diff", folder_ / "empty.rec", folder_ / "empty.rec"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "0 the same, 0 changed, 0 removed, 0 added\n");
}

TEST_F(RecordDiff, TellsTheFieldsOfAChangedRecord) {
  const std::string file = DataPath("valley_drive.rec");
  const Bytes sample = ReadBytes(file);
  WriteBytes(folder_ / "changed.rec", sample);
  ASSERT_EQ(RunProgram({"record", "set", folder_ / "changed.rec", "--offset", "36471", "--name",
                        "New 7", "--number", "8", "--antenna-height", "1.75"})
                .exitCode,
            0);
  const std::vector<json> shown =
      JsonLines(RunProgram({"record", "show", file, "--offset", "36471", "--json"}).out);
  const json& antenna = shown.at(0)["measurement"]["antennaHeight"];
  const Bytes changed = ReadBytes(folder_ / "changed.rec");
  const std::vector<json> lines = Lines(sample, changed);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0]["change"], "changed");
  EXPECT_EQ(lines[0]["offsetA"], 36471);
  EXPECT_EQ(lines[0]["offsetB"], 36471);
  EXPECT_EQ(lines[0]["type"], 113);
  bool hasHeight = false;
  for (const json& field : lines[0]["fields"]) {
    const std::string name = field["name"];
    if (name == "name") {
      EXPECT_EQ(field["b"], "New 7");
    } else if (name == "number") {
      EXPECT_EQ(field["b"], 8);
    }
    EXPECT_EQ(field.contains("ulps"), name.ends_with("height")) << name;
    if (name != "antenna_height") continue;
    hasHeight = true;
    EXPECT_NEAR(field["a"].get<double>(), antenna["height"].get<double>(), 1e-6);
    EXPECT_EQ(field["b"], 1.75);
    EXPECT_GT(field["ulps"], 0);
  }
  EXPECT_TRUE(hasHeight);
  const std::string text = Diff(sample, changed).out;
  EXPECT_TRUE(text.starts_with("changed       36471       36471  20")) << text;
  EXPECT_NE(text.find("\n    number: "), std::string::npos) << text;
  EXPECT_NE(text.find(" -> \"New 7\"\n"), std::string::npos) << text;
  EXPECT_NE(text.find(" -> 1.75 ("), std::string::npos) << text;
  EXPECT_NE(text.find(" ULP)\n"), std::string::npos) << text;
}

TEST_F(RecordDiff, WritesALineForEachDifferenceInItsOrder) {
  const Bytes a = At(1000) + At(2000) + Other(5) + At(3000) + At(4000);
  const Bytes b = Other(9) + At(1000) + At(2000, 7) + At(2500) + At(3000);
  const std::size_t size = At(0).size();
  const std::size_t other = Other(0).size();
  const auto number = [](std::size_t value) {
    const std::string digits = std::to_string(value);
    return std::string(10 - digits.size(), ' ') + digits;
  };
  EXPECT_EQ(Diff(a, b).out,
            "added             -  " + number(0) + "  record of kind 17\n" + "changed  " +
                number(size) + "  " + number(other + size) +
                "  2020-02-02T00:00:02.000\n    time_b_of_week: 0 -> 7\n" + "removed  " +
                number(2 * size) + "           -  record of kind 17\n" + "added             -  " +
                number(other + 2 * size) + "  2020-02-02T00:00:02.500\n" + "removed  " +
                number(3 * size + other) + "           -  2020-02-02T00:00:04.000\n" +
                "2 the same, 1 changed, 2 removed, 2 added\n");
}

TEST_F(RecordDiff, PairsMeasurementsOfTheSameTime) {
  // Each with the first unpaired one, in any order.
  EXPECT_EQ(Counts(At(1, 1) + At(1, 2) + At(2, 1), At(2, 5) + At(1, 6)), (Numbers{0, 2, 1, 0}));
  EXPECT_EQ(Counts(At(1, 1), At(2, 1)), (Numbers{0, 0, 1, 1}));
  // Records without a time are not paired, nor are those with an unchanged record in between.
  EXPECT_EQ(Counts(Other(1), Other(2)), (Numbers{0, 0, 1, 1}));
  EXPECT_EQ(Counts(At(1, 1) + At(5), At(5) + At(1, 2)), (Numbers{1, 0, 1, 1}));
}

TEST_F(RecordDiff, ReportsWhatOnlyOneFileHasAsRemovedOrAdded) {
  const Bytes two = At(1) + At(2);
  EXPECT_EQ(Counts(two, {}), (Numbers{0, 0, 2, 0}));
  EXPECT_EQ(Counts({}, two), (Numbers{0, 0, 0, 2}));
  EXPECT_EQ(Counts(two + At(3), two), (Numbers{2, 0, 1, 0}));
  EXPECT_EQ(Counts(two, At(0) + two), (Numbers{2, 0, 0, 1}));
}

// If all records differ from each other, the longest common subsequence is the unchanged ones.
TEST_F(RecordDiff, FindsTheRecordsThatAreLeftBetweenScatteredChanges) {
  std::uint64_t state = 11;
  const auto random = [&state](std::uint64_t below) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return (state >> 33) % below;
  };
  for (const std::uint64_t rarity : {3U, 20U, 100U, 700U}) {
    SCOPED_TRACE(rarity);
    Bytes a;
    Bytes b;
    Numbers expected(4);
    for (std::uint32_t i = 0; i < 3000; ++i) {
      const std::uint64_t what = random(3 * rarity);
      const Bytes record = At(1000 * i, 1);
      if (what != 0) a = a + record;
      if (what != 1) b = b + (what == 2 ? At(1000 * i, 2) : record);
      ++expected[what == 0 ? 3 : what == 1 ? 2 : what == 2 ? 1 : 0];
    }
    EXPECT_EQ(Counts(a, b), expected);
  }
}

// More of them than are compared at a time.
TEST_F(RecordDiff, PairsTimesInLongRunsOfDifferences) {
  constexpr std::uint32_t kRecords = 20000;
  const auto file = [](std::uint32_t begin, const std::function<Bytes(std::uint32_t)>& record) {
    Bytes all;
    for (std::uint32_t i = begin; i < kRecords; ++i) {
      const Bytes one = record(i);
      all.insert(all.end(), one.begin(), one.end());
    }
    return all;
  };
  const Bytes a = file(0, [](std::uint32_t i) { return At(1000 * i, 1); });
  EXPECT_EQ(Counts(a, file(0, [](std::uint32_t i) { return At(1000 * i, 2); })),
            (Numbers{0, kRecords, 0, 0}));
  EXPECT_EQ(Counts(a, file(9000, [](std::uint32_t i) { return At(1000 * i, 2); })),
            (Numbers{0, kRecords - 9000, 9000, 0}));
  EXPECT_EQ(Counts(a, file(9000, [](std::uint32_t i) { return At(1000 * i, 1); })),
            (Numbers{kRecords - 9000, 0, 9000, 0}));
  EXPECT_EQ(Counts(file(0, [](std::uint32_t i) { return Other(i); }),
                   file(0, [](std::uint32_t i) { return Other(i + 30000); })),
            (Numbers{0, 0, kRecords, kRecords}));
}

TEST_F(RecordDiff, ExitsWithThreeOrTwoIfItCannotCompare) {
  WriteBytes(folder_ / "a.rec", At(1));
  const std::string work = folder_.Path().string();
  for (const std::vector<std::string>& files : {std::vector<std::string>{"a.rec", "none.rec"},
                                                {"none.rec", "a.rec"},
                                                {"a.rec", "."},
                                                {".", "a.rec"}}) {
    const Outcome outcome = RunProgram({"record", "diff", files[0], files[1]}, {.folder = work});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.starts_with("surveydata: cannot read ")) << outcome.err;
  }
  EXPECT_EQ(RunProgram({"record", "diff", "-", "/dev/stdin"}, {.folder = work}).exitCode, 2);
  EXPECT_EQ(RunProgram({"record", "diff", "a.rec"}, {.folder = work}).exitCode, 2);
  EXPECT_EQ(
      RunProgram({"record", "diff", "a.rec", "-"}, {.folder = work, .input = folder_ / "a.rec"})
          .out,
      "1 the same, 0 changed, 0 removed, 0 added\n");
}

TEST_F(RecordDiff, ComparesOnlyTheMeasurementsThatFiltersTake) {
  const Bytes a = At(1000, 1) + Other(1) + At(2000, 1) + At(3000, 1) + At(4000, 1);
  const Bytes b = At(1000, 1) + Other(2) + At(2000, 2) + At(3000, 1) + At(5000, 1);
  EXPECT_EQ(Counts(a, b), (Numbers{2, 1, 2, 2}));
  const auto last = [&](const std::vector<std::string>& filters) {
    return ::Lines(Diff(a, b, filters).out).back();
  };
  EXPECT_EQ(last({"--where", "time_of_week >= 0"}), "2 the same, 1 changed, 1 removed, 1 added");
  EXPECT_EQ(last({"--from", "2020-02-02T00:00:02", "--to", "2020-02-02T00:00:04"}),
            "1 the same, 1 changed, 0 removed, 0 added");
  EXPECT_EQ(last({"--where", "time_b_of_week = 1", "--to", "2020-02-02T00:00:04"}),
            "2 the same, 0 changed, 1 removed, 0 added");
  EXPECT_EQ(last({"--every", "3"}), "1 the same, 0 changed, 1 removed, 1 added");
  EXPECT_EQ(last({"--name", "nobody"}), "0 the same, 0 changed, 0 removed, 0 added");
  EXPECT_EQ(Diff(a, b, {"--every", "3"}).exitCode, 1);
  EXPECT_EQ(Diff(a, b, {"--where", "time_of_week < 2000"}).exitCode, 0);
}

// Threads read stretches of both files up to a difference: near the ends of stretches, which are at
// whole mebibytes, in two stretches at once, and after records and gaps that only one file has.
TEST_F(RecordDiff, FindsTheSameInStretches) {
  constexpr std::size_t kStretch = std::size_t{1} << 20;
  Bytes a;
  Bytes b;
  const auto put = [](Bytes& bytes, const Bytes& what) {
    bytes.insert(bytes.end(), what.begin(), what.end());
  };
  std::uint32_t time = 0;
  int same = 0;
  // The same records in both files, up to this size of A.
  const auto fill = [&](std::size_t size) {
    for (; a.size() < size; ++same) {
      const Bytes record = ++time % 3 == 0 ? MakeFrame(17, Bytes(900, 7)) : At(time);
      put(a, record);
      put(b, record);
    }
  };
  const auto change = [&] {
    put(a, At(++time, 1));
    put(b, At(time, 2));
  };
  fill(2 * kStretch - 1);
  change();
  fill(3 * kStretch - 500);
  change();
  fill(3 * kStretch + 500);
  put(a, At(++time));  // removed; from here on, stretches of B begin earlier
  fill(5 * kStretch);
  put(b, Bytes(1000, 1));  // a gap
  fill(6 * kStretch);
  change();
  fill(9 * kStretch);
  put(b, Bytes(kStretch, 1));  // a gap over a whole stretch
  fill(12 * kStretch);
  put(b, At(time + 1) + At(time + 2));  // added
  time += 2;
  fill(14 * kStretch);
  put(b, At(++time));  // at the end
  for (const std::vector<std::string>& format :
       {std::vector<std::string>{}, {"--json"}, {"--every", "5"}, {"--where", "offset >= 0"}}) {
    SCOPED_TRACE(format.empty() ? "" : format[0]);
    const auto diff = [&](const std::string& jobs) {
      std::vector<std::string> options = format;
      options.insert(options.end(), {"--jobs", jobs});
      return Diff(a, b, options);
    };
    const Outcome expected = diff("1");
    if (format.empty()) {
      EXPECT_EQ(::Lines(expected.out).back(),
                std::to_string(same) + " the same, 3 changed, 1 removed, 3 added");
    }
    for (const char* const jobs : {"2", "3", "16"}) {
      const Outcome outcome = diff(jobs);
      EXPECT_TRUE(outcome.out == expected.out) << jobs;
      EXPECT_EQ(outcome.exitCode, 1);
      EXPECT_EQ(outcome.err, "");
    }
  }
  const Outcome whole = Diff(a, a, {"--jobs", "4"});
  EXPECT_EQ(whole.exitCode, 0);
  EXPECT_TRUE(::Lines(whole.out).back().ends_with(" the same, 0 changed, 0 removed, 0 added"));
}

class FolderDiff : public testing::Test {
 protected:
  FolderDiff() {
    for (const char* const folder : {"a/sub", "b/sub"}) {
      std::filesystem::create_directories(folder_.Path() / folder);
    }
    Put("a/same.rec", At(1) + At(2));
    Put("b/same.rec", At(1) + At(2));
    Put("a/changed.rec", At(1) + At(2) + At(3));
    Put("b/changed.rec", At(1) + At(2, 5));
    Put("a/old.rec", At(1));
    Put("b/new.rec", At(1));
    Put("b/newer.rec", At(2));
    Put("a/sub/x.rec", At(7));
    Put("b/sub/x.rec", At(7) + At(8));
    Put("b/sub/text.txt", {1, 2, 3});
  }
  void Put(const std::string& name, const Bytes& bytes) { WriteBytes(folder_ / name, bytes); }
  Outcome Diff(std::vector<std::string> options) {
    options.insert(options.begin(), {"record", "diff", "a", "b"});
    return RunProgram(options, {.folder = folder_.Path().string()});
  }

  TempFolderC folder_;
};

TEST_F(FolderDiff, ComparesTheFilesOfTheSamePath) {
  const Outcome outcome = Diff({});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out,
            "changed.rec\n"
            "changed          19          19  2020-02-02T00:00:00.002\n"
            "    time_b_of_week: 0 -> 5\n"
            "removed          38           -  2020-02-02T00:00:00.003\n"
            "1 the same, 1 changed, 1 removed, 0 added\n"
            "\nnew.rec\nadded    the file; only B has it\n"
            "\nnewer.rec\nadded    the file; only B has it\n"
            "\nold.rec\nremoved  the file; only A has it\n"
            "\nsame.rec\n2 the same, 0 changed, 0 removed, 0 added\n"
            "\n5 files: 1 the same, 1 different, 1 removed, 2 added, 0 unreadable; "
            "records: 3 the same, 1 changed, 1 removed, 0 added\n");
  std::vector<json> lines = JsonLines(Diff({"--recursive", "--json"}).out);
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_EQ(lines[0]["file"], "changed.rec");
  EXPECT_EQ(lines[0]["change"], "changed");
  EXPECT_EQ(lines[3], (json{{"file", "new.rec"}, {"change", "added"}}));
  EXPECT_EQ(lines[5], (json{{"file", "old.rec"}, {"change", "removed"}}));
  EXPECT_EQ(lines[7]["file"], "sub/x.rec");
  EXPECT_EQ(lines[7]["offsetB"], 19);
  EXPECT_EQ(lines.back(), (json{{"files", 6},
                                {"sameFiles", 1},
                                {"differentFiles", 2},
                                {"removedFiles", 1},
                                {"addedFiles", 2},
                                {"unreadableFiles", 0},
                                {"same", 4},
                                {"changed", 1},
                                {"removed", 1},
                                {"added", 1}}));
}

TEST_F(FolderDiff, WritesTheSameWithAnyNumberOfThreads) {
  std::uint32_t number = 0;
  for (int i = 0; i < 40; ++i) {
    Bytes a;
    Bytes b;
    for (std::uint32_t k = 0; k < 300U; ++k) {
      a = std::move(a) + At(1000 * k);
      b = std::move(b) + At(1000 * k, ++number % 50 == 0 ? 1 : 0);
    }
    const std::string name = "/sub/" + std::to_string(i) + ".rec";
    Put("a" + name, a);
    Put("b" + name, b);
  }
  for (const std::vector<std::string>& format :
       {std::vector<std::string>{"-r"}, {"-r", "--json"}, {"-r", "--every", "3"}}) {
    const auto diff = [&](const std::string& jobs) {
      std::vector<std::string> options = format;
      options.insert(options.end(), {"--jobs", jobs});
      return Diff(options);
    };
    const Outcome expected = diff("1");
    EXPECT_GT(expected.out.size(), 5'000U);
    for (const char* const jobs : {"2", "7"}) {
      const Outcome outcome = diff(jobs);
      EXPECT_TRUE(outcome.out == expected.out);
      EXPECT_EQ(outcome.exitCode, 1);
      EXPECT_EQ(outcome.err, "");
    }
  }
}

TEST_F(FolderDiff, ExitsWithZeroForTheSameFiles) {
  for (const char* const name : {"changed.rec", "old.rec", "new.rec", "newer.rec"}) {
    std::filesystem::remove(folder_.Path() / "a" / name);
    std::filesystem::remove(folder_.Path() / "b" / name);
  }
  const Outcome same = Diff({});
  EXPECT_EQ(same.exitCode, 0);
  EXPECT_EQ(::Lines(same.out).back(),
            "1 file: 1 the same, 0 different, 0 removed, 0 added, 0 unreadable; "
            "records: 2 the same, 0 changed, 0 removed, 0 added");
}

}  // namespace
