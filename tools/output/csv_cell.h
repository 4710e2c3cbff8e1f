#ifndef SURVEYDATA_TOOLS_OUTPUT_CSV_CELL_H_
#define SURVEYDATA_TOOLS_OUTPUT_CSV_CELL_H_

#include <string>
#include <string_view>

#include <command_line/command.h>

namespace Tool {

/// How to write a text that a spreadsheet would evaluate as a formula.
enum class Formulas { kEscape, kKeep };

/// The option --formulas escape|keep. The options that it requires are not set.
CommandOption FormulasOption(Formulas& formulas);

/// A text as a cell of a CSV table: in quotes, with its quotation marks doubled, if RFC 4180
/// requires that, or if it contains another separator, which some spreadsheets split at. With
/// `kEscape`, a text that is not a finite number and begins with = + - @, a tab or a
/// carriage return gets a leading apostrophe, so that a spreadsheet shows it instead of evaluating
/// it.
std::string CsvCell(std::string_view text, Formulas formulas);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_CSV_CELL_H_
