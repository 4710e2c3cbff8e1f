#include <algorithm>
#include <charconv>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include <command_line/command.h>
#include <record/record_columns.h>
#include <record/record_condition.h>

namespace Tool {
namespace {

using SDI::GPSColumnType;

// A literal in the three types that numeric columns have.
struct Number {
  double real = 0;
  float single = 0;
  std::optional<std::int64_t> whole;
};

using Literal = std::variant<bool, Number, std::string>;

enum class Comparison { kEqual, kUnequal, kLess, kLessOrEqual, kGreater, kGreaterOrEqual };

bool Holds(Comparison comparison, std::partial_ordering order) {
  if (order == std::partial_ordering::unordered) return false;
  switch (comparison) {
    case Comparison::kEqual:
      return order == 0;
    case Comparison::kUnequal:
      return order != 0;
    case Comparison::kLess:
      return order < 0;
    case Comparison::kLessOrEqual:
      return order <= 0;
    case Comparison::kGreater:
      return order > 0;
    case Comparison::kGreaterOrEqual:
      break;
  }
  return order >= 0;
}

template <class Whole>
std::partial_ordering OrderWhole(Whole value, const Number& number) {
  if (!number.whole) return static_cast<double>(value) <=> number.real;
  if (std::cmp_equal(value, *number.whole)) return std::partial_ordering::equivalent;
  return std::cmp_less(value, *number.whole) ? std::partial_ordering::less
                                             : std::partial_ordering::greater;
}

struct OrderOf {
  // NOLINTBEGIN(readability-named-parameter): each type of value has one type of literal
  std::partial_ordering operator()(bool value, bool literal) const { return value <=> literal; }
  std::partial_ordering operator()(std::uint64_t value, const Number& number) const {
    return OrderWhole(value, number);
  }
  std::partial_ordering operator()(std::int64_t value, const Number& number) const {
    return OrderWhole(value, number);
  }
  std::partial_ordering operator()(float value, const Number& number) const {
    return value <=> number.single;
  }
  std::partial_ordering operator()(double value, const Number& number) const {
    return value <=> number.real;
  }
  std::partial_ordering operator()(std::string_view value, const std::string& literal) const {
    return value <=> std::string_view(literal);
  }
  // The parser rejects all other combinations; an absent value is not ordered.
  template <class Value, class Other>
  std::partial_ordering operator()(const Value&, const Other&) const {
    return std::partial_ordering::unordered;
  }
  // NOLINTEND(readability-named-parameter)
};

// The names under which record list shows two columns.
const SDI::GPSColumn& ColumnOf(std::string_view name) {
  if (name == "in_view") name = "total_first";
  if (name == "used") name = "total_second";
  return FindRecordColumn(name);
}

std::string_view KindOf(GPSColumnType type) {
  if (type == GPSColumnType::kBool) return "true or false";
  if (type == GPSColumnType::kText) return "a text";
  if (type == GPSColumnType::kUInt16List) return "a list";
  return "a number";
}

std::string_view KindOf(const Literal& literal) {
  constexpr std::string_view kKinds[] = {"true or false", "a number", "a text"};
  return kKinds[literal.index()];
}

}  // namespace

struct RecordConditionC::Term {
  enum class Kind { kAll, kAny, kNot, kPresent, kCompare };

  bool IsTrue(const DecodedRecord& record, SDI::GPSColumnValueC& value) const {
    const auto isTrue = [&](const Term& part) { return part.IsTrue(record, value); };
    switch (kind) {
      case Kind::kAll:
        return std::ranges::all_of(parts, isTrue);
      case Kind::kAny:
        return std::ranges::any_of(parts, isTrue);
      case Kind::kNot:
        return !isTrue(parts.front());
      case Kind::kPresent:
        AskRecordColumn(*column, record, value);
        return !value.IsAbsent();
      case Kind::kCompare:
        break;
    }
    AskRecordColumn(*column, record, value);
    return Holds(comparison, std::visit(OrderOf{}, value.Get(), literal));
  }

