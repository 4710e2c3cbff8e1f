#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/man_page.h>
#include <command_line/text.h>
#include <platform/format.h>

namespace Tool {
namespace {

std::string ToUpper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

// Escapes a text for roff. In names and examples, which users copy, a dash is a minus sign.
std::string Escaped(std::string_view text, bool isToBeCopied) {
  std::string out;
  const auto units = ToSingleUnits(text);
  if (!units) return out;
  for (const char16_t unit : *units) {
    switch (unit) {
      case u'\\':
        out += "\\e";
        break;
      case u'-':
        out += isToBeCopied ? "\\-" : "-";
        break;
      case u'\'':
        out += "\\(aq";
        break;
      case u'"':
        out += "\\(dq";
        break;
      default:
        if (unit < 0x80) {
          out += static_cast<char>(unit);
        } else {
          Append(out, "\\[u{:04X}]", static_cast<unsigned>(unit));
        }
    }
  }
  if (out.starts_with('.')) out.insert(0, "\\&");
  return out;
}

std::string Bold(std::string_view text) { return fmt::format("\\fB{}\\fR", Escaped(text, true)); }
std::string Italic(std::string_view text) { return fmt::format("\\fI{}\\fR", Escaped(text, true)); }

// "-o, --output OUT"
std::string Signature(const CommandOption& option) {
  std::string out;
  for (const std::string& name : option.names) {
    if (!out.empty()) out += ", ";
    out += Bold(name);
  }
  if (!option.value.empty()) Append(out, " {}", Italic(option.value));
  return out;
}

// The synopsis of a command: "surveydata record show --offset N [--bytes] FILE".
std::string Call(const Command& command) {
  std::string out = Bold(command.path);
  const auto add = [&out](const std::string& what, bool isRequired) {
    out += isRequired ? " " + what : " [" + what + "]";
  };
  for (const CommandOption& option : command.options) {
    if (option.isHelp) continue;
    std::string what = Bold(option.names.front());
    if (!option.value.empty()) what += "\\ " + Italic(option.value);
    add(what, option.isRequired);
    if (option.isRepeatable) out += "...";
  }
  for (const CommandOption& argument : command.arguments) {
    add(Italic(argument.names.front()), argument.isRequired);
    if (argument.isRepeatable) out += "...";
  }
  return out;
}

class PageC {
 public:
  void Macro(std::string_view name, std::string_view text = {}) {
    Line(fmt::format(".{}{}{}", name, text.empty() ? "" : " ", text));
    isAfterHeading_ = name == "SH" || name == "SS";
  }
  void Line(std::string_view text) {
    Append(page_, "{}\n", text);
    isAfterHeading_ = false;
  }

  // Lines that begin with blanks are kept as they are, the others are filled.
  void Text(std::string_view text) {
    bool isForm = false;
    while (!text.empty()) {
      const std::string_view line = text.substr(0, text.find('\n'));
      text.remove_prefix(std::min(line.size() + 1, text.size()));
      const bool isFormLine = line.starts_with("  ");
      if (isFormLine && !isForm && !isAfterHeading_) Macro("PP");
      if (isFormLine != isForm) Macro(isFormLine ? "EX" : "EE\n.PP");
      isForm = isFormLine;
      if (!line.empty()) {
        Line(Escaped(line, isForm));
      } else if (!text.empty() && !text.starts_with("  ")) {
        Macro("PP");
      }
    }
    if (isForm) Macro("EE");
  }

  // The options and arguments of a command; --help only for the program itself.
  void Options(const Command& command, bool isTop) {
    for (const CommandOption& option : command.options) {
      if (option.isHelp && !isTop) continue;
      Option(option);
    }
    for (const CommandOption& argument : command.arguments) Option(argument);
  }

  const std::string& Get() const { return page_; }

 private:
  void Option(const CommandOption& option) {
    Macro("TP");
    Line(option.names.front().starts_with('-') ? Signature(option) : Italic(option.names.front()));
    std::string text = option.description;
    if (option.isRequired) text += " (required)";
    if (!option.excludes.empty()) {
      text += fmt::format("; excludes {}", Joined(option.excludes, ", "));
    }
    Text(text + ".");
  }

  std::string page_;
  bool isAfterHeading_ = false;
};

// A paragraph that begins with a title, "Exit codes: ...", is a section; others continue
// the text.
void WriteFooterSections(PageC& page, std::string_view footer) {
  while (!footer.empty()) {
    const std::string_view paragraph = footer.substr(0, footer.find("\n\n"));
    footer.remove_prefix(std::min(paragraph.size() + 2, footer.size()));
    const std::size_t colon = paragraph.find(':');
    if (colon == std::string_view::npos) {
      page.Macro("PP");
      page.Text(paragraph);
      continue;
    }
    page.Macro("SH", ToUpper(paragraph.substr(0, colon)));
    page.Text(paragraph.substr(colon + 2));
  }
}

void WriteCommand(PageC& page, const Command& command) {
  page.Macro("SS", Escaped(command.path, true));
  page.Text(command.description);
  page.Options(command, false);
  page.Macro("PP");
  page.Text(command.footer);
}

// The commands that belong to no task, which are those with subcommands, and then each task.
void WriteCommands(PageC& page, const Command& top) {
  const std::vector<const Command*> all = AllCommands(top);
  const auto find = [&](const std::string& path) {
    return std::ranges::find(all, top.name + " " + path, &Command::path);
  };
  std::vector<const Command*> others(all.begin() + 1, all.end());
  for (const CommandTask& task : top.tasks) {
    for (const std::string& path : task.paths) std::erase(others, *find(path));
  }
  page.Macro("SH", "COMMANDS");
  for (const Command* const command : others) WriteCommand(page, *command);
  for (const CommandTask& task : top.tasks) {
    page.Macro("SH", ToUpper(task.title));
    for (const std::string& path : task.paths) WriteCommand(page, **find(path));
  }
}

}  // namespace

std::string ManPage(const Command& top, const std::string& date, const std::string& version) {
  PageC page;
  page.Line(R"(.\" Generated from the commands of the program.)");
  page.Macro("TH", fmt::format(R"({} 1 {} "{} {}" "User Commands")", ToUpper(top.name), date,
                               top.name, version));
  page.Macro("SH", "NAME");
  std::string summary = Summary(top.description);
  summary[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(summary[0])));
  page.Line(fmt::format("{} \\- {}", top.name, summary));

  page.Macro("SH", "SYNOPSIS");
  bool isFirst = true;
  for (const Command* const command : AllCommands(top)) {
    if (!command->commands.empty()) continue;
    if (!isFirst) page.Macro("br");
    isFirst = false;
    page.Line(Call(*command));
  }
  for (const CommandOption& option : top.options) {
    page.Macro("br");
    page.Line(Bold(top.path) + " " + Bold(option.names.back()));
  }

  page.Macro("SH", "DESCRIPTION");
  page.Text(top.description);
  page.Macro("SH", "OPTIONS");
  page.Options(top, true);
  WriteCommands(page, top);
  WriteFooterSections(page, top.footer);
  return page.Get();
}

}  // namespace Tool
