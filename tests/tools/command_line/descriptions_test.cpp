// The manual page and the completions for the shells, which are generated from the commands: their
// content, and how the shells use them.

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <command_line/command.h>
#include <command_line/common_options.h>
#include <command_line/completion.h>
#include <command_line/exit_code.h>
#include <command_line/man_page.h>
#include <commands.h>

#include "tests/tools/program.h"

namespace {

using Tool::Command;

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool IsThere(const std::string& program, const TempFolderC& folder) {
  return RunShell("command -v " + program, folder.Path().string()).exitCode == 0;
}

void Write(const std::string& file, const std::string& text) {
  WriteBytes(file, Bytes(text.begin(), text.end()));
}

// Every word of the help texts that is an option, with the words of the command before it.
std::vector<std::vector<std::string>> OptionsOfTheHelp(const std::vector<std::string>& command) {
  std::vector<std::string> arguments = command;
  arguments.emplace_back("--help");
  std::vector<std::vector<std::string>> found;
  std::string section;
  for (const std::string& line : Lines(RunProgram(arguments).out)) {
    if (!line.empty() && line.front() != ' ') section = line;
    if (!line.starts_with("  ") || line[2] == ' ') continue;
    const std::string word = line.substr(2, line.find(' ', 2) - 2);
    if (section == "Subcommands:") {
      auto below = command;
      below.push_back(word);
      const auto options = OptionsOfTheHelp(below);
      found.push_back(std::move(below));
      found.insert(found.end(), options.begin(), options.end());
    } else if (section == "Options:" || section == "Positionals:") {
      for (std::size_t at = 0; at < word.size();) {  // -o,--output
        const std::size_t end = std::min(word.find(',', at), word.size());
        auto option = command;
        option.push_back(word.substr(at, end - at));
        found.push_back(std::move(option));
        at = end + 1;
      }
    }
  }
  return found;
}

// The section of a manual page about a command.
std::string ManSection(const std::string& page, const std::string& heading) {
  const std::size_t begin = page.find(heading + "\n");
  if (begin == std::string::npos) return {};
  return page.substr(begin, page.find("\n.S", begin) - begin);
}

std::string InRoff(std::string text) {
  for (std::size_t at = 0; (at = text.find('-', at)) != std::string::npos; at += 2) {
    text.insert(at, "\\");
  }
  return text;
}

TEST(ManPage, NamesEveryCommandAndOptionOfTheHelpWhereItBelongs) {
  const std::string page = Tool::ManPage(Tool::MakeCommands(), "2026-01-02", "1.2.3");
  const auto all = OptionsOfTheHelp({});
  ASSERT_GT(all.size(), 50U);
  for (const std::vector<std::string>& words : all) {
    std::string path = "surveydata";
    for (std::size_t i = 0; i + 1 < words.size(); ++i) path += " " + words[i];
    const std::string& last = words.back();
    SCOPED_TRACE(path + " " + last);
    if (last == "-h" || last == "--help") continue;
    const bool isOption = last.starts_with("-");
    const bool isArgument =
        last == "FILE" || last == "AREA" || last == "DIRECTION" || last == "A" || last == "B";
    if (!isOption && !isArgument) {
      EXPECT_FALSE(ManSection(page, ".SS " + path + " " + last).empty());
      continue;
    }
    const std::string section =
        ManSection(page, words.size() == 1 ? ".SH OPTIONS" : ".SS " + InRoff(path));
    EXPECT_TRUE(Contains(section, (isOption ? "\\fB" : "\\fI") + InRoff(last) + "\\fR")) << section;
  }
  EXPECT_TRUE(Contains(ManSection(page, ".SH OPTIONS"), "\\-\\-help"));
  EXPECT_TRUE(Contains(ManSection(page, ".SH EXIT CODES"), "2  wrong usage"));
  EXPECT_TRUE(Contains(page, ".TH SURVEYDATA 1 2026-01-02 \"surveydata 1.2.3\""));
}

// Every command that can be run is in one task, and the others come before the tasks.
TEST(ManPage, GroupsTheCommandsByTask) {
  const Command top = Tool::MakeCommands();
  const std::string page = Tool::ManPage(top, "2026-01-02", "1.2.3");
  const std::vector<std::pair<std::string, std::vector<std::string>>> expected = {
      {"COMMANDS", {"record", "area"}},
      {"READING RECORD FILES", {"record list", "record show", "record export", "record columns"}},
      {"CHECKING AND COMPARING RECORD FILES", {"record check", "record diff"}},
      {"CHANGING, CUTTING AND JOINING RECORD FILES", {"record set", "record cut", "record join"}},
      {"UNDERSTANDING AREAS", {"area info", "area outline", "area contains"}},
      {"SCANNING AND CONVERTING AREAS", {"area grid", "area convert"}},
      {"DRAWING AND VIEWING", {"record plot", "area plot", "view"}},
      {"EXIT CODES", {}},
      {"EXAMPLE", {}}};
  std::vector<std::pair<std::string, std::vector<std::string>>> found;
  const std::string begin = ".SS surveydata ";
  for (const std::string& line : Lines(page)) {
    if (line.starts_with(".SH ")) found.push_back({line.substr(4), {}});
    if (line.starts_with(begin)) found.back().second.push_back(line.substr(begin.size()));
  }
  found.erase(found.begin(),
              std::ranges::find(found, "COMMANDS", &decltype(found)::value_type::first));
  EXPECT_EQ(found, expected);
  for (const Command* const command : Tool::AllCommands(top)) {
    if (command == &top) continue;
    int count = 0;
    for (const Tool::CommandTask& task : top.tasks) {
      for (const std::string& path : task.paths) count += "surveydata " + path == command->path;
    }
    EXPECT_EQ(count, command->commands.empty() ? 1 : 0) << command->path;
  }
}

// The compiler reports a code that is missing here.
bool IsExitCode(int code) {
  switch (static_cast<Tool::ExitCode>(code)) {
    case Tool::ExitCode::kDone:
    case Tool::ExitCode::kFinding:
    case Tool::ExitCode::kUsage:
    case Tool::ExitCode::kFileError:
    case Tool::ExitCode::kCannotBeQueried:
      return true;
  }
  return false;
}

TEST(ManPage, HasATableOfAllExitCodesAndNoOthers) {
  const std::string table =
      ManSection(Tool::ManPage(Tool::MakeCommands(), "2026-01-02", "1.2.3"), ".SH EXIT CODES");
  for (int code = 0; code < 256; ++code) {
    EXPECT_EQ(Contains(table, "\n  " + std::to_string(code) + "  "), IsExitCode(code)) << code;
  }
}

TEST(ManPage, IsReadWithoutAWarning) {
  const TempFolderC folder;
  Write(folder / "surveydata.1", Tool::ManPage(Tool::MakeCommands(), "2026-01-02", "1.2.3"));
  int readers = 0;
  for (const std::string command :
       {"mandoc -Tlint -Wwarning surveydata.1 >&2",
        "LC_ALL=C.UTF-8 MANROFFSEQ= MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "
        "./surveydata.1 >/dev/null",
        "groff -man -ww -Tutf8 -z surveydata.1"}) {
    if (!IsThere(command.starts_with("LC") ? "man" : command.substr(0, command.find(' ')), folder))
      continue;
    ++readers;
    SCOPED_TRACE(command);
    const Outcome outcome = RunShell(command, folder.Path().string());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
  }
  if (readers == 0) GTEST_SKIP() << "neither mandoc nor man nor groff";
}

TEST(ManPage, EscapesWhatRoffWouldInterpret) {
  bool isOn = false;
  Command top;
  top.name = "tool";
  top.description = "Does things.";
  top.options = {{.names = {"--flag"},
                  .description = ".begins with a dot, has a \\ and \"quotes\" and an \u00FC",
                  .flag = &isOn}};
  const std::string page = Tool::ManPage(top, "2026-01-02", "1");
  EXPECT_TRUE(Contains(page,
                       "\n\\&.begins with a dot, has a \\e and \\(dqquotes\\(dq and an "
                       "\\[u00FC].\n"))
      << page;
}

// A new command appears in all of them without further work.
TEST(Descriptions, TellWhatIsAdded) {
  std::string text;
  Command fetch;
  fetch.name = "fetch";
  fetch.description = "Fetch something: anything";
  fetch.options = {{.names = {"-t", "--tint"},
                    .value = "COLOUR",
                    .description = "The colour; none by default",
                    .take = Tool::StoreIn(text)}};
  Command top;
  top.name = "tool";
  top.description = "Does things.";
  top.commands = {fetch};
  Tool::AddPathsAndHelp(top);
  for (const std::string& out : {Tool::ManPage(top, "2026-01-02", "1"), Tool::BashCompletion(top),
                                 Tool::ZshCompletion(top), Tool::FishCompletion(top)}) {
    SCOPED_TRACE(out);
    EXPECT_TRUE(Contains(out, "fetch"));
    EXPECT_TRUE(Contains(out, "tint"));
    EXPECT_TRUE(Contains(out, "help"));
  }
}

// The parser makes an exclusion symmetrical, the manual page and the completions do not.
TEST(Descriptions, TellExclusionsOnBothSides) {
  int exclusions = 0;
  const Command top = Tool::MakeCommands();
  for (const Command* const command : Tool::AllCommands(top)) {
    std::vector<Tool::CommandOption> all = command->options;
    all.insert(all.end(), command->arguments.begin(), command->arguments.end());
    std::set<std::pair<std::string, std::string>> pairs;
    for (const Tool::CommandOption& option : all) {
      for (const std::string& other : option.excludes) pairs.emplace(option.names.back(), other);
    }
    for (const auto& [one, other] : pairs) {
      EXPECT_TRUE(pairs.contains({other, one})) << command->path << ": " << one << ", " << other;
      ++exclusions;
    }
  }
  EXPECT_GE(exclusions, 4);
}

// What a shell offers at the end of a command line.
struct Question {
  std::vector<std::string> words;  // after the program's name; the last one is completed
  std::set<std::string> answer;
  bool isFile = false;
  std::string begin = {};  // that of the value, which stays before each of the answers
};

const std::vector<Question>& Questions() {
  static const std::vector<Question> questions{
      {{""}, {"record", "area", "view"}},
      {{"re"}, {"record"}},
      {{"record", ""},
       {"list", "show", "export", "columns", "check", "diff", "set", "cut", "join", "plot"}},
      {{"area", ""}, {"info", "outline", "contains", "grid", "convert", "plot"}},
      {{"view", "c.rec", "--"}, {"--help", "--output", "--browser", "--page"}},
      {{"record", "list", "--"},
       {"--help", "--json", "--utc", "--recursive", "--jobs", "--from", "--to", "--name", "--where",
        "--every"}},
      {{"record", "show", "c.rec", "--by"}, {"--bytes"}},
      {{"record", "show", "c.rec", "--wh"}, {"--where"}},
      {{"record", "diff", "--"},
       {"--help", "--json", "--recursive", "--jobs", "--from", "--to", "--name", "--where",
        "--every"}},
      {{"record", "list", "area", "--js"}, {"--json"}},  // a file with the name of a command
      {{"record", "set", "--name", "list", "--num"}, {"--number"}},
      {{"area", "contains", "a.json", "--"},
       {"--help", "--csv", "--columns", "--separator", "--no-header", "--format", "--json",
        "--formulas", "--why"}},
      {{"record", "show", "--offset", ""}, {}},
      {{"area", "contains", "a.json", ""}, {}},
      {{"area", "info", ""}, {"a.json", "folder"}, true},
      {{"area", "outline", "--default-distance", "7", ""}, {"a.json", "folder"}, true},
      {{"record", "list", "c"}, {"c.rec"}, true},
      {{"record", "diff", "c.rec", "c"}, {"c.rec"}, true},
      {{"record", "list", "a.json", "b.svg", "c"}, {"c.rec"}, true},
      {{"record", "plot", "c.rec", "--output", ""}, {"b.svg", "folder"}, true},
      {{"record", "plot", "c.rec", "-o", ""}, {"b.svg", "folder"}, true},
      {{"record", "export", "-o", "c"}, {"c.rec"}, true},
      {{"record", "export", "c.rec", "--columns", "pd"}, {"pdop"}},
      {{"record", "export", "c.rec", "--columns", "offset,time_"},
       {"time_of_week", "time_gps", "time_utc", "time_b_of_week"},
       false,
       "offset,"},
      {{"record", "list", "c.rec", "--where", "pd"}, {"pdop"}},
      {{"record", "list", "c.rec", "--where", "'pdop < 4 and n"},
       {"name", "number", "not"},
       false,
       "pdop < 4 and "},
      {{"record", "check", "--where", "'not present(zz"}, {}, false, "not present("},
      {{"record", "diff", "--where", "'not present(gp"}, {"gps_week"}, false, "not present("},
      {{"area", "convert", "a.json", "--unit", ""}, {"rad", "deg", "gon"}},
  };
  return questions;
}

// As a word of bash or fish.
std::string InQuotes(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? R"('\'')" : std::string(1, c);
  return quoted + "'";
}

// The answers as whole values.
std::set<std::string> Values(const Question& question) {
  std::set<std::string> values;
  for (const std::string& answer : question.answer) values.insert(question.begin + answer);
  return values;
}

std::string LineOf(const Question& question) {
  std::string line = "surveydata";
  for (const std::string& word : question.words) line += " " + word;
  return line;
}

std::set<std::string> Offered(const std::string& text) {
  std::set<std::string> offered;
  for (std::string line : Lines(text)) {
    line = line.substr(0, line.find('\t'));
    if (line.ends_with('/')) line.pop_back();
    if (!line.empty()) offered.insert(line);
  }
  return offered;
}

class CompletionTest : public testing::Test {
 protected:
  CompletionTest() {
    std::filesystem::create_directories(folder_.Path() / "work" / "folder");
    for (const char* const name : {"a.json", "b.svg", "c.rec"}) Write(folder_ / "work/" + name, "");
  }

