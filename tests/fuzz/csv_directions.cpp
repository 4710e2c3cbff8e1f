// A file of directions of any bytes gives, line by line, the same directions as a plain parser of
// the format, up to the first line that is refused.

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <area/direction_reader.h>
#include <command_line/exit_code.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"

namespace {

constexpr std::size_t kLongestLine = 4094;  // without its end

std::string Trimmed(const std::string& text) {
  const char* const blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Where the runtime's two ways to read a number need not agree: one that overflows or underflows.
bool g_isAtTheLimits = false;

// The length of the number at the front, 0 for none.
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

// Blanks with at most one comma or semicolon among them.
std::size_t SeparatorAt(const std::string& text) {
  std::size_t at = 0;
  const auto blanks = [&] {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  };
  blanks();
  if (at < text.size() && (text[at] == ',' || text[at] == ';')) {
    ++at;
    blanks();
  }
  return at;
}

// A plus sign is skipped, but not before a minus sign.
std::size_t SignedNumberAt(const std::string& text, double& number) {
  const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  const std::size_t size = NumberAt(hasPlus ? text.substr(1) : text, number);
  return size != 0 && hasPlus ? size + 1 : size;
}

std::optional<Tool::Direction> DirectionIn(std::string text) {
  Tool::Direction direction{};
  const std::size_t hz = SignedNumberAt(text, direction.hz);
  if (hz == 0) return {};
  text.erase(0, hz);
  const std::size_t separator = SeparatorAt(text);
  if (separator == 0) return {};
  const bool isComma = text.substr(0, separator).find(',') != std::string::npos;
  text.erase(0, separator);
  const std::size_t v = SignedNumberAt(text, direction.v);
  if (v == 0) return {};
  text.erase(0, v);
  if (text.empty()) return direction;
  const std::size_t next = SeparatorAt(text);
  if (next == 0) return {};
  const bool isNextComma = text.substr(0, next).find(',') != std::string::npos;
  text.erase(0, next);
  double third = 0;
  // A comma that could be a decimal separator.
  if (isComma && !isNextComma && SignedNumberAt(text, third) != 0) return {};
  return direction;
}

// Whether the first field, quoted or not, is a number, infinity or none.
bool BeginsWithNumber(std::string text) {
  if (text[0] == '"') text = Trimmed(text.substr(1));
  double number = 0;
  std::size_t size = NumberAt(text, number);
  if (size == 0) {
    std::string word = text.substr(0, 9);
    for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::size_t sign = word.starts_with('-') ? 1 : 0;
    word.erase(0, sign);
    for (const char* const name : {"infinity", "inf", "nan"}) {
      if (!word.starts_with(name)) continue;
      size = sign + std::string(name).size();
      break;
    }
    if (word.starts_with("nan(")) g_isAtTheLimits = true;  // runtimes differ
    if (size == 0) return false;
  }
  return size == text.size() || std::isalnum(static_cast<unsigned char>(text[size])) == 0;
}

}  // namespace

// The bytes of the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  memory.Write(data, size);
  Tool::DirectionReaderC reader(memory.Path());
  std::string rest(reinterpret_cast<const char*>(data), size);
  bool isHeadingAllowed = true;
  for (int number = 1; !rest.empty(); ++number) {
    const std::size_t end = rest.find('\n');
    const std::string line = rest.substr(0, end);
    rest.erase(0, end == std::string::npos ? rest.size() : end + 1);

    std::string text = Trimmed(line);
    if (number == 1 && text.starts_with("\xEF\xBB\xBF")) text = Trimmed(text.substr(3));
    const bool isRefused = line.size() > kLongestLine || line.find('\0') != std::string::npos;
    g_isAtTheLimits = false;
    const auto expected = DirectionIn(text);
    const bool isNumber = !text.empty() && BeginsWithNumber(text);
    if (g_isAtTheLimits) return 0;
    if (!isRefused) {
      if (text.empty() || text[0] == '#') continue;
      const bool isHeading =
          isHeadingAllowed && !isNumber &&
          (std::isalpha(static_cast<unsigned char>(text[0])) != 0 || text[0] == '"');
      isHeadingAllowed = false;
      if (!expected && isHeading) continue;
    }
    Tool::Direction direction{};
    if (!isRefused && expected) {
      EXPECT_TRUE(reader.Next(direction));
      EXPECT_EQ(direction.hz, expected->hz);
      EXPECT_EQ(direction.v, expected->v);
      continue;
    }
    try {
      reader.Next(direction);
      ADD_FAILURE() << "line " << number << " is no direction: " << line;
    } catch (const Tool::ToolErrorC& error) {
      EXPECT_EQ(error.GetCode(), Tool::ExitCode::kFileError);
      const std::string place = "line " + std::to_string(number) + " ";
      EXPECT_NE(std::string(error.what()).find(place), std::string::npos) << error.what();
    }
    return 0;
  }
  Tool::Direction direction{};
  EXPECT_FALSE(reader.Next(direction));
  return 0;
}
