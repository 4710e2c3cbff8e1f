#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_columns.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

Outcome Export(const std::string& file, const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments = {"record", "export", file};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return RunProgram(arguments);
}

// Parses rows of cells by RFC 4180.
std::vector<std::vector<std::string>> ParseCsv(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::size_t i = 0;
  while (i < text.size()) {
    rows.emplace_back();
    for (;;) {
      std::string cell;
      if (text[i] == '"') {
        for (++i; text[i] != '"' || text[i + 1] == '"'; ++i) {
          if (text[i] == '"') ++i;
          cell += text[i];
        }
        ++i;
      } else {
        while (text[i] != ',' && text[i] != '\r') cell += text[i++];
      }
      rows.back().push_back(cell);
      if (text[i++] != ',') break;
    }
    EXPECT_EQ(text[i - 1], '\r');
    EXPECT_EQ(text[i++], '\n');
  }
  return rows;
}

// Whether a cell represents a value; numbers in any form that is read back as the same number.
bool IsCellOf(const std::string& cell, const SDI::GPSColumnValueC& value) {
  const auto isNumber = [&cell](auto number, auto parse) {
    char* end = nullptr;
    return parse(cell.c_str(), &end) == number && end == cell.c_str() + cell.size();
  };
  return std::visit(
      [&](const auto& held) {
        using Held = std::remove_cvref_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return cell.empty();
        } else if constexpr (std::is_same_v<Held, bool>) {
          return cell == (held ? "true" : "false");
        } else if constexpr (std::is_same_v<Held, float>) {
          return isNumber(held, &std::strtof);
        } else if constexpr (std::is_same_v<Held, double>) {
          return isNumber(held, &std::strtod);
        } else if constexpr (std::is_integral_v<Held>) {
          return cell == std::to_string(held);
        } else if constexpr (std::is_same_v<Held, std::string_view>) {
          return cell == held;
        } else {
          std::string entries;
          for (const std::uint16_t entry : held) {
            entries += (entries.empty() ? "" : " ") + std::to_string(entry);
          }
          return cell == entries;
        }
      },
      value.Get());
}

std::string WriteFrames(const TempFolderC& folder, const Bytes& frames) {
  WriteBytes(folder / "made.rec", frames);
  return folder / "made.rec";
}

json ExportOne(const TempFolderC& folder, const Bytes& frame) {
  return json::parse(Export(WriteFrames(folder, frame)).out);
}

TEST(RecordExport, GivesTheExpectationLinesOfBothSamplesByteForByte) {
  for (const char* const name : kSamples) {
    SCOPED_TRACE(name);
    const Outcome outcome = Export(DataPath(std::string(name) + ".rec"));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "") << "random headers in gaps are not bad frames";
    EXPECT_TRUE(outcome.out == ReadText(DataPath(std::string(name) + ".expected.jsonl")));
  }
}

