// An arbitrary table of directions gives, line by line, the same directions and cells as a
// reference parser of the format, up to the first refused line.

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <area/direction_reader.h>
#include <command_line/exit_code.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"

namespace {

constexpr std::size_t kLongestLine = 65'535;  // without the line end

std::string Trimmed(const std::string& text, const char* blanks = " \t\r\n") {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Whether a number overflows or underflows, for which the two parsers of the runtime may disagree.
bool g_isAtTheLimits = false;

// The length of the number at the start, 0 if there is none.
std::size_t NumberAt(const std::string& text, double& number) {
  std::size_t at = 0;
  const auto digits = [&] {
    const std::size_t begin = at;
    while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0) ++at;
    return at - begin;
  };
  if (at < text.size() && text[at] == '-') ++at;
  std::size_t count = digits();
  if (at < text.size() && text[at] == '.') {
    ++at;
    count += digits();
    if (count == 0) return 0;
  }
  if (count == 0) return 0;
  const std::size_t mantissa = at;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    ++at;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
    if (digits() == 0) at = mantissa;
  }
  number = std::strtod(text.substr(0, at).c_str(), nullptr);
  const bool hasDigit = text.substr(0, mantissa).find_first_of("123456789") != std::string::npos;
  if (!std::isfinite(number) || (hasDigit && std::fabs(number) < 1e-300)) g_isAtTheLimits = true;
  return at;
}

// The text as a number; a plus sign may precede it, but not another sign.
std::optional<double> NumberIn(const std::string& text) {
  const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  const std::string rest = hasPlus ? text.substr(1) : text;
  double number = 0;
  const std::size_t size = NumberAt(rest, number);
  if (size == 0 || size != rest.size() || !std::isfinite(number)) return {};
  return number;
}

// The kinds of separators in a line, outside quotation marks.
std::set<char> SeparatorsIn(const std::string& text) {
  std::set<char> found;
  int quotes = 0;
  for (const char c : text) {
    if (c == '"') ++quotes;
    if (quotes % 2 == 0 && (c == ',' || c == ';' || c == '\t')) found.insert(c);
  }
  return found;
}

using Cells = std::vector<std::string>;

// The cells of a trimmed line; nothing if a quotation mark is misplaced.
std::optional<Cells> CellsIn(std::string rest, char separator) {
  const std::string separators = separator == ' ' ? " \t" : std::string(1, separator);
  Cells cells;
  for (;;) {
    if (separator != ' ') {
      while (!rest.empty() && (rest[0] == ' ' || rest[0] == '\t') && rest[0] != separator) {
        rest.erase(0, 1);
      }
    }
    std::string cell;
    if (!rest.empty() && rest[0] == '"') {
      rest.erase(0, 1);
      for (;;) {
        const std::size_t quote = rest.find('"');
        if (quote == std::string::npos) return {};
        cell += rest.substr(0, quote);
        rest.erase(0, quote + 1);
        if (rest.empty() || rest[0] != '"') break;
        cell += '"';
        rest.erase(0, 1);
      }
      const std::size_t next = rest.find_first_of(separators);
      if (!Trimmed(rest.substr(0, next)).empty()) return {};
      if (rest.substr(0, next).find('\r') != std::string::npos) return {};
      rest.erase(0, next);
    } else {
      const std::size_t next = rest.find_first_of(separators);
      cell = Trimmed(rest.substr(0, next));
      rest.erase(0, next);
    }
    cells.push_back(cell);
    if (rest.empty()) return cells;
    rest.erase(0, separator == ' ' ? rest.find_first_not_of(separators) : 1);
  }
}

std::string LowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return text;
}

// The contents of a table.
struct Table {
  struct Row {
    double hz;
    double v;
    Cells cells;
  };
  std::vector<Row> rows;
  std::optional<int> fault;  // the refused line
};

class TableParserC {
 public:
  Table Parse(std::string rest) {
    for (int number = 1; !rest.empty(); ++number) {
      const std::size_t end = rest.find('\n');
      const std::string line = rest.substr(0, end);
      rest.erase(0, end == std::string::npos ? rest.size() : end + 1);
      const bool isFine = line.size() <= kLongestLine && line.find('\0') == std::string::npos;
      if (!isFine || !Take(line, number == 1)) {
        table_.fault = number;
        break;
      }
    }
    return table_;
  }

