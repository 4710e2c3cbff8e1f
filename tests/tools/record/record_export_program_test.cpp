#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

using nlohmann::json;

Outcome Export(const std::string& file, const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments = {"record", "export", file};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return RunProgram(arguments);
}

// Rows of cells, read as RFC 4180 says.
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

std::string CellOf(const json& value) {
  if (value.is_null()) return "";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

// The cells that a record makes, by the names of their columns.
void Flatten(const std::string& path, const json& value,
             std::map<std::string, std::string>& cells) {
  const auto under = [&](const std::string& key) { return path.empty() ? key : path + "." + key; };
  if (value.is_object()) {
    for (const auto& [key, member] : value.items()) Flatten(under(key), member, cells);
  } else if (path.ends_with(".timeA") || path.ends_with(".extraTime")) {
    cells[under("week")] = value[0].dump();
    cells[under("timeOfWeek")] = value[1].dump();
  } else if (path.ends_with(".entries")) {
    for (const json& entry : value) cells[path] += (cells[path].empty() ? "" : " ") + entry.dump();
    cells.try_emplace(path);
  } else if (value.is_array()) {
    for (std::size_t i = 0; i < value.size(); ++i)
      cells[under(std::to_string(i))] = CellOf(value[i]);
  } else {
    cells[path] = CellOf(value);
  }
}

// Numbers are compared as numbers, exactly: there may be two shortest ways to write one.
bool IsSame(const std::string& cell, const std::string& expected) {
  if (cell == expected) return true;
  char* cellEnd = nullptr;
  char* expectedEnd = nullptr;
  const double number = std::strtod(cell.c_str(), &cellEnd);
  return number == std::strtod(expected.c_str(), &expectedEnd) && cellEnd != cell.c_str() &&
         *cellEnd == '\0' && expectedEnd != expected.c_str() && *expectedEnd == '\0';
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
    EXPECT_EQ(outcome.err, "") << "chance headers in gaps are no bad frames";
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

TEST(RecordExport, GivesTheSameValuesAsCsv) {
  for (const char* const name : kSamples) {
    SCOPED_TRACE(name);
    const Outcome outcome = Export(DataPath(std::string(name) + ".rec"), {"--csv"});
    EXPECT_EQ(outcome.exitCode, 0);
    const auto rows = ParseCsv(outcome.out);
    const auto records = JsonLines(ReadText(DataPath(std::string(name) + ".expected.jsonl")));
    ASSERT_EQ(rows.size(), records.size() + 1);
    const std::vector<std::string>& header = rows[0];
    for (std::size_t i = 0; i < records.size(); ++i) {
      SCOPED_TRACE(records[i]["offset"]);
      std::map<std::string, std::string> expected;
      Flatten("", records[i], expected);
      ASSERT_EQ(rows[i + 1].size(), header.size());
      for (std::size_t k = 0; k < header.size(); ++k) {
        // Columns of a group that a record has none of are empty.
        const auto cell = expected.find(header[k]);
        const std::string value = cell == expected.end() ? "" : cell->second;
        EXPECT_TRUE(IsSame(rows[i + 1][k], value))
            << header[k] << ": " << rows[i + 1][k] << ", expected " << value;
        if (cell != expected.end()) expected.erase(cell);
      }
      for (const auto& [column, value] : expected) {
        EXPECT_EQ(value, "") << "no column " << column;  // null stands for a whole group
      }
    }
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

TEST(RecordExport, TellsStoredPairsThatDoNotCountAsPresent) {
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

// As many as a list shows, but for those that chance bytes look like.
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
    EXPECT_EQ(outcome.err, "surveydata: " + folder / "none.rec" + " holds no measurement\n");
    const Outcome csv = Export(folder / "none.rec", {"--csv"});
    EXPECT_EQ(csv.exitCode, 1);
    EXPECT_EQ(Lines(csv.out).size(), 1u);
  }
}

// A spreadsheet would compute them.
TEST(RecordExport, EscapesTextsThatLookLikeFormulas) {
  const TempFolderC folder;
  const auto cell = [&](const std::string& text, const std::vector<std::string>& options) {
    Bytes units;
    for (const char c : text) units.insert(units.end(), {static_cast<std::uint8_t>(c), 0});
    const Bytes blocks = Bytes{0x00, 0x01} + units + Bytes{0, 0};  // text D alone
    const std::string file = WriteFrames(folder, MakeFrame(113, MakeBody(0x2000, blocks)));
    const auto rows = ParseCsv(Export(file, options).out);
    EXPECT_EQ(rows.size(), 2u);
    for (std::size_t i = 0; i < rows[0].size(); ++i) {
      if (rows[0][i] == "measurement.textD") return rows[1][i];
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
