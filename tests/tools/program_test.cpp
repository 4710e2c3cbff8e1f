#include "tests/tools/program.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string text = "surveydata";
  for (const std::string& word : words) text += " " + word;
  return text;
}

const std::string kRecordCommands =
    "record has list, show, export, columns, check, diff, set, cut, join, plot";
const std::string kAreaCommands = "area has info, outline, contains, grid, convert, plot";

TEST(Program, TellsItsVersion) {
  const Outcome outcome = RunProgram({"--version"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "surveydata " SURVEYDATA_VERSION "\n");
}

TEST(Program, ExitsWithTwoAndAnEmptyOutputForUsageErrors) {
  const std::string file = DataPath("valley_drive.rec");
  const std::string area = DataPath("areas/facade.json");
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"record"},
      {"nonsense"},
      {"record", "nonsense"},
      {"record", "list"},
      {"record", "list", file, "--nonsense"},
      {"record", "show", file},
      {"record", "show", file, "--offset"},
      {"record", "show", file, "--offset", ""},
      {"record", "show", file, "--offset", "0x"},
      {"record", "show", file, "--offset", "-1"},
      {"record", "show", file, "--offset", "960x"},
      {"record", "show", file, "--offset", " 960"},
      {"record", "set", file, "--name", "A"},
      {"record", "set", file, "--offset", "960", "--where", "used > 3", "--name", "A"},
      {"record", "set", file, "--offset", "960", "--all", "--name", "A"},
      {"record", "diff", file},
      {"record", "diff", "-", "-"},
      {"record", "plot", file},
      {"record", "plot", file, "-o", ""},
      {"record", "export", file, "-o", ""},
      {"area"},
      {"area", "nonsense"},
      {"area", "info"},
      {"area", "info", area, "another"},
      {"area", "outline", area, "--json", "--csv"},
      {"area", "outline", area, "--default-distance", "far"},
      {"area", "contains", area, "1"},
      {"area", "contains", area, "1,2", "1;x"},
      {"area", "contains", area, "57,5,92,3"},
      {"area", "contains", area, "1,2", "57,92,abc"},
      {"area", "contains", area, "1,2", "--csv", "-"},
      {"area", "contains", area, "1,2", "--columns", "hz,v"},
      {"area", "contains", area, "--columns", "hz"},
      {"area", "contains", area, "--columns", "hz,hz"},
      {"area", "contains", area, "--columns", "1,2,3"},
      {"area", "contains", area, "--columns", "hz,v", "--no-header"},
      {"area", "contains", area, "--separator", "dots"},
      {"area", "contains", area, "--format", "xml"},
      {"area", "contains", area, "--format", "csv", "--json"},
      {"area", "contains", area, "--formulas", "compute"},
      {"area", "contains", area, "1,2", "--why", "--format", "csv"},
      {"area", "grid", area, "-o", area},
      {"area", "convert", area},
      {"area", "convert", area, "--unit", "degrees"},
      {"record", "export", file, "--formulas", "keep"},
      // Standard input is read once, and cannot be changed.
      {"record", "set", "-", "--offset", "960", "--number", "5"},
      {"record", "set", "-", "--offset", "960", "--number", "5", "--dry-run"},
      {"record", "set", "/dev/stdin", "--offset", "960", "--number", "5"},
      {"record", "set", "/dev/stdin", "--offset", "960", "--number", "5", "--dry-run"},
      {"area", "contains", "-"},
      {"area", "contains", "-", "--csv", "-"},
      {"area", "contains", "/dev/stdin", "--csv", "-"},
      {"area", "plot", "-", "--csv", "-"},
      {"area", "plot", "-", "--csv", "/dev/stdin"},
      {"area", "plot", area, "--csv", "-"},
      {"area", "plot", area, "-o", "/dev/null", "--columns", "1,2"},
      {"area", "plot", area},
      {"area", "plot", area, "-o", ""},
      {"area", "plot", area, "-o", "/dev/null", "--probe", "x"},
      {"area", "plot", area, "-o", "/dev/null", "--probe", "57,5,92,3"},
      {"area", "plot", area, "-o", "/dev/null", "--window", "0,0,10,10,5"},
      {"area", "plot", area, "-o", "/dev/null", "--window", "0,0"},
      {"area", "plot", area, "-o", "/dev/null", "--window", "0,0,"},
      {"area", "plot", area, "-o", "/dev/null", "--window", "0,0,10"},
      {"area", "plot", area, "-o", "/dev/null", "--window", "10,0,0,10"},
      {"area", "plot", area, "-o", area},
  };
  for (const auto& arguments : wrong) {
    SCOPED_TRACE(Joined(arguments));
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.starts_with("surveydata: ")) << outcome.err;
    EXPECT_TRUE(outcome.err.ends_with("\n") && !outcome.err.ends_with("\n\n")) << outcome.err;
  }
}

