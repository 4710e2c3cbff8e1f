#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <area/direction_reader.h>
#include <command_line/exit_code.h>

#include "tests/tools/program.h"

namespace {

using Tool::Direction;
using Tool::DirectionFormat;

TEST(ParseDirection, TakesTwoNumbersAndNothingAfterThem) {
  for (const char* const text :
       {"1,2", "1;2", "1 2", "1\t2", " 1 , 2 ", "+1,+2", "1.0,2.0\r\n", "1e0,0.2e1"}) {
    const auto direction = Tool::ParseDirection(text);
    ASSERT_TRUE(direction.has_value()) << text;
    EXPECT_EQ(direction->hz, 1);
    EXPECT_EQ(direction->v, 2);
  }
  for (const char* const text :
       {"",      "1",     "1,",    ",1",      "1,,2",  "1x2",   "x,2",   "1,2x",
        "nan,1", "1,inf", "1-2",   "1e999,1", "+-1,2", "++1,2", "+,2",   "1,2;",
        "1,2,3", "1;2;3", "1 2 3", "1,2,x",   "1 2 x", "1,2,",  "57,5,9"}) {
    EXPECT_FALSE(Tool::ParseDirection(text).has_value()) << text;
  }
}

class DirectionReaderTest : public testing::Test {
 protected:
  // All directions of a file; `fault_` is the message if it is refused.
  std::vector<std::pair<double, double>> Read(const std::string& text,
                                              const DirectionFormat& format = {}) {
    WriteBytes(folder_ / "d.csv", Bytes(text.begin(), text.end()));
    std::vector<std::pair<double, double>> read;
    cells_.clear();
    heading_.clear();
    fault_.clear();
    try {
      Tool::DirectionReaderC reader(folder_ / "d.csv", format);
      heading_ = reader.GetHeading();
      for (Direction direction{}; reader.Next(direction);) {
        read.emplace_back(direction.hz, direction.v);
        cells_.push_back(reader.GetCells());
      }
    } catch (const Tool::ToolErrorC& error) {
      EXPECT_EQ(error.GetCode(), Tool::ExitCode::kFileError);
      const std::string file = folder_ / "d.csv";
      EXPECT_TRUE(std::string(error.what()).starts_with(file + ": ")) << error.what();
      fault_ = std::string(error.what()).substr(file.size() + 2);
    }
    return read;
  }

  using Pairs = std::vector<std::pair<double, double>>;
  using Names = std::vector<std::string>;

