#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <surveydata/scanning/prepared_area.h>

#include <area/area_commands.h>
#include <area/area_file.h>
#include <area/area_reasons.h>
#include <area/direction_reader.h>
#include <command_line/common_options.h>
#include <command_line/message.h>
#include <command_line/text.h>
#include <output/csv_cell.h>
#include <output/json_writer.h>
#include <output/output.h>
#include <platform/format.h>
#include <platform/platform.h>

namespace Tool {
namespace {

constexpr const char* kDescription =
    "Report whether each direction is inside an area. The exit code is 1 if a direction is\n"
    "outside or there is none. If the area is not valid, there are no answers, and the exit code\n"
    "is 4.\n\n"
    "Directions come from the command line, or from a table with one direction in each line, in\n"
    "the unit of the area file. A heading names the columns: hz, v and any others, in any order.\n"
    "It may also name that unit, as in Hz [gon]. Without a heading there are two columns, Hz and\n"
    "V. Commas, semicolons, tabs or blanks separate them. Other columns are copied to the\n"
    "output. A line that is not a direction is an error. Empty lines are skipped, and so are\n"
    "lines that begin with #, if the first column is Hz or V.\n\n"
    "A direction in the boundary band is inside. The band extends 0.0005 gon to both sides of\n"
    "lines that are displaced from the boundary: their Hz is that of the boundary minus twice\n"
    "the smallest Hz of the area, and they are straight in Hz and V where the boundary follows\n"
    "arcs. The closing edge of a polygon has no band.";

enum class Form { kText, kCsv, kJson };

struct Options {
  std::string file;
  std::vector<std::string> directions;
  std::string csv;
  DirectionFormat format;
  Form form = Form::kText;
  bool isJson = false;
  bool hasReasons = false;
  Formulas formulas = Formulas::kEscape;

  std::string Input() const { return csv.empty() ? "-" : csv; }
};

// Tests directions in blocks, and writes each with its answer and its other columns.
class AnswerC {
 public:
  AnswerC(const AreaFile& file, Form form, const Options& options)
      : area_(*file.area),
        unit_(file.unit),
        form_(form),
        formulas_(options.formulas),
        hasReasons_(options.hasReasons) {}

  // For directions without other columns.
  void Begin() {
    if (form_ == Form::kCsv) out_.Print("hz,v,inside\r\n");
    BeginText();
  }
  // For the directions of a table.
  void Begin(const DirectionReaderC& reader) {
    for (std::size_t i = 0; i < reader.GetColumnCount(); ++i) {
      const std::string name = reader.GetHeading().empty() ? "" : reader.GetHeading()[i];
      const std::string shown = name.empty() ? fmt::format("{}", i + 1) : name;
      columns_.push_back({reader.IsCoordinate(i), shown});
      hasOthers_ = hasOthers_ || !reader.IsCoordinate(i);
      if (form_ == Form::kCsv && !reader.GetHeading().empty()) WriteCell(name);
    }
    if (form_ == Form::kCsv && !reader.GetHeading().empty()) {
      out_.Print(",inside\r\n");
    } else if (form_ == Form::kCsv && !hasOthers_) {
      out_.Print("hz,v,inside\r\n");
    }
    BeginText();
  }

  void Add(const Direction& direction, const std::vector<std::string>& cells = {}) {
    given_[size_] = direction;
    hz_[size_] = ToRadians(direction.hz, unit_);
    v_[size_] = ToRadians(direction.v, unit_);
    if (hasOthers_ || (form_ == Form::kCsv && !cells.empty())) {
      for (const std::string& cell : cells) cells_.Add(cell);
    }
    if (++size_ == kBlock || cells_.IsFull()) Flush();
  }

  /// Returns whether all directions were inside.
  bool Close() {
    Flush();
    if (form_ == Form::kText) {
      out_.Print("{} direction{}: {} inside, {} outside\n", inside_ + outside_,
                 inside_ + outside_ == 1 ? "" : "s", inside_, outside_);
    }
    out_.Close();
    return outside_ == 0;
  }

  /// Whether there was no direction.
  bool IsEmpty() const { return inside_ + outside_ == 0; }

 private:
  static constexpr std::size_t kBlock = 4096;

  struct Column {
    bool isCoordinate;
    std::string name;
  };

