#include <cmath>

#include <command_line/text.h>
#include <output/csv_cell.h>

namespace Tool {
namespace {

bool IsFormula(std::string_view text) {
  constexpr std::string_view kFirst = "=+-@\t\r";
  if (text.empty() || kFirst.find(text.front()) == std::string_view::npos) return false;
  const bool hasPlus = text.front() == '+' && text.substr(1, 1) != "-";
  const auto number = ToNumber<double>(hasPlus ? text.substr(1) : text);
  return !number || !std::isfinite(*number);  // a spreadsheet takes -inf for a formula
}

}  // namespace

CommandOption FormulasOption(Formulas& formulas) {
  return {
      .names = {"--formulas"},
      .value = "escape|keep",
      .description =
          "Texts in CSV that a spreadsheet would evaluate as formulas: escape writes them with a "
          "leading apostrophe, the default; keep writes them unchanged",
      .take = [&formulas](const std::string& text) {
        if (text != "escape" && text != "keep") throw ValueErrorC("must be escape or keep");
        formulas = text == "keep" ? Formulas::kKeep : Formulas::kEscape;
      }};
}

std::string CsvCell(std::string_view text, Formulas formulas) {
  std::string cell;
  if (formulas == Formulas::kEscape && IsFormula(text)) cell += '\'';
  cell += text;
  if (cell.find_first_of(",;\t\"\r\n") == std::string::npos) return cell;
  std::string quoted = "\"";
  for (const char c : cell) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace Tool
