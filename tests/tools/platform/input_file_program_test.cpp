// How the program reads pipes: it opens them once, does not seek, and reports the reason of a read
// that fails.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

// Runs a shell command and counts the program's system calls; see tests/support/step_shim.cpp.
Outcome RunWithShim(const std::string& command, const std::string& order, const std::string& log,
                    const std::string& folder) {
  const std::string shim = "ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD='" SURVEYDATA_STEP_SHIM
                           "' SURVEYDATA_SHIM='" +
                           order + "' SURVEYDATA_SHIM_LOG='" + log + "' surveydata ";
  std::string line = command;
  line.replace(line.find("surveydata "), 11, shim);
  return RunShell(line, folder);
}

TEST(InputFile, DoesNotSeekInAPipe) {
  const TempFolderC folder;
  WriteBytes(folder / "a.rec", ReadBytes(DataPath("valley_drive.rec")));
  WriteBytes(folder / "a.json", ReadBytes(DataPath("areas/facade.json")));
  // The second direction is refused, so that some of the input is never read.
  const std::string directions = "57,92\nx\n" + std::string(20'000, '\n');
  WriteBytes(folder / "d.csv", Bytes(directions.begin(), directions.end()));
  for (const std::string command :
       {"cat a.rec | surveydata record list -", "cat a.rec | surveydata record export /dev/stdin",
        "cat a.rec | surveydata record plot -", "cat a.rec | surveydata record show - --offset 960",
        "mkfifo p; cat a.rec > p & surveydata record list p", "cat a.json | surveydata area info -",
        "cat d.csv | surveydata area contains a.json --csv -"}) {
    SCOPED_TRACE(command);
    const TempFolderC elsewhere;
    const Outcome outcome = RunWithShim(command, "log", elsewhere / "log", folder.Path().string());
    EXPECT_NE(outcome.out + outcome.err, "");
    EXPECT_EQ(outcome.err.find("seek"), std::string::npos) << outcome.err;
    const std::vector<std::string> calls = Lines(ReadText(elsewhere / "log"));
    EXPECT_FALSE(calls.empty());
    for (const char* const call : {"lseek", "fseeko"}) {
      EXPECT_EQ(std::count(calls.begin(), calls.end(), call), 0) << call;
    }
  }
}

// The reason is that of the failed call, even after other calls.
TEST(InputFile, ReportsTheReasonOfTheReadThatFailed) {
  const TempFolderC folder;
  Bytes large;
  const Bytes sample = ReadBytes(DataPath("valley_drive.rec"));
  while (large.size() < (std::size_t{3} << 20)) {
    large.insert(large.end(), sample.begin(), sample.end());
  }
  WriteBytes(folder / "a.rec", large);
  for (const std::string command :
       {"surveydata record list a.rec", "surveydata record export a.rec",
        "surveydata record plot a.rec -o out.svg", "surveydata record show a.rec --offset 960"}) {
    for (const int step : {0, 1, 2}) {
      if (step > 0 && command.find("show") != std::string::npos) continue;
      SCOPED_TRACE(command + ", read " + std::to_string(step));
      const TempFolderC elsewhere;
      const Outcome outcome = RunWithShim(command, "fail pread " + std::to_string(step) + " 5",
                                          elsewhere / "log", folder.Path().string());
      EXPECT_EQ(outcome.exitCode, 3);
      EXPECT_EQ(outcome.err, "surveydata: cannot read a.rec: Input/output error\n");
    }
  }
  for (const std::string command : {"surveydata record show . --offset 0", "surveydata area info .",
                                    "surveydata area contains . 1,2"}) {
    EXPECT_EQ(RunShell(command, folder.Path().string()).err,
              "surveydata: cannot read .: Is a directory\n");
  }
}

}  // namespace
