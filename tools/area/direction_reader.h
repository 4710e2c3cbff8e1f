#ifndef SURVEYDATA_TOOLS_AREA_DIRECTION_READER_H_
#define SURVEYDATA_TOOLS_AREA_DIRECTION_READER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <area/angle_unit.h>
#include <command_line/command.h>
#include <platform/input_file.h>

namespace Tool {

/// A direction in the unit of an area file.
struct Direction {
  double hz;
  double v;
};

/// Parses "HZ,V": two numbers separated by a comma, a semicolon or blanks, and nothing after them.
std::optional<Direction> ParseDirection(std::string_view text);

/// Parses a direction of the command line. \throw ToolErrorC  if it is not one.
Direction RequireDirection(const std::string& text);

/// The layout of a file of directions, as far as the user specified it.
struct DirectionFormat {
  /// The columns of Hz and V: names, or numbers, counted from 1. By default hz and v, or the only
  /// two.
  std::optional<std::array<std::string, 2>> columns = {};
  /// ',', ';', a tab, or a space for any run of blanks. By default that of the first line.
  std::optional<char> separator = {};
  bool hasNoHeading = false;
  /// The unit of the directions. A heading may name this unit, as in "Hz [gon]", but no other one.
  std::optional<AngleUnit> unit = {};
};

/// The options --columns, --separator and --no-header. The options that they require or exclude are
/// not set.
CommandOptionsC DirectionFormatOptions(DirectionFormat& format);

/// Reads a table of directions, a line of at most 64 KiB at a time, in a limited amount of memory.
///
/// The first line is a heading that names the columns, or the first direction. Without a heading
/// there are two columns, Hz and V, unless the format names others. All lines have as many cells as
/// the first one. Cells may be quoted as in RFC 4180. A heading may name the unit of Hz and V in
/// brackets. Empty lines are skipped, and so are lines that begin with '#', if the first column is
/// Hz or V. Ambiguous input is an error: nothing is guessed.
class DirectionReaderC {
 public:
  /// Reads up to the first direction; "-" is standard input.
  /// \throw ToolErrorC  as `Next`, or `kUsage` if the format contradicts itself.
  DirectionReaderC(const std::string& path, const DirectionFormat& format = {});

  /// False at the end.
  /// \throw ToolErrorC  with the line that is not a direction.
  /// \throw FileErrorC  if the file cannot be read.
  bool Next(Direction& direction);

  /// For messages, as `InputFileC::GetName`.
  const std::string& GetName() const { return input_.GetName(); }
  /// The names of the columns as in the heading; empty without a heading.
  const std::vector<std::string>& GetHeading() const { return heading_; }
  /// The cells of the direction that `Next` returned last, without surrounding quotes and blanks.
  const std::vector<std::string>& GetCells() const { return cells_; }
  /// The number of columns; 0 if there is no direction.
  std::size_t GetColumnCount() const { return columnCount_; }
  bool IsCoordinate(std::size_t column) const { return column == hzColumn_ || column == vColumn_; }

 private:
  bool ReadLine(std::string& line);
  bool NextCells();
  void Split(std::string_view text);
  char FindSeparator(std::string_view text) const;
  void TakeFirstLine(std::string_view text);
  void JoinUnits();
  void RequireUnit(const std::string& name) const;
  std::optional<std::size_t> FindName(const std::string& wanted) const;
  std::size_t FindColumn(const std::string& wanted) const;
  std::optional<double> NumberAt(std::size_t column) const;
  bool MayBeginWithComment() const;
  bool IsSkipped(std::string_view text) const;
  std::string_view WithoutBlanks(std::string_view line) const;
  [[noreturn]] void Refuse(const std::string& what) const;

  InputFileC input_;
  DirectionFormat format_;
  std::vector<char> block_;
  std::size_t blockAt_ = 0;
  std::size_t blockEnd_ = 0;
  std::string text_;
  std::uint64_t line_ = 0;  // the number of the line that is read
  char separator_ = ',';
  std::vector<std::string> heading_;
  std::vector<std::string> cells_;
  std::size_t columnCount_ = 0;
  std::size_t hzColumn_ = 0;
  std::size_t vColumn_ = 1;
  bool isHeld_ = false;  // the first direction has been read, but not returned
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_DIRECTION_READER_H_