TEST(RecordExport, WritesToAFileWhatItWritesToStandardOutput) {
  const TempFolderC folder;
  for (const char* const option : {"-o", "--output"}) {
    const Outcome outcome = Export(DataPath("valley_drive.rec"), {option, folder / "out.jsonl"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(ReadText(folder / "out.jsonl") ==
                ReadText(DataPath("valley_drive.expected.jsonl")));
  }
  EXPECT_EQ(Export(DataPath("valley_drive.rec"), {"-o", folder / "no/out.jsonl"}).exitCode, 3);
}

TEST(RecordExport, RefusesToOverwriteItsInput) {
  const TempFolderC folder;
  const Bytes bytes = ReadBytes(DataPath("valley_drive.rec"));
  const std::string file = WriteFrames(folder, bytes);
  for (const std::string& output : {file, (folder.Path() / "." / "made.rec").string()}) {
    EXPECT_EQ(Export(file, {"-o", output}).exitCode, 2);
    EXPECT_EQ(ReadBytes(file), bytes);
  }
}

void ExpectTable(const std::string& csv, const Bytes& bytes,
                 const std::vector<std::string>& columns) {
  const auto rows = ParseCsv(csv);
  ASSERT_FALSE(rows.empty());
  EXPECT_EQ(rows[0], columns);
  std::size_t row = 0;
  SDI::GPSColumnValueC value;
  for (const SDI::GPSRecordC& record : SDI::GPSRecordReaderC(bytes)) {
    SCOPED_TRACE(record.GetOffset());
    ASSERT_LT(++row, rows.size());
    ASSERT_EQ(rows[row].size(), columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      SDI::AskGPSColumn(*SDI::FindGPSColumn(columns[i]), record, value);
      EXPECT_TRUE(IsCellOf(rows[row][i], value)) << columns[i] << ": " << rows[row][i];
    }
  }
  EXPECT_EQ(row + 1, rows.size());
}

// `gps_record_columns_test` tests the values themselves.
TEST(RecordExport, WritesTheColumnsAsCsv) {
  std::vector<std::string> all;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) all.emplace_back(column.name);
  for (const char* const name : kSamples) {
    SCOPED_TRACE(name);
    const std::string file = DataPath(std::string(name) + ".rec");
    const Outcome outcome = Export(file, {"--csv"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    ExpectTable(outcome.out, ReadBytes(file), all);
  }
}

TEST(RecordExport, WritesTheColumnsThatAreChosenInTheirOrder) {
  const std::string file = DataPath("valley_drive.rec");
  ExpectTable(Export(file, {"--csv", "--columns", "time_utc,list_entries,offset"}).out,
              ReadBytes(file), {"time_utc", "list_entries", "offset"});
  ExpectTable(Export(file, {"--csv", "--columns", "hdop"}).out, ReadBytes(file), {"hdop"});
}

TEST(RecordExport, RefusesUnknownColumnsAndSuggestsTheNearest) {
  const struct {
    const char* columns;
    const char* message;
  } cases[] = {
      {"hdop,vdob", "there is no column \"vdob\"; did you mean vdop?"},
      {"time_urc", "there is no column \"time_urc\"; did you mean time_utc?"},
      {"HDOP", "there is no column \"HDOP\"; surveydata record columns lists them"},
      {"dop", "there is no column \"dop\"; did you mean hdop or vdop or tdop or pdop or gdop?"},
      {"measurement.timeA.week",
       "there is no column \"measurement.timeA.week\"; surveydata record columns lists them"},
      {"", "there is no column \"\"; surveydata record columns lists them"},
      {"hdop,", "there is no column \"\"; surveydata record columns lists them"},
      {"hdop,vdop,hdop", "the column hdop is listed twice"},
  };
  for (const auto& [columns, message] : cases) {
    const Outcome outcome = Export(DataPath("valley_drive.rec"), {"--csv", "--columns", columns});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
  }
  EXPECT_EQ(Export(DataPath("valley_drive.rec"), {"--columns", "hdop"}).exitCode, 2);
}

TEST(RecordExport, SaysOnceThatTimesInUtcAreAfterTheExpiryOfTheLeapSeconds) {
  const TempFolderC folder;
  const auto frameOf = [](std::uint16_t week) {
    Bytes body = MakeBody(0, {});
    body[0] = static_cast<std::uint8_t>(week & 0xFF);  // of time A, the first field
    body[1] = static_cast<std::uint8_t>(week >> 8);
    return MakeFrame(113, body);
  };
  const std::string message =
      "surveydata: times in UTC from 2027-06-28 on assume that the IERS "
      "leap-seconds.list of 2026-07-06 has all leap seconds\n";
  const std::string late = WriteFrames(folder, frameOf(2600) + frameOf(2601));
  EXPECT_EQ(Export(late, {"--csv"}).err, message);
  EXPECT_EQ(Export(late, {"--csv", "--columns", "time_utc"}).err, message);
  EXPECT_EQ(Export(late, {"--csv"}).exitCode, 0);
  EXPECT_EQ(Export(late, {"--csv", "--columns", "time_gps,gps_week"}).err, "");
  EXPECT_EQ(Export(late).err, "");
  EXPECT_EQ(Export(WriteFrames(folder, frameOf(2400)), {"--csv"}).err, "");
}

TEST(RecordColumns, AreListedAsTextAndAsJson) {
  const Outcome list = RunProgram({"record", "columns"});
  EXPECT_EQ(list.exitCode, 0);
  const auto lines = Lines(list.out);
  const auto objects = JsonLines(RunProgram({"record", "columns", "--json"}).out);
  const auto columns = SDI::GetGPSColumns();
  ASSERT_EQ(lines.size(), columns.size());
  ASSERT_EQ(objects.size(), columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const SDI::GPSColumn& column = columns[i];
    EXPECT_TRUE(lines[i].starts_with(std::string(column.name) + " "));
    EXPECT_TRUE(lines[i].ends_with(std::string(" ") + column.description));
    const std::string type = TextOf(column.type);
    EXPECT_NE(lines[i].find(" " + type + (column.canBeAbsent ? "? " : " ")), std::string::npos);
    EXPECT_EQ(objects[i], (json{{"name", column.name},
                                {"type", type},
                                {"unit", column.unit},
                                {"canBeAbsent", column.canBeAbsent},
                                {"description", column.description}}));
  }
}

TEST(RecordExport, QuotesCsvCellsThatNeedIt) {
  const TempFolderC folder;
  // Text D: a quote, a comma, a line feed and a return.
  const Bytes text = {'a', 0, '"', 0, ',', 0, '\n', 0, '\r', 0, 'z', 0, 0, 0};
  const std::string file =
      WriteFrames(folder, MakeFrame(113, MakeBody(0x2000, Bytes{0x00, 0x01} + text)));
  const std::string csv = Export(file, {"--csv"}).out;
  // Control characters are replaced in CSV and kept in JSON.
  EXPECT_NE(csv.find(",\"a\"\",\uFFFD\uFFFDz\","), std::string::npos) << csv;
  EXPECT_EQ(json::parse(Export(file).out)["measurement"]["textD"], "a\",\n\rz");
}

TEST(RecordExport, ExportsStoredPairsThatDoNotCountAsPresent) {
  const TempFolderC folder;
  const json record = ExportOne(folder, MakeFrame(113, MakeBody(0x1000, {2, 1, 4, 0})));
  EXPECT_EQ(record["measurement"]["system2Pair"], json::parse("[4,0]"));
  EXPECT_TRUE(record["getters"]["system2Pair"].is_null());
}

TEST(RecordExport, GivesNumbersThatJsonLacksAsNull) {
  const TempFolderC folder;
  for (const std::uint8_t top : {std::uint8_t{0x7F}, std::uint8_t{0xFF}}) {
    for (const std::uint8_t next : {std::uint8_t{0x80}, std::uint8_t{0xC0}}) {
      const json record = ExportOne(folder, MakeFrame(113, MakeBody(0x0004, {0, 0, next, top, 0})));
      EXPECT_TRUE(record["measurement"]["antennaHeight"]["height"].is_null());
    }
  }
}

TEST(RecordExport, KeepsEveryUnitOfATextEvenALoneSurrogate) {
  const TempFolderC folder;
  const Bytes text = {0x3D, 0xD8, 'A', 0, 0x7F, 0, 0x3D, 0xD8, 0x00, 0xDE, 0, 0};
  const std::string line =
      Export(WriteFrames(folder, MakeFrame(113, MakeBody(0x2000, Bytes{0x00, 0x01} + text)))).out;
  EXPECT_NE(line.find("\"textD\":\"\\ud83dA\\u007f\\ud83d\\ude00\""), std::string::npos) << line;
}

TEST(RecordExport, LeavesOutAFrameWhoseBlocksDoNotFitAndSaysSo) {
  const TempFolderC folder;
  const Bytes good = MakeFrame(113, MakeBody(0, {}));
  const Bytes bad = MakeFrame(113, MakeBody(0x0008, {2}));
  const Outcome outcome = Export(WriteFrames(folder, good + bad + good));
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(JsonLines(outcome.out).size(), 2u);
  EXPECT_EQ(outcome.err,
            "surveydata: the frame at 19 is left out: its blocks do not fit\n" + BadFramesTold(1));
}

// As many as a list shows, except headers that may be random bytes.
TEST(RecordExport, ReportsHowManyBadFramesItLeavesOut) {
  const TempFolderC folder;
  const Bytes good = MakeFrame(113, MakeBody(0, {}));
  Bytes bad = good;
  bad[10] ^= 1;
  const Bytes unfit = MakeFrame(113, MakeBody(0x0008, {2}));
  const auto cutTo = [&good](std::ptrdiff_t size) {
    return Bytes(good.begin(), good.begin() + size);
  };
  const struct {
    const char* what;
    Bytes bytes;
    std::size_t written;
    int badFrames;
    int listed;
  } cases[] = {
      {"nothing bad", good + MakeFrame(17, {1}) + Bytes{7} + good, 2, 0, 0},
      {"wrong checksum", good + bad + good, 2, 1, 1},
      {"two, and bytes between", bad + Bytes{1, 2} + good + bad, 1, 2, 2},
      {"cut by the end", good + cutTo(18), 1, 1, 1},
      {"header alone at the end", good + cutTo(5), 1, 1, 1},
      {"too little of a header", good + cutTo(4), 1, 0, 0},
      {"runs into the next record", cutTo(18) + good + good, 2, 0, 1},
      {"runs into the next record, and a wrong checksum", cutTo(18) + good + bad, 1, 1, 2},
      {"a wrong checksum, and runs into the next record", bad + good + cutTo(18) + good, 2, 1, 2},
  };
  for (const auto& [what, bytes, written, badFrames, listed] : cases) {
    SCOPED_TRACE(what);
    const std::string file = WriteFrames(folder, bytes);
    const Outcome outcome = Export(file);
    EXPECT_EQ(outcome.exitCode, badFrames == 0 ? 0 : 1);
    EXPECT_EQ(JsonLines(outcome.out).size(), written);
    EXPECT_EQ(outcome.err, badFrames == 0 ? "" : BadFramesTold(badFrames));
    const std::string list = RunProgram({"record", "list", file}).out;
    const std::string count =
        ", " + std::to_string(listed) + (listed == 1 ? " bad frame\n" : " bad frames\n");
    EXPECT_TRUE(list.ends_with(count)) << list;
  }
  const std::string file = WriteFrames(folder, unfit + good + bad);
  EXPECT_EQ(Export(file).err,
            "surveydata: the frame at 0 is left out: its blocks do not fit\n" + BadFramesTold(2));
}

TEST(RecordExport, ReportsAFileWithoutMeasurements) {
  const TempFolderC folder;
  for (const Bytes& bytes : {Bytes{}, MakeFrame(17, {1, 2, 3}), Bytes(1000, 0), Bytes{1}}) {
    WriteBytes(folder / "none.rec", bytes);
    const Outcome outcome = Export(folder / "none.rec");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "surveydata: " + folder / "none.rec" + " contains no measurement\n");
    const Outcome csv = Export(folder / "none.rec", {"--csv"});
    EXPECT_EQ(csv.exitCode, 1);
    EXPECT_EQ(Lines(csv.out).size(), 1u);
  }
}

// A spreadsheet would evaluate them.
TEST(RecordExport, EscapesTextsThatLookLikeFormulas) {
  const TempFolderC folder;
  const auto cell = [&](const std::string& text, const std::vector<std::string>& options) {
    Bytes units;
    for (const char c : text) units.insert(units.end(), {static_cast<std::uint8_t>(c), 0});
    const Bytes blocks = Bytes{0x00, 0x01} + units + Bytes{0, 0};  // only text D
    const std::string file = WriteFrames(folder, MakeFrame(113, MakeBody(0x2000, blocks)));
    const auto rows = ParseCsv(Export(file, options).out);
    EXPECT_EQ(rows.size(), 2u);
    for (std::size_t i = 0; i < rows[0].size(); ++i) {
      if (rows[0][i] == "text_d") return rows[1][i];
    }
    return std::string("no such column");
  };
  for (const char* const text : {"=1+1", "+SUM(A1)", "-A1", "@A1", "=\"x\"", "-", "+-1"}) {
    EXPECT_EQ(cell(text, {"--csv"}), "'" + std::string(text));
    EXPECT_EQ(cell(text, {"--csv", "--formulas", "escape"}), "'" + std::string(text));
    EXPECT_EQ(cell(text, {"--csv", "--formulas", "keep"}), text);
  }
  for (const char* const text : {"a=1", "-1.5", "+7", "-1e-3", "'=1", "P-1"}) {
    EXPECT_EQ(cell(text, {"--csv"}), text);
  }
}

}  // namespace