  // The cells of several lines, in an amount of memory that does not depend on their number.
  class CellsC {
   public:
    void Add(std::string_view cell) {
      text_ += cell;
      ends_.push_back(text_.size());
    }
    std::string_view operator[](std::size_t i) const {
      const std::size_t begin = i > 0 ? ends_[i - 1] : 0;
      return std::string_view(text_).substr(begin, ends_[i] - begin);
    }
    bool IsEmpty() const { return ends_.empty(); }
    // The cells of one more line still fit: it has at most 64 KiB.
    bool IsFull() const { return ends_.size() >= kMost || text_.size() >= kMostBytes; }
    void Clear() {
      text_.clear();
      ends_.clear();
    }

   private:
    static constexpr std::size_t kMost = std::size_t{1} << 16;
    static constexpr std::size_t kMostBytes = std::size_t{1} << 20;

    std::string text_;
    std::vector<std::size_t> ends_;
  };

  std::string_view CellOf(std::size_t i, std::size_t column) const {
    return cells_[i * columns_.size() + column];
  }

  void BeginText() {
    if (form_ != Form::kText) return;
    out_.Print("{:>16}  {:>16}  {}", fmt::format("Hz [{}]", UnitName(unit_)),
               fmt::format("V [{}]", UnitName(unit_)), hasOthers_ ? "answer " : "answer");
    for (const Column& column : columns_) {
      if (!column.isCoordinate) out_.Print("  {}", ToVisible(column.name));
    }
    out_.Print("\n");
  }

  void WriteCell(std::string_view text) {
    out_.Print("{}{}", isFirstCell_ ? "" : ",", CsvCell(ToPrintable(text), formulas_));
    isFirstCell_ = false;
  }

  void WriteCsv(std::size_t i) {
    if (cells_.IsEmpty()) {
      out_.Print("{},{},{}\r\n", given_[i].hz, given_[i].v, isInside_[i]);
      return;
    }
    isFirstCell_ = true;
    for (std::size_t k = 0; k < columns_.size(); ++k) WriteCell(CellOf(i, k));
    out_.Print(",{}\r\n", isInside_[i]);
  }

  void WriteJson(std::size_t i) {
    JsonWriterC line(out_.GetBuffer());
    line.Field("hz", given_[i].hz);
    line.Field("v", given_[i].v);
    line.Field("inside", isInside_[i]);
    if (hasOthers_) {
      line.Begin("columns");
      for (std::size_t k = 0; k < columns_.size(); ++k) {
        if (columns_[k].isCoordinate) continue;
        line.NamedField(ToUtf8(columns_[k].name), ToUtf8(CellOf(i, k)));
      }
      line.End();
    }
    if (hasReasons_) WriteReasons(line, area_.Explain(hz_[i], v_[i]), unit_);
    line.EndLine();
  }

  void WriteText(std::size_t i) {
    constexpr std::size_t kWidth = 16;
    constexpr std::string_view kGap = "  ";
    fmt::memory_buffer& line = out_.GetBuffer();
    AppendNumber(line, given_[i].hz, kWidth);
    line.append(kGap);
    AppendNumber(line, given_[i].v, kWidth);
    line.append(kGap);
    line.append(std::string_view(!isInside_[i] ? "outside" : hasOthers_ ? "inside " : "inside"));
    for (std::size_t k = 0; hasOthers_ && k < columns_.size(); ++k) {
      if (!columns_[k].isCoordinate) out_.Print("  {}", ToVisible(CellOf(i, k)));
    }
    line.push_back('\n');
    if (hasReasons_) out_.Print("{}", ReasonsText(area_.Explain(hz_[i], v_[i]), unit_, "    "));
  }

  void Flush() {
    area_.Contains(std::span(hz_).first(size_), std::span(v_).first(size_), isInside_);
    for (std::size_t i = 0; i < size_; ++i) {
      ++(isInside_[i] ? inside_ : outside_);
      if (form_ == Form::kJson) {
        WriteJson(i);
      } else if (form_ == Form::kCsv) {
        WriteCsv(i);
      } else {
        WriteText(i);
      }
      out_.FlushIfFull();
    }
    size_ = 0;
    cells_.Clear();
  }

