#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include <area/direction_reader.h>
#include <command_line/exit_code.h>
#include <command_line/text.h>

namespace Tool {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kBlanksBesideTabs = " \r\n";
constexpr std::size_t kBlock = std::size_t{64} * 1024;
constexpr std::size_t kLongestLine = kBlock - 1;
constexpr char kAnyBlanks = ' ';

std::string_view Trimmed(std::string_view text, std::string_view blanks = kBlanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if ('A' <= c && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

// Consumes a finite number at the start. A plus sign may precede it, but not another sign.
std::optional<double> TakeNumber(std::string_view& text) {
  double number = 0;
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || !std::isfinite(number)) return {};
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return number;
}

// Consumes blanks with at most one comma or semicolon at the start; false if there are none.
bool TakeSeparator(std::string_view& text) {
  const std::size_t before = text.size();
  const auto takeBlanks = [&text] {
    text = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
  };
  takeBlanks();
  if (!text.empty() && (text.front() == ',' || text.front() == ';')) {
    text.remove_prefix(1);
    takeBlanks();
  }
  return text.size() != before;
}

// A column of a heading: "Hz [gon]" has the name Hz and the unit gon.
struct ColumnName {
  std::string name;                 // in lower case
  std::optional<std::string> unit;  // the content of the brackets
};

ColumnName ParseColumnName(std::string_view text) {
  for (const auto& [open, close] : {std::pair{'[', ']'}, std::pair{'(', ')'}}) {
    const std::size_t bracket = text.find(open);
    if (bracket == 0 || bracket == std::string_view::npos || text.back() != close) continue;
    return {LowerCase(Trimmed(text.substr(0, bracket))),
            std::string(Trimmed(text.substr(bracket + 1, text.size() - bracket - 2)))};
  }
  return {LowerCase(text), {}};
}

const char* NameOf(char separator) {
  return separator == ',' ? "commas" : separator == ';' ? "semicolons" : "tabs";
}

std::array<std::string, 2> ParseColumns(const std::string& text) {
  const std::size_t comma = text.find(',');
  std::array<std::string, 2> columns = {
      std::string(Trimmed(std::string_view(text).substr(0, comma))),
      comma == std::string::npos ? ""
                                 : std::string(Trimmed(std::string_view(text).substr(comma + 1)))};
  if (columns[0].empty() || columns[1].empty() || columns[0] == columns[1] ||
      columns[1].find(',') != std::string::npos) {
    throw ValueErrorC("must be two columns with a comma between them, such as hz,v or 2,3");
  }
  return columns;
}

char ParseSeparator(const std::string& text) {
  if (text == "," || text == "comma") return ',';
  if (text == ";" || text == "semicolon") return ';';
  if (text == "\t" || text == "tab") return '\t';
  if (text == " " || text == "blanks") return kAnyBlanks;
  throw ValueErrorC("must be comma, semicolon, tab or blanks");
}

}  // namespace

std::optional<Direction> ParseDirection(std::string_view text) {
  text = Trimmed(text);
  const auto hz = TakeNumber(text);
  if (!hz || !TakeSeparator(text)) return {};
  const auto v = TakeNumber(text);
  if (!v || !text.empty()) return {};
  return Direction{*hz, *v};
}

Direction RequireDirection(const std::string& text) {
  const auto direction = ParseDirection(text);
  if (!direction) {
    throw ToolErrorC(
        ExitCode::kUsage,
        fmt::format("{} is not a direction HZ,V: two numbers, with a decimal point", text));
  }
  return *direction;
}

CommandOptionsC DirectionFormatOptions(DirectionFormat& format) {
  return {
      {.names = {"--columns"},
       .value = "HZ,V",
       .description = "The columns of Hz and V in a file of directions: their names in its "
                      "heading, or their numbers, counted from 1",
       .take = [&format](const std::string& text) { format.columns = ParseColumns(text); }},
      {.names = {"--separator"},
       .value = "NAME",
       .description = "The separator of the columns: comma, semicolon, tab or blanks; by default "
                      "that of the first line",
       .take = [&format](const std::string& text) { format.separator = ParseSeparator(text); }},
      {.names = {"--no-header"},
       .description = "The first line is a direction, not a heading",
       .flag = &format.hasNoHeading}};
}

DirectionReaderC::DirectionReaderC(const std::string& path, const DirectionFormat& format)
    : input_(path), format_(format), block_(kBlock) {
  if (format_.columns && format_.hasNoHeading) {
    for (const std::string& column : *format_.columns) {
      if (!ToNumber<std::size_t>(column)) {
        throw ToolErrorC(
            ExitCode::kUsage,
            fmt::format("--columns {}: without a heading columns have numbers only", column));
      }
    }
  }
  while (ReadLine(text_)) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (line_ == 1 && text_.starts_with(kByteOrderMark)) text_.erase(0, kByteOrderMark.size());
    const std::string_view text = Trimmed(text_);
    if (text.empty() || (text.front() == '#' && MayBeginWithComment())) continue;
    separator_ = format_.separator ? *format_.separator : FindSeparator(text);
    TakeFirstLine(WithoutBlanks(text_));
    return;
  }
}