TEST(Program, NamesTheUnknownCommandAndTheKnownOnes) {
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } cases[] = {
      {{}, "a command is missing: surveydata has record, area, view"},
      {{"foo"}, "there is no command 'foo': surveydata has record, area, view"},
      {{"records", "list", "a.rec"},
       "there is no command 'records': surveydata has record, area, view"},
      {{"record"}, "a command is missing: " + kRecordCommands},
      {{"record", "lst"}, "there is no command 'lst': " + kRecordCommands},
      {{"record", "--json", "lst", "a.rec"}, "there is no command 'lst': " + kRecordCommands},
      {{"record", "--json"}, "a command is missing: " + kRecordCommands},
      {{"area", "foo"}, "there is no command 'foo': " + kAreaCommands},
      {{"record", "list"}, "FILE is required"},
      {{"record", "show", "--offset", "0"}, "FILE is required"},
      {{"record", "cut", "-o", "part.rec"}, "FILE is required"},
  };
  for (const auto& [arguments, message] : cases) {
    SCOPED_TRACE(Joined(arguments));
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "surveydata: " + message + "\nRun with --help for more information.\n");
  }
}

TEST(Program, TakesNamesThatBeginWithADashAfterTwoDashes) {
  const TempFolderC folder;
  const std::string work = folder.Path().string();
  for (const char* const name : {"a.rec", "-b.rec", "--json"}) {
    WriteBytes(folder / name, ReadBytes(DataPath("valley_drive.rec")));
  }
  const Outcome expected =
      RunProgram({"record", "list", "a.rec", "./-b.rec", "./--json"}, {.folder = work});
  EXPECT_EQ(expected.exitCode, 1);
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"record", "list", "a.rec", "--", "-b.rec", "--json"},
        {"record", "list", "--", "a.rec", "-b.rec", "--json"}}) {
    const Outcome outcome = RunProgram(words, {.folder = work});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(Lines(outcome.out).size(), Lines(expected.out).size());
    EXPECT_NE(outcome.out.find("\n-b.rec\n"), std::string::npos);
  }
  const Outcome wrong =
      RunProgram({"record", "show", "a.rec", "--offset", "0", "--", "-c.rec"}, {.folder = work});
  EXPECT_EQ(wrong.err,
            "surveydata: '-c.rec' is one argument too many: surveydata record show takes one FILE\n"
            "Run with --help for more information.\n");
}