  SDI::PreparedAreaC area_;
  AngleUnit unit_;
  Form form_;
  Formulas formulas_;
  bool hasReasons_;
  OutputC out_;
  std::vector<Column> columns_;
  bool hasOthers_ = false;  // columns other than Hz and V
  bool isFirstCell_ = true;
  std::array<Direction, kBlock> given_;
  std::array<double, kBlock> hz_;
  std::array<double, kBlock> v_;
  std::array<bool, kBlock> isInside_;
  CellsC cells_;  // of these directions, if they are written
  std::size_t size_ = 0;
  std::uint64_t inside_ = 0;
  std::uint64_t outside_ = 0;
};

Form ParseForm(const std::string& text) {
  if (text == "text") return Form::kText;
  if (text == "csv") return Form::kCsv;
  if (text == "json") return Form::kJson;
  throw ValueErrorC("must be text, csv or json");
}

ExitCode Run(const Options& options) {
  const Form form = options.isJson ? Form::kJson : options.form;
  if (options.hasReasons && form == Form::kCsv) {
    throw ToolErrorC(ExitCode::kUsage, "--why gives reasons as text or JSON, not as CSV");
  }
  if (options.directions.empty()) RequireOneStandardInput(options.file, options.Input());
  const AreaFile file = LoadAreaFile(options.file);
  std::vector<Direction> directions;  // those of the command line are checked first
  for (const std::string& text : options.directions) directions.push_back(RequireDirection(text));
  const ExitCode validity = WarnOfFaults(FindAreaFaults(file));
  if (validity != ExitCode::kDone) return validity;
  const auto answer = std::make_unique<AnswerC>(file, form, options);
  std::string input;
  if (directions.empty()) {
    if (options.csv.empty() && IsTerminal(StandardStream::kInput)) {
      Tell(fmt::format("enter directions, one per line: Hz and V; {} ends the input", kEndOfInput));
    }
    DirectionFormat format = options.format;
    format.unit = file.unit;
    DirectionReaderC reader(options.Input(), format);
    input = reader.GetName();
    answer->Begin(reader);
    for (Direction direction{}; reader.Next(direction);) {
      answer->Add(direction, reader.GetCells());
    }
  } else {
    answer->Begin();
    for (const Direction& direction : directions) answer->Add(direction);
  }
  const bool areAllInside = answer->Close();
  if (answer->IsEmpty()) Tell(fmt::format("{}: there is no direction", input));
  return areAllInside && !answer->IsEmpty() ? ExitCode::kDone : ExitCode::kFinding;
}

}  // namespace

Command AreaContainsCommand() {
  const auto options = std::make_shared<Options>();
  Command command;
  command.name = "contains";
  command.description = kDescription;
  command.footer =
      "Examples:\n"
      "  surveydata area contains facade.json 57,92 60.5,95\n"
      "  surveydata area contains facade.json 57,92 --why\n"
      "  surveydata area contains facade.json --csv points.csv --format csv";
  command.arguments = {
      AreaArgument(options->file),
      {.names = {"DIRECTION"},
       .value = "HZ,V ...",
       .description = "Directions in the unit of the area file",
       .take = [options](const std::string& text) { options->directions.push_back(text); },
       .excludes = {"--csv"},
       .isRepeatable = true}};
  command.options = {{.names = {"--csv"},
                      .value = "FILE",
                      .description = "A table of directions; - for standard input, the default",
                      .take = StoreIn(options->csv),
                      .excludes = {"DIRECTION"}}};
  for (CommandOption& option : DirectionFormatOptions(options->format)) {
    option.excludes = {"DIRECTION"};
    command.arguments[1].excludes.push_back(option.names.back());
    command.options.Add(option);
  }
  command.options.Add(
      {{.names = {"--format"},
        .value = "text|csv|json",
        .description =
            "The format of the output: aligned text, the default; a CSV table; JSON Lines",
        .take = [options](const std::string& text) { options->form = ParseForm(text); },
        .excludes = {"--json"}},
       {.names = {"--json"},
        .description = "The same as --format json",
        .flag = &options->isJson,
        .excludes = {"--format"}},
       {.names = {"--why"},
        .description = "The reasons of each answer: the rule, where the meridian of the direction "
                       "crosses edges, and the nearest edge with the angle to it; as text or JSON",
        .flag = &options->hasReasons},
       FormulasOption(options->formulas)});
  command.run = [options] { return Run(*options); };
  return command;
}

}  // namespace Tool
