#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <output/csv_cell.h>

namespace {

using Tool::CsvCell;
using Tool::Formulas;

TEST(CsvCell, IsQuotedWhereItNeedsToBe) {
  for (const auto& [text, cell] : {std::pair("", ""),
                                   {"a b", "a b"},
                                   {"a,b", "\"a,b\""},
                                   {"a\"b", "\"a\"\"b\""},
                                   {"\"", "\"\"\"\""},
                                   {"a\nb", "\"a\nb\""},
                                   {"a\rb", "\"a\rb\""},
                                   {"a;b", "\"a;b\""},
                                   {"x;=1+1", "\"x;=1+1\""},
                                   {"a\tb", "\"a\tb\""}}) {
    EXPECT_EQ(CsvCell(text, Formulas::kEscape), cell);
    EXPECT_EQ(CsvCell(text, Formulas::kKeep), cell);
  }
}

TEST(CsvCell, EscapesWhatASpreadsheetWouldCompute) {
  for (const auto& [text, cell] : {std::pair("=1+1", "'=1+1"),
                                   {"+a", "'+a"},
                                   {"-a", "'-a"},
                                   {"@a", "'@a"},
                                   {"\ta", "\"'\ta\""},
                                   {"\ra", "\"'\ra\""},
                                   {"=A1,B1", "\"'=A1,B1\""},
                                   {"-", "'-"},
                                   {"+-1", "'+-1"},
                                   {"--1", "'--1"},
                                   {"-1 m", "'-1 m"},
                                   {"=1", "'=1"},
                                   {"-0x10", "'-0x10"},
                                   {"-inf", "'-inf"},
                                   {"+inf", "'+inf"},
                                   {"-nan(x)", "'-nan(x)"},
                                   {"-1e999", "'-1e999"}}) {
    EXPECT_EQ(CsvCell(text, Formulas::kEscape), cell) << text;
  }
  EXPECT_EQ(CsvCell("=1+1", Formulas::kKeep), "=1+1");
}

TEST(CsvCell, LeavesNumbersAlone) {
  for (const char* const number : {"-1", "+1", "-1.5e-3", "+.5", "-0", "1", "0.5"}) {
    EXPECT_EQ(CsvCell(number, Formulas::kEscape), number);
  }
}

}  // namespace