  std::string Work() const { return folder_ / "work"; }
  Outcome Shell(const std::string& command) const { return RunShell(command, Work()); }

  TempFolderC folder_;
};

using BashCompletion = CompletionTest;
using ZshCompletion = CompletionTest;
using FishCompletion = CompletionTest;

TEST_F(BashCompletion, OffersCommandsOptionsAndFiles) {
  if (!IsThere("bash", folder_)) GTEST_SKIP() << "no bash";
  Write(folder_ / "surveydata", Tool::BashCompletion(Tool::MakeCommands()));
  const auto ask = [&](const std::vector<std::string>& words) {
    std::string command =
        "bash " SURVEYDATA_TEST_TOOLS "complete_in_bash.sh ../surveydata surveydata";
    for (const std::string& word : words) command += " " + InQuotes(word);
    const Outcome outcome = Shell(command);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    return Offered(outcome.out);
  };
  for (const Question& question : Questions()) {
    SCOPED_TRACE(LineOf(question));
    EXPECT_EQ(ask(question.words), Values(question));
  }
  // For bash, = is a separate word.
  EXPECT_EQ(ask({"record", "plot", "c.rec", "--output", "="}),
            (std::set<std::string>{"b.svg", "folder"}));
  EXPECT_EQ(ask({"record", "plot", "--output", "=", "b"}), (std::set<std::string>{"b.svg"}));
  EXPECT_EQ(ask({"record", "plot", "--output", "=", "b.svg", "c"}),
            (std::set<std::string>{"c.rec"}));
  EXPECT_EQ(ask({"--v"}), (std::set<std::string>{"--version"}));
  EXPECT_EQ(ask({"record", "columns", "c.rec", ""}),
            (std::set<std::string>{"-h", "--help", "--json"}));
}

TEST_F(ZshCompletion, OffersCommandsOptionsAndFiles) {
  if (!IsThere("zsh", folder_)) GTEST_SKIP() << "no zsh";
  std::filesystem::create_directory(folder_.Path() / "functions");
  Write(folder_ / "functions/_surveydata", Tool::ZshCompletion(Tool::MakeCommands()));
  EXPECT_EQ(Shell("zsh -n ../functions/_surveydata").err, "");
  std::string lines;
  for (const Question& question : Questions()) lines += LineOf(question) + "\n";
  Write(folder_ / "lines", lines);
  const Outcome outcome = Shell("timeout 120 zsh -f " SURVEYDATA_TEST_TOOLS
                                "complete_in_zsh.zsh ../functions ../lines ../out");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  std::string said = ReadText(folder_ / "out");
  for (const Question& question : Questions()) {
    SCOPED_TRACE(LineOf(question));
    const std::size_t end = said.find("end\n");
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(Offered(said.substr(0, end)), question.answer);
    said.erase(0, end + 4);
  }
}

// Fish offers files with the right extension first, and others after them.
TEST_F(FishCompletion, OffersCommandsOptionsAndFiles) {
  if (!IsThere("fish", folder_)) GTEST_SKIP() << "no fish";
  Write(folder_ / "surveydata.fish", Tool::FishCompletion(Tool::MakeCommands()));
  EXPECT_EQ(Shell("HOME=.. fish -n ../surveydata.fish").err, "");
  for (const Question& question : Questions()) {
    SCOPED_TRACE(LineOf(question));
    const Outcome outcome =
        Shell("HOME=.. fish --no-config -c 'source ../surveydata.fish; complete -C $argv[1]' " +
              InQuotes(LineOf(question)));
    EXPECT_EQ(outcome.exitCode, 0);
    const auto offered = Offered(outcome.out);
    if (question.isFile) {
      EXPECT_TRUE(std::includes(offered.begin(), offered.end(), question.answer.begin(),
                                question.answer.end()))
          << outcome.out;
    } else {
      EXPECT_EQ(offered, Values(question));
    }
  }
}

}  // namespace
