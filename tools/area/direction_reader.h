#ifndef SURVEYDATA_TOOLS_AREA_DIRECTION_READER_H_
#define SURVEYDATA_TOOLS_AREA_DIRECTION_READER_H_

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// A direction in the unit of an area file.
struct Direction {
  double hz;
  double v;
};

/// Hz and V, then anything, with commas, semicolons, tabs or spaces between; nothing for any other
/// text, and where a comma between Hz and V may be a decimal one: before a third number that
/// another separator sets off.
std::optional<Direction> ParseDirection(std::string_view text);

/// Hz and V, and nothing behind them: there decimal commas would go unnoticed.
std::optional<Direction> ParseDirectionAlone(std::string_view text);

/// A direction of the command line, alone. \throw ToolErrorC  when it is none.
Direction RequireDirection(const std::string& text);

/// Reads directions line by line in a fixed amount of memory. Empty lines, lines that begin with
/// '#', a byte order mark, and a heading before the first direction are passed over. A heading
/// begins with a letter or a quotation mark, and not with a number.
class DirectionReaderC {
 public:
  /// Reads standard input when `path` is "-". \throw ToolErrorC  when the file cannot be read.
  explicit DirectionReaderC(const std::string& path);

  /// False at the end. \throw ToolErrorC  with the line that is no direction, or cannot be read.
  bool Next(Direction& direction);

 private:
  std::string name_;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
  std::array<char, 4096> buffer_;
  std::uint64_t line_ = 0;
  bool isHeadingAllowed_ = true;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_DIRECTION_READER_H_