// Each message names the wrong word and, if known, the correct one.
TEST(Program, SaysInASentenceWhatIsWrongWithACommandLine) {
  const std::string area = DataPath("areas/facade.json");
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } cases[] = {
      {{"-v"}, "surveydata has no option '-v'; did you mean --version?"},
      {{"--verison"}, "surveydata has no option '--verison'; did you mean --version?"},
      {{"record", "list", "--jsn", "a.rec"},
       "surveydata record list has no option '--jsn'; did you mean --json?"},
      {{"record", "list", "--jsn"},
       "surveydata record list has no option '--jsn'; did you mean --json?"},
      {{"record", "list", "-z", "3", "a.rec"}, "surveydata record list has no option '-z'"},
      {{"area", "contains", area, "--seperator=tab"},
       "surveydata area contains has no option '--seperator'; did you mean --separator?"},
      {{"--json", "area", "info", area},
       "surveydata has no option '--json'; it belongs after 'surveydata area info'"},
      {{"record", "show", "a.rec", "b.rec"},
       "'b.rec' is one argument too many: surveydata record show takes one FILE"},
      {{"area", "info", area, "b.json"},
       "'b.json' is one argument too many: surveydata area info takes one AREA"},
      {{"record", "columns", "a.rec"},
       "'a.rec' is one argument too many: surveydata record columns takes none"},
      {{"help"}, "there is no command 'help': surveydata has record, area, view"},
      {{"record", "help", "list"}, "there is no command 'help': " + kRecordCommands},
      {{"area", "contains", area, "1,2", "--csv", "d.csv"},
       "DIRECTION and --csv exclude each other: give one of them"},
      {{"area", "contains", area, "1,2", "--format", "csv", "--json"},
       "--format and --json exclude each other: give one of them"},
      {{"record", "set", "a.rec", "--offset", "960", "--slant"},
       "--slant requires --antenna-height"},
      {{"area", "plot", area, "-o", "a.svg", "--columns", "1,2"}, "--columns requires --csv"},
      {{"record", "show", "a.rec", "--offset"}, "--offset needs a value, N"},
      {{"area", "contains", area, "--csv"}, "--csv needs a value, FILE"},
      {{"record", "show", "a.rec"}, "give --offset, or a filter such as --where"},
      {{"record", "show", "a.rec", "--offset", "5", "--every", "2"},
       "--offset and --every exclude each other: give one of them"},
      {{"area", "contains"}, "AREA is required"},
  };
  for (const auto& [arguments, message] : cases) {
    SCOPED_TRACE(Joined(arguments));
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "surveydata: " + message + "\nRun with --help for more information.\n");
  }
}

TEST(Program, ExitsWithThreeForFilesThatCannotBeRead) {
  const TempFolderC folder;
  for (const std::string& file : {folder / "missing.rec", folder.Path().string()}) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"list", file},
                                                      {"show", file, "--offset", "0"},
                                                      {"export", file},
                                                      {"diff", file, file},
                                                      {"set", file, "--offset", "0", "--name", "A"},
                                                      {"plot", file, "-o", folder / "out.svg"}}) {
      std::vector<std::string> all = {"record"};
      all.insert(all.end(), arguments.begin(), arguments.end());
      SCOPED_TRACE(Joined(all));
      const Outcome outcome = RunProgram(all);
      EXPECT_EQ(outcome.exitCode, 3);
      EXPECT_NE(outcome.err.find("surveydata: cannot read "), std::string::npos) << outcome.err;
    }
  }
  EXPECT_TRUE(folder.Names().empty());
}

TEST(Program, ExitsWithThreeForAreaFilesThatCannotBeRead) {
  const TempFolderC folder;
  for (const std::string& file : {folder / "missing.json", folder.Path().string()}) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"info", file},
          {"outline", file},
          {"contains", file, "1,2"},
          {"grid", file},
          {"convert", file, "--unit", "deg"},
          {"plot", file, "-o", folder / "out.svg"},
          {"contains", DataPath("areas/dome.json"), "--csv", file},
          {"plot", DataPath("areas/dome.json"), "-o", folder / "out.svg", "--csv", file}}) {
      std::vector<std::string> all = {"area"};
      all.insert(all.end(), arguments.begin(), arguments.end());
      SCOPED_TRACE(Joined(all));
      const Outcome outcome = RunProgram(all);
      EXPECT_EQ(outcome.exitCode, 3);
      EXPECT_NE(outcome.err.find("surveydata: cannot read "), std::string::npos) << outcome.err;
    }
  }
  EXPECT_TRUE(folder.Names().empty());
}

TEST(Program, DrawsNoProgressBarIfStandardErrorIsNotATerminal) {
  const Outcome outcome = RunProgram({"record", "export", DataPath("valley_drive.rec")});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
}

}  // namespace
