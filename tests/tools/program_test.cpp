#include "program.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// Every command line whose help is looked at.
const std::vector<std::vector<std::string>> kCommands = {
    {},
    {"record"},
    {"record", "list"},
    {"record", "show"},
    {"record", "export"},
    {"record", "set"},
    {"record", "plot"},
    {"area"},
    {"area", "info"},
    {"area", "outline"},
    {"area", "contains"},
    {"area", "plot"},
};

std::string Joined(const std::vector<std::string>& words) {
  std::string text = "surveydata";
  for (const std::string& word : words) text += " " + word;
  return text;
}

// The lines behind "Example:" that begin with the program's name.
std::vector<std::string> Examples(const std::string& help) {
  std::vector<std::string> examples;
  bool isBehind = false;
  for (const std::string& line : Lines(help)) {
    if (line == "Example:") isBehind = true;
    if (isBehind && line.starts_with("  surveydata ")) examples.push_back(line.substr(2));
  }
  return examples;
}

TEST(Program, TellsItsVersion) {
  const Outcome outcome = RunProgram({"--version"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "surveydata " SURVEYDATA_VERSION "\n");
}

TEST(Program, GivesUsageErrorsTheCodeTwoAndNothingOnStandardOutput) {
  const std::string file = DataPath("valley_drive.rec");
  const std::string area = DataPath("areas/facade.json");
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"record"},
      {"nonsense"},
      {"record", "nonsense"},
      {"record", "list"},
      {"record", "list", file, "--nonsense"},
      {"record", "list", file, "another"},
      {"record", "show", file},
      {"record", "show", file, "--offset"},
      {"record", "show", file, "--offset", ""},
      {"record", "show", file, "--offset", "0x"},
      {"record", "show", file, "--offset", "-1"},
      {"record", "show", file, "--offset", "960x"},
      {"record", "show", file, "--offset", " 960"},
      {"record", "show", file, "--offset", "18446744073709551616"},
      {"record", "set", file, "--name", "A"},
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
      {"area", "contains", area, "1,2", "--csv", "-"},
      {"area", "plot", area},
      {"area", "plot", area, "-o", ""},
      {"area", "plot", area, "-o", "/dev/null", "--probe", "x"},
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

TEST(Program, GivesFilesThatCannotBeReadTheCodeThree) {
  const TempFolderC folder;
  for (const std::string& file : {folder / "missing.rec", folder.Path().string()}) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"list", file},
                                                      {"show", file, "--offset", "0"},
                                                      {"export", file},
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

TEST(Program, GivesAreaFilesThatCannotBeReadTheCodeThree) {
  const TempFolderC folder;
  for (const std::string& file : {folder / "missing.json", folder.Path().string()}) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"info", file},
          {"outline", file},
          {"contains", file, "1,2"},
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

TEST(Program, GivesOutputThatCannotBeWrittenTheCodeThree) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  const TempFolderC folder;
  const std::string file = DataPath("valley_drive.rec");
  const std::string area = DataPath("areas/facade.json");
  for (const std::string& command : std::vector<std::string>{
           "surveydata --help >/dev/full", "surveydata --version >/dev/full",
           "surveydata record list --help >/dev/full", "surveydata --version >&-",
           "surveydata record list '" + file + "' >&-",
           "surveydata record list '" + file + "' >/dev/full",
           "surveydata record show '" + file + "' --offset 960 >/dev/full",
           "surveydata record export '" + file + "' >/dev/full",
           "surveydata record export '" + file + "' -o /dev/full",
           "surveydata record plot '" + file + "' -o /dev/full",
           "surveydata area info '" + area + "' >/dev/full",
           "surveydata area outline '" + area + "' >/dev/full",
           "surveydata area contains '" + area + "' 57,92 >/dev/full",
           "surveydata area plot '" + area + "' -o /dev/full"}) {
    SCOPED_TRACE(command);
    const Outcome outcome = RunShell(command, folder.Path().string());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("cannot write"), std::string::npos) << outcome.err;
  }
}

TEST(Program, KeepsItsExitCodeWhereMessagesCannotBeWritten) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  const TempFolderC folder;
  WriteBytes(folder / "bad.rec",
             MakeFrame(113, MakeBody(0x0008, {2})));  // a block that does not fit
  const struct {
    std::string command;
    int code;
  } cases[] = {
      {"surveydata record list missing.rec", 3},
      {"surveydata record nonsense", 2},
      {"surveydata record export bad.rec -o out.json", 1},
      {"surveydata record show bad.rec --offset 0", 1},
      {"surveydata area info '" + DataPath("valley_drive.rec") + "'", 3},
  };
  for (const auto& [command, code] : cases) {
    for (const char* const where : {" 2>/dev/full", " 2>&-"}) {
      SCOPED_TRACE(command + where);
      EXPECT_EQ(RunShell(command + where, folder.Path().string()).exitCode, code);
    }
  }
  const std::string closed = "surveydata record export bad.rec -o out.json 2>&- >&- <&-";
  EXPECT_EQ(RunShell(closed, folder.Path().string()).exitCode, 1);
  // No message went into the file that was opened meanwhile.
  EXPECT_EQ(ReadText(folder / "out.json"), "");
}

TEST(Program, EndsEveryHelpWithAnExampleThatWorks) {
  for (const auto& command : kCommands) {
    SCOPED_TRACE(Joined(command));
    std::vector<std::string> arguments = command;
    arguments.push_back("--help");
    const Outcome help = RunProgram(arguments);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, "");
    const std::vector<std::string> examples = Examples(help.out);
    EXPECT_FALSE(examples.empty()) << help.out;
    for (const std::string& example : examples) {
      SCOPED_TRACE(example);
      EXPECT_TRUE(example.starts_with(Joined(command)));
      const TempFolderC folder;
      std::filesystem::copy(DataPath("valley_drive.rec"), folder / "valley_drive.rec");
      std::filesystem::copy(DataPath("areas"), folder.Path());
      const std::size_t before = folder.Names().size();
      const Outcome outcome = RunShell(example, folder.Path().string());
      // The sample has gaps, which a list reports.
      EXPECT_EQ(outcome.exitCode, example.find(" list valley") != std::string::npos ? 1 : 0);
      EXPECT_EQ(outcome.err, "");
      EXPECT_TRUE(outcome.out != "" || folder.Names().size() > before);
    }
  }
}

TEST(Program, DrawsNoProgressBarWhereStandardErrorIsNoTerminal) {
  const Outcome outcome = RunProgram({"record", "export", DataPath("valley_drive.rec")});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
}

}  // namespace
