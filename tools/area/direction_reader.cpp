#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

#include <area/direction_reader.h>
#include <command_line/exit_code.h>
#include <command_line/message.h>

namespace Tool {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

int KeepOpen(std::FILE* /*file*/) { return 0; }

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Takes a number from the front. A plus sign is read over, though not before another sign.
std::optional<double> TakeNumber(std::string_view& text) {
  double number = 0;
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || !std::isfinite(number)) return {};
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return number;
}

// Takes blanks with at most one comma or semicolon among them from the front, and tells which of
// the three it was; 0 when there is none.
char TakeSeparator(std::string_view& text) {
  const std::size_t before = text.size();
  char separator = ' ';
  text = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
  if (!text.empty() && (text.front() == ',' || text.front() == ';')) {
    separator = text.front();
    text.remove_prefix(1);
    text = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
  }
  return text.size() != before ? separator : '\0';
}

// Whether the first field is a number of any kind, quoted or not.
bool BeginsWithNumber(std::string_view text) {
  if (text.front() == '"') text = Trimmed(text.substr(1));
  double number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::invalid_argument) return false;
  const auto length = static_cast<std::size_t>(stop - text.data());
  return length == text.size() || std::isalnum(static_cast<unsigned char>(text[length])) == 0;
}

// Takes Hz and V from the front, and tells what stands between them.
std::optional<Direction> TakeDirection(std::string_view& text, char& separator) {
  const auto hz = TakeNumber(text);
  if (!hz) return {};
  separator = TakeSeparator(text);
  if (separator == '\0') return {};
  const auto v = TakeNumber(text);
  if (!v) return {};
  return Direction{*hz, *v};
}

}  // namespace

std::optional<Direction> ParseDirection(std::string_view text) {
  text = Trimmed(text);
  char separator = '\0';
  const auto direction = TakeDirection(text, separator);
  if (!direction || text.empty()) return direction;
  const char next = TakeSeparator(text);
  if (next == '\0') return {};
  // 57,92;95,3 and 57,92 95,3 have decimal commas, or two directions: nobody knows.
  if (separator == ',' && next != ',' && TakeNumber(text)) return {};
  return direction;
}

std::optional<Direction> ParseDirectionAlone(std::string_view text) {
  text = Trimmed(text);
  char separator = '\0';
  const auto direction = TakeDirection(text, separator);
  return text.empty() ? direction : std::nullopt;
}

Direction RequireDirection(const std::string& text) {
  const auto direction = ParseDirectionAlone(text);
  if (!direction) {
    throw ToolErrorC(
        ExitCode::kUsage,
        fmt::format("{} is no direction HZ,V: two numbers, with a point for decimals", text));
  }
  return *direction;
}

DirectionReaderC::DirectionReaderC(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(path == "-" ? stdin : std::fopen(path.c_str(), "rb"),
            path == "-" ? &KeepOpen : &std::fclose) {
  if (file_ == nullptr) {
    FailToRead(name_);
  }
}

bool DirectionReaderC::Next(Direction& direction) {
  for (;;) {
    buffer_.fill('\n');  // no zero: the last one stands behind the line
    if (std::fgets(buffer_.data(), static_cast<int>(buffer_.size()), file_.get()) == nullptr) break;
    ++line_;
    const std::string_view read = buffer_.data();
    const auto refuse = [&](const std::string& what) {
      return ToolErrorC(ExitCode::kFileError, fmt::format("{}: line {} {}", name_, line_, what));
    };
    if (read.size() + 1 == buffer_.size() && read.back() != '\n') throw refuse("is too long");
    if (read.empty() || read.back() != '\n') {  // only the end of the file may end a line like this
      const auto last = std::find(buffer_.rbegin(), buffer_.rend(), '\0');
      if (last.base() - 1 != buffer_.begin() + read.size()) throw refuse("has a zero byte");
    }
    std::string_view text = Trimmed(read);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (line_ == 1 && text.starts_with(kByteOrderMark)) {
      text = Trimmed(text.substr(kByteOrderMark.size()));
    }
    if (text.empty() || text.front() == '#') continue;
    const auto parsed = ParseDirection(text);
    const bool isHeading =
        isHeadingAllowed_ && !BeginsWithNumber(text) &&
        (std::isalpha(static_cast<unsigned char>(text.front())) != 0 || text.front() == '"');
    isHeadingAllowed_ = false;
    if (parsed) {
      direction = *parsed;
      return true;
    }
    if (!isHeading) {
      throw refuse(fmt::format("is no direction: {}", text.substr(0, 60)));
    }
  }
  if (std::ferror(file_.get()) != 0) {
    FailToRead(name_);
  }
  return false;
}

}  // namespace Tool
