#ifndef SURVEYDATA_TOOLS_OUTPUT_CSV_CELL_H_
#define SURVEYDATA_TOOLS_OUTPUT_CSV_CELL_H_

#include <string>
#include <string_view>

#include <command_line/command.h>

namespace Tool {

/// What becomes of a text that a spreadsheet would take for a formula.
enum class Formulas { kEscape, kKeep };

/// --formulas escape|keep, without what it needs.
CommandOption FormulasOption(Formulas& formulas);

/// A text as a cell of a CSV table: in quotes, with its quotation marks doubled, where RFC 4180
/// asks for that. With `kEscape`, a text that is not a number and begins with = + - @, a tab or a
/// return gets a leading apostrophe, so that a spreadsheet shows it instead of computing it.
std::string CsvCell(std::string_view text, Formulas formulas);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_CSV_CELL_H_