bool DirectionReaderC::Next(Direction& direction) {
  if (!NextCells()) return false;
  const auto hz = NumberAt(hzColumn_);
  const auto v = NumberAt(vColumn_);
  if (!hz || !v) {
    Refuse(fmt::format("is not a direction: {}", Trimmed(text_).substr(0, 60)));
  }
  direction = {*hz, *v};
  return true;
}

// Reads a line without its end.
bool DirectionReaderC::ReadLine(std::string& line) {
  line.clear();
  for (;;) {
    if (blockAt_ == blockEnd_) {
      blockAt_ = 0;
      blockEnd_ = input_.Read(block_);
      if (blockEnd_ == 0) break;
    }
    const std::string_view rest(&block_[blockAt_], blockEnd_ - blockAt_);
    const std::size_t end = rest.find('\n');
    const std::string_view part = rest.substr(0, end);
    if (line.empty()) ++line_;
    line += part;
    blockAt_ += part.size() + (end == std::string_view::npos ? 0 : 1);
    if (part.find('\0') != std::string_view::npos) Refuse("has a zero byte");
    if (line.size() > kLongestLine) Refuse(fmt::format("is longer than {} bytes", kLongestLine));
    if (end != std::string_view::npos) return true;
  }
  return !line.empty();
}

// The first line that is not empty determines the layout.
void DirectionReaderC::TakeFirstLine(std::string_view text) {
  Split(text);
  columnCount_ = cells_.size();
  const auto place = [this](const std::array<std::string, 2>& columns) {
    hzColumn_ = FindColumn(columns[0]);
    vColumn_ = FindColumn(columns[1]);
    if (hzColumn_ == vColumn_) Refuse("has Hz and V in one column");
  };
  const auto isNumber = [this](std::size_t column) { return NumberAt(column).has_value(); };

  if (format_.hasNoHeading ||
      (!format_.columns && columnCount_ == 2 && isNumber(0) && isNumber(1))) {
    if (format_.columns) {
      place(*format_.columns);
    } else if (columnCount_ != 2) {
      Refuse(fmt::format("has {} columns, so --columns must name those of Hz and V", columnCount_));
    }
    isHeld_ = true;
    return;
  }
  if (format_.columns) {
    const bool areNumbers = ToNumber<std::size_t>((*format_.columns)[0]) &&
                            ToNumber<std::size_t>((*format_.columns)[1]);
    if (areNumbers) {
      place(*format_.columns);
      if (isNumber(hzColumn_) && isNumber(vColumn_)) {
        isHeld_ = true;
        return;
      }
      // A heading has neither numbers in these columns nor cells that look like numbers.
      for (const std::size_t column : {hzColumn_, vColumn_}) {
        const std::string& cell = cells_[column];
        const bool isName = !cell.empty() && cell.find_first_of("0123456789") != 0 &&
                            std::string_view("+-.").find(cell.front()) == std::string_view::npos &&
                            LowerCase(cell) != "nan" && !LowerCase(cell).starts_with("inf");
        if (!isName) {
          Refuse(fmt::format("is neither a direction nor a heading: {}", text.substr(0, 60)));
        }
      }
    }
  }
  if (separator_ == kAnyBlanks) JoinUnits();
  heading_ = cells_;
  columnCount_ = cells_.size();
  std::set<std::string> names;
  std::set<std::string> namesWithoutUnit;
  for (const std::string& cell : heading_) {
    namesWithoutUnit.insert(ParseColumnName(cell).name);
    if (!cell.empty() && !names.insert(LowerCase(cell)).second) {
      Refuse(fmt::format("has two columns {}", cell));
    }
  }
  if (format_.columns) {
    place(*format_.columns);
  } else if (namesWithoutUnit.contains("hz") && namesWithoutUnit.contains("v")) {
    place({"hz", "v"});
  } else {
    Refuse(fmt::format("is neither a direction, two numbers, nor a heading with hz and v: {}",
                       text.substr(0, 60)));
  }
  RequireUnit(heading_[hzColumn_]);
  RequireUnit(heading_[vColumn_]);
}