 private:
  bool Take(const std::string& line, bool isFirst) {
    const bool hasMark = isFirst && line.starts_with("\xEF\xBB\xBF");
    std::string text = Trimmed(hasMark ? line.substr(3) : line);
    const bool isLayout = columns_ == 0;
    if (text.starts_with('#') && (isLayout || hz_ == 0 || v_ == 0)) return true;
    if (isLayout) {
      if (text.empty()) return true;
      const std::set<char> separators = SeparatorsIn(text);
      if (separators.size() > 1) return false;
      separator_ = separators.empty() ? ' ' : *separators.begin();
    }
    // The first or the last cell between tabs may be empty.
    if (separator_ == '\t') text = Trimmed(hasMark ? line.substr(3) : line, " \r\n");
    if (text.empty()) return true;
    const auto cells = CellsIn(text, separator_);
    if (!cells) return false;
    if (isLayout) {
      columns_ = cells->size();
      if (columns_ != 2 || !NumberIn((*cells)[0]) || !NumberIn((*cells)[1])) {
        return TakeHeading(*cells);
      }
    }
    if (cells->size() != columns_) return false;
    const auto hz = NumberIn((*cells)[hz_]);
    const auto v = NumberIn((*cells)[v_]);
    if (!hz || !v) return false;
    table_.rows.push_back({*hz, *v, *cells});
    return true;
  }

  // Whether a cell is `name` followed by a unit, and whether that is the unit of the area.
  static bool IsWithUnit(const std::string& cell, const std::string& name, bool& isRightUnit) {
    for (const std::string brackets : {"[]", "()"}) {
      const std::size_t open = cell.find(brackets[0]);
      if (cell.empty() || cell.back() != brackets[1] || open == std::string::npos || open == 0) {
        continue;
      }
      if (LowerCase(Trimmed(cell.substr(0, open))) != name) return false;
      const std::string unit = Trimmed(cell.substr(open + 1, cell.size() - open - 2));
      isRightUnit = LowerCase(unit) == "gon";
      return true;
    }
    return false;
  }

  // The column with this name, or else the only one with this name and a unit.
  static std::optional<std::size_t> Find(const Cells& cells, const std::string& name) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (LowerCase(cells[i]) == name) return i;
    }
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      bool isRightUnit = false;
      if (!IsWithUnit(cells[i], name, isRightUnit)) continue;
      if (found || !isRightUnit) return {};
      found = i;
    }
    return found;
  }

  bool TakeHeading(const Cells& given) {
    Cells cells;
    for (const std::string& cell : given) {
      const bool isUnit = separator_ == ' ' && !cells.empty() && !cell.empty() &&
                          ((cell.front() == '[' && cell.back() == ']') ||
                           (cell.front() == '(' && cell.back() == ')'));
      if (isUnit) {
        cells.back() += " " + cell;
      } else {
        cells.push_back(cell);
      }
    }
    columns_ = cells.size();
    std::set<std::string> names;
    for (const std::string& cell : cells) {
      if (!cell.empty() && !names.insert(LowerCase(cell)).second) return false;
    }
    const auto hz = Find(cells, "hz");
    const auto v = Find(cells, "v");
    if (!hz || !v) return false;
    hz_ = *hz;
    v_ = *v;
    return true;
  }

  Table table_;
  char separator_ = ',';
  std::size_t columns_ = 0;
  std::size_t hz_ = 0;
  std::size_t v_ = 1;
};

}  // namespace

// Input: the bytes of the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  memory.Write(data, size);
  g_isAtTheLimits = false;
  const Table expected =
      TableParserC().Parse(std::string(reinterpret_cast<const char*>(data), size));
  if (g_isAtTheLimits) return 0;
  std::size_t count = 0;
  try {
    Tool::DirectionReaderC reader(memory.Path(), {.unit = Tool::AngleUnit::kGon});
    for (Tool::Direction direction{}; reader.Next(direction); ++count) {
      if (count == expected.rows.size()) {
        ADD_FAILURE() << "more directions than the file has";
        return 0;
      }
      EXPECT_EQ(direction.hz, expected.rows[count].hz);
      EXPECT_EQ(direction.v, expected.rows[count].v);
      EXPECT_EQ(reader.GetCells(), expected.rows[count].cells);
    }
    EXPECT_FALSE(expected.fault.has_value()) << "line " << *expected.fault << " is not refused";
  } catch (const Tool::ToolErrorC& error) {
    EXPECT_EQ(error.GetCode(), Tool::ExitCode::kFileError);
    const std::string place = "line " + std::to_string(expected.fault.value_or(0)) + " ";
    EXPECT_NE(std::string(error.what()).find(place), std::string::npos) << error.what();
  }
  EXPECT_EQ(count, expected.rows.size());
  return 0;
}