  TempFolderC folder_;
  std::vector<std::vector<std::string>> cells_;
  Names heading_;
  std::string fault_;
};

TEST_F(DirectionReaderTest, TakesTwoColumnsWithoutAHeading) {
  for (const char* const text :
       {"1,2\n3,4\n", "1;2\n3;4\n", "1\t2\n3\t4\n", "1 2\n3   4\n", "  1 \t 2\n3\t4  \n",
        "1 , 2\n 3,4", "\"1\",\"2\"\n3,\"4\"\n",
        "\xEF\xBB\xBF"
        "1,2\n3,4",
        "+1,2\r\n3,4\r\n", "# hz, v; and no heading\n\n1,2\n  # more\n3,4\n\n"}) {
    EXPECT_EQ(Read(text), (Pairs{{1, 2}, {3, 4}})) << text;
    EXPECT_EQ(fault_, "") << text;
    EXPECT_TRUE(heading_.empty());
  }
}

TEST_F(DirectionReaderTest, FindsHzAndVInAHeadingOfAnyOrderAndCase) {
  const struct {
    const char* text;
    Names heading;
  } cases[] = {
      {"hz,v\n1,2\n", {"hz", "v"}},
      {"HZ;V\n1;2\n", {"HZ", "V"}},
      {"V\tHz\n2\t1\n", {"V", "Hz"}},
      {"v hz\n2 1\n", {"v", "hz"}},
      {"id,hz,v\nP1,1,2\n", {"id", "hz", "v"}},
      {"id,V,remark,Hz\nP1,2,,1\n", {"id", "V", "remark", "Hz"}},
      {"\"hz\",\"v\",\"a, \"\"b\"\"\"\n1,2,\"x, y\"\n", {"hz", "v", "a, \"b\""}},
      {"\xEF\xBB\xBFhz,v,,\n1,2,,\n", {"hz", "v", "", ""}},
  };
  for (const auto& [text, heading] : cases) {
    EXPECT_EQ(Read(text), (Pairs{{1, 2}})) << text;
    EXPECT_EQ(heading_, heading) << text;
    EXPECT_EQ(fault_, "") << text;
  }
}

// The unit of the directions is that of the area. A heading may name it, but not change it.
TEST_F(DirectionReaderTest, TakesAHeadingThatNamesTheUnit) {
  const DirectionFormat gon = {.unit = Tool::AngleUnit::kGon};
  for (const char* const text :
       {"Hz [gon],V [gon]\n1,2\n", "hz[gon];v [ GON ]\n1;2\n", "id,V (gon),Hz (gon)\nP1,2,1\n",
        "Hz [gon]  V [gon]  answer\n1  2  inside\n", "hz\tV [gon]\n1\t2\n",
        "hz,v,Hz [deg]\n1,2,9\n", "Hz [gon],v,V [left]\n1,2,9\n"}) {
    EXPECT_EQ(Read(text, gon), (Pairs{{1, 2}})) << text;
    EXPECT_EQ(fault_, "") << text;
  }
  EXPECT_EQ(Read("Hz [gon],V [gon]\n1,2\n", {.columns = {{"hz", "V [gon]"}}, .unit = gon.unit}),
            (Pairs{{1, 2}}));
  EXPECT_EQ(Read("Hz [deg],V [deg],Hz [gon],V [gon]\n8,9,1,2\n",
                 {.columns = {{"hz [gon]", "v [gon]"}}, .unit = gon.unit}),
            (Pairs{{1, 2}}));
  EXPECT_EQ(fault_, "");

  const std::string other = ", but the directions are in gon, the unit of the area file";
  const std::string unknown =
      ", whose unit is not rad, deg or gon: write one of them in the brackets, or only the name";
  const struct {
    const char* text;
    std::string fault;
    DirectionFormat format;
  } cases[] = {
      {"Hz [deg],V [deg]\n1,2\n", "line 1 has the column Hz [deg]" + other, gon},
      {"Hz [gon],V [rad]\n1,2\n", "line 1 has the column V [rad]" + other, gon},
      {"Hz [grad],V [gon]\n1,2\n", "line 1 has the column Hz [grad]" + unknown, gon},
      {"hz,V []\n1,2\n", "line 1 has the column V []" + unknown, gon},
      {"Hz [gon],V [gon],Hz [deg]\n1,2,3\n", "line 1 has two columns hz", gon},
      {"az [deg],v\n1,2\n",
       "line 1 has the column az [deg]" + other,
       {.columns = {{"az", "v"}}, .unit = gon.unit}},
      {"az [deg],v\n1,2\n",
       "line 1 has the column az [deg]" + other,
       {.columns = {{"1", "2"}}, .unit = gon.unit}},
      {"[gon],v\n1,2\n",
       "line 1 is neither a direction, two numbers, nor a heading with hz and v: [gon],v", gon},
  };
  for (const auto& [text, fault, format] : cases) {
    Read(text, format);
    EXPECT_EQ(fault_, fault) << text;
  }
}

TEST_F(DirectionReaderTest, KeepsTheCellsOfAllColumns) {
  Read("id;hz;v;remark\n\"P;1\";1;2;\"say \"\"x\"\"\"\n#2; 3 ; 4 ; a b \n");
  EXPECT_EQ(cells_, (std::vector<Names>{{"P;1", "1", "2", "say \"x\""}, {"#2", "3", "4", "a b"}}));
}

// Tabs separate cells at the ends of a line, too.
TEST_F(DirectionReaderTest, KeepsEmptyCellsBetweenTabs) {
  EXPECT_EQ(Read("hz\tv\tid\r\n1\t2\ta\r\n 3 \t4\t\r\n"), (Pairs{{1, 2}, {3, 4}}));
  EXPECT_EQ(cells_, (std::vector<Names>{{"1", "2", "a"}, {"3", "4", ""}}));
  EXPECT_EQ(Read("id\thz\tv\nP1\t1\t2\n\t3\t4"), (Pairs{{1, 2}, {3, 4}}));
  EXPECT_EQ(cells_, (std::vector<Names>{{"P1", "1", "2"}, {"", "3", "4"}}));
  EXPECT_EQ(Read("\xEF\xBB\xBF\thz\tv\t\nx\t1\t2\ty\n"), (Pairs{{1, 2}}));
  EXPECT_EQ(heading_, (Names{"", "hz", "v", ""}));
  EXPECT_EQ(Read("\t1\t2\n", {.columns = {{"2", "3"}}}), (Pairs{{1, 2}}));
  EXPECT_EQ(fault_, "");
  // As with commas, a line of empty cells is not an empty line; a blank line is.
  EXPECT_EQ(Read("hz\tv\tid\n1\t2\ta\n  \r\n\t\t\n"), (Pairs{{1, 2}}));
  EXPECT_EQ(fault_, "line 4 is not a direction: ");
  EXPECT_EQ(Read("hz,v\n\t\n1,2\n\t# comment\n"), (Pairs{{1, 2}}));
  EXPECT_EQ(fault_, "");
  EXPECT_EQ(Read("1\t2\n\t# comment\n3\t4\n"), (Pairs{{1, 2}, {3, 4}}));
  EXPECT_EQ(fault_, "");
}

// A line that begins with '#' is a comment only if it cannot be the name of a point.
TEST_F(DirectionReaderTest, TreatsNoNameAsAComment) {
  EXPECT_EQ(Read("# comment\nid,hz,v\n#1,1,2\n"), (Pairs{{1, 2}}));
  EXPECT_EQ(Read("# comment\nhz,v,id\n#3,4,x\n1,2,#1\n"), (Pairs{{1, 2}}));
  EXPECT_EQ(Read("#1,1,2\n#2,3,4\n", {.columns = {{"2", "3"}}}), (Pairs{{1, 2}, {3, 4}}));
  EXPECT_EQ(Read("#5,6\n1,2\n", {.columns = {{"1", "2"}}}), (Pairs{{1, 2}}));
}

TEST_F(DirectionReaderTest, TakesTheColumnsOfTheFormat) {
  const struct {
    const char* text;
    DirectionFormat format;
  } cases[] = {
      {"east,north\n2,1\n", {.columns = {{"north", "EAST"}}}},
      {"hz,v,a,b\n8,9,1,2\n", {.columns = {{"a", "b"}}}},
      {"P1,2,1\n", {.columns = {{"3", "2"}}}},
      {"id,zenith,azimuth\nP1,2,1\n", {.columns = {{"3", "2"}}}},
      {"P1,2,1\n", {.columns = {{"3", "2"}}, .hasNoHeading = true}},
      {"1,2\n", {.hasNoHeading = true}},
      {"1,5;1;2\n", {.columns = {{"2", "3"}}, .separator = ';'}},
      {"P 1;1;2\n", {.columns = {{"2", "3"}}, .separator = ';'}},
      {"P,1 1\t2\n", {.columns = {{"2", "3"}}, .separator = ' '}},
      // Names that are numbers, but not those of other columns.
      {"hz,v,7\n1,2,8\n", {.columns = {{"1", "2"}}}},
      {"\"x\",\"y\",\"z 3\"\n9,2,1\n", {.columns = {{"3", "2"}}}},
  };
  for (const auto& [text, format] : cases) {
    EXPECT_EQ(Read(text, format), (Pairs{{1, 2}})) << text;
    EXPECT_EQ(fault_, "") << text;
  }
}

// Nothing is guessed, and nothing skipped.
TEST_F(DirectionReaderTest, RefusesWhatIsNotClearWithItsLine) {
  const std::string neither = "is neither a direction, two numbers, nor a heading with hz and v: ";
  const struct {
    std::string text;
    std::string fault;
    DirectionFormat format = {};
  } cases[] = {
      // Decimal commas.
      {"57,5;92,3\n", "line 1 has both commas and semicolons, so --separator must name one"},
      {"57,5\t92,3\n", "line 1 has both commas and tabs, so --separator must name one"},
      {"57,5 92,3\n", "line 1 " + neither + "57,5 92,3"},
      {"57,5;92,3\n", "line 1 " + neither + "57,5;92,3", {.separator = ';'}},
      {"hz;v\n57,5;92\n", "line 2 is not a direction: 57,5;92", {.separator = ';'}},
      {"1,2\n3;4\n", "line 2 has 1 column, not 2 as the first line: 3;4"},
      // Which columns?
      {"1,2,3\n", "line 1 " + neither + "1,2,3"},
      {"1\n", "line 1 " + neither + "1"},
      {"1,2,3\n",
       "line 1 has 3 columns, so --columns must name those of Hz and V",
       {.hasNoHeading = true}},
      {"id,azimuth,zenith\n", "line 1 " + neither + "id,azimuth,zenith"},
      {"hz,w\n", "line 1 " + neither + "hz,w"},
      {"hz,v,Hz\n", "line 1 has two columns Hz"},
      {"hz,v,a,A\n", "line 1 has two columns A"},
      {"hz,v\n1,2\n", "line 1 has no column north", {.columns = {{"north", "v"}}}},
      {"hz,v\n1,2\n", "line 1 has no column 3", {.columns = {{"1", "3"}}}},
      {"hz,v\n1,2\n", "line 1 has no column 0", {.columns = {{"0", "1"}}}},
      {"hz,v\n1,2\n", "line 1 has Hz and V in one column", {.columns = {{"hz", "1"}}}},
      {"hz,v,1\n11,95,399\n",
       "line 1 has 1 as the name of column 3, so --columns 1 is ambiguous",
       {.columns = {{"1", "2"}}}},
      {"hz,v,1\n11,95,399\n",
       "line 1 has 1 as the name of column 3, so --columns 1 is ambiguous",
       {.columns = {{"1", "v"}}}},
      {"hz,v,2 [gon]\n11,95,399\n",
       "line 1 has 2 as the name of column 3, so --columns 2 is ambiguous",
       {.columns = {{"hz", "2"}}}},
      // A heading, or a direction with a mistake?
      {"1,x\n", "line 1 " + neither + "1,x"},
      {"nan,1\n", "line 1 " + neither + "nan,1"},
      {"1e999,1\n", "line 1 " + neither + "1e999,1"},
      {"P1,1,x\n",
       "line 1 is neither a direction nor a heading: P1,1,x",
       {.columns = {{"2", "3"}}}},
      {"P1,inf,nan\n",
       "line 1 is neither a direction nor a heading: P1,inf,nan",
       {.columns = {{"2", "3"}}}},
      {"P1,,\n", "line 1 is neither a direction nor a heading: P1,,", {.columns = {{"2", "3"}}}},
      {"hz,v\n1,2\n", "line 1 is not a direction: hz,v", {.hasNoHeading = true}},
      // Later lines.
      {"\n\nhz,v\n\n1,2\n-,2\n", "line 6 is not a direction: -,2"},
      {"hz,v\nhz,v\n", "line 2 is not a direction: hz,v"},
      {"1,2\n\xEF\xBB\xBF"
       "1,2\n",
       "line 2 is not a direction: \xEF\xBB\xBF"
       "1,2"},
      {"hz,v,id\n1,2\n", "line 2 has 2 columns, not 3 as the first line: 1,2"},
      {"hz,v\n1,2,\n", "line 2 has 3 columns, not 2 as the first line: 1,2,"},
      {"hz,v,id\n1,2,\"a\n", "line 2 has an opening quotation mark without a closing one"},
      {"hz,v,id\n1,2,\"a\"b\n", "line 2 has text after a quoted cell"},
      {"1,2\n3,1 2\n", "line 2 is not a direction: 3,1 2"},
      {std::string("1,2\n3,4\0\n", 9), "line 2 has a zero byte"},
      {std::string("\0", 1), "line 1 has a zero byte"},
      {std::string("1,2\n#\0\n", 7), "line 2 has a zero byte"},
      {"1,2\n" + std::string(65'536, '1'), "line 2 is longer than 65535 bytes"},
  };
  for (const auto& [text, fault, format] : cases) {
    SCOPED_TRACE(text.substr(0, 100));
    Read(text, format);
    EXPECT_EQ(fault_, fault);
  }
}

TEST_F(DirectionReaderTest, ReadsLinesOfAnyLengthUpToTheLimit) {
  std::string text = "hz,v,remark\n";
  Pairs expected;
  for (const std::size_t length : {0u, 1u, 60'000u, 65'000u, 65'535u - 4u}) {
    text += "1,2," + std::string(length, 'x') + "\n";
    expected.emplace_back(1, 2);
  }
  EXPECT_EQ(Read(text), expected);
  EXPECT_EQ(fault_, "");
}

TEST_F(DirectionReaderTest, FindsNothingInAFileWithoutDirections) {
  for (const char* const text : {"", "\n", "# nothing\n", "\xEF\xBB\xBF", "hz,v\n", " \t\n"}) {
    EXPECT_EQ(Read(text), Pairs{}) << text;
    EXPECT_EQ(fault_, "") << text;
  }
}

}  // namespace