// If blanks separate cells, a unit in brackets is a separate cell, which belongs to the name
// before.
void DirectionReaderC::JoinUnits() {
  std::vector<std::string> joined;
  for (const std::string& cell : cells_) {
    const bool isUnit = (cell.starts_with('[') && cell.ends_with(']')) ||
                        (cell.starts_with('(') && cell.ends_with(')'));
    if (isUnit && !joined.empty()) {
      joined.back() += " " + cell;
    } else {
      joined.push_back(cell);
    }
  }
  cells_ = std::move(joined);
}

// The directions are in the unit of the format: a heading with another unit is refused.
void DirectionReaderC::RequireUnit(const std::string& name) const {
  const auto given = ParseColumnName(name).unit;
  if (!given) return;
  const auto unit = FindUnit(LowerCase(*given));
  if (!unit) {
    Refuse(
        fmt::format("has the column {}, whose unit is not rad, deg or gon: write one of them "
                    "in the brackets, or only the name",
                    name));
  }
  if (format_.unit && unit != format_.unit) {
    Refuse(fmt::format("has the column {}, but the directions are in {}, the unit of the area file",
                       name, UnitName(*format_.unit)));
  }
}

// The only separator in the line, outside quotes; blanks if there is none.
char DirectionReaderC::FindSeparator(std::string_view text) const {
  std::string found;
  bool isQuoted = false;
  for (const char c : text) {
    if (c == '"') isQuoted = !isQuoted;
    const bool isSeparator = !isQuoted && (c == ',' || c == ';' || c == '\t');
    if (isSeparator && found.find(c) == std::string::npos) found += c;
  }
  if (found.size() > 1) {
    Refuse(fmt::format("has both {} and {}, so --separator must name one", NameOf(found[0]),
                       NameOf(found[1])));
  }
  return found.empty() ? kAnyBlanks : found.front();
}

// A column by its name, with or without its unit.
std::optional<std::size_t> DirectionReaderC::FindName(const std::string& wanted) const {
  for (std::size_t i = 0; i < heading_.size(); ++i) {
    if (LowerCase(heading_[i]) == LowerCase(wanted)) return i;
  }
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < heading_.size(); ++i) {
    if (ParseColumnName(heading_[i]).name != LowerCase(wanted)) continue;
    if (found) Refuse(fmt::format("has two columns {}", wanted));
    found = i;
  }
  return found;
}

