// Which measurements the filters select: tests of times and conditions, and of the commands with
// these options, whose output is compared with the expected lines of the samples.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <command_line/command.h>
#include <record/decoded_record.h>
#include <record/gps_moment.h>
#include <record/record_condition.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

constexpr std::int64_t kWeek = 7 * 24 * 3600 * std::int64_t{1000};
// 2020-02-07T02:14:35 in GPS time, which was 18 s ahead of UTC.
constexpr std::int64_t kStart = 2091 * kWeek + 440'075'000;

TEST(ParseMoment, ReadsDatesAndTimesOfGpsTimeAndUtc) {
  const struct {
    const char* text;
    std::int64_t time;
  } cases[] = {
      {"2020-02-07T02:14:35", kStart},
      {"2020-02-07T02:14:35.000", kStart},
      {"2020-02-07T02:14:35.5", kStart + 500},
      {"2020-02-07T02:14:35.0005", kStart + 1},  // the first millisecond that is not earlier
      {"2020-02-07T02:14", kStart - 35'000},
      {"2020-02-07", kStart - 8'075'000},
      {"2020-02-07T02:14:17Z", kStart},
      {"2020-02-07Z", kStart - 8'075'000 + 18'000},
      {"1980-01-06", 0},
      {"1970-01-01", 0},
      {"0000-01-01", 0},
      {"1980-01-05T23:59:59.999", 0},
      {"3236-01-06", 65'535 * kWeek},
      {"3236-01-12T23:59:59.999", 65'536 * kWeek - 1},
      {"3236-01-13", 65'536 * kWeek},
      {"9999-12-31", 65'536 * kWeek},
      // GPS time was 17 s ahead before the leap second of 2016, and 18 s after it.
      {"2016-12-31T23:59:59Z", 1930 * kWeek + 16'000},
      {"2016-12-31T23:59:60Z", 1930 * kWeek + 17'000},
      {"2016-12-31T23:59:60.999Z", 1930 * kWeek + 17'999},
      {"2017-01-01Z", 1930 * kWeek + 18'000},
  };
  for (const auto& [text, time] : cases) EXPECT_EQ(Tool::ParseMoment(text), time) << text;
}

TEST(ParseMoment, RefusesTextsThatAreNotTimes) {
  for (const char* const text : {"",
                                 "2020",
                                 "2020-02",
                                 "20-02-07",
                                 "2020-2-7",
                                 "2020-02-30",
                                 "2021-02-29",
                                 "2020-13-01",
                                 "2020-02-07T",
                                 "2020-02-07T02",
                                 "2020-02-07T24:00",
                                 "2020-02-07T02:60",
                                 "2020-02-07T02:14:60",
                                 "2020-02-07T02:14:35.",
                                 "2020-02-07T02:14:35,5",
                                 "2020-02-07 02:14",
                                 "2020-02-07T02:14:35+01:00",
                                 "2020-02-07T02:14:35z",
                                 "2020-02-07T23:59:60Z",
                                 "2016-12-31T23:59:61Z",
                                 "2016-12-31T12:59:60Z",
                                 " 2020-02-07",
                                 "2020-02-07 "}) {
    EXPECT_THROW(Tool::ParseMoment(text), Tool::ValueErrorC) << text;
  }
}

// Years have four digits, as in ISO 8601; none is rejected because no measurement can be in it.
TEST(ParseMoment, SaysWhatIsWrong) {
  const struct {
    const char* text;
    const char* reason;
  } cases[] = {
      {"9999999-01-01", "the year must have 4 digits"},
      {"10000-01-01", "the year must have 4 digits"},
      {"999-01-01", "the year must have 4 digits"},
      {"-001-01-01", "the year must have 4 digits"},
      {"2020-002-07", "the month must have 2 digits"},
      {"2020-02-077", "the day must have 2 digits"},
      {"2020-02-07T002:14", "the hour must have 2 digits"},
      {"2020-02-07T02:14:355", "the second must have 2 digits"},
      {"2020/02/07", "expected - before \"/02/07\""},
      {"2020-02", "it ends too early"},
      {"2020-02-07x", "unexpected characters after the time"},
  };
  for (const auto& [text, reason] : cases) {
    try {
      Tool::ParseMoment(text);
      ADD_FAILURE() << text;
    } catch (const Tool::ValueErrorC& error) {
      EXPECT_EQ(std::string(error.what()),
                std::string(reason) +
                    "; write a time as 2020-02-06T18:14:35.5 in GPS time, or in UTC "
                    "with a Z at the end");
    }
  }
}

Tool::DecodedRecord SampleRecord() {
  static const Bytes bytes = ReadBytes(DataPath("valley_drive.rec"));
  return Tool::Decode(960, {&bytes[960], 467});
}

bool IsTrue(const std::string& condition) {
  return Tool::RecordConditionC(condition).IsTrue(SampleRecord());
}

// Of the record at 960: offset 960, size 467, name "Süd-Ø1", 25 satellites of 39 used, HDOP 0.8,
// VDOP 1.3, system_1_used false.
TEST(RecordCondition, ComparesNumbersTextsAndFlags) {
  for (const char* const condition : {"offset = 960",
                                      "offset == 960",
                                      "offset != 961",
                                      "offset < 961",
                                      "offset <= 960",
                                      "offset > 959",
                                      "offset >= 960",
                                      "offset=960",
                                      "offset = +960",
                                      "offset = 9.6e2",
                                      "offset > -1",
                                      "offset < 960.5",
                                      "offset < 1e30",
                                      "hdop = 0.8",
                                      "hdop = .8",
                                      "vdop > 1.25",
                                      "used = 25",
                                      "in_view = 39",
                                      "total_second = 25",
                                      "name = 'S\u00FCd-\u00D81'",
                                      "name = \"S\u00FCd-\u00D81\"",
                                      "name > 'S'",
                                      "name < 'T'",
                                      "name != ''",
                                      "name != 'it''s'",
                                      "name != \"a \"\"b\"\" c\"",
                                      "not system_1_used",
                                      "system_1_used = false",
                                      "system_1_used != true",
                                      "time_gps >= '2020-02-07T02:14:43'",
                                      "present(hdop)",
                                      "present(list_entries) or not present(list_entries)"}) {
    EXPECT_TRUE(IsTrue(condition)) << condition;
    EXPECT_FALSE(IsTrue("not (" + std::string(condition) + ")")) << condition;
  }
  for (const char* const condition :
       {"offset != 960", "offset < 960", "offset > 960", "offset = 960.5", "offset = -1",
        "hdop = 0.9", "name = 'S\u00FCd'", "system_1_used", "system_1_used = true",
        "offset > 99999999999999999999"}) {
    EXPECT_FALSE(IsTrue(condition)) << condition;
  }
}

TEST(RecordCondition, ComparesInTheFormOfTheColumn) {
  Tool::DecodedRecord record;
  // The single-precision number nearest to 1.61 is slightly larger.
  record.measurement.SetAntennaHeight(SDI::GPSAntHeightImplC(1.61F, true, 0.0F));
  EXPECT_TRUE(Tool::RecordConditionC("antenna_height = 1.61").IsTrue(record));
  EXPECT_FALSE(Tool::RecordConditionC("antenna_height > 1.61").IsTrue(record));
  EXPECT_TRUE(Tool::RecordConditionC("antenna_height < 1e300").IsTrue(record));
  record.offset = 9'007'199'254'740'993;  // not a double
  EXPECT_TRUE(Tool::RecordConditionC("offset > 9007199254740992").IsTrue(record));
  EXPECT_TRUE(Tool::RecordConditionC("offset = 9007199254740993").IsTrue(record));
}

TEST(RecordCondition, AppliesNotBeforeAndAndAndBeforeOr) {
  const char* const yes = "offset = 960";
  const char* const no = "offset = 0";
  const auto put = [&](std::string text) {
    std::string out;
    for (const char c : text) {
      out += c == 'Y' ? std::string(yes) : c == 'N' ? std::string(no) : std::string(1, c);
    }
    return out;
  };
  for (const char* const text : {"Y or N and N", "N and N or Y", "Y or Y and N", "not N and Y",
                                 "not N or Y", "not (Y and N)", "not not Y", "Y and Y and Y",
                                 "N or N or Y", "((Y))", "Y and (N or Y)", "not N and not N"}) {
    EXPECT_TRUE(IsTrue(put(text))) << text;
  }
  for (const char* const text :
       {"(Y or N) and N", "not Y and N", "not (Y or N)", "not Y or N", "N or N", "Y and N and Y"}) {
    EXPECT_FALSE(IsTrue(put(text))) << text;
  }
}

TEST(RecordCondition, TreatsAComparisonWithAnAbsentValueAsFalse) {
  const Tool::DecodedRecord empty;
  for (const char* const condition :
       {"hdop < 100", "hdop >= 0", "hdop != 5", "name = ''", "name != 'a'", "present(hdop)"}) {
    EXPECT_FALSE(Tool::RecordConditionC(condition).IsTrue(empty)) << condition;
    EXPECT_TRUE(Tool::RecordConditionC("not " + std::string(condition)).IsTrue(empty)) << condition;
  }
}

std::string MessageOf(const std::string& condition) {
  try {
    const Tool::RecordConditionC ignored(condition);
  } catch (const Tool::ValueErrorC& error) {
    return error.what();
  }
  return "no error";
}

TEST(RecordCondition, PointsAtTheErrors) {
  const struct {
    const char* condition;
    const char* message;
  } cases[] = {
      {"", "at its end: expected a condition, e.g. pdop < 4"},
      {"pdop", "at its end: expected a comparison: = != < <= > >="},
      {"pdop <", "at its end: expected a number, a text in quotes, true or false"},
      {"pdop < 4 and", "at its end: expected a condition, e.g. pdop < 4"},
      {"pdop < 4 5", "at character 10, \"5\": expected and, or, or the end"},
      {"pdop < 4 and pdob > 1",
       "at character 14, \"pdob > 1\": there is no column \"pdob\"; did you mean pdop?"},
      {"AZ > 1",
       "at character 1, \"AZ > 1\": there is no column \"AZ\"; surveydata record columns lists "
       "them"},
      {"(pdop < 4", "at its end: expected and, or, or )"},
      {"pdop < 4)", "at character 9, \")\": expected and, or, or the end"},
      {"pdop < 4x", "at character 8, \"4x\": this is not a number"},
      {"pdop < 1.2.3", "at character 8, \"1.2.3\": this is not a number"},
      {"pdop < +-1", "at character 8, \"+-1\": this is not a number"},
      {"pdop < 1e999", "at character 8, \"1e999\": this number is too large or too small"},
      {"pdop < 'a'", "at character 8, \"'a'\": the column pdop is a number, not a text"},
      {"name = 4", "at character 8, \"4\": the column name is a text, not a number"},
      {"flag_a = 1", "at character 10, \"1\": the column flag_a is true or false, not a number"},
      {"flag_a < true",
       "at character 8, \"< true\": the column flag_a is true or false; = and != compare it"},
      {"name = '\u00FC' and name = '\u00FC",
       "at character 23, \"'\u00FC\": this text has no "
       "closing quotation mark"},
      {"name = '\u00FC' x", "at character 12, \"x\": expected and, or, or the end"},
      {"pdop ~ 4", "at character 6, \"~ 4\": unknown character"},
      {"present(4)", "at character 9, \"4)\": expected the name of a column"},
      {"present(pdop", "at its end: expected )"},
      {"list_entries = 4",
       "at character 1, \"list_entries = 4\": the column list_entries is a list, "
       "which only present(list_entries) takes"},
      {"and", "at character 1, \"and\": expected a condition, e.g. pdop < 4"},
  };
  for (const auto& [condition, message] : cases) EXPECT_EQ(MessageOf(condition), message);
}

TEST(RecordCondition, RefusesMoreParenthesesThanItsDepth) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '(') + "offset = 960" + std::string(depth, ')');
  };
  EXPECT_TRUE(IsTrue(nested(100)));
  EXPECT_EQ(MessageOf(nested(1'000'000)).substr(0, 18), "at character 101, ");
  std::string negations;
  for (int i = 0; i < 100'000; ++i) negations += "not ";
  EXPECT_TRUE(IsTrue(negations + "offset = 960"));
}

// The lines of the expectation file of a sample that `takes` selects.
std::string Expected(const char* sample, const std::function<bool(const json&)>& takes) {
  std::string text;
  for (const std::string& line :
       Lines(ReadText(DataPath(std::string(sample) + ".expected.jsonl")))) {
    if (takes(json::parse(line))) text += line + "\n";
  }
  return text;
}

Outcome Export(const char* sample, std::vector<std::string> options) {
  options.insert(options.begin(), {"record", "export", DataPath(std::string(sample) + ".rec")});
  return RunProgram(options);
}

std::int64_t TimeOf(const json& line) {
  const json& time = line["measurement"]["timeA"];
  return time[0].get<std::int64_t>() * kWeek + time[1].get<std::int64_t>();
}

struct FilterCase {
  std::vector<std::string> options;
  std::function<bool(const json&)> takes;
};

std::vector<FilterCase> FilterCases() {
  const auto isGood = [](const json& line) {
    const json& dops = line["getters"]["dops"];
    const json& pair = line["getters"]["totalPair"];
    return !dops.is_null() && dops["pdop"] != -1 && dops["pdop"] < 4 && !pair.is_null() &&
           pair[1] >= 23;
  };
  const auto isNamed = [](const json& line) { return line["info"]["name"] == "Süd-Ø1"; };
  return {
      {{"--from", "2020-02-07T02:14:43"},
       [](const json& line) { return TimeOf(line) >= kStart + 8000; }},
      {{"--from", "2020-02-07T02:14:25Z", "--to", "2020-02-07T02:20"},
       [](const json& line) {
         return TimeOf(line) >= kStart + 8000 && TimeOf(line) < kStart + 325'000;
       }},
      {{"--to", "2020-02-07T02:14:43"},
       [](const json& line) { return TimeOf(line) < kStart + 8000; }},
      {{"--name", "Süd-Ø1"}, isNamed},
      {{"--name", "Süd-Ø1", "--name", ""},
       [=](const json& line) { return isNamed(line) || line["info"]["name"] == ""; }},
      {{"--where", "pdop < 4 and used >= 23"}, isGood},
      {{"--every", "7"}, [i = 0](const json&) mutable { return i++ % 7 == 0; }},
      {{"--every", "3", "--where", "pdop < 4 and used >= 23"},
       [=, i = 0](const json& line) mutable { return isGood(line) && i++ % 3 == 0; }},
  };
}

TEST(RecordFilter, ExportsTheMeasurementsThatItTakes) {
  for (const FilterCase& filter : FilterCases()) {
    SCOPED_TRACE(filter.options.back());
    const std::string expected = Expected("valley_drive", filter.takes);
    EXPECT_NE(expected, "");
    const Outcome outcome = Export("valley_drive", filter.options);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(outcome.out == expected);
  }
}

TEST(RecordFilter, ListsTheMeasurementsThatItTakesAndNothingElse) {
  for (const FilterCase& filter : FilterCases()) {
    SCOPED_TRACE(filter.options.back());
    std::vector<std::string> arguments = {"record", "list", DataPath("valley_drive.rec"), "--json"};
    arguments.insert(arguments.end(), filter.options.begin(), filter.options.end());
    std::vector<std::uint64_t> expected;
    for (const json& line : JsonLines(Expected("valley_drive", filter.takes))) {
      expected.push_back(line["offset"]);
    }
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.exitCode, 1) << "the gaps of the file are found nevertheless";
    std::vector<std::uint64_t> listed;
    for (const json& line : JsonLines(outcome.out)) {
      EXPECT_EQ(line["kind"], "measurement");
      listed.push_back(line["offset"]);
    }
    EXPECT_EQ(listed, expected);
  }
}

TEST(RecordFilter, PlotsTheMeasurementsThatItTakes) {
  const TempFolderC folder;
  const Outcome outcome = RunProgram(
      {"record", "plot", DataPath("valley_drive.rec"), "-o", folder / "a.svg", "--every", "7"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(ReadText(folder / "a.svg").find("60 measurements"), std::string::npos);  // of 414
}

TEST(RecordFilter, LeavesOutInvalidTimesOfWeekWhenItFiltersByTime) {
  const struct {
    std::uint32_t timeOfWeek;
    bool isTime;
  } cases[] = {{0, true}, {604'799'999, true}, {604'800'000, false}, {0xFFFF'FFFF, false}};
  for (const auto& [timeOfWeek, isTime] : cases) {
    SCOPED_TRACE(timeOfWeek);
    const TempFolderC folder;
    Bytes body = MakeBody(0, {});
    for (std::size_t i = 0; i < 4; ++i) {
      body[2 + i] = static_cast<std::uint8_t>(timeOfWeek >> (8 * i));
    }
    WriteBytes(folder / "a.rec", MakeFrame(113, body));
    const std::string file = folder / "a.rec";
    const std::string all = RunProgram({"record", "export", file}).out;
    EXPECT_EQ(Lines(all).size(), 1U);
    const std::string expected = isTime ? all : "";
    EXPECT_EQ(RunProgram({"record", "export", file, "--from", "1980-01-06"}).out, expected);
    EXPECT_EQ(RunProgram({"record", "export", file, "--to", "9999-01-01"}).out, expected);
  }
}

TEST(RecordFilter, SaysThatNoMeasurementIsTaken) {
  for (const char* const command : {"list", "export"}) {
    const Outcome outcome =
        RunProgram({"record", command, DataPath("valley_drive.rec"), "--name", "nobody"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "surveydata: " + DataPath("valley_drive.rec") +
                               " contains no measurement that the filters select\n");
  }
}

TEST(RecordFilter, SaysThatLeapSecondsAreNotCertain) {
  EXPECT_EQ(Export("valley_drive", {"--to", "2028-01-01Z"}).err,
            "surveydata: times in UTC from 2027-06-28 on assume that the IERS "
            "leap-seconds.list of 2026-07-06 has all leap seconds\n");
  EXPECT_EQ(Export("valley_drive", {"--to", "2028-01-01"}).err, "");
}

TEST(RecordFilter, RefusesOptionsThatAreWrong) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--from", "yesterday"},
      {"--to", ""},
      {"--where", ""},
      {"--where", "pdop <"},
      {"--every", "0"},
      {"--every", "-1"},
      {"--every", "x"},
      {"--every", ""},
      {"--from", "2020-01-02", "--to", "2020-01-02"},
      {"--to", "2020-01-01", "--from", "2020-01-02"},
  };
  for (const auto& options : wrong) {
    SCOPED_TRACE(options.front() + " " + options[1]);
    const Outcome outcome = Export("valley_drive", options);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find(options.size() > 2 ? "--from is not before --to" : options.front()),
              std::string::npos)
        << outcome.err;
  }
}

}  // namespace