  Kind kind = Kind::kAll;
  std::vector<Term> parts;
  const SDI::GPSColumn* column = nullptr;
  Comparison comparison = Comparison::kEqual;
  Literal literal;
};

namespace {

using Term = RecordConditionC::Term;

enum class TokenKind { kWord, kNumber, kText, kComparison, kOpen, kClose, kEnd };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::size_t at = 0;
  std::string text;  // the content of a quoted text
  Comparison comparison = Comparison::kEqual;
};

bool IsDigit(char c) { return '0' <= c && c <= '9'; }
bool IsLetter(char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || c == '_'; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

class ParserC {
 public:
  explicit ParserC(std::string_view text) : text_(text) { Advance(); }

  Term Parse() {
    Term term = Any(0);
    if (token_.kind != TokenKind::kEnd) Fail("expected and, or, or the end");
    return term;
  }

 private:
  static constexpr int kDeepest = 100;

  [[noreturn]] void FailAt(std::size_t at, std::string_view what) const {
    const std::string_view before = text_.substr(0, at);
    const auto characters = std::ranges::count_if(
        before, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    const std::string place =
        at < text_.size() ? fmt::format("at character {}, \"{}\"", characters + 1, text_.substr(at))
                          : std::string("at its end");
    throw ValueErrorC(fmt::format("{}: {}", place, what));
  }
  [[noreturn]] void Fail(std::string_view what) const { FailAt(token_.at, what); }

  // term or term or ...
  Term Any(int depth) {
    return Joined("or", Term::Kind::kAny,
                  [&] { return Joined("and", Term::Kind::kAll, [&] { return Single(depth); }); });
  }

  template <class Part>
  Term Joined(std::string_view word, Term::Kind kind, const Part& part) {
    Term first = part();
    if (!IsWord(word)) return first;
    Term all;
    all.kind = kind;
    all.parts.push_back(std::move(first));
    while (IsWord(word)) {
      Advance();
      all.parts.push_back(part());
    }
    return all;
  }

  Term Single(int depth) {
    bool isNegated = false;
    while (IsWord("not")) {
      isNegated = !isNegated;
      Advance();
    }
    Term term = Positive(depth);
    if (!isNegated) return term;
    Term negated;
    negated.kind = Term::Kind::kNot;
    negated.parts.push_back(std::move(term));
    return negated;
  }

  Term Positive(int depth) {
    if (token_.kind == TokenKind::kOpen) {
      if (depth == kDeepest) Fail(fmt::format("more than {} parentheses are open", kDeepest));
      Advance();
      Term term = Any(depth + 1);
      Need(TokenKind::kClose, "expected and, or, or )");
      return term;
    }
    if (token_.kind != TokenKind::kWord || IsWord("and") || IsWord("or")) {
      Fail("expected a condition, e.g. pdop < 4");
    }
    const Token name = token_;
    Advance();
    if (name.text == "present" && token_.kind == TokenKind::kOpen) return Present();
    return Compare(name);
  }

  Term Present() {
    Advance();
    Term term;
    term.kind = Term::Kind::kPresent;
    if (token_.kind != TokenKind::kWord) Fail("expected the name of a column");
    term.column = &Column(token_);
    Advance();
    Need(TokenKind::kClose, "expected )");
    return term;
  }

  Term Compare(const Token& name) {
    Term term;
    term.kind = Term::Kind::kCompare;
    term.column = &Column(name);
    const GPSColumnType type = term.column->type;
    if (type == GPSColumnType::kUInt16List) {
      FailAt(name.at,
             fmt::format("the column {0} is a list, which only present({0}) takes", name.text));
    }
    if (token_.kind != TokenKind::kComparison) {
      if (type != GPSColumnType::kBool) Fail("expected a comparison: = != < <= > >=");
      term.literal = true;
      return term;
    }
    term.comparison = token_.comparison;
    if (type == GPSColumnType::kBool && term.comparison > Comparison::kUnequal) {
      Fail(fmt::format("the column {} is true or false; = and != compare it", name.text));
    }
    Advance();
    const Token value = token_;
    term.literal = Value();
    if (KindOf(type) != KindOf(term.literal)) {
      FailAt(value.at, fmt::format("the column {} is {}, not {}", name.text, KindOf(type),
                                   KindOf(term.literal)));
    }
    return term;
  }

  Literal Value() {
    Literal literal;
    if (token_.kind == TokenKind::kText) {
      literal = token_.text;
    } else if (token_.kind == TokenKind::kNumber) {
      literal = ToNumber(token_);
    } else if (IsWord("true") || IsWord("false")) {
      literal = token_.text == "true";
    } else {
      Fail("expected a number, a text in quotes, true or false");
    }
    Advance();
    return literal;
  }

  Number ToNumber(const Token& token) const {
    const std::size_t plus = token.text.starts_with('+') ? 1 : 0;
    const char* const begin = token.text.data() + plus;
    const char* const end = token.text.data() + token.text.size();
    Number number;
    const auto [stop, error] = std::from_chars(begin, end, number.real);
    if (stop != end || begin == end || *begin == '+' || error == std::errc::invalid_argument) {
      FailAt(token.at, "this is not a number");
    }
    if (error != std::errc()) FailAt(token.at, "this number is too large or too small");
    // A number out of the range of single precision becomes infinite or 0.
    if (std::from_chars(begin, end, number.single).ec != std::errc()) {
      number.single = static_cast<float>(number.real);
    }
    std::int64_t whole = 0;
    const auto [wholeStop, wholeError] = std::from_chars(begin, end, whole);
    if (wholeStop == end && wholeError == std::errc()) number.whole = whole;
    return number;
  }

  const SDI::GPSColumn& Column(const Token& token) const {
    try {
      return ColumnOf(token.text);
    } catch (const ValueErrorC& error) {
      FailAt(token.at, error.what());
    }
  }

  bool IsWord(std::string_view word) const {
    return token_.kind == TokenKind::kWord && token_.text == word;
  }
  void Need(TokenKind kind, std::string_view what) {
    if (token_.kind != kind) Fail(what);
    Advance();
  }

  // The next token becomes the current one.
  void Advance() {
    while (at_ < text_.size() && IsBlank(text_[at_])) ++at_;
    token_ = Token{};
    token_.at = at_;
    if (at_ == text_.size()) return;
    const char c = text_[at_];
    if (c == '(' || c == ')') {
      token_.kind = c == '(' ? TokenKind::kOpen : TokenKind::kClose;
      ++at_;
    } else if (c == '\'' || c == '"') {
      TakeText(c);
    } else if (IsLetter(c)) {
      Take(TokenKind::kWord, [](char next, char) { return IsLetter(next) || IsDigit(next); });
    } else if (IsDigit(c) || c == '.' || c == '-' || c == '+') {
      Take(TokenKind::kNumber, [](char next, char last) {
        const bool isSign = next == '+' || next == '-';
        return IsDigit(next) || IsLetter(next) || next == '.' ||
               (isSign && (last == 'e' || last == 'E'));
      });
    } else {
      TakeComparison();
    }
  }

  template <class IsPart>
  void Take(TokenKind kind, const IsPart& isPart) {
    token_.kind = kind;
    do {
      token_.text += text_[at_++];
    } while (at_ < text_.size() && isPart(text_[at_], text_[at_ - 1]));
  }

  void TakeText(char quote) {
    token_.kind = TokenKind::kText;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == quote && !text_.substr(at_ + 1).starts_with(quote)) {
        ++at_;
        return;
      }
      if (text_[at_] == quote) ++at_;
      token_.text += text_[at_];
    }
    Fail("this text has no closing quotation mark");
  }

  void TakeComparison() {
    static constexpr std::pair<std::string_view, Comparison> kComparisons[] = {
        {"==", Comparison::kEqual},   {"=", Comparison::kEqual},
        {"!=", Comparison::kUnequal}, {"<=", Comparison::kLessOrEqual},
        {"<", Comparison::kLess},     {">=", Comparison::kGreaterOrEqual},
        {">", Comparison::kGreater}};
    for (const auto& [sign, comparison] : kComparisons) {
      if (!text_.substr(at_).starts_with(sign)) continue;
      token_.kind = TokenKind::kComparison;
      token_.comparison = comparison;
      at_ += sign.size();
      return;
    }
    Fail("unknown character");
  }

  std::string_view text_;
  std::size_t at_ = 0;
  Token token_;
};

}  // namespace

RecordConditionC::RecordConditionC(std::string_view text)
    : term_(std::make_unique<const Term>(ParserC(text).Parse())) {}
RecordConditionC::RecordConditionC(RecordConditionC&& other) noexcept = default;
RecordConditionC& RecordConditionC::operator=(RecordConditionC&& other) noexcept = default;
RecordConditionC::~RecordConditionC() = default;

bool RecordConditionC::IsTrue(const DecodedRecord& record) const {
  SDI::GPSColumnValueC value;
  return term_->IsTrue(record, value);
}

}  // namespace Tool