// A column by its name or its number.
std::size_t DirectionReaderC::FindColumn(const std::string& wanted) const {
  const auto named = FindName(wanted);
  const auto number = ToNumber<std::size_t>(wanted);
  const bool isNumber = number && 1 <= *number && *number <= columnCount_;
  if (named && isNumber && *named != *number - 1) {
    Refuse(fmt::format("has {0} as the name of column {1}, so --columns {0} is ambiguous", wanted,
                       *named + 1));
  }
  if (named) return *named;
  if (!isNumber) Refuse(fmt::format("has no column {}", wanted));
  return *number - 1;
}

std::optional<double> DirectionReaderC::NumberAt(std::size_t column) const {
  std::string_view cell = cells_[column];
  const auto number = TakeNumber(cell);
  return cell.empty() ? number : std::nullopt;
}

// Whether a line before the layout is known may be a comment. It may not if the first column is
// known to be neither Hz nor V, because it can then be a name that begins with '#'.
bool DirectionReaderC::MayBeginWithComment() const {
  if (!format_.columns) return true;
  return std::any_of(format_.columns->begin(), format_.columns->end(),
                     [](const std::string& column) {
                       const auto number = ToNumber<std::size_t>(column);
                       return !number || *number == 1;
                     });
}

bool DirectionReaderC::IsSkipped(std::string_view text) const {
  return text.empty() || (Trimmed(text).starts_with('#') && IsCoordinate(0));
}

// A line without the blanks around it. Tabs that separate cells stay: the first or the last cell
// may be empty.
std::string_view DirectionReaderC::WithoutBlanks(std::string_view line) const {
  return Trimmed(line, separator_ == '\t' ? kBlanksBesideTabs : kBlanks);
}

bool DirectionReaderC::NextCells() {
  if (isHeld_) {
    isHeld_ = false;
    return true;
  }
  while (ReadLine(text_)) {
    const std::string_view text = WithoutBlanks(text_);
    if (IsSkipped(text)) continue;
    Split(text);
    if (cells_.size() != columnCount_) {
      Refuse(fmt::format("has {} column{}, not {} as the first line: {}", cells_.size(),
                         cells_.size() == 1 ? "" : "s", columnCount_, text.substr(0, 60)));
    }
    return true;
  }
  return false;
}

// Splits into cells by RFC 4180, without the blanks around them.
void DirectionReaderC::Split(std::string_view text) {
  const auto isEnd = [this](char c) {
    return c == separator_ || (separator_ == kAnyBlanks && c == '\t');
  };
  const auto isBlank = [&](char c) { return (c == ' ' || c == '\t') && !isEnd(c); };
  std::size_t count = 0;
  std::size_t at = 0;
  for (;;) {
    if (count == cells_.size()) cells_.emplace_back();
    std::string& cell = cells_[count++];
    cell.clear();
    while (at < text.size() && isBlank(text[at])) ++at;
    if (at < text.size() && text[at] == '"') {
      for (++at;; ++at) {
        if (at == text.size()) Refuse("has an opening quotation mark without a closing one");
        if (text[at] == '"' && (at + 1 == text.size() || text[at + 1] != '"')) break;
        if (text[at] == '"') ++at;
        cell += text[at];
      }
      ++at;
      while (at < text.size() && isBlank(text[at])) ++at;
      if (at < text.size() && !isEnd(text[at])) Refuse("has text after a quoted cell");
    } else {
      const std::size_t begin = at;
      while (at < text.size() && !isEnd(text[at])) ++at;
      cell = Trimmed(text.substr(begin, at - begin));
    }
    if (at == text.size()) break;
    ++at;
    while (separator_ == kAnyBlanks && isEnd(text[at])) ++at;  // the line does not end with blanks
  }
  cells_.resize(count);
}

void DirectionReaderC::Refuse(const std::string& what) const {
  throw ToolErrorC(ExitCode::kFileError,
                   fmt::format("{}: line {} {}", input_.GetName(), line_, what));
}

}  // namespace Tool
